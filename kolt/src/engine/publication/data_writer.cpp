// SPDX-License-Identifier: Apache-2.0
// Data writers: enabling, events, serialisation, instances, writing.
#include "engine/publication/data_writer.hpp"

#include <bit>
#include <new>

#include "engine/cyclone/awake.hpp"
#include "engine/cyclone/convert.hpp"
#include "engine/entity/statuses.hpp"
#include "engine/publication/local_write.hpp"
#include "engine/publication/publisher.hpp"
#include "engine/qos/qos_check.hpp"
#include "engine/qos/qos_map.hpp"
#include "engine/topic/topic.hpp"

// The engine exports it, but its header is not fit for C++.
extern "C" dds_return_t ddsi_unblock_throttled_writer(ddsi_domaingv *domain,
                                                      const ddsi_guid *writer);

namespace kolt::engine {

namespace {

// How long a writer must have written without a time-out to write again: the engine's lease, within
// which a reader that stands still is taken for gone.
constexpr std::int64_t kWritesAgainAfter = 10'000'000'000;

}  // namespace

DataWriter::DataWriter(Publisher &publisher, Topic &topic, const DDS_DataWriterQos &qos)
    : Entity(EntityKind::kDataWriter, &handle_._entity, kWriterStatusMask),
      publisher_(publisher),
      topic_(topic),
      type_(topic.registered_type()),
      listener_(publisher.participant().listener_thread()),
      statuses_(*this, publisher.participant().listener_thread()),
      outcome_(statuses_.source(),
               [](void *writer) { static_cast<DataWriter *>(writer)->report_outcome(); }),
      qos_(publisher.participant().tree(), qos) {
    note_qos();
    const std::lock_guard lock(publisher.participant().tree());
    ++topic.users;
}

DataWriter::~DataWriter() {
    statuses_.silence();
    listener_.remove();
    delete_engine("DDS_Publisher_delete_datawriter");
    const std::lock_guard lock(publisher_.participant().tree());
    --topic_.users;
}

void DataWriter::note_qos() {
    qos_.read([this](const DDS_DataWriterQos &qos) {
        deferred_write_ = has_property(qos.property, KOLT_DEFERRED_WRITE_PROPERTY, "true");
        autodispose_ = qos.writer_data_lifecycle.autodispose_unregistered_instances != 0;
    });
}

DDS_ReturnCode_t DataWriter::attach_type(const char *method) {
    DDS_DataRepresentationId_t representation = DDS_AUTO_DATA_REPRESENTATION;
    if (!qos_.read([&](const DDS_DataWriterQos &qos) {
            return writer_representation(qos, *type_, &representation);
        })) {
        return fail(DDS_RETCODE_INCONSISTENT_POLICY, method,
                    "inconsistent QoS: representation: the type %s does not allow it",
                    type_->name().c_str());
    }
    encapsulation_ = DDS_TypeCode_get_native_encapsulation(type_->type_code(), representation);
    endpoint_ = TypeEndpoint::create(type_, {KOLT_TYPE_PLUGIN_WRITER, representation, 0U});
    if (endpoint_ == nullptr) {
        return fail(DDS_RETCODE_OUT_OF_RESOURCES, method,
                    "the type plugin of %s could not be attached to the writer",
                    type_->name().c_str());
    }
    return DDS_RETCODE_OK;
}

// ---- Enabling and QoS ---------------------------------------------------------------------------

DDS_ReturnCode_t DataWriter::enable(const char *method) {
    if (!publisher_.is_enabled() || !topic_.is_enabled()) {
        return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                    "the publisher or the topic is disabled: enable both first");
    }
    const EngineQos engine_qos =
        qos_.read([&](const DDS_DataWriterQos &qos) { return to_engine(qos, *type_); });
    const std::unique_ptr<dds_listener_t, void (*)(dds_listener_t *)> listener(
        dds_create_listener(nullptr), dds_delete_listener);
    WriterStatuses::listen(listener.get(), &statuses_);
    const dds_entity_t entity =
        dds_create_writer(publisher_.engine(), topic_.engine(), engine_qos.get(), listener.get());
    if (entity < 0) {
        return fail(to_return_code(entity), method,
                    "the DDS engine could not create a writer for the topic %s%s",
                    topic_.name().c_str(), more_about(entity));
    }
    set_engine(entity);
    return DDS_RETCODE_OK;
}

