// SPDX-License-Identifier: Apache-2.0
// The engine's log arrives in the middleware's log: level and category of each kind of message, and
// nothing of what no verbosity lets through.
//
// The engine's own log function is called as its code calls it; a program of ours does not link the
// engine, so the function is looked up among the loaded libraries.

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <kolt/config_logger.h>
#include <kolt/dds_c.h>

#include <cstdint>
#include <optional>
#include <thread>
#include <vector>

#include "support/logger/log_capture.h"

namespace {

constexpr DDS_DomainId_t kDomain = 163;

using EngineLog = void (*)(std::uint32_t category, const char *file, std::uint32_t line,
                           const char *function, const char *format, ...);

class EngineLogTest : public testing::Test {
  protected:
    void SetUp() override {
        // The first entity puts the engine's log into the middleware's.
        participant_ = DDS_DomainParticipantFactory_create_participant(
            DDS_DomainParticipantFactory_get_instance(), kDomain, &DDS_PARTICIPANT_QOS_DEFAULT,
            nullptr, 0);
        ASSERT_NE(participant_, nullptr);
        log_ = reinterpret_cast<EngineLog>(dlsym(RTLD_DEFAULT, "dds_log"));
        ASSERT_NE(log_, nullptr);
        KOLT_Config_Logger_set_print_format(KOLT_Config_Logger_get_instance(),
                                            KOLT_CONFIG_LOG_PRINT_FORMAT_MINIMAL);
        capture_.emplace();
    }
    void TearDown() override {
        capture_.reset();
        DDS_DomainParticipantFactory_delete_participant(DDS_DomainParticipantFactory_get_instance(),
                                                        participant_);
    }

    static void set_verbosity(KOLT_Config_LogVerbosity verbosity) {
        KOLT_Config_Logger_set_verbosity(KOLT_Config_Logger_get_instance(), verbosity);
    }
    static void only(KOLT_Config_LogCategory category, KOLT_Config_LogVerbosity verbosity) {
        set_verbosity(KOLT_CONFIG_LOG_VERBOSITY_SILENT);
        KOLT_Config_Logger_set_verbosity_by_category(KOLT_Config_Logger_get_instance(), category,
                                                     verbosity);
    }

    // Returns this test's own messages that arrived; the engine's other threads may log, too.
    std::vector<support::LogLine> marked() const { return capture_->lines("marked"); }

    EngineLog log_ = nullptr;

