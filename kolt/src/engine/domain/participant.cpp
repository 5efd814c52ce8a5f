// SPDX-License-Identifier: Apache-2.0
// Participants: enabling, QoS, publishers and subscribers, and the deletion of everything.
#include "engine/domain/participant.hpp"

#include "engine/cyclone/awake.hpp"
#include "engine/cyclone/convert.hpp"
#include "engine/cyclone/domain_parts.h"
#include "engine/cyclone/log_sink.hpp"
#include "engine/domain/free_descriptors.hpp"
#include "engine/domain/inherited_domains.hpp"
#include "engine/entity/owned_list.hpp"
#include "engine/publication/publisher.hpp"
#include "engine/qos/qos_check.hpp"
#include "engine/qos/qos_map.hpp"
#include "engine/subscription/subscriber.hpp"
#include "engine/topic/topic.hpp"

namespace kolt::engine {

namespace {

// What the engine opens for a domain (eight at most), and one to read its configuration with. It does
// not survive being refused some of them.
constexpr std::size_t kDescriptorsOfADomain = 10;

DDS_UnsignedLong big_endian(const std::uint8_t *bytes) {
    return static_cast<DDS_UnsignedLong>(bytes[0]) << 24 |
           static_cast<DDS_UnsignedLong>(bytes[1]) << 16 |
           static_cast<DDS_UnsignedLong>(bytes[2]) << 8 | bytes[3];
}

}  // namespace

Participant::Participant(DDS_DomainId_t domain_id, const DDS_DomainParticipantQos &qos)
    : ParticipantScope(domain_id, qos) {}

Participant::Participant(DDS_DomainId_t domain_id, const DDS_DomainParticipantQos &qos,
                         dds_entity_t wrapped)
    : ParticipantScope(domain_id, qos), wrapped_(true) {
    set_engine(wrapped);
    note_participant(domain_id);
}

Participant::~Participant() {
    close("DDS_DomainParticipantFactory_delete_participant");
}

void Participant::close(const char *method) {
    if (is_enabled()) {
        forget_participant(domain_id());
    }
    listener().remove();
    if (wrapped_) {
        release_engine();
    } else {
        delete_engine(method);
    }
    listener_thread().stop();
}

// ---- Enabling and QoS ---------------------------------------------------------------------------

DDS_ReturnCode_t Participant::enable(const char *method) {
    const EngineQos engine_qos =
        own_qos().read([](const DDS_DomainParticipantQos &qos) { return to_engine(qos); });
    install_log_sink();
    if (is_inherited(domain_id())) {
        return fail(
            DDS_RETCODE_PRECONDITION_NOT_MET, method,
            "the parent process had participants in domain %d when it forked this one: fork "
            "before they are created, or execute a program in the child",
            static_cast<int>(domain_id()));
    }
    const auto domain = static_cast<dds_domainid_t>(domain_id());
    if (dds_lookup_participant(domain, nullptr, 0) <= 0 &&
        !has_free_descriptors<kDescriptorsOfADomain>()) {
        return fail(DDS_RETCODE_OUT_OF_RESOURCES, method,
                    "the process has fewer than %zu file descriptors left for the domain %d: raise "
                    "its limit (ulimit -n) or close some",
                    kDescriptorsOfADomain, static_cast<int>(domain_id()));
    }
    const dds_entity_t entity = dds_create_participant(domain, engine_qos.get(), nullptr);
    if (entity < 0) {
        return fail(to_return_code(entity), method,
                    "the DDS engine could not create a participant in domain %d",
                    static_cast<int>(domain_id()));
    }
    kolt_domain_close_on_exec(last_domain());
    set_engine(entity);
    note_participant(domain_id());
    return autoenables() ? enable_contained(method) : DDS_RETCODE_OK;
}

DDS_ReturnCode_t Participant::enable_contained(const char *method) {
    std::vector<Entity *> contained;
    {
        const std::lock_guard lock(tree());
        for (const auto &topic : topics_) {
            contained.push_back(topic.get());
        }
        for (const auto &topic : filtered_topics_) {
            contained.push_back(topic.get());
        }
        for (const auto &publisher : publishers_) {
            contained.push_back(publisher.get());
        }
        for (const auto &subscriber : subscribers_) {
            contained.push_back(subscriber.get());
        }
    }
    DDS_ReturnCode_t result = DDS_RETCODE_OK;
    for (Entity *const entity : contained) {
        if (entity->is_enabled()) {
            continue;
        }
        const DDS_ReturnCode_t enabled = entity->enable_and_announce(method);
        if (enabled != DDS_RETCODE_OK) {
            result = enabled;
        }
    }
    return result;
}

DDS_ReturnCode_t Participant::get_qos(DDS_DomainParticipantQos *qos) {
    const DDS_ReturnCode_t result = own_qos().get(qos);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    dds_guid_t guid{};
    if (is_enabled() && dds_get_guid(engine(), &guid) >= 0) {
        qos->wire_protocol.rtps_host_id = big_endian(guid.v);
        qos->wire_protocol.rtps_app_id = big_endian(guid.v + 4);
    }
    return DDS_RETCODE_OK;
}

namespace {

// Returns the policies that can change on an enabled participant.
EngineQos to_engine_change(const DDS_DomainParticipantQos &qos) {
    EngineQos result(dds_create_qos());
    if (result == nullptr) {
        throw std::bad_alloc();
    }
    const DDS_OctetSeq &data = qos.user_data.value;
    const std::size_t size = DDS_OctetSeq_get_length(&data);
    dds_qset_userdata(result.get(), size != 0 ? DDS_OctetSeq_get_contiguous_buffer(&data) : nullptr,
                      size);
    return result;
}

}  // namespace

DDS_ReturnCode_t Participant::set_qos(const DDS_DomainParticipantQos &qos, const char *method) {
    return own_qos().set(qos, *this, method, to_engine_change);
}

// ---- Publishers and subscribers -----------------------------------------------------------------

namespace {

// Tells how the log calls a group and its endpoints, and which value asks for its default QoS.
template <typename Group>
struct GroupNames;

template <>
struct GroupNames<Publisher> {
    static constexpr const char *kKind = "publisher";
    static constexpr const char *kEndpoints = "writers";
    static constexpr const DDS_PublisherQos *kDefault = &DDS_PUBLISHER_QOS_DEFAULT;
};

template <>
struct GroupNames<Subscriber> {
    static constexpr const char *kKind = "subscriber";
    static constexpr const char *kEndpoints = "readers";
    static constexpr const DDS_SubscriberQos *kDefault = &DDS_SUBSCRIBER_QOS_DEFAULT;
};

}  // namespace

template <typename Group>
typename Group::Record *Participant::create_group(std::vector<std::unique_ptr<Group>> &groups,
                                                  const typename Group::Qos *qos,
                                                  const typename Group::Listener *listener,
                                                  DDS_StatusMask mask, const char *method) {
    using Names = GroupNames<Group>;
    kolt::qos::OwnedQos<typename Group::Qos> chosen;
    if (!choose_qos(qos, *Names::kDefault, chosen.get(),
                    [&](auto *q) { return get_default(q, nullptr); })) {
        throw std::bad_alloc();
    }
    if (check_qos(*chosen, method) != DDS_RETCODE_OK) {
        return nullptr;
    }
    auto group = std::make_unique<Group>(*this, *chosen);
    if (group->set_listener(listener, mask, method) != DDS_RETCODE_OK ||
        (autoenables() && group->enable(method) != DDS_RETCODE_OK)) {
        return nullptr;
    }
    typename Group::Record *const handle = group->handle();
    const std::lock_guard lock(tree());
    groups.push_back(std::move(group));
    note_entity(method, "created", Names::kKind, "");
    return handle;
}

template <typename Group>
DDS_ReturnCode_t Participant::delete_group(std::vector<std::unique_ptr<Group>> &groups,
                                           Group *group, const char *method) {
    using Names = GroupNames<Group>;
    std::unique_ptr<Group> removed;  // deleted outside the lock
    {
        const std::lock_guard lock(tree());
        if (!contains_pointer(groups, group)) {
            return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                        "the %s does not belong to this participant", Names::kKind);
        }
        if (!group->is_empty()) {
            return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                        "the %s still has %s: delete them first", Names::kKind, Names::kEndpoints);
        }
        removed = extract(groups, group);
    }
    note_entity(method, "deleted", Names::kKind, "");
    return DDS_RETCODE_OK;
}

