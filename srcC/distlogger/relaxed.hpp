// SPDX-License-Identifier: Apache-2.0
// Atomic access to plain fields of C records that one thread writes and another reads without a
// lock. On x86 and 64-bit Arm the relaxed accesses compile to plain loads and stores.
#pragma once

#include <atomic>

namespace vur_dl {

template <typename T>
T load(const T &value, std::memory_order order) {
    static_assert(std::atomic_ref<T>::is_always_lock_free);
    // The reference only reads; C++20 has no atomic_ref of a const object.
    return std::atomic_ref<T>(const_cast<T &>(value)).load(order);
}

template <typename T>
T load_relaxed(const T &value) {
    return load(value, std::memory_order_relaxed);
}

template <typename T, typename V>
void store_relaxed(T &target, V value) {
    std::atomic_ref<T>(target).store(static_cast<T>(value), std::memory_order_relaxed);
}

// Acquire and release are for flags and pointers that publish a record: a thread that reads the
// flag also sees the record.
template <typename T>
T load_acquire(const T &value) {
    return load(value, std::memory_order_acquire);
}

template <typename T, typename V>
void store_release(T &target, V value) {
    std::atomic_ref<T>(target).store(static_cast<T>(value), std::memory_order_release);
}

}  // namespace vur_dl
