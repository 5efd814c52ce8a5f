/* SPDX-License-Identifier: Apache-2.0 */
/* Type codes: the description of a type that all generic operations interpret.
 *
 * A type code is a static tree, written as tables and never freed. It is read-only once a program
 * was made from it: the codec compiles it once into programs (kolt/cdr.h). Records are initialised,
 * copied, finalised, compared, printed, serialised, keyed and filtered by their type codes; no type
 * has code of its own for any of these. Terms are those of DDS-XTypes 1.3, clause 7.2.
 */
#pragma once

#include "kolt/infrastructure.h"

KOLT_EXTERN_C_BEGIN

typedef enum DDS_TCKind KOLT_ENUM_BASE {
    DDS_TK_NULL = 0,
    DDS_TK_BOOLEAN,
    DDS_TK_CHAR,
    DDS_TK_OCTET,
    DDS_TK_SHORT,
    DDS_TK_USHORT,
    DDS_TK_LONG,
    DDS_TK_ULONG,
    DDS_TK_LONGLONG,
    DDS_TK_ULONGLONG,
    DDS_TK_FLOAT,
    DDS_TK_DOUBLE,
    DDS_TK_ENUM,
    DDS_TK_STRING,
    DDS_TK_STRUCT,
    DDS_TK_UNION,
    DDS_TK_ARRAY,
    DDS_TK_SEQUENCE
} DDS_TCKind;

/* DDS-XTypes 1.3, 7.2.3. */
typedef enum DDS_ExtensibilityKind KOLT_ENUM_BASE {
    DDS_FINAL_EXTENSIBILITY = 0,
    DDS_APPENDABLE_EXTENSIBILITY = 1,
    DDS_MUTABLE_EXTENSIBILITY = 2
} DDS_ExtensibilityKind;

/* Data representation ids (DDS-XTypes 1.3, 7.6.3.1.1) and the mask of those that a type allows. */
typedef DDS_Short DDS_DataRepresentationId_t;
#define DDS_XCDR_DATA_REPRESENTATION KOLT_CAST(DDS_DataRepresentationId_t, 0)
#define DDS_XML_DATA_REPRESENTATION KOLT_CAST(DDS_DataRepresentationId_t, 1)
#define DDS_XCDR2_DATA_REPRESENTATION KOLT_CAST(DDS_DataRepresentationId_t, 2)
/* "The default": a writer offers XCDR1, a reader accepts XCDR1 and XCDR2. */
#define DDS_AUTO_DATA_REPRESENTATION KOLT_CAST(DDS_DataRepresentationId_t, -1)
typedef DDS_UnsignedLong DDS_DataRepresentationMask;
#define DDS_DATA_REPRESENTATION_MASK_XCDR 0x1U
#define DDS_DATA_REPRESENTATION_MASK_XCDR2 0x4U

typedef struct DDS_TypeCode DDS_TypeCode;

/* A member's default, minimum or maximum (annotations @default, @min, @max). */
typedef struct DDS_AnnotationParameterValue {
    DDS_TCKind kind; /* DDS_TK_NULL: none; LONG, LONGLONG, ENUM, STRING, ... */
    union {
        DDS_LongLong integer; /* every integral kind and ENUM */
        DDS_Double real;
        const DDS_Char *string;
    } value;
} DDS_AnnotationParameterValue;

/* A member of a structure or union, or an enumerator. */
typedef struct DDS_TypeCodeMember {
    const char *name;
    DDS_UnsignedLong id;      /* member id; for an enumerator its value, see `ordinal` */
    const DDS_TypeCode *type; /* NULL for an enumerator */
    DDS_Boolean is_key;
    DDS_Boolean is_optional;
    DDS_Boolean is_must_understand; /* key members of mutable types are so by the standard */
    DDS_Boolean is_default_label;   /* union: this is the `default:` branch */
    DDS_Long ordinal;               /* enumerator: its value */
    const DDS_Long *labels;         /* union: the case labels */
    DDS_UnsignedLong label_count;
    DDS_AnnotationParameterValue default_value;
    DDS_AnnotationParameterValue minimum;
    DDS_AnnotationParameterValue maximum;
} DDS_TypeCodeMember;

