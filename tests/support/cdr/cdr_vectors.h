// SPDX-License-Identifier: Apache-2.0
// Samples whose bytes are known, for the tests of both representations.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "support/types/test_types.h"

namespace support {

// Expects the record to be written as these bytes, and them to be read as an equal one.
template <typename T>
void expect_bytes(const DDS_TypeCode *type, unsigned encapsulation, T *record,
                  const std::string &hex) {
    const Programs programs(type);
    ASSERT_NE(static_cast<const KOLT_TypePrograms *>(programs), nullptr);
    const Bytes expected = from_hex(hex);
    EXPECT_EQ(to_hex(serialize(programs, encapsulation, record)), to_hex(expected));
    Record<T> back(type);
    ASSERT_TRUE(KOLT_Cdr_deserialize(programs, expected.data(), expected.size(), back.get()));
    EXPECT_TRUE(KOLT_Record_equals(type, record, back.get()));
}

inline void fill(Message *message) {
    message->id = {1, 2};
    message->level = 300;
    set_text(message->category, "c");
    set_text(message->text, "hi");
    message->number = 7;
}

// With every optional member.
inline void fill(Options *record) {
    DDS_TypeAllocationParams_t params = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
    params.allocate_optional_members = DDS_BOOLEAN_TRUE;
    ASSERT_TRUE(KOLT_Record_initialize_w_params(final_options_type(), record, &params));
    record->always = 1;
    *record->number = 2;
    *record->point = {3, 4};
    record->last = 5;
    set_text(*record->text, "abc");
}

inline void fill(Request *request) {
    request->target = {1, 2};
    request->choice._d = 3;
    set_text(request->choice._u.text, "t");
    request->after = 4;
}

inline void fill(Choice *choice) {
    choice->_d = 2;
    ASSERT_TRUE(IdSeq_set_length(&choice->_u.ids, 1));
    *IdSeq_get_reference(&choice->_u.ids, 0) = {1, 2};
}

}  // namespace support
