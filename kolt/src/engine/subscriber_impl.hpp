// Subscribers.
#pragma once

#include <memory>
#include <vector>

#include "engine/defaults.hpp"
#include "engine/entity_impl.hpp"
#include "engine/listener_slot.hpp"
#include "kolt/subscription.h"

namespace kolt::engine {

class DataReader;
class TopicDescription;

class Subscriber final : public Entity {
  public:
    Subscriber(Participant &participant, const DDS_SubscriberQos &qos);
    ~Subscriber() override;
    static Subscriber *of(DDS_Subscriber *self) {
        return self != nullptr ? static_cast<Subscriber *>(self->_entity._impl) : nullptr;
    }

    DDS_Subscriber *handle() { return &handle_; }
    Participant &participant() const { return participant_; }
    ListenerSlot<DDS_SubscriberListener> &listener() { return listener_; }

    DDS_ReturnCode_t enable(const char *method) override;
    DDS_ReturnCode_t get_qos(DDS_SubscriberQos *qos);
    DDS_ReturnCode_t set_qos(const DDS_SubscriberQos &qos, const char *method);
    DDS_ReturnCode_t get_default_reader_qos(DDS_DataReaderQos *qos, const char *topic_name);
    DDS_ReturnCode_t set_default_reader_qos(const DDS_DataReaderQos &qos, const char *method);

    DDS_DataReader *create_reader(TopicDescription *topic, const DDS_DataReaderQos *qos,
                                  const DDS_DataReaderListener *listener, DDS_StatusMask mask,
                                  const char *method);
    DDS_ReturnCode_t delete_reader(DataReader *reader, const char *method);
    DDS_ReturnCode_t delete_contained_entities(const char *method);
    DDS_DataReader *lookup_reader(const char *topic_name);
    // Calls on_data_available for each reader with news.
    void notify_readers();
    // Calls on_data_on_readers of this subscriber's or the participant's listener. False when there
    // is none.
    bool dispatch_data_on_readers();

    // With the tree's mutex held:
    bool is_empty() const { return readers_.empty(); }
    bool contains(DDS_InstanceHandle_t handle) const;

  private:
    // The caller's QoS, or what the sentinels stand for.
    DDS_ReturnCode_t choose_reader_qos(const DDS_DataReaderQos *given, TopicDescription &topic,
                                       DDS_DataReaderQos *chosen);
    bool autoenables();

    DDS_Subscriber handle_{{this}};
    Participant &participant_;
    ListenerSlot<DDS_SubscriberListener> listener_;
    // Guarded by the tree's mutex:
    kolt::qos::OwnedQos<DDS_SubscriberQos> qos_;
    DefaultQos<DDS_DataReaderQos> default_reader_qos_;
    std::vector<std::unique_ptr<DataReader>> readers_;
};

}  // namespace kolt::engine
