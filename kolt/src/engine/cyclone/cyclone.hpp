// SPDX-License-Identifier: Apache-2.0
// The engine's C interface, in a form that can stand beside KOLT's.
//
// Both follow the same standard and use the same names for different things: the engine has macros
// where KOLT has enumerators or macros of other values. The engine's enumerators are renamed while
// its headers are read; its macros are kept as constants in namespace cyclone, and then the
// preprocessor gets back what it had before. Nothing outside this folder includes this header.
#pragma once

#include <cstdint>

#pragma push_macro("DDS_RETCODE_OK")
#pragma push_macro("DDS_RETCODE_ERROR")
#pragma push_macro("DDS_RETCODE_UNSUPPORTED")
#pragma push_macro("DDS_RETCODE_BAD_PARAMETER")
#pragma push_macro("DDS_RETCODE_PRECONDITION_NOT_MET")
#pragma push_macro("DDS_RETCODE_OUT_OF_RESOURCES")
#pragma push_macro("DDS_RETCODE_NOT_ENABLED")
#pragma push_macro("DDS_RETCODE_IMMUTABLE_POLICY")
#pragma push_macro("DDS_RETCODE_INCONSISTENT_POLICY")
#pragma push_macro("DDS_RETCODE_ALREADY_DELETED")
#pragma push_macro("DDS_RETCODE_TIMEOUT")
#pragma push_macro("DDS_RETCODE_NO_DATA")
#pragma push_macro("DDS_RETCODE_ILLEGAL_OPERATION")
#pragma push_macro("DDS_INCONSISTENT_TOPIC_STATUS")
#pragma push_macro("DDS_OFFERED_DEADLINE_MISSED_STATUS")
#pragma push_macro("DDS_REQUESTED_DEADLINE_MISSED_STATUS")
#pragma push_macro("DDS_OFFERED_INCOMPATIBLE_QOS_STATUS")
#pragma push_macro("DDS_REQUESTED_INCOMPATIBLE_QOS_STATUS")
#pragma push_macro("DDS_SAMPLE_LOST_STATUS")
#pragma push_macro("DDS_SAMPLE_REJECTED_STATUS")
#pragma push_macro("DDS_DATA_ON_READERS_STATUS")
#pragma push_macro("DDS_DATA_AVAILABLE_STATUS")
#pragma push_macro("DDS_LIVELINESS_LOST_STATUS")
#pragma push_macro("DDS_LIVELINESS_CHANGED_STATUS")
#pragma push_macro("DDS_PUBLICATION_MATCHED_STATUS")
#pragma push_macro("DDS_SUBSCRIPTION_MATCHED_STATUS")
#pragma push_macro("DDS_READ_SAMPLE_STATE")
#pragma push_macro("DDS_NOT_READ_SAMPLE_STATE")
#pragma push_macro("DDS_ANY_SAMPLE_STATE")
#pragma push_macro("DDS_NEW_VIEW_STATE")
#pragma push_macro("DDS_NOT_NEW_VIEW_STATE")
#pragma push_macro("DDS_ANY_VIEW_STATE")
#pragma push_macro("DDS_ALIVE_INSTANCE_STATE")
#pragma push_macro("DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE")
#pragma push_macro("DDS_NOT_ALIVE_NO_WRITERS_INSTANCE_STATE")
#pragma push_macro("DDS_ANY_INSTANCE_STATE")
#pragma push_macro("DDS_HANDLE_NIL")
#pragma push_macro("DDS_LENGTH_UNLIMITED")
#pragma push_macro("DDS_TIME_INVALID")
#undef DDS_RETCODE_OK
#undef DDS_RETCODE_ERROR
#undef DDS_RETCODE_UNSUPPORTED
#undef DDS_RETCODE_BAD_PARAMETER
#undef DDS_RETCODE_PRECONDITION_NOT_MET
#undef DDS_RETCODE_OUT_OF_RESOURCES
#undef DDS_RETCODE_NOT_ENABLED
#undef DDS_RETCODE_IMMUTABLE_POLICY
#undef DDS_RETCODE_INCONSISTENT_POLICY
#undef DDS_RETCODE_ALREADY_DELETED
#undef DDS_RETCODE_TIMEOUT
#undef DDS_RETCODE_NO_DATA
#undef DDS_RETCODE_ILLEGAL_OPERATION
#undef DDS_INCONSISTENT_TOPIC_STATUS
#undef DDS_OFFERED_DEADLINE_MISSED_STATUS
#undef DDS_REQUESTED_DEADLINE_MISSED_STATUS
#undef DDS_OFFERED_INCOMPATIBLE_QOS_STATUS
#undef DDS_REQUESTED_INCOMPATIBLE_QOS_STATUS
#undef DDS_SAMPLE_LOST_STATUS
#undef DDS_SAMPLE_REJECTED_STATUS
#undef DDS_DATA_ON_READERS_STATUS
#undef DDS_DATA_AVAILABLE_STATUS
#undef DDS_LIVELINESS_LOST_STATUS
#undef DDS_LIVELINESS_CHANGED_STATUS
#undef DDS_PUBLICATION_MATCHED_STATUS
#undef DDS_SUBSCRIPTION_MATCHED_STATUS
#undef DDS_READ_SAMPLE_STATE
#undef DDS_NOT_READ_SAMPLE_STATE
#undef DDS_ANY_SAMPLE_STATE
#undef DDS_NEW_VIEW_STATE
#undef DDS_NOT_NEW_VIEW_STATE
#undef DDS_ANY_VIEW_STATE
#undef DDS_ALIVE_INSTANCE_STATE
#undef DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE
#undef DDS_NOT_ALIVE_NO_WRITERS_INSTANCE_STATE
#undef DDS_ANY_INSTANCE_STATE
#undef DDS_HANDLE_NIL
#undef DDS_LENGTH_UNLIMITED
#undef DDS_TIME_INVALID

