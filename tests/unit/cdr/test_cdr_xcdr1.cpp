// SPDX-License-Identifier: Apache-2.0
// XCDR1, byte for byte. Every vector is derived by hand from DDS-XTypes 1.3, clause 7.4.1
// and 7.4.2; positions in the comments count from behind the encapsulation header.
#include <gtest/gtest.h>

#include "support/cdr/cdr_vectors.h"

#include <cstdint>

namespace {

using namespace support;

// 7.4.1.1.1: a primitive is aligned to its size, up to 8. 7.4.1.1.4: a string is its length with
// the terminator, and the terminator. Arrays and sequences are their elements, a sequence after its
// length. 7.4.2, table 39: final and appendable structures are plain.
constexpr char kEverythingLittle[] =
    "00010000"
    "01 00000000000000"                                 //  0 flag, padding to 8
    "feffffffffffffff"                                  //  8 wide
    "fe 00000000000000"                                 // 16 octet
    "000000000000f83f"                                  // 24 real
    "6b 00 fdff"                                        // 32 letter, small
    "ffff 0000"                                         // 36 positive
    "00286bee 00000000"                                 // 40 word
    "0807060504030201"                                  // 48 largest
    "000080be"                                          // 56 single
    "05000000"                                          // 60 color: an enumeration is a long
    "05000000 'text' 00"                                // 64 text
    "000000"                                            // 73 padding
    "010000000200000003000000040000000500000006000000"  // 76 matrix, row by row
    "0100ffff 0200feff"                                 // 100 points
    "02000000 01000000"                                 // 108 colors
    "03000000 090807"                                   // 116 octets
    "00"                                                // 123
    "02000000"                                          // 124 numbers
    "0100000000000000 ffffffffffffffff"                 // 128
    "02000000 04000000 'one' 00"                        // 144 names
    "09000000 'eight888' 00 000000"                     // 156
    "01000000 0500 0600"                                // 172 path
    "0a000000 14000000";                                // 180 id: no header

TEST(Xcdr1, Everything) {
    Record<Everything> record(everything_type());
    fill_everything(record.get());
    expect_bytes(everything_type(), KOLT_ENCAPSULATION_CDR_LE, record.get(), kEverythingLittle);
}

TEST(Xcdr1, EverythingBigEndian) {
    Record<Everything> record(everything_type());
    fill_everything(record.get());
    expect_bytes(everything_type(), KOLT_ENCAPSULATION_CDR_BE, record.get(),
                 "00000000"
                 "01 00000000000000 fffffffffffffffe"
                 "fe 00000000000000 3ff8000000000000"
                 "6b 00 fffd ffff 0000 ee6b2800 00000000 0102030405060708 be800000 00000005"
                 "00000005 'text' 00 000000"
                 "000000010000000200000003000000040000000500000006"
                 "0001ffff 0002fffe 00000002 00000001 00000003 090807 00"
                 "00000002 0000000000000001 ffffffffffffffff"
                 "00000002 00000004 'one' 00 00000009 'eight888' 00 000000"
                 "00000001 0005 0006 0000000a 00000014");
}

// 7.4.1.2.2: a mutable structure is a list of parameters, each a 16-bit id with flags (0x4000: must
// be understood, as a key must), a 16-bit length of the value, and the value; 4-byte aligned; the
// list ends with PID_SENTINEL 0x3f02.
constexpr char kMessageLittle[] =
    "00030000"
    "0040 0800 01000000 02000000"  //  0 id, a key
    "0140 0400 2c010000"           // 12 level, a key
    "0200 0600 02000000 'c' 00"    // 20 category
    "0000"                         // 30
    "0300 0700 03000000 'hi' 00"   // 32 text
    "00"                           // 43
    "0400 0800 0700000000000000"   // 44 number: aligned from its own header
    "023f 0000";                   // 56

TEST(Xcdr1, MutableStructure) {
    Record<Message> message(message_type());
    fill(message.get());
    expect_bytes(message_type(), KOLT_ENCAPSULATION_PL_CDR_LE, message.get(), kMessageLittle);
    expect_bytes(message_type(), KOLT_ENCAPSULATION_PL_CDR_BE, message.get(),
                 "00020000 4000 0008 00000001 00000002 4001 0004 0000012c"
                 "0002 0006 00000002 'c' 00 0000 0003 0007 00000003 'hi' 00 00"
                 "0004 0008 0000000000000007 3f02 0000");
}

TEST(Xcdr1, OptionsTellTheMissingPadding) {
    // 7.6.3.1.2: the last two bits of the options count the bytes up to a multiple of 4.
    Record<Version1> record(appendable_version1_type());
    record->a = 1;
    set_text(record->name, "ab");
    expect_bytes(appendable_version1_type(), KOLT_ENCAPSULATION_CDR_LE, record.get(),
                 "00010001 01000000 03000000 'ab' 00");
    // The same as it comes from the wire.
    const Programs programs(appendable_version1_type());
    const Bytes wire = from_hex("00010001 01000000 03000000 'ab' 00 00");
    Record<Version1> back(appendable_version1_type());
    EXPECT_TRUE(KOLT_Cdr_deserialize(programs, wire.data(), wire.size(), back.get()));
    EXPECT_STREQ(back->name, "ab");
}

// 7.4.1.2.1: an optional member of a plain structure is a parameter; absent, its length is 0.
TEST(Xcdr1, OptionalMembersOfPlainStructures) {
    Record<Options> record(final_options_type());
    fill(record.get());
    expect_bytes(final_options_type(), KOLT_ENCAPSULATION_CDR_LE, record.get(),
                 "00010003 01000000 0100 0400 02000000 0200 0800 04000000 'abc' 00"
                 "0300 0400 0300 0400 05");
    expect_bytes(final_options_type(), KOLT_ENCAPSULATION_CDR_BE, record.get(),
                 "00000003 00000001 0001 0004 00000002 0002 0008 00000004 'abc' 00"
                 "0003 0004 0003 0004 05");

    Record<Options> none(final_options_type());
    none->last = 9;
    expect_bytes(final_options_type(), KOLT_ENCAPSULATION_CDR_LE, none.get(),
                 "00010003 00000000 0100 0000 0200 0000 0300 0000 09");
    expect_bytes(final_options_type(), KOLT_ENCAPSULATION_CDR_BE, none.get(),
                 "00000003 00000000 0001 0000 0002 0000 0003 0000 09");
    // A mutable structure leaves them out.
    expect_bytes(mutable_options_type(), KOLT_ENCAPSULATION_PL_CDR_LE, none.get(),
                 "00030000 0000 0400 00000000 0400 0100 09 000000 023f 0000");
}

TEST(Xcdr1, Unions) {
    Record<Choice> choice(final_choice_type());
    fill(choice.get());
    // 7.4.1.1.7: the discriminator, then the selected branch.
    expect_bytes(final_choice_type(), KOLT_ENCAPSULATION_CDR_LE, choice.get(),
                 "00010000 02000000 01000000 01000000 02000000");
    // The discriminator of a mutable union is its member 0, which must be understood.
    expect_bytes(mutable_choice_type(), KOLT_ENCAPSULATION_PL_CDR_LE, choice.get(),
                 "00030000 0040 0400 02000000 0200 0c00 01000000 01000000 02000000 023f 0000");
    expect_bytes(final_choice_type(), KOLT_ENCAPSULATION_CDR_BE, choice.get(),
                 "00000000 00000002 00000001 00000001 00000002");
    expect_bytes(mutable_choice_type(), KOLT_ENCAPSULATION_PL_CDR_BE, choice.get(),
                 "00020000 4000 0004 00000002 0002 000c 00000001 00000001 00000002 3f02 0000");
    choice->_d = 7;
    expect_bytes(final_choice_type(), KOLT_ENCAPSULATION_CDR_LE, choice.get(), "00010000 07000000");
    expect_bytes(mutable_choice_type(), KOLT_ENCAPSULATION_PL_CDR_LE, choice.get(),
                 "00030000 0040 0400 07000000 023f 0000");
}

TEST(Xcdr1, DefaultBranch) {
    Record<Fallback> fallback(fallback_type());
    fallback->_d = 1;
    fallback->_u.wide = 2;
    expect_bytes(fallback_type(), KOLT_ENCAPSULATION_CDR_LE, fallback.get(),
                 "00010000 01 00000000000000 0200000000000000");
    expect_bytes(fallback_type(), KOLT_ENCAPSULATION_CDR_BE, fallback.get(),
                 "00000000 01 00000000000000 0000000000000002");
    fallback->_d = 9;
    fallback->_u.small = 8;
    expect_bytes(fallback_type(), KOLT_ENCAPSULATION_CDR_LE, fallback.get(), "00010002 09 08");
}

TEST(Xcdr1, NestedParameterLists) {
    Record<Request> request(mutable_request_type());
    fill(request.get());
    expect_bytes(mutable_request_type(), KOLT_ENCAPSULATION_PL_CDR_LE, request.get(),
                 "00030000 0000 0800 01000000 02000000"
                 "0100 1800"                       // choice: 24 bytes with its sentinel
                 "0040 0400 03000000"              //   discriminator
                 "0300 0600 02000000 't' 00 0000"  //   text
                 "023f 0000"
                 "0200 0400 04000000 023f 0000");
    expect_bytes(mutable_request_type(), KOLT_ENCAPSULATION_PL_CDR_BE, request.get(),
                 "00020000 0000 0008 00000001 00000002 0001 0018"
                 "4000 0004 00000003 0003 0006 00000002 't' 00 0000 3f02 0000"
                 "0002 0004 00000004 3f02 0000");
}

// 7.4.1.2: alignment counts from behind a parameter's header, and as before behind its value.
TEST(Xcdr1, AlignmentInsideAndBehindParameters) {
    Record<Collections> record(collections_type());
    ASSERT_TRUE(DDS_LongLongSeq_set_length(&record->wide, 1));
    *DDS_LongLongSeq_get_reference(&record->wide, 0) = 1;
    record->triple[2] = 3;
    record->pair[1] = 5;
    record->half = 6;
    record->one = 7;
    expect_bytes(collections_type(), KOLT_ENCAPSULATION_PL_CDR_LE, record.get(),
                 "00030000"
                 "0000 1000 01000000 00000000 0100000000000000"  //   0 wide: padded to 8
                 "0100 0400 00000000 0200 0400 00000000"         //  20 reals, numbers: empty
                 "0300 0400 00000000"                            //  36 octets
                 "0400 0c00 00000000 00000000 03000000"          //  44 triple
                 "0500 1000 0000000000000000 0500000000000000"   //  60 pair: from byte 64
                 "0600 0400 00000000 0700 0200 0600 0000"        //  80 four, half
                 "0800 0100 07 000000 023f 0000");               //  96 one
    expect_bytes(collections_type(), KOLT_ENCAPSULATION_PL_CDR_BE, record.get(),
                 "00020000 0000 0010 00000001 00000000 0000000000000001"
                 "0001 0004 00000000 0002 0004 00000000 0003 0004 00000000"
                 "0004 000c 00000000 00000000 00000003"
                 "0005 0010 0000000000000000 0000000000000005"
                 "0006 0004 00000000 0007 0002 0006 0000 0008 0001 07 000000 3f02 0000");
}

// 7.4.1.2.2: ids above 0x3f00 and lengths above 65535 take the extended header: PID_EXTENDED
// 0x3f01, length 8, a 32-bit id with flags and a 32-bit length.
TEST(Xcdr1, ExtendedHeaders) {
    Record<Large> record(large_type());
    record->far = 1;
    record->farther = 2;
    expect_bytes(large_type(), KOLT_ENCAPSULATION_PL_CDR_LE, record.get(),
                 "00030000 0000 0400 00000000"
                 "013f 0800 013f0000 04000000 01000000"
                 "013f 0800 f0ffff0f 04000000 02000000 023f 0000");
    expect_bytes(large_type(), KOLT_ENCAPSULATION_PL_CDR_BE, record.get(),
                 "00020000 0000 0004 00000000"
                 "3f01 0008 00003f01 00000004 00000001"
                 "3f01 0008 0ffffff0 00000004 00000002 3f02 0000");

    const Programs programs(large_type());
    // 65531 octets and their count are 65535 bytes, the most that a short header holds.
    for (const DDS_Long length : {65531, 65532, 100000}) {
        ASSERT_TRUE(DDS_OctetSeq_set_length(&record->data, length));
        for (DDS_Long i = 0; i < length; ++i) {
            *DDS_OctetSeq_get_reference(&record->data, i) = static_cast<DDS_Octet>(i * 7);
        }
        const Bytes bytes = serialize(programs, KOLT_ENCAPSULATION_PL_CDR_LE, record.get());
        const auto size = static_cast<std::uint32_t>(length) + 4;
        const bool extended = size > 65535;
        ASSERT_EQ(bytes.size(), 4 + (extended ? 12 : 4) + ((size + 3) & ~3U) + 16 + 16 + 4);
        const Bytes header(bytes.begin() + 4, bytes.begin() + 8);
        EXPECT_EQ(to_hex(header), extended ? "013f0800" : "0000ffff");
        Record<Large> back(large_type());
        ASSERT_TRUE(KOLT_Cdr_deserialize(programs, bytes.data(), bytes.size(), back.get()));
        EXPECT_TRUE(KOLT_Record_equals(large_type(), record.get(), back.get()));
    }
}

// Forms that others may write.
TEST(Xcdr1, ReadsOtherForms) {
    const Programs programs(message_type());
    Record<Message> message(message_type());
    // Members in another order, an extended header where a short one would do, lengths with
    // padding, PID_IGNORE 0x3f03, an unknown member, the sentinel with its flag.
    const Bytes bytes = from_hex(
        "00030000 0400 0800 0700000000000000"
        "033f 0400 deadbeef"
        "013f 0800 03000000 08000000 03000000 'hi' 00 00"
        "6300 0800 0102030405060708"
        "0200 0800 02000000 'c' 00 0000"
        "0140 0400 2c010000 0040 0800 01000000 02000000"
        "027f 0000");
    ASSERT_TRUE(KOLT_Cdr_deserialize(programs, bytes.data(), bytes.size(), message.get()));
    Record<Message> expected(message_type());
    fill(expected.get());
    EXPECT_TRUE(KOLT_Record_equals(message_type(), message.get(), expected.get()));
}

TEST(Xcdr1, SizesBoundTheBytes) {
    const Programs message(message_type());
    // 12 + 8 + (4 + 4 + 17 + 3) + (4 + 4 + 65 + 3) + 12 + 4 and the header.
    EXPECT_EQ(KOLT_Cdr_serialized_max_size(message, KOLT_ENCAPSULATION_PL_CDR_LE), 144U);
    EXPECT_EQ(KOLT_Cdr_serialized_min_size(message, KOLT_ENCAPSULATION_PL_CDR_LE), 64U);
    Record<Message> record(message_type());
    EXPECT_EQ(KOLT_Cdr_serialized_size(message, KOLT_ENCAPSULATION_PL_CDR_LE, record.get()), 64U);
    set_text(record->category, "0123456789abcdef");
    std::fill(record->text, record->text + 64, 'x');
    EXPECT_EQ(KOLT_Cdr_serialized_size(message, KOLT_ENCAPSULATION_PL_CDR_LE, record.get()), 144U);

    const Programs everything(everything_type());
    EXPECT_EQ(KOLT_Cdr_serialized_max_size(everything, KOLT_ENCAPSULATION_CDR_LE),
              KOLT_CDR_MAX_SERIALIZED_SIZE_UNBOUNDED);
    EXPECT_EQ(KOLT_Cdr_serialized_max_size(everything, KOLT_ENCAPSULATION_PL_CDR_LE), 0U)
        << "not an encapsulation of the type";

    const Programs choice(final_choice_type());
    EXPECT_EQ(KOLT_Cdr_serialized_max_size(choice, KOLT_ENCAPSULATION_CDR_LE), 4U + 4 + 4 + 40);
    EXPECT_EQ(KOLT_Cdr_serialized_min_size(choice, KOLT_ENCAPSULATION_CDR_LE), 8U);
    const Programs options(final_options_type());
    EXPECT_EQ(KOLT_Cdr_serialized_max_size(options, KOLT_ENCAPSULATION_CDR_LE),
              4U + 4 + 8 + (4 + 4 + 9 + 3) + 8 + 1);
    EXPECT_EQ(KOLT_Cdr_serialized_min_size(options, KOLT_ENCAPSULATION_CDR_LE), 4U + 4 + 12 + 1);
}

TEST(Xcdr1, TopLevelEnumeration) {
    const Programs programs(color_type());
    const DDS_Enum blue = BLUE;
    const Bytes bytes = serialize(programs, KOLT_ENCAPSULATION_CDR_LE, &blue);
    EXPECT_EQ(to_hex(bytes), "00010000 05000000");
    DDS_Enum back = 0;
    ASSERT_TRUE(KOLT_Cdr_deserialize(programs, bytes.data(), bytes.size(), &back));
    EXPECT_EQ(back, BLUE);
    EXPECT_EQ(KOLT_Cdr_serialized_max_size(programs, KOLT_ENCAPSULATION_CDR_LE), 8U);
}

TEST(Xcdr1, RefusesWhatIsBeyondABound) {
    const Programs programs(message_type());
    Record<Message> message(message_type());
    DDS_String_replace(&message->category, "0123456789abcdefX");
    EXPECT_EQ(KOLT_Cdr_serialized_size(programs, KOLT_ENCAPSULATION_PL_CDR_LE, message.get()), 0U);
    DDS_Octet buffer[256];
    std::size_t length = 0;
    EXPECT_FALSE(KOLT_Cdr_serialize(programs, KOLT_ENCAPSULATION_PL_CDR_LE, message.get(), buffer,
                                    sizeof(buffer), &length));
    DDS_String_free(message->category);
    message->category = nullptr;
    EXPECT_EQ(KOLT_Cdr_serialized_size(programs, KOLT_ENCAPSULATION_PL_CDR_LE, message.get()), 0U);
    Record<Choice> choice(final_choice_type());
    const Programs choices(final_choice_type());
    choice->_d = 1;
    ASSERT_TRUE(IdSeq_finalize(&choice->_u.ids));
    ASSERT_TRUE(IdSeq_set_absolute_maximum(&choice->_u.ids, 10));
    ASSERT_TRUE(IdSeq_set_length(&choice->_u.ids, 6));
    EXPECT_EQ(KOLT_Cdr_serialized_size(choices, KOLT_ENCAPSULATION_CDR_LE, choice.get()), 0U);
}

TEST(Xcdr1, BufferOfEverySize) {
    const Programs programs(everything_type());
    Record<Everything> record(everything_type());
    fill_everything(record.get());
    const Bytes whole = serialize(programs, KOLT_ENCAPSULATION_CDR_LE, record.get());
    for (std::size_t capacity = 0; capacity < whole.size(); ++capacity) {
        Bytes small(capacity);
        std::size_t length = 0;
        EXPECT_FALSE(KOLT_Cdr_serialize(programs, KOLT_ENCAPSULATION_CDR_LE, record.get(),
                                        small.data(), capacity, &length))
            << capacity;
    }
}

}  // namespace
