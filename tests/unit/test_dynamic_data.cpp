// Dynamic data: members by name and id, comparison, bytes.

#include <gtest/gtest.h>
#include <kolt/cdr.h>
#include <kolt/dynamic_data.h>
#include <kolt/sequence.h>
#include <vur_dl/distlogPlugin.h>

#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "support/test_types.h"

namespace {

constexpr DDS_DynamicDataMemberId kNoId = DDS_MEMBER_ID_INVALID;  // beside a name

struct DataDeleter {
    void operator()(DDS_DynamicData *data) const { DDS_DynamicData_delete(data); }
};
using Data = std::unique_ptr<DDS_DynamicData, DataDeleter>;

Data make(const DDS_TypeCode *type) {
    return Data(DDS_DynamicData_new(type, &DDS_DYNAMIC_DATA_PROPERTY_DEFAULT));
}

DDS_Long getLong(const Data &data, const char *name) {
    DDS_Long value = -999;
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &value, name, kNoId), DDS_RETCODE_OK) << name;
    return value;
}

std::string getString(const Data &data, const char *name) {
    DDS_Char *value = nullptr;
    EXPECT_EQ(DDS_DynamicData_get_string(data.get(), &value, nullptr, name, kNoId), DDS_RETCODE_OK)
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
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "a", kNoId, 5), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "extra", kNoId, "x"), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_clear_all_members(data.get()), DDS_RETCODE_OK);
    EXPECT_EQ(getLong(data, "a"), 0);
    EXPECT_EQ(getString(data, "extra"), "none");
}

TEST(DynamicData, CopiesAndCompares) {
    const Data left = make(support::messageType());
    const Data right = make(support::messageType());
    EXPECT_TRUE(DDS_DynamicData_equals(left.get(), right.get()));
    ASSERT_EQ(DDS_DynamicData_set_string(left.get(), "text", kNoId, "hello"), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_set_long(left.get(), "id.host", kNoId, 3), DDS_RETCODE_OK);
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
    const Data data = make(support::everythingType());
    const Data before = make(support::everythingType());
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
    const Data data = make(support::everythingType());
    DDS_UnsignedLong length = 99;
    EXPECT_EQ(DDS_DynamicData_get_length(data.get(), &length, "path", kNoId), DDS_RETCODE_OK);
    EXPECT_EQ(length, 0U);
    EXPECT_EQ(DDS_DynamicData_get_length(data.get(), &length, "points", kNoId), DDS_RETCODE_OK);
    EXPECT_EQ(length, 2U);
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "path[0].x", kNoId, 1),
              DDS_RETCODE_BAD_PARAMETER);
    ASSERT_EQ(DDS_DynamicData_set_length(data.get(), 2, "path", kNoId), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "path[1].y", kNoId, 8), DDS_RETCODE_OK);
    EXPECT_EQ(getLong(data, "path[1].y"), 8);
    EXPECT_EQ(DDS_DynamicData_set_length(data.get(), 4, "path", kNoId), DDS_RETCODE_BAD_PARAMETER)
        << "above the bound";
    ASSERT_EQ(DDS_DynamicData_set_length(data.get(), 1, "path", kNoId), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_set_length(data.get(), 2, "path", kNoId), DDS_RETCODE_OK);
    EXPECT_EQ(getLong(data, "path[1].y"), 0) << "a new element is an initial one";
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
    const Data data = make(support::messageType());
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "category", kNoId, "0123456789abcdef"),
              DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_set_string(data.get(), "category", kNoId, "0123456789abcdefg"),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(getString(data, "category"), "0123456789abcdef");
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
    const Data data = make(support::everythingType());
    ASSERT_EQ(DDS_DynamicData_set_length(data.get(), 2, "names", kNoId), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "names[1]", kNoId, "12345678"),
              DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_set_string(data.get(), "names[1]", kNoId, "123456789"),
              DDS_RETCODE_BAD_PARAMETER);
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "text", kNoId, "no bound"), DDS_RETCODE_OK);
    const Data copy = make(support::everythingType());
    ASSERT_EQ(DDS_DynamicData_copy(copy.get(), data.get()), DDS_RETCODE_OK);
    EXPECT_EQ(getString(copy, "names[1]"), "12345678");
    EXPECT_EQ(getString(copy, "names[0]"), "");
    EXPECT_EQ(getString(copy, "text"), "no bound");
}

