// SPDX-License-Identifier: Apache-2.0
// READER_DATA_LIFECYCLE (DDS 1.4, 2.2.3.22): instances that are no longer alive leave the cache of a
// reader some time after.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "engine/subscription/due_times.hpp"
#include "engine/subscription/instance_owner.hpp"
#include "kolt/infrastructure.h"

namespace kolt::engine {

// Knows which writers an instance has and when it ended. Whether it has come to life since, only the
// cache knows for sure: what is purged is what is not alive there. Thread-safe.
class AutoPurge {
  public:
    enum Ending { kNoWriters, kDisposed };

    struct Rules {
        // Nanoseconds from the end of an instance until it is purged; kNever for not at all.
        std::array<std::int64_t, 2> delays{kNever, kNever};
        InstanceOwner::Rules ownership;
    };
    // Removes the samples of an instance from the cache if the instance has ended that way. False when
    // it has not.
    using Purge = bool (*)(void *cache, DDS_InstanceHandle_t instance, Ending ending);

    AutoPurge(Purge remove, void *cache) : purge_(remove), cache_(cache) {}

    bool is_active() const { return is_active_.load(); }
    // The delays hold for instances that have ended, too. Without a finite one it looks after nothing.
    void set(const Rules &rules);
    // Begins to look after an instance that was in the cache before, as if it ended now. May throw
    // std::bad_alloc.
    void adopt(DDS_InstanceHandle_t instance);

    // Notes a sample that has come to the cache. May throw std::bad_alloc.
    void note_sample(DDS_InstanceHandle_t instance, const ddsi_writer_info &writer,
                     const ddsi_serdata &sample);
    // Notes that a writer is gone.
    void note_writer_gone(const ddsi_writer_info &writer);
    // Notes that a writer owns no instance any more.
    void relinquish(std::uint64_t writer);
    // Purges what is due.
    void purge_due();
    // Returns when something is due; kNever when nothing is.
    MonotonicTime next_due() const;

  private:
    struct Entry {
        std::vector<std::uint64_t> writers;
        bool may_have_others = false;  // writers from before it was looked after
        bool is_disposed = false;
        InstanceOwner owner;
        std::array<MonotonicTime, 2> ended{kNever, kNever};
        std::array<MonotonicTime, 2> due{kNever, kNever};
    };
    using Entries = std::map<DDS_InstanceHandle_t, Entry>;
    using What = std::pair<DDS_InstanceHandle_t, Ending>;

    Entries::iterator entry_of(DDS_InstanceHandle_t instance);
    // Notes when the instance ended, and when it is to be purged therefore.
    void set_ended(Entries::iterator entry, Ending ending, MonotonicTime time);
    // Notes that a writer is gone from an instance, which may have been its last.
    void leave(Entries::iterator entry, const ddsi_writer_info &writer);
    // Forgets the entry if it says nothing that would be needed later; returns the one after it.
    Entries::iterator next_after(Entries::iterator entry);
    Entries::iterator erase(Entries::iterator entry);
    // Notes what came of a purge.
    void note_purge(DDS_InstanceHandle_t instance, Ending ending, bool was_purged);

    const Purge purge_;
    void *const cache_;
    std::atomic<bool> is_active_{false};
    mutable std::mutex mutex_;
    // All guarded by mutex_, which is not held while the cache is purged.
    Rules rules_;
    Entries entries_;
    DueTimes<What> due_;
};

}  // namespace kolt::engine
