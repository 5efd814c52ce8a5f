// What publishers and subscribers have in common: a group of endpoints and the QoS that these get.
#pragma once

#include <memory>
#include <vector>

#include "engine/entity/entity.hpp"
#include "engine/entity/entity_qos.hpp"
#include "engine/entity/listener_slot.hpp"
#include "engine/qos/default_qos.hpp"
#include "kolt/publication.h"
#include "kolt/subscription.h"

namespace kolt::engine {

class DataReader;
class DataWriter;
class Publisher;
class Subscriber;
class Topic;
class TopicDescription;

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
};

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
};

template <typename Traits>
class EndpointGroup : public Entity {
  public:
    using Record = typename Traits::Record;
    using Qos = typename Traits::Qos;
    using Listener = typename Traits::Listener;
    using Endpoint = typename Traits::Endpoint;
    using EndpointRecord = typename Traits::EndpointRecord;
    using EndpointQos = typename Traits::EndpointQos;
    using EndpointListener = typename Traits::EndpointListener;
    using EndpointTopic = typename Traits::EndpointTopic;
    using Group = typename Traits::Group;

    static Group *of(Record *self) {
        return self != nullptr ? static_cast<Group *>(self->_entity._impl) : nullptr;
    }

    Record *handle() { return &handle_; }
    Participant &participant() const { return participant_; }
    ListenerSlot<Listener> &listener() { return listener_; }

    DDS_ReturnCode_t enable(const char *method) override;
    DDS_ReturnCode_t get_qos(Qos *qos) { return qos_.get(qos); }
    DDS_ReturnCode_t set_qos(const Qos &qos, const char *method);
    DDS_ReturnCode_t get_default_qos(EndpointQos *qos, const char *topic_name);
    DDS_ReturnCode_t set_default_qos(const EndpointQos &qos, const char *method);

    EndpointRecord *create(EndpointTopic *topic, const EndpointQos *qos,
                           const EndpointListener *listener, DDS_StatusMask mask,
                           const char *method);
    DDS_ReturnCode_t remove(Endpoint *endpoint, const char *method);
    DDS_ReturnCode_t delete_contained_entities(const char *method);
    EndpointRecord *lookup(const char *topic_name);

    // With the tree's mutex held:
    bool is_empty() const { return endpoints_.empty(); }
    bool contains(DDS_InstanceHandle_t handle) const;

  protected:
    EndpointGroup(Participant &participant, const Qos &qos);
    ~EndpointGroup() override;

    std::vector<Endpoint *> endpoints();

    Record handle_{{this}};
    Participant &participant_;
    ListenerSlot<Listener> listener_;
    std::vector<std::unique_ptr<Endpoint>> endpoints_;  // guarded by the tree's mutex

  private:
    Group &self() { return static_cast<Group &>(*this); }
    bool autoenables();
    // The caller's QoS, or what the sentinels stand for.
    DDS_ReturnCode_t choose_qos(const EndpointQos *given, EndpointTopic &topic,
                                EndpointQos *chosen);

    EntityQos<Qos> qos_;
    DefaultQos<EndpointQos> default_qos_;  // guarded by the tree's mutex
};

// Copies the policies that a topic's QoS shares with an endpoint's (DDS 1.4, 2.2.2.4.1.15).
template <typename EndpointQos>
bool copy_from_topic_qos(EndpointQos *qos, const DDS_TopicQos &topic_qos);

}  // namespace kolt::engine
