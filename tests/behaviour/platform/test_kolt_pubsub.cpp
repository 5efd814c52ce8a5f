// SPDX-License-Identifier: Apache-2.0
// Writing and reading through the entity API: what arrives, when, and what is refused.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "support/platform/pubsub.h"

namespace {

using namespace support;

void transient_local(DDS_DataWriterQos &qos) {
    qos.durability.kind = DDS_TRANSIENT_LOCAL_DURABILITY_QOS;
}
void transient_local(DDS_DataReaderQos &qos) {
    qos.durability.kind = DDS_TRANSIENT_LOCAL_DURABILITY_QOS;
}

TEST(KoltPubSub, SampleArrivesWithAllMembers) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_NE(writer, nullptr);
    ASSERT_NE(reader, nullptr);
    ASSERT_TRUE(is_matched(writer));
    ASSERT_EQ(write(writer, 7, 300, 42, "the text"), DDS_RETCODE_OK);
    const auto got = take_at_least(reader, 1);
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
    ASSERT_TRUE(is_matched(writer));
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(write(writer, 1, 1, i, std::string(static_cast<std::size_t>(i % 60), 'x')),
                  DDS_RETCODE_OK);
    }
    const auto got = take_at_least(reader, 100);
    ASSERT_EQ(got.size(), 100U);
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(got[static_cast<std::size_t>(i)].number, i);
        EXPECT_EQ(got[static_cast<std::size_t>(i)].text.size(), static_cast<std::size_t>(i % 60));
    }
}

TEST(KoltPubSub, SourceTimestampIsKept) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(is_matched(writer));
    Record<Message> message(message_type());
    const DDS_Time_t stamp = {1700000000, 123456789};
    ASSERT_EQ(DDS_DataWriter_write_w_timestamp(writer, message.get(), DDS_HANDLE_NIL, &stamp),
              DDS_RETCODE_OK);
    const auto got = take_at_least(reader, 1);
    ASSERT_EQ(got.size(), 1U);
    EXPECT_EQ(got[0].info.source_timestamp.sec, stamp.sec);
    EXPECT_EQ(got[0].info.source_timestamp.nanosec, stamp.nanosec);
    for (const DDS_Time_t &wrong :
         {DDS_Time_t{1, 1000000000}, DDS_Time_t{4294967295, 0}, DDS_Time_t{1LL << 40, 0}}) {
        EXPECT_EQ(DDS_DataWriter_write_w_timestamp(writer, message.get(), DDS_HANDLE_NIL, &wrong),
                  DDS_RETCODE_BAD_PARAMETER);
    }
    EXPECT_EQ(
        DDS_DataWriter_write_w_timestamp(writer, message.get(), DDS_HANDLE_NIL, &DDS_TIME_INVALID),
        DDS_RETCODE_BAD_PARAMETER);
}

TEST(KoltPubSub, BothRepresentationsReachOneReader) {
    Node here(1);
    Node there(1);
    DDS_DataReader *const reader = there.reader();
    const auto writer_of = [&](DDS_DataRepresentationId_t id) {
        return here.writer([id](DDS_DataWriterQos &qos) {
            DDS_ShortSeq_from_array(&qos.representation.value, &id, 1);
        });
    };
    DDS_DataWriter *const first = writer_of(DDS_XCDR_DATA_REPRESENTATION);
    DDS_DataWriter *const second = writer_of(DDS_XCDR2_DATA_REPRESENTATION);
    DDS_DataWriter *const automatic = writer_of(DDS_AUTO_DATA_REPRESENTATION);
    ASSERT_TRUE(is_matched(reader, 3));
    ASSERT_EQ(write(first, 1, 1, 1, "one"), DDS_RETCODE_OK);
    ASSERT_EQ(write(second, 1, 1, 2, "two"), DDS_RETCODE_OK);
    ASSERT_EQ(write(automatic, 1, 1, 3, "three"), DDS_RETCODE_OK);
    const auto got = take_at_least(reader, 3);
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

// Writes 25 samples of an instance, and one of another.
void write_two_instances(DDS_DataWriter *writer) {
    for (int i = 0; i < 25; ++i) {
        ASSERT_EQ(write(writer, 1, 1, i), DDS_RETCODE_OK);
    }
    ASSERT_EQ(write(writer, 1, 2, 100), DDS_RETCODE_OK);
}

// A late joiner gets as many samples of an instance as the writer's history keeps.
TEST(KoltPubSub, LateJoinerGetsTheHistory) {
    Node here(1);
    DDS_DataWriter *const writer = here.writer([](DDS_DataWriterQos &qos) {
        transient_local(qos);
        qos.history.kind = DDS_KEEP_LAST_HISTORY_QOS;
        qos.history.depth = 10;
    });
    ASSERT_NO_FATAL_FAILURE(write_two_instances(writer));
    Node there(1);
    DDS_DataReader *const reader =
        there.reader([](DDS_DataReaderQos &qos) { transient_local(qos); });
    const auto got = take_at_least(reader, 11);
    ASSERT_EQ(got.size(), 11U);
    std::vector<long long> numbers;
    for (const Text &text : got) {
        if (text.level == 1) {
            numbers.push_back(text.number);
        }
    }
    EXPECT_EQ(numbers, (std::vector<long long>{15, 16, 17, 18, 19, 20, 21, 22, 23, 24}));
}

TEST(KoltPubSub, AnExplicitDurabilityServiceCounts) {
    Node here(1);
    DDS_DataWriter *const writer = here.writer([](DDS_DataWriterQos &qos) {
        transient_local(qos);
        qos.history.kind = DDS_KEEP_LAST_HISTORY_QOS;
        qos.history.depth = 10;
        qos.durability_service.history_depth = 3;
    });
    ASSERT_NO_FATAL_FAILURE(write_two_instances(writer));
    Node there(1);
    DDS_DataReader *const reader =
        there.reader([](DDS_DataReaderQos &qos) { transient_local(qos); });
    const auto got = take_at_least(reader, 4);
    EXPECT_EQ(got.size(), 4U);
}

// ---- What cannot be written ---------------------------------------------------------------------

TEST(KoltPubSub, SamplesThatBreakTheirBoundsAreRefused) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    Record<Message> message(message_type());
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
    ASSERT_TRUE(is_matched(writer));
    ASSERT_TRUE(is_matched(reader));
    DDS_ReturnCode_t result = DDS_RETCODE_OK;
    EXPECT_TRUE(eventually([&] {
        result = write(writer, 1, 1, 1);
        return result != DDS_RETCODE_OK;
    }));
    EXPECT_EQ(result, DDS_RETCODE_TIMEOUT);
    take(reader);
}

// ---- Types without a key ------------------------------------------------------------------------

TEST(KoltPubSub, UnkeyedTypes) {
    Node here(1);
    Node there(1);
    DDS_DataWriter *const writer = here.writer({}, here.topic_of(point_plugin(), own("points")));
    DDS_DataReader *const reader = there.reader(
        {}, DDS_Topic_as_topicdescription(there.topic_of(point_plugin(), own("points"))));
    ASSERT_TRUE(is_matched(writer));
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

}  // namespace
