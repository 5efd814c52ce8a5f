/* SPDX-License-Identifier: Apache-2.0 */
/* The untyped sequence operations, from which every typed family is made.
 *
 * `Seq##_<operation>(self, ...)` is `KOLT_Sequence_<operation>(self, type, ...)` with the element
 * type of the sequence. Included by kolt/sequence.h.
 *
 * Conventions of the family:
 *  1. `self` is any typed sequence record, seen as a KOLT_Sequence; `type` describes its elements
 *     and is never NULL.
 *  2. An operation that finds a sequence uninitialised (`_sequence_init` is not
 *     KOLT_SEQUENCE_MAGIC, whatever the other bytes hold) first makes it an empty owning one. That
 *     holds for operations that take the sequence as const, too. The operations whose names end in
 *     a capital I do not do so.
 *  3. A failure is reported through the middleware logger (category API, level ERROR) under the
 *     name `<sequence_name>_<operation>` with the text that is given here in double quotes; the
 *     result is false, 0 or NULL. A NULL argument is reported as "bad parameter: <name>".
 *  4. An owning sequence keeps all of its `_maximum` elements initialised, not `_length` only.
 *  5. Indexes, lengths and maximums count elements and go from 0 to 2147483647.
 */
#pragma once

#include "kolt/sequence.h"

KOLT_EXTERN_C_BEGIN

/* Makes `self` an empty owning sequence with default parameters. For fresh records only: a buffer
 * that the record holds is forgotten, not freed. False for NULL ("self"). */
KOLT_EXPORT DDS_Boolean KOLT_Sequence_initialize(KOLT_Sequence *self,
                                                 const KOLT_SequenceElementType *type);
/* Finalises and frees the elements: _set_maximum to 0, with its failures. A sequence that holds a
 * loan keeps it and fails. The sequence is empty afterwards and can be used again. */
KOLT_EXPORT DDS_Boolean KOLT_Sequence_finalize(KOLT_Sequence *self,
                                               const KOLT_SequenceElementType *type);

/* How many elements the buffer holds; 0 for NULL ("self"). */
KOLT_EXPORT DDS_UnsignedLong KOLT_Sequence_get_maximum(const KOLT_Sequence *self,
                                                       const KOLT_SequenceElementType *type);
/* Gives the sequence a new buffer of exactly `new_maximum` initialised elements, of which the first
 * min(length, new_maximum) are copies of the old ones; the length shrinks to that number. The same
 * maximum changes nothing. On failure the sequence stays as it was. Checks, in this order: "self";
 * the invariants; "allocate_memory must be true"; "max size must be positive" (negative); "new max
 * cannot be larger than absolute maximum"; "buffer must not be loaned"; "discontiguous buffer is
 * not NULL!"; memory; "initialize_w_params"; "inconsistent buffer state"; "copy contiguous buffer".
 */
KOLT_EXPORT DDS_Boolean KOLT_Sequence_set_maximum(KOLT_Sequence *self,
                                                  const KOLT_SequenceElementType *type,
                                                  DDS_Long new_maximum);
/* How many elements are valid; 0 for NULL ("self"). */
KOLT_EXPORT DDS_UnsignedLong KOLT_Sequence_get_length(const KOLT_Sequence *self,
                                                      const KOLT_SequenceElementType *type);
/* Sets the length. Within the maximum nothing else changes; beyond it the maximum grows to exactly
 * `new_length`, which needs an owning sequence. False for a length that is negative or above the
 * absolute maximum (insufficient space). */
KOLT_EXPORT DDS_Boolean KOLT_Sequence_set_length(KOLT_Sequence *self,
                                                 const KOLT_SequenceElementType *type,
                                                 DDS_Long new_length);
/* Sets the length to `length`, growing the maximum to `maximum` when the present one is below
 * `length`. False when `length` is negative or above `maximum` (insufficient space), when growth is
 * needed and the sequence does not own its buffer, or when growth fails. */
KOLT_EXPORT DDS_Boolean KOLT_Sequence_ensure_length(KOLT_Sequence *self,
                                                    const KOLT_SequenceElementType *type,
                                                    DDS_Long length, DDS_Long maximum);
/* Limits what _set_maximum accepts. False for a negative limit or one below the present maximum
 * ("new absolute max cannot be smaller than max"). */
