// Sequences: state, growth, copies and loans.
#include "type/sequence_core.hpp"

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
    MethodName(const ElementOps &ops, const char *operation) {
        std::snprintf(text_, sizeof(text_), "%s_%s", ops.sequence_name(), operation);
    }
    const char *text() const { return text_; }

  private:
    char text_[160];
};

void LogInsufficientSpace(const ElementOps &ops, const char *operation, DDS_UnsignedLong available,
                          DDS_Long requested) {
    if (!KOLT_Log_is_enabled(kCategory, kLevel)) return;
    KOLT_Log_message(kCategory, kLevel, MethodName(ops, operation).text(),
                     "insufficient space: %u available, %d requested", available, requested);
}

DDS_TypeAllocationParams_t AllocationParams(const KOLT_Sequence *self) {
    return {self->_elementAllocParams.allocate_pointers,
            self->_elementAllocParams.allocate_optional_members,
            self->_elementAllocParams.allocate_memory};
}

bool CheckInvariants(const KOLT_Sequence *self, const ElementOps &ops, const char *operation) {
    return SequenceCheckInvariants(self, MethodName(ops, operation).text());
}

// What _set_maximum refuses before it touches anything.
const char *MaximumProblem(const KOLT_Sequence *self, DDS_Long new_maximum) {
    if (!self->_elementAllocParams.allocate_memory) return "allocate_memory must be true";
    if (new_maximum < 0) return "max size must be positive";
    if (static_cast<DDS_UnsignedLong>(new_maximum) > self->_absolute_maximum) {
        return "new max cannot be larger than absolute maximum";
    }
    if (!self->_owned) return "buffer must not be loaned";
    if (self->_discontiguous_buffer != nullptr) return "discontiguous buffer is not NULL!";
    return nullptr;
}

// `count` initialised elements, or NULL (reported).
char *NewBuffer(const KOLT_Sequence *self, const ElementOps &ops, size_t count) {
    auto *const buffer = static_cast<char *>(std::calloc(count, ops.size()));
    if (buffer == nullptr) {
        if (KOLT_Log_is_enabled(kCategory, kLevel)) {
            KOLT_Log_message(kCategory, kLevel, MethodName(ops, "set_maximum").text(),
                             "out of memory: %zu elements of %zu bytes", count, ops.size());
        }
        return nullptr;
    }
    if (ops.plain()) return buffer;
    const DDS_TypeAllocationParams_t params = AllocationParams(self);
    for (size_t i = 0; i < count; ++i) {
        if (!ops.Initialize(buffer + i * ops.size(), params)) {
            LogSequenceError(ops, "set_maximum", "initialize_w_params");
            // The elements after the failing one are zero bytes, which finalise to nothing.
            SequenceDeleteBuffer(self, ops, buffer, count);
            return nullptr;
        }
    }
    return buffer;
}

bool CopyKept(const KOLT_Sequence *self, const ElementOps &ops, char *buffer, size_t kept) {
    if (kept == 0) return true;
    if (self->_contiguous_buffer == nullptr) {
        LogSequenceError(ops, "set_maximum", "inconsistent buffer state");
        return false;
    }
    const auto *const old = static_cast<const char *>(self->_contiguous_buffer);
    for (size_t i = 0; i < kept; ++i) {
        if (!ops.Copy(buffer + i * ops.size(), old + i * ops.size())) {
            LogSequenceError(ops, "set_maximum", "copy contiguous buffer");
            return false;
        }
    }
    return true;
}

}  // namespace

void LogSequenceError(const ElementOps &ops, const char *operation, const char *text) {
    if (!KOLT_Log_is_enabled(kCategory, kLevel)) return;
    KOLT_Log_message(kCategory, kLevel, MethodName(ops, operation).text(), "%s", text);
}

void SequenceReset(KOLT_Sequence *self) {
    constexpr KOLT_Sequence kEmpty = DDS_SEQUENCE_INITIALIZER;
    *self = kEmpty;
}

void SequenceEnsureInitialized(const KOLT_Sequence *self) {
    // Getters take the record as const, yet use may begin with any of them. No record that is
    // itself constant can be uninitialised and of use.
    if (self->_sequence_init != KOLT_SEQUENCE_MAGIC)
        SequenceReset(const_cast<KOLT_Sequence *>(self));
}

