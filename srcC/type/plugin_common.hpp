// What the plugin and the plugin-support families have in common: a type's programs.
#pragma once

#include <atomic>

#include "kolt/cdr.h"
#include "type/type_list.hpp"

namespace vur_dl {

// A type's programs, compiled at the first call; NULL when memory runs out. The reference that is
// taken then is kept for good: who converts one sample converts more of them.
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
        // Another thread was faster; its reference is the one that stays.
        KOLT_TypePrograms_release(acquired);
        return programs;
    }
    return acquired;
}

}  // namespace vur_dl