DDS_ReturnCode_t DataWriter::set_qos(const DDS_DataWriterQos &qos, const char *method) {
    const DDS_ReturnCode_t result =
        qos_.set(qos, *this, method, [&](const auto &q) { return to_engine(q, *type_); });
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    note_qos();
    // Before it is enabled the representation may still change.
    return is_enabled() ? DDS_RETCODE_OK : attach_type(method);
}

// ---- Events -------------------------------------------------------------------------------------

// Tells the first listener that handles the status: the writer's own, the publisher's, the
// participant's.
template <typename Kind>
void DataWriter::deliver() {
    const auto call = [this](const DDS_DataWriterListener &l) {
        if (const auto status = statuses_.take_changed<Kind>()) {
            (l.*Kind::kCallback)(l.listener_data, &handle_, &*status);
        }
    };
    const auto has = [](const DDS_DataWriterListener &l) { return l.*Kind::kCallback != nullptr; };
    if (listener_.handle(Kind::kBit, has, call)) {
        return;
    }
    if (publisher_.listener().handle(Kind::kBit, has, call)) {
        return;
    }
    publisher_.participant().listener().handle(
        Kind::kBit,
        [&](const DDS_DomainParticipantListener &l) { return has(l.publisher_listener); },
        [&](const DDS_DomainParticipantListener &l) { call(l.publisher_listener); });
}

DDS_ReturnCode_t DataWriter::set_listener(const DDS_DataWriterListener *listener,
                                          DDS_StatusMask mask, const char *method) {
    const DDS_ReturnCode_t result = listener_.set(listener, mask, method);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    requests_.wait();
    if (listener != nullptr) {
        statuses_.tell_changed(mask);
    }
    return DDS_RETCODE_OK;
}

// ---- Serialisation ------------------------------------------------------------------------------

const Sertype &DataWriter::sertype() const {
    return topic_.sertype();
}

Result<SerdataRef> DataWriter::serialize(const void *sample, const char *method) {
    const KOLT_TypePlugin &plugin = endpoint_->plugin();
    KOLT_TypePluginEndpointData *const data = endpoint_->data();
    const DDS_UnsignedLong size =
        plugin.get_serialized_sample_size(data, DDS_BOOLEAN_TRUE, encapsulation_, 0U, sample);
    if (size == 0) {
        return fail(DDS_RETCODE_ERROR, method,
                    "the sample cannot be serialised: a string is NULL, or a string or sequence "
                    "exceeds its bound");
    }
    // Up to three bytes of padding follow the sample.
    KOLT_CdrStream stream{};
    if (plugin.get_buffer(data, &stream, (size + 3U) & ~3U) == DDS_BOOLEAN_FALSE) {
        return fail(DDS_RETCODE_OUT_OF_RESOURCES, method,
                    "the writer has no buffer for the %u bytes of the sample", size);
    }
    SerdataRef serdata;
    try {
        serdata.reset(Serdata::adopt(sertype(), endpoint_, stream));
    } catch (...) {
        plugin.return_buffer(data, &stream);
        throw;
    }
    if (plugin.serialize(data, sample, &stream, DDS_BOOLEAN_TRUE, encapsulation_, DDS_BOOLEAN_TRUE,
                         nullptr) == DDS_BOOLEAN_FALSE ||
        !serdata->set_key_from_record(sertype(), sample)) {
        return fail(DDS_RETCODE_ERROR, method, "the type plugin could not serialise the sample");
    }
    serdata->seal(stream.position);
    return serdata;
}

SerdataRef DataWriter::key_of(const void *sample) {
    KeyBytes key;
    if (!key.fill([&](DDS_Octet *buffer, std::size_t *length) {
            return KOLT_Cdr_key_of_record(type_->programs(), sample, buffer, length) != 0;
        })) {
        return nullptr;
    }
    return SerdataRef(Serdata::from_key(&sertype(), key.data(), key.size()));
}

