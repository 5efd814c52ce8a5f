// SPDX-License-Identifier: Apache-2.0
// A canonical key. Short ones, which are the rule, need no memory of their own.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

#include "kolt/infrastructure.h"

namespace kolt::engine {

class KeyBytes {
  public:
    KeyBytes() = default;

    // Lets `extract(buffer, &length)` write the key. `length` holds the room on entry and the need
    // on return; when the room was too small it is called again with enough. False when extract
    // fails for another reason.
    template <typename Extract>
    bool fill(Extract &&extract) {
        std::size_t length = kInlineSize;
        elsewhere_ = nullptr;
        if (extract(inline_, &length)) {
            heap_.reset();
            size_ = length;
            return true;
        }
        if (length <= kInlineSize) {
            return false;
        }
        auto larger = std::make_unique<DDS_Octet[]>(length);
        if (!extract(larger.get(), &length)) {
            return false;
        }
        heap_ = std::move(larger);
        size_ = length;
        return true;
    }

    void assign(const DDS_Octet *bytes, std::size_t size) {
        elsewhere_ = nullptr;
        if (size > kInlineSize) {
            heap_ = std::make_unique<DDS_Octet[]>(size);
        } else {
            heap_.reset();
        }
        size_ = size;
        if (size != 0) {
            std::memcpy(heap_ ? heap_.get() : inline_, bytes, size);
        }
    }

    // Takes bytes that stay where they are as long as this object.
    void refer(const DDS_Octet *bytes, std::size_t size) {
        heap_.reset();
        elsewhere_ = bytes;
        size_ = size;
    }

    const DDS_Octet *data() const {
        if (elsewhere_ != nullptr) {
            return elsewhere_;
        }
        return heap_ ? heap_.get() : inline_;
    }
    std::size_t size() const { return size_; }
    std::string_view view() const { return {reinterpret_cast<const char *>(data()), size_}; }

  private:
    static constexpr std::size_t kInlineSize = 32;
    std::size_t size_ = 0;
    std::unique_ptr<DDS_Octet[]> heap_;
    const DDS_Octet *elsewhere_ = nullptr;
    DDS_Octet inline_[kInlineSize];
};

}  // namespace kolt::engine
