// SPDX-License-Identifier: Apache-2.0
// TIME_BASED_FILTER (DDS 1.4, 2.2.3.12): of each instance a reader gets one sample a period.
//
// The first sample goes to the cache at once. Of those that come within the period after it the last
// one is kept, and goes to the cache when the period ends: what was written last arrives. What ends
// an instance, or its writer, lets the kept sample go first.
#pragma once

#include <atomic>
#include <condition_variable>
#include <map>
#include <mutex>
#include <optional>

#include "engine/data/instance_pin.hpp"
#include "engine/subscription/due_times.hpp"
#include "engine/subscription/instance_owner.hpp"

namespace kolt::engine {

// A sample on its way to a cache, with references on what it consists of.
struct ArrivedSample {
    ddsi_writer_info writer;
    SerdataRef serdata;
    InstancePin instance;
};

// Thread-safe.
class TimeBasedFilter {
  public:
    struct Rules {
        std::int64_t minimum_separation = 0;  // nanoseconds
        InstanceOwner::Rules ownership;
    };
    // Hands a sample to the cache. False when that refuses it, for want of room.
    using Put = bool (*)(void *cache, const ddsi_writer_info &writer, ddsi_serdata *sample,
                         ddsi_tkmap_instance *instance);

    TimeBasedFilter(Put put, void *cache) : put_(put), cache_(cache) {}

    // True while samples have to take the way through the filter.
    bool is_active() const { return is_active_.load(); }
    // Holds for samples that are kept already, too.
    void set(const Rules &rules);

    // Stores a sample with data now, or keeps it. False when the cache refuses it, or refused the one
    // before. May throw std::bad_alloc before anything is done.
    bool store(ArrivedSample sample);
    // Stores what is kept of an instance before it ends, if `sample`, which disposes or unregisters it,
    // does so. False when the cache refuses what is kept.
    bool end(const ddsi_writer_info &writer, const ddsi_serdata &sample,
             DDS_InstanceHandle_t instance);
    // Stores what is kept of a writer, or drops it if the cache refuses that.
    void flush_writer(std::uint64_t writer);
    // Notes that a writer owns no instance any more.
    void relinquish(std::uint64_t writer);
    // Stores what is due.
    void store_due();
    // Makes due what the cache refused, since it may have room now. False when there is nothing.
    bool retry();
    // Returns when something is due; kNever when nothing is.
    MonotonicTime next_due() const;
    // Drops what is kept.
    void clear();

  private:
    using Kept = std::optional<ArrivedSample>;
    using Lock = std::unique_lock<std::mutex>;
    struct Entry {
        MonotonicTime open_at = 0;  // when its period ends
        bool is_storing = false;    // a thread has a sample of it on the way to the cache
        bool is_refused = false;    // the cache had no room for what is kept
        Kept kept;
        InstanceOwner owner;
    };
    using Entries = std::map<DDS_InstanceHandle_t, Entry>;

    Entries::iterator entry_of(DDS_InstanceHandle_t instance);
    // Returns the entry, or the end, once no thread has a sample of it on the way to the cache.
    Entries::iterator settled(Lock &lock, DDS_InstanceHandle_t instance);
    void set_open_at(Entries::iterator entry, MonotonicTime time);
    void erase(Entries::iterator entry);
    // Stores a sample, without the lock meanwhile. One that the cache refuses stays in `sample`.
    bool store_now(Lock &lock, Entries::iterator entry, Kept &sample);
    // The same with the one that is kept, and is kept on if the cache refuses it; unless there is a
    // later one: then it is left in `spare`.
    bool store_kept(Lock &lock, Entries::iterator entry, Kept &spare);
    // Stores what is due first, or forgets the instance if nothing is kept of it. False when nothing
    // is due.
    bool store_first_due(MonotonicTime now);
    // Stores or drops what is kept of a writer for the instance after `*last`, which becomes that
    // instance. False when there is none.
    bool flush_next(std::uint64_t writer, DDS_InstanceHandle_t *last);

    const Put put_;
    void *const cache_;
    std::atomic<bool> is_active_{false};
    std::atomic<bool> has_refused_{false};
    mutable std::mutex mutex_;
    // All guarded by mutex_, which is not held while samples are stored or given up.
    std::condition_variable settled_;
    Rules rules_;
    Entries entries_;
    DueTimes<DDS_InstanceHandle_t> due_;
};

}  // namespace kolt::engine
