/* SPDX-License-Identifier: Apache-2.0 */
/* Dynamic data: samples of any type, reached through its type code (DDS-XTypes 1.3, 7.5.2), and
 * their rendering as text.
 *
 *  1. A value is of a structure or union type. It owns everything in it.
 *  2. A member is named by `name`, or, when that is NULL, by `id`, a member id of the value's own
 *     type. A name may lead further in: "hostAndAppId.rtps_host_id", "command._d" (a union's
 *     discriminator), "command.filterLevel" (a branch), "vurLoggerVerbosities[4].category"
 *     (elements count from 0; an array takes as many indexes as it has dimensions).
 *  3. Results of the member functions: BAD_PARAMETER for NULLs, a name or id that leads nowhere, an
 *     element past the end, or a member whose type does not fit; PRECONDITION_NOT_MET for a union's
 *     branch that is not selected (setting one selects it); NO_DATA for an optional member that is
 *     absent (setting one makes it); OUT_OF_RESOURCES when memory runs out. The value is unchanged
 *     then. Nothing is logged: the code says it.
 *  4. Numbers are converted when the wanted type can hold the value: a DDS_Long member can be read
 *     with get_longlong, and with get_octet while it is 0 to 255; otherwise BAD_PARAMETER.
 *  5. A value belongs to one thread at a time.
 */
#pragma once

#include "kolt/print_format.h"
#include "kolt/typecode.h"

KOLT_EXTERN_C_BEGIN

typedef struct DDS_DynamicData DDS_DynamicData;

typedef DDS_UnsignedLong DDS_DynamicDataMemberId;
/* Stands for "no id", beside a name (DDS-XTypes 1.3, 7.5.2.1). */
#define DDS_MEMBER_ID_INVALID 0x0fffffffU

typedef struct DDS_DynamicDataProperty_t {
    DDS_DataRepresentationId_t representation; /* what to_cdr_buffer writes */
} DDS_DynamicDataProperty_t;
/* DDS_AUTO_DATA_REPRESENTATION. */
KOLT_EXPORT extern const DDS_DynamicDataProperty_t DDS_DYNAMIC_DATA_PROPERTY_DEFAULT;

/* A value with every member at its initial value. With a NULL property the default one. NULL when
 * `type` is NULL or neither a structure nor a union, or memory runs out. The type code must
 * outlive the value. Free it with DDS_DynamicData_delete. */
KOLT_EXPORT DDS_DynamicData *DDS_DynamicData_new(const DDS_TypeCode *type,
                                                 const DDS_DynamicDataProperty_t *property);
/* NULL is ignored. */
KOLT_EXPORT void DDS_DynamicData_delete(DDS_DynamicData *self);
/* The type code that the value was made with; NULL for NULL. */
KOLT_EXPORT const DDS_TypeCode *DDS_DynamicData_get_type(const DDS_DynamicData *self);
/* Sets every member to its initial value. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DynamicData_clear_all_members(DDS_DynamicData *self);
/* Makes the value equal to `source`. BAD_PARAMETER when that is of another type code; when memory
 * runs out the members copied so far stay. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DynamicData_copy(DDS_DynamicData *self,
                                                  const DDS_DynamicData *source);
/* True when both are of the same type code and equal member by member. False for NULLs. */
KOLT_EXPORT DDS_Boolean DDS_DynamicData_equals(const DDS_DynamicData *left,
                                               const DDS_DynamicData *right);

/* ---- Bytes --------------------------------------------------------------------------------- */

/* Takes the value of a serialised sample, encapsulation header included. Members that are not in it
 * get their initial values. ERROR when the bytes are malformed; the value is then initial, too. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DynamicData_from_cdr_buffer(DDS_DynamicData *self,
                                                             const DDS_Char *buffer,
                                                             DDS_UnsignedLong length);
/* Serialises, encapsulation header included, in the property's representation. `*length` goes in as
 * the buffer's size and comes out as the bytes written; with a NULL buffer it becomes the size that
 * is needed. OUT_OF_RESOURCES when the buffer is too small (`*length` is then what it takes);
 * BAD_PARAMETER when the type does not have the representation; ERROR when the value cannot be
 * serialised. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DynamicData_to_cdr_buffer(const DDS_DynamicData *self,
                                                           DDS_Char *buffer,
                                                           DDS_UnsignedLong *length);
/* The same in a given representation. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DynamicData_to_cdr_buffer_ex(
    const DDS_DynamicData *self, DDS_Char *buffer, DDS_UnsignedLong *length,
    DDS_DataRepresentationId_t representation);

/* ---- Members: in general -------------------------------------------------------------------- */

/* True when the member can be read: it is in the type, a branch is selected, an optional member is
 * present. */
KOLT_EXPORT DDS_Boolean DDS_DynamicData_member_exists(const DDS_DynamicData *self, const char *name,
                                                      DDS_DynamicDataMemberId id);
