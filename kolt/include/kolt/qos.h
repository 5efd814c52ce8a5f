/* SPDX-License-Identifier: Apache-2.0 */
/* QoS policies and the QoS records of the entities (DDS 1.4, 2.2.3; DDS-XTypes 1.3, 7.6.3).
 *
 * A QoS record owns its strings and sequences: `_initialize` makes the standard's default,
 * `_finalize` frees, `_copy` is deep. A record that was finalised can be initialised again.
 * Defaults are those of DDS 1.4, table in 2.2.3; policies marked (K) are the platform's own.
 */
#pragma once

#include "kolt/sequence.h"
#include "kolt/typecode.h"

KOLT_EXTERN_C_BEGIN

/* ---- Policy kinds -------------------------------------------------------------------------- */

typedef enum DDS_DurabilityQosPolicyKind KOLT_ENUM_BASE {
    DDS_VOLATILE_DURABILITY_QOS = 0,
    DDS_TRANSIENT_LOCAL_DURABILITY_QOS = 1,
    DDS_TRANSIENT_DURABILITY_QOS = 2,
    DDS_PERSISTENT_DURABILITY_QOS = 3
} DDS_DurabilityQosPolicyKind;

typedef enum DDS_PresentationQosPolicyAccessScopeKind KOLT_ENUM_BASE {
    DDS_INSTANCE_PRESENTATION_QOS = 0,
    DDS_TOPIC_PRESENTATION_QOS = 1,
    DDS_GROUP_PRESENTATION_QOS = 2
} DDS_PresentationQosPolicyAccessScopeKind;

typedef enum DDS_OwnershipQosPolicyKind KOLT_ENUM_BASE {
    DDS_SHARED_OWNERSHIP_QOS = 0,
    DDS_EXCLUSIVE_OWNERSHIP_QOS = 1
} DDS_OwnershipQosPolicyKind;

typedef enum DDS_LivelinessQosPolicyKind KOLT_ENUM_BASE {
    DDS_AUTOMATIC_LIVELINESS_QOS = 0,
    DDS_MANUAL_BY_PARTICIPANT_LIVELINESS_QOS = 1,
    DDS_MANUAL_BY_TOPIC_LIVELINESS_QOS = 2
} DDS_LivelinessQosPolicyKind;

typedef enum DDS_ReliabilityQosPolicyKind KOLT_ENUM_BASE {
    DDS_BEST_EFFORT_RELIABILITY_QOS = 0,
    DDS_RELIABLE_RELIABILITY_QOS = 1
} DDS_ReliabilityQosPolicyKind;

typedef enum DDS_DestinationOrderQosPolicyKind KOLT_ENUM_BASE {
    DDS_BY_RECEPTION_TIMESTAMP_DESTINATIONORDER_QOS = 0,
    DDS_BY_SOURCE_TIMESTAMP_DESTINATIONORDER_QOS = 1
} DDS_DestinationOrderQosPolicyKind;

typedef enum DDS_HistoryQosPolicyKind KOLT_ENUM_BASE {
    DDS_KEEP_LAST_HISTORY_QOS = 0,
    DDS_KEEP_ALL_HISTORY_QOS = 1
} DDS_HistoryQosPolicyKind;

typedef enum DDS_TypeConsistencyKind KOLT_ENUM_BASE {
    DDS_DISALLOW_TYPE_COERCION = 0,
    DDS_ALLOW_TYPE_COERCION = 1
} DDS_TypeConsistencyKind;

/* ---- Policies ------------------------------------------------------------------------------ */

