// SPDX-License-Identifier: Apache-2.0
// A domain full of loggers: all are listed soon after joining, and a command reaches its one
// target.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "support/logger/log_app.h"
#include "support/platform/process.h"

namespace {

using support::ChildProcess;
using support::LogApp;

// A hundred, where there are processors for it: everybody finding everybody takes the square of that,
// and two processors have been seen to need minutes.
int most_loggers() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return 10;  // instrumented processes are large and slow
#else
    constexpr int kForEachProcessor = 25;
    return std::clamp(kForEachProcessor * static_cast<int>(std::thread::hardware_concurrency()), 25,
                      100);
#endif
}
constexpr int kDomain = 154;

std::vector<std::string> command(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), support::binary_path("distlog"));
    arguments.insert(arguments.end(), {"--domain", std::to_string(kDomain)});
    return arguments;
}

int count_with(const std::vector<std::string> &lines, const std::string &text) {
    int count = 0;
    for (const std::string &line : lines) {
        count += line.find(text) != std::string::npos ? 1 : 0;
    }
    return count;
}

TEST(ManyLoggers, AreAllListedAndACommandReachesOne) {
    const int loggers = most_loggers();
    std::vector<std::unique_ptr<LogApp>> apps;
    for (int i = 0; i < loggers; ++i) {
        apps.push_back(std::make_unique<LogApp>());
        ASSERT_TRUE(apps.back()->run("option domain " + std::to_string(kDomain)));
        ASSERT_TRUE(apps.back()->run("option kind member-" + std::to_string(i) + "-"));
        ASSERT_TRUE(apps.back()->run("create"));
    }
    int listed = 0;
    ASSERT_TRUE(support::eventually([&] {
        ChildProcess ls(command({"ls", "--json", "--timeout", "5"}));
        EXPECT_EQ(ls.wait(), 0);
        listed = count_with(ls.lines(), "\"application_kind\":\"member-");
        return listed == loggers;
    })) << listed;

    ChildProcess set(command({"set", "level", "member-7-", "trace"}));
    EXPECT_EQ(set.wait(), 0);
    EXPECT_EQ(set.lines().size(), 1U);
    ChildProcess ls(command({"ls", "--json", "--timeout", "5"}));
    ASSERT_EQ(ls.wait(), 0);
    EXPECT_EQ(count_with(ls.lines(), "\"filter_level\":800"), 1);
    EXPECT_EQ(count_with(ls.lines(), "\"filter_level\":600"), loggers - 1);
}

}  // namespace
