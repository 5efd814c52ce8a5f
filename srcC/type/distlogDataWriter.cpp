// SPDX-License-Identifier: Apache-2.0
// Typed data writers: the untyped writer for samples of one type.

#include "type/type_list.hpp"
#include "type/typed_entity.hpp"
#include "vur_dl/distlogSupport.h"

namespace {

// Returns the writer as a typed one: a record that holds the untyped writer and nothing else.
template <typename T, typename Writer>
Writer *narrow(DDS_DataWriter *writer, const char *method_name) noexcept {
    static_assert(sizeof(Writer) == sizeof(DDS_DataWriter));
    if (writer == nullptr) {
        vur_dl::log_error(method_name, "null writer");
        return nullptr;
    }
    if (!vur_dl::is_type(DDS_DataWriter_get_endpoint_type_name(writer), vur_dl::TypeOf<T>::kName)) {
        vur_dl::log_error(method_name, "wrong type writer");
        return nullptr;
    }
    return reinterpret_cast<Writer *>(writer);
}

template <typename Writer>
DDS_DataWriter *untyped(Writer *writer) noexcept {
    return writer == nullptr ? nullptr : &writer->_parent;
}

template <typename Writer>
DDS_DataWriter *widen(Writer *writer, const char *method_name) noexcept {
    if (writer == nullptr) {
        vur_dl::log_error(method_name, "null writer");
    }
    return untyped(writer);
}

DDS_ReturnCode_t refuse_loan(const char *method_name, const char *text) noexcept {
    vur_dl::log_error(method_name, text);
    return DDS_RETCODE_UNSUPPORTED;
}

}  // namespace

#define VUR_DL_DEFINE_WRITER_SAMPLES(T, type_name)                                            \
    T##DataWriter *T##DataWriter_narrow(DDS_DataWriter *writer) {                             \
        return narrow<T, T##DataWriter>(writer, __func__);                                    \
    }                                                                                         \
    DDS_DataWriter *T##DataWriter_as_datawriter(T##DataWriter *self) {                        \
        return widen(self, __func__);                                                         \
    }                                                                                         \
    T *T##DataWriter_create_data(T##DataWriter *self) {                                       \
        return vur_dl::require(self, __func__, "writer")                                      \
                   ? static_cast<T *>(DDS_DataWriter_create_data(untyped(self)))              \
                   : nullptr;                                                                 \
    }                                                                                         \
    T *T##DataWriter_create_data_w_params(T##DataWriter *self,                                \
                                          const DDS_TypeAllocationParams_t *alloc_params) {   \
        return vur_dl::require(self, __func__, "writer") &&                                   \
                       vur_dl::require(alloc_params, __func__, "alloc_params")                \
                   ? T##PluginSupport_create_data_w_params(alloc_params)                      \
                   : nullptr;                                                                 \
    }                                                                                         \
    DDS_ReturnCode_t T##DataWriter_delete_data(T##DataWriter *self, T *sample) {              \
        return vur_dl::require(self, __func__, "writer") &&                                   \
                       vur_dl::require(sample, __func__, "sample")                            \
                   ? DDS_DataWriter_delete_data(untyped(self), sample)                        \
                   : DDS_RETCODE_BAD_PARAMETER;                                               \
    }                                                                                         \
    DDS_ReturnCode_t T##DataWriter_delete_data_w_params(                                      \
        T##DataWriter *self, T *sample, const DDS_TypeDeallocationParams_t *dealloc_params) { \
        if (!vur_dl::require(self, __func__, "writer") ||                                     \
            !vur_dl::require(sample, __func__, "sample") ||                                   \
            !vur_dl::require(dealloc_params, __func__, "dealloc_params")) {                   \
            return DDS_RETCODE_BAD_PARAMETER;                                                 \
        }                                                                                     \
        T##PluginSupport_destroy_data_w_params(sample, dealloc_params);                       \
        return DDS_RETCODE_OK;                                                                \
    }                                                                                         \
    DDS_ReturnCode_t T##DataWriter_get_loan(T##DataWriter *, T **) {                          \
        return refuse_loan(__func__,                                                          \
                           "get_loan() only supported for topic-types with transfer "         \
                           "mode shmem-ref");                                                 \
    }                                                                                         \
    DDS_ReturnCode_t T##DataWriter_discard_loan(T##DataWriter *, T *) {                       \
        return refuse_loan(__func__,                                                          \
                           "discard_loan() only supported for topic-types with "              \
                           "transfer mode shmem-ref");                                        \
    }