/* How the codec reaches the members of a record in memory. One per structure or union. */
typedef struct DDS_SampleAccessInfo {
    DDS_UnsignedLong language_binding; /* KOLT_LANGUAGE_BINDING_PLAIN_RECORD */
    size_t record_size;                /* sizeof(record) */
    size_t record_alignment;           /* alignof(record) */
    size_t discriminator_offset;       /* union only: where `_d` lies */
    DDS_UnsignedLong member_count;
    const size_t *member_offsets; /* where each member's value lies, declaration order */
} DDS_SampleAccessInfo;
#define KOLT_LANGUAGE_BINDING_PLAIN_RECORD 1U

/* The per-type functions that generic code uses for nested values. */
typedef struct DDS_TypePluginInfo {
    DDS_Boolean (*initialize_w_params)(void *record, const DDS_TypeAllocationParams_t *params);
    void (*finalize_w_params)(void *record, const DDS_TypeDeallocationParams_t *params);
    DDS_Boolean (*copy)(void *destination, const void *source);
} DDS_TypePluginInfo;

/* In memory: a string is a `DDS_Char *` owned by the record, a sequence a typed sequence record
 * (kolt/sequence.h), an array an inline array, an enumeration a DDS_Enum, an optional member a
 * pointer to its value (for a string: to the `DDS_Char *`), NULL while it is absent, a union a
 * record with a discriminator and all branches side by side. A bounded string member has a buffer
 * for its bound, which is written in place; an unbounded one, and a string that is an element of a
 * sequence, fits its buffer exactly and is replaced. */
struct DDS_TypeCode {
    DDS_TCKind kind;
    DDS_ExtensibilityKind extensibility; /* STRUCT, UNION, ENUM */
    const char *name;                    /* "VUR::DL::LogMessage"; NULL for anonymous types */
    DDS_DataRepresentationMask representations;
    DDS_UnsignedLong bound;           /* STRING, SEQUENCE: maximum length; 0 is unbounded */
    DDS_UnsignedLong dimension_count; /* ARRAY */
    const DDS_UnsignedLong *dimensions;
    const DDS_TypeCode *content_type;       /* ARRAY, SEQUENCE: the element type */
    const DDS_TypeCode *discriminator_type; /* UNION */
    DDS_Long default_discriminator;         /* UNION: `_d` of a fresh record */
    DDS_UnsignedLong member_count;          /* STRUCT, UNION, ENUM */
    const DDS_TypeCodeMember *members;
    const DDS_SampleAccessInfo *access; /* STRUCT, UNION */
    const DDS_TypePluginInfo *plugin;   /* STRUCT, UNION, ENUM; may be NULL */
};

/* The standard type codes of the primitive types; NULL for a kind that is not primitive. */
KOLT_EXPORT const DDS_TypeCode *DDS_TypeCodeFactory_get_primitive_tc(DDS_TCKind kind);

/* Getters. NULL arguments give DDS_TK_NULL, NULL, 0 or false; an index out of range gives NULL. */
KOLT_EXPORT DDS_TCKind DDS_TypeCode_kind(const DDS_TypeCode *self);
KOLT_EXPORT const char *DDS_TypeCode_name(const DDS_TypeCode *self);
KOLT_EXPORT DDS_UnsignedLong DDS_TypeCode_member_count(const DDS_TypeCode *self);
KOLT_EXPORT const DDS_TypeCodeMember *DDS_TypeCode_member(const DDS_TypeCode *self,
                                                          DDS_UnsignedLong index);
KOLT_EXPORT const DDS_TypeCodeMember *DDS_TypeCode_find_member_by_name(const DDS_TypeCode *self,
                                                                       const char *name);
KOLT_EXPORT const DDS_TypeCodeMember *DDS_TypeCode_find_member_by_id(const DDS_TypeCode *self,
                                                                     DDS_UnsignedLong id);
