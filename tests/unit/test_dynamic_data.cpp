// Dynamic data: members by name and id, bytes, comparison, and the text formats.

#include <gtest/gtest.h>
#include <kolt/cdr.h>
#include <kolt/dynamic_data.h>
#include <kolt/sequence.h>
#include <vur_dl/distlogPlugin.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "support/test_types.h"

namespace {

constexpr DDS_DynamicDataMemberId kById = DDS_MEMBER_ID_INVALID;  // beside a name

struct DataDeleter {
    void operator()(DDS_DynamicData *data) const { DDS_DynamicData_delete(data); }
};
using Data = std::unique_ptr<DDS_DynamicData, DataDeleter>;

Data make(const DDS_TypeCode *type) {
    return Data(DDS_DynamicData_new(type, &DDS_DYNAMIC_DATA_PROPERTY_DEFAULT));
}

DDS_Long getLong(const Data &data, const char *name) {
    DDS_Long value = -999;
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &value, name, kById), DDS_RETCODE_OK) << name;
    return value;
}

std::string getString(const Data &data, const char *name) {
    DDS_Char *value = nullptr;
    EXPECT_EQ(DDS_DynamicData_get_string(data.get(), &value, nullptr, name, kById), DDS_RETCODE_OK)
        << name;
    const std::string text = value == nullptr ? "" : value;
    DDS_String_free(value);
    return text;
}

// ---- Life ---------------------------------------------------------------------------------------

TEST(DynamicData, IsOfStructuresAndUnions) {
    EXPECT_EQ(DDS_DynamicData_new(nullptr, nullptr), nullptr);
    EXPECT_EQ(DDS_DynamicData_new(support::colorType(), nullptr), nullptr);
    EXPECT_EQ(DDS_DynamicData_new(DDS_TypeCodeFactory_get_primitive_tc(DDS_TK_LONG), nullptr),
              nullptr);
    const Data data(DDS_DynamicData_new(support::idType(), nullptr));
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(DDS_DynamicData_get_type(data.get()), support::idType());
    EXPECT_EQ(DDS_DynamicData_get_type(nullptr), nullptr);
    DDS_DynamicData_delete(nullptr);
}

TEST(DynamicData, BeginsWithInitialValues) {
    const Data data = make(support::mutableVersion2Type());
    EXPECT_EQ(getLong(data, "a"), 0);
    EXPECT_EQ(getLong(data, "b"), 7) << "the member's default";
    EXPECT_EQ(getString(data, "extra"), "none");
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "a", kById, 5), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "extra", kById, "x"), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_clear_all_members(data.get()), DDS_RETCODE_OK);
    EXPECT_EQ(getLong(data, "a"), 0);
    EXPECT_EQ(getString(data, "extra"), "none");
}

TEST(DynamicData, CopiesAndCompares) {
    const Data left = make(support::messageType());
    const Data right = make(support::messageType());
    EXPECT_TRUE(DDS_DynamicData_equals(left.get(), right.get()));
    ASSERT_EQ(DDS_DynamicData_set_string(left.get(), "text", kById, "hello"), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_set_long(left.get(), "id.host", kById, 3), DDS_RETCODE_OK);
    EXPECT_FALSE(DDS_DynamicData_equals(left.get(), right.get()));
    ASSERT_EQ(DDS_DynamicData_copy(right.get(), left.get()), DDS_RETCODE_OK);
    EXPECT_TRUE(DDS_DynamicData_equals(left.get(), right.get()));
    EXPECT_EQ(getString(right, "text"), "hello");
    EXPECT_EQ(DDS_DynamicData_copy(right.get(), right.get()), DDS_RETCODE_OK);
    const Data other = make(support::idType());
    EXPECT_EQ(DDS_DynamicData_copy(right.get(), other.get()), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_FALSE(DDS_DynamicData_equals(right.get(), other.get()));
    EXPECT_FALSE(DDS_DynamicData_equals(nullptr, nullptr));
}

// ---- Members ------------------------------------------------------------------------------------

TEST(DynamicDataMembers, ByNameAndById) {
    const Data data = make(support::messageType());
    const DDS_UnsignedLong id =
        DDS_TypeCode_find_member_by_name(support::messageType(), "level")->id;
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), nullptr, id, 400), DDS_RETCODE_OK);
    EXPECT_EQ(getLong(data, "level"), 400);
    DDS_Long value = 1;
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &value, nullptr, 4711),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(value, 1);
    for (const char *wrong : {"", ".", "level.", ".level", "nothing", "id.nothing", "level.x",
                              "id..host", "level[0]", "id[0]", "_d", "id._d"}) {
        EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &value, wrong, kById),
                  DDS_RETCODE_BAD_PARAMETER)
            << wrong;
        EXPECT_FALSE(DDS_DynamicData_member_exists(data.get(), wrong, kById)) << wrong;
    }
    EXPECT_TRUE(DDS_DynamicData_member_exists(data.get(), "id.host", kById));
    EXPECT_EQ(DDS_DynamicData_get_long(nullptr, &value, "level", kById), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), nullptr, "level", kById),
              DDS_RETCODE_BAD_PARAMETER);
}

