// SPDX-License-Identifier: Apache-2.0
// Publishers.
#pragma once

#include "engine/endpoint/endpoint_group.hpp"
#include "kolt/publication.h"

namespace kolt::engine {

class DataWriter;
class Publisher;
class Topic;

struct PublisherTraits {
    using Group = Publisher;
    using Record = DDS_Publisher;
    using Qos = DDS_PublisherQos;
    using Listener = DDS_PublisherListener;
    using Endpoint = DataWriter;
    using EndpointRecord = DDS_DataWriter;
    using EndpointQos = DDS_DataWriterQos;
    using EndpointListener = DDS_DataWriterListener;
    using EndpointTopic = Topic;

    static constexpr EntityKind kKind = EntityKind::kPublisher;
    static constexpr DDS_StatusMask kStatuses = 0;
    static constexpr const char *kDelete = "DDS_DomainParticipant_delete_publisher";
    static constexpr const char *kName = "publisher";
    static constexpr const char *kEndpoint = "writer";
    static constexpr const char *kEndpointOf = "writer of";
    static constexpr const DDS_DataWriterQos *kDefault = &DDS_DATAWRITER_QOS_DEFAULT;
    static constexpr const DDS_DataWriterQos *kUseTopic = &DDS_DATAWRITER_QOS_USE_TOPIC_QOS;
    static constexpr auto *kCreate = dds_create_publisher;
    static const char *obstacle(const DataWriter &) { return nullptr; }
    static void empty(DataWriter &, const char *) {}
};

class Publisher final : public EndpointGroup<PublisherTraits> {
  public:
    Publisher(ParticipantScope &participant, const DDS_PublisherQos &qos)
        : EndpointGroup(participant, qos) {}

    DDS_ReturnCode_t wait_for_acknowledgments(const DDS_Duration_t &max_wait, const char *method);
};

}  // namespace kolt::engine