typedef struct DDS_UserDataQosPolicy {
    DDS_OctetSeq value;
} DDS_UserDataQosPolicy;
typedef struct DDS_TopicDataQosPolicy {
    DDS_OctetSeq value;
} DDS_TopicDataQosPolicy;
typedef struct DDS_GroupDataQosPolicy {
    DDS_OctetSeq value;
} DDS_GroupDataQosPolicy;
typedef struct DDS_DurabilityQosPolicy {
    DDS_DurabilityQosPolicyKind kind;
} DDS_DurabilityQosPolicy;
/* Lengths and depths are 1 or more, or DDS_LENGTH_UNLIMITED. */
typedef struct DDS_DurabilityServiceQosPolicy {
    DDS_Duration_t service_cleanup_delay;
    DDS_HistoryQosPolicyKind history_kind;
    DDS_Long history_depth;
    DDS_Long max_samples;
    DDS_Long max_instances;
    DDS_Long max_samples_per_instance;
} DDS_DurabilityServiceQosPolicy;
typedef struct DDS_PresentationQosPolicy {
    DDS_PresentationQosPolicyAccessScopeKind access_scope;
    DDS_Boolean coherent_access;
    DDS_Boolean ordered_access;
} DDS_PresentationQosPolicy;
typedef struct DDS_DeadlineQosPolicy {
    DDS_Duration_t period;
} DDS_DeadlineQosPolicy;
typedef struct DDS_LatencyBudgetQosPolicy {
    DDS_Duration_t duration;
} DDS_LatencyBudgetQosPolicy;
typedef struct DDS_OwnershipQosPolicy {
    DDS_OwnershipQosPolicyKind kind;
} DDS_OwnershipQosPolicy;
typedef struct DDS_OwnershipStrengthQosPolicy {
    DDS_Long value;
} DDS_OwnershipStrengthQosPolicy;
typedef struct DDS_LivelinessQosPolicy {
    DDS_LivelinessQosPolicyKind kind;
    DDS_Duration_t lease_duration;
} DDS_LivelinessQosPolicy;
/* DDS 1.4, 2.2.3.12. Of each instance the reader gets the first sample at once, and of those that come
 * within minimum_separation after one the last, when that time has passed: so also of a best-effort
 * writer. An instance that ends, or whose writer is deleted, gives its last sample before. What a
 * content filter keeps out counts as not written. Time is that of arrival. */
typedef struct DDS_TimeBasedFilterQosPolicy {
    DDS_Duration_t minimum_separation;
} DDS_TimeBasedFilterQosPolicy;
typedef struct DDS_PartitionQosPolicy {
    DDS_StringSeq name;
} DDS_PartitionQosPolicy;
typedef struct DDS_ReliabilityQosPolicy {
    DDS_ReliabilityQosPolicyKind kind;
    DDS_Duration_t max_blocking_time;
} DDS_ReliabilityQosPolicy;
typedef struct DDS_DestinationOrderQosPolicy {
    DDS_DestinationOrderQosPolicyKind kind;
} DDS_DestinationOrderQosPolicy;
typedef struct DDS_HistoryQosPolicy {
    DDS_HistoryQosPolicyKind kind;
    DDS_Long depth; /* 1 or more; used with KEEP_LAST */
} DDS_HistoryQosPolicy;
typedef struct DDS_ResourceLimitsQosPolicy {
    DDS_Long max_samples;
    DDS_Long max_instances;
    DDS_Long max_samples_per_instance;
} DDS_ResourceLimitsQosPolicy;
typedef struct DDS_TransportPriorityQosPolicy {
    DDS_Long value;
} DDS_TransportPriorityQosPolicy;
typedef struct DDS_LifespanQosPolicy {
    DDS_Duration_t duration;
} DDS_LifespanQosPolicy;
typedef struct DDS_EntityFactoryQosPolicy {
    DDS_Boolean autoenable_created_entities;
} DDS_EntityFactoryQosPolicy;
typedef struct DDS_WriterDataLifecycleQosPolicy {
    DDS_Boolean autodispose_unregistered_instances;
} DDS_WriterDataLifecycleQosPolicy;
/* DDS 1.4, 2.2.3.22. So long after an instance has ended, its samples, read or not, leave the reader. A
 * changed delay holds at once, also for instances that have ended before. */
typedef struct DDS_ReaderDataLifecycleQosPolicy {
    DDS_Duration_t autopurge_nowriter_samples_delay;
    DDS_Duration_t autopurge_disposed_samples_delay;
} DDS_ReaderDataLifecycleQosPolicy;

/* DDS-XTypes 1.3, 7.6.3.1. An empty list means the default: a writer offers XCDR1, a reader accepts
 * XCDR1 and XCDR2. A writer offers the first element; DDS_AUTO_DATA_REPRESENTATION stands for the
 * default, too. Elements are DDS_DataRepresentationId_t. */
typedef struct DDS_DataRepresentationQosPolicy {
    DDS_ShortSeq value;
} DDS_DataRepresentationQosPolicy;
/* DDS-XTypes 1.3, 7.6.3.7. */
typedef struct DDS_TypeConsistencyEnforcementQosPolicy {
    DDS_TypeConsistencyKind kind;
    DDS_Boolean ignore_sequence_bounds;
    DDS_Boolean ignore_string_bounds;
    DDS_Boolean ignore_member_names;
    DDS_Boolean prevent_type_widening;
    DDS_Boolean force_type_validation;
} DDS_TypeConsistencyEnforcementQosPolicy;

