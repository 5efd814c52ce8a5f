// SPDX-License-Identifier: Apache-2.0
// Remote commands: their effects, the answers to them, and commands that get none.
#include <gtest/gtest.h>
#include <kolt/config_logger.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "support/logger/log_app.h"
#include "support/logger/logger.h"
#include "support/logger/monitor.h"
#include "support/platform/process.h"

namespace {

using support::Ids;
using support::LogApp;
using support::Logger;
using support::LoggerOptions;
using support::Monitor;
using support::ResponseSample;
using support::StateSample;
using CategoryAndVerbosity = VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity;

// A logger in this process and a tool that has found it.
class RemoteCommands : public ::testing::Test {
  protected:
    void meet(const LoggerOptions &options) {
        logger_ = std::make_unique<Logger>(options);
        ASSERT_NE(logger_->get(), nullptr);
        monitor_ =
            std::make_unique<Monitor>(Monitor::Settings{.domain = options.domain, .log = false});
        ASSERT_TRUE(monitor_->wait_for_states(1));
        target_ = monitor_->last_state().sender;
        ASSERT_TRUE(monitor_->handshake(target_, options.filter_level));
    }

    // Sends and waits for the one response.
    ResponseSample ask(const std::function<void(VUR_DL_ADMIN_Command &)> &fill) {
        const std::size_t before = monitor_->responses().size();
        const int invocation = ++invocation_;
        EXPECT_TRUE(monitor_->request(target_, invocation, fill));
        EXPECT_TRUE(monitor_->wait_for_responses(before + 1));
        EXPECT_EQ(monitor_->responses().size(), before + 1);
        const ResponseSample response = monitor_->responses().back();
        EXPECT_EQ(response.invocation, invocation);
        EXPECT_EQ(response.responder, target_);
        EXPECT_EQ(response.originator, monitor_->ids());
        return response;
    }
    static std::function<void(VUR_DL_ADMIN_Command &)> level(int value) {
        return [value](VUR_DL_ADMIN_Command &command) {
            command._d = VUR_DL_SET_LOG_LEVEL;
            command._u.filterLevel = value;
        };
    }
    static std::function<void(VUR_DL_ADMIN_Command &)> verbosities(
        const std::vector<CategoryAndVerbosity> &entries) {
        return [entries](VUR_DL_ADMIN_Command &command) {
            command._d = VUR_DL_SET_VUR_LOGGER_LEVEL;
            ASSERT_TRUE(VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_from_array(
                &command._u.categoryAndVerbosity, entries.data(),
                static_cast<DDS_Long>(entries.size())));
        };
    }
    static std::function<void(VUR_DL_ADMIN_Command &)> format(int value) {
        return [value](VUR_DL_ADMIN_Command &command) {
            command._d = VUR_DL_SET_VUR_LOGGER_PRINT_FORMAT;
            command._u.printFormat = static_cast<VUR_DL_ADMIN_VURLoggerPrintFormat>(value);
        };
    }
    std::size_t states() {
        const std::vector<StateSample> &all = monitor_->states();
        return static_cast<std::size_t>(
            std::count_if(all.begin(), all.end(), [](const StateSample &s) { return s.valid; }));
    }

