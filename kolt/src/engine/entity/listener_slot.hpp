// SPDX-License-Identifier: Apache-2.0
// The place where an entity keeps its listener.
//
// A listener is called by one thread at a time; a callback may call back into KOLT and thereby, on
// its own thread, into further callbacks of the same listener. Once set() has returned, no callback
// of the old listener runs on another thread.
#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

#include "kolt/infrastructure.h"

namespace kolt::engine {

template <typename Listener>
class ListenerSlot {
  public:
    // Replaces the listener; nullptr removes it. Waits for callbacks on other threads to end.
    void set(const Listener *listener, DDS_StatusMask mask) {
        std::unique_lock lock(mutex_);
        wait_for_others(lock);
        listener_ = listener != nullptr ? *listener : Listener{};
        mask_ = listener != nullptr ? mask : 0;
    }

    Listener get() const {
        const std::lock_guard lock(mutex_);
        return listener_;
    }

    // If the mask has `status` and `has_callback(listener)` holds, calls `call(listener)` and
    // returns true.
    template <typename HasCallback, typename Call>
    bool handle(DDS_StatusMask status, HasCallback &&has_callback, Call &&call) {
        std::unique_lock lock(mutex_);
        const auto handles = [&] { return (mask_ & status) != 0 && has_callback(listener_); };
        if (!handles()) {
            return false;
        }
        wait_for_others(lock);
        if (!handles()) {
            return false;
        }
        const Listener listener = listener_;
        owner_ = std::this_thread::get_id();
        ++depth_;
        lock.unlock();
        call(listener);
        lock.lock();
        if (--depth_ == 0) {
            owner_ = {};
            idle_.notify_all();
        }
        return true;
    }

  private:
    void wait_for_others(std::unique_lock<std::mutex> &lock) {
        const auto self = std::this_thread::get_id();
        idle_.wait(lock, [&] { return depth_ == 0 || owner_ == self; });
    }

    mutable std::mutex mutex_;
    std::condition_variable idle_;
    Listener listener_{};
    DDS_StatusMask mask_ = 0;
    std::thread::id owner_;  // the thread that is in callbacks, `depth_` of them
    int depth_ = 0;
};

}  // namespace kolt::engine
