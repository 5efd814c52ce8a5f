// SPDX-License-Identifier: Apache-2.0
// The exported untyped sequence operations: check the arguments, initialise lazily, call the core.
#include "kolt/sequence_ops.h"

#include <cstring>

#include "type/sequence/sequence_core.hpp"

namespace {

using kolt::type::ElementOps;
using kolt::type::log_sequence_error;

// Elements with the functions of the public description.
class DescribedElementOps final : public ElementOps {
  public:
    explicit DescribedElementOps(const KOLT_SequenceElementType *type)
        : ElementOps(type->sequence_name, type->size,
                     type->initialize_w_params == nullptr && type->finalize_w_params == nullptr &&
                         type->copy == nullptr),
          type_(type) {}

    bool initialize(void *element, const DDS_TypeAllocationParams_t &params) const override {
        return type_->initialize_w_params == nullptr ||
               type_->initialize_w_params(element, &params) != DDS_BOOLEAN_FALSE;
    }
    void finalize(void *element, const DDS_TypeDeallocationParams_t &params) const override {
        if (type_->finalize_w_params != nullptr) {
            type_->finalize_w_params(element, &params);
        }
    }
    bool copy(void *destination, const void *source) const override {
        if (type_->copy != nullptr) {
            return type_->copy(destination, source) != DDS_BOOLEAN_FALSE;
        }
        std::memcpy(destination, source, type_->size);
        return true;
    }

  private:
    const KOLT_SequenceElementType *type_;
};

// False, reported, for a NULL argument called `name`.
bool require(const void *argument, const KOLT_SequenceElementType *type, const char *operation,
             const char *name) {
    if (argument != nullptr) {
        return true;
    }
    static constexpr char kPrefix[] = "bad parameter: ";
    char text[64] = {};
    std::strncpy(text, kPrefix, sizeof(text) - 1);
    std::strncat(text, name, sizeof(text) - sizeof(kPrefix));
    log_sequence_error(type->sequence_name, operation, text);
    return false;
}

// The start of every public operation: `self` is there, and initialised.
bool open(const KOLT_Sequence *self, const KOLT_SequenceElementType *type, const char *operation) {
    if (!require(self, type, operation, "self")) {
        return false;
    }
    kolt::type::sequence_ensure_initialized(self);
    return true;
}

bool index_in_range(const KOLT_Sequence *self, const KOLT_SequenceElementType *type,
                    const char *operation, DDS_Long index) {
    if (index >= 0 && static_cast<DDS_UnsignedLong>(index) < self->_length) {
        return true;
    }
    log_sequence_error(type->sequence_name, operation, "index out of bounds");
    return false;
}

bool params_settable(const KOLT_Sequence *self, const KOLT_SequenceElementType *type,
                     const char *operation, const char *problem) {
    if (self->_maximum == 0) {
        return true;
    }
    log_sequence_error(type->sequence_name, operation, problem);
    return false;
}

}  // namespace

DDS_Boolean KOLT_Sequence_initialize(KOLT_Sequence *self, const KOLT_SequenceElementType *type) {
    if (!require(self, type, "initialize", "self")) {
        return DDS_BOOLEAN_FALSE;
    }
    kolt::type::sequence_reset(self);
    return DDS_BOOLEAN_TRUE;
}

DDS_Boolean KOLT_Sequence_finalize(KOLT_Sequence *self, const KOLT_SequenceElementType *type) {
    return open(self, type, "finalize") &&
           kolt::type::sequence_set_maximum(self, DescribedElementOps(type), 0);
}

DDS_UnsignedLong KOLT_Sequence_get_maximum(const KOLT_Sequence *self,
                                           const KOLT_SequenceElementType *type) {
    return open(self, type, "get_maximum") ? self->_maximum : 0;
}

DDS_Boolean KOLT_Sequence_set_maximum(KOLT_Sequence *self, const KOLT_SequenceElementType *type,
                                      DDS_Long new_maximum) {
    return open(self, type, "set_maximum") &&
           kolt::type::sequence_set_maximum(self, DescribedElementOps(type), new_maximum);
}

DDS_UnsignedLong KOLT_Sequence_get_length(const KOLT_Sequence *self,
                                          const KOLT_SequenceElementType *type) {
    return open(self, type, "get_length") ? self->_length : 0;
}