    std::unique_ptr<Logger> logger_;
    std::unique_ptr<Monitor> monitor_;
    Ids target_;
    int invocation_ = 0;
};

TEST_F(RemoteCommands, TheFilterLevelIsSetAnsweredAndPublished) {
    ASSERT_NO_FATAL_FAILURE(meet({.domain = 85}));
    const ResponseSample response = ask(level(800));
    EXPECT_EQ(response.result, VUR_DL_COMMAND_RESULT_OK);
    EXPECT_EQ(response.message, "");
    EXPECT_EQ(VUR_DL_DistLogger_getFilterLevel(logger_->get()), 800);
    EXPECT_TRUE(
        monitor_->wait_for_state([](const StateSample &s) { return s.filter_level == 800; }));
}

TEST_F(RemoteCommands, AnyLevelOfZeroOrMoreIsAccepted) {
    ASSERT_NO_FATAL_FAILURE(meet({.domain = 86}));
    for (const int value : {0, 1, 601, 2147483647}) {
        EXPECT_EQ(ask(level(value)).result, VUR_DL_COMMAND_RESULT_OK) << value;
        EXPECT_EQ(VUR_DL_DistLogger_getFilterLevel(logger_->get()), value);
    }
}

TEST_F(RemoteCommands, ANegativeLevelIsAnError) {
    ASSERT_NO_FATAL_FAILURE(meet({.domain = 87}));
    const std::string text = "DistLogger: Trouble setting new Filter Level.";
    support::StdoutCapture capture;
    const ResponseSample response = ask(level(-1));
    EXPECT_EQ(response.result, VUR_DL_COMMAND_RESULT_ERROR);
    EXPECT_EQ(response.message, text);
    EXPECT_EQ(VUR_DL_DistLogger_getFilterLevel(logger_->get()), 600);
    EXPECT_EQ(capture.count("DL Warning: VUR_DL_DistLogger_processCommand: " + text), 1)
        << capture.text();
}

TEST_F(RemoteCommands, TheLevelThatIsInForceIsNoNews) {
    ASSERT_NO_FATAL_FAILURE(meet({.domain = 88}));
    const std::size_t before = states();
    EXPECT_EQ(ask(level(600)).result, VUR_DL_COMMAND_RESULT_OK);
    EXPECT_EQ(ask(level(601)).result, VUR_DL_COMMAND_RESULT_OK);
    ASSERT_TRUE(
        monitor_->wait_for_state([](const StateSample &s) { return s.filter_level == 601; }));
    EXPECT_EQ(states(), before + 1);
}

TEST_F(RemoteCommands, VerbositiesAreSetInTheOrderGiven) {
    ASSERT_NO_FATAL_FAILURE(meet({.domain = 89}));
    const std::size_t before = states();
    const ResponseSample response = ask(verbosities(
        {{VUR_DL_KOLT_CONFIG_LOG_CATEGORY_ENTITIES, VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL},
         {VUR_DL_KOLT_CONFIG_LOG_CATEGORY_ENTITIES, VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_SILENT}}));
    EXPECT_EQ(response.result, VUR_DL_COMMAND_RESULT_OK);
    EXPECT_EQ(KOLT_Config_Logger_get_verbosity_by_category(KOLT_Config_Logger_get_instance(),
                                                           KOLT_CONFIG_LOG_CATEGORY_ENTITIES),
              KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    // One State for each element, the last one as it is now.
    ASSERT_TRUE(monitor_->wait_for_state([](const StateSample &s) {
        return s.valid && s.verbosities[3].verbosity == VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_SILENT;
    }));
    EXPECT_EQ(states(), before + 2);
}

TEST_F(RemoteCommands, AllFiveCategoriesFitIntoOneRequest) {
    ASSERT_NO_FATAL_FAILURE(meet({.domain = 90}));
    std::vector<CategoryAndVerbosity> entries;
    for (int i = 0; i < 5; ++i) {
        entries.push_back({static_cast<VUR_DL_ADMIN_VURLoggerCategory>(i),
                           static_cast<VUR_DL_ADMIN_VURLoggerVerbosity>(i)});
    }
    EXPECT_EQ(ask(verbosities(entries)).result, VUR_DL_COMMAND_RESULT_OK);
    const KOLT_Config_LogVerbosity expected[] = {
        KOLT_CONFIG_LOG_VERBOSITY_SILENT, KOLT_CONFIG_LOG_VERBOSITY_ERROR,
        KOLT_CONFIG_LOG_VERBOSITY_WARNING, KOLT_CONFIG_LOG_VERBOSITY_STATUS_LOCAL,
        KOLT_CONFIG_LOG_VERBOSITY_STATUS_REMOTE};
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(KOLT_Config_Logger_get_verbosity_by_category(
                      KOLT_Config_Logger_get_instance(), static_cast<KOLT_Config_LogCategory>(i)),
                  expected[i])
            << i;
    }
}

TEST_F(RemoteCommands, NoElementsChangeNothing) {
    ASSERT_NO_FATAL_FAILURE(meet({.domain = 91}));
    const std::size_t before = states();
    EXPECT_EQ(ask(verbosities({})).result, VUR_DL_COMMAND_RESULT_OK);
    EXPECT_EQ(ask(level(601)).result, VUR_DL_COMMAND_RESULT_OK);
    ASSERT_TRUE(
        monitor_->wait_for_state([](const StateSample &s) { return s.filter_level == 601; }));
    EXPECT_EQ(states(), before + 1);
}

TEST_F(RemoteCommands, ACategoryThatDoesNotExistCountsAsApi) {
    ASSERT_NO_FATAL_FAILURE(meet({.domain = 92}));
    EXPECT_EQ(ask(verbosities({{static_cast<VUR_DL_ADMIN_VURLoggerCategory>(9),
                                static_cast<VUR_DL_ADMIN_VURLoggerVerbosity>(9)}}))
                  .result,
              VUR_DL_COMMAND_RESULT_OK);
    EXPECT_EQ(KOLT_Config_Logger_get_verbosity_by_category(KOLT_Config_Logger_get_instance(),
                                                           KOLT_CONFIG_LOG_CATEGORY_API),
              KOLT_CONFIG_LOG_VERBOSITY_WARNING);
}

TEST_F(RemoteCommands, EveryPrintFormatCanBeSet) {
    ASSERT_NO_FATAL_FAILURE(meet({.domain = 65}));
    const KOLT_Config_LogPrintFormat expected[] = {
        KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT, KOLT_CONFIG_LOG_PRINT_FORMAT_TIMESTAMPED,
        KOLT_CONFIG_LOG_PRINT_FORMAT_VERBOSE, KOLT_CONFIG_LOG_PRINT_FORMAT_VERBOSE_TIMESTAMPED,
        KOLT_CONFIG_LOG_PRINT_FORMAT_DEBUG,   KOLT_CONFIG_LOG_PRINT_FORMAT_MINIMAL,
        KOLT_CONFIG_LOG_PRINT_FORMAT_MAXIMAL};
    for (int i = 6; i >= 0; --i) {
        EXPECT_EQ(ask(format(i)).result, VUR_DL_COMMAND_RESULT_OK);
        EXPECT_EQ(KOLT_Config_Logger_get_print_format(KOLT_Config_Logger_get_instance()),
                  expected[i]);
        EXPECT_TRUE(monitor_->wait_for_state(
            [i](const StateSample &s) { return s.valid && s.format == i; }));
    }
    // One that does not exist is the default one.
    EXPECT_EQ(ask(format(2)).result, VUR_DL_COMMAND_RESULT_OK);
    EXPECT_EQ(ask(format(77)).result, VUR_DL_COMMAND_RESULT_OK);
    EXPECT_EQ(KOLT_Config_Logger_get_print_format(KOLT_Config_Logger_get_instance()),
              KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT);
}

TEST_F(RemoteCommands, ACommandThatDoesNotExistIsNotSupported) {
    ASSERT_NO_FATAL_FAILURE(meet({.domain = 66}));
    const ResponseSample response = ask([](VUR_DL_ADMIN_Command &command) {
        command._d = static_cast<VUR_DL_ADMIN_CommandKind>(7);
        command._u.filterLevel = 100;
    });
    EXPECT_EQ(response.result, VUR_DL_COMMAND_RESULT_NOT_SUPPORTED);
    EXPECT_EQ(response.message, "");
    EXPECT_EQ(VUR_DL_DistLogger_getFilterLevel(logger_->get()), 600);
}

TEST_F(RemoteCommands, RequestsForOthersAreNotTaken) {
    ASSERT_NO_FATAL_FAILURE(meet({.domain = 67}));
    for (const Ids &other : {Ids{target_.host, target_.app + 1}, Ids{target_.host + 1, target_.app},
                             Ids{target_.app, target_.host}, Ids{0, 0}}) {
        ASSERT_TRUE(monitor_->request(other, 1000, level(100)));
    }
    // Its own request, after them, is the only one that is answered.
    EXPECT_EQ(ask(level(700)).result, VUR_DL_COMMAND_RESULT_OK);
    EXPECT_EQ(VUR_DL_DistLogger_getFilterLevel(logger_->get()), 700);
}

TEST_F(RemoteCommands, RequestsAreAnsweredInTheirOrder) {
    ASSERT_NO_FATAL_FAILURE(meet({.domain = 68}));
    constexpr int kRequests = 8;
    for (int i = 1; i <= kRequests; ++i) {
        ASSERT_TRUE(monitor_->request(target_, i, level(100 + i)));
    }
    ASSERT_TRUE(monitor_->wait_for_responses(kRequests));
    const std::vector<ResponseSample> &responses = monitor_->responses();
    ASSERT_EQ(responses.size(), static_cast<std::size_t>(kRequests));
    for (int i = 1; i <= kRequests; ++i) {
        EXPECT_EQ(responses[static_cast<std::size_t>(i) - 1].invocation, i);
    }
    EXPECT_EQ(VUR_DL_DistLogger_getFilterLevel(logger_->get()), 100 + kRequests);
}

TEST_F(RemoteCommands, ADisabledLoggerDoesNotAnswer) {
    ASSERT_NO_FATAL_FAILURE(meet({.domain = 84}));
    VUR_DL_DistLogger_disable();
    ASSERT_TRUE(monitor_->wait_for_state(
        [](const StateSample &s) { return s.valid && s.state == VUR_DL_STATE_NONOPERATIONAL; }));
    ASSERT_TRUE(monitor_->request(target_, 1, level(100)));
    // A second logger of the domain that is asked after it answers.
    LogApp app;
    ASSERT_TRUE(app.run("option domain 84"));
    ASSERT_TRUE(app.run("create"));
    ASSERT_TRUE(monitor_->wait_for_state(
        [this](const StateSample &s) { return s.valid && s.sender != target_; }));
    ASSERT_TRUE(monitor_->handshake(monitor_->last_state().sender, 600));
    EXPECT_TRUE(monitor_->responses().empty());
    EXPECT_EQ(VUR_DL_DistLogger_getFilterLevel(logger_->get()), 600);
}

TEST(RemoteAdministration, WithoutItThereIsNobodyToAsk) {
    Monitor monitor({.domain = 118});
    const Logger logger({.domain = 118, .remote = false});
    ASSERT_NE(logger.get(), nullptr);
    logger.log(600, "here all the same");
    ASSERT_TRUE(monitor.wait_for_log(1));
    ASSERT_TRUE(monitor.wait_for_states(1));
    EXPECT_TRUE(monitor.nobody_takes_requests());
}

TEST(RemoteAdministration, ACommandReachesALoggerInAnotherProcess) {
    Monitor monitor({.domain = 119});
    LogApp app;
    ASSERT_TRUE(app.run("option domain 119"));
    ASSERT_TRUE(app.run("create"));
    ASSERT_TRUE(monitor.wait_for_states(1));
    const Ids target = monitor.last_state().sender;
    ASSERT_TRUE(monitor.handshake(target, 600));
    ASSERT_TRUE(app.run("log 800 - before"));
    ASSERT_TRUE(monitor.request(target, 1, [](VUR_DL_ADMIN_Command &command) {
        command._d = VUR_DL_SET_LOG_LEVEL;
        command._u.filterLevel = 800;
    }));
    ASSERT_TRUE(monitor.wait_for_responses(1));
    EXPECT_EQ(monitor.responses()[0].result, VUR_DL_COMMAND_RESULT_OK);
    ASSERT_TRUE(app.run("log 800 - after"));
    ASSERT_TRUE(monitor.wait_for_log(1));
    EXPECT_EQ(monitor.log()[0].message, "after");
    EXPECT_EQ(monitor.log().size(), 1U);
}

}  // namespace
