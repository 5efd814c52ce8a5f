// SPDX-License-Identifier: Apache-2.0
// Settings that decide whether a log call has an effect, changed on several threads at once.
#include <gtest/gtest.h>
#include <vur_dl/DistLogger.h>

#include <atomic>
#include <thread>

#include "support/logger/logger.h"

namespace {

using support::Logger;

// The threads meet much more slowly under the thread sanitizer, which needs them to meet but once.
#if defined(__SANITIZE_THREAD__)
constexpr int kRounds = 2'000;
#else
constexpr int kRounds = 200'000;
#endif

// Two threads that run a function each at the same moment, over and over. They wait for each other
// without going to sleep, and one of them begins a little later in each round, so that they truly
// meet.
class SideBySide {
  public:
    template <typename Function>
    explicit SideBySide(Function other)
        : thread_([this, other] {
              for (int round = 1; wait_for(begun_, round); ++round) {
                  other();
                  ended_ = round;
              }
          }) {}
    ~SideBySide() {
        begun_ = kLast;
        thread_.join();
    }
    SideBySide(const SideBySide &) = delete;
    SideBySide &operator=(const SideBySide &) = delete;

    // Runs `mine` beside the other thread's function; returns when both have ended.
    template <typename Function>
    void run(Function mine) {
        constexpr int kDelays = 300;
        begun_ = ++round_;
        for (std::atomic<int> delay{round_ % kDelays}; delay > 0; --delay) {
        }
        mine();
        wait_for(ended_, round_);
    }

  private:
    static constexpr int kLast = -1;

    static bool wait_for(const std::atomic<int> &word, int round) {
        constexpr int kPatientLooks = 10'000;  // then the other thread has no processor
        int value = word;
        for (int look = 0; value != kLast && value < round; value = word) {
            if (++look > kPatientLooks) {
                std::this_thread::yield();
            }
        }
        return value != kLast;
    }

    std::atomic<int> begun_{0};
    std::atomic<int> ended_{0};
    int round_ = 0;
    std::thread thread_;
};

TEST(LoggerThreshold, ALevelThatIsSetWhileTheEchoChangesIsInForce) {
    const Logger logger({.domain = 46});
    ASSERT_NE(logger.get(), nullptr);
    VUR_DL_Options *options = VUR_DL_DistLogger_getOptions();
    VUR_DL_MessageQueue *queue = VUR_DL_DistLogger_getMessageQueue();
    int lost = 0;
    SideBySide echo([options] { VUR_DL_Options_setEchoToStdout(options, 0); });
    for (int i = 0; i < kRounds; ++i) {
        VUR_DL_DistLogger_setFilterLevel(logger.get(), 600);
        VUR_DL_Options_setEchoToStdout(options, 1);
        echo.run([&] { VUR_DL_DistLogger_setFilterLevel(logger.get(), 800); });
        const DDS_LongLong before = VUR_DL_MessageQueue_getMessageId(queue);
        VUR_DL_DistLogger_debug(logger.get(), "heard");
        lost += VUR_DL_MessageQueue_getMessageId(queue) == before ? 1 : 0;
    }
    EXPECT_EQ(lost, 0);
}

TEST(LoggerThreshold, ARecordOfTheApplicationsOwnMayChangeWhileTheLoggerComesAndGoes) {
    VUR_DL_Options *own = VUR_DL_Options_createDefault();
    ASSERT_NE(own, nullptr);
    std::atomic<bool> enough{false};
    std::thread other([&] {
        for (int echo = 0; !enough; echo = 1 - echo) {
            VUR_DL_Options_setEchoToStdout(own, echo);
        }
    });
    for (int i = 0; i < 5; ++i) {
        const Logger logger({.domain = 47});
        EXPECT_NE(logger.get(), nullptr);
    }
    enough = true;
    other.join();
    VUR_DL_Options_delete(own);
}

}  // namespace
