// SPDX-License-Identifier: Apache-2.0
// Dynamic data of the logger's topic types: bytes to members and back, and refusals.

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "support/types/dynamic_data.h"
#include "support/types/topic_types.h"

namespace {

using namespace support;

constexpr DDS_DataRepresentationId_t kRepresentations[] = {DDS_XCDR_DATA_REPRESENTATION,
                                                           DDS_XCDR2_DATA_REPRESENTATION};

template <typename T>
std::vector<char> bytes_of(const T &sample, DDS_DataRepresentationId_t representation) {
    DDS_UnsignedLong size = 0;
    EXPECT_TRUE(TopicType<T>::serialize(nullptr, &size, &sample, representation));
    std::vector<char> bytes(size);
    EXPECT_TRUE(TopicType<T>::serialize(bytes.data(), &size, &sample, representation));
    return bytes;
}

template <typename T>
class DynamicTopicTypes : public testing::Test {
  protected:
    Data data_ = make(TopicType<T>::get_typecode());
};
TYPED_TEST_SUITE(DynamicTopicTypes, TopicTypes, TopicTypeName);

// ---- Bytes --------------------------------------------------------------------------------------

// In both representations, and from one to the other.
TYPED_TEST(DynamicTopicTypes, BytesComeBackAsTheyWere) {
    using Type = TopicType<TypeParam>;
    Filled<TypeParam> sample;
    for (const DDS_DataRepresentationId_t from : kRepresentations) {
        ASSERT_EQ(from_bytes(this->data_, bytes_of(*sample, from)), DDS_RETCODE_OK);
        EXPECT_EQ(get_long(this->data_, Type::kKeyMember), sample.key());
        for (const DDS_DataRepresentationId_t to : kRepresentations) {
            const std::vector<char> bytes = to_bytes(this->data_, to);
            EXPECT_EQ(bytes, bytes_of(*sample, to));
            Sample<TypeParam> read;
            ASSERT_TRUE(Type::deserialize(read.get(), bytes.data(),
                                          static_cast<DDS_UnsignedLong>(bytes.size())));
            EXPECT_TRUE(equal(*read, *sample));
        }
        // The property says which representation the plain form writes.
        const DDS_DynamicDataProperty_t property = {from};
        const Data other(DDS_DynamicData_new(Type::get_typecode(), &property));
        ASSERT_EQ(DDS_DynamicData_copy(other.get(), this->data_.get()), DDS_RETCODE_OK);
        std::vector<char> bytes(8192);
        DDS_UnsignedLong size = 8192;
        ASSERT_EQ(DDS_DynamicData_to_cdr_buffer(other.get(), bytes.data(), &size), DDS_RETCODE_OK);
        bytes.resize(size);
        EXPECT_EQ(bytes, bytes_of(*sample, from));
        DDS_UnsignedLong too_short = size - 1;
        EXPECT_EQ(DDS_DynamicData_to_cdr_buffer(other.get(), bytes.data(), &too_short),
                  DDS_RETCODE_OUT_OF_RESOURCES);
        EXPECT_EQ(too_short, size) << "what it takes";
    }
}

// Whatever is cut off, the value is the sample's or an initial one.
TYPED_TEST(DynamicTopicTypes, BrokenBytesLeaveInitialValues) {
    const Data initial = make(TopicType<TypeParam>::get_typecode());
    Filled<TypeParam> sample;
    for (const DDS_DataRepresentationId_t representation : kRepresentations) {
        const std::vector<char> whole = bytes_of(*sample, representation);
        const std::vector<char> header(whole.begin(), whole.begin() + 4);
        for (std::size_t length = 0; length < whole.size(); ++length) {
            ASSERT_EQ(from_bytes(this->data_, whole), DDS_RETCODE_OK);
            const std::vector<char> cut(whole.begin(),
                                        whole.begin() + static_cast<std::ptrdiff_t>(length));
            EXPECT_EQ(from_bytes(this->data_, cut),
                      length == 0 ? DDS_RETCODE_BAD_PARAMETER : DDS_RETCODE_ERROR)
                << length;
            if (length != 0) {
                EXPECT_TRUE(DDS_DynamicData_equals(this->data_.get(), initial.get())) << length;
            }
        }
    }
    const std::vector<char> foreign = {0, 0x55, 0, 0, 1, 2, 3, 4};
    EXPECT_EQ(from_bytes(this->data_, foreign), DDS_RETCODE_ERROR);
    EXPECT_EQ(DDS_DynamicData_from_cdr_buffer(this->data_.get(), nullptr, 4),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_from_cdr_buffer(nullptr, foreign.data(), 4),
              DDS_RETCODE_BAD_PARAMETER);
    DDS_UnsignedLong size = 0;
    EXPECT_EQ(DDS_DynamicData_to_cdr_buffer_ex(this->data_.get(), nullptr, &size,
                                               DDS_XML_DATA_REPRESENTATION),
              DDS_RETCODE_BAD_PARAMETER);
}

// ---- Members ------------------------------------------------------------------------------------

// The typed record reads the values that are set here.
TYPED_TEST(DynamicTopicTypes, MembersAreSetByNameAndById) {
    using Type = TopicType<TypeParam>;
    DDS_DynamicData *const data = this->data_.get();
    ASSERT_EQ(DDS_DynamicData_set_long(data, Type::kKeyMember, kNoId, 4711), DDS_RETCODE_OK);
    const DDS_UnsignedLong id =
        DDS_TypeCode_find_member_by_name(Type::get_typecode(), Type::kNumberMember)->id;
    ASSERT_EQ(DDS_DynamicData_set_longlong(data, nullptr, id, -5), DDS_RETCODE_OK);
    DDS_LongLong number = 0;
    EXPECT_EQ(DDS_DynamicData_get_longlong(data, &number, nullptr, id), DDS_RETCODE_OK);
    EXPECT_EQ(number, -5);
    EXPECT_EQ(get_long(this->data_, Type::kNumberMember), -5);
    for (const DDS_DataRepresentationId_t representation : kRepresentations) {
        const std::vector<char> bytes = to_bytes(this->data_, representation);
        Sample<TypeParam> read;
        ASSERT_TRUE(Type::deserialize(read.get(), bytes.data(),
                                      static_cast<DDS_UnsignedLong>(bytes.size())));
        EXPECT_EQ(read.key(), 4711);
        EXPECT_EQ(read.number(), -5);
    }
}

TYPED_TEST(DynamicTopicTypes, EveryMemberIsThereByNameAndById) {
    const DDS_TypeCode *const code = TopicType<TypeParam>::get_typecode();
    for (DDS_UnsignedLong i = 0; i < DDS_TypeCode_member_count(code); ++i) {
        const DDS_TypeCodeMember &member = *DDS_TypeCode_member(code, i);
        EXPECT_TRUE(DDS_DynamicData_member_exists(this->data_.get(), member.name, kNoId));
        EXPECT_TRUE(DDS_DynamicData_member_exists(this->data_.get(), nullptr, member.id));
    }
    DDS_Long value = 7;
    EXPECT_FALSE(DDS_DynamicData_member_exists(this->data_.get(), "nothing", kNoId));
    EXPECT_FALSE(DDS_DynamicData_member_exists(this->data_.get(), nullptr, 4711));
    EXPECT_FALSE(DDS_DynamicData_member_exists(this->data_.get(), nullptr, kNoId));
    EXPECT_EQ(DDS_DynamicData_get_long(this->data_.get(), &value, "nothing", kNoId),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_get_long(this->data_.get(), &value, nullptr, 4711),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_long(this->data_.get(), "nothing", kNoId, 1),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_long(this->data_.get(), nullptr, 4711, 1),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(value, 7);
}

TYPED_TEST(DynamicTopicTypes, WrongKindsAndValuesChangeNothing) {
    DDS_DynamicData *const data = this->data_.get();
    const char *const name = TopicType<TypeParam>::kKeyMember;
    ASSERT_EQ(DDS_DynamicData_set_long(data, name, kNoId, 4711), DDS_RETCODE_OK);
    const Data before = make(TopicType<TypeParam>::get_typecode());
    ASSERT_EQ(DDS_DynamicData_copy(before.get(), data), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_set_string(data, name, kNoId, "1"), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_double(data, name, kNoId, 1.0), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_longlong(data, name, kNoId, 1LL << 31),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_ulong(data, name, kNoId, 1U << 31), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_length(data, 1, name, kNoId), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_complex_member(data, before.get(), name, kNoId),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_discriminator(data, 1), DDS_RETCODE_BAD_PARAMETER);
    DDS_Char *text = nullptr;
    DDS_Double real = 0;
    DDS_Octet small = 0;
    DDS_UnsignedLong length = 0;
    EXPECT_EQ(DDS_DynamicData_get_string(data, &text, nullptr, name, kNoId),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(DDS_DynamicData_get_double(data, &real, name, kNoId), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_get_octet(data, &small, name, kNoId), DDS_RETCODE_BAD_PARAMETER)
        << "too large for it";
    EXPECT_EQ(DDS_DynamicData_get_length(data, &length, name, kNoId), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(DDS_DynamicData_equals(data, before.get()));
}

// ---- Nested members -----------------------------------------------------------------------------

TEST(DynamicMessages, IdentityAndTexts) {
    const Data data = make(VUR_DL_LogMessage_get_typecode());
    const Data identity = make(VUR_DL_HostAndAppId_get_typecode());
    ASSERT_EQ(DDS_DynamicData_set_long(identity.get(), "rtps_host_id", kNoId, 3), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_set_complex_member(data.get(), identity.get(), "hostAndAppId", kNoId),
              DDS_RETCODE_OK);
    EXPECT_EQ(get_long(data, "hostAndAppId.rtps_host_id"), 3);
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "hostAndAppId.rtps_app_id", kNoId, 4),
              DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DynamicData_get_complex_member(data.get(), identity.get(), "hostAndAppId", kNoId),
              DDS_RETCODE_OK);
    EXPECT_EQ(get_long(identity, "rtps_app_id"), 4);
    const std::string longest(VUR_DL_LOG_MESSAGE_CATEGORY_BOUND, 'c');
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "category", kNoId, longest.c_str()),
              DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_set_string(data.get(), "category", kNoId, (longest + "c").c_str()),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(get_string(data, "category"), longest);
    ASSERT_EQ(DDS_DynamicData_set_longlong(data.get(), "messageId", kNoId,
                                           std::numeric_limits<DDS_LongLong>::max()),
              DDS_RETCODE_OK);
    DDS_Long narrow = 0;
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &narrow, "messageId", kNoId),
              DDS_RETCODE_BAD_PARAMETER);
}

