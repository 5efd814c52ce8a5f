// SPDX-License-Identifier: Apache-2.0
// A gate that threads pass through, and that a thread can close and see empty.
#pragma once

#include <atomic>

namespace vur_dl {

class Gate {
  public:
    // Returns false when the gate is closed. After true the caller must call leave().
    bool enter() {
        if ((state_.fetch_add(1, std::memory_order_acquire) & kClosed) != 0) {
            leave();
            return false;
        }
        return true;
    }
    void leave() {
        // The last thread to leave a gate that is being closed wakes the thread that closes it.
        if (state_.fetch_sub(1, std::memory_order_release) == kClosed + 1) {
            state_.notify_all();
        }
    }
    // Closes the gate and waits until every thread that entered has left.
    void close() {
        int seen = state_.fetch_or(kClosed, std::memory_order_acq_rel) | kClosed;
        while (seen != kClosed) {
            state_.wait(seen, std::memory_order_acquire);
            seen = state_.load(std::memory_order_acquire);
        }
    }
    void open() { state_.fetch_and(~kClosed, std::memory_order_release); }
    bool is_closed() const { return (state_.load(std::memory_order_acquire) & kClosed) != 0; }

  private:
    static constexpr int kClosed = 1 << 30;

    // The number of threads inside, plus kClosed while the gate is closed. One word, so that a
    // thread sees the gate open and is counted in one step.
    std::atomic<int> state_{kClosed};
};

}  // namespace vur_dl
