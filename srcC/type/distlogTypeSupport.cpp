// SPDX-License-Identifier: Apache-2.0
// Type support of the four topic types.

#include "type/type_list.hpp"
#include "vur_dl/distlogSupport.h"

namespace {

DDS_ReturnCode_t result_of(DDS_Boolean done) noexcept {
    return done ? DDS_RETCODE_OK : DDS_RETCODE_ERROR;
}

// Registers a type. The participant keeps a copy of the plugin, so the one made here is deleted.
DDS_ReturnCode_t register_type(DDS_DomainParticipant *participant, const char *type_name,
                               KOLT_TypePlugin *(*new_plugin)(void),
                               void (*delete_plugin)(KOLT_TypePlugin *)) noexcept {
    if (participant == nullptr) {
        return DDS_RETCODE_ERROR;
    }
    KOLT_TypePlugin *const plugin = new_plugin();
    if (plugin == nullptr) {
        return DDS_RETCODE_ERROR;
    }
    const DDS_ReturnCode_t result =
        DDS_DomainParticipant_register_type(participant, type_name, plugin, nullptr);
    delete_plugin(plugin);
    return result;
}

DDS_ReturnCode_t unregister_type(DDS_DomainParticipant *participant,
                                 const char *type_name) noexcept {
    if (participant == nullptr) {
        return DDS_RETCODE_ERROR;
    }
    return DDS_DomainParticipant_unregister_type(participant, type_name);
}

}  // namespace

#define VUR_DL_DEFINE_REGISTRATION(T, type_name_)                                       \
    DDS_ReturnCode_t T##TypeSupport_register_type(DDS_DomainParticipant *participant,   \
                                                  const char *type_name) {              \
        return register_type(participant, type_name, T##Plugin_new, T##Plugin_delete);  \
    }                                                                                   \
    DDS_ReturnCode_t T##TypeSupport_unregister_type(DDS_DomainParticipant *participant, \
                                                    const char *type_name) {            \
        return unregister_type(participant, type_name);                                 \
    }                                                                                   \
    const char *T##TypeSupport_get_type_name(void) {                                    \
        return vur_dl::TypeOf<T>::kName;                                                \
    }                                                                                   \
    const DDS_TypeCode *T##TypeSupport_get_typecode(void) {                             \
        return T##_get_typecode();                                                      \
    }                                                                                   \
    void T##TypeSupport_finalize(void) {}
VUR_DL_FOR_EACH_TOPIC_TYPE(VUR_DL_DEFINE_REGISTRATION)

#define VUR_DL_DEFINE_SAMPLE_SUPPORT(T, type_name)                                           \
    T *T##TypeSupport_create_data(void) {                                                    \
        return T##PluginSupport_create_data();                                               \
    }                                                                                        \
    T *T##TypeSupport_create_data_ex(DDS_Boolean allocate_pointers) {                        \
        return T##PluginSupport_create_data_ex(allocate_pointers);                           \
    }                                                                                        \
    T *T##TypeSupport_create_data_w_params(const DDS_TypeAllocationParams_t *params) {       \
        return T##PluginSupport_create_data_w_params(params);                                \
    }                                                                                        \
    DDS_ReturnCode_t T##TypeSupport_delete_data(T *sample) {                                 \
        T##PluginSupport_destroy_data(sample);                                               \
        return DDS_RETCODE_OK;                                                               \
    }                                                                                        \
    DDS_ReturnCode_t T##TypeSupport_delete_data_ex(T *sample, DDS_Boolean delete_pointers) { \
        T##PluginSupport_destroy_data_ex(sample, delete_pointers);                           \
        return DDS_RETCODE_OK;                                                               \
    }                                                                                        \
    DDS_ReturnCode_t T##TypeSupport_delete_data_w_params(                                    \
        T *sample, const DDS_TypeDeallocationParams_t *params) {                             \
        T##PluginSupport_destroy_data_w_params(sample, params);                              \
        return DDS_RETCODE_OK;                                                               \
    }                                                                                        \
    DDS_ReturnCode_t T##TypeSupport_copy_data(T *destination, const T *source) {             \
        return result_of(T##_copy(destination, source));                                     \
    }                                                                                        \
    void T##TypeSupport_print_data(const T *sample) {                                        \
        T##PluginSupport_print_data(sample, nullptr, 0);                                     \
    }
