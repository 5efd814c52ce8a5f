// SPDX-License-Identifier: Apache-2.0
// The instances of a reader in the order of their handles, which the engine's cache does not have.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <vector>

#include "kolt/infrastructure.h"

namespace kolt::engine {

// May hold instances that the cache has dropped; lacks one that the cache holds only while it is stale.
// Thread-safe.
class InstanceIndex {
  public:
    struct Known {
        DDS_InstanceHandle_t handle = DDS_HANDLE_NIL;
        std::uint64_t stamp = 0;  // when it last got a sample
        std::size_t samples = 0;  // the cache holds at most so many of it
    };

    // Frame the storing of a sample of the instance in the cache. Where memory runs out the first
    // returns false, and the index is stale.
    bool begin_store(DDS_InstanceHandle_t handle) noexcept {
        const std::lock_guard lock(mutex_);
        try {
            Entry &entry = by_handle_[handle];
            ++entry.storing;
            ++entry.samples;
            return true;
        } catch (...) {
            is_stale_ = true;
            return false;
        }
    }
    void end_store(DDS_InstanceHandle_t handle) {
        const std::lock_guard lock(mutex_);
        Entry &entry = by_handle_.find(handle)->second;
        --entry.storing;
        entry.stamp = ++now_;
    }
    // Returns the first instance after `handle`; one with DDS_HANDLE_NIL when there is none.
    Known after(DDS_InstanceHandle_t handle) const {
        const std::lock_guard lock(mutex_);
        const auto next = by_handle_.upper_bound(handle);
        return next != by_handle_.end()
                   ? Known{next->first, next->second.stamp, next->second.samples}
                   : Known{};
    }
    bool contains(DDS_InstanceHandle_t handle) const {
        const std::lock_guard lock(mutex_);
        return by_handle_.contains(handle);
    }
    // Forgets an instance that the cache did not have, unless it has got a sample since.
    void forget(const Known &known) {
        const std::lock_guard lock(mutex_);
        const auto found = by_handle_.find(known.handle);
        if (found != by_handle_.end() && is_unchanged(found->second, known.stamp)) {
            by_handle_.erase(found);
        }
    }

    // True when the cache should be asked again which instances it holds: at first, when memory ran
    // out, and when the index has grown much.
    bool is_stale() const {
        const std::lock_guard lock(mutex_);
        return is_stale_ || by_handle_.size() > 2 * assigned_ + kAtLeast;
    }
    void set_stale() {
        const std::lock_guard lock(mutex_);
        is_stale_ = true;
    }
    // Returns a time, for the function below, to be called before the cache is asked.
    std::uint64_t begin_assign() {
        const std::lock_guard lock(mutex_);
        is_stale_ = false;
        return now_;
    }
    // Forgets all but the instances that the cache held after `time`, and those that have got a
    // sample since.
    void assign(const std::vector<Known> &held, std::uint64_t time) {
        const std::lock_guard lock(mutex_);
        std::map<DDS_InstanceHandle_t, Entry> next;
        for (const Known &known : held) {
            next[known.handle].samples = known.samples;
        }
        for (const auto &[handle, entry] : by_handle_) {
            if (!is_unchanged(entry, time)) {
                Entry &kept = next[handle];
                const std::size_t held_of_it = kept.samples;
                kept = entry;
                kept.samples += held_of_it;
            }
        }
        by_handle_.swap(next);
        assigned_ = by_handle_.size();
    }

  private:
    struct Entry {
        unsigned storing = 0;  // threads
        std::uint64_t stamp = 0;
        std::size_t samples = 0;
    };
    static constexpr std::size_t kAtLeast = 64;

    static bool is_unchanged(const Entry &entry, std::uint64_t time) {
        return entry.storing == 0 && entry.stamp <= time;
    }

    mutable std::mutex mutex_;
    // All guarded by mutex_.
    std::map<DDS_InstanceHandle_t, Entry> by_handle_;
    std::uint64_t now_ = 0;
    std::size_t assigned_ = 0;
    bool is_stale_ = true;
};

}  // namespace kolt::engine
