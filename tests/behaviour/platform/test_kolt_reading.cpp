// SPDX-License-Identifier: Apache-2.0
// Reading and taking: samples left and removed, instances, loans, copies.
#include <gtest/gtest.h>

#include <set>

#include "support/platform/pubsub.h"

namespace {

using namespace support;

TEST(KoltReading, ReadLeavesAndTakeRemoves) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(is_matched(writer));
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(write(writer, 1, 1, i), DDS_RETCODE_OK);
    }
    DDS_ReturnCode_t code = DDS_RETCODE_ERROR;
    EXPECT_EQ(access(reader, selection(false), &code).size(), 100U);
    auto again = access(reader, selection(false), &code);
    ASSERT_EQ(again.size(), 100U);
    EXPECT_EQ(again[0].info.sample_state, DDS_READ_SAMPLE_STATE);
    KOLT_ReadSelection fresh = selection(false);
    fresh.sample_states = DDS_NOT_READ_SAMPLE_STATE;
    EXPECT_TRUE(access(reader, fresh, &code).empty());
    EXPECT_EQ(code, DDS_RETCODE_NO_DATA);
    KOLT_ReadSelection some = selection(true);
    some.max_samples = 40;
    EXPECT_EQ(access(reader, some, &code).size(), 40U);
    some.max_samples = 2147483647;
    EXPECT_EQ(access(reader, some, &code).size(), 60U);
    EXPECT_TRUE(access(reader, selection(true), &code).empty());
    EXPECT_EQ(code, DDS_RETCODE_NO_DATA);
    some.max_samples = 0;
    access(reader, some, &code);
    EXPECT_EQ(code, DDS_RETCODE_BAD_PARAMETER);
}

TEST(KoltReading, AScopeThatThereIsNotIsRefused) {
    Node node(1);
    DDS_DataReader *const reader = node.reader();
    DDS_DataWriter *const writer = node.writer();
    ASSERT_TRUE(is_matched(writer));
    ASSERT_EQ(write(writer, 1, 1, 1), DDS_RETCODE_OK);
    KOLT_ReadSelection wrong = selection(false);
    wrong.scope = static_cast<KOLT_ReadScope>(77);
    DDS_ReturnCode_t code = DDS_RETCODE_OK;
    access(reader, wrong, &code);
    EXPECT_EQ(code, DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(take(reader).size(), 1U);
}

TEST(KoltReading, InstancesCanBeReadOneByOne) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(is_matched(writer));
    for (int i = 0; i < 12; ++i) {
        ASSERT_EQ(write(writer, 1, i % 3, i), DDS_RETCODE_OK);
    }

    std::set<int> levels;
    KOLT_ReadSelection next = selection(false);
    next.scope = KOLT_READ_NEXT_INSTANCE;
    DDS_ReturnCode_t code = DDS_RETCODE_OK;
    DDS_InstanceHandle_t last = DDS_HANDLE_NIL;
    while (true) {
        const auto got = access(reader, next, &code);
        if (code != DDS_RETCODE_OK) {
            break;
        }
        ASSERT_EQ(got.size(), 4U);
        for (const Text &text : got) {
            EXPECT_EQ(text.level, got[0].level);
        }
        levels.insert(got[0].level);
        last = got[0].info.instance_handle;
        EXPECT_GT(last, next.handle);
        next.handle = last;
    }
    EXPECT_EQ(code, DDS_RETCODE_NO_DATA);
    EXPECT_EQ(levels, (std::set<int>{0, 1, 2}));

    KOLT_ReadSelection one = selection(true);
    one.scope = KOLT_READ_INSTANCE;
    one.handle = last;
    EXPECT_EQ(access(reader, one, &code).size(), 4U);
    access(reader, one, &code);
    EXPECT_EQ(code, DDS_RETCODE_NO_DATA);
    one.handle = last + 100000;
    access(reader, one, &code);
    EXPECT_EQ(code, DDS_RETCODE_BAD_PARAMETER);
    one.handle = DDS_HANDLE_NIL;
    access(reader, one, &code);
    EXPECT_EQ(code, DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(take(reader).size(), 8U);
}

// Instances that come, and lose their samples, during the walk included.
TEST(KoltReading, AWalkMeetsEveryInstanceOnce) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(is_matched(writer));
    for (int i = 0; i < 200; ++i) {
        ASSERT_EQ(write(writer, 1, i, i), DDS_RETCODE_OK);
    }
    KOLT_ReadSelection next = selection(true);
    next.scope = KOLT_READ_NEXT_INSTANCE;
    std::set<int> levels;
    int later = 200;
    DDS_ReturnCode_t code = DDS_RETCODE_OK;
    const auto walk = [&] {
        next.handle = DDS_HANDLE_NIL;
        while (true) {
            const auto got = access(reader, next, &code);
            if (code != DDS_RETCODE_OK) {
                break;
            }
            ASSERT_EQ(got.size(), 1U);
            ASSERT_GT(got[0].info.instance_handle, next.handle);
            EXPECT_TRUE(levels.insert(got[0].level).second);
            next.handle = got[0].info.instance_handle;
            if (later < 300) {
                ASSERT_EQ(write(writer, 1, later, later), DDS_RETCODE_OK);
                ++later;
            }
        }
        EXPECT_EQ(code, DDS_RETCODE_NO_DATA);
    };
    walk();
    walk();  // those that came behind the walk
    EXPECT_EQ(levels.size(), 300U);
    EXPECT_TRUE(take(reader).empty());
}

