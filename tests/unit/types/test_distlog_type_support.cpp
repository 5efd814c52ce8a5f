// SPDX-License-Identifier: Apache-2.0
// Type support of the four topic types: records, bytes and text, and what is refused.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/logger/log_capture.h"
#include "support/types/topic_types.h"

namespace {

using namespace support;

template <typename T>
class DistlogTypeSupport : public testing::Test {};
TYPED_TEST_SUITE(DistlogTypeSupport, TopicTypes, TopicTypeName);

TYPED_TEST(DistlogTypeSupport, NamesItsType) {
    using Support = typename TopicType<TypeParam>::Support;
    EXPECT_STREQ(Support::get_type_name(), TopicType<TypeParam>::kTypeName);
    EXPECT_EQ(Support::get_typecode(), TopicType<TypeParam>::get_typecode());
    EXPECT_STREQ(DDS_TypeCode_name(Support::get_typecode()), Support::get_type_name());
    Support::finalize();
    EXPECT_EQ(Support::register_type(nullptr, "name"), DDS_RETCODE_ERROR);
    EXPECT_EQ(Support::unregister_type(nullptr, "name"), DDS_RETCODE_ERROR);
}

TYPED_TEST(DistlogTypeSupport, MakesAndFreesSamples) {
    using Support = typename TopicType<TypeParam>::Support;
    DDS_TypeAllocationParams_t allocation = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
    const DDS_TypeDeallocationParams_t deallocation = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;
    Sample<TypeParam> initial;
    TypeParam *sample = Support::create_data();
    ASSERT_NE(sample, nullptr);
    EXPECT_TRUE(equal(*sample, *initial));
    EXPECT_EQ(Support::delete_data(sample), DDS_RETCODE_OK);
    sample = Support::create_data_ex(DDS_BOOLEAN_TRUE);
    ASSERT_NE(sample, nullptr);
    EXPECT_TRUE(equal(*sample, *initial));
    EXPECT_EQ(Support::delete_data_ex(sample, DDS_BOOLEAN_TRUE), DDS_RETCODE_OK);
    sample = Support::create_data_w_params(&allocation);
    ASSERT_NE(sample, nullptr);
    EXPECT_TRUE(equal(*sample, *initial));
    EXPECT_EQ(Support::delete_data_w_params(sample, &deallocation), DDS_RETCODE_OK);
    EXPECT_EQ(Support::create_data_w_params(nullptr), nullptr);
    LogCapture log;
    allocation.allocate_memory = DDS_BOOLEAN_FALSE;
    EXPECT_EQ(Support::create_data_w_params(&allocation), nullptr);
    EXPECT_TRUE(log.saw("alloc_params->allocate_memory"));
}

// A record of the caller's own, in each of the three ways.
TYPED_TEST(DistlogTypeSupport, InitialisesAndFinalisesRecords) {
    using Support = typename TopicType<TypeParam>::Support;
    DDS_TypeAllocationParams_t allocation = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
    const DDS_TypeDeallocationParams_t deallocation = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;
    Sample<TypeParam> initial;
    TypeParam record = {};
    ASSERT_EQ(Support::initialize_data(&record), DDS_RETCODE_OK);
    EXPECT_TRUE(equal(record, *initial));
    EXPECT_EQ(Support::finalize_data(&record), DDS_RETCODE_OK);
    ASSERT_EQ(Support::initialize_data_ex(&record, DDS_BOOLEAN_TRUE, DDS_BOOLEAN_TRUE),
              DDS_RETCODE_OK);
    EXPECT_TRUE(equal(record, *initial));
    fill(&record);
    EXPECT_EQ(Support::initialize_data_ex(&record, DDS_BOOLEAN_TRUE, DDS_BOOLEAN_FALSE),
              DDS_RETCODE_OK)
        << "emptied, with the memory that is there";
    EXPECT_TRUE(equal(record, *initial));
    EXPECT_EQ(Support::finalize_data_ex(&record, DDS_BOOLEAN_TRUE), DDS_RETCODE_OK);
    ASSERT_EQ(Support::initialize_data_w_params(&record, &allocation), DDS_RETCODE_OK);
    EXPECT_TRUE(equal(record, *initial));
    EXPECT_EQ(Support::finalize_data_w_params(&record, &deallocation), DDS_RETCODE_OK);
    EXPECT_EQ(Support::finalize_data(&record), DDS_RETCODE_OK) << "again";

    EXPECT_EQ(Support::initialize_data(nullptr), DDS_RETCODE_ERROR);
    EXPECT_EQ(Support::initialize_data_ex(nullptr, 1, 1), DDS_RETCODE_ERROR);
    EXPECT_EQ(Support::initialize_data_w_params(nullptr, &allocation), DDS_RETCODE_ERROR);
    EXPECT_EQ(Support::initialize_data_w_params(&record, nullptr), DDS_RETCODE_ERROR);
}

TYPED_TEST(DistlogTypeSupport, CopiesRecords) {
    using Support = typename TopicType<TypeParam>::Support;
    Filled<TypeParam> source;
    Sample<TypeParam> copy;
    EXPECT_EQ(Support::copy_data(copy.get(), source.get()), DDS_RETCODE_OK);
    EXPECT_TRUE(equal(*copy, *source));
    EXPECT_EQ(Support::copy_data(nullptr, source.get()), DDS_RETCODE_ERROR);
    EXPECT_EQ(Support::copy_data(copy.get(), nullptr), DDS_RETCODE_ERROR);
}

TYPED_TEST(DistlogTypeSupport, PrintsAsThePluginDoes) {
    using Support = typename TopicType<TypeParam>::Support;
    Filled<TypeParam> sample;
    testing::internal::CaptureStdout();
    Support::print_with_plugin(sample.get(), nullptr, 0);
    const std::string expected = testing::internal::GetCapturedStdout();
    testing::internal::CaptureStdout();
    Support::print_data(sample.get());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), expected);
    EXPECT_EQ(expected.front(), '\n') << "no description";
    EXPECT_NE(expected.find("rtps_app_id: -12\n"), std::string::npos) << expected;
    testing::internal::CaptureStdout();
    Support::print_data(nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\nNULL\n");
}

