// Writing and reading through the entity API, within a process and between participants.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <thread>

#include "support/process.h"
#include "support/pubsub.h"

namespace {

using namespace support;

void transientLocal(DDS_DataWriterQos &qos) {
    qos.durability.kind = DDS_TRANSIENT_LOCAL_DURABILITY_QOS;
}
void transientLocal(DDS_DataReaderQos &qos) {
    qos.durability.kind = DDS_TRANSIENT_LOCAL_DURABILITY_QOS;
}

TEST(KoltPubSub, SampleArrivesWithAllMembers) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_NE(writer, nullptr);
    ASSERT_NE(reader, nullptr);
    ASSERT_TRUE(isMatched(writer));
    ASSERT_EQ(write(writer, 7, 300, 42, "the text"), DDS_RETCODE_OK);
    const auto got = takeAtLeast(reader, 1);
    ASSERT_EQ(got.size(), 1U);
    EXPECT_EQ(got[0].host, 7);
    EXPECT_EQ(got[0].level, 300);
    EXPECT_EQ(got[0].number, 42);
    EXPECT_EQ(got[0].text, "the text");
    EXPECT_TRUE(got[0].info.valid_data);
    EXPECT_EQ(got[0].info.sample_state, DDS_NOT_READ_SAMPLE_STATE);
    EXPECT_EQ(got[0].info.view_state, DDS_NEW_VIEW_STATE);
    EXPECT_EQ(got[0].info.instance_state, DDS_ALIVE_INSTANCE_STATE);
    EXPECT_EQ(got[0].info.publication_handle,
              DDS_Entity_get_instance_handle(DDS_DataWriter_as_entity(writer)));
}

TEST(KoltPubSub, BetweenParticipants) {
    Node here(1);
    Node there(1);
    DDS_DataWriter *const writer = here.writer();
    DDS_DataReader *const reader = there.reader();
    ASSERT_TRUE(isMatched(writer));
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(write(writer, 1, 1, i, std::string(static_cast<size_t>(i % 60), 'x')),
                  DDS_RETCODE_OK);
    }
    const auto got = takeAtLeast(reader, 100);
    ASSERT_EQ(got.size(), 100U);
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(got[static_cast<size_t>(i)].number, i);
        EXPECT_EQ(got[static_cast<size_t>(i)].text.size(), static_cast<size_t>(i % 60));
    }
}

TEST(KoltPubSub, SourceTimestampIsKept) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(isMatched(writer));
    Record<Message> message(messageType());
    const DDS_Time_t stamp = {1700000000, 123456789};
    ASSERT_EQ(DDS_DataWriter_write_w_timestamp(writer, message.get(), DDS_HANDLE_NIL, &stamp),
              DDS_RETCODE_OK);
    const auto got = takeAtLeast(reader, 1);
    ASSERT_EQ(got.size(), 1U);
    EXPECT_EQ(got[0].info.source_timestamp.sec, stamp.sec);
    EXPECT_EQ(got[0].info.source_timestamp.nanosec, stamp.nanosec);
    const DDS_Time_t wrong = {1, 1000000000};
    EXPECT_EQ(DDS_DataWriter_write_w_timestamp(writer, message.get(), DDS_HANDLE_NIL, &wrong),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(
        DDS_DataWriter_write_w_timestamp(writer, message.get(), DDS_HANDLE_NIL, &DDS_TIME_INVALID),
        DDS_RETCODE_BAD_PARAMETER);
}

