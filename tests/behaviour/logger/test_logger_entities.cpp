// SPDX-License-Identifier: Apache-2.0
// The DDS entities that the logger creates, their QoS, and the entities that it leaves alone.
#include <gtest/gtest.h>
#include <vur_dl/vur_dl.h>

#include <memory>
#include <string>

#include "kolt_internal/owned_qos.hpp"
#include "support/logger/logger.h"
#include "support/platform/process.h"

namespace {

using support::Logger;
using support::StdoutCapture;

constexpr char kFilteredTopic[] = "CommandRequestContentFilteredTopic";
constexpr char kMissingProfile[] =
    "DL Warning: VUR_DL_DDSEntities_create: QoS Library and Profile cannot be found, using default "
    "QoS";

// A participant of the application's own, which the logger borrows.
class Borrowed {
  public:
    explicit Borrowed(int domain, bool autoenable = true) {
        DDS_DomainParticipantQos qos;
        DDS_DomainParticipantQos_initialize(&qos);
        qos.entity_factory.autoenable_created_entities = autoenable ? 1 : 0;
        participant_ =
            DDS_DomainParticipantFactory_create_participant(factory(), domain, &qos, nullptr, 0);
        DDS_DomainParticipantQos_finalize(&qos);
    }
    ~Borrowed() {
        EXPECT_EQ(DDS_DomainParticipant_delete_contained_entities(participant_), DDS_RETCODE_OK);
        EXPECT_EQ(DDS_DomainParticipantFactory_delete_participant(factory(), participant_),
                  DDS_RETCODE_OK);
    }
    Borrowed(const Borrowed &) = delete;
    Borrowed &operator=(const Borrowed &) = delete;
    DDS_DomainParticipant *get() const { return participant_; }
    DDS_TopicDescription *topic(const char *name) const {
        return DDS_DomainParticipant_lookup_topicdescription(participant_, name);
    }

