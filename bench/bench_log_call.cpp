// SPDX-License-Identifier: Apache-2.0
// The cost of a log call for the caller, beside spdlog's asynchronous logger. That one also copies
// the text onto a bounded queue that one thread empties, and never makes the caller wait for room.
//
//   filtered     calls at a level that is switched off.
//   queued       bursts of enabled calls. A burst is less than either queue holds, and the
//                consumers catch up off the clock: the measure is the call with the consumer at
//                work beside it, not the consumer's throughput. Ours publishes to the network
//                stack, spdlog's formats to /dev/null.
//   paced        single enabled calls, with a gap after which the consumer waits again, or sleeps:
//                the cost for a program that logs now and then.
//
// All calls are on one thread, with a literal of 40 characters, or of 400 where the name says
// "long". The first fits a queue element of either logger; for the second both allocate. Ours has
// an empty category, spdlog's a logger's name.
#include <benchmark/benchmark.h>
#include <spdlog/async.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>

#include "paired.h"
#include "vur_dl/vur_dl.h"

namespace {

constexpr int kDomain = 190;
constexpr int kQueueSize = 8192;
constexpr char kMessage[] = "sensor 4711 reports 23.5 degrees, normal";

constexpr int kFilteredRounds = 200;
constexpr int kFilteredCalls = 10'000;

// An eighth of the queues' size. Catching up takes a few milliseconds of a processor.
constexpr int kBurst = 1000;
constexpr int kBurstRounds = 60;
constexpr std::chrono::milliseconds kCatchUp{20};

VUR_DL_DistLogger *logger() {
    static VUR_DL_DistLogger *instance = [] {
        VUR_DL_Options *options = VUR_DL_Options_createDefault();
        VUR_DL_Options_setEchoToStdout(options, 0);
        VUR_DL_Options_setQueueSize(options, kQueueSize);
        VUR_DL_Options_setDomainId(options, kDomain);
        VUR_DL_DistLogger_setOptions(options);
        VUR_DL_Options_delete(options);
        std::atexit([] { VUR_DL_DistLogger_finalizeInstance(); });
        return VUR_DL_DistLogger_getInstance();
    }();
    return instance;
}

spdlog::logger &peer() {
    static std::shared_ptr<spdlog::logger> instance = [] {
        spdlog::init_thread_pool(kQueueSize, 1);
        auto created =
            spdlog::create_async_nb<spdlog::sinks::basic_file_sink_mt>("peer", "/dev/null");
        created->set_level(spdlog::level::info);
        std::atexit([] { spdlog::shutdown(); });
        return created;
    }();
    return *instance;
}

// Returns the logger of a benchmark; NULL, with the benchmark marked as failed, when there is none.
VUR_DL_DistLogger *logger_for(benchmark::State &state) {
    VUR_DL_DistLogger *instance = logger();
    if (instance == nullptr) {
        state.SkipWithError("no logger");
    }
    return instance;
}

// Fails the benchmark when the peer overwrote queued messages: they cost less than published ones.
void check_overruns(benchmark::State &state) {
    if (spdlog::thread_pool()->overrun_counter() != 0) {
        state.SkipWithError("the peer's queue overran");
    }
}

void filtered(benchmark::State &state) {
    VUR_DL_DistLogger *ours = logger_for(state);
    if (ours == nullptr) {
        return;
    }
    spdlog::logger &theirs = peer();
    using bench::ThreadClock;
    bench::take_turns(
        state,
        [&] {
            return bench::time_per_call<ThreadClock>(
                kFilteredCalls, [&] { VUR_DL_DistLogger_debug(ours, kMessage); });
        },
        [&] {
            return bench::time_per_call<ThreadClock>(kFilteredCalls,
                                                     [&] { theirs.debug(kMessage); });
        });
}

template <typename Log>
double time_burst(Log &&log) {
    const double time = bench::time_per_call<bench::WallClock>(kBurst, log);
    std::this_thread::sleep_for(kCatchUp);
    return time;
}

void queued(benchmark::State &state, const char *message) {
    VUR_DL_DistLogger *ours = logger_for(state);
    if (ours == nullptr) {
        return;
    }
    spdlog::logger &theirs = peer();
    bench::take_turns(
        state, [&] { return time_burst([&] { VUR_DL_DistLogger_info(ours, message); }); },
        [&] { return time_burst([&] { theirs.info(message); }); });
    check_overruns(state);
}

void queued_short(benchmark::State &state) {
    queued(state, kMessage);
}

void queued_long(benchmark::State &state) {
    std::string message;
    while (message.size() < 400) {
        message += kMessage;
    }
    queued(state, message.c_str());
}

void paced(benchmark::State &state) {
    VUR_DL_DistLogger *ours = logger_for(state);
    if (ours == nullptr) {
        return;
    }
    spdlog::logger &theirs = peer();
    const auto calls = static_cast<int>(state.range(1));
    bench::take_paced_turns(
        state, calls, std::chrono::microseconds(state.range(0)),
        [&] { VUR_DL_DistLogger_info(ours, kMessage); }, [&] { theirs.info(kMessage); });
    check_overruns(state);
}

BENCHMARK(filtered)->Iterations(kFilteredRounds)->UseManualTime();
BENCHMARK(queued_short)->Name("queued")->Iterations(kBurstRounds)->UseManualTime();
BENCHMARK(queued_long)->Name("queued_long")->Iterations(kBurstRounds)->UseManualTime();
BENCHMARK(paced)->ArgNames({"gap_us", "calls"})->Args({100, 50})->Iterations(100)->UseManualTime();
BENCHMARK(paced)
    ->ArgNames({"gap_us", "calls"})
    ->Args({10'000, 10})
    ->Iterations(20)
    ->UseManualTime();

}  // namespace

BENCHMARK_MAIN();