TEST(KoltPubSub, BothRepresentationsReachOneReader) {
    Node here(1);
    Node there(1);
    DDS_DataReader *const reader = there.reader();
    const auto writerOf = [&](DDS_DataRepresentationId_t id) {
        return here.writer([id](DDS_DataWriterQos &qos) {
            DDS_ShortSeq_from_array(&qos.representation.value, &id, 1);
        });
    };
    DDS_DataWriter *const first = writerOf(DDS_XCDR_DATA_REPRESENTATION);
    DDS_DataWriter *const second = writerOf(DDS_XCDR2_DATA_REPRESENTATION);
    DDS_DataWriter *const automatic = writerOf(DDS_AUTO_DATA_REPRESENTATION);
    ASSERT_TRUE(isMatched(reader, 3));
    ASSERT_EQ(write(first, 1, 1, 1, "one"), DDS_RETCODE_OK);
    ASSERT_EQ(write(second, 1, 1, 2, "two"), DDS_RETCODE_OK);
    ASSERT_EQ(write(automatic, 1, 1, 3, "three"), DDS_RETCODE_OK);
    const auto got = takeAtLeast(reader, 3);
    ASSERT_EQ(got.size(), 3U);
    std::set<std::string> texts;
    std::set<DDS_InstanceHandle_t> instances;
    for (const Text &text : got) {
        texts.insert(text.text);
        instances.insert(text.info.instance_handle);
    }
    EXPECT_EQ(texts, (std::set<std::string>{"one", "two", "three"}));
    EXPECT_EQ(instances.size(), 1U);  // one instance, whatever the encoding
}

TEST(KoltPubSub, RepresentationsThatDoNotMeetAreIncompatible) {
    Node node(1);
    const DDS_DataRepresentationId_t second = DDS_XCDR2_DATA_REPRESENTATION;
    DDS_DataReader *const reader = node.reader([&](DDS_DataReaderQos &qos) {
        DDS_ShortSeq_from_array(&qos.representation.value, &second, 1);
    });
    DDS_DataWriter *const writer = node.writer();
    EXPECT_TRUE(eventually([&] {
        DDS_OfferedIncompatibleQosStatus status{};
        DDS_DataWriter_get_offered_incompatible_qos_status(writer, &status);
        return status.total_count == 1;
    }));
    DDS_SubscriptionMatchedStatus matched{};
    DDS_DataReader_get_subscription_matched_status(reader, &matched);
    EXPECT_EQ(matched.current_count, 0);
}

// A late joiner gets as many samples of an instance as the writer's history keeps.
TEST(KoltPubSub, LateJoinerGetsTheHistory) {
    Node here(1);
    DDS_DataWriter *const writer = here.writer([](DDS_DataWriterQos &qos) {
        transientLocal(qos);
        qos.history.kind = DDS_KEEP_LAST_HISTORY_QOS;
        qos.history.depth = 10;
    });
    for (int i = 0; i < 25; ++i) ASSERT_EQ(write(writer, 1, 1, i), DDS_RETCODE_OK);
    ASSERT_EQ(write(writer, 1, 2, 100), DDS_RETCODE_OK);
    Node there(1);
    DDS_DataReader *const reader =
        there.reader([](DDS_DataReaderQos &qos) { transientLocal(qos); });
    const auto got = takeAtLeast(reader, 11);
    ASSERT_EQ(got.size(), 11U);
    std::vector<long long> numbers;
    for (const Text &text : got) {
        if (text.level == 1) numbers.push_back(text.number);
    }
    EXPECT_EQ(numbers, (std::vector<long long>{15, 16, 17, 18, 19, 20, 21, 22, 23, 24}));
}

TEST(KoltPubSub, AnExplicitDurabilityServiceCounts) {
    Node here(1);
    DDS_DataWriter *const writer = here.writer([](DDS_DataWriterQos &qos) {
        transientLocal(qos);
        qos.history.kind = DDS_KEEP_LAST_HISTORY_QOS;
        qos.history.depth = 10;
        qos.durability_service.history_depth = 3;
    });
    for (int i = 0; i < 25; ++i) ASSERT_EQ(write(writer, 1, 1, i), DDS_RETCODE_OK);
    ASSERT_EQ(write(writer, 1, 2, 100), DDS_RETCODE_OK);
    Node there(1);
    DDS_DataReader *const reader =
        there.reader([](DDS_DataReaderQos &qos) { transientLocal(qos); });
    const auto got = takeAtLeast(reader, 4);
    EXPECT_EQ(got.size(), 4U);
}

// ---- Instances ----------------------------------------------------------------------------------