// Sets a member to a value, and reads it back with the same function.
#define EXPECT_KEEPS(data, suffix, T, name, number)                                 \
    do {                                                                            \
        T value_ = 0;                                                               \
        EXPECT_EQ(DDS_DynamicData_set_##suffix((data).get(), name, kById, number),  \
                  DDS_RETCODE_OK);                                                  \
        EXPECT_EQ(DDS_DynamicData_get_##suffix((data).get(), &value_, name, kById), \
                  DDS_RETCODE_OK);                                                  \
        EXPECT_EQ(value_, static_cast<T>(number));                                  \
    } while (false)

TEST(DynamicDataMembers, EveryPrimitiveKind) {
    const Data data = make(support::everythingType());
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
    EXPECT_KEEPS(data, long, DDS_Long, "color", support::BLUE);
}

TEST(DynamicDataMembers, NumbersThatFitAreConverted) {
    const Data data = make(support::everythingType());
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "small", kById, 200), DDS_RETCODE_OK);
    DDS_Octet octet = 0;
    EXPECT_EQ(DDS_DynamicData_get_octet(data.get(), &octet, "small", kById), DDS_RETCODE_OK);
    EXPECT_EQ(octet, 200);
    ASSERT_EQ(DDS_DynamicData_set_short(data.get(), "small", kById, -1), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_get_octet(data.get(), &octet, "small", kById),
              DDS_RETCODE_BAD_PARAMETER);
    DDS_UnsignedLongLong largest = 0;
    EXPECT_EQ(DDS_DynamicData_get_ulonglong(data.get(), &largest, "small", kById),
              DDS_RETCODE_BAD_PARAMETER);
    DDS_LongLong wide = 0;
    EXPECT_EQ(DDS_DynamicData_get_longlong(data.get(), &wide, "small", kById), DDS_RETCODE_OK);
    EXPECT_EQ(wide, -1);
    ASSERT_EQ(DDS_DynamicData_set_ulonglong(data.get(), "largest", kById, 1ULL << 63),
              DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_get_longlong(data.get(), &wide, "largest", kById),
              DDS_RETCODE_BAD_PARAMETER);
    DDS_Float single = 0;
    ASSERT_EQ(DDS_DynamicData_set_double(data.get(), "real", kById, 0.5), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_get_float(data.get(), &single, "real", kById), DDS_RETCODE_OK);
    EXPECT_EQ(single, 0.5F);
    ASSERT_EQ(DDS_DynamicData_set_double(data.get(), "real", kById, 1e300), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_get_float(data.get(), &single, "real", kById),
              DDS_RETCODE_BAD_PARAMETER);
}

TEST(DynamicDataMembers, ValuesThatDoNotFitChangeNothing) {
    const Data data = make(support::everythingType());
    const Data before = make(support::everythingType());
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "small", kById, 32768),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "octet", kById, -1), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_octet(data.get(), "flag", kById, 2), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "color", kById, 3), DDS_RETCODE_BAD_PARAMETER)
        << "no enumerator";
    EXPECT_EQ(DDS_DynamicData_set_ulonglong(data.get(), "wide", kById, 1ULL << 63),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_longlong(data.get(), "largest", kById, -1),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_double(data.get(), "single", kById, 1e39),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_double(data.get(), "word", kById, 1.0),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "real", kById, 1), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "text", kById, 1), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "id", kById, 1), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(DDS_DynamicData_equals(data.get(), before.get()));
}

