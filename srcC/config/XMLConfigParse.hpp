// SPDX-License-Identifier: Apache-2.0
// Reading of names and numbers, shared by the converters of element texts.
#pragma once

#include <strings.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>

#include "vur_dl/XMLConfig.h"

namespace vur_dl {

// Reports an error inside the element and fails the parse.
inline void report_parse_error(const char *message, const char *method, DDS_XMLContext *context,
                               VUR_DL_XMLConfig_ParseErrorLogFunction log) {
    log(message, method, DDS_XMLContext_get_current_line_number(context));
    context->error = 1;
}

// A name that stands for a number in a document.
struct NamedInteger {
    const char *name;
    int value;
};

// Returns the row whose name is `text` in any letter case; nullptr when there is none.
template <std::size_t kCount>
const NamedInteger *find_name(const NamedInteger (&table)[kCount], const char *text) {
    for (const NamedInteger &row : table) {
        if (strcasecmp(row.name, text) == 0) {
            return &row;
        }
    }
    return nullptr;
}

constexpr int kBaseOfPrefix = 0;  // strtol: 0x, 0 or nothing in front of the digits decides
constexpr int kBaseTen = 10;

// Reads the number at the start of the text, cut to 32 bits. False when there are no digits.
inline bool read_integer(const char *text, int base, int &value) {
    char *end = nullptr;
    value = static_cast<int>(std::strtol(text, &end, base));
    return end != text;
}

// Reads a number in any base, `minimum` or more. Any other text is reported as an error and gives
// false. Overflow shows in errno, which is not cleared before: a range error that an earlier call
// left there counts, too.
inline bool read_bounded_integer(const char *text, int minimum, int &value, const char *method,
                                 DDS_XMLContext *context,
                                 VUR_DL_XMLConfig_ParseErrorLogFunction log) {
    const char *refusal = nullptr;
    if (!read_integer(text == nullptr ? "" : text, kBaseOfPrefix, value)) {
        refusal = "integer expected in XML text";
    } else if (errno == ERANGE) {
        refusal = "integer out of bounds in XML text";
    } else if (value < minimum) {
        refusal = "positive integer expected";
    }
    if (refusal != nullptr) {
        report_parse_error(refusal, method, context, log);
    }
    return refusal == nullptr;
}

}  // namespace vur_dl
