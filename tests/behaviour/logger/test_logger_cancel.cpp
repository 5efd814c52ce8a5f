// SPDX-License-Identifier: Apache-2.0
// A thread that is cancelled within a log call takes nobody else with it.
#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <future>
#include <thread>

#include "support/logger/logger.h"
#include "support/platform/process.h"

namespace {

using support::Logger;

std::atomic<int> calls{0};

void *log_for_ever(void *logger) {
    for (;;) {
        VUR_DL_DistLogger_info(static_cast<VUR_DL_DistLogger *>(logger), "until it is cancelled");
        ++calls;
        pthread_testcancel();
    }
    return nullptr;
}

// Ends the test program when the work does not: its thread could not be joined.
template <typename Work>
void run_or_give_up(Work work) {
    std::promise<void> done;
    std::future<void> ended = done.get_future();
    std::thread thread([&] {
        work();
        done.set_value();
    });
    if (ended.wait_for(support::kPatience) != std::future_status::ready) {
        std::fputs("a log call waits for a thread that was cancelled\n", stderr);
        _exit(1);
    }
    thread.join();
}

TEST(LoggerCancel, AThreadThatIsCancelledLeavesNoLockBehind) {
    support::StdoutCapture capture;
    // Printing is where a thread is cancelled.
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    {
        const Logger logger({.domain = 48, .echo = true});
        ASSERT_NE(logger.get(), nullptr);
        constexpr int kThreads = 50;
        for (int i = 0; i < kThreads; ++i) {
            const int before = calls;
            pthread_t thread{};
            ASSERT_EQ(pthread_create(&thread, nullptr, log_for_ever, logger.get()), 0);
            EXPECT_TRUE(support::eventually([&] { return calls > before; }));
            ASSERT_EQ(pthread_cancel(thread), 0);
            void *result = nullptr;
            ASSERT_EQ(pthread_join(thread, &result), 0);
            EXPECT_EQ(result, PTHREAD_CANCELED);
            run_or_give_up([&] { VUR_DL_DistLogger_info(logger.get(), "the next one"); });
        }
        EXPECT_EQ(capture.count("DL Info: : the next one"), kThreads);
        run_or_give_up([] { EXPECT_EQ(VUR_DL_DistLogger_finalizeInstance(), 0); });
    }
}

}  // namespace
