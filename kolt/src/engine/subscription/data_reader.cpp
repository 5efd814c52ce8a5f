// SPDX-License-Identifier: Apache-2.0
// Data readers: enabling, events, conditions.
#include "engine/subscription/data_reader.hpp"

#include <algorithm>
#include <new>

#include "engine/cyclone/convert.hpp"
#include "engine/entity/owned_list.hpp"
#include "engine/entity/statuses.hpp"
#include "engine/qos/qos_check.hpp"
#include "engine/qos/qos_map.hpp"
#include "engine/subscription/subscriber.hpp"
#include "engine/topic/topic.hpp"

namespace kolt::engine {

namespace {

void on_engine_data(dds_entity_t, void *reader) {
    static_cast<DataReader *>(reader)->note_data();
}

void tell_data(void *reader) {
    static_cast<DataReader *>(reader)->deliver_data();
}

void tell_notification(void *reader) {
    static_cast<DataReader *>(reader)->deliver_data_available();
}

// Returns the policies that KOLT applies itself.
ReaderCache::Policies cache_policies(const DDS_DataReaderQos &qos) {
    const DDS_ReaderDataLifecycleQosPolicy &lifecycle = qos.reader_data_lifecycle;
    const InstanceOwner::Rules ownership = {
        qos.ownership.kind == DDS_EXCLUSIVE_OWNERSHIP_QOS,
        qos.destination_order.kind == DDS_BY_SOURCE_TIMESTAMP_DESTINATIONORDER_QOS};
    // A missed deadline ends an ownership, and only the cache knows when.
    const InstanceOwner::Rules known_ownership = {
        ownership.exclusive && DDS_Duration_is_infinite(&qos.deadline.period) != DDS_BOOLEAN_FALSE,
        ownership.by_source_timestamp};
    return {{to_engine(qos.time_based_filter.minimum_separation), ownership},
            {{to_engine(lifecycle.autopurge_nowriter_samples_delay),
              to_engine(lifecycle.autopurge_disposed_samples_delay)},
             known_ownership}};
}

}  // namespace

DataReader::DataReader(Subscriber &subscriber, TopicDescription &topic,
                       const DDS_DataReaderQos &qos)
    : Entity(EntityKind::kDataReader, &handle_._entity, kReaderStatusMask),
      subscriber_(subscriber),
      topic_(topic),
      type_(topic.topic().registered_type()),
      listener_(subscriber.participant().listener_thread()),
      statuses_(*this, subscriber.participant().listener_thread()),
      data_(statuses_.source(), tell_data),
      notification_(statuses_.source(), tell_notification),
      qos_(subscriber.participant().tree(), qos) {
    const std::lock_guard lock(subscriber.participant().tree());
    ++topic.users;
}

DataReader::~DataReader() {
    statuses_.silence();
    listener_.remove();
    conditions_.clear();
    delete_engine("DDS_Subscriber_delete_datareader");
    const std::lock_guard lock(subscriber_.participant().tree());
    --topic_.users;
}

DDS_ReturnCode_t DataReader::attach_type(const char *method) {
    const bool allowed = qos_.read([&](const DDS_DataReaderQos &qos) {
        const DDS_ShortSeq &ids = qos.representation.value;
        const auto count = static_cast<DDS_Long>(DDS_ShortSeq_get_length(&ids));
        for (DDS_Long i = 0; i < count; ++i) {
            DDS_DataRepresentationId_t id = *DDS_ShortSeq_get_reference(&ids, i);
            if (!type_->resolve_representation(&id)) {
                return false;
            }
        }
        return true;
    });
    if (!allowed) {
        return fail(DDS_RETCODE_INCONSISTENT_POLICY, method,
                    "inconsistent QoS: representation: the type %s does not allow it",
                    type_->name().c_str());
    }
    endpoint_ =
        TypeEndpoint::create(type_, {KOLT_TYPE_PLUGIN_READER, DDS_AUTO_DATA_REPRESENTATION, 0U});
    if (endpoint_ == nullptr) {
        return fail(DDS_RETCODE_OUT_OF_RESOURCES, method,
                    "the type plugin of %s could not be attached to the reader",
                    type_->name().c_str());
    }
    return DDS_RETCODE_OK;
}

// ---- Enabling and QoS ---------------------------------------------------------------------------

DDS_ReturnCode_t DataReader::enable(const char *method) {
    if (!subscriber_.is_enabled() || !topic_.is_enabled()) {
        return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                    "the subscriber or the topic is disabled: enable both first");
    }
    const EngineQos engine_qos =
        qos_.read([&](const DDS_DataReaderQos &qos) { return to_engine(qos, *type_); });
    const std::unique_ptr<dds_listener_t, void (*)(dds_listener_t *)> listener(
        dds_create_listener(nullptr), dds_delete_listener);
    ReaderStatuses::listen(listener.get(), &statuses_);
    dds_lset_data_available_arg(listener.get(), on_engine_data, this, true);
    qos_.read([this](const DDS_DataReaderQos &now) { cache_.set_policies(cache_policies(now)); });
    dds_rhc *const cache =
        cache_.engine(topic_.content_filter(), topic_.topic().sertype().domain());
    const dds_entity_t entity = dds_create_reader_rhc(subscriber_.engine(), topic_.engine(),
                                                      engine_qos.get(), listener.get(), cache);
    if (entity < 0) {
        return fail(to_return_code(entity), method,
                    "the DDS engine could not create a reader for the topic %s%s",
                    topic_.name().c_str(), more_about(entity));
    }
    set_engine(entity);
    return DDS_RETCODE_OK;
}