DDS_Boolean KOLT_Sequence_set_length(KOLT_Sequence *self, const KOLT_SequenceElementType *type,
                                     DDS_Long new_length) {
    return open(self, type, "set_length") &&
           kolt::type::sequence_set_length(self, DescribedElementOps(type), new_length);
}

DDS_Boolean KOLT_Sequence_ensure_length(KOLT_Sequence *self, const KOLT_SequenceElementType *type,
                                        DDS_Long length, DDS_Long maximum) {
    return open(self, type, "ensure_length") &&
           kolt::type::sequence_ensure_length(self, DescribedElementOps(type), length, maximum);
}

DDS_Boolean KOLT_Sequence_set_absolute_maximum(KOLT_Sequence *self,
                                               const KOLT_SequenceElementType *type,
                                               DDS_Long absolute_maximum) {
    return open(self, type, "set_absolute_maximum") &&
           kolt::type::sequence_set_absolute_maximum(self, type->sequence_name, absolute_maximum);
}

void *KOLT_Sequence_get(const KOLT_Sequence *self, const KOLT_SequenceElementType *type,
                        DDS_Long index) {
    if (!open(self, type, "get")) {
        return nullptr;
    }
    if (index_in_range(self, type, "get", index)) {
        return kolt::type::sequence_element(self, type->size, static_cast<std::size_t>(index));
    }
    // Element 0, valid or not; the pointers of a loan are good for valid elements only.
    if (self->_contiguous_buffer == nullptr && self->_length == 0) {
        return nullptr;
    }
    if (self->_maximum == 0) {
        return nullptr;
    }
    return kolt::type::sequence_element(self, type->size, 0);
}

void *KOLT_Sequence_get_reference(const KOLT_Sequence *self, const KOLT_SequenceElementType *type,
                                  DDS_Long index) {
    if (!open(self, type, "get_reference")) {
        return nullptr;
    }
    if (!index_in_range(self, type, "get_reference", index)) {
        return nullptr;
    }
    return kolt::type::sequence_element(self, type->size, static_cast<std::size_t>(index));
}

KOLT_Sequence *KOLT_Sequence_copy(KOLT_Sequence *self, const KOLT_SequenceElementType *type,
                                  const KOLT_Sequence *source) {
    if (!open(self, type, "copy") || !require(source, type, "copy", "src")) {
        return nullptr;
    }
    kolt::type::sequence_ensure_initialized(source);
    return kolt::type::sequence_copy(self, DescribedElementOps(type), source) ? self : nullptr;
}

DDS_Boolean KOLT_Sequence_copy_no_alloc(KOLT_Sequence *self, const KOLT_SequenceElementType *type,
                                        const KOLT_Sequence *source) {
    if (!open(self, type, "copy_no_alloc") || !require(source, type, "copy_no_alloc", "src")) {
        return DDS_BOOLEAN_FALSE;
    }
    kolt::type::sequence_ensure_initialized(source);
    return kolt::type::sequence_copy_no_alloc(self, DescribedElementOps(type), source);
}

DDS_Boolean KOLT_Sequence_copy_no_allocI(KOLT_Sequence *self, const KOLT_SequenceElementType *type,
                                         const KOLT_Sequence *source) {
    return require(self, type, "copy_no_allocI", "self") &&
           require(source, type, "copy_no_allocI", "src") &&
           kolt::type::sequence_copy_elements(self, DescribedElementOps(type), source);
}

DDS_Boolean KOLT_Sequence_from_array(KOLT_Sequence *self, const KOLT_SequenceElementType *type,
                                     const void *array, DDS_Long length) {
    constexpr const char *kOperation = "from_array";
    if (!open(self, type, kOperation)) {
        return DDS_BOOLEAN_FALSE;
    }
    KOLT_Sequence loan = DDS_SEQUENCE_INITIALIZER;
    // The loan is only read.
    if (!kolt::type::sequence_loan_contiguous(&loan, type->sequence_name, const_cast<void *>(array),
                                              length, length)) {
        log_sequence_error(type->sequence_name, kOperation, "loan contiguous array");
        return DDS_BOOLEAN_FALSE;
    }
    const bool copied = kolt::type::sequence_copy(self, DescribedElementOps(type), &loan);
    if (!copied) {
        log_sequence_error(type->sequence_name, kOperation, "copy array sequence");
    }
    const bool returned = kolt::type::sequence_unloan(&loan, type->sequence_name);
    if (!returned) {
        log_sequence_error(type->sequence_name, kOperation, "unloan contiguous array");
    }
    return copied && returned;
}