/* True when the type is a structure with at least one key member. */
KOLT_EXPORT DDS_Boolean DDS_TypeCode_is_keyed(const DDS_TypeCode *self);
/* The RTPS encapsulation identifier (DDS-XTypes 1.3, 7.6.3.1.2) in which this machine writes the
 * type in a representation: CDR_LE 1, PL_CDR_LE 3, CDR2_LE 7, D_CDR2_LE 9, PL_CDR2_LE 11. AUTO
 * means XCDR1 if the type allows it, XCDR2 otherwise. 65535 when the type does not allow it. */
KOLT_EXPORT DDS_UnsignedShort DDS_TypeCode_get_native_encapsulation(
    const DDS_TypeCode *self, DDS_DataRepresentationId_t representation);

/* ---- Operations on records, interpreted over the type code ------------------------------- */

/* Sets every member of a structure, union or enumeration record to its initial value: its default
 * annotation if it has one, else 0, the first enumerator, "", an empty sequence (with its bound as
 * maximum and absolute maximum), the union's default discriminator; all branches of a union are
 * initialised. Optional members are absent unless `allocate_optional_members` is set. Nested
 * structures and unions go through their type's DDS_TypePluginInfo where it has one.
 *
 * With `allocate_memory` set the record's old content is overwritten unseen, and strings get a
 * buffer for their bound. Without it the record must be initialised: an existing buffer is emptied
 * and kept, a NULL string stays NULL, a sequence only gets the length 0. False when an argument is
 * NULL or memory runs out; finalise the record then. */
KOLT_EXPORT DDS_Boolean KOLT_Record_initialize_w_params(const DDS_TypeCode *type, void *record,
                                                        const DDS_TypeAllocationParams_t *params);
/* Frees what the record owns; strings become NULL, sequences empty. Optional members go when
 * `delete_optional_members` is set. Repeating it is harmless. A sequence that holds a loan keeps it
 * (reported). Nothing happens for a NULL. */
KOLT_EXPORT void KOLT_Record_finalize_w_params(const DDS_TypeCode *type, void *record,
                                               const DDS_TypeDeallocationParams_t *params);
/* Deep copy, member by member in declaration order. A string goes into the destination's buffer,
 * never past its bound plus one; a source string that is NULL or does not fit fails the copy. A
 * union copies the discriminator and then the selected branch only. False on failure, the members
 * copied so far stay. */
KOLT_EXPORT DDS_Boolean KOLT_Record_copy(const DDS_TypeCode *type, void *destination,
                                         const void *source);
/* Copies the key members only: of a nested structure that names keys of its own, those; else all of
 * it. A type without keys has nothing to copy. */
KOLT_EXPORT DDS_Boolean KOLT_Record_copy_key(const DDS_TypeCode *type, void *destination,
                                             const void *source);
/* Member by member equality (unions: discriminator and selected branch; floating-point numbers: by
 * their bits, so that a NaN equals itself). False for NULLs. */
KOLT_EXPORT DDS_Boolean KOLT_Record_equals(const DDS_TypeCode *type, const void *left,
                                           const void *right);
/* Prints the record on standard output: indent, "<description>:" and a newline (without a
 * description a bare newline), then each member at indent + 1 under its name. A NULL record prints
 * "NULL" on a line of its own. An indent is three spaces a level.
 *
 *   level: 300                                      numbers
 *   text: "hello", or text: NULL                    strings
 *   state: VUR_DL_Kind VUR_DL_KIND_ONE (1)          enumerations: type, enumerator if any, value
 *   id:, and its members one level deeper           structures
 *   list[0]: 7                                      elements of arrays and sequences
 *   _d: 1, then _u.list[0]: 7                       unions: discriminator, selected branch only
 *
 * An enumeration is a record without members: "VUR_DL_Kind VUR_DL_KIND_ONE (1)" at indent + 1. */
KOLT_EXPORT void KOLT_Record_print(const DDS_TypeCode *type, const void *record,
                                   const char *description, DDS_UnsignedLong indent);

KOLT_EXTERN_C_END
