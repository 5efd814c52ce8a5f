// SPDX-License-Identifier: Apache-2.0
// The adaptive counting semaphore: counts, timeouts, and that no wake-up is lost.

#include <gtest/gtest.h>
#include <kolt/os.h>
#include <sys/resource.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr DDS_Duration_t kNone{0, 0};
constexpr DDS_Duration_t kDeadline{60, 0};

// A waiter whose wake-up was lost finds its token only when its time is over. While this lives,
// that must not happen to anybody.
class NoWakeUpIsLost {
  public:
    NoWakeUpIsLost() = default;
    ~NoWakeUpIsLost() {
        EXPECT_LT(Clock::now() - start_, std::chrono::seconds(kDeadline.sec) * 3 / 4);
    }
    NoWakeUpIsLost(const NoWakeUpIsLost &) = delete;
    NoWakeUpIsLost &operator=(const NoWakeUpIsLost &) = delete;

  private:
    const Clock::time_point start_ = Clock::now();
};

DDS_Duration_t ms(int value) {
    return {value / 1000, static_cast<DDS_UnsignedLong>(value % 1000) * 1'000'000U};
}

struct Delete {
    void operator()(KOLT_Semaphore *semaphore) const { KOLT_Semaphore_delete(semaphore); }
};
using Semaphore = std::unique_ptr<KOLT_Semaphore, Delete>;

Semaphore make(DDS_Long initial) {
    return Semaphore(KOLT_Semaphore_new(initial));
}

TEST(OsSemaphore, CountsTokens) {
    auto semaphore = make(2);
    ASSERT_TRUE(semaphore);
    EXPECT_EQ(KOLT_Semaphore_get_count(semaphore.get()), 2);
    EXPECT_EQ(KOLT_Semaphore_take(semaphore.get(), &kNone), KOLT_SEMAPHORE_OK);
    EXPECT_EQ(KOLT_Semaphore_take(semaphore.get(), &kNone), KOLT_SEMAPHORE_OK);
    EXPECT_EQ(KOLT_Semaphore_take(semaphore.get(), &kNone), KOLT_SEMAPHORE_TIMEOUT);
    EXPECT_EQ(KOLT_Semaphore_give(semaphore.get()), KOLT_SEMAPHORE_OK);
    EXPECT_EQ(KOLT_Semaphore_take(semaphore.get(), nullptr), KOLT_SEMAPHORE_OK);
    EXPECT_EQ(KOLT_Semaphore_get_count(semaphore.get()), 0);
}

TEST(OsSemaphore, RefusesBadArguments) {
    EXPECT_EQ(KOLT_Semaphore_new(-1), nullptr);
    EXPECT_EQ(KOLT_Semaphore_take(nullptr, &kNone), KOLT_SEMAPHORE_ERROR);
    EXPECT_EQ(KOLT_Semaphore_give(nullptr), KOLT_SEMAPHORE_ERROR);
    EXPECT_EQ(KOLT_Semaphore_get_count(nullptr), 0);
    KOLT_Semaphore_set_backlog(nullptr, 1);
    KOLT_Semaphore_delete(nullptr);
}

TEST(OsSemaphore, RefusesOverflow) {
    auto semaphore = make(KOLT_SEMAPHORE_MAXIMUM_COUNT);
    EXPECT_EQ(KOLT_Semaphore_give(semaphore.get()), KOLT_SEMAPHORE_ERROR);
    EXPECT_EQ(KOLT_Semaphore_get_count(semaphore.get()), KOLT_SEMAPHORE_MAXIMUM_COUNT);
    EXPECT_EQ(KOLT_Semaphore_take(semaphore.get(), &kNone), KOLT_SEMAPHORE_OK);
    EXPECT_EQ(KOLT_Semaphore_give(semaphore.get()), KOLT_SEMAPHORE_OK);
}

TEST(OsSemaphore, NegativeTimeoutDoesNotWait) {
    auto semaphore = make(0);
    const DDS_Duration_t negative{-1, 0};
    EXPECT_EQ(KOLT_Semaphore_take(semaphore.get(), &negative), KOLT_SEMAPHORE_TIMEOUT);
}

