// SPDX-License-Identifier: Apache-2.0
// The global lock and the mutex: exclusion, refusal of a second take, contention.

#include <gtest/gtest.h>
#include <kolt/os.h>

#include <atomic>
#include <cerrno>
#include <thread>
#include <vector>

namespace {

KOLT_GlobalLock static_lock = KOLT_GLOBAL_LOCK_INITIALIZER;
KOLT_GlobalLock zero_lock;

// One set of tests for both kinds of lock.
class GlobalLock {
  public:
    int take() { return KOLT_GlobalLock_take(&lock_); }
    int give() { return KOLT_GlobalLock_give(&lock_); }

  private:
    KOLT_GlobalLock lock_ = KOLT_GLOBAL_LOCK_INITIALIZER;
};

class Mutex {
  public:
    Mutex() : mutex_(KOLT_Mutex_new()) {}
    ~Mutex() { KOLT_Mutex_delete(mutex_); }
    Mutex(const Mutex &) = delete;
    Mutex &operator=(const Mutex &) = delete;
    int take() { return KOLT_Mutex_take(mutex_); }
    int give() { return KOLT_Mutex_give(mutex_); }

  private:
    KOLT_Mutex *mutex_;
};

template <typename Lock>
class OsLock : public testing::Test {};

using Locks = testing::Types<GlobalLock, Mutex>;

class LockNames {
  public:
    template <typename Lock>
    // NOLINTNEXTLINE(readability-identifier-naming): GoogleTest calls it so.
    static std::string GetName(int) {
        return std::is_same_v<Lock, Mutex> ? "Mutex" : "GlobalLock";
    }
};

TYPED_TEST_SUITE(OsLock, Locks, LockNames);

TYPED_TEST(OsLock, TakesAndGives) {
    TypeParam lock;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(lock.take(), 0);
        EXPECT_EQ(lock.give(), 0);
    }
}

TYPED_TEST(OsLock, RefusesSecondTakeByHolder) {
    TypeParam lock;
    ASSERT_EQ(lock.take(), 0);
    EXPECT_EQ(lock.take(), EDEADLK);
    EXPECT_EQ(lock.give(), 0);
    EXPECT_EQ(lock.take(), 0);
    EXPECT_EQ(lock.give(), 0);
}

TYPED_TEST(OsLock, RefusesGiveByOthers) {
    TypeParam lock;
    EXPECT_EQ(lock.give(), EPERM);
    ASSERT_EQ(lock.take(), 0);
    int result = 0;
    std::thread([&] { result = lock.give(); }).join();
    EXPECT_EQ(result, EPERM);
    EXPECT_EQ(lock.give(), 0);
}

TYPED_TEST(OsLock, ExcludesManyThreads) {
    constexpr int kThreads = 8;
    constexpr int kRounds = 20000;
    TypeParam lock;
    long counter = 0;  // plain on purpose: the thread sanitizer watches it
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < kRounds; ++i) {
                failures += lock.take() != 0;
                ++counter;
                failures += lock.give() != 0;
            }
        });
    }
    for (auto &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(counter, long{kThreads} * kRounds);
}

TYPED_TEST(OsLock, WaiterSleepsUntilGiven) {
    TypeParam lock;
    ASSERT_EQ(lock.take(), 0);
    std::atomic<bool> started{false};
    std::atomic<bool> taken{false};
    std::thread waiter([&] {
        started = true;
        EXPECT_EQ(lock.take(), 0);
        taken = true;
        EXPECT_EQ(lock.give(), 0);
    });
    while (!started) {
        std::this_thread::yield();
    }
    // Long enough for the waiter to be asleep in the usual case; right in every case.
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(taken);
    EXPECT_EQ(lock.give(), 0);
    waiter.join();
    EXPECT_TRUE(taken);
}

TEST(OsGlobalLock, IsReadyWithoutCreation) {
    for (KOLT_GlobalLock *lock : {&static_lock, &zero_lock}) {
        EXPECT_EQ(KOLT_GlobalLock_take(lock), 0);
        EXPECT_EQ(KOLT_GlobalLock_give(lock), 0);
    }
}

TEST(OsLockNull, GivesErrors) {
    EXPECT_EQ(KOLT_GlobalLock_take(nullptr), EINVAL);
    EXPECT_EQ(KOLT_GlobalLock_give(nullptr), EINVAL);
    EXPECT_EQ(KOLT_Mutex_take(nullptr), EINVAL);
    EXPECT_EQ(KOLT_Mutex_give(nullptr), EINVAL);
    KOLT_Mutex_delete(nullptr);
}

}  // namespace
