// SPDX-License-Identifier: Apache-2.0
// A text that grows: on the stack while it is short, on the heap beyond. What does not fit when
// memory runs out is cut.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "kolt/os.h"

namespace kolt::log {

class TextBuffer {
  public:
    TextBuffer() = default;
    ~TextBuffer() { KOLT_Heap_free(heap_); }
    TextBuffer(const TextBuffer &) = delete;
    TextBuffer &operator=(const TextBuffer &) = delete;

    void append(std::string_view text) {
        if (text.size() >= capacity_ - size_) {
            grow(size_ + text.size() + 1);
        }
        const std::size_t count = std::min(text.size(), capacity_ - size_ - 1);
        std::memcpy(data() + size_, text.data(), count);
        size_ += count;
        data()[size_] = '\0';
    }

    bool empty() const { return size_ == 0; }
    std::string_view view() const { return {data(), size_}; }
    // Terminated. Valid until the next append.
    const char *c_str() const { return data(); }

  private:
    static constexpr std::size_t kInlineCapacity = 1024;

    char *data() { return heap_ != nullptr ? heap_ : inline_; }
    const char *data() const { return heap_ != nullptr ? heap_ : inline_; }

    void grow(std::size_t needed) {
        const std::size_t capacity = std::max(needed, capacity_ * 2);
        auto *larger = static_cast<char *>(KOLT_Heap_allocate(capacity));
        if (larger != nullptr) {
            std::memcpy(larger, data(), size_ + 1);
            KOLT_Heap_free(heap_);
            heap_ = larger;
            capacity_ = capacity;
        }
    }

    char inline_[kInlineCapacity] = "";
    char *heap_ = nullptr;
    std::size_t size_ = 0;
    std::size_t capacity_ = kInlineCapacity;
};

}  // namespace kolt::log
