// SPDX-License-Identifier: Apache-2.0
// A participant as its topics, publishers, subscribers and endpoints see it.
#pragma once

#include <mutex>

#include "engine/entity/entity_cast.hpp"
#include "engine/entity/entity_qos.hpp"
#include "engine/entity/listener_slot.hpp"
#include "engine/qos/default_qos.hpp"
#include "kolt/domain.h"

namespace kolt::engine {

class ParticipantScope : public Entity {
  public:
    static ParticipantScope *of(DDS_DomainParticipant *self) {
        return self != nullptr
                   ? entity_cast<ParticipantScope, EntityKind::kParticipant>(self->_entity._impl)
                   : nullptr;
    }

    DDS_DomainParticipant *handle() { return &handle_; }
    DDS_DomainId_t domain_id() const { return domain_id_; }
    // Guards the structure and the QoS records of everything in the participant.
    std::mutex &tree() { return tree_; }
    // The thread that calls the listeners of everything in the participant.
    ListenerThread &listener_thread() { return listener_thread_; }
    ListenerSlot<DDS_DomainParticipantListener> &listener() { return listener_; }
    DDS_ReturnCode_t set_listener(const DDS_DomainParticipantListener *listener,
                                  DDS_StatusMask mask, const char *method) {
        return listener_.set(listener, mask, method);
    }
    // True when entities are to be enabled as they are created in the participant.
    bool autoenables() const;

    // Gets the default QoS of what the participant creates: the one that the application set, else
    // the loaded profiles' for `topic_name` (which may be nullptr).
    template <typename Qos>
    DDS_ReturnCode_t get_default(Qos *qos, const char *topic_name);
    // INCONSISTENT_POLICY for QoS that no entity could have.
    template <typename Qos>
    DDS_ReturnCode_t set_default(const Qos &qos, const char *method);

  protected:
    // A disabled participant. Throws std::bad_alloc.
    ParticipantScope(DDS_DomainId_t domain_id, const DDS_DomainParticipantQos &qos);

    EntityQos<DDS_DomainParticipantQos> &own_qos() { return qos_; }

  private:
    template <typename Qos>
    DefaultQos<Qos> &default_of();

    DDS_DomainParticipant handle_{{this}};
    const DDS_DomainId_t domain_id_;
    ListenerThread listener_thread_;
    ListenerSlot<DDS_DomainParticipantListener> listener_{listener_thread_};
    std::mutex tree_;
    EntityQos<DDS_DomainParticipantQos> qos_;
    // Guarded by tree_:
    DefaultQos<DDS_TopicQos> default_topic_qos_;
    DefaultQos<DDS_PublisherQos> default_publisher_qos_;
    DefaultQos<DDS_SubscriberQos> default_subscriber_qos_;
    DefaultQos<DDS_DataWriterQos> default_writer_qos_;
    DefaultQos<DDS_DataReaderQos> default_reader_qos_;
};

}  // namespace kolt::engine
