/* SPDX-License-Identifier: Apache-2.0 */
/* The logger's types towards the middleware: plugins, sample life cycle, buffers, keys and text.
 *
 * Applications rarely need these functions: the type support of distlogSupport.h offers the useful
 * ones under the standard's names. The type codes of distlog.h determine sizes, bytes, keys and
 * text.
 *
 *  1. The list at the end of the file says which type has which families.
 *  2. KOLT calls the functions of a type's plugin that take endpoint data, and makes that data
 *     through the plugin. They have the signature of the slot that they fill (kolt/type_plugin.h),
 *     in which a sample is a `void *`: it is always a record of the type. The size functions accept
 *     NULL for the endpoint data and then use the type's own programs.
 *  3. All functions may be called from any thread; a sample belongs to one thread at a time.
 */
#pragma once

#include "kolt/print_format.h"
#include "kolt/type_plugin.h"
#include "vur_dl/distlog.h"

VUR_DL_EXTERN_C_BEGIN

/* The functions of every type.
 *
 * - TPlugin_get_serialized_sample_max_size: Returns the largest size in bytes of any sample in an
 *   encapsulation, with its 4-byte header if asked for, when it begins at `current_alignment`.
 *   Returns KOLT_CDR_MAX_SERIALIZED_SIZE_UNBOUNDED when there is no limit. An encapsulation that
 *   the type does not have stands for the endpoint's own, or for XCDR1 without endpoint data.
 * - TPluginSupport_print_data: Prints a sample on standard output: `indent` steps and
 *   "<description>:" (nothing without a description), then each member on a line of its own one
 *   step further in. Of a union it prints the discriminator and the branch that it selects. For a
 *   NULL sample it prints "NULL".
 */
#define VUR_DL_PLUGIN_DECLARE_COMMON(T)                                                      \
    VUR_DL_EXPORT DDS_UnsignedLong T##Plugin_get_serialized_sample_max_size(                 \
        KOLT_TypePluginEndpointData *endpoint_data, DDS_Boolean include_encapsulation,       \
        DDS_UnsignedShort encapsulation, DDS_UnsignedLong current_alignment);                \
    VUR_DL_EXPORT void T##PluginSupport_print_data(const T *sample, const char *description, \
                                                   DDS_UnsignedLong indent)

/* The functions of structured types.
 *
 * - TPluginSupport_create_data_w_params: Returns a new sample, initialised with the parameters; the
 *   caller frees it with a destroy_data function. Returns NULL when `params` is NULL, when its
 *   allocate_memory is false (logged: a sample without memory for its strings could not be
 *   filled), or when memory runs out.
 * - TPluginSupport_create_data_ex: The same with default parameters and the given
 *   allocate_pointers.
 * - TPluginSupport_create_data: create_data_ex with true.
 * - TPluginSupport_destroy_data_w_params, _destroy_data_ex, _destroy_data: Finalise the sample
 *   as the parameters say (the default ones for NULL) and free it. A NULL sample is ignored.
 * - TPluginSupport_copy_data: T_copy.
 * - TPlugin_get_key_kind: Returns whether samples have a key.
 * - TPlugin_get_programs: Returns the type's serialisation programs, which are compiled at the
 *   first call and kept from then on; the caller gives nothing back. NULL when memory runs out.
 * - TPlugin_serialize_to_cdr_buffer_ex: Writes `sample`, with the encapsulation header, into
 *   `buffer`. `*length` goes in as the buffer's size and comes out as the bytes written. With a
 *   NULL buffer `*length` becomes the exact size that is needed. False for a NULL length or
 *   sample, a representation that the type does not have, a sample that cannot be serialised (a
 *   string that is NULL or longer than its bound), or a buffer that is too small.
 * - TPlugin_serialize_to_cdr_buffer: The same in DDS_AUTO_DATA_REPRESENTATION, which is XCDR1.
 * - TPlugin_deserialize_from_cdr_buffer: Reads such bytes, of either representation and byte
 *   order, into an initialised sample. False for NULLs and malformed bytes; the sample is then
 *   still safe to use.
 * - TPlugin_data_to_string: Renders the sample as text in the property's format. With a NULL
 *   string, `*length` becomes the size that is needed, the NUL included. BAD_PARAMETER for a
 *   NULL sample, length or property, or a property out of range; OUT_OF_RESOURCES when the
 *   string is too short (`*length` is then what it takes); ERROR when the sample cannot be
 *   serialised or memory runs out.
 */
