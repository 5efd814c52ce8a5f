// SPDX-License-Identifier: Apache-2.0
// The pool of fixed-size buffers: blocks of buffers, and a free list that runs through them.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>

#include "kolt/os.h"

namespace {

// The content of a buffer that is not handed out.
struct FreeBuffer {
    FreeBuffer *next;
};

// Stands at the start of each block's memory.
struct Block {
    Block *next;
};

bool is_power_of_two(std::size_t value) {
    return value != 0 && (value & (value - 1)) == 0;
}

std::size_t round_up(std::size_t value, std::size_t alignment) {
    return (value + alignment - 1) & ~(alignment - 1);
}

constexpr DDS_Long kSmallestGrowth = 8;

}  // namespace

struct KOLT_BufferPool {
  public:
    KOLT_BufferPool(std::size_t element_size, std::size_t alignment, DDS_Long maximum,
                    bool zero_on_get)
        : element_size_(element_size),
          alignment_(std::max(alignment, alignof(FreeBuffer))),
          stride_(round_up(std::max(element_size, sizeof(FreeBuffer)), alignment_)),
          maximum_(maximum),
          zero_on_get_(zero_on_get) {}

    ~KOLT_BufferPool() {
        while (blocks_ != nullptr) {
            Block *block = blocks_;
            blocks_ = block->next;
            KOLT_Heap_free(block);
        }
    }

    // Adds a block of `count` buffers, lowest address first on the free list.
    bool add_block(DDS_Long count) {
        const auto buffers = static_cast<std::size_t>(count);
        const std::size_t overhead = sizeof(Block) + alignment_;
        if (buffers > (std::numeric_limits<std::size_t>::max() - overhead) / stride_) {
            return false;
        }
        void *memory = KOLT_Heap_allocate(overhead + buffers * stride_);
        if (memory == nullptr) {
            return false;
        }
        blocks_ = new (memory) Block{blocks_};
        auto *bytes = static_cast<unsigned char *>(memory) + sizeof(Block);
        bytes += (alignment_ - reinterpret_cast<std::uintptr_t>(bytes) % alignment_) % alignment_;
        for (std::size_t i = buffers; i > 0; --i) {
            free_ = new (bytes + (i - 1) * stride_) FreeBuffer{free_};
        }
        existing_ += count;
        return true;
    }

    void *get() {
        if (free_ == nullptr && !grow()) {
            return nullptr;
        }
        void *buffer = free_;
        free_ = free_->next;
        ++outstanding_;
        if (zero_on_get_) {
            std::memset(buffer, 0, element_size_);
        }
        return buffer;
    }

    void put(void *buffer) {
        free_ = new (buffer) FreeBuffer{free_};
        --outstanding_;
    }

    DDS_Long outstanding() const { return outstanding_; }

  private:
    bool grow() {
        constexpr DDS_Long kLimit = std::numeric_limits<DDS_Long>::max();
        const DDS_Long room = (maximum_ == DDS_LENGTH_UNLIMITED ? kLimit : maximum_) - existing_;
        return room > 0 && add_block(std::min(room, std::max(existing_, kSmallestGrowth)));
    }

    const std::size_t element_size_;
    const std::size_t alignment_;
    const std::size_t stride_;
    const DDS_Long maximum_;
    const bool zero_on_get_;
    FreeBuffer *free_ = nullptr;
    Block *blocks_ = nullptr;
    DDS_Long existing_ = 0;
    DDS_Long outstanding_ = 0;
};

KOLT_BufferPool *KOLT_BufferPool_new(std::size_t element_size, std::size_t alignment,
                                     DDS_Long initial, DDS_Long maximum, DDS_Boolean zero_on_get) {
    constexpr std::size_t kLargest = std::numeric_limits<std::size_t>::max() / 4;
    const bool is_limited = maximum != DDS_LENGTH_UNLIMITED;
    if (element_size == 0 || element_size > kLargest || !is_power_of_two(alignment) ||
        alignment > kLargest || initial < 0 || (is_limited && (maximum < 1 || maximum < initial))) {
        return nullptr;
    }
    void *memory = KOLT_Heap_allocate(sizeof(KOLT_BufferPool));
    if (memory == nullptr) {
        return nullptr;
    }
    auto *pool = new (memory) KOLT_BufferPool(element_size, alignment, maximum, zero_on_get != 0);
    if (initial > 0 && !pool->add_block(initial)) {
        KOLT_BufferPool_delete(pool);
        return nullptr;
    }
    return pool;
}

void KOLT_BufferPool_delete(KOLT_BufferPool *self) {
    if (self != nullptr) {
        self->~KOLT_BufferPool();
        KOLT_Heap_free(self);
    }
}

void *KOLT_BufferPool_get(KOLT_BufferPool *self) {
    return self != nullptr ? self->get() : nullptr;
}

void KOLT_BufferPool_return_buffer(KOLT_BufferPool *self, void *buffer) {
    if (self != nullptr && buffer != nullptr) {
        self->put(buffer);
    }
}

DDS_Long KOLT_BufferPool_get_outstanding(const KOLT_BufferPool *self) {
    return self != nullptr ? self->outstanding() : 0;
}
