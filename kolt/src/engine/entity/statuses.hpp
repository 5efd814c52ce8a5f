// SPDX-License-Identifier: Apache-2.0
// The one table of the communication statuses (DDS 1.4, 2.2.4.1): which entity has which, and their
// names on both sides. Masks, registration with the engine, dispatch, getters and the translation
// of masks follow from it.
#pragma once

#include <cstdint>
#include <utility>

#include "engine/cyclone/convert.hpp"
#include "engine/entity/entity.hpp"
#include "kolt/publication.h"
#include "kolt/subscription.h"

namespace kolt::engine {

// One row for each status with a record, as ROW(Name, name, NAME):
//   - Name: the type below, and cyclone::k<Name>Status, the engine's bit;
//   - name: on_<name>, the callback; DDS_<Entity>_get_<name>_status, the getter;
//     dds_get_<name>_status and dds_lset_<name>_arg, the engine's getter and registration;
//   - NAME: DDS_<NAME>_STATUS, the bit.
// Pending statuses are told to listeners in the order of the rows.
// clang-format off
#define KOLT_TOPIC_STATUSES(ROW) \
    ROW(InconsistentTopic, inconsistent_topic, INCONSISTENT_TOPIC)
#define KOLT_WRITER_STATUSES(ROW) \
    ROW(OfferedDeadlineMissed, offered_deadline_missed, OFFERED_DEADLINE_MISSED) \
    ROW(OfferedIncompatibleQos, offered_incompatible_qos, OFFERED_INCOMPATIBLE_QOS) \
    ROW(LivelinessLost, liveliness_lost, LIVELINESS_LOST) \
    ROW(PublicationMatched, publication_matched, PUBLICATION_MATCHED)
#define KOLT_READER_STATUSES(ROW) \
    ROW(RequestedDeadlineMissed, requested_deadline_missed, REQUESTED_DEADLINE_MISSED) \
    ROW(RequestedIncompatibleQos, requested_incompatible_qos, REQUESTED_INCOMPATIBLE_QOS) \
    ROW(SampleRejected, sample_rejected, SAMPLE_REJECTED) \
    ROW(LivelinessChanged, liveliness_changed, LIVELINESS_CHANGED) \
    ROW(SubscriptionMatched, subscription_matched, SUBSCRIPTION_MATCHED) \
    ROW(SampleLost, sample_lost, SAMPLE_LOST)
// clang-format on

namespace status_detail {

inline DDS_InconsistentTopicStatus convert(const dds_inconsistent_topic_status_t &s) {
    return {static_cast<DDS_Long>(s.total_count), s.total_count_change};
}
inline DDS_LivelinessLostStatus convert(const dds_liveliness_lost_status_t &s) {
    return {static_cast<DDS_Long>(s.total_count), s.total_count_change};
}
inline DDS_SampleLostStatus convert(const dds_sample_lost_status_t &s) {
    return {static_cast<DDS_Long>(s.total_count), s.total_count_change};
}
inline DDS_OfferedDeadlineMissedStatus convert(const dds_offered_deadline_missed_status_t &s) {
    return {static_cast<DDS_Long>(s.total_count), s.total_count_change, s.last_instance_handle};
}
inline DDS_RequestedDeadlineMissedStatus convert(const dds_requested_deadline_missed_status_t &s) {
    return {static_cast<DDS_Long>(s.total_count), s.total_count_change, s.last_instance_handle};
}
inline DDS_OfferedIncompatibleQosStatus convert(const dds_offered_incompatible_qos_status_t &s) {
    return {static_cast<DDS_Long>(s.total_count), s.total_count_change,
            static_cast<DDS_QosPolicyId_t>(s.last_policy_id)};
}
inline DDS_RequestedIncompatibleQosStatus convert(
    const dds_requested_incompatible_qos_status_t &s) {
    return {static_cast<DDS_Long>(s.total_count), s.total_count_change,
            static_cast<DDS_QosPolicyId_t>(s.last_policy_id)};
}
inline DDS_SampleRejectedStatus convert(const dds_sample_rejected_status_t &s) {
    // The numbers of the reasons are the standard's on both sides.
    return {static_cast<DDS_Long>(s.total_count), s.total_count_change,
            static_cast<DDS_SampleRejectedStatusKind>(s.last_reason), s.last_instance_handle};
}
inline DDS_LivelinessChangedStatus convert(const dds_liveliness_changed_status_t &s) {
    return {static_cast<DDS_Long>(s.alive_count), static_cast<DDS_Long>(s.not_alive_count),
            s.alive_count_change, s.not_alive_count_change, s.last_publication_handle};
}
inline DDS_PublicationMatchedStatus convert(const dds_publication_matched_status_t &s) {
    return {static_cast<DDS_Long>(s.total_count), s.total_count_change,
            static_cast<DDS_Long>(s.current_count), s.current_count_change,
            s.last_subscription_handle};
}
inline DDS_SubscriptionMatchedStatus convert(const dds_subscription_matched_status_t &s) {
    return {static_cast<DDS_Long>(s.total_count), s.total_count_change,
            static_cast<DDS_Long>(s.current_count), s.current_count_change,
            s.last_publication_handle};
}

template <typename Status>
bool has_changed(const Status &s) {
    if constexpr (requires { s.current_count_change; }) {
        return s.total_count_change != 0 || s.current_count_change != 0;
    } else if constexpr (requires { s.alive_count_change; }) {
        return s.alive_count_change != 0 || s.not_alive_count_change != 0;
    } else {
        return s.total_count_change != 0;
    }
}

}  // namespace status_detail

// One status: its bit, the engine's getter and registration of a callback, and the member of the
// listener that is called.
template <DDS_StatusMask kStatusBit, auto kEngineGet, auto kEngineListen, auto kListenerMember>
struct StatusKind;

template <DDS_StatusMask kStatusBit, typename EngineStatusType,
          dds_return_t (*kEngineGet)(dds_entity_t, EngineStatusType *), auto kEngineListen,
          auto kListenerMember>
struct StatusKind<kStatusBit, kEngineGet, kEngineListen, kListenerMember> {
    static constexpr DDS_StatusMask kBit = kStatusBit;
    static constexpr auto kCallback = kListenerMember;
    using EngineStatus = EngineStatusType;
    using Status = decltype(status_detail::convert(std::declval<EngineStatus>()));

