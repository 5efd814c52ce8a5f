// SPDX-License-Identifier: Apache-2.0
// The type plugins, which KOLT's entities call for the samples of a type. Each slot holds either
// KOLT's generic operation, which interprets the type code, or one of the functions below, which
// depend on the type.

#include "vur_dl/distlogPlugin.h"

#include "kolt/os.h"
#include "type/plugin_common.hpp"
#include "type/type_list.hpp"

namespace vur_dl {
namespace {

// ---- Sizes ------------------------------------------------------------------------------------

using ProgramsSize = DDS_UnsignedLong (*)(const KOLT_TypePrograms *, DDS_UnsignedShort);
using EngineSize = DDS_UnsignedLong (*)(KOLT_TypePluginEndpointData *, DDS_Boolean *, DDS_Boolean,
                                        DDS_UnsignedShort, DDS_UnsignedLong);

DDS_UnsignedLong key_max_size(const KOLT_TypePrograms *programs, DDS_UnsignedShort) noexcept {
    return KOLT_Cdr_key_max_size(programs);
}

// Returns the largest size without endpoint data: the programs' size for the encapsulation, or for
// the type's XCDR1 one when it does not have that, plus the padding that the alignment may need.
DDS_UnsignedLong size_of_programs(const KOLT_TypePrograms *programs, ProgramsSize size_function,
                                  DDS_UnsignedLong header_size, DDS_Boolean include_encapsulation,
                                  DDS_UnsignedShort encapsulation,
                                  DDS_UnsignedLong current_alignment) noexcept {
    constexpr DDS_UnsignedLong kLargestAlignment = 8;
    if (programs == nullptr) {
        return 0;
    }
    DDS_UnsignedLong size = size_function(programs, encapsulation);
    if (size == 0) {
        size = size_function(programs,
                             DDS_TypeCode_get_native_encapsulation(KOLT_TypePrograms_type(programs),
                                                                   DDS_AUTO_DATA_REPRESENTATION));
    }
    if (size < header_size || size >= KOLT_CDR_MAX_SERIALIZED_SIZE_UNBOUNDED) {
        return size;
    }
    // Behind a header alignment begins anew.
    const DDS_UnsignedLong more = include_encapsulation ? KOLT_ENCAPSULATION_HEADER_SIZE
                                                        : -current_alignment % kLargestAlignment;
    return size - header_size + more;
}

template <typename T>
DDS_UnsignedLong sample_max_size(KOLT_TypePluginEndpointData *endpoint_data,
                                 DDS_Boolean include_encapsulation, DDS_UnsignedShort encapsulation,
                                 DDS_UnsignedLong current_alignment) noexcept {
    if (endpoint_data == nullptr) {
        return size_of_programs(programs_of<T>(), KOLT_Cdr_serialized_max_size,
                                KOLT_ENCAPSULATION_HEADER_SIZE, include_encapsulation,
                                encapsulation, current_alignment);
    }
    DDS_Boolean overflow = DDS_BOOLEAN_FALSE;
    const DDS_UnsignedLong size = KOLT_TypePlugin_get_serialized_sample_max_size(
        endpoint_data, &overflow, include_encapsulation, encapsulation, current_alignment);
    return overflow ? KOLT_CDR_MAX_SERIALIZED_SIZE_UNBOUNDED : size;
}

template <typename T>
DDS_UnsignedLong key_max_size(KOLT_TypePluginEndpointData *endpoint_data,
                              DDS_Boolean include_encapsulation, DDS_UnsignedShort encapsulation,
                              DDS_UnsignedLong current_alignment) noexcept {
    if (endpoint_data == nullptr) {
        return size_of_programs(programs_of<T>(), key_max_size, 0, include_encapsulation,
                                encapsulation, current_alignment);
    }
    DDS_Boolean overflow = DDS_BOOLEAN_FALSE;
    const DDS_UnsignedLong size = KOLT_TypePlugin_get_serialized_key_max_size(
        endpoint_data, &overflow, include_encapsulation, encapsulation, current_alignment);
    return overflow ? KOLT_CDR_MAX_SERIALIZED_SIZE_UNBOUNDED : size;
}

// ---- Attachment -------------------------------------------------------------------------------

template <typename T>
KOLT_TypePluginParticipantData *attach_participant(
    const KOLT_TypePluginParticipantInfo *participant_info) noexcept {
    KOLT_TypePluginParticipantData *const data =
        KOLT_TypePlugin_ParticipantData_new(participant_info);
    if (data == nullptr) {
        return nullptr;
    }
    const KOLT_TypePrograms *const programs = KOLT_TypePrograms_acquire(TypeOf<T>::code());
    if (programs == nullptr) {
        KOLT_TypePlugin_ParticipantData_delete(data);
        return nullptr;
    }
    KOLT_TypePlugin_ParticipantData_set_programs(data, programs);
    return data;
}

// The functions of a type that endpoint data are made with. Without a key those of keys are NULL.
struct EndpointFunctions {
    void *(*create_data)(void);
    void (*destroy_data)(void *);
    void *(*create_key)(void);
    void (*destroy_key)(void *);
    DDS_UnsignedLong (*sample_max_size)(KOLT_TypePluginEndpointData *, DDS_Boolean,
                                        DDS_UnsignedShort, DDS_UnsignedLong);
    DDS_UnsignedLong (*key_max_size)(KOLT_TypePluginEndpointData *, DDS_Boolean, DDS_UnsignedShort,
                                     DDS_UnsignedLong);
    DDS_UnsignedLong (*keyhash_max_size)(KOLT_TypePluginEndpointData *, DDS_UnsignedShort,
                                         DDS_UnsignedLong);
};

bool create_key_hash_stream(KOLT_TypePluginEndpointData *data, const EndpointFunctions &functions,
                            DDS_UnsignedShort encapsulation) noexcept {
    const DDS_UnsignedLong key_size =
        functions.key_max_size(data, DDS_BOOLEAN_FALSE, encapsulation, 0);
    const DDS_UnsignedLong keyhash_size =
        functions.keyhash_max_size(data, KOLT_ENCAPSULATION_CDR2_BE, 0);
    return KOLT_TypePlugin_EndpointData_create_md5_stream(data, key_size, keyhash_size);
}

// Works out the largest size once, for all samples that the writer will write.
bool create_writer_pool(KOLT_TypePluginEndpointData *data, const EndpointFunctions &functions,
                        DDS_UnsignedShort encapsulation) noexcept {
    KOLT_TypePlugin_EndpointData_set_max_size(
        data, functions.sample_max_size(data, DDS_BOOLEAN_FALSE, encapsulation, 0));
    return KOLT_TypePlugin_EndpointData_create_writer_pool(
        data, functions.sample_max_size, KOLT_TypePlugin_get_serialized_sample_size);
}

KOLT_TypePluginEndpointData *attach_endpoint(KOLT_TypePluginParticipantData *participant_data,
                                             const KOLT_TypePluginEndpointInfo *endpoint_info,
                                             const DDS_TypeCode *code,
                                             const EndpointFunctions &functions) noexcept {
    if (participant_data == nullptr || endpoint_info == nullptr) {
        return nullptr;
    }
    KOLT_TypePluginEndpointData *const data = KOLT_TypePlugin_EndpointData_new(
        participant_data, endpoint_info, functions.create_data, functions.destroy_data,
        functions.create_key, functions.destroy_key);
    if (data == nullptr) {
        return nullptr;
    }
    const DDS_UnsignedShort encapsulation =
        DDS_TypeCode_get_native_encapsulation(code, endpoint_info->representation);
    const bool keyed = functions.create_key != nullptr;
    const bool writer = endpoint_info->kind == KOLT_TYPE_PLUGIN_WRITER;
    if ((keyed && !create_key_hash_stream(data, functions, encapsulation)) ||
        (writer && !create_writer_pool(data, functions, encapsulation))) {
        KOLT_TypePlugin_EndpointData_delete(data);
        return nullptr;
    }
    return data;
}

// ---- Keys -------------------------------------------------------------------------------------

DDS_Boolean sample_to_key_hash(KOLT_TypePluginEndpointData *endpoint_data, KOLT_CdrStream *stream,
                               KOLT_KeyHash *keyhash, DDS_Boolean deserialize_encapsulation,
                               void *endpoint_plugin_qos) noexcept {
    if (endpoint_data == nullptr || stream == nullptr || keyhash == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    void *handle = nullptr;
    void *const key = KOLT_TypePlugin_get_key(endpoint_data, &handle);
    if (key == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    void *sample = key;
    const DDS_Boolean done =
        KOLT_TypePlugin_deserialize_key_sample(endpoint_data, &sample, nullptr, stream,
                                               deserialize_encapsulation, DDS_BOOLEAN_TRUE,
                                               endpoint_plugin_qos) &&
        KOLT_TypePlugin_instance_to_keyhash(endpoint_data, keyhash, key, stream->encapsulation);
    KOLT_TypePlugin_return_key(endpoint_data, key, handle);
    return done;
}

// ---- Plugin records ---------------------------------------------------------------------------

// Returns a record with the slots that all types have in common. Reserved slots stay empty.
KOLT_TypePlugin *new_plugin() noexcept {
    auto *const plugin =
        static_cast<KOLT_TypePlugin *>(KOLT_Heap_allocate_zeroed(sizeof(KOLT_TypePlugin)));
    if (plugin == nullptr) {
        return nullptr;
    }
    plugin->create_sample = KOLT_TypePlugin_create_sample;
    plugin->destroy_sample = KOLT_TypePlugin_destroy_sample;
    plugin->serialize = KOLT_TypePlugin_serialize;
    plugin->deserialize = KOLT_TypePlugin_deserialize;
    plugin->get_sample = KOLT_TypePlugin_get_sample;
    plugin->get_serialized_sample_min_size = KOLT_TypePlugin_get_serialized_sample_min_size;
    plugin->get_serialized_sample_size = KOLT_TypePlugin_get_serialized_sample_size;
    plugin->get_buffer = KOLT_TypePlugin_get_buffer;
    plugin->return_buffer = KOLT_TypePlugin_return_buffer;
    plugin->version = KOLT_TypePluginVersion KOLT_TYPE_PLUGIN_VERSION_2_0;
    plugin->is_metadata_type = DDS_BOOLEAN_FALSE;
    return plugin;
}

// Fills the slots of keys and key hashes. They stay empty when the type has no key.
template <typename T>
struct Keys {
    static constexpr KOLT_TypePluginKeyKind kKind = KOLT_TYPE_PLUGIN_NO_KEY;
    static void fill_slots(KOLT_TypePlugin &) noexcept {}
    static void fill_functions(EndpointFunctions &) noexcept {}
};

#define VUR_DL_DEFINE_KEYS(T)                                                                    \
    template <>                                                                                  \
    struct Keys<T> {                                                                             \
        static constexpr KOLT_TypePluginKeyKind kKind = KOLT_TYPE_PLUGIN_USER_KEY;               \
        static void fill_slots(KOLT_TypePlugin &plugin) noexcept {                               \
            plugin.instance_to_keyhash = KOLT_TypePlugin_instance_to_keyhash;                    \
            plugin.serialized_sample_to_keyhash = T##Plugin_serialized_sample_to_keyhash;        \
            plugin.get_key = KOLT_TypePlugin_get_key;                                            \
            plugin.return_key = KOLT_TypePlugin_return_key;                                      \
            plugin.get_serialized_key_max_size = T##Plugin_get_serialized_key_max_size;          \
            plugin.instance_to_key = T##Plugin_instance_to_key;                                  \
            plugin.key_to_instance = T##Plugin_key_to_instance;                                  \
            plugin.serialize_key = KOLT_TypePlugin_serialize_key;                                \
            plugin.deserialize_key = T##Plugin_deserialize_key;                                  \
            plugin.deserialize_key_sample = KOLT_TypePlugin_deserialize_key_sample;              \
        }                                                                                        \
        static void fill_functions(EndpointFunctions &functions) noexcept {                      \
            functions.create_key = [](void) -> void * { return T##PluginSupport_create_key(); }; \
            functions.destroy_key = [](void *key) {                                              \
                T##PluginSupport_destroy_key(static_cast<T *>(key));                             \
            };                                                                                   \
            functions.key_max_size = T##Plugin_get_serialized_key_max_size;                      \
            functions.keyhash_max_size = T##Plugin_get_serialized_key_max_size_for_keyhash;      \
        }                                                                                        \
    };
VUR_DL_FOR_EACH_KEYED_TYPE(VUR_DL_DEFINE_KEYS)
#undef VUR_DL_DEFINE_KEYS

}  // namespace
}  // namespace vur_dl

// ---- The families -----------------------------------------------------------------------------

#define VUR_DL_DEFINE_SAMPLE_MAX_SIZE(T, type_name)                                            \
    DDS_UnsignedLong T##Plugin_get_serialized_sample_max_size(                                 \
        KOLT_TypePluginEndpointData *endpoint_data, DDS_Boolean include_encapsulation,         \
        DDS_UnsignedShort encapsulation, DDS_UnsignedLong current_alignment) {                 \
        return vur_dl::sample_max_size<T>(endpoint_data, include_encapsulation, encapsulation, \
                                          current_alignment);                                  \
    }
VUR_DL_FOR_EACH_TYPE(VUR_DL_DEFINE_SAMPLE_MAX_SIZE)

#define VUR_DL_DEFINE_TYPE_FACTS(T, type_name)              \
    KOLT_TypePluginKeyKind T##Plugin_get_key_kind(void) {   \
        return vur_dl::Keys<T>::kKind;                      \
    }                                                       \
    const KOLT_TypePrograms *T##Plugin_get_programs(void) { \
        return vur_dl::programs_of<T>();                    \
    }