/* (K) Name-value pairs handed to the engine and to KOLT itself (DDS Security 1.1, 7.2.5). They stay
 * local: the engine offers no way to send them with discovery, so that `propagate` is kept, copied,
 * compared and read from profiles, but has no effect. What others are to see goes into user_data.
 */
typedef struct DDS_Property_t {
    DDS_Char *name;
    DDS_Char *value;
    DDS_Boolean propagate; /* no effect */
} DDS_Property_t;
KOLT_SEQUENCE_DECLARE(DDS_PropertySeq, DDS_Property_t, KOLT_EXPORT);
typedef struct DDS_PropertyQosPolicy {
    DDS_PropertySeq value;
} DDS_PropertyQosPolicy;
/* (K) The participant's name, sent with discovery; NULL: none. */
typedef struct DDS_EntityNameQosPolicy {
    DDS_Char *name;
} DDS_EntityNameQosPolicy;
/* (K) The participant's place in the RTPS GUID space. Set by the engine: what a QoS says at
 * creation is ignored, and DDS_DomainParticipant_get_qos returns the ids in force. The host id is
 * the first, the app id the second group of 4 bytes of the GUID prefix, big-endian. */
typedef struct DDS_WireProtocolQosPolicy {
    DDS_UnsignedLong rtps_host_id;
    DDS_UnsignedLong rtps_app_id;
} DDS_WireProtocolQosPolicy;
/* (K) Marks an entity that belongs to an infrastructure library rather than to the application. */
typedef struct DDS_ProtocolQosPolicy {
    DDS_Boolean vendor_specific_entity;
} DDS_ProtocolQosPolicy;
/* (K) Where the factory finds QoS profiles: URLs or paths of documents, or documents themselves in
 * `string_profile` (concatenated). See DDS_DomainParticipantFactory_load_profiles. */
typedef struct DDS_ProfileQosPolicy {
    DDS_StringSeq string_profile;
    DDS_StringSeq url_profile;
    DDS_Boolean ignore_environment_profile;
    DDS_Boolean ignore_user_profile;
} DDS_ProfileQosPolicy;

/* ---- QoS records --------------------------------------------------------------------------- */

typedef struct DDS_DomainParticipantFactoryQos {
    DDS_EntityFactoryQosPolicy entity_factory;
    DDS_ProfileQosPolicy profile;
} DDS_DomainParticipantFactoryQos;

typedef struct DDS_DomainParticipantQos {
    DDS_UserDataQosPolicy user_data;
    DDS_EntityFactoryQosPolicy entity_factory;
    DDS_PropertyQosPolicy property;
    DDS_EntityNameQosPolicy participant_name;
    DDS_WireProtocolQosPolicy wire_protocol;
    DDS_ProtocolQosPolicy protocol;
} DDS_DomainParticipantQos;

typedef struct DDS_TopicQos {
    DDS_TopicDataQosPolicy topic_data;
    DDS_DurabilityQosPolicy durability;
    DDS_DurabilityServiceQosPolicy durability_service;
    DDS_DeadlineQosPolicy deadline;
    DDS_LatencyBudgetQosPolicy latency_budget;
    DDS_LivelinessQosPolicy liveliness;
    DDS_ReliabilityQosPolicy reliability;
    DDS_DestinationOrderQosPolicy destination_order;
    DDS_HistoryQosPolicy history;
    DDS_ResourceLimitsQosPolicy resource_limits;
    DDS_TransportPriorityQosPolicy transport_priority;
    DDS_LifespanQosPolicy lifespan;
    DDS_OwnershipQosPolicy ownership;
    DDS_DataRepresentationQosPolicy representation;
    DDS_ProtocolQosPolicy protocol;
} DDS_TopicQos;

typedef struct DDS_PublisherQos {
    DDS_PresentationQosPolicy presentation;
    DDS_PartitionQosPolicy partition;
    DDS_GroupDataQosPolicy group_data;
    DDS_EntityFactoryQosPolicy entity_factory;
    DDS_ProtocolQosPolicy protocol;
} DDS_PublisherQos;

typedef struct DDS_SubscriberQos {
    DDS_PresentationQosPolicy presentation;
    DDS_PartitionQosPolicy partition;
    DDS_GroupDataQosPolicy group_data;
    DDS_EntityFactoryQosPolicy entity_factory;
    DDS_ProtocolQosPolicy protocol;
} DDS_SubscriberQos;

