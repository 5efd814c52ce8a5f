// SPDX-License-Identifier: Apache-2.0
// Messages arrive elsewhere: in another process, at late readers, and under load.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "support/logger/log_app.h"
#include "support/logger/logger.h"
#include "support/logger/monitor.h"

namespace {

using support::LogApp;
using support::Logger;
using support::LogSample;
using support::Monitor;

std::vector<LogSample> by_id(std::vector<LogSample> samples) {
    std::sort(samples.begin(), samples.end(),
              [](const LogSample &left, const LogSample &right) { return left.id < right.id; });
    return samples;
}

TEST(LoggerNetwork, AnotherProcessGetsExactlyWhatPassesTheFilterOnce) {
    Monitor monitor({.domain = 80, .durability = DDS_VOLATILE_DURABILITY_QOS});
    LogApp app;
    ASSERT_TRUE(app.run("option domain 80"));
    ASSERT_TRUE(app.run("option filter 500"));
    ASSERT_TRUE(app.run("create"));
    // The first State tells that the two have found each other in both directions; a message that
    // is repeated until it arrives tells it for the log topic.
    ASSERT_TRUE(
        support::eventually([&] { return app.run("log 100 - hello") && !monitor.log().empty(); }));
    const std::int64_t first = monitor.log().back().id;
    std::vector<std::string> expected;
    for (int round = 0; round < 3; ++round) {
        for (int level = 100; level <= 800; level += 100) {
            const std::string text = std::to_string(round) + " at " + std::to_string(level);
            ASSERT_TRUE(app.run("log " + std::to_string(level) + " some.category " + text));
            if (level <= 500) {
                expected.push_back(text);
            }
        }
    }
    ASSERT_TRUE(app.run("log 100 - the end"));
    ASSERT_TRUE(support::eventually([&] {
        const std::vector<LogSample> &log = monitor.log();
        return std::any_of(log.begin(), log.end(),
                           [](const LogSample &s) { return s.message == "the end"; });
    }));
    std::vector<LogSample> log = by_id(monitor.log());
    log.erase(std::remove_if(log.begin(), log.end(),
                             [](const LogSample &s) { return s.message == "hello"; }),
              log.end());
    ASSERT_EQ(log.size(), expected.size() + 1);
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(log[i].message, expected[i]);
        EXPECT_EQ(log[i].category, "some.category");
        EXPECT_EQ(log[i].id, log.front().id + static_cast<std::int64_t>(i));
        EXPECT_EQ(log[i].sender, log.front().sender);
    }
    EXPECT_GE(log.front().id, first + 1);
    EXPECT_EQ(app.end(), 0);
}

TEST(LoggerNetwork, ALateJoinerGetsTheLastTenOfEachLevel) {
    LogApp app;
    ASSERT_TRUE(app.run("option domain 81"));
    ASSERT_TRUE(app.run("option filter 800"));
    ASSERT_TRUE(app.run("option queue 1000"));
    ASSERT_TRUE(app.run("create"));
    ASSERT_TRUE(app.run("series 25 300"));
    ASSERT_TRUE(app.run("series 10 600"));
    ASSERT_TRUE(app.run("series 4 800"));
    Monitor early({.domain = 81, .state = false, .commands = false});
    // Everything has been published by now: the last message is there.
    ASSERT_TRUE(support::eventually([&] {
        const std::vector<LogSample> &log = early.log();
        return std::any_of(log.begin(), log.end(), [](const LogSample &s) { return s.id == 39; });
    }));
    Monitor late({.domain = 81, .state = false, .commands = false});
    ASSERT_TRUE(late.wait_for_log(24));
    std::map<int, std::vector<std::string>> by_level;
    for (const LogSample &sample : by_id(late.log())) {
        by_level[sample.level].push_back(sample.message);
    }
    std::vector<std::string> ten;
    for (int i = 16; i <= 25; ++i) {
        ten.push_back(std::to_string(i));
    }
    EXPECT_EQ(by_level[300], ten);
    EXPECT_EQ(by_level[600],
              (std::vector<std::string>{"1", "2", "3", "4", "5", "6", "7", "8", "9", "10"}));
    EXPECT_EQ(by_level[800], (std::vector<std::string>{"1", "2", "3", "4"}));
    EXPECT_EQ(by_level.size(), 3U);
    // And then goes on with everyone else.
    ASSERT_TRUE(app.run("log 300 - next"));
    ASSERT_TRUE(late.wait_for_log(25));
    EXPECT_EQ(late.log().back().message, "next");
    EXPECT_EQ(late.log().back().id, 40);
}

// A thread's messages carry its number and its own count.
TEST(LoggerNetwork, NothingIsLostWithinTheProcessUnderLoad) {
    constexpr int kThreads = 4;
    constexpr int kPerThread = 20000;
    constexpr int kTotal = kThreads * kPerThread;
    Monitor monitor({.domain = 82, .state = false, .commands = false});
    const Logger logger({.domain = 82, .queue_size = 100000});
    ASSERT_NE(logger.get(), nullptr);
    ASSERT_TRUE(monitor.wait_for_log_writers(1));
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&logger, t] {
            for (int i = 0; i < kPerThread; ++i) {
                logger.log(100 * (1 + i % 6), std::to_string(t) + ":" + std::to_string(i));
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    ASSERT_TRUE(monitor.wait_for_log(kTotal)) << monitor.log().size();
    const std::vector<LogSample> log = by_id(monitor.log());
    ASSERT_EQ(log.size(), static_cast<std::size_t>(kTotal));
    std::vector<int> next(kThreads, 0);
    for (std::size_t i = 0; i < log.size(); ++i) {
        ASSERT_EQ(log[i].id, static_cast<std::int64_t>(i) + 1);
        const std::size_t colon = log[i].message.find(':');
        const auto thread = static_cast<std::size_t>(std::stoi(log[i].message.substr(0, colon)));
        ASSERT_EQ(std::stoi(log[i].message.substr(colon + 1)), next.at(thread)++) << thread;
    }
}

TEST(LoggerNetwork, SeveralApplicationsAreToldApart) {
    Monitor monitor({.domain = 83, .commands = false});
    LogApp first;
    LogApp second;
    for (LogApp *app : {&first, &second}) {
        ASSERT_TRUE(app->run("option domain 83"));
        ASSERT_TRUE(app->run("option kind twin"));
        ASSERT_TRUE(app->run("create"));
    }
    ASSERT_TRUE(first.run("log 300 - from the first"));
    ASSERT_TRUE(second.run("log 300 - from the second"));
    ASSERT_TRUE(monitor.wait_for_log(2));
    const std::vector<LogSample> &log = monitor.log();
    EXPECT_NE(log[0].sender, log[1].sender);
    EXPECT_EQ(log[0].id, 1);
    EXPECT_EQ(log[1].id, 1);
    ASSERT_TRUE(monitor.wait_for_states(2));
    for (const LogSample &sample : log) {
        EXPECT_TRUE(monitor.wait_for_state(
            [&](const auto &s) { return s.sender == sample.sender && s.kind == "twin"; }));
    }
}

}  // namespace
