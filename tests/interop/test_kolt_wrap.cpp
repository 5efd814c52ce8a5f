// SPDX-License-Identifier: Apache-2.0
// Participants that the application created with the engine itself.
#include <gtest/gtest.h>

#include "support/platform/pubsub.h"

#include <cstdint>

// Of the engine's interface, declared here because its headers and KOLT's do not go together.
extern "C" {
typedef std::int32_t dds_entity_t;  // NOLINT(readability-identifier-naming): the engine's name
struct dds_qos;
struct dds_listener;
dds_entity_t dds_create_participant(std::uint32_t domain, const dds_qos *qos,
                                    const dds_listener *listener);
dds_entity_t dds_create_publisher(dds_entity_t participant, const dds_qos *qos,
                                  const dds_listener *listener);
std::int32_t dds_get_parent(dds_entity_t entity);
std::int32_t dds_delete(dds_entity_t entity);
}

namespace {

using namespace support;

TEST(KoltWrap, WrapperIsUsedLikeAnyParticipant) {
    const dds_entity_t engine = dds_create_participant(14, nullptr, nullptr);
    ASSERT_GT(engine, 0);
    DDS_DomainParticipant *const wrapper = KOLT_DomainParticipant_wrap(engine);
    ASSERT_NE(wrapper, nullptr);
    EXPECT_EQ(KOLT_DomainParticipant_wrap(engine), wrapper);  // once for a handle
    EXPECT_EQ(KOLT_DomainParticipant_engine_handle(wrapper), engine);
    EXPECT_EQ(DDS_DomainParticipant_get_domain_id(wrapper), 14);
    DDS_DomainParticipantFactory *const factory =
        DDS_DomainParticipant_get_participant_factoryI(wrapper);
    EXPECT_EQ(factory, DDS_DomainParticipantFactory_get_instance());
    EXPECT_TRUE(DDS_Entity_is_enabled(DDS_DomainParticipant_as_entity(wrapper)));
    ParticipantQos qos;
    ASSERT_EQ(DDS_DomainParticipant_get_qos(wrapper, qos.get()), DDS_RETCODE_OK);
    EXPECT_NE(qos->wire_protocol.rtps_host_id, 0U);

    Node there(14);
    ASSERT_EQ(
        DDS_DomainParticipant_register_type(wrapper, kMessageTypeName, &message_plugin(), nullptr),
        DDS_RETCODE_OK);
    DDS_Topic *const topic = DDS_DomainParticipant_create_topic(
        wrapper, own("messages").c_str(), kMessageTypeName, nullptr, nullptr, DDS_STATUS_MASK_NONE);
    ASSERT_NE(topic, nullptr);
    DDS_Publisher *const publisher =
        DDS_DomainParticipant_create_publisher(wrapper, nullptr, nullptr, DDS_STATUS_MASK_NONE);
    DDS_DataWriter *const writer =
        DDS_Publisher_create_datawriter(publisher, topic, nullptr, nullptr, DDS_STATUS_MASK_NONE);
    DDS_DataReader *const reader = there.reader();
    ASSERT_TRUE(is_matched(writer));
    ASSERT_EQ(write(writer, 1, 1, 1), DDS_RETCODE_OK);
    EXPECT_EQ(take_at_least(reader, 1).size(), 1U);

    EXPECT_EQ(KOLT_DomainParticipant_unwrap(wrapper), DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(DDS_DomainParticipantFactory_delete_participant(factory, wrapper),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(DDS_DomainParticipant_delete_contained_entities(wrapper), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DomainParticipantFactory_delete_participant(factory, wrapper),
              DDS_RETCODE_PRECONDITION_NOT_MET);  // it is the application's
    EXPECT_EQ(KOLT_DomainParticipant_unwrap(wrapper), DDS_RETCODE_OK);
    EXPECT_GE(dds_get_parent(engine), 0);  // the engine's participant lives on
    EXPECT_EQ(dds_delete(engine), 0);
}

TEST(KoltWrap, OnlyParticipantsCanBeWrapped) {
    const dds_entity_t engine = dds_create_participant(14, nullptr, nullptr);
    ASSERT_GT(engine, 0);
    const dds_entity_t publisher = dds_create_publisher(engine, nullptr, nullptr);
    ASSERT_GT(publisher, 0);
    EXPECT_EQ(KOLT_DomainParticipant_wrap(publisher), nullptr);
    EXPECT_EQ(dds_delete(engine), 0);
    EXPECT_EQ(KOLT_DomainParticipant_wrap(engine), nullptr);
}

}  // namespace