TEST(KoltPubSub, DisposeTellsTheKeyAlone) {
    Node here(1);
    Node there(1);
    DDS_DataWriter *const writer = here.writer();
    DDS_DataReader *const reader = there.reader();
    ASSERT_TRUE(isMatched(writer));
    ASSERT_EQ(write(writer, 5, 6, 1, "data"), DDS_RETCODE_OK);
    ASSERT_EQ(takeAtLeast(reader, 1).size(), 1U);
    Record<Message> key(messageType());
    key->id = {5, 1};
    key->level = 6;
    key->number = 99;
    setText(key->text, "ignored");
    ASSERT_EQ(DDS_DataWriter_dispose(writer, key.get(), DDS_HANDLE_NIL), DDS_RETCODE_OK);
    const auto got = takeAtLeast(reader, 1);
    ASSERT_EQ(got.size(), 1U);
    EXPECT_FALSE(got[0].info.valid_data);
    EXPECT_EQ(got[0].info.instance_state, DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE);
    EXPECT_EQ(got[0].host, 5);
    EXPECT_EQ(got[0].level, 6);
    EXPECT_EQ(got[0].number, 0);
    EXPECT_EQ(got[0].text, "");
}

TEST(KoltPubSub, DisposeByHandleAlone) {
    Node here(1);
    Node there(1);
    DDS_DataWriter *const writer = here.writer();
    DDS_DataReader *const reader = there.reader();
    ASSERT_TRUE(isMatched(writer));
    Record<Message> message(messageType());
    message->id = {5, 1};
    message->level = 6;
    const DDS_InstanceHandle_t handle = DDS_DataWriter_register_instance(writer, message.get());
    ASSERT_NE(handle, DDS_HANDLE_NIL);
    ASSERT_EQ(DDS_DataWriter_write(writer, message.get(), handle), DDS_RETCODE_OK);
    ASSERT_EQ(takeAtLeast(reader, 1).size(), 1U);
    ASSERT_EQ(DDS_DataWriter_dispose(writer, nullptr, handle), DDS_RETCODE_OK);
    const auto got = takeAtLeast(reader, 1);
    ASSERT_EQ(got.size(), 1U);
    EXPECT_FALSE(got[0].info.valid_data);
    EXPECT_EQ(got[0].host, 5);
    EXPECT_EQ(got[0].level, 6);
    EXPECT_EQ(DDS_DataWriter_dispose(writer, nullptr, DDS_HANDLE_NIL), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DataWriter_dispose(writer, nullptr, handle + 1000),
              DDS_RETCODE_PRECONDITION_NOT_MET);
}

TEST(KoltPubSub, UnregisterDisposesUnlessToldOtherwise) {
    for (const bool autodispose : {true, false}) {
        Node here(1);
        Node there(1);
        DDS_DataWriter *const writer = here.writer([&](DDS_DataWriterQos &qos) {
            qos.writer_data_lifecycle.autodispose_unregistered_instances = autodispose;
        });
        DDS_DataReader *const reader = there.reader();
        ASSERT_TRUE(isMatched(writer));
        ASSERT_EQ(write(writer, 5, 6, 1), DDS_RETCODE_OK);
        ASSERT_EQ(takeAtLeast(reader, 1).size(), 1U);
        Record<Message> key(messageType());
        key->id = {5, 1};
        key->level = 6;
        ASSERT_EQ(DDS_DataWriter_unregister_instance(writer, key.get(), DDS_HANDLE_NIL),
                  DDS_RETCODE_OK);
        const auto got = takeAtLeast(reader, 1);
        ASSERT_EQ(got.size(), 1U);
        EXPECT_FALSE(got[0].info.valid_data);
        EXPECT_EQ(got[0].info.instance_state, autodispose
                                                  ? DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE
                                                  : DDS_NOT_ALIVE_NO_WRITERS_INSTANCE_STATE);
        EXPECT_EQ(DDS_DataWriter_unregister_instance(writer, key.get(), DDS_HANDLE_NIL),
                  DDS_RETCODE_PRECONDITION_NOT_MET);
    }
}

