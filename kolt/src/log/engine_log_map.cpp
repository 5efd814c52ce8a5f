// SPDX-License-Identifier: Apache-2.0
// The one table that maps the engine's log to the middleware's.

#include "log/engine_log_map.hpp"

#include "log/event.hpp"
#include "log/kept_errors.hpp"
#include "log/verbosity.hpp"

namespace kolt::log {

namespace {

struct Row {
    EngineCategory engine;
    KOLT_Config_LogLevel level;
    KOLT_Config_LogCategory category;
};

// The most severe first: the first row that a message matches counts.
constexpr Row kRows[] = {
    {kEngineFatal, KOLT_CONFIG_LOG_LEVEL_FATAL_ERROR, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION},
    {kEngineError, KOLT_CONFIG_LOG_LEVEL_ERROR, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION},
    {kEngineWarning, KOLT_CONFIG_LOG_LEVEL_WARNING, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION},
    {kEngineInfo, KOLT_CONFIG_LOG_LEVEL_STATUS_LOCAL, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION},
    {kEngineConfig, KOLT_CONFIG_LOG_LEVEL_STATUS_LOCAL, KOLT_CONFIG_LOG_CATEGORY_PLATFORM},
    {kEngineDiscovery, KOLT_CONFIG_LOG_LEVEL_STATUS_REMOTE, KOLT_CONFIG_LOG_CATEGORY_DISCOVERY},
    {kEngineTopic, KOLT_CONFIG_LOG_LEVEL_STATUS_REMOTE, KOLT_CONFIG_LOG_CATEGORY_DISCOVERY},
    {kEngineData, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION},
    {kEngineTrace, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION},
    {kEngineRadmin, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION},
    {kEngineTraffic, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION},
    {kEngineTcp, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION},
    {kEngineThrottle, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION},
    {kEnginePlist, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_DISCOVERY},
    {kEngineWhc, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_DATABASE},
    {kEngineRhc, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_DATABASE},
    {kEngineContent, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_DATABASE},
    {kEngineTiming, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_PLATFORM},
    {kEngineShm, KOLT_CONFIG_LOG_LEVEL_DEBUG, KOLT_CONFIG_LOG_CATEGORY_PLATFORM},
};

constexpr bool each_category_has_a_row() {
    std::uint32_t seen = 0;
    for (const Row &row : kRows) {
        if ((seen & row.engine) != 0) {
            return false;
        }
        seen |= row.engine;
    }
    return seen == kEngineShm * 2 - 1;
}
static_assert(each_category_has_a_row());

}  // namespace

void engine_message(std::uint32_t categories, bool is_security, const char *function,
                    std::string_view text) {
    for (const Row &row : kRows) {
        if ((categories & row.engine) != 0) {
            const auto category = is_security ? KOLT_CONFIG_LOG_CATEGORY_SECURITY : row.category;
            if (is_wanted(category, row.level)) {
                log_text(category, row.level, Module::kEngine, function, text);
            }
            return;
        }
    }
}

std::uint32_t enabled_engine_categories() {
    std::uint32_t enabled = 0;
    for (const Row &row : kRows) {
        // The security code uses every category.
        if ((row.level <= KOLT_CONFIG_LOG_LEVEL_ERROR && are_errors_kept()) ||
            is_enabled(row.category, row.level) ||
            is_enabled(KOLT_CONFIG_LOG_CATEGORY_SECURITY, row.level)) {
            enabled |= row.engine;
        }
    }
    return enabled;
}

}  // namespace kolt::log
