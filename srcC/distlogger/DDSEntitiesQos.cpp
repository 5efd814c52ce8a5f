// SPDX-License-Identifier: Apache-2.0
// The QoS of each entity: the one of the options' profile, or the default one, with the logger's
// needs on top.
#include <strings.h>

#include <cstring>

#include "DDSEntitiesRecord.hpp"

namespace {

bool profile_applies(VUR_DL_DDSEntities &self) {
    return VUR_DL_DDSEntities_doesQosLibraryAndProfileExist(&self, self.qosLibrary,
                                                            self.qosProfile) != 0;
}

bool is_topic(const char *name, const char *expected) {
    return name != nullptr && strcasecmp(name, expected) == 0;
}

template <typename GroupQos>
void present_by_instance(GroupQos &qos) {
    qos.presentation.access_scope = DDS_INSTANCE_PRESENTATION_QOS;
    qos.presentation.coherent_access = DDS_BOOLEAN_FALSE;
    qos.presentation.ordered_access = DDS_BOOLEAN_FALSE;
    qos.protocol.vendor_specific_entity = DDS_BOOLEAN_TRUE;
}

template <typename EndpointQos>
void keep_last(EndpointQos &qos, DDS_Long depth) {
    qos.history.kind = DDS_KEEP_LAST_HISTORY_QOS;
    qos.history.depth = depth;
}

struct WriterNeeds {
    const char *topic_name;
    bool transient_local;
    DDS_Long depth;  // used without a profile
};
constexpr WriterNeeds kWriterNeeds[] = {
    {VUR_DL_LOG_TOPIC_NAME, true, 10},
    {VUR_DL_STATE_TOPIC_NAME, true, 1},
    {VUR_DL_COMMAND_RESPONSE_TOPIC_NAME, false, 10},
};
constexpr DDS_Long kCommandRequestDepth = 10;

void apply_writer_needs(DDS_DataWriterQos &qos, const char *topic_name, bool from_profile) {
    for (const WriterNeeds &needs : kWriterNeeds) {
        if (!is_topic(topic_name, needs.topic_name)) {
            continue;
        }
        qos.reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
        if (needs.transient_local) {
            qos.durability.kind = DDS_TRANSIENT_LOCAL_DURABILITY_QOS;
        }
        if (!from_profile) {
            keep_last(qos, needs.depth);
        }
    }
}

}  // namespace

int VUR_DL_DDSEntities_doesQosLibraryAndProfileExist(VUR_DL_DDSEntities *self, const char *library,
                                                     const char *profile) {
    if (library == nullptr || profile == nullptr || *library == '\0' || *profile == '\0') {
        return 0;
    }
    DDS_StringSeq names = DDS_SEQUENCE_INITIALIZER;
    static_cast<void>(
        DDS_DomainParticipantFactory_get_qos_profiles(self->factory, &names, library));
    bool found = false;
    const auto length = static_cast<DDS_Long>(DDS_StringSeq_get_length(&names));
    for (DDS_Long i = 0; i < length && !found; ++i) {
        found = std::strcmp(*DDS_StringSeq_get_reference(&names, i), profile) == 0;
    }
    DDS_StringSeq_finalize(&names);
    return found ? 1 : 0;
}

DDS_ReturnCode_t VUR_DL_DDSEntities_getDomainParticipantQos(VUR_DL_DDSEntities *self,
                                                            DDS_DomainParticipantQos *qos,
                                                            const VUR_DL_Options *options) {
    DDS_ReturnCode_t result = DDS_DomainParticipantQos_initialize(qos);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    result = profile_applies(*self)
                 ? DDS_DomainParticipantFactory_get_participant_qos_from_profile(
                       self->factory, qos, self->qosLibrary, self->qosProfile)
                 : DDS_DomainParticipantFactory_get_default_participant_qos(self->factory, qos);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    if (options->applicationKind != nullptr && *options->applicationKind != '\0') {
        DDS_String_free(qos->participant_name.name);
        qos->participant_name.name = DDS_String_dup(options->applicationKind);
    }
    qos->protocol.vendor_specific_entity = DDS_BOOLEAN_TRUE;
    return DDS_RETCODE_OK;
}

DDS_ReturnCode_t VUR_DL_DDSEntities_getSubscriberQos(VUR_DL_DDSEntities *self,
                                                     DDS_SubscriberQos *qos) {
    DDS_ReturnCode_t result = DDS_SubscriberQos_initialize(qos);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    result = profile_applies(*self)
                 ? DDS_DomainParticipantFactory_get_subscriber_qos_from_profile(
                       self->factory, qos, self->qosLibrary, self->qosProfile)
                 : DDS_DomainParticipant_get_default_subscriber_qos(self->domainParticipant, qos);
    if (result == DDS_RETCODE_OK) {
        present_by_instance(*qos);
    }
    return result;
}