DDS_ReturnCode_t DataReader::set_qos(const DDS_DataReaderQos &qos, const char *method) {
    const DDS_ReturnCode_t result =
        qos_.set(qos, *this, method, [&](const auto &q) { return to_engine(q, *type_); });
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    if (!is_enabled()) {
        return attach_type(method);  // the representations may still change
    }
    // Of two threads' changes the same one holds in the record and here.
    qos_.read([this](const DDS_DataReaderQos &now) { cache_.set_policies(cache_policies(now)); });
    if (cache_.purges()) {
        const std::lock_guard lock(contents_);  // the engine's limit of query conditions
        cache_.adopt(cached_instances());
    }
    cache_.begin_to_apply();
    return DDS_RETCODE_OK;
}

// ---- Events -------------------------------------------------------------------------------------

template <typename HasCallback, typename Call>
void DataReader::tell_listener(DDS_StatusMask status, HasCallback &&has_callback, Call &&call) {
    if (listener_.handle(status, has_callback, call)) {
        return;
    }
    if (subscriber_.listener().handle(
            status,
            [&](const DDS_SubscriberListener &l) { return has_callback(l.reader_listener); },
            [&](const DDS_SubscriberListener &l) { call(l.reader_listener); })) {
        return;
    }
    subscriber_.participant().listener().handle(
        status,
        [&](const DDS_DomainParticipantListener &l) {
            return has_callback(l.subscriber_listener.reader_listener);
        },
        [&](const DDS_DomainParticipantListener &l) {
            call(l.subscriber_listener.reader_listener);
        });
}

template <typename Kind>
void DataReader::deliver() {
    const auto has = [](const DDS_DataReaderListener &l) { return l.*Kind::kCallback != nullptr; };
    tell_listener(Kind::kBit, has, [this](const DDS_DataReaderListener &l) {
        if (const auto status = statuses_.take_changed<Kind>()) {
            (l.*Kind::kCallback)(l.listener_data, &handle_, &*status);
        }
    });
}

void DataReader::note_data() {
    status_condition().set_changed(DDS_DATA_AVAILABLE_STATUS);
    status_condition().update();
    subscriber_.note_data();
    statuses_.tell(data_);
}

void DataReader::notify() {
    if (has_data_available()) {
        statuses_.tell(notification_);
    }
}

// Calls on_data_on_readers if a listener handles it; that callback then decides whether the
// readers' listeners are called (DDS 1.4, 2.2.4.2.3.2).
void DataReader::deliver_data() {
    if (has_data_available() && !subscriber_.deliver_data_on_readers()) {
        deliver_data_available();
    }
}