// It would take minutes if each step looked at every instance.
TEST(KoltReading, ALongWalkEnds) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(is_matched(writer));
    constexpr int kCount = 50000;
    for (int i = 0; i < kCount; ++i) {
        ASSERT_EQ(write(writer, 1, i, i), DDS_RETCODE_OK);
    }
    KOLT_ReadSelection next = selection(false);
    next.scope = KOLT_READ_NEXT_INSTANCE;
    int met = 0;
    DDS_ReturnCode_t code = DDS_RETCODE_OK;
    for (auto got = access(reader, next, &code); code == DDS_RETCODE_OK;
         got = access(reader, next, &code)) {
        next.handle = got.at(0).info.instance_handle;
        ++met;
    }
    EXPECT_EQ(met, kCount);
}

TEST(KoltReading, NextSampleIsCopied) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(is_matched(writer));
    ASSERT_EQ(write(writer, 1, 1, 1, "first"), DDS_RETCODE_OK);
    ASSERT_EQ(write(writer, 1, 1, 2, "second"), DDS_RETCODE_OK);
    Record<Message> message(message_type());
    DDS_SampleInfo info{};
    ASSERT_EQ(DDS_DataReader_read_or_take_next_sample_untypedI(reader, DDS_BOOLEAN_FALSE,
                                                               message.get(), &info),
              DDS_RETCODE_OK);
    EXPECT_STREQ(message->text, "first");
    ASSERT_EQ(DDS_DataReader_read_or_take_next_sample_untypedI(reader, DDS_BOOLEAN_TRUE,
                                                               message.get(), &info),
              DDS_RETCODE_OK);
    EXPECT_STREQ(message->text, "second");
    EXPECT_EQ(DDS_DataReader_read_or_take_next_sample_untypedI(reader, DDS_BOOLEAN_TRUE,
                                                               message.get(), &info),
              DDS_RETCODE_NO_DATA);
}

