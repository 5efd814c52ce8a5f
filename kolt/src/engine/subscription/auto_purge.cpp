// SPDX-License-Identifier: Apache-2.0
// The ends of instances, and when each is to be purged.
#include "engine/subscription/auto_purge.hpp"

#include <algorithm>

namespace kolt::engine {

namespace {

constexpr AutoPurge::Delays kOff{kNever, kNever};
constexpr AutoPurge::Ending kEndings[] = {AutoPurge::kNoWriters, AutoPurge::kDisposed};

}  // namespace

void AutoPurge::set(const Delays &delays) {
    const MonotonicTime now = monotonic_now();
    const std::lock_guard lock(mutex_);
    delays_ = delays;
    is_active_.store(delays != kOff);
    if (!is_active()) {
        due_.clear();
        entries_.clear();
    }
    for (auto &[instance, entry] : entries_) {
        for (const Ending ending : kEndings) {
            if (entry.due[ending] != kNever) {
                set_due(instance, entry, ending,
                        std::min(entry.due[ending], later(now, delays[ending])));
            }
        }
    }
}

void AutoPurge::adopt(DDS_InstanceHandle_t instance) {
    const std::lock_guard lock(mutex_);
    Entry &entry = entry_of(instance);
    entry.may_have_others = true;
    for (const Ending ending : kEndings) {
        note_end(instance, entry, ending);
    }
}

MonotonicTime AutoPurge::next_due() const {
    const std::lock_guard lock(mutex_);
    return due_.earliest();
}

// ---- Entries ------------------------------------------------------------------------------------

AutoPurge::Entry &AutoPurge::entry_of(DDS_InstanceHandle_t instance) {
    const auto [entry, is_new] = entries_.try_emplace(instance);
    if (is_new) {
        try {
            for (const Ending ending : kEndings) {
                due_.add(kNever, {instance, ending});
            }
        } catch (...) {
            erase(entry);
            throw;
        }
    }
    return entry->second;
}

AutoPurge::Entries::iterator AutoPurge::erase(Entries::iterator entry) {
    for (const Ending ending : kEndings) {
        due_.remove(entry->second.due[ending], {entry->first, ending});
    }
    return entries_.erase(entry);
}

bool AutoPurge::is_idle(const Entry &entry) {
    return entry.writers.empty() && !entry.may_have_others && entry.due[kNoWriters] == kNever &&
           entry.due[kDisposed] == kNever;
}

void AutoPurge::set_due(DDS_InstanceHandle_t instance, Entry &entry, Ending ending,
                        MonotonicTime time) {
    due_.move(entry.due[ending], time, {instance, ending});
    entry.due[ending] = time;
}

void AutoPurge::note_end(DDS_InstanceHandle_t instance, Entry &entry, Ending ending) {
    set_due(instance, entry, ending, later(monotonic_now(), delays_[ending]));
}

// ---- Events -------------------------------------------------------------------------------------

void AutoPurge::note_sample(DDS_InstanceHandle_t instance, std::uint64_t writer, bool disposes,
                            bool unregisters, bool disposes_when_left) {
    const std::lock_guard lock(mutex_);
    Entry &entry = entry_of(instance);
    if (std::find(entry.writers.begin(), entry.writers.end(), writer) == entry.writers.end()) {
        entry.writers.push_back(writer);
    }
    if (disposes && !entry.is_disposed) {
        note_end(instance, entry, kDisposed);
    }
    entry.is_disposed = disposes;
    if (unregisters) {
        leave(instance, entry, writer, disposes_when_left);
        if (is_idle(entry)) {
            erase(entries_.find(instance));
        }
    }
}

void AutoPurge::leave(DDS_InstanceHandle_t instance, Entry &entry, std::uint64_t writer,
                      bool disposes_when_left) {
    const bool was_known = std::erase(entry.writers, writer) != 0;
    if (!entry.writers.empty() || (!was_known && !entry.may_have_others)) {
        return;
    }
    note_end(instance, entry, kNoWriters);
    if (disposes_when_left && !entry.is_disposed) {
        note_end(instance, entry, kDisposed);
    }
}

void AutoPurge::note_writer_gone(std::uint64_t writer, bool disposes_when_left) {
    const std::lock_guard lock(mutex_);
    for (auto entry = entries_.begin(); entry != entries_.end();) {
        leave(entry->first, entry->second, writer, disposes_when_left);
        entry = is_idle(entry->second) ? erase(entry) : std::next(entry);
    }
}

void AutoPurge::purge_due() {
    const MonotonicTime now = monotonic_now();
    std::unique_lock lock(mutex_);
    while (const What *const due = due_.first(now)) {
        const auto [instance, ending] = *due;
        const auto entry = entries_.find(instance);
        set_due(instance, entry->second, ending, kNever);
        entry->second.is_disposed = entry->second.is_disposed && ending != kDisposed;
        if (is_idle(entry->second)) {
            erase(entry);
        }
        lock.unlock();
        purge_(cache_, instance, ending);
        lock.lock();
    }
}

}  // namespace kolt::engine
