// SPDX-License-Identifier: Apache-2.0
// The adaptive counting semaphore.
//
// Two words. `count_` holds the tokens. `waiting_` is the word that waiters sleep on: an epoch, a
// bit that says "somebody sleeps", a bit that says "somebody naps". A waiter sets its bit with
// fetch_or; a giver that wakes clears both bits and moves the epoch on in one step, and wakes all
// threads that sleep on the word. A waiter that wakes in vain sets the bit again.
//
// No wake-up is lost. A waiter W
//   (1) sets its bit and remembers the word w,
//   (2) finds count_ = 0,
//   (3) sleeps if the word is still w.
// A giver G
//   (a) increments count_,
//   (b) reads the word,
//   (c) moves the word on if a bit is set,
//   (d) wakes all.
// All four accesses (1), (2), (a), (b) are sequentially consistent. If (a) comes before (2), W sees
// the token, or some other waiter has taken it. If (a) comes after (2), then (b) comes after (1),
// and G finds either W's bit set, and moves the word on in (c), or W's bit cleared, which only
// another giver does, who moved the word on. In both cases the word differs from w for good (the
// epoch grows), so that (3) either does not fall asleep, or had fallen asleep before the change and
// is woken by (d), which follows the change. Awake, W looks at count_ again. A napping waiter gives
// that guarantee up on purpose (G leaves it alone as long as few tokens lie there): its naps are
// bounded.
//
// The one giver that clears the sleepers' bit makes the system call; the givers after it find the
// bit clear and make none although the woken thread has not run yet.

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <new>

#include "kolt/os.h"
#include "os/futex.hpp"

namespace {

using kolt::os::futex_wait;
using kolt::os::futex_wake;
using kolt::os::kNever;
using kolt::os::monotonic_now;

constexpr std::uint32_t kNapping = 1;
constexpr std::uint32_t kSleeping = 2;
constexpr std::uint32_t kBits = kNapping | kSleeping;
constexpr std::uint32_t kEpoch = 4;

// Nanoseconds. The kernel adds its timer slack, 50 microseconds by default, to every nap. A nap
// costs the waiter a few microseconds of processor time; a wake costs the giver about as much. Naps
// of this length for this long after each token cost a twentieth of a processor at most, and
// nothing two milliseconds after the last token.
constexpr std::int64_t kFirstNap = 20'000;
constexpr std::int64_t kLongestNap = 80'000;
constexpr std::int64_t kNapTime = 2'000'000;

constexpr std::uint32_t kMaximumCount = KOLT_SEMAPHORE_MAXIMUM_COUNT;

std::int64_t deadline_of(const DDS_Duration_t *timeout) {
    if (timeout == nullptr || DDS_Duration_is_infinite(timeout)) {
        return kNever;
    }
    return monotonic_now() + std::int64_t{timeout->sec} * 1'000'000'000 + timeout->nanosec;
}

bool is_positive(const DDS_Duration_t *timeout) {
    return timeout == nullptr || timeout->sec > 0 || (timeout->sec == 0 && timeout->nanosec > 0);
}

}  // namespace

struct KOLT_Semaphore {
  public:
    explicit KOLT_Semaphore(std::uint32_t initial) : count_(initial) {}

    void set_backlog(std::uint32_t tokens) { backlog_ = tokens; }
    std::uint32_t count() const { return count_.load(std::memory_order_relaxed); }

    KOLT_SemaphoreResult give() {
        const std::uint32_t before = count_.fetch_add(1, std::memory_order_seq_cst);
        if (before >= kMaximumCount) {
            count_.fetch_sub(1, std::memory_order_relaxed);
            return KOLT_SEMAPHORE_ERROR;
        }
        const std::uint32_t word = waiting_.load(std::memory_order_seq_cst);
        if (wants_wake(word, before + 1)) {
            wake(word, before + 1);
        }
        return KOLT_SEMAPHORE_OK;
    }

    KOLT_SemaphoreResult take(const DDS_Duration_t *timeout) {
        KOLT_SemaphoreResult result = KOLT_SEMAPHORE_OK;
        if (!try_take()) {
            if (!is_positive(timeout)) {
                return KOLT_SEMAPHORE_TIMEOUT;
            }
            const std::int64_t deadline = deadline_of(timeout);
            // A wait that finds nothing leaves this false: the next one sleeps at once.
            const bool was_active = active_.exchange(false, std::memory_order_relaxed);
            if (!(was_active && nap(deadline))) {
                result = sleep(deadline);
            }
        }
        if (result == KOLT_SEMAPHORE_OK && !active_.load(std::memory_order_relaxed)) {
            active_.store(true, std::memory_order_relaxed);
        }
        return result;
    }

