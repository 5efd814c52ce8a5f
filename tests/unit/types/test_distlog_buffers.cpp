// SPDX-License-Identifier: Apache-2.0
// Samples of the structured types into and out of a caller's buffer.

#include <gtest/gtest.h>
#include <vur_dl/distlogPlugin.h>

#include <cstring>
#include <string>
#include <vector>

#include "support/types/test_types.h"
#include "support/types/type_list.h"

namespace {

using support::set_text;

#define STRUCTURED(T, xcdr1_size, xcdr2_size)                                        \
    struct T##Buffers {                                                              \
        using Value = T;                                                             \
        static constexpr const char *kRecordName = #T;                               \
        static constexpr DDS_UnsignedLong kInitialSize[] = {xcdr1_size, xcdr2_size}; \
        static constexpr auto kCode = T##_get_typecode;                              \
        static constexpr auto kPrograms = T##Plugin_get_programs;                    \
        static constexpr auto kSerialize = T##Plugin_serialize_to_cdr_buffer;        \
        static constexpr auto kSerializeEx = T##Plugin_serialize_to_cdr_buffer_ex;   \
        static constexpr auto kDeserialize = T##Plugin_deserialize_from_cdr_buffer;  \
    }
// With the sizes of a fresh sample: 4 bytes of header, and the members.
STRUCTURED(VUR_DL_HostAndAppId, 4 + 8, 4 + 4 + 8);
STRUCTURED(VUR_DL_LogMessage, 4 + 12 + 8 + 12 + 12 + 12 + 4, 4 + 4 + 20 + 8 + 12 + 12 + 12);
STRUCTURED(VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity, 4 + 8, 4 + 4 + 8);
STRUCTURED(VUR_DL_ADMIN_State, 4 + 12 + 8 + 8 + 12 + 8 + 44 + 8 + 4,
           4 + 4 + 20 + 8 + 8 + 12 + 8 + 68 + 8);
STRUCTURED(VUR_DL_ADMIN_Command, 4 + 8 + 8 + 4, 4 + 4 + 8 + 8);
STRUCTURED(VUR_DL_ADMIN_CommandRequest, 4 + 12 + 12 + 8 + 4 + 20 + 4,
           4 + 4 + 20 + 20 + 8 + 12 + 16);
// The last member ends after one byte.
STRUCTURED(VUR_DL_ADMIN_CommandResponse, 4 + 12 + 12 + 8 + 8 + 12 + 4, 4 + 4 + 20 + 20 + 8 + 8 + 9);
#undef STRUCTURED

constexpr DDS_DataRepresentationId_t kRepresentations[] = {DDS_XCDR_DATA_REPRESENTATION,
                                                           DDS_XCDR2_DATA_REPRESENTATION};

void fill(VUR_DL_HostAndAppId *identity) {
    *identity = {-1, INT32_MAX};
}
void fill(VUR_DL_LogMessage *message) {
    fill(&message->hostAndAppId);
    message->level = INT32_MIN;
    set_text(message->category, std::string(512, 'c').c_str());
    set_text(message->message, std::string(4096, 'm').c_str());
    message->messageId = INT64_MAX;
}
void fill(VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity *pair) {
    *pair = {VUR_DL_KOLT_CONFIG_LOG_CATEGORY_API, VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL};
}
void fill(VUR_DL_ADMIN_State *state) {
    fill(&state->hostAndAppId);
    state->administrationDomainId = 232;
    state->state = VUR_DL_STATE_SHUTTING_DOWN;
    set_text(state->applicationKind, std::string(256, 'a').c_str());
    for (auto &pair : state->vurLoggerVerbosities) {
        fill(&pair);
    }
    state->vurLoggerPrintFormat = VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MAXIMAL;
}
void fill(VUR_DL_ADMIN_Command *command) {
    command->_d = VUR_DL_SET_VUR_LOGGER_LEVEL;
    auto *const sequence = &command->_u.categoryAndVerbosity;
    ASSERT_TRUE(VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_set_length(sequence, 5));
    for (int i = 0; i < 5; ++i) {
        fill(&sequence->_contiguous_buffer[i]);
    }
}
void fill(VUR_DL_ADMIN_CommandRequest *request) {
    fill(&request->originatorHostAndAppId);
    fill(&request->command);
}
void fill(VUR_DL_ADMIN_CommandResponse *response) {
    fill(&response->hostAndAppId);
    response->commandResult = VUR_DL_COMMAND_RESULT_ERROR;
    set_text(response->message, std::string(2048, 'r').c_str());
}

template <typename Type>
class DistlogBuffers : public testing::Test {
  protected:
    using Value = typename Type::Value;
    using Record = support::Record<Value>;

    DistlogBuffers() : fresh_(Type::kCode()), full_(Type::kCode()) { fill(full_.get()); }

    static std::vector<char> bytes_of(const Value *sample,
                                      DDS_DataRepresentationId_t representation) {
        DDS_UnsignedLong size = 1;  // goes for nothing
        EXPECT_TRUE(Type::kSerializeEx(nullptr, &size, sample, representation));
        std::vector<char> bytes(size);
        EXPECT_TRUE(Type::kSerializeEx(bytes.data(), &size, sample, representation));
        EXPECT_EQ(size, bytes.size());
        return bytes;
    }
    static DDS_UnsignedLong size_of(const std::vector<char> &bytes) {
        return static_cast<DDS_UnsignedLong>(bytes.size());
    }
    static bool reads(const std::vector<char> &bytes, const Value *expected) {
        Record back(Type::kCode());
        return Type::kDeserialize(back.get(), bytes.data(), size_of(bytes)) != 0 &&
               KOLT_Record_equals(Type::kCode(), back.get(), expected) != 0;
    }