    // Reads the status and resets what it counts as changes.
    static DDS_ReturnCode_t take(dds_entity_t entity, Status *status) {
        EngineStatus engine_status{};
        const dds_return_t result = kEngineGet(entity, &engine_status);
        if (result < 0) {
            return to_return_code(result);
        }
        *status = status_detail::convert(engine_status);
        return DDS_RETCODE_OK;
    }
    static bool take_changed(dds_entity_t entity, Status *status) {
        return take(entity, status) == DDS_RETCODE_OK && status_detail::has_changed(*status);
    }

    // Lets `listener` call `receiver->on_event<StatusKind>()`.
    template <typename Receiver>
    static void listen(dds_listener_t *listener, Receiver *receiver) {
        const auto on_event = [](dds_entity_t, const EngineStatus, void *argument) {
            static_cast<Receiver *>(argument)->template on_event<StatusKind>();
        };
        kEngineListen(listener, on_event, receiver, false);
    }
};

// The statuses of one kind of entity. `None` stands before the first, for the rows' commas.
template <typename None, typename... Kinds>
struct StatusList {
    static constexpr DDS_StatusMask kMask = (Kinds::kBit | ...);

    // Calls `visit.template operator()<Kind>()` for each.
    template <typename Visit>
    static void for_each(Visit &&visit) {
        (visit.template operator()<Kinds>(), ...);
    }
    template <typename Receiver>
    static void listen(dds_listener_t *listener, Receiver *receiver) {
        (Kinds::listen(listener, receiver), ...);
    }
};

#define KOLT_STATUS_KIND(Listener, Name, name, NAME)                                             \
    using Name = StatusKind<DDS_##NAME##_STATUS, dds_get_##name##_status, dds_lset_##name##_arg, \
                            &Listener::on_##name>;
#define KOLT_TOPIC_STATUS(...) KOLT_STATUS_KIND(DDS_TopicListener, __VA_ARGS__)
#define KOLT_WRITER_STATUS(...) KOLT_STATUS_KIND(DDS_DataWriterListener, __VA_ARGS__)
#define KOLT_READER_STATUS(...) KOLT_STATUS_KIND(DDS_DataReaderListener, __VA_ARGS__)
KOLT_TOPIC_STATUSES(KOLT_TOPIC_STATUS)
KOLT_WRITER_STATUSES(KOLT_WRITER_STATUS)
KOLT_READER_STATUSES(KOLT_READER_STATUS)
#undef KOLT_READER_STATUS
#undef KOLT_WRITER_STATUS
#undef KOLT_TOPIC_STATUS
#undef KOLT_STATUS_KIND

#define KOLT_STATUS_LIST_ROW(Name, name, NAME) , Name
using TopicStatuses = StatusList<void KOLT_TOPIC_STATUSES(KOLT_STATUS_LIST_ROW)>;
using WriterStatuses = StatusList<void KOLT_WRITER_STATUSES(KOLT_STATUS_LIST_ROW)>;
using ReaderStatuses = StatusList<void KOLT_READER_STATUSES(KOLT_STATUS_LIST_ROW)>;
#undef KOLT_STATUS_LIST_ROW

// The statuses of each kind of entity, with those that have no record. Participants, publishers and
// content-filtered topics have none.
inline constexpr DDS_StatusMask kTopicStatusMask = TopicStatuses::kMask;
inline constexpr DDS_StatusMask kWriterStatusMask = WriterStatuses::kMask;
inline constexpr DDS_StatusMask kReaderStatusMask =
    ReaderStatuses::kMask | DDS_DATA_AVAILABLE_STATUS;
inline constexpr DDS_StatusMask kSubscriberStatusMask = DDS_DATA_ON_READERS_STATUS;

// Reads a status of the entity and resets its changes; all zero while the entity is disabled.
template <typename Kind>
DDS_ReturnCode_t get_status(const Entity &entity, typename Kind::Status *status) {
    *status = {};
    return entity.is_enabled() ? Kind::take(entity.engine(), status) : DDS_RETCODE_OK;
}

// Translate masks. Bits that the other side does not have are dropped.
std::uint32_t status_to_engine(DDS_StatusMask mask);
DDS_StatusMask status_from_engine(std::uint32_t mask);

}  // namespace kolt::engine
