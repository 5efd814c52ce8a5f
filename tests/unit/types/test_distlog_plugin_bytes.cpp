// SPDX-License-Identifier: Apache-2.0
// Samples of the logger's types as bytes: both representations, sizes, and refusals.

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "support/types/test_types.h"
#include "support/types/topic_types.h"

namespace {

using Buffer = std::vector<char>;
using Message = support::Sample<VUR_DL_LogMessage>;

using Filled = support::Filled<VUR_DL_LogMessage>;
constexpr std::array<DDS_DataRepresentationId_t, 2> kRepresentations = {
    DDS_XCDR_DATA_REPRESENTATION, DDS_XCDR2_DATA_REPRESENTATION};

// ---- Every topic type ---------------------------------------------------------------------------

template <typename T>
class DistlogPluginBytes : public testing::Test {};
TYPED_TEST_SUITE(DistlogPluginBytes, support::TopicTypes, support::TopicTypeName);

TYPED_TEST(DistlogPluginBytes, SizeQueryThenSerialiseThenRead) {
    using Type = support::TopicType<TypeParam>;
    support::Filled<TypeParam> sample;
    for (const DDS_DataRepresentationId_t representation : kRepresentations) {
        DDS_UnsignedLong size = 0;
        ASSERT_TRUE(Type::serialize(nullptr, &size, sample.get(), representation));
        ASSERT_GT(size, 4U);
        Buffer buffer(size);
        DDS_UnsignedLong length = size;
        ASSERT_TRUE(Type::serialize(buffer.data(), &length, sample.get(), representation));
        EXPECT_EQ(length, size);
        support::Sample<TypeParam> read;
        ASSERT_TRUE(Type::deserialize(read.get(), buffer.data(), length));
        EXPECT_TRUE(support::equal(*read, *sample));
        length = size - 1;
        EXPECT_FALSE(Type::serialize(buffer.data(), &length, sample.get(), representation));
    }
}

// ---- Commands and messages ----------------------------------------------------------------------

class DistlogPluginCommands : public testing::TestWithParam<DDS_DataRepresentationId_t> {};

TEST_P(DistlogPluginCommands, EveryBranchOfACommandComesBack) {
    for (const VUR_DL_ADMIN_CommandKind kind :
         {VUR_DL_SET_LOG_LEVEL, VUR_DL_SET_VUR_LOGGER_LEVEL, VUR_DL_SET_VUR_LOGGER_PRINT_FORMAT}) {
        support::Sample<VUR_DL_ADMIN_CommandRequest> request;
        support::Sample<VUR_DL_ADMIN_CommandRequest> read;
        request->invocation = 7;
        request->command._d = kind;
        request->command._u.filterLevel = 400;
        ASSERT_TRUE(VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_set_length(
            &request->command._u.categoryAndVerbosity, 5));
        request->command._u.printFormat = VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MINIMAL;
        std::array<char, 512> buffer = {};
        DDS_UnsignedLong length = buffer.size();
        ASSERT_TRUE(VUR_DL_ADMIN_CommandRequestPlugin_serialize_to_cdr_buffer_ex(
            buffer.data(), &length, request.get(), GetParam()));
        ASSERT_TRUE(VUR_DL_ADMIN_CommandRequestPlugin_deserialize_from_cdr_buffer(
            read.get(), buffer.data(), length));
        EXPECT_TRUE(support::equal(*read, *request));
        EXPECT_EQ(read->command._d, kind);
    }
}

INSTANTIATE_TEST_SUITE_P(Representations, DistlogPluginCommands,
                         testing::ValuesIn(kRepresentations));

TEST(DistlogPluginSerialize, AutomaticIsXcdr1) {
    Filled message;
    std::array<char, 1024> automatic = {};
    std::array<char, 1024> xcdr1 = {};
    DDS_UnsignedLong automatic_length = automatic.size();
    DDS_UnsignedLong xcdr1_length = xcdr1.size();
    ASSERT_TRUE(VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer(automatic.data(), &automatic_length,
                                                                message.get()));
    ASSERT_TRUE(VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer_ex(
        xcdr1.data(), &xcdr1_length, message.get(), DDS_XCDR_DATA_REPRESENTATION));
    EXPECT_EQ(automatic, xcdr1);
    EXPECT_EQ(automatic[1], KOLT_ENCAPSULATION_PL_CDR_LE);
}

// The bytes that docs/wire-format.md shows.
TEST(DistlogPluginSerialize, MessageBytes) {
    Message message;
    message->hostAndAppId = {0x01020304, 0x05060708};
    message->level = 300;
    std::strcpy(message->category, "pump");
    std::strcpy(message->message, "hot");
    message->messageId = 9;
    const auto bytes = [&message](DDS_DataRepresentationId_t representation) {
        Buffer buffer(256);
        DDS_UnsignedLong length = 256;
        EXPECT_TRUE(VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer_ex(
            buffer.data(), &length, message.get(), representation));
        return support::to_hex(support::Bytes(buffer.begin(), buffer.begin() + length));
    };
    EXPECT_EQ(bytes(DDS_XCDR_DATA_REPRESENTATION),
              support::to_hex(support::from_hex(
                  "00030000 00400800 04030201 08070605 01400400 2c010000 02000900 05000000"
                  "70756d70 00000000 03000800 04000000 686f7400 04000800 09000000 00000000"
                  "023f0000")));
    EXPECT_EQ(bytes(DDS_XCDR2_DATA_REPRESENTATION),
              support::to_hex(support::from_hex(
                  "000b0000 44000000 000000c0 0c000000 08000000 04030201 08070605 010000a0"
                  "2c010000 02000050 05000000 70756d70 00000000 03000050 04000000 686f7400"
                  "04000030 09000000 00000000")));
}

TEST(DistlogPluginSerialize, RequestBytes) {
    support::Sample<VUR_DL_ADMIN_CommandRequest> request;
    request->targetHostAndAppId = {1, 2};
    request->originatorHostAndAppId = {3, 4};
    request->invocation = 5;
    request->command._u.filterLevel = 800;
    Buffer buffer(256);
    DDS_UnsignedLong length = 256;
    ASSERT_TRUE(VUR_DL_ADMIN_CommandRequestPlugin_serialize_to_cdr_buffer_ex(
        buffer.data(), &length, request.get(), DDS_XCDR2_DATA_REPRESENTATION));
    EXPECT_EQ(support::to_hex(support::Bytes(buffer.begin(), buffer.begin() + length)),
              support::to_hex(support::from_hex(
                  "000b0000 4c000000 00000040 0c000000 08000000 01000000 02000000 01000040"
                  "0c000000 08000000 03000000 04000000 02000020 05000000 03000040 14000000"
                  "10000000 000000a0 00000000 01000020 20030000")));
}

TEST(DistlogPluginSerialize, RefusesWhatItCannotWrite) {
    Filled message;
    std::array<char, 8192> buffer = {};
    DDS_UnsignedLong length = buffer.size();
    EXPECT_FALSE(
        VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer(buffer.data(), nullptr, message.get()));
    EXPECT_FALSE(VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer(buffer.data(), &length, nullptr));
    EXPECT_FALSE(VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer_ex(
        buffer.data(), &length, message.get(), DDS_XML_DATA_REPRESENTATION));
    DDS_String_replace(&message->category, std::string(513, 'c').c_str());
    EXPECT_FALSE(VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer(nullptr, &length, message.get()));
    length = buffer.size();
    EXPECT_FALSE(
        VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer(buffer.data(), &length, message.get()));
}

TEST(DistlogPluginSerialize, RefusesWhatItCannotRead) {
    Filled message;
    EXPECT_FALSE(VUR_DL_LogMessagePlugin_deserialize_from_cdr_buffer(message.get(), nullptr, 4));
    EXPECT_FALSE(VUR_DL_LogMessagePlugin_deserialize_from_cdr_buffer(nullptr, "", 0));
    const std::array<char, 8> broken = {0, 0x55, 0, 0, 1, 2, 3, 4};
    EXPECT_FALSE(VUR_DL_LogMessagePlugin_deserialize_from_cdr_buffer(message.get(), broken.data(),
                                                                     broken.size()));
}

// ---- Sizes ------------------------------------------------------------------------------------

TEST(DistlogPluginSizes, BoundTheLargestSample) {
    Filled message;
    std::memset(message->category, 'c', 512);
    message->category[512] = '\0';
    std::memset(message->message, 'm', 4096);
    message->message[4096] = '\0';
    for (const DDS_DataRepresentationId_t representation : kRepresentations) {
        DDS_UnsignedLong size = 0;
        ASSERT_TRUE(VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer_ex(
            nullptr, &size, message.get(), representation));
        const DDS_UnsignedShort encapsulation =
            DDS_TypeCode_get_native_encapsulation(VUR_DL_LogMessage_get_typecode(), representation);
        const DDS_UnsignedLong largest = VUR_DL_LogMessagePlugin_get_serialized_sample_max_size(
            nullptr, DDS_BOOLEAN_TRUE, encapsulation, 0);
        EXPECT_GE(largest, size);
        EXPECT_LT(largest, size + 16);
        EXPECT_EQ(VUR_DL_LogMessagePlugin_get_serialized_sample_max_size(nullptr, DDS_BOOLEAN_FALSE,
                                                                         encapsulation, 0),
                  largest - 4);
    }
}

TEST(DistlogPluginSizes, EnumerationsTakeFourBytes) {
    for (const auto max_size :
         {VUR_DL_ADMIN_VURLoggerVerbosityPlugin_get_serialized_sample_max_size,
          VUR_DL_ADMIN_VURLoggerCategoryPlugin_get_serialized_sample_max_size,
          VUR_DL_ADMIN_VURLoggerPrintFormatPlugin_get_serialized_sample_max_size,
          VUR_DL_ADMIN_StateKindPlugin_get_serialized_sample_max_size,
          VUR_DL_ADMIN_CommandKindPlugin_get_serialized_sample_max_size,
          VUR_DL_ADMIN_CommandResultPlugin_get_serialized_sample_max_size}) {
        EXPECT_EQ(max_size(nullptr, DDS_BOOLEAN_FALSE, KOLT_ENCAPSULATION_CDR_LE, 0), 4U);
        EXPECT_EQ(max_size(nullptr, DDS_BOOLEAN_TRUE, KOLT_ENCAPSULATION_CDR2_LE, 0), 8U);
        EXPECT_GE(max_size(nullptr, DDS_BOOLEAN_FALSE, KOLT_ENCAPSULATION_CDR_LE, 1), 7U)
            << "with padding";
    }
}

#define EXPECT_KEY_SIZES(T, size)                                                                  \
    EXPECT_EQ(                                                                                     \
        T##Plugin_get_serialized_key_max_size_for_keyhash(nullptr, KOLT_ENCAPSULATION_CDR2_BE, 0), \
        size);                                                                                     \
    EXPECT_EQ(T##Plugin_get_serialized_key_max_size(nullptr, DDS_BOOLEAN_FALSE,                    \
                                                    KOLT_ENCAPSULATION_CDR2_BE, 0),                \
              size);                                                                               \
    EXPECT_EQ(T##Plugin_get_serialized_key_max_size(nullptr, DDS_BOOLEAN_TRUE,                     \
                                                    KOLT_ENCAPSULATION_CDR2_BE, 0),                \
              (size) + KOLT_ENCAPSULATION_HEADER_SIZE)

