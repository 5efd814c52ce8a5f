/* SPDX-License-Identifier: Apache-2.0 */
/* Statuses (DDS 1.4, 2.2.4.1) and the state masks of samples (2.2.2.5).
 *
 * Members that end in `_change` count since the status was last read. */
#pragma once

#include "kolt/sequence.h"

KOLT_EXTERN_C_BEGIN

typedef enum DDS_StatusKind KOLT_ENUM_BASE {
    DDS_INCONSISTENT_TOPIC_STATUS = 0x0001,
    DDS_OFFERED_DEADLINE_MISSED_STATUS = 0x0002,
    DDS_REQUESTED_DEADLINE_MISSED_STATUS = 0x0004,
    DDS_OFFERED_INCOMPATIBLE_QOS_STATUS = 0x0020,
    DDS_REQUESTED_INCOMPATIBLE_QOS_STATUS = 0x0040,
    DDS_SAMPLE_LOST_STATUS = 0x0080,
    DDS_SAMPLE_REJECTED_STATUS = 0x0100,
    DDS_DATA_ON_READERS_STATUS = 0x0200,
    DDS_DATA_AVAILABLE_STATUS = 0x0400,
    DDS_LIVELINESS_LOST_STATUS = 0x0800,
    DDS_LIVELINESS_CHANGED_STATUS = 0x1000,
    DDS_PUBLICATION_MATCHED_STATUS = 0x2000,
    DDS_SUBSCRIPTION_MATCHED_STATUS = 0x4000
} DDS_StatusKind;
#define DDS_STATUS_MASK_NONE KOLT_CAST(DDS_StatusMask, 0)
#define DDS_STATUS_MASK_ALL KOLT_CAST(DDS_StatusMask, 0xffffffffU)

typedef struct DDS_InconsistentTopicStatus {
    DDS_Long total_count;
    DDS_Long total_count_change;
} DDS_InconsistentTopicStatus;
typedef struct DDS_SampleLostStatus {
    DDS_Long total_count;
    DDS_Long total_count_change;
} DDS_SampleLostStatus;
typedef enum DDS_SampleRejectedStatusKind KOLT_ENUM_BASE {
    DDS_NOT_REJECTED = 0,
    DDS_REJECTED_BY_INSTANCES_LIMIT = 1,
    DDS_REJECTED_BY_SAMPLES_LIMIT = 2,
    DDS_REJECTED_BY_SAMPLES_PER_INSTANCE_LIMIT = 3
} DDS_SampleRejectedStatusKind;
typedef struct DDS_SampleRejectedStatus {
    DDS_Long total_count;
    DDS_Long total_count_change;
    DDS_SampleRejectedStatusKind last_reason;
    DDS_InstanceHandle_t last_instance_handle;
} DDS_SampleRejectedStatus;
typedef struct DDS_LivelinessLostStatus {
    DDS_Long total_count;
    DDS_Long total_count_change;
} DDS_LivelinessLostStatus;
typedef struct DDS_LivelinessChangedStatus {
    DDS_Long alive_count;
    DDS_Long not_alive_count;
    DDS_Long alive_count_change;
    DDS_Long not_alive_count_change;
    DDS_InstanceHandle_t last_publication_handle;
} DDS_LivelinessChangedStatus;
typedef struct DDS_OfferedDeadlineMissedStatus {
    DDS_Long total_count;
    DDS_Long total_count_change;
    DDS_InstanceHandle_t last_instance_handle;
} DDS_OfferedDeadlineMissedStatus;
typedef struct DDS_RequestedDeadlineMissedStatus {
    DDS_Long total_count;
    DDS_Long total_count_change;
    DDS_InstanceHandle_t last_instance_handle;
} DDS_RequestedDeadlineMissedStatus;
typedef struct DDS_OfferedIncompatibleQosStatus {
    DDS_Long total_count;
    DDS_Long total_count_change;
    DDS_QosPolicyId_t last_policy_id;
} DDS_OfferedIncompatibleQosStatus;
typedef struct DDS_RequestedIncompatibleQosStatus {
    DDS_Long total_count;
    DDS_Long total_count_change;
    DDS_QosPolicyId_t last_policy_id;
} DDS_RequestedIncompatibleQosStatus;
typedef struct DDS_PublicationMatchedStatus {
    DDS_Long total_count;
    DDS_Long total_count_change;
    DDS_Long current_count;
    DDS_Long current_count_change;
    DDS_InstanceHandle_t last_subscription_handle;
} DDS_PublicationMatchedStatus;
typedef struct DDS_SubscriptionMatchedStatus {
    DDS_Long total_count;
    DDS_Long total_count_change;
    DDS_Long current_count;
    DDS_Long current_count_change;
    DDS_InstanceHandle_t last_publication_handle;
} DDS_SubscriptionMatchedStatus;

/* ---- Sample information -------------------------------------------------------------------- */

typedef DDS_UnsignedLong DDS_SampleStateMask;
typedef DDS_UnsignedLong DDS_ViewStateMask;
typedef DDS_UnsignedLong DDS_InstanceStateMask;
typedef DDS_UnsignedLong DDS_SampleStateKind;
typedef DDS_UnsignedLong DDS_ViewStateKind;
typedef DDS_UnsignedLong DDS_InstanceStateKind;
#define DDS_READ_SAMPLE_STATE 0x0001U
#define DDS_NOT_READ_SAMPLE_STATE 0x0002U
#define DDS_ANY_SAMPLE_STATE 0xffffU
#define DDS_NEW_VIEW_STATE 0x0001U
#define DDS_NOT_NEW_VIEW_STATE 0x0002U
#define DDS_ANY_VIEW_STATE 0xffffU
#define DDS_ALIVE_INSTANCE_STATE 0x0001U
#define DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE 0x0002U
#define DDS_NOT_ALIVE_NO_WRITERS_INSTANCE_STATE 0x0004U
#define DDS_NOT_ALIVE_INSTANCE_STATE 0x0006U
#define DDS_ANY_INSTANCE_STATE 0xffffU

/* DDS 1.4, 2.2.2.5.5. Without `valid_data` only the key members of the sample are set. */
typedef struct DDS_SampleInfo {
    DDS_SampleStateKind sample_state;
    DDS_ViewStateKind view_state;
    DDS_InstanceStateKind instance_state;
    DDS_Time_t source_timestamp;
    DDS_InstanceHandle_t instance_handle;
    DDS_InstanceHandle_t publication_handle;
    DDS_Long disposed_generation_count;
    DDS_Long no_writers_generation_count;
    DDS_Long sample_rank;
    DDS_Long generation_rank;
    DDS_Long absolute_generation_rank;
    DDS_Boolean valid_data;
} DDS_SampleInfo;
KOLT_SEQUENCE_DECLARE(DDS_SampleInfoSeq, DDS_SampleInfo, KOLT_EXPORT);

KOLT_EXTERN_C_END
