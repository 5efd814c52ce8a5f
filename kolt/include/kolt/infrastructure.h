/* SPDX-License-Identifier: Apache-2.0 */
/* KOLT infrastructure: primitive types, return codes, time, strings, instance handles, cookies.
 *
 * Conventions of every KOLT header:
 *  1. Names, values and semantics are those of OMG DDS 1.4 (clause 2.2) and, for types, OMG
 *     DDS-XTypes 1.3, where these define them. `KOLT_*` names are the platform's own.
 *  2. A function that returns a DDS_ReturnCode_t returns DDS_RETCODE_OK on success and
 *     DDS_RETCODE_BAD_PARAMETER for a NULL where a pointer is required, and for an entity of another
 *     kind than the function takes. DDS_Boolean results are
 *     DDS_BOOLEAN_TRUE on success. Pointers are NULL on failure.
 *  3. Structures go in by pointer to const, handles and enumerations by value. Pointers that a
 *     function hands out stay the property of the object that they came from unless the comment
 *     says that the caller frees them, and with which call.
 *  4. Character strings are NUL-terminated. Strings that a record owns come from
 *     DDS_String_alloc / DDS_String_dup and go back through DDS_String_free.
 *  5. No C++ exception leaves a function. Memory that runs out is a result
 *     (DDS_RETCODE_OUT_OF_RESOURCES, NULL or false).
 *  6. Entity functions may be called from any thread. Values (sequences, QoS records, samples)
 *     belong to one thread at a time.
 */
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "kolt/export.h"

KOLT_EXTERN_C_BEGIN

/* ---- Primitive types (IDL to C) --------------------------------------------------------- */

typedef unsigned char DDS_Boolean;
typedef char DDS_Char;
typedef unsigned char DDS_Octet;
typedef int16_t DDS_Short;
typedef uint16_t DDS_UnsignedShort;
typedef int32_t DDS_Long;
typedef uint32_t DDS_UnsignedLong;
typedef int64_t DDS_LongLong;
typedef uint64_t DDS_UnsignedLongLong;
typedef float DDS_Float;
typedef double DDS_Double;
/* An enumeration on the wire and in a record that is described by a type code. */
typedef int32_t DDS_Enum;

/* A cast in a constant, without an old-style-cast warning in C++. */
#ifdef __cplusplus
#define KOLT_CAST(type, value) (static_cast<type>(value))
#else
#define KOLT_CAST(type, value) ((type)(value))
#endif

#define DDS_BOOLEAN_TRUE KOLT_CAST(DDS_Boolean, 1)
#define DDS_BOOLEAN_FALSE KOLT_CAST(DDS_Boolean, 0)

/* Stands for "no limit" in lengths and resource limits (DDS 1.4, 2.2.3). */
#define DDS_LENGTH_UNLIMITED (-1)

/* ---- Return codes (DDS 1.4, 2.2.2.1.1) -------------------------------------------------- */

typedef enum DDS_ReturnCode_t KOLT_ENUM_BASE {
    DDS_RETCODE_OK = 0,
    DDS_RETCODE_ERROR = 1,
    DDS_RETCODE_UNSUPPORTED = 2,
    DDS_RETCODE_BAD_PARAMETER = 3,
    DDS_RETCODE_PRECONDITION_NOT_MET = 4,
    DDS_RETCODE_OUT_OF_RESOURCES = 5,
    DDS_RETCODE_NOT_ENABLED = 6,
    DDS_RETCODE_IMMUTABLE_POLICY = 7,
    DDS_RETCODE_INCONSISTENT_POLICY = 8,
    DDS_RETCODE_ALREADY_DELETED = 9,
    DDS_RETCODE_TIMEOUT = 10,
    DDS_RETCODE_NO_DATA = 11,
    DDS_RETCODE_ILLEGAL_OPERATION = 12
} DDS_ReturnCode_t;

/* Returns the standard's name of a return code ("DDS_RETCODE_TIMEOUT"), or "DDS_RETCODE_UNKNOWN"
 * for any other number. Never NULL; static storage. */
KOLT_EXPORT const char *KOLT_ReturnCode_to_string(DDS_ReturnCode_t code);

/* ---- Time (DDS 1.4, 2.3.3) --------------------------------------------------------------- */

/* A point in time: seconds since the Unix epoch and nanoseconds (0 to 999999999). The seconds have
 * 64 bits, so that stamps survive the year 2038. A negative `sec` stands for an invalid time. */
typedef struct DDS_Time_t {
    DDS_LongLong sec;
    DDS_UnsignedLong nanosec;
} DDS_Time_t;

/* A span of time; the infinite one is {DDS_DURATION_INFINITE_SEC, DDS_DURATION_INFINITE_NSEC}. */
typedef struct DDS_Duration_t {
    DDS_Long sec;
    DDS_UnsignedLong nanosec;
} DDS_Duration_t;

#define DDS_TIME_INVALID_SEC (-1LL)
#define DDS_TIME_INVALID_NSEC (4294967295U)
#define DDS_DURATION_INFINITE_SEC (0x7fffffff)
#define DDS_DURATION_INFINITE_NSEC (0x7fffffffU)
#define DDS_DURATION_ZERO_SEC (0)
#define DDS_DURATION_ZERO_NSEC (0U)