VUR_DL_FOR_EACH_STRUCTURED_TYPE(VUR_DL_DEFINE_TYPE_FACTS)

#define VUR_DL_DEFINE_KEY_SIZES(T)                                                          \
    DDS_UnsignedLong T##Plugin_get_serialized_key_max_size(                                 \
        KOLT_TypePluginEndpointData *endpoint_data, DDS_Boolean include_encapsulation,      \
        DDS_UnsignedShort encapsulation, DDS_UnsignedLong current_alignment) {              \
        return vur_dl::key_max_size<T>(endpoint_data, include_encapsulation, encapsulation, \
                                       current_alignment);                                  \
    }                                                                                       \
    DDS_UnsignedLong T##Plugin_get_serialized_key_max_size_for_keyhash(                     \
        KOLT_TypePluginEndpointData *endpoint_data, DDS_UnsignedShort encapsulation,        \
        DDS_UnsignedLong current_alignment) {                                               \
        return vur_dl::key_max_size<T>(endpoint_data, DDS_BOOLEAN_FALSE, encapsulation,     \
                                       current_alignment);                                  \
    }
VUR_DL_FOR_EACH_KEYED_TYPE(VUR_DL_DEFINE_KEY_SIZES)
VUR_DL_FOR_EACH_UNKEYED_NESTED_TYPE(VUR_DL_DEFINE_KEY_SIZES)

