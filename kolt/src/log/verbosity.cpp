// SPDX-License-Identifier: Apache-2.0
// Verbosities of the middleware's logger.

#include "log/verbosity.hpp"

#include <algorithm>

namespace kolt::log {

namespace {

constexpr std::uint32_t kDefault = KOLT_CONFIG_LOG_VERBOSITY_ERROR;
constexpr std::uint32_t kAllLevels = KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL;
static_assert(kAllLevels == (1U << kLevelCount) - 1);

constinit std::atomic<void (*)()> verbosity_hook{nullptr};

void store(std::uint32_t category, KOLT_Config_LogVerbosity verbosity) {
    // Atomic for the sake of readers; nothing else is published with it.
    verbosities[category].store(static_cast<std::uint32_t>(verbosity) & kAllLevels,
                                std::memory_order_relaxed);
}

KOLT_Config_LogVerbosity load(std::uint32_t category) {
    return static_cast<KOLT_Config_LogVerbosity>(
        verbosities[category].load(std::memory_order_relaxed));
}

}  // namespace

static_assert(kCategoryCount == 8, "one initial value for each category below");
constinit std::atomic<std::uint32_t> verbosities[kCategoryCount] = {
    kDefault, kDefault, kDefault, kDefault, kDefault, kDefault, kDefault, kDefault};

void set_verbosity_hook(void (*hook)()) {
    verbosity_hook.store(hook, std::memory_order_release);
}

void verbosity_changed() {
    if (const auto hook = verbosity_hook.load(std::memory_order_acquire); hook != nullptr) {
        hook();
    }
}

}  // namespace kolt::log

KOLT_Config_LogVerbosity KOLT_Config_Logger_get_verbosity(KOLT_Config_Logger *self) {
    auto highest = KOLT_CONFIG_LOG_VERBOSITY_SILENT;
    for (std::uint32_t i = 0; self != nullptr && i < kolt::log::kCategoryCount; ++i) {
        highest = std::max(highest, kolt::log::load(i));
    }
    return highest;
}

KOLT_Config_LogVerbosity KOLT_Config_Logger_get_verbosity_by_category(
    KOLT_Config_Logger *self, KOLT_Config_LogCategory category) {
    const auto index = static_cast<std::uint32_t>(category);
    return self != nullptr && index < kolt::log::kCategoryCount ? kolt::log::load(index)
                                                                : KOLT_CONFIG_LOG_VERBOSITY_SILENT;
}

void KOLT_Config_Logger_set_verbosity(KOLT_Config_Logger *self,
                                      KOLT_Config_LogVerbosity verbosity) {
    if (self == nullptr) {
        return;
    }
    for (std::uint32_t i = 0; i < kolt::log::kCategoryCount; ++i) {
        kolt::log::store(i, verbosity);
    }
    kolt::log::verbosity_changed();
}

void KOLT_Config_Logger_set_verbosity_by_category(KOLT_Config_Logger *self,
                                                  KOLT_Config_LogCategory category,
                                                  KOLT_Config_LogVerbosity verbosity) {
    const auto index = static_cast<std::uint32_t>(category);
    if (self == nullptr || index >= kolt::log::kCategoryCount) {
        return;
    }
    kolt::log::store(index, verbosity);
    kolt::log::verbosity_changed();
}
