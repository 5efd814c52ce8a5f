/* SPDX-License-Identifier: Apache-2.0 */
/* Typed sequences (IDL to C): one layout, one implementation, a typed family per element type.
 *
 * Every sequence record has the fields below, whatever its element type. The operations are
 * implemented once, on the untyped view KOLT_Sequence and a description of the element type;
 * KOLT_SEQUENCE_DECLARE declares the typed family of one element type and KOLT_SEQUENCE_DEFINE
 * (kolt/sequence_define.h) defines it. To add a sequence type is to add these two lines.
 *
 * A sequence that is all zero bytes, or that was never touched, initialises itself on first use.
 * None of the operations locks anything: a sequence belongs to one thread at a time.
 */
#pragma once

#include "kolt/infrastructure.h"

KOLT_EXTERN_C_BEGIN

typedef struct DDS_SeqElementTypeAllocationParams_t {
    DDS_Boolean allocate_pointers;
    DDS_Boolean allocate_optional_members;
    DDS_Boolean allocate_memory;
} DDS_SeqElementTypeAllocationParams_t;

typedef struct DDS_SeqElementTypeDeallocationParams_t {
    DDS_Boolean delete_pointers;
    DDS_Boolean delete_optional_members;
} DDS_SeqElementTypeDeallocationParams_t;

/* `_sequence_init` of an initialised sequence. */
#define KOLT_SEQUENCE_MAGIC 29508
/* The absolute maximum unless another is set. */
#define KOLT_SEQUENCE_ABSOLUTE_MAXIMUM 2147483647U

#define KOLT_SEQUENCE_FIELDS(T)                                                     \
    T *_contiguous_buffer;     /* owned or loaned elements */                       \
    T **_discontiguous_buffer; /* loaned element pointers (a reader's loan) */      \
    void *_read_token1;        /* a reader's loan, returned with it */              \
    void *_read_token2;                                                             \
    DDS_UnsignedLong _maximum; /* elements that the buffer holds */                 \
    DDS_UnsignedLong _length;  /* elements that are valid */                        \
    DDS_Long _sequence_init;   /* KOLT_SEQUENCE_MAGIC once initialised */           \
    DDS_Boolean _owned;        /* false while a buffer is loaned to the sequence */ \
    DDS_SeqElementTypeAllocationParams_t _elementAllocParams;                       \
    DDS_UnsignedLong _absolute_maximum; /* upper limit of _maximum */               \
    DDS_SeqElementTypeDeallocationParams_t _elementDeallocParams

/* An empty owning sequence, as an initialiser. */
#define DDS_SEQUENCE_INITIALIZER                                               \
    {                                                                          \
        NULL, NULL, NULL, NULL, 0U, 0U, KOLT_SEQUENCE_MAGIC, DDS_BOOLEAN_TRUE, \
            {DDS_BOOLEAN_TRUE, DDS_BOOLEAN_FALSE, DDS_BOOLEAN_TRUE},           \
            KOLT_SEQUENCE_ABSOLUTE_MAXIMUM, {                                  \
            DDS_BOOLEAN_TRUE, DDS_BOOLEAN_TRUE                                 \
        }                                                                      \
    }

/* The typed family. Seq: name of the sequence type; T: element type; EXPORT: visibility macro of
 * the library that defines it. Each operation is described at its untyped form in
 * kolt/sequence_ops.h. */
