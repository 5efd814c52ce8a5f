// SPDX-License-Identifier: Apache-2.0
// The middleware's own messages in the distributed log.
//
// This program puts a function of its own in the place of the platform's
// DDS_DataWriter_write_w_timestamp in order to be on the write thread while it publishes.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <kolt/config_logger.h>

#include <algorithm>
#include <atomic>
#include <string>

#include "support/logger/logger.h"
#include "support/logger/monitor.h"
#include "support/platform/process.h"

namespace {

// The number of next writes during which the middleware logs a message.
std::atomic<int> g_talkative_writes{0};

}  // namespace

DDS_ReturnCode_t DDS_DataWriter_write_w_timestamp(DDS_DataWriter *self, const void *sample,
                                                  DDS_InstanceHandle_t handle,
                                                  const DDS_Time_t *source_timestamp) {
    static const auto kReal = reinterpret_cast<decltype(&DDS_DataWriter_write_w_timestamp)>(
        dlsym(RTLD_NEXT, "DDS_DataWriter_write_w_timestamp"));
    if (g_talkative_writes > 0) {
        --g_talkative_writes;
        KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_API, KOLT_CONFIG_LOG_LEVEL_ERROR, "write",
                         "from the write thread");
    }
    return kReal(self, sample, handle, source_timestamp);
}

namespace {

using support::Logger;
using support::LogSample;
using support::Monitor;
using support::StdoutCapture;

const char *const kCategory = "com.vur.kolt.config.Logger";

KOLT_Config_Logger *middleware() {
    return KOLT_Config_Logger_get_instance();
}

Monitor::Settings log_of(int domain) {
    return Monitor::Settings{.domain = domain, .state = false, .commands = false};
}

TEST(LoggerForwarding, TheDeviceIsInstalledWhileTheLoggerExists) {
    EXPECT_EQ(KOLT_Config_Logger_get_output_device(middleware()), nullptr);
    {
        const Logger logger({.domain = 100, .forward = true});
        ASSERT_NE(logger.get(), nullptr);
        EXPECT_EQ(KOLT_Config_Logger_get_output_device(middleware()),
                  &VUR_DL_DistLogger_localDevice);
    }
    EXPECT_EQ(KOLT_Config_Logger_get_output_device(middleware()), nullptr);
    EXPECT_EQ(VUR_DL_DistLogger_localDevice.device_data, nullptr);
    EXPECT_EQ(VUR_DL_DistLogger_localDevice.write, &VUR_DL_DistLogger_writeDevice);
    EXPECT_EQ(VUR_DL_DistLogger_localDevice.close, nullptr);
}

TEST(LoggerForwarding, WithoutItTheMiddlewareKeepsItsOutput) {
    Monitor monitor(log_of(101));
    const Logger logger({.domain = 101, .forward = false});
    ASSERT_NE(logger.get(), nullptr);
    EXPECT_EQ(KOLT_Config_Logger_get_output_device(middleware()), nullptr);
    StdoutCapture capture;
    KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_API, KOLT_CONFIG_LOG_LEVEL_ERROR, "method",
                     "stays here");
    EXPECT_NE(capture.text().find("stays here"), std::string::npos);
    logger.log(100, "the end");
    ASSERT_TRUE(monitor.wait_for_log(1));
    EXPECT_EQ(monitor.log()[0].message, "the end");
}

TEST(LoggerForwarding, MessagesArriveWithTheirCategoryAndLevel) {
    Monitor monitor(log_of(102));
    const Logger logger({.domain = 102, .filter_level = 800, .echo = true, .forward = true});
    ASSERT_NE(logger.get(), nullptr);
    ASSERT_TRUE(monitor.wait_for_log_writers(1));
    KOLT_Config_Logger_set_verbosity_by_category(middleware(), KOLT_CONFIG_LOG_CATEGORY_USER,
                                                 KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL);
    const struct {
        KOLT_Config_LogLevel level;
        int expected;
        const char *text;
    } cases[] = {{KOLT_CONFIG_LOG_LEVEL_FATAL_ERROR, 100, "fatal one"},
                 {KOLT_CONFIG_LOG_LEVEL_ERROR, 300, "erroneous one"},
                 {KOLT_CONFIG_LOG_LEVEL_WARNING, 400, "warning one"},
                 {KOLT_CONFIG_LOG_LEVEL_STATUS_LOCAL, 500, "local one"},
                 {KOLT_CONFIG_LOG_LEVEL_STATUS_REMOTE, 600, "remote one"},
                 {KOLT_CONFIG_LOG_LEVEL_DEBUG, 700, "debugging one"}};
    StdoutCapture capture;
    for (const auto &message : cases) {
        KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_USER, message.level, "method", "%s",
                         message.text);
        const auto arrived = [&](const LogSample &sample) {
            return sample.message.find(message.text) != std::string::npos;
        };
        ASSERT_TRUE(support::eventually([&] {
            return std::any_of(monitor.log().begin(), monitor.log().end(), arrived);
        })) << message.text;
        const LogSample &sample =
            *std::find_if(monitor.log().begin(), monitor.log().end(), arrived);
        EXPECT_EQ(sample.category, kCategory);
        EXPECT_EQ(sample.level, message.expected);
        EXPECT_NE(capture.text().find(message.text), std::string::npos);
    }
}

