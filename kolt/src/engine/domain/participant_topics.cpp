// SPDX-License-Identifier: Apache-2.0
// The types that are registered with a participant, and its topics.
#include <algorithm>
#include <string_view>

#include "engine/domain/participant.hpp"
#include "engine/entity/owned_list.hpp"
#include "engine/publication/publisher.hpp"
#include "engine/qos/qos_check.hpp"
#include "engine/qos/qos_map.hpp"
#include "engine/subscription/subscriber.hpp"
#include "engine/topic/topic.hpp"

namespace kolt::engine {

namespace {

// The property of a participant whose value "false" makes its types go by their names alone
// (kolt/type_object.h).
constexpr const char *kAnnounceTypesProperty = "dds.participant.announce_types";

// True for a name that a topic may have (DDS 1.4, B.2, and the slash, which is in general use).
bool is_topic_name(std::string_view name) {
    const auto is_letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    const auto is_digit = [](char c) { return c >= '0' && c <= '9'; };
    return !name.empty() && !is_digit(name[0]) && !name.starts_with("DCPS") &&
           std::all_of(name.begin(), name.end(),
                       [&](char c) { return is_letter(c) || is_digit(c) || c == '_' || c == '/'; });
}

}  // namespace

// ---- Types --------------------------------------------------------------------------------------

DDS_ReturnCode_t Participant::register_type(const char *name, const KOLT_TypePlugin &plugin,
                                            void *registration_data, const char *method) {
    const std::lock_guard creation(topic_creation_);
    {
        const std::lock_guard lock(tree());
        const auto found = types_.find(name);
        if (found != types_.end()) {
            if (found->second->is_same(plugin)) {
                return DDS_RETCODE_OK;
            }
            return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                        "the name %s is registered for another type: use another name", name);
        }
    }
    const bool described = own_qos().read([](const DDS_DomainParticipantQos &qos) {
        return !has_property(qos.property, kAnnounceTypesProperty, "false");
    });
    auto type =
        RegisteredType::create(name, plugin, registration_data, domain_id(), described, method);
    if (type == nullptr) {
        return fail(DDS_RETCODE_OUT_OF_RESOURCES, method,
                    "the type plugin of %s could not be attached to the participant", name);
    }
    const std::lock_guard lock(tree());
    types_.emplace(name, std::move(type));
    note_entity(method, "registered", "type", name);
    return DDS_RETCODE_OK;
}

DDS_ReturnCode_t Participant::unregister_type(const char *name, const char *method) {
    std::shared_ptr<RegisteredType> removed;  // released, which calls the plugin, after the locks
    const std::lock_guard creation(topic_creation_);
    const std::lock_guard lock(tree());
    const auto found = types_.find(name);
    if (found == types_.end()) {
        return fail(DDS_RETCODE_BAD_PARAMETER, method,
                    "no type is registered with the participant as %s", name);
    }
    for (const auto &topic : topics_) {
        if (topic->registered_type() == found->second) {
            return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                        "the topic %s still uses the type %s: delete it first",
                        topic->name().c_str(), name);
        }
    }
    removed = std::move(found->second);
    types_.erase(found);
    return DDS_RETCODE_OK;
}

// ---- Topics -------------------------------------------------------------------------------------

bool Participant::is_name_taken(const char *name) const {
    for (const auto &topic : topics_) {
        if (topic->name() == name) {
            return true;
        }
    }
    for (const auto &topic : filtered_topics_) {
        if (topic->name() == name) {
            return true;
        }
    }
    return false;
}

