// SPDX-License-Identifier: Apache-2.0
// The sinks of a write program: a buffer in either byte order, and a counter.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "type/cdr/cdr_program.hpp"

namespace kolt::type {

inline std::uint16_t swap_bytes(std::uint16_t value) {
    return __builtin_bswap16(value);
}
inline std::uint32_t swap_bytes(std::uint32_t value) {
    return __builtin_bswap32(value);
}
inline std::uint64_t swap_bytes(std::uint64_t value) {
    return __builtin_bswap64(value);
}

// Copies `count` numbers of `width` bytes and swaps the bytes of each.
template <typename Word>
void copy_swapped_words(std::uint8_t *to, const std::uint8_t *from, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        Word word;
        std::memcpy(&word, from + i * sizeof(word), sizeof(word));
        word = swap_bytes(word);
        std::memcpy(to + i * sizeof(word), &word, sizeof(word));
    }
}

template <bool kSwap>
inline void copy_words(void *to, const void *from, std::size_t count, std::size_t width) {
    if constexpr (kSwap) {
        auto *const target = static_cast<std::uint8_t *>(to);
        const auto *const source = static_cast<const std::uint8_t *>(from);
        switch (width) {
            case 2:
                copy_swapped_words<std::uint16_t>(target, source, count);
                return;
            case 4:
                copy_swapped_words<std::uint32_t>(target, source, count);
                return;
            case 8:
                copy_swapped_words<std::uint64_t>(target, source, count);
                return;
            default:
                break;
        }
    } else if (count * width == 4) {  // by far the most frequent sizes
        std::memcpy(to, from, 4);
        return;
    } else if (count * width == 8) {
        std::memcpy(to, from, 8);
        return;
    }
    std::memcpy(to, from, count * width);
}

// An open XCDR1 parameter.
struct ParameterMark {
    std::size_t header = 0;  // where its header begins
    std::size_t origin = 0;  // the alignment origin around it
    bool extended = false;
};

// Bytes into a buffer. Each operation is false when the buffer has no room, or what it is told does
// not fit a 32-bit length.
template <bool kSwap>
class BufferSink {
  public:
    BufferSink(std::uint8_t *buffer, std::size_t capacity) : buffer_(buffer), capacity_(capacity) {}

    std::size_t position() const { return position_; }

    bool align(std::size_t alignment) {
        const std::size_t padding = (origin_ - position_) & (alignment - 1);
        if (padding > capacity_ - position_) {
            return false;
        }
        for (std::size_t i = 0; i < padding; ++i) {
            buffer_[position_ + i] = 0;
        }
        position_ += padding;
        return true;
    }

    bool words(const void *from, std::size_t count, std::size_t width) {
        const std::size_t size = count * width;
        if (size > capacity_ - position_) {
            return false;
        }
        copy_words<kSwap>(buffer_ + position_, from, count, width);
        position_ += size;
        return true;
    }

    bool word32(std::uint32_t value) { return words(&value, 1, 4); }

    // Words, and members of a record over some of them.
    bool patched(const std::uint32_t *pattern, std::size_t count, const StretchField *field,
                 const StretchField *last, const char *record) {
        std::uint8_t *const start = buffer_ + position_;
        if (!words(pattern, count, 4)) {
            return false;
        }
        for (; field != last; ++field) {
            copy_words<kSwap>(start + field->position, record + field->offset, field->count,
                              field->width);
        }
        return true;
    }

    // A string of `size` bytes, its terminator included, behind its length.
    bool string(const char *text, std::uint32_t size) {
        return align(4) && word32(size) && words(text, size, 1);
    }

    // Leaves room for a byte count that close_count fills in.
    bool open_count(std::size_t *mark) {
        *mark = position_;
        if (4 > capacity_ - position_) {
            return false;
        }
        position_ += 4;
        return true;
    }
    bool close_count(std::size_t mark) {
        const std::size_t size = position_ - mark - 4;
        if (size > UINT32_MAX) {
            return false;
        }
        store32(mark, static_cast<std::uint32_t>(size));
        return true;
    }

