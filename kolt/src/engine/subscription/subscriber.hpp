// SPDX-License-Identifier: Apache-2.0
// Subscribers.
#pragma once

#include "engine/endpoint/endpoint_group.hpp"
#include "engine/entity/statuses.hpp"
#include "kolt/subscription.h"

namespace kolt::engine {

class DataReader;
class Subscriber;
class TopicDescription;

struct SubscriberTraits {
    using Group = Subscriber;
    using Record = DDS_Subscriber;
    using Qos = DDS_SubscriberQos;
    using Listener = DDS_SubscriberListener;
    using Endpoint = DataReader;
    using EndpointRecord = DDS_DataReader;
    using EndpointQos = DDS_DataReaderQos;
    using EndpointListener = DDS_DataReaderListener;
    using EndpointTopic = TopicDescription;

    static constexpr EntityKind kKind = EntityKind::kSubscriber;
    static constexpr DDS_StatusMask kStatuses = kSubscriberStatusMask;
    static constexpr const char *kDelete = "DDS_DomainParticipant_delete_subscriber";
    static constexpr const char *kName = "subscriber";
    static constexpr const char *kEndpoint = "reader";
    static constexpr const char *kEndpointOf = "reader of";
    static constexpr const DDS_DataReaderQos *kDefault = &DDS_DATAREADER_QOS_DEFAULT;
    static constexpr const DDS_DataReaderQos *kUseTopic = &DDS_DATAREADER_QOS_USE_TOPIC_QOS;
    static constexpr auto *kCreate = dds_create_subscriber;
    static const char *obstacle(const DataReader &reader);
    static void empty(DataReader &reader, const char *method);
};

class Subscriber final : public EndpointGroup<SubscriberTraits> {
  public:
    Subscriber(ParticipantScope &participant, const DDS_SubscriberQos &qos)
        : EndpointGroup(participant, qos) {}

    // Lets on_data_available be called for each reader with data that no listener was told of yet.
    void notify_readers();
    // Change whether a reader has new data.
    void note_data();
    void reset_data_on_readers();
    // Calls on_data_on_readers of this subscriber's or the participant's listener. False when there
    // is none. On the listener thread.
    bool deliver_data_on_readers();
};

}  // namespace kolt::engine
