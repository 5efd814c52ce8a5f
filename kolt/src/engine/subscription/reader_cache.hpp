// SPDX-License-Identifier: Apache-2.0
// The engine's cache of a reader, with KOLT in front of it where samples come in.
#pragma once

#include <atomic>
#include <memory>

#include "engine/cyclone/cyclone.hpp"
#include "engine/subscription/instance_index.hpp"

struct dds_rhc;

namespace kolt::engine {

// Lives longer than the engine's reader.
class ReaderCache {
  public:
    ReaderCache();
    ~ReaderCache();
    ReaderCache(const ReaderCache &) = delete;
    ReaderCache &operator=(const ReaderCache &) = delete;

    // Returns what the engine's reader is created with.
    dds_rhc *engine();
    // Has the index kept from now on.
    void keep_index() { has_index_.store(true); }
    bool has_index() const { return has_index_.load(); }
    InstanceIndex &index() { return index_; }

  private:
    struct Front;  // what the engine calls

    std::unique_ptr<Front> front_;
    std::atomic<bool> has_index_{false};
    InstanceIndex index_;
};

}  // namespace kolt::engine