// Two longs, and a level: below the 16 bytes of a key hash.
TEST(DistlogPluginSizes, KeysAreShort) {
    EXPECT_KEY_SIZES(VUR_DL_HostAndAppId, 8U);
    EXPECT_KEY_SIZES(VUR_DL_LogMessage, 12U);
    EXPECT_KEY_SIZES(VUR_DL_ADMIN_State, 8U);
    EXPECT_KEY_SIZES(VUR_DL_ADMIN_CommandResponse, 8U);
}

TEST(DistlogPluginSizes, WhatHasNoKeyHasAnEmptyOne) {
    for (const auto max_size :
         {VUR_DL_ADMIN_CommandPlugin_get_serialized_key_max_size,
          VUR_DL_ADMIN_VURLoggerCategoryAndVerbosityPlugin_get_serialized_key_max_size}) {
        EXPECT_EQ(max_size(nullptr, DDS_BOOLEAN_FALSE, KOLT_ENCAPSULATION_CDR2_BE, 0), 0U);
    }
    for (
        const auto max_size :
        {VUR_DL_ADMIN_CommandPlugin_get_serialized_key_max_size_for_keyhash,
         VUR_DL_ADMIN_VURLoggerCategoryAndVerbosityPlugin_get_serialized_key_max_size_for_keyhash}) {
        EXPECT_EQ(max_size(nullptr, KOLT_ENCAPSULATION_CDR2_BE, 0), 0U);
    }
}

}  // namespace
