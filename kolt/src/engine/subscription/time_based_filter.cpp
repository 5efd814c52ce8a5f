// SPDX-License-Identifier: Apache-2.0
// Periods of instances, and the samples that wait for the end of one.
#include "engine/subscription/time_based_filter.hpp"

#include <algorithm>
#include <utility>

namespace kolt::engine {

namespace {

// When a cache without room is tried again, should nobody take samples from it before.
constexpr std::int64_t kRetryAfter = 1'000'000'000;

}  // namespace

void TimeBasedFilter::set(const Rules &rules) {
    const MonotonicTime latest = later(monotonic_now(), rules.minimum_separation);
    const std::lock_guard lock(mutex_);
    rules_ = rules;
    for (auto entry = entries_.begin(); entry != entries_.end(); ++entry) {
        if (!entry->second.is_storing) {
            set_open_at(entry, std::min(entry->second.open_at, latest));
        }
    }
    is_active_.store(rules.minimum_separation != 0 || !entries_.empty());
}

MonotonicTime TimeBasedFilter::next_due() const {
    const std::lock_guard lock(mutex_);
    return due_.earliest();
}

// ---- Entries ------------------------------------------------------------------------------------

TimeBasedFilter::Entries::iterator TimeBasedFilter::entry_of(DDS_InstanceHandle_t instance) {
    const auto [entry, is_new] = entries_.try_emplace(instance);
    if (is_new) {
        try {
            due_.add(entry->second.open_at, instance);
        } catch (...) {
            entries_.erase(entry);
            throw;
        }
    }
    return entry;
}

TimeBasedFilter::Entries::iterator TimeBasedFilter::settled(Lock &lock,
                                                            DDS_InstanceHandle_t instance) {
    auto entry = entries_.end();
    settled_.wait(lock, [&] {
        entry = entries_.find(instance);
        return entry == entries_.end() || !entry->second.is_storing;
    });
    return entry;
}

void TimeBasedFilter::set_open_at(Entries::iterator entry, MonotonicTime time) {
    due_.move(entry->second.open_at, time, entry->first);
    entry->second.open_at = time;
}

void TimeBasedFilter::erase(Entries::iterator entry) {
    due_.remove(entry->second.open_at, entry->first);
    entries_.erase(entry);
}

// ---- Storing ------------------------------------------------------------------------------------

bool TimeBasedFilter::store_now(Lock &lock, Entries::iterator entry, Kept &sample) {
    entry->second.is_storing = true;
    set_open_at(entry, kNever);
    lock.unlock();
    const bool is_stored =
        put_(cache_, sample->writer, sample->serdata.get(), sample->instance.get());
    if (is_stored) {
        sample.reset();
    }
    lock.lock();
    entry->second.is_storing = false;
    entry->second.is_refused = !is_stored;
    if (!is_stored) {
        has_refused_.store(true);
    }
    set_open_at(entry, later(monotonic_now(), is_stored ? rules_.minimum_separation : kRetryAfter));
    settled_.notify_all();
    return is_stored;
}

bool TimeBasedFilter::store_kept(Lock &lock, Entries::iterator entry, Kept &spare) {
    spare.swap(entry->second.kept);
    const bool is_stored = store_now(lock, entry, spare);
    if (!entry->second.kept.has_value()) {
        spare.swap(entry->second.kept);
    }
    return is_stored;
}

// The engine tries again to store what has been refused. What the cache does not take at all goes there
// at once: it counts that. An owner that has been silent for a period may have lost the instance.
bool TimeBasedFilter::store(ArrivedSample sample) {
    Kept arrived(std::move(sample));
    Kept stored_now;
    Lock lock(mutex_);
    const auto entry = entry_of(arrived->instance.handle());
    Entry &state = entry->second;
    if (state.is_refused) {
        return false;
    }
    const bool is_open = !state.is_storing && state.open_at <= monotonic_now();
    const bool is_silent = is_open && !state.kept.has_value();
    if (!is_silent && !state.owner.accepts(rules_.ownership, arrived->writer, *arrived->serdata)) {
        lock.unlock();
        return put_(cache_, arrived->writer, arrived->serdata.get(), arrived->instance.get());
    }
    state.owner.note(arrived->writer, *arrived->serdata);
    arrived.swap(state.kept);
    if (!is_open) {
        return true;
    }
    stored_now.swap(state.kept);
    const bool is_stored = store_now(lock, entry, stored_now);
    if (!is_stored && !state.kept.has_value()) {
        erase(entry);
    }
    return is_stored;
}

bool TimeBasedFilter::end(const ddsi_writer_info &writer, const ddsi_serdata &sample,
                          DDS_InstanceHandle_t instance) {
    Kept spare;
    Lock lock(mutex_);
    const auto entry = settled(lock, instance);
    if (entry == entries_.end()) {
        return true;
    }
    Entry &state = entry->second;
    const bool disposes = (sample.statusinfo & NN_STATUSINFO_DISPOSE) != 0 &&
                          state.owner.accepts(rules_.ownership, writer, sample);
    const bool leaves = (sample.statusinfo & NN_STATUSINFO_UNREGISTER) != 0;
    const bool concerns_kept =
        state.kept.has_value() && (disposes || (leaves && state.kept->writer.iid == writer.iid));
    if (concerns_kept && !store_kept(lock, entry, spare)) {
        return false;
    }
    if (leaves) {
        state.owner.leave(writer.iid);
    }
    if (disposes && !state.kept.has_value()) {
        erase(entry);
    }
    return true;
}

void TimeBasedFilter::flush_writer(std::uint64_t writer) {
    DDS_InstanceHandle_t last = DDS_HANDLE_NIL;
    while (flush_next(writer, &last)) {
    }
}

bool TimeBasedFilter::flush_next(std::uint64_t writer, DDS_InstanceHandle_t *last) {
    Kept spare;
    Kept dropped;
    Lock lock(mutex_);
    const auto next = entries_.upper_bound(*last);
    if (next == entries_.end()) {
        return false;
    }
    *last = next->first;
    const auto entry = settled(lock, *last);
    if (entry == entries_.end()) {
        return true;
    }
    const auto keeps_its_sample = [&] {
        return entry->second.kept.has_value() && entry->second.kept->writer.iid == writer;
    };
    if (keeps_its_sample() && !store_kept(lock, entry, spare) && keeps_its_sample()) {
        dropped.swap(entry->second.kept);
        entry->second.is_refused = false;
    }
    entry->second.owner.leave(writer);
    return true;
}

void TimeBasedFilter::relinquish(std::uint64_t writer) {
    const std::lock_guard lock(mutex_);
    for (auto &[instance, entry] : entries_) {
        entry.owner.leave(writer);
    }
}

void TimeBasedFilter::store_due() {
    const MonotonicTime now = monotonic_now();
    while (store_first_due(now)) {
    }
    const std::lock_guard lock(mutex_);
    is_active_.store(rules_.minimum_separation != 0 || !entries_.empty());
}

bool TimeBasedFilter::store_first_due(MonotonicTime now) {
    Kept spare;
    Lock lock(mutex_);
    const DDS_InstanceHandle_t *const due = due_.first(now);
    if (due == nullptr) {
        return false;
    }
    const auto entry = entries_.find(*due);
    if (entry->second.kept.has_value()) {
        store_kept(lock, entry, spare);
    } else {
        erase(entry);
    }
    return true;
}

bool TimeBasedFilter::retry() {
    if (!has_refused_.load() || !has_refused_.exchange(false)) {
        return false;
    }
    const MonotonicTime now = monotonic_now();
    const std::lock_guard lock(mutex_);
    for (auto entry = entries_.begin(); entry != entries_.end(); ++entry) {
        if (entry->second.is_refused && !entry->second.is_storing) {
            set_open_at(entry, now);
        }
    }
    return true;
}

void TimeBasedFilter::clear() {
    Entries dropped;
    const std::lock_guard lock(mutex_);
    due_.clear();
    entries_.swap(dropped);
}

}  // namespace kolt::engine
