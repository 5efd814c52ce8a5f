/* SPDX-License-Identifier: Apache-2.0 */
/* Type plugins: the table of operations through which KOLT's entities handle samples of a type.
 *
 * A type is registered with a participant by handing over a plugin, whose record
 * DDS_DomainParticipant_register_type copies. KOLT calls the operations when a participant or
 * endpoint of the type comes and goes, when it needs a sample, a key or a buffer, and when a sample
 * or key crosses the wire. Operations that the type does not need to decide itself are KOLT's
 * generic ones, declared below, which interpret the plugin's type code.
 */
#pragma once

#include "kolt/cdr.h"

KOLT_EXTERN_C_BEGIN

/* A cursor over CDR bytes: `buffer` begins with the encapsulation header when the operation is told
 * to handle encapsulation. Operations advance `position`; a failed operation leaves it anywhere. */
typedef struct KOLT_CdrStream {
    DDS_Octet *buffer;
    size_t length;   /* bytes in the buffer: capacity when writing, content when reading */
    size_t position; /* next byte */
    DDS_UnsignedShort encapsulation; /* of the bytes; set when a header is read or written */
} KOLT_CdrStream;

/* Opens a stream over caller memory. NULLs are ignored. */
KOLT_EXPORT void KOLT_CdrStream_set(KOLT_CdrStream *self, DDS_Octet *buffer, size_t length);

typedef struct KOLT_TypePluginParticipantData KOLT_TypePluginParticipantData;
typedef struct KOLT_TypePluginEndpointData KOLT_TypePluginEndpointData;

typedef enum KOLT_TypePluginKeyKind KOLT_ENUM_BASE {
    KOLT_TYPE_PLUGIN_NO_KEY = 0,
    KOLT_TYPE_PLUGIN_GUID_KEY = 1,
    KOLT_TYPE_PLUGIN_USER_KEY = 2
} KOLT_TypePluginKeyKind;

typedef enum KOLT_TypePluginEndpointKind KOLT_ENUM_BASE {
    KOLT_TYPE_PLUGIN_READER = 1,
    KOLT_TYPE_PLUGIN_WRITER = 2
} KOLT_TypePluginEndpointKind;

typedef struct KOLT_TypePluginParticipantInfo {
    DDS_DomainId_t domain_id;
} KOLT_TypePluginParticipantInfo;

typedef struct KOLT_TypePluginEndpointInfo {
    KOLT_TypePluginEndpointKind kind;
    DDS_DataRepresentationId_t representation; /* writer: what it writes; XCDR or XCDR2 */
    DDS_UnsignedLong initial_samples;          /* samples made in advance; 0 is none */
} KOLT_TypePluginEndpointInfo;

typedef struct KOLT_KeyHash {
    DDS_Octet value[16];
    DDS_UnsignedLong length; /* 16 once set */
} KOLT_KeyHash;

typedef struct KOLT_TypePluginVersion {
    DDS_Octet major, minor, release, revision;
} KOLT_TypePluginVersion;

