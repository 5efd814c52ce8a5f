// SPDX-License-Identifier: Apache-2.0
// Dynamic data: unions, whose branches are selected by being set, and optional members.

#include <gtest/gtest.h>

#include "support/types/dynamic_data.h"
#include "support/types/test_types.h"

namespace {

using namespace support;

TEST(DynamicDataUnion, SettingABranchSelectsIt) {
    const Data data = make(mutable_request_type());
    DDS_Long number = -1;
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &number, "choice.number", kNoId),
              DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &number, "choice.ids[0].host", kNoId),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "choice.text", kNoId, "abc"), DDS_RETCODE_OK);
    EXPECT_EQ(get_long(data, "choice._d"), 3);
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &number, "choice.number", kNoId),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_FALSE(DDS_DynamicData_member_exists(data.get(), "choice.number", kNoId));
    ASSERT_EQ(DDS_DynamicData_set_length(data.get(), 2, "choice.ids", kNoId), DDS_RETCODE_OK);
    EXPECT_EQ(get_long(data, "choice._d"), 1) << "the branch's first label";
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "choice._d", kNoId, 2), DDS_RETCODE_OK);
    DDS_UnsignedLong length = 0;
    ASSERT_EQ(DDS_DynamicData_get_length(data.get(), &length, "choice.ids", kNoId), DDS_RETCODE_OK);
    EXPECT_EQ(length, 2U) << "the same branch under another label keeps its value";
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "choice._d", kNoId, 3), DDS_RETCODE_OK);
    EXPECT_EQ(get_string(data, "choice.text"), "") << "another branch begins afresh";
}

TEST(DynamicDataUnion, AWrongValueSelectsNothing) {
    const Data data = make(mutable_request_type());
    EXPECT_EQ(DDS_DynamicData_set_string(data.get(), "choice.text", kNoId, "far too long"),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(get_long(data, "choice._d"), 0);
}

TEST(DynamicDataUnion, DefaultBranchAndDiscriminator) {
    const Data data = make(fallback_type());
    DDS_LongLong discriminator = -1;
    ASSERT_EQ(DDS_DynamicData_set_longlong(data.get(), "wide", kNoId, 5), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_get_discriminator(data.get(), &discriminator), DDS_RETCODE_OK);
    EXPECT_EQ(discriminator, 1);
    ASSERT_EQ(DDS_DynamicData_set_octet(data.get(), "small", kNoId, 9), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_get_discriminator(data.get(), &discriminator), DDS_RETCODE_OK);
    EXPECT_EQ(discriminator, 0) << "a value without a label";
    ASSERT_EQ(DDS_DynamicData_set_discriminator(data.get(), 77), DDS_RETCODE_OK);
    EXPECT_EQ(get_long(data, "small"), 9);
    EXPECT_EQ(DDS_DynamicData_set_discriminator(data.get(), 256), DDS_RETCODE_BAD_PARAMETER);
    const Data structure = make(id_type());
    EXPECT_EQ(DDS_DynamicData_get_discriminator(structure.get(), &discriminator),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_discriminator(structure.get(), 0), DDS_RETCODE_BAD_PARAMETER);
}

TEST(DynamicDataOptional, IsAbsentUntilItIsSet) {
    const Data data = make(mutable_options_type());
    DDS_Long value = 0;
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &value, "number", kNoId), DDS_RETCODE_NO_DATA);
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &value, "point.x", kNoId), DDS_RETCODE_NO_DATA);
    EXPECT_FALSE(DDS_DynamicData_member_exists(data.get(), "text", kNoId));
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "point.x", kNoId, 70000),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_FALSE(DDS_DynamicData_member_exists(data.get(), "point", kNoId));
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "point.x", kNoId, 7), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "text", kNoId, "here"), DDS_RETCODE_OK);
    EXPECT_EQ(get_long(data, "point.x"), 7);
    EXPECT_EQ(get_long(data, "point.y"), 0);
    EXPECT_EQ(get_string(data, "text"), "here");
    ASSERT_EQ(DDS_DynamicData_clear_all_members(data.get()), DDS_RETCODE_OK);
    EXPECT_FALSE(DDS_DynamicData_member_exists(data.get(), "point", kNoId));
}

}  // namespace
