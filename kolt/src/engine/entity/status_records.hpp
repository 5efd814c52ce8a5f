// SPDX-License-Identifier: Apache-2.0
// The statuses of an entity, as KOLT keeps them: what has happened, and what is to be told of it.
#pragma once

#include <mutex>
#include <optional>
#include <tuple>

#include "engine/entity/entity.hpp"
#include "engine/entity/listener_thread.hpp"
#include "engine/entity/status_condition.hpp"
#include "engine/entity/statuses.hpp"

namespace kolt::engine {

// `Self` is an Entity with deliver<Kind>(), which tells the listeners of a change, and `List` the
// StatusList of its kind.
template <typename Self, typename List>
class StatusRecords;

template <typename Self, typename None, typename... Kinds>
class StatusRecords<Self, StatusList<None, Kinds...>> {
  public:
    StatusRecords(Self &self, ListenerThread &thread)
        : condition_(self.status_condition()),
          thread_(thread),
          source_(&self),
          records_(same<Kinds>(source_)...) {}

    // Adds a change, and lets it be told.
    template <typename Kind>
    void note(const typename Kind::Status &change) {
        Record<Kind> &record = std::get<Record<Kind>>(records_);
        {
            const std::lock_guard lock(mutex_);
            status_detail::add(change, &record.status);
            condition_.set_changed(Kind::kBit);
        }
        condition_.update();
        tell(record.event);
    }

    // Reads a status, and begins to count its changes anew.
    template <typename Kind>
    typename Kind::Status take() {
        typename Kind::Status status;
        {
            const std::lock_guard lock(mutex_);
            status = take_locked<Kind>();
        }
        condition_.update();
        return status;
    }
    // The same, if the status has changed since it was last taken.
    template <typename Kind>
    std::optional<typename Kind::Status> take_changed() {
        typename Kind::Status status;
        {
            const std::lock_guard lock(mutex_);
            if ((condition_.changed() & Kind::kBit) == 0) {
                return std::nullopt;
            }
            status = take_locked<Kind>();
        }
        condition_.update();
        return status;
    }

    // For other events of the entity.
    ListenerThread::Source &source() { return source_; }
    void tell(ListenerThread::Event &event) { thread_.post(event); }
    // From now on events are told, once the application can know of the entity.
    void announce() {
        thread_.open(source_);
        tell_changed(DDS_STATUS_MASK_ALL);
    }
    // Tells no more of them, and waits for a callback about the entity to end.
    void silence() { thread_.close(source_); }
    // Lets the statuses in `mask` that have changed be told, in the order of the table.
    void tell_changed(DDS_StatusMask mask) {
        const DDS_StatusMask changed = condition_.changed() & mask;
        const auto tell_one = [&]<typename Kind>(Record<Kind> &record) {
            if ((changed & Kind::kBit) != 0) {
                tell(record.event);
            }
        };
        std::apply([&](auto &...records) { (tell_one(records), ...); }, records_);
    }

  private:
    template <typename Kind>
    struct Record {
        explicit Record(ListenerThread::Source &source) : event(source, deliver) {}
        static void deliver(void *self) { static_cast<Self *>(self)->template deliver<Kind>(); }

        typename Kind::Status status{};
        ListenerThread::Event event;
    };
    template <typename>
    static ListenerThread::Source &same(ListenerThread::Source &source) {
        return source;
    }

    template <typename Kind>
    typename Kind::Status take_locked() {
        auto &status = std::get<Record<Kind>>(records_).status;
        const typename Kind::Status taken = status;
        status_detail::reset_changes(&status);
        condition_.clear_changed(Kind::kBit);
        return taken;
    }

    StatusCondition &condition_;
    ListenerThread &thread_;
    ListenerThread::Source source_;
    std::mutex mutex_;  // guards the records; nothing of others is called with it held
    std::tuple<Record<Kinds>...> records_;
};

// Reads a status of the entity and resets its changes.
template <typename Kind, typename Self>
DDS_ReturnCode_t get_status(Self &entity, typename Kind::Status *status) {
    *status = entity.statuses().template take<Kind>();
    return DDS_RETCODE_OK;
}

}  // namespace kolt::engine