VUR_DL_FOR_EACH_TOPIC_TYPE(VUR_DL_DEFINE_WRITER_SAMPLES)

// write, unregister_instance and dispose come in the same three forms.
#define VUR_DL_DEFINE_WRITER_ACTION(T, action)                                                  \
    DDS_ReturnCode_t T##DataWriter_##action(T##DataWriter *self, const T *sample,               \
                                            DDS_InstanceHandle_t handle) {                      \
        return DDS_DataWriter_##action(untyped(self), sample, handle);                          \
    }                                                                                           \
    DDS_ReturnCode_t T##DataWriter_##action##_w_timestamp(T##DataWriter *self, const T *sample, \
                                                          DDS_InstanceHandle_t handle,          \
                                                          const DDS_Time_t *source_timestamp) { \
        return DDS_DataWriter_##action##_w_timestamp(untyped(self), sample, handle,             \
                                                     source_timestamp);                         \
    }                                                                                           \
    DDS_ReturnCode_t T##DataWriter_##action##_w_params(T##DataWriter *self, const T *sample,    \
                                                       const DDS_WriteParams_t *params) {       \
        return DDS_DataWriter_##action##_w_params(untyped(self), sample, params);               \
    }

#define VUR_DL_DEFINE_WRITER_ACTIONS(T, type_name) \
    VUR_DL_DEFINE_WRITER_ACTION(T, write)          \
    VUR_DL_DEFINE_WRITER_ACTION(T, dispose)        \
    VUR_DL_DEFINE_WRITER_ACTION(T, unregister_instance)
VUR_DL_FOR_EACH_TOPIC_TYPE(VUR_DL_DEFINE_WRITER_ACTIONS)

#define VUR_DL_DEFINE_WRITER_INSTANCES(T, type_name)                                               \
    DDS_InstanceHandle_t T##DataWriter_register_instance(T##DataWriter *self, const T *sample) {   \
        return DDS_DataWriter_register_instance(untyped(self), sample);                            \
    }                                                                                              \
    DDS_InstanceHandle_t T##DataWriter_register_instance_w_timestamp(                              \
        T##DataWriter *self, const T *sample, const DDS_Time_t *source_timestamp) {                \
        return DDS_DataWriter_register_instance_w_timestamp(untyped(self), sample,                 \
                                                            source_timestamp);                     \
    }                                                                                              \
    DDS_InstanceHandle_t T##DataWriter_register_instance_w_params(                                 \
        T##DataWriter *self, const T *sample, const DDS_WriteParams_t *params) {                   \
        return DDS_DataWriter_register_instance_w_params(untyped(self), sample, params);           \
    }                                                                                              \
    DDS_ReturnCode_t T##DataWriter_get_key_value(T##DataWriter *self, T *key_holder,               \
                                                 DDS_InstanceHandle_t handle) {                    \
        return DDS_DataWriter_get_key_value(untyped(self), key_holder, handle);                    \
    }                                                                                              \
    DDS_InstanceHandle_t T##DataWriter_lookup_instance(T##DataWriter *self, const T *key_holder) { \
        return DDS_DataWriter_lookup_instance(untyped(self), key_holder);                          \
    }
VUR_DL_FOR_EACH_TOPIC_TYPE(VUR_DL_DEFINE_WRITER_INSTANCES)