TEST(OsSemaphore, TimesOutNotBeforeTheTime) {
    auto semaphore = make(1);
    const auto timeout = ms(30);
    // Once from sleep and once after activity, when the wait begins with naps; the third time-out
    // is shorter than the nap time.
    const auto start = Clock::now();
    EXPECT_EQ(KOLT_Semaphore_take(semaphore.get(), &timeout), KOLT_SEMAPHORE_OK);
    EXPECT_EQ(KOLT_Semaphore_take(semaphore.get(), &timeout), KOLT_SEMAPHORE_TIMEOUT);
    EXPECT_EQ(KOLT_Semaphore_take(semaphore.get(), &timeout), KOLT_SEMAPHORE_TIMEOUT);
    EXPECT_GE(Clock::now() - start, milliseconds(60));

    KOLT_Semaphore_give(semaphore.get());
    EXPECT_EQ(KOLT_Semaphore_take(semaphore.get(), &timeout), KOLT_SEMAPHORE_OK);
    const DDS_Duration_t tiny{0, 300'000};
    const auto napping = Clock::now();
    EXPECT_EQ(KOLT_Semaphore_take(semaphore.get(), &tiny), KOLT_SEMAPHORE_TIMEOUT);
    EXPECT_GE(Clock::now() - napping, microseconds(300));
}

// One giver and one taker in lock step with a pause that wanders over the nap time, so that each
// kind of wait is met: none, nap, sleep, and the steps between them.
TEST(OsSemaphore, PingPongLosesNothing) {
    constexpr int kRounds = 400;
    const NoWakeUpIsLost watch;
    auto ping = make(0);
    auto pong = make(0);
    std::thread other([&] {
        for (int i = 0; i < kRounds; ++i) {
            ASSERT_EQ(KOLT_Semaphore_take(ping.get(), &kDeadline), KOLT_SEMAPHORE_OK);
            ASSERT_EQ(KOLT_Semaphore_give(pong.get()), KOLT_SEMAPHORE_OK);
        }
    });
    for (int i = 0; i < kRounds; ++i) {
        std::this_thread::sleep_for(microseconds(i * 37 % 3000));
        ASSERT_EQ(KOLT_Semaphore_give(ping.get()), KOLT_SEMAPHORE_OK);
        ASSERT_EQ(KOLT_Semaphore_take(pong.get(), &kDeadline), KOLT_SEMAPHORE_OK);
    }
    other.join();
}

// Several sleepers, and at once a token for each: one give must not use up the wake-up of another.
TEST(OsSemaphore, EachSleeperGetsItsToken) {
    constexpr int kSleepers = 4;
    constexpr int kRounds = 60;
    const NoWakeUpIsLost watch;
    auto tokens = make(0);
    auto done = make(0);
    std::vector<std::thread> sleepers;
    for (int t = 0; t < kSleepers; ++t) {
        sleepers.emplace_back([&] {
            for (int i = 0; i < kRounds; ++i) {
                EXPECT_EQ(KOLT_Semaphore_take(tokens.get(), &kDeadline), KOLT_SEMAPHORE_OK);
                KOLT_Semaphore_give(done.get());
            }
        });
    }
    for (int i = 0; i < kRounds; ++i) {
        // Beyond the nap time all are asleep in the usual case; right in every case.
        std::this_thread::sleep_for(milliseconds(5));
        for (int t = 0; t < kSleepers; ++t) {
            KOLT_Semaphore_give(tokens.get());
        }
        for (int t = 0; t < kSleepers; ++t) {
            EXPECT_EQ(KOLT_Semaphore_take(done.get(), &kDeadline), KOLT_SEMAPHORE_OK);
        }
    }
    for (auto &sleeper : sleepers) {
        sleeper.join();
    }
}

struct Load {
    int givers;
    int takers;
    int tokens_each;
    DDS_Long backlog;
};

class OsSemaphoreLoad : public testing::TestWithParam<Load> {};

// Every token given is taken once: a lost wake-up would leave a taker waiting until the deadline.
TEST_P(OsSemaphoreLoad, EveryTokenIsTaken) {
    const Load load = GetParam();
    const NoWakeUpIsLost watch;
    auto semaphore = make(0);
    KOLT_Semaphore_set_backlog(semaphore.get(), load.backlog);
    const int total = load.givers * load.tokens_each;
    std::atomic<int> left{total};
    std::atomic<int> failures{0};
    long payload = 0;  // plain: published by one giver's give, read after a take
    std::vector<std::thread> threads;
    for (int t = 0; t < load.takers; ++t) {
        threads.emplace_back([&] {
            while (left.fetch_sub(1) > 0) {
                failures += KOLT_Semaphore_take(semaphore.get(), &kDeadline) != KOLT_SEMAPHORE_OK;
                if (load.givers == 1) {
                    failures += payload != 1;
                }
            }
        });
    }
    payload = load.givers == 1 ? 1 : 0;
    for (int g = 0; g < load.givers; ++g) {
        threads.emplace_back([&, g] {
            for (int i = 0; i < load.tokens_each; ++i) {
                failures += KOLT_Semaphore_give(semaphore.get()) != KOLT_SEMAPHORE_OK;
                if (i % 64 == 0) {
                    std::this_thread::sleep_for(microseconds((i + g * 100) % 700));
                }
            }
        });
    }
    for (auto &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(KOLT_Semaphore_get_count(semaphore.get()), 0);
}

INSTANTIATE_TEST_SUITE_P(Shapes, OsSemaphoreLoad,
                         testing::Values(Load{1, 1, 30000, 32}, Load{4, 1, 10000, 32},
                                         Load{1, 4, 20000, 32}, Load{4, 4, 10000, 32},
                                         Load{4, 4, 5000, 1}, Load{2, 3, 5000, 1000000}),
                         [](const auto &shape) {
                             return std::to_string(shape.param.givers) + "to" +
                                    std::to_string(shape.param.takers) + "backlog" +
                                    std::to_string(shape.param.backlog);
                         });

// Takers that give up and come back, while tokens arrive: none is lost with those who gave up.
TEST(OsSemaphore, TimeoutsLoseNoToken) {
    constexpr int kTokens = 4000;
    auto semaphore = make(0);
    std::atomic<int> taken{0};
    std::atomic<bool> given{false};
    std::vector<std::thread> takers;
    for (int t = 0; t < 3; ++t) {
        takers.emplace_back([&, t] {
            const DDS_Duration_t timeout{0, 50'000U + 170'000U * static_cast<unsigned>(t)};
            while (!given || KOLT_Semaphore_get_count(semaphore.get()) > 0) {
                taken += KOLT_Semaphore_take(semaphore.get(), &timeout) == KOLT_SEMAPHORE_OK;
            }
        });
    }
    for (int i = 0; i < kTokens; ++i) {
        KOLT_Semaphore_give(semaphore.get());
        if (i % 8 == 0) {
            std::this_thread::sleep_for(microseconds(i % 300));
        }
    }
    given = true;
    for (auto &taker : takers) {
        taker.join();
    }
    EXPECT_EQ(taken, kTokens);
}

long context_switches_of_this_thread() {
    rusage usage{};
    getrusage(RUSAGE_THREAD, &usage);
    return usage.ru_nvcsw;
}

// A waiter that found nothing sleeps in one piece: the kernel counts how often it went to sleep.
TEST(OsSemaphore, IdleWaiterDoesNotNap) {
    auto semaphore = make(1);
    const auto timeout = ms(50);
    EXPECT_EQ(KOLT_Semaphore_take(semaphore.get(), &timeout), KOLT_SEMAPHORE_OK);
    const long before = context_switches_of_this_thread();
    EXPECT_EQ(KOLT_Semaphore_take(semaphore.get(), &timeout), KOLT_SEMAPHORE_TIMEOUT);
    const long after_activity = context_switches_of_this_thread() - before;
    const long idle_before = context_switches_of_this_thread();
    EXPECT_EQ(KOLT_Semaphore_take(semaphore.get(), &timeout), KOLT_SEMAPHORE_TIMEOUT);
    const long idle = context_switches_of_this_thread() - idle_before;
    EXPECT_LE(idle, 3);
    EXPECT_GE(after_activity, idle);
    EXPECT_LE(after_activity, 120);
}

}  // namespace