Result<SerdataRef> DataWriter::key_payload(const void *sample, const char *method) {
    const DDS_UnsignedLong size =
        KOLT_Cdr_serialized_key_size(type_->programs(), encapsulation_, sample);
    SerdataRef serdata;
    if (size != 0) {
        serdata.reset(Serdata::allocate(sertype(), SDK_KEY, size));
        KOLT_CdrStream stream{};
        KOLT_CdrStream_set(&stream, serdata->bytes(), size);
        const KOLT_TypePlugin &plugin = endpoint_->plugin();
        if (plugin.serialize_key(endpoint_->data(), sample, &stream, DDS_BOOLEAN_TRUE,
                                 encapsulation_, DDS_BOOLEAN_TRUE, nullptr) != DDS_BOOLEAN_FALSE &&
            serdata->set_key_from_record(sertype(), sample)) {
            serdata->seal(stream.position);
            return serdata;
        }
    }
    return fail(DDS_RETCODE_ERROR, method,
                "the key cannot be serialised: a string is NULL or exceeds its bound");
}

Result<SerdataRef> DataWriter::key_payload_of_instance(const KeyBytes &key, const char *method) {
    const SerdataRef canonical(Serdata::from_key(&sertype(), key.data(), key.size()));
    const KOLT_TypePlugin &plugin = endpoint_->plugin();
    void *pool_handle = nullptr;
    const auto give_back = [&](void *holder) {
        plugin.return_key(endpoint_->data(), holder, pool_handle);
    };
    const std::unique_ptr<void, decltype(give_back)> holder(
        plugin.get_key(endpoint_->data(), &pool_handle), give_back);
    if (holder == nullptr) {
        throw std::bad_alloc();
    }
    if (KOLT_Cdr_deserialize_key(type_->programs(), canonical->bytes(), canonical->size(),
                                 holder.get()) == DDS_BOOLEAN_FALSE) {
        return fail(DDS_RETCODE_ERROR, method, "the key of the instance could not be deserialised");
    }
    return key_payload(holder.get(), method);
}

// ---- Instances ----------------------------------------------------------------------------------

DDS_InstanceHandle_t DataWriter::pin_instance(const Serdata &serdata) {
    const DDS_InstanceHandle_t known = instances_.handle_of(serdata.key().view());
    if (known != DDS_HANDLE_NIL) {
        return known;
    }
    InstancePin pin(sertype(), serdata);
    return instances_.keep(serdata.key().view(), pin);
}

// Instances that were only written have no handle here yet, but the application may know it from a
// reader in this process: they are registered first.
bool DataWriter::find_instance(DDS_InstanceHandle_t handle, KeyBytes *key) {
    if (instances_.find(handle, key)) {
        return true;
    }
    KeyBytes candidate;
    while (instances_.find_without_handle(&candidate)) {
        const SerdataRef serdata(Serdata::from_key(&sertype(), candidate.data(), candidate.size()));
        pin_instance(*serdata);
    }
    return instances_.find(handle, key);
}

DDS_ReturnCode_t DataWriter::check_handle(const Serdata &serdata, DDS_InstanceHandle_t handle,
                                          const char *method) {
    if (handle == DDS_HANDLE_NIL || !type_->is_keyed()) {
        return DDS_RETCODE_OK;
    }
    KeyBytes key;
    if (find_instance(handle, &key) && key.view() == serdata.key().view()) {
        return DDS_RETCODE_OK;
    }
    return fail(DDS_RETCODE_BAD_PARAMETER, method,
                "the handle is not that of the sample's instance");
}

DDS_InstanceHandle_t DataWriter::register_instance(const void *sample, const DDS_WriteParams_t &,
                                                   const char *method) {
    if (!is_enabled()) {
        not_enabled(method);
        return DDS_HANDLE_NIL;
    }
    if (!type_->is_keyed()) {
        return DDS_HANDLE_NIL;
    }
    const SerdataRef key = key_of(sample);
    if (key == nullptr) {
        fail(DDS_RETCODE_ERROR, method,
             "the key cannot be serialised: a string is NULL or exceeds its bound");
        return DDS_HANDLE_NIL;
    }
    return pin_instance(*key);
}

DDS_InstanceHandle_t DataWriter::lookup_instance(const void *key_holder) {
    if (!is_enabled() || !type_->is_keyed()) {
        return DDS_HANDLE_NIL;
    }
    const SerdataRef key = key_of(key_holder);
    if (key == nullptr || !instances_.contains(key->key().view())) {
        return DDS_HANDLE_NIL;
    }
    return pin_instance(*key);
}