DDS_Topic *Participant::create_topic(const char *name, const char *type_name,
                                     const DDS_TopicQos *qos, const DDS_TopicListener *listener,
                                     DDS_StatusMask mask, const char *method) {
    if (!is_topic_name(name)) {
        fail(DDS_RETCODE_BAD_PARAMETER, method,
             "\"%s\" is not allowed as a topic name: a name is made of letters, digits, '_' and "
             "'/', and begins neither with a digit nor with DCPS",
             name);
        return nullptr;
    }
    kolt::qos::OwnedQos<DDS_TopicQos> chosen;
    if (!choose_qos(qos, DDS_TOPIC_QOS_DEFAULT, chosen.get(),
                    [&](DDS_TopicQos *q) { return get_default(q, name); })) {
        fail(DDS_RETCODE_OUT_OF_RESOURCES, method, "memory ran out");
        return nullptr;
    }
    if (check_qos(*chosen, method) != DDS_RETCODE_OK) {
        return nullptr;
    }

    const std::lock_guard creation(topic_creation_);
    std::shared_ptr<RegisteredType> type;
    {
        const std::lock_guard lock(tree());
        if (is_name_taken(name)) {
            fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                 "the participant already has a topic of the name %s: use another name", name);
            return nullptr;
        }
        const auto found = types_.find(type_name);
        if (found == types_.end()) {
            fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                 "no type is registered with the participant as %s", type_name);
            return nullptr;
        }
        type = found->second;
    }
    auto topic = std::make_unique<Topic>(*this, name, std::move(type), *chosen);
    if (topic->set_listener(listener, mask, method) != DDS_RETCODE_OK ||
        (autoenables() && topic->enable(method) != DDS_RETCODE_OK)) {
        return nullptr;
    }
    Topic *const created = topic.get();
    DDS_Topic *const handle = created->handle();
    {
        const std::lock_guard lock(tree());
        topics_.push_back(std::move(topic));
    }
    note_entity(method, "created", "topic", name);
    if (created->is_enabled()) {
        created->announce();
    }
    return handle;
}

DDS_ReturnCode_t Participant::delete_topic(Topic *topic, const char *method) {
    std::unique_ptr<Topic> removed;  // deleted outside the lock
    {
        const std::lock_guard lock(tree());
        if (!contains_pointer(topics_, topic)) {
            return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                        "the topic does not belong to this participant");
        }
        if (topic->users != 0) {
            return fail(
                DDS_RETCODE_PRECONDITION_NOT_MET, method,
                "%d readers, writers or filtered topics still use the topic %s: delete them first",
                topic->users, topic->name().c_str());
        }
        removed = extract(topics_, topic);
    }
    note_entity(method, "deleted", "topic", removed->name().c_str());
    return DDS_RETCODE_OK;
}

DDS_ContentFilteredTopic *Participant::create_filtered_topic(const char *name, Topic *related,
                                                             const char *expression,
                                                             const DDS_StringSeq *parameters,
                                                             const char *method) {
    const std::lock_guard creation(topic_creation_);
    {
        const std::lock_guard lock(tree());
        if (!contains_pointer(topics_, related)) {
            fail(DDS_RETCODE_BAD_PARAMETER, method,
                 "the related topic does not belong to this participant");
            return nullptr;
        }
        if (is_name_taken(name)) {
            fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                 "the participant already has a topic of the name %s: use another name", name);
            return nullptr;
        }
        ++related->users;
    }
    const auto give_back = [&] {
        const std::lock_guard lock(tree());
        --related->users;
    };
    try {
        auto filter =
            ContentFilter::create(related->registered_type(), expression, parameters, method);
        if (filter == nullptr) {
            give_back();
            return nullptr;
        }
        auto topic =
            std::make_unique<ContentFilteredTopic>(*this, name, *related, std::move(filter));
        if (related->is_enabled() && !topic->is_enabled() &&
            topic->enable(method) != DDS_RETCODE_OK) {
            give_back();
            return nullptr;
        }
        DDS_ContentFilteredTopic *const handle = topic->handle();
        const std::lock_guard lock(tree());
        filtered_topics_.push_back(std::move(topic));
        note_entity(method, "created", "content-filtered topic", name);
        return handle;
    } catch (...) {
        give_back();
        throw;
    }
}

DDS_ReturnCode_t Participant::delete_filtered_topic(ContentFilteredTopic *topic,
                                                    const char *method) {
    std::unique_ptr<ContentFilteredTopic> removed;
    {
        const std::lock_guard lock(tree());
        if (!contains_pointer(filtered_topics_, topic)) {
            return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                        "the topic does not belong to this participant");
        }
        if (topic->users != 0) {
            return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                        "%d readers still use the topic %s: delete them first", topic->users,
                        topic->name().c_str());
        }
        removed = extract(filtered_topics_, topic);
    }
    Topic &related = removed->topic();
    note_entity(method, "deleted", "content-filtered topic", removed->name().c_str());
    removed.reset();
    const std::lock_guard lock(tree());
    --related.users;
    return DDS_RETCODE_OK;
}

DDS_TopicDescription *Participant::lookup_topic(const char *name) {
    const std::lock_guard lock(tree());
    for (const auto &topic : topics_) {
        if (topic->name() == name) {
            return topic->description();
        }
    }
    for (const auto &topic : filtered_topics_) {
        if (topic->name() == name) {
            return topic->description();
        }
    }
    return nullptr;
}

}  // namespace kolt::engine