KOLT_EXPORT DDS_Boolean KOLT_Sequence_set_absolute_maximum(KOLT_Sequence *self,
                                                           const KOLT_SequenceElementType *type,
                                                           DDS_Long absolute_maximum);

/* Returns the place of the element that the typed `_get` copies out: element `index`, or element 0
 * for an index that is negative or not below the length ("index out of bounds"). NULL for "self"
 * and when there is no element 0, for which `_get` returns an element of zero bytes. The copy that
 * `_get` returns is shallow: the memory that it points to still belongs to the sequence. */
KOLT_EXPORT void *KOLT_Sequence_get(const KOLT_Sequence *self, const KOLT_SequenceElementType *type,
                                    DDS_Long index);
/* A pointer to element `index`, valid until the buffer changes, in either kind of buffer; NULL for
 * an index that is negative or not below the length ("index out of bounds"). */
KOLT_EXPORT void *KOLT_Sequence_get_reference(const KOLT_Sequence *self,
                                              const KOLT_SequenceElementType *type, DDS_Long index);

/* Deep copy. When the maximum of `self` is below the length of `source`, it first becomes the
 * maximum of `source` (which a loaned `self` fails). Returns `self`, or NULL on failure ("self",
 * "src"), which leaves the elements copied so far. */
KOLT_EXPORT KOLT_Sequence *KOLT_Sequence_copy(KOLT_Sequence *self,
                                              const KOLT_SequenceElementType *type,
                                              const KOLT_Sequence *source);
/* Deep copy into the buffer that is there. A `self` that does not own its buffer must have room for
 * the length of `source`; an owning one whose buffer is too small grows through its length. */
KOLT_EXPORT DDS_Boolean KOLT_Sequence_copy_no_alloc(KOLT_Sequence *self,
                                                    const KOLT_SequenceElementType *type,
                                                    const KOLT_Sequence *source);
/* The element loop of both: sets the length, then copies element by element. An element pointer of
 * a source that is NULL fails: "Unexpected NULL discontiguous buffer in the sequence". Both
 * sequences must be initialised. */
KOLT_EXPORT DDS_Boolean KOLT_Sequence_copy_no_allocI(KOLT_Sequence *self,
                                                     const KOLT_SequenceElementType *type,
                                                     const KOLT_Sequence *source);
/* Copies `length` elements of `array` in. Failing steps: "loan contiguous array", "copy array
 * sequence", "unloan contiguous array". */
KOLT_EXPORT DDS_Boolean KOLT_Sequence_from_array(KOLT_Sequence *self,
                                                 const KOLT_SequenceElementType *type,
                                                 const void *array, DDS_Long length);
/* Copies all elements out to `array`, which has room for `length` initialised elements. Failing
 * steps: "loan contiguous array", "copying array sequence" (more elements than room), "unloan
 * contiguous array". */
KOLT_EXPORT DDS_Boolean KOLT_Sequence_to_array(const KOLT_Sequence *self,
                                               const KOLT_SequenceElementType *type, void *array,
                                               DDS_Long length);

/* Lends `buffer`, which holds `new_maximum` elements of which `new_length` are valid, to the
 * sequence. The buffer stays the caller's and must live until _unloan. Checks, in this order: "max
 * size must be 0" (empty or unloan the sequence first); "negative argument"; length above maximum
 * (insufficient space); "NULL buffer can't have non-zero maximum"; "new max cannot be larger than
 * absolute maximum". */
KOLT_EXPORT DDS_Boolean KOLT_Sequence_loan_contiguous(KOLT_Sequence *self,
                                                      const KOLT_SequenceElementType *type,
                                                      void *buffer, DDS_Long new_length,
                                                      DDS_Long new_maximum);
/* The same with an array of element pointers. */
KOLT_EXPORT DDS_Boolean KOLT_Sequence_loan_discontiguous(KOLT_Sequence *self,
                                                         const KOLT_SequenceElementType *type,
                                                         void **buffer, DDS_Long new_length,
                                                         DDS_Long new_maximum);
/* Forgets a loaned buffer and the read tokens: the sequence is an empty owning one again. False for
 * one that owns its buffer: "buffer must be loaned". */