DDS_Boolean KOLT_Sequence_to_array(const KOLT_Sequence *self, const KOLT_SequenceElementType *type,
                                   void *array, DDS_Long length) {
    constexpr const char *kOperation = "to_array";
    if (!open(self, type, kOperation)) {
        return DDS_BOOLEAN_FALSE;
    }
    KOLT_Sequence loan = DDS_SEQUENCE_INITIALIZER;
    if (!kolt::type::sequence_loan_contiguous(&loan, type->sequence_name, array, length, length)) {
        log_sequence_error(type->sequence_name, kOperation, "loan contiguous array");
        return DDS_BOOLEAN_FALSE;
    }
    const bool copied = kolt::type::sequence_copy_no_alloc(&loan, DescribedElementOps(type), self);
    if (!copied) {
        log_sequence_error(type->sequence_name, kOperation, "copying array sequence");
    }
    const bool returned = kolt::type::sequence_unloan(&loan, type->sequence_name);
    if (!returned) {
        log_sequence_error(type->sequence_name, kOperation, "unloan contiguous array");
    }
    return copied && returned;
}

DDS_Boolean KOLT_Sequence_loan_contiguous(KOLT_Sequence *self, const KOLT_SequenceElementType *type,
                                          void *buffer, DDS_Long new_length, DDS_Long new_maximum) {
    return open(self, type, "loan_contiguous") &&
           kolt::type::sequence_loan_contiguous(self, type->sequence_name, buffer, new_length,
                                                new_maximum);
}

DDS_Boolean KOLT_Sequence_loan_discontiguous(KOLT_Sequence *self,
                                             const KOLT_SequenceElementType *type, void **buffer,
                                             DDS_Long new_length, DDS_Long new_maximum) {
    return open(self, type, "loan_discontiguous") &&
           kolt::type::sequence_loan_discontiguous(self, type->sequence_name, buffer, new_length,
                                                   new_maximum);
}

DDS_Boolean KOLT_Sequence_unloan(KOLT_Sequence *self, const KOLT_SequenceElementType *type) {
    return open(self, type, "unloan") && kolt::type::sequence_unloan(self, type->sequence_name);
}

void *KOLT_Sequence_get_contiguous_buffer(const KOLT_Sequence *self,
                                          const KOLT_SequenceElementType *type) {
    return open(self, type, "get_contiguous_buffer") ? self->_contiguous_buffer : nullptr;
}

void **KOLT_Sequence_get_discontiguous_buffer(const KOLT_Sequence *self,
                                              const KOLT_SequenceElementType *type) {
    return open(self, type, "get_discontiguous_buffer") ? self->_discontiguous_buffer : nullptr;
}

void *KOLT_Sequence_get_contiguous_bufferI(const KOLT_Sequence *self,
                                           const KOLT_SequenceElementType *type) {
    if (!require(self, type, "get_contiguous_bufferI", "self")) {
        return nullptr;
    }
    return self->_contiguous_buffer;
}

void **KOLT_Sequence_get_discontiguous_bufferI(const KOLT_Sequence *self,
                                               const KOLT_SequenceElementType *type) {
    if (!require(self, type, "get_discontiguous_bufferI", "self")) {
        return nullptr;
    }
    return self->_discontiguous_buffer;
}

DDS_Boolean KOLT_Sequence_has_ownership(const KOLT_Sequence *self,
                                        const KOLT_SequenceElementType *type) {
    return open(self, type, "has_ownership") && self->_owned;
}

DDS_Boolean KOLT_Sequence_set_element_pointers_allocation(KOLT_Sequence *self,
                                                          const KOLT_SequenceElementType *type,
                                                          DDS_Boolean allocate) {
    constexpr const char *kOperation = "set_element_pointers_allocation";
    if (!open(self, type, kOperation) ||
        !params_settable(self, type, kOperation,
                         "Pointers allocation policy can be configured only when the maximum size "
                         "of the sequence is 0")) {
        return DDS_BOOLEAN_FALSE;
    }
    self->_elementAllocParams.allocate_pointers = allocate;
    return DDS_BOOLEAN_TRUE;
}

