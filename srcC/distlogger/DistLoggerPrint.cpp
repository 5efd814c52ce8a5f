// SPDX-License-Identifier: Apache-2.0
// The one routine that prints: the library's own reports and the echoed messages.
#include <cstdio>
#include <cstring>

#include "kolt_internal/no_cancellation.hpp"
#include "vur_dl/DistLogger.h"
#include "vur_dl/EnumTranslators.h"

namespace {

constexpr unsigned int kMessageIsEmpty = 3;
constexpr unsigned int kTextIsNull = 4;

}  // namespace

unsigned int VUR_DL_DistLogger_printMessage(const char *message, const char *method_name,
                                            int log_level) {
    const kolt::NoCancellation no_cancellation;  // the caller may hold a lock
    if (message == nullptr || method_name == nullptr) {
        std::printf("DL Error: %s: String passed as parameter is NULL.\n", __func__);
        return kTextIsNull;
    }
    const std::size_t length = std::strlen(message);
    if (length == 0) {
        std::printf("DL Error: %s: Message to print is empty.\n", __func__);
        return kMessageIsEmpty;
    }
    char level_name[16];
    static_assert(sizeof level_name >= VUR_DL_LOG_LEVEL_LABEL_SIZE);
    const DDS_ReturnCode_t result = VUR_DL_translateFromDLLogLevelToString(log_level, level_name);
    const char *newline = message[length - 1] == '\n' ? "" : "\n";
    if (result == DDS_RETCODE_OK) {
        std::printf("%s: %s: %s%s", level_name, method_name, message, newline);
    } else {
        std::printf("DL Warning: %s: %s%s", method_name, message, newline);
    }
    return static_cast<unsigned int>(result);
}
