// SPDX-License-Identifier: Apache-2.0
// futex(2): waiting for a 32-bit word to change, and waking the threads that wait. Private to the
// process.
#pragma once

#include <cstdint>

namespace kolt::os {

// A deadline that never comes.
inline constexpr std::int64_t kNever = INT64_MAX;

// Monotonic time in nanoseconds.
std::int64_t monotonic_now();

// Sleeps while `*word` equals `expected`, until a wake or until the monotonic time `deadline`. The
// comparison and the falling asleep are one step with regard to futex_wake. 0 when woken, otherwise
// EAGAIN (the word differs), EINTR, ETIMEDOUT or what else the system says. Wakes may be spurious.
int futex_wait(std::uint32_t *word, std::uint32_t expected, std::int64_t deadline);

// Wakes up to `count` threads that sleep on the word. The word need not exist any more.
void futex_wake(std::uint32_t *word, int count);

}  // namespace kolt::os