TEST(DynamicDataMembers, ElementsOfArraysAndSequences) {
    const Data data = make(support::everythingType());
    DDS_UnsignedLong length = 99;
    EXPECT_EQ(DDS_DynamicData_get_length(data.get(), &length, "path", kById), DDS_RETCODE_OK);
    EXPECT_EQ(length, 0U);
    EXPECT_EQ(DDS_DynamicData_get_length(data.get(), &length, "points", kById), DDS_RETCODE_OK);
    EXPECT_EQ(length, 2U);
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "path[0].x", kById, 1),
              DDS_RETCODE_BAD_PARAMETER);
    ASSERT_EQ(DDS_DynamicData_set_length(data.get(), 2, "path", kById), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "path[1].y", kById, 8), DDS_RETCODE_OK);
    EXPECT_EQ(getLong(data, "path[1].y"), 8);
    EXPECT_EQ(DDS_DynamicData_set_length(data.get(), 4, "path", kById), DDS_RETCODE_BAD_PARAMETER)
        << "above the bound";
    ASSERT_EQ(DDS_DynamicData_set_length(data.get(), 1, "path", kById), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_set_length(data.get(), 2, "path", kById), DDS_RETCODE_OK);
    EXPECT_EQ(getLong(data, "path[1].y"), 0) << "a new element is an initial one";
    EXPECT_EQ(DDS_DynamicData_set_length(data.get(), 2, "points", kById),
              DDS_RETCODE_BAD_PARAMETER);
    DDS_Long value = 0;
    for (const char *wrong : {"points[2].x", "points[-1].x", "points[].x", "points[0.x",
                              "points[x]", "points[0]]", "matrix[0][3]", "matrix[0]",
                              "matrix[0][0][0]", "path[2].x", "path[99999999999999999999].x"}) {
        EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &value, wrong, kById),
                  DDS_RETCODE_BAD_PARAMETER)
            << wrong;
    }
}

TEST(DynamicDataMembers, Strings) {
    const Data data = make(support::messageType());
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "category", kById, "0123456789abcdef"),
              DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_set_string(data.get(), "category", kById, "0123456789abcdefg"),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(getString(data, "category"), "0123456789abcdef");
    char buffer[16] = "unchanged";
    DDS_Char *value = buffer;
    DDS_UnsignedLong size = sizeof(buffer);
    EXPECT_EQ(DDS_DynamicData_get_string(data.get(), &value, &size, "category", kById),
              DDS_RETCODE_OUT_OF_RESOURCES);
    EXPECT_EQ(size, 17U);
    EXPECT_STREQ(buffer, "unchanged");
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "category", kById, "short"), DDS_RETCODE_OK);
    size = sizeof(buffer);
    EXPECT_EQ(DDS_DynamicData_get_string(data.get(), &value, &size, "category", kById),
              DDS_RETCODE_OK);
    EXPECT_STREQ(buffer, "short");
    DDS_UnsignedLong length = 0;
    EXPECT_EQ(DDS_DynamicData_get_length(data.get(), &length, "category", kById), DDS_RETCODE_OK);
    EXPECT_EQ(length, 5U);
    EXPECT_EQ(DDS_DynamicData_set_string(data.get(), "level", kById, "1"),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_string(data.get(), "category", kById, nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_get_string(data.get(), &value, nullptr, "category", kById),
              DDS_RETCODE_BAD_PARAMETER);
}

TEST(DynamicDataMembers, StringsInSequences) {
    const Data data = make(support::everythingType());
    ASSERT_EQ(DDS_DynamicData_set_length(data.get(), 2, "names", kById), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "names[1]", kById, "12345678"),
              DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_set_string(data.get(), "names[1]", kById, "123456789"),
              DDS_RETCODE_BAD_PARAMETER);
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "text", kById, "no bound"), DDS_RETCODE_OK);
    const Data copy = make(support::everythingType());
    ASSERT_EQ(DDS_DynamicData_copy(copy.get(), data.get()), DDS_RETCODE_OK);
    EXPECT_EQ(getString(copy, "names[1]"), "12345678");
    EXPECT_EQ(getString(copy, "names[0]"), "");
    EXPECT_EQ(getString(copy, "text"), "no bound");
}