    // The alignment of the value starts anew behind the header of a parameter.
    bool open_parameter(const Op &op, ParameterMark *mark) {
        if (!align(4)) {
            return false;
        }
        mark->header = position_;
        mark->origin = origin_;
        mark->extended = op.constant > kLargestShortId;
        const std::size_t size = mark->extended ? 12 : 4;
        if (size > capacity_ - position_) {
            return false;
        }
        position_ += size;
        origin_ = position_;
        return true;
    }

    // Short headers hold a length of 16 bits. A value that turns out longer moves up by the 8 bytes
    // of the extended header, which leaves its own alignment as it is.
    bool close_parameter(const Op &op, const ParameterMark &mark) {
        const bool move = !mark.extended && position_ - mark.header - 4 > kLargestShortLength;
        const bool extended = mark.extended || move;
        const std::size_t start = mark.header + (mark.extended ? 12 : 4);
        const std::size_t length = position_ - start;
        if (length > UINT32_MAX) {
            return false;
        }
        if (move) {
            if (8 > capacity_ - position_) {
                return false;
            }
            std::memmove(buffer_ + start + 8, buffer_ + start, length);
            position_ += 8;
        }
        const bool must_understand = (op.flags & kOpMustUnderstand) != 0;
        const std::uint16_t flag = must_understand ? kPidMustUnderstand : std::uint16_t{0};
        if (extended) {
            store16(mark.header, static_cast<std::uint16_t>(kPidExtended | flag));
            store16(mark.header + 2, 8);
            store32(mark.header + 4, op.constant | (must_understand ? kExtendedMustUnderstand : 0));
            store32(mark.header + 8, static_cast<std::uint32_t>(length));
        } else {
            store16(mark.header, static_cast<std::uint16_t>(op.constant | flag));
            store16(mark.header + 2, static_cast<std::uint16_t>(length));
        }
        origin_ = mark.origin;
        return true;
    }

    bool sentinel() {
        if (!align(4) || 4 > capacity_ - position_) {
            return false;
        }
        store16(position_, kPidSentinel);
        store16(position_ + 2, 0);
        position_ += 4;
        return true;
    }

  private:
    void store16(std::size_t at, std::uint16_t value) {
        copy_words<kSwap>(buffer_ + at, &value, 1, 2);
    }
    void store32(std::size_t at, std::uint32_t value) {
        copy_words<kSwap>(buffer_ + at, &value, 1, 4);
    }

    std::uint8_t *buffer_;
    std::size_t capacity_;
    std::size_t position_ = 0;
    std::size_t origin_ = 0;
};

// The same operations, counting only.
class CountSink {
  public:
    explicit CountSink(std::size_t start = 0) : position_(start) {}

    std::size_t position() const { return position_; }
    bool align(std::size_t alignment) {
        position_ += (origin_ - position_) & (alignment - 1);
        return true;
    }
    bool words(const void *, std::size_t count, std::size_t width) {
        position_ += count * width;
        return true;
    }
    bool word32(std::uint32_t) {
        position_ += 4;
        return true;
    }
    bool patched(const std::uint32_t *, std::size_t count, const StretchField *,
                 const StretchField *, const char *) {
        position_ += count * 4;
        return true;
    }
    bool string(const char *, std::uint32_t size) {
        align(4);
        position_ += 4 + std::size_t{size};
        return true;
    }
    bool open_count(std::size_t *) { return word32(0); }
    bool close_count(std::size_t) { return true; }
    bool open_parameter(const Op &op, ParameterMark *mark) {
        align(4);
        mark->extended = op.constant > kLargestShortId;
        mark->origin = origin_;
        position_ += mark->extended ? 12 : 4;
        origin_ = position_;
        return true;
    }
    bool close_parameter(const Op &, const ParameterMark &mark) {
        if (!mark.extended && position_ - origin_ > kLargestShortLength) {
            position_ += 8;
        }
        origin_ = mark.origin;
        return true;
    }
    bool sentinel() {
        align(4);
        return word32(0);
    }

  private:
    std::size_t position_;
    std::size_t origin_ = 0;
};

}  // namespace kolt::type
