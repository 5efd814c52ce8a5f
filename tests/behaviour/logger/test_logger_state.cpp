// SPDX-License-Identifier: Apache-2.0
// The State that a logger publishes about itself.
#include <gtest/gtest.h>
#include <kolt/config_logger.h>
#include <vur_dl/DDSEntities.h>

#include <algorithm>
#include <string>

#include "support/logger/log_app.h"
#include "support/logger/logger.h"
#include "support/logger/monitor.h"
#include "support/platform/process.h"

namespace {

using support::LogApp;
using support::Logger;
using support::Monitor;
using support::StateSample;

Monitor::Settings state_of(int domain) {
    return Monitor::Settings{.domain = domain, .log = false, .commands = false};
}

std::size_t valid_states(Monitor &monitor) {
    const std::vector<StateSample> &all = monitor.states();
    return static_cast<std::size_t>(
        std::count_if(all.begin(), all.end(), [](const StateSample &s) { return s.valid; }));
}

TEST(LoggerState, TellsEverythingAboutTheLogger) {
    KOLT_Config_Logger *middleware = KOLT_Config_Logger_get_instance();
    KOLT_Config_Logger_set_verbosity_by_category(middleware, KOLT_CONFIG_LOG_CATEGORY_PLATFORM,
                                                 KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL);
    KOLT_Config_Logger_set_verbosity_by_category(middleware, KOLT_CONFIG_LOG_CATEGORY_DATABASE,
                                                 KOLT_CONFIG_LOG_VERBOSITY_WARNING);
    KOLT_Config_Logger_set_verbosity_by_category(middleware, KOLT_CONFIG_LOG_CATEGORY_API,
                                                 KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    ASSERT_TRUE(KOLT_Config_Logger_set_print_format(
        middleware, KOLT_CONFIG_LOG_PRINT_FORMAT_VERBOSE_TIMESTAMPED));
    Monitor monitor(state_of(93));
    const Logger logger({.domain = 93, .filter_level = 450, .forward = true, .kind = "a kind"});
    ASSERT_NE(logger.get(), nullptr);
    // While the logger is being created the middleware's logger is silenced; that passes.
    ASSERT_TRUE(monitor.wait_for_state([](const StateSample &s) {
        return s.state == VUR_DL_STATE_OPERATIONAL &&
               s.verbosities[0].verbosity == VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL;
    }));
    const StateSample state = monitor.last_state();
    EXPECT_EQ(state.domain, 93);
    EXPECT_EQ(state.kind, "a kind");
    EXPECT_EQ(state.filter_level, 450);
    EXPECT_EQ(state.format, VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_VERBOSE_TIMESTAMPED);
    const VUR_DL_ADMIN_VURLoggerVerbosity expected[] = {
        VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL, VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_ERROR,
        VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_WARNING, VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_ERROR,
        VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_SILENT};
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(state.verbosities[i].category, static_cast<int>(i));
        EXPECT_EQ(state.verbosities[i].verbosity, expected[i]) << i;
    }
}

// A reader that was there before the logger gets the first sample while the logger is being
// created.
TEST(LoggerState, AReaderThatIsThereFirstSeesOneInstanceFromTheBeginning) {
    Monitor monitor(state_of(64));
    const Logger logger({.domain = 64, .kind = "early"});
    ASSERT_NE(logger.get(), nullptr);
    ASSERT_TRUE(monitor.wait_for_state(
        [](const StateSample &s) { return s.state == VUR_DL_STATE_OPERATIONAL; }));
    const support::Ids sender = monitor.last_state().sender;
    EXPECT_NE(sender, (support::Ids{0, 0}));
    for (const StateSample &state : monitor.states()) {
        EXPECT_EQ(state.sender, sender);
        EXPECT_EQ(state.domain, 64);
        EXPECT_EQ(state.kind, "early");
    }
}

TEST(LoggerState, WithoutAReaderNothingIsWrittenAndEveryWriteSucceeds) {
    const Logger logger({.domain = 94});
    ASSERT_NE(logger.get(), nullptr);
    EXPECT_EQ(VUR_DL_DistLogger_writeState(logger.get()), 1);
    EXPECT_EQ(VUR_DL_DistLogger_setFilterLevel(logger.get(), 700), 0);
    EXPECT_EQ(VUR_DL_DDSEntities_hasInitialStateBeenSent(nullptr), 0);
}

TEST(LoggerState, TheFirstSampleShowsWhatChangedBefore) {
    const Logger logger({.domain = 95, .filter_level = 600});
    ASSERT_NE(logger.get(), nullptr);
    EXPECT_EQ(VUR_DL_DistLogger_setFilterLevel(logger.get(), 250), 0);
    Monitor monitor(state_of(95));
    ASSERT_TRUE(monitor.wait_for_states(1));
    EXPECT_EQ(monitor.last_state().filter_level, 250);
    EXPECT_EQ(VUR_DL_DDSEntities_hasInitialStateBeenSent(nullptr), 1);
}

TEST(LoggerState, ASecondReaderGetsTheSameSampleAndCausesNoOther) {
    LogApp app;
    ASSERT_TRUE(app.run("option domain 96"));
    ASSERT_TRUE(app.run("option filter 350"));
    ASSERT_TRUE(app.run("create"));
    Monitor first(state_of(96));
    ASSERT_TRUE(first.wait_for_states(1));
    Monitor second(state_of(96));
    ASSERT_TRUE(second.wait_for_states(1));
    EXPECT_EQ(second.last_state().filter_level, 350);
    // The next State is the one that says good-bye: nothing was written in between.
    ASSERT_TRUE(app.run("finalize"));
    ASSERT_TRUE(first.wait_for_state(
        [](const StateSample &s) { return s.valid && s.state == VUR_DL_STATE_NONOPERATIONAL; }));
    EXPECT_EQ(valid_states(first), 2U);
}

TEST(LoggerState, ALoggerThatIsFinalisedSaysSoAndItsInstanceGoes) {
    Monitor monitor(state_of(97));
    LogApp app;
    ASSERT_TRUE(app.run("option domain 97"));
    ASSERT_TRUE(app.run("create"));
    ASSERT_TRUE(monitor.wait_for_states(1));
    ASSERT_TRUE(app.run("finalize"));
    ASSERT_TRUE(monitor.wait_for_state(
        [](const StateSample &s) { return s.valid && s.state == VUR_DL_STATE_NONOPERATIONAL; }));
    const support::Ids sender = monitor.last_state().sender;
    ASSERT_TRUE(monitor.wait_for_state([&](const StateSample &s) {
        return (s.instance_state & DDS_NOT_ALIVE_INSTANCE_STATE) != 0 && s.sender == sender;
    }));
}

TEST(LoggerState, ChangesOfTheFilterLevelArePublished) {
    Monitor monitor(state_of(98));
    const Logger logger({.domain = 98});
    ASSERT_NE(logger.get(), nullptr);
    ASSERT_TRUE(monitor.wait_for_states(1));
    EXPECT_EQ(VUR_DL_DistLogger_setFilterLevel(logger.get(), 700), 0);
    ASSERT_TRUE(monitor.wait_for_state([](const StateSample &s) { return s.filter_level == 700; }));
    EXPECT_EQ(VUR_DL_DistLogger_getFilterLevel(logger.get()), 700);
    const std::size_t count = valid_states(monitor);
    // Neither a refused nor an equal level is news.
    EXPECT_EQ(VUR_DL_DistLogger_setFilterLevel(logger.get(), -1), 1);
    EXPECT_EQ(VUR_DL_DistLogger_setFilterLevel(logger.get(), 700), 0);
    EXPECT_EQ(VUR_DL_DistLogger_getFilterLevel(logger.get()), 700);
    EXPECT_EQ(VUR_DL_DistLogger_setFilterLevel(logger.get(), 0), 0);
    ASSERT_TRUE(monitor.wait_for_state(
        [](const StateSample &s) { return s.valid && s.filter_level == 0; }));
    EXPECT_EQ(valid_states(monitor), count + 1);
}

TEST(LoggerState, ChangesOfTheMiddlewaresLoggerArePublished) {
    Monitor monitor(state_of(99));
    const Logger logger({.domain = 99});
    ASSERT_NE(logger.get(), nullptr);
    ASSERT_TRUE(monitor.wait_for_states(1));
    EXPECT_EQ(VUR_DL_DistLogger_setVURLoggerVerbosityByCategory(
                  logger.get(), KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION,
                  KOLT_CONFIG_LOG_VERBOSITY_STATUS_REMOTE),
              1);
    ASSERT_TRUE(monitor.wait_for_state([](const StateSample &s) {
        return s.verbosities[1].verbosity == VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_REMOTE;
    }));
    EXPECT_EQ(VUR_DL_DistLogger_setVURLoggerPrintFormat(logger.get(),
                                                        KOLT_CONFIG_LOG_PRINT_FORMAT_MINIMAL),
              1);
    ASSERT_TRUE(monitor.wait_for_state([](const StateSample &s) {
        return s.valid && s.format == VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MINIMAL;
    }));
    // A format that does not exist is refused, and the State keeps telling the truth.
    support::StdoutCapture capture;
    EXPECT_EQ(VUR_DL_DistLogger_setVURLoggerPrintFormat(logger.get(),
                                                        static_cast<KOLT_Config_LogPrintFormat>(0)),
              0);
    EXPECT_EQ(capture.count(
                  "DL Error: VUR_DL_DistLogger_setVURLoggerPrintFormat: Unable to set PrintFormat"),
              1)
        << capture.text();
    EXPECT_EQ(monitor.last_state().format, VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MINIMAL);
}

TEST(LoggerState, ALongKindIsCutToItsBound) {
    Monitor monitor(state_of(69));
    const std::string kind(300, 'k');
    const Logger logger({.domain = 69, .kind = kind});
    ASSERT_NE(logger.get(), nullptr);
    ASSERT_TRUE(monitor.wait_for_states(1));
    EXPECT_EQ(monitor.last_state().kind, kind.substr(0, 256));
}

TEST(LoggerState, NullLoggersAreRefused) {
    support::StdoutCapture capture;
    EXPECT_EQ(VUR_DL_DistLogger_writeState(nullptr), 0);
    EXPECT_EQ(capture.text(),
              "DL Error: VUR_DL_DistLogger_writeState: could not get DL entities\n");
}

}  // namespace