DDS_Boolean KOLT_Sequence_get_element_pointers_allocation(const KOLT_Sequence *self,
                                                          const KOLT_SequenceElementType *type) {
    if (!open(self, type, "get_element_pointers_allocation")) {
        return DDS_BOOLEAN_FALSE;
    }
    return self->_elementAllocParams.allocate_pointers;
}

DDS_Boolean KOLT_Sequence_set_element_allocation_params(
    KOLT_Sequence *self, const KOLT_SequenceElementType *type,
    const DDS_SeqElementTypeAllocationParams_t *params) {
    constexpr const char *kOperation = "set_element_allocation_params";
    if (!open(self, type, kOperation) || !require(params, type, kOperation, "params") ||
        !params_settable(
            self, type, kOperation,
            "Member allocation parameters can be configured only when the maximum size "
            "of the sequence is 0")) {
        return DDS_BOOLEAN_FALSE;
    }
    self->_elementAllocParams = *params;
    return DDS_BOOLEAN_TRUE;
}

const DDS_SeqElementTypeAllocationParams_t *KOLT_Sequence_get_element_allocation_params(
    const KOLT_Sequence *self, const KOLT_SequenceElementType *type) {
    if (!open(self, type, "get_element_allocation_params")) {
        return nullptr;
    }
    return &self->_elementAllocParams;
}

DDS_Boolean KOLT_Sequence_set_element_deallocation_params(
    KOLT_Sequence *self, const KOLT_SequenceElementType *type,
    const DDS_SeqElementTypeDeallocationParams_t *params) {
    constexpr const char *kOperation = "set_element_deallocation_params";
    if (!open(self, type, kOperation) || !require(params, type, kOperation, "params")) {
        return DDS_BOOLEAN_FALSE;
    }
    self->_elementDeallocParams = *params;
    return DDS_BOOLEAN_TRUE;
}

const DDS_SeqElementTypeDeallocationParams_t *KOLT_Sequence_get_element_deallocation_params(
    const KOLT_Sequence *self, const KOLT_SequenceElementType *type) {
    if (!open(self, type, "get_element_deallocation_params")) {
        return nullptr;
    }
    return &self->_elementDeallocParams;
}

DDS_Boolean KOLT_Sequence_get_read_tokenI(const KOLT_Sequence *self,
                                          const KOLT_SequenceElementType *type, void **token1,
                                          void **token2) {
    constexpr const char *kOperation = "get_read_tokenI";
    if (!require(self, type, kOperation, "self")) {
        return DDS_BOOLEAN_FALSE;
    }
    if (token1 == nullptr || token2 == nullptr) {
        log_sequence_error(type->sequence_name, kOperation, "token (NULL)");
        return DDS_BOOLEAN_FALSE;
    }
    *token1 = self->_read_token1;
    *token2 = self->_read_token2;
    return DDS_BOOLEAN_TRUE;
}

DDS_Boolean KOLT_Sequence_set_read_tokenI(KOLT_Sequence *self, const KOLT_SequenceElementType *type,
                                          void *token1, void *token2) {
    if (!require(self, type, "set_read_tokenI", "self")) {
        return DDS_BOOLEAN_FALSE;
    }
    self->_read_token1 = token1;
    self->_read_token2 = token2;
    return DDS_BOOLEAN_TRUE;
}

void KOLT_Sequence_delete_bufferI(KOLT_Sequence *self, const KOLT_SequenceElementType *type,
                                  void *buffer, DDS_UnsignedLong count) {
    if (!require(self, type, "delete_bufferI", "self")) {
        return;
    }
    kolt::type::sequence_delete_buffer(self, DescribedElementOps(type), buffer, count);
}

DDS_Boolean KOLT_Sequence_check_invariantsI(const KOLT_Sequence *self,
                                            const KOLT_SequenceElementType *type,
                                            const char *function_name) {
    return require(self, type, "check_invariantsI", "self") &&
           kolt::type::sequence_check_invariants(self, function_name);
}
