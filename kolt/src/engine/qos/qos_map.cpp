// SPDX-License-Identifier: Apache-2.0
// One function for each policy that the engine knows.
#include "engine/qos/qos_map.hpp"

#include <cstring>
#include <string_view>
#include <vector>

#include "engine/cyclone/convert.hpp"
#include "qos/qos_description.hpp"
#include "qos/qos_values.hpp"

namespace kolt::engine {

namespace {

// KOLT's numbers of the policy kinds are the standard's and so are the engine's.
static_assert(int{DDS_DURABILITY_PERSISTENT} == int{DDS_PERSISTENT_DURABILITY_QOS});
static_assert(int{DDS_HISTORY_KEEP_ALL} == int{DDS_KEEP_ALL_HISTORY_QOS});
static_assert(int{DDS_OWNERSHIP_EXCLUSIVE} == int{DDS_EXCLUSIVE_OWNERSHIP_QOS});
static_assert(int{DDS_LIVELINESS_MANUAL_BY_TOPIC} == int{DDS_MANUAL_BY_TOPIC_LIVELINESS_QOS});
static_assert(int{DDS_RELIABILITY_RELIABLE} == int{DDS_RELIABLE_RELIABILITY_QOS});
static_assert(int{DDS_DESTINATIONORDER_BY_SOURCE_TIMESTAMP} ==
              int{DDS_BY_SOURCE_TIMESTAMP_DESTINATIONORDER_QOS});
static_assert(int{DDS_PRESENTATION_GROUP} == int{DDS_GROUP_PRESENTATION_QOS});
static_assert(int{DDS_TYPE_CONSISTENCY_ALLOW_TYPE_COERCION} == int{DDS_ALLOW_TYPE_COERCION});

constexpr std::string_view kOwnPropertyPrefix = "dds.";

const void *octets(const DDS_OctetSeq &value, std::size_t *size) {
    *size = DDS_OctetSeq_get_length(&value);
    return *size != 0 ? DDS_OctetSeq_get_contiguous_buffer(&value) : nullptr;
}

// ---- One policy each ----------------------------------------------------------------------------

void set(dds_qos_t *q, const DDS_UserDataQosPolicy &p) {
    std::size_t size = 0;
    const void *const bytes = octets(p.value, &size);
    dds_qset_userdata(q, bytes, size);
}
void set(dds_qos_t *q, const DDS_TopicDataQosPolicy &p) {
    std::size_t size = 0;
    const void *const bytes = octets(p.value, &size);
    dds_qset_topicdata(q, bytes, size);
}
void set(dds_qos_t *q, const DDS_GroupDataQosPolicy &p) {
    std::size_t size = 0;
    const void *const bytes = octets(p.value, &size);
    dds_qset_groupdata(q, bytes, size);
}
void set(dds_qos_t *q, const DDS_DurabilityQosPolicy &p) {
    dds_qset_durability(q, static_cast<dds_durability_kind_t>(p.kind));
}
void set(dds_qos_t *q, const DDS_DurabilityServiceQosPolicy &p) {
    dds_qset_durability_service(q, to_engine(p.service_cleanup_delay),
                                static_cast<dds_history_kind_t>(p.history_kind), p.history_depth,
                                p.max_samples, p.max_instances, p.max_samples_per_instance);
}
void set(dds_qos_t *q, const DDS_PresentationQosPolicy &p) {
    dds_qset_presentation(q, static_cast<dds_presentation_access_scope_kind_t>(p.access_scope),
                          p.coherent_access != 0, p.ordered_access != 0);
}
void set(dds_qos_t *q, const DDS_DeadlineQosPolicy &p) {
    dds_qset_deadline(q, to_engine(p.period));
}
void set(dds_qos_t *q, const DDS_LatencyBudgetQosPolicy &p) {
    dds_qset_latency_budget(q, to_engine(p.duration));
}
void set(dds_qos_t *q, const DDS_OwnershipQosPolicy &p) {
    dds_qset_ownership(q, static_cast<dds_ownership_kind_t>(p.kind));
}
void set(dds_qos_t *q, const DDS_OwnershipStrengthQosPolicy &p) {
    dds_qset_ownership_strength(q, p.value);
}
void set(dds_qos_t *q, const DDS_LivelinessQosPolicy &p) {
    dds_qset_liveliness(q, static_cast<dds_liveliness_kind_t>(p.kind), to_engine(p.lease_duration));
}
void set(dds_qos_t *q, const DDS_TimeBasedFilterQosPolicy &p) {
    dds_qset_time_based_filter(q, to_engine(p.minimum_separation));
}
void set(dds_qos_t *q, const DDS_PartitionQosPolicy &p) {
    std::vector<const char *> names(DDS_StringSeq_get_length(&p.name));
    for (std::size_t i = 0; i < names.size(); ++i) {
        names[i] = *DDS_StringSeq_get_reference(&p.name, static_cast<DDS_Long>(i));
        if (names[i] == nullptr) {
            names[i] = "";
        }
    }
    dds_qset_partition(q, static_cast<std::uint32_t>(names.size()), names.data());
}
void set(dds_qos_t *q, const DDS_ReliabilityQosPolicy &p) {
    dds_qset_reliability(q, static_cast<dds_reliability_kind_t>(p.kind),
                         to_engine(p.max_blocking_time));
}
void set(dds_qos_t *q, const DDS_DestinationOrderQosPolicy &p) {
    dds_qset_destination_order(q, static_cast<dds_destination_order_kind_t>(p.kind));
}
void set(dds_qos_t *q, const DDS_HistoryQosPolicy &p) {
    dds_qset_history(q, static_cast<dds_history_kind_t>(p.kind), p.depth);
}
void set(dds_qos_t *q, const DDS_ResourceLimitsQosPolicy &p) {
    dds_qset_resource_limits(q, p.max_samples, p.max_instances, p.max_samples_per_instance);
}
void set(dds_qos_t *q, const DDS_TransportPriorityQosPolicy &p) {
    dds_qset_transport_priority(q, p.value);
}
void set(dds_qos_t *q, const DDS_LifespanQosPolicy &p) {
    dds_qset_lifespan(q, to_engine(p.duration));
}
void set(dds_qos_t *q, const DDS_WriterDataLifecycleQosPolicy &p) {
    dds_qset_writer_data_lifecycle(q, p.autodispose_unregistered_instances != 0);
}
void set(dds_qos_t *q, const DDS_ReaderDataLifecycleQosPolicy &p) {
    dds_qset_reader_data_lifecycle(q, to_engine(p.autopurge_nowriter_samples_delay),
                                   to_engine(p.autopurge_disposed_samples_delay));
}
void set(dds_qos_t *q, const DDS_TypeConsistencyEnforcementQosPolicy &p) {
    dds_qset_type_consistency(q, static_cast<dds_type_consistency_kind_t>(p.kind),
                              p.ignore_sequence_bounds != 0, p.ignore_string_bounds != 0,
                              p.ignore_member_names != 0, p.prevent_type_widening != 0,
                              p.force_type_validation != 0);
}
void set(dds_qos_t *q, const DDS_EntityNameQosPolicy &p) {
    if (p.name != nullptr) {
        dds_qset_entity_name(q, p.name);
    }
}
// Properties that are set through the engine's public interface stay local.
void set(dds_qos_t *q, const DDS_PropertyQosPolicy &p) {
    const DDS_UnsignedLong count = DDS_PropertySeq_get_length(&p.value);
    for (DDS_UnsignedLong i = 0; i < count; ++i) {
        const DDS_Property_t *const property =
            DDS_PropertySeq_get_reference(&p.value, static_cast<DDS_Long>(i));
        if (property->name == nullptr || property->value == nullptr) {
            continue;
        }
        const std::string_view name = property->name;
        if (name.starts_with(kOwnPropertyPrefix) && !name.starts_with("dds.sec.")) {
            continue;
        }
        dds_qset_prop(q, property->name, property->value);
    }
}
// These are handled elsewhere, or stay in KOLT.
void set(dds_qos_t *, const DDS_DataRepresentationQosPolicy &) {}
void set(dds_qos_t *, const DDS_EntityFactoryQosPolicy &) {}
void set(dds_qos_t *, const DDS_WireProtocolQosPolicy &) {}
void set(dds_qos_t *, const DDS_ProtocolQosPolicy &) {}

template <typename Qos>
EngineQos set_all(const Qos &qos) {
    EngineQos result(dds_create_qos());
    if (result == nullptr) {
        throw std::bad_alloc();
    }
    kolt::qos::for_each_member<Qos>([&](const auto &row) { set(result.get(), qos.*(row.place)); });
    return result;
}

// ---- Data representations -----------------------------------------------------------------------

// Returns the list with AUTO resolved; empty when the QoS leaves the choice open.
std::vector<dds_data_representation_id_t> representations(
    const DDS_DataRepresentationQosPolicy &policy, const RegisteredType *type) {
    std::vector<dds_data_representation_id_t> result(DDS_ShortSeq_get_length(&policy.value));
    for (std::size_t i = 0; i < result.size(); ++i) {
        result[i] = *DDS_ShortSeq_get_reference(&policy.value, static_cast<DDS_Long>(i));
        if (type != nullptr) {
            type->resolve_representation(&result[i]);
        } else if (result[i] == DDS_AUTO_DATA_REPRESENTATION) {
            result[i] = DDS_XCDR_DATA_REPRESENTATION;
        }
    }
    return result;
}

void set_representations(dds_qos_t *q, const std::vector<dds_data_representation_id_t> &ids) {
    dds_qset_data_representation(q, static_cast<std::uint32_t>(ids.size()), ids.data());
}

}  // namespace

EngineQos to_engine(const DDS_DomainParticipantQos &qos) {
    return set_all(qos);
}
EngineQos to_engine(const DDS_PublisherQos &qos) {
    return set_all(qos);
}
EngineQos to_engine(const DDS_SubscriberQos &qos) {
    return set_all(qos);
}

EngineQos to_engine(const DDS_TopicQos &qos) {
    EngineQos result = set_all(qos);
    // Left out unless it is set: the engine merges a topic's policies into those of its endpoints.
    const auto ids = representations(qos.representation, nullptr);
    if (!ids.empty()) {
        set_representations(result.get(), ids);
    }
    return result;
}

bool has_property(const DDS_PropertyQosPolicy &policy, const char *name, const char *value) {
    const DDS_Property_t *const property =
        DDS_PropertyQosPolicyHelper_lookup_property(&policy, name);
    return property != nullptr && property->value != nullptr &&
           std::strcmp(property->value, value) == 0;
}

bool writer_representation(const DDS_DataWriterQos &qos, const RegisteredType &type,
                           DDS_DataRepresentationId_t *representation) {
    *representation = DDS_ShortSeq_get_length(&qos.representation.value) != 0
                          ? *DDS_ShortSeq_get_reference(&qos.representation.value, 0)
                          : DDS_AUTO_DATA_REPRESENTATION;
    return type.resolve_representation(representation);
}

EngineQos to_engine(const DDS_DataWriterQos &qos, const RegisteredType &type) {
    EngineQos result = set_all(qos);
    DDS_DataRepresentationId_t representation = DDS_AUTO_DATA_REPRESENTATION;
    writer_representation(qos, type, &representation);
    set_representations(result.get(), {representation});

    // The engine sends late joiners the history of the durability service. An application that
    // leaves that policy alone expects the writer's history.
    qos::OwnedQos<DDS_DataWriterQos> defaults;
    if (kolt::qos::equals((*defaults).durability_service, qos.durability_service)) {
        dds_qset_durability_service(
            result.get(), 0, static_cast<dds_history_kind_t>(qos.history.kind), qos.history.depth,
            qos.resource_limits.max_samples, qos.resource_limits.max_instances,
            qos.resource_limits.max_samples_per_instance);
    }
    return result;
}

EngineQos to_engine(const DDS_DataReaderQos &qos, const RegisteredType &type) {
    EngineQos result = set_all(qos);
    auto ids = representations(qos.representation, &type);
    if (ids.empty()) {
        for (const DDS_DataRepresentationId_t id :
             {DDS_XCDR_DATA_REPRESENTATION, DDS_XCDR2_DATA_REPRESENTATION}) {
            DDS_DataRepresentationId_t resolved = id;
            if (type.resolve_representation(&resolved)) {
                ids.push_back(id);
            }
        }
    }
    set_representations(result.get(), ids);
    return result;
}

bool from_engine(const dds_qos_t *engine_qos, DDS_DomainParticipantQos *qos) {
    bool complete = true;
    void *user_data = nullptr;
    std::size_t size = 0;
    if (dds_qget_userdata(engine_qos, &user_data, &size) && size != 0) {
        complete = DDS_OctetSeq_from_array(&qos->user_data.value,
                                           static_cast<const DDS_Octet *>(user_data),
                                           static_cast<DDS_Long>(size)) != 0;
        dds_free(user_data);
    }
    char *name = nullptr;
    if (dds_qget_entity_name(engine_qos, &name)) {
        complete = DDS_String_replace(&qos->participant_name.name, name) != nullptr && complete;
        dds_free(name);
    }
    std::uint32_t count = 0;
    char **names = nullptr;
    if (!dds_qget_propnames(engine_qos, &count, &names)) {
        return complete;
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        char *value = nullptr;
        if (dds_qget_prop(engine_qos, names[i], &value)) {
            complete = DDS_PropertyQosPolicyHelper_assert_property(
                           &qos->property, names[i], value, DDS_BOOLEAN_FALSE) == DDS_RETCODE_OK &&
                       complete;
            dds_free(value);
        }
        dds_free(names[i]);
    }
    dds_free(names);
    return complete;
}

}  // namespace kolt::engine