/* The record. `endpoint_plugin_qos` and `container_plugin_context` are reserved and NULL. */
typedef struct KOLT_TypePlugin {
    /* 1 to 4: attachment */
    KOLT_TypePluginParticipantData *(*on_participant_attached)(
        void *registration_data, const KOLT_TypePluginParticipantInfo *participant_info,
        DDS_Boolean top_level_registration, void *container_plugin_context,
        const DDS_TypeCode *type_code);
    void (*on_participant_detached)(KOLT_TypePluginParticipantData *participant_data);
    KOLT_TypePluginEndpointData *(*on_endpoint_attached)(
        KOLT_TypePluginParticipantData *participant_data,
        const KOLT_TypePluginEndpointInfo *endpoint_info, DDS_Boolean top_level_registration,
        void *container_plugin_context);
    void (*on_endpoint_detached)(KOLT_TypePluginEndpointData *endpoint_data);
    /* 5 to 8: samples */
    DDS_Boolean (*copy_sample)(KOLT_TypePluginEndpointData *endpoint_data, void *destination,
                               const void *source);
    void *(*create_sample)(KOLT_TypePluginEndpointData *endpoint_data);
    void (*destroy_sample)(KOLT_TypePluginEndpointData *endpoint_data, void *sample);
    void (*finalize_optional_members)(KOLT_TypePluginEndpointData *endpoint_data, void *sample,
                                      DDS_Boolean delete_pointers);
    /* 9 and 10: key hashes */
    DDS_Boolean (*instance_to_keyhash)(KOLT_TypePluginEndpointData *endpoint_data,
                                       KOLT_KeyHash *keyhash, const void *instance,
                                       DDS_UnsignedShort encapsulation);
    DDS_Boolean (*serialized_sample_to_keyhash)(KOLT_TypePluginEndpointData *endpoint_data,
                                                KOLT_CdrStream *stream, KOLT_KeyHash *keyhash,
                                                DDS_Boolean deserialize_encapsulation,
                                                void *endpoint_plugin_qos);
    /* 11 to 18: serialisation and sizes */
    DDS_Boolean (*serialize)(KOLT_TypePluginEndpointData *endpoint_data, const void *sample,
                             KOLT_CdrStream *stream, DDS_Boolean serialize_encapsulation,
                             DDS_UnsignedShort encapsulation, DDS_Boolean serialize_sample,
                             void *endpoint_plugin_qos);
    DDS_Boolean (*deserialize)(KOLT_TypePluginEndpointData *endpoint_data, void **sample,
                               DDS_Boolean *drop_sample, KOLT_CdrStream *stream,
                               DDS_Boolean deserialize_encapsulation,
                               DDS_Boolean deserialize_sample, void *endpoint_plugin_qos);
    void *(*get_sample)(KOLT_TypePluginEndpointData *endpoint_data, void **handle);
    void (*return_sample)(KOLT_TypePluginEndpointData *endpoint_data, void *sample, void *handle);
    DDS_UnsignedLong (*get_serialized_sample_max_size)(KOLT_TypePluginEndpointData *endpoint_data,
                                                       DDS_Boolean include_encapsulation,
                                                       DDS_UnsignedShort encapsulation,
                                                       DDS_UnsignedLong current_alignment);
    DDS_UnsignedLong (*get_serialized_sample_min_size)(KOLT_TypePluginEndpointData *endpoint_data,
                                                       DDS_Boolean include_encapsulation,
                                                       DDS_UnsignedShort encapsulation,
                                                       DDS_UnsignedLong current_alignment);
    DDS_UnsignedLong (*get_serialized_sample_size)(KOLT_TypePluginEndpointData *endpoint_data,
                                                   DDS_Boolean include_encapsulation,
                                                   DDS_UnsignedShort encapsulation,
                                                   DDS_UnsignedLong current_alignment,
                                                   const void *sample);
    DDS_UnsignedLong (*get_deserialized_sample_max_size)(void); /* always empty */
    /* 19 to 28: keys */
    KOLT_TypePluginKeyKind (*get_key_kind)(void);
    void *(*get_key)(KOLT_TypePluginEndpointData *endpoint_data, void **handle);
    void (*return_key)(KOLT_TypePluginEndpointData *endpoint_data, void *key, void *handle);
    DDS_UnsignedLong (*get_serialized_key_max_size)(KOLT_TypePluginEndpointData *endpoint_data,
                                                    DDS_Boolean include_encapsulation,
                                                    DDS_UnsignedShort encapsulation,
                                                    DDS_UnsignedLong current_alignment);
    DDS_Boolean (*instance_to_key)(KOLT_TypePluginEndpointData *endpoint_data, void *key,
                                   const void *instance);
    DDS_Boolean (*key_to_instance)(KOLT_TypePluginEndpointData *endpoint_data, void *instance,
                                   const void *key);
    DDS_Boolean (*serialize_key)(KOLT_TypePluginEndpointData *endpoint_data, const void *sample,
                                 KOLT_CdrStream *stream, DDS_Boolean serialize_encapsulation,
                                 DDS_UnsignedShort encapsulation, DDS_Boolean serialize_key,
                                 void *endpoint_plugin_qos);
    DDS_Boolean (*deserialize_key)(KOLT_TypePluginEndpointData *endpoint_data, void **sample,
                                   DDS_Boolean *drop_sample, KOLT_CdrStream *stream,
                                   DDS_Boolean deserialize_encapsulation,
                                   DDS_Boolean deserialize_key, void *endpoint_plugin_qos);
    DDS_Boolean (*deserialize_key_sample)(KOLT_TypePluginEndpointData *endpoint_data, void **sample,
                                          DDS_Boolean *drop_sample, KOLT_CdrStream *stream,
                                          DDS_Boolean deserialize_encapsulation,
                                          DDS_Boolean deserialize_key, void *endpoint_plugin_qos);
    DDS_Boolean (*serialized_key_to_keyhash)(void); /* always empty */
    /* 29: type */
    const DDS_TypeCode *type_code;
    /* 30 to 33: writer buffers. `get_buffer` gives at least `size` bytes in `buffer->buffer` */
    DDS_Boolean (*get_buffer)(KOLT_TypePluginEndpointData *endpoint_data, KOLT_CdrStream *buffer,
                              DDS_UnsignedLong size);
    DDS_Boolean (*get_buffer_w_params)(void); /* always empty */
    void (*return_buffer)(KOLT_TypePluginEndpointData *endpoint_data, KOLT_CdrStream *buffer);
    void (*return_buffer_w_params)(void); /* always empty */
    /* 34 to 38: samples loaned to the writer's application; always empty */
    void (*get_writer_loaned_sample)(void);
    void (*return_writer_loaned_sample)(void);
    void (*return_writer_loaned_sample_from_cookie)(void);
    void (*validate_writer_loaned_sample)(void);
    void (*set_writer_loaned_sample_serialized_state)(void);
    /* 39 and 40: names. Narrowing compares `endpoint_type_name`. */
    const char *endpoint_type_name;
    const char *type_code_name;
    KOLT_TypePluginVersion version; /* 2.0.0.0 */
    DDS_Boolean is_metadata_type;   /* false: a plain type */
} KOLT_TypePlugin;

