// SPDX-License-Identifier: Apache-2.0
// Comparison of serialised samples with lines of bytes.
#include "support/cdr/byte_lines.h"

#include <gtest/gtest.h>

#include <string>

#include "support/types/test_types.h"

namespace support {
namespace {

Bytes bytes_of(const ByteLine &line, bool big) {
    return from_hex(big ? line.big : line.little);
}

Bytes bytes_of(const ByteLines &lines, bool big) {
    Bytes all;
    for (const ByteLine &line : lines) {
        const Bytes bytes = bytes_of(line, big);
        all.insert(all.end(), bytes.begin(), bytes.end());
    }
    return all;
}

// The rule that a byte follows from.
const char *rule_of(const ByteLines &lines, bool big, std::size_t position) {
    std::size_t end = 0;
    for (const ByteLine &line : lines) {
        end += bytes_of(line, big).size();
        if (position < end) {
            return line.why;
        }
    }
    return "the end";
}

void expect_written(const Bytes &written, const ByteLines &lines, bool big) {
    const Bytes expected = bytes_of(lines, big);
    if (written == expected) {
        return;
    }
    std::size_t at = 0;
    while (at < written.size() && at < expected.size() && written[at] == expected[at]) {
        ++at;
    }
    ADD_FAILURE() << "byte " << at << " breaks: " << rule_of(lines, big, at) << "\nwritten  "
                  << to_hex(written) << "\nexpected " << to_hex(expected);
}

void expect_read(const DDS_TypeCode *type, const KOLT_TypePrograms *programs, const Bytes &bytes,
                 const void *record) {
    if (type->kind == DDS_TK_ENUM) {
        DDS_Enum value = -1;
        EXPECT_TRUE(KOLT_Cdr_deserialize(programs, bytes.data(), bytes.size(), &value));
        EXPECT_EQ(value, *static_cast<const DDS_Enum *>(record));
        return;
    }
    std::vector<std::max_align_t> memory(type->access->record_size / sizeof(std::max_align_t) + 1);
    const DDS_TypeAllocationParams_t allocation = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
    const DDS_TypeDeallocationParams_t deallocation = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;
    ASSERT_TRUE(KOLT_Record_initialize_w_params(type, memory.data(), &allocation));
    EXPECT_TRUE(KOLT_Cdr_deserialize(programs, bytes.data(), bytes.size(), memory.data()));
    EXPECT_TRUE(KOLT_Record_equals(type, record, memory.data())) << to_hex(bytes);
    KOLT_Record_finalize_w_params(type, memory.data(), &deallocation);
}

}  // namespace

void expect_lines(const DDS_TypeCode *type, const void *record,
                  DDS_DataRepresentationId_t representation, const ByteLines &lines) {
    const Programs programs(type);
    ASSERT_NE(static_cast<const KOLT_TypePrograms *>(programs), nullptr);
    const unsigned native = DDS_TypeCode_get_native_encapsulation(type, representation);
    for (const bool big : {false, true}) {
        SCOPED_TRACE(std::string(DDS_TypeCode_name(type)) + (big ? ", big" : ", little") +
                     "-endian");
        const unsigned encapsulation = big ? native & ~1U : native | 1U;
        expect_written(serialize(programs, encapsulation, record), lines, big);
        expect_read(type, programs, bytes_of(lines, big), record);
    }
}

ByteLines joined(std::initializer_list<ByteLines> parts) {
    ByteLines all;
    for (const ByteLines &part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

}  // namespace support
