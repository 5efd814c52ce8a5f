// SPDX-License-Identifier: Apache-2.0
// An entity of another kind, cast to what a function takes, is a bad parameter.
#include <gtest/gtest.h>

#include "support/platform/pubsub.h"

namespace {

using namespace support;

class KoltWrongKinds : public testing::Test {
  protected:
    void SetUp() override {
        reader_ = node_.reader();
        writer_ = node_.writer();
        Strings none({});
        filtered_ = DDS_DomainParticipant_create_contentfilteredtopic(
            node_.participant, "wrong_kinds", node_.topic, "level > 1", none.get());
        ASSERT_NE(filtered_, nullptr);
    }
    // Calls `function(entity)` with each entity but those of the kind that it takes.
    template <typename Record, typename Function>
    void with_others(const void *right, Function &&function) {
        for (void *const entity :
             {static_cast<void *>(node_.participant), static_cast<void *>(node_.topic),
              static_cast<void *>(filtered_), static_cast<void *>(node_.publisher),
              static_cast<void *>(node_.subscriber), static_cast<void *>(reader_),
              static_cast<void *>(writer_)}) {
            if (entity != right) {
                function(static_cast<Record *>(entity));
            }
        }
    }

    Node node_{22};
    DDS_DataReader *reader_ = nullptr;
    DDS_DataWriter *writer_ = nullptr;
    DDS_ContentFilteredTopic *filtered_ = nullptr;
};

TEST_F(KoltWrongKinds, AsAWriter) {
    Record<Message> message(message_type());
    with_others<DDS_DataWriter>(writer_, [&](DDS_DataWriter *wrong) {
        const DDS_Duration_t wait = {1, 0};
        DDS_PublicationMatchedStatus status{};
        EXPECT_EQ(DDS_DataWriter_write(wrong, message.get(), DDS_HANDLE_NIL),
                  DDS_RETCODE_BAD_PARAMETER);
        EXPECT_EQ(DDS_DataWriter_register_instance(wrong, message.get()), DDS_HANDLE_NIL);
        EXPECT_EQ(DDS_DataWriter_wait_for_acknowledgments(wrong, &wait), DDS_RETCODE_BAD_PARAMETER);
        EXPECT_EQ(DDS_DataWriter_get_publication_matched_status(wrong, &status),
                  DDS_RETCODE_BAD_PARAMETER);
        EXPECT_EQ(DDS_DataWriter_set_listener(wrong, nullptr, 0), DDS_RETCODE_BAD_PARAMETER);
        EXPECT_EQ(DDS_DataWriter_get_topic(wrong), nullptr);
        EXPECT_EQ(DDS_Publisher_delete_datawriter(node_.publisher, wrong),
                  DDS_RETCODE_BAD_PARAMETER);
    });
}

TEST_F(KoltWrongKinds, AsAReader) {
    with_others<DDS_DataReader>(reader_, [&](DDS_DataReader *wrong) {
        DDS_ReturnCode_t code = DDS_RETCODE_OK;
        access(wrong, selection(true), &code);
        EXPECT_EQ(code, DDS_RETCODE_BAD_PARAMETER);
        ReaderQos qos;
        EXPECT_EQ(DDS_DataReader_get_qos(wrong, qos.get()), DDS_RETCODE_BAD_PARAMETER);
        EXPECT_EQ(DDS_DataReader_create_readcondition(wrong, DDS_ANY_SAMPLE_STATE,
                                                      DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE),
                  nullptr);
        EXPECT_EQ(DDS_DataReader_get_topicdescription(wrong), nullptr);
        EXPECT_EQ(DDS_Subscriber_delete_datareader(node_.subscriber, wrong),
                  DDS_RETCODE_BAD_PARAMETER);
    });
}

TEST_F(KoltWrongKinds, AsAPublisherOrSubscriber) {
    with_others<DDS_Publisher>(node_.publisher, [&](DDS_Publisher *wrong) {
        EXPECT_EQ(DDS_Publisher_create_datawriter(wrong, node_.topic, nullptr, nullptr, 0),
                  nullptr);
        EXPECT_EQ(DDS_Publisher_delete_datawriter(wrong, writer_), DDS_RETCODE_BAD_PARAMETER);
        EXPECT_EQ(DDS_DomainParticipant_delete_publisher(node_.participant, wrong),
                  DDS_RETCODE_BAD_PARAMETER);
    });
    with_others<DDS_Subscriber>(node_.subscriber, [&](DDS_Subscriber *wrong) {
        EXPECT_EQ(DDS_Subscriber_create_datareader(
                      wrong, DDS_Topic_as_topicdescription(node_.topic), nullptr, nullptr, 0),
                  nullptr);
        EXPECT_EQ(DDS_Subscriber_notify_datareaders(wrong), DDS_RETCODE_BAD_PARAMETER);
        EXPECT_EQ(DDS_DomainParticipant_delete_subscriber(node_.participant, wrong),
                  DDS_RETCODE_BAD_PARAMETER);
    });
}

TEST_F(KoltWrongKinds, AsATopic) {
    with_others<DDS_Topic>(node_.topic, [&](DDS_Topic *wrong) {
        TopicQos qos;
        EXPECT_EQ(DDS_Topic_get_qos(wrong, qos.get()), DDS_RETCODE_BAD_PARAMETER);
        EXPECT_EQ(DDS_Publisher_create_datawriter(node_.publisher, wrong, nullptr, nullptr, 0),
                  nullptr);
        EXPECT_EQ(DDS_DomainParticipant_delete_topic(node_.participant, wrong),
                  DDS_RETCODE_BAD_PARAMETER);
    });
    with_others<DDS_ContentFilteredTopic>(filtered_, [&](DDS_ContentFilteredTopic *wrong) {
        EXPECT_EQ(DDS_ContentFilteredTopic_get_related_topic(wrong), nullptr);
        EXPECT_EQ(DDS_DomainParticipant_delete_contentfilteredtopic(node_.participant, wrong),
                  DDS_RETCODE_BAD_PARAMETER);
    });
    with_others<DDS_TopicDescription>(node_.topic, [&](DDS_TopicDescription *wrong) {
        if (static_cast<void *>(wrong) == filtered_) {
            return;
        }
        EXPECT_EQ(DDS_TopicDescription_get_name(wrong), nullptr);
        EXPECT_EQ(DDS_Topic_narrow(wrong), nullptr);
        EXPECT_EQ(DDS_Subscriber_create_datareader(node_.subscriber, wrong, nullptr, nullptr, 0),
                  nullptr);
    });
}

TEST_F(KoltWrongKinds, AsAParticipant) {
    with_others<DDS_DomainParticipant>(node_.participant, [&](DDS_DomainParticipant *wrong) {
        EXPECT_EQ(DDS_DomainParticipant_create_publisher(wrong, nullptr, nullptr, 0), nullptr);
        EXPECT_EQ(DDS_DomainParticipant_delete_contained_entities(wrong),
                  DDS_RETCODE_BAD_PARAMETER);
        EXPECT_EQ(DDS_DomainParticipantFactory_delete_participant(node_.factory, wrong),
                  DDS_RETCODE_BAD_PARAMETER);
    });
}

TEST_F(KoltWrongKinds, AsAnotherCondition) {
    DDS_ReadCondition *const read = DDS_DataReader_create_readcondition(
        reader_, DDS_ANY_SAMPLE_STATE, DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE);
    DDS_GuardCondition *const guard = DDS_GuardCondition_new();
    DDS_StatusCondition *const status =
        DDS_Entity_get_statuscondition(DDS_DataReader_as_entity(reader_));
    Strings none({});
    for (void *const wrong :
         {static_cast<void *>(read), static_cast<void *>(guard), static_cast<void *>(status)}) {
        auto *const query = static_cast<DDS_QueryCondition *>(wrong);
        EXPECT_EQ(DDS_QueryCondition_get_query_expression(query), nullptr);
        EXPECT_EQ(DDS_QueryCondition_get_query_parameters(query, none.get()),
                  DDS_RETCODE_BAD_PARAMETER);
    }
    for (void *const wrong : {static_cast<void *>(guard), static_cast<void *>(status)}) {
        auto *const as_read = static_cast<DDS_ReadCondition *>(wrong);
        EXPECT_EQ(DDS_ReadCondition_get_datareader(as_read), nullptr);
        EXPECT_EQ(DDS_DataReader_delete_readcondition(reader_, as_read), DDS_RETCODE_BAD_PARAMETER);
        KOLT_ReadSelection selected = selection(true);
        selected.condition = as_read;
        DDS_ReturnCode_t code = DDS_RETCODE_OK;
        access(reader_, selected, &code);
        EXPECT_EQ(code, DDS_RETCODE_BAD_PARAMETER);
    }
    for (void *const wrong : {static_cast<void *>(read), static_cast<void *>(status)}) {
        auto *const as_guard = static_cast<DDS_GuardCondition *>(wrong);
        EXPECT_EQ(DDS_GuardCondition_set_trigger_value(as_guard, DDS_BOOLEAN_TRUE),
                  DDS_RETCODE_BAD_PARAMETER);
        EXPECT_EQ(DDS_GuardCondition_delete(as_guard), DDS_RETCODE_BAD_PARAMETER);
    }
    EXPECT_EQ(
        DDS_StatusCondition_set_enabled_statuses(
            static_cast<DDS_StatusCondition *>(static_cast<void *>(guard)), DDS_STATUS_MASK_ALL),
        DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_GuardCondition_delete(guard), DDS_RETCODE_OK);
}

}  // namespace
