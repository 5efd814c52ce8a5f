// Ours beside a peer in one run, since figures from different runs of a shared machine say nothing
// about each other: short rounds of the two take turns, each round gives a ratio, and the median of
// the ratios is the result.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <ctime>
#include <thread>
#include <vector>

namespace bench {

// Time that this thread has spent on a processor: what the machine does for others doesn't count.
struct ThreadClock {
    static double nanoseconds() {
        std::timespec time = {};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
    }
};

// Time that passes, waiting included.
struct WallClock {
    static double nanoseconds() {
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        return std::chrono::duration<double, std::nano>(now).count();
    }
};

// Nanoseconds that one of `calls` calls takes.
template <typename Clock, typename Function>
double time_per_call(int calls, Function &&function) {
    const double start = Clock::nanoseconds();
    for (int i = 0; i < calls; ++i) {
        function();
    }
    return (Clock::nanoseconds() - start) / calls;
}

// The value below which `percent` percent of the values lie; reorders them.
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
    // Three columns of the benchmark's line: the medians of each side, and of the ratios.
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

// Rounds in which `time_ours` and `time_peer`, in turns first, say how long a call took them. A
// benchmark that uses it has a fixed number of iterations (rounds) and manual time, which is ours.
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

// Long gaps asleep, as an application between two events; short ones at work.
inline void pause_for(std::chrono::microseconds gap) {
    if (gap >= std::chrono::milliseconds(1)) {
        std::this_thread::sleep_for(gap);
        return;
    }
    const double end = WallClock::nanoseconds() + static_cast<double>(gap.count()) * 1e3;
    while (WallClock::nanoseconds() < end) {
    }
}

// Single calls with a gap after each, so that what they hand over has been taken and whoever took
// it has gone back to waiting. Only the calls are timed, each alone: two readings of the clock,
// some tens of nanoseconds, are in every figure.
class PacedCalls {
  public:
    PacedCalls(int calls, std::chrono::microseconds gap) : calls_(calls), gap_(gap) {}

    // A round: the median of its calls.
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
    // Of the calls of all rounds.
    double p99() { return percentile(all_, 99); }

  private:
    int calls_;
    std::chrono::microseconds gap_;
    std::vector<double> all_;
};

// Rounds of paced calls, with the slowest hundredth of them in two columns more.
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
