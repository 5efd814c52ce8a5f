// SPDX-License-Identifier: Apache-2.0
// The logger lock, with everything that goes with holding it.
#include "logger_lock.hpp"

#include <pthread.h>

#include "fork.hpp"
#include "lock_rules.hpp"
#include "vur_dl/DistLogger.h"

KOLT_GlobalLock gVUR_DL_DistLogger_lock = KOLT_GLOBAL_LOCK_INITIALIZER;

namespace {

// The holder's cancel state before it took the lock. Read and written by the holder only.
int cancel_state_of_holder = PTHREAD_CANCEL_ENABLE;

}  // namespace

bool vur_dl::take_logger_lock() {
    int before = PTHREAD_CANCEL_ENABLE;
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before);
    if (!take_logger_lock_to_log()) {
        pthread_setcancelstate(before, nullptr);
        return false;
    }
    cancel_state_of_holder = before;
    return true;
}

bool vur_dl::give_logger_lock() {
    const int before = cancel_state_of_holder;
    const bool given = give_logger_lock_after_log();
    pthread_setcancelstate(before, nullptr);
    return given;
}

bool vur_dl::take_logger_lock_to_log() {
    if (is_child_without_logger() || KOLT_GlobalLock_take(&gVUR_DL_DistLogger_lock) != 0) {
        return false;
    }
    logger_lock_taken();
    return true;
}

bool vur_dl::give_logger_lock_after_log() {
    logger_lock_given();
    return KOLT_GlobalLock_give(&gVUR_DL_DistLogger_lock) == 0;
}