  private:
    static DDS_DomainParticipantFactory *factory() {
        return DDS_DomainParticipantFactory_get_instance();
    }
    DDS_DomainParticipant *participant_ = nullptr;
};

DDS_DataWriter *log_writer() {
    return VUR_DL_LogMessageDataWriter_as_datawriter(
        VUR_DL_DistLogger_getLogMessageWriteThread()->logMessageWriter);
}

// Reads the QoS of the logger's writer of a topic.
void read_writer_qos(const char *topic_name, kolt::qos::WriterQos &qos) {
    DDS_DataWriter *writer =
        DDS_Publisher_lookup_datawriter(DDS_DataWriter_get_publisher(log_writer()), topic_name);
    EXPECT_EQ(DDS_DataWriter_get_qos(writer, qos.get()), DDS_RETCODE_OK) << topic_name;
}

TEST(LoggerEntities, WritersHaveTheQosOfTheirTopic) {
    const Logger logger({.domain = 155, .kind = "pump"});
    ASSERT_NE(logger.get(), nullptr);
    const struct {
        const char *topic;
        DDS_DurabilityQosPolicyKind durability;
        DDS_Long depth;
    } cases[] = {
        {VUR_DL_LOG_TOPIC_NAME, DDS_TRANSIENT_LOCAL_DURABILITY_QOS, 10},
        {VUR_DL_STATE_TOPIC_NAME, DDS_TRANSIENT_LOCAL_DURABILITY_QOS, 1},
        {VUR_DL_COMMAND_RESPONSE_TOPIC_NAME, DDS_VOLATILE_DURABILITY_QOS, 10},
    };
    for (const auto &expected : cases) {
        kolt::qos::WriterQos qos;
        read_writer_qos(expected.topic, qos);
        EXPECT_EQ(qos->reliability.kind, DDS_RELIABLE_RELIABILITY_QOS) << expected.topic;
        EXPECT_EQ(qos->durability.kind, expected.durability) << expected.topic;
        EXPECT_EQ(qos->history.kind, DDS_KEEP_LAST_HISTORY_QOS) << expected.topic;
        EXPECT_EQ(qos->history.depth, expected.depth) << expected.topic;
        EXPECT_EQ(qos->latency_budget.duration.sec, 0);
        EXPECT_EQ(qos->latency_budget.duration.nanosec, 0U);
        EXPECT_EQ(qos->ownership.kind, DDS_SHARED_OWNERSHIP_QOS);
        EXPECT_EQ(qos->liveliness.kind, DDS_AUTOMATIC_LIVELINESS_QOS);
        EXPECT_EQ(qos->destination_order.kind, DDS_BY_RECEPTION_TIMESTAMP_DESTINATIONORDER_QOS);
        EXPECT_TRUE(qos->protocol.vendor_specific_entity);
    }
}

TEST(LoggerEntities, TheParticipantCarriesTheKindAsItsName) {
    const Logger logger({.domain = 156, .kind = "pump"});
    ASSERT_NE(logger.get(), nullptr);
    DDS_DomainParticipant *participant =
        DDS_Publisher_get_participant(DDS_DataWriter_get_publisher(log_writer()));
    EXPECT_EQ(DDS_DomainParticipant_get_domain_id(participant), 156);
    DDS_DomainParticipantQos qos;
    DDS_DomainParticipantQos_initialize(&qos);
    EXPECT_EQ(DDS_DomainParticipant_get_qos(participant, &qos), DDS_RETCODE_OK);
    EXPECT_STREQ(qos.participant_name.name, "pump");
    EXPECT_TRUE(qos.protocol.vendor_specific_entity);
    EXPECT_NE(qos.wire_protocol.rtps_host_id, 0U);
    DDS_DomainParticipantQos_finalize(&qos);
}

TEST(LoggerEntities, TheCommandFilterNamesTheParticipantInUse) {
    const Borrowed participant(157);
    {
        const Logger logger({.domain = 0, .participant = participant.get()});
        ASSERT_NE(logger.get(), nullptr);
        DDS_ContentFilteredTopic *filtered =
            DDS_ContentFilteredTopic_narrow(participant.topic(kFilteredTopic));
        ASSERT_NE(filtered, nullptr);
        EXPECT_STREQ(
            DDS_ContentFilteredTopic_get_filter_expression(filtered),
            "targetHostAndAppId.rtps_host_id = %0 and targetHostAndAppId.rtps_app_id = %1");
        DDS_DomainParticipantQos qos;
        DDS_DomainParticipantQos_initialize(&qos);
        DDS_DomainParticipant_get_qos(participant.get(), &qos);
        DDS_StringSeq parameters = DDS_SEQUENCE_INITIALIZER;
        EXPECT_EQ(DDS_ContentFilteredTopic_get_expression_parameters(filtered, &parameters),
                  DDS_RETCODE_OK);
        EXPECT_EQ(DDS_StringSeq_get_length(&parameters), 2U);
        EXPECT_EQ(std::to_string(static_cast<int>(qos.wire_protocol.rtps_host_id)),
                  DDS_StringSeq_get(&parameters, 0));
        EXPECT_EQ(std::to_string(static_cast<int>(qos.wire_protocol.rtps_app_id)),
                  DDS_StringSeq_get(&parameters, 1));
        DDS_StringSeq_finalize(&parameters);
        DDS_DomainParticipantQos_finalize(&qos);
    }
    EXPECT_EQ(participant.topic(kFilteredTopic), nullptr);
}

TEST(LoggerEntities, WithoutRemoteAdministrationTwoTopicsAreAll) {
    const Borrowed participant(158);
    const Logger logger({.remote = false, .participant = participant.get()});
    ASSERT_NE(logger.get(), nullptr);
    EXPECT_NE(participant.topic(VUR_DL_LOG_TOPIC_NAME), nullptr);
    EXPECT_NE(participant.topic(VUR_DL_STATE_TOPIC_NAME), nullptr);
    EXPECT_EQ(participant.topic(VUR_DL_COMMAND_REQUEST_TOPIC_NAME), nullptr);
    EXPECT_EQ(participant.topic(VUR_DL_COMMAND_RESPONSE_TOPIC_NAME), nullptr);
    EXPECT_EQ(participant.topic(kFilteredTopic), nullptr);
    EXPECT_EQ(DDS_Publisher_lookup_datawriter(DDS_DataWriter_get_publisher(log_writer()),
                                              VUR_DL_COMMAND_RESPONSE_TOPIC_NAME),
              nullptr);
}

TEST(LoggerEntities, ATopicThatExistsIsSharedAndSurvives) {
    const Borrowed participant(159);
    ASSERT_EQ(VUR_DL_LogMessageTypeSupport_register_type(participant.get(), VUR_DL_LOG_TYPE_NAME),
              DDS_RETCODE_OK);
    DDS_Topic *topic = DDS_DomainParticipant_create_topic(participant.get(), VUR_DL_LOG_TOPIC_NAME,
                                                          VUR_DL_LOG_TYPE_NAME,
                                                          &DDS_TOPIC_QOS_DEFAULT, nullptr, 0);
    ASSERT_NE(topic, nullptr);
    {
        const Logger logger({.participant = participant.get()});
        ASSERT_NE(logger.get(), nullptr);
        EXPECT_EQ(topic, DDS_DataWriter_get_topic(log_writer()));
    }
    EXPECT_EQ(DDS_Topic_as_topicdescription(topic), participant.topic(VUR_DL_LOG_TOPIC_NAME));
    EXPECT_EQ(participant.topic(VUR_DL_STATE_TOPIC_NAME), nullptr);
}

class LoggerMissingProfile : public testing::TestWithParam<std::pair<const char *, const char *>> {
};

TEST_P(LoggerMissingProfile, IsAWarningAndDefaultsApply) {
    const auto [library, profile] = GetParam();
    VUR_DL_Options *options = VUR_DL_Options_createDefault();
    VUR_DL_Options_setDomainId(options, 160);
    VUR_DL_Options_setQosLibrary(options, library);
    VUR_DL_Options_setQosProfile(options, profile);
    ASSERT_EQ(VUR_DL_DistLogger_setOptions(options), 1);
    VUR_DL_Options_delete(options);
    {
        StdoutCapture capture;
        ASSERT_NE(VUR_DL_DistLogger_getInstance(), nullptr);
        EXPECT_EQ(capture.count(kMissingProfile), 1) << capture.text();
        kolt::qos::WriterQos qos;
        read_writer_qos(VUR_DL_LOG_TOPIC_NAME, qos);
        EXPECT_EQ(qos->history.depth, 10);
    }
    EXPECT_EQ(VUR_DL_DistLogger_finalizeInstance(), 0);
}
INSTANTIATE_TEST_SUITE_P(Names, LoggerMissingProfile,
                         testing::Values(std::pair{"nowhere", "none"}, std::pair{"nowhere", ""},
                                         std::pair{"", "none"}));

TEST(LoggerEntities, DisabledEntitiesWriteNoState) {
    const Borrowed participant(161, false);
    const Logger logger({.participant = participant.get()});
    ASSERT_NE(logger.get(), nullptr);
    EXPECT_FALSE(DDS_Entity_is_enabled(DDS_DataWriter_as_entity(log_writer())));
    EXPECT_EQ(VUR_DL_DistLogger_writeState(logger.get()), 1);
    EXPECT_EQ(VUR_DL_DistLogger_setFilterLevel(logger.get(), 700), 0);
}

}  // namespace
