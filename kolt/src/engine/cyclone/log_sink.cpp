// SPDX-License-Identifier: Apache-2.0
// The engine's log sinks. The engine calls them on the thread that logs, with complete lines, while
// it holds its sink lock for reading: nothing in here, and no log device, may set sinks or masks
// through the functions that take that lock for writing.

#include "engine/cyclone/log_sink.hpp"

#include <dds/ddsrt/log.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "log/engine_log_map.hpp"
#include "log/verbosity.hpp"

namespace kolt::engine {

namespace {

static_assert(log::kEngineFatal == DDS_LC_FATAL);
static_assert(log::kEngineError == DDS_LC_ERROR);
static_assert(log::kEngineWarning == DDS_LC_WARNING);
static_assert(log::kEngineInfo == DDS_LC_INFO);
static_assert(log::kEngineConfig == DDS_LC_CONFIG);
static_assert(log::kEngineDiscovery == DDS_LC_DISCOVERY);
static_assert(log::kEngineData == DDS_LC_DATA);
static_assert(log::kEngineTrace == DDS_LC_TRACE);
static_assert(log::kEngineRadmin == DDS_LC_RADMIN);
static_assert(log::kEngineTiming == DDS_LC_TIMING);
static_assert(log::kEngineTraffic == DDS_LC_TRAFFIC);
static_assert(log::kEngineTopic == DDS_LC_TOPIC);
static_assert(log::kEngineTcp == DDS_LC_TCP);
static_assert(log::kEnginePlist == DDS_LC_PLIST);
static_assert(log::kEngineWhc == DDS_LC_WHC);
static_assert(log::kEngineThrottle == DDS_LC_THROTTLE);
static_assert(log::kEngineRhc == DDS_LC_RHC);
static_assert(log::kEngineContent == DDS_LC_CONTENT);
static_assert(log::kEngineShm == DDS_LC_SHM);

constexpr std::uint32_t kEveryCategory = DDS_LC_SHM * 2 - 1;

// True for a message about security. The engine does not have a category for it, but the source
// files carry it in their paths.
bool is_security_source(const char *file) {
    return file != nullptr && std::strstr(file, "security") != nullptr;
}

void sink(void *, const dds_log_data_t *data) {
    log::engine_message(data->priority, is_security_source(data->file), data->function,
                        std::string_view(data->message, data->size));
}

}  // namespace

void install_log_sink() {
    static const bool kInstalled = [] {
        // Opens the engine's second mask for the trace categories; only this call sets it.
        dds_set_log_mask(kEveryCategory);
        // The same function and argument twice: the engine then calls it once for each message.
        dds_set_log_sink(sink, nullptr);
        dds_set_trace_sink(sink, nullptr);
        log::set_verbosity_hook(refresh_log_mask);
        refresh_log_mask();
        return true;
    }();
    static_cast<void>(kInstalled);
}

void refresh_log_mask() {
    // The engine reads the word without a lock wherever it is about to log. Fatal messages cannot
    // be turned off there.
    const std::atomic_ref<std::uint32_t> mask(*dds_log_mask);
    std::uint32_t wanted = 0;
    do {
        wanted = log::enabled_engine_categories() | DDS_LC_FATAL;
        mask.store(wanted, std::memory_order_relaxed);
        // Two threads that change verbosities at once must not leave the older mask behind.
    } while (wanted != (log::enabled_engine_categories() | DDS_LC_FATAL));
}

}  // namespace kolt::engine
