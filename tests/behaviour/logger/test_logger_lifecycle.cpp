// SPDX-License-Identifier: Apache-2.0
// The logger's life: creation, options, accessors, finalisation, and creation again.
#include <gtest/gtest.h>
#include <kolt/config_logger.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "support/logger/logger.h"
#include "support/logger/monitor.h"
#include "support/platform/process.h"

namespace {

using support::Logger;
using support::LoggerOptions;
using support::Monitor;
using support::StdoutCapture;

LoggerOptions in_domain(int domain) {
    LoggerOptions options;
    options.domain = domain;
    return options;
}

TEST(LoggerLifecycle, NothingExistsBeforeCreationAndAfterFinalisation) {
    EXPECT_EQ(VUR_DL_DistLogger_isDistLoggerRunning(), 0);
    EXPECT_EQ(VUR_DL_DistLogger_getMessageQueue(), nullptr);
    EXPECT_EQ(VUR_DL_DistLogger_getLogMessageWriteThread(), nullptr);
    EXPECT_EQ(VUR_DL_DistLogger_getOptions(), nullptr);
    {
        const Logger logger(in_domain(60));
        ASSERT_NE(logger.get(), nullptr);
        EXPECT_NE(VUR_DL_DistLogger_isDistLoggerRunning(), 0);
        EXPECT_NE(VUR_DL_DistLogger_getMessageQueue(), nullptr);
        EXPECT_NE(VUR_DL_DistLogger_getLogMessageWriteThread(), nullptr);
        EXPECT_NE(VUR_DL_DistLogger_getOptions(), nullptr);
    }
    EXPECT_EQ(VUR_DL_DistLogger_isDistLoggerRunning(), 0);
    EXPECT_EQ(VUR_DL_DistLogger_getMessageQueue(), nullptr);
    EXPECT_EQ(VUR_DL_DistLogger_getLogMessageWriteThread(), nullptr);
    EXPECT_EQ(VUR_DL_DistLogger_getOptions(), nullptr);
}

TEST(LoggerLifecycle, TheSecondCallReturnsTheSameLogger) {
    const Logger logger(in_domain(60));
    ASSERT_NE(logger.get(), nullptr);
    VUR_DL_MessageQueue *queue = VUR_DL_DistLogger_getMessageQueue();
    EXPECT_EQ(VUR_DL_DistLogger_getInstance(), logger.get());
    EXPECT_EQ(VUR_DL_DistLogger_getMessageQueue(), queue);
}

TEST(LoggerLifecycle, ACopyOfTheOptionsIsInForce) {
    VUR_DL_Options *options = VUR_DL_Options_createDefault();
    ASSERT_NE(options, nullptr);
    VUR_DL_Options_setDomainId(options, 60);
    VUR_DL_Options_setFilterLevel(options, 350);
    VUR_DL_Options_setQueueSize(options, 17);
    VUR_DL_Options_setApplicationKind(options, "first");
    ASSERT_EQ(VUR_DL_DistLogger_setOptions(options), 1);
    // Later changes of the caller's own record have no effect.
    VUR_DL_Options_setApplicationKind(options, "second");
    VUR_DL_Options_setFilterLevel(options, 800);
    VUR_DL_Options_delete(options);

    VUR_DL_DistLogger *logger = VUR_DL_DistLogger_getInstance();
    ASSERT_NE(logger, nullptr);
    EXPECT_EQ(VUR_DL_DistLogger_getFilterLevel(logger), 350);
    EXPECT_STREQ(VUR_DL_Options_getApplicationKind(VUR_DL_DistLogger_getOptions()), "first");
    EXPECT_EQ(VUR_DL_MessageQueue_getMessageQueueProperty(VUR_DL_DistLogger_getMessageQueue()), 17);
    EXPECT_EQ(VUR_DL_DistLogger_finalizeInstance(), 0);
}

TEST(LoggerLifecycle, OptionsAreRefusedWhileTheLoggerExists) {
    Logger logger(in_domain(60));
    ASSERT_NE(logger.get(), nullptr);
    const std::string line =
        "DL Warning: VUR_DL_DistLogger_setOptions: Distributed logger instance already created ";
    {
        StdoutCapture capture;
        EXPECT_FALSE(support::store_options(in_domain(61)));
        EXPECT_EQ(VUR_DL_DistLogger_setOptions(nullptr), 0);
        EXPECT_EQ(capture.count(line), 2);
    }
    EXPECT_EQ(VUR_DL_DistLogger_finalizeInstance(), 0);
    EXPECT_TRUE(support::store_options(in_domain(61)));
    EXPECT_EQ(VUR_DL_DistLogger_setOptions(nullptr), 1);
}

TEST(LoggerLifecycle, NullOptionsMeanDefaults) {
    ASSERT_TRUE(support::store_options(in_domain(60)));
    ASSERT_EQ(VUR_DL_DistLogger_setOptions(nullptr), 1);
    EXPECT_EQ(VUR_DL_DistLogger_getOptions(), nullptr);
    StdoutCapture capture;
    VUR_DL_DistLogger *logger = VUR_DL_DistLogger_getInstance();
    ASSERT_NE(logger, nullptr);
    EXPECT_EQ(
        capture.count("DL Info: VUR_DL_DistLogger_createInstance: Creating Distributed Logger "
                      "with default options"),
        1);
    EXPECT_EQ(VUR_DL_DistLogger_getOptions(), nullptr);
    EXPECT_EQ(VUR_DL_DistLogger_getFilterLevel(logger), 600);
    EXPECT_EQ(VUR_DL_MessageQueue_getMessageQueueProperty(VUR_DL_DistLogger_getMessageQueue()),
              128);
    EXPECT_EQ(VUR_DL_DistLogger_finalizeInstance(), 0);
}

TEST(LoggerLifecycle, FinalisingNothingSucceedsAndIsSilent) {
    StdoutCapture capture;
    EXPECT_EQ(VUR_DL_DistLogger_finalizeInstance(), 0);
    {
        const Logger logger(in_domain(60));
        ASSERT_NE(logger.get(), nullptr);
        EXPECT_EQ(VUR_DL_DistLogger_finalizeInstance(), 0);
        EXPECT_EQ(VUR_DL_DistLogger_finalizeInstance(), 0);
    }
    EXPECT_EQ(capture.text(), "");
}

TEST(LoggerLifecycle, StoredOptionsOutliveAFinalisationWithoutLogger) {
    ASSERT_TRUE(support::store_options(in_domain(60)));
    EXPECT_EQ(VUR_DL_DistLogger_finalizeInstance(), 0);
    EXPECT_NE(VUR_DL_DistLogger_getOptions(), nullptr);
    EXPECT_EQ(VUR_DL_DistLogger_setOptions(nullptr), 1);
}

TEST(LoggerLifecycle, NoLoggerIsHandedOutWhileOneIsBeingFinalised) {
    const std::string line =
        "DL Error: VUR_DistLogger_getInstance: Unable to create DistLogger singleton while it is "
        "beingfinalized";
    StdoutCapture capture;
    gVUR_DL_DistLogger_beingDestroyed = 1;
    EXPECT_EQ(VUR_DL_DistLogger_getInstance(), nullptr);
    EXPECT_EQ(VUR_DL_DistLogger_isDistLoggerRunning(), 0);
    gVUR_DL_DistLogger_beingDestroyed = 0;
    EXPECT_EQ(capture.count(line), 1);
}

TEST(LoggerLifecycle, AFinalisedLoggerCanBeCreatedAgainAndNumbersFromOne) {
    Monitor monitor({.domain = 62, .state = false, .commands = false});
    for (int round = 1; round <= 3; ++round) {
        const Logger logger(in_domain(62));
        ASSERT_NE(logger.get(), nullptr);
        logger.log(600, "round " + std::to_string(round));
        ASSERT_TRUE(monitor.wait_for_log(static_cast<std::size_t>(round)));
    }
    const std::vector<support::LogSample> &log = monitor.log();
    ASSERT_EQ(log.size(), 3U);
    for (std::size_t i = 0; i < log.size(); ++i) {
        EXPECT_EQ(log[i].id, 1) << i;
        EXPECT_EQ(log[i].message, "round " + std::to_string(i + 1));
    }
}

TEST(LoggerLifecycle, CallsForAFinalisedLoggerDoNothing) {
    Logger logger(in_domain(60));
    ASSERT_NE(logger.get(), nullptr);
    EXPECT_EQ(VUR_DL_DistLogger_finalizeInstance(), 0);
    StdoutCapture capture;
    const VUR_DL_DistLogger_MessageParams params{600, "late", "", {1, 0}};
    VUR_DL_DistLogger_logMessageWithParams(logger.get(), &params);
    VUR_DL_DistLogger_info(logger.get(), "late");
    EXPECT_EQ(capture.text(), "");
}

// A domain that does not exist: the participant cannot be created.
TEST(LoggerLifecycle, AFailedCreationSaysWhyAndLeavesNothingBehind) {
    KOLT_Config_Logger *middleware = KOLT_Config_Logger_get_instance();
    KOLT_Config_Logger_set_verbosity_by_category(middleware, KOLT_CONFIG_LOG_CATEGORY_API,
                                                 KOLT_CONFIG_LOG_VERBOSITY_WARNING);
    KOLT_Config_Logger_set_verbosity_by_category(middleware, KOLT_CONFIG_LOG_CATEGORY_DISCOVERY,
                                                 KOLT_CONFIG_LOG_VERBOSITY_STATUS_LOCAL);
    ASSERT_TRUE(support::store_options(in_domain(5000)));
    {
        StdoutCapture capture;
        EXPECT_EQ(VUR_DL_DistLogger_getInstance(), nullptr);
        EXPECT_EQ(capture.text(),
                  "DL Error: VUR_DL_DDSEntities_create: Unable to create Domain Participant\n"
                  "DL Error: VUR_DL_DistLogger_createInstance: Unable to create DDSEntities\n"
                  "DL Error: VUR_DistLogger_getInstance: Unable to create DistLogger singleton!\n"
                  "ERROR kolt DDS_DomainParticipantFactory_create_participant: the domain id 5000 "
                  "is out of range: it must be 0 to 230 (DDS_RETCODE_BAD_PARAMETER)\n");
    }
    EXPECT_EQ(VUR_DL_DistLogger_isDistLoggerRunning(), 0);
    EXPECT_EQ(VUR_DL_DistLogger_getMessageQueue(), nullptr);
    EXPECT_EQ(
        KOLT_Config_Logger_get_verbosity_by_category(middleware, KOLT_CONFIG_LOG_CATEGORY_API),
        KOLT_CONFIG_LOG_VERBOSITY_WARNING);
    EXPECT_EQ(KOLT_Config_Logger_get_verbosity_by_category(middleware,
                                                           KOLT_CONFIG_LOG_CATEGORY_DISCOVERY),
              KOLT_CONFIG_LOG_VERBOSITY_STATUS_LOCAL);
    EXPECT_EQ(
        KOLT_Config_Logger_get_verbosity_by_category(middleware, KOLT_CONFIG_LOG_CATEGORY_PLATFORM),
        KOLT_CONFIG_LOG_VERBOSITY_ERROR);
    // The next attempt starts afresh.
    const Logger logger(in_domain(60));
    EXPECT_NE(logger.get(), nullptr);
}

TEST(LoggerLifecycle, VerbositiesAreWhatTheyWereAfterCreation) {
    KOLT_Config_Logger *middleware = KOLT_Config_Logger_get_instance();
    KOLT_Config_Logger_set_verbosity_by_category(middleware, KOLT_CONFIG_LOG_CATEGORY_SECURITY,
                                                 KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    KOLT_Config_Logger_set_verbosity_by_category(middleware, KOLT_CONFIG_LOG_CATEGORY_ENTITIES,
                                                 KOLT_CONFIG_LOG_VERBOSITY_STATUS_REMOTE);
    const Logger logger(in_domain(60));
    ASSERT_NE(logger.get(), nullptr);
    EXPECT_EQ(
        KOLT_Config_Logger_get_verbosity_by_category(middleware, KOLT_CONFIG_LOG_CATEGORY_SECURITY),
        KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    EXPECT_EQ(
        KOLT_Config_Logger_get_verbosity_by_category(middleware, KOLT_CONFIG_LOG_CATEGORY_ENTITIES),
        KOLT_CONFIG_LOG_VERBOSITY_STATUS_REMOTE);
}

TEST(LoggerLifecycle, AParticipantHandedInIsUsedAndSurvives) {
    Monitor monitor({.domain = 63});
    LoggerOptions options = in_domain(99);  // of no account: the participant's domain counts
    options.participant = monitor.participant();
    {
        const Logger logger(options);
        ASSERT_NE(logger.get(), nullptr);
        logger.log(600, "through your own participant");
        ASSERT_TRUE(monitor.wait_for_log(1));
        ASSERT_TRUE(monitor.wait_for_state(
            [](const auto &s) { return s.valid && s.state == VUR_DL_STATE_OPERATIONAL; }));
    }
    const support::StateSample state = monitor.last_state();
    EXPECT_EQ(state.sender, monitor.ids());
    EXPECT_EQ(state.domain, 63);
    EXPECT_EQ(monitor.log().front().sender, monitor.ids());
    // Topics that were there before are not the logger's to delete.
    EXPECT_NE(
        DDS_DomainParticipant_lookup_topicdescription(monitor.participant(), VUR_DL_LOG_TOPIC_NAME),
        nullptr);
    // And it can be used for another round.
    const Logger again(options);
    ASSERT_NE(again.get(), nullptr);
    again.log(600, "again");
    EXPECT_TRUE(monitor.wait_for_log(2));
}

TEST(LoggerLifecycle, TopicsOfALoggerAreGoneFromABorrowedParticipant) {
    DDS_DomainParticipantFactory *factory = DDS_DomainParticipantFactory_get_instance();
    DDS_DomainParticipant *participant = DDS_DomainParticipantFactory_create_participant(
        factory, 60, nullptr, nullptr, DDS_STATUS_MASK_NONE);
    ASSERT_NE(participant, nullptr);
    LoggerOptions options = in_domain(60);
    options.participant = participant;
    {
        const Logger logger(options);
        ASSERT_NE(logger.get(), nullptr);
        EXPECT_NE(DDS_DomainParticipant_lookup_topicdescription(participant, VUR_DL_LOG_TOPIC_NAME),
                  nullptr);
        EXPECT_NE(DDS_DomainParticipant_lookup_topicdescription(
                      participant, "CommandRequestContentFilteredTopic"),
                  nullptr);
    }
    for (const char *name :
         {VUR_DL_LOG_TOPIC_NAME, VUR_DL_STATE_TOPIC_NAME, VUR_DL_COMMAND_REQUEST_TOPIC_NAME,
          VUR_DL_COMMAND_RESPONSE_TOPIC_NAME, "CommandRequestContentFilteredTopic"}) {
        EXPECT_EQ(DDS_DomainParticipant_lookup_topicdescription(participant, name), nullptr)
            << name;
    }
    // Nothing is left in it.
    EXPECT_EQ(DDS_DomainParticipantFactory_delete_participant(factory, participant),
              DDS_RETCODE_OK);
}

TEST(LoggerLifecycle, MessagesThatAreStillQueuedAtTheEndAreDiscarded) {
    LoggerOptions options = in_domain(60);
    options.queue_size = 50000;
    const Logger logger(options);
    ASSERT_NE(logger.get(), nullptr);
    for (int i = 0; i < 50000; ++i) {
        logger.log(600, std::string(200, 'x'));
    }
    StdoutCapture capture;
    EXPECT_EQ(VUR_DL_DistLogger_finalizeInstance(), 0);
    EXPECT_EQ(capture.text(), "");
}

// Loggers, creators and finalisers all at once: nothing to see but for the sanitizers.
TEST(LoggerLifecycle, ThreadsMayLogCreateAndFinaliseAtTheSameTime) {
    std::atomic<bool> stop{false};
    std::atomic<int> created{0};
    std::vector<std::thread> threads;
    StdoutCapture capture;
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([&] {
            while (!stop) {
                VUR_DL_DistLogger *logger = VUR_DL_DistLogger_getInstance();
                if (logger != nullptr) {
                    ++created;
                    const VUR_DL_DistLogger_MessageParams params{600, "text", "", {1, 0}};
                    VUR_DL_DistLogger_logMessageWithParams(logger, &params);
                }
                std::this_thread::yield();
            }
        });
    }
    for (int round = 0; round < 10; ++round) {
        const int before = created;
        support::store_options(in_domain(60));
        ASSERT_TRUE(support::eventually([&] { return created > before; }));
        EXPECT_EQ(VUR_DL_DistLogger_finalizeInstance(), 0);
    }
    stop = true;
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(VUR_DL_DistLogger_finalizeInstance(), 0);
}

}  // namespace