#define KOLT_TYPE_PLUGIN_VERSION_2_0 \
    { 2, 0, 0, 0 }

/* ---- Default participant and endpoint data ------------------------------------------------ */

/* Participant data that keeps the type's programs. NULL when memory runs out. Deleting it gives the
 * programs back; its endpoint data go first. */
KOLT_EXPORT KOLT_TypePluginParticipantData *KOLT_TypePlugin_ParticipantData_new(
    const KOLT_TypePluginParticipantInfo *participant_info);
KOLT_EXPORT void KOLT_TypePlugin_ParticipantData_delete(KOLT_TypePluginParticipantData *self);
/* Takes over the caller's reference on `programs`, and gives back the one that was held before. */
KOLT_EXPORT void KOLT_TypePlugin_ParticipantData_set_programs(KOLT_TypePluginParticipantData *self,
                                                              const KOLT_TypePrograms *programs);
KOLT_EXPORT const KOLT_TypePrograms *KOLT_TypePlugin_ParticipantData_programs(
    const KOLT_TypePluginParticipantData *self);

/* Endpoint data with a pool of samples and keys made by the four functions (the key functions may
 * both be NULL for unkeyed types). The pools are thread-safe, and keep some of what is returned for
 * reuse. NULL when memory runs out, a sample can't be made in advance, or an argument is missing.
 * Deleting it destroys the pooled samples and keys; the ones that are out must be back by then. */
KOLT_EXPORT KOLT_TypePluginEndpointData *KOLT_TypePlugin_EndpointData_new(
    KOLT_TypePluginParticipantData *participant_data, const KOLT_TypePluginEndpointInfo *info,
    void *(*create_data)(void), void (*destroy_data)(void *data), void *(*create_key)(void),
    void (*destroy_key)(void *key));
