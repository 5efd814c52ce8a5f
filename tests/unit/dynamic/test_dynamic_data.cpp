// SPDX-License-Identifier: Apache-2.0
// Dynamic data: values, their members by name and id, comparison.

#include <gtest/gtest.h>

#include <limits>

#include "support/types/dynamic_data.h"
#include "support/types/test_types.h"

namespace {

using namespace support;

// ---- Life ---------------------------------------------------------------------------------------

TEST(DynamicData, IsOfStructuresAndUnions) {
    EXPECT_EQ(DDS_DynamicData_new(nullptr, nullptr), nullptr);
    EXPECT_EQ(DDS_DynamicData_new(color_type(), nullptr), nullptr);
    EXPECT_EQ(DDS_DynamicData_new(DDS_TypeCodeFactory_get_primitive_tc(DDS_TK_LONG), nullptr),
              nullptr);
    const Data data(DDS_DynamicData_new(id_type(), nullptr));
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(DDS_DynamicData_get_type(data.get()), id_type());
    EXPECT_EQ(DDS_DynamicData_get_type(nullptr), nullptr);
    DDS_DynamicData_delete(nullptr);
}

TEST(DynamicData, BeginsWithInitialValues) {
    const Data data = make(mutable_version2_type());
    EXPECT_EQ(get_long(data, "a"), 0);
    EXPECT_EQ(get_long(data, "b"), 7) << "the member's default";
    EXPECT_EQ(get_string(data, "extra"), "none");
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "a", kNoId, 5), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "extra", kNoId, "x"), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_clear_all_members(data.get()), DDS_RETCODE_OK);
    EXPECT_EQ(get_long(data, "a"), 0);
    EXPECT_EQ(get_string(data, "extra"), "none");
}

TEST(DynamicData, CopiesAndCompares) {
    const Data left = make(message_type());
    const Data right = make(message_type());
    EXPECT_TRUE(DDS_DynamicData_equals(left.get(), right.get()));
    ASSERT_EQ(DDS_DynamicData_set_string(left.get(), "text", kNoId, "hello"), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_set_long(left.get(), "id.host", kNoId, 3), DDS_RETCODE_OK);
    EXPECT_FALSE(DDS_DynamicData_equals(left.get(), right.get()));
    ASSERT_EQ(DDS_DynamicData_copy(right.get(), left.get()), DDS_RETCODE_OK);
    EXPECT_TRUE(DDS_DynamicData_equals(left.get(), right.get()));
    EXPECT_EQ(get_string(right, "text"), "hello");
    EXPECT_EQ(DDS_DynamicData_copy(right.get(), right.get()), DDS_RETCODE_OK);
    const Data other = make(id_type());
    EXPECT_EQ(DDS_DynamicData_copy(right.get(), other.get()), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_FALSE(DDS_DynamicData_equals(right.get(), other.get()));
    EXPECT_FALSE(DDS_DynamicData_equals(nullptr, nullptr));
}

// ---- Members ------------------------------------------------------------------------------------

TEST(DynamicDataMembers, ByNameAndById) {
    const Data data = make(message_type());
    const DDS_UnsignedLong id = DDS_TypeCode_find_member_by_name(message_type(), "level")->id;
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), nullptr, id, 400), DDS_RETCODE_OK);
    EXPECT_EQ(get_long(data, "level"), 400);
    DDS_Long value = 1;
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &value, nullptr, 4711),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(value, 1);
    for (const char *wrong : {"", ".", "level.", ".level", "nothing", "id.nothing", "level.x",
                              "id..host", "level[0]", "id[0]", "_d", "id._d"}) {
        EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &value, wrong, kNoId),
                  DDS_RETCODE_BAD_PARAMETER)
            << wrong;
        EXPECT_FALSE(DDS_DynamicData_member_exists(data.get(), wrong, kNoId)) << wrong;
    }
    EXPECT_TRUE(DDS_DynamicData_member_exists(data.get(), "id.host", kNoId));
    EXPECT_EQ(DDS_DynamicData_get_long(nullptr, &value, "level", kNoId), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), nullptr, "level", kNoId),
              DDS_RETCODE_BAD_PARAMETER);
}

// Sets a member to a value, and reads it back with the same function.
#define EXPECT_KEEPS(data, suffix, T, name, number)                                 \
    do {                                                                            \
        T value_ = 0;                                                               \
        EXPECT_EQ(DDS_DynamicData_set_##suffix((data).get(), name, kNoId, number),  \
                  DDS_RETCODE_OK);                                                  \
        EXPECT_EQ(DDS_DynamicData_get_##suffix((data).get(), &value_, name, kNoId), \
                  DDS_RETCODE_OK);                                                  \
        EXPECT_EQ(value_, static_cast<T>(number));                                  \
    } while (false)

