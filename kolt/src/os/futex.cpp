// SPDX-License-Identifier: Apache-2.0
// futex(2) by system call: the C library has no wrapper.

#include "os/futex.hpp"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

namespace kolt::os {

namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

}  // namespace

std::int64_t monotonic_now() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * kNanosecondsPerSecond + now.tv_nsec;
}

int futex_wait(std::uint32_t *word, std::uint32_t expected, std::int64_t deadline) {
    timespec until{};
    until.tv_sec = deadline / kNanosecondsPerSecond;
    until.tv_nsec = deadline % kNanosecondsPerSecond;
    // WAIT_BITSET takes an absolute time, WAIT a relative one: no drift when a wake was spurious.
    const long result =
        syscall(SYS_futex, word, FUTEX_WAIT_BITSET | FUTEX_PRIVATE_FLAG, expected,
                deadline == kNever ? nullptr : &until, nullptr, FUTEX_BITSET_MATCH_ANY);
    return result == 0 ? 0 : errno;
}

void futex_wake(std::uint32_t *word, int count) {
    syscall(SYS_futex, word, FUTEX_WAKE | FUTEX_PRIVATE_FLAG, count, nullptr, nullptr, 0);
}

}  // namespace kolt::os