DDS_ReturnCode_t DataWriter::get_key_value(void *key_holder, DDS_InstanceHandle_t handle,
                                           const char *method) {
    if (!is_enabled()) {
        return not_enabled(method);
    }
    KeyBytes key;
    if (handle == DDS_HANDLE_NIL || !find_instance(handle, &key)) {
        return fail(DDS_RETCODE_BAD_PARAMETER, method,
                    "the handle is not that of an instance of this writer");
    }
    const SerdataRef serdata(Serdata::from_key(&sertype(), key.data(), key.size()));
    return KOLT_Cdr_deserialize_key(type_->programs(), serdata->bytes(), serdata->size(),
                                    key_holder) != DDS_BOOLEAN_FALSE
               ? DDS_RETCODE_OK
               : fail(DDS_RETCODE_ERROR, method,
                      "the key of the instance could not be deserialised");
}

// ---- Writing ------------------------------------------------------------------------------------

DDS_ReturnCode_t bad_timestamp(const char *method) {
    return fail(DDS_RETCODE_BAD_PARAMETER, method,
                "bad parameter: source_timestamp: it must lie between the years 1970 and 2106 "
                "(seconds from 0 to 4294967294), with less than 1000000000 nanoseconds");
}

DDS_ReturnCode_t DataWriter::send(SerdataRef serdata, std::uint32_t status_info,
                                  const DDS_Time_t &source_timestamp, const char *method) {
    const bool stamped = source_timestamp.sec >= 0;
    if (stamped && !is_valid_time(source_timestamp)) {
        return bad_timestamp(method);
    }
    serdata->statusinfo = status_info;
    serdata->timestamp.v = stamped ? to_engine(source_timestamp) : dds_time();
    const DDS_ReturnCode_t code = forward_sample(std::move(serdata));
    note_outcome(code);
    return code == DDS_RETCODE_OK || code == DDS_RETCODE_TIMEOUT
               ? code
               : fail(code, method, "the DDS engine could not write the sample");
}

DDS_ReturnCode_t DataWriter::forward_sample(SerdataRef serdata) {
    if (ended_.load()) {
        return DDS_RETCODE_TIMEOUT;
    }
    const LocalWrite write(ended_);
    const dds_return_t result = dds_forwardcdr(engine(), serdata.release());
    const bool interrupted = ended_.load() && result < 0;
    return interrupted || write.gave_up() ? DDS_RETCODE_TIMEOUT : to_return_code(result);
}

// A reader that is slow is news, each write that it delays is not: the log, forwarded to the network,
// would feed itself. After each time-out the engine lets some writes pass, so only a writer that has
// not timed out for a while writes again. Told on the listener thread, since the log of a thread that publishes the log is
// not forwarded.
void DataWriter::note_outcome(DDS_ReturnCode_t code) {
    const bool times_out = code == DDS_RETCODE_TIMEOUT;
    if ((!times_out && !times_out_.load(std::memory_order_relaxed)) || ended_.load()) {
        return;
    }
    const MonotonicTime now = monotonic_now();
    if (times_out) {
        last_time_out_ = now;
    } else if (now < later(last_time_out_, kWritesAgainAfter)) {
        return;
    }
    if (times_out_.exchange(times_out) == times_out) {
        return;
    }
    ListenerThread &thread = publisher_.participant().listener_thread();
    if (thread.start()) {
        thread.post(outcome_);
    }
}

void DataWriter::report_outcome() {
    const bool times_out = times_out_.load();
    if (times_out == reported_times_out_) {
        return;
    }
    reported_times_out_ = times_out;
    KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION, KOLT_CONFIG_LOG_LEVEL_WARNING,
                     "DDS_DataWriter_write",
                     times_out
                         ? "the writer of the topic %s times out: a reader does not make room "
                           "within max_blocking_time"
                         : "the writer of the topic %s writes again",
                     topic_.name().c_str());
}

// The engine's own lock of the writer is held by the write that is to be ended.
DDS_ReturnCode_t DataWriter::end_writes() {
    ended_.store(true);
    if (!is_enabled()) {
        return DDS_RETCODE_OK;
    }
    dds_guid_t guid{};
    const dds_return_t known = dds_get_guid(engine(), &guid);
    if (known < 0) {
        return to_return_code(known);
    }
    const ddsi_guid writer = nn_ntoh_guid(std::bit_cast<ddsi_guid>(guid));
    ddsi_domaingv *const domain = sertype().domain();
    const Awake awake(domain);
    return to_return_code(ddsi_unblock_throttled_writer(domain, &writer));
}

