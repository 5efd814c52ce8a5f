// SPDX-License-Identifier: Apache-2.0
// Data readers: events, conditions, and reading from the engine's cache into an application's
// records.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "engine/data/serdata.hpp"
#include "engine/entity/entity_cast.hpp"
#include "engine/entity/entity_qos.hpp"
#include "engine/entity/listener_slot.hpp"
#include "engine/entity/status_records.hpp"
#include "engine/subscription/read_condition.hpp"
#include "engine/subscription/reader_cache.hpp"
#include "kolt/subscription.h"

namespace kolt::engine {

class Subscriber;
class TopicDescription;

// The outcome of a read or take of the engine: serialised samples and information about each.
struct Batch {
    std::vector<SerdataView> views;
    std::vector<void *> pointers;  // to the views, in the form that the engine takes
    std::vector<dds_sample_info_t> infos;

    void resize(std::size_t capacity);
    std::size_t capacity() const { return views.size(); }
};

// Serialised samples of a batch.
using Serdatas = std::vector<const Serdata *>;

// Samples that an application holds. They go back to their pool with the loan.
struct Loan {
    explicit Loan(std::shared_ptr<TypeEndpoint> type_endpoint)
        : endpoint(std::move(type_endpoint)) {}
    ~Loan();
    Loan(const Loan &) = delete;
    Loan &operator=(const Loan &) = delete;

    const std::shared_ptr<TypeEndpoint> endpoint;
    std::vector<void *> samples;
    std::vector<void *> pool_handles;
    std::vector<DDS_SampleInfo> infos;
};

class DataReader final : public Entity {
  public:
    DataReader(Subscriber &subscriber, TopicDescription &topic, const DDS_DataReaderQos &qos);
    ~DataReader() override;
    static DataReader *of(DDS_DataReader *self) {
        return self != nullptr
                   ? entity_cast<DataReader, EntityKind::kDataReader>(self->_entity._impl)
                   : nullptr;
    }

    DDS_DataReader *handle() { return &handle_; }
    Subscriber &subscriber() const { return subscriber_; }
    TopicDescription &topic() const { return topic_; }
    const std::shared_ptr<RegisteredType> &type() const { return type_; }

    // Attaches the type plugin to the reader. INCONSISTENT_POLICY when the type does not allow a
    // representation of the QoS.
    DDS_ReturnCode_t attach_type(const char *method);
    DDS_ReturnCode_t enable(const char *method) override;
    DDS_ReturnCode_t get_qos(DDS_DataReaderQos *qos) { return qos_.get(qos); }
    DDS_ReturnCode_t set_qos(const DDS_DataReaderQos &qos, const char *method);

    DDS_DataReaderListener listener() const { return listener_.get(); }
    DDS_ReturnCode_t set_listener(const DDS_DataReaderListener *listener, DDS_StatusMask mask,
                                  const char *method);
    StatusRecords<DataReader, ReaderStatuses> &statuses() { return statuses_; }
    void announce() override;
    // Notes that data came. Called on the engine's threads.
    void note_data();
    // Lets on_data_available be called if data came that no listener was told of yet.
    void notify();

    // Tell the listeners, on their thread, of a change, and of data.
    template <typename Kind>
    void deliver();
    void deliver_data();
    void deliver_data_available();

    DDS_ReadCondition *create_read_condition(std::uint32_t engine_mask, const ReadStates &states,
                                             const char *method);
    DDS_QueryCondition *create_query_condition(std::uint32_t engine_mask, const ReadStates &states,
                                               const char *expression,
                                               const DDS_StringSeq *parameters, const char *method);
    DDS_ReturnCode_t delete_read_condition(ReadCondition *condition, const char *method);
    // Deletes all conditions. Without `attached_too` none is deleted while one is attached.
    DDS_ReturnCode_t delete_conditions(bool attached_too, const char *method);
    bool has_conditions() const;

