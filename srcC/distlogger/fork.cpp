// SPDX-License-Identifier: Apache-2.0
// What a forked child does before fork() returns in it.
#include "fork.hpp"

#include <pthread.h>

#include <atomic>

#include "DistLoggerRecord.hpp"

namespace {

using vur_dl::store_relaxed;

std::atomic<bool> logger_exists{false};
std::atomic<bool> child_without_logger{false};
static_assert(std::atomic<bool>::is_always_lock_free);

// Only stores, since the parent's other threads may have been anywhere. Those threads are not here:
// what they had taken is free.
void forget_parent() {
    vur_dl::forget_threshold_of_parent();
    if (!logger_exists) {
        gVUR_DL_DistLogger_lock = KOLT_GLOBAL_LOCK_INITIALIZER;
        return;
    }
    child_without_logger = true;
    store_relaxed(VUR_DL_DistLogger_instance, nullptr);
    store_relaxed(gVUR_DL_DistLogger_initialized, 0);
    store_relaxed(gVUR_DL_DistLogger_beingDestroyed, 0);
}

// Fails only without memory, and then there is nobody to tell.
[[maybe_unused]] const int kRegistered = pthread_atfork(nullptr, nullptr, forget_parent);

}  // namespace

void vur_dl::set_logger_exists(bool exists) {
    logger_exists = exists;
}

bool vur_dl::is_child_without_logger() {
    return child_without_logger.load(std::memory_order_relaxed);
}
