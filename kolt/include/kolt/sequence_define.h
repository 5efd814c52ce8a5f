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

/* One forwarding function. `...` are the further arguments of the untyped operation. */
#define KOLT_SEQUENCE_FORWARD(Seq, E, operation, ...) \
    KOLT_Sequence_##operation(KOLT_SEQUENCE_UNTYPED(self), (E)__VA_OPT__(, ) __VA_ARGS__)
#define KOLT_SEQUENCE_FORWARD_CONST(Seq, E, operation, ...) \
    KOLT_Sequence_##operation(KOLT_SEQUENCE_UNTYPED_CONST(self), (E)__VA_OPT__(, ) __VA_ARGS__)

#define KOLT_SEQUENCE_DEFINE(Seq, T, E)                                                            \
    static_assert(sizeof(Seq) == sizeof(KOLT_Sequence), #Seq " is no sequence record");            \
    DDS_Boolean Seq##_initialize(Seq *self) {                                                      \
        return KOLT_SEQUENCE_FORWARD(Seq, E, initialize);                                          \
    }                                                                                              \
    DDS_Boolean Seq##_finalize(Seq *self) {                                                        \
        return KOLT_SEQUENCE_FORWARD(Seq, E, finalize);                                            \
    }                                                                                              \
    DDS_UnsignedLong Seq##_get_maximum(const Seq *self) {                                          \
        return KOLT_SEQUENCE_FORWARD_CONST(Seq, E, get_maximum);                                   \
    }                                                                                              \
    DDS_Boolean Seq##_set_maximum(Seq *self, DDS_Long new_maximum) {                               \
        return KOLT_SEQUENCE_FORWARD(Seq, E, set_maximum, new_maximum);                            \
    }                                                                                              \
    DDS_UnsignedLong Seq##_get_length(const Seq *self) {                                           \
        return KOLT_SEQUENCE_FORWARD_CONST(Seq, E, get_length);                                    \
    }                                                                                              \
    DDS_Boolean Seq##_set_length(Seq *self, DDS_Long new_length) {                                 \
        return KOLT_SEQUENCE_FORWARD(Seq, E, set_length, new_length);                              \
    }                                                                                              \
    DDS_Boolean Seq##_ensure_length(Seq *self, DDS_Long length, DDS_Long maximum) {                \
        return KOLT_SEQUENCE_FORWARD(Seq, E, ensure_length, length, maximum);                      \
    }                                                                                              \
    DDS_Boolean Seq##_set_absolute_maximum(Seq *self, DDS_Long absolute_maximum) {                 \
        return KOLT_SEQUENCE_FORWARD(Seq, E, set_absolute_maximum, absolute_maximum);              \
    }                                                                                              \
    T Seq##_get(const Seq *self, DDS_Long index) {                                                 \
        T element;                                                                                 \
        const void *const place = KOLT_SEQUENCE_FORWARD_CONST(Seq, E, get, index);                 \
        if (place == nullptr) {                                                                    \
            std::memset(&element, 0, sizeof(element));                                             \
        } else {                                                                                   \
            std::memcpy(&element, place, sizeof(element));                                         \
        }                                                                                          \
        return element;                                                                            \
    }                                                                                              \
    T *Seq##_get_reference(const Seq *self, DDS_Long index) {                                      \
        return static_cast<T *>(KOLT_SEQUENCE_FORWARD_CONST(Seq, E, get_reference, index));        \
    }                                                                                              \
    Seq *Seq##_copy(Seq *self, const Seq *source) {                                                \
        return reinterpret_cast<Seq *>(                                                            \
            KOLT_SEQUENCE_FORWARD(Seq, E, copy, KOLT_SEQUENCE_UNTYPED_CONST(source)));             \
    }                                                                                              \
    DDS_Boolean Seq##_copy_no_alloc(Seq *self, const Seq *source) {                                \
        return KOLT_SEQUENCE_FORWARD(Seq, E, copy_no_alloc, KOLT_SEQUENCE_UNTYPED_CONST(source));  \
    }                                                                                              \
    DDS_Boolean Seq##_copy_no_allocI(Seq *self, const Seq *source) {                               \
        return KOLT_SEQUENCE_FORWARD(Seq, E, copy_no_allocI, KOLT_SEQUENCE_UNTYPED_CONST(source)); \
    }                                                                                              \
    DDS_Boolean Seq##_from_array(Seq *self, const T *array, DDS_Long length) {                     \
        return KOLT_SEQUENCE_FORWARD(Seq, E, from_array, array, length);                           \
    }                                                                                              \
    DDS_Boolean Seq##_to_array(const Seq *self, T *array, DDS_Long length) {                       \
        return KOLT_SEQUENCE_FORWARD_CONST(Seq, E, to_array, array, length);                       \
    }                                                                                              \
    DDS_Boolean Seq##_loan_contiguous(Seq *self, T *buffer, DDS_Long new_length,                   \
                                      DDS_Long new_maximum) {                                      \
        return KOLT_SEQUENCE_FORWARD(Seq, E, loan_contiguous, buffer, new_length, new_maximum);    \
    }                                                                                              \
    DDS_Boolean Seq##_loan_discontiguous(Seq *self, T **buffer, DDS_Long new_length,               \
                                         DDS_Long new_maximum) {                                   \
        return KOLT_SEQUENCE_FORWARD(Seq, E, loan_discontiguous,                                   \
                                     reinterpret_cast<void **>(buffer), new_length, new_maximum);  \
    }                                                                                              \
    DDS_Boolean Seq##_unloan(Seq *self) {                                                          \
        return KOLT_SEQUENCE_FORWARD(Seq, E, unloan);                                              \
    }                                                                                              \
    T *Seq##_get_contiguous_buffer(const Seq *self) {                                              \
        return static_cast<T *>(KOLT_SEQUENCE_FORWARD_CONST(Seq, E, get_contiguous_buffer));       \
    }                                                                                              \
    T **Seq##_get_discontiguous_buffer(const Seq *self) {                                          \
        return reinterpret_cast<T **>(                                                             \
            KOLT_SEQUENCE_FORWARD_CONST(Seq, E, get_discontiguous_buffer));                        \
    }                                                                                              \
    T *Seq##_get_contiguous_bufferI(const Seq *self) {                                             \
        return static_cast<T *>(KOLT_SEQUENCE_FORWARD_CONST(Seq, E, get_contiguous_bufferI));      \
    }                                                                                              \
    T **Seq##_get_discontiguous_bufferI(const Seq *self) {                                         \
        return reinterpret_cast<T **>(                                                             \
            KOLT_SEQUENCE_FORWARD_CONST(Seq, E, get_discontiguous_bufferI));                       \
    }                                                                                              \
    DDS_Boolean Seq##_has_ownership(const Seq *self) {                                             \
        return KOLT_SEQUENCE_FORWARD_CONST(Seq, E, has_ownership);                                 \
    }                                                                                              \
    DDS_Boolean Seq##_set_element_pointers_allocation(Seq *self, DDS_Boolean allocate) {           \
        return KOLT_SEQUENCE_FORWARD(Seq, E, set_element_pointers_allocation, allocate);           \
    }                                                                                              \
    DDS_Boolean Seq##_get_element_pointers_allocation(const Seq *self) {                           \
        return KOLT_SEQUENCE_FORWARD_CONST(Seq, E, get_element_pointers_allocation);               \
    }                                                                                              \
    DDS_Boolean Seq##_set_element_allocation_params(                                               \
        Seq *self, const DDS_SeqElementTypeAllocationParams_t *params) {                           \
        return KOLT_SEQUENCE_FORWARD(Seq, E, set_element_allocation_params, params);               \
    }                                                                                              \
    const DDS_SeqElementTypeAllocationParams_t *Seq##_get_element_allocation_params(               \
        const Seq *self) {                                                                         \
        return KOLT_SEQUENCE_FORWARD_CONST(Seq, E, get_element_allocation_params);                 \
    }                                                                                              \
    DDS_Boolean Seq##_set_element_deallocation_params(                                             \
        Seq *self, const DDS_SeqElementTypeDeallocationParams_t *params) {                         \
        return KOLT_SEQUENCE_FORWARD(Seq, E, set_element_deallocation_params, params);             \
    }                                                                                              \
    const DDS_SeqElementTypeDeallocationParams_t *Seq##_get_element_deallocation_params(           \
        const Seq *self) {                                                                         \
        return KOLT_SEQUENCE_FORWARD_CONST(Seq, E, get_element_deallocation_params);               \
    }                                                                                              \
    DDS_Boolean Seq##_get_read_tokenI(const Seq *self, void **token1, void **token2) {             \
        return KOLT_SEQUENCE_FORWARD_CONST(Seq, E, get_read_tokenI, token1, token2);               \
    }                                                                                              \
    DDS_Boolean Seq##_set_read_tokenI(Seq *self, void *token1, void *token2) {                     \
        return KOLT_SEQUENCE_FORWARD(Seq, E, set_read_tokenI, token1, token2);                     \
    }                                                                                              \
    void Seq##_delete_bufferI(Seq *self, T *buffer, DDS_UnsignedLong count) {                      \
        KOLT_SEQUENCE_FORWARD(Seq, E, delete_bufferI, buffer, count);                              \
    }                                                                                              \
    DDS_Boolean Seq##_check_invariantsI(const Seq *self, const char *function_name) {              \
        return KOLT_SEQUENCE_FORWARD_CONST(Seq, E, check_invariantsI, function_name);              \
    }                                                                                              \
    static_assert(sizeof(Seq) == sizeof(KOLT_Sequence), #Seq " is no sequence record")

#endif /* __cplusplus */
