// SPDX-License-Identifier: Apache-2.0
// Entities: creation, containment, names, preconditions, enabling.
#include <gtest/gtest.h>

#include "support/platform/pubsub.h"

namespace {

using namespace support;

TEST(KoltEntities, FactoryKnowsItsParticipants) {
    DDS_DomainParticipantFactory *const factory = DDS_DomainParticipantFactory_get_instance();
    ASSERT_NE(factory, nullptr);
    EXPECT_EQ(DDS_DomainParticipantFactory_get_instance(), factory);
    EXPECT_EQ(DDS_DomainParticipantFactory_lookup_participant(factory, 10), nullptr);
    {
        Node node(10);
        EXPECT_EQ(DDS_DomainParticipantFactory_lookup_participant(factory, 10), node.participant);
        EXPECT_EQ(DDS_DomainParticipantFactory_lookup_participant(factory, 11), nullptr);
        EXPECT_EQ(DDS_DomainParticipant_get_participant_factoryI(node.participant), factory);
        EXPECT_EQ(DDS_DomainParticipant_get_domain_id(node.participant), 10);
        EXPECT_EQ(DDS_DomainParticipantFactory_finalize_instance(),
                  DDS_RETCODE_PRECONDITION_NOT_MET);
        EXPECT_EQ(DDS_DomainParticipantFactory_delete_participant(factory, node.participant),
                  DDS_RETCODE_PRECONDITION_NOT_MET);  // it contains entities
        EXPECT_EQ(KOLT_DomainParticipant_unwrap(node.participant),
                  DDS_RETCODE_PRECONDITION_NOT_MET);
        EXPECT_GT(KOLT_DomainParticipant_engine_handle(node.participant), 0);
    }
    EXPECT_EQ(DDS_DomainParticipantFactory_lookup_participant(factory, 10), nullptr);
    EXPECT_EQ(DDS_DomainParticipantFactory_finalize_instance(), DDS_RETCODE_OK);
}

TEST(KoltEntities, DomainIdsHaveBounds) {
    DDS_DomainParticipantFactory *const factory = DDS_DomainParticipantFactory_get_instance();
    for (const DDS_DomainId_t id : {-1, 231, 100000}) {
        EXPECT_EQ(DDS_DomainParticipantFactory_create_participant(factory, id, nullptr, nullptr,
                                                                  DDS_STATUS_MASK_NONE),
                  nullptr);
    }
}

TEST(KoltEntities, NullArguments) {
    DDS_DomainParticipantFactory *const factory = DDS_DomainParticipantFactory_get_instance();
    EXPECT_EQ(DDS_DomainParticipantFactory_create_participant(nullptr, 10, nullptr, nullptr, 0),
              nullptr);
    EXPECT_EQ(DDS_DomainParticipantFactory_delete_participant(factory, nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DomainParticipant_get_participant_factoryI(nullptr), nullptr);
    EXPECT_EQ(DDS_DomainParticipant_get_qos(nullptr, nullptr), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DomainParticipant_create_topic(nullptr, "a", "b", nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(DDS_Publisher_create_datawriter(nullptr, nullptr, nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(DDS_Subscriber_create_datareader(nullptr, nullptr, nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(DDS_Entity_enable(nullptr), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_FALSE(DDS_Entity_is_enabled(nullptr));
    EXPECT_EQ(DDS_Entity_get_instance_handle(nullptr), DDS_HANDLE_NIL);
    EXPECT_EQ(DDS_Entity_get_statuscondition(nullptr), nullptr);
    EXPECT_EQ(DDS_DataWriter_as_entity(nullptr), nullptr);
    EXPECT_EQ(DDS_Topic_as_topicdescription(nullptr), nullptr);
    EXPECT_EQ(DDS_Topic_narrow(nullptr), nullptr);
    EXPECT_EQ(DDS_DataWriter_get_endpoint_type_name(nullptr), nullptr);
    EXPECT_EQ(DDS_DataReader_get_listener(nullptr).listener_data, nullptr);
    EXPECT_EQ(DDS_GuardCondition_delete(nullptr), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_WaitSet_delete(nullptr), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_FALSE(DDS_Condition_get_trigger_value(nullptr));
    EXPECT_EQ(KOLT_DomainParticipant_wrap(0), nullptr);
    EXPECT_EQ(KOLT_DomainParticipant_wrap(-3), nullptr);
    EXPECT_LE(KOLT_DomainParticipant_engine_handle(nullptr), 0);
}

TEST(KoltEntities, TypesAreRegisteredByName) {
    Node node(10);
    EXPECT_EQ(DDS_DomainParticipant_register_type(node.participant, kMessageTypeName,
                                                  &message_plugin(), nullptr),
              DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DomainParticipant_register_type(node.participant, kMessageTypeName,
                                                  &point_plugin(), nullptr),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(
        DDS_DomainParticipant_register_type(node.participant, "other", &point_plugin(), nullptr),
        DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DomainParticipant_register_type(node.participant, "", &point_plugin(), nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DomainParticipant_register_type(node.participant, "x", nullptr, nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DomainParticipant_unregister_type(node.participant, kMessageTypeName),
              DDS_RETCODE_PRECONDITION_NOT_MET);  // the topic uses it
    EXPECT_EQ(DDS_DomainParticipant_unregister_type(node.participant, "other"), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DomainParticipant_unregister_type(node.participant, "other"),
              DDS_RETCODE_BAD_PARAMETER);
}

TEST(KoltEntities, TopicsAreFoundByName) {
    Node node(10);
    DDS_TopicDescription *const description = DDS_Topic_as_topicdescription(node.topic);
    const char *const name = DDS_TopicDescription_get_name(description);
    EXPECT_EQ(DDS_DomainParticipant_lookup_topicdescription(node.participant, name), description);
    EXPECT_EQ(DDS_Topic_narrow(description), node.topic);
    EXPECT_EQ(DDS_DomainParticipant_lookup_topicdescription(node.participant, "nosuch"), nullptr);
    EXPECT_EQ(DDS_DomainParticipant_create_topic(node.participant, name, kMessageTypeName, nullptr,
                                                 nullptr, DDS_STATUS_MASK_NONE),
              nullptr);  // taken
    EXPECT_EQ(DDS_DomainParticipant_create_topic(node.participant, "a.b", kMessageTypeName, nullptr,
                                                 nullptr, DDS_STATUS_MASK_NONE),
              nullptr);  // no name
    EXPECT_EQ(DDS_DomainParticipant_create_topic(node.participant, "new", "nosuch", nullptr,
                                                 nullptr, DDS_STATUS_MASK_NONE),
              nullptr);  // no such type
    DDS_DataWriter *const writer = node.writer();
    EXPECT_EQ(DDS_DomainParticipant_delete_topic(node.participant, node.topic),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(DDS_Publisher_delete_datawriter(node.publisher, writer), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DomainParticipant_delete_topic(node.participant, node.topic), DDS_RETCODE_OK);
}

TEST(KoltEntities, EndpointsKnowTheirPlace) {
    Node node(10);
    Node other(10);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    const char *const name =
        DDS_TopicDescription_get_name(DDS_Topic_as_topicdescription(node.topic));
    EXPECT_EQ(DDS_DataWriter_get_topic(writer), node.topic);
    EXPECT_EQ(DDS_DataWriter_get_publisher(writer), node.publisher);
    EXPECT_EQ(DDS_Publisher_get_participant(node.publisher), node.participant);
    EXPECT_EQ(DDS_DataReader_get_subscriber(reader), node.subscriber);
    EXPECT_EQ(DDS_Subscriber_get_participant(node.subscriber), node.participant);
    EXPECT_STREQ(DDS_DataWriter_get_endpoint_type_name(writer),
                 message_plugin().endpoint_type_name);
    EXPECT_STREQ(DDS_DataReader_get_endpoint_type_name(reader),
                 message_plugin().endpoint_type_name);
    EXPECT_EQ(DDS_Publisher_lookup_datawriter(node.publisher, name), writer);
    EXPECT_EQ(DDS_Publisher_lookup_datawriter(node.publisher, "nosuch"), nullptr);
    EXPECT_EQ(DDS_Subscriber_lookup_datareader(node.subscriber, name), reader);
    DDS_Entity *const entity = DDS_DataWriter_as_entity(writer);
    EXPECT_EQ(DDS_StatusCondition_get_entity(DDS_Entity_get_statuscondition(entity)), entity);
    const DDS_InstanceHandle_t handle = DDS_Entity_get_instance_handle(entity);
    EXPECT_NE(handle, DDS_HANDLE_NIL);
    EXPECT_TRUE(DDS_DomainParticipant_contains_entity(node.participant, handle));
    EXPECT_FALSE(DDS_DomainParticipant_contains_entity(other.participant, handle));
    // Refused: these belong to another parent.
    EXPECT_EQ(DDS_Publisher_delete_datawriter(other.publisher, writer),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(DDS_Subscriber_delete_datareader(other.subscriber, reader),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(DDS_DomainParticipant_delete_publisher(other.participant, node.publisher),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(DDS_DomainParticipant_delete_topic(other.participant, node.topic),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(DDS_Publisher_create_datawriter(other.publisher, node.topic, nullptr, nullptr, 0),
              nullptr);
    EXPECT_EQ(DDS_Subscriber_create_datareader(
                  other.subscriber, DDS_Topic_as_topicdescription(node.topic), nullptr, nullptr, 0),
              nullptr);
    // Refused while they contain something.
    EXPECT_EQ(DDS_DomainParticipant_delete_publisher(node.participant, node.publisher),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(DDS_DomainParticipant_delete_subscriber(node.participant, node.subscriber),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(DDS_Publisher_delete_contained_entities(node.publisher), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_Subscriber_delete_contained_entities(node.subscriber), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DomainParticipant_delete_publisher(node.participant, node.publisher),
              DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DomainParticipant_delete_subscriber(node.participant, node.subscriber),
              DDS_RETCODE_OK);
}

TEST(KoltEntities, SamplesOfTheWriter) {
    Node node(10);
    DDS_DataWriter *const writer = node.writer();
    void *const sample = DDS_DataWriter_create_data(writer);
    ASSERT_NE(sample, nullptr);
    EXPECT_EQ(DDS_DataWriter_write(writer, sample, DDS_HANDLE_NIL), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DataWriter_delete_data(writer, sample), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DataWriter_delete_data(writer, nullptr), DDS_RETCODE_BAD_PARAMETER);
}

TEST(KoltEntities, InjectingSamplesIsNotSupported) {
    Node node(10);
    DDS_DataReader *const reader = node.reader();
    Record<Message> message(message_type());
    const DDS_WriteParams_t params = DDS_WRITEPARAMS_DEFAULT;
    EXPECT_EQ(DDS_DataReader_add_sample_to_remote_writer_queue(reader, message.get(), &params),
              DDS_RETCODE_UNSUPPORTED);
    EXPECT_EQ(DDS_DataReader_add_dispose_to_remote_writer_queue(reader, nullptr, &params),
              DDS_RETCODE_BAD_PARAMETER);
    DDS_Boolean consistent = DDS_BOOLEAN_FALSE;
    const DDS_SampleInfo info{};
    EXPECT_EQ(DDS_DataReader_is_data_consistent(reader, &consistent, message.get(), &info),
              DDS_RETCODE_OK);
    EXPECT_TRUE(consistent);
}

// ---- Disabled entities --------------------------------------------------------------------------

TEST(KoltEntities, DisabledWriterAndReader) {
    Node node(12);
    PublisherQos publisher_qos;
    publisher_qos->entity_factory.autoenable_created_entities = DDS_BOOLEAN_FALSE;
    SubscriberQos subscriber_qos;
    subscriber_qos->entity_factory.autoenable_created_entities = DDS_BOOLEAN_FALSE;
    ASSERT_EQ(DDS_Publisher_set_qos(node.publisher, publisher_qos.get()), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_Subscriber_set_qos(node.subscriber, subscriber_qos.get()), DDS_RETCODE_OK);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    DDS_Entity *const entity = DDS_DataWriter_as_entity(writer);
    EXPECT_FALSE(DDS_Entity_is_enabled(entity));
    EXPECT_EQ(write(writer, 1, 1, 1), DDS_RETCODE_NOT_ENABLED);
    DDS_ReturnCode_t code = DDS_RETCODE_OK;
    access(reader, selection(true), &code);
    EXPECT_EQ(code, DDS_RETCODE_NOT_ENABLED);
    EXPECT_EQ(DDS_Entity_get_status_changes(entity), 0U);
    EXPECT_EQ(DDS_DataReader_create_readcondition(reader, DDS_ANY_SAMPLE_STATE, DDS_ANY_VIEW_STATE,
                                                  DDS_ANY_INSTANCE_STATE),
              nullptr);
    DDS_PublicationMatchedStatus status{};
    EXPECT_EQ(DDS_DataWriter_get_publication_matched_status(writer, &status), DDS_RETCODE_OK);
    EXPECT_EQ(status.total_count, 0);

    // Policies that cannot change later can change before the entity is enabled.
    WriterQos qos;
    ASSERT_EQ(DDS_DataWriter_get_qos(writer, qos.get()), DDS_RETCODE_OK);
    qos->durability.kind = DDS_TRANSIENT_LOCAL_DURABILITY_QOS;
    const DDS_Short xcdr2 = DDS_XCDR2_DATA_REPRESENTATION;
    DDS_ShortSeq_from_array(&qos->representation.value, &xcdr2, 1);
    EXPECT_EQ(DDS_DataWriter_set_qos(writer, qos.get()), DDS_RETCODE_OK);

    // A waitset watches what is not there yet.
    DDS_WaitSet *const waitset = DDS_WaitSet_new();
    DDS_StatusCondition *const condition = DDS_Entity_get_statuscondition(entity);
    DDS_StatusCondition_set_enabled_statuses(condition, DDS_PUBLICATION_MATCHED_STATUS);
    EXPECT_EQ(DDS_WaitSet_attach_condition(waitset, DDS_StatusCondition_as_condition(condition)),
              DDS_RETCODE_OK);
    EXPECT_FALSE(DDS_Condition_get_trigger_value(DDS_StatusCondition_as_condition(condition)));

    EXPECT_EQ(DDS_Entity_enable(DDS_DataReader_as_entity(reader)), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_Entity_enable(entity), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_Entity_enable(entity), DDS_RETCODE_OK);
    EXPECT_TRUE(DDS_Entity_is_enabled(entity));
    DDS_ConditionSeq active = DDS_SEQUENCE_INITIALIZER;
    const DDS_Duration_t timeout = {20, 0};
    EXPECT_EQ(DDS_WaitSet_wait(waitset, &active, &timeout), DDS_RETCODE_OK);
    DDS_ConditionSeq_finalize(&active);
    EXPECT_EQ(write(writer, 1, 1, 1), DDS_RETCODE_OK);
    EXPECT_EQ(take_at_least(reader, 1).size(), 1U);
    EXPECT_EQ(DDS_WaitSet_delete(waitset), DDS_RETCODE_OK);
}

TEST(KoltEntities, DisabledParticipantEnablesWhatItContains) {
    DDS_DomainParticipantFactory *const factory = DDS_DomainParticipantFactory_get_instance();
    FactoryQos factory_qos;
    factory_qos->entity_factory.autoenable_created_entities = DDS_BOOLEAN_FALSE;
    ASSERT_EQ(DDS_DomainParticipantFactory_set_qos(factory, factory_qos.get()), DDS_RETCODE_OK);
    {
        Node node(13);
        Strings parameters({"1"});
        DDS_ContentFilteredTopic *const filtered =
            DDS_DomainParticipant_create_contentfilteredtopic(
                node.participant, "filtered", node.topic, "level = %0", parameters.get());
        ASSERT_NE(filtered, nullptr);
        DDS_DataWriter *const writer = node.writer();
        DDS_DataReader *const reader =
            node.reader({}, DDS_ContentFilteredTopic_as_topicdescription(filtered));
        ASSERT_NE(writer, nullptr);
        ASSERT_NE(reader, nullptr);
        EXPECT_FALSE(DDS_Entity_is_enabled(DDS_DomainParticipant_as_entity(node.participant)));
        EXPECT_EQ(DDS_Entity_enable(DDS_DataWriter_as_entity(writer)),
                  DDS_RETCODE_PRECONDITION_NOT_MET);
        EXPECT_EQ(DDS_Entity_enable(DDS_Publisher_as_entity(node.publisher)),
                  DDS_RETCODE_PRECONDITION_NOT_MET);
        EXPECT_EQ(DDS_Entity_enable(DDS_Topic_as_entity(node.topic)),
                  DDS_RETCODE_PRECONDITION_NOT_MET);
        ASSERT_EQ(DDS_Entity_enable(DDS_DomainParticipant_as_entity(node.participant)),
                  DDS_RETCODE_OK);
        EXPECT_TRUE(DDS_Entity_is_enabled(DDS_Subscriber_as_entity(node.subscriber)));
        EXPECT_TRUE(DDS_Entity_is_enabled(DDS_DataReader_as_entity(reader)));
        ASSERT_TRUE(is_matched(writer));
        EXPECT_EQ(write(writer, 1, 2, 1), DDS_RETCODE_OK);
        EXPECT_EQ(write(writer, 1, 1, 2), DDS_RETCODE_OK);
        const auto got = take_at_least(reader, 1);
        ASSERT_EQ(got.size(), 1U);
        EXPECT_EQ(got[0].number, 2);
    }
    EXPECT_EQ(DDS_DomainParticipantFactory_finalize_instance(), DDS_RETCODE_OK);
}

}  // namespace
