// SPDX-License-Identifier: Apache-2.0
// Reuse of records and buffers.
#include "type/plugin/plugin_pools.hpp"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace kolt::type {

RecordPool::RecordPool(Create create, Destroy destroy, std::size_t idle_limit)
    : create_(create), destroy_(destroy) {
    idle_.reserve(idle_limit);
}

RecordPool::~RecordPool() {
    for (void *const record : idle_) {
        destroy_(record);
    }
}

bool RecordPool::fill(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        void *const record = create_();
        if (record == nullptr) {
            return false;
        }
        give_back(record);
    }
    return true;
}

void *RecordPool::get() {
    {
        const std::lock_guard lock(mutex_);
        if (!idle_.empty()) {
            void *const record = idle_.back();
            idle_.pop_back();
            return record;
        }
    }
    return create_();
}

void RecordPool::give_back(void *record) {
    if (record == nullptr) {
        return;
    }
    {
        const std::lock_guard lock(mutex_);
        if (idle_.size() < idle_.capacity()) {
            idle_.push_back(record);
            return;
        }
    }
    destroy_(record);
}

struct alignas(std::max_align_t) BufferPool::Block {
    BufferPool *pool;
    std::size_t size_class;  // kClassCount for a buffer that is too large to be kept
    Block *next;
    std::size_t capacity;

    DDS_Octet *bytes() { return reinterpret_cast<DDS_Octet *>(this + 1); }
    static Block *of(DDS_Octet *bytes) {
        return std::launder(reinterpret_cast<Block *>(bytes - sizeof(Block)));
    }
};

BufferPool *BufferPool::create(std::size_t largest) {
    return new (std::nothrow) BufferPool(largest);
}

BufferPool::~BufferPool() {
    for (Block *block : idle_) {
        while (block != nullptr) {
            Block *const next = block->next;
            std::free(block);
            block = next;
        }
    }
}

void BufferPool::release() {
    bool last = false;
    {
        const std::lock_guard lock(mutex_);
        released_ = true;
        last = outstanding_ == 0;
    }
    if (last) {
        delete this;
    }
}

BufferPool::Block *BufferPool::new_block(std::size_t size_class, std::size_t capacity) {
    void *const memory = std::malloc(sizeof(Block) + capacity);
    if (memory == nullptr) {
        return nullptr;
    }
    return new (memory) Block{this, size_class, nullptr, capacity};
}

DDS_Octet *BufferPool::get(std::size_t size, std::size_t *capacity) {
    if (largest_ != 0 && size > largest_) {
        return nullptr;
    }
    std::size_t size_class = 0;
    std::size_t rounded = kSmallest;
    while (size_class < kClassCount && rounded < size) {
        rounded *= 2;
        ++size_class;
    }
    Block *block = nullptr;
    {
        const std::lock_guard lock(mutex_);
        ++outstanding_;
        if (size_class < kClassCount && idle_[size_class] != nullptr) {
            block = idle_[size_class];
            idle_[size_class] = block->next;
            --idle_count_[size_class];
        }
    }
    if (block == nullptr) {
        std::size_t wanted = size_class < kClassCount ? rounded : size;
        if (largest_ != 0) {
            wanted = std::min(wanted, largest_);
        }
        block = new_block(size_class, wanted);
        if (block == nullptr) {
            const std::lock_guard lock(mutex_);
            --outstanding_;
            return nullptr;
        }
    }
    *capacity = block->capacity;
    return block->bytes();
}

void BufferPool::give_back(DDS_Octet *buffer) {
    if (buffer == nullptr) {
        return;
    }
    Block *const block = Block::of(buffer);
    block->pool->take_back(block);
}

void BufferPool::take_back(Block *block) {
    bool keep = false;
    bool last = false;
    {
        const std::lock_guard lock(mutex_);
        const std::size_t size_class = block->size_class;
        keep = !released_ && size_class < kClassCount && idle_count_[size_class] < kIdlePerClass;
        if (keep) {
            block->next = idle_[size_class];
            idle_[size_class] = block;
            ++idle_count_[size_class];
        }
        --outstanding_;
        last = released_ && outstanding_ == 0;
    }
    if (!keep) {
        std::free(block);
    }
    if (last) {
        delete this;
    }
}

}  // namespace kolt::type
