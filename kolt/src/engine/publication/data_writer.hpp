// SPDX-License-Identifier: Apache-2.0
// Data writers: instances, serialisation, and handing samples to the engine.
#pragma once

#include <cstdint>
#include <memory>

#include "engine/barrier/result.hpp"
#include "engine/cyclone/timer.hpp"
#include "engine/data/serdata.hpp"
#include "engine/entity/entity_cast.hpp"
#include "engine/entity/entity_qos.hpp"
#include "engine/entity/listener_slot.hpp"
#include "engine/entity/status_records.hpp"
#include "engine/publication/data_requests.hpp"
#include "engine/publication/instance_registry.hpp"
#include "kolt/publication.h"

namespace kolt::engine {

class Publisher;
class Topic;

// Logs and returns BAD_PARAMETER for a time stamp that a sample cannot carry.
DDS_ReturnCode_t bad_timestamp(const char *method);

// The two changes of an instance that are not writes.
enum class InstanceChange { kDispose, kUnregister };

class DataWriter final : public Entity {
  public:
    DataWriter(Publisher &publisher, Topic &topic, const DDS_DataWriterQos &qos);
    ~DataWriter() override;
    static DataWriter *of(DDS_DataWriter *self) {
        return self != nullptr
                   ? entity_cast<DataWriter, EntityKind::kDataWriter>(self->_entity._impl)
                   : nullptr;
    }

    DDS_DataWriter *handle() { return &handle_; }
    Publisher &publisher() const { return publisher_; }
    Topic &topic() const { return topic_; }
    const RegisteredType &type() const { return *type_; }

    // Chooses the representation and attaches the type plugin to the writer. INCONSISTENT_POLICY
    // when the type does not allow the representation.
    DDS_ReturnCode_t attach_type(const char *method);
    DDS_ReturnCode_t enable(const char *method) override;
    DDS_ReturnCode_t get_qos(DDS_DataWriterQos *qos) { return qos_.get(qos); }
    DDS_ReturnCode_t set_qos(const DDS_DataWriterQos &qos, const char *method);

    DDS_DataWriterListener listener() const { return listener_.get(); }
    DDS_ReturnCode_t set_listener(const DDS_DataWriterListener *listener, DDS_StatusMask mask,
                                  const char *method);
    StatusRecords<DataWriter, WriterStatuses> &statuses() { return statuses_; }
    void announce() override { statuses_.announce(); }
    // Tells the listeners of a change, on their thread.
    template <typename Kind>
    void deliver();

    DDS_ReturnCode_t write(const void *sample, const DDS_WriteParams_t &params, const char *method);
    DDS_ReturnCode_t change_instance(InstanceChange change, const void *sample,
                                     const DDS_WriteParams_t &params, const char *method);
    DDS_InstanceHandle_t register_instance(const void *sample, const DDS_WriteParams_t &params,
                                           const char *method);
    DDS_InstanceHandle_t lookup_instance(const void *key_holder);
    DDS_ReturnCode_t get_key_value(void *key_holder, DDS_InstanceHandle_t handle,
                                   const char *method);
    // Ends a write in progress; it and later ones return TIMEOUT.
    DDS_ReturnCode_t end_writes();
    DDS_ReturnCode_t wait_for_acknowledgments(const DDS_Duration_t &max_wait, const char *method);
    void *create_data();
    DDS_ReturnCode_t delete_data(void *sample);

  private:
    // Copies the policies that every write reads, so that writing does not lock the tree.
    void note_qos();

    const Sertype &sertype() const;
    Result<SerdataRef> serialize(const void *sample, const char *method);
    // Makes the canonical key of a record; nullptr when the key cannot be serialised.
    SerdataRef key_of(const void *sample);
    // Serialise the key alone, in the writer's encapsulation, as it goes over the wire.
    Result<SerdataRef> key_payload(const void *sample, const char *method);
    Result<SerdataRef> key_payload_of_instance(const KeyBytes &key, const char *method);
    // Serialises the key of the sample, or without a sample that of the instance `handle`.
    Result<SerdataRef> payload_of_change(const void *sample, DDS_InstanceHandle_t handle,
                                         const char *method);
    DDS_ReturnCode_t write_deferred(const DDS_WriteParams_t &params, const char *method);
    DDS_ReturnCode_t write_now(const void *sample, const DDS_WriteParams_t &params,
                               const char *method);
    DDS_ReturnCode_t send(SerdataRef serdata, std::uint32_t status_info,
                          const DDS_Time_t &source_timestamp, const char *method);
    // Hands a sample to the engine.
    DDS_ReturnCode_t forward_sample(SerdataRef serdata);
    // Lets it be known when the writer begins to time out, and when it writes again.
    void note_outcome(DDS_ReturnCode_t code);
    void report_outcome();
    DDS_ReturnCode_t check_handle(const Serdata &serdata, DDS_InstanceHandle_t handle,
                                  const char *method);
    // Keeps the instance alive in the engine and returns its handle, which is valid until the
    // instance is unregistered or the writer deleted.
    DDS_InstanceHandle_t pin_instance(const Serdata &serdata);
    // Gets the key of a registered instance. False when the handle is not that of one.
    bool find_instance(DDS_InstanceHandle_t handle, KeyBytes *key);

    DDS_DataWriter handle_{{this}};
    Publisher &publisher_;
    Topic &topic_;
    std::shared_ptr<RegisteredType> type_;
    std::shared_ptr<TypeEndpoint> endpoint_;
    DDS_UnsignedShort encapsulation_ = KOLT_ENCAPSULATION_INVALID;
    std::atomic<bool> deferred_write_{false};
    std::atomic<bool> autodispose_{true};
    std::atomic<bool> ended_{false};
    std::atomic<bool> times_out_{false};
    std::atomic<MonotonicTime> last_time_out_{0};
    bool reported_times_out_ = false;  // the listener thread's
    InstanceRegistry instances_;
    ListenerSlot<DDS_DataWriterListener> listener_;
    DataRequests requests_;
    StatusRecords<DataWriter, WriterStatuses> statuses_;
    ListenerThread::Event outcome_;
    EntityQos<DDS_DataWriterQos> qos_;
};

}  // namespace kolt::engine