typedef struct DDS_DataWriterQos {
    DDS_DurabilityQosPolicy durability;
    DDS_DurabilityServiceQosPolicy durability_service;
    DDS_DeadlineQosPolicy deadline;
    DDS_LatencyBudgetQosPolicy latency_budget;
    DDS_LivelinessQosPolicy liveliness;
    DDS_ReliabilityQosPolicy reliability;
    DDS_DestinationOrderQosPolicy destination_order;
    DDS_HistoryQosPolicy history;
    DDS_ResourceLimitsQosPolicy resource_limits;
    DDS_TransportPriorityQosPolicy transport_priority;
    DDS_LifespanQosPolicy lifespan;
    DDS_UserDataQosPolicy user_data;
    DDS_OwnershipQosPolicy ownership;
    DDS_OwnershipStrengthQosPolicy ownership_strength;
    DDS_WriterDataLifecycleQosPolicy writer_data_lifecycle;
    DDS_DataRepresentationQosPolicy representation;
    DDS_PropertyQosPolicy property;
    DDS_ProtocolQosPolicy protocol;
} DDS_DataWriterQos;

typedef struct DDS_DataReaderQos {
    DDS_DurabilityQosPolicy durability;
    DDS_DeadlineQosPolicy deadline;
    DDS_LatencyBudgetQosPolicy latency_budget;
    DDS_LivelinessQosPolicy liveliness;
    DDS_ReliabilityQosPolicy reliability;
    DDS_DestinationOrderQosPolicy destination_order;
    DDS_HistoryQosPolicy history;
    DDS_ResourceLimitsQosPolicy resource_limits;
    DDS_UserDataQosPolicy user_data;
    DDS_OwnershipQosPolicy ownership;
    DDS_TimeBasedFilterQosPolicy time_based_filter;
    DDS_ReaderDataLifecycleQosPolicy reader_data_lifecycle;
    DDS_DataRepresentationQosPolicy representation;
    DDS_TypeConsistencyEnforcementQosPolicy type_consistency;
    DDS_PropertyQosPolicy property;
    DDS_ProtocolQosPolicy protocol;
} DDS_DataReaderQos;

/* The operations of one QoS record:
 *   initialize  the standard's default. OK, BAD_PARAMETER for NULL.
 *   finalize    frees what the record owns. OK, BAD_PARAMETER for NULL.
 *   copy        deep copy into an initialised record. OUT_OF_RESOURCES when memory runs out.
 *   equals      policy by policy. False for a NULL. */
#define KOLT_QOS_DECLARE(Qos)                                              \
    KOLT_EXPORT DDS_ReturnCode_t Qos##_initialize(Qos *self);              \
    KOLT_EXPORT DDS_ReturnCode_t Qos##_finalize(Qos *self);                \
    KOLT_EXPORT DDS_ReturnCode_t Qos##_copy(Qos *self, const Qos *source); \
    KOLT_EXPORT DDS_Boolean Qos##_equals(const Qos *left, const Qos *right)
KOLT_QOS_DECLARE(DDS_DomainParticipantFactoryQos);
KOLT_QOS_DECLARE(DDS_DomainParticipantQos);
KOLT_QOS_DECLARE(DDS_TopicQos);
KOLT_QOS_DECLARE(DDS_PublisherQos);
KOLT_QOS_DECLARE(DDS_SubscriberQos);
KOLT_QOS_DECLARE(DDS_DataWriterQos);
KOLT_QOS_DECLARE(DDS_DataReaderQos);

/* Sets a property, replacing the value of one of the same name. OUT_OF_RESOURCES when memory runs
 * out. */
KOLT_EXPORT DDS_ReturnCode_t DDS_PropertyQosPolicyHelper_assert_property(
    DDS_PropertyQosPolicy *policy, const char *name, const char *value, DDS_Boolean propagate);
/* Adds a property; PRECONDITION_NOT_MET when one of that name exists. */
KOLT_EXPORT DDS_ReturnCode_t DDS_PropertyQosPolicyHelper_add_property(DDS_PropertyQosPolicy *policy,
                                                                      const char *name,
                                                                      const char *value,
                                                                      DDS_Boolean propagate);
/* The property, owned by the policy; NULL when there is none. */
KOLT_EXPORT DDS_Property_t *DDS_PropertyQosPolicyHelper_lookup_property(
    const DDS_PropertyQosPolicy *policy, const char *name);
/* PRECONDITION_NOT_MET when there is none. */
KOLT_EXPORT DDS_ReturnCode_t
DDS_PropertyQosPolicyHelper_remove_property(DDS_PropertyQosPolicy *policy, const char *name);

KOLT_EXTERN_C_END
