// SPDX-License-Identifier: Apache-2.0
// The parse context, and the conversion of booleans, which reports to it.

#include <strings.h>

#include <cstdarg>
#include <cstdio>
#include <string_view>

#include "kolt/xml.h"

DDS_UnsignedLong DDS_XMLContext_get_current_line_number(const DDS_XMLContext *context) {
    return context == nullptr ? 0U : context->_line_number;
}

const char *DDS_XMLContext_get_source_name(const DDS_XMLContext *context) {
    return context == nullptr || context->_source_name == nullptr ? "" : context->_source_name;
}

void DDS_XMLContext_report_error(DDS_XMLContext *context, const char *format, ...) {
    if (context == nullptr || format == nullptr) {
        return;
    }
    if (context->_message[0] == '\0') {
        std::va_list arguments;
        va_start(arguments, format);
        std::vsnprintf(context->_message, sizeof(context->_message), format, arguments);
        va_end(arguments);
    }
    context->error = 1;
}

const char *DDS_XMLContext_get_error_message(const DDS_XMLContext *context) {
    return context == nullptr ? "" : context->_message;
}

namespace {

// Without the white space of XML at both ends.
std::string_view trim(std::string_view text) {
    constexpr std::string_view kWhiteSpace = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kWhiteSpace);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1);
}

bool equals_ignoring_case(std::string_view text, std::string_view name) {
    return text.size() == name.size() && strncasecmp(text.data(), name.data(), name.size()) == 0;
}

}  // namespace

DDS_Boolean DDS_XMLHelper_str_to_boolean(DDS_Boolean *boolean, const char *text,
                                         DDS_XMLContext *context) {
    if (boolean == nullptr || text == nullptr) {
        DDS_XMLContext_report_error(context, "no boolean given");
        return DDS_BOOLEAN_FALSE;
    }
    const std::string_view value = trim(text);
    if (equals_ignoring_case(value, "true") || value == "1") {
        *boolean = DDS_BOOLEAN_TRUE;
    } else if (equals_ignoring_case(value, "false") || value == "0") {
        *boolean = DDS_BOOLEAN_FALSE;
    } else {
        DDS_XMLContext_report_error(
            context, "\"%.64s\" is not a boolean; expected: true, false, 1, 0", text);
        return DDS_BOOLEAN_FALSE;
    }
    return DDS_BOOLEAN_TRUE;
}
