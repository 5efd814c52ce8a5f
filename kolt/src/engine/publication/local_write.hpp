// SPDX-License-Identifier: Apache-2.0
// A write as the readers of the same process see it.
//
// The engine stores a sample in the caches of these readers on the writing thread, and tries again
// until a full one takes it. While a LocalWrite lives, the cache can ask whether that still makes
// sense.
#pragma once

#include <atomic>

namespace kolt::engine {

class LocalWrite {
  public:
    // `ended` turns true when the write shall wait no longer.
    explicit LocalWrite(const std::atomic<bool> &ended) : ended_(ended), outer_(t_current) {
        t_current = this;
    }
    ~LocalWrite() { t_current = outer_; }
    LocalWrite(const LocalWrite &) = delete;
    LocalWrite &operator=(const LocalWrite &) = delete;

    // True once a reader did not get the sample because the write was ended.
    bool gave_up() const { return gave_up_; }

    // For a reader without room: true when the calling thread's write shall pass it by.
    static bool pass_by() {
        if (t_current == nullptr || !t_current->ended_.load()) {
            return false;
        }
        t_current->gave_up_ = true;
        return true;
    }

  private:
    static inline thread_local LocalWrite *t_current = nullptr;

    const std::atomic<bool> &ended_;
    LocalWrite *const outer_;
    bool gave_up_ = false;
};

}  // namespace kolt::engine
