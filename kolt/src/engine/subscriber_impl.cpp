#include "engine/subscriber_impl.hpp"

#include <algorithm>

#include "engine/convert.hpp"
#include "engine/participant_impl.hpp"
#include "engine/publisher_impl.hpp"
#include "engine/qos_check.hpp"
#include "engine/qos_map.hpp"
#include "engine/reader_impl.hpp"
#include "engine/topic_impl.hpp"

namespace kolt::engine {

namespace api = engine_api;

Subscriber::Subscriber(Participant &participant, const DDS_SubscriberQos &qos)
    : Entity(EntityKind::kSubscriber, &handle_._entity, DDS_DATA_ON_READERS_STATUS),
      participant_(participant) {
    if (!kolt::qos::copy(*qos_, qos)) throw std::bad_alloc();
}

Subscriber::~Subscriber() {
    listener_.set(nullptr, 0);
    delete_engine("DDS_DomainParticipant_delete_subscriber");
}

// ---- Enabling and QoS ---------------------------------------------------------------------------

bool Subscriber::autoenables() {
    const std::lock_guard lock(participant_.tree());
    return is_enabled() && (*qos_).entity_factory.autoenable_created_entities != 0;
}

DDS_ReturnCode_t Subscriber::enable(const char *method) {
    if (!participant_.is_enabled()) {
        return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method, "the participant is not enabled");
    }
    EngineQos engine_qos;
    std::vector<DataReader *> readers;
    {
        const std::lock_guard lock(participant_.tree());
        engine_qos = to_engine(*qos_);
        for (const auto &reader : readers_) readers.push_back(reader.get());
    }
    const dds_entity_t entity =
        dds_create_subscriber(participant_.engine(), engine_qos.get(), nullptr);
    if (entity < 0) {
        return fail(to_return_code(entity), method, "the engine refuses the subscriber");
    }
    set_engine(entity);
    DDS_ReturnCode_t result = DDS_RETCODE_OK;
    if (!autoenables()) return result;
    for (DataReader *const reader : readers) {
        const DDS_ReturnCode_t enabled = reader->enable(method);
        if (enabled != DDS_RETCODE_OK) result = enabled;
    }
    return result;
}

DDS_ReturnCode_t Subscriber::get_qos(DDS_SubscriberQos *qos) {
    const std::lock_guard lock(participant_.tree());
    return DDS_SubscriberQos_copy(qos, qos_.get());
}

DDS_ReturnCode_t Subscriber::set_qos(const DDS_SubscriberQos &qos, const char *method) {
    const DDS_ReturnCode_t checked = check_qos(qos, method);
    if (checked != DDS_RETCODE_OK) return checked;
    EngineQos engine_qos;
    {
        const std::lock_guard lock(participant_.tree());
        if (is_enabled()) {
            const DDS_ReturnCode_t changed = check_change(*qos_, qos, method);
            if (changed != DDS_RETCODE_OK) return changed;
            engine_qos = to_engine(qos);
        }
    }
    if (engine_qos != nullptr) {
        const dds_return_t result = dds_set_qos(engine(), engine_qos.get());
        if (result < 0) return fail(to_return_code(result), method, "the engine refuses the QoS");
    }
    const std::lock_guard lock(participant_.tree());
    return DDS_SubscriberQos_copy(qos_.get(), &qos);
}

DDS_ReturnCode_t Subscriber::get_default_reader_qos(DDS_DataReaderQos *qos,
                                                    const char *topic_name) {
    {
        const std::lock_guard lock(participant_.tree());
        if (default_reader_qos_.is_set()) {
            return default_reader_qos_.get(qos) ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
        }
    }
    return participant_.get_default(qos, topic_name);
}

DDS_ReturnCode_t Subscriber::set_default_reader_qos(const DDS_DataReaderQos &qos,
                                                    const char *method) {
    const DDS_ReturnCode_t checked = check_qos(qos, method);
    if (checked != DDS_RETCODE_OK) return checked;
    const std::lock_guard lock(participant_.tree());
    return default_reader_qos_.set(qos) ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
}

// ---- Readers ------------------------------------------------------------------------------------

DDS_ReturnCode_t Subscriber::choose_reader_qos(const DDS_DataReaderQos *given,
                                               TopicDescription &topic, DDS_DataReaderQos *chosen) {
    const bool from_topic = given == &DDS_DATAREADER_QOS_USE_TOPIC_QOS;
    if (given != nullptr && given != &DDS_DATAREADER_QOS_DEFAULT && !from_topic) {
        return DDS_DataReaderQos_copy(chosen, given);
    }
    const DDS_ReturnCode_t result = get_default_reader_qos(chosen, topic.topic().name().c_str());
    if (result != DDS_RETCODE_OK || !from_topic) return result;
    kolt::qos::OwnedQos<DDS_TopicQos> topic_qos;
    const DDS_ReturnCode_t got = topic.topic().get_qos(topic_qos.get());
    if (got != DDS_RETCODE_OK) return got;
    return copy_from_topic_qos(chosen, *topic_qos) ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
}