/* Elements of a sequence or array, characters of a string. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DynamicData_get_length(const DDS_DynamicData *self,
                                                        DDS_UnsignedLong *length, const char *name,
                                                        DDS_DynamicDataMemberId id);
/* Makes a sequence longer, with initial elements, or shorter. BAD_PARAMETER above its bound. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DynamicData_set_length(DDS_DynamicData *self,
                                                        DDS_UnsignedLong length, const char *name,
                                                        DDS_DynamicDataMemberId id);
/* The discriminator of the value itself, which must be a union. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DynamicData_get_discriminator(const DDS_DynamicData *self,
                                                               DDS_LongLong *value);
/* Any value of the discriminator's type, also one that selects no branch. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DynamicData_set_discriminator(DDS_DynamicData *self,
                                                               DDS_LongLong value);
/* Copies a member that is a structure or union into or out of a value of that very type. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DynamicData_get_complex_member(const DDS_DynamicData *self,
                                                                DDS_DynamicData *value,
                                                                const char *name,
                                                                DDS_DynamicDataMemberId id);
KOLT_EXPORT DDS_ReturnCode_t DDS_DynamicData_set_complex_member(DDS_DynamicData *self,
                                                                const DDS_DynamicData *value,
                                                                const char *name,
                                                                DDS_DynamicDataMemberId id);

/* ---- Members: numbers ----------------------------------------------------------------------- */

/* One pair a primitive type. Enumerations are read and set with the integral ones; setting one to a
 * value without an enumerator is BAD_PARAMETER. Integral values do not go into floating-point
 * members or the other way round, and a DDS_Double fits a DDS_Float member when it is finite and in
 * its range, NaN, or infinite. */
#define KOLT_DYNAMIC_DATA_DECLARE_ACCESS(suffix, T)                                           \
    KOLT_EXPORT DDS_ReturnCode_t DDS_DynamicData_get_##suffix(                                \
        const DDS_DynamicData *self, T *value, const char *name, DDS_DynamicDataMemberId id); \
    KOLT_EXPORT DDS_ReturnCode_t DDS_DynamicData_set_##suffix(                                \
        DDS_DynamicData *self, const char *name, DDS_DynamicDataMemberId id, T value)

KOLT_DYNAMIC_DATA_DECLARE_ACCESS(boolean, DDS_Boolean);
KOLT_DYNAMIC_DATA_DECLARE_ACCESS(char, DDS_Char);
KOLT_DYNAMIC_DATA_DECLARE_ACCESS(octet, DDS_Octet);
KOLT_DYNAMIC_DATA_DECLARE_ACCESS(short, DDS_Short);
KOLT_DYNAMIC_DATA_DECLARE_ACCESS(ushort, DDS_UnsignedShort);
KOLT_DYNAMIC_DATA_DECLARE_ACCESS(long, DDS_Long);
KOLT_DYNAMIC_DATA_DECLARE_ACCESS(ulong, DDS_UnsignedLong);
KOLT_DYNAMIC_DATA_DECLARE_ACCESS(longlong, DDS_LongLong);
KOLT_DYNAMIC_DATA_DECLARE_ACCESS(ulonglong, DDS_UnsignedLongLong);
KOLT_DYNAMIC_DATA_DECLARE_ACCESS(float, DDS_Float);
KOLT_DYNAMIC_DATA_DECLARE_ACCESS(double, DDS_Double);

/* ---- Members: strings ----------------------------------------------------------------------- */

/* Copies a string into `*value`, a buffer of `*size` bytes; when that is too small,
 * OUT_OF_RESOURCES with `*size` set to what it takes, the NUL included. With a NULL `*value` a new
 * string is made, which the caller frees with DDS_String_free; `size` may then be NULL. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DynamicData_get_string(const DDS_DynamicData *self,
                                                        DDS_Char **value, DDS_UnsignedLong *size,
                                                        const char *name,
                                                        DDS_DynamicDataMemberId id);
/* BAD_PARAMETER when the text is longer than the string's bound. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DynamicData_set_string(DDS_DynamicData *self, const char *name,
                                                        DDS_DynamicDataMemberId id,
                                                        const DDS_Char *value);

/* ---- Text ---------------------------------------------------------------------------------- */

/* Renders the value into `string`, a buffer of `*length` bytes. `*length` becomes the size of the
 * whole text, the NUL included. OUT_OF_RESOURCES when it does not fit (the buffer is then
 * unchanged) or memory runs out. With a NULL string only the size is determined. BAD_PARAMETER
 * for a NULL value, length or format.
 *
 * A union is rendered as its discriminator ("_d") and the selected branch; optional members that
 * are absent are left out. The text is UTF-8 and has no line feed at its end. In strings, bytes
 * that are not UTF-8, and control characters that XML cannot hold, become U+FFFD; characters that
 * the format reserves are escaped. An enumeration whose value has no enumerator is a number. NaN
 * and infinities are null in JSON. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DynamicDataFormatter_to_string_w_format(
    const DDS_DynamicData *data, DDS_Char *string, DDS_UnsignedLong *length,
    const DDS_PrintFormat *format);

KOLT_EXTERN_C_END