TEST(KoltReading, SeveralLoansAtOnce) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(is_matched(writer));
    ASSERT_EQ(write(writer, 1, 1, 1, "first"), DDS_RETCODE_OK);
    struct Held {
        void **samples = nullptr;
        DDS_UnsignedLong count = 0;
        DDS_SampleInfoSeq infos = DDS_SEQUENCE_INITIALIZER;
    } first, second;
    const auto take_into = [&](Held &held) {
        const KOLT_ReadSelection all = selection(true);
        return DDS_DataReader_read_or_take_untypedI(reader, &all, 0, 0, DDS_BOOLEAN_TRUE, nullptr,
                                                    sizeof(Message), &held.samples, &held.count,
                                                    &held.infos);
    };
    ASSERT_EQ(take_into(first), DDS_RETCODE_OK);
    ASSERT_EQ(write(writer, 1, 1, 2, "second"), DDS_RETCODE_OK);
    ASSERT_EQ(take_into(second), DDS_RETCODE_OK);
    EXPECT_STREQ(static_cast<Message *>(first.samples[0])->text, "first");
    EXPECT_STREQ(static_cast<Message *>(second.samples[0])->text, "second");
    // A sequence that holds a loan takes no other, and a reader with loans out stays.
    Held third;
    third.infos = first.infos;
    EXPECT_EQ(take_into(third), DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(DDS_Subscriber_delete_datareader(node.subscriber, reader),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    // Loans do not mix.
    EXPECT_EQ(
        DDS_DataReader_return_loan_untypedI(reader, second.samples, second.count, &first.infos),
        DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(
        DDS_DataReader_return_loan_untypedI(reader, second.samples, second.count, &second.infos),
        DDS_RETCODE_OK);
    EXPECT_EQ(
        DDS_DataReader_return_loan_untypedI(reader, second.samples, second.count, &second.infos),
        DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(DDS_DataReader_return_loan_untypedI(reader, first.samples, first.count, &first.infos),
              DDS_RETCODE_OK);
    EXPECT_EQ(DDS_Subscriber_delete_datareader(node.subscriber, reader), DDS_RETCODE_OK);
}

TEST(KoltReading, CopiesIntoTheCallersRecords) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(is_matched(writer));
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(write(writer, 1, 1, i), DDS_RETCODE_OK);
    }
    Message records[2] = {};
    const DDS_TypeAllocationParams_t allocation = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
    for (Message &record : records) {
        ASSERT_TRUE(KOLT_Record_initialize_w_params(message_type(), &record, &allocation));
    }
    DDS_SampleInfoSeq infos = DDS_SEQUENCE_INITIALIZER;
    ASSERT_TRUE(DDS_SampleInfoSeq_set_maximum(&infos, 2));
    void **loan = nullptr;
    DDS_UnsignedLong count = 0;
    KOLT_ReadSelection all = selection(true);
    const auto take_copies = [&](DDS_UnsignedLong maximum) {
        return DDS_DataReader_read_or_take_untypedI(
            reader, &all, DDS_SampleInfoSeq_get_length(&infos), maximum, DDS_BOOLEAN_TRUE, records,
            sizeof(Message), &loan, &count, &infos);
    };
    EXPECT_EQ(take_copies(1), DDS_RETCODE_PRECONDITION_NOT_MET);  // unlike the infos
    all.max_samples = 3;
    EXPECT_EQ(take_copies(2), DDS_RETCODE_PRECONDITION_NOT_MET);
    all.max_samples = DDS_LENGTH_UNLIMITED;
    ASSERT_EQ(take_copies(2), DDS_RETCODE_OK);
    EXPECT_EQ(loan, nullptr);
    ASSERT_EQ(count, 2U);
    EXPECT_EQ(records[0].number, 0);
    EXPECT_EQ(records[1].number, 1);
    EXPECT_EQ(DDS_SampleInfoSeq_get_length(&infos), 2U);
    ASSERT_EQ(take_copies(2), DDS_RETCODE_OK);
    EXPECT_EQ(count, 1U);
    EXPECT_EQ(records[0].number, 2);
    EXPECT_EQ(take_copies(2), DDS_RETCODE_NO_DATA);
    EXPECT_EQ(DDS_SampleInfoSeq_get_length(&infos), 0U);
    const DDS_TypeDeallocationParams_t deallocation = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;
    for (Message &record : records) {
        KOLT_Record_finalize_w_params(message_type(), &record, &deallocation);
    }
    DDS_SampleInfoSeq_finalize(&infos);
}

}  // namespace
