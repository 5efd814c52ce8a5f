// SPDX-License-Identifier: Apache-2.0
// Calls a function at a time, on the thread on which the engine itself does what is due.
#pragma once

#include <cstdint>

#include "engine/cyclone/cyclone.hpp"

struct xevent;

namespace kolt::engine {

// Nanoseconds of the clock that is never set.
using MonotonicTime = std::int64_t;
inline constexpr MonotonicTime kNever = cyclone::kInfinity;

MonotonicTime monotonic_now();
// Returns the time that lies a duration after another one; kNever after an infinite one.
constexpr MonotonicTime later(MonotonicTime time, std::int64_t nanoseconds) {
    return nanoseconds >= kNever - time ? kNever : time + nanoseconds;
}

class Timer {
  public:
    // Returns when it wants to be called next; kNever to be called no more.
    using OnDue = MonotonicTime (*)(void *owner);

    // The domain outlives the timer.
    Timer(ddsi_domaingv *domain, OnDue on_due, void *owner);
    // Waits for a call in progress. Not from within one.
    ~Timer();
    Timer(const Timer &) = delete;
    Timer &operator=(const Timer &) = delete;

    // Has the function called at `time`, or earlier if that was asked for before. Thread-safe.
    void call_at(MonotonicTime time);

  private:
    static void run(xevent *event, void *timer, ddsrt_mtime_t now);

    const OnDue on_due_;
    void *const owner_;
    xevent *const event_;  // last: it may call before the constructor returns
};

}  // namespace kolt::engine
