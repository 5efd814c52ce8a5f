// SPDX-License-Identifier: Apache-2.0
// The level above which log calls have no effect, and the one order of its refreshes.
#include <climits>
#include <mutex>
#include <new>

#include "DistLoggerRecord.hpp"
#include "lock_rules.hpp"

namespace {

using vur_dl::load_relaxed;
using Lock = std::lock_guard<vur_dl::LeafMutex>;

vur_dl::LeafMutex mutex;                     // guards `watched`, and one refresh at a time
const VUR_DL_DistLogger *watched = nullptr;  // valid as long as it is watched

// Derives the threshold anew. The caller holds the mutex.
void refresh() {
    int value = INT_MAX;
    if (watched != nullptr && load_relaxed(watched->options->echoToStdout) != 1) {
        value = vur_dl::is_operational(*watched) ? load_relaxed(watched->filterLevel) : INT_MIN;
    }
    vur_dl::effect_threshold.store(value, std::memory_order_relaxed);
}

}  // namespace

std::atomic<int> vur_dl::effect_threshold{INT_MAX};

void vur_dl::watch_threshold_of(const VUR_DL_DistLogger *self) {
    const Lock lock(mutex);
    watched = self;
    refresh();
}

void vur_dl::refresh_threshold() {
    const Lock lock(mutex);
    refresh();
}

void vur_dl::refresh_threshold_after(const VUR_DL_Options *options) {
    const Lock lock(mutex);
    if (watched != nullptr && watched->options == options) {
        refresh();
    }
}

void vur_dl::forget_threshold_of_parent() {
    new (&mutex) LeafMutex;  // a thread that is not here may have held it
    watched = nullptr;
    effect_threshold.store(INT_MAX, std::memory_order_relaxed);
}
