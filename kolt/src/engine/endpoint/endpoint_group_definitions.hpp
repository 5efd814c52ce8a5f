// SPDX-License-Identifier: Apache-2.0
// The definitions of EndpointGroup, for the two files that instantiate it.
#pragma once

#include <algorithm>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

#include "engine/cyclone/convert.hpp"
#include "engine/endpoint/endpoint_group.hpp"
#include "engine/entity/owned_list.hpp"
#include "engine/qos/from_topic_qos.hpp"
#include "engine/qos/qos_check.hpp"
#include "engine/qos/qos_map.hpp"
#include "engine/topic/topic.hpp"

namespace kolt::engine {

template <typename Traits>
EndpointGroup<Traits>::EndpointGroup(ParticipantScope &participant, const Qos &qos)
    : Entity(Traits::kKind, &handle_._entity, Traits::kStatuses),
      participant_(participant),
      listener_(participant.listener_thread()),
      qos_(participant.tree(), qos) {}

template <typename Traits>
EndpointGroup<Traits>::~EndpointGroup() {
    listener_.remove();
    delete_engine(Traits::kDelete);
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
        return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                    "the participant is disabled: enable it first");
    }
    const EngineQos engine_qos = qos_.read([](const Qos &qos) { return to_engine(qos); });
    const dds_entity_t entity = Traits::kCreate(participant_.engine(), engine_qos.get(), nullptr);
    if (entity < 0) {
        return fail(to_return_code(entity), method, "the DDS engine could not create the %s",
                    Traits::kName);
    }
    set_engine(entity);
    DDS_ReturnCode_t result = DDS_RETCODE_OK;
    if (!autoenables()) {
        return result;
    }
    for (Endpoint *const endpoint : endpoints()) {
        const DDS_ReturnCode_t enabled = endpoint->enable_and_announce(method);
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
    const bool from_topic = given == Traits::kUseTopic;
    if (given != nullptr && given != Traits::kDefault && !from_topic) {
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
        fail(DDS_RETCODE_BAD_PARAMETER, method,
             "the topic belongs to another participant: use one of the same participant");
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
    if (endpoint->attach_type(method) != DDS_RETCODE_OK ||
        endpoint->set_listener(listener, mask, method) != DDS_RETCODE_OK ||
        (autoenables() && endpoint->enable(method) != DDS_RETCODE_OK)) {
        return nullptr;
    }
    Endpoint *const created = endpoint.get();
    {
        const std::lock_guard lock(participant_.tree());
        endpoints_.push_back(std::move(endpoint));
    }
    note_entity(method, "created", Traits::kEndpointOf, topic->name().c_str());
    EndpointRecord *const handle = created->handle();
    if (created->is_enabled()) {
        created->announce();
    }
    return handle;
}

template <typename Traits>
DDS_ReturnCode_t EndpointGroup<Traits>::remove(Endpoint *endpoint, const char *method) {
    const auto not_ours = [&] {
        return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method, "the %s does not belong to this %s",
                    Traits::kEndpoint, Traits::kName);
    };
    if (!contains(endpoint)) {
        return not_ours();
    }
    // Before obstacles are looked for: a callback in progress may be one, with its loans.
    endpoint->statuses().silence();
    if (const char *const obstacle = Traits::obstacle(*endpoint)) {
        if (endpoint->is_enabled()) {
            endpoint->announce();
        }
        return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method, "%s", obstacle);
    }
    std::unique_ptr<Endpoint> removed;  // deleted outside the lock
    {
        const std::lock_guard lock(participant_.tree());
        removed = extract(endpoints_, endpoint);
    }
    if (removed == nullptr) {
        return not_ours();
    }
    note_entity(method, "deleted", Traits::kEndpointOf, removed->topic().name().c_str());
    return DDS_RETCODE_OK;
}

template <typename Traits>
DDS_ReturnCode_t EndpointGroup<Traits>::delete_contained_entities(const char *method) {
    DDS_ReturnCode_t result = DDS_RETCODE_OK;
    for (Endpoint *const endpoint : endpoints()) {
        Traits::empty(*endpoint, method);
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
bool EndpointGroup<Traits>::contains(const Endpoint *endpoint) {
    const std::lock_guard lock(participant_.tree());
    return contains_pointer(endpoints_, endpoint);
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

}  // namespace kolt::engine
