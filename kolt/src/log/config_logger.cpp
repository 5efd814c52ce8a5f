// SPDX-License-Identifier: Apache-2.0
// The middleware's logger: the public functions, and the way of a message through it.

#include "kolt/config_logger.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>

#include "kolt/os.h"
#include "log/device.hpp"
#include "log/event.hpp"
#include "log/kept_errors.hpp"
#include "log/line_format.hpp"
#include "log/verbosity.hpp"

// The state lies beside the code that uses it; the handle stands for all of it.
struct KOLT_Config_Logger {
    char unused;
};

namespace kolt::log {

namespace {

constinit KOLT_Config_Logger instance{};
constinit std::atomic<std::uint32_t> last_message_id{0};

class ErrnoKept {
  public:
    ErrnoKept() : value_(errno) {}
    ~ErrnoKept() { errno = value_; }
    ErrnoKept(const ErrnoKept &) = delete;
    ErrnoKept &operator=(const ErrnoKept &) = delete;

  private:
    int value_;
};

DDS_Duration_t to_duration(const timespec &time) {
    constexpr std::int64_t kSecondsMask = 0x7fffffff;
    return {static_cast<DDS_Long>(std::int64_t{time.tv_sec} & kSecondsMask),
            static_cast<DDS_UnsignedLong>(time.tv_nsec)};
}

}  // namespace

KOLT_Config_LogFacility facility_of(const Event &event) {
    switch (event.category) {
        case KOLT_CONFIG_LOG_CATEGORY_USER:
            return KOLT_CONFIG_LOG_FACILITY_USER;
        case KOLT_CONFIG_LOG_CATEGORY_SECURITY:
            return KOLT_CONFIG_LOG_FACILITY_SECURITY_EVENT;
        default:
            return KOLT_CONFIG_LOG_FACILITY_MIDDLEWARE;
    }
}

void log_text(KOLT_Config_LogCategory category, KOLT_Config_LogLevel level, Module module,
              const char *method_name, std::string_view text) {
    const ErrnoKept errno_kept;
    if (!is_enabled(category, level)) {
        keep(category, level, module, method_name, text);
        return;
    }
    Event event{category, level, module, method_name, text, 0, {}};
    event.id = last_message_id.fetch_add(1, std::memory_order_relaxed) + 1;
    clock_gettime(CLOCK_REALTIME, &event.time);

    TextBuffer formatted;
    format_event(event, print_format(), formatted);
    const KOLT_Config_LogMessage message = {
        formatted.c_str(),
        level,
        is_security_message(event) ? DDS_BOOLEAN_TRUE : DDS_BOOLEAN_FALSE,
        event.id,
        to_duration(event.time),
        facility_of(event)};
    deliver(message);
}

namespace {

// Formats on the stack, and on the heap what is longer. Without memory the text is cut.
[[gnu::format(printf, 4, 0)]] void log_formatted(KOLT_Config_LogCategory category,
                                                 KOLT_Config_LogLevel level,
                                                 const char *method_name, const char *format,
                                                 va_list arguments) {
    const ErrnoKept errno_kept;
    std::array<char, 512> text{};
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(text.data(), text.size(), format, arguments);
    char *longer = nullptr;
    if (length >= static_cast<int>(text.size())) {
        const std::size_t size = static_cast<std::size_t>(length) + 1;
        longer = static_cast<char *>(KOLT_Heap_allocate(size));
        if (longer != nullptr) {
            std::vsnprintf(longer, size, format, again);
        }
    }
    va_end(again);
    log_text(category, level, Module::kKolt, method_name, longer != nullptr ? longer : text.data());
    KOLT_Heap_free(longer);
}

}  // namespace

}  // namespace kolt::log

KOLT_Config_Logger *KOLT_Config_Logger_get_instance(void) {
    return &kolt::log::instance;
}

KOLT_Config_LogPrintFormat KOLT_Config_Logger_get_print_format(KOLT_Config_Logger *self) {
    return self != nullptr ? static_cast<KOLT_Config_LogPrintFormat>(kolt::log::print_format())
                           : KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT;
}

DDS_Boolean KOLT_Config_Logger_set_print_format(KOLT_Config_Logger *self,
                                                KOLT_Config_LogPrintFormat print_format) {
    return self != nullptr && kolt::log::set_print_format(static_cast<std::uint32_t>(print_format));
}

DDS_Boolean KOLT_Config_Logger_set_output_device(KOLT_Config_Logger *self,
                                                 KOLT_Config_LoggerDevice *device) {
    if (self == nullptr || (device != nullptr && device->write == nullptr)) {
        return DDS_BOOLEAN_FALSE;
    }
    return kolt::log::install_device(device);
}

KOLT_Config_LoggerDevice *KOLT_Config_Logger_get_output_device(KOLT_Config_Logger *self) {
    return self != nullptr ? kolt::log::installed_device() : nullptr;
}

void KOLT_Log_message(KOLT_Config_LogCategory category, KOLT_Config_LogLevel level,
                      const char *method_name, const char *format, ...) {
    if (!kolt::log::is_wanted(category, level) || format == nullptr) {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    kolt::log::log_formatted(category, level, method_name, format, arguments);
    va_end(arguments);
}

DDS_Boolean KOLT_Log_is_enabled(KOLT_Config_LogCategory category, KOLT_Config_LogLevel level) {
    return kolt::log::is_wanted(category, level);
}
