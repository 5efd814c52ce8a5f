// SPDX-License-Identifier: Apache-2.0
// Keys: key-only payloads in every representation, canonical keys, key hashes.
#include <gtest/gtest.h>

#include <algorithm>

#include "support/types/test_types.h"

namespace {

using namespace support;

Bytes key_of_record(const KOLT_TypePrograms *programs, const void *record) {
    Bytes key(256);
    std::size_t length = key.size();
    EXPECT_TRUE(KOLT_Cdr_key_of_record(programs, record, key.data(), &length));
    key.resize(length);
    return key;
}

Bytes key_of_bytes(const KOLT_TypePrograms *programs, const Bytes &bytes, bool key_only) {
    Bytes key(256);
    std::size_t length = key.size();
    if (!KOLT_Cdr_key_of_serialized(programs, bytes.data(), bytes.size(), key_only, key.data(),
                                    &length)) {
        return from_hex("deadbeef");
    }
    key.resize(length);
    return key;
}

void fill(Holder *holder) {
    set_text(holder->name, "ab");
    holder->id = {1, 2};
    holder->where = {3, 4};
}

// DDS-XTypes 1.3, 7.6.8: big-endian XCDR2 of the key members in the order of their ids, all of them
// final.
constexpr char kHolderKey[] = "00000001 00000002 00000003 'ab' 00";
constexpr char kMessageKey[] = "00000001 00000002 0000012c";

TEST(Key, CanonicalKeyOfARecord) {
    Record<Message> message(message_type());
    message->id = {1, 2};
    message->level = 300;
    const Programs programs(message_type());
    EXPECT_EQ(to_hex(key_of_record(programs, message.get())), to_hex(from_hex(kMessageKey)));
    for (const DDS_TypeCode *type :
         {final_holder_type(), appendable_holder_type(), mutable_holder_type()}) {
        Record<Holder> holder(type);
        fill(holder.get());
        const Programs holders(type);
        EXPECT_EQ(to_hex(key_of_record(holders, holder.get())), to_hex(from_hex(kHolderKey)));
    }
}

TEST(Key, AKeyThatDoesNotFitTellsItsLength) {
    Record<Holder> holder(mutable_holder_type());
    fill(holder.get());
    const Programs programs(mutable_holder_type());
    DDS_Octet key[14];
    std::size_t length = sizeof(key);
    EXPECT_FALSE(KOLT_Cdr_key_of_record(programs, holder.get(), key, &length));
    EXPECT_EQ(length, 15U);
    length = 0;
    EXPECT_FALSE(KOLT_Cdr_key_of_record(programs, holder.get(), nullptr, &length));
    EXPECT_EQ(length, 15U);
    const Bytes bytes = serialize(programs, KOLT_ENCAPSULATION_PL_CDR2_LE, holder.get());
    length = sizeof(key);
    EXPECT_FALSE(KOLT_Cdr_key_of_serialized(programs, bytes.data(), bytes.size(), 0, key, &length));
    EXPECT_EQ(length, 15U);
}

TEST(Key, OfSerializedSamplesAndKeys) {
    struct Case {
        const DDS_TypeCode *type;
        unsigned encapsulation;
    };
    const Case cases[] = {
        {final_holder_type(), KOLT_ENCAPSULATION_CDR_LE},
        {final_holder_type(), KOLT_ENCAPSULATION_CDR_BE},
        {final_holder_type(), KOLT_ENCAPSULATION_CDR2_LE},
        {final_holder_type(), KOLT_ENCAPSULATION_CDR2_BE},
        {appendable_holder_type(), KOLT_ENCAPSULATION_CDR_LE},
        {appendable_holder_type(), KOLT_ENCAPSULATION_D_CDR2_LE},
        {appendable_holder_type(), KOLT_ENCAPSULATION_D_CDR2_BE},
        {mutable_holder_type(), KOLT_ENCAPSULATION_PL_CDR_LE},
        {mutable_holder_type(), KOLT_ENCAPSULATION_PL_CDR_BE},
        {mutable_holder_type(), KOLT_ENCAPSULATION_PL_CDR2_LE},
        {mutable_holder_type(), KOLT_ENCAPSULATION_PL_CDR2_BE},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(std::string(c.type->name) + " " + std::to_string(c.encapsulation));
        const Programs programs(c.type);
        Record<Holder> holder(c.type);
        fill(holder.get());
        const Bytes sample = serialize(programs, c.encapsulation, holder.get());
        const Bytes payload = serialize_key(programs, c.encapsulation, holder.get());
        ASSERT_FALSE(sample.empty());
        ASSERT_FALSE(payload.empty());
        EXPECT_EQ(to_hex(key_of_bytes(programs, sample, false)), to_hex(from_hex(kHolderKey)));
        EXPECT_EQ(to_hex(key_of_bytes(programs, payload, true)), to_hex(from_hex(kHolderKey)));

        Record<Holder> back(c.type);
        ASSERT_TRUE(KOLT_Cdr_deserialize_key(programs, payload.data(), payload.size(), back.get()));
        EXPECT_STREQ(back->name, "ab");
        EXPECT_EQ(back->id.app, 2);
        EXPECT_EQ(back->where.x, 0);
        for (std::size_t cut = 0; cut + 4 < payload.size(); ++cut) {
            EXPECT_FALSE(KOLT_Cdr_deserialize_key(programs, payload.data(), cut, back.get()));
        }
    }
}

// XCDR1: the key members in the frames of the type. XCDR2: plain, under the type's identifier.
TEST(Key, PayloadBytes) {
    Record<Message> message(message_type());
    message->id = {1, 2};
    message->level = 300;
    const Programs programs(message_type());
    EXPECT_EQ(to_hex(serialize_key(programs, KOLT_ENCAPSULATION_PL_CDR2_LE, message.get())),
              to_hex(from_hex("000b0000 01000000 02000000 2c010000")));
    EXPECT_EQ(
        to_hex(serialize_key(programs, KOLT_ENCAPSULATION_PL_CDR_LE, message.get())),
        to_hex(from_hex("00030000 0040 0800 01000000 02000000 0140 0400 2c010000 023f 0000")));
    EXPECT_EQ(KOLT_Cdr_serialized_key_size(programs, KOLT_ENCAPSULATION_PL_CDR2_LE, message.get()),
              16U);
    Record<Holder> holder(final_holder_type());
    fill(holder.get());
    const Programs holders(final_holder_type());
    EXPECT_EQ(to_hex(serialize_key(holders, KOLT_ENCAPSULATION_CDR_LE, holder.get())),
              to_hex(from_hex("00010001 01000000 02000000 03000000 'ab' 00")));
}

// XTypes has the key of a mutable or appendable type in its frames; readers take that as well.
TEST(Key, ReadsFramedXcdr2Payloads) {
    const Programs messages(message_type());
    const Bytes framed = from_hex(
        "000b0000 1c000000 000000c0 0c000000 08000000 01000000 02000000 010000a0 2c010000");
    EXPECT_EQ(to_hex(key_of_bytes(messages, framed, true)), to_hex(from_hex(kMessageKey)));
    const Programs holders(appendable_holder_type());
    const Bytes delimited =
        from_hex("00090001 13000000 08000000 01000000 02000000 03000000 'ab' 00 00");
    EXPECT_EQ(to_hex(key_of_bytes(holders, delimited, true)), to_hex(from_hex(kHolderKey)));
    // The canonical form under the plain identifier, as made of a key hash.
    const Bytes plain = from_hex("00060000 00000001 00000002 0000012c 00000000");
    EXPECT_EQ(to_hex(key_of_bytes(messages, plain, true)), to_hex(from_hex(kMessageKey)));
    EXPECT_EQ(to_hex(key_of_bytes(messages, plain, false)), "deadbeef") << "no sample of the type";
}

// A framed payload whose frame is broken does not pass for a plain one with something behind it.
TEST(Key, ABrokenFrameIsNoPlainKey) {
    const Programs messages(message_type());
    const Bytes framed = from_hex(
        "000b0000 1d000000 000000c0 0c000000 08000000 01000000 02000000 010000a0 2c010000");
    EXPECT_EQ(to_hex(key_of_bytes(messages, framed, true)), "deadbeef");
    const Bytes with_more = from_hex("000b0000 01000000 02000000 2c010000 00000000");
    EXPECT_EQ(to_hex(key_of_bytes(messages, with_more, true)), "deadbeef");
    Record<Message> message(message_type());
    EXPECT_FALSE(
        KOLT_Cdr_deserialize_key(messages, with_more.data(), with_more.size(), message.get()));
}

// What is behind a key may be the padding of the payload to a multiple of 4, whether the header tells
// of it or not, or that of a key hash.
TEST(Key, PaddingMayFollowAKey) {
    const Programs holders(final_holder_type());
    for (const char *const payload : {"00070001 01000000 02000000 03000000 'ab' 00 00",
                                      "00070000 01000000 02000000 03000000 'ab' 00 00"}) {
        EXPECT_EQ(to_hex(key_of_bytes(holders, from_hex(payload), true)),
                  to_hex(from_hex(kHolderKey)));
    }
    const Programs ids(id_type());
    EXPECT_EQ(
        to_hex(key_of_bytes(ids, from_hex("00060000 00000001 00000002 00000000 00000000"), true)),
        to_hex(from_hex("00000001 00000002")));
    EXPECT_EQ(
        to_hex(key_of_bytes(ids, from_hex("00060000 00000001 00000002 00000000 00000001"), true)),
        "deadbeef");
}

// A framed key of one string begins like a plain one: the count of the frame, then bytes that end
// in 0.
TEST(Key, FramedAndPlainStringKeysAreToldApart) {
    const Programs programs(mutable_holder_type());
    Record<Holder> holder(mutable_holder_type());
    fill(holder.get());
    holder->id = {0x13, 0};
    const Bytes plain = serialize_key(programs, KOLT_ENCAPSULATION_PL_CDR2_LE, holder.get());
    EXPECT_EQ(to_hex(key_of_bytes(programs, plain, true)),
              to_hex(from_hex("00000013 00000000 00000003 'ab' 00")));
}

TEST(Key, KeyOfSamplePassesOverTheRest) {
    const Programs programs(message_type());
    Record<Message> message(message_type());
    message->id = {1, 2};
    message->level = 300;
    set_text(message->text, "text");
    Bytes bytes = serialize(programs, KOLT_ENCAPSULATION_PL_CDR2_LE, message.get());
    // Even a text without its terminator, which fails the sample: the keys are what counts.
    const auto at =
        std::search(bytes.begin(), bytes.end(), std::begin("text"), std::begin("text") + 4);
    ASSERT_NE(at, bytes.end());
    at[4] = 'x';
    Record<Message> back(message_type());
    EXPECT_FALSE(KOLT_Cdr_deserialize(programs, bytes.data(), bytes.size(), back.get()));
    EXPECT_EQ(to_hex(key_of_bytes(programs, bytes, false)), to_hex(from_hex(kMessageKey)));
}

// RTPS 2.3, 9.6.3.8: padded with zeros up to 16 bytes, hashed when the type's keys can be longer.
TEST(Key, Hashes) {
    const Programs messages(message_type());
    EXPECT_EQ(KOLT_Cdr_key_max_size(messages), 12U);
    const Bytes key = from_hex(kMessageKey);
    DDS_Octet hash[16];
    KOLT_Cdr_keyhash(messages, key.data(), key.size(), DDS_BOOLEAN_FALSE, hash);
    EXPECT_EQ(to_hex(Bytes(hash, hash + 16)),
              to_hex(from_hex(std::string(kMessageKey) + "00000000")));

    const Programs holders(mutable_holder_type());
    EXPECT_EQ(KOLT_Cdr_key_max_size(holders), 8U + 4 + 33);
    const Bytes holder_key = from_hex(kHolderKey);  // 15 bytes, and hashed all the same
    KOLT_Cdr_keyhash(holders, holder_key.data(), holder_key.size(), DDS_BOOLEAN_FALSE, hash);
    // md5sum of the 15 bytes.
    EXPECT_EQ(to_hex(Bytes(hash, hash + 16)), to_hex(from_hex("add3515cb6c8dc0c948d69e540c192b4")));
    KOLT_Cdr_keyhash(messages, key.data(), key.size(), DDS_BOOLEAN_TRUE, hash);
    EXPECT_NE(hash[3], 1);
    // RFC 1321, A.5.
    KOLT_Cdr_keyhash(messages, reinterpret_cast<const DDS_Octet *>("abc"), 3, DDS_BOOLEAN_TRUE,
                     hash);
    EXPECT_EQ(to_hex(Bytes(hash, hash + 16)), to_hex(from_hex("900150983cd24fb0d6963f7d28e17f72")));
}

TEST(Key, UnkeyedTypes) {
    const Programs programs(point_type());
    EXPECT_EQ(KOLT_Cdr_key_max_size(programs), 0U);
    Record<Point> point(point_type());
    DDS_Octet key[4];
    std::size_t length = sizeof(key);
    EXPECT_TRUE(KOLT_Cdr_key_of_record(programs, point.get(), key, &length));
    EXPECT_EQ(length, 0U);
    const Bytes bytes = serialize(programs, KOLT_ENCAPSULATION_CDR_LE, point.get());
    length = sizeof(key);
    EXPECT_TRUE(KOLT_Cdr_key_of_serialized(programs, bytes.data(), bytes.size(), 0, key, &length));
    EXPECT_EQ(length, 0U);
}

TEST(Key, TooLongAKeyIsNoKey) {
    const Programs programs(mutable_holder_type());
    const std::string name(33, 'x');
    const Bytes bytes = from_hex("000b0002 00000000 00000000 22000000 '" + name + "' 00 0000");
    EXPECT_EQ(to_hex(key_of_bytes(programs, bytes, true)), "deadbeef");
}

}  // namespace