    Record fresh_;
    Record full_;
};

#define BUFFERS_OF(T) T##Buffers
using Structured = testing::Types<FOR_EACH_STRUCTURED_TYPE(BUFFERS_OF, COMMA)>;
#undef BUFFERS_OF
struct RecordName {
    template <typename Type>
    // NOLINTNEXTLINE(readability-identifier-naming): GoogleTest calls it so.
    static std::string GetName(int) {
        return Type::kRecordName;
    }
};
TYPED_TEST_SUITE(DistlogBuffers, Structured, RecordName);

TYPED_TEST(DistlogBuffers, TheSizeThatIsAskedForIsTheSizeThatIsWritten) {
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(this->bytes_of(this->fresh_.get(), kRepresentations[i]).size(),
                  TypeParam::kInitialSize[i]);
        const std::vector<char> bytes = this->bytes_of(this->full_.get(), kRepresentations[i]);
        // In a larger buffer the rest stays.
        std::vector<char> larger(bytes.size() + 9, '#');
        auto length = this->size_of(larger);
        ASSERT_TRUE(TypeParam::kSerializeEx(larger.data(), &length, this->full_.get(),
                                            kRepresentations[i]));
        EXPECT_EQ(length, bytes.size());
        EXPECT_EQ(std::memcmp(larger.data(), bytes.data(), bytes.size()), 0);
        EXPECT_EQ(larger[length], '#');
    }
}

TYPED_TEST(DistlogBuffers, NoSmallerBufferWillDo) {
    for (const DDS_DataRepresentationId_t representation : kRepresentations) {
        const std::vector<char> bytes = this->bytes_of(this->full_.get(), representation);
        for (std::size_t size = 0; size < bytes.size(); ++size) {
            std::vector<char> small(size + 1, '#');
            auto length = static_cast<DDS_UnsignedLong>(size);
            ASSERT_FALSE(
                TypeParam::kSerializeEx(small.data(), &length, this->full_.get(), representation))
                << size;
            ASSERT_EQ(small[size], '#') << "nothing is written behind the buffer";
        }
    }
}

TYPED_TEST(DistlogBuffers, WhatIsWrittenIsReadAsItWas) {
    for (const DDS_DataRepresentationId_t representation : kRepresentations) {
        EXPECT_TRUE(
            this->reads(this->bytes_of(this->fresh_.get(), representation), this->fresh_.get()));
        EXPECT_TRUE(
            this->reads(this->bytes_of(this->full_.get(), representation), this->full_.get()));
        // The other byte order, too.
        const auto encapsulation = static_cast<DDS_UnsignedShort>(
            DDS_TypeCode_get_native_encapsulation(TypeParam::kCode(), representation) ^ 1U);
        const support::Bytes swapped =
            support::serialize(TypeParam::kPrograms(), encapsulation, this->full_.get());
        EXPECT_TRUE(
            this->reads(std::vector<char>(swapped.begin(), swapped.end()), this->full_.get()));
    }
}

TYPED_TEST(DistlogBuffers, TheAutomaticRepresentationIsXcdr1) {
    const std::vector<char> expected =
        this->bytes_of(this->full_.get(), DDS_XCDR_DATA_REPRESENTATION);
    EXPECT_EQ(this->bytes_of(this->full_.get(), DDS_AUTO_DATA_REPRESENTATION), expected);
    DDS_UnsignedLong length = 0;
    ASSERT_TRUE(TypeParam::kSerialize(nullptr, &length, this->full_.get()));
    EXPECT_EQ(length, expected.size());
    std::vector<char> bytes(length);
    ASSERT_TRUE(TypeParam::kSerialize(bytes.data(), &length, this->full_.get()));
    EXPECT_EQ(bytes, expected);
}

TYPED_TEST(DistlogBuffers, Failures) {
    std::vector<char> bytes = this->bytes_of(this->full_.get(), DDS_XCDR2_DATA_REPRESENTATION);
    const auto size = this->size_of(bytes);
    auto *const sample = this->full_.get();
    DDS_UnsignedLong length = size;
    EXPECT_FALSE(TypeParam::kSerialize(bytes.data(), nullptr, sample));
    EXPECT_FALSE(TypeParam::kSerialize(nullptr, nullptr, sample));
    EXPECT_FALSE(TypeParam::kSerialize(bytes.data(), &length, nullptr));
    EXPECT_FALSE(TypeParam::kSerialize(nullptr, &length, nullptr));
    for (const int representation : {1, 3, 7, -2}) {
        EXPECT_FALSE(TypeParam::kSerializeEx(
            nullptr, &length, sample, static_cast<DDS_DataRepresentationId_t>(representation)));
    }
    EXPECT_FALSE(TypeParam::kDeserialize(nullptr, bytes.data(), size));
    EXPECT_FALSE(TypeParam::kDeserialize(sample, nullptr, size));
    EXPECT_FALSE(TypeParam::kDeserialize(sample, bytes.data(), 0));
    EXPECT_FALSE(TypeParam::kDeserialize(sample, bytes.data(), 3)) << "no whole header";
    EXPECT_FALSE(TypeParam::kDeserialize(sample, bytes.data(), 4)) << "nothing but the header";
    EXPECT_FALSE(TypeParam::kDeserialize(sample, bytes.data(), size - 1));
    bytes[1] = 0x7f;
    EXPECT_FALSE(TypeParam::kDeserialize(sample, bytes.data(), size)) << "no such encapsulation";
    // The sample can still be used.
    fill(sample);
    EXPECT_TRUE(this->reads(this->bytes_of(sample, DDS_XCDR_DATA_REPRESENTATION), sample));
}

}  // namespace