#define VUR_DL_PLUGIN_DECLARE_STRUCTURED(T)                                                      \
    VUR_DL_PLUGIN_DECLARE_COMMON(T);                                                             \
    VUR_DL_EXPORT T *T##PluginSupport_create_data_w_params(                                      \
        const DDS_TypeAllocationParams_t *params);                                               \
    VUR_DL_EXPORT T *T##PluginSupport_create_data_ex(DDS_Boolean allocate_pointers);             \
    VUR_DL_EXPORT T *T##PluginSupport_create_data(void);                                         \
    VUR_DL_EXPORT void T##PluginSupport_destroy_data_w_params(                                   \
        T *sample, const DDS_TypeDeallocationParams_t *params);                                  \
    VUR_DL_EXPORT void T##PluginSupport_destroy_data_ex(T *sample, DDS_Boolean delete_pointers); \
    VUR_DL_EXPORT void T##PluginSupport_destroy_data(T *sample);                                 \
    VUR_DL_EXPORT DDS_Boolean T##PluginSupport_copy_data(T *destination, const T *source);       \
    VUR_DL_EXPORT KOLT_TypePluginKeyKind T##Plugin_get_key_kind(void);                           \
    VUR_DL_EXPORT const KOLT_TypePrograms *T##Plugin_get_programs(void);                         \
    VUR_DL_EXPORT DDS_Boolean T##Plugin_serialize_to_cdr_buffer_ex(                              \
        DDS_Char *buffer, DDS_UnsignedLong *length, const T *sample,                             \
        DDS_DataRepresentationId_t representation);                                              \
    VUR_DL_EXPORT DDS_Boolean T##Plugin_serialize_to_cdr_buffer(                                 \
        DDS_Char *buffer, DDS_UnsignedLong *length, const T *sample);                            \
    VUR_DL_EXPORT DDS_Boolean T##Plugin_deserialize_from_cdr_buffer(                             \
        T *sample, const DDS_Char *buffer, DDS_UnsignedLong length);                             \
    VUR_DL_EXPORT DDS_ReturnCode_t T##Plugin_data_to_string(                                     \
        const T *sample, DDS_Char *string, DDS_UnsignedLong *length,                             \
        const DDS_PrintFormatProperty *property)

/* Return the largest size of a key, as TPlugin_get_serialized_sample_max_size does for samples. The
 * second function counts the big-endian form that the key hash is made of (RTPS 2.3, 9.6.3.8),
 * without a header. */
#define VUR_DL_PLUGIN_DECLARE_KEY_SIZES(T)                                             \
    VUR_DL_EXPORT DDS_UnsignedLong T##Plugin_get_serialized_key_max_size(              \
        KOLT_TypePluginEndpointData *endpoint_data, DDS_Boolean include_encapsulation, \
        DDS_UnsignedShort encapsulation, DDS_UnsignedLong current_alignment);          \
    VUR_DL_EXPORT DDS_UnsignedLong T##Plugin_get_serialized_key_max_size_for_keyhash(  \
        KOLT_TypePluginEndpointData *endpoint_data, DDS_UnsignedShort encapsulation,   \
        DDS_UnsignedLong current_alignment)

