// SPDX-License-Identifier: Apache-2.0
// The cache of a reader: the engine's own, but that a writer of this process whose write has been
// ended does not wait for room in it.
#pragma once

#include "engine/cyclone/cyclone.hpp"

namespace kolt::engine {

// Creates a cache for dds_create_reader_rhc, which takes it over. Throws std::bad_alloc.
dds_rhc *create_reader_cache();

// Deletes a cache that was not taken over.
void delete_reader_cache(dds_rhc *cache);

}  // namespace kolt::engine