void DataReader::deliver_data_available() {
    const auto has = [](const DDS_DataReaderListener &l) { return l.on_data_available != nullptr; };
    tell_listener(DDS_DATA_AVAILABLE_STATUS, has, [this](const DDS_DataReaderListener &l) {
        if (has_data_available()) {
            reset_data_available();
            l.on_data_available(l.listener_data, &handle_);
        }
    });
}

bool DataReader::has_data_available() {
    return (status_condition().changed() & DDS_DATA_AVAILABLE_STATUS) != 0;
}

void DataReader::reset_data_available() {
    status_condition().clear_changed(DDS_DATA_AVAILABLE_STATUS);
    status_condition().update();
}

void DataReader::announce() {
    statuses_.announce();
    tell_data_changed(DDS_STATUS_MASK_ALL);
}

DDS_ReturnCode_t DataReader::set_listener(const DDS_DataReaderListener *listener,
                                          DDS_StatusMask mask, const char *method) {
    const DDS_ReturnCode_t result = listener_.set(listener, mask, method);
    if (result == DDS_RETCODE_OK && listener != nullptr) {
        statuses_.tell_changed(mask);
        tell_data_changed(mask);
    }
    return result;
}

void DataReader::tell_data_changed(DDS_StatusMask mask) {
    if ((mask & DDS_DATA_AVAILABLE_STATUS) != 0 && has_data_available()) {
        statuses_.tell(data_);
    }
}

// ---- Conditions ---------------------------------------------------------------------------------

DDS_ReadCondition *DataReader::create_read_condition(std::uint32_t engine_mask,
                                                     const ReadStates &states, const char *method) {
    if (!is_enabled()) {
        not_enabled(method);
        return nullptr;
    }
    auto condition = std::make_unique<ReadCondition>(*this, engine_mask, states);
    DDS_ReadCondition *const handle = condition->handle();
    const std::lock_guard lock(contents_);
    conditions_.push_back(std::move(condition));
    return handle;
}

DDS_QueryCondition *DataReader::create_query_condition(std::uint32_t engine_mask,
                                                       const ReadStates &states,
                                                       const char *expression,
                                                       const DDS_StringSeq *parameters,
                                                       const char *method) {
    if (!is_enabled()) {
        not_enabled(method);
        return nullptr;
    }
    auto filter = ContentFilter::create(type_, expression, parameters, method);
    if (filter == nullptr) {
        return nullptr;
    }
    // The lock spans the creation, so that the engine's limit is never exceeded.
    const std::lock_guard lock(contents_);
    const auto queries = std::count_if(conditions_.begin(), conditions_.end(),
                                       [](const auto &c) { return c->is_query(); });
    if (static_cast<std::size_t>(queries) >= kMaxQueryConditions) {
        fail(DDS_RETCODE_OUT_OF_RESOURCES, method,
             "the reader has %zu query conditions and may have no more", kMaxQueryConditions);
        return nullptr;
    }
    auto condition = QueryCondition::create(*this, engine_mask, states, std::move(filter), method);
    if (condition == nullptr) {
        return nullptr;
    }
    DDS_QueryCondition *const handle = condition->handle();
    conditions_.push_back(std::move(condition));
    return handle;
}

DDS_ReturnCode_t DataReader::delete_read_condition(ReadCondition *condition, const char *method) {
    std::unique_ptr<ReadCondition> removed;
    const std::lock_guard lock(contents_);
    if (!contains_pointer(conditions_, condition)) {
        return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                    "the condition does not belong to this reader");
    }
    if (condition->is_attached()) {
        return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                    "the condition is attached to a waitset: detach it first");
    }
    removed = extract(conditions_, condition);
    return DDS_RETCODE_OK;
}

DDS_ReturnCode_t DataReader::delete_conditions(bool attached_too, const char *method) {
    const std::lock_guard lock(contents_);
    for (const auto &condition : conditions_) {
        if (!attached_too && condition->is_attached()) {
            return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                        "a condition is attached to a waitset: detach it first");
        }
    }
    conditions_.clear();
    return DDS_RETCODE_OK;
}

bool DataReader::has_conditions() const {
    const std::lock_guard lock(contents_);
    return !conditions_.empty();
}

}  // namespace kolt::engine