TYPED_TEST(DistlogTypeSupport, ConvertsToBytesAndBack) {
    using Support = typename TopicType<TypeParam>::Support;
    Filled<TypeParam> sample;
    std::vector<char> automatic(8192);
    auto length = static_cast<DDS_UnsignedLong>(automatic.size());
    ASSERT_TRUE(Support::serialize(automatic.data(), &length, sample.get()));
    automatic.resize(length);
    for (const DDS_DataRepresentationId_t representation :
         {DDS_AUTO_DATA_REPRESENTATION, DDS_XCDR_DATA_REPRESENTATION,
          DDS_XCDR2_DATA_REPRESENTATION}) {
        DDS_UnsignedLong size = 0;
        ASSERT_TRUE(Support::serialize_ex(nullptr, &size, sample.get(), representation));
        std::vector<char> bytes(size);
        ASSERT_TRUE(Support::serialize_ex(bytes.data(), &size, sample.get(), representation));
        EXPECT_EQ(size, bytes.size());
        EXPECT_EQ(bytes == automatic, representation != DDS_XCDR2_DATA_REPRESENTATION)
            << "what is not told is XCDR1";
        Sample<TypeParam> read;
        ASSERT_TRUE(Support::deserialize(read.get(), bytes.data(), size));
        EXPECT_TRUE(equal(*read, *sample));
        EXPECT_FALSE(Support::deserialize(read.get(), bytes.data(), size / 2));
    }
    length = 8192;
    EXPECT_FALSE(Support::serialize(automatic.data(), nullptr, sample.get()));
    EXPECT_FALSE(Support::serialize(automatic.data(), &length, nullptr));
    EXPECT_FALSE(Support::serialize_ex(automatic.data(), &length, sample.get(),
                                       DDS_XML_DATA_REPRESENTATION));
    EXPECT_FALSE(Support::deserialize(nullptr, automatic.data(), 4));
    EXPECT_FALSE(Support::deserialize(sample.get(), nullptr, 4));
}

TYPED_TEST(DistlogTypeSupport, RefusesTextWithoutItsArguments) {
    using Support = typename TopicType<TypeParam>::Support;
    Filled<TypeParam> sample;
    const DDS_PrintFormatProperty property = DDS_PRINT_FORMAT_PROPERTY_DEFAULT;
    DDS_UnsignedLong length = 0;
    EXPECT_EQ(Support::data_to_string(sample.get(), nullptr, nullptr, &property),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(Support::data_to_string(nullptr, nullptr, &length, &property),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(Support::data_to_string(sample.get(), nullptr, &length, nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(Support::data_to_string(sample.get(), nullptr, &length, &property), DDS_RETCODE_OK);
    EXPECT_GT(length, 1U);
}

}  // namespace