#define VUR_DL_DEFINE_KEY_FUNCTIONS(T)                                                             \
    DDS_Boolean T##Plugin_instance_to_key(KOLT_TypePluginEndpointData *, void *key,                \
                                          const void *instance) {                                  \
        return KOLT_Record_copy_key(vur_dl::TypeOf<T>::code(), key, instance);                     \
    }                                                                                              \
    DDS_Boolean T##Plugin_key_to_instance(KOLT_TypePluginEndpointData *, void *instance,           \
                                          const void *key) {                                       \
        return KOLT_Record_copy_key(vur_dl::TypeOf<T>::code(), instance, key);                     \
    }                                                                                              \
    DDS_Boolean T##Plugin_deserialize_key(                                                         \
        KOLT_TypePluginEndpointData *endpoint_data, void **sample, DDS_Boolean *drop_sample,       \
        KOLT_CdrStream *stream, DDS_Boolean deserialize_encapsulation,                             \
        DDS_Boolean deserialize_key, void *endpoint_plugin_qos) {                                  \
        return KOLT_TypePlugin_deserialize_key(endpoint_data, sample, drop_sample, stream,         \
                                               deserialize_encapsulation, deserialize_key,         \
                                               endpoint_plugin_qos);                               \
    }                                                                                              \
    DDS_Boolean T##Plugin_serialized_sample_to_keyhash(                                            \
        KOLT_TypePluginEndpointData *endpoint_data, KOLT_CdrStream *stream, KOLT_KeyHash *keyhash, \
        DDS_Boolean deserialize_encapsulation, void *endpoint_plugin_qos) {                        \
        return vur_dl::sample_to_key_hash(endpoint_data, stream, keyhash,                          \
                                          deserialize_encapsulation, endpoint_plugin_qos);         \
    }