/* The functions of keyed types. A key holder is a record of the type in which only the key members
 * count.
 *
 * - TPluginSupport_create_key_ex, _create_key: Return a new key holder, as create_data_ex and
 *   create_data do.
 * - TPluginSupport_destroy_key_ex, _destroy_key: Free it, as destroy_data_ex and destroy_data do.
 * - TPlugin_instance_to_key, _key_to_instance: Copy the key members. False for NULLs.
 * - TPlugin_deserialize_key: Reads a key-only payload into the sample that `sample` points at.
 * - TPlugin_serialized_sample_to_keyhash: Works out the key hash of a serialised sample: reads its
 *   key members into one of the endpoint's key holders and hashes these. False when there is no key
 *   holder or the bytes are malformed.
 */
#define VUR_DL_PLUGIN_DECLARE_KEYED(T)                                                             \
    VUR_DL_PLUGIN_DECLARE_KEY_SIZES(T);                                                            \
    VUR_DL_EXPORT T *T##PluginSupport_create_key_ex(DDS_Boolean allocate_pointers);                \
    VUR_DL_EXPORT T *T##PluginSupport_create_key(void);                                            \
    VUR_DL_EXPORT void T##PluginSupport_destroy_key_ex(T *key, DDS_Boolean delete_pointers);       \
    VUR_DL_EXPORT void T##PluginSupport_destroy_key(T *key);                                       \
    VUR_DL_EXPORT DDS_Boolean T##Plugin_instance_to_key(                                           \
        KOLT_TypePluginEndpointData *endpoint_data, void *key, const void *instance);              \
    VUR_DL_EXPORT DDS_Boolean T##Plugin_key_to_instance(                                           \
        KOLT_TypePluginEndpointData *endpoint_data, void *instance, const void *key);              \
    VUR_DL_EXPORT DDS_Boolean T##Plugin_deserialize_key(                                           \
        KOLT_TypePluginEndpointData *endpoint_data, void **sample, DDS_Boolean *drop_sample,       \
        KOLT_CdrStream *stream, DDS_Boolean deserialize_encapsulation,                             \
        DDS_Boolean deserialize_key, void *endpoint_plugin_qos);                                   \
    VUR_DL_EXPORT DDS_Boolean T##Plugin_serialized_sample_to_keyhash(                              \
        KOLT_TypePluginEndpointData *endpoint_data, KOLT_CdrStream *stream, KOLT_KeyHash *keyhash, \
        DDS_Boolean deserialize_encapsulation, void *endpoint_plugin_qos)

/* The functions of topic types.
 *
 * - TPlugin_new: Returns a plugin record for DDS_DomainParticipant_register_type, to be freed with
 *   TPlugin_delete. NULL when memory runs out. The keyed types fill every slot that is not
 *   reserved; the unkeyed one leaves the slots of keys and key hashes empty.
 * - TPlugin_delete: Frees a plugin record. NULL is ignored.
 * - TPlugin_on_participant_attached: Returns participant data that hold the type's programs; NULL
 *   when memory runs out.
 * - TPlugin_on_participant_detached: Gives the programs and the data back. NULL is ignored.
 * - TPlugin_on_endpoint_attached: Returns endpoint data with sample and key pools, for keyed types
 *   also with the key-hash stream, for writers also with the buffer pool. NULL when
 *   `participant_data` or `endpoint_info` is NULL or memory runs out.
 * - TPlugin_on_endpoint_detached: Frees the endpoint data.
 * - TPlugin_copy_sample: T_copy.
 * - TPlugin_return_sample: Frees the sample's optional members and gives it back to the pool.
 * - TPlugin_finalize_optional_members: T_finalize_optional_members.
 */
