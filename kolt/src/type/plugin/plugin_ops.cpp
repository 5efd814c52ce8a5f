// SPDX-License-Identifier: Apache-2.0
// The generic slot operations of type plugins.
#include <cstring>

#include "type/cdr/cdr_codec.hpp"
#include "type/plugin/plugin_data.hpp"

namespace {

using kolt::type::BufferPool;
using kolt::type::Encapsulation;
using kolt::type::Part;

constexpr std::size_t kHeaderSize = KOLT_ENCAPSULATION_HEADER_SIZE;
constexpr std::size_t kKeyOnStack = 256;

const KOLT_TypePrograms *programs_of(const KOLT_TypePluginEndpointData *endpoint_data) {
    return KOLT_TypePlugin_EndpointData_programs(endpoint_data);
}

// A cursor within its buffer.
bool is_usable(const KOLT_CdrStream *stream) {
    return stream != nullptr && stream->buffer != nullptr && stream->position <= stream->length;
}

DDS_Boolean write(KOLT_TypePluginEndpointData *endpoint_data, const void *sample,
                  KOLT_CdrStream *stream, bool with_header, DDS_UnsignedShort identifier,
                  bool with_body, Part part) {
    const KOLT_TypePrograms *const programs = programs_of(endpoint_data);
    Encapsulation encapsulation;
    if (programs == nullptr || !is_usable(stream) || (with_body && sample == nullptr) ||
        !kolt::type::resolve_encapsulation(*programs, identifier, part, &encapsulation)) {
        return DDS_BOOLEAN_FALSE;
    }
    const std::size_t start = stream->position;
    if (with_header) {
        if (kHeaderSize > stream->length - stream->position) {
            return DDS_BOOLEAN_FALSE;
        }
        stream->position += kHeaderSize;
    }
    std::size_t body = 0;
    if (with_body) {
        if (!kolt::type::encode_body(*programs, encapsulation, part, sample,
                                     stream->buffer + stream->position,
                                     stream->length - stream->position, &body)) {
            return DDS_BOOLEAN_FALSE;
        }
        stream->position += body;
    }
    if (with_header) {
        kolt::type::write_header(identifier, body, stream->buffer + start);
        stream->encapsulation = identifier;
    }
    return DDS_BOOLEAN_TRUE;
}

using Decoder = bool (*)(const KOLT_TypePrograms &, const Encapsulation &, const DDS_Octet *,
                         std::size_t, void *);

DDS_Boolean read(KOLT_TypePluginEndpointData *endpoint_data, void **sample,
                 DDS_Boolean *drop_sample, KOLT_CdrStream *stream, bool with_header, bool with_body,
                 Part part, Decoder decode) {
    const KOLT_TypePrograms *const programs = programs_of(endpoint_data);
    if (drop_sample != nullptr) {
        *drop_sample = DDS_BOOLEAN_FALSE;
    }
    if (programs == nullptr || !is_usable(stream)) {
        return DDS_BOOLEAN_FALSE;
    }
    std::size_t body = stream->length - stream->position;
    if (with_header) {
        if (!kolt::type::read_header(stream->buffer + stream->position, body,
                                     &stream->encapsulation, &body)) {
            return DDS_BOOLEAN_FALSE;
        }
        stream->position += kHeaderSize;
    }
    if (!with_body) {
        return DDS_BOOLEAN_TRUE;
    }
    Encapsulation encapsulation;
    if (sample == nullptr || *sample == nullptr ||
        !kolt::type::resolve_encapsulation(*programs, stream->encapsulation, part,
                                           &encapsulation) ||
        !decode(*programs, encapsulation, stream->buffer + stream->position, body, *sample)) {
        return DDS_BOOLEAN_FALSE;
    }
    // Passes over bytes that the type does not know of, too.
    stream->position = stream->length;
    return DDS_BOOLEAN_TRUE;
}

// The encapsulation that a size is asked for; one that is not the type's stands for the endpoint's
// own.
bool resolve_for_size(const KOLT_TypePluginEndpointData *endpoint_data,
                      const KOLT_TypePrograms *programs, DDS_UnsignedShort identifier, Part part,
                      Encapsulation *encapsulation) {
    if (programs == nullptr) {
        return false;
    }
    if (kolt::type::resolve_encapsulation(*programs, identifier, part, encapsulation)) {
        return true;
    }
    const DDS_UnsignedShort own =
        DDS_TypeCode_get_native_encapsulation(programs->type, endpoint_data->info.representation);
    const DDS_UnsignedShort any =
        DDS_TypeCode_get_native_encapsulation(programs->type, DDS_AUTO_DATA_REPRESENTATION);
    return kolt::type::resolve_encapsulation(*programs, own, part, encapsulation) ||
           kolt::type::resolve_encapsulation(*programs, any, part, encapsulation);
}

using Bound = std::uint64_t (*)(const KOLT_TypePrograms &, const Encapsulation &, Part,
                                std::size_t);

DDS_UnsignedLong bound_size(const KOLT_TypePluginEndpointData *endpoint_data, DDS_Boolean *overflow,
                            DDS_Boolean include_encapsulation, DDS_UnsignedShort identifier,
                            DDS_UnsignedLong current_alignment, Part part, Bound bound) {
    if (overflow != nullptr) {
        *overflow = DDS_BOOLEAN_FALSE;
    }
    const KOLT_TypePrograms *const programs = programs_of(endpoint_data);
    Encapsulation encapsulation;
    if (!resolve_for_size(endpoint_data, programs, identifier, part, &encapsulation)) {
        return 0;
    }
    // Alignment is counted from behind the header.
    const std::size_t start = include_encapsulation ? 0 : current_alignment;
    std::uint64_t size = bound(*programs, encapsulation, part, start);
    if (size != UINT64_MAX && include_encapsulation) {
        size += kHeaderSize;
    }
    const DDS_UnsignedLong result = kolt::type::saturate_size(size);
    if (overflow != nullptr && result == KOLT_CDR_MAX_SERIALIZED_SIZE_UNBOUNDED) {
        *overflow = DDS_BOOLEAN_TRUE;
    }
    return result;
}

}  // namespace

