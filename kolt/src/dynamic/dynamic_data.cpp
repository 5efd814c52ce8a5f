// SPDX-License-Identifier: Apache-2.0
// Dynamic values: life cycle, comparison, and their bytes.

#include "kolt/dynamic_data.h"

#include <cstddef>

#include "dynamic/dynamic_value.hpp"
#include "kolt/os.h"
#include "kolt/type_plugin.h"

const DDS_DynamicDataProperty_t DDS_DYNAMIC_DATA_PROPERTY_DEFAULT = {DDS_AUTO_DATA_REPRESENTATION};

namespace {

constexpr DDS_TypeAllocationParams_t kAllocation = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
constexpr DDS_TypeDeallocationParams_t kDeallocation = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;

bool is_structured(const DDS_TypeCode *type) {
    return type != nullptr && (type->kind == DDS_TK_STRUCT || type->kind == DDS_TK_UNION) &&
           type->access != nullptr;
}

// Initial values into a record that has its buffers already.
bool reset(DDS_DynamicData &data) {
    DDS_TypeAllocationParams_t params = kAllocation;
    params.allocate_memory = DDS_BOOLEAN_FALSE;
    return KOLT_Record_initialize_w_params(data.type, data.record, &params);
}

}  // namespace

DDS_DynamicData *DDS_DynamicData_new(const DDS_TypeCode *type,
                                     const DDS_DynamicDataProperty_t *property) {
    if (!is_structured(type)) {
        return nullptr;
    }
    auto *const self =
        static_cast<DDS_DynamicData *>(KOLT_Heap_allocate_zeroed(sizeof(DDS_DynamicData)));
    if (self == nullptr) {
        return nullptr;
    }
    self->type = type;
    self->property = property != nullptr ? *property : DDS_DYNAMIC_DATA_PROPERTY_DEFAULT;
    self->programs = KOLT_TypePrograms_acquire(type);
    self->record = KOLT_Heap_allocate_zeroed(type->access->record_size);
    if (self->programs == nullptr || self->record == nullptr ||
        !KOLT_Record_initialize_w_params(type, self->record, &kAllocation)) {
        DDS_DynamicData_delete(self);
        return nullptr;
    }
    return self;
}

void DDS_DynamicData_delete(DDS_DynamicData *self) {
    if (self == nullptr) {
        return;
    }
    if (self->record != nullptr) {
        KOLT_Record_finalize_w_params(self->type, self->record, &kDeallocation);
    }
    KOLT_Heap_free(self->record);
    KOLT_TypePrograms_release(self->programs);
    KOLT_Heap_free(self);
}

const DDS_TypeCode *DDS_DynamicData_get_type(const DDS_DynamicData *self) {
    return self == nullptr ? nullptr : self->type;
}

DDS_ReturnCode_t DDS_DynamicData_clear_all_members(DDS_DynamicData *self) {
    if (self == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    return reset(*self) ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
}

DDS_ReturnCode_t DDS_DynamicData_copy(DDS_DynamicData *self, const DDS_DynamicData *source) {
    if (self == nullptr || source == nullptr || self->type != source->type) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    return KOLT_Record_copy(self->type, self->record, source->record)
               ? DDS_RETCODE_OK
               : DDS_RETCODE_OUT_OF_RESOURCES;
}

DDS_Boolean DDS_DynamicData_equals(const DDS_DynamicData *left, const DDS_DynamicData *right) {
    return left != nullptr && right != nullptr && left->type == right->type &&
           KOLT_Record_equals(left->type, left->record, right->record);
}

DDS_ReturnCode_t DDS_DynamicData_from_cdr_buffer(DDS_DynamicData *self, const DDS_Char *buffer,
                                                 DDS_UnsignedLong length) {
    if (self == nullptr || buffer == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    if (!reset(*self)) {
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
    if (!KOLT_Cdr_deserialize(self->programs, reinterpret_cast<const DDS_Octet *>(buffer), length,
                              self->record)) {
        reset(*self);
        return DDS_RETCODE_ERROR;
    }
    return DDS_RETCODE_OK;
}

DDS_ReturnCode_t DDS_DynamicData_to_cdr_buffer(const DDS_DynamicData *self, DDS_Char *buffer,
                                               DDS_UnsignedLong *length) {
    return DDS_DynamicData_to_cdr_buffer_ex(
        self, buffer, length,
        self == nullptr ? DDS_AUTO_DATA_REPRESENTATION : self->property.representation);
}

DDS_ReturnCode_t DDS_DynamicData_to_cdr_buffer_ex(const DDS_DynamicData *self, DDS_Char *buffer,
                                                  DDS_UnsignedLong *length,
                                                  DDS_DataRepresentationId_t representation) {
    if (self == nullptr || length == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    const DDS_UnsignedShort encapsulation =
        DDS_TypeCode_get_native_encapsulation(self->type, representation);
    if (encapsulation == KOLT_ENCAPSULATION_INVALID) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    const DDS_UnsignedLong capacity = *length;
    *length = KOLT_Cdr_serialized_size(self->programs, encapsulation, self->record);
    if (*length == 0) {
        return DDS_RETCODE_ERROR;
    }
    if (buffer == nullptr) {
        return DDS_RETCODE_OK;
    }
    if (capacity < *length) {
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
    std::size_t written = 0;
    return KOLT_Cdr_serialize(self->programs, encapsulation, self->record,
                              reinterpret_cast<DDS_Octet *>(buffer), capacity, &written)
               ? DDS_RETCODE_OK
               : DDS_RETCODE_ERROR;
}