TEST(KoltPubSub, HandlesNameInstances) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(isMatched(writer));
    Record<Message> one(messageType());
    one->level = 1;
    Record<Message> two(messageType());
    two->level = 2;
    EXPECT_EQ(DDS_DataWriter_lookup_instance(writer, one.get()), DDS_HANDLE_NIL);
    const DDS_InstanceHandle_t handle = DDS_DataWriter_register_instance(writer, one.get());
    ASSERT_NE(handle, DDS_HANDLE_NIL);
    EXPECT_EQ(DDS_DataWriter_register_instance(writer, one.get()), handle);
    EXPECT_EQ(DDS_DataWriter_lookup_instance(writer, one.get()), handle);
    EXPECT_EQ(DDS_DataWriter_write(writer, one.get(), handle), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DataWriter_write(writer, two.get(), handle), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DataWriter_write(writer, two.get(), DDS_HANDLE_NIL), DDS_RETCODE_OK);
    const DDS_InstanceHandle_t implicit = DDS_DataWriter_lookup_instance(writer, two.get());
    EXPECT_NE(implicit, DDS_HANDLE_NIL);
    EXPECT_NE(implicit, handle);

    Record<Message> key(messageType());
    EXPECT_EQ(DDS_DataWriter_get_key_value(writer, key.get(), implicit), DDS_RETCODE_OK);
    EXPECT_EQ(key->level, 2);
    EXPECT_EQ(DDS_DataWriter_get_key_value(writer, key.get(), implicit + 1000),
              DDS_RETCODE_BAD_PARAMETER);

    ASSERT_EQ(takeAtLeast(reader, 2).size(), 2U);
    EXPECT_EQ(DDS_DataReader_lookup_instance(reader, one.get()), handle);
    Record<Message> readers(messageType());
    EXPECT_EQ(DDS_DataReader_get_key_value(reader, readers.get(), implicit), DDS_RETCODE_OK);
    EXPECT_EQ(readers->level, 2);
    EXPECT_EQ(DDS_DataReader_get_key_value(reader, readers.get(), implicit + 1000),
              DDS_RETCODE_BAD_PARAMETER);
}

// ---- What cannot be written ---------------------------------------------------------------------

TEST(KoltPubSub, SamplesThatBreakTheirBoundsAreRefused) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    Record<Message> message(messageType());
    DDS_Char *const category = message->category;
    char too_long[] = "more than sixteen characters";
    message->category = too_long;
    EXPECT_EQ(DDS_DataWriter_write(writer, message.get(), DDS_HANDLE_NIL), DDS_RETCODE_ERROR);
    message->category = nullptr;
    EXPECT_EQ(DDS_DataWriter_write(writer, message.get(), DDS_HANDLE_NIL), DDS_RETCODE_ERROR);
    message->category = category;
    EXPECT_EQ(DDS_DataWriter_write(writer, message.get(), DDS_HANDLE_NIL), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DataWriter_write(writer, nullptr, DDS_HANDLE_NIL), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DataWriter_write(nullptr, message.get(), DDS_HANDLE_NIL),
              DDS_RETCODE_BAD_PARAMETER);
}

TEST(KoltPubSub, AFullHistoryTimesOut) {
    Node here(1);
    Node there(1);
    DDS_DataWriter *const writer = here.writer([](DDS_DataWriterQos &qos) {
        qos.reliability.max_blocking_time = {0, 50000000};
        qos.resource_limits.max_samples = 1;
        qos.resource_limits.max_samples_per_instance = 1;
    });
    // The reader is full after one sample and its application does not take.
    DDS_DataReader *const reader = there.reader([](DDS_DataReaderQos &qos) {
        qos.resource_limits.max_samples = 1;
        qos.resource_limits.max_samples_per_instance = 1;
    });
    ASSERT_TRUE(isMatched(writer));
    ASSERT_TRUE(isMatched(reader));
    DDS_ReturnCode_t result = DDS_RETCODE_OK;
    EXPECT_TRUE(eventually([&] {
        result = write(writer, 1, 1, 1);
        return result != DDS_RETCODE_OK;
    }));
    EXPECT_EQ(result, DDS_RETCODE_TIMEOUT);
    take(reader);
}

// ---- Reading ------------------------------------------------------------------------------------

