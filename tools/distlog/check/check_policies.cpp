// SPDX-License-Identifier: Apache-2.0
// The policies of a QoS record as JSON and as text.
#include "check/check_policies.hpp"

#include <fmt/format.h>
#include <kolt/cdr.h>

#include <algorithm>
#include <array>
#include <tuple>

#include "kolt_internal/owned_qos.hpp"

namespace distlog::check {
namespace {

// ---- Values -----------------------------------------------------------------------------------

constexpr const char *kUnlimited = "LENGTH_UNLIMITED";

// Returns the name that a document has for a value of an enumeration; `names` begin at value 0.
template <std::size_t kCount>
Json name_of(const std::array<const char *, kCount> &names, int value) {
    const auto index = static_cast<std::size_t>(value);
    return value >= 0 && index < kCount ? Json(names[index]) : Json(value);
}

Json to_json(DDS_DurabilityQosPolicyKind kind) {
    return name_of(std::array{"VOLATILE_DURABILITY_QOS", "TRANSIENT_LOCAL_DURABILITY_QOS",
                              "TRANSIENT_DURABILITY_QOS", "PERSISTENT_DURABILITY_QOS"},
                   kind);
}
Json to_json(DDS_PresentationQosPolicyAccessScopeKind kind) {
    return name_of(
        std::array{"INSTANCE_PRESENTATION_QOS", "TOPIC_PRESENTATION_QOS", "GROUP_PRESENTATION_QOS"},
        kind);
}
Json to_json(DDS_OwnershipQosPolicyKind kind) {
    return name_of(std::array{"SHARED_OWNERSHIP_QOS", "EXCLUSIVE_OWNERSHIP_QOS"}, kind);
}
Json to_json(DDS_LivelinessQosPolicyKind kind) {
    return name_of(std::array{"AUTOMATIC_LIVELINESS_QOS", "MANUAL_BY_PARTICIPANT_LIVELINESS_QOS",
                              "MANUAL_BY_TOPIC_LIVELINESS_QOS"},
                   kind);
}
Json to_json(DDS_ReliabilityQosPolicyKind kind) {
    return name_of(std::array{"BEST_EFFORT_RELIABILITY_QOS", "RELIABLE_RELIABILITY_QOS"}, kind);
}
Json to_json(DDS_DestinationOrderQosPolicyKind kind) {
    return name_of(std::array{"BY_RECEPTION_TIMESTAMP_DESTINATIONORDER_QOS",
                              "BY_SOURCE_TIMESTAMP_DESTINATIONORDER_QOS"},
                   kind);
}
Json to_json(DDS_HistoryQosPolicyKind kind) {
    return name_of(std::array{"KEEP_LAST_HISTORY_QOS", "KEEP_ALL_HISTORY_QOS"}, kind);
}
Json to_json(DDS_TypeConsistencyKind kind) {
    return name_of(std::array{"DISALLOW_TYPE_COERCION", "ALLOW_TYPE_COERCION"}, kind);
}

Json to_json(DDS_Boolean value) {
    return Json(value != DDS_BOOLEAN_FALSE);
}
Json to_json(DDS_Long value) {
    return value == DDS_LENGTH_UNLIMITED ? Json(kUnlimited) : Json(value);
}
Json to_json(const DDS_Char *value) {
    return value == nullptr ? Json() : Json(value);
}
// Returns seconds with as many decimals as necessary.
Json to_json(const DDS_Duration_t &value) {
    if (DDS_Duration_is_infinite(&value)) {
        return "infinite";
    }
    std::string text = fmt::format("{}.{:09}", value.sec, value.nanosec);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
        text.pop_back();
    }
    return text + " s";
}
Json to_json(const DDS_OctetSeq &value) {
    Json array = Json::array();
    for (DDS_UnsignedLong i = 0; i < DDS_OctetSeq_get_length(&value); ++i) {
        array.push_back(DDS_OctetSeq_get(&value, static_cast<DDS_Long>(i)));
    }
    return array;
}
Json to_json(const DDS_StringSeq &value) {
    Json array = Json::array();
    for (DDS_UnsignedLong i = 0; i < DDS_StringSeq_get_length(&value); ++i) {
        array.push_back(to_json(DDS_StringSeq_get(&value, static_cast<DDS_Long>(i))));
    }
    return array;
}
// Only data representations are lists of short integers.
Json to_json(const DDS_ShortSeq &value) {
    Json array = Json::array();
    for (DDS_UnsignedLong i = 0; i < DDS_ShortSeq_get_length(&value); ++i) {
        const DDS_Short id = DDS_ShortSeq_get(&value, static_cast<DDS_Long>(i));
        array.push_back(
            id == DDS_AUTO_DATA_REPRESENTATION
                ? Json("AUTO_DATA_REPRESENTATION")
                : name_of(std::array{"XCDR_DATA_REPRESENTATION", "XML_DATA_REPRESENTATION",
                                     "XCDR2_DATA_REPRESENTATION"},
                          id));
    }
    return array;
}
Json to_json(const DDS_PropertySeq &value) {
    Json array = Json::array();
    for (DDS_UnsignedLong i = 0; i < DDS_PropertySeq_get_length(&value); ++i) {
        const DDS_Property_t &property =
            *DDS_PropertySeq_get_reference(&value, static_cast<DDS_Long>(i));
        array.push_back(Json{{"name", to_json(property.name)},
                             {"value", to_json(property.value)},
                             {"propagate", to_json(property.propagate)}});
    }
    return array;
}

// ---- Records ----------------------------------------------------------------------------------

template <typename Record, typename Member>
struct Row {
    const char *name;
    Member Record::*place;
    bool important = false;
};
template <typename Record, typename Member>
Row(const char *, Member Record::*) -> Row<Record, Member>;
template <typename Record, typename Member>
Row(const char *, Member Record::*, bool) -> Row<Record, Member>;

// The members of each policy, and the policies of each record.
template <typename Record>
struct Members;

#define DISTLOG_ROW(member)    \
    Row {                      \
#member, &Self::member \
    }
#define DISTLOG_IMPORTANT(member)    \
    Row {                            \
#member, &Self::member, true \
    }
#define DISTLOG_MEMBERS(Record, ...)                           \
    template <>                                                \
    struct Members<Record> {                                   \
        using Self = Record;                                   \
        static constexpr auto kRows = std::tuple{__VA_ARGS__}; \
    }

DISTLOG_MEMBERS(DDS_UserDataQosPolicy, DISTLOG_ROW(value));
DISTLOG_MEMBERS(DDS_TopicDataQosPolicy, DISTLOG_ROW(value));
DISTLOG_MEMBERS(DDS_GroupDataQosPolicy, DISTLOG_ROW(value));
DISTLOG_MEMBERS(DDS_DurabilityQosPolicy, DISTLOG_ROW(kind));
DISTLOG_MEMBERS(DDS_DurabilityServiceQosPolicy, DISTLOG_ROW(service_cleanup_delay),
                DISTLOG_ROW(history_kind), DISTLOG_ROW(history_depth), DISTLOG_ROW(max_samples),
                DISTLOG_ROW(max_instances), DISTLOG_ROW(max_samples_per_instance));
DISTLOG_MEMBERS(DDS_PresentationQosPolicy, DISTLOG_ROW(access_scope), DISTLOG_ROW(coherent_access),
                DISTLOG_ROW(ordered_access));
DISTLOG_MEMBERS(DDS_DeadlineQosPolicy, DISTLOG_ROW(period));
DISTLOG_MEMBERS(DDS_LatencyBudgetQosPolicy, DISTLOG_ROW(duration));
DISTLOG_MEMBERS(DDS_OwnershipQosPolicy, DISTLOG_ROW(kind));
DISTLOG_MEMBERS(DDS_LivelinessQosPolicy, DISTLOG_ROW(kind), DISTLOG_ROW(lease_duration));
DISTLOG_MEMBERS(DDS_TimeBasedFilterQosPolicy, DISTLOG_ROW(minimum_separation));
DISTLOG_MEMBERS(DDS_PartitionQosPolicy, DISTLOG_ROW(name));
DISTLOG_MEMBERS(DDS_ReliabilityQosPolicy, DISTLOG_ROW(kind), DISTLOG_ROW(max_blocking_time));
DISTLOG_MEMBERS(DDS_DestinationOrderQosPolicy, DISTLOG_ROW(kind));
DISTLOG_MEMBERS(DDS_HistoryQosPolicy, DISTLOG_ROW(kind), DISTLOG_ROW(depth));
DISTLOG_MEMBERS(DDS_ResourceLimitsQosPolicy, DISTLOG_ROW(max_samples), DISTLOG_ROW(max_instances),
                DISTLOG_ROW(max_samples_per_instance));
DISTLOG_MEMBERS(DDS_LifespanQosPolicy, DISTLOG_ROW(duration));
DISTLOG_MEMBERS(DDS_EntityFactoryQosPolicy, DISTLOG_ROW(autoenable_created_entities));
DISTLOG_MEMBERS(DDS_WriterDataLifecycleQosPolicy, DISTLOG_ROW(autodispose_unregistered_instances));
DISTLOG_MEMBERS(DDS_ReaderDataLifecycleQosPolicy, DISTLOG_ROW(autopurge_nowriter_samples_delay),
                DISTLOG_ROW(autopurge_disposed_samples_delay));
DISTLOG_MEMBERS(DDS_DataRepresentationQosPolicy, DISTLOG_ROW(value));
DISTLOG_MEMBERS(DDS_TypeConsistencyEnforcementQosPolicy, DISTLOG_ROW(kind),
                DISTLOG_ROW(ignore_sequence_bounds), DISTLOG_ROW(ignore_string_bounds),
                DISTLOG_ROW(ignore_member_names), DISTLOG_ROW(prevent_type_widening),
                DISTLOG_ROW(force_type_validation));
DISTLOG_MEMBERS(DDS_PropertyQosPolicy, DISTLOG_ROW(value));
DISTLOG_MEMBERS(DDS_EntityNameQosPolicy, DISTLOG_ROW(name));
DISTLOG_MEMBERS(DDS_ProtocolQosPolicy, DISTLOG_ROW(vendor_specific_entity));

// The policy wire_protocol is left out, because only the engine sets it.
DISTLOG_MEMBERS(DDS_DomainParticipantQos, DISTLOG_IMPORTANT(participant_name),
                DISTLOG_IMPORTANT(property), DISTLOG_ROW(user_data), DISTLOG_ROW(entity_factory),
                DISTLOG_ROW(protocol));
DISTLOG_MEMBERS(DDS_PublisherQos, DISTLOG_IMPORTANT(partition), DISTLOG_IMPORTANT(presentation),
                DISTLOG_ROW(group_data), DISTLOG_ROW(entity_factory), DISTLOG_ROW(protocol));
DISTLOG_MEMBERS(DDS_SubscriberQos, DISTLOG_IMPORTANT(partition), DISTLOG_IMPORTANT(presentation),
                DISTLOG_ROW(group_data), DISTLOG_ROW(entity_factory), DISTLOG_ROW(protocol));
DISTLOG_MEMBERS(DDS_TopicQos, DISTLOG_IMPORTANT(reliability), DISTLOG_IMPORTANT(durability),
                DISTLOG_IMPORTANT(history), DISTLOG_IMPORTANT(resource_limits),
                DISTLOG_IMPORTANT(representation), DISTLOG_ROW(durability_service),
                DISTLOG_ROW(deadline), DISTLOG_ROW(latency_budget), DISTLOG_ROW(liveliness),
                DISTLOG_ROW(destination_order), DISTLOG_ROW(transport_priority),
                DISTLOG_ROW(lifespan), DISTLOG_ROW(ownership), DISTLOG_ROW(topic_data),
                DISTLOG_ROW(protocol));
DISTLOG_MEMBERS(DDS_DataWriterQos, DISTLOG_IMPORTANT(reliability), DISTLOG_IMPORTANT(durability),
                DISTLOG_IMPORTANT(history), DISTLOG_IMPORTANT(resource_limits),
                DISTLOG_IMPORTANT(representation), DISTLOG_IMPORTANT(property),
                DISTLOG_ROW(durability_service), DISTLOG_ROW(deadline), DISTLOG_ROW(latency_budget),
                DISTLOG_ROW(liveliness), DISTLOG_ROW(destination_order),
                DISTLOG_ROW(transport_priority), DISTLOG_ROW(lifespan), DISTLOG_ROW(ownership),
                DISTLOG_ROW(ownership_strength), DISTLOG_ROW(writer_data_lifecycle),
                DISTLOG_ROW(user_data), DISTLOG_ROW(protocol));
DISTLOG_MEMBERS(DDS_DataReaderQos, DISTLOG_IMPORTANT(reliability), DISTLOG_IMPORTANT(durability),
                DISTLOG_IMPORTANT(history), DISTLOG_IMPORTANT(resource_limits),
                DISTLOG_IMPORTANT(representation), DISTLOG_IMPORTANT(property),
                DISTLOG_ROW(deadline), DISTLOG_ROW(latency_budget), DISTLOG_ROW(liveliness),
                DISTLOG_ROW(destination_order), DISTLOG_ROW(ownership),
                DISTLOG_ROW(time_based_filter), DISTLOG_ROW(reader_data_lifecycle),
                DISTLOG_ROW(type_consistency), DISTLOG_ROW(user_data), DISTLOG_ROW(protocol));

#undef DISTLOG_MEMBERS
#undef DISTLOG_IMPORTANT
#undef DISTLOG_ROW

template <typename Record, typename Visit>
void for_each_row(Visit visit) {
    std::apply([&](const auto &...row) { (visit(row), ...); }, Members<Record>::kRows);
}

template <typename PolicyRecord>
Json members_of(const PolicyRecord &policy) {
    Json object = Json::object();
    for_each_row<PolicyRecord>(
        [&](const auto &row) { object[row.name] = to_json(policy.*row.place); });
    return object;
}
// These numbers are not limits, so -1 has no name.
Json members_of(const DDS_TransportPriorityQosPolicy &policy) {
    return Json{{"value", policy.value}};
}
Json members_of(const DDS_OwnershipStrengthQosPolicy &policy) {
    return Json{{"value", policy.value}};
}

template <typename Qos>
std::vector<Policy> compare(const Qos &effective, const Qos &said) {
    const kolt::qos::OwnedQos<Qos> standard;
    std::vector<Policy> policies;
    for_each_row<Qos>([&](const auto &row) {
        policies.push_back({row.name, row.important, members_of(effective.*row.place),
                            members_of((*standard).*row.place), members_of(said.*row.place)});
    });
    return policies;
}

// ---- Text -------------------------------------------------------------------------------------

std::string element_text(const Json &element) {
    if (element.is_object()) {  // a property
        return fmt::format("{}={}", element["name"].get<std::string>(),
                           element["value"].is_null() ? "" : element["value"].get<std::string>());
    }
    return element.is_string() ? element.get<std::string>() : element.dump();
}

Json no_limits() {
    return Json{{"max_samples", kUnlimited},
                {"max_instances", kUnlimited},
                {"max_samples_per_instance", kUnlimited}};
}

std::string value_text(const Json &value) {
    if (value.is_null()) {
        return "none";
    }
    if (!value.is_array()) {
        return element_text(value);
    }
    std::string text;
    for (const Json &element : value) {
        text += (text.empty() ? "" : ", ") + element_text(element);
    }
    return text.empty() ? "none" : text;
}

}  // namespace

