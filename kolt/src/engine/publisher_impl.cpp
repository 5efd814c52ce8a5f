#include "engine/publisher_impl.hpp"

#include <algorithm>
#include <chrono>

#include "engine/convert.hpp"
#include "engine/participant_impl.hpp"
#include "engine/qos_check.hpp"
#include "engine/qos_map.hpp"
#include "engine/topic_impl.hpp"
#include "engine/writer_impl.hpp"

namespace kolt::engine {

namespace api = engine_api;

Publisher::Publisher(Participant &participant, const DDS_PublisherQos &qos)
    : Entity(EntityKind::kPublisher, &handle_._entity, 0), participant_(participant) {
    if (!kolt::qos::copy(*qos_, qos)) throw std::bad_alloc();
}

Publisher::~Publisher() {
    listener_.set(nullptr, 0);
    delete_engine("DDS_DomainParticipant_delete_publisher");
}

// ---- Enabling and QoS ---------------------------------------------------------------------------

bool Publisher::autoenables() {
    const std::lock_guard lock(participant_.tree());
    return is_enabled() && (*qos_).entity_factory.autoenable_created_entities != 0;
}

DDS_ReturnCode_t Publisher::enable(const char *method) {
    if (!participant_.is_enabled()) {
        return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method, "the participant is not enabled");
    }
    EngineQos engine_qos;
    std::vector<DataWriter *> writers;
    {
        const std::lock_guard lock(participant_.tree());
        engine_qos = to_engine(*qos_);
        for (const auto &writer : writers_) writers.push_back(writer.get());
    }
    const dds_entity_t entity =
        dds_create_publisher(participant_.engine(), engine_qos.get(), nullptr);
    if (entity < 0) {
        return fail(to_return_code(entity), method, "the engine refuses the publisher");
    }
    set_engine(entity);
    DDS_ReturnCode_t result = DDS_RETCODE_OK;
    if (!autoenables()) return result;
    for (DataWriter *const writer : writers) {
        const DDS_ReturnCode_t enabled = writer->enable(method);
        if (enabled != DDS_RETCODE_OK) result = enabled;
    }
    return result;
}

DDS_ReturnCode_t Publisher::get_qos(DDS_PublisherQos *qos) {
    const std::lock_guard lock(participant_.tree());
    return DDS_PublisherQos_copy(qos, qos_.get());
}

DDS_ReturnCode_t Publisher::set_qos(const DDS_PublisherQos &qos, const char *method) {
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
    return DDS_PublisherQos_copy(qos_.get(), &qos);
}

DDS_ReturnCode_t Publisher::get_default_writer_qos(DDS_DataWriterQos *qos, const char *topic_name) {
    {
        const std::lock_guard lock(participant_.tree());
        if (default_writer_qos_.is_set()) {
            return default_writer_qos_.get(qos) ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
        }
    }
    return participant_.get_default(qos, topic_name);
}

DDS_ReturnCode_t Publisher::set_default_writer_qos(const DDS_DataWriterQos &qos,
                                                   const char *method) {
    const DDS_ReturnCode_t checked = check_qos(qos, method);
    if (checked != DDS_RETCODE_OK) return checked;
    const std::lock_guard lock(participant_.tree());
    return default_writer_qos_.set(qos) ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
}

// ---- Writers ------------------------------------------------------------------------------------

DDS_ReturnCode_t Publisher::choose_writer_qos(const DDS_DataWriterQos *given, Topic &topic,
                                              DDS_DataWriterQos *chosen) {
    const bool from_topic = given == &DDS_DATAWRITER_QOS_USE_TOPIC_QOS;
    if (given != nullptr && given != &DDS_DATAWRITER_QOS_DEFAULT && !from_topic) {
        return DDS_DataWriterQos_copy(chosen, given);
    }
    const DDS_ReturnCode_t result = get_default_writer_qos(chosen, topic.name().c_str());
    if (result != DDS_RETCODE_OK || !from_topic) return result;
    kolt::qos::OwnedQos<DDS_TopicQos> topic_qos;
    const DDS_ReturnCode_t got = topic.get_qos(topic_qos.get());
    if (got != DDS_RETCODE_OK) return got;
    return copy_from_topic_qos(chosen, *topic_qos) ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
}

