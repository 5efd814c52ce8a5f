// SPDX-License-Identifier: Apache-2.0
// The engine's cache of a reader, with KOLT in front of it where samples come in: there it applies the
// policies that the engine does not know.
#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include "engine/cyclone/cyclone.hpp"
#include "engine/subscription/auto_purge.hpp"
#include "engine/subscription/instance_index.hpp"
#include "engine/subscription/time_based_filter.hpp"

struct dds_rhc;

namespace kolt::engine {

class ContentFilter;

// Lives longer than the engine's reader.
class ReaderCache {
  public:
    struct Policies {
        TimeBasedFilter::Rules time_based_filter;
        AutoPurge::Rules auto_purge;
    };

    ReaderCache();
    ~ReaderCache();
    ReaderCache(const ReaderCache &) = delete;
    ReaderCache &operator=(const ReaderCache &) = delete;

    // Returns what the engine's reader is created with. What does not pass `filter`, which may be
    // nullptr, does not reach the reader.
    dds_rhc *engine(const ContentFilter *filter, ddsi_domaingv *domain);
    // Applies policies to what comes from now on, and to what waits already.
    void set_policies(const Policies &policies);
    // True when instances are purged some time after they have ended.
    bool purges() const;
    // With instances that were in the cache before: purges them, too. May throw std::bad_alloc.
    void adopt(const std::vector<InstanceIndex::Known> &held);
    // Lets the clock run for what the two functions above have changed.
    void begin_to_apply();
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
