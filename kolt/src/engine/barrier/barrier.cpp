// SPDX-License-Identifier: Apache-2.0
// The log messages of the barrier.
#include "engine/barrier/barrier.hpp"

#include <cstdarg>
#include <cstdio>

namespace kolt::engine {

DDS_ReturnCode_t fail(DDS_ReturnCode_t code, const char *method, const char *format, ...) {
    const KOLT_Config_LogCategory category = code == DDS_RETCODE_BAD_PARAMETER
                                                 ? KOLT_CONFIG_LOG_CATEGORY_API
                                                 : KOLT_CONFIG_LOG_CATEGORY_ENTITIES;
    if (KOLT_Log_is_enabled(category, KOLT_CONFIG_LOG_LEVEL_ERROR)) {
        char text[512];
        va_list arguments;
        va_start(arguments, format);
        std::vsnprintf(text, sizeof(text), format, arguments);
        va_end(arguments);
        KOLT_Log_message(category, KOLT_CONFIG_LOG_LEVEL_ERROR, method, "%s (%s)", text,
                         KOLT_ReturnCode_to_string(code));
    }
    return code;
}

DDS_ReturnCode_t bad_parameter(const char *method, const char *name) {
    return fail(DDS_RETCODE_BAD_PARAMETER, method, "bad parameter: %s", name);
}

DDS_ReturnCode_t bad_handle(const char *method, const char *name, const void *handle) {
    return handle == nullptr
               ? bad_parameter(method, name)
               : fail(DDS_RETCODE_BAD_PARAMETER, method,
                      "bad parameter: %s: of another kind than the function takes", name);
}

DDS_ReturnCode_t not_enabled(const char *method) {
    return fail(DDS_RETCODE_NOT_ENABLED, method,
                "the entity is disabled: enable it with DDS_Entity_enable first");
}

void note_entity(const char *method, const char *what, const char *kind, const char *name) {
    KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_ENTITIES, KOLT_CONFIG_LOG_LEVEL_STATUS_LOCAL, method,
                     "%s %s %s", what, kind, name);
}

}  // namespace kolt::engine