TEST(KoltPubSub, ReadLeavesAndTakeRemoves) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(isMatched(writer));
    for (int i = 0; i < 100; ++i) ASSERT_EQ(write(writer, 1, 1, i), DDS_RETCODE_OK);
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

TEST(KoltPubSub, InstancesCanBeReadOneByOne) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(isMatched(writer));
    for (int i = 0; i < 12; ++i) ASSERT_EQ(write(writer, 1, i % 3, i), DDS_RETCODE_OK);

    std::set<int> levels;
    KOLT_ReadSelection next = selection(false);
    next.scope = KOLT_READ_NEXT_INSTANCE;
    DDS_ReturnCode_t code = DDS_RETCODE_OK;
    DDS_InstanceHandle_t last = DDS_HANDLE_NIL;
    while (true) {
        const auto got = access(reader, next, &code);
        if (code != DDS_RETCODE_OK) break;
        ASSERT_EQ(got.size(), 4U);
        for (const Text &text : got) EXPECT_EQ(text.level, got[0].level);
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

TEST(KoltPubSub, NextSampleIsCopied) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(isMatched(writer));
    ASSERT_EQ(write(writer, 1, 1, 1, "first"), DDS_RETCODE_OK);
    ASSERT_EQ(write(writer, 1, 1, 2, "second"), DDS_RETCODE_OK);
    Record<Message> message(messageType());
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

TEST(KoltPubSub, SeveralLoansAtOnce) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(isMatched(writer));
    ASSERT_EQ(write(writer, 1, 1, 1, "first"), DDS_RETCODE_OK);
    struct Held {
        void **samples = nullptr;
        DDS_UnsignedLong count = 0;
        DDS_SampleInfoSeq infos = DDS_SEQUENCE_INITIALIZER;
    } first, second;
    const auto takeInto = [&](Held &held) {
        const KOLT_ReadSelection all = selection(true);
        return DDS_DataReader_read_or_take_untypedI(reader, &all, 0, 0, DDS_BOOLEAN_TRUE, nullptr,
                                                    sizeof(Message), &held.samples, &held.count,
                                                    &held.infos);
    };
    ASSERT_EQ(takeInto(first), DDS_RETCODE_OK);
    ASSERT_EQ(write(writer, 1, 1, 2, "second"), DDS_RETCODE_OK);
    ASSERT_EQ(takeInto(second), DDS_RETCODE_OK);
    EXPECT_STREQ(static_cast<Message *>(first.samples[0])->text, "first");
    EXPECT_STREQ(static_cast<Message *>(second.samples[0])->text, "second");
    // A sequence that holds a loan takes no other, and a reader with loans out stays.
    Held third;
    third.infos = first.infos;
    EXPECT_EQ(takeInto(third), DDS_RETCODE_PRECONDITION_NOT_MET);
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

TEST(KoltPubSub, CopiesIntoTheCallersRecords) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(isMatched(writer));
    for (int i = 0; i < 3; ++i) ASSERT_EQ(write(writer, 1, 1, i), DDS_RETCODE_OK);
    Message records[2] = {};
    const DDS_TypeAllocationParams_t allocation = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
    for (Message &record : records) {
        ASSERT_TRUE(KOLT_Record_initialize_w_params(messageType(), &record, &allocation));
    }
    DDS_SampleInfoSeq infos = DDS_SEQUENCE_INITIALIZER;
    ASSERT_TRUE(DDS_SampleInfoSeq_set_maximum(&infos, 2));
    void **loan = nullptr;
    DDS_UnsignedLong count = 0;
    KOLT_ReadSelection all = selection(true);
    const auto takeCopies = [&](DDS_UnsignedLong maximum) {
        return DDS_DataReader_read_or_take_untypedI(
            reader, &all, DDS_SampleInfoSeq_get_length(&infos), maximum, DDS_BOOLEAN_TRUE, records,
            sizeof(Message), &loan, &count, &infos);
    };
    EXPECT_EQ(takeCopies(1), DDS_RETCODE_PRECONDITION_NOT_MET);  // unlike the infos
    all.max_samples = 3;
    EXPECT_EQ(takeCopies(2), DDS_RETCODE_PRECONDITION_NOT_MET);
    all.max_samples = DDS_LENGTH_UNLIMITED;
    ASSERT_EQ(takeCopies(2), DDS_RETCODE_OK);
    EXPECT_EQ(loan, nullptr);
    ASSERT_EQ(count, 2U);
    EXPECT_EQ(records[0].number, 0);
    EXPECT_EQ(records[1].number, 1);
    EXPECT_EQ(DDS_SampleInfoSeq_get_length(&infos), 2U);
    ASSERT_EQ(takeCopies(2), DDS_RETCODE_OK);
    EXPECT_EQ(count, 1U);
    EXPECT_EQ(records[0].number, 2);
    EXPECT_EQ(takeCopies(2), DDS_RETCODE_NO_DATA);
    EXPECT_EQ(DDS_SampleInfoSeq_get_length(&infos), 0U);
    const DDS_TypeDeallocationParams_t deallocation = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;
    for (Message &record : records) {
        KOLT_Record_finalize_w_params(messageType(), &record, &deallocation);
    }
    DDS_SampleInfoSeq_finalize(&infos);
}

