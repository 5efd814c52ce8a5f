// SPDX-License-Identifier: Apache-2.0
// Listeners: the callbacks of each event, their order, and their end; deferred writes.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

#include "support/platform/pubsub.h"

namespace {

using namespace support;

struct Calls {
    std::atomic<int> matched{0};
    std::atomic<int> data{0};
    std::atomic<int> data_on_readers{0};
    std::atomic<int> requests{0};
    std::atomic<int> returns{0};
    DDS_DataWriter *writer = nullptr;
    Message *live = nullptr;
};

Calls &of(void *data) {
    return *static_cast<Calls *>(data);
}

void count_matched(void *data, DDS_DataWriter *, const DDS_PublicationMatchedStatus *status) {
    EXPECT_NE(status->total_count, 0);
    ++of(data).matched;
}
void count_data(void *data, DDS_DataReader *) {
    ++of(data).data;
}

DDS_DataWriterListener writer_listener(Calls &calls) {
    DDS_DataWriterListener listener{};
    listener.listener_data = &calls;
    listener.on_publication_matched = count_matched;
    return listener;
}
DDS_DataReaderListener reader_listener(Calls &calls) {
    DDS_DataReaderListener listener{};
    listener.listener_data = &calls;
    listener.on_data_available = count_data;
    return listener;
}

TEST(KoltListeners, ListenerAfterTheFactIsTold) {
    Node node(6);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(eventually([&] {
        return (DDS_Entity_get_status_changes(DDS_DataWriter_as_entity(writer)) &
                DDS_PUBLICATION_MATCHED_STATUS) != 0;
    }));
    Calls calls;
    const DDS_DataWriterListener listener = writer_listener(calls);
    ASSERT_EQ(DDS_DataWriter_set_listener(writer, &listener, DDS_PUBLICATION_MATCHED_STATUS),
              DDS_RETCODE_OK);
    EXPECT_TRUE(eventually([&] { return calls.matched == 1; }));
    // It is news once only.
    ASSERT_EQ(DDS_DataWriter_set_listener(writer, &listener, DDS_PUBLICATION_MATCHED_STATUS),
              DDS_RETCODE_OK);
    EXPECT_EQ(calls.matched, 1);
    EXPECT_EQ(DDS_DataWriter_get_listener(writer).listener_data, &calls);

    ASSERT_EQ(write(writer, 1, 1, 1), DDS_RETCODE_OK);
    ASSERT_TRUE(eventually([&] {
        return (DDS_Entity_get_status_changes(DDS_DataReader_as_entity(reader)) &
                DDS_DATA_AVAILABLE_STATUS) != 0;
    }));
    const DDS_DataReaderListener data = reader_listener(calls);
    ASSERT_EQ(DDS_DataReader_set_listener(reader, &data, DDS_DATA_AVAILABLE_STATUS),
              DDS_RETCODE_OK);
    EXPECT_TRUE(eventually([&] { return calls.data == 1; }));
    EXPECT_EQ(DDS_DataReader_set_listener(nullptr, &data, DDS_DATA_AVAILABLE_STATUS),
              DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DataReader_set_listener(reader, nullptr, 0), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DataWriter_set_listener(writer, nullptr, 0), DDS_RETCODE_OK);
    ASSERT_EQ(write(writer, 1, 1, 2), DDS_RETCODE_OK);
    EXPECT_EQ(take_at_least(reader, 2).size(), 2U);
    EXPECT_EQ(calls.data, 1);
}

TEST(KoltListeners, MaskSelectsWhoIsTold) {
    Node node(6);
    Calls own, publishers, participants;
    DDS_DomainParticipantListener participant_listener{};
    participant_listener.publisher_listener = writer_listener(participants);
    participant_listener.subscriber_listener.reader_listener = reader_listener(participants);
    DDS_DomainParticipant_set_listener(node.participant, &participant_listener,
                                       DDS_STATUS_MASK_ALL);
    const DDS_PublisherListener publisher_listener = writer_listener(publishers);
    DDS_Publisher_set_listener(node.publisher, &publisher_listener, DDS_PUBLICATION_MATCHED_STATUS);
    const DDS_DataWriterListener listener = writer_listener(own);
    DDS_DataWriter *const first =
        node.writer({}, nullptr, &listener, DDS_PUBLICATION_MATCHED_STATUS);
    // The mask leaves the status to the publisher.
    DDS_DataWriter *const second = node.writer({}, nullptr, &listener, DDS_LIVELINESS_LOST_STATUS);
    DDS_DataReader *const reader = node.reader();
    EXPECT_TRUE(eventually([&] { return own.matched == 1 && publishers.matched == 1; }));
    EXPECT_EQ(participants.matched, 0);
    DDS_Publisher_set_listener(node.publisher, nullptr, 0);
    DDS_DataReader *const another = node.reader();
    EXPECT_TRUE(eventually([&] { return own.matched == 2 && participants.matched == 1; }));
    ASSERT_EQ(write(first, 1, 1, 1), DDS_RETCODE_OK);
    EXPECT_TRUE(eventually([&] { return participants.data == 2; }));
    EXPECT_EQ(publishers.matched, 1);
    EXPECT_NE(second, nullptr);
    take(reader);
    take(another);
    DDS_DomainParticipant_set_listener(node.participant, nullptr, 0);
}

void notify_readers(void *data, DDS_Subscriber *subscriber) {
    ++of(data).data_on_readers;
    DDS_Subscriber_notify_datareaders(subscriber);
}

TEST(KoltListeners, DataOnReadersComesFirst) {
    Node node(6);
    Calls calls;
    DDS_SubscriberListener subscriber_listener{};
    subscriber_listener.reader_listener.listener_data = &calls;
    subscriber_listener.on_data_on_readers = notify_readers;
    DDS_Subscriber_set_listener(node.subscriber, &subscriber_listener, DDS_DATA_ON_READERS_STATUS);
    const DDS_DataReaderListener listener = reader_listener(calls);
    DDS_DataReader *const reader = node.reader({}, nullptr, &listener, DDS_DATA_AVAILABLE_STATUS);
    DDS_DataWriter *const writer = node.writer();
    ASSERT_TRUE(is_matched(writer));
    ASSERT_EQ(write(writer, 1, 1, 1), DDS_RETCODE_OK);
    EXPECT_TRUE(eventually([&] { return calls.data == 1; }));
    EXPECT_EQ(calls.data_on_readers, 1);
    EXPECT_EQ(take(reader).size(), 1U);
    DDS_Subscriber_set_listener(node.subscriber, nullptr, 0);
}

void take_in_callback(void *data, DDS_DataReader *reader) {
    of(data).data += static_cast<int>(take(reader).size());
}

TEST(KoltListeners, CallbackTakesAndAnswers) {
    Node node(6);
    Calls calls;
    DDS_DataReaderListener listener{};
    listener.listener_data = &calls;
    listener.on_data_available = take_in_callback;
    node.reader({}, nullptr, &listener, DDS_DATA_AVAILABLE_STATUS);
    DDS_DataWriter *const writer = node.writer();
    ASSERT_TRUE(is_matched(writer));
    for (int i = 0; i < 200; ++i) {
        ASSERT_EQ(write(writer, 1, 1, i), DDS_RETCODE_OK);
    }
    EXPECT_TRUE(eventually([&] { return calls.data == 200; }));
}

// ---- Deferred writes ----------------------------------------------------------------------------

void write_on_first_match(void *data, DDS_DataWriter *writer,
                          const DDS_PublicationMatchedStatus *) {
    Calls &calls = of(data);
    if (calls.matched++ != 0) {
        return;
    }
    DDS_WriteParams_t params = DDS_WRITEPARAMS_DEFAULT;
    ASSERT_TRUE(DDS_Cookie_from_pointer(&params.cookie, calls.live));
    params.handle = DDS_DataWriter_register_instance(writer, calls.live);
    EXPECT_NE(params.handle, DDS_HANDLE_NIL);
    EXPECT_EQ(DDS_DataWriter_write_w_params(writer, calls.live, &params), DDS_RETCODE_OK);
}
void *give_live(void *data, DDS_DataWriter *, const DDS_Cookie_t *cookie) {
    Calls &calls = of(data);
    ++calls.requests;
    EXPECT_EQ(DDS_Cookie_to_pointer(cookie), calls.live);
    return DDS_Cookie_to_pointer(cookie);
}
void take_back(void *data, DDS_DataWriter *, void *sample, const DDS_Cookie_t *cookie) {
    ++of(data).returns;
    EXPECT_EQ(sample, DDS_Cookie_to_pointer(cookie));
}

// The sample that the application keeps up to date goes out to the first reader and, since the
// topic is transient-local, to later ones.
TEST(KoltListeners, DeferredWriteFromTheMatchedCallback) {
    Node node(6);
    Record<Message> live(message_type());
    live->number = 77;
    Calls calls;
    calls.live = live.get();
    DDS_DataWriterListener listener{};
    listener.listener_data = &calls;
    listener.on_publication_matched = write_on_first_match;
    listener.on_data_request = give_live;
    listener.on_data_return = take_back;
    const auto state = [](DDS_DataWriterQos &qos) {
        qos.durability.kind = DDS_TRANSIENT_LOCAL_DURABILITY_QOS;
        qos.history.kind = DDS_KEEP_LAST_HISTORY_QOS;
        DDS_PropertyQosPolicyHelper_assert_property(&qos.property, KOLT_DEFERRED_WRITE_PROPERTY,
                                                    "true", DDS_BOOLEAN_FALSE);
    };
    DDS_DataWriter *const writer = node.writer(state);
    const auto late = [](DDS_DataReaderQos &qos) {
        qos.durability.kind = DDS_TRANSIENT_LOCAL_DURABILITY_QOS;
    };
    // The reader is there before the listener.
    DDS_DataReader *const first = node.reader(late);
    ASSERT_EQ(DDS_DataWriter_set_listener(writer, &listener, DDS_PUBLICATION_MATCHED_STATUS),
              DDS_RETCODE_OK);
    auto got = take_at_least(first, 1);
    ASSERT_EQ(got.size(), 1U);
    EXPECT_EQ(got[0].number, 77);
    EXPECT_EQ(calls.requests, 1);
    EXPECT_EQ(calls.returns, 1);
    DDS_DataReader *const second = node.reader(late);
    got = take_at_least(second, 1);
    ASSERT_EQ(got.size(), 1U);
    EXPECT_EQ(got[0].number, 77);
    EXPECT_EQ(calls.requests, 1);
    // A plain write takes the sample that it is given.
    ASSERT_EQ(write(writer, 0, 0, 78), DDS_RETCODE_OK);
    EXPECT_EQ(calls.requests, 1);
    DDS_DataWriter_set_listener(writer, nullptr, 0);
    DDS_WriteParams_t params = DDS_WRITEPARAMS_DEFAULT;
    DDS_Cookie_from_pointer(&params.cookie, live.get());
    EXPECT_EQ(DDS_DataWriter_write_w_params(writer, live.get(), &params),
              DDS_RETCODE_PRECONDITION_NOT_MET);
}

// When set_listener has returned, the old listener is not called any more.
TEST(KoltListeners, RemovedListenerIsSilent) {
    Node node(6);
    DDS_DataWriter *const writer =
        node.writer([](DDS_DataWriterQos &qos) { qos.history.kind = DDS_KEEP_LAST_HISTORY_QOS; });
    DDS_DataReader *const reader =
        node.reader([](DDS_DataReaderQos &qos) { qos.history.kind = DDS_KEEP_LAST_HISTORY_QOS; });
    ASSERT_TRUE(is_matched(writer));
    std::atomic<bool> stop{false};
    std::thread busy([&] {
        while (!stop) {
            write(writer, 1, 1, 1);
        }
    });
    for (int round = 0; round < 50; ++round) {
        auto calls = std::make_unique<Calls>();
        const DDS_DataReaderListener listener = reader_listener(*calls);
        DDS_DataReader_set_listener(reader, &listener, DDS_DATA_AVAILABLE_STATUS);
        EXPECT_TRUE(eventually([&] { return calls->data > 0; }));
        DDS_DataReader_set_listener(reader, nullptr, 0);
        calls.reset();  // a callback now would touch freed memory
    }
    stop = true;
    busy.join();
}

}  // namespace
