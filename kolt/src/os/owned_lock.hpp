// SPDX-License-Identifier: Apache-2.0
// The lock behind KOLT_GlobalLock and KOLT_Mutex: a futex word and the thread that holds it.
//
// The word is 0 (free), 1 (taken) or 2 (taken, somebody may be waiting); U. Drepper, "Futexes Are
// Tricky", second mutex. The owner's identifier lets a thread that takes the lock twice get an
// error instead of waiting for itself for ever. Only the holder writes it, so a thread that reads
// its own identifier there does hold the lock, whatever the others do.
#pragma once

#include <atomic>
#include <cerrno>
#include <cstdint>

#include "os/futex.hpp"
#include "os/thread_id.hpp"

namespace kolt::os {

// A view of the two words of a lock. Make one, use it, drop it.
class OwnedLock {
  public:
    OwnedLock(std::uint32_t &state, std::uint64_t &owner)
        : word_(&state), state_(state), owner_(owner) {}

    // 0 or EDEADLK.
    int take() {
        const std::uint64_t self = current_thread_id();
        std::uint32_t expected = kFree;
        if (!state_.compare_exchange_strong(expected, kTaken, std::memory_order_acquire,
                                            std::memory_order_relaxed)) {
            if (owner_.load(std::memory_order_relaxed) == self) {
                return EDEADLK;
            }
            take_contended();
        }
        owner_.store(self, std::memory_order_relaxed);
        return 0;
    }

    // 0 or EPERM.
    int give() {
        if (owner_.load(std::memory_order_relaxed) != current_thread_id()) {
            return EPERM;
        }
        owner_.store(0, std::memory_order_relaxed);
        if (state_.exchange(kFree, std::memory_order_release) == kContended) {
            futex_wake(word_, 1);
        }
        return 0;
    }

  private:
    static constexpr std::uint32_t kFree = 0;
    static constexpr std::uint32_t kTaken = 1;
    static constexpr std::uint32_t kContended = 2;
    // The lock is usually held for less than a microsecond: looking again for about as long spares
    // both sides a system call.
    static constexpr int kLooks = 32;

    static void pause() {
#if defined(__x86_64__) || defined(__i386__)
        __builtin_ia32_pause();
#elif defined(__aarch64__)
        asm volatile("yield");
#endif
    }

    [[gnu::noinline]] void take_contended() {
        for (int look = 0; look < kLooks; ++look) {
            std::uint32_t expected = kFree;
            if (state_.load(std::memory_order_relaxed) == kFree &&
                state_.compare_exchange_strong(expected, kTaken, std::memory_order_acquire,
                                               std::memory_order_relaxed)) {
                return;
            }
            pause();
        }
        // A thread that announced that it waits takes the lock as contended: others may have
        // announced the same, and it would otherwise swallow their wake.
        while (state_.exchange(kContended, std::memory_order_acquire) != kFree) {
            futex_wait(word_, kContended, kNever);
        }
    }

    std::uint32_t *word_;
    std::atomic_ref<std::uint32_t> state_;
    std::atomic_ref<std::uint64_t> owner_;
};

}  // namespace kolt::os
