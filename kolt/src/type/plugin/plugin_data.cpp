// SPDX-License-Identifier: Apache-2.0
// Default participant and endpoint data.
#include "type/plugin/plugin_data.hpp"

#include <algorithm>
#include <new>

namespace {

using kolt::type::BufferPool;
using kolt::type::KeyHashStream;
using kolt::type::RecordPool;

// Records that are kept beyond those made in advance.
constexpr std::size_t kIdleRecords = 32;
constexpr std::size_t kIdleKeys = 4;
// The key stream's buffer grows on demand beyond this.
constexpr DDS_UnsignedLong kLargestKeyReserve = 64 * 1024;

// Runs `make`; what it throws is out of memory.
template <typename Make>
bool no_throw(Make &&make) {
    try {
        return make();
    } catch (...) {
        return false;
    }
}

}  // namespace

KOLT_TypePluginParticipantData *KOLT_TypePlugin_ParticipantData_new(
    const KOLT_TypePluginParticipantInfo *participant_info) {
    auto *const data = new (std::nothrow) KOLT_TypePluginParticipantData;
    if (data != nullptr && participant_info != nullptr) {
        data->domain_id = participant_info->domain_id;
    }
    return data;
}

void KOLT_TypePlugin_ParticipantData_delete(KOLT_TypePluginParticipantData *self) {
    if (self == nullptr) {
        return;
    }
    KOLT_TypePrograms_release(self->programs);
    delete self;
}

void KOLT_TypePlugin_ParticipantData_set_programs(KOLT_TypePluginParticipantData *self,
                                                  const KOLT_TypePrograms *programs) {
    if (self == nullptr) {
        return;
    }
    KOLT_TypePrograms_release(self->programs);
    self->programs = programs;
}

const KOLT_TypePrograms *KOLT_TypePlugin_ParticipantData_programs(
    const KOLT_TypePluginParticipantData *self) {
    return self == nullptr ? nullptr : self->programs;
}

KOLT_TypePluginEndpointData *KOLT_TypePlugin_EndpointData_new(
    KOLT_TypePluginParticipantData *participant_data, const KOLT_TypePluginEndpointInfo *info,
    void *(*create_data)(void), void (*destroy_data)(void *data), void *(*create_key)(void),
    void (*destroy_key)(void *key)) {
    if (participant_data == nullptr || info == nullptr || create_data == nullptr ||
        destroy_data == nullptr || (create_key == nullptr) != (destroy_key == nullptr)) {
        return nullptr;
    }
    std::unique_ptr<KOLT_TypePluginEndpointData> data;
    const bool made = no_throw([&] {
        data = std::make_unique<KOLT_TypePluginEndpointData>();
        data->participant = participant_data;
        data->info = *info;
        data->create_data = create_data;
        data->destroy_data = destroy_data;
        data->samples = std::make_unique<RecordPool>(create_data, destroy_data,
                                                     info->initial_samples + kIdleRecords);
        if (create_key != nullptr) {
            data->keys = std::make_unique<RecordPool>(create_key, destroy_key, kIdleKeys);
        }
        return data->samples->fill(info->initial_samples);
    });
    return made ? data.release() : nullptr;
}

void KOLT_TypePlugin_EndpointData_delete(KOLT_TypePluginEndpointData *self) {
    delete self;
}

const KOLT_TypePrograms *KOLT_TypePlugin_EndpointData_programs(
    const KOLT_TypePluginEndpointData *self) {
    return self == nullptr ? nullptr : self->participant->programs;
}

DDS_Boolean KOLT_TypePlugin_EndpointData_create_md5_stream(KOLT_TypePluginEndpointData *self,
                                                           DDS_UnsignedLong key_max_size,
                                                           DDS_UnsignedLong keyhash_key_max_size) {
    if (self == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    return no_throw([&] {
        auto stream = std::make_unique<KeyHashStream>();
        stream->key_max_size = key_max_size;
        stream->keyhash_key_max_size = keyhash_key_max_size;
        stream->buffer.resize(std::min(keyhash_key_max_size, kLargestKeyReserve));
        self->key_hash_stream = std::move(stream);
        return true;
    });
}

void KOLT_TypePlugin_EndpointData_set_max_size(KOLT_TypePluginEndpointData *self,
                                               DDS_UnsignedLong max_size) {
    if (self != nullptr) {
        self->max_size = max_size;
    }
}

DDS_UnsignedLong KOLT_TypePlugin_EndpointData_max_size(const KOLT_TypePluginEndpointData *self) {
    return self == nullptr ? 0 : self->max_size;
}

DDS_Boolean KOLT_TypePlugin_EndpointData_create_writer_pool(
    KOLT_TypePluginEndpointData *self,
    DDS_UnsignedLong (*max_size_function)(KOLT_TypePluginEndpointData *, DDS_Boolean,
                                          DDS_UnsignedShort, DDS_UnsignedLong),
    DDS_UnsignedLong (*size_function)(KOLT_TypePluginEndpointData *, DDS_Boolean, DDS_UnsignedShort,
                                      DDS_UnsignedLong, const void *)) {
    if (self == nullptr || max_size_function == nullptr || size_function == nullptr ||
        self->participant->programs == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    const DDS_UnsignedShort encapsulation = DDS_TypeCode_get_native_encapsulation(
        KOLT_TypePrograms_type(self->participant->programs), self->info.representation);
    const DDS_UnsignedLong size = max_size_function(self, DDS_BOOLEAN_TRUE, encapsulation, 0);
    // A few bytes more than the largest sample: the payload's padding to a multiple of 4.
    const std::size_t largest = size >= KOLT_CDR_MAX_SERIALIZED_SIZE_UNBOUNDED
                                    ? 0
                                    : (std::size_t{size} + 3) & ~std::size_t{3};
    self->buffers.reset(BufferPool::create(largest));
    return self->buffers != nullptr;
}