KOLT_EXPORT DDS_Boolean KOLT_Sequence_unloan(KOLT_Sequence *self,
                                             const KOLT_SequenceElementType *type);

/* The buffers; NULL where there is none. */
KOLT_EXPORT void *KOLT_Sequence_get_contiguous_buffer(const KOLT_Sequence *self,
                                                      const KOLT_SequenceElementType *type);
KOLT_EXPORT void **KOLT_Sequence_get_discontiguous_buffer(const KOLT_Sequence *self,
                                                          const KOLT_SequenceElementType *type);
KOLT_EXPORT void *KOLT_Sequence_get_contiguous_bufferI(const KOLT_Sequence *self,
                                                       const KOLT_SequenceElementType *type);
KOLT_EXPORT void **KOLT_Sequence_get_discontiguous_bufferI(const KOLT_Sequence *self,
                                                           const KOLT_SequenceElementType *type);
/* False while a buffer is loaned to the sequence. */
KOLT_EXPORT DDS_Boolean KOLT_Sequence_has_ownership(const KOLT_Sequence *self,
                                                    const KOLT_SequenceElementType *type);

/* How new elements are initialised and old ones finalised. The allocation parameters can be set
 * only while the maximum is 0: "Pointers allocation policy can be configured only when the maximum
 * size of the sequence is 0", "Member allocation parameters can be configured only when the maximum
 * size of the sequence is 0". The getters' pointers stay the sequence's. */
KOLT_EXPORT DDS_Boolean KOLT_Sequence_set_element_pointers_allocation(
    KOLT_Sequence *self, const KOLT_SequenceElementType *type, DDS_Boolean allocate);
KOLT_EXPORT DDS_Boolean KOLT_Sequence_get_element_pointers_allocation(
    const KOLT_Sequence *self, const KOLT_SequenceElementType *type);
KOLT_EXPORT DDS_Boolean KOLT_Sequence_set_element_allocation_params(
    KOLT_Sequence *self, const KOLT_SequenceElementType *type,
    const DDS_SeqElementTypeAllocationParams_t *params);
KOLT_EXPORT const DDS_SeqElementTypeAllocationParams_t *KOLT_Sequence_get_element_allocation_params(
    const KOLT_Sequence *self, const KOLT_SequenceElementType *type);
KOLT_EXPORT DDS_Boolean KOLT_Sequence_set_element_deallocation_params(
    KOLT_Sequence *self, const KOLT_SequenceElementType *type,
    const DDS_SeqElementTypeDeallocationParams_t *params);
KOLT_EXPORT const DDS_SeqElementTypeDeallocationParams_t *
KOLT_Sequence_get_element_deallocation_params(const KOLT_Sequence *self,
                                              const KOLT_SequenceElementType *type);

/* The two tokens of a reader's loan. A NULL output is reported as "token (NULL)". */
KOLT_EXPORT DDS_Boolean KOLT_Sequence_get_read_tokenI(const KOLT_Sequence *self,
                                                      const KOLT_SequenceElementType *type,
                                                      void **token1, void **token2);
KOLT_EXPORT DDS_Boolean KOLT_Sequence_set_read_tokenI(KOLT_Sequence *self,
                                                      const KOLT_SequenceElementType *type,
                                                      void *token1, void *token2);
/* Finalises `count` elements of `buffer`, with the sequence's deallocation parameters, and frees
 * the array, which must come from a sequence of this element type. A NULL buffer is ignored. */
KOLT_EXPORT void KOLT_Sequence_delete_bufferI(KOLT_Sequence *self,
                                              const KOLT_SequenceElementType *type, void *buffer,
                                              DDS_UnsignedLong count);
/* True when the record is a possible sequence. Logs the first rule that is broken under
 * `function_name`: "invariant: uninitialized", "invariant: both buffers are non-NULL", "invariant:
 * length > maximum", "invariant: sequence owns memory but has discontiguous buffer", "invariant:
 * maximum > 0 but buffer is NULL", "invariant: maximum > absolute_maximum". */
KOLT_EXPORT DDS_Boolean KOLT_Sequence_check_invariantsI(const KOLT_Sequence *self,
                                                        const KOLT_SequenceElementType *type,
                                                        const char *function_name);

KOLT_EXTERN_C_END
