// SPDX-License-Identifier: Apache-2.0
// Errors that are dropped while a thread keeps them, and told afterwards.
#include <gtest/gtest.h>
#include <kolt/config_logger.h>

#include <string>
#include <thread>

#include "support/platform/process.h"

namespace {

void set_verbosity(KOLT_Config_LogVerbosity verbosity) {
    KOLT_Config_Logger_set_verbosity(KOLT_Config_Logger_get_instance(), verbosity);
}

void log(KOLT_Config_LogLevel level, const std::string &text) {
    KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_API, level, "method", "%s", text.c_str());
}

void log_error(const std::string &text) {
    log(KOLT_CONFIG_LOG_LEVEL_ERROR, text);
}

TEST(KeptErrors, AreToldUnderTheVerbosityOfThatMoment) {
    support::StdoutCapture capture;
    set_verbosity(KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    log_error("too early");
    KOLT_Log_keep_errors();
    log_error("why");
    log(KOLT_CONFIG_LOG_LEVEL_WARNING, "no error");
    EXPECT_EQ(capture.text(), "");
    set_verbosity(KOLT_CONFIG_LOG_VERBOSITY_WARNING);
    log_error("at once");
    KOLT_Log_tell_kept_errors();
    KOLT_Log_tell_kept_errors();
    EXPECT_EQ(capture.text(), "ERROR kolt method: at once\nERROR kolt method: why\n");

    set_verbosity(KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    KOLT_Log_keep_errors();
    log_error("nobody wants to know");
    KOLT_Log_tell_kept_errors();
    EXPECT_EQ(capture.lines().size(), 2U);
}

TEST(KeptErrors, AreForgottenOnRequest) {
    support::StdoutCapture capture;
    set_verbosity(KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    KOLT_Log_keep_errors();
    log_error("forgotten");
    KOLT_Log_forget_kept_errors();
    log_error("not kept");
    set_verbosity(KOLT_CONFIG_LOG_VERBOSITY_ERROR);
    KOLT_Log_tell_kept_errors();
    EXPECT_EQ(capture.text(), "");
}

TEST(KeptErrors, AreTheFirstEightOfTheirThread) {
    support::StdoutCapture capture;
    set_verbosity(KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    KOLT_Log_keep_errors();
    std::thread(log_error, "of another thread").join();
    for (int i = 1; i <= 9; ++i) {
        log_error(std::to_string(i));
    }
    set_verbosity(KOLT_CONFIG_LOG_VERBOSITY_ERROR);
    KOLT_Log_tell_kept_errors();
    std::string expected;
    for (int i = 1; i <= 8; ++i) {
        expected += "ERROR kolt method: " + std::to_string(i) + "\n";
    }
    EXPECT_EQ(capture.text(), expected);
}

TEST(KeptErrors, EnableWhatIsKept) {
    set_verbosity(KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    const auto is_enabled = [](KOLT_Config_LogLevel level) {
        return KOLT_Log_is_enabled(KOLT_CONFIG_LOG_CATEGORY_API, level) != DDS_BOOLEAN_FALSE;
    };
    EXPECT_FALSE(is_enabled(KOLT_CONFIG_LOG_LEVEL_ERROR));
    KOLT_Log_keep_errors();
    EXPECT_TRUE(is_enabled(KOLT_CONFIG_LOG_LEVEL_ERROR));
    EXPECT_FALSE(is_enabled(KOLT_CONFIG_LOG_LEVEL_WARNING));
    KOLT_Log_forget_kept_errors();
    EXPECT_FALSE(is_enabled(KOLT_CONFIG_LOG_LEVEL_ERROR));
}

}  // namespace
