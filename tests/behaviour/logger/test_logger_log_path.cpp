// SPDX-License-Identifier: Apache-2.0
// A log call from the caller's side: checks, echo, filter, and how much arrives of the texts.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <string>
#include <vector>

#include "support/logger/logger.h"
#include "support/logger/monitor.h"
#include "support/platform/process.h"

namespace {

using support::Logger;
using support::LogSample;
using support::Monitor;
using support::StdoutCapture;

using LevelFunction = void (*)(VUR_DL_DistLogger *, const char *);
struct Level {
    int value;
    LevelFunction log;
    const char *name;
};
const std::array<Level, 8> kLevels{{{100, VUR_DL_DistLogger_fatal, "DL Fatal"},
                                    {200, VUR_DL_DistLogger_severe, "DL Severe"},
                                    {300, VUR_DL_DistLogger_error, "DL Error"},
                                    {400, VUR_DL_DistLogger_warning, "DL Warning"},
                                    {500, VUR_DL_DistLogger_notice, "DL Notice"},
                                    {600, VUR_DL_DistLogger_info, "DL Info"},
                                    {700, VUR_DL_DistLogger_debug, "DL Debug"},
                                    {800, VUR_DL_DistLogger_trace, "DL Trace"}}};

Monitor::Settings log_of(int domain) {
    return Monitor::Settings{.domain = domain, .state = false, .commands = false};
}

// Nothing else was published: the message that is logged now is the next one to arrive.
::testing::AssertionResult only_the_end_arrives(Monitor &monitor, const Logger &logger,
                                                std::size_t before) {
    logger.log(100, "the end");
    if (!monitor.wait_for_log(before + 1)) {
        return ::testing::AssertionFailure() << "the end has not arrived";
    }
    const std::vector<LogSample> &log = monitor.log();
    if (log.size() != before + 1 || log.back().message != "the end") {
        return ::testing::AssertionFailure() << log[before].message << " has arrived";
    }
    return ::testing::AssertionSuccess();
}

TEST(LoggerLogPath, EveryLevelIsEchoedUnderItsName) {
    const Logger logger({.domain = 70, .echo = true});
    ASSERT_NE(logger.get(), nullptr);
    StdoutCapture capture;
    std::string expected;
    for (const Level &level : kLevels) {
        level.log(logger.get(), "hello");
        expected += std::string(level.name) + ": : hello\n";
    }
    EXPECT_EQ(capture.text(), expected);
}

TEST(LoggerLogPath, WhatTheFilterHoldsBackIsEchoedAllTheSame) {
    Monitor monitor(log_of(71));
    const Logger logger({.domain = 71, .filter_level = 600, .echo = true});
    ASSERT_NE(logger.get(), nullptr);
    ASSERT_TRUE(monitor.wait_for_log_writers(1));
    StdoutCapture capture;
    for (const Level &level : kLevels) {
        level.log(logger.get(), level.name);
    }
    ASSERT_TRUE(monitor.wait_for_log(6));
    EXPECT_TRUE(only_the_end_arrives(monitor, logger, 6));
    const std::vector<LogSample> &log = monitor.log();
    for (std::size_t i = 0; i < 6; ++i) {
        // Samples of different levels are different instances: the order is that of the ids.
        const auto &sample = *std::find_if(log.begin(), log.end(), [&](const LogSample &s) {
            return s.id == static_cast<int>(i) + 1;
        });
        EXPECT_EQ(sample.level, kLevels[i].value);
        EXPECT_EQ(sample.message, kLevels[i].name);
        EXPECT_EQ(sample.category, "");
    }
    // Messages that were filtered out have no number.
    EXPECT_EQ(log.back().id, 7);
    EXPECT_EQ(capture.count("DL Debug: : DL Debug"), 1);
    EXPECT_EQ(capture.count("DL Trace: : DL Trace"), 1);
}

TEST(LoggerLogPath, AMessageOnTheFilterLevelPasses) {
    Monitor monitor(log_of(72));
    const Logger logger({.domain = 72, .filter_level = 650});
    ASSERT_NE(logger.get(), nullptr);
    ASSERT_TRUE(monitor.wait_for_log_writers(1));
    logger.log(651, "just above");
    logger.log(650, "on it");
    ASSERT_TRUE(monitor.wait_for_log(1));
    EXPECT_EQ(monitor.log().front().message, "on it");
    EXPECT_EQ(monitor.log().front().id, 1);
    EXPECT_TRUE(only_the_end_arrives(monitor, logger, 1));
}

TEST(LoggerLogPath, AnyNumberIsALevel) {
    Monitor monitor(log_of(116));
    const Logger logger({.domain = 116, .filter_level = 0, .echo = true});
    ASSERT_NE(logger.get(), nullptr);
    ASSERT_TRUE(monitor.wait_for_log_writers(1));
    StdoutCapture capture;
    logger.log(1, "filtered");
    logger.log(0, "silent");
    logger.log(-5, "negative");
    ASSERT_TRUE(monitor.wait_for_log(2));
    EXPECT_EQ(capture.text(),
              "DL Silent: : filtered\nDL Silent: : silent\nDL Silent: : negative\n");
    EXPECT_EQ(monitor.log().size(), 2U);
    for (const LogSample &sample : monitor.log()) {
        EXPECT_TRUE(sample.level == 0 || sample.level == -5) << sample.level;
    }
}

TEST(LoggerLogPath, WithoutEchoNothingIsPrinted) {
    Monitor monitor(log_of(73));
    const Logger logger({.domain = 73, .echo = false});
    ASSERT_NE(logger.get(), nullptr);
    StdoutCapture capture;
    for (const Level &level : kLevels) {
        level.log(logger.get(), "quiet");
    }
    VUR_DL_DistLogger_log(logger.get(), 250, "quiet");
    ASSERT_TRUE(monitor.wait_for_log(7));
    EXPECT_EQ(capture.text(), "");
}

// Every value but 1 means that nothing is echoed.
TEST(LoggerLogPath, EchoIsExactlyOne) {
    VUR_DL_Options *options = VUR_DL_Options_createDefault();
    VUR_DL_Options_setDomainId(options, 70);
    VUR_DL_Options_setEchoToStdout(options, 2);
    VUR_DL_Options_setLogInfrastructureMessages(options, 0);
    ASSERT_EQ(VUR_DL_DistLogger_setOptions(options), 1);
    VUR_DL_Options_delete(options);
    StdoutCapture capture;
    VUR_DL_DistLogger *logger = VUR_DL_DistLogger_getInstance();
    VUR_DL_DistLogger_info(logger, "quiet");
    EXPECT_EQ(VUR_DL_DistLogger_finalizeInstance(), 0);
    EXPECT_EQ(capture.text(), "");
}

TEST(LoggerLogPath, AnEmptyMessageIsPublishedButNotEchoed) {
    Monitor monitor(log_of(74));
    const Logger logger({.domain = 74, .echo = true});
    ASSERT_NE(logger.get(), nullptr);
    StdoutCapture capture;
    logger.log(600, "", "category");
    ASSERT_TRUE(monitor.wait_for_log(1));
    EXPECT_EQ(monitor.log().front().message, "");
    EXPECT_EQ(monitor.log().front().category, "category");
    EXPECT_EQ(capture.text(), "");
}

TEST(LoggerLogPath, ANewlineAtTheEndIsNotDoubled) {
    Monitor monitor(log_of(115));
    const Logger logger({.domain = 115, .echo = true});
    ASSERT_NE(logger.get(), nullptr);
    StdoutCapture capture;
    logger.log(300, "two\nlines\n");
    logger.log(300, "\n");
    ASSERT_TRUE(monitor.wait_for_log(2));
    EXPECT_EQ(capture.text(), "DL Error: : two\nlines\nDL Error: : \n");
    EXPECT_EQ(monitor.log()[0].message, "two\nlines\n");
}

TEST(LoggerLogPath, FormatDirectivesAreText) {
    Monitor monitor(log_of(114));
    const Logger logger({.domain = 114, .echo = true});
    ASSERT_NE(logger.get(), nullptr);
    StdoutCapture capture;
    logger.log(300, "%s %n %d", "%s");
    ASSERT_TRUE(monitor.wait_for_log(1));
    EXPECT_EQ(capture.text(), "DL Error: : %s %n %d\n");
    EXPECT_EQ(monitor.log()[0].message, "%s %n %d");
    EXPECT_EQ(monitor.log()[0].category, "%s");
}

TEST(LoggerLogPath, WrongArgumentsAreNamedInOrder) {
    const Logger logger({.domain = 70, .echo = true});
    ASSERT_NE(logger.get(), nullptr);
    const std::string prefix = "DL Error: VUR_DL_DistLogger_logMessageWithParams: ";
    const VUR_DL_DistLogger_MessageParams good{600, "text", "category", {1, 0}};
    const VUR_DL_DistLogger_MessageParams no_message{600, nullptr, nullptr, {-1, 0}};
    const VUR_DL_DistLogger_MessageParams no_category{600, "text", nullptr, {-1, 0}};
    const VUR_DL_DistLogger_MessageParams bad_time{600, "text", "category", {-1, 999}};
    const struct {
        VUR_DL_DistLogger *self;
        const VUR_DL_DistLogger_MessageParams *params;
        const char *message;
    } cases[] = {{nullptr, nullptr, "self is NULL"},
                 {nullptr, &good, "self is NULL"},
                 {logger.get(), nullptr, "Message params is NULL"},
                 {logger.get(), &no_message, "Message to be logged is NULL"},
                 {logger.get(), &no_category, "Message category is NULL"},
                 {logger.get(), &bad_time, "Invalid message timestamp"}};
    for (const auto &wrong : cases) {
        StdoutCapture capture;
        VUR_DL_DistLogger_logMessageWithParams(wrong.self, wrong.params);
        EXPECT_EQ(capture.text(), prefix + wrong.message + "\n");
    }
    StdoutCapture capture;
    VUR_DL_DistLogger_info(logger.get(), nullptr);
    EXPECT_EQ(capture.text(), prefix + "Message to be logged is NULL\n");
    // None of them kept the lock.
    VUR_DL_DistLogger_info(logger.get(), "after");
    EXPECT_EQ(capture.count("DL Info: : after"), 1);
}

TEST(LoggerLogPath, ANullLoggerIsSurvived) {
    StdoutCapture capture;
    VUR_DL_DistLogger_info(nullptr, "text");
    VUR_DL_DistLogger_log(nullptr, 600, "text");
    VUR_DL_DistLogger_logMessageWithLevelCategory(nullptr, 600, "text", "category");
    EXPECT_EQ(capture.lines().size(), 3U) << capture.text();
    for (const std::string &line : capture.lines()) {
        EXPECT_NE(line.find("self is NULL"), std::string::npos) << line;
    }
}

TEST(LoggerLogPath, ARecordThatIsNotTheLoggerIsIgnored) {
    Monitor monitor(log_of(75));
    const Logger logger({.domain = 75, .echo = true});
    ASSERT_NE(logger.get(), nullptr);
    StdoutCapture capture;
    alignas(16) std::array<unsigned char, 4096> other{};
    const VUR_DL_DistLogger_MessageParams params{100, "stray", "", {1, 0}};
    VUR_DL_DistLogger_logMessageWithParams(reinterpret_cast<VUR_DL_DistLogger *>(other.data()),
                                           &params);
    EXPECT_EQ(capture.text(), "");
    EXPECT_TRUE(only_the_end_arrives(monitor, logger, 0));
}

TEST(LoggerLogPath, ADisabledLoggerEchoesButDoesNotPublish) {
    Monitor monitor(log_of(76));
    const Logger logger({.domain = 76, .echo = true});
    ASSERT_NE(logger.get(), nullptr);
    logger.log(600, "before");
    ASSERT_TRUE(monitor.wait_for_log(1));
    StdoutCapture capture;
    VUR_DL_DistLogger_disable();
    logger.log(600, "after");
    EXPECT_EQ(capture.text(), "DL Info: : after\n");
    EXPECT_EQ(VUR_DL_MessageQueue_getMessageId(VUR_DL_DistLogger_getMessageQueue()), 1);
    EXPECT_EQ(VUR_DL_DistLogger_finalizeInstance(), 0);
    EXPECT_EQ(monitor.log().size(), 1U);
}

TEST(LoggerLogPath, TheLevelGettersGiveTheLevels) {
    EXPECT_EQ(VUR_DL_DistLogger_get_fatal_log_level(), 100);
    EXPECT_EQ(VUR_DL_DistLogger_get_error_log_level(), 300);
    EXPECT_EQ(VUR_DL_DistLogger_get_warning_log_level(), 400);
    EXPECT_EQ(VUR_DL_DistLogger_get_notice_log_level(), 500);
    EXPECT_EQ(VUR_DL_DistLogger_get_info_log_level(), 600);
    EXPECT_EQ(VUR_DL_DistLogger_get_debug_log_level(), 700);
}

// Every byte that a C string can hold comes through, whatever the length.
TEST(LoggerLogPath, TextsOfAllLengthsArriveWhole) {
    Monitor monitor(log_of(77));
    const Logger logger({.domain = 77, .queue_size = 1000});
    ASSERT_NE(logger.get(), nullptr);
    ASSERT_TRUE(monitor.wait_for_log_writers(1));
    const auto text_of = [](std::size_t length) {
        std::string text;
        for (std::size_t i = 0; i < length; ++i) {
            text += static_cast<char>(1 + i % 255);
        }
        return text;
    };
    const std::vector<std::size_t> lengths{0, 1, 126, 127, 128, 129, 4095, 4096, 4097, 5000};
    const std::vector<std::size_t> category_lengths{0, 1, 31, 32, 33, 511, 512, 513, 600, 31};
    // One by one: the writer holds the last ten of a level only.
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        logger.log(600, text_of(lengths[i]), text_of(category_lengths[i]));
        ASSERT_TRUE(monitor.wait_for_log(i + 1));
        const LogSample &sample = monitor.log().back();
        EXPECT_EQ(sample.message, text_of(std::min<std::size_t>(lengths[i], 4096))) << lengths[i];
        EXPECT_EQ(sample.category, text_of(std::min<std::size_t>(category_lengths[i], 512)))
            << category_lengths[i];
        EXPECT_EQ(sample.id, static_cast<std::int64_t>(i) + 1);
    }
}