void KOLT_CdrStream_set(KOLT_CdrStream *self, DDS_Octet *buffer, std::size_t length) {
    if (self == nullptr) {
        return;
    }
    *self = {buffer, buffer == nullptr ? 0 : length, 0, KOLT_ENCAPSULATION_INVALID};
}

void *KOLT_TypePlugin_create_sample(KOLT_TypePluginEndpointData *endpoint_data) {
    return endpoint_data == nullptr ? nullptr : endpoint_data->create_data();
}

void KOLT_TypePlugin_destroy_sample(KOLT_TypePluginEndpointData *endpoint_data, void *sample) {
    if (endpoint_data != nullptr && sample != nullptr) {
        endpoint_data->destroy_data(sample);
    }
}

void *KOLT_TypePlugin_get_sample(KOLT_TypePluginEndpointData *endpoint_data, void **handle) {
    if (handle != nullptr) {
        *handle = nullptr;
    }
    return endpoint_data == nullptr ? nullptr : endpoint_data->samples->get();
}

void KOLT_TypePlugin_return_sample(KOLT_TypePluginEndpointData *endpoint_data, void *sample,
                                   void *) {
    if (endpoint_data != nullptr) {
        endpoint_data->samples->give_back(sample);
    }
}

void *KOLT_TypePlugin_get_key(KOLT_TypePluginEndpointData *endpoint_data, void **handle) {
    if (handle != nullptr) {
        *handle = nullptr;
    }
    if (endpoint_data == nullptr || endpoint_data->keys == nullptr) {
        return nullptr;
    }
    return endpoint_data->keys->get();
}

