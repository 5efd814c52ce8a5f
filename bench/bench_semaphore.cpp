// What a give costs the caller: KOLT_Semaphore beside std::counting_semaphore and POSIX sem_post.
//
// A consumer thread takes tokens all the time. The measured thread gives one and then does
// something else for `gap_us` microseconds, so that the consumer has gone back to waiting; only the
// give is timed. gap 0 gives without a pause. The counter `p99_ns` is the 99th percentile of one
// give.

#include <benchmark/benchmark.h>
#include <kolt/os.h>
#include <semaphore.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <semaphore>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

class KoltSemaphore {
  public:
    ~KoltSemaphore() { KOLT_Semaphore_delete(semaphore_); }
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

void pause_for(std::chrono::microseconds gap) {
    // Long gaps asleep, as an application between two log calls; short ones at work.
    if (gap >= std::chrono::milliseconds(1)) {
        std::this_thread::sleep_for(gap);
        return;
    }
    for (const auto end = Clock::now() + gap; Clock::now() < end;) {
    }
}

template <typename Semaphore>
void give(benchmark::State &state) {
    const std::chrono::microseconds gap(state.range(0));
    Semaphore semaphore;
    std::atomic<bool> running{true};
    std::thread consumer([&] {
        while (running.load(std::memory_order_relaxed)) {
            semaphore.take();
        }
    });
    std::vector<std::int64_t> times;
    times.reserve(1 << 20);
    for (auto _ : state) {
        const auto start = Clock::now();
        semaphore.give();
        const auto time = Clock::now() - start;
        state.SetIterationTime(std::chrono::duration<double>(time).count());
        if (times.size() < times.capacity()) {
            times.push_back(std::chrono::nanoseconds(time).count());
        }
        pause_for(gap);
    }
    running = false;
    semaphore.give();
    consumer.join();
    const auto p99 = times.begin() + static_cast<std::ptrdiff_t>(times.size() * 99 / 100);
    std::nth_element(times.begin(), p99, times.end());
    state.counters["p99_ns"] = static_cast<double>(*p99);
}

// Iterations are a property of a whole benchmark: one for each gap.
template <typename Semaphore>
void register_gaps(const std::string &name) {
    constexpr std::pair<std::int64_t, benchmark::IterationCount> kGaps[] = {
        {0, 300'000}, {10, 30'000}, {100, 5'000}, {1'000, 500}, {10'000, 100}};
    for (const auto &[gap, iterations] : kGaps) {
        benchmark::RegisterBenchmark(name.c_str(), give<Semaphore>)
            ->ArgName("gap_us")
            ->Arg(gap)
            ->Iterations(iterations)
            ->UseManualTime();
    }
}

// The clock readings alone: what every figure above contains.
void two_clock_readings(benchmark::State &state) {
    for (auto _ : state) {
        const auto start = Clock::now();
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    }
}
BENCHMARK(two_clock_readings)->UseManualTime();

// The two locks of the log path, uncontended.
void global_lock(benchmark::State &state) {
    static KOLT_GlobalLock lock = KOLT_GLOBAL_LOCK_INITIALIZER;
    for (auto _ : state) {
        KOLT_GlobalLock_take(&lock);
        KOLT_GlobalLock_give(&lock);
    }
}
BENCHMARK(global_lock);

}  // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    register_gaps<KoltSemaphore>("give/kolt");
    register_gaps<StdSemaphore>("give/std");
    register_gaps<PosixSemaphore>("give/posix");
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