DDS_Time_t now() {
    timespec time{};
    clock_gettime(CLOCK_REALTIME, &time);
    return DDS_Time_t{time.tv_sec, static_cast<DDS_UnsignedLong>(time.tv_nsec)};
}

std::int64_t nanoseconds(const DDS_Time_t &time) {
    return time.sec * 1'000'000'000 + static_cast<std::int64_t>(time.nanosec);
}

TEST(LoggerLogPath, TheSourceTimeIsThatOfTheCall) {
    Monitor monitor(log_of(78));
    const Logger logger({.domain = 78});
    ASSERT_NE(logger.get(), nullptr);
    const std::int64_t before = nanoseconds(now());
    logger.log(600, "stamped");
    const std::int64_t after = nanoseconds(now());
    ASSERT_TRUE(monitor.wait_for_log(1));
    const std::int64_t stamp = nanoseconds(monitor.log().front().time);
    // The engine's time stamps have a resolution of 2^-32 s on the wire.
    EXPECT_GE(stamp, before - 1);
    EXPECT_LE(stamp, after + 2);
    EXPECT_LT(monitor.log().front().time.nanosec, 1'000'000'000U);
}

TEST(LoggerLogPath, ATimeThatIsGivenIsTheSourceTime) {
    Monitor monitor(log_of(79));
    const Logger logger({.domain = 79});
    ASSERT_NE(logger.get(), nullptr);
    const DDS_Time_t times[] = {
        {1, 0}, {0, 1}, {1'000'000'000, 999'999'999}, {1'700'000'000, 123'456'789}};
    std::size_t count = 0;
    for (const DDS_Time_t &time : times) {
        const VUR_DL_DistLogger_MessageParams params{600, "stamped", "", time};
        VUR_DL_DistLogger_logMessageWithParams(logger.get(), &params);
        ASSERT_TRUE(monitor.wait_for_log(++count));
        EXPECT_NEAR(static_cast<double>(nanoseconds(monitor.log().back().time) - nanoseconds(time)),
                    0.0, 1.0)
            << time.sec << " " << time.nanosec;
    }
}

TEST(LoggerLogPath, AFullQueueDropsTheNewestAndLeavesAGapInTheNumbers) {
    Monitor monitor(log_of(61));
    const Logger logger({.domain = 61, .queue_size = 1});
    ASSERT_NE(logger.get(), nullptr);
    ASSERT_TRUE(monitor.wait_for_log_writers(1));
    constexpr int kMessages = 20000;
    StdoutCapture capture;
    for (int i = 0; i < kMessages; ++i) {
        logger.log(600, std::string(2000, 'x'));
    }
    EXPECT_EQ(VUR_DL_MessageQueue_getMessageId(VUR_DL_DistLogger_getMessageQueue()), kMessages);
    // Whoever logs slowly enough is not dropped.
    ASSERT_TRUE(support::eventually([&] {
        logger.log(500, "last");
        return !monitor.log().empty() && monitor.log().back().message == "last";
    }));
    const std::vector<LogSample> &log = monitor.log();
    EXPECT_LT(log.size(), static_cast<std::size_t>(kMessages));
    EXPECT_GT(log.back().id, kMessages);
    EXPECT_EQ(capture.text(), "");
}

TEST(LoggerPrinting, NullAndEmptyTextsAreReported) {
    StdoutCapture capture;
    EXPECT_EQ(VUR_DL_DistLogger_printMessage(nullptr, "method", 300), 4U);
    EXPECT_EQ(VUR_DL_DistLogger_printMessage("text", nullptr, 300), 4U);
    EXPECT_EQ(VUR_DL_DistLogger_printMessage("", "method", 300), 3U);
    EXPECT_EQ(capture.text(),
              "DL Error: VUR_DL_DistLogger_printMessage: String passed as parameter is NULL.\n"
              "DL Error: VUR_DL_DistLogger_printMessage: String passed as parameter is NULL.\n"
              "DL Error: VUR_DL_DistLogger_printMessage: Message to print is empty.\n");
}

TEST(LoggerPrinting, LevelsHaveTheirNamesAndOthersAreSilent) {
    for (const Level &level : kLevels) {
        StdoutCapture capture;
        EXPECT_EQ(VUR_DL_DistLogger_printMessage("text", "method", level.value), 0U);
        EXPECT_EQ(capture.text(), std::string(level.name) + ": method: text\n");
    }
    for (const int level : {-1, 0, 1, 99, 101, 250, 801, 2147483647}) {
        StdoutCapture capture;
        EXPECT_EQ(VUR_DL_DistLogger_printMessage("text\n", "method", level), 0U);
        EXPECT_EQ(capture.text(), "DL Silent: method: text\n") << level;
    }
}

}  // namespace
