// SPDX-License-Identifier: Apache-2.0
// Forms that a standard writer may choose and this one doesn't: each is read (DDS-XTypes 1.3, 7.4.1
// and 7.4.3).
#include <gtest/gtest.h>
#include <vur_dl/distlog.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "support/types/test_types.h"

namespace {

using namespace support;

bool read(const DDS_TypeCode *type, const std::string &hex, void *record) {
    const Programs programs(type);
    const Bytes bytes = from_hex(hex);
    return KOLT_Cdr_deserialize(programs, bytes.data(), bytes.size(), record) != 0;
}

// An XCDR2 body, little-endian, with the DHEADER before it.
std::string list2(const std::string &members) {
    return "000b0000" + to_hex({static_cast<std::uint8_t>(from_hex(members).size()), 0, 0, 0}) +
           members;
}
// An XCDR1 parameter list, little-endian, with an end behind it.
std::string list1(const std::string &members, const std::string &end = "023f0000") {
    return "00030000" + members + end;
}

class AcceptMessage : public testing::Test {
  protected:
    AcceptMessage() : message_(VUR_DL_LogMessage_get_typecode()) {}

    void expect_read(const std::string &hex) {
        SCOPED_TRACE(hex);
        message_->hostAndAppId = {-1, -1};
        message_->level = -1;
        set_text(message_->category, "old");
        set_text(message_->message, "old");
        message_->messageId = -1;
        ASSERT_TRUE(read(VUR_DL_LogMessage_get_typecode(), hex, message_.get()));
        EXPECT_EQ(message_->hostAndAppId.rtps_host_id, 1);
        EXPECT_EQ(message_->hostAndAppId.rtps_app_id, 2);
        EXPECT_EQ(message_->level, 300);
        EXPECT_STREQ(message_->category, "c");
        EXPECT_STREQ(message_->message, "hi");
        EXPECT_EQ(message_->messageId, 7);
    }

