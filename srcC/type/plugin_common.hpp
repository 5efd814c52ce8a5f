// SPDX-License-Identifier: Apache-2.0
// A type's serialisation programs, which the plugin and the plugin-support families share.
#pragma once

#include <atomic>

#include "kolt/cdr.h"
#include "type/type_list.hpp"

namespace vur_dl {

// Returns a type's programs, compiled at the first call; NULL when memory runs out. The reference
// that is taken then is kept for good, because a program that converts one sample converts more.
template <typename T>
const KOLT_TypePrograms *programs_of() noexcept {
    static std::atomic<const KOLT_TypePrograms *> kept{nullptr};
    const KOLT_TypePrograms *programs = kept.load(std::memory_order_acquire);
    if (programs != nullptr) {
        return programs;
    }
    const KOLT_TypePrograms *const acquired = KOLT_TypePrograms_acquire(TypeOf<T>::code());
    if (acquired == nullptr) {
        return nullptr;
    }
    if (!kept.compare_exchange_strong(programs, acquired, std::memory_order_acq_rel,
                                      std::memory_order_acquire)) {
        // Another thread was faster, and its reference stays.
        KOLT_TypePrograms_release(acquired);
        return programs;
    }
    return acquired;
}

}  // namespace vur_dl