TEST(DynamicStates, VerbositiesAreFive) {
    const Data data = make(VUR_DL_ADMIN_State_get_typecode());
    DDS_UnsignedLong length = 0;
    ASSERT_EQ(DDS_DynamicData_get_length(data.get(), &length, "vurLoggerVerbosities", kNoId),
              DDS_RETCODE_OK);
    EXPECT_EQ(length, 5U);
    const auto set = [&](const char *name, DDS_Long value) {
        return DDS_DynamicData_set_long(data.get(), name, kNoId, value);
    };
    EXPECT_EQ(set("vurLoggerVerbosities[4].category", 3), DDS_RETCODE_OK);
    EXPECT_EQ(get_long(data, "vurLoggerVerbosities[4].category"), 3);
    EXPECT_EQ(set("vurLoggerVerbosities[5].category", 3), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(set("vurLoggerVerbosities[4].verbosity", 6), DDS_RETCODE_BAD_PARAMETER)
        << "no enumerator";
    EXPECT_EQ(set("state", VUR_DL_STATE_SHUTTING_DOWN), DDS_RETCODE_OK);
    EXPECT_EQ(set("state", VUR_DL_STATE_SHUTTING_DOWN + 1), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_set_length(data.get(), 4, "vurLoggerVerbosities", kNoId),
              DDS_RETCODE_BAD_PARAMETER)
        << "an array";
}

// The command's branches, one after the other, as the typed record sees them.
TEST(DynamicRequests, BranchesSwitchTheDiscriminator) {
    const Data data = make(VUR_DL_ADMIN_CommandRequest_get_typecode());
    const auto read = [&](Sample<VUR_DL_ADMIN_CommandRequest> &request) {
        const std::vector<char> bytes = to_bytes(data, DDS_XCDR2_DATA_REPRESENTATION);
        ASSERT_TRUE(VUR_DL_ADMIN_CommandRequestPlugin_deserialize_from_cdr_buffer(
            request.get(), bytes.data(), static_cast<DDS_UnsignedLong>(bytes.size())));
    };
    DDS_Long value = 0;
    Sample<VUR_DL_ADMIN_CommandRequest> request;
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "command.filterLevel", kNoId, 800),
              DDS_RETCODE_OK);
    read(request);
    EXPECT_EQ(request->command._d, VUR_DL_SET_LOG_LEVEL);
    EXPECT_EQ(request->command._u.filterLevel, 800);

    EXPECT_EQ(
        DDS_DynamicData_set_long(data.get(), "command.categoryAndVerbosity[0].category", kNoId, 1),
        DDS_RETCODE_BAD_PARAMETER)
        << "the branch would begin without elements";
    EXPECT_EQ(DDS_DynamicData_set_length(data.get(), 6, "command.categoryAndVerbosity", kNoId),
              DDS_RETCODE_BAD_PARAMETER)
        << "above the bound";
    EXPECT_EQ(get_long(data, "command._d"), VUR_DL_SET_LOG_LEVEL);
    ASSERT_EQ(DDS_DynamicData_set_length(data.get(), 5, "command.categoryAndVerbosity", kNoId),
              DDS_RETCODE_OK);
    ASSERT_EQ(
        DDS_DynamicData_set_long(data.get(), "command.categoryAndVerbosity[4].verbosity", kNoId, 2),
        DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &value,
                                       "command.categoryAndVerbosity[5].verbosity", kNoId),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &value, "command.filterLevel", kNoId),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_FALSE(DDS_DynamicData_member_exists(data.get(), "command.filterLevel", kNoId));
    read(request);
    EXPECT_EQ(request->command._d, VUR_DL_SET_VUR_LOGGER_LEVEL);
    auto *const sequence = &request->command._u.categoryAndVerbosity;
    ASSERT_EQ(VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_get_length(sequence), 5U);
    EXPECT_EQ(VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_get_reference(sequence, 4)->verbosity,
              VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_WARNING);

    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "command._d", kNoId, 2), DDS_RETCODE_OK);
    EXPECT_EQ(get_long(data, "command.printFormat"), 0) << "another branch begins afresh";
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "command.printFormat", kNoId, 7),
              DDS_RETCODE_BAD_PARAMETER);
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), "command.printFormat", kNoId, 6),
              DDS_RETCODE_OK);
    read(request);
    EXPECT_EQ(request->command._d, VUR_DL_SET_VUR_LOGGER_PRINT_FORMAT);
    EXPECT_EQ(request->command._u.printFormat, VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MAXIMAL);
    EXPECT_EQ(DDS_DynamicData_set_long(data.get(), "command._d", kNoId, 3),
              DDS_RETCODE_BAD_PARAMETER)
        << "no enumerator of the discriminator's type";
}

