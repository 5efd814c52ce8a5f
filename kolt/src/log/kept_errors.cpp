// SPDX-License-Identifier: Apache-2.0
// What is kept of the errors that a thread's work causes, and told afterwards.

#include "log/kept_errors.hpp"

#include <atomic>
#include <cstddef>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace kolt::log {

namespace {

struct KeptError {
    KOLT_Config_LogCategory category;
    KOLT_Config_LogLevel level;
    Module module;
    std::string method_name;
    std::string text;
};

// The first errors tell the cause, those after them what came of it.
constexpr std::size_t kMostKept = 8;

thread_local std::unique_ptr<std::vector<KeptError>> kept;  // null: this thread keeps nothing
constinit std::atomic<int> keeping_threads{0};

// Ends the keeping of the calling thread and returns what there is.
std::unique_ptr<std::vector<KeptError>> end_keeping() {
    if (kept != nullptr) {
        keeping_threads.fetch_sub(1);
        verbosity_changed();
    }
    return std::exchange(kept, nullptr);
}

}  // namespace

bool are_errors_kept() {
    return keeping_threads.load(std::memory_order_relaxed) != 0;
}

bool is_kept(KOLT_Config_LogLevel level) {
    return are_errors_kept() && level <= KOLT_CONFIG_LOG_LEVEL_ERROR && kept != nullptr;
}

void keep(KOLT_Config_LogCategory category, KOLT_Config_LogLevel level, Module module,
          const char *method_name, std::string_view text) {
    if (kept == nullptr || kept->size() >= kMostKept) {
        return;
    }
    try {
        kept->push_back({category, level, module, method_name != nullptr ? method_name : "",
                         std::string(text)});
    } catch (const std::bad_alloc &) {
        // One error fewer is told.
    }
}

}  // namespace kolt::log

void KOLT_Log_keep_errors(void) {
    using namespace kolt::log;
    if (kept == nullptr) {
        kept.reset(new (std::nothrow) std::vector<KeptError>);
        if (kept != nullptr) {
            keeping_threads.fetch_add(1);
            verbosity_changed();
        }
    }
}

void KOLT_Log_tell_kept_errors(void) {
    using namespace kolt::log;
    const auto errors = end_keeping();
    for (const KeptError &error : errors != nullptr ? *errors : std::vector<KeptError>()) {
        if (is_enabled(error.category, error.level)) {
            log_text(error.category, error.level, error.module,
                     error.method_name.empty() ? nullptr : error.method_name.c_str(), error.text);
        }
    }
}

void KOLT_Log_forget_kept_errors(void) {
    static_cast<void>(kolt::log::end_keeping());
}
