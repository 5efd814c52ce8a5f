// SPDX-License-Identifier: Apache-2.0
// The verbosity of each category, read on every attempt to log and written rarely.
#pragma once

#include <atomic>
#include <cstdint>

#include "kolt/config_logger.h"

namespace kolt::log {

inline constexpr std::uint32_t kCategoryCount = KOLT_CONFIG_LOG_CATEGORY_COUNT;
inline constexpr std::uint32_t kLevelCount = KOLT_CONFIG_LOG_LEVEL_DEBUG + 1;

extern constinit std::atomic<std::uint32_t> verbosities[kCategoryCount];

// True when the category's verbosity lets the level pass; false for values that do not exist.
inline bool is_enabled(KOLT_Config_LogCategory category, KOLT_Config_LogLevel level) {
    const auto index = static_cast<std::uint32_t>(category);
    const auto bit = static_cast<std::uint32_t>(level);
    return index < kCategoryCount && bit < kLevelCount &&
           ((verbosities[index].load(std::memory_order_relaxed) >> bit) & 1U) != 0;
}

// Called on the thread that changes a verbosity, after the change and without a lock. One hook a
// process; the engine's side sets it to keep the engine from producing what would be dropped here.
void set_verbosity_hook(void (*hook)());

// Calls the hook, if there is one.
void verbosity_changed();

}  // namespace kolt::log
