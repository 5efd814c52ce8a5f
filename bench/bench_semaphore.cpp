// SPDX-License-Identifier: Apache-2.0
// The cost of a give for the caller: KOLT_Semaphore, on which the logger's write thread waits,
// beside std::counting_semaphore and POSIX sem_post. Also the locks of the log path beside
// std::mutex.
//
//   give_vs_<peer>   a consumer thread for each of the two semaphores takes tokens all the time.
//                    The measured thread gives one and then does something else for `gap_us`
//                    microseconds, so that the consumer has gone back to waiting. Gap 0 gives
//                    without a pause.
//   global_lock, mutex   taken and given by one thread alone.
#include <benchmark/benchmark.h>
#include <kolt/os.h>
#include <semaphore.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <semaphore>
#include <string>
#include <thread>

#include "paired.h"

namespace {

class KoltSemaphore {
  public:
    KoltSemaphore() = default;
    ~KoltSemaphore() { KOLT_Semaphore_delete(semaphore_); }
    KoltSemaphore(const KoltSemaphore &) = delete;
    KoltSemaphore &operator=(const KoltSemaphore &) = delete;
    void give() { KOLT_Semaphore_give(semaphore_); }
    void take() { KOLT_Semaphore_take(semaphore_, nullptr); }

  private:
    KOLT_Semaphore *semaphore_ = KOLT_Semaphore_new(0);
};

class StdSemaphore {
  public:
    void give() { semaphore_.release(); }
    void take() { semaphore_.acquire(); }

  private:
    std::counting_semaphore<> semaphore_{0};
};

class PosixSemaphore {
  public:
    PosixSemaphore() { sem_init(&semaphore_, 0, 0); }
    ~PosixSemaphore() { sem_destroy(&semaphore_); }
    PosixSemaphore(const PosixSemaphore &) = delete;
    PosixSemaphore &operator=(const PosixSemaphore &) = delete;
    void give() { sem_post(&semaphore_); }
    void take() {
        while (sem_wait(&semaphore_) != 0) {
        }
    }

  private:
    sem_t semaphore_{};
};

// A semaphore with a thread that takes from it.
template <typename Semaphore>
class Consumed {
  public:
    Consumed()
        : consumer_([this] {
              while (running_.load(std::memory_order_relaxed)) {
                  semaphore_.take();
              }
          }) {}
    ~Consumed() {
        running_ = false;
        semaphore_.give();
        consumer_.join();
    }
    Consumed(const Consumed &) = delete;
    Consumed &operator=(const Consumed &) = delete;
    void give() { semaphore_.give(); }

  private:
    Semaphore semaphore_;
    std::atomic<bool> running_{true};
    std::thread consumer_;  // the last member, because it uses the others
};

template <typename Peer>
void give(benchmark::State &state) {
    const std::chrono::microseconds gap(state.range(0));
    const auto calls = static_cast<int>(state.range(1));
    Consumed<KoltSemaphore> ours;
    Consumed<Peer> peer;
    if (gap.count() > 0) {
        bench::take_paced_turns(
            state, calls, gap, [&] { ours.give(); }, [&] { peer.give(); });
        return;
    }
    using bench::WallClock;
    bench::take_turns(
        state, [&] { return bench::time_per_call<WallClock>(calls, [&] { ours.give(); }); },
        [&] { return bench::time_per_call<WallClock>(calls, [&] { peer.give(); }); });
}

// Registers one benchmark for each gap, because the number of rounds belongs to a whole benchmark.
template <typename Peer>
void register_gaps(const std::string &name) {
    struct Gap {
        std::int64_t microseconds;
        std::int64_t calls;
        benchmark::IterationCount rounds;
    };
    constexpr Gap kGaps[] = {
        {0, 1000, 200}, {10, 100, 100}, {100, 50, 50}, {1'000, 10, 30}, {10'000, 10, 20}};
    for (const Gap &gap : kGaps) {
        benchmark::RegisterBenchmark(name.c_str(), give<Peer>)
            ->ArgNames({"gap_us", "calls"})
            ->Args({gap.microseconds, gap.calls})
            ->Iterations(gap.rounds)
            ->UseManualTime();
    }
}

constexpr int kLockRounds = 200;
constexpr int kLockCalls = 10'000;

template <typename Ours>
void lock_and_unlock(benchmark::State &state, Ours ours) {
    using bench::ThreadClock;
    std::mutex mutex;
    bench::take_turns(
        state, [&] { return bench::time_per_call<ThreadClock>(kLockCalls, ours); },
        [&] {
            return bench::time_per_call<ThreadClock>(kLockCalls, [&] {
                mutex.lock();
                mutex.unlock();
            });
        });
}

void global_lock(benchmark::State &state) {
    static KOLT_GlobalLock lock = KOLT_GLOBAL_LOCK_INITIALIZER;
    lock_and_unlock(state, [] {
        KOLT_GlobalLock_take(&lock);
        KOLT_GlobalLock_give(&lock);
    });
}

void mutex(benchmark::State &state) {
    KOLT_Mutex *ours = KOLT_Mutex_new();
    lock_and_unlock(state, [ours] {
        KOLT_Mutex_take(ours);
        KOLT_Mutex_give(ours);
    });
    KOLT_Mutex_delete(ours);
}

BENCHMARK(global_lock)->Iterations(kLockRounds)->UseManualTime();
BENCHMARK(mutex)->Iterations(kLockRounds)->UseManualTime();

}  // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    register_gaps<StdSemaphore>("give_vs_std");
    register_gaps<PosixSemaphore>("give_vs_posix");
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
