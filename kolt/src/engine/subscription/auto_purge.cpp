// SPDX-License-Identifier: Apache-2.0
// The ends of instances, and when each is to be purged.
#include "engine/subscription/auto_purge.hpp"

#include <algorithm>
#include <iterator>

namespace kolt::engine {

namespace {

constexpr AutoPurge::Ending kEndings[] = {AutoPurge::kNoWriters, AutoPurge::kDisposed};

}  // namespace

void AutoPurge::set(const Rules &rules) {
    const std::lock_guard lock(mutex_);
    rules_ = rules;
    is_active_.store(rules.delays[kNoWriters] != kNever || rules.delays[kDisposed] != kNever);
    if (!is_active()) {
        due_.clear();
        entries_.clear();
    }
    for (auto entry = entries_.begin(); entry != entries_.end(); ++entry) {
        for (const Ending ending : kEndings) {
            set_ended(entry, ending, entry->second.ended[ending]);
        }
    }
}

void AutoPurge::adopt(DDS_InstanceHandle_t instance) {
    const std::lock_guard lock(mutex_);
    if (entries_.contains(instance)) {
        return;
    }
    const auto entry = entry_of(instance);
    entry->second.may_have_others = true;
    for (const Ending ending : kEndings) {
        set_ended(entry, ending, monotonic_now());
    }
}

MonotonicTime AutoPurge::next_due() const {
    const std::lock_guard lock(mutex_);
    return due_.earliest();
}

// ---- Entries ------------------------------------------------------------------------------------

AutoPurge::Entries::iterator AutoPurge::entry_of(DDS_InstanceHandle_t instance) {
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
    return entry;
}

AutoPurge::Entries::iterator AutoPurge::erase(Entries::iterator entry) {
    for (const Ending ending : kEndings) {
        due_.remove(entry->second.due[ending], {entry->first, ending});
    }
    return entries_.erase(entry);
}

AutoPurge::Entries::iterator AutoPurge::next_after(Entries::iterator entry) {
    const Entry &state = entry->second;
    const bool is_idle = state.writers.empty() && !state.may_have_others &&
                         state.due[kNoWriters] == kNever && state.due[kDisposed] == kNever;
    return is_idle ? erase(entry) : std::next(entry);
}

void AutoPurge::set_ended(Entries::iterator entry, Ending ending, MonotonicTime time) {
    Entry &state = entry->second;
    const MonotonicTime due = time == kNever ? kNever : later(time, rules_.delays[ending]);
    due_.move(state.due[ending], due, {entry->first, ending});
    state.ended[ending] = time;
    state.due[ending] = due;
}

// ---- Events -------------------------------------------------------------------------------------

// A writer that the cache does not listen to has the instance all the same.
void AutoPurge::note_sample(DDS_InstanceHandle_t instance, const ddsi_writer_info &writer,
                            const ddsi_serdata &sample) {
    const bool disposes = (sample.statusinfo & NN_STATUSINFO_DISPOSE) != 0;
    const bool unregisters = (sample.statusinfo & NN_STATUSINFO_UNREGISTER) != 0;
    const std::lock_guard lock(mutex_);
    const auto entry = entry_of(instance);
    Entry &state = entry->second;
    if (std::find(state.writers.begin(), state.writers.end(), writer.iid) == state.writers.end()) {
        state.writers.push_back(writer.iid);
    }
    if ((disposes || sample.kind == SDK_DATA) &&
        state.owner.accepts(rules_.ownership, writer, sample)) {
        if (disposes && !state.is_disposed) {
            set_ended(entry, kDisposed, monotonic_now());
        }
        state.is_disposed = disposes;
        state.owner.note(writer, sample);
    }
    if (unregisters) {
        leave(entry, writer);
        next_after(entry);
    }
}

// Of writers from before the instance was looked after, the first that goes may have been its last.
void AutoPurge::leave(Entries::iterator entry, const ddsi_writer_info &writer) {
    Entry &state = entry->second;
    const bool was_known = std::erase(state.writers, writer.iid) != 0;
    state.owner.leave(writer.iid);
    if (!state.writers.empty() ||
        (!was_known && (!state.may_have_others || state.ended[kNoWriters] != kNever))) {
        return;
    }
    set_ended(entry, kNoWriters, monotonic_now());
    if (writer.auto_dispose && !state.is_disposed) {
        set_ended(entry, kDisposed, monotonic_now());
    }
}

void AutoPurge::note_writer_gone(const ddsi_writer_info &writer) {
    const std::lock_guard lock(mutex_);
    for (auto entry = entries_.begin(); entry != entries_.end();) {
        leave(entry, writer);
        entry = next_after(entry);
    }
}

void AutoPurge::relinquish(std::uint64_t writer) {
    const std::lock_guard lock(mutex_);
    for (auto &[instance, entry] : entries_) {
        entry.owner.leave(writer);
    }
}

// ---- Purging ------------------------------------------------------------------------------------

void AutoPurge::purge_due() {
    const MonotonicTime now = monotonic_now();
    std::unique_lock lock(mutex_);
    while (const What *const due = due_.first(now)) {
        const auto [instance, ending] = *due;
        set_ended(entries_.find(instance), ending, kNever);
        lock.unlock();
        const bool was_purged = purge_(cache_, instance, ending);
        lock.lock();
        note_purge(instance, ending, was_purged);
    }
}

// What was not purged is alive, or ended another way, or has gone from the cache before.
void AutoPurge::note_purge(DDS_InstanceHandle_t instance, Ending ending, bool was_purged) {
    const auto entry = entries_.find(instance);
    if (entry == entries_.end()) {
        return;
    }
    Entry &state = entry->second;
    if (was_purged && ending == kNoWriters) {
        state.may_have_others = false;
    }
    if (!was_purged && ending == kDisposed) {
        state.is_disposed = false;
    }
    next_after(entry);
}

}  // namespace kolt::engine
