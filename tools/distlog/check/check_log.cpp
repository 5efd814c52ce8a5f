// SPDX-License-Identifier: Apache-2.0
// The middleware's own log while a document is checked.
#include "check/check_log.hpp"

#include <utility>

#include "net/session.hpp"

namespace distlog::check {
namespace {

void keep(KOLT_Config_LoggerDevice *device, const KOLT_Config_LogMessage *message) {
    static_cast<std::vector<std::string> *>(device->device_data)->emplace_back(message->text);
}

}  // namespace

MiddlewareLog::MiddlewareLog()
    : device_{&messages_, keep, nullptr},
      format_(KOLT_Config_Logger_get_print_format(KOLT_Config_Logger_get_instance())) {
    KOLT_Config_Logger *logger = KOLT_Config_Logger_get_instance();
    KOLT_Config_Logger_set_print_format(logger, KOLT_CONFIG_LOG_PRINT_FORMAT_MINIMAL);
    KOLT_Config_Logger_set_output_device(logger, &device_);
}

MiddlewareLog::~MiddlewareLog() {
    divert_middleware_log();
    KOLT_Config_Logger_set_print_format(KOLT_Config_Logger_get_instance(), format_);
}

std::vector<std::string> MiddlewareLog::take() {
    return std::exchange(messages_, {});
}

}  // namespace distlog::check
