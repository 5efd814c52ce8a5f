// SPDX-License-Identifier: Apache-2.0
// Serialised samples written out by hand: a few bytes a line, in both byte orders, and the rule
// that each line follows from.
#pragma once

#include <kolt/cdr.h>

#include <vector>

namespace support {

struct ByteLine {
    const char *little;  // hexadecimal digits, text in single quotes
    const char *big;
    const char *why;
};
using ByteLines = std::vector<ByteLine>;

// Expects the record to be written as these bytes in both byte orders, and the bytes to be read as
// the record. The lines are of the type's encapsulation in `representation`.
void expect_lines(const DDS_TypeCode *type, const void *record,
                  DDS_DataRepresentationId_t representation, const ByteLines &lines);

// Returns the lists of lines one after the other.
ByteLines joined(std::initializer_list<ByteLines> parts);

}  // namespace support