bool SequenceCheckInvariants(const KOLT_Sequence *self, const char *function_name) {
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
    if (problem == nullptr) return true;
    KOLT_Log_message(kCategory, kLevel, function_name, "%s", problem);
    return false;
}

bool SequenceSetMaximum(KOLT_Sequence *self, const ElementOps &ops, DDS_Long new_maximum) {
    if (!CheckInvariants(self, ops, "set_maximum")) return false;
    if (const char *const problem = MaximumProblem(self, new_maximum)) {
        LogSequenceError(ops, "set_maximum", problem);
        return false;
    }
    const auto maximum = static_cast<DDS_UnsignedLong>(new_maximum);
    if (maximum == self->_maximum) return true;

    char *buffer = nullptr;
    if (maximum > 0) {
        buffer = NewBuffer(self, ops, maximum);
        if (buffer == nullptr) return false;
    }
    const DDS_UnsignedLong kept = std::min(self->_length, maximum);
    if (!CopyKept(self, ops, buffer, kept)) {
        SequenceDeleteBuffer(self, ops, buffer, maximum);
        return false;
    }
    void *const old_buffer = self->_contiguous_buffer;
    const DDS_UnsignedLong old_maximum = self->_maximum;
    self->_contiguous_buffer = buffer;
    self->_maximum = maximum;
    self->_length = kept;
    SequenceDeleteBuffer(self, ops, old_buffer, old_maximum);
    return CheckInvariants(self, ops, "set_maximum");
}

bool SequenceSetLength(KOLT_Sequence *self, const ElementOps &ops, DDS_Long new_length) {
    if (new_length < 0 || static_cast<DDS_UnsignedLong>(new_length) > self->_absolute_maximum) {
        LogInsufficientSpace(ops, "set_length", self->_absolute_maximum, new_length);
        return false;
    }
    if (static_cast<DDS_UnsignedLong>(new_length) <= self->_maximum) {
        self->_length = static_cast<DDS_UnsignedLong>(new_length);
        return true;
    }
    return SequenceEnsureLength(self, ops, new_length, new_length);
}

bool SequenceEnsureLength(KOLT_Sequence *self, const ElementOps &ops, DDS_Long length,
                          DDS_Long maximum) {
    if (length < 0 || length > maximum) {
        LogInsufficientSpace(ops, "ensure_length",
                             static_cast<DDS_UnsignedLong>(std::max(maximum, DDS_Long{0})), length);
        return false;
    }
    const auto wanted = static_cast<DDS_UnsignedLong>(length);
    if (wanted > self->_maximum) {
        if (!self->_owned) {
            LogSequenceError(ops, "ensure_length", "sequence does not own its buffer");
            return false;
        }
        if (!SequenceSetMaximum(self, ops, maximum)) {
            LogInsufficientSpace(ops, "ensure_length", self->_maximum, maximum);
            return false;
        }
    }
    self->_length = wanted;
    return true;
}

bool SequenceSetAbsoluteMaximum(KOLT_Sequence *self, const ElementOps &ops, DDS_Long limit) {
    if (limit < 0 || static_cast<DDS_UnsignedLong>(limit) < self->_maximum) {
        LogSequenceError(ops, "set_absolute_maximum",
                         "new absolute max cannot be smaller than max");
        return false;
    }
    self->_absolute_maximum = static_cast<DDS_UnsignedLong>(limit);
    return true;
}

void *SequenceElement(const KOLT_Sequence *self, const ElementOps &ops, size_t index) {
    if (self->_discontiguous_buffer == nullptr) {
        return static_cast<char *>(self->_contiguous_buffer) + index * ops.size();
    }
    // The array holds typed pointers, which may not be read as untyped ones.
    void *element = nullptr;
    std::memcpy(&element, self->_discontiguous_buffer + index, sizeof(element));
    return element;
}

bool SequenceCopyElements(KOLT_Sequence *self, const ElementOps &ops, const KOLT_Sequence *source) {
    if (self == source) return true;
    if (source->_length > KOLT_SEQUENCE_ABSOLUTE_MAXIMUM ||
        !SequenceSetLength(self, ops, static_cast<DDS_Long>(source->_length))) {
        return false;
    }
    for (size_t i = 0; i < source->_length; ++i) {
        void *const to = SequenceElement(self, ops, i);
        const void *const from = SequenceElement(source, ops, i);
        if (to == nullptr || from == nullptr) {
            LogSequenceError(ops, "copy_no_alloc",
                             "Unexpected NULL discontiguous buffer in the sequence");
            return false;
        }
        if (to != from && !ops.Copy(to, from)) {
            LogSequenceError(ops, "copy_no_alloc", "copy element");
            return false;
        }
    }
    return true;
}

