// SPDX-License-Identifier: Apache-2.0
// The default participant and endpoint data.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "kolt/type_plugin.h"
#include "type/plugin/plugin_pools.hpp"

namespace kolt::type {

// Keys on their way to a hash. Short ones never come here.
struct KeyHashStream {
    DDS_UnsignedLong key_max_size = 0;
    DDS_UnsignedLong keyhash_key_max_size = 0;
    std::mutex mutex;
    std::vector<DDS_Octet> buffer;  // guarded by mutex
};

struct BufferPoolRelease {
    void operator()(BufferPool *pool) const { pool->release(); }
};

}  // namespace kolt::type

struct KOLT_TypePluginParticipantData {
    DDS_DomainId_t domain_id = 0;
    const KOLT_TypePrograms *programs = nullptr;  // a reference of its own
};

struct KOLT_TypePluginEndpointData {
    const KOLT_TypePluginParticipantData *participant = nullptr;
    KOLT_TypePluginEndpointInfo info{};
    void *(*create_data)(void) = nullptr;
    void (*destroy_data)(void *) = nullptr;
    std::unique_ptr<kolt::type::RecordPool> samples;
    std::unique_ptr<kolt::type::RecordPool> keys;
    std::unique_ptr<kolt::type::KeyHashStream> key_hash_stream;
    std::unique_ptr<kolt::type::BufferPool, kolt::type::BufferPoolRelease> buffers;
    DDS_UnsignedLong max_size = 0;
};