TEST(DynamicDataMembers, NestedValues) {
    const Data data = make(support::messageType());
    const Data id = make(support::idType());
    ASSERT_EQ(DDS_DynamicData_set_long(id.get(), "host", kById, 21), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_set_complex_member(data.get(), id.get(), "id", kById),
              DDS_RETCODE_OK);
    EXPECT_EQ(getLong(data, "id.host"), 21);
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "id.app", kById, 22), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_get_complex_member(data.get(), id.get(), "id", kById),
              DDS_RETCODE_OK);
    EXPECT_EQ(getLong(id, "app"), 22);
    EXPECT_EQ(DDS_DynamicData_get_complex_member(data.get(), id.get(), "level", kById),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_complex_member(data.get(), data.get(), "id", kById),
              DDS_RETCODE_BAD_PARAMETER);
}

// ---- Unions and optional members
// ------------------------------------------------------------------

TEST(DynamicDataUnion, SettingABranchSelectsIt) {
    const Data data = make(support::mutableRequestType());
    DDS_Long number = -1;
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &number, "choice.number", kById),
              DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &number, "choice.ids[0].host", kById),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "choice.text", kById, "abc"), DDS_RETCODE_OK);
    EXPECT_EQ(getLong(data, "choice._d"), 3);
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &number, "choice.number", kById),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_FALSE(DDS_DynamicData_member_exists(data.get(), "choice.number", kById));
    ASSERT_EQ(DDS_DynamicData_set_length(data.get(), 2, "choice.ids", kById), DDS_RETCODE_OK);
    EXPECT_EQ(getLong(data, "choice._d"), 1) << "the branch's first label";
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "choice._d", kById, 2), DDS_RETCODE_OK);
    DDS_UnsignedLong length = 0;
    ASSERT_EQ(DDS_DynamicData_get_length(data.get(), &length, "choice.ids", kById), DDS_RETCODE_OK);
    EXPECT_EQ(length, 2U) << "the same branch under another label keeps its value";
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "choice._d", kById, 3), DDS_RETCODE_OK);
    EXPECT_EQ(getString(data, "choice.text"), "") << "another branch begins afresh";
}

TEST(DynamicDataUnion, AWrongValueSelectsNothing) {
    const Data data = make(support::mutableRequestType());
    EXPECT_EQ(DDS_DynamicData_set_string(data.get(), "choice.text", kById, "far too long"),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(getLong(data, "choice._d"), 0);
}

TEST(DynamicDataUnion, DefaultBranchAndDiscriminator) {
    const Data data = make(support::fallbackType());
    DDS_LongLong discriminator = -1;
    ASSERT_EQ(DDS_DynamicData_set_longlong(data.get(), "wide", kById, 5), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_get_discriminator(data.get(), &discriminator), DDS_RETCODE_OK);
    EXPECT_EQ(discriminator, 1);
    ASSERT_EQ(DDS_DynamicData_set_octet(data.get(), "small", kById, 9), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_get_discriminator(data.get(), &discriminator), DDS_RETCODE_OK);
    EXPECT_EQ(discriminator, 0) << "a value without a label";
    ASSERT_EQ(DDS_DynamicData_set_discriminator(data.get(), 77), DDS_RETCODE_OK);
    EXPECT_EQ(getLong(data, "small"), 9);
    EXPECT_EQ(DDS_DynamicData_set_discriminator(data.get(), 256), DDS_RETCODE_BAD_PARAMETER);
    const Data structure = make(support::idType());
    EXPECT_EQ(DDS_DynamicData_get_discriminator(structure.get(), &discriminator),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_discriminator(structure.get(), 0), DDS_RETCODE_BAD_PARAMETER);
}

TEST(DynamicDataOptional, IsAbsentUntilItIsSet) {
    const Data data = make(support::mutableOptionsType());
    DDS_Long value = 0;
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &value, "number", kById), DDS_RETCODE_NO_DATA);
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &value, "point.x", kById), DDS_RETCODE_NO_DATA);
    EXPECT_FALSE(DDS_DynamicData_member_exists(data.get(), "text", kById));
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "point.x", kById, 70000),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_FALSE(DDS_DynamicData_member_exists(data.get(), "point", kById));
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "point.x", kById, 7), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "text", kById, "here"), DDS_RETCODE_OK);
    EXPECT_EQ(getLong(data, "point.x"), 7);
    EXPECT_EQ(getLong(data, "point.y"), 0);
    EXPECT_EQ(getString(data, "text"), "here");
    ASSERT_EQ(DDS_DynamicData_clear_all_members(data.get()), DDS_RETCODE_OK);
    EXPECT_FALSE(DDS_DynamicData_member_exists(data.get(), "point", kById));
}

