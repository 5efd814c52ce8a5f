#include "engine/endpoint/endpoint_group.hpp"

#include <algorithm>

#include "engine/domain/participant.hpp"
#include "engine/publication/data_writer.hpp"
#include "engine/publication/publisher.hpp"
#include "engine/subscription/data_reader.hpp"
#include "engine/subscription/subscriber.hpp"
#include "engine/topic/topic.hpp"

namespace kolt::engine {

namespace {

// What the two kinds of group do in ways of their own.
template <typename Traits>
struct Special;

template <>
struct Special<PublisherTraits> {
    static constexpr EntityKind kKind = EntityKind::kPublisher;
    static constexpr DDS_StatusMask kStatuses = 0;
    static constexpr const char *kDelete = "DDS_DomainParticipant_delete_publisher";
    static constexpr const char *kName = "publisher";
    static constexpr const char *kEndpoint = "writer";
    static constexpr const char *kEndpointOf = "writer of";
    static constexpr const DDS_DataWriterQos *kDefault = &DDS_DATAWRITER_QOS_DEFAULT;
    static constexpr const DDS_DataWriterQos *kUseTopic = &DDS_DATAWRITER_QOS_USE_TOPIC_QOS;
    static constexpr auto *kCreate = dds_create_publisher;
    static const char *obstacle(const DataWriter &) { return nullptr; }
    static void empty(DataWriter &, const char *) {}
};

template <>
struct Special<SubscriberTraits> {
    static constexpr EntityKind kKind = EntityKind::kSubscriber;
    static constexpr DDS_StatusMask kStatuses = DDS_DATA_ON_READERS_STATUS;
    static constexpr const char *kDelete = "DDS_DomainParticipant_delete_subscriber";
    static constexpr const char *kName = "subscriber";
    static constexpr const char *kEndpoint = "reader";
    static constexpr const char *kEndpointOf = "reader of";
    static constexpr const DDS_DataReaderQos *kDefault = &DDS_DATAREADER_QOS_DEFAULT;
    static constexpr const DDS_DataReaderQos *kUseTopic = &DDS_DATAREADER_QOS_USE_TOPIC_QOS;
    static constexpr auto *kCreate = dds_create_subscriber;
    static const char *obstacle(const DataReader &reader) {
        if (reader.has_loans()) {
            return "the reader has loans out";
        }
        return reader.has_conditions() ? "the reader has conditions" : nullptr;
    }
    static void empty(DataReader &reader, const char *method) {
        reader.delete_conditions(method, true);
    }
};

}  // namespace

template <typename Traits>
EndpointGroup<Traits>::EndpointGroup(Participant &participant, const Qos &qos)
    : Entity(Special<Traits>::kKind, &handle_._entity, Special<Traits>::kStatuses),
      participant_(participant),
      qos_(participant.tree(), qos) {}

template <typename Traits>
EndpointGroup<Traits>::~EndpointGroup() {
    listener_.set(nullptr, 0);
    delete_engine(Special<Traits>::kDelete);
}

// ---- Enabling and QoS ---------------------------------------------------------------------------

template <typename Traits>
bool EndpointGroup<Traits>::autoenables() {
    return is_enabled() && qos_.read([](const Qos &qos) {
        return qos.entity_factory.autoenable_created_entities != 0;
    });
}

template <typename Traits>
DDS_ReturnCode_t EndpointGroup<Traits>::enable(const char *method) {
    if (!participant_.is_enabled()) {
        return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method, "the participant is not enabled");
    }
    const EngineQos engine_qos = qos_.read([](const Qos &qos) { return to_engine(qos); });
    const dds_entity_t entity =
        Special<Traits>::kCreate(participant_.engine(), engine_qos.get(), nullptr);
    if (entity < 0) {
        return fail(to_return_code(entity), method, "the engine refuses the %s",
                    Special<Traits>::kName);
    }
    set_engine(entity);
    DDS_ReturnCode_t result = DDS_RETCODE_OK;
    if (!autoenables()) {
        return result;
    }
    for (Endpoint *const endpoint : endpoints()) {
        const DDS_ReturnCode_t enabled = endpoint->enable(method);
        if (enabled != DDS_RETCODE_OK) {
            result = enabled;
        }
    }
    return result;
}

template <typename Traits>
DDS_ReturnCode_t EndpointGroup<Traits>::set_qos(const Qos &qos, const char *method) {
    return qos_.set(qos, *this, method, [](const Qos &q) { return to_engine(q); });
}

template <typename Traits>
DDS_ReturnCode_t EndpointGroup<Traits>::get_default_qos(EndpointQos *qos, const char *topic_name) {
    {
        const std::lock_guard lock(participant_.tree());
        if (default_qos_.is_set()) {
            return default_qos_.get(qos) ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
        }
    }
    return participant_.get_default(qos, topic_name);
}