KOLT_EXPORT extern const DDS_Time_t DDS_TIME_INVALID;
KOLT_EXPORT extern const DDS_Duration_t DDS_DURATION_INFINITE;
KOLT_EXPORT extern const DDS_Duration_t DDS_DURATION_ZERO;

/* True for the infinite duration; false for NULL. */
KOLT_EXPORT DDS_Boolean DDS_Duration_is_infinite(const DDS_Duration_t *duration);

/* ---- Strings ----------------------------------------------------------------------------- */

/* Allocates a string with room for `length` characters and the terminator, all bytes zero.
 * NULL when memory runs out. Free it with DDS_String_free. */
KOLT_EXPORT DDS_Char *DDS_String_alloc(size_t length);
/* Copies `source`; NULL when `source` is NULL or memory runs out. Free it with
 * DDS_String_free. */
KOLT_EXPORT DDS_Char *DDS_String_dup(const DDS_Char *source);
/* Releases a string that DDS_String_alloc, _dup or _replace made. NULL is allowed. */
KOLT_EXPORT void DDS_String_free(DDS_Char *string);
/* Replaces `*string` by a copy of `source` and frees the old one. With a NULL source `*string`
 * becomes NULL. Returns the new string, or NULL when memory runs out, in which case `*string`
 * keeps its old value. */
KOLT_EXPORT DDS_Char *DDS_String_replace(DDS_Char **string, const DDS_Char *source);

/* ---- Instance handles (DDS 1.4, 2.2.2.1.3) ------------------------------------------------ */

typedef DDS_UnsignedLongLong DDS_InstanceHandle_t;
#define DDS_HANDLE_NIL KOLT_CAST(DDS_InstanceHandle_t, 0)
/* True unless `handle` is DDS_HANDLE_NIL. */
KOLT_EXPORT DDS_Boolean DDS_InstanceHandle_is_valid(DDS_InstanceHandle_t handle);

/* ---- Identifiers ------------------------------------------------------------------------- */

typedef DDS_Long DDS_DomainId_t;
typedef DDS_UnsignedLong DDS_StatusMask;
typedef DDS_Long DDS_QosPolicyId_t;

/* An RTPS GUID: 12 bytes of prefix, 4 bytes of entity id, in network order. */
typedef struct DDS_GUID_t {
    DDS_Octet value[16];
} DDS_GUID_t;

/* ---- Cookies of deferred writes ----------------------------------------------------------- */

/* A short value that travels with a deferred write and tells the application which data are to be
 * written. It holds a pointer or up to sizeof(value) bytes of the caller's choice;
 * it owns nothing. */
typedef struct DDS_Cookie_t {
    DDS_Octet value[16];
    DDS_UnsignedLong length;
} DDS_Cookie_t;

/* Makes the cookie empty (length 0). A NULL is ignored. */
KOLT_EXPORT void DDS_Cookie_t_initialize(DDS_Cookie_t *self);
/* Makes the cookie empty again. A NULL is ignored; finalising twice is harmless. */
KOLT_EXPORT void DDS_Cookie_t_finalize(DDS_Cookie_t *self);
/* Copies `source`. False when either is NULL. */
KOLT_EXPORT DDS_Boolean DDS_Cookie_t_copy(DDS_Cookie_t *self, const DDS_Cookie_t *source);
/* True when both have the same length and value; false when either is NULL. */
KOLT_EXPORT DDS_Boolean DDS_Cookie_equals(const DDS_Cookie_t *left, const DDS_Cookie_t *right);
/* Stores `pointer` in the cookie. False when the cookie is NULL. */
KOLT_EXPORT DDS_Boolean DDS_Cookie_from_pointer(DDS_Cookie_t *self, const void *pointer);
/* Returns the stored pointer; NULL when the cookie is NULL or does not hold one. */
KOLT_EXPORT void *DDS_Cookie_to_pointer(const DDS_Cookie_t *self);

/* ---- Allocation of sample members --------------------------------------------------------- */

/* Says how the members of a new sample are created. Default: all true but optional members. */
typedef struct DDS_TypeAllocationParams_t {
    DDS_Boolean allocate_pointers;
    DDS_Boolean allocate_optional_members;
    DDS_Boolean allocate_memory;
} DDS_TypeAllocationParams_t;

/* Says what is freed with a sample. Default: all true. */
typedef struct DDS_TypeDeallocationParams_t {
    DDS_Boolean delete_pointers;
    DDS_Boolean delete_optional_members;
} DDS_TypeDeallocationParams_t;

#define DDS_TYPE_ALLOCATION_PARAMS_DEFAULT \
    { DDS_BOOLEAN_TRUE, DDS_BOOLEAN_FALSE, DDS_BOOLEAN_TRUE }
#define DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT \
    { DDS_BOOLEAN_TRUE, DDS_BOOLEAN_TRUE }

KOLT_EXTERN_C_END
