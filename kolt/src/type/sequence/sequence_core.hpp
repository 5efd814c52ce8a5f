// SPDX-License-Identifier: Apache-2.0
// The one implementation of sequences, over elements described by an ElementOps.
#pragma once

#include <cstddef>

#include "kolt/sequence.h"

namespace kolt::type {

// Initialises, copies and finalises the elements of a sequence. Elements for which plain() holds
// are bytes: zero when new, nothing to free.
class ElementOps {
  public:
    ElementOps(const char *sequence_name, std::size_t size, bool plain)
        : sequence_name_(sequence_name), size_(size), plain_(plain) {}
    virtual ~ElementOps() = default;
    ElementOps(const ElementOps &) = delete;
    ElementOps &operator=(const ElementOps &) = delete;

    // `element` is zero bytes on entry.
    virtual bool initialize(void *element, const DDS_TypeAllocationParams_t &params) const = 0;
    virtual void finalize(void *element, const DDS_TypeDeallocationParams_t &params) const = 0;
    virtual bool copy(void *destination, const void *source) const = 0;

    const char *sequence_name() const { return sequence_name_; }
    std::size_t size() const { return size_; }
    bool plain() const { return plain_; }

  private:
    const char *sequence_name_;
    std::size_t size_;
    bool plain_;
};

// The operations of kolt/sequence_ops.h; `self` is never NULL here. Those that touch no element
// take the sequence's name alone, for their messages.
void sequence_reset(KOLT_Sequence *self);
void sequence_ensure_initialized(const KOLT_Sequence *self);
bool sequence_check_invariants(const KOLT_Sequence *self, const char *function_name);
bool sequence_set_maximum(KOLT_Sequence *self, const ElementOps &ops, DDS_Long new_maximum);
bool sequence_set_length(KOLT_Sequence *self, const ElementOps &ops, DDS_Long new_length);
bool sequence_ensure_length(KOLT_Sequence *self, const ElementOps &ops, DDS_Long length,
                            DDS_Long maximum);
bool sequence_set_absolute_maximum(KOLT_Sequence *self, const char *sequence_name, DDS_Long limit);
bool sequence_copy_elements(KOLT_Sequence *self, const ElementOps &ops,
                            const KOLT_Sequence *source);
bool sequence_copy_no_alloc(KOLT_Sequence *self, const ElementOps &ops,
                            const KOLT_Sequence *source);
bool sequence_copy(KOLT_Sequence *self, const ElementOps &ops, const KOLT_Sequence *source);
bool sequence_loan_contiguous(KOLT_Sequence *self, const char *sequence_name, void *buffer,
                              DDS_Long new_length, DDS_Long new_maximum);
bool sequence_loan_discontiguous(KOLT_Sequence *self, const char *sequence_name, void **buffer,
                                 DDS_Long new_length, DDS_Long new_maximum);
bool sequence_unloan(KOLT_Sequence *self, const char *sequence_name);
void sequence_delete_buffer(const KOLT_Sequence *self, const ElementOps &ops, void *buffer,
                            std::size_t count);

// Returns element `index` of either kind of buffer, which holds more than `index` elements of
// `element_size` bytes.
void *sequence_element(const KOLT_Sequence *self, std::size_t element_size, std::size_t index);

// Reports `text` under "<sequence_name>_<operation>".
void log_sequence_error(const char *sequence_name, const char *operation, const char *text);

}  // namespace kolt::type