// ---- Bytes --------------------------------------------------------------------------------------

TEST(DynamicDataBytes, AreThoseOfTheRecord) {
    VUR_DL_LogMessage *const message = VUR_DL_LogMessagePluginSupport_create_data();
    message->hostAndAppId = {1, 2};
    message->level = 600;
    std::strcpy(message->message, "text");
    for (const DDS_DataRepresentationId_t representation :
         {DDS_XCDR_DATA_REPRESENTATION, DDS_XCDR2_DATA_REPRESENTATION}) {
        std::vector<char> expected(8192);
        DDS_UnsignedLong length = 8192;
        ASSERT_TRUE(VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer_ex(expected.data(), &length,
                                                                       message, representation));
        expected.resize(length);
        const DDS_DynamicDataProperty_t property = {representation};
        const Data data(DDS_DynamicData_new(VUR_DL_LogMessage_get_typecode(), &property));
        ASSERT_EQ(DDS_DynamicData_from_cdr_buffer(data.get(), expected.data(), length),
                  DDS_RETCODE_OK);
        EXPECT_EQ(getLong(data, "hostAndAppId.rtps_app_id"), 2);
        EXPECT_EQ(getString(data, "message"), "text");
        DDS_UnsignedLong size = 0;
        ASSERT_EQ(DDS_DynamicData_to_cdr_buffer(data.get(), nullptr, &size), DDS_RETCODE_OK);
        EXPECT_EQ(size, length);
        std::vector<char> bytes(size);
        DDS_UnsignedLong short_size = size - 1;
        EXPECT_EQ(DDS_DynamicData_to_cdr_buffer(data.get(), bytes.data(), &short_size),
                  DDS_RETCODE_OUT_OF_RESOURCES);
        EXPECT_EQ(short_size, size);
        ASSERT_EQ(DDS_DynamicData_to_cdr_buffer(data.get(), bytes.data(), &size), DDS_RETCODE_OK);
        EXPECT_EQ(bytes, expected);
    }
    VUR_DL_LogMessagePluginSupport_destroy_data(message);
}

TEST(DynamicDataBytes, FailuresLeaveInitialValues) {
    const Data data = make(VUR_DL_LogMessage_get_typecode());
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "level", kById, 5), DDS_RETCODE_OK);
    const char broken[] = {0, 0x0b, 0, 0, 0x7f, 0, 0, 0, 1};
    EXPECT_EQ(DDS_DynamicData_from_cdr_buffer(data.get(), broken, sizeof(broken)),
              DDS_RETCODE_ERROR);
    EXPECT_TRUE(DDS_DynamicData_equals(data.get(), make(VUR_DL_LogMessage_get_typecode()).get()));
    EXPECT_EQ(DDS_DynamicData_from_cdr_buffer(data.get(), nullptr, 4), DDS_RETCODE_BAD_PARAMETER);
    DDS_UnsignedLong size = 0;
    EXPECT_EQ(
        DDS_DynamicData_to_cdr_buffer_ex(data.get(), nullptr, &size, DDS_XML_DATA_REPRESENTATION),
        DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_to_cdr_buffer(data.get(), nullptr, nullptr),
              DDS_RETCODE_BAD_PARAMETER);
}

// ---- Text ---------------------------------------------------------------------------------------

DDS_PrintFormat format(DDS_PrintFormatKind kind, bool pretty = false, bool root = false,
                       bool enum_as_int = false) {
    const DDS_PrintFormatProperty property = {kind, static_cast<DDS_Boolean>(pretty),
                                              static_cast<DDS_Boolean>(enum_as_int),
                                              static_cast<DDS_Boolean>(root)};
    DDS_PrintFormat result = {};
    EXPECT_EQ(DDS_PrintFormatProperty_to_print_format(&property, &result), DDS_RETCODE_OK);
    return result;
}

std::string render(const Data &data, const DDS_PrintFormat &print_format) {
    DDS_UnsignedLong length = 0;
    EXPECT_EQ(
        DDS_DynamicDataFormatter_to_string_w_format(data.get(), nullptr, &length, &print_format),
        DDS_RETCODE_OK);
    std::string text(length, '?');
    EXPECT_EQ(DDS_DynamicDataFormatter_to_string_w_format(data.get(), text.data(), &length,
                                                          &print_format),
              DDS_RETCODE_OK);
    EXPECT_EQ(length, text.size());
    EXPECT_EQ(std::strlen(text.c_str()) + 1, length);
    text.resize(length - 1);
    return text;
}

