// Publishers.
#pragma once

#include <memory>
#include <vector>

#include "engine/defaults.hpp"
#include "engine/entity_impl.hpp"
#include "engine/listener_slot.hpp"
#include "kolt/publication.h"

namespace kolt::engine {

class DataWriter;
class Topic;

class Publisher final : public Entity {
  public:
    Publisher(Participant &participant, const DDS_PublisherQos &qos);
    ~Publisher() override;
    static Publisher *of(DDS_Publisher *self) {
        return self != nullptr ? static_cast<Publisher *>(self->_entity._impl) : nullptr;
    }

    DDS_Publisher *handle() { return &handle_; }
    Participant &participant() const { return participant_; }
    ListenerSlot<DDS_PublisherListener> &listener() { return listener_; }

    DDS_ReturnCode_t enable(const char *method) override;
    DDS_ReturnCode_t get_qos(DDS_PublisherQos *qos);
    DDS_ReturnCode_t set_qos(const DDS_PublisherQos &qos, const char *method);
    DDS_ReturnCode_t get_default_writer_qos(DDS_DataWriterQos *qos, const char *topic_name);
    DDS_ReturnCode_t set_default_writer_qos(const DDS_DataWriterQos &qos, const char *method);

    DDS_DataWriter *create_writer(Topic *topic, const DDS_DataWriterQos *qos,
                                  const DDS_DataWriterListener *listener, DDS_StatusMask mask,
                                  const char *method);
    DDS_ReturnCode_t delete_writer(DataWriter *writer, const char *method);
    DDS_ReturnCode_t delete_contained_entities(const char *method);
    DDS_DataWriter *lookup_writer(const char *topic_name);
    DDS_ReturnCode_t wait_for_acknowledgments(const DDS_Duration_t &max_wait, const char *method);

    // With the tree's mutex held:
    bool is_empty() const { return writers_.empty(); }
    bool contains(DDS_InstanceHandle_t handle) const;

  private:
    // The caller's QoS, or what the sentinels stand for.
    DDS_ReturnCode_t choose_writer_qos(const DDS_DataWriterQos *given, Topic &topic,
                                       DDS_DataWriterQos *chosen);
    bool autoenables();

    DDS_Publisher handle_{{this}};
    Participant &participant_;
    ListenerSlot<DDS_PublisherListener> listener_;
    // Guarded by the tree's mutex:
    kolt::qos::OwnedQos<DDS_PublisherQos> qos_;
    DefaultQos<DDS_DataWriterQos> default_writer_qos_;
    std::vector<std::unique_ptr<DataWriter>> writers_;
};

// Copies the policies that a topic's QoS shares with an endpoint's (DDS 1.4, 2.2.2.4.1.15).
template <typename EndpointQos>
bool copy_from_topic_qos(EndpointQos *qos, const DDS_TopicQos &topic_qos);

}  // namespace kolt::engine
