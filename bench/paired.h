// SPDX-License-Identifier: Apache-2.0
// Measures our code beside a peer in one run: short rounds of the two take turns, each round gives
// a ratio, and the median of the ratios is the result. Figures from different runs of a shared
// machine cannot be compared with each other.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <ctime>
#include <thread>
#include <vector>

namespace bench {

// Counts the time that this thread has spent on a processor. The work of other threads does not
// count.
struct ThreadClock {
    static double nanoseconds() {
        std::timespec time = {};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
    }
};

// Counts the time that passes, waiting included.
struct WallClock {
    static double nanoseconds() {
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        return std::chrono::duration<double, std::nano>(now).count();
    }
};

// Returns the nanoseconds that one of `calls` calls takes.
template <typename Clock, typename Function>
double time_per_call(int calls, Function &&function) {
    const double start = Clock::nanoseconds();
    for (int i = 0; i < calls; ++i) {
        function();
    }
    return (Clock::nanoseconds() - start) / calls;
}

// Returns the value below which `percent` percent of the values lie; reorders them.
inline double percentile(std::vector<double> &values, std::size_t percent) {
    if (values.empty()) {
        return 0;
    }
    const std::size_t place = std::min(values.size() * percent / 100, values.size() - 1);
    const auto nth = values.begin() + static_cast<std::ptrdiff_t>(place);
    std::nth_element(values.begin(), nth, values.end());
    return *nth;
}

inline double median(std::vector<double> &values) {
    return percentile(values, 50);
}

// The rounds of one benchmark. Both sides are in nanoseconds for one call.
class Rounds {
  public:
    void add(double ours, double peer) {
        ours_.push_back(ours);
        peer_.push_back(peer);
        ratios_.push_back(ours / peer);
    }
    // Fills three columns of the benchmark's line: the median of each side and that of the ratios.
    void report(benchmark::State &state) {
        state.counters["ours_ns"] = median(ours_);
        state.counters["peer_ns"] = median(peer_);
        state.counters["ratio"] = median(ratios_);
    }

  private:
    std::vector<double> ours_;
    std::vector<double> peer_;
    std::vector<double> ratios_;
};

// Runs the rounds. In each, `time_ours` and `time_peer` return how long a call took; they take
// turns in being first. A benchmark that uses this has a fixed number of iterations (rounds) and
// manual time, which is ours.
template <typename TimeOurs, typename TimePeer>
void take_turns(benchmark::State &state, TimeOurs &&time_ours, TimePeer &&time_peer) {
    Rounds rounds;
    bool ours_first = true;
    for (auto _ : state) {
        double peer = ours_first ? 0 : time_peer();
        const double ours = time_ours();
        if (ours_first) {
            peer = time_peer();
        }
        ours_first = !ours_first;
        rounds.add(ours, peer);
        state.SetIterationTime(ours * 1e-9);
    }
    rounds.report(state);
}

// Spends a long gap asleep, as an application between two events; a short one at work.
inline void pause_for(std::chrono::microseconds gap) {
    if (gap >= std::chrono::milliseconds(1)) {
        std::this_thread::sleep_for(gap);
        return;
    }
    const double end = WallClock::nanoseconds() + static_cast<double>(gap.count()) * 1e3;
    while (WallClock::nanoseconds() < end) {
    }
}

// Makes single calls with a gap after each, in which the consumer takes what the call handed over
// and goes back to waiting. Only the calls are timed, each alone, so every figure contains two
// readings of the clock: some tens of nanoseconds.
class PacedCalls {
  public:
    PacedCalls(int calls, std::chrono::microseconds gap) : calls_(calls), gap_(gap) {}

    // Runs a round; returns the median of its calls.
    template <typename Function>
    double time(Function &&function) {
        std::vector<double> round;
        for (int i = 0; i < calls_; ++i) {
            const double start = WallClock::nanoseconds();
            function();
            round.push_back(WallClock::nanoseconds() - start);
            pause_for(gap_);
        }
        all_.insert(all_.end(), round.begin(), round.end());
        return median(round);
    }
    // Returns the percentile of the calls of all rounds.
    double p99() { return percentile(all_, 99); }

  private:
    int calls_;
    std::chrono::microseconds gap_;
    std::vector<double> all_;
};

// Runs rounds of paced calls; two more columns show the slowest hundredth of the calls.
template <typename Ours, typename Peer>
void take_paced_turns(benchmark::State &state, int calls, std::chrono::microseconds gap,
                      Ours &&ours, Peer &&peer) {
    PacedCalls our_calls(calls, gap);
    PacedCalls peer_calls(calls, gap);
    take_turns(
        state, [&] { return our_calls.time(ours); }, [&] { return peer_calls.time(peer); });
    state.counters["ours_p99"] = our_calls.p99();
    state.counters["peer_p99"] = peer_calls.p99();
}

}  // namespace bench
