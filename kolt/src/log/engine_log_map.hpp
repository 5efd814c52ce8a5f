// SPDX-License-Identifier: Apache-2.0
// The engine's log categories, and their levels and categories in the middleware's log.
#pragma once

#include <cstdint>
#include <string_view>

#include "kolt/config_logger.h"

namespace kolt::log {

// One bit for each category of the engine's log; engine_log_sink.cpp checks them against the
// engine's.
enum EngineCategory : std::uint32_t {
    kEngineFatal = 0x1,
    kEngineError = 0x2,
    kEngineWarning = 0x4,
    kEngineInfo = 0x8,
    kEngineConfig = 0x10,
    kEngineDiscovery = 0x20,
    kEngineData = 0x40,
    kEngineTrace = 0x80,
    kEngineRadmin = 0x100,
    kEngineTiming = 0x200,
    kEngineTraffic = 0x400,
    kEngineTopic = 0x800,
    kEngineTcp = 0x1000,
    kEnginePlist = 0x2000,
    kEngineWhc = 0x4000,
    kEngineThrottle = 0x8000,
    kEngineRhc = 0x10000,
    kEngineContent = 0x20000,
    kEngineShm = 0x40000,
};

// A line of the engine's log. `categories` has one bit, or several of which the most severe counts.
// `is_security`: it comes from the engine's security code and is filed under SECURITY.
void engine_message(std::uint32_t categories, bool is_security, const char *function,
                    std::string_view text);

// The engine categories whose messages some verbosity lets pass at this moment.
std::uint32_t enabled_engine_categories();

}  // namespace kolt::log
