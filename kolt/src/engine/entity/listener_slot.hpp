// SPDX-License-Identifier: Apache-2.0
// The place where an entity keeps its listener.
//
// Listeners are called on the participant's listener thread. Once set() has returned, no callback of
// the old listener runs on another thread.
#pragma once

#include <mutex>

#include "engine/barrier/barrier.hpp"
#include "engine/entity/listener_thread.hpp"
#include "kolt/infrastructure.h"

namespace kolt::engine {

template <typename Listener>
class ListenerSlot {
  public:
    explicit ListenerSlot(ListenerThread &thread) : thread_(thread) {}

    // Replaces the listener; nullptr removes it. Waits for a callback of the old one to end, unless
    // called from one. OUT_OF_RESOURCES, and the old listener stays, when no thread could be made.
    DDS_ReturnCode_t set(const Listener *listener, DDS_StatusMask mask, const char *method) {
        if (listener != nullptr && mask != 0 && !thread_.start()) {
            return fail(DDS_RETCODE_OUT_OF_RESOURCES, method,
                        "the system has no thread left to call the listener on");
        }
        std::unique_lock lock(thread_.mutex());
        listener_ = listener != nullptr ? *listener : Listener{};
        mask_ = listener != nullptr ? mask : 0;
        thread_.wait_until_not_called(lock, this);
        return DDS_RETCODE_OK;
    }

    void remove() { set(nullptr, 0, nullptr); }

    Listener get() const {
        const std::lock_guard lock(thread_.mutex());
        return listener_;
    }

    // If the mask has `status` and `has_callback(listener)` holds, calls `call(listener)` and returns
    // true. The slot may be gone by then. Only while an event is being told.
    template <typename HasCallback, typename Call>
    bool handle(DDS_StatusMask status, HasCallback &&has_callback, Call &&call) {
        Listener listener;
        {
            const std::lock_guard lock(thread_.mutex());
            if ((mask_ & status) == 0 || !has_callback(listener_)) {
                return false;
            }
            listener = listener_;
            thread_.mark_called(this);
        }
        call(listener);
        return true;
    }

  private:
    ListenerThread &thread_;
    // Guarded by the thread's mutex:
    Listener listener_{};
    DDS_StatusMask mask_ = 0;
};

}  // namespace kolt::engine