    Record<VUR_DL_LogMessage> message_;
};

// The members as this library writes them. Each begins where the one before it ends, up to 4.
const std::array<std::string, 5> kMembers1 = {
    "0040 0800 01000000 02000000", "0140 0400 2c010000", "0200 0600 02000000 'c' 00 0000",
    "0300 0700 03000000 'hi' 00 00", "0400 0800 0700000000000000"};
const std::array<std::string, 5> kMembers2 = {
    "000000c0 0c000000 08000000 01000000 02000000", "010000a0 2c010000",
    "02000050 02000000 'c' 00 0000", "03000050 03000000 'hi' 00 00", "04000030 0700000000000000"};

std::string all(const std::array<std::string, 5> &members) {
    std::string text;
    for (const std::string &member : members) {
        text += member;
    }
    return text;
}
std::string with(std::array<std::string, 5> members, std::size_t place, const std::string &form) {
    members[place] = form;
    return all(members);
}

// ---- Both versions ------------------------------------------------------------------------------

TEST_F(AcceptMessage, MembersInEveryOrder) {
    std::array<std::size_t, 5> order = {0, 1, 2, 3, 4};
    do {
        std::array<std::string, 5> members1;
        std::array<std::string, 5> members2;
        for (std::size_t i = 0; i < order.size(); ++i) {
            members1[i] = kMembers1[order[i]];
            members2[i] = kMembers2[order[i]];
        }
        expect_read(list1(all(members1)));
        expect_read(list2(all(members2)));
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST_F(AcceptMessage, TheMustUnderstandFlagIsTheWriters) {
    // The flag is not set on keys.
    expect_read(list1(with(kMembers1, 0, "0000 0800 01000000 02000000")));
    expect_read(list1(with(kMembers1, 1, "0100 0400 2c010000")));
    expect_read(list2(with(kMembers2, 0, "00000040 0c000000 08000000 01000000 02000000")));
    expect_read(list2(with(kMembers2, 1, "01000020 2c010000")));
    // Set on others.
    expect_read(list1(with(kMembers1, 4, "0440 0800 0700000000000000")));
    expect_read(list2(with(kMembers2, 4, "040000b0 0700000000000000")));
}

TEST_F(AcceptMessage, UnknownMembersArePassedOver) {
    for (std::size_t place = 0; place <= kMembers1.size(); ++place) {
        for (const char *unknown :
             {"6300 0000", "6300 0400 ffffffff", "6300 0300 ffffff 00",
              "013f 0800 ffffff0f 04000000 ffffffff", "033f 0400 ffffffff", "6380 0400 ffffffff"}) {
            std::string text;
            for (std::size_t i = 0; i < kMembers1.size(); ++i) {
                text += (i == place ? unknown : "") + kMembers1[i];
            }
            expect_read(list1(text + (place == kMembers1.size() ? unknown : "")));
        }
        for (const char *unknown :
             {"63000000 ff 000000", "63000010 ffff 0000", "63000020 ffffffff",
              "63000030 ffffffffffffffff", "63000040 00000000", "63000040 03000000 ffffff 00",
              "63000050 02000000 ffff 0000", "63000060 01000000 ffffffff",
              "63000070 01000000 ffffffffffffffff", "feffff2f ffffffff"}) {
            std::string text;
            for (std::size_t i = 0; i < kMembers2.size(); ++i) {
                text += (i == place ? unknown : "") + kMembers2[i];
            }
            expect_read(list2(text + (place == kMembers2.size() ? unknown : "")));
        }
    }
}

TEST_F(AcceptMessage, UnknownMembersThatMustBeUnderstoodFailTheSample) {
    const DDS_TypeCode *const type = VUR_DL_LogMessage_get_typecode();
    for (const char *unknown : {"6340 0400 ffffffff", "017f 0800 63000000 04000000 ffffffff",
                                "013f 0800 63000040 04000000 ffffffff"}) {
        EXPECT_FALSE(read(type, list1(all(kMembers1) + unknown), message_.get())) << unknown;
        EXPECT_FALSE(read(type, list1(unknown + all(kMembers1)), message_.get())) << unknown;
    }
    for (const char *unknown : {"63000080 ff 000000", "630000a0 ffffffff", "630000c0 00000000",
                                "630000f0 01000000 ffffffffffffffff"}) {
        EXPECT_FALSE(read(type, list2(all(kMembers2) + unknown), message_.get())) << unknown;
        EXPECT_FALSE(read(type, list2(unknown + all(kMembers2)), message_.get())) << unknown;
    }
    // PID_IGNORE does not name a member, whatever its flags.
    expect_read(list1("037f 0400 ffffffff" + all(kMembers1)));
}

// The first of several values counts: for the sample as for a filter that looks for one field.
TEST_F(AcceptMessage, OfRepeatedMembersTheFirstCounts) {
    const std::string again1 = "0140 0400 63000000 0200 0600 02000000 'x' 00 0000";
    const std::string again2 = "010000a0 63000000 02000050 02000000 'x' 00 0000";
    expect_read(list1(all(kMembers1) + again1));
    expect_read(list2(all(kMembers2) + again2));
    const Programs programs(VUR_DL_LogMessage_get_typecode());
    for (const std::string &hex :
         {list1(all(kMembers1) + again1), list2(all(kMembers2) + again2)}) {
        const Bytes bytes = from_hex(hex);
        KOLT_CdrValue value{};
        const KOLT_CdrPathStep level[] = {{0, 1}};
        ASSERT_TRUE(KOLT_Cdr_find_field(programs, bytes.data(), bytes.size(), level, 1, &value));
        EXPECT_EQ(value.value.integer, 300);
    }
}

TEST_F(AcceptMessage, BytesBehindTheSampleArePassedOver) {
    for (const char *rest : {"ff", "ffff", "ffffff", "ffffffff", "ffffffff ff"}) {
        expect_read(list1(all(kMembers1)) + rest);
        expect_read(list2(all(kMembers2)) + rest);
    }
    expect_read("000b0003 40000000" + all(kMembers2) + "ff 000000");
}

TEST_F(AcceptMessage, AStringEndsAtItsFirstNul) {
    const std::string padded1 = list1(with(kMembers1, 2, "0200 0800 04000000 'c' 000000"));
    const std::string padded2 = list2(with(kMembers2, 2, "02000050 04000000 'c' 000000"));
    expect_read(padded1);
    expect_read(padded2);
    const Programs programs(VUR_DL_LogMessage_get_typecode());
    for (const std::string &hex : {padded1, padded2}) {
        const Bytes bytes = from_hex(hex);
        KOLT_CdrValue value{};
        const KOLT_CdrPathStep category[] = {{0, 2}};
        ASSERT_TRUE(KOLT_Cdr_find_field(programs, bytes.data(), bytes.size(), category, 1, &value));
        EXPECT_EQ(value.value.string.length, 1U);
    }
}

// ---- XCDR1 --------------------------------------------------------------------------------------

TEST_F(AcceptMessage, Xcdr1HeadersShortOrExtended) {
    const char *const extended[] = {
        "017f 0800 00000000 08000000 01000000 02000000",
        "013f 0800 01000040 04000000 2c010000",
        "013f 0800 02000000 06000000 02000000 'c' 00 0000",
        "013f 0800 03000000 07000000 03000000 'hi' 00 00",
        "017f 0800 04000040 08000000 0700000000000000",
    };
    std::array<std::string, 5> members;
    for (std::size_t i = 0; i < members.size(); ++i) {
        expect_read(list1(with(kMembers1, i, extended[i])));
        members[i] = extended[i];
    }
    expect_read(list1(all(members)));
    // The implementation's flag, 0x8000, says nothing.
    expect_read(list1(with(kMembers1, 4, "0480 0800 0700000000000000")));
    expect_read(list1(with(kMembers1, 4, "04c0 0800 0700000000000000")));
}

TEST_F(AcceptMessage, Xcdr1LengthsWithPadding) {
    expect_read(list1(with(kMembers1, 2, "0200 0800 02000000 'c' 00 0000")));
    expect_read(list1(with(kMembers1, 3, "0300 0800 03000000 'hi' 00 00")));
    expect_read(list1(with(kMembers1, 4, "0400 0c00 0700000000000000 ffffffff")));
}

TEST_F(AcceptMessage, Xcdr1ListEnds) {
    for (const char *end : {"023f 0000", "027f 0000", "02bf 0000", "02ff 0000",
                            "023f 0400 00000000",  // a length, and so many bytes
                            "023f 0400",           // a length that says nothing
                            "023f ffff", "027f 0100 00"}) {
        expect_read(list1(all(kMembers1), end));
    }
    // Inside, where members follow: the list of a union ends, whatever the length of its end says.
    Record<VUR_DL_ADMIN_CommandRequest> request(VUR_DL_ADMIN_CommandRequest_get_typecode());
    ASSERT_TRUE(read(VUR_DL_ADMIN_CommandRequest_get_typecode(),
                     list1("0300 1400 0040 0400 00000000 0100 0400 20030000 027f ffff"
                           "0200 0400 05000000"),
                     request.get()));
    EXPECT_EQ(request->command._u.filterLevel, 800);
    EXPECT_EQ(request->invocation, 5);
}

// ---- XCDR2 --------------------------------------------------------------------------------------

TEST_F(AcceptMessage, Xcdr2LengthCodes4And5) {
    // A structure: NEXTINT is its DHEADER.
    expect_read(list2(with(kMembers2, 0, "000000d0 08000000 01000000 02000000")));
    // A string: a NEXTINT of its own before the length.
    expect_read(list2(with(kMembers2, 2, "02000040 06000000 02000000 'c' 00 0000")));
    expect_read(list2(with(kMembers2, 3, "03000040 07000000 03000000 'hi' 00 00")));
    // Numbers: a NEXTINT where the length code would do.
    expect_read(list2(with(kMembers2, 1, "010000c0 04000000 2c010000")));
    expect_read(list2(with(kMembers2, 4, "04000040 08000000 0700000000000000")));
    // More bytes than the value takes.
    expect_read(list2(with(kMembers2, 4, "04000040 0c000000 0700000000000000 ffffffff")));
    // Length codes 6 and 7 count in 4 and 8 bytes, and the count belongs to the value.
    expect_read(list2(with(kMembers2, 2, "02000060 02000000 'c' 00 0000 ffffffff")));
    expect_read(
        list2(with(kMembers2, 2, "02000070 02000000 'c' 00 0000 ffffffff ffffffffffffffff")));
}

TEST(AcceptCommand, Xcdr2LengthCodes4And5) {
    const DDS_TypeCode *const type = VUR_DL_ADMIN_Command_get_typecode();
    const std::string kind = "000000a0 01000000";
    const std::string elements = "02000000 08000000 01000000 02000000 08000000 03000000 04000000";
    for (const std::string &branch :
         {"02000050 1c000000" + elements, "02000040 20000000 1c000000" + elements}) {
        for (const char *before : {"", "63000020 ffffffff"}) {
            Record<VUR_DL_ADMIN_Command> command(type);
            const std::string hex = list2(before + kind + branch);
            ASSERT_TRUE(read(type, hex, command.get())) << branch;
            EXPECT_EQ(command->_d, VUR_DL_SET_VUR_LOGGER_LEVEL);
            const Programs programs(type);
            const Bytes bytes = from_hex(hex);
            KOLT_CdrValue value{};
            const KOLT_CdrPathStep path[] = {{0, 1}, {1, 1}, {0, 1}};
            ASSERT_TRUE(KOLT_Cdr_find_field(programs, bytes.data(), bytes.size(), path, 3, &value));
            EXPECT_EQ(value.value.integer, VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_REMOTE);
            const auto &sequence = command->_u.categoryAndVerbosity;
            ASSERT_EQ(sequence._length, 2U);
            EXPECT_EQ(sequence._contiguous_buffer[1].verbosity,
                      VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_REMOTE);
        }
    }
}

// A union inside a member: LC 4 with a NEXTINT, or LC 5, where its DHEADER is the NEXTINT.
TEST(AcceptCommand, Xcdr2InARequest) {
    const DDS_TypeCode *const type = VUR_DL_ADMIN_CommandRequest_get_typecode();
    const std::string content = "10000000 000000a0 00000000 01000020 20030000";
    for (const char *header : {"03000040 14000000", "03000050", "030000c0 14000000"}) {
        Record<VUR_DL_ADMIN_CommandRequest> request(type);
        ASSERT_TRUE(read(type, list2(std::string(header) + content), request.get())) << header;
        EXPECT_EQ(request->command._u.filterLevel, 800);
        EXPECT_EQ(request->targetHostAndAppId.rtps_host_id, 0) << "members that are absent";
    }
}

TEST(AcceptState, Xcdr2ArrayWithLengthCodes4And5) {
    const DDS_TypeCode *const type = VUR_DL_ADMIN_State_get_typecode();
    std::string elements;
    for (int i = 0; i < 5; ++i) {
        elements += "08000000 0" + std::to_string(i) + "000000 03000000";
    }
    for (const char *header : {"05000050 3c000000", "05000040 40000000 3c000000"}) {
        Record<VUR_DL_ADMIN_State> state(type);
        ASSERT_TRUE(read(type, list2(std::string(header) + elements), state.get())) << header;
        for (int i = 0; i < 5; ++i) {
            EXPECT_EQ(state->vurLoggerVerbosities[i].category, i);
            EXPECT_EQ(state->vurLoggerVerbosities[i].verbosity, 3);
        }
    }
    // Fewer elements than the array has.
    Record<VUR_DL_ADMIN_State> state(type);
    EXPECT_FALSE(read(type,
                      list2("05000050 30000000" + elements.substr(0, elements.size() / 5 * 4)),
                      state.get()));
}

// ---- Collections of numbers ---------------------------------------------------------------------

class AcceptCollections : public testing::Test {
  protected:
    AcceptCollections() : record_(collections_type()) {}
    bool reads(const std::string &hex) { return read(collections_type(), hex, record_.get()); }

    Record<Collections> record_;
};

TEST_F(AcceptCollections, Xcdr2SequencesWithEveryLengthCode) {
    const std::string wide = "02000000 0100000000000000 ffffffffffffffff";
    for (const std::string &form : {"00000070" + wide, "00000040 14000000" + wide}) {
        ASSERT_TRUE(reads(list2(form))) << form;
        ASSERT_EQ(DDS_LongLongSeq_get_length(&record_->wide), 2U);
        EXPECT_EQ(DDS_LongLongSeq_get(&record_->wide, 1), -1);
    }
    const std::string reals = "01000000 000000000000f83f";
    for (const std::string &form : {"01000070" + reals, "01000040 0c000000" + reals}) {
        ASSERT_TRUE(reads(list2(form))) << form;
        ASSERT_EQ(DDS_DoubleSeq_get_length(&record_->reals), 1U);
        EXPECT_EQ(DDS_DoubleSeq_get(&record_->reals, 0), 1.5);
    }
    const std::string numbers = "03000000 01000000 02000000 03000000";
    for (const std::string &form : {"02000060" + numbers, "02000040 10000000" + numbers}) {
        ASSERT_TRUE(reads(list2(form))) << form;
        ASSERT_EQ(DDS_LongSeq_get_length(&record_->numbers), 3U);
        EXPECT_EQ(DDS_LongSeq_get(&record_->numbers, 2), 3);
    }
    const std::string octets = "03000000 010203 00";
    for (const std::string &form : {"03000050" + octets, "03000040 07000000" + octets}) {
        ASSERT_TRUE(reads(list2(form))) << form;
        ASSERT_EQ(DDS_OctetSeq_get_length(&record_->octets), 3U);
        EXPECT_EQ(DDS_OctetSeq_get(&record_->octets, 2), 3);
    }
    // An empty sequence is its count.
    for (const char *form :
         {"00000070 00000000", "00000020 00000000", "00000040 04000000 00000000"}) {
        ASSERT_TRUE(reads(list2(form))) << form;
        EXPECT_EQ(DDS_LongLongSeq_get_length(&record_->wide), 0U);
    }
    EXPECT_FALSE(reads(list2("00000070 03000000 0100000000000000 ffffffffffffffff")))
        << "shorter than its count";
    EXPECT_FALSE(reads(list2("02000060 05000000 0100000002000000030000000400000005000000")))
        << "beyond its bound";
}

TEST_F(AcceptCollections, Xcdr2ArraysHaveNoCount) {
    ASSERT_TRUE(
        reads(list2("04000040 0c000000 01000000 02000000 03000000"
                    "05000040 10000000 0400000000000000 0500000000000000"
                    "06000020 06070809")));
    EXPECT_EQ(record_->triple[2], 3);
    EXPECT_EQ(record_->pair[1], 5);
    EXPECT_EQ(record_->four[3], 9);
    ASSERT_TRUE(reads(list2("06000040 04000000 01020304")));
    EXPECT_EQ(record_->four[3], 4);
    EXPECT_EQ(record_->triple[2], 0) << "absent";
    EXPECT_FALSE(reads(list2("04000040 08000000 01000000 02000000")));
}

TEST_F(AcceptCollections, Xcdr2LengthCodes0To3) {
    ASSERT_TRUE(reads(list2("07000010 feff 0000 08000000 09")));
    EXPECT_EQ(record_->half, -2);
    EXPECT_EQ(record_->one, 9);
    // The length code says how long the member is, and may say more than its type takes.
    ASSERT_TRUE(reads(list2("07000020 feffffff 08000030 0900000000000000")));
    EXPECT_EQ(record_->half, -2);
    EXPECT_EQ(record_->one, 9);
    EXPECT_FALSE(reads(list2("07000000 fe 000000"))) << "less than its type takes";
}

TEST_F(AcceptCollections, Xcdr1IsThePlainForm) {
    // 7.4.1.2: the value's alignment begins behind its header.
    ASSERT_TRUE(
        reads(list1("0000 1800 02000000 00000000 0100000000000000 ffffffffffffffff"
                    "0400 0c00 010000000200000003000000"
                    "0500 1000 04000000000000000500000000000000"
                    "0600 0400 06070809 0700 0200 feff 0000 0800 0100 09 000000")));
    ASSERT_EQ(DDS_LongLongSeq_get_length(&record_->wide), 2U);
    EXPECT_EQ(DDS_LongLongSeq_get(&record_->wide, 1), -1);
    EXPECT_EQ(record_->triple[2], 3);
    EXPECT_EQ(record_->pair[1], 5);
    EXPECT_EQ(record_->four[3], 9);
    EXPECT_EQ(record_->half, -2);
    EXPECT_EQ(record_->one, 9);
}

// ---- Values that are not known ------------------------------------------------------------------

TEST(AcceptUnknown, EnumeratorsArriveAsTheyCame) {
    const DDS_TypeCode *const type = VUR_DL_ADMIN_State_get_typecode();
    std::string elements;
    for (int i = 0; i < 5; ++i) {
        elements += "63000000 ffffffff";
    }
    Record<VUR_DL_ADMIN_State> state(type);
    ASSERT_TRUE(read(type, list1("0200 0400 09000000 0500 2800" + elements + "0600 0400 07000000"),
                     state.get()));
    EXPECT_EQ(static_cast<DDS_Long>(state->state), 9);
    EXPECT_EQ(static_cast<DDS_Long>(state->vurLoggerVerbosities[4].category), 99);
    EXPECT_EQ(static_cast<DDS_Long>(state->vurLoggerVerbosities[4].verbosity), -1);
    EXPECT_EQ(static_cast<DDS_Long>(state->vurLoggerPrintFormat), 7);
}

TEST(AcceptUnknown, KindsOfCommandsSelectNoBranch) {
    const DDS_TypeCode *const type = VUR_DL_ADMIN_CommandRequest_get_typecode();
    for (const std::string &hex :
         {list1("0300 1400 0040 0400 09000000 0900 0400 2a000000 023f 0000 0200 0400 05000000"),
          list2("03000040 14000000 10000000 000000a0 09000000 09000020 2a000000"
                "02000020 05000000")}) {
        Record<VUR_DL_ADMIN_CommandRequest> request(type);
        ASSERT_TRUE(read(type, hex, request.get())) << hex;
        EXPECT_EQ(static_cast<DDS_Long>(request->command._d), 9);
        EXPECT_EQ(request->command._u.filterLevel, 0);
        EXPECT_EQ(request->invocation, 5);
    }
}

// A branch that its kind does not select is passed over, wherever it stands.
TEST(AcceptUnknown, BranchesThatAreNotSelected) {
    const DDS_TypeCode *const type = VUR_DL_ADMIN_Command_get_typecode();
    for (const std::string &hex :
         {list1("0040 0400 00000000 0300 0400 06000000 0100 0400 20030000 0200 0400 00000000"),
          list2("000000a0 00000000 03000020 06000000 01000020 20030000 02000050 04000000"
                "00000000")}) {
        Record<VUR_DL_ADMIN_Command> command(type);
        ASSERT_TRUE(read(type, hex, command.get())) << hex;
        EXPECT_EQ(command->_d, VUR_DL_SET_LOG_LEVEL);
        EXPECT_EQ(command->_u.filterLevel, 800);
        EXPECT_EQ(command->_u.printFormat, VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT);
    }
}

// ---- Members that are not there -----------------------------------------------------------------

template <typename T>
class AcceptAbsent : public testing::Test {};

#define TYPE(T)                                         \
    struct T##Type {                                    \
        using Value = T;                                \
        static constexpr auto kCode = T##_get_typecode; \
    }
TYPE(VUR_DL_LogMessage);
TYPE(VUR_DL_ADMIN_State);
TYPE(VUR_DL_ADMIN_CommandRequest);
TYPE(VUR_DL_ADMIN_CommandResponse);
#undef TYPE
using TopicTypes =
    testing::Types<VUR_DL_LogMessageType, VUR_DL_ADMIN_StateType, VUR_DL_ADMIN_CommandRequestType,
                   VUR_DL_ADMIN_CommandResponseType>;
TYPED_TEST_SUITE(AcceptAbsent, TopicTypes);

// Whatever the record held before, its strings that were freed included.
TYPED_TEST(AcceptAbsent, MembersHaveTheirInitialValues) {
    using Value = typename TypeParam::Value;
    const DDS_TypeCode *const type = TypeParam::kCode();
    Record<Value> initial(type);
    const std::string forms[] = {list1(""), list2(""), "00020000 3f020000", "000a0000 00000000"};
    for (const std::string &form : forms) {
        Record<Value> record(type);
        const DDS_TypeDeallocationParams_t params = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;
        ASSERT_TRUE(read(type, form, record.get())) << form;
        EXPECT_TRUE(KOLT_Record_equals(type, record.get(), initial.get())) << form;
        KOLT_Record_finalize_w_params(type, record.get(), &params);
        ASSERT_TRUE(read(type, form, record.get())) << form;
        EXPECT_TRUE(KOLT_Record_equals(type, record.get(), initial.get())) << form;
    }
}

TEST(AcceptAbsentNested, StringsInAnAbsentStructureAreMade) {
    // A record of zero bytes, as one is when nothing but a key is read.
    const DDS_TypeCode *const type = mutable_request_type();
    Request request{};
    ASSERT_TRUE(read(type, list1("0200 0400 04000000"), &request));
    EXPECT_STREQ(request.choice._u.text, "");
    const Programs programs(type);
    EXPECT_FALSE(serialize(programs, KOLT_ENCAPSULATION_PL_CDR2_LE, &request).empty());
    const DDS_TypeDeallocationParams_t params = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;
    KOLT_Record_finalize_w_params(type, &request, &params);
}

// ---- Versions of final types --------------------------------------------------------------------

TEST(AcceptVersions, AFinalTypeIsWholeOrRefused) {
    Record<Everything> record(everything_type());
    fill_everything(record.get());
    const Programs programs(everything_type());
    for (const unsigned encapsulation : {KOLT_ENCAPSULATION_CDR_LE, KOLT_ENCAPSULATION_CDR_BE,
                                         KOLT_ENCAPSULATION_CDR2_LE, KOLT_ENCAPSULATION_CDR2_BE}) {
        const Bytes bytes = serialize(programs, encapsulation, record.get());
        Record<Everything> back(everything_type());
        // A writer's type with one member less: the last one is missing.
        EXPECT_FALSE(KOLT_Cdr_deserialize(programs, bytes.data(), bytes.size() - 8, back.get()));
        // One member more can't be told from padding: it is passed over.
        Bytes longer = bytes;
        longer.insert(longer.end(), 8, 0xff);
        ASSERT_TRUE(KOLT_Cdr_deserialize(programs, longer.data(), longer.size(), back.get()));
        EXPECT_TRUE(KOLT_Record_equals(everything_type(), record.get(), back.get()));
    }
}

}  // namespace
