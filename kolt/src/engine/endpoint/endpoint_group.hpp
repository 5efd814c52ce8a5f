// SPDX-License-Identifier: Apache-2.0
// The common part of publishers and subscribers: a group of endpoints and the QoS that these get.
#pragma once

#include <memory>
#include <vector>

#include "engine/entity/participant_scope.hpp"

namespace kolt::engine {

// `Traits` says which group it is, in PublisherTraits and SubscriberTraits:
//   - types: Group, Record, Qos, Listener, and of the endpoints Endpoint, EndpointRecord,
//     EndpointQos, EndpointListener, EndpointTopic;
//   - kKind, kStatuses: the kind of entity, and the statuses that it has;
//   - kDelete: the C function that deletes the group, for the log;
//   - kName, kEndpoint, kEndpointOf: names of the group and of its endpoints, for the log;
//   - kDefault, kUseTopic: the values that stand for an endpoint's default QoS, and for that with
//     the topic's policies copied in;
//   - kCreate: the engine's function that creates the group;
//   - obstacle(endpoint): tells why an endpoint cannot be deleted now; nullptr when it can;
//   - empty(endpoint, method): deletes what an endpoint contains.
// endpoint_group_definitions.hpp holds the definitions.
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
        return self != nullptr ? entity_cast<Group, Traits::kKind>(self->_entity._impl) : nullptr;
    }

    Record *handle() { return &handle_; }
    ParticipantScope &participant() const { return participant_; }
    ListenerSlot<Listener> &listener() { return listener_; }
    DDS_ReturnCode_t set_listener(const Listener *listener, DDS_StatusMask mask,
                                  const char *method) {
        return listener_.set(listener, mask, method);
    }

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
    EndpointGroup(ParticipantScope &participant, const Qos &qos);
    ~EndpointGroup() override;

    std::vector<Endpoint *> endpoints();

    Record handle_{{this}};
    ParticipantScope &participant_;
    ListenerSlot<Listener> listener_;
    std::vector<std::unique_ptr<Endpoint>> endpoints_;  // guarded by the tree's mutex

  private:
    Group &self() { return static_cast<Group &>(*this); }
    bool autoenables();
    bool contains(const Endpoint *endpoint);
    // Chooses the caller's QoS, or the one that the sentinels stand for.
    DDS_ReturnCode_t choose_qos(const EndpointQos *given, EndpointTopic &topic,
                                EndpointQos *chosen);

    EntityQos<Qos> qos_;
    DefaultQos<EndpointQos> default_qos_;  // guarded by the tree's mutex
};

}  // namespace kolt::engine