DDS_ReturnCode_t VUR_DL_DDSEntities_getPublisherQos(VUR_DL_DDSEntities *self,
                                                    DDS_PublisherQos *qos) {
    DDS_ReturnCode_t result = DDS_PublisherQos_initialize(qos);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    result = profile_applies(*self)
                 ? DDS_DomainParticipantFactory_get_publisher_qos_from_profile(
                       self->factory, qos, self->qosLibrary, self->qosProfile)
                 : DDS_DomainParticipant_get_default_publisher_qos(self->domainParticipant, qos);
    if (result == DDS_RETCODE_OK) {
        present_by_instance(*qos);
    }
    return result;
}

DDS_ReturnCode_t VUR_DL_DDSEntities_getTopicQos(VUR_DL_DDSEntities *self, DDS_TopicQos *qos,
                                                const char *topic_name) {
    DDS_ReturnCode_t result = DDS_TopicQos_initialize(qos);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    const bool from_profile = profile_applies(*self);
    result = from_profile ? DDS_DomainParticipantFactory_get_topic_qos_from_profile_w_topic_name(
                                self->factory, qos, self->qosLibrary, self->qosProfile, topic_name)
                          : DDS_DomainParticipant_get_default_topic_qos_w_topic_name(
                                self->domainParticipant, qos, topic_name);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    if (!from_profile) {
        const bool durable = is_topic(topic_name, VUR_DL_LOG_TOPIC_NAME) ||
                             is_topic(topic_name, VUR_DL_STATE_TOPIC_NAME);
        const bool command = is_topic(topic_name, VUR_DL_COMMAND_REQUEST_TOPIC_NAME) ||
                             is_topic(topic_name, VUR_DL_COMMAND_RESPONSE_TOPIC_NAME);
        if (durable || command) {
            qos->reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
        }
        if (durable) {
            qos->durability.kind = DDS_TRANSIENT_LOCAL_DURABILITY_QOS;
        }
    }
    qos->protocol.vendor_specific_entity = DDS_BOOLEAN_TRUE;
    return DDS_RETCODE_OK;
}

DDS_ReturnCode_t VUR_DL_DDSEntities_getDataWriterQos(VUR_DL_DDSEntities *self,
                                                     DDS_DataWriterQos *qos,
                                                     const char *topic_name) {
    static_cast<void>(DDS_DataWriterQos_initialize(qos));
    const bool from_profile = profile_applies(*self);
    const DDS_ReturnCode_t result =
        from_profile ? DDS_DomainParticipantFactory_get_datawriter_qos_from_profile_w_topic_name(
                           self->factory, qos, self->qosLibrary, self->qosProfile, topic_name)
                     : DDS_DomainParticipant_get_default_datawriter_qos_w_topic_name(
                           self->domainParticipant, qos, topic_name);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    qos->ownership.kind = DDS_SHARED_OWNERSHIP_QOS;
    // No budget: a message goes out at once. Readers tolerate any.
    qos->latency_budget.duration = DDS_DURATION_ZERO;
    qos->liveliness.kind = DDS_AUTOMATIC_LIVELINESS_QOS;
    qos->destination_order.kind = DDS_BY_RECEPTION_TIMESTAMP_DESTINATIONORDER_QOS;
    apply_writer_needs(*qos, topic_name, from_profile);
    qos->protocol.vendor_specific_entity = DDS_BOOLEAN_TRUE;
    return DDS_RETCODE_OK;
}

DDS_ReturnCode_t VUR_DL_DDSEntities_getDataReaderQos(VUR_DL_DDSEntities *self,
                                                     DDS_DataReaderQos *qos,
                                                     const char *topic_name) {
    static_cast<void>(DDS_DataReaderQos_initialize(qos));
    const bool from_profile = profile_applies(*self);
    const DDS_ReturnCode_t result =
        from_profile ? DDS_DomainParticipantFactory_get_datareader_qos_from_profile_w_topic_name(
                           self->factory, qos, self->qosLibrary, self->qosProfile, topic_name)
                     : DDS_DomainParticipant_get_default_datareader_qos_w_topic_name(
                           self->domainParticipant, qos, topic_name);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    qos->ownership.kind = DDS_SHARED_OWNERSHIP_QOS;
    qos->deadline.period = DDS_DURATION_INFINITE;
    qos->destination_order.kind = DDS_BY_RECEPTION_TIMESTAMP_DESTINATIONORDER_QOS;
    qos->latency_budget.duration.sec = DDS_DURATION_INFINITE_SEC;
    qos->latency_budget.duration.nanosec = DDS_DURATION_INFINITE_NSEC;
    qos->liveliness.kind = DDS_AUTOMATIC_LIVELINESS_QOS;
    if (is_topic(topic_name, VUR_DL_COMMAND_REQUEST_TOPIC_NAME)) {
        qos->reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
        if (!from_profile) {
            keep_last(*qos, kCommandRequestDepth);
        }
    }
    qos->protocol.vendor_specific_entity = DDS_BOOLEAN_TRUE;
    return DDS_RETCODE_OK;
}