KOLT_EXPORT void KOLT_TypePlugin_EndpointData_delete(KOLT_TypePluginEndpointData *self);
KOLT_EXPORT const KOLT_TypePrograms *KOLT_TypePlugin_EndpointData_programs(
    const KOLT_TypePluginEndpointData *self);
/* Makes the MD5 key-hash stream, sized by the two maximum key sizes, without which
 * KOLT_TypePlugin_instance_to_keyhash fails. False: memory ran out. */
KOLT_EXPORT DDS_Boolean KOLT_TypePlugin_EndpointData_create_md5_stream(
    KOLT_TypePluginEndpointData *self, DDS_UnsignedLong key_max_size,
    DDS_UnsignedLong keyhash_key_max_size);
/* Caches the serialised maximum size. */
KOLT_EXPORT void KOLT_TypePlugin_EndpointData_set_max_size(KOLT_TypePluginEndpointData *self,
                                                           DDS_UnsignedLong max_size);
KOLT_EXPORT DDS_UnsignedLong
KOLT_TypePlugin_EndpointData_max_size(const KOLT_TypePluginEndpointData *self);
/* Makes the writer's buffer pool: buffers are sized by what a sample needs, up to what
 * `max_size_function` says, and are kept for reuse. Thread-safe: buffers come back on the
 * thread that lets go of the sample last, and may do so after the endpoint data were deleted.
 * False: memory ran out, or a function or the participant's programs are missing. */
KOLT_EXPORT DDS_Boolean KOLT_TypePlugin_EndpointData_create_writer_pool(
    KOLT_TypePluginEndpointData *self,
    DDS_UnsignedLong (*max_size_function)(KOLT_TypePluginEndpointData *, DDS_Boolean,
                                          DDS_UnsignedShort, DDS_UnsignedLong),
    DDS_UnsignedLong (*size_function)(KOLT_TypePluginEndpointData *, DDS_Boolean, DDS_UnsignedShort,
                                      DDS_UnsignedLong, const void *));

/* ---- Generic slot operations --------------------------------------------------------------
 * Each fits the slot of the same name. They find the programs in the endpoint data. A `handle` or
 * `drop_sample` may be NULL; no sample is ever marked for dropping. Serialising writes the header
 * when `serialize_encapsulation` is set and the body when `serialize_sample` or `_key` is; without
 * a header the body begins at alignment 0 and `stream->encapsulation` tells a reader what it is.
 * Reading leaves the position at the end of the stream. */
KOLT_EXPORT void *KOLT_TypePlugin_create_sample(KOLT_TypePluginEndpointData *endpoint_data);
KOLT_EXPORT void KOLT_TypePlugin_destroy_sample(KOLT_TypePluginEndpointData *endpoint_data,
                                                void *sample);
KOLT_EXPORT void *KOLT_TypePlugin_get_sample(KOLT_TypePluginEndpointData *endpoint_data,
                                             void **handle);
KOLT_EXPORT void KOLT_TypePlugin_return_sample(KOLT_TypePluginEndpointData *endpoint_data,
                                               void *sample, void *handle);
KOLT_EXPORT void *KOLT_TypePlugin_get_key(KOLT_TypePluginEndpointData *endpoint_data,
                                          void **handle);
KOLT_EXPORT void KOLT_TypePlugin_return_key(KOLT_TypePluginEndpointData *endpoint_data, void *key,
                                            void *handle);
KOLT_EXPORT DDS_Boolean KOLT_TypePlugin_get_buffer(KOLT_TypePluginEndpointData *endpoint_data,
                                                   KOLT_CdrStream *buffer, DDS_UnsignedLong size);
KOLT_EXPORT void KOLT_TypePlugin_return_buffer(KOLT_TypePluginEndpointData *endpoint_data,
                                               KOLT_CdrStream *buffer);