DDS_DataWriter *Publisher::create_writer(Topic *topic, const DDS_DataWriterQos *qos,
                                         const DDS_DataWriterListener *listener,
                                         DDS_StatusMask mask, const char *method) {
    if (&topic->participant() != &participant_) {
        fail(DDS_RETCODE_BAD_PARAMETER, method, "the topic is another participant's");
        return nullptr;
    }
    kolt::qos::OwnedQos<DDS_DataWriterQos> chosen;
    if (choose_writer_qos(qos, *topic, chosen.get()) != DDS_RETCODE_OK) throw std::bad_alloc();
    if (check_qos(*chosen, method) != DDS_RETCODE_OK) return nullptr;

    auto writer = std::make_unique<DataWriter>(*this, *topic, *chosen);
    if (writer->attach_type(method) != DDS_RETCODE_OK) return nullptr;
    writer->set_listener(listener, mask);
    if (autoenables() && writer->enable(method) != DDS_RETCODE_OK) return nullptr;
    DDS_DataWriter *const handle = writer->handle();
    const std::lock_guard lock(participant_.tree());
    writers_.push_back(std::move(writer));
    note_entity(method, "created", "writer of", topic->name().c_str());
    return handle;
}

DDS_ReturnCode_t Publisher::delete_writer(DataWriter *writer, const char *method) {
    std::unique_ptr<DataWriter> removed;  // deleted outside the lock
    {
        const std::lock_guard lock(participant_.tree());
        removed = extract(writers_, writer);
    }
    if (removed == nullptr) {
        return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method, "the writer is not this publisher's");
    }
    note_entity(method, "deleted", "writer of", removed->topic().name().c_str());
    return DDS_RETCODE_OK;
}

DDS_ReturnCode_t Publisher::delete_contained_entities(const char *method) {
    std::vector<DataWriter *> writers;
    {
        const std::lock_guard lock(participant_.tree());
        for (const auto &writer : writers_) writers.push_back(writer.get());
    }
    DDS_ReturnCode_t result = DDS_RETCODE_OK;
    for (DataWriter *const writer : writers) {
        const DDS_ReturnCode_t deleted = delete_writer(writer, method);
        if (deleted != DDS_RETCODE_OK) result = deleted;
    }
    return result;
}

DDS_DataWriter *Publisher::lookup_writer(const char *topic_name) {
    const std::lock_guard lock(participant_.tree());
    for (const auto &writer : writers_) {
        if (writer->topic().name() == topic_name) return writer->handle();
    }
    return nullptr;
}

bool Publisher::contains(DDS_InstanceHandle_t handle) const {
    return std::any_of(writers_.begin(), writers_.end(),
                       [&](const auto &writer) { return writer->instance_handle() == handle; });
}

DDS_ReturnCode_t Publisher::wait_for_acknowledgments(const DDS_Duration_t &max_wait,
                                                     const char *method) {
    using Clock = std::chrono::steady_clock;
    if (!is_enabled()) return not_enabled(method);
    std::vector<dds_entity_t> writers;
    {
        const std::lock_guard lock(participant_.tree());
        for (const auto &writer : writers_) {
            if (writer->is_enabled()) writers.push_back(writer->engine());
        }
    }
    const dds_duration_t span = to_engine(max_wait);
    const Clock::time_point start = Clock::now();
    for (const dds_entity_t writer : writers) {
        dds_duration_t left = span;
        if (span != api::kInfinity) {
            const auto spent =
                std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now() - start);
            left = std::max<dds_duration_t>(span - spent.count(), 0);
        }
        const dds_return_t result = dds_wait_for_acks(writer, left);
        if (result < 0) return to_return_code(result);
    }
    return DDS_RETCODE_OK;
}

template <typename EndpointQos>
bool copy_from_topic_qos(EndpointQos *qos, const DDS_TopicQos &topic_qos) {
    bool complete = true;
    kolt::qos::for_each_member<DDS_TopicQos>([&](const auto &from) {
        kolt::qos::for_each_member<EndpointQos>([&](const auto &to) {
            using From = std::remove_cvref_t<decltype(topic_qos.*(from.place))>;
            using To = std::remove_cvref_t<decltype(qos->*(to.place))>;
            // A mark on the topic says nothing about the endpoint.
            if constexpr (std::is_same_v<From, To> &&
                          !std::is_same_v<From, DDS_ProtocolQosPolicy>) {
                complete = kolt::qos::copy(qos->*(to.place), topic_qos.*(from.place)) && complete;
            }
        });
    });
    return complete;
}
template bool copy_from_topic_qos(DDS_DataWriterQos *, const DDS_TopicQos &);
template bool copy_from_topic_qos(DDS_DataReaderQos *, const DDS_TopicQos &);

}  // namespace kolt::engine
