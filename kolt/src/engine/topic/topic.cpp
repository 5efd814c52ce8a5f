// SPDX-License-Identifier: Apache-2.0
// Topics in the engine, their filters and events.
#include "engine/topic/topic.hpp"

#include <mutex>

#include "engine/cyclone/convert.hpp"
#include "engine/entity/statuses.hpp"
#include "engine/qos/qos_check.hpp"
#include "engine/qos/qos_map.hpp"

namespace kolt::engine {

namespace {

// Creates an engine topic. The engine hands back the sertype that it uses, which may be an equal
// one that it has already.
dds_entity_t create_engine_topic(ParticipantScope &participant, const Topic &topic,
                                 const dds_qos_t *qos, const dds_listener_t *listener,
                                 ddsi_sertype **sertype) {
    *sertype = Sertype::create(*topic.registered_type());
    const dds_entity_t entity = dds_create_topic_sertype(participant.engine(), topic.name().c_str(),
                                                         sertype, qos, listener, nullptr);
    if (entity < 0) {
        ddsi_sertype_unref(*sertype);
    }
    return entity;
}

bool accepts(const void *view, void *filter) {
    const Serdata *const serdata = static_cast<const SerdataView *>(view)->get();
    return serdata != nullptr && static_cast<const ContentFilter *>(filter)->accepts(*serdata);
}

}  // namespace

// ---- Topic --------------------------------------------------------------------------------------

Topic::Topic(ParticipantScope &participant, const char *name, std::shared_ptr<RegisteredType> type,
             const DDS_TopicQos &qos)
    : TopicDescription(EntityKind::kTopic, &handle_._description, participant, name,
                       kTopicStatusMask),
      type_(std::move(type)),
      listener_(participant.listener_thread()),
      statuses_(*this, participant.listener_thread()),
      qos_(participant.tree(), qos) {}

Topic::~Topic() {
    statuses_.silence();
    listener_.remove();
    delete_engine("DDS_DomainParticipant_delete_topic");
}

DDS_ReturnCode_t Topic::enable(const char *method) {
    if (!participant().is_enabled()) {
        return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                    "the participant is disabled: enable it first");
    }
    const EngineQos engine_qos = qos_.read([](const DDS_TopicQos &qos) { return to_engine(qos); });
    const std::unique_ptr<dds_listener_t, void (*)(dds_listener_t *)> listener(
        dds_create_listener(nullptr), dds_delete_listener);
    TopicStatuses::listen(listener.get(), &statuses_);
    ddsi_sertype *sertype = nullptr;
    const dds_entity_t entity =
        create_engine_topic(participant(), *this, engine_qos.get(), listener.get(), &sertype);
    if (entity < 0) {
        return fail(to_return_code(entity), method,
                    "the DDS engine could not create the topic %s%s", name().c_str(),
                    more_about(entity));
    }
    sertype_ = &Sertype::of(sertype);
    set_engine(entity);
    return enable_filters(method);
}

// A content-filtered topic has no function of its own that enables it.
DDS_ReturnCode_t Topic::enable_filters(const char *method) {
    std::vector<ContentFilteredTopic *> disabled;
    {
        const std::lock_guard lock(participant().tree());
        disabled = filters;
    }
    DDS_ReturnCode_t result = DDS_RETCODE_OK;
    for (ContentFilteredTopic *const filter : disabled) {
        const DDS_ReturnCode_t enabled =
            filter->is_enabled() ? DDS_RETCODE_OK : filter->enable(method);
        if (enabled != DDS_RETCODE_OK) {
            result = enabled;
        }
    }
    return result;
}

DDS_ReturnCode_t Topic::set_qos(const DDS_TopicQos &qos, const char *method) {
    return qos_.set(qos, *this, method, [](const DDS_TopicQos &q) { return to_engine(q); });
}

DDS_ReturnCode_t Topic::set_listener(const DDS_TopicListener *listener, DDS_StatusMask mask,
                                     const char *method) {
    const DDS_ReturnCode_t result = listener_.set(listener, mask, method);
    if (result == DDS_RETCODE_OK && listener != nullptr) {
        statuses_.tell_changed(mask);
    }
    return result;
}

template <typename Kind>
void Topic::deliver() {
    const auto has = [](const DDS_TopicListener &l) { return l.*Kind::kCallback != nullptr; };
    const auto call = [this](const DDS_TopicListener &l) {
        if (const auto status = statuses_.take_changed<Kind>()) {
            (l.*Kind::kCallback)(l.listener_data, &handle_, &*status);
        }
    };
    if (listener_.handle(Kind::kBit, has, call)) {
        return;
    }
    participant().listener().handle(
        Kind::kBit, [&](const DDS_DomainParticipantListener &l) { return has(l.topic_listener); },
        [&](const DDS_DomainParticipantListener &l) { call(l.topic_listener); });
}

// ---- Content-filtered topic ---------------------------------------------------------------------

ContentFilteredTopic::ContentFilteredTopic(ParticipantScope &participant, const char *name,
                                           Topic &related, std::unique_ptr<ContentFilter> filter)
    : TopicDescription(EntityKind::kContentFilteredTopic, &handle_._description, participant, name,
                       0),
      related_(related),
      filter_(std::move(filter)) {
    const std::lock_guard lock(participant.tree());
    related_.filters.push_back(this);
}

ContentFilteredTopic::~ContentFilteredTopic() {
    {
        const std::lock_guard lock(participant().tree());
        std::erase(related_.filters, this);
    }
    delete_engine("DDS_DomainParticipant_delete_contentfilteredtopic");
}

DDS_ReturnCode_t ContentFilteredTopic::enable(const char *method) {
    if (!related_.is_enabled()) {
        return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                    "the related topic is disabled: enable it first");
    }
    // The engine demands that topics of one name have one QoS: that of the related topic in the
    // engine.
    const EngineQos qos(dds_create_qos());
    if (qos == nullptr) {
        throw std::bad_alloc();
    }
    dds_return_t result = dds_get_qos(related_.engine(), qos.get());
    if (result < 0) {
        return fail(to_return_code(result), method,
                    "the DDS engine did not give the QoS of the related topic");
    }
    ddsi_sertype *sertype = nullptr;
    const dds_entity_t entity =
        create_engine_topic(participant(), related_, qos.get(), nullptr, &sertype);
    if (entity < 0) {
        return fail(to_return_code(entity), method,
                    "the DDS engine could not create the topic %s%s", name().c_str(),
                    more_about(entity));
    }
    dds_topic_filter filter{};
    filter.mode = DDS_TOPIC_FILTER_SAMPLE_ARG;
    filter.f.sample_arg = accepts;
    filter.arg = filter_.get();
    result = dds_set_topic_filter_extended(entity, &filter);
    if (result < 0) {
        dds_delete(entity);
        return fail(to_return_code(result), method,
                    "the DDS engine could not set the filter of the topic %s", name().c_str());
    }
    set_engine(entity);
    return DDS_RETCODE_OK;
}

}  // namespace kolt::engine