VUR_DL_FOR_EACH_KEYED_TYPE(VUR_DL_DEFINE_KEY_FUNCTIONS)

#define VUR_DL_DEFINE_ATTACHMENT(T, type_name)                                                     \
    KOLT_TypePluginParticipantData *T##Plugin_on_participant_attached(                             \
        void *, const KOLT_TypePluginParticipantInfo *participant_info, DDS_Boolean, void *,       \
        const DDS_TypeCode *) {                                                                    \
        return vur_dl::attach_participant<T>(participant_info);                                    \
    }                                                                                              \
    void T##Plugin_on_participant_detached(KOLT_TypePluginParticipantData *participant_data) {     \
        if (participant_data != nullptr) {                                                         \
            KOLT_TypePlugin_ParticipantData_delete(participant_data);                              \
        }                                                                                          \
    }                                                                                              \
    KOLT_TypePluginEndpointData *T##Plugin_on_endpoint_attached(                                   \
        KOLT_TypePluginParticipantData *participant_data,                                          \
        const KOLT_TypePluginEndpointInfo *endpoint_info, DDS_Boolean, void *) {                   \
        vur_dl::EndpointFunctions functions = {};                                                  \
        functions.create_data = [](void) -> void * { return T##PluginSupport_create_data(); };     \
        functions.destroy_data = [](void *sample) {                                                \
            T##PluginSupport_destroy_data(static_cast<T *>(sample));                               \
        };                                                                                         \
        functions.sample_max_size = T##Plugin_get_serialized_sample_max_size;                      \
        vur_dl::Keys<T>::fill_functions(functions);                                                \
        return vur_dl::attach_endpoint(participant_data, endpoint_info, vur_dl::TypeOf<T>::code(), \
                                       functions);                                                 \
    }                                                                                              \
    void T##Plugin_on_endpoint_detached(KOLT_TypePluginEndpointData *endpoint_data) {              \
        KOLT_TypePlugin_EndpointData_delete(endpoint_data);                                        \
    }