DDS_Publisher *Participant::create_publisher(const DDS_PublisherQos *qos,
                                             const DDS_PublisherListener *listener,
                                             DDS_StatusMask mask, const char *method) {
    return create_group(publishers_, qos, listener, mask, method);
}

DDS_ReturnCode_t Participant::delete_publisher(Publisher *publisher, const char *method) {
    return delete_group(publishers_, publisher, method);
}

DDS_Subscriber *Participant::create_subscriber(const DDS_SubscriberQos *qos,
                                               const DDS_SubscriberListener *listener,
                                               DDS_StatusMask mask, const char *method) {
    return create_group(subscribers_, qos, listener, mask, method);
}

DDS_ReturnCode_t Participant::delete_subscriber(Subscriber *subscriber, const char *method) {
    return delete_group(subscribers_, subscriber, method);
}

// ---- Everything in the participant --------------------------------------------------------------

// Deletes readers before the filtered topics that they read, and these before the topics.
DDS_ReturnCode_t Participant::delete_contained_entities(const char *method) {
    DDS_ReturnCode_t result = DDS_RETCODE_OK;
    const auto keep_failure = [&](DDS_ReturnCode_t code) {
        if (code != DDS_RETCODE_OK) {
            result = code;
        }
        return code == DDS_RETCODE_OK;
    };
    for (Subscriber *const subscriber : pointers(tree(), subscribers_)) {
        if (keep_failure(subscriber->delete_contained_entities(method))) {
            keep_failure(delete_subscriber(subscriber, method));
        }
    }
    for (Publisher *const publisher : pointers(tree(), publishers_)) {
        if (keep_failure(publisher->delete_contained_entities(method))) {
            keep_failure(delete_publisher(publisher, method));
        }
    }
    for (ContentFilteredTopic *const topic : pointers(tree(), filtered_topics_)) {
        keep_failure(delete_filtered_topic(topic, method));
    }
    for (Topic *const topic : pointers(tree(), topics_)) {
        keep_failure(delete_topic(topic, method));
    }
    return result;
}

bool Participant::is_empty() {
    const std::lock_guard lock(tree());
    return topics_.empty() && filtered_topics_.empty() && publishers_.empty() &&
           subscribers_.empty();
}

bool Participant::contains(DDS_InstanceHandle_t handle) {
    if (handle == DDS_HANDLE_NIL) {
        return false;
    }
    const std::lock_guard lock(tree());
    for (const auto &topic : topics_) {
        if (topic->instance_handle() == handle) {
            return true;
        }
    }
    for (const auto &publisher : publishers_) {
        if (publisher->instance_handle() == handle || publisher->contains(handle)) {
            return true;
        }
    }
    for (const auto &subscriber : subscribers_) {
        if (subscriber->instance_handle() == handle || subscriber->contains(handle)) {
            return true;
        }
    }
    return false;
}

}  // namespace kolt::engine
