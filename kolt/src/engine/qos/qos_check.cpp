// SPDX-License-Identifier: Apache-2.0
// One check for each policy, for policies that must fit each other, and for changes.
#include "engine/qos/qos_check.hpp"

#include <initializer_list>
#include <type_traits>

#include "qos/qos_description.hpp"
#include "qos/qos_values.hpp"

namespace kolt::engine {

namespace {

constexpr DDS_UnsignedLong kNanosecondsPerSecond = 1000000000U;

// ---- One policy: each function returns what is wrong with it, or nullptr -----------------------

const char *wrong_duration(const DDS_Duration_t &d) {
    if (DDS_Duration_is_infinite(&d)) {
        return nullptr;
    }
    if (d.sec < 0) {
        return "a duration is negative";
    }
    return d.nanosec < kNanosecondsPerSecond ? nullptr
                                             : "a duration has a second or more of nanoseconds";
}

const char *wrong_kind(int kind, int last) {
    return kind >= 0 && kind <= last ? nullptr : "the kind is not one of the policy's";
}

const char *wrong_limit(DDS_Long limit) {
    return limit == DDS_LENGTH_UNLIMITED || limit > 0
               ? nullptr
               : "a limit is neither positive nor DDS_LENGTH_UNLIMITED";
}

const char *wrong_limits(DDS_HistoryQosPolicyKind kind, DDS_Long depth, DDS_Long max_samples,
                         DDS_Long max_instances, DDS_Long max_samples_per_instance) {
    if (kind == DDS_KEEP_LAST_HISTORY_QOS && depth < 1) {
        return "the history depth is below 1";
    }
    for (const DDS_Long limit : {max_samples, max_instances, max_samples_per_instance}) {
        if (const char *const wrong = wrong_limit(limit)) {
            return wrong;
        }
    }
    if (max_samples != DDS_LENGTH_UNLIMITED && (max_samples_per_instance > max_samples)) {
        return "max_samples_per_instance exceeds max_samples";
    }
    if (kind == DDS_KEEP_LAST_HISTORY_QOS && max_samples_per_instance != DDS_LENGTH_UNLIMITED &&
        depth > max_samples_per_instance) {
        return "the history depth exceeds max_samples_per_instance";
    }
    return nullptr;
}

template <typename Policy>
const char *wrong(const Policy &) {
    return nullptr;
}
const char *wrong(const DDS_DurabilityQosPolicy &p) {
    return wrong_kind(p.kind, DDS_PERSISTENT_DURABILITY_QOS);
}
const char *wrong(const DDS_DurabilityServiceQosPolicy &p) {
    if (const char *const text = wrong_duration(p.service_cleanup_delay)) {
        return text;
    }
    if (const char *const text = wrong_kind(p.history_kind, DDS_KEEP_ALL_HISTORY_QOS)) {
        return text;
    }
    return wrong_limits(p.history_kind, p.history_depth, p.max_samples, p.max_instances,
                        p.max_samples_per_instance);
}
const char *wrong(const DDS_PresentationQosPolicy &p) {
    return wrong_kind(p.access_scope, DDS_GROUP_PRESENTATION_QOS);
}
const char *wrong(const DDS_DeadlineQosPolicy &p) {
    return wrong_duration(p.period);
}
const char *wrong(const DDS_LatencyBudgetQosPolicy &p) {
    return wrong_duration(p.duration);
}
const char *wrong(const DDS_OwnershipQosPolicy &p) {
    return wrong_kind(p.kind, DDS_EXCLUSIVE_OWNERSHIP_QOS);
}
const char *wrong(const DDS_LivelinessQosPolicy &p) {
    if (const char *const text = wrong_kind(p.kind, DDS_MANUAL_BY_TOPIC_LIVELINESS_QOS)) {
        return text;
    }
    if (p.lease_duration.sec == 0 && p.lease_duration.nanosec == 0) {
        return "the lease duration is zero, but must be positive";
    }
    return wrong_duration(p.lease_duration);
}
const char *wrong(const DDS_TimeBasedFilterQosPolicy &p) {
    return wrong_duration(p.minimum_separation);
}
const char *wrong(const DDS_ReliabilityQosPolicy &p) {
    if (const char *const text = wrong_kind(p.kind, DDS_RELIABLE_RELIABILITY_QOS)) {
        return text;
    }
    return wrong_duration(p.max_blocking_time);
}
const char *wrong(const DDS_DestinationOrderQosPolicy &p) {
    return wrong_kind(p.kind, DDS_BY_SOURCE_TIMESTAMP_DESTINATIONORDER_QOS);
}
const char *wrong(const DDS_HistoryQosPolicy &p) {
    if (const char *const text = wrong_kind(p.kind, DDS_KEEP_ALL_HISTORY_QOS)) {
        return text;
    }
    return p.kind == DDS_KEEP_LAST_HISTORY_QOS && p.depth < 1 ? "the history depth is below 1"
                                                              : nullptr;
}
const char *wrong(const DDS_LifespanQosPolicy &p) {
    if (p.duration.sec == 0 && p.duration.nanosec == 0) {
        return "the duration is zero, but must be positive";
    }
    return wrong_duration(p.duration);
}
const char *wrong(const DDS_ReaderDataLifecycleQosPolicy &p) {
    const char *const text = wrong_duration(p.autopurge_nowriter_samples_delay);
    return text != nullptr ? text : wrong_duration(p.autopurge_disposed_samples_delay);
}
const char *wrong(const DDS_DataRepresentationQosPolicy &p) {
    const DDS_UnsignedLong count = DDS_ShortSeq_get_length(&p.value);
    for (DDS_UnsignedLong i = 0; i < count; ++i) {
        const DDS_Short id = *DDS_ShortSeq_get_reference(&p.value, static_cast<DDS_Long>(i));
        if (id != DDS_XCDR_DATA_REPRESENTATION && id != DDS_XCDR2_DATA_REPRESENTATION &&
            id != DDS_AUTO_DATA_REPRESENTATION) {
            return "the representation is none of XCDR, XCDR2 and AUTO";
        }
    }
    return nullptr;
}
const char *wrong(const DDS_TypeConsistencyEnforcementQosPolicy &p) {
    return wrong_kind(p.kind, DDS_ALLOW_TYPE_COERCION);
}

// ---- Policies that must fit each other ----------------------------------------------------------

bool is_shorter(const DDS_Duration_t &a, const DDS_Duration_t &b) {
    return a.sec != b.sec ? a.sec < b.sec : a.nanosec < b.nanosec;
}

template <typename Qos>
DDS_ReturnCode_t check_together(const Qos &qos, const char *method) {
    if constexpr (requires {
                      qos.history;
                      qos.resource_limits;
                  }) {
        const auto &limits = qos.resource_limits;
        if (const char *const text =
                wrong_limits(qos.history.kind, qos.history.depth, limits.max_samples,
                             limits.max_instances, limits.max_samples_per_instance)) {
            return fail(DDS_RETCODE_INCONSISTENT_POLICY, method,
                        "inconsistent QoS: history and resource_limits: %s", text);
        }
    }
    if constexpr (requires { qos.time_based_filter; }) {
        if (is_shorter(qos.deadline.period, qos.time_based_filter.minimum_separation)) {
            return fail(DDS_RETCODE_INCONSISTENT_POLICY, method,
                        "inconsistent QoS: deadline and time_based_filter: the deadline period is "
                        "shorter than the minimum separation");
        }
    }
    return DDS_RETCODE_OK;
}

template <typename Qos>
DDS_ReturnCode_t check(const Qos &qos, const char *method) {
    DDS_ReturnCode_t result = DDS_RETCODE_OK;
    kolt::qos::all_members<Qos>([&](const auto &row) {
        const char *const text = wrong(qos.*(row.place));
        if (text != nullptr) {
            result = fail(DDS_RETCODE_INCONSISTENT_POLICY, method, "inconsistent QoS: %s: %s",
                          row.name, text);
        }
        return text == nullptr;
    });
    return result == DDS_RETCODE_OK ? check_together(qos, method) : result;
}

// ---- Changes ------------------------------------------------------------------------------------

// True for the policies that an enabled entity may change (DDS 1.4, table in 2.2.3, column
// "changeable"), and for KOLT's own that have no effect on an entity that exists.
template <typename Policy>
constexpr bool kChangeable = std::is_same_v<Policy, DDS_UserDataQosPolicy> ||
                             std::is_same_v<Policy, DDS_TopicDataQosPolicy> ||
                             std::is_same_v<Policy, DDS_GroupDataQosPolicy> ||
                             std::is_same_v<Policy, DDS_DeadlineQosPolicy> ||
                             std::is_same_v<Policy, DDS_LatencyBudgetQosPolicy> ||
                             std::is_same_v<Policy, DDS_OwnershipStrengthQosPolicy> ||
                             std::is_same_v<Policy, DDS_TimeBasedFilterQosPolicy> ||
                             std::is_same_v<Policy, DDS_PartitionQosPolicy> ||
                             std::is_same_v<Policy, DDS_TransportPriorityQosPolicy> ||
                             std::is_same_v<Policy, DDS_LifespanQosPolicy> ||
                             std::is_same_v<Policy, DDS_EntityFactoryQosPolicy> ||
                             std::is_same_v<Policy, DDS_WriterDataLifecycleQosPolicy> ||
                             std::is_same_v<Policy, DDS_ReaderDataLifecycleQosPolicy> ||
                             std::is_same_v<Policy, DDS_WireProtocolQosPolicy> ||
                             std::is_same_v<Policy, DDS_ProtocolQosPolicy>;

template <typename Qos>
DDS_ReturnCode_t check_immutable(const Qos &from, const Qos &to, const char *method) {
    DDS_ReturnCode_t result = DDS_RETCODE_OK;
    kolt::qos::all_members<Qos>([&](const auto &row) {
        using Policy = std::remove_cvref_t<decltype(from.*(row.place))>;
        if (kChangeable<Policy> || kolt::qos::equals(from.*(row.place), to.*(row.place))) {
            return true;
        }
        result = fail(DDS_RETCODE_IMMUTABLE_POLICY, method,
                      "the policy %s cannot change on an enabled entity", row.name);
        return false;
    });
    return result;
}

}  // namespace

#define KOLT_DEFINE_CHECKS(Qos)                                                         \
    DDS_ReturnCode_t check_qos(const Qos &qos, const char *method) {                    \
        return check(qos, method);                                                      \
    }                                                                                   \
    DDS_ReturnCode_t check_change(const Qos &from, const Qos &to, const char *method) { \
        return check_immutable(from, to, method);                                       \
    }
KOLT_DEFINE_CHECKS(DDS_DomainParticipantQos)
KOLT_DEFINE_CHECKS(DDS_TopicQos)
KOLT_DEFINE_CHECKS(DDS_PublisherQos)
KOLT_DEFINE_CHECKS(DDS_SubscriberQos)
KOLT_DEFINE_CHECKS(DDS_DataWriterQos)
KOLT_DEFINE_CHECKS(DDS_DataReaderQos)
#undef KOLT_DEFINE_CHECKS

}  // namespace kolt::engine
