// SPDX-License-Identifier: Apache-2.0
// Samples and key holders: made and freed, converted to bytes and to text.

#include <memory>

#include "kolt/config_logger.h"
#include "kolt/dynamic_data.h"
#include "kolt/os.h"
#include "type/plugin_common.hpp"
#include "type/type_list.hpp"
#include "vur_dl/distlogPlugin.h"

namespace vur_dl {
namespace {

// ---- Samples ----------------------------------------------------------------------------------

// Frees a record and, as the parameters say, what it owns.
template <typename T>
void destroy_record(T *record, const DDS_TypeDeallocationParams_t &params) noexcept {
    if (record != nullptr) {
        finalize_record<T>(record, &params);
        KOLT_Heap_free(record);
    }
}

// Returns a new record. A record whose initialisation failed is finalised as `undo` says.
template <typename T>
T *create_record(const DDS_TypeAllocationParams_t &params,
                 const DDS_TypeDeallocationParams_t &undo) noexcept {
    auto *const record = static_cast<T *>(KOLT_Heap_allocate_zeroed(sizeof(T)));
    if (record != nullptr && !initialize_record<T>(record, &params)) {
        destroy_record(record, undo);
        return nullptr;
    }
    return record;
}

template <typename T>
T *create_record_ex(DDS_Boolean allocate_pointers) noexcept {
    return create_record<T>(allocation_params(allocate_pointers, DDS_BOOLEAN_TRUE),
                            deallocation_params(DDS_BOOLEAN_TRUE));
}

template <typename T>
T *create_record_with_params(const DDS_TypeAllocationParams_t *params,
                             const char *method_name) noexcept {
    if (params == nullptr) {
        return nullptr;
    }
    if (!params->allocate_memory) {
        KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_API, KOLT_CONFIG_LOG_LEVEL_ERROR, method_name,
                         "not assignable: %s is %s", "alloc_params->allocate_memory", "false");
        return nullptr;
    }
    return create_record<T>(*params, {params->allocate_pointers, params->allocate_pointers});
}

template <typename T>
void destroy_record_with_params(T *record, const DDS_TypeDeallocationParams_t *params) noexcept {
    destroy_record(record, params != nullptr ? *params : deallocation_params(DDS_BOOLEAN_TRUE));
}

// ---- Bytes ------------------------------------------------------------------------------------

DDS_Boolean serialize(const KOLT_TypePrograms *programs, DDS_Char *buffer, DDS_UnsignedLong *length,
                      const void *sample, DDS_DataRepresentationId_t representation) noexcept {
    if (length == nullptr || programs == nullptr || sample == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    const DDS_UnsignedShort encapsulation =
        DDS_TypeCode_get_native_encapsulation(KOLT_TypePrograms_type(programs), representation);
    if (encapsulation == KOLT_ENCAPSULATION_INVALID) {
        return DDS_BOOLEAN_FALSE;
    }
    if (buffer == nullptr) {
        *length = KOLT_Cdr_serialized_size(programs, encapsulation, sample);
        return *length != 0;
    }
    std::size_t written = 0;
    if (!KOLT_Cdr_serialize(programs, encapsulation, sample, reinterpret_cast<DDS_Octet *>(buffer),
                            *length, &written)) {
        return DDS_BOOLEAN_FALSE;
    }
    *length = static_cast<DDS_UnsignedLong>(written);
    return DDS_BOOLEAN_TRUE;
}

template <typename T>
DDS_Boolean deserialize(T *sample, const DDS_Char *buffer, DDS_UnsignedLong length) noexcept {
    const KOLT_TypePrograms *const programs = programs_of<T>();
    if (programs == nullptr || sample == nullptr || buffer == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    return KOLT_Cdr_deserialize(programs, reinterpret_cast<const DDS_Octet *>(buffer), length,
                                sample);
}

// ---- Text -------------------------------------------------------------------------------------

struct HeapDeleter {
    void operator()(void *memory) const noexcept { KOLT_Heap_free(memory); }
};
struct DynamicDataDeleter {
    void operator()(DDS_DynamicData *data) const noexcept { DDS_DynamicData_delete(data); }
};

// Renders the sample as text: converts it to bytes, these to dynamic data, and formats those.
DDS_ReturnCode_t to_string(const DDS_TypeCode *code, const KOLT_TypePrograms *programs,
                           const void *sample, DDS_Char *string, DDS_UnsignedLong *length,
                           const DDS_PrintFormatProperty *property) noexcept {
    if (sample == nullptr || length == nullptr || property == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    DDS_UnsignedLong size = 0;
    if (!serialize(programs, nullptr, &size, sample, DDS_AUTO_DATA_REPRESENTATION)) {
        return DDS_RETCODE_ERROR;
    }
    const std::unique_ptr<DDS_Char, HeapDeleter> buffer(
        static_cast<DDS_Char *>(KOLT_Heap_allocate(size)));
    if (!buffer ||
        !serialize(programs, buffer.get(), &size, sample, DDS_AUTO_DATA_REPRESENTATION)) {
        return DDS_RETCODE_ERROR;
    }
    const std::unique_ptr<DDS_DynamicData, DynamicDataDeleter> data(
        DDS_DynamicData_new(code, &DDS_DYNAMIC_DATA_PROPERTY_DEFAULT));
    if (!data) {
        return DDS_RETCODE_ERROR;
    }
    DDS_ReturnCode_t result = DDS_DynamicData_from_cdr_buffer(data.get(), buffer.get(), size);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    DDS_PrintFormat format = {};
    result = DDS_PrintFormatProperty_to_print_format(property, &format);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    return DDS_DynamicDataFormatter_to_string_w_format(data.get(), string, length, &format);
}

}  // namespace
}  // namespace vur_dl

// ---- The families -----------------------------------------------------------------------------

#define VUR_DL_DEFINE_PRINT(T, type_name)                                          \
    void T##PluginSupport_print_data(const T *sample, const char *description,     \
                                     DDS_UnsignedLong indent) {                    \
        KOLT_Record_print(vur_dl::TypeOf<T>::code(), sample, description, indent); \
    }
VUR_DL_FOR_EACH_TYPE(VUR_DL_DEFINE_PRINT)

#define VUR_DL_DEFINE_LIFE_CYCLE(T, type_name)                                                \
    T *T##PluginSupport_create_data_w_params(const DDS_TypeAllocationParams_t *params) {      \
        return vur_dl::create_record_with_params<T>(params, __func__);                        \
    }                                                                                         \
    T *T##PluginSupport_create_data_ex(DDS_Boolean allocate_pointers) {                       \
        return vur_dl::create_record_ex<T>(allocate_pointers);                                \
    }                                                                                         \
    T *T##PluginSupport_create_data(void) {                                                   \
        return T##PluginSupport_create_data_ex(DDS_BOOLEAN_TRUE);                             \
    }                                                                                         \
    void T##PluginSupport_destroy_data_w_params(T *sample,                                    \
                                                const DDS_TypeDeallocationParams_t *params) { \
        vur_dl::destroy_record_with_params(sample, params);                                   \
    }                                                                                         \
    void T##PluginSupport_destroy_data_ex(T *sample, DDS_Boolean delete_pointers) {           \
        vur_dl::destroy_record(sample, vur_dl::deallocation_params(delete_pointers));         \
    }                                                                                         \
    void T##PluginSupport_destroy_data(T *sample) {                                           \
        T##PluginSupport_destroy_data_ex(sample, DDS_BOOLEAN_TRUE);                           \
    }                                                                                         \
    DDS_Boolean T##PluginSupport_copy_data(T *destination, const T *source) {                 \
        return T##_copy(destination, source);                                                 \
    }
