// SPDX-License-Identifier: Apache-2.0
// The reports of the typed writers and readers about wrong calls.
#pragma once

#include <cstring>

#include "kolt/config_logger.h"

namespace vur_dl {

inline void log_error(const char *method_name, const char *text) noexcept {
    KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_API, KOLT_CONFIG_LOG_LEVEL_ERROR, method_name, "%s",
                     text);
}

// True for a pointer. Reports a NULL as the bad parameter `what` and returns false.
inline bool require(const void *pointer, const char *method_name, const char *what) noexcept {
    if (pointer == nullptr) {
        KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_API, KOLT_CONFIG_LOG_LEVEL_ERROR, method_name,
                         "bad parameter: %s", what);
    }
    return pointer != nullptr;
}

inline bool is_type(const char *endpoint_type_name, const char *wanted) noexcept {
    return endpoint_type_name != nullptr && std::strcmp(endpoint_type_name, wanted) == 0;
}

}  // namespace vur_dl