DDS_ReturnCode_t DataWriter::write_now(const void *sample, const DDS_WriteParams_t &params,
                                       const char *method) {
    Result<SerdataRef> serdata = serialize(sample, method);
    if (!serdata) {
        return serdata.code();
    }
    if (type_->is_keyed()) {
        const DDS_ReturnCode_t checked = check_handle(**serdata, params.handle, method);
        if (checked != DDS_RETCODE_OK) {
            return checked;
        }
        instances_.add((*serdata)->key().view());
    }
    return send(std::move(*serdata), 0, params.source_timestamp, method);
}

DDS_ReturnCode_t DataWriter::write_deferred(const DDS_WriteParams_t &params, const char *method) {
    const DataRequests::InProgress in_progress(requests_);
    const DDS_DataWriterListener l = listener_.get();
    if (l.on_data_request == nullptr) {
        return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                    "a deferred write needs a listener with on_data_request");
    }
    void *const sample = l.on_data_request(l.listener_data, &handle_, &params.cookie);
    if (sample == nullptr) {
        return fail(DDS_RETCODE_ERROR, method, "on_data_request returned NULL instead of a sample");
    }
    const DDS_ReturnCode_t result =
        guarded(method, [&] { return write_now(sample, params, method); });
    if (l.on_data_return != nullptr) {
        l.on_data_return(l.listener_data, &handle_, sample, &params.cookie);
    }
    return result;
}

DDS_ReturnCode_t DataWriter::write(const void *sample, const DDS_WriteParams_t &params,
                                   const char *method) {
    if (!is_enabled()) {
        return not_enabled(method);
    }
    if (deferred_write_ && params.cookie.length != 0) {
        return write_deferred(params, method);
    }
    if (sample == nullptr) {
        return bad_parameter(method, "sample");
    }
    return write_now(sample, params, method);
}

Result<SerdataRef> DataWriter::payload_of_change(const void *sample, DDS_InstanceHandle_t handle,
                                                 const char *method) {
    if (sample != nullptr) {
        Result<SerdataRef> payload = key_payload(sample, method);
        if (!payload) {
            return payload;
        }
        const DDS_ReturnCode_t checked = check_handle(**payload, handle, method);
        return checked == DDS_RETCODE_OK ? std::move(payload) : Result<SerdataRef>(checked);
    }
    if (handle == DDS_HANDLE_NIL) {
        return bad_parameter(method, "sample and handle");
    }
    KeyBytes key;
    if (!find_instance(handle, &key)) {
        return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                    "the handle is not that of a registered instance");
    }
    return key_payload_of_instance(key, method);
}

DDS_ReturnCode_t DataWriter::change_instance(InstanceChange change, const void *sample,
                                             const DDS_WriteParams_t &params, const char *method) {
    if (!is_enabled()) {
        return not_enabled(method);
    }
    if (!type_->is_keyed()) {
        return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                    "the type has no key, and its samples have no instances");
    }
    Result<SerdataRef> payload = payload_of_change(sample, params.handle, method);
    if (!payload) {
        return payload.code();
    }
    const std::string key((*payload)->key().view());
    if (change == InstanceChange::kDispose) {
        instances_.add(key);
        return send(std::move(*payload), NN_STATUSINFO_DISPOSE, params.source_timestamp, method);
    }
    if (!instances_.contains(key)) {
        return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                    "the instance is not registered with the writer");
    }
    const std::uint32_t status_info =
        NN_STATUSINFO_UNREGISTER | (autodispose_.load() ? NN_STATUSINFO_DISPOSE : 0U);
    const DDS_ReturnCode_t result =
        send(std::move(*payload), status_info, params.source_timestamp, method);
    if (result == DDS_RETCODE_OK) {
        instances_.remove(key);
    }
    return result;
}

DDS_ReturnCode_t DataWriter::wait_for_acknowledgments(const DDS_Duration_t &max_wait,
                                                      const char *method) {
    if (!is_enabled()) {
        return not_enabled(method);
    }
    return to_return_code(dds_wait_for_acks(engine(), to_engine(max_wait)));
}

void *DataWriter::create_data() {
    return endpoint_->plugin().create_sample(endpoint_->data());
}

DDS_ReturnCode_t DataWriter::delete_data(void *sample) {
    endpoint_->plugin().destroy_sample(endpoint_->data(), sample);
    return DDS_RETCODE_OK;
}

}  // namespace kolt::engine