TEST(DynamicDataMembers, NestedValues) {
    const Data data = make(support::messageType());
    const Data id = make(support::idType());
    ASSERT_EQ(DDS_DynamicData_set_long(id.get(), "host", kNoId, 21), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_set_complex_member(data.get(), id.get(), "id", kNoId),
              DDS_RETCODE_OK);
    EXPECT_EQ(getLong(data, "id.host"), 21);
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "id.app", kNoId, 22), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_get_complex_member(data.get(), id.get(), "id", kNoId),
              DDS_RETCODE_OK);
    EXPECT_EQ(getLong(id, "app"), 22);
    EXPECT_EQ(DDS_DynamicData_get_complex_member(data.get(), id.get(), "level", kNoId),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_complex_member(data.get(), data.get(), "id", kNoId),
              DDS_RETCODE_BAD_PARAMETER);
}

// ---- Unions and optional members
// ------------------------------------------------------------------

TEST(DynamicDataUnion, SettingABranchSelectsIt) {
    const Data data = make(support::mutableRequestType());
    DDS_Long number = -1;
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &number, "choice.number", kNoId),
              DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &number, "choice.ids[0].host", kNoId),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "choice.text", kNoId, "abc"), DDS_RETCODE_OK);
    EXPECT_EQ(getLong(data, "choice._d"), 3);
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &number, "choice.number", kNoId),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_FALSE(DDS_DynamicData_member_exists(data.get(), "choice.number", kNoId));
    ASSERT_EQ(DDS_DynamicData_set_length(data.get(), 2, "choice.ids", kNoId), DDS_RETCODE_OK);
    EXPECT_EQ(getLong(data, "choice._d"), 1) << "the branch's first label";
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "choice._d", kNoId, 2), DDS_RETCODE_OK);
    DDS_UnsignedLong length = 0;
    ASSERT_EQ(DDS_DynamicData_get_length(data.get(), &length, "choice.ids", kNoId), DDS_RETCODE_OK);
    EXPECT_EQ(length, 2U) << "the same branch under another label keeps its value";
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "choice._d", kNoId, 3), DDS_RETCODE_OK);
    EXPECT_EQ(getString(data, "choice.text"), "") << "another branch begins afresh";
}

TEST(DynamicDataUnion, AWrongValueSelectsNothing) {
    const Data data = make(support::mutableRequestType());
    EXPECT_EQ(DDS_DynamicData_set_string(data.get(), "choice.text", kNoId, "far too long"),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(getLong(data, "choice._d"), 0);
}

TEST(DynamicDataUnion, DefaultBranchAndDiscriminator) {
    const Data data = make(support::fallbackType());
    DDS_LongLong discriminator = -1;
    ASSERT_EQ(DDS_DynamicData_set_longlong(data.get(), "wide", kNoId, 5), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_get_discriminator(data.get(), &discriminator), DDS_RETCODE_OK);
    EXPECT_EQ(discriminator, 1);
    ASSERT_EQ(DDS_DynamicData_set_octet(data.get(), "small", kNoId, 9), DDS_RETCODE_OK);
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
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &value, "number", kNoId), DDS_RETCODE_NO_DATA);
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &value, "point.x", kNoId), DDS_RETCODE_NO_DATA);
    EXPECT_FALSE(DDS_DynamicData_member_exists(data.get(), "text", kNoId));
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "point.x", kNoId, 70000),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_FALSE(DDS_DynamicData_member_exists(data.get(), "point", kNoId));
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "point.x", kNoId, 7), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "text", kNoId, "here"), DDS_RETCODE_OK);
    EXPECT_EQ(getLong(data, "point.x"), 7);
    EXPECT_EQ(getLong(data, "point.y"), 0);
    EXPECT_EQ(getString(data, "text"), "here");
    ASSERT_EQ(DDS_DynamicData_clear_all_members(data.get()), DDS_RETCODE_OK);
    EXPECT_FALSE(DDS_DynamicData_member_exists(data.get(), "point", kNoId));
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
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "level", kNoId, 5), DDS_RETCODE_OK);
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

}  // namespace
