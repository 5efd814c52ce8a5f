// The communication statuses (DDS 1.4, 2.2.4.1), one row each: bit, engine getter, callback.
#pragma once

#include <utility>

#include "engine/cyclone/convert.hpp"
#include "kolt/publication.h"
#include "kolt/subscription.h"

namespace kolt::engine {

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

template <DDS_StatusMask kStatusBit, auto kEngineGet, auto kListenerMember>
struct StatusKind;

template <DDS_StatusMask kStatusBit, typename EngineStatusType,
          dds_return_t (*kEngineGet)(dds_entity_t, EngineStatusType *), auto kListenerMember>
struct StatusKind<kStatusBit, kEngineGet, kListenerMember> {
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
};

using InconsistentTopic =
    StatusKind<DDS_INCONSISTENT_TOPIC_STATUS, dds_get_inconsistent_topic_status,
               &DDS_TopicListener::on_inconsistent_topic>;
using OfferedDeadlineMissed =
    StatusKind<DDS_OFFERED_DEADLINE_MISSED_STATUS, dds_get_offered_deadline_missed_status,
               &DDS_DataWriterListener::on_offered_deadline_missed>;
using OfferedIncompatibleQos =
    StatusKind<DDS_OFFERED_INCOMPATIBLE_QOS_STATUS, dds_get_offered_incompatible_qos_status,
               &DDS_DataWriterListener::on_offered_incompatible_qos>;
using LivelinessLost = StatusKind<DDS_LIVELINESS_LOST_STATUS, dds_get_liveliness_lost_status,
                                  &DDS_DataWriterListener::on_liveliness_lost>;
using PublicationMatched =
    StatusKind<DDS_PUBLICATION_MATCHED_STATUS, dds_get_publication_matched_status,
               &DDS_DataWriterListener::on_publication_matched>;
using RequestedDeadlineMissed =
    StatusKind<DDS_REQUESTED_DEADLINE_MISSED_STATUS, dds_get_requested_deadline_missed_status,
               &DDS_DataReaderListener::on_requested_deadline_missed>;
using RequestedIncompatibleQos =
    StatusKind<DDS_REQUESTED_INCOMPATIBLE_QOS_STATUS, dds_get_requested_incompatible_qos_status,
               &DDS_DataReaderListener::on_requested_incompatible_qos>;
using SampleRejected = StatusKind<DDS_SAMPLE_REJECTED_STATUS, dds_get_sample_rejected_status,
                                  &DDS_DataReaderListener::on_sample_rejected>;
using LivelinessChanged =
    StatusKind<DDS_LIVELINESS_CHANGED_STATUS, dds_get_liveliness_changed_status,
               &DDS_DataReaderListener::on_liveliness_changed>;
using SubscriptionMatched =
    StatusKind<DDS_SUBSCRIPTION_MATCHED_STATUS, dds_get_subscription_matched_status,
               &DDS_DataReaderListener::on_subscription_matched>;
using SampleLost = StatusKind<DDS_SAMPLE_LOST_STATUS, dds_get_sample_lost_status,
                              &DDS_DataReaderListener::on_sample_lost>;

// Calls `visit.template operator()<Kind>()` for each status of an endpoint.
template <typename Visit>
void for_each_writer_status(Visit &&visit) {
    visit.template operator()<OfferedDeadlineMissed>();
    visit.template operator()<OfferedIncompatibleQos>();
    visit.template operator()<LivelinessLost>();
    visit.template operator()<PublicationMatched>();
}
template <typename Visit>
void for_each_reader_status(Visit &&visit) {
    visit.template operator()<RequestedDeadlineMissed>();
    visit.template operator()<RequestedIncompatibleQos>();
    visit.template operator()<SampleRejected>();
    visit.template operator()<LivelinessChanged>();
    visit.template operator()<SubscriptionMatched>();
    visit.template operator()<SampleLost>();
}

}  // namespace kolt::engine