Data makeRequest() {
    Data data = make(VUR_DL_ADMIN_CommandRequest_get_typecode());
    DDS_DynamicData_set_long(data.get(), "targetHostAndAppId.rtps_host_id", kById, 1);
    DDS_DynamicData_set_long(data.get(), "invocation", kById, -7);
    DDS_DynamicData_set_length(data.get(), 2, "command.categoryAndVerbosity", kById);
    DDS_DynamicData_set_long(data.get(), "command.categoryAndVerbosity[1].category", kById, 4);
    return data;
}

TEST(DynamicDataText, JsonOnOneLine) {
    EXPECT_EQ(render(makeRequest(), format(DDS_JSON_PRINT_FORMAT)),
              R"({"targetHostAndAppId":{"rtps_host_id":1,"rtps_app_id":0},)"
              R"("originatorHostAndAppId":{"rtps_host_id":0,"rtps_app_id":0},"invocation":-7,)"
              R"("command":{"_d":"VUR_DL_SET_VUR_LOGGER_LEVEL","categoryAndVerbosity":[)"
              R"({"category":"VUR_DL_KOLT_CONFIG_LOG_CATEGORY_PLATFORM",)"
              R"("verbosity":"VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_SILENT"},)"
              R"({"category":"VUR_DL_KOLT_CONFIG_LOG_CATEGORY_API",)"
              R"("verbosity":"VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_SILENT"}]}})");
}

TEST(DynamicDataText, JsonPrettyWithRoot) {
    const Data data = make(VUR_DL_ADMIN_Command_get_typecode());
    EXPECT_EQ(render(data, format(DDS_JSON_PRINT_FORMAT, true, true, true)),
              "{\n"
              "    \"Command\": {\n"
              "        \"_d\": 0,\n"
              "        \"filterLevel\": 0\n"
              "    }\n"
              "}");
    DDS_DynamicData_set_discriminator(data.get(), 1);
    EXPECT_EQ(render(data, format(DDS_JSON_PRINT_FORMAT, true, false, true)),
              "{\n"
              "    \"_d\": 1,\n"
              "    \"categoryAndVerbosity\": []\n"
              "}");
}

TEST(DynamicDataText, Xml) {
    const Data data = make(VUR_DL_ADMIN_Command_get_typecode());
    DDS_DynamicData_set_length(data.get(), 1, "categoryAndVerbosity", kById);
    EXPECT_EQ(render(data, format(DDS_XML_PRINT_FORMAT, true, true)),
              "<Command>\n"
              "    <_d>VUR_DL_SET_VUR_LOGGER_LEVEL</_d>\n"
              "    <categoryAndVerbosity>\n"
              "        <item>\n"
              "            <category>VUR_DL_KOLT_CONFIG_LOG_CATEGORY_PLATFORM</category>\n"
              "            <verbosity>VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_SILENT</verbosity>\n"
              "        </item>\n"
              "    </categoryAndVerbosity>\n"
              "</Command>");
    DDS_DynamicData_set_long(data.get(), "filterLevel", kById, 400);
    EXPECT_EQ(render(data, format(DDS_XML_PRINT_FORMAT, false, false, true)),
              "<_d>0</_d><filterLevel>400</filterLevel>");
}

TEST(DynamicDataText, Default) {
    const Data data = make(VUR_DL_ADMIN_CommandRequest_get_typecode());
    DDS_DynamicData_set_length(data.get(), 1, "command.categoryAndVerbosity", kById);
    EXPECT_EQ(render(data, format(DDS_DEFAULT_PRINT_FORMAT, true, true, true)),
              "targetHostAndAppId:\n"
              "    rtps_host_id: 0\n"
              "    rtps_app_id: 0\n"
              "originatorHostAndAppId:\n"
              "    rtps_host_id: 0\n"
              "    rtps_app_id: 0\n"
              "invocation: 0\n"
              "command:\n"
              "    _d: 1\n"
              "    categoryAndVerbosity[0]:\n"
              "        category: 0\n"
              "        verbosity: 0");
    DDS_DynamicData_set_length(data.get(), 0, "command.categoryAndVerbosity", kById);
    const std::string text = render(data, format(DDS_DEFAULT_PRINT_FORMAT, true));
    EXPECT_NE(text.find("    categoryAndVerbosity: []"), std::string::npos) << text;
    EXPECT_EQ(render(make(support::idType()), format(DDS_DEFAULT_PRINT_FORMAT)),
              "{host: 0, app: 0}");
}

