// SPDX-License-Identifier: Apache-2.0
// Domain participants: what they contain, and the types registered with them.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "engine/data/registered_type.hpp"
#include "engine/entity/participant_scope.hpp"
#include "kolt/domain.h"

namespace kolt::engine {

class ContentFilteredTopic;
class Publisher;
class Subscriber;
class Topic;

class Participant final : public ParticipantScope {
  public:
    // A disabled participant. Throws std::bad_alloc.
    Participant(DDS_DomainId_t domain_id, const DDS_DomainParticipantQos &qos);
    // A wrapper of an engine participant that belongs to the application.
    Participant(DDS_DomainId_t domain_id, const DDS_DomainParticipantQos &qos,
                dds_entity_t wrapped);
    ~Participant() override;
    static Participant *of(DDS_DomainParticipant *self) {
        return self != nullptr
                   ? entity_cast<Participant, EntityKind::kParticipant>(self->_entity._impl)
                   : nullptr;
    }

    bool is_wrapper() const { return wrapped_; }

    DDS_ReturnCode_t enable(const char *method) override;
    DDS_ReturnCode_t get_qos(DDS_DomainParticipantQos *qos);
    DDS_ReturnCode_t set_qos(const DDS_DomainParticipantQos &qos, const char *method);

    DDS_ReturnCode_t register_type(const char *name, const KOLT_TypePlugin &plugin,
                                   void *registration_data, const char *method);
    DDS_ReturnCode_t unregister_type(const char *name, const char *method);

    DDS_Topic *create_topic(const char *name, const char *type_name, const DDS_TopicQos *qos,
                            const DDS_TopicListener *listener, DDS_StatusMask mask,
                            const char *method);
    DDS_ReturnCode_t delete_topic(Topic *topic, const char *method);
    DDS_ContentFilteredTopic *create_filtered_topic(const char *name, Topic *related,
                                                    const char *expression,
                                                    const DDS_StringSeq *parameters,
                                                    const char *method);
    DDS_ReturnCode_t delete_filtered_topic(ContentFilteredTopic *topic, const char *method);
    DDS_TopicDescription *lookup_topic(const char *name);

    DDS_Publisher *create_publisher(const DDS_PublisherQos *qos,
                                    const DDS_PublisherListener *listener, DDS_StatusMask mask,
                                    const char *method);
    DDS_ReturnCode_t delete_publisher(Publisher *publisher, const char *method);
    DDS_Subscriber *create_subscriber(const DDS_SubscriberQos *qos,
                                      const DDS_SubscriberListener *listener, DDS_StatusMask mask,
                                      const char *method);
    DDS_ReturnCode_t delete_subscriber(Subscriber *subscriber, const char *method);
    DDS_ReturnCode_t delete_contained_entities(const char *method);
    bool is_empty();
    bool contains(DDS_InstanceHandle_t handle);

    // Deletes the engine's participant, or lets go of a wrapped one. It must be empty.
    void close(const char *method);

  private:
    template <typename Group>
    typename Group::Record *create_group(std::vector<std::unique_ptr<Group>> &groups,
                                         const typename Group::Qos *qos,
                                         const typename Group::Listener *listener,
                                         DDS_StatusMask mask, const char *method);
    template <typename Group>
    DDS_ReturnCode_t delete_group(std::vector<std::unique_ptr<Group>> &groups, Group *group,
                                  const char *method);
    bool is_name_taken(const char *name) const;
    DDS_ReturnCode_t enable_contained(const char *method);

    const bool wrapped_ = false;
    // Serialises the creation of topics, whose names must not clash.
    std::mutex topic_creation_;
    // Guarded by the tree's mutex:
    std::map<std::string, std::shared_ptr<RegisteredType>, std::less<>> types_;
    std::vector<std::unique_ptr<Topic>> topics_;
    std::vector<std::unique_ptr<ContentFilteredTopic>> filtered_topics_;
    std::vector<std::unique_ptr<Publisher>> publishers_;
    std::vector<std::unique_ptr<Subscriber>> subscribers_;
};

}  // namespace kolt::engine