DDS_DataReader *Subscriber::create_reader(TopicDescription *topic, const DDS_DataReaderQos *qos,
                                          const DDS_DataReaderListener *listener,
                                          DDS_StatusMask mask, const char *method) {
    if (&topic->participant() != &participant_) {
        fail(DDS_RETCODE_BAD_PARAMETER, method, "the topic is another participant's");
        return nullptr;
    }
    kolt::qos::OwnedQos<DDS_DataReaderQos> chosen;
    if (choose_reader_qos(qos, *topic, chosen.get()) != DDS_RETCODE_OK) throw std::bad_alloc();
    if (check_qos(*chosen, method) != DDS_RETCODE_OK) return nullptr;

    auto reader = std::make_unique<DataReader>(*this, *topic, *chosen);
    if (reader->attach_type(method) != DDS_RETCODE_OK) return nullptr;
    reader->set_listener(listener, mask);
    if (autoenables() && reader->enable(method) != DDS_RETCODE_OK) return nullptr;
    DDS_DataReader *const handle = reader->handle();
    const std::lock_guard lock(participant_.tree());
    readers_.push_back(std::move(reader));
    note_entity(method, "created", "reader of", topic->name().c_str());
    return handle;
}

DDS_ReturnCode_t Subscriber::delete_reader(DataReader *reader, const char *method) {
    std::unique_ptr<DataReader> removed;  // deleted outside the lock
    {
        const std::lock_guard lock(participant_.tree());
        if (!contains_pointer(readers_, reader)) {
            return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                        "the reader is not this subscriber's");
        }
        if (reader->has_loans()) {
            return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method, "the reader has loans out");
        }
        if (reader->has_conditions()) {
            return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method, "the reader has conditions");
        }
        removed = extract(readers_, reader);
    }
    note_entity(method, "deleted", "reader of", removed->topic().name().c_str());
    return DDS_RETCODE_OK;
}

DDS_ReturnCode_t Subscriber::delete_contained_entities(const char *method) {
    std::vector<DataReader *> readers;
    {
        const std::lock_guard lock(participant_.tree());
        for (const auto &reader : readers_) readers.push_back(reader.get());
    }
    DDS_ReturnCode_t result = DDS_RETCODE_OK;
    for (DataReader *const reader : readers) {
        reader->delete_conditions(method, true);
        const DDS_ReturnCode_t deleted = delete_reader(reader, method);
        if (deleted != DDS_RETCODE_OK) result = deleted;
    }
    return result;
}

DDS_DataReader *Subscriber::lookup_reader(const char *topic_name) {
    const std::lock_guard lock(participant_.tree());
    for (const auto &reader : readers_) {
        if (reader->topic().name() == topic_name) return reader->handle();
    }
    return nullptr;
}

bool Subscriber::contains(DDS_InstanceHandle_t handle) const {
    return std::any_of(readers_.begin(), readers_.end(),
                       [&](const auto &reader) { return reader->instance_handle() == handle; });
}

// ---- Events -------------------------------------------------------------------------------------

bool Subscriber::dispatch_data_on_readers() {
    const auto has = [](const DDS_SubscriberListener &l) {
        return l.on_data_on_readers != nullptr;
    };
    const auto call = [this](const DDS_SubscriberListener &l) {
        uint32_t taken = 0;
        dds_take_status(engine(), &taken, api::kDataOnReadersStatus);
        l.on_data_on_readers(l.reader_listener.listener_data, &handle_);
    };
    if (listener_.handle(DDS_DATA_ON_READERS_STATUS, has, call)) return true;
    return participant_.listener().handle(
        DDS_DATA_ON_READERS_STATUS,
        [&](const DDS_DomainParticipantListener &l) { return has(l.subscriber_listener); },
        [&](const DDS_DomainParticipantListener &l) { call(l.subscriber_listener); });
}

void Subscriber::notify_readers() {
    std::vector<DataReader *> readers;
    {
        const std::lock_guard lock(participant_.tree());
        for (const auto &reader : readers_) readers.push_back(reader.get());
    }
    for (DataReader *const reader : readers) {
        if (reader->has_data_available()) reader->dispatch_data_available();
    }
}

}  // namespace kolt::engine