TEST(DynamicDataText, EveryKind) {
    const Data data = make(support::everythingType());
    DDS_DynamicData_set_boolean(data.get(), "flag", kById, 1);
    DDS_DynamicData_set_ulonglong(data.get(), "largest", kById, ~0ULL);
    DDS_DynamicData_set_double(data.get(), "real", kById, 0.1);
    DDS_DynamicData_set_float(data.get(), "single", kById, -1e-10F);
    DDS_DynamicData_set_char(data.get(), "letter", kById, 'Z');
    DDS_DynamicData_set_length(data.get(), 2, "names", kById);
    DDS_DynamicData_set_string(data.get(), "names[1]", kById, "n");
    const std::string text = render(data, format(DDS_JSON_PRINT_FORMAT));
    for (const char *part :
         {"\"flag\":true", "\"largest\":18446744073709551615", "\"real\":0.1", "\"single\":-1e-10",
          "\"letter\":\"Z\"", "\"matrix\":[[0,0,0],[0,0,0]]", "\"names\":[\"\",\"n\"]",
          "\"octets\":[]", "\"points\":[{\"x\":0,\"y\":0},{\"x\":0,\"y\":0}]"}) {
        EXPECT_NE(text.find(part), std::string::npos) << part << " in " << text;
    }
}

TEST(DynamicDataText, WhatIsNoNumber) {
    const Data data = make(support::everythingType());
    DDS_DynamicData_set_double(data.get(), "real", kById, std::nan(""));
    DDS_DynamicData_set_float(data.get(), "single", kById,
                              -std::numeric_limits<DDS_Float>::infinity());
    const std::string json = render(data, format(DDS_JSON_PRINT_FORMAT));
    EXPECT_NE(json.find("\"real\":null"), std::string::npos);
    EXPECT_NE(json.find("\"single\":null"), std::string::npos);
    const std::string xml = render(data, format(DDS_XML_PRINT_FORMAT));
    EXPECT_NE(xml.find("<real>NaN</real>"), std::string::npos);
    EXPECT_NE(xml.find("<single>-INF</single>"), std::string::npos);
    const std::string plain = render(data, format(DDS_DEFAULT_PRINT_FORMAT));
    EXPECT_NE(plain.find("real: nan"), std::string::npos);
    EXPECT_NE(plain.find("single: -inf"), std::string::npos);
}

TEST(DynamicDataText, OptionalMembersThatAreAbsentAreLeftOut) {
    const Data data = make(support::mutableOptionsType());
    EXPECT_EQ(render(data, format(DDS_JSON_PRINT_FORMAT)), R"({"always":0,"last":0})");
    DDS_DynamicData_set_long(data.get(), "point.y", kById, 2);
    EXPECT_EQ(render(data, format(DDS_JSON_PRINT_FORMAT)),
              R"({"always":0,"point":{"x":0,"y":2},"last":0})");
}

TEST(DynamicDataText, AnUnknownEnumeratorIsANumber) {
    VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity record = {
        static_cast<VUR_DL_ADMIN_VURLoggerCategory>(99), VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_ERROR};
    std::vector<char> bytes(64);
    DDS_UnsignedLong length = 64;
    const Data data = make(VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity_get_typecode());
    if (VUR_DL_ADMIN_VURLoggerCategoryAndVerbosityPlugin_serialize_to_cdr_buffer(
            bytes.data(), &length, &record) &&
        DDS_DynamicData_from_cdr_buffer(data.get(), bytes.data(), length) == DDS_RETCODE_OK) {
        EXPECT_EQ(render(data, format(DDS_JSON_PRINT_FORMAT)),
                  R"({"category":99,"verbosity":"VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_ERROR"})");
    }
}

struct TextCase {
    const char *value;
    const char *json;
    const char *xml;
};

class DynamicDataEscapes : public testing::TestWithParam<TextCase> {};

