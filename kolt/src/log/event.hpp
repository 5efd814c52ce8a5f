// SPDX-License-Identifier: Apache-2.0
// A message before it is formatted.
#pragma once

#include <cstdint>
#include <ctime>
#include <string_view>

#include "kolt/config_logger.h"

namespace kolt::log {

// The software that reports.
enum class Module { kKolt, kEngine };

struct Event {
    KOLT_Config_LogCategory category;
    KOLT_Config_LogLevel level;
    Module module;
    const char *method_name;  // may be null
    std::string_view text;
    std::uint32_t id;  // running number, 1, 2, 3...
    timespec time;     // since the epoch
};

inline bool is_security_message(const Event &event) {
    return event.category == KOLT_CONFIG_LOG_CATEGORY_SECURITY;
}

KOLT_Config_LogFacility facility_of(const Event &event);

// Numbers, stamps, formats and delivers a message that passes its category's verbosity; one that does
// not is kept, if the thread keeps it (kept_errors.hpp). Logging from within is allowed (see
// device.hpp). errno stays.
void log_text(KOLT_Config_LogCategory category, KOLT_Config_LogLevel level, Module module,
              const char *method_name, std::string_view text);

}  // namespace kolt::log