VUR_DL_FOR_EACH_STRUCTURED_TYPE(VUR_DL_DEFINE_LIFE_CYCLE)

#define VUR_DL_DEFINE_KEY_HOLDERS(T)                                            \
    T *T##PluginSupport_create_key_ex(DDS_Boolean allocate_pointers) {          \
        return vur_dl::create_record_ex<T>(allocate_pointers);                  \
    }                                                                           \
    T *T##PluginSupport_create_key(void) {                                      \
        return T##PluginSupport_create_key_ex(DDS_BOOLEAN_TRUE);                \
    }                                                                           \
    void T##PluginSupport_destroy_key_ex(T *key, DDS_Boolean delete_pointers) { \
        T##PluginSupport_destroy_data_ex(key, delete_pointers);                 \
    }                                                                           \
    void T##PluginSupport_destroy_key(T *key) {                                 \
        T##PluginSupport_destroy_key_ex(key, DDS_BOOLEAN_TRUE);                 \
    }
VUR_DL_FOR_EACH_KEYED_TYPE(VUR_DL_DEFINE_KEY_HOLDERS)

#define VUR_DL_DEFINE_CONVERSIONS(T, type_name)                                                   \
    DDS_Boolean T##Plugin_serialize_to_cdr_buffer_ex(DDS_Char *buffer, DDS_UnsignedLong *length,  \
                                                     const T *sample,                             \
                                                     DDS_DataRepresentationId_t representation) { \
        return vur_dl::serialize(vur_dl::programs_of<T>(), buffer, length, sample,                \
                                 representation);                                                 \
    }                                                                                             \
    DDS_Boolean T##Plugin_serialize_to_cdr_buffer(DDS_Char *buffer, DDS_UnsignedLong *length,     \
                                                  const T *sample) {                              \
        return T##Plugin_serialize_to_cdr_buffer_ex(buffer, length, sample,                       \
                                                    DDS_AUTO_DATA_REPRESENTATION);                \
    }                                                                                             \
    DDS_Boolean T##Plugin_deserialize_from_cdr_buffer(T *sample, const DDS_Char *buffer,          \
                                                      DDS_UnsignedLong length) {                  \
        T##_finalize_optional_members(sample, DDS_BOOLEAN_TRUE);                                  \
        return vur_dl::deserialize<T>(sample, buffer, length);                                    \
    }                                                                                             \
    DDS_ReturnCode_t T##Plugin_data_to_string(const T *sample, DDS_Char *string,                  \
                                              DDS_UnsignedLong *length,                           \
                                              const DDS_PrintFormatProperty *property) {          \
        return vur_dl::to_string(vur_dl::TypeOf<T>::code(), vur_dl::programs_of<T>(), sample,     \
                                 string, length, property);                                       \
    }
VUR_DL_FOR_EACH_STRUCTURED_TYPE(VUR_DL_DEFINE_CONVERSIONS)
