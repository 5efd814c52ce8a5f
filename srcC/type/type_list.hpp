// SPDX-License-Identifier: Apache-2.0
// The lists of the logger's types, from which every family of every type is stamped.
#pragma once

#include "vur_dl/distlog.h"

// X(record, name in the type code)
#define VUR_DL_FOR_EACH_ENUMERATION(X)                                           \
    X(VUR_DL_ADMIN_VURLoggerVerbosity, "VUR::DL::ADMIN::VURLoggerVerbosity")     \
    X(VUR_DL_ADMIN_VURLoggerCategory, "VUR::DL::ADMIN::VURLoggerCategory")       \
    X(VUR_DL_ADMIN_VURLoggerPrintFormat, "VUR::DL::ADMIN::VURLoggerPrintFormat") \
    X(VUR_DL_ADMIN_StateKind, "VUR::DL::ADMIN::StateKind")                       \
    X(VUR_DL_ADMIN_CommandKind, "VUR::DL::ADMIN::CommandKind")                   \
    X(VUR_DL_ADMIN_CommandResult, "VUR::DL::ADMIN::CommandResult")

#define VUR_DL_FOR_EACH_NESTED_TYPE(X)                                                             \
    X(VUR_DL_HostAndAppId, "VUR::DL::HostAndAppId")                                                \
    X(VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity, "VUR::DL::ADMIN::VURLoggerCategoryAndVerbosity") \
    X(VUR_DL_ADMIN_Command, "VUR::DL::ADMIN::Command")

#define VUR_DL_FOR_EACH_TOPIC_TYPE(X)                                \
    X(VUR_DL_LogMessage, "VUR::DL::LogMessage")                      \
    X(VUR_DL_ADMIN_State, "VUR::DL::ADMIN::State")                   \
    X(VUR_DL_ADMIN_CommandRequest, "VUR::DL::ADMIN::CommandRequest") \
    X(VUR_DL_ADMIN_CommandResponse, "VUR::DL::ADMIN::CommandResponse")

#define VUR_DL_FOR_EACH_STRUCTURED_TYPE(X) \
    VUR_DL_FOR_EACH_NESTED_TYPE(X)         \
    VUR_DL_FOR_EACH_TOPIC_TYPE(X)

#define VUR_DL_FOR_EACH_TYPE(X)    \
    VUR_DL_FOR_EACH_ENUMERATION(X) \
    VUR_DL_FOR_EACH_STRUCTURED_TYPE(X)

// X(record). The first list has the keyed types. The second has the unkeyed types that also have
// the functions for key sizes.
#define VUR_DL_FOR_EACH_KEYED_TYPE(X) \
    X(VUR_DL_HostAndAppId)            \
    X(VUR_DL_LogMessage)              \
    X(VUR_DL_ADMIN_State)             \
    X(VUR_DL_ADMIN_CommandResponse)
#define VUR_DL_FOR_EACH_UNKEYED_NESTED_TYPE(X)    \
    X(VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity) \
    X(VUR_DL_ADMIN_Command)

namespace vur_dl {

// Holds what the templates need of a type besides its type code.
template <typename T>
struct TypeOf;

#define VUR_DL_DEFINE_TYPE_OF(T, type_name)                                       \
    template <>                                                                   \
    struct TypeOf<T> {                                                            \
        using Sequence = T##Seq;                                                  \
        static constexpr const char *kName = type_name;                           \
        static constexpr const char *kRecordName = #T;                            \
        static constexpr const char *kSequenceName = #T "Seq";                    \
        static const DDS_TypeCode *code() noexcept { return T##_get_typecode(); } \
    };
VUR_DL_FOR_EACH_TYPE(VUR_DL_DEFINE_TYPE_OF)
#undef VUR_DL_DEFINE_TYPE_OF

// The record operations in the form that KOLT's generic code calls.
template <typename T>
DDS_Boolean initialize_record(void *record, const DDS_TypeAllocationParams_t *params) noexcept {
    return KOLT_Record_initialize_w_params(TypeOf<T>::code(), record, params);
}
template <typename T>
void finalize_record(void *record, const DDS_TypeDeallocationParams_t *params) noexcept {
    if (record != nullptr && params != nullptr) {
        KOLT_Record_finalize_w_params(TypeOf<T>::code(), record, params);
    }
}
template <typename T>
DDS_Boolean copy_record(void *destination, const void *source) noexcept {
    return KOLT_Record_copy(TypeOf<T>::code(), destination, source);
}

// Return the middleware's default parameters with the caller's choices.
inline DDS_TypeAllocationParams_t allocation_params(DDS_Boolean allocate_pointers,
                                                    DDS_Boolean allocate_memory) noexcept {
    DDS_TypeAllocationParams_t params = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
    params.allocate_pointers = allocate_pointers;
    params.allocate_memory = allocate_memory;
    return params;
}
inline DDS_TypeDeallocationParams_t deallocation_params(DDS_Boolean delete_pointers) noexcept {
    DDS_TypeDeallocationParams_t params = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;
    params.delete_pointers = delete_pointers;
    return params;
}

}  // namespace vur_dl