TEST(DynamicDataMembers, EveryPrimitiveKind) {
    const Data data = make(everything_type());
    EXPECT_KEEPS(data, boolean, DDS_Boolean, "flag", DDS_BOOLEAN_TRUE);
    EXPECT_KEEPS(data, char, DDS_Char, "letter", '\xe4');
    EXPECT_KEEPS(data, octet, DDS_Octet, "octet", 255);
    EXPECT_KEEPS(data, short, DDS_Short, "small", -32768);
    EXPECT_KEEPS(data, ushort, DDS_UnsignedShort, "positive", 65535);
    EXPECT_KEEPS(data, long, DDS_Long, "matrix[1][2]", std::numeric_limits<DDS_Long>::min());
    EXPECT_KEEPS(data, ulong, DDS_UnsignedLong, "word", 4294967295U);
    EXPECT_KEEPS(data, longlong, DDS_LongLong, "wide", std::numeric_limits<DDS_LongLong>::min());
    EXPECT_KEEPS(data, ulonglong, DDS_UnsignedLongLong, "largest",
                 std::numeric_limits<DDS_UnsignedLongLong>::max());
    EXPECT_KEEPS(data, float, DDS_Float, "single", 0.1F);
    EXPECT_KEEPS(data, double, DDS_Double, "real", 0.1);
    EXPECT_KEEPS(data, long, DDS_Long, "color", BLUE);
}

TEST(DynamicDataMembers, NumbersThatFitAreConverted) {
    const Data data = make(everything_type());
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "small", kNoId, 200), DDS_RETCODE_OK);
    DDS_Octet octet = 0;
    EXPECT_EQ(DDS_DynamicData_get_octet(data.get(), &octet, "small", kNoId), DDS_RETCODE_OK);
    EXPECT_EQ(octet, 200);
    ASSERT_EQ(DDS_DynamicData_set_short(data.get(), "small", kNoId, -1), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_get_octet(data.get(), &octet, "small", kNoId),
              DDS_RETCODE_BAD_PARAMETER);
    DDS_UnsignedLongLong largest = 0;
    EXPECT_EQ(DDS_DynamicData_get_ulonglong(data.get(), &largest, "small", kNoId),
              DDS_RETCODE_BAD_PARAMETER);
    DDS_LongLong wide = 0;
    EXPECT_EQ(DDS_DynamicData_get_longlong(data.get(), &wide, "small", kNoId), DDS_RETCODE_OK);
    EXPECT_EQ(wide, -1);
    ASSERT_EQ(DDS_DynamicData_set_ulonglong(data.get(), "largest", kNoId, 1ULL << 63),
              DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_get_longlong(data.get(), &wide, "largest", kNoId),
              DDS_RETCODE_BAD_PARAMETER);
    DDS_Float single = 0;
    ASSERT_EQ(DDS_DynamicData_set_double(data.get(), "real", kNoId, 0.5), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_get_float(data.get(), &single, "real", kNoId), DDS_RETCODE_OK);
    EXPECT_EQ(single, 0.5F);
    ASSERT_EQ(DDS_DynamicData_set_double(data.get(), "real", kNoId, 1e300), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_get_float(data.get(), &single, "real", kNoId),
              DDS_RETCODE_BAD_PARAMETER);
}

TEST(DynamicDataMembers, ValuesThatDoNotFitChangeNothing) {
    const Data data = make(everything_type());
    const Data before = make(everything_type());
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "small", kNoId, 32768),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "octet", kNoId, -1), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_octet(data.get(), "flag", kNoId, 2), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "color", kNoId, 3), DDS_RETCODE_BAD_PARAMETER)
        << "no enumerator";
    EXPECT_EQ(DDS_DynamicData_set_ulonglong(data.get(), "wide", kNoId, 1ULL << 63),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_longlong(data.get(), "largest", kNoId, -1),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_double(data.get(), "single", kNoId, 1e39),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_double(data.get(), "word", kNoId, 1.0),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "real", kNoId, 1), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "text", kNoId, 1), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "id", kNoId, 1), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(DDS_DynamicData_equals(data.get(), before.get()));
}