bool SequenceCopyNoAlloc(KOLT_Sequence *self, const ElementOps &ops, const KOLT_Sequence *source) {
    if (!self->_owned && self->_maximum < source->_length) {
        LogSequenceError(ops, "copy_no_alloc", "sequence does not own its buffer");
        return false;
    }
    return SequenceCopyElements(self, ops, source);
}

bool SequenceCopy(KOLT_Sequence *self, const ElementOps &ops, const KOLT_Sequence *source) {
    if (self->_maximum < source->_length &&
        !SequenceSetMaximum(self, ops, static_cast<DDS_Long>(source->_maximum))) {
        return false;
    }
    return SequenceCopyNoAlloc(self, ops, source);
}

namespace {

bool CheckLoan(const KOLT_Sequence *self, const ElementOps &ops, const char *operation,
               const void *buffer, DDS_Long new_length, DDS_Long new_maximum) {
    const char *problem = nullptr;
    if (self->_maximum != 0) {
        problem = "max size must be 0";
    } else if (new_length < 0 || new_maximum < 0) {
        problem = "negative argument";
    } else if (new_length > new_maximum) {
        LogInsufficientSpace(ops, operation, static_cast<DDS_UnsignedLong>(new_maximum),
                             new_length);
        return false;
    } else if (buffer == nullptr && new_maximum > 0) {
        problem = "NULL buffer can't have non-zero maximum";
    } else if (static_cast<DDS_UnsignedLong>(new_maximum) > self->_absolute_maximum) {
        problem = "new max cannot be larger than absolute maximum";
    }
    if (problem == nullptr) return true;
    LogSequenceError(ops, operation, problem);
    return false;
}

bool InstallLoan(KOLT_Sequence *self, const ElementOps &ops, const char *operation,
                 void *contiguous, void **discontiguous, DDS_Long length, DDS_Long maximum) {
    self->_contiguous_buffer = contiguous;
    self->_discontiguous_buffer = discontiguous;
    self->_length = static_cast<DDS_UnsignedLong>(length);
    self->_maximum = static_cast<DDS_UnsignedLong>(maximum);
    self->_owned = DDS_BOOLEAN_FALSE;
    return CheckInvariants(self, ops, operation);
}

}  // namespace

bool SequenceLoanContiguous(KOLT_Sequence *self, const ElementOps &ops, void *buffer,
                            DDS_Long new_length, DDS_Long new_maximum) {
    constexpr const char *kOperation = "loan_contiguous";
    return CheckLoan(self, ops, kOperation, buffer, new_length, new_maximum) &&
           InstallLoan(self, ops, kOperation, buffer, nullptr, new_length, new_maximum);
}

bool SequenceLoanDiscontiguous(KOLT_Sequence *self, const ElementOps &ops, void **buffer,
                               DDS_Long new_length, DDS_Long new_maximum) {
    constexpr const char *kOperation = "loan_discontiguous";
    return CheckLoan(self, ops, kOperation, buffer, new_length, new_maximum) &&
           InstallLoan(self, ops, kOperation, nullptr, buffer, new_length, new_maximum);
}

bool SequenceUnloan(KOLT_Sequence *self, const ElementOps &ops) {
    if (self->_owned) {
        LogSequenceError(ops, "unloan", "buffer must be loaned");
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

void SequenceDeleteBuffer(const KOLT_Sequence *self, const ElementOps &ops, void *buffer,
                          size_t count) {
    if (buffer == nullptr) return;
    if (!ops.plain()) {
        const DDS_TypeDeallocationParams_t params = {
            self->_elementDeallocParams.delete_pointers,
            self->_elementDeallocParams.delete_optional_members};
        for (size_t i = 0; i < count; ++i) {
            ops.Finalize(static_cast<char *>(buffer) + i * ops.size(), params);
        }
    }
    std::free(buffer);
}

}  // namespace kolt::type
