// Domain participants: what they contain, the types registered with them, their defaults.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "engine/data/registered_type.hpp"
#include "engine/entity/entity.hpp"
#include "engine/entity/entity_qos.hpp"
#include "engine/entity/listener_slot.hpp"
#include "engine/qos/default_qos.hpp"
#include "kolt/domain.h"

namespace kolt::engine {

class ContentFilteredTopic;
class Publisher;
class Subscriber;
class Topic;

class Participant final : public Entity {
  public:
    // A disabled participant. Throws std::bad_alloc.
    Participant(DDS_DomainId_t domain_id, const DDS_DomainParticipantQos &qos);
    // A wrapper of the application's own engine participant.
    Participant(DDS_DomainId_t domain_id, const DDS_DomainParticipantQos &qos,
                dds_entity_t wrapped);
    ~Participant() override;
    static Participant *of(DDS_DomainParticipant *self) {
        return self != nullptr ? static_cast<Participant *>(self->_entity._impl) : nullptr;
    }

    DDS_DomainParticipant *handle() { return &handle_; }
    DDS_DomainId_t domain_id() const { return domain_id_; }
    bool is_wrapper() const { return wrapped_; }
    // Guards the structure and the QoS records of everything in the participant.
    std::mutex &tree() { return tree_; }
    ListenerSlot<DDS_DomainParticipantListener> &listener() { return listener_; }
    bool autoenables();

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

    // The default QoS of what the participant creates: what the application set, else the profiles.
    template <typename Qos>
    DDS_ReturnCode_t get_default(Qos *qos, const char *topic_name);
    template <typename Qos>
    DDS_ReturnCode_t set_default(const Qos &qos, const char *method);

  private:
    template <typename Group>
    typename Group::Record *create_group(std::vector<std::unique_ptr<Group>> &groups,
                                         const typename Group::Qos *qos,
                                         const typename Group::Listener *listener,
                                         DDS_StatusMask mask, const char *method);
    template <typename Group>
    DDS_ReturnCode_t delete_group(std::vector<std::unique_ptr<Group>> &groups, Group *group,
                                  const char *method);
    template <typename Qos>
    DefaultQos<Qos> &default_of();
    bool is_name_taken(const char *name) const;
    DDS_ReturnCode_t enable_contained(const char *method);

    DDS_DomainParticipant handle_{{this}};
    const DDS_DomainId_t domain_id_;
    const bool wrapped_ = false;
    ListenerSlot<DDS_DomainParticipantListener> listener_;
    // Serialises the creation of topics, whose names must not clash.
    std::mutex topic_creation_;

    std::mutex tree_;
    EntityQos<DDS_DomainParticipantQos> qos_;
    // Guarded by tree_:
    std::map<std::string, std::shared_ptr<RegisteredType>, std::less<>> types_;
    std::vector<std::unique_ptr<Topic>> topics_;
    std::vector<std::unique_ptr<ContentFilteredTopic>> filtered_topics_;
    std::vector<std::unique_ptr<Publisher>> publishers_;
    std::vector<std::unique_ptr<Subscriber>> subscribers_;
    DefaultQos<DDS_TopicQos> default_topic_qos_;
    DefaultQos<DDS_PublisherQos> default_publisher_qos_;
    DefaultQos<DDS_SubscriberQos> default_subscriber_qos_;
    DefaultQos<DDS_DataWriterQos> default_writer_qos_;
    DefaultQos<DDS_DataReaderQos> default_reader_qos_;
};

// Chooses the QoS of a new entity: the caller's, or, for nullptr and the sentinel, the default that
// `get_default(&qos)` gives. False when that fails.
template <typename Qos, typename GetDefault>
bool choose_qos(const Qos *given, const Qos &sentinel, Qos *chosen, GetDefault &&get_default) {
    if (given != nullptr && given != &sentinel) {
        return kolt::qos::copy(*chosen, *given);
    }
    return get_default(chosen) == DDS_RETCODE_OK;
}

// The elements of `list`, which `mutex` guards, as they are now.
template <typename T>
std::vector<T *> pointers(std::mutex &mutex, const std::vector<std::unique_ptr<T>> &list) {
    const std::lock_guard lock(mutex);
    std::vector<T *> result;
    for (const auto &element : list) {
        result.push_back(element.get());
    }
    return result;
}

// Takes the element that holds `raw` out of `list`; nullptr when it is not there.
template <typename T>
std::unique_ptr<T> extract(std::vector<std::unique_ptr<T>> &list, const T *raw) {
    for (auto it = list.begin(); it != list.end(); ++it) {
        if (it->get() == raw) {
            std::unique_ptr<T> result = std::move(*it);
            list.erase(it);
            return result;
        }
    }
    return nullptr;
}

template <typename T>
bool contains_pointer(const std::vector<std::unique_ptr<T>> &list, const T *raw) {
    for (const auto &element : list) {
        if (element.get() == raw) {
            return true;
        }
    }
    return false;
}

}  // namespace kolt::engine
