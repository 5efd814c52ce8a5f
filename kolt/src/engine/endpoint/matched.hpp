// SPDX-License-Identifier: Apache-2.0
// The handles of the endpoints that an endpoint is matched with.
#pragma once

#include <cstddef>
#include <vector>

#include "engine/cyclone/convert.hpp"
#include "engine/entity/entity.hpp"
#include "kolt/sequence.h"

namespace kolt::engine {

// Copies the handles into the caller's sequence. `get` is the engine's function for a writer or a
// reader, which fills an array and returns how many there are.
inline DDS_ReturnCode_t get_matched(const Entity &entity,
                                    dds_return_t (*get)(dds_entity_t, dds_instance_handle_t *,
                                                        std::size_t),
                                    DDS_InstanceHandleSeq *handles, const char *method) {
    if (!entity.is_enabled()) {
        return not_enabled(method);
    }
    std::vector<dds_instance_handle_t> found(8);
    while (true) {
        const dds_return_t count = get(entity.engine(), found.data(), found.size());
        if (count < 0) {
            return to_return_code(count);
        }
        if (static_cast<std::size_t>(count) <= found.size()) {
            found.resize(static_cast<std::size_t>(count));
            break;
        }
        found.resize(static_cast<std::size_t>(count));
    }
    const auto length = static_cast<DDS_Long>(found.size());
    if (DDS_InstanceHandleSeq_ensure_length(handles, length, length) == DDS_BOOLEAN_FALSE) {
        return fail(DDS_RETCODE_OUT_OF_RESOURCES, method,
                    "the sequence has no room for %d handles and cannot grow",
                    static_cast<int>(length));
    }
    for (DDS_Long i = 0; i < length; ++i) {
        *DDS_InstanceHandleSeq_get_reference(handles, i) = found[static_cast<std::size_t>(i)];
    }
    return DDS_RETCODE_OK;
}

}  // namespace kolt::engine