#define DDS_NOT_REJECTED KOLT_ENGINE_NOT_REJECTED
#define DDS_REJECTED_BY_INSTANCES_LIMIT KOLT_ENGINE_REJECTED_BY_INSTANCES_LIMIT
#define DDS_REJECTED_BY_SAMPLES_LIMIT KOLT_ENGINE_REJECTED_BY_SAMPLES_LIMIT
#define DDS_REJECTED_BY_SAMPLES_PER_INSTANCE_LIMIT \
    KOLT_ENGINE_REJECTED_BY_SAMPLES_PER_INSTANCE_LIMIT

#include <dds/dds.h>
#include <dds/ddsc/dds_internal_api.h>
#include <dds/ddsc/dds_rhc.h>
#include <dds/ddsi/ddsi_keyhash.h>
#include <dds/ddsi/ddsi_serdata.h>
#include <dds/ddsi/ddsi_sertype.h>
#include <dds/ddsi/q_bswap.h>
#include <dds/ddsi/q_protocol.h>
#include <dds/ddsi/q_radmin.h>
#include <dds/ddsi/q_thread.h>

#undef DDS_NOT_REJECTED
#undef DDS_REJECTED_BY_INSTANCES_LIMIT
#undef DDS_REJECTED_BY_SAMPLES_LIMIT
#undef DDS_REJECTED_BY_SAMPLES_PER_INSTANCE_LIMIT

namespace kolt::cyclone {

// Return codes.
inline constexpr dds_return_t kOk = DDS_RETCODE_OK;
inline constexpr dds_return_t kError = DDS_RETCODE_ERROR;
inline constexpr dds_return_t kUnsupported = DDS_RETCODE_UNSUPPORTED;
inline constexpr dds_return_t kBadParameter = DDS_RETCODE_BAD_PARAMETER;
inline constexpr dds_return_t kPreconditionNotMet = DDS_RETCODE_PRECONDITION_NOT_MET;
inline constexpr dds_return_t kOutOfResources = DDS_RETCODE_OUT_OF_RESOURCES;
inline constexpr dds_return_t kNotEnabled = DDS_RETCODE_NOT_ENABLED;
inline constexpr dds_return_t kImmutablePolicy = DDS_RETCODE_IMMUTABLE_POLICY;
inline constexpr dds_return_t kInconsistentPolicy = DDS_RETCODE_INCONSISTENT_POLICY;
inline constexpr dds_return_t kAlreadyDeleted = DDS_RETCODE_ALREADY_DELETED;
inline constexpr dds_return_t kTimeout = DDS_RETCODE_TIMEOUT;
inline constexpr dds_return_t kNoData = DDS_RETCODE_NO_DATA;
inline constexpr dds_return_t kIllegalOperation = DDS_RETCODE_ILLEGAL_OPERATION;
inline constexpr dds_return_t kNotAllowedBySecurity = DDS_RETCODE_NOT_ALLOWED_BY_SECURITY;

// Sample, view and instance states, which the engine keeps in one mask.
inline constexpr std::uint32_t kReadState = DDS_READ_SAMPLE_STATE;
inline constexpr std::uint32_t kNotReadState = DDS_NOT_READ_SAMPLE_STATE;
inline constexpr std::uint32_t kNewView = DDS_NEW_VIEW_STATE;
inline constexpr std::uint32_t kNotNewView = DDS_NOT_NEW_VIEW_STATE;
inline constexpr std::uint32_t kAlive = DDS_ALIVE_INSTANCE_STATE;
inline constexpr std::uint32_t kNotAliveDisposed = DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE;
inline constexpr std::uint32_t kNotAliveNoWriters = DDS_NOT_ALIVE_NO_WRITERS_INSTANCE_STATE;
// Stands for no mask: a read through a condition then uses the condition's own.
inline constexpr std::uint32_t kNoStateMask = DDS_ANY_STATE + 1U;
// Stands, as a number of samples, for as many as the buffer holds, with the cache locked already.
inline constexpr std::uint32_t kReadLocked = DDS_READ_WITHOUT_LOCK;

// The parent of entities that do not belong to a participant.
inline constexpr dds_entity_t kLibrary = DDS_CYCLONEDDS_HANDLE;

inline constexpr dds_duration_t kInfinity = DDS_INFINITY;

}  // namespace kolt::cyclone

