/* SPDX-License-Identifier: Apache-2.0 */
/* Definition of a typed sequence family over the untyped operations. For C++ sources; in C this
 * header is empty.
 *
 * KOLT_SEQUENCE_DECLARE(Seq, T, EXPORT) in a header declares the family; in one source file
 *
 *     KOLT_SEQUENCE_DEFINE(Seq, T, element_type)
 *
 * defines it, `element_type` being an expression of type `const KOLT_SequenceElementType *` that is
 * evaluated at each call (the address of a constant, or a function that returns one).
 */
#pragma once

#ifdef __cplusplus

#include <cstring>

#include "kolt/sequence.h"

/* The record as the untyped view, which may alias it. */
#define KOLT_SEQUENCE_UNTYPED(self) reinterpret_cast<KOLT_Sequence *>(self)
#define KOLT_SEQUENCE_UNTYPED_CONST(self) reinterpret_cast<const KOLT_Sequence *>(self)

#define KOLT_SEQUENCE_DEFINE(Seq, T, E)                                                            \
    static_assert(sizeof(Seq) == sizeof(KOLT_Sequence), #Seq " is not a sequence record");         \
    DDS_Boolean Seq##_initialize(Seq *self) {                                                      \
        return KOLT_Sequence_initialize(KOLT_SEQUENCE_UNTYPED(self), (E));                         \
    }                                                                                              \
    DDS_Boolean Seq##_finalize(Seq *self) {                                                        \
        return KOLT_Sequence_finalize(KOLT_SEQUENCE_UNTYPED(self), (E));                           \
    }                                                                                              \
    DDS_UnsignedLong Seq##_get_maximum(const Seq *self) {                                          \
        return KOLT_Sequence_get_maximum(KOLT_SEQUENCE_UNTYPED_CONST(self), (E));                  \
    }                                                                                              \
    DDS_Boolean Seq##_set_maximum(Seq *self, DDS_Long new_maximum) {                               \
        return KOLT_Sequence_set_maximum(KOLT_SEQUENCE_UNTYPED(self), (E), new_maximum);           \
    }                                                                                              \
    DDS_UnsignedLong Seq##_get_length(const Seq *self) {                                           \
        return KOLT_Sequence_get_length(KOLT_SEQUENCE_UNTYPED_CONST(self), (E));                   \
    }                                                                                              \
    DDS_Boolean Seq##_set_length(Seq *self, DDS_Long new_length) {                                 \
        return KOLT_Sequence_set_length(KOLT_SEQUENCE_UNTYPED(self), (E), new_length);             \
    }                                                                                              \
    DDS_Boolean Seq##_ensure_length(Seq *self, DDS_Long length, DDS_Long maximum) {                \
        return KOLT_Sequence_ensure_length(KOLT_SEQUENCE_UNTYPED(self), (E), length, maximum);     \
    }                                                                                              \
    DDS_Boolean Seq##_set_absolute_maximum(Seq *self, DDS_Long absolute_maximum) {                 \
        return KOLT_Sequence_set_absolute_maximum(KOLT_SEQUENCE_UNTYPED(self), (E),                \
                                                  absolute_maximum);                               \
    }                                                                                              \
    T Seq##_get(const Seq *self, DDS_Long index) {                                                 \
        T element;                                                                                 \
        const void *const place =                                                                  \
            KOLT_Sequence_get(KOLT_SEQUENCE_UNTYPED_CONST(self), (E), index);                      \
        if (place == nullptr) {                                                                    \
            std::memset(&element, 0, sizeof(element));                                             \
        } else {                                                                                   \
            std::memcpy(&element, place, sizeof(element));                                         \
        }                                                                                          \
        return element;                                                                            \
    }                                                                                              \
    T *Seq##_get_reference(const Seq *self, DDS_Long index) {                                      \
        return static_cast<T *>(                                                                   \
            KOLT_Sequence_get_reference(KOLT_SEQUENCE_UNTYPED_CONST(self), (E), index));           \
    }                                                                                              \
    Seq *Seq##_copy(Seq *self, const Seq *source) {                                                \
        return reinterpret_cast<Seq *>(KOLT_Sequence_copy(KOLT_SEQUENCE_UNTYPED(self), (E),        \
                                                          KOLT_SEQUENCE_UNTYPED_CONST(source)));   \
    }                                                                                              \
    DDS_Boolean Seq##_copy_no_alloc(Seq *self, const Seq *source) {                                \
        return KOLT_Sequence_copy_no_alloc(KOLT_SEQUENCE_UNTYPED(self), (E),                       \
                                           KOLT_SEQUENCE_UNTYPED_CONST(source));                   \
    }                                                                                              \
    DDS_Boolean Seq##_copy_no_allocI(Seq *self, const Seq *source) {                               \
        return KOLT_Sequence_copy_no_allocI(KOLT_SEQUENCE_UNTYPED(self), (E),                      \
                                            KOLT_SEQUENCE_UNTYPED_CONST(source));                  \
    }                                                                                              \
    DDS_Boolean Seq##_from_array(Seq *self, const T *array, DDS_Long length) {                     \
        return KOLT_Sequence_from_array(KOLT_SEQUENCE_UNTYPED(self), (E), array, length);          \
    }                                                                                              \
    DDS_Boolean Seq##_to_array(const Seq *self, T *array, DDS_Long length) {                       \
        return KOLT_Sequence_to_array(KOLT_SEQUENCE_UNTYPED_CONST(self), (E), array, length);      \
    }                                                                                              \
    DDS_Boolean Seq##_loan_contiguous(Seq *self, T *buffer, DDS_Long new_length,                   \
                                      DDS_Long new_maximum) {                                      \
        return KOLT_Sequence_loan_contiguous(KOLT_SEQUENCE_UNTYPED(self), (E), buffer, new_length, \
                                             new_maximum);                                         \
    }                                                                                              \
    DDS_Boolean Seq##_loan_discontiguous(Seq *self, T **buffer, DDS_Long new_length,               \
                                         DDS_Long new_maximum) {                                   \
        return KOLT_Sequence_loan_discontiguous(KOLT_SEQUENCE_UNTYPED(self), (E),                  \
                                                reinterpret_cast<void **>(buffer), new_length,     \
                                                new_maximum);                                      \
    }                                                                                              \
    DDS_Boolean Seq##_unloan(Seq *self) {                                                          \
        return KOLT_Sequence_unloan(KOLT_SEQUENCE_UNTYPED(self), (E));                             \
    }                                                                                              \
    T *Seq##_get_contiguous_buffer(const Seq *self) {                                              \
        return static_cast<T *>(                                                                   \
            KOLT_Sequence_get_contiguous_buffer(KOLT_SEQUENCE_UNTYPED_CONST(self), (E)));          \
    }                                                                                              \
    T **Seq##_get_discontiguous_buffer(const Seq *self) {                                          \
        return reinterpret_cast<T **>(                                                             \
            KOLT_Sequence_get_discontiguous_buffer(KOLT_SEQUENCE_UNTYPED_CONST(self), (E)));       \
    }                                                                                              \
    T *Seq##_get_contiguous_bufferI(const Seq *self) {                                             \
        return static_cast<T *>(                                                                   \
            KOLT_Sequence_get_contiguous_bufferI(KOLT_SEQUENCE_UNTYPED_CONST(self), (E)));         \
    }                                                                                              \
    T **Seq##_get_discontiguous_bufferI(const Seq *self) {                                         \
        return reinterpret_cast<T **>(                                                             \
            KOLT_Sequence_get_discontiguous_bufferI(KOLT_SEQUENCE_UNTYPED_CONST(self), (E)));      \
    }                                                                                              \
    DDS_Boolean Seq##_has_ownership(const Seq *self) {                                             \
        return KOLT_Sequence_has_ownership(KOLT_SEQUENCE_UNTYPED_CONST(self), (E));                \
    }                                                                                              \
    DDS_Boolean Seq##_set_element_pointers_allocation(Seq *self, DDS_Boolean allocate) {           \
        return KOLT_Sequence_set_element_pointers_allocation(KOLT_SEQUENCE_UNTYPED(self), (E),     \
                                                             allocate);                            \
    }                                                                                              \
    DDS_Boolean Seq##_get_element_pointers_allocation(const Seq *self) {                           \
        return KOLT_Sequence_get_element_pointers_allocation(KOLT_SEQUENCE_UNTYPED_CONST(self),    \
                                                             (E));                                 \
    }                                                                                              \
    DDS_Boolean Seq##_set_element_allocation_params(                                               \
        Seq *self, const DDS_SeqElementTypeAllocationParams_t *params) {                           \
        return KOLT_Sequence_set_element_allocation_params(KOLT_SEQUENCE_UNTYPED(self), (E),       \
                                                           params);                                \
    }                                                                                              \
    const DDS_SeqElementTypeAllocationParams_t *Seq##_get_element_allocation_params(               \
        const Seq *self) {                                                                         \
        return KOLT_Sequence_get_element_allocation_params(KOLT_SEQUENCE_UNTYPED_CONST(self),      \
                                                           (E));                                   \
    }                                                                                              \
    DDS_Boolean Seq##_set_element_deallocation_params(                                             \
        Seq *self, const DDS_SeqElementTypeDeallocationParams_t *params) {                         \
        return KOLT_Sequence_set_element_deallocation_params(KOLT_SEQUENCE_UNTYPED(self), (E),     \
                                                             params);                              \
    }                                                                                              \
    const DDS_SeqElementTypeDeallocationParams_t *Seq##_get_element_deallocation_params(           \
        const Seq *self) {                                                                         \
        return KOLT_Sequence_get_element_deallocation_params(KOLT_SEQUENCE_UNTYPED_CONST(self),    \
                                                             (E));                                 \
    }                                                                                              \
    DDS_Boolean Seq##_get_read_tokenI(const Seq *self, void **token1, void **token2) {             \
        return KOLT_Sequence_get_read_tokenI(KOLT_SEQUENCE_UNTYPED_CONST(self), (E), token1,       \
                                             token2);                                              \
    }                                                                                              \
    DDS_Boolean Seq##_set_read_tokenI(Seq *self, void *token1, void *token2) {                     \
        return KOLT_Sequence_set_read_tokenI(KOLT_SEQUENCE_UNTYPED(self), (E), token1, token2);    \
    }                                                                                              \
    void Seq##_delete_bufferI(Seq *self, T *buffer, DDS_UnsignedLong count) {                      \
        KOLT_Sequence_delete_bufferI(KOLT_SEQUENCE_UNTYPED(self), (E), buffer, count);             \
    }                                                                                              \
    DDS_Boolean Seq##_check_invariantsI(const Seq *self, const char *function_name) {              \
        return KOLT_Sequence_check_invariantsI(KOLT_SEQUENCE_UNTYPED_CONST(self), (E),             \
                                               function_name);                                     \
    }                                                                                              \
    static_assert(sizeof(Seq) == sizeof(KOLT_Sequence), #Seq " is not a sequence record")

#endif /* __cplusplus */
