// SPDX-License-Identifier: Apache-2.0
// The children that a process forks: those of a process whose logger runs have none, others may
// have one of their own.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "support/logger/logger.h"
#include "support/logger/monitor.h"
#include "support/platform/process.h"

namespace {

using support::Logger;
using support::Monitor;

constexpr int kHung = -1;

// Runs `work` in a forked child and returns what it returned, or kHung.
int in_child(const std::function<int()> &work) {
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        const int result = work();
        std::fflush(stdout);
        _exit(result);
    }
    int status = 0;
    if (!support::eventually([&] { return waitpid(child, &status, WNOHANG) == child; })) {
        kill(child, SIGKILL);
        waitpid(child, &status, 0);
        return kHung;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// Does in a child of a process with a logger what a program may do. Returns 0, or the number of
// what went wrong.
int use_logger_of_parent(VUR_DL_DistLogger *logger) {
    VUR_DL_DistLogger_fatal(logger, "from the child");
    VUR_DL_DistLogger_fatal(nullptr, "from the child");
    VUR_DL_DistLogger_logMessageWithLevelCategory(logger, 800, "from the child", "child");
    if (VUR_DL_DistLogger_isDistLoggerRunning() != 0) {
        return 1;
    }
    if (VUR_DL_DistLogger_getInstance() != nullptr) {
        return 2;
    }
    if (VUR_DL_DistLogger_getMessageQueue() != nullptr ||
        VUR_DL_DistLogger_getLogMessageWriteThread() != nullptr) {
        return 3;
    }
    if (VUR_DL_DistLogger_setOptions(nullptr) != 0) {
        return 4;
    }
    VUR_DL_DistLogger_setFilterLevel(logger, 300);
    VUR_DL_DistLogger_writeState(logger);
    return VUR_DL_DistLogger_finalizeInstance() == 0 ? 0 : 5;
}

TEST(LoggerFork, TheChildOfAProcessWithALoggerHasNone) {
    const Logger logger({.domain = 49, .echo = true});
    ASSERT_NE(logger.get(), nullptr);
    support::StdoutCapture capture;
    EXPECT_EQ(in_child([&] {
                  VUR_DL_DistLogger_fatal(logger.get(), "from the child");
                  VUR_DL_DistLogger_finalizeInstance();
                  return VUR_DL_DistLogger_getInstance() == nullptr ? 0 : 1;
              }),
              0);
    EXPECT_EQ(capture.text(),
              "DL Error: VUR_DistLogger_getInstance: Unable to create DistLogger singleton in the "
              "child of a process with a logger; start the logger after fork() or daemon()\n");
    EXPECT_EQ(in_child([&] { return use_logger_of_parent(logger.get()); }), 0);
    // Nor has the child's child.
    EXPECT_EQ(
        in_child([&] { return in_child([&] { return use_logger_of_parent(logger.get()); }); }), 0);
    EXPECT_EQ(VUR_DL_DistLogger_isDistLoggerRunning(), 1);
}

TEST(LoggerFork, ChildrenThatAreForkedWhileOthersLogDoNotHang) {
    Monitor monitor({.domain = 52, .commands = false});
    const Logger logger({.domain = 52, .echo = true});
    ASSERT_NE(logger.get(), nullptr);
    ASSERT_TRUE(monitor.wait_for_states(1));
    support::StdoutCapture capture;
    std::atomic<bool> enough{false};
    const auto log = [&] {
        while (!enough) {
            VUR_DL_DistLogger_info(logger.get(), "from the parent");
        }
    };
    std::thread first(log);
    std::thread second(log);
    constexpr int kForks = 40;
    for (int i = 0; i < kForks; ++i) {
        EXPECT_EQ(in_child([&] { return use_logger_of_parent(logger.get()); }), 0) << i;
    }
    enough = true;
    first.join();
    second.join();
    ASSERT_TRUE(support::eventually([&] {
        VUR_DL_DistLogger_fatal(logger.get(), "the last");  // again, if the queue was full
        const std::vector<support::LogSample> &all = monitor.log();
        return !all.empty() && all.back().message == "the last";
    }));
    for (const support::LogSample &sample : monitor.log()) {
        EXPECT_NE(sample.message, "from the child");
    }
    EXPECT_EQ(monitor.last_state().filter_level, 600);
}

// Returns 0 when a logger comes up, logs and goes again.
int use_own_logger(int domain) {
    const auto logger = std::make_unique<Logger>(support::LoggerOptions{.domain = domain});
    if (logger->get() == nullptr) {
        return 1;
    }
    logger->log(100, "from a logger of the child's own");
    if (VUR_DL_MessageQueue_getMessageId(VUR_DL_DistLogger_getMessageQueue()) != 1) {
        return 2;
    }
    return VUR_DL_DistLogger_finalizeInstance();
}

TEST(LoggerFork, AChildThatIsForkedBeforeTheFirstLoggerMayStartOne) {
    EXPECT_EQ(in_child([] { return use_own_logger(53); }), 0);
    EXPECT_EQ(use_own_logger(53), 0);
}

TEST(LoggerFork, AChildThatIsForkedAfterTheLoggerMayStartOne) {
    EXPECT_EQ(use_own_logger(55), 0);
    EXPECT_EQ(in_child([] { return use_own_logger(55); }), 0);
    EXPECT_EQ(use_own_logger(55), 0);
}

}  // namespace
