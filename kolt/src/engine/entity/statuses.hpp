// SPDX-License-Identifier: Apache-2.0
// The one table of the communication statuses (DDS 1.4, 2.2.4.1): which entity has which, and their
// names on both sides. Masks, registration with the engine, dispatch and getters follow from it. What
// has changed is kept here, not in the engine, whose getters wait behind a blocked write.
#pragma once

#include <utility>

#include "engine/cyclone/cyclone.hpp"
#include "kolt/publication.h"
#include "kolt/subscription.h"

namespace kolt::engine {

// One row for each status with a record, as ROW(Name, name, NAME):
//   - Name: the type below;
//   - name: on_<name>, the callback; DDS_<Entity>_get_<name>_status, the getter;
//     dds_<name>_status_t and dds_lset_<name>_arg, the engine's record and registration;
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

// Adds a change to what is kept. Totals grow by changes, since KOLT counts events of its own, too.
template <typename Status>
void add(const Status &change, Status *kept) {
    const Status before = *kept;
    *kept = change;
    if constexpr (requires { kept->total_count; }) {
        kept->total_count = before.total_count + change.total_count_change;
        kept->total_count_change = before.total_count_change + change.total_count_change;
    }
    if constexpr (requires { kept->current_count_change; }) {
        kept->current_count_change = before.current_count_change + change.current_count_change;
    }
    if constexpr (requires { kept->alive_count_change; }) {
        kept->alive_count_change = before.alive_count_change + change.alive_count_change;
        kept->not_alive_count_change =
            before.not_alive_count_change + change.not_alive_count_change;
    }
}

// Begins to count changes anew.
template <typename Status>
void reset_changes(Status *status) {
    if constexpr (requires { status->total_count_change; }) {
        status->total_count_change = 0;
    }
    if constexpr (requires { status->current_count_change; }) {
        status->current_count_change = 0;
    }
    if constexpr (requires { status->alive_count_change; }) {
        status->alive_count_change = 0;
        status->not_alive_count_change = 0;
    }
}

}  // namespace status_detail

// One status: its bit, the engine's registration of a callback, and the member of the listener that is
// called.
template <DDS_StatusMask kStatusBit, typename EngineStatusType, auto kEngineListen,
          auto kListenerMember>
struct StatusKind {
    static constexpr DDS_StatusMask kBit = kStatusBit;
    static constexpr auto kCallback = kListenerMember;
    using EngineStatus = EngineStatusType;
    using Status = decltype(status_detail::convert(std::declval<EngineStatus>()));

    // Lets the engine call `receiver->note<StatusKind>(status)`, and forget what it has told.
    template <typename Receiver>
    static void listen(dds_listener_t *listener, Receiver *receiver) {
        const auto on_event = [](dds_entity_t, const EngineStatus status, void *argument) {
            static_cast<Receiver *>(argument)->template note<StatusKind>(
                status_detail::convert(status));
        };
        kEngineListen(listener, on_event, receiver, true);
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

#define KOLT_STATUS_KIND(Listener, Name, name, NAME)                                           \
    using Name = StatusKind<DDS_##NAME##_STATUS, dds_##name##_status_t, dds_lset_##name##_arg, \
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

}  // namespace kolt::engine
