// SPDX-License-Identifier: Apache-2.0
// Errors that a verbosity drops, kept for the thread that asked for it.
#pragma once

#include <string_view>

#include "log/event.hpp"
#include "log/verbosity.hpp"

namespace kolt::log {

// True when some thread keeps errors: the engine then has to produce them.
bool are_errors_kept();
// True when the calling thread keeps messages of this level.
bool is_kept(KOLT_Config_LogLevel level);

// Keeps a message of the calling thread, if there is room.
void keep(KOLT_Config_LogCategory category, KOLT_Config_LogLevel level, Module module,
          const char *method_name, std::string_view text);

// True when a message would be written or kept.
inline bool is_wanted(KOLT_Config_LogCategory category, KOLT_Config_LogLevel level) {
    return is_enabled(category, level) || is_kept(level);
}

}  // namespace kolt::log