VUR_DL_FOR_EACH_TOPIC_TYPE(VUR_DL_DEFINE_SAMPLE_SUPPORT)

#define VUR_DL_DEFINE_RECORD_SUPPORT(T, type_name)                                               \
    DDS_ReturnCode_t T##TypeSupport_initialize_data(T *sample) {                                 \
        return result_of(T##_initialize(sample));                                                \
    }                                                                                            \
    DDS_ReturnCode_t T##TypeSupport_initialize_data_ex(T *sample, DDS_Boolean allocate_pointers, \
                                                       DDS_Boolean allocate_memory) {            \
        return result_of(T##_initialize_ex(sample, allocate_pointers, allocate_memory));         \
    }                                                                                            \
    DDS_ReturnCode_t T##TypeSupport_initialize_data_w_params(                                    \
        T *sample, const DDS_TypeAllocationParams_t *params) {                                   \
        return result_of(T##_initialize_w_params(sample, params));                               \
    }                                                                                            \
    DDS_ReturnCode_t T##TypeSupport_finalize_data(T *sample) {                                   \
        T##_finalize(sample);                                                                    \
        return DDS_RETCODE_OK;                                                                   \
    }                                                                                            \
    DDS_ReturnCode_t T##TypeSupport_finalize_data_ex(T *sample, DDS_Boolean delete_pointers) {   \
        T##_finalize_ex(sample, delete_pointers);                                                \
        return DDS_RETCODE_OK;                                                                   \
    }                                                                                            \
    DDS_ReturnCode_t T##TypeSupport_finalize_data_w_params(                                      \
        T *sample, const DDS_TypeDeallocationParams_t *params) {                                 \
        T##_finalize_w_params(sample, params);                                                   \
        return DDS_RETCODE_OK;                                                                   \
    }
VUR_DL_FOR_EACH_TOPIC_TYPE(VUR_DL_DEFINE_RECORD_SUPPORT)

#define VUR_DL_DEFINE_CONVERSION_SUPPORT(T, type_name)                                             \
    DDS_Boolean T##TypeSupport_serialize_data_to_cdr_buffer(                                       \
        DDS_Char *buffer, DDS_UnsignedLong *length, const T *sample) {                             \
        return T##Plugin_serialize_to_cdr_buffer(buffer, length, sample);                          \
    }                                                                                              \
    DDS_Boolean T##TypeSupport_serialize_data_to_cdr_buffer_ex(                                    \
        DDS_Char *buffer, DDS_UnsignedLong *length, const T *sample,                               \
        DDS_DataRepresentationId_t representation) {                                               \
        return T##Plugin_serialize_to_cdr_buffer_ex(buffer, length, sample, representation);       \
    }                                                                                              \
    DDS_Boolean T##TypeSupport_deserialize_data_from_cdr_buffer(T *sample, const DDS_Char *buffer, \
                                                                DDS_UnsignedLong length) {         \
        return T##Plugin_deserialize_from_cdr_buffer(sample, buffer, length);                      \
    }                                                                                              \
    DDS_ReturnCode_t T##TypeSupport_data_to_string(const T *sample, DDS_Char *string,              \
                                                   DDS_UnsignedLong *length,                       \
                                                   const DDS_PrintFormatProperty *property) {      \
        return T##Plugin_data_to_string(sample, string, length, property);                         \
    }
VUR_DL_FOR_EACH_TOPIC_TYPE(VUR_DL_DEFINE_CONVERSION_SUPPORT)
