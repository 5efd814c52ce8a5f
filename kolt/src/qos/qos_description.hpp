// SPDX-License-Identifier: Apache-2.0
// The description of every QoS policy and record: one row per member with its name, its place and,
// where it is not zero, its default (DDS 1.4, 2.2.3). The operations on records (qos_values.hpp)
// and the reader of XML profiles (profile_reader.cpp) interpret these tables; no other code knows
// the members of a policy.
#pragma once

#include <tuple>
#include <type_traits>

#include "kolt/qos.h"

namespace kolt::qos {

struct NoDefault {};

template <typename Record, typename T, typename Default>
struct Member {
    const char *name;
    T Record::*place;
    Default default_value;  // NoDefault: the default of the member's own type
};

template <typename Record, typename T>
constexpr Member<Record, T, NoDefault> member(const char *name, T Record::*place) {
    return {name, place, {}};
}

template <typename Record, typename T>
constexpr Member<Record, T, T> member(const char *name, T Record::*place,
                                      std::type_identity_t<T> default_value) {
    return {name, place, default_value};
}

// Specialised below: `members`, a tuple of rows.
template <typename Record>
struct Description;

template <typename T>
concept Described = requires {
    Description<T>::members;
};

// Calls `visit(row)` for each member of a record, in order.
template <Described Record, typename Visit>
constexpr void for_each_member(Visit &&visit) {
    std::apply([&](const auto &...row) { (visit(row), ...); }, Description<Record>::members);
}

// The same, until a call returns false. False when one did.
template <Described Record, typename Visit>
constexpr bool all_members(Visit &&visit) {
    return std::apply([&](const auto &...row) { return (visit(row) && ...); },
                      Description<Record>::members);
}

inline constexpr DDS_Duration_t kInfinite{DDS_DURATION_INFINITE_SEC, DDS_DURATION_INFINITE_NSEC};
inline constexpr DDS_Duration_t kDefaultMaxBlockingTime{0, 100000000U};
inline constexpr DDS_ReliabilityQosPolicy kWriterReliability{DDS_RELIABLE_RELIABILITY_QOS,
                                                             kDefaultMaxBlockingTime};

// KOLT_ROW(member) or KOLT_ROW(member, default)
#define KOLT_ROW(name, ...) member(#name, &Self::name __VA_OPT__(, ) __VA_ARGS__)
#define KOLT_DESCRIBE(Record, ...)                                    \
    template <>                                                       \
    struct Description<Record> {                                      \
        using Self = Record;                                          \
        static constexpr auto members = std::make_tuple(__VA_ARGS__); \
    }

// ---- Values -------------------------------------------------------------------------------------

KOLT_DESCRIBE(DDS_Duration_t, KOLT_ROW(sec), KOLT_ROW(nanosec));
KOLT_DESCRIBE(DDS_Property_t, KOLT_ROW(name), KOLT_ROW(value), KOLT_ROW(propagate));

// ---- Policies -----------------------------------------------------------------------------------

KOLT_DESCRIBE(DDS_UserDataQosPolicy, KOLT_ROW(value));
KOLT_DESCRIBE(DDS_TopicDataQosPolicy, KOLT_ROW(value));
KOLT_DESCRIBE(DDS_GroupDataQosPolicy, KOLT_ROW(value));
KOLT_DESCRIBE(DDS_DurabilityQosPolicy, KOLT_ROW(kind));
KOLT_DESCRIBE(DDS_DurabilityServiceQosPolicy, KOLT_ROW(service_cleanup_delay),
              KOLT_ROW(history_kind), KOLT_ROW(history_depth, 1),
              KOLT_ROW(max_samples, DDS_LENGTH_UNLIMITED),
              KOLT_ROW(max_instances, DDS_LENGTH_UNLIMITED),
              KOLT_ROW(max_samples_per_instance, DDS_LENGTH_UNLIMITED));
KOLT_DESCRIBE(DDS_PresentationQosPolicy, KOLT_ROW(access_scope), KOLT_ROW(coherent_access),
              KOLT_ROW(ordered_access));
KOLT_DESCRIBE(DDS_DeadlineQosPolicy, KOLT_ROW(period, kInfinite));
KOLT_DESCRIBE(DDS_LatencyBudgetQosPolicy, KOLT_ROW(duration));
KOLT_DESCRIBE(DDS_OwnershipQosPolicy, KOLT_ROW(kind));
KOLT_DESCRIBE(DDS_OwnershipStrengthQosPolicy, KOLT_ROW(value));
KOLT_DESCRIBE(DDS_LivelinessQosPolicy, KOLT_ROW(kind), KOLT_ROW(lease_duration, kInfinite));
KOLT_DESCRIBE(DDS_TimeBasedFilterQosPolicy, KOLT_ROW(minimum_separation));
KOLT_DESCRIBE(DDS_PartitionQosPolicy, KOLT_ROW(name));
KOLT_DESCRIBE(DDS_ReliabilityQosPolicy, KOLT_ROW(kind),
              KOLT_ROW(max_blocking_time, kDefaultMaxBlockingTime));
KOLT_DESCRIBE(DDS_DestinationOrderQosPolicy, KOLT_ROW(kind));
KOLT_DESCRIBE(DDS_HistoryQosPolicy, KOLT_ROW(kind), KOLT_ROW(depth, 1));
KOLT_DESCRIBE(DDS_ResourceLimitsQosPolicy, KOLT_ROW(max_samples, DDS_LENGTH_UNLIMITED),
              KOLT_ROW(max_instances, DDS_LENGTH_UNLIMITED),
              KOLT_ROW(max_samples_per_instance, DDS_LENGTH_UNLIMITED));
KOLT_DESCRIBE(DDS_TransportPriorityQosPolicy, KOLT_ROW(value));
KOLT_DESCRIBE(DDS_LifespanQosPolicy, KOLT_ROW(duration, kInfinite));
KOLT_DESCRIBE(DDS_EntityFactoryQosPolicy, KOLT_ROW(autoenable_created_entities, DDS_BOOLEAN_TRUE));
KOLT_DESCRIBE(DDS_WriterDataLifecycleQosPolicy,
              KOLT_ROW(autodispose_unregistered_instances, DDS_BOOLEAN_TRUE));
KOLT_DESCRIBE(DDS_ReaderDataLifecycleQosPolicy,
              KOLT_ROW(autopurge_nowriter_samples_delay, kInfinite),
              KOLT_ROW(autopurge_disposed_samples_delay, kInfinite));
KOLT_DESCRIBE(DDS_DataRepresentationQosPolicy, KOLT_ROW(value));
KOLT_DESCRIBE(DDS_TypeConsistencyEnforcementQosPolicy, KOLT_ROW(kind, DDS_ALLOW_TYPE_COERCION),
              KOLT_ROW(ignore_sequence_bounds, DDS_BOOLEAN_TRUE),
              KOLT_ROW(ignore_string_bounds, DDS_BOOLEAN_TRUE), KOLT_ROW(ignore_member_names),
              KOLT_ROW(prevent_type_widening), KOLT_ROW(force_type_validation));
KOLT_DESCRIBE(DDS_PropertyQosPolicy, KOLT_ROW(value));
KOLT_DESCRIBE(DDS_EntityNameQosPolicy, KOLT_ROW(name));
KOLT_DESCRIBE(DDS_WireProtocolQosPolicy, KOLT_ROW(rtps_host_id), KOLT_ROW(rtps_app_id));
KOLT_DESCRIBE(DDS_ProtocolQosPolicy, KOLT_ROW(vendor_specific_entity));
KOLT_DESCRIBE(DDS_ProfileQosPolicy, KOLT_ROW(string_profile), KOLT_ROW(url_profile),
              KOLT_ROW(ignore_environment_profile), KOLT_ROW(ignore_user_profile));

// ---- Records ------------------------------------------------------------------------------------

KOLT_DESCRIBE(DDS_DomainParticipantFactoryQos, KOLT_ROW(entity_factory), KOLT_ROW(profile));
KOLT_DESCRIBE(DDS_DomainParticipantQos, KOLT_ROW(user_data), KOLT_ROW(entity_factory),
              KOLT_ROW(property), KOLT_ROW(participant_name), KOLT_ROW(wire_protocol),
              KOLT_ROW(protocol));
KOLT_DESCRIBE(DDS_TopicQos, KOLT_ROW(topic_data), KOLT_ROW(durability),
              KOLT_ROW(durability_service), KOLT_ROW(deadline), KOLT_ROW(latency_budget),
              KOLT_ROW(liveliness), KOLT_ROW(reliability), KOLT_ROW(destination_order),
              KOLT_ROW(history), KOLT_ROW(resource_limits), KOLT_ROW(transport_priority),
              KOLT_ROW(lifespan), KOLT_ROW(ownership), KOLT_ROW(representation),
              KOLT_ROW(protocol));
KOLT_DESCRIBE(DDS_PublisherQos, KOLT_ROW(presentation), KOLT_ROW(partition), KOLT_ROW(group_data),
              KOLT_ROW(entity_factory), KOLT_ROW(protocol));
KOLT_DESCRIBE(DDS_SubscriberQos, KOLT_ROW(presentation), KOLT_ROW(partition), KOLT_ROW(group_data),
              KOLT_ROW(entity_factory), KOLT_ROW(protocol));
KOLT_DESCRIBE(DDS_DataWriterQos, KOLT_ROW(durability), KOLT_ROW(durability_service),
              KOLT_ROW(deadline), KOLT_ROW(latency_budget), KOLT_ROW(liveliness),
              KOLT_ROW(reliability, kWriterReliability), KOLT_ROW(destination_order),
              KOLT_ROW(history), KOLT_ROW(resource_limits), KOLT_ROW(transport_priority),
              KOLT_ROW(lifespan), KOLT_ROW(user_data), KOLT_ROW(ownership),
              KOLT_ROW(ownership_strength), KOLT_ROW(writer_data_lifecycle),
              KOLT_ROW(representation), KOLT_ROW(property), KOLT_ROW(protocol));
KOLT_DESCRIBE(DDS_DataReaderQos, KOLT_ROW(durability), KOLT_ROW(deadline), KOLT_ROW(latency_budget),
              KOLT_ROW(liveliness), KOLT_ROW(reliability), KOLT_ROW(destination_order),
              KOLT_ROW(history), KOLT_ROW(resource_limits), KOLT_ROW(user_data),
              KOLT_ROW(ownership), KOLT_ROW(time_based_filter), KOLT_ROW(reader_data_lifecycle),
              KOLT_ROW(representation), KOLT_ROW(type_consistency), KOLT_ROW(property),
              KOLT_ROW(protocol));

#undef KOLT_DESCRIBE
#undef KOLT_ROW

}  // namespace kolt::qos