template <typename Traits>
DDS_ReturnCode_t EndpointGroup<Traits>::set_default_qos(const EndpointQos &qos,
                                                        const char *method) {
    const DDS_ReturnCode_t checked = check_qos(qos, method);
    if (checked != DDS_RETCODE_OK) {
        return checked;
    }
    const std::lock_guard lock(participant_.tree());
    return default_qos_.set(qos) ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
}

// ---- Endpoints ----------------------------------------------------------------------------------

template <typename Traits>
DDS_ReturnCode_t EndpointGroup<Traits>::choose_qos(const EndpointQos *given, EndpointTopic &topic,
                                                   EndpointQos *chosen) {
    const bool from_topic = given == Special<Traits>::kUseTopic;
    if (given != nullptr && given != Special<Traits>::kDefault && !from_topic) {
        return kolt::qos::copy(*chosen, *given) ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
    }
    const DDS_ReturnCode_t result = get_default_qos(chosen, topic.topic().name().c_str());
    if (result != DDS_RETCODE_OK || !from_topic) {
        return result;
    }
    kolt::qos::OwnedQos<DDS_TopicQos> topic_qos;
    const DDS_ReturnCode_t got = topic.topic().get_qos(topic_qos.get());
    if (got != DDS_RETCODE_OK) {
        return got;
    }
    return copy_from_topic_qos(chosen, *topic_qos) ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
}

template <typename Traits>
auto EndpointGroup<Traits>::create(EndpointTopic *topic, const EndpointQos *qos,
                                   const EndpointListener *listener, DDS_StatusMask mask,
                                   const char *method) -> EndpointRecord * {
    if (&topic->participant() != &participant_) {
        fail(DDS_RETCODE_BAD_PARAMETER, method, "the topic is another participant's");
        return nullptr;
    }
    kolt::qos::OwnedQos<EndpointQos> chosen;
    if (choose_qos(qos, *topic, chosen.get()) != DDS_RETCODE_OK) {
        throw std::bad_alloc();
    }
    if (check_qos(*chosen, method) != DDS_RETCODE_OK) {
        return nullptr;
    }

    auto endpoint = std::make_unique<Endpoint>(self(), *topic, *chosen);
    if (endpoint->attach_type(method) != DDS_RETCODE_OK) {
        return nullptr;
    }
    endpoint->set_listener(listener, mask);
    if (autoenables() && endpoint->enable(method) != DDS_RETCODE_OK) {
        return nullptr;
    }
    EndpointRecord *const handle = endpoint->handle();
    const std::lock_guard lock(participant_.tree());
    endpoints_.push_back(std::move(endpoint));
    note_entity(method, "created", Special<Traits>::kEndpointOf, topic->name().c_str());
    return handle;
}

template <typename Traits>
DDS_ReturnCode_t EndpointGroup<Traits>::remove(Endpoint *endpoint, const char *method) {
    std::unique_ptr<Endpoint> removed;  // deleted outside the lock
    {
        const std::lock_guard lock(participant_.tree());
        if (!contains_pointer(endpoints_, endpoint)) {
            return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method, "the %s is not this %s's",
                        Special<Traits>::kEndpoint, Special<Traits>::kName);
        }
        if (const char *const obstacle = Special<Traits>::obstacle(*endpoint)) {
            return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method, "%s", obstacle);
        }
        removed = extract(endpoints_, endpoint);
    }
    note_entity(method, "deleted", Special<Traits>::kEndpointOf, removed->topic().name().c_str());
    return DDS_RETCODE_OK;
}

template <typename Traits>
DDS_ReturnCode_t EndpointGroup<Traits>::delete_contained_entities(const char *method) {
    DDS_ReturnCode_t result = DDS_RETCODE_OK;
    for (Endpoint *const endpoint : endpoints()) {
        Special<Traits>::empty(*endpoint, method);
        const DDS_ReturnCode_t removed = remove(endpoint, method);
        if (removed != DDS_RETCODE_OK) {
            result = removed;
        }
    }
    return result;
}

template <typename Traits>
auto EndpointGroup<Traits>::lookup(const char *topic_name) -> EndpointRecord * {
    const std::lock_guard lock(participant_.tree());
    for (const auto &endpoint : endpoints_) {
        if (endpoint->topic().name() == topic_name) {
            return endpoint->handle();
        }
    }
    return nullptr;
}

template <typename Traits>
bool EndpointGroup<Traits>::contains(DDS_InstanceHandle_t handle) const {
    return std::any_of(endpoints_.begin(), endpoints_.end(),
                       [&](const auto &endpoint) { return endpoint->instance_handle() == handle; });
}

template <typename Traits>
auto EndpointGroup<Traits>::endpoints() -> std::vector<Endpoint *> {
    return pointers(participant_.tree(), endpoints_);
}

template class EndpointGroup<PublisherTraits>;
template class EndpointGroup<SubscriberTraits>;

// ---- A topic's QoS ------------------------------------------------------------------------------

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
