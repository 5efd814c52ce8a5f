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

// The record is written as these bytes in both byte orders, and these bytes are read as the record.
// `representation`: which of the type's encapsulations the lines are of.
void expect_lines(const DDS_TypeCode *type, const void *record,
                  DDS_DataRepresentationId_t representation, const ByteLines &lines);

// One list of lines after the other.
ByteLines joined(std::initializer_list<ByteLines> parts);

}  // namespace support
