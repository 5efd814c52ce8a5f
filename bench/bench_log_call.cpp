// What a log call costs the caller, beside spdlog's asynchronous logger, which also copies the text
// onto a bounded queue that one thread empties.
//
//   Filtered    a level that nobody wants to see
//   Queued      a message of 40 characters. Each round logs kBurst messages, less than either queue
//               holds, and lets the consumer catch up off the clock: the measure is the call, not
//               the consumer's throughput. Ours publishes to the network stack, spdlog's formats to
//               /dev/null.
#include <benchmark/benchmark.h>
#include <spdlog/async.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <thread>

#include "vur_dl/vur_dl.h"

namespace {

constexpr int kBurst = 1000;
constexpr int kQueueSize = 8192;
constexpr char kMessage[] = "sensor 4711 reports 23.5 degrees, normal";
constexpr std::chrono::milliseconds kCatchUp{20};

VUR_DL_DistLogger *logger() {
    static VUR_DL_DistLogger *instance = [] {
        VUR_DL_Options *options = VUR_DL_Options_createDefault();
        VUR_DL_Options_setEchoToStdout(options, 0);
        VUR_DL_Options_setQueueSize(options, kQueueSize);
        VUR_DL_Options_setDomainId(options, 200);
        VUR_DL_DistLogger_setOptions(options);
        VUR_DL_Options_delete(options);
        std::atexit([] { VUR_DL_DistLogger_finalizeInstance(); });
        return VUR_DL_DistLogger_getInstance();
    }();
    return instance;
}

spdlog::logger &peer() {
    static const std::shared_ptr<spdlog::logger> instance = [] {
        spdlog::init_thread_pool(kQueueSize, 1);
        auto created =
            spdlog::create_async_nb<spdlog::sinks::basic_file_sink_mt>("peer", "/dev/null");
        created->set_level(spdlog::level::info);
        std::atexit([] { spdlog::shutdown(); });
        return created;
    }();
    return *instance;
}

void filtered_ours(benchmark::State &state) {
    VUR_DL_DistLogger *self = logger();
    for (auto _ : state) {
        VUR_DL_DistLogger_debug(self, kMessage);
    }
}

void filtered_spdlog(benchmark::State &state) {
    spdlog::logger &self = peer();
    for (auto _ : state) {
        self.debug(kMessage);
    }
}

template <typename Log>
void bursts(benchmark::State &state, Log log) {
    using Clock = std::chrono::steady_clock;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        for (int i = 0; i < kBurst; ++i) {
            log();
        }
        const Clock::time_point end = Clock::now();
        state.SetIterationTime(std::chrono::duration<double>(end - start).count());
        std::this_thread::sleep_for(kCatchUp);
    }
    state.counters["ns_per_call"] = benchmark::Counter(
        static_cast<double>(kBurst),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void queued_ours(benchmark::State &state) {
    VUR_DL_DistLogger *self = logger();
    bursts(state, [self] { VUR_DL_DistLogger_info(self, kMessage); });
}

void queued_spdlog(benchmark::State &state) {
    spdlog::logger &self = peer();
    bursts(state, [&self] { self.info(kMessage); });
}

BENCHMARK(filtered_ours);
BENCHMARK(filtered_spdlog);
BENCHMARK(queued_ours)->UseManualTime()->Iterations(100);
BENCHMARK(queued_spdlog)->UseManualTime()->Iterations(100);

}  // namespace

BENCHMARK_MAIN();
