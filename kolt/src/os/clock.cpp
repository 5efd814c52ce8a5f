// SPDX-License-Identifier: Apache-2.0
// The system clock and the sleep.

#include <cerrno>
#include <cstdint>
#include <ctime>
#include <new>

#include "kolt/os.h"

struct KOLT_Clock {
    clockid_t id = CLOCK_REALTIME;
};

namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

// The largest number of 2^-32 second units that is less than `nanoseconds` (0 for 0). Its product
// with 10^9 / 2^32 lies in (nanoseconds - 1, nanoseconds), so that rounding up gives them back
// exactly, which neither truncation nor rounding to nearest does for all values.
std::uint32_t fraction_of(std::uint64_t nanoseconds) {
    if (nanoseconds == 0) {
        return 0;
    }
    return static_cast<std::uint32_t>(((nanoseconds << 32U) - 1) /
                                      std::uint64_t{kNanosecondsPerSecond});
}

// False for less than nothing, and for nanoseconds of a second or more, among which are the negative
// ones of a caller's arithmetic.
bool is_duration(const DDS_Duration_t &duration) {
    const bool is_infinite =
        duration.sec == DDS_DURATION_INFINITE_SEC && duration.nanosec == DDS_DURATION_INFINITE_NSEC;
    return is_infinite || (duration.sec >= 0 && duration.nanosec < kNanosecondsPerSecond);
}

}  // namespace

KOLT_Clock *KOLT_Clock_new(void) {
    void *memory = KOLT_Heap_allocate(sizeof(KOLT_Clock));
    return memory != nullptr ? new (memory) KOLT_Clock() : nullptr;
}

void KOLT_Clock_delete(KOLT_Clock *self) {
    KOLT_Heap_free(self);
}

int KOLT_Clock_get_time(KOLT_Clock *self, DDS_LongLong *seconds, DDS_UnsignedLong *fraction) {
    if (self == nullptr || seconds == nullptr || fraction == nullptr) {
        return EINVAL;
    }
    timespec now{};
    if (clock_gettime(self->id, &now) != 0) {
        return errno;
    }
    *seconds = now.tv_sec;
    *fraction = fraction_of(static_cast<std::uint64_t>(now.tv_nsec));
    return 0;
}

DDS_ReturnCode_t KOLT_Utility_sleep(const DDS_Duration_t *duration) {
    if (duration == nullptr || !is_duration(*duration)) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    // An absolute time, so that a signal in between does not lengthen the sleep.
    timespec until{};
    clock_gettime(CLOCK_MONOTONIC, &until);
    const std::int64_t nanoseconds = std::int64_t{until.tv_nsec} + duration->nanosec;
    until.tv_sec += duration->sec + nanoseconds / kNanosecondsPerSecond;
    until.tv_nsec = nanoseconds % kNanosecondsPerSecond;
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) {
    }
    return DDS_RETCODE_OK;
}
