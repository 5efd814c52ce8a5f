// SPDX-License-Identifier: Apache-2.0
// Sequences: state, growth, copies and loans.
#include "type/sequence/sequence_core.hpp"

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "kolt/config_logger.h"

namespace kolt::type {
namespace {

constexpr KOLT_Config_LogCategory kCategory = KOLT_CONFIG_LOG_CATEGORY_API;
constexpr KOLT_Config_LogLevel kLevel = KOLT_CONFIG_LOG_LEVEL_ERROR;

// "<sequence name>_<operation>". Made only where something is reported.
class MethodName {
  public:
    MethodName(const char *sequence_name, const char *operation) {
        std::snprintf(text_, sizeof(text_), "%s_%s", sequence_name, operation);
    }
    const char *text() const { return text_; }

  private:
    char text_[160];
};

void log_insufficient_space(const char *sequence_name, const char *operation,
                            DDS_UnsignedLong available, DDS_Long requested) {
    if (!KOLT_Log_is_enabled(kCategory, kLevel)) {
        return;
    }
    KOLT_Log_message(kCategory, kLevel, MethodName(sequence_name, operation).text(),
                     "insufficient space: %u available, %d requested", available, requested);
}

DDS_TypeAllocationParams_t allocation_params(const KOLT_Sequence *self) {
    return {self->_elementAllocParams.allocate_pointers,
            self->_elementAllocParams.allocate_optional_members,
            self->_elementAllocParams.allocate_memory};
}

bool check_invariants(const KOLT_Sequence *self, const char *sequence_name, const char *operation) {
    return sequence_check_invariants(self, MethodName(sequence_name, operation).text());
}

// Returns the reason why _set_maximum refuses before it touches anything; NULL when it does not.
const char *maximum_problem(const KOLT_Sequence *self, DDS_Long new_maximum) {
    if (!self->_elementAllocParams.allocate_memory) {
        return "allocate_memory must be true";
    }
    if (new_maximum < 0) {
        return "max size must be positive";
    }
    if (static_cast<DDS_UnsignedLong>(new_maximum) > self->_absolute_maximum) {
        return "new max cannot be larger than absolute maximum";
    }
    if (!self->_owned) {
        return "buffer must not be loaned";
    }
    if (self->_discontiguous_buffer != nullptr) {
        return "discontiguous buffer is not NULL!";
    }
    return nullptr;
}

void log_out_of_memory(const ElementOps &ops, std::size_t count) {
    if (KOLT_Log_is_enabled(kCategory, kLevel)) {
        KOLT_Log_message(kCategory, kLevel, MethodName(ops.sequence_name(), "set_maximum").text(),
                         "out of memory: %zu elements of %zu bytes", count, ops.size());
    }
}

// `count` initialised elements, or NULL (reported).
char *new_buffer(const KOLT_Sequence *self, const ElementOps &ops, std::size_t count) {
    auto *const buffer = static_cast<char *>(std::calloc(count, ops.size()));
    if (buffer == nullptr) {
        log_out_of_memory(ops, count);
        return nullptr;
    }
    if (ops.plain()) {
        return buffer;
    }
    const DDS_TypeAllocationParams_t params = allocation_params(self);
    for (std::size_t i = 0; i < count; ++i) {
        if (!ops.initialize(buffer + i * ops.size(), params)) {
            log_sequence_error(ops.sequence_name(), "set_maximum", "initialize_w_params");
            // The elements after the failing one are zero bytes, which finalise to nothing.
            sequence_delete_buffer(self, ops, buffer, count);
            return nullptr;
        }
    }
    return buffer;
}

bool copy_kept(const KOLT_Sequence *self, const ElementOps &ops, char *buffer, std::size_t kept) {
    if (kept == 0) {
        return true;
    }
    if (self->_contiguous_buffer == nullptr) {
        log_sequence_error(ops.sequence_name(), "set_maximum", "inconsistent buffer state");
        return false;
    }
    const auto *const old = static_cast<const char *>(self->_contiguous_buffer);
    for (std::size_t i = 0; i < kept; ++i) {
        if (!ops.copy(buffer + i * ops.size(), old + i * ops.size())) {
            log_sequence_error(ops.sequence_name(), "set_maximum", "copy contiguous buffer");
            return false;
        }
    }
    return true;
}

// Returns the block with room for `size` bytes, moved if need be, with half as much again to spare so
// that a sequence which grows by one element at a time is seldom moved. NULL, and the block is as it
// was, when memory runs out.
void *grow_block(void *block, std::size_t old_size, std::size_t size) {
    if (malloc_usable_size(block) >= size) {
        return block;
    }
    void *const roomy = std::realloc(block, std::max(size, old_size + old_size / 2));
    return roomy != nullptr ? roomy : std::realloc(block, size);
}

// Raises the maximum of a sequence of plain elements that has a buffer.
bool grow_in_place(KOLT_Sequence *self, const ElementOps &ops, DDS_UnsignedLong maximum) {
    void *const buffer =
        grow_block(self->_contiguous_buffer, self->_maximum * ops.size(), maximum * ops.size());
    if (buffer == nullptr) {
        log_out_of_memory(ops, maximum);
        return false;
    }
    std::memset(static_cast<char *>(buffer) + self->_length * ops.size(), 0,
                (maximum - self->_length) * ops.size());
    self->_contiguous_buffer = buffer;
    self->_maximum = maximum;
    return true;
}

}  // namespace

void log_sequence_error(const char *sequence_name, const char *operation, const char *text) {
    if (!KOLT_Log_is_enabled(kCategory, kLevel)) {
        return;
    }
    KOLT_Log_message(kCategory, kLevel, MethodName(sequence_name, operation).text(), "%s", text);
}

void sequence_reset(KOLT_Sequence *self) {
    constexpr KOLT_Sequence kEmpty = DDS_SEQUENCE_INITIALIZER;
    *self = kEmpty;
}

void sequence_ensure_initialized(const KOLT_Sequence *self) {
    // Getters take the record as const, yet use may begin with any of them. No record that is
    // itself constant can be uninitialised and of use.
    if (self->_sequence_init != KOLT_SEQUENCE_MAGIC) {
        sequence_reset(const_cast<KOLT_Sequence *>(self));
    }
}

bool sequence_check_invariants(const KOLT_Sequence *self, const char *function_name) {
    const char *problem = nullptr;
    const bool has_contiguous = self->_contiguous_buffer != nullptr;
    const bool has_discontiguous = self->_discontiguous_buffer != nullptr;
    if (self->_sequence_init != KOLT_SEQUENCE_MAGIC) {
        problem = "invariant: uninitialized";
    } else if (has_contiguous && has_discontiguous) {
        problem = "invariant: both buffers are non-NULL";
    } else if (self->_length > self->_maximum) {
        problem = "invariant: length > maximum";
    } else if (self->_owned && has_discontiguous) {
        problem = "invariant: sequence owns memory but has discontiguous buffer";
    } else if (self->_maximum > 0 && !has_contiguous && !has_discontiguous) {
        problem = "invariant: maximum > 0 but buffer is NULL";
    } else if (self->_maximum > self->_absolute_maximum) {
        problem = "invariant: maximum > absolute_maximum";
    }
    if (problem == nullptr) {
        return true;
    }
    KOLT_Log_message(kCategory, kLevel, function_name, "%s", problem);
    return false;
}

bool sequence_set_maximum(KOLT_Sequence *self, const ElementOps &ops, DDS_Long new_maximum) {
    if (!check_invariants(self, ops.sequence_name(), "set_maximum")) {
        return false;
    }
    if (const char *const problem = maximum_problem(self, new_maximum)) {
        log_sequence_error(ops.sequence_name(), "set_maximum", problem);
        return false;
    }
    const auto maximum = static_cast<DDS_UnsignedLong>(new_maximum);
    if (maximum == self->_maximum) {
        return true;
    }
    if (ops.plain() && maximum > self->_maximum && self->_contiguous_buffer != nullptr) {
        return grow_in_place(self, ops, maximum);
    }

    char *buffer = nullptr;
    if (maximum > 0) {
        buffer = new_buffer(self, ops, maximum);
        if (buffer == nullptr) {
            return false;
        }
    }
    const DDS_UnsignedLong kept = std::min(self->_length, maximum);
    if (!copy_kept(self, ops, buffer, kept)) {
        sequence_delete_buffer(self, ops, buffer, maximum);
        return false;
    }
    void *const old_buffer = self->_contiguous_buffer;
    const DDS_UnsignedLong old_maximum = self->_maximum;
    self->_contiguous_buffer = buffer;
    self->_maximum = maximum;
    self->_length = kept;
    sequence_delete_buffer(self, ops, old_buffer, old_maximum);
    return check_invariants(self, ops.sequence_name(), "set_maximum");
}

bool sequence_set_length(KOLT_Sequence *self, const ElementOps &ops, DDS_Long new_length) {
    if (new_length < 0 || static_cast<DDS_UnsignedLong>(new_length) > self->_absolute_maximum) {
        log_insufficient_space(ops.sequence_name(), "set_length", self->_absolute_maximum,
                               new_length);
        return false;
    }
    if (static_cast<DDS_UnsignedLong>(new_length) <= self->_maximum) {
        self->_length = static_cast<DDS_UnsignedLong>(new_length);
        return true;
    }
    return sequence_ensure_length(self, ops, new_length, new_length);
}

bool sequence_ensure_length(KOLT_Sequence *self, const ElementOps &ops, DDS_Long length,
                            DDS_Long maximum) {
    if (length < 0 || length > maximum) {
        log_insufficient_space(ops.sequence_name(), "ensure_length",
                               static_cast<DDS_UnsignedLong>(std::max(maximum, DDS_Long{0})),
                               length);
        return false;
    }
    const auto wanted = static_cast<DDS_UnsignedLong>(length);
    if (wanted > self->_maximum) {
        if (!self->_owned) {
            log_sequence_error(ops.sequence_name(), "ensure_length",
                               "sequence does not own its buffer");
            return false;
        }
        if (!sequence_set_maximum(self, ops, maximum)) {
            log_insufficient_space(ops.sequence_name(), "ensure_length", self->_maximum, maximum);
            return false;
        }
    }
    self->_length = wanted;
    return true;
}

bool sequence_set_absolute_maximum(KOLT_Sequence *self, const char *sequence_name, DDS_Long limit) {
    if (limit < 0 || static_cast<DDS_UnsignedLong>(limit) < self->_maximum) {
        log_sequence_error(sequence_name, "set_absolute_maximum",
                           "new absolute max cannot be smaller than max");
        return false;
    }
    self->_absolute_maximum = static_cast<DDS_UnsignedLong>(limit);
    return true;
}

void *sequence_element(const KOLT_Sequence *self, std::size_t element_size, std::size_t index) {
    if (self->_discontiguous_buffer == nullptr) {
        return static_cast<char *>(self->_contiguous_buffer) + index * element_size;
    }
    // The array holds typed pointers, which may not be read as untyped ones.
    void *element = nullptr;
    std::memcpy(&element, self->_discontiguous_buffer + index, sizeof(element));
    return element;
}

bool sequence_copy_elements(KOLT_Sequence *self, const ElementOps &ops,
                            const KOLT_Sequence *source) {
    if (self == source) {
        return true;
    }
    if (source->_length > KOLT_SEQUENCE_ABSOLUTE_MAXIMUM ||
        !sequence_set_length(self, ops, static_cast<DDS_Long>(source->_length))) {
        return false;
    }
    for (std::size_t i = 0; i < source->_length; ++i) {
        void *const to = sequence_element(self, ops.size(), i);
        const void *const from = sequence_element(source, ops.size(), i);
        if (to == nullptr || from == nullptr) {
            log_sequence_error(ops.sequence_name(), "copy_no_alloc",
                               "Unexpected NULL discontiguous buffer in the sequence");
            return false;
        }
        if (to != from && !ops.copy(to, from)) {
            log_sequence_error(ops.sequence_name(), "copy_no_alloc", "copy element");
            return false;
        }
    }
    return true;
}

bool sequence_copy_no_alloc(KOLT_Sequence *self, const ElementOps &ops,
                            const KOLT_Sequence *source) {
    if (!self->_owned && self->_maximum < source->_length) {
        log_sequence_error(ops.sequence_name(), "copy_no_alloc",
                           "sequence does not own its buffer");
        return false;
    }
    return sequence_copy_elements(self, ops, source);
}

bool sequence_copy(KOLT_Sequence *self, const ElementOps &ops, const KOLT_Sequence *source) {
    if (self->_maximum < source->_length &&
        !sequence_set_maximum(self, ops, static_cast<DDS_Long>(source->_maximum))) {
        return false;
    }
    return sequence_copy_no_alloc(self, ops, source);
}

namespace {

bool check_loan(const KOLT_Sequence *self, const char *sequence_name, const char *operation,
                const void *buffer, DDS_Long new_length, DDS_Long new_maximum) {
    const char *problem = nullptr;
    if (self->_maximum != 0) {
        problem = "max size must be 0";
    } else if (new_length < 0 || new_maximum < 0) {
        problem = "negative argument";
    } else if (new_length > new_maximum) {
        log_insufficient_space(sequence_name, operation, static_cast<DDS_UnsignedLong>(new_maximum),
                               new_length);
        return false;
    } else if (buffer == nullptr && new_maximum > 0) {
        problem = "NULL buffer can't have non-zero maximum";
    } else if (static_cast<DDS_UnsignedLong>(new_maximum) > self->_absolute_maximum) {
        problem = "new max cannot be larger than absolute maximum";
    }
    if (problem == nullptr) {
        return true;
    }
    log_sequence_error(sequence_name, operation, problem);
    return false;
}

bool install_loan(KOLT_Sequence *self, const char *sequence_name, const char *operation,
                  void *contiguous, void **discontiguous, DDS_Long length, DDS_Long maximum) {
    self->_contiguous_buffer = contiguous;
    self->_discontiguous_buffer = discontiguous;
    self->_length = static_cast<DDS_UnsignedLong>(length);
    self->_maximum = static_cast<DDS_UnsignedLong>(maximum);
    self->_owned = DDS_BOOLEAN_FALSE;
    return check_invariants(self, sequence_name, operation);
}

}  // namespace

bool sequence_loan_contiguous(KOLT_Sequence *self, const char *sequence_name, void *buffer,
                              DDS_Long new_length, DDS_Long new_maximum) {
    constexpr const char *kOperation = "loan_contiguous";
    return check_loan(self, sequence_name, kOperation, buffer, new_length, new_maximum) &&
           install_loan(self, sequence_name, kOperation, buffer, nullptr, new_length, new_maximum);
}

bool sequence_loan_discontiguous(KOLT_Sequence *self, const char *sequence_name, void **buffer,
                                 DDS_Long new_length, DDS_Long new_maximum) {
    constexpr const char *kOperation = "loan_discontiguous";
    return check_loan(self, sequence_name, kOperation, buffer, new_length, new_maximum) &&
           install_loan(self, sequence_name, kOperation, nullptr, buffer, new_length, new_maximum);
}

bool sequence_unloan(KOLT_Sequence *self, const char *sequence_name) {
    if (self->_owned) {
        log_sequence_error(sequence_name, "unloan", "buffer must be loaned");
        return false;
    }
    self->_contiguous_buffer = nullptr;
    self->_discontiguous_buffer = nullptr;
    self->_read_token1 = nullptr;
    self->_read_token2 = nullptr;
    self->_maximum = 0;
    self->_length = 0;
    self->_owned = DDS_BOOLEAN_TRUE;
    return true;
}

void sequence_delete_buffer(const KOLT_Sequence *self, const ElementOps &ops, void *buffer,
                            std::size_t count) {
    if (buffer == nullptr) {
        return;
    }
    if (!ops.plain()) {
        const DDS_TypeDeallocationParams_t params = {
            self->_elementDeallocParams.delete_pointers,
            self->_elementDeallocParams.delete_optional_members};
        for (std::size_t i = 0; i < count; ++i) {
            ops.finalize(static_cast<char *>(buffer) + i * ops.size(), params);
        }
    }
    std::free(buffer);
}

}  // namespace kolt::type