TEST(LoggerForwarding, TheFilterHoldsForThemAsWell) {
    Monitor monitor(log_of(103));
    const Logger logger({.domain = 103, .filter_level = 300, .forward = true});
    ASSERT_NE(logger.get(), nullptr);
    ASSERT_TRUE(monitor.wait_for_log_writers(1));
    KOLT_Config_Logger_set_verbosity_by_category(middleware(), KOLT_CONFIG_LOG_CATEGORY_USER,
                                                 KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL);
    KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_USER, KOLT_CONFIG_LOG_LEVEL_WARNING, "method",
                     "held back");
    KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_USER, KOLT_CONFIG_LOG_LEVEL_ERROR, "method",
                     "let through");
    ASSERT_TRUE(monitor.wait_for_log(1));
    EXPECT_NE(monitor.log()[0].message.find("let through"), std::string::npos);
    EXPECT_EQ(monitor.log()[0].id, 1);
}

TEST(LoggerForwarding, AMessageOfTheWriteThreadIsNeitherEchoedNorPublished) {
    Monitor monitor(log_of(104));
    const Logger logger({.domain = 104, .filter_level = 800, .echo = true, .forward = true});
    ASSERT_NE(logger.get(), nullptr);
    ASSERT_TRUE(monitor.wait_for_log_writers(1));
    KOLT_Config_Logger_set_verbosity(middleware(), KOLT_CONFIG_LOG_VERBOSITY_ERROR);
    StdoutCapture capture;
    g_talkative_writes = 1;
    logger.log(600, "first");
    ASSERT_TRUE(monitor.wait_for_log(1));
    ASSERT_EQ(g_talkative_writes, 0);
    logger.log(600, "second");
    ASSERT_TRUE(monitor.wait_for_log(2));
    EXPECT_EQ(monitor.log()[1].message, "second");
    EXPECT_EQ(monitor.log()[1].id, 2);
    EXPECT_EQ(capture.text(), "DL Info: : first\nDL Info: : second\n");
}

TEST(LoggerForwarding, TheDevicePrintsWhileThereIsNoLogger) {
    KOLT_Config_LogMessage message{};
    message.level = KOLT_CONFIG_LOG_LEVEL_ERROR;
    StdoutCapture capture;
    for (const char *text : {"without newline", "with newline\n", "",
                             static_cast<const char *>(nullptr), "two\nlines"}) {
        message.text = text;
        VUR_DL_DistLogger_writeDevice(&VUR_DL_DistLogger_localDevice, &message);
    }
    EXPECT_EQ(capture.text(), "without newline\nwith newline\ntwo\nlines\n");
    gVUR_DL_DistLogger_initialized = 1;
    gVUR_DL_DistLogger_beingDestroyed = 1;
    message.text = "while it is being finalised";
    VUR_DL_DistLogger_writeDevice(&VUR_DL_DistLogger_localDevice, &message);
    gVUR_DL_DistLogger_beingDestroyed = 0;
    gVUR_DL_DistLogger_initialized = 0;
    EXPECT_EQ(capture.count("while it is being finalised"), 1);
}

TEST(LoggerForwarding, MaskingSilencesEverythingAndUnmaskingRestoresIt) {
    const KOLT_Config_LogVerbosity verbosities[] = {
        KOLT_CONFIG_LOG_VERBOSITY_ERROR,         KOLT_CONFIG_LOG_VERBOSITY_WARNING,
        KOLT_CONFIG_LOG_VERBOSITY_STATUS_LOCAL,  KOLT_CONFIG_LOG_VERBOSITY_STATUS_REMOTE,
        KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL,    KOLT_CONFIG_LOG_VERBOSITY_SILENT,
        KOLT_CONFIG_LOG_VERBOSITY_STATUS_REMOTE, KOLT_CONFIG_LOG_VERBOSITY_WARNING};
    for (int i = 0; i < 8; ++i) {
        KOLT_Config_Logger_set_verbosity_by_category(
            middleware(), static_cast<KOLT_Config_LogCategory>(i), verbosities[i]);
    }
    KOLT_Config_LogVerbosity mask[8];
    VUR_DL_DistLogger_maskSystemVerbosity(mask, DDS_DomainParticipantFactory_get_instance());
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(KOLT_Config_Logger_get_verbosity_by_category(
                      middleware(), static_cast<KOLT_Config_LogCategory>(i)),
                  KOLT_CONFIG_LOG_VERBOSITY_SILENT);
        EXPECT_EQ(mask[i], verbosities[i]);
    }
    VUR_DL_DistLogger_unmaskSystemVerbosity(mask);
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(KOLT_Config_Logger_get_verbosity_by_category(
                      middleware(), static_cast<KOLT_Config_LogCategory>(i)),
                  verbosities[i]);
    }
}

}  // namespace