#pragma pop_macro("DDS_RETCODE_OK")
#pragma pop_macro("DDS_RETCODE_ERROR")
#pragma pop_macro("DDS_RETCODE_UNSUPPORTED")
#pragma pop_macro("DDS_RETCODE_BAD_PARAMETER")
#pragma pop_macro("DDS_RETCODE_PRECONDITION_NOT_MET")
#pragma pop_macro("DDS_RETCODE_OUT_OF_RESOURCES")
#pragma pop_macro("DDS_RETCODE_NOT_ENABLED")
#pragma pop_macro("DDS_RETCODE_IMMUTABLE_POLICY")
#pragma pop_macro("DDS_RETCODE_INCONSISTENT_POLICY")
#pragma pop_macro("DDS_RETCODE_ALREADY_DELETED")
#pragma pop_macro("DDS_RETCODE_TIMEOUT")
#pragma pop_macro("DDS_RETCODE_NO_DATA")
#pragma pop_macro("DDS_RETCODE_ILLEGAL_OPERATION")
#pragma pop_macro("DDS_INCONSISTENT_TOPIC_STATUS")
#pragma pop_macro("DDS_OFFERED_DEADLINE_MISSED_STATUS")
#pragma pop_macro("DDS_REQUESTED_DEADLINE_MISSED_STATUS")
#pragma pop_macro("DDS_OFFERED_INCOMPATIBLE_QOS_STATUS")
#pragma pop_macro("DDS_REQUESTED_INCOMPATIBLE_QOS_STATUS")
#pragma pop_macro("DDS_SAMPLE_LOST_STATUS")
#pragma pop_macro("DDS_SAMPLE_REJECTED_STATUS")
#pragma pop_macro("DDS_DATA_ON_READERS_STATUS")
#pragma pop_macro("DDS_DATA_AVAILABLE_STATUS")
#pragma pop_macro("DDS_LIVELINESS_LOST_STATUS")
#pragma pop_macro("DDS_LIVELINESS_CHANGED_STATUS")
#pragma pop_macro("DDS_PUBLICATION_MATCHED_STATUS")
#pragma pop_macro("DDS_SUBSCRIPTION_MATCHED_STATUS")
#pragma pop_macro("DDS_READ_SAMPLE_STATE")
#pragma pop_macro("DDS_NOT_READ_SAMPLE_STATE")
#pragma pop_macro("DDS_ANY_SAMPLE_STATE")
#pragma pop_macro("DDS_NEW_VIEW_STATE")
#pragma pop_macro("DDS_NOT_NEW_VIEW_STATE")
#pragma pop_macro("DDS_ANY_VIEW_STATE")
#pragma pop_macro("DDS_ALIVE_INSTANCE_STATE")
#pragma pop_macro("DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE")
#pragma pop_macro("DDS_NOT_ALIVE_NO_WRITERS_INSTANCE_STATE")
#pragma pop_macro("DDS_ANY_INSTANCE_STATE")
#pragma pop_macro("DDS_HANDLE_NIL")
#pragma pop_macro("DDS_LENGTH_UNLIMITED")
#pragma pop_macro("DDS_TIME_INVALID")
