// SPDX-License-Identifier: Apache-2.0
// DDS_ThreadSettings_t: the record's life, copy and comparison.

#include "kolt/thread_settings.h"

namespace {

bool equal_lists(const DDS_LongSeq &left, const DDS_LongSeq &right) {
    const DDS_UnsignedLong length = DDS_LongSeq_get_length(&left);
    if (length != DDS_LongSeq_get_length(&right)) {
        return false;
    }
    for (DDS_UnsignedLong i = 0; i < length; ++i) {
        const auto index = static_cast<DDS_Long>(i);
        if (DDS_LongSeq_get(&left, index) != DDS_LongSeq_get(&right, index)) {
            return false;
        }
    }
    return true;
}

}  // namespace

DDS_Boolean DDS_ThreadSettings_t_initialize(DDS_ThreadSettings_t *self) {
    if (self == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    *self = DDS_ThreadSettings_t DDS_THREAD_SETTINGS_DEFAULT;
    return DDS_BOOLEAN_TRUE;
}

DDS_Boolean DDS_ThreadSettings_t_finalize(DDS_ThreadSettings_t *self) {
    return self != nullptr ? DDS_LongSeq_finalize(&self->cpu_list) : DDS_BOOLEAN_FALSE;
}

DDS_Boolean DDS_ThreadSettings_t_copy(DDS_ThreadSettings_t *self,
                                      const DDS_ThreadSettings_t *source) {
    if (self == nullptr || source == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    if (self == source) {
        return DDS_BOOLEAN_TRUE;
    }
    // The list first: it alone can fail.
    if (DDS_LongSeq_copy(&self->cpu_list, &source->cpu_list) == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    self->mask = source->mask;
    self->priority = source->priority;
    self->stack_size = source->stack_size;
    self->cpu_rotation = source->cpu_rotation;
    return DDS_BOOLEAN_TRUE;
}

DDS_Boolean DDS_ThreadSettings_is_equal(const DDS_ThreadSettings_t *left,
                                        const DDS_ThreadSettings_t *right) {
    if (left == nullptr || right == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    const bool equal = left->mask == right->mask && left->priority == right->priority &&
                       left->stack_size == right->stack_size &&
                       left->cpu_rotation == right->cpu_rotation &&
                       equal_lists(left->cpu_list, right->cpu_list);
    return equal ? DDS_BOOLEAN_TRUE : DDS_BOOLEAN_FALSE;
}
