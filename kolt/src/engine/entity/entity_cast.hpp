// SPDX-License-Identifier: Apache-2.0
// From the record of an entity to what stands behind it.
#pragma once

#include "engine/entity/entity.hpp"

namespace kolt::engine {

// Returns the implementation if the entity is of one of the kinds; nullptr otherwise, as for a reader
// that was cast to a writer.
template <typename Impl, EntityKind... kKinds>
Impl *entity_cast(KOLT_EntityImpl *impl) {
    return impl != nullptr && ((impl->kind() == kKinds) || ...) ? static_cast<Impl *>(impl)
                                                                : nullptr;
}

}  // namespace kolt::engine
