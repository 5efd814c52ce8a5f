// SPDX-License-Identifier: Apache-2.0
// Initialisation, finalisation and copy of the logger's records, driven by their type codes.

#include "vur_dl/distlog.h"

#include "type/type_list.hpp"

#define VUR_DL_DEFINE_RECORD_OPERATIONS(T, type_name)                                             \
    DDS_Boolean T##_initialize(T *self) {                                                         \
        return T##_initialize_ex(self, DDS_BOOLEAN_TRUE, DDS_BOOLEAN_TRUE);                       \
    }                                                                                             \
    DDS_Boolean T##_initialize_ex(T *self, DDS_Boolean allocate_pointers,                         \
                                  DDS_Boolean allocate_memory) {                                  \
        const DDS_TypeAllocationParams_t params =                                                 \
            vur_dl::allocation_params(allocate_pointers, allocate_memory);                        \
        return T##_initialize_w_params(self, &params);                                            \
    }                                                                                             \
    DDS_Boolean T##_initialize_w_params(T *self, const DDS_TypeAllocationParams_t *params) {      \
        return vur_dl::initialize_record<T>(self, params);                                        \
    }                                                                                             \
    void T##_finalize(T *self) {                                                                  \
        T##_finalize_ex(self, DDS_BOOLEAN_TRUE);                                                  \
    }                                                                                             \
    DDS_Boolean T##_finalize_w_return(T *self) {                                                  \
        T##_finalize_ex(self, DDS_BOOLEAN_TRUE);                                                  \
        return DDS_BOOLEAN_TRUE;                                                                  \
    }                                                                                             \
    void T##_finalize_ex(T *self, DDS_Boolean delete_pointers) {                                  \
        const DDS_TypeDeallocationParams_t params = vur_dl::deallocation_params(delete_pointers); \
        T##_finalize_w_params(self, &params);                                                     \
    }                                                                                             \
    void T##_finalize_w_params(T *self, const DDS_TypeDeallocationParams_t *params) {             \
        vur_dl::finalize_record<T>(self, params);                                                 \
    }                                                                                             \
    /* No type has optional members. */                                                           \
    void T##_finalize_optional_members(T *, DDS_Boolean) {}                                       \
    DDS_Boolean T##_copy(T *destination, const T *source) {                                       \
        return vur_dl::copy_record<T>(destination, source);                                       \
    }

VUR_DL_FOR_EACH_TYPE(VUR_DL_DEFINE_RECORD_OPERATIONS)