  private:
    bool wants_wake(std::uint32_t word, std::uint32_t tokens) const {
        return (word & kSleeping) != 0 || ((word & kNapping) != 0 && tokens >= backlog_);
    }

    [[gnu::noinline]] void wake(std::uint32_t word, std::uint32_t tokens) {
        while (wants_wake(word, tokens)) {
            if (waiting_.compare_exchange_weak(word, (word & ~kBits) + kEpoch,
                                               std::memory_order_seq_cst)) {
                futex_wake(futex_word(), INT_MAX);
                return;
            }
        }
    }

    bool try_take() {
        std::uint32_t tokens = count_.load(std::memory_order_seq_cst);
        while (tokens != 0) {
            // A count above the maximum is a give that is about to be taken back.
            if (count_.compare_exchange_weak(tokens, tokens - 1, std::memory_order_seq_cst)) {
                return true;
            }
        }
        return false;
    }

    // True with a token taken; false when the nap time, or the time to the deadline, is over.
    bool nap(std::int64_t deadline) {
        std::int64_t now = monotonic_now();
        const std::int64_t end = std::min(deadline, now + kNapTime);
        std::int64_t slice = kFirstNap;
        bool taken = false;
        while (!taken && now < end) {
            const std::uint32_t word =
                waiting_.fetch_or(kNapping, std::memory_order_seq_cst) | kNapping;
            taken = try_take();
            if (!taken) {
                futex_wait(futex_word(), word, std::min(end, now + slice));
                taken = try_take();
                slice = std::min(slice * 3 / 2, kLongestNap);
                now = monotonic_now();
            }
        }
        // Another waiter's bit may go with it; that one's nap then lasts to its end.
        waiting_.fetch_and(~kNapping, std::memory_order_relaxed);
        return taken;
    }

    KOLT_SemaphoreResult sleep(std::int64_t deadline) {
        int error = 0;
        while (true) {
            const std::uint32_t word =
                waiting_.fetch_or(kSleeping, std::memory_order_seq_cst) | kSleeping;
            if (try_take()) {
                return KOLT_SEMAPHORE_OK;
            }
            if (error == ETIMEDOUT) {
                return KOLT_SEMAPHORE_TIMEOUT;
            }
            error = futex_wait(futex_word(), word, deadline);
            if (error != 0 && error != EAGAIN && error != EINTR && error != ETIMEDOUT) {
                return KOLT_SEMAPHORE_ERROR;
            }
        }
    }

    // An atomic of a lock-free 32-bit type is that word.
    std::uint32_t *futex_word() { return reinterpret_cast<std::uint32_t *>(&waiting_); }
    static_assert(sizeof(std::atomic<std::uint32_t>) == sizeof(std::uint32_t));
    static_assert(std::atomic<std::uint32_t>::is_always_lock_free);

    // Side by side: a give touches one cache line.
    std::atomic<std::uint32_t> count_;
    std::atomic<std::uint32_t> waiting_{0};
    std::uint32_t backlog_ = KOLT_SEMAPHORE_DEFAULT_BACKLOG;
    std::atomic<bool> active_{false};
};

KOLT_Semaphore *KOLT_Semaphore_new(DDS_Long initial) {
    if (initial < 0) {
        return nullptr;
    }
    void *memory = KOLT_Heap_allocate(sizeof(KOLT_Semaphore));
    return memory != nullptr ? new (memory) KOLT_Semaphore(static_cast<std::uint32_t>(initial))
                             : nullptr;
}

void KOLT_Semaphore_delete(KOLT_Semaphore *self) {
    KOLT_Heap_free(self);
}

void KOLT_Semaphore_set_backlog(KOLT_Semaphore *self, DDS_Long tokens) {
    if (self != nullptr) {
        self->set_backlog(static_cast<std::uint32_t>(std::max(tokens, 1)));
    }
}

KOLT_SemaphoreResult KOLT_Semaphore_take(KOLT_Semaphore *self, const DDS_Duration_t *timeout) {
    return self != nullptr ? self->take(timeout) : KOLT_SEMAPHORE_ERROR;
}

KOLT_SemaphoreResult KOLT_Semaphore_give(KOLT_Semaphore *self) {
    return self != nullptr ? self->give() : KOLT_SEMAPHORE_ERROR;
}

DDS_Long KOLT_Semaphore_get_count(const KOLT_Semaphore *self) {
    return self != nullptr ? static_cast<DDS_Long>(std::min(self->count(), kMaximumCount)) : 0;
}
