// SPDX-License-Identifier: Apache-2.0
// A domain full of loggers: all are listed soon after joining, and a command reaches its one
// target.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "support/logger/log_app.h"
#include "support/platform/process.h"

namespace {

using support::ChildProcess;
using support::LogApp;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kLoggers = 10;  // instrumented processes are large and slow
#else
constexpr int kLoggers = 100;
#endif
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
    std::vector<std::unique_ptr<LogApp>> apps;
    for (int i = 0; i < kLoggers; ++i) {
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
        return listed == kLoggers;
    })) << listed;

    ChildProcess set(command({"set", "level", "member-7-", "trace"}));
    EXPECT_EQ(set.wait(), 0);
    EXPECT_EQ(set.lines().size(), 1U);
    ChildProcess ls(command({"ls", "--json", "--timeout", "5"}));
    ASSERT_EQ(ls.wait(), 0);
    EXPECT_EQ(count_with(ls.lines(), "\"filter_level\":800"), 1);
    EXPECT_EQ(count_with(ls.lines(), "\"filter_level\":600"), kLoggers - 1);
}

}  // namespace