VUR_DL_FOR_EACH_TOPIC_TYPE(VUR_DL_DEFINE_ATTACHMENT)

#define VUR_DL_DEFINE_SAMPLE_SLOTS(T, type_name)                                           \
    DDS_Boolean T##Plugin_copy_sample(KOLT_TypePluginEndpointData *, void *destination,    \
                                      const void *source) {                                \
        return T##_copy(static_cast<T *>(destination), static_cast<const T *>(source));    \
    }                                                                                      \
    void T##Plugin_finalize_optional_members(KOLT_TypePluginEndpointData *, void *sample,  \
                                             DDS_Boolean delete_pointers) {                \
        T##_finalize_optional_members(static_cast<T *>(sample), delete_pointers);          \
    }                                                                                      \
    void T##Plugin_return_sample(KOLT_TypePluginEndpointData *endpoint_data, void *sample, \
                                 void *handle) {                                           \
        T##_finalize_optional_members(static_cast<T *>(sample), DDS_BOOLEAN_TRUE);         \
        KOLT_TypePlugin_return_sample(endpoint_data, sample, handle);                      \
    }
VUR_DL_FOR_EACH_TOPIC_TYPE(VUR_DL_DEFINE_SAMPLE_SLOTS)

#define VUR_DL_DEFINE_PLUGIN_RECORD(T, type_name)                                          \
    KOLT_TypePlugin *T##Plugin_new(void) {                                                 \
        KOLT_TypePlugin *const plugin = vur_dl::new_plugin();                              \
        if (plugin == nullptr) {                                                           \
            return nullptr;                                                                \
        }                                                                                  \
        plugin->on_participant_attached = T##Plugin_on_participant_attached;               \
        plugin->on_participant_detached = T##Plugin_on_participant_detached;               \
        plugin->on_endpoint_attached = T##Plugin_on_endpoint_attached;                     \
        plugin->on_endpoint_detached = T##Plugin_on_endpoint_detached;                     \
        plugin->copy_sample = T##Plugin_copy_sample;                                       \
        plugin->finalize_optional_members = T##Plugin_finalize_optional_members;           \
        plugin->return_sample = T##Plugin_return_sample;                                   \
        plugin->get_serialized_sample_max_size = T##Plugin_get_serialized_sample_max_size; \
        plugin->get_key_kind = T##Plugin_get_key_kind;                                     \
        plugin->type_code = vur_dl::TypeOf<T>::code();                                     \
        plugin->endpoint_type_name = vur_dl::TypeOf<T>::kName;                             \
        vur_dl::Keys<T>::fill_slots(*plugin);                                              \
        return plugin;                                                                     \
    }                                                                                      \
    void T##Plugin_delete(KOLT_TypePlugin *plugin) {                                       \
        KOLT_Heap_free(plugin);                                                            \
    }
VUR_DL_FOR_EACH_TOPIC_TYPE(VUR_DL_DEFINE_PLUGIN_RECORD)