    // Reading (data_reader_access.cpp).
    DDS_ReturnCode_t read_loaned(const KOLT_ReadSelection &selection, void ***loan,
                                 DDS_UnsignedLong *count, DDS_SampleInfoSeq *info_seq,
                                 const char *method);
    DDS_ReturnCode_t read_copied(const KOLT_ReadSelection &selection, DDS_UnsignedLong maximum,
                                 void *buffer, std::size_t element_size, DDS_UnsignedLong *count,
                                 DDS_SampleInfoSeq *info_seq, const char *method);
    DDS_ReturnCode_t read_next_sample(bool take, void *sample, DDS_SampleInfo *info,
                                      const char *method);
    DDS_ReturnCode_t return_loan(void **samples, DDS_UnsignedLong count,
                                 DDS_SampleInfoSeq *info_seq, const char *method);
    bool has_loans() const;
    DDS_ReturnCode_t get_key_value(void *key_holder, DDS_InstanceHandle_t handle,
                                   const char *method);
    DDS_InstanceHandle_t lookup_instance(const void *key_holder);

  private:
    // Calls the first listener that handles the status: the reader's own, the subscriber's, the
    // participant's (DDS 1.4, 2.2.4.2.3).
    template <typename HasCallback, typename Call>
    void tell_listener(DDS_StatusMask status, HasCallback &&has_callback, Call &&call);

    bool has_data_available();
    void reset_data_available();
    // Lets listeners be told of data that came, if `mask` has that.
    void tell_data_changed(DDS_StatusMask mask);

    // Fills `batch` with at most `limit` samples. OK with at least one, or NO_DATA.
    DDS_ReturnCode_t fetch(const KOLT_ReadSelection &selection, std::size_t limit, Batch *batch,
                           std::size_t *count);
    DDS_ReturnCode_t fetch_next_instance(const KOLT_ReadSelection &selection, std::size_t limit,
                                         Batch *batch, std::size_t *count);
    // Fetches samples and lets `build(batch, count, &malformed)` make records of them. It returns
    // NO_DATA when all of them are malformed: they are dropped, and more are fetched.
    template <typename Build>
    DDS_ReturnCode_t fetch_records(const KOLT_ReadSelection &selection, std::size_t limit,
                                   const char *method, Build &&build);
    // Calls the engine's read or take. With `locked` the calling thread has locked the cache, which
    // the read unlocks.
    dds_return_t engine_read(const KOLT_ReadSelection &selection, std::uint32_t mask,
                             std::size_t room, bool locked, Batch *batch);
    // Returns the instances of the reader, by their handles.
    InstanceIndex &instances();
    // True for the handle of an instance of the reader.
    bool is_instance_known(DDS_InstanceHandle_t handle);
    // Returns the instances in the cache.
    std::vector<InstanceIndex::Known> cached_instances();
    // Builds the record of a serialised sample, or sets the key members of one without data. False
    // when it is malformed.
    bool deserialize(const Serdata &serdata, bool valid_data, void *record);
    // Logs that a sample cannot be deserialised and is therefore dropped, and counts it as lost.
    void note_undeserializable(const char *method);
    // Removes samples that a read has left in the cache. False when memory ran out.
    bool remove_from_cache(const Serdatas &samples);
    // Initialises a record anew and keeps its buffers.
    void reset(void *record);
    // Fills `loan` with records of `count` samples of the batch and gathers the malformed ones.
    // NO_DATA when all of them are, OUT_OF_RESOURCES when there is no memory for any.
    DDS_ReturnCode_t lend(const Batch &batch, std::size_t count, Loan *loan, Serdatas *malformed,
                          const char *method);
    // Gives the loan, which has samples, to the caller.
    DDS_ReturnCode_t hand_out(std::unique_ptr<Loan> loan, void ***samples, DDS_UnsignedLong *count,
                              DDS_SampleInfoSeq *info_seq, const char *method);

    DDS_DataReader handle_{{this}};
    Subscriber &subscriber_;
    TopicDescription &topic_;
    std::shared_ptr<RegisteredType> type_;
    std::shared_ptr<TypeEndpoint> endpoint_;
    ListenerSlot<DDS_DataReaderListener> listener_;
    StatusRecords<DataReader, ReaderStatuses> statuses_;
    ListenerThread::Event data_;
    ListenerThread::Event notification_;
    EntityQos<DDS_DataReaderQos> qos_;
    ReaderCache cache_;

    mutable std::mutex contents_;
    // Guarded by contents_:
    std::unordered_map<void **, std::unique_ptr<Loan>> loans_;
    std::vector<std::unique_ptr<ReadCondition>> conditions_;
};

}  // namespace kolt::engine