TEST_P(DynamicDataEscapes, InJsonAndXml) {
    const Data data = make(support::messageType());
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "text", kById, GetParam().value),
              DDS_RETCODE_OK);
    const std::string json = render(data, format(DDS_JSON_PRINT_FORMAT));
    EXPECT_NE(json.find(std::string("\"text\":\"") + GetParam().json + "\""), std::string::npos)
        << json;
    const std::string xml = render(data, format(DDS_XML_PRINT_FORMAT));
    EXPECT_NE(xml.find(std::string("<text>") + GetParam().xml + "</text>"), std::string::npos)
        << xml;
}

#define REPLACEMENT "\xef\xbf\xbd"

INSTANTIATE_TEST_SUITE_P(
    Texts, DynamicDataEscapes,
    testing::Values(
        TextCase{"a\"b\\c/", R"(a\"b\\c/)", "a\"b\\c/"},
        TextCase{"<a>&'</a>", "<a>&'</a>", "&lt;a&gt;&amp;'&lt;/a&gt;"},
        TextCase{"\b\f\n\r\t", R"(\b\f\n\r\t)", REPLACEMENT REPLACEMENT "\n&#13;\t"},
        TextCase{"\x01\x1f\x7f", R"(\u0001\u001f\u007f)", REPLACEMENT REPLACEMENT "\x7f"},
        TextCase{"\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80", "\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80",
                 "\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80"},
        // Not UTF-8: a lone continuation, an overlong form, a surrogate, too large, and cut off.
        TextCase{"\x80", REPLACEMENT, REPLACEMENT},
        TextCase{"\xc0\xaf", REPLACEMENT REPLACEMENT, REPLACEMENT REPLACEMENT},
        TextCase{"\xe0\x80\xaf", REPLACEMENT REPLACEMENT REPLACEMENT,
                 REPLACEMENT REPLACEMENT REPLACEMENT},
        TextCase{"\xed\xa0\x80", REPLACEMENT REPLACEMENT REPLACEMENT,
                 REPLACEMENT REPLACEMENT REPLACEMENT},
        TextCase{"\xf4\x90\x80\x80", REPLACEMENT REPLACEMENT REPLACEMENT REPLACEMENT,
                 REPLACEMENT REPLACEMENT REPLACEMENT REPLACEMENT},
        TextCase{"x\xe2\x82", "x" REPLACEMENT REPLACEMENT, "x" REPLACEMENT REPLACEMENT},
        TextCase{"\xe2"
                 "a",
                 REPLACEMENT "a", REPLACEMENT "a"},
        TextCase{"\xef\xbf\xbf", "\xef\xbf\xbf", REPLACEMENT}));

TEST(DynamicDataText, MissingArguments) {
    const Data data = make(support::idType());
    const DDS_PrintFormat json = format(DDS_JSON_PRINT_FORMAT);
    DDS_UnsignedLong length = 0;
    EXPECT_EQ(DDS_DynamicDataFormatter_to_string_w_format(nullptr, nullptr, &length, &json),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicDataFormatter_to_string_w_format(data.get(), nullptr, nullptr, &json),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicDataFormatter_to_string_w_format(data.get(), nullptr, &length, nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    DDS_PrintFormat wrong = json;
    wrong.kind = static_cast<DDS_PrintFormatKind>(3);
    EXPECT_EQ(DDS_DynamicDataFormatter_to_string_w_format(data.get(), nullptr, &length, &wrong),
              DDS_RETCODE_BAD_PARAMETER);
    char text[4] = "abc";
    length = sizeof(text);
    EXPECT_EQ(DDS_DynamicDataFormatter_to_string_w_format(data.get(), text, &length, &json),
              DDS_RETCODE_OUT_OF_RESOURCES);
    EXPECT_STREQ(text, "abc");
    EXPECT_EQ(length, std::strlen(R"({"host":0,"app":0})") + 1);
    DDS_PrintFormat unchanged = {};
    DDS_PrintFormatProperty property = DDS_PRINT_FORMAT_PROPERTY_DEFAULT;
    EXPECT_EQ(DDS_PrintFormatProperty_to_print_format(nullptr, &unchanged),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_PrintFormatProperty_to_print_format(&property, nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    property.kind = static_cast<DDS_PrintFormatKind>(3);
    EXPECT_EQ(DDS_PrintFormatProperty_to_print_format(&property, &unchanged),
              DDS_RETCODE_BAD_PARAMETER);
}

}  // namespace
