// SPDX-License-Identifier: Apache-2.0
// The pools of endpoint data: records for readers and keys, buffers for writers.
#pragma once

#include <array>
#include <cstddef>
#include <mutex>
#include <vector>

#include "kolt/infrastructure.h"

namespace kolt::type {

// Records that are made by a type's own functions and kept for reuse. Thread-safe.
class RecordPool {
  public:
    using Create = void *(*)();
    using Destroy = void (*)(void *record);

    // Keeps up to `idle_limit` records that are not in use. May throw std::bad_alloc.
    RecordPool(Create create, Destroy destroy, std::size_t idle_limit);
    ~RecordPool();
    RecordPool(const RecordPool &) = delete;
    RecordPool &operator=(const RecordPool &) = delete;

    // Makes `count` records in advance. False when one can't be made.
    bool fill(std::size_t count);
    // NULL when a new record can't be made.
    void *get();
    void give_back(void *record);

  private:
    const Create create_;
    const Destroy destroy_;
    std::mutex mutex_;
    std::vector<void *> idle_;  // guarded by mutex_; never beyond its capacity
};

// Buffers of a writer, in size classes of powers of two. Thread-safe. The pool outlives its owner
// until the last buffer is back: a sample may be held longer than the writer that wrote it.
class BufferPool {
  public:
    // No buffer is larger than `largest` bytes, if that is not 0. NULL when memory runs out.
    static BufferPool *create(std::size_t largest);
    // Ends the owner's use of the pool; called once. Deletes the pool when no buffer is out;
    // otherwise the last buffer to come back deletes it.
    void release();

    // Returns a buffer of at least `size` bytes and sets `*capacity` to its real size. NULL when
    // memory runs out or `size` is more than the largest.
    DDS_Octet *get(std::size_t size, std::size_t *capacity);
    // Gives back a buffer of any pool.
    static void give_back(DDS_Octet *buffer);

  private:
    struct Block;  // the header in front of each buffer

    static constexpr std::size_t kSmallest = 128;
    static constexpr std::size_t kClassCount = 11;  // 128 bytes to 128 KiB
    static constexpr std::size_t kIdlePerClass = 32;

    explicit BufferPool(std::size_t largest) : largest_(largest) {}
    ~BufferPool();

    void take_back(Block *block);
    Block *new_block(std::size_t size_class, std::size_t capacity);

    const std::size_t largest_;
    std::mutex mutex_;
    // All guarded by mutex_.
    std::array<Block *, kClassCount> idle_{};  // linked lists
    std::array<std::size_t, kClassCount> idle_count_{};
    std::size_t outstanding_ = 0;
    bool released_ = false;
};

}  // namespace kolt::type