#define VUR_DL_PLUGIN_DECLARE_TOPIC(T)                                                             \
    VUR_DL_EXPORT KOLT_TypePlugin *T##Plugin_new(void);                                            \
    VUR_DL_EXPORT void T##Plugin_delete(KOLT_TypePlugin *plugin);                                  \
    VUR_DL_EXPORT KOLT_TypePluginParticipantData *T##Plugin_on_participant_attached(               \
        void *registration_data, const KOLT_TypePluginParticipantInfo *participant_info,           \
        DDS_Boolean top_level_registration, void *container_plugin_context,                        \
        const DDS_TypeCode *type_code);                                                            \
    VUR_DL_EXPORT void T##Plugin_on_participant_detached(                                          \
        KOLT_TypePluginParticipantData *participant_data);                                         \
    VUR_DL_EXPORT KOLT_TypePluginEndpointData *T##Plugin_on_endpoint_attached(                     \
        KOLT_TypePluginParticipantData *participant_data,                                          \
        const KOLT_TypePluginEndpointInfo *endpoint_info, DDS_Boolean top_level_registration,      \
        void *container_plugin_context);                                                           \
    VUR_DL_EXPORT void T##Plugin_on_endpoint_detached(KOLT_TypePluginEndpointData *endpoint_data); \
    VUR_DL_EXPORT DDS_Boolean T##Plugin_copy_sample(KOLT_TypePluginEndpointData *endpoint_data,    \
                                                    void *destination, const void *source);        \
    VUR_DL_EXPORT void T##Plugin_return_sample(KOLT_TypePluginEndpointData *endpoint_data,         \
                                               void *sample, void *handle);                        \
    VUR_DL_EXPORT void T##Plugin_finalize_optional_members(                                        \
        KOLT_TypePluginEndpointData *endpoint_data, void *sample, DDS_Boolean delete_pointers)

/* ---- The families of each type -------------------------------------------------------------- */

VUR_DL_PLUGIN_DECLARE_STRUCTURED(VUR_DL_HostAndAppId);
VUR_DL_PLUGIN_DECLARE_KEYED(VUR_DL_HostAndAppId);

VUR_DL_PLUGIN_DECLARE_STRUCTURED(VUR_DL_LogMessage);
VUR_DL_PLUGIN_DECLARE_KEYED(VUR_DL_LogMessage);
VUR_DL_PLUGIN_DECLARE_TOPIC(VUR_DL_LogMessage);

VUR_DL_PLUGIN_DECLARE_COMMON(VUR_DL_ADMIN_VURLoggerVerbosity);
VUR_DL_PLUGIN_DECLARE_COMMON(VUR_DL_ADMIN_VURLoggerCategory);
VUR_DL_PLUGIN_DECLARE_COMMON(VUR_DL_ADMIN_VURLoggerPrintFormat);

VUR_DL_PLUGIN_DECLARE_STRUCTURED(VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity);
VUR_DL_PLUGIN_DECLARE_KEY_SIZES(VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity);

VUR_DL_PLUGIN_DECLARE_COMMON(VUR_DL_ADMIN_StateKind);

VUR_DL_PLUGIN_DECLARE_STRUCTURED(VUR_DL_ADMIN_State);
VUR_DL_PLUGIN_DECLARE_KEYED(VUR_DL_ADMIN_State);
VUR_DL_PLUGIN_DECLARE_TOPIC(VUR_DL_ADMIN_State);

VUR_DL_PLUGIN_DECLARE_COMMON(VUR_DL_ADMIN_CommandKind);

VUR_DL_PLUGIN_DECLARE_STRUCTURED(VUR_DL_ADMIN_Command);
VUR_DL_PLUGIN_DECLARE_KEY_SIZES(VUR_DL_ADMIN_Command);

VUR_DL_PLUGIN_DECLARE_STRUCTURED(VUR_DL_ADMIN_CommandRequest);
VUR_DL_PLUGIN_DECLARE_TOPIC(VUR_DL_ADMIN_CommandRequest);

VUR_DL_PLUGIN_DECLARE_COMMON(VUR_DL_ADMIN_CommandResult);

VUR_DL_PLUGIN_DECLARE_STRUCTURED(VUR_DL_ADMIN_CommandResponse);
VUR_DL_PLUGIN_DECLARE_KEYED(VUR_DL_ADMIN_CommandResponse);
VUR_DL_PLUGIN_DECLARE_TOPIC(VUR_DL_ADMIN_CommandResponse);

VUR_DL_EXTERN_C_END
