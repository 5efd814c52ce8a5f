// SPDX-License-Identifier: Apache-2.0
// One version of a type reads what another wrote.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "support/types/test_types.h"

namespace {

using namespace support;

struct Case {
    const DDS_TypeCode *type1;
    const DDS_TypeCode *type2;
    DDS_DataRepresentationId_t representation;
};

// XCDR1 tells appendable versions apart by the end of the sample alone.
const std::vector<Case> &cases() {
    static const std::vector<Case> all = {
        {appendable_version1_type(), appendable_version2_type(), DDS_XCDR_DATA_REPRESENTATION},
        {appendable_version1_type(), appendable_version2_type(), DDS_XCDR2_DATA_REPRESENTATION},
        {mutable_version1_type(), mutable_version2_type(), DDS_XCDR_DATA_REPRESENTATION},
        {mutable_version1_type(), mutable_version2_type(), DDS_XCDR2_DATA_REPRESENTATION},
    };
    return all;
}

void fill(Version2 *record) {
    record->a = 5;
    set_text(record->name, "name");
    record->b = 6;
    set_text(record->extra, "extra");
    const DDS_Long more[] = {1, 2};
    DDS_LongSeq_from_array(&record->more, more, 2);
}

TEST(Evolution, ANewReaderGivesAbsentMembersTheirInitialValues) {
    for (const Case &c : cases()) {
        const Programs writer(c.type1);
        const Programs reader(c.type2);
        Record<Version1> written(c.type1);
        written->a = 1;
        for (const char *name : {"", "a", "ab", "abc", "abcd"}) {  // every padding
            set_text(written->name, name);
            const Bytes bytes =
                serialize(writer, DDS_TypeCode_get_native_encapsulation(c.type1, c.representation),
                          written.get());
            Record<Version2> read(c.type2);
            fill(read.get());  // what an earlier sample left
            const DDS_Char *const buffer = read->extra;
            ASSERT_TRUE(KOLT_Cdr_deserialize(reader, bytes.data(), bytes.size(), read.get()));
            EXPECT_EQ(read->a, 1);
            EXPECT_STREQ(read->name, name);
            EXPECT_EQ(read->b, 7);
            EXPECT_STREQ(read->extra, "none");
            EXPECT_EQ(read->extra, buffer) << "the buffer stays";
            EXPECT_EQ(DDS_LongSeq_get_length(&read->more), 0U);
            EXPECT_EQ(DDS_LongSeq_get_maximum(&read->more), 4U);
            // A field that is not there has its default.
            KOLT_CdrValue value{};
            const KOLT_CdrPathStep b[] = {{0, 2}};
            ASSERT_TRUE(KOLT_Cdr_find_field(reader, bytes.data(), bytes.size(), b, 1, &value));
            EXPECT_EQ(value.value.integer, 7);
            const KOLT_CdrPathStep extra[] = {{0, 3}};
            ASSERT_TRUE(KOLT_Cdr_find_field(reader, bytes.data(), bytes.size(), extra, 1, &value));
            EXPECT_EQ(std::string(value.value.string.characters, value.value.string.length),
                      "none");
            const KOLT_CdrPathStep element[] = {{0, 4}, {1, 0}};
            ASSERT_TRUE(
                KOLT_Cdr_find_field(reader, bytes.data(), bytes.size(), element, 2, &value));
            EXPECT_EQ(value.kind, DDS_TK_NULL);
        }
    }
}

TEST(Evolution, AnOldReaderPassesOverWhatItDoesNotKnow) {
    for (const Case &c : cases()) {
        const Programs writer(c.type2);
        const Programs reader(c.type1);
        Record<Version2> written(c.type2);
        fill(written.get());
        const Bytes bytes =
            serialize(writer, DDS_TypeCode_get_native_encapsulation(c.type2, c.representation),
                      written.get());
        Record<Version1> read(c.type1);
        ASSERT_TRUE(KOLT_Cdr_deserialize(reader, bytes.data(), bytes.size(), read.get()));
        EXPECT_EQ(read->a, 5);
        EXPECT_STREQ(read->name, "name");
    }
}

TEST(Evolution, AnUnknownMemberThatMustBeUnderstoodFailsTheSample) {
    const Programs writer(strict_version2_type());
    const Programs reader(mutable_version1_type());
    Record<Version2> written(strict_version2_type());
    for (const unsigned encapsulation :
         {KOLT_ENCAPSULATION_PL_CDR_LE, KOLT_ENCAPSULATION_PL_CDR2_LE}) {
        const Bytes bytes = serialize(writer, encapsulation, written.get());
        Record<Version1> read(mutable_version1_type());
        EXPECT_FALSE(KOLT_Cdr_deserialize(reader, bytes.data(), bytes.size(), read.get()));
        Record<Version2> same(strict_version2_type());
        EXPECT_TRUE(KOLT_Cdr_deserialize(writer, bytes.data(), bytes.size(), same.get()));
    }
}

TEST(Evolution, AppendableMembersInsideGrowAndShrink) {
    // Id with one member and with three, as a member of a mutable structure.
    const Programs programs(message_type());
    struct {
        const char *hex;
        DDS_Long host, app;
    } const samples[] = {
        {"000b0000 10000000 000000c0 08000000 04000000 09000000", 9, 0},
        {"000b0000 18000000 000000c0 10000000 0c000000 09000000 08000000 07000000", 9, 8},
        {"000b0000 0c000000 000000c0 04000000 00000000", 0, 0},
        {"00030000 0040 0400 09000000 023f0000", 9, 0},
        {"00030000 0040 0c00 09000000 08000000 07000000 023f0000", 9, 8},
    };
    for (const auto &sample : samples) {
        Record<Message> message(message_type());
        message->id = {1, 2};
        const Bytes bytes = from_hex(sample.hex);
        ASSERT_TRUE(KOLT_Cdr_deserialize(programs, bytes.data(), bytes.size(), message.get()))
            << sample.hex;
        EXPECT_EQ(message->id.host, sample.host) << sample.hex;
        EXPECT_EQ(message->id.app, sample.app) << sample.hex;
    }
    // Half a member is refused.
    Record<Message> message(message_type());
    const Bytes half = from_hex("000b0000 0e000000 000000c0 06000000 02000000 0900");
    EXPECT_FALSE(KOLT_Cdr_deserialize(programs, half.data(), half.size(), message.get()));
}

TEST(Evolution, AReusedRecordHoldsNothingOfTheSampleBefore) {
    for (const DDS_TypeCode *type :
         {final_options_type(), appendable_options_type(), mutable_options_type()}) {
        const Programs programs(type);
        Record<Options> full(type);
        DDS_TypeAllocationParams_t params = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
        params.allocate_optional_members = DDS_BOOLEAN_TRUE;
        ASSERT_TRUE(KOLT_Record_initialize_w_params(type, full.get(), &params));
        Record<Options> empty(type);
        for (const DDS_DataRepresentationId_t representation :
             {DDS_XCDR_DATA_REPRESENTATION, DDS_XCDR2_DATA_REPRESENTATION}) {
            const unsigned encapsulation =
                DDS_TypeCode_get_native_encapsulation(type, representation);
            const Bytes with = serialize(programs, encapsulation, full.get());
            const Bytes without = serialize(programs, encapsulation, empty.get());
            Record<Options> read(type);
            ASSERT_TRUE(KOLT_Cdr_deserialize(programs, with.data(), with.size(), read.get()));
            EXPECT_NE(read->text, nullptr);
            ASSERT_TRUE(KOLT_Cdr_deserialize(programs, without.data(), without.size(), read.get()));
            EXPECT_EQ(read->number, nullptr);
            EXPECT_EQ(read->text, nullptr);
            EXPECT_EQ(read->point, nullptr);
        }
    }
}

TEST(Programs, AreSharedAndCounted) {
    const KOLT_TypePrograms *const first = KOLT_TypePrograms_acquire(message_type());
    const KOLT_TypePrograms *const second = KOLT_TypePrograms_acquire(message_type());
    EXPECT_EQ(first, second);
    EXPECT_EQ(KOLT_TypePrograms_type(first), message_type());
    KOLT_TypePrograms_release(first);
    Record<Message> message(message_type());
    EXPECT_FALSE(serialize(second, KOLT_ENCAPSULATION_PL_CDR2_LE, message.get()).empty());
    KOLT_TypePrograms_release(second);
}

TEST(Programs, ManyThreads) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([i] {
            Record<Message> message(message_type());
            message->level = i;
            Record<Message> back(message_type());
            for (int round = 0; round < 200; ++round) {
                const Programs programs(message_type());
                const Bytes bytes =
                    serialize(programs, KOLT_ENCAPSULATION_PL_CDR2_LE, message.get());
                ASSERT_TRUE(KOLT_Cdr_deserialize(programs, bytes.data(), bytes.size(), back.get()));
                ASSERT_EQ(back->level, i);
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
}

}  // namespace