  private:
    DDS_DomainParticipant *participant_ = nullptr;
    std::optional<support::LogCapture> capture_;
};

struct Mapping {
    std::uint32_t engine_category;
    KOLT_Config_LogLevel level;
    KOLT_Config_LogCategory category;
};

constexpr Mapping kMappings[] = {
    {0x2, KOLT_CONFIG_LOG_LEVEL_ERROR, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION},
    {0x4, KOLT_CONFIG_LOG_LEVEL_WARNING, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION},
    {0x8, KOLT_CONFIG_LOG_LEVEL_STATUS_LOCAL, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION},
    {0x10, KOLT_CONFIG_LOG_LEVEL_STATUS_LOCAL, KOLT_CONFIG_LOG_CATEGORY_PLATFORM},
    {0x20, KOLT_CONFIG_LOG_LEVEL_STATUS_REMOTE, KOLT_CONFIG_LOG_CATEGORY_DISCOVERY},
    {0x40, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION},
    {0x80, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION},
    {0x100, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION},
    {0x200, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_PLATFORM},
    {0x400, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION},
    {0x800, KOLT_CONFIG_LOG_LEVEL_STATUS_REMOTE, KOLT_CONFIG_LOG_CATEGORY_DISCOVERY},
    {0x1000, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION},
    {0x2000, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_DISCOVERY},
    {0x4000, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_DATABASE},
    {0x8000, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION},
    {0x10000, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_DATABASE},
    {0x20000, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_DATABASE},
    {0x40000, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_PLATFORM},
};

TEST_F(EngineLogTest, EachCategoryHasItsLevelAndCategory) {
    std::size_t expected = 0;
    for (const auto &mapping : kMappings) {
        const auto this_level = static_cast<KOLT_Config_LogVerbosity>(1 << mapping.level);
        const auto other_levels = static_cast<KOLT_Config_LogVerbosity>(0x3F & ~this_level);
        only(mapping.category, this_level);
        log_(mapping.engine_category, "source.c", 1, "function", "marked %d\n", 1);
        ASSERT_EQ(marked().size(), ++expected) << std::hex << mapping.engine_category;
        EXPECT_EQ(marked().back().text, "marked 1");
        EXPECT_EQ(marked().back().level, mapping.level);
        EXPECT_FALSE(marked().back().is_security);

        only(mapping.category, other_levels);
        log_(mapping.engine_category, "source.c", 1, "function", "marked\n");
        set_verbosity(KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL);
        KOLT_Config_Logger_set_verbosity_by_category(
            KOLT_Config_Logger_get_instance(), mapping.category, KOLT_CONFIG_LOG_VERBOSITY_SILENT);
        log_(mapping.engine_category, "source.c", 1, "function", "marked\n");
        EXPECT_EQ(marked().size(), expected) << std::hex << mapping.engine_category;
    }
}

TEST_F(EngineLogTest, SecurityCodeIsTold) {
    only(KOLT_CONFIG_LOG_CATEGORY_SECURITY, KOLT_CONFIG_LOG_VERBOSITY_WARNING);
    log_(0x4, "src/core/ddsi/src/ddsi_security_omg.c", 1, "function", "marked\n");
    log_(0x4, "src/core/ddsi/src/q_receive.c", 1, "function", "marked\n");
    ASSERT_EQ(marked().size(), 1U);
    EXPECT_TRUE(marked().front().is_security);
}

TEST_F(EngineLogTest, FragmentsBecomeOneLineOnTheLoggingThread) {
    set_verbosity(KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL);
    KOLT_Config_Logger_set_print_format(KOLT_Config_Logger_get_instance(),
                                        KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT);
    std::thread::id thread;
    std::thread([&] {
        thread = std::this_thread::get_id();
        log_(0x4, "source.c", 1, "function", "marked ");
        log_(0x4, "source.c", 2, "function", "in two\n");
    }).join();
    ASSERT_EQ(marked().size(), 1U);
    EXPECT_EQ(marked().front().text, "WARNING engine function: marked in two");
    EXPECT_EQ(marked().front().thread, thread);
}

// The engine's mask says what the engine bothers to produce.
TEST_F(EngineLogTest, WhatNoVerbosityWantsIsNotProduced) {
    const auto *const *mask =
        static_cast<const std::uint32_t *const *>(dlsym(RTLD_DEFAULT, "dds_log_mask"));
    ASSERT_NE(mask, nullptr);
    set_verbosity(KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    EXPECT_EQ(**mask, 0x1U);
    set_verbosity(KOLT_CONFIG_LOG_VERBOSITY_ERROR);
    EXPECT_EQ(**mask, 0x3U);
    set_verbosity(KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL);
    EXPECT_EQ(**mask, 0x7ffffU);
    only(KOLT_CONFIG_LOG_CATEGORY_DATABASE, KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL);
    EXPECT_EQ(**mask, 0x1U | 0x4000U | 0x10000U | 0x20000U);
}

// A device may change verbosities although the engine holds its sink lock while it logs.
TEST_F(EngineLogTest, VerbosityMayChangeInsideADevice) {
    set_verbosity(KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL);
    KOLT_Config_LoggerDevice silencer{};
    silencer.write = [](KOLT_Config_LoggerDevice *, const KOLT_Config_LogMessage *) {
        set_verbosity(KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    };
    KOLT_Config_Logger_set_output_device(KOLT_Config_Logger_get_instance(), &silencer);
    log_(0x4, "source.c", 1, "function", "marked\n");
    EXPECT_EQ(KOLT_Config_Logger_get_verbosity(KOLT_Config_Logger_get_instance()),
              KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    KOLT_Config_Logger_set_output_device(KOLT_Config_Logger_get_instance(), nullptr);
}

}  // namespace