std::string_view Policy::source() const {
    if (value != said) {
        return "logger";
    }
    return value == standard ? "default" : "profile";
}

std::vector<Policy> policies_of(const DDS_DomainParticipantQos &effective,
                                const DDS_DomainParticipantQos &said) {
    return compare(effective, said);
}
std::vector<Policy> policies_of(const DDS_PublisherQos &effective, const DDS_PublisherQos &said) {
    return compare(effective, said);
}
std::vector<Policy> policies_of(const DDS_SubscriberQos &effective, const DDS_SubscriberQos &said) {
    return compare(effective, said);
}
std::vector<Policy> policies_of(const DDS_TopicQos &effective, const DDS_TopicQos &said) {
    return compare(effective, said);
}
std::vector<Policy> policies_of(const DDS_DataWriterQos &effective, const DDS_DataWriterQos &said) {
    return compare(effective, said);
}
std::vector<Policy> policies_of(const DDS_DataReaderQos &effective, const DDS_DataReaderQos &said) {
    return compare(effective, said);
}

std::string policy_text(std::string_view name, const Json &value) {
    if (name == "representation" && value["value"].empty()) {
        return "automatic (offered: XCDR1, accepted: XCDR1 and XCDR2)";
    }
    if (name == "resource_limits" && value == no_limits()) {
        return "unlimited";
    }
    std::string text;
    for (const auto &[member, content] : value.items()) {
        if (member == "depth" && value["kind"] == "KEEP_ALL_HISTORY_QOS") {
            continue;
        }
        // The first member of most policies needs no name: the policy's name says it.
        const bool obvious = text.empty() && (member == "kind" || member == "value" ||
                                              member == "name" || member == "duration" ||
                                              member == "period" || member == "access_scope");
        text += text.empty() ? "" : ", ";
        text += obvious ? value_text(content) : fmt::format("{} {}", member, value_text(content));
    }
    return text;
}

}  // namespace distlog::check