TEST(DynamicDataMembers, ElementsOfArraysAndSequences) {
    const Data data = make(everything_type());
    DDS_UnsignedLong length = 99;
    EXPECT_EQ(DDS_DynamicData_get_length(data.get(), &length, "path", kNoId), DDS_RETCODE_OK);
    EXPECT_EQ(length, 0U);
    EXPECT_EQ(DDS_DynamicData_get_length(data.get(), &length, "points", kNoId), DDS_RETCODE_OK);
    EXPECT_EQ(length, 2U);
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "path[0].x", kNoId, 1),
              DDS_RETCODE_BAD_PARAMETER);
    ASSERT_EQ(DDS_DynamicData_set_length(data.get(), 2, "path", kNoId), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "path[1].y", kNoId, 8), DDS_RETCODE_OK);
    EXPECT_EQ(get_long(data, "path[1].y"), 8);
    EXPECT_EQ(DDS_DynamicData_set_length(data.get(), 4, "path", kNoId), DDS_RETCODE_BAD_PARAMETER)
        << "above the bound";
    ASSERT_EQ(DDS_DynamicData_set_length(data.get(), 1, "path", kNoId), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_set_length(data.get(), 2, "path", kNoId), DDS_RETCODE_OK);
    EXPECT_EQ(get_long(data, "path[1].y"), 0) << "a new element is an initial one";
    EXPECT_EQ(DDS_DynamicData_set_length(data.get(), 2, "points", kNoId),
              DDS_RETCODE_BAD_PARAMETER);
    DDS_Long value = 0;
    for (const char *wrong : {"points[2].x", "points[-1].x", "points[].x", "points[0.x",
                              "points[x]", "points[0]]", "matrix[0][3]", "matrix[0]",
                              "matrix[0][0][0]", "path[2].x", "path[99999999999999999999].x"}) {
        EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &value, wrong, kNoId),
                  DDS_RETCODE_BAD_PARAMETER)
            << wrong;
    }
}

TEST(DynamicDataMembers, Strings) {
    const Data data = make(message_type());
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "category", kNoId, "0123456789abcdef"),
              DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_set_string(data.get(), "category", kNoId, "0123456789abcdefg"),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(get_string(data, "category"), "0123456789abcdef");
    char buffer[16] = "unchanged";
    DDS_Char *value = buffer;
    DDS_UnsignedLong size = sizeof(buffer);
    EXPECT_EQ(DDS_DynamicData_get_string(data.get(), &value, &size, "category", kNoId),
              DDS_RETCODE_OUT_OF_RESOURCES);
    EXPECT_EQ(size, 17U);
    EXPECT_STREQ(buffer, "unchanged");
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "category", kNoId, "short"), DDS_RETCODE_OK);
    size = sizeof(buffer);
    EXPECT_EQ(DDS_DynamicData_get_string(data.get(), &value, &size, "category", kNoId),
              DDS_RETCODE_OK);
    EXPECT_STREQ(buffer, "short");
    DDS_UnsignedLong length = 0;
    EXPECT_EQ(DDS_DynamicData_get_length(data.get(), &length, "category", kNoId), DDS_RETCODE_OK);
    EXPECT_EQ(length, 5U);
    EXPECT_EQ(DDS_DynamicData_set_string(data.get(), "level", kNoId, "1"),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_string(data.get(), "category", kNoId, nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_get_string(data.get(), &value, nullptr, "category", kNoId),
              DDS_RETCODE_BAD_PARAMETER);
}

TEST(DynamicDataMembers, StringsInSequences) {
    const Data data = make(everything_type());
    ASSERT_EQ(DDS_DynamicData_set_length(data.get(), 2, "names", kNoId), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "names[1]", kNoId, "12345678"),
              DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_set_string(data.get(), "names[1]", kNoId, "123456789"),
              DDS_RETCODE_BAD_PARAMETER);
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "text", kNoId, "no bound"), DDS_RETCODE_OK);
    const Data copy = make(everything_type());
    ASSERT_EQ(DDS_DynamicData_copy(copy.get(), data.get()), DDS_RETCODE_OK);
    EXPECT_EQ(get_string(copy, "names[1]"), "12345678");
    EXPECT_EQ(get_string(copy, "names[0]"), "");
    EXPECT_EQ(get_string(copy, "text"), "no bound");
}

TEST(DynamicDataMembers, NestedValues) {
    const Data data = make(message_type());
    const Data id = make(id_type());
    ASSERT_EQ(DDS_DynamicData_set_long(id.get(), "host", kNoId, 21), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_set_complex_member(data.get(), id.get(), "id", kNoId),
              DDS_RETCODE_OK);
    EXPECT_EQ(get_long(data, "id.host"), 21);
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "id.app", kNoId, 22), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_get_complex_member(data.get(), id.get(), "id", kNoId),
              DDS_RETCODE_OK);
    EXPECT_EQ(get_long(id, "app"), 22);
    EXPECT_EQ(DDS_DynamicData_get_complex_member(data.get(), id.get(), "level", kNoId),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_complex_member(data.get(), data.get(), "id", kNoId),
              DDS_RETCODE_BAD_PARAMETER);
}

}  // namespace