KOLT_EXPORT DDS_Boolean KOLT_TypePlugin_instance_to_keyhash(
    KOLT_TypePluginEndpointData *endpoint_data, KOLT_KeyHash *keyhash, const void *instance,
    DDS_UnsignedShort encapsulation);
KOLT_EXPORT DDS_Boolean KOLT_TypePlugin_serialize(KOLT_TypePluginEndpointData *endpoint_data,
                                                  const void *sample, KOLT_CdrStream *stream,
                                                  DDS_Boolean serialize_encapsulation,
                                                  DDS_UnsignedShort encapsulation,
                                                  DDS_Boolean serialize_sample,
                                                  void *endpoint_plugin_qos);
KOLT_EXPORT DDS_Boolean KOLT_TypePlugin_deserialize(KOLT_TypePluginEndpointData *endpoint_data,
                                                    void **sample, DDS_Boolean *drop_sample,
                                                    KOLT_CdrStream *stream,
                                                    DDS_Boolean deserialize_encapsulation,
                                                    DDS_Boolean deserialize_sample,
                                                    void *endpoint_plugin_qos);
KOLT_EXPORT DDS_Boolean KOLT_TypePlugin_serialize_key(KOLT_TypePluginEndpointData *endpoint_data,
                                                      const void *sample, KOLT_CdrStream *stream,
                                                      DDS_Boolean serialize_encapsulation,
                                                      DDS_UnsignedShort encapsulation,
                                                      DDS_Boolean serialize_key,
                                                      void *endpoint_plugin_qos);
/* Reads a key-only payload into `*sample`. */
KOLT_EXPORT DDS_Boolean KOLT_TypePlugin_deserialize_key(KOLT_TypePluginEndpointData *endpoint_data,
                                                        void **sample, DDS_Boolean *drop_sample,
                                                        KOLT_CdrStream *stream,
                                                        DDS_Boolean deserialize_encapsulation,
                                                        DDS_Boolean deserialize_key,
                                                        void *endpoint_plugin_qos);
/* Reads the key members of a full sample's payload into `*sample`. */
KOLT_EXPORT DDS_Boolean KOLT_TypePlugin_deserialize_key_sample(
    KOLT_TypePluginEndpointData *endpoint_data, void **sample, DDS_Boolean *drop_sample,
    KOLT_CdrStream *stream, DDS_Boolean deserialize_encapsulation, DDS_Boolean deserialize_key,
    void *endpoint_plugin_qos);
/* Sizes, of a body that begins at offset `current_alignment`, or of header and body. An
 * `encapsulation` that is not the type's stands for the one of the endpoint's representation. With
 * `overflow` (which may be NULL) set on return, the size is unbounded. 0 without programs. */
KOLT_EXPORT DDS_UnsignedLong KOLT_TypePlugin_get_serialized_sample_max_size(
    KOLT_TypePluginEndpointData *endpoint_data, DDS_Boolean *overflow,
    DDS_Boolean include_encapsulation, DDS_UnsignedShort encapsulation,
    DDS_UnsignedLong current_alignment);
KOLT_EXPORT DDS_UnsignedLong KOLT_TypePlugin_get_serialized_key_max_size(
    KOLT_TypePluginEndpointData *endpoint_data, DDS_Boolean *overflow,
    DDS_Boolean include_encapsulation, DDS_UnsignedShort encapsulation,
    DDS_UnsignedLong current_alignment);
KOLT_EXPORT DDS_UnsignedLong KOLT_TypePlugin_get_serialized_sample_min_size(
    KOLT_TypePluginEndpointData *endpoint_data, DDS_Boolean include_encapsulation,
    DDS_UnsignedShort encapsulation, DDS_UnsignedLong current_alignment);
KOLT_EXPORT DDS_UnsignedLong KOLT_TypePlugin_get_serialized_sample_size(
    KOLT_TypePluginEndpointData *endpoint_data, DDS_Boolean include_encapsulation,
    DDS_UnsignedShort encapsulation, DDS_UnsignedLong current_alignment, const void *sample);

KOLT_EXTERN_C_END
