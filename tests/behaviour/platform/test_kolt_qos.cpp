// SPDX-License-Identifier: Apache-2.0
// QoS of entities: validity, changes, defaults, and what reaches the other side.
#include <gtest/gtest.h>

#include <atomic>

#include "support/logger/log_capture.h"
#include "support/platform/pubsub.h"

namespace {

using namespace support;

TEST(KoltQos, InconsistentQosNamesThePolicies) {
    Node node(8);
    {
        LogCapture log;
        EXPECT_EQ(node.writer([](DDS_DataWriterQos &qos) {
            qos.history.kind = DDS_KEEP_LAST_HISTORY_QOS;
            qos.history.depth = 10;
            qos.resource_limits.max_samples_per_instance = 5;
        }),
                  nullptr);
        EXPECT_TRUE(log.has("history") && log.has("resource_limits")) << log.text();
    }
    {
        LogCapture log;
        EXPECT_EQ(node.reader([](DDS_DataReaderQos &qos) {
            qos.deadline.period = {1, 0};
            qos.time_based_filter.minimum_separation = {2, 0};
        }),
                  nullptr);
        EXPECT_TRUE(log.has("deadline") && log.has("time_based_filter")) << log.text();
    }
    {
        LogCapture log;
        EXPECT_EQ(node.writer([](DDS_DataWriterQos &qos) {
            const DDS_Short xml = DDS_XML_DATA_REPRESENTATION;
            DDS_ShortSeq_from_array(&qos.representation.value, &xml, 1);
        }),
                  nullptr);
        EXPECT_TRUE(log.has("representation")) << log.text();
    }
    {
        LogCapture log;
        TopicQos qos;
        qos->history.depth = 0;
        EXPECT_EQ(DDS_Topic_set_qos(node.topic, qos.get()), DDS_RETCODE_INCONSISTENT_POLICY);
        EXPECT_TRUE(log.has("history")) << log.text();
    }
    EXPECT_EQ(node.writer([](DDS_DataWriterQos &qos) { qos.deadline.period = {-1, 0}; }), nullptr);
    EXPECT_EQ(node.writer([](DDS_DataWriterQos &qos) { qos.lifespan.duration = {0, 0}; }), nullptr);
    EXPECT_EQ(node.writer([](DDS_DataWriterQos &qos) {
        qos.latency_budget.duration = {0, 1000000000U};
    }),
              nullptr);
}

TEST(KoltQos, QosComesBackAsItWasGiven) {
    Node node(8);
    const DDS_Octet bytes[] = {1, 2, 3};
    WriterQos given;
    given->durability.kind = DDS_TRANSIENT_LOCAL_DURABILITY_QOS;
    given->deadline.period = {3, 5};
    given->latency_budget.duration = {0, 7};
    given->liveliness.lease_duration = {4, 0};
    given->history.depth = 6;
    given->resource_limits.max_samples = 100;
    given->transport_priority.value = 3;
    given->lifespan.duration = {9, 0};
    given->ownership.kind = DDS_EXCLUSIVE_OWNERSHIP_QOS;
    given->ownership_strength.value = 12;
    DDS_OctetSeq_from_array(&given->user_data.value, bytes, 3);
    given->protocol.vendor_specific_entity = DDS_BOOLEAN_TRUE;
    DDS_PropertyQosPolicyHelper_assert_property(&given->property, "test.name", "value",
                                                DDS_BOOLEAN_FALSE);
    DDS_DataWriter *const writer = DDS_Publisher_create_datawriter(
        node.publisher, node.topic, given.get(), nullptr, DDS_STATUS_MASK_NONE);
    ASSERT_NE(writer, nullptr);
    WriterQos got;
    ASSERT_EQ(DDS_DataWriter_get_qos(writer, got.get()), DDS_RETCODE_OK);
    EXPECT_TRUE(DDS_DataWriterQos_equals(got.get(), given.get()));
}

TEST(KoltQos, ChangesAfterEnabling) {
    Node node(8);
    DDS_DataWriter *const writer = node.writer();
    WriterQos qos;
    ASSERT_EQ(DDS_DataWriter_get_qos(writer, qos.get()), DDS_RETCODE_OK);
    const DDS_Octet byte = 9;
    DDS_OctetSeq_from_array(&qos->user_data.value, &byte, 1);
    qos->lifespan.duration = {5, 0};
    EXPECT_EQ(DDS_DataWriter_set_qos(writer, qos.get()), DDS_RETCODE_OK);
    WriterQos changed;
    ASSERT_EQ(DDS_DataWriter_get_qos(writer, changed.get()), DDS_RETCODE_OK);
    EXPECT_TRUE(DDS_DataWriterQos_equals(changed.get(), qos.get()));
    qos->durability.kind = DDS_TRANSIENT_LOCAL_DURABILITY_QOS;
    LogCapture log;
    EXPECT_EQ(DDS_DataWriter_set_qos(writer, qos.get()), DDS_RETCODE_IMMUTABLE_POLICY);
    EXPECT_TRUE(log.has("durability")) << log.text();
    ASSERT_EQ(DDS_DataWriter_get_qos(writer, changed.get()), DDS_RETCODE_OK);
    EXPECT_EQ(changed->durability.kind, DDS_VOLATILE_DURABILITY_QOS);

    SubscriberQos subscriber;
    ASSERT_EQ(DDS_Subscriber_get_qos(node.subscriber, subscriber.get()), DDS_RETCODE_OK);
    DDS_OctetSeq_from_array(&subscriber->group_data.value, &byte, 1);
    EXPECT_EQ(DDS_Subscriber_set_qos(node.subscriber, subscriber.get()), DDS_RETCODE_OK);
    ParticipantQos participant;
    ASSERT_EQ(DDS_DomainParticipant_get_qos(node.participant, participant.get()), DDS_RETCODE_OK);
    DDS_OctetSeq_from_array(&participant->user_data.value, &byte, 1);
    EXPECT_EQ(DDS_DomainParticipant_set_qos(node.participant, participant.get()), DDS_RETCODE_OK);
    TopicQos topic;
    ASSERT_EQ(DDS_Topic_get_qos(node.topic, topic.get()), DDS_RETCODE_OK);
    DDS_OctetSeq_from_array(&topic->topic_data.value, &byte, 1);
    EXPECT_EQ(DDS_Topic_set_qos(node.topic, topic.get()), DDS_RETCODE_OK);
}

TEST(KoltQos, IdentityOfTheParticipant) {
    Node first(8);
    Node second(8);
    ParticipantQos one;
    ParticipantQos two;
    ASSERT_EQ(DDS_DomainParticipant_get_qos(first.participant, one.get()), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DomainParticipant_get_qos(second.participant, two.get()), DDS_RETCODE_OK);
    EXPECT_NE(one->wire_protocol.rtps_host_id, 0U);
    EXPECT_TRUE(one->wire_protocol.rtps_host_id != two->wire_protocol.rtps_host_id ||
                one->wire_protocol.rtps_app_id != two->wire_protocol.rtps_app_id);
}

TEST(KoltQos, PartitionsSeparate) {
    Node node(8);
    const auto publisher_in = [&](const char *partition) {
        PublisherQos qos;
        Strings names({partition});
        DDS_StringSeq_copy(&qos->partition.name, names.get());
        return DDS_DomainParticipant_create_publisher(node.participant, qos.get(), nullptr,
                                                      DDS_STATUS_MASK_NONE);
    };
    SubscriberQos qos;
    Strings names({"a*"});
    DDS_StringSeq_copy(&qos->partition.name, names.get());
    DDS_Subscriber *const subscriber = DDS_DomainParticipant_create_subscriber(
        node.participant, qos.get(), nullptr, DDS_STATUS_MASK_NONE);
    DDS_DataReader *const reader =
        DDS_Subscriber_create_datareader(subscriber, DDS_Topic_as_topicdescription(node.topic),
                                         nullptr, nullptr, DDS_STATUS_MASK_NONE);
    DDS_DataWriter *const other = DDS_Publisher_create_datawriter(
        publisher_in("b1"), node.topic, nullptr, nullptr, DDS_STATUS_MASK_NONE);
    DDS_DataWriter *const same = DDS_Publisher_create_datawriter(
        publisher_in("a1"), node.topic, nullptr, nullptr, DDS_STATUS_MASK_NONE);
    ASSERT_TRUE(is_matched(reader, 1));
    DDS_InstanceHandleSeq matched = DDS_SEQUENCE_INITIALIZER;
    ASSERT_EQ(DDS_DataReader_get_matched_publications(reader, &matched), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_InstanceHandleSeq_get_length(&matched), 1U);
    EXPECT_EQ(*DDS_InstanceHandleSeq_get_reference(&matched, 0),
              DDS_Entity_get_instance_handle(DDS_DataWriter_as_entity(same)));
    ASSERT_EQ(DDS_DataWriter_get_matched_subscriptions(other, &matched), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_InstanceHandleSeq_get_length(&matched), 0U);
    DDS_InstanceHandleSeq_finalize(&matched);
}

TEST(KoltQos, DefaultsAndTopicQos) {
    TopicQos topic_qos;
    topic_qos->durability.kind = DDS_TRANSIENT_LOCAL_DURABILITY_QOS;
    topic_qos->history.depth = 4;
    topic_qos->reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
    Node node(8, own("messages"), topic_qos.get());
    WriterQos got;
    // The topic's QoS counts only when it is asked for.
    DDS_DataWriter *writer = DDS_Publisher_create_datawriter(node.publisher, node.topic, nullptr,
                                                             nullptr, DDS_STATUS_MASK_NONE);
    ASSERT_EQ(DDS_DataWriter_get_qos(writer, got.get()), DDS_RETCODE_OK);
    EXPECT_EQ(got->durability.kind, DDS_VOLATILE_DURABILITY_QOS);
    writer = DDS_Publisher_create_datawriter(node.publisher, node.topic,
                                             &DDS_DATAWRITER_QOS_USE_TOPIC_QOS, nullptr,
                                             DDS_STATUS_MASK_NONE);
    ASSERT_EQ(DDS_DataWriter_get_qos(writer, got.get()), DDS_RETCODE_OK);
    EXPECT_EQ(got->durability.kind, DDS_TRANSIENT_LOCAL_DURABILITY_QOS);
    EXPECT_EQ(got->history.depth, 4);
    ReaderQos reader_qos;
    DDS_DataReader *const reader = DDS_Subscriber_create_datareader(
        node.subscriber, DDS_Topic_as_topicdescription(node.topic),
        &DDS_DATAREADER_QOS_USE_TOPIC_QOS, nullptr, DDS_STATUS_MASK_NONE);
    ASSERT_EQ(DDS_DataReader_get_qos(reader, reader_qos.get()), DDS_RETCODE_OK);
    EXPECT_EQ(reader_qos->reliability.kind, DDS_RELIABLE_RELIABILITY_QOS);
    EXPECT_EQ(reader_qos->history.depth, 4);

    // The participant's default, then the publisher's own.
    WriterQos ours;
    ours->history.depth = 8;
    ASSERT_EQ(DDS_DomainParticipant_set_default_datawriter_qos(node.participant, ours.get()),
              DDS_RETCODE_OK);
    ASSERT_EQ(DDS_Publisher_get_default_datawriter_qos(node.publisher, got.get()), DDS_RETCODE_OK);
    EXPECT_EQ(got->history.depth, 8);
    ASSERT_EQ(DDS_DomainParticipant_get_default_datawriter_qos_w_topic_name(node.participant,
                                                                            got.get(), "anything"),
              DDS_RETCODE_OK);
    EXPECT_EQ(got->history.depth, 8);
    ours->history.depth = 9;
    ASSERT_EQ(DDS_Publisher_set_default_datawriter_qos(node.publisher, ours.get()), DDS_RETCODE_OK);
    writer = DDS_Publisher_create_datawriter(
        node.publisher, node.topic, &DDS_DATAWRITER_QOS_DEFAULT, nullptr, DDS_STATUS_MASK_NONE);
    ASSERT_EQ(DDS_DataWriter_get_qos(writer, got.get()), DDS_RETCODE_OK);
    EXPECT_EQ(got->history.depth, 9);
    ours->history.depth = -3;
    EXPECT_EQ(DDS_Publisher_set_default_datawriter_qos(node.publisher, ours.get()),
              DDS_RETCODE_INCONSISTENT_POLICY);
}

TEST(KoltQos, KeepLastReaderKeepsTheLast) {
    Node node(8);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader([](DDS_DataReaderQos &qos) {
        qos.history.kind = DDS_KEEP_LAST_HISTORY_QOS;
        qos.history.depth = 3;
    });
    DDS_DataReader *const all = node.reader();
    ASSERT_TRUE(is_matched(writer, 2));
    for (int i = 0; i < 10; ++i) {
        ASSERT_EQ(write(writer, 1, 1, i), DDS_RETCODE_OK);
    }
    ASSERT_EQ(take_at_least(all, 10).size(), 10U);
    const auto got = take(reader);
    ASSERT_EQ(got.size(), 3U);
    EXPECT_EQ(got[0].number, 7);
    EXPECT_EQ(got[2].number, 9);
}

TEST(KoltQos, AcknowledgmentsAndLiveliness) {
    Node here(8);
    Node there(8);
    DDS_DataWriter *const writer = here.writer([](DDS_DataWriterQos &qos) {
        qos.liveliness.kind = DDS_MANUAL_BY_TOPIC_LIVELINESS_QOS;
        qos.liveliness.lease_duration = {20, 0};
    });
    DDS_DataReader *const reader = there.reader();
    ASSERT_TRUE(is_matched(writer));
    ASSERT_EQ(write(writer, 1, 1, 1), DDS_RETCODE_OK);
    const DDS_Duration_t wait = {20, 0};
    EXPECT_EQ(DDS_DataWriter_wait_for_acknowledgments(writer, &wait), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_Publisher_wait_for_acknowledgments(here.publisher, &wait), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DataWriter_assert_liveliness(writer), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DomainParticipant_assert_liveliness(here.participant), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DataReader_wait_for_historical_data(reader, &wait), DDS_RETCODE_OK);
    DDS_LivelinessChangedStatus status{};
    EXPECT_TRUE(eventually([&] {
        DDS_DataReader_get_liveliness_changed_status(reader, &status);
        return status.alive_count == 1;
    }));
}

}  // namespace