#define KOLT_SEQUENCE_DECLARE(Seq, T, EXPORT)                                                   \
    typedef struct Seq {                                                                        \
        KOLT_SEQUENCE_FIELDS(T);                                                                \
    } Seq;                                                                                      \
    EXPORT DDS_Boolean Seq##_initialize(Seq *self);                                             \
    EXPORT DDS_Boolean Seq##_finalize(Seq *self);                                               \
    EXPORT DDS_UnsignedLong Seq##_get_maximum(const Seq *self);                                 \
    EXPORT DDS_Boolean Seq##_set_maximum(Seq *self, DDS_Long new_maximum);                      \
    EXPORT DDS_UnsignedLong Seq##_get_length(const Seq *self);                                  \
    EXPORT DDS_Boolean Seq##_set_length(Seq *self, DDS_Long new_length);                        \
    EXPORT DDS_Boolean Seq##_ensure_length(Seq *self, DDS_Long length, DDS_Long maximum);       \
    EXPORT DDS_Boolean Seq##_set_absolute_maximum(Seq *self, DDS_Long absolute_maximum);        \
    EXPORT T Seq##_get(const Seq *self, DDS_Long index);                                        \
    EXPORT T *Seq##_get_reference(const Seq *self, DDS_Long index);                             \
    EXPORT Seq *Seq##_copy(Seq *self, const Seq *source);                                       \
    EXPORT DDS_Boolean Seq##_copy_no_alloc(Seq *self, const Seq *source);                       \
    EXPORT DDS_Boolean Seq##_copy_no_allocI(Seq *self, const Seq *source);                      \
    EXPORT DDS_Boolean Seq##_from_array(Seq *self, const T *array, DDS_Long length);            \
    EXPORT DDS_Boolean Seq##_to_array(const Seq *self, T *array, DDS_Long length);              \
    EXPORT DDS_Boolean Seq##_loan_contiguous(Seq *self, T *buffer, DDS_Long new_length,         \
                                             DDS_Long new_maximum);                             \
    EXPORT DDS_Boolean Seq##_loan_discontiguous(Seq *self, T **buffer, DDS_Long new_length,     \
                                                DDS_Long new_maximum);                          \
    EXPORT DDS_Boolean Seq##_unloan(Seq *self);                                                 \
    EXPORT T *Seq##_get_contiguous_buffer(const Seq *self);                                     \
    EXPORT T **Seq##_get_discontiguous_buffer(const Seq *self);                                 \
    EXPORT T *Seq##_get_contiguous_bufferI(const Seq *self);                                    \
    EXPORT T **Seq##_get_discontiguous_bufferI(const Seq *self);                                \
    EXPORT DDS_Boolean Seq##_has_ownership(const Seq *self);                                    \
    EXPORT DDS_Boolean Seq##_set_element_pointers_allocation(Seq *self, DDS_Boolean allocate);  \
    EXPORT DDS_Boolean Seq##_get_element_pointers_allocation(const Seq *self);                  \
    EXPORT DDS_Boolean Seq##_set_element_allocation_params(                                     \
        Seq *self, const DDS_SeqElementTypeAllocationParams_t *params);                         \
    EXPORT const DDS_SeqElementTypeAllocationParams_t *Seq##_get_element_allocation_params(     \
        const Seq *self);                                                                       \
    EXPORT DDS_Boolean Seq##_set_element_deallocation_params(                                   \
        Seq *self, const DDS_SeqElementTypeDeallocationParams_t *params);                       \
    EXPORT const DDS_SeqElementTypeDeallocationParams_t *Seq##_get_element_deallocation_params( \
        const Seq *self);                                                                       \
    EXPORT DDS_Boolean Seq##_get_read_tokenI(const Seq *self, void **token1, void **token2);    \
    EXPORT DDS_Boolean Seq##_set_read_tokenI(Seq *self, void *token1, void *token2);            \
    EXPORT void Seq##_delete_bufferI(Seq *self, T *buffer, DDS_UnsignedLong count);             \
    EXPORT DDS_Boolean Seq##_check_invariantsI(const Seq *self, const char *function_name)

/* The untyped view of any sequence record. */
#if defined(__GNUC__)
#define KOLT_MAY_ALIAS __attribute__((may_alias))
#else
#define KOLT_MAY_ALIAS
#endif
typedef struct KOLT_MAY_ALIAS KOLT_Sequence {
    KOLT_SEQUENCE_FIELDS(void);
} KOLT_Sequence;

/* Describes an element type to the operations. With NULL functions an element is plain
 * memory: initialised to zero, copied byte by byte, nothing to free. */
typedef struct KOLT_SequenceElementType {
    const char *sequence_name; /* "VUR_DL_LogMessageSeq"; names the function in log messages */
    size_t size;               /* sizeof an element */
    DDS_Boolean (*initialize_w_params)(void *element, const DDS_TypeAllocationParams_t *params);
    void (*finalize_w_params)(void *element, const DDS_TypeDeallocationParams_t *params);
    DDS_Boolean (*copy)(void *destination, const void *source);
} KOLT_SequenceElementType;

KOLT_EXTERN_C_END

#include "kolt/sequence_ops.h"

KOLT_EXTERN_C_BEGIN

/* ---- Sequences of the platform's own types ----------------------------------------------- */

KOLT_SEQUENCE_DECLARE(DDS_BooleanSeq, DDS_Boolean, KOLT_EXPORT);
KOLT_SEQUENCE_DECLARE(DDS_OctetSeq, DDS_Octet, KOLT_EXPORT);
KOLT_SEQUENCE_DECLARE(DDS_CharSeq, DDS_Char, KOLT_EXPORT);
KOLT_SEQUENCE_DECLARE(DDS_ShortSeq, DDS_Short, KOLT_EXPORT);
KOLT_SEQUENCE_DECLARE(DDS_UnsignedShortSeq, DDS_UnsignedShort, KOLT_EXPORT);
KOLT_SEQUENCE_DECLARE(DDS_LongSeq, DDS_Long, KOLT_EXPORT);
KOLT_SEQUENCE_DECLARE(DDS_UnsignedLongSeq, DDS_UnsignedLong, KOLT_EXPORT);
KOLT_SEQUENCE_DECLARE(DDS_LongLongSeq, DDS_LongLong, KOLT_EXPORT);
KOLT_SEQUENCE_DECLARE(DDS_UnsignedLongLongSeq, DDS_UnsignedLongLong, KOLT_EXPORT);
KOLT_SEQUENCE_DECLARE(DDS_FloatSeq, DDS_Float, KOLT_EXPORT);
KOLT_SEQUENCE_DECLARE(DDS_DoubleSeq, DDS_Double, KOLT_EXPORT);
KOLT_SEQUENCE_DECLARE(DDS_InstanceHandleSeq, DDS_InstanceHandle_t, KOLT_EXPORT);
/* Elements are owned strings (DDS_String_*): new elements are empty strings, or NULL when the
 * sequence's allocate_pointers is off; copies are deep. */
typedef DDS_Char *DDS_StringPtr;
KOLT_SEQUENCE_DECLARE(DDS_StringSeq, DDS_StringPtr, KOLT_EXPORT);

KOLT_EXTERN_C_END
