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
#include "kolt/infrastructure.h"

namespace kolt::engine {

// Knows which writers an instance has and when it ended. Whether it has come to life since, only the
// cache knows for sure: what is purged is what is not alive there. Thread-safe.
class AutoPurge {
  public:
    enum Ending { kNoWriters, kDisposed };

    // Nanoseconds from the end of an instance until it is purged; kNever for not at all.
    using Delays = std::array<std::int64_t, 2>;
    // Removes the samples of an instance from the cache if the instance has ended that way.
    using Purge = void (*)(void *cache, DDS_InstanceHandle_t instance, Ending ending);

    AutoPurge(Purge remove, void *cache) : purge_(remove), cache_(cache) {}

    bool is_active() const { return is_active_.load(); }
    // The delays hold for instances that end from now on, and for those that have ended and would
    // otherwise stay longer. Without a finite one it looks after nothing.
    void set(const Delays &delays);
    // Begins to look after an instance that was in the cache before. May throw std::bad_alloc.
    void adopt(DDS_InstanceHandle_t instance);

    // Notes a sample that the cache has got. May throw std::bad_alloc.
    void note_sample(DDS_InstanceHandle_t instance, std::uint64_t writer, bool disposes,
                     bool unregisters, bool disposes_when_left);
    // Notes that a writer is gone.
    void note_writer_gone(std::uint64_t writer, bool disposes_when_left);
    // Purges what is due.
    void purge_due();
    // Returns when something is due; kNever when nothing is.
    MonotonicTime next_due() const;

  private:
    struct Entry {
        std::vector<std::uint64_t> writers;
        bool may_have_others = false;  // writers from before it was looked after
        bool is_disposed = false;
        std::array<MonotonicTime, 2> due{kNever, kNever};
    };
    using Entries = std::map<DDS_InstanceHandle_t, Entry>;
    using What = std::pair<DDS_InstanceHandle_t, Ending>;

    Entry &entry_of(DDS_InstanceHandle_t instance);
    void set_due(DDS_InstanceHandle_t instance, Entry &entry, Ending ending, MonotonicTime time);
    void note_end(DDS_InstanceHandle_t instance, Entry &entry, Ending ending);
    // Notes that a writer is gone from an instance, which may have been its last.
    void leave(DDS_InstanceHandle_t instance, Entry &entry, std::uint64_t writer,
               bool disposes_when_left);
    // True when the entry says nothing that would be needed later.
    static bool is_idle(const Entry &entry);
    Entries::iterator erase(Entries::iterator entry);

    const Purge purge_;
    void *const cache_;
    std::atomic<bool> is_active_{false};
    mutable std::mutex mutex_;
    // All guarded by mutex_, which is not held while the cache is purged.
    Delays delays_{kNever, kNever};
    Entries entries_;
    DueTimes<What> due_;
};

}  // namespace kolt::engine