// ---- Types without a key ------------------------------------------------------------------------

TEST(KoltPubSub, UnkeyedTypes) {
    Node here(1);
    Node there(1);
    DDS_DataWriter *const writer = here.writer({}, here.topicOf(pointPlugin(), own("points")));
    DDS_DataReader *const reader = there.reader(
        {}, DDS_Topic_as_topicdescription(there.topicOf(pointPlugin(), own("points"))));
    ASSERT_TRUE(isMatched(writer));
    const Point point = {3, -4};
    EXPECT_EQ(DDS_DataWriter_register_instance(writer, &point), DDS_HANDLE_NIL);
    EXPECT_EQ(DDS_DataWriter_dispose(writer, &point, DDS_HANDLE_NIL),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    ASSERT_EQ(DDS_DataWriter_write(writer, &point, DDS_HANDLE_NIL), DDS_RETCODE_OK);
    Point got = {0, 0};
    DDS_SampleInfo info{};
    ASSERT_TRUE(eventually([&] {
        return DDS_DataReader_read_or_take_next_sample_untypedI(reader, DDS_BOOLEAN_TRUE, &got,
                                                                &info) == DDS_RETCODE_OK;
    }));
    EXPECT_EQ(got.x, 3);
    EXPECT_EQ(got.y, -4);
}

// ---- Another process ----------------------------------------------------------------------------

std::vector<std::string> echo(const char *representation) {
    return {helperPath("helper_kolt_echo"), "3", representation, own("")};
}

TEST(KoltPubSub, ThroughTheNetworkAndBack) {
    for (const char *const representation : {"xcdr1", "xcdr2"}) {
        Node node(3, own("to_peer"));
        DDS_DataWriter *const writer = node.writer();
        DDS_Topic *const back = node.topicOf(messagePlugin(), own("from_peer"));
        DDS_DataReader *const reader = node.reader({}, DDS_Topic_as_topicdescription(back));
        ChildProcess peer(echo(representation));
        ASSERT_TRUE(isMatched(writer));
        ASSERT_TRUE(isMatched(reader));
        for (int i = 0; i < 50; ++i) {
            ASSERT_EQ(write(writer, 1, i % 3, i, std::string(static_cast<size_t>(i), 'y')),
                      DDS_RETCODE_OK);
        }
        const auto got = takeAtLeast(reader, 50);
        ASSERT_EQ(got.size(), 50U);
        for (const Text &text : got) {
            EXPECT_TRUE(text.info.valid_data);
            EXPECT_EQ(text.text.size(), static_cast<size_t>(text.number));
        }
        Record<Message> key(messageType());
        key->id = {1, 1};
        key->level = 2;
        ASSERT_EQ(DDS_DataWriter_dispose(writer, key.get(), DDS_HANDLE_NIL), DDS_RETCODE_OK);
        const auto gone = takeAtLeast(reader, 1);
        ASSERT_EQ(gone.size(), 1U);
        EXPECT_FALSE(gone[0].info.valid_data);
        EXPECT_EQ(gone[0].info.instance_state, DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE);
        EXPECT_EQ(gone[0].host, 1);
        EXPECT_EQ(gone[0].level, 2);
    }
}

TEST(KoltPubSub, LargeSamplesTravelInFragments) {
    Node node(3, own("to_peer"));
    DDS_DataWriter *const writer =
        node.writer({}, node.topicOf(largePlugin(), own("large_to_peer")));
    DDS_DataReader *const reader = node.reader(
        {}, DDS_Topic_as_topicdescription(node.topicOf(largePlugin(), own("large_from_peer"))));
    ChildProcess peer(echo("xcdr2"));
    ASSERT_TRUE(isMatched(writer));
    ASSERT_TRUE(isMatched(reader));
    Record<Large> large(largeType());
    constexpr DDS_Long kSize = 200001;
    ASSERT_TRUE(DDS_OctetSeq_set_length(&large->data, kSize));
    for (DDS_Long i = 0; i < kSize; ++i) {
        *DDS_OctetSeq_get_reference(&large->data, i) = static_cast<DDS_Octet>(i * 7);
    }
    large->far = 11;
    large->farther = 12;
    ASSERT_EQ(DDS_DataWriter_write(writer, large.get(), DDS_HANDLE_NIL), DDS_RETCODE_OK);
    Record<Large> got(largeType());
    DDS_SampleInfo info{};
    ASSERT_TRUE(eventually([&] {
        return DDS_DataReader_read_or_take_next_sample_untypedI(reader, DDS_BOOLEAN_TRUE, got.get(),
                                                                &info) == DDS_RETCODE_OK;
    }));
    EXPECT_TRUE(KOLT_Record_equals(largeType(), got.get(), large.get()));
}

// ---- Threads ------------------------------------------------------------------------------------

TEST(KoltPubSub, ManyThreadsWriteWhileOneTakes) {
    constexpr int kThreads = 4;
    constexpr int kEach = 250;
    Node here(2);
    Node there(2);
    DDS_DataWriter *const writer = here.writer();
    DDS_DataReader *const reader = there.reader();
    DDS_DataReader *const local = here.reader();
    ASSERT_TRUE(isMatched(writer, 2));
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([=] {
            for (int i = 0; i < kEach; ++i) {
                EXPECT_EQ(write(writer, t, i % 5, i), DDS_RETCODE_OK);
            }
        });
    }
    const auto remote = takeAtLeast(reader, kThreads * kEach);
    const auto here_too = takeAtLeast(local, kThreads * kEach);
    for (std::thread &thread : threads) thread.join();
    EXPECT_EQ(remote.size(), static_cast<size_t>(kThreads * kEach));
    EXPECT_EQ(here_too.size(), static_cast<size_t>(kThreads * kEach));
    // Of each thread and instance, in order.
    std::map<std::pair<int, int>, long long> last;
    for (const Text &text : remote) {
        const auto [it, fresh] = last.try_emplace({text.host, text.level}, text.number);
        if (!fresh) {
            EXPECT_LT(it->second, text.number);
            it->second = text.number;
        }
    }
}

// Samples in a reader's cache hold buffers of a writer that is gone.
TEST(KoltPubSub, SamplesOutliveTheirWriter) {
    const int before = liveEndpoints();
    {
        Node node(2);
        DDS_DataReader *const reader = node.reader();
        DDS_DataWriter *const writer = node.writer();
        ASSERT_TRUE(isMatched(reader));
        for (int i = 0; i < 20; ++i) ASSERT_EQ(write(writer, 1, 1, i, "kept"), DDS_RETCODE_OK);
        ASSERT_EQ(DDS_Publisher_delete_datawriter(node.publisher, writer), DDS_RETCODE_OK);
        size_t valid = 0;
        ASSERT_TRUE(isMatched(reader, 0));
        for (const Text &text : take(reader)) {
            if (!text.info.valid_data) continue;
            EXPECT_EQ(text.text, "kept");
            ++valid;
        }
        EXPECT_EQ(valid, 20U);
    }
    EXPECT_TRUE(eventually([&] { return liveEndpoints() == before; }));
}

}  // namespace
