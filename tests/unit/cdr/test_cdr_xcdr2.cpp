// SPDX-License-Identifier: Apache-2.0
// XCDR2, byte for byte. Every vector is derived by hand from DDS-XTypes 1.3, clause 7.4.1 to 7.4.3;
// positions in the comments count from behind the encapsulation header.
#include <gtest/gtest.h>

#include "support/cdr/cdr_vectors.h"

#include <cstdint>

namespace {

using namespace support;

// 7.4.1.1.1: nothing is aligned to more than 4. 7.4.3.5.3, rules (12) and (13): arrays and
// sequences of anything but primitives begin with a DHEADER, their size in bytes. Rule (29): so
// does an appendable structure.
TEST(Xcdr2, Everything) {
    Record<Everything> record(everything_type());
    fill_everything(record.get());
    expect_bytes(everything_type(), KOLT_ENCAPSULATION_CDR2_LE, record.get(),
                 "00070000"
                 "01 000000"                                         //   0 flag
                 "feffffffffffffff"                                  //   4 wide
                 "fe 000000"                                         //  12 octet
                 "000000000000f83f"                                  //  16 real
                 "6b 00 fdff ffff 0000"                              //  24 letter, small, positive
                 "00286bee 0807060504030201"                         //  32 word, largest
                 "000080be 05000000"                                 //  44 single, color
                 "05000000 'text' 00 000000"                         //  52 text
                 "010000000200000003000000040000000500000006000000"  // 64 matrix: no DHEADER
                 "08000000 0100ffff 0200feff"                        // 88 points
                 "08000000 02000000 01000000"  // 100 colors: enumerations are not primitive
                 "03000000 090807 00"          // 112 octets
                 "02000000 0100000000000000 ffffffffffffffff"                  // 120 numbers
                 "19000000 02000000 04000000 'one' 00 09000000 'eight888' 00"  // 140 names
                 "000000"                                                      // 169
                 "08000000 01000000 0500 0600"                                 // 172 path
                 "08000000 0a000000 14000000");                                // 184 id
}

TEST(Xcdr2, EverythingBigEndian) {
    Record<Everything> record(everything_type());
    fill_everything(record.get());
    expect_bytes(everything_type(), KOLT_ENCAPSULATION_CDR2_BE, record.get(),
                 "00060000"
                 "01 000000 fffffffffffffffe fe 000000 3ff8000000000000 6b 00 fffd ffff 0000"
                 "ee6b2800 0102030405060708 be800000 00000005 00000005 'text' 00 000000"
                 "000000010000000200000003000000040000000500000006"
                 "00000008 0001ffff 0002fffe 00000008 00000002 00000001 00000003 090807 00"
                 "00000002 0000000000000001 ffffffffffffffff"
                 "00000019 00000002 00000004 'one' 00 00000009 'eight888' 00 000000"
                 "00000008 00000001 0005 0006 00000008 0000000a 00000014");
}

TEST(Xcdr2, AppendableStructure) {
    Record<Id> id(id_type());
    id->host = 1;
    id->app = 2;
    expect_bytes(id_type(), KOLT_ENCAPSULATION_D_CDR2_LE, id.get(),
                 "00090000 08000000 01000000 02000000");
}

// 7.4.3.4.2: a member of a mutable structure begins with an EMHEADER: must-understand flag (bit
// 31), length code (30 to 28), member id. Codes 0 to 3: 1, 2, 4, 8 bytes. 4: a NEXTINT gives the
// length. 5: so does the count that the value begins with. 6 and 7: the same in units of 4 and 8
// bytes.
constexpr char kMessageLittle[] =
    "000b0000"
    "40000000"                                      //  0 DHEADER
    "000000c0 0c000000 08000000 01000000 02000000"  //  4 id, a key: code 4
    "010000a0 2c010000"                             // 24 level, a key: code 2
    "02000050 02000000 'c' 00 0000"                 // 32 category: code 5
    "03000050 03000000 'hi' 00 00"                  // 44 text
    "04000030 0700000000000000";                    // 56 number: code 3

TEST(Xcdr2, MutableStructure) {
    Record<Message> message(message_type());
    fill(message.get());
    expect_bytes(message_type(), KOLT_ENCAPSULATION_PL_CDR2_LE, message.get(), kMessageLittle);
    expect_bytes(message_type(), KOLT_ENCAPSULATION_PL_CDR2_BE, message.get(),
                 "000a0000 00000040 c0000000 0000000c 00000008 00000001 00000002"
                 "a0000001 0000012c 50000002 00000002 'c' 00 0000 50000003 00000003 'hi' 00 00"
                 "30000004 0000000000000007");
}

TEST(Xcdr2, OptionsTellTheMissingPadding) {
    Record<Version1> record(appendable_version1_type());
    record->a = 1;
    set_text(record->name, "a");
    expect_bytes(appendable_version1_type(), KOLT_ENCAPSULATION_D_CDR2_LE, record.get(),
                 "00090002 0a000000 01000000 02000000 'a' 00");
}

// 7.4.3.5.3, rules (20) to (22): an optional member of a plain structure follows a boolean.
TEST(Xcdr2, OptionalMembers) {
    Record<Options> record(final_options_type());
    fill(record.get());
    expect_bytes(final_options_type(), KOLT_ENCAPSULATION_CDR2_LE, record.get(),
                 "00070001 01000000 01 000000 02000000 01 000000 04000000 'abc' 00"
                 "01 00 0300 0400 05");
    expect_bytes(appendable_options_type(), KOLT_ENCAPSULATION_D_CDR2_LE, record.get(),
                 "00090001 1f000000 01000000 01 000000 02000000 01 000000 04000000 'abc' 00"
                 "01 00 0300 0400 05");
    expect_bytes(mutable_options_type(), KOLT_ENCAPSULATION_PL_CDR2_LE, record.get(),
                 "000b0003 2d000000 00000020 01000000 01000020 02000000"
                 "02000050 04000000 'abc' 00 03000040 04000000 0300 0400 04000000 05");

    Record<Options> none(final_options_type());
    none->last = 9;
    expect_bytes(final_options_type(), KOLT_ENCAPSULATION_CDR2_LE, none.get(),
                 "00070000 00000000 00 00 00 09");
    expect_bytes(mutable_options_type(), KOLT_ENCAPSULATION_PL_CDR2_LE, none.get(),
                 "000b0003 0d000000 00000020 00000000 04000000 09");
}

TEST(Xcdr2, Unions) {
    Record<Choice> choice(final_choice_type());
    fill(choice.get());
    expect_bytes(final_choice_type(), KOLT_ENCAPSULATION_CDR2_LE, choice.get(),
                 "00070000 02000000 10000000 01000000 08000000 01000000 02000000");
    expect_bytes(appendable_choice_type(), KOLT_ENCAPSULATION_D_CDR2_LE, choice.get(),
                 "00090000 18000000 02000000 10000000 01000000 08000000 01000000 02000000");
    expect_bytes(mutable_choice_type(), KOLT_ENCAPSULATION_PL_CDR2_LE, choice.get(),
                 "000b0000 20000000 000000a0 02000000"
                 "02000050 10000000 01000000 08000000 01000000 02000000");
    choice->_d = 7;
    expect_bytes(mutable_choice_type(), KOLT_ENCAPSULATION_PL_CDR2_LE, choice.get(),
                 "000b0000 08000000 000000a0 07000000");
}

TEST(Xcdr2, DefaultBranch) {
    Record<Fallback> fallback(fallback_type());
    fallback->_d = 1;
    fallback->_u.wide = 2;
    expect_bytes(fallback_type(), KOLT_ENCAPSULATION_CDR2_LE, fallback.get(),
                 "00070000 01 000000 0200000000000000");
}

TEST(Xcdr2, NestedMutable) {
    Record<Request> request(mutable_request_type());
    fill(request.get());
    expect_bytes(mutable_request_type(), KOLT_ENCAPSULATION_PL_CDR2_LE, request.get(),
                 "000b0000 3c000000"
                 "00000040 0c000000 08000000 01000000 02000000"
                 "01000040 16000000 12000000 000000a0 03000000 03000050 02000000 't' 00 0000"
                 "02000020 04000000");
}

TEST(Xcdr2, LargeMemberIds) {
    Record<Large> record(large_type());
    const DDS_Octet data[] = {1, 2};
    ASSERT_TRUE(DDS_OctetSeq_from_array(&record->data, data, 2));
    record->far = 1;
    record->farther = 2;
    expect_bytes(large_type(), KOLT_ENCAPSULATION_PL_CDR2_LE, record.get(),
                 "000b0000 1c000000 00000050 02000000 0102 0000 013f0020 01000000"
                 "f0ffff2f 02000000");
}

// 7.4.3.4.2: readers take every length code that fits.
TEST(Xcdr2, ReadsEveryLengthCode) {
    const Programs programs(mutable_version2_type());
    for (const char *more : {"04000040 0c000000 02000000 0b000000 16000000",  // NEXTINT of its own
                             "04000060 02000000 0b000000 16000000"}) {  // shared, in units of 4
        const std::string a = "00000040 04000000 05000000";             // 4 bytes by NEXTINT
        const std::string name = "01000040 06000000 02000000 'n' 00 0000";
        const std::string b = "02000010 0900 0000";  // code 1
        Bytes body = from_hex(a + name + b + more);
        Bytes bytes = from_hex("000b0000");
        bytes.push_back(static_cast<std::uint8_t>(body.size()));
        bytes.insert(bytes.end(), 3, 0);
        bytes.insert(bytes.end(), body.begin(), body.end());
        Record<Version2> record(mutable_version2_type());
        ASSERT_TRUE(KOLT_Cdr_deserialize(programs, bytes.data(), bytes.size(), record.get()));
        EXPECT_EQ(record->a, 5);
        EXPECT_STREQ(record->name, "n");
        EXPECT_EQ(record->b, 9);
        ASSERT_EQ(DDS_LongSeq_get_length(&record->more), 2U);
        EXPECT_EQ(DDS_LongSeq_get(&record->more, 1), 22);
        EXPECT_STREQ(record->extra, "none");
    }
}

TEST(Xcdr2, UnknownDiscriminatorArrives) {
    // A later version of the union: discriminator 7 with a branch that this one does not know.
    const Programs programs(mutable_request_type());
    const Bytes bytes = from_hex(
        "000b0000 38000000 00000040 0c000000 08000000 01000000 02000000"
        "01000040 14000000 10000000 000000a0 07000000 09000020 2a000000"
        "02000020 04000000");
    Record<Request> request(mutable_request_type());
    request->choice._u.number = 11;
    ASSERT_TRUE(KOLT_Cdr_deserialize(programs, bytes.data(), bytes.size(), request.get()));
    EXPECT_EQ(request->choice._d, 7);
    EXPECT_EQ(request->choice._u.number, 11) << "no branch was touched";
    EXPECT_EQ(request->after, 4);
}

TEST(Xcdr2, UnknownEnumeratorsArrive) {
    const Programs programs(color_type());
    const Bytes bytes = from_hex("00070000 63000000");
    DDS_Enum color = 0;
    EXPECT_TRUE(KOLT_Cdr_deserialize(programs, bytes.data(), bytes.size(), &color));
    EXPECT_EQ(color, 99);
}

TEST(Xcdr2, SizesBoundTheBytes) {
    const Programs message(message_type());
    // DHEADER 4 + id 20 + level 8 + (8 + 17 + 3) + (8 + 65 + 3) + 12, and the header.
    EXPECT_EQ(KOLT_Cdr_serialized_max_size(message, KOLT_ENCAPSULATION_PL_CDR2_LE), 152U);
    EXPECT_EQ(KOLT_Cdr_serialized_min_size(message, KOLT_ENCAPSULATION_PL_CDR2_LE), 72U);
    Record<Message> record(message_type());
    EXPECT_EQ(KOLT_Cdr_serialized_size(message, KOLT_ENCAPSULATION_PL_CDR2_LE, record.get()), 72U);
    set_text(record->category, "0123456789abcdef");
    std::fill(record->text, record->text + 64, 'x');
    EXPECT_EQ(KOLT_Cdr_serialized_size(message, KOLT_ENCAPSULATION_PL_CDR2_LE, record.get()), 152U);

    const Programs choice(mutable_choice_type());
    // DHEADER, discriminator 8, ids: 4 + DHEADER 4 + count 4 + 5 * 12.
    EXPECT_EQ(KOLT_Cdr_serialized_max_size(choice, KOLT_ENCAPSULATION_PL_CDR2_LE),
              4U + 4 + 8 + 4 + 8 + 60);
    EXPECT_EQ(KOLT_Cdr_serialized_min_size(choice, KOLT_ENCAPSULATION_PL_CDR2_LE), 16U);
    const Programs large(large_type());
    EXPECT_EQ(KOLT_Cdr_serialized_max_size(large, KOLT_ENCAPSULATION_PL_CDR2_LE),
              KOLT_CDR_MAX_SERIALIZED_SIZE_UNBOUNDED);
}

TEST(Xcdr2, LoanedSequences) {
    const Programs programs(final_choice_type());
    Record<Choice> choice(final_choice_type());
    choice->_d = 1;
    ASSERT_TRUE(IdSeq_finalize(&choice->_u.ids));
    Id first = {1, 2};
    Id second = {3, 4};
    Id *pointers[] = {&first, &second};
    ASSERT_TRUE(IdSeq_loan_discontiguous(&choice->_u.ids, pointers, 2, 2));
    const Bytes bytes = serialize(programs, KOLT_ENCAPSULATION_CDR2_LE, choice.get());
    EXPECT_EQ(to_hex(bytes),
              to_hex(from_hex("00070000 01000000 1c000000 02000000 08000000 01000000 02000000"
                              "08000000 03000000 04000000")));
    pointers[1] = nullptr;
    EXPECT_EQ(KOLT_Cdr_serialized_size(programs, KOLT_ENCAPSULATION_CDR2_LE, choice.get()), 0U);
    pointers[1] = &second;
    // Reading goes into the loan while it has room.
    first = second = {0, 0};
    EXPECT_TRUE(KOLT_Cdr_deserialize(programs, bytes.data(), bytes.size(), choice.get()));
    EXPECT_EQ(second.app, 4);
    ASSERT_TRUE(IdSeq_unloan(&choice->_u.ids));
}

TEST(Xcdr2, FindField) {
    const Programs programs(everything_type());
    Record<Everything> record(everything_type());
    fill_everything(record.get());
    for (const unsigned encapsulation : {KOLT_ENCAPSULATION_CDR_LE, KOLT_ENCAPSULATION_CDR_BE,
                                         KOLT_ENCAPSULATION_CDR2_LE, KOLT_ENCAPSULATION_CDR2_BE}) {
        const Bytes bytes = serialize(programs, encapsulation, record.get());
        const auto find = [&](std::vector<KOLT_CdrPathStep> path) {
            KOLT_CdrValue value{};
            EXPECT_TRUE(KOLT_Cdr_find_field(programs, bytes.data(), bytes.size(), path.data(),
                                            path.size(), &value));
            return value;
        };
        EXPECT_EQ(find({{0, 1}}).value.integer, -2);
        EXPECT_EQ(find({{0, 2}}).value.integer, 0xfe);
        EXPECT_EQ(find({{0, 3}}).value.real, 1.5);
        EXPECT_EQ(find({{0, 5}}).value.integer, -3);
        EXPECT_EQ(find({{0, 7}}).value.integer, 4000000000);
        EXPECT_EQ(find({{0, 8}}).value.unsigned_integer, 0x0102030405060708U);
        EXPECT_EQ(find({{0, 9}}).value.real, -0.25);
        EXPECT_EQ(find({{0, 10}}).kind, DDS_TK_ENUM);
        const KOLT_CdrValue text = find({{0, 11}});
        EXPECT_EQ(std::string(text.value.string.characters, text.value.string.length), "text");
        EXPECT_EQ(find({{0, 12}, {1, 4}}).value.integer, 5);
        EXPECT_EQ(find({{0, 12}, {1, 6}}).kind, DDS_TK_NULL);
        EXPECT_EQ(find({{0, 13}, {1, 1}, {0, 1}}).value.integer, -2);
        EXPECT_EQ(find({{0, 14}, {1, 0}}).value.integer, GREEN);
        EXPECT_EQ(find({{0, 15}, {1, 2}}).value.integer, 7);
        EXPECT_EQ(find({{0, 16}, {1, 1}}).value.integer, -1);
        const KOLT_CdrValue name = find({{0, 17}, {1, 1}});
        EXPECT_EQ(std::string(name.value.string.characters, name.value.string.length), "eight888");
        EXPECT_EQ(find({{0, 17}, {1, 2}}).kind, DDS_TK_NULL);
        EXPECT_EQ(find({{0, 18}, {1, 0}, {0, 1}}).value.integer, 6);
        EXPECT_EQ(find({{0, 19}, {0, 1}}).value.integer, 20);
        KOLT_CdrValue value{};
        const KOLT_CdrPathStep wrong[][2] = {
            {{0, 20}, {0, 0}}, {{1, 0}, {0, 0}}, {{0, 0}, {0, 0}}, {{0, 19}, {1, 0}}};
        for (const auto &path : wrong) {
            EXPECT_FALSE(
                KOLT_Cdr_find_field(programs, bytes.data(), bytes.size(), path, 2, &value));
        }
        const KOLT_CdrPathStep structure[] = {{0, 19}};
        EXPECT_FALSE(
            KOLT_Cdr_find_field(programs, bytes.data(), bytes.size(), structure, 1, &value));
    }
}

TEST(Xcdr2, FindFieldInUnionsAndOptionals) {
    const Programs requests(mutable_request_type());
    Record<Request> request(mutable_request_type());
    request->choice._d = 3;
    set_text(request->choice._u.text, "abc");
    request->after = 12;
    for (const unsigned encapsulation :
         {KOLT_ENCAPSULATION_PL_CDR_LE, KOLT_ENCAPSULATION_PL_CDR_BE, KOLT_ENCAPSULATION_PL_CDR2_LE,
          KOLT_ENCAPSULATION_PL_CDR2_BE}) {
        const Bytes bytes = serialize(requests, encapsulation, request.get());
        KOLT_CdrValue value{};
        const KOLT_CdrPathStep text[] = {{0, 1}, {0, 2}};
        ASSERT_TRUE(KOLT_Cdr_find_field(requests, bytes.data(), bytes.size(), text, 2, &value));
        EXPECT_EQ(std::string(value.value.string.characters, value.value.string.length), "abc");
        const KOLT_CdrPathStep number[] = {{0, 1}, {0, 0}};
        ASSERT_TRUE(KOLT_Cdr_find_field(requests, bytes.data(), bytes.size(), number, 2, &value));
        EXPECT_EQ(value.kind, DDS_TK_NULL) << "not the selected branch";
        const KOLT_CdrPathStep after[] = {{0, 2}};
        ASSERT_TRUE(KOLT_Cdr_find_field(requests, bytes.data(), bytes.size(), after, 1, &value));
        EXPECT_EQ(value.value.integer, 12);
    }
    const Programs options(final_options_type());
    Record<Options> none(final_options_type());
    none->last = 3;
    for (const unsigned encapsulation : {KOLT_ENCAPSULATION_CDR_LE, KOLT_ENCAPSULATION_CDR2_LE}) {
        const Bytes bytes = serialize(options, encapsulation, none.get());
        KOLT_CdrValue value{};
        const KOLT_CdrPathStep number[] = {{0, 1}};
        ASSERT_TRUE(KOLT_Cdr_find_field(options, bytes.data(), bytes.size(), number, 1, &value));
        EXPECT_EQ(value.kind, DDS_TK_NULL) << "an optional member that is absent has no value";
        const KOLT_CdrPathStep last[] = {{0, 4}};
        ASSERT_TRUE(KOLT_Cdr_find_field(options, bytes.data(), bytes.size(), last, 1, &value));
        EXPECT_EQ(value.value.integer, 3);
    }
}

}  // namespace