TEST(DynamicCommands, AreUnionsOfTheirOwn) {
    const Data data = make(VUR_DL_ADMIN_Command_get_typecode());
    DDS_LongLong discriminator = -1;
    ASSERT_EQ(DDS_DynamicData_set_long(data.get(), nullptr, 3, 5), DDS_RETCODE_OK)
        << "printFormat by its id";
    ASSERT_EQ(DDS_DynamicData_get_discriminator(data.get(), &discriminator), DDS_RETCODE_OK);
    EXPECT_EQ(discriminator, VUR_DL_SET_VUR_LOGGER_PRINT_FORMAT);
    ASSERT_EQ(DDS_DynamicData_set_discriminator(data.get(), VUR_DL_SET_VUR_LOGGER_LEVEL),
              DDS_RETCODE_OK);
    DDS_UnsignedLong length = 9;
    ASSERT_EQ(DDS_DynamicData_get_length(data.get(), &length, nullptr, 2), DDS_RETCODE_OK);
    EXPECT_EQ(length, 0U);
    EXPECT_EQ(DDS_DynamicData_get_discriminator(data.get(), nullptr), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicData_get_discriminator(nullptr, &discriminator),
              DDS_RETCODE_BAD_PARAMETER);
    // Into a request and out of it again.
    const Data request = make(VUR_DL_ADMIN_CommandRequest_get_typecode());
    ASSERT_EQ(DDS_DynamicData_set_complex_member(request.get(), data.get(), "command", kNoId),
              DDS_RETCODE_OK);
    EXPECT_EQ(get_long(request, "command._d"), VUR_DL_SET_VUR_LOGGER_LEVEL);
    const Data back = make(VUR_DL_ADMIN_Command_get_typecode());
    ASSERT_EQ(DDS_DynamicData_get_complex_member(request.get(), back.get(), "command", kNoId),
              DDS_RETCODE_OK);
    EXPECT_TRUE(DDS_DynamicData_equals(back.get(), data.get()));
}

}  // namespace