void KOLT_TypePlugin_return_key(KOLT_TypePluginEndpointData *endpoint_data, void *key, void *) {
    if (endpoint_data != nullptr && endpoint_data->keys != nullptr) {
        endpoint_data->keys->give_back(key);
    }
}

DDS_Boolean KOLT_TypePlugin_get_buffer(KOLT_TypePluginEndpointData *endpoint_data,
                                       KOLT_CdrStream *buffer, DDS_UnsignedLong size) {
    if (endpoint_data == nullptr || buffer == nullptr || endpoint_data->buffers == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    std::size_t capacity = 0;
    DDS_Octet *const bytes = endpoint_data->buffers->get(size, &capacity);
    if (bytes == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    KOLT_CdrStream_set(buffer, bytes, capacity);
    return DDS_BOOLEAN_TRUE;
}

void KOLT_TypePlugin_return_buffer(KOLT_TypePluginEndpointData *, KOLT_CdrStream *buffer) {
    if (buffer == nullptr) {
        return;
    }
    BufferPool::give_back(buffer->buffer);
    KOLT_CdrStream_set(buffer, nullptr, 0);
}

DDS_Boolean KOLT_TypePlugin_instance_to_keyhash(KOLT_TypePluginEndpointData *endpoint_data,
                                                KOLT_KeyHash *keyhash, const void *instance,
                                                DDS_UnsignedShort) {
    const KOLT_TypePrograms *const programs = programs_of(endpoint_data);
    if (programs == nullptr || keyhash == nullptr || instance == nullptr ||
        endpoint_data->key_hash_stream == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    DDS_Octet small[kKeyOnStack];
    std::size_t length = sizeof(small);
    if (KOLT_Cdr_key_of_record(programs, instance, small, &length)) {
        KOLT_Cdr_keyhash(programs, small, length, DDS_BOOLEAN_FALSE, keyhash->value);
    } else if (length <= sizeof(small)) {
        return DDS_BOOLEAN_FALSE;  // not too long, but not serialisable
    } else {
        kolt::type::KeyHashStream &stream = *endpoint_data->key_hash_stream;
        try {
            const std::lock_guard lock(stream.mutex);
            if (stream.buffer.size() < length) {
                stream.buffer.resize(length);
            }
            length = stream.buffer.size();
            if (!KOLT_Cdr_key_of_record(programs, instance, stream.buffer.data(), &length)) {
                return DDS_BOOLEAN_FALSE;
            }
            KOLT_Cdr_keyhash(programs, stream.buffer.data(), length, DDS_BOOLEAN_FALSE,
                             keyhash->value);
        } catch (...) {  // out of memory
            return DDS_BOOLEAN_FALSE;
        }
    }
    keyhash->length = sizeof(keyhash->value);
    return DDS_BOOLEAN_TRUE;
}

DDS_Boolean KOLT_TypePlugin_serialize(KOLT_TypePluginEndpointData *endpoint_data,
                                      const void *sample, KOLT_CdrStream *stream,
                                      DDS_Boolean serialize_encapsulation,
                                      DDS_UnsignedShort encapsulation, DDS_Boolean serialize_sample,
                                      void *) {
    return write(endpoint_data, sample, stream, serialize_encapsulation != 0, encapsulation,
                 serialize_sample != 0, Part::kSample);
}

DDS_Boolean KOLT_TypePlugin_deserialize(KOLT_TypePluginEndpointData *endpoint_data, void **sample,
                                        DDS_Boolean *drop_sample, KOLT_CdrStream *stream,
                                        DDS_Boolean deserialize_encapsulation,
                                        DDS_Boolean deserialize_sample, void *) {
    return read(endpoint_data, sample, drop_sample, stream, deserialize_encapsulation != 0,
                deserialize_sample != 0, Part::kSample, kolt::type::decode_sample);
}

DDS_Boolean KOLT_TypePlugin_serialize_key(KOLT_TypePluginEndpointData *endpoint_data,
                                          const void *sample, KOLT_CdrStream *stream,
                                          DDS_Boolean serialize_encapsulation,
                                          DDS_UnsignedShort encapsulation,
                                          DDS_Boolean serialize_key, void *) {
    return write(endpoint_data, sample, stream, serialize_encapsulation != 0, encapsulation,
                 serialize_key != 0, Part::kKey);
}

DDS_Boolean KOLT_TypePlugin_deserialize_key(KOLT_TypePluginEndpointData *endpoint_data,
                                            void **sample, DDS_Boolean *drop_sample,
                                            KOLT_CdrStream *stream,
                                            DDS_Boolean deserialize_encapsulation,
                                            DDS_Boolean deserialize_key, void *) {
    return read(endpoint_data, sample, drop_sample, stream, deserialize_encapsulation != 0,
                deserialize_key != 0, Part::kKey, kolt::type::decode_key);
}

DDS_Boolean KOLT_TypePlugin_deserialize_key_sample(KOLT_TypePluginEndpointData *endpoint_data,
                                                   void **sample, DDS_Boolean *drop_sample,
                                                   KOLT_CdrStream *stream,
                                                   DDS_Boolean deserialize_encapsulation,
                                                   DDS_Boolean deserialize_key, void *) {
    return read(endpoint_data, sample, drop_sample, stream, deserialize_encapsulation != 0,
                deserialize_key != 0, Part::kSample, kolt::type::decode_key_of_sample);
}

DDS_UnsignedLong KOLT_TypePlugin_get_serialized_sample_max_size(
    KOLT_TypePluginEndpointData *endpoint_data, DDS_Boolean *overflow,
    DDS_Boolean include_encapsulation, DDS_UnsignedShort encapsulation,
    DDS_UnsignedLong current_alignment) {
    return bound_size(endpoint_data, overflow, include_encapsulation, encapsulation,
                      current_alignment, Part::kSample, kolt::type::largest_body);
}

DDS_UnsignedLong KOLT_TypePlugin_get_serialized_key_max_size(
    KOLT_TypePluginEndpointData *endpoint_data, DDS_Boolean *overflow,
    DDS_Boolean include_encapsulation, DDS_UnsignedShort encapsulation,
    DDS_UnsignedLong current_alignment) {
    return bound_size(endpoint_data, overflow, include_encapsulation, encapsulation,
                      current_alignment, Part::kKey, kolt::type::largest_body);
}

DDS_UnsignedLong KOLT_TypePlugin_get_serialized_sample_min_size(
    KOLT_TypePluginEndpointData *endpoint_data, DDS_Boolean include_encapsulation,
    DDS_UnsignedShort encapsulation, DDS_UnsignedLong current_alignment) {
    return bound_size(endpoint_data, nullptr, include_encapsulation, encapsulation,
                      current_alignment, Part::kSample, kolt::type::smallest_body);
}

DDS_UnsignedLong KOLT_TypePlugin_get_serialized_sample_size(
    KOLT_TypePluginEndpointData *endpoint_data, DDS_Boolean include_encapsulation,
    DDS_UnsignedShort encapsulation, DDS_UnsignedLong current_alignment, const void *sample) {
    const KOLT_TypePrograms *const programs = programs_of(endpoint_data);
    Encapsulation resolved;
    std::size_t size = 0;
    if (sample == nullptr ||
        !resolve_for_size(endpoint_data, programs, encapsulation, Part::kSample, &resolved) ||
        !kolt::type::measure_body(*programs, resolved, Part::kSample, sample,
                                  include_encapsulation ? 0 : current_alignment, &size)) {
        return 0;
    }
    const DDS_UnsignedLong result =
        kolt::type::saturate_size(size + (include_encapsulation ? kHeaderSize : 0));
    return result == KOLT_CDR_MAX_SERIALIZED_SIZE_UNBOUNDED ? 0 : result;
}
