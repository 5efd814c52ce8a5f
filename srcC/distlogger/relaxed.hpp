// Plain integers of C records that one thread writes and another reads without a lock. The accesses
// compile to the same plain loads and stores (x86, 64-bit Arm: load/store instructions of the
// memory order asked for) and are atomic in the language's terms.
#pragma once

namespace vur_dl {

template <typename T>
inline T load_relaxed(const T &value) {
    T result;
    __atomic_load(&value, &result, __ATOMIC_RELAXED);
    return result;
}

template <typename T, typename V>
inline void store_relaxed(T &target, V value) {
    T converted = static_cast<T>(value);
    __atomic_store(&target, &converted, __ATOMIC_RELAXED);
}

// For the flags that publish a record: who sees the flag sees the record.
template <typename T>
inline T load_acquire(const T &value) {
    T result;
    __atomic_load(&value, &result, __ATOMIC_ACQUIRE);
    return result;
}

template <typename T, typename V>
inline void store_release(T &target, V value) {
    T converted = static_cast<T>(value);
    __atomic_store(&target, &converted, __ATOMIC_RELEASE);
}

}  // namespace vur_dl
