// SPDX-License-Identifier: Apache-2.0
// A bounds-checked position in CDR bytes, and the headers that frame members there.
#pragma once

#include <cstddef>
#include <cstdint>

#include "type/cdr/cdr_sink.hpp"

namespace kolt::type {

// Invariant: origin_ <= ... at() <= end(), and nothing at or behind end() is ever read. Frames
// narrow end() and give it back; a frame never reaches beyond the one around it.
template <bool kSwap>
class Cursor {
  public:
    Cursor(const std::uint8_t *bytes, std::size_t size)
        : at_(bytes), end_(bytes + size), origin_(bytes) {}

    const std::uint8_t *at() const { return at_; }
    const std::uint8_t *end() const { return end_; }
    const std::uint8_t *origin() const { return origin_; }
    std::size_t left() const { return static_cast<std::size_t>(end_ - at_); }
    void set_at(const std::uint8_t *at) { at_ = at; }
    void set_end(const std::uint8_t *end) { end_ = end; }
    void set_origin(const std::uint8_t *origin) { origin_ = origin; }

    std::size_t padding(std::size_t alignment) const {
        return static_cast<std::size_t>(origin_ - at_) & (alignment - 1);
    }
    bool align(std::size_t alignment) {
        const std::size_t gap = padding(alignment);
        if (gap > left()) {
            return false;
        }
        at_ += gap;
        return true;
    }
    // True when no value of this alignment can begin before the end.
    bool at_end(std::size_t alignment) const { return padding(alignment) >= left(); }

    bool skip(std::size_t size) {
        if (size > left()) {
            return false;
        }
        at_ += size;
        return true;
    }
    bool words(void *to, std::size_t count, std::size_t width) {
        // A division, since the product may not be representable.
        if (count > left() / width) {
            return false;
        }
        copy_words<kSwap>(to, at_, count, width);
        at_ += count * width;
        return true;
    }
    bool skip_words(std::size_t count, std::size_t width) {
        if (count > left() / width) {
            return false;
        }
        at_ += count * width;
        return true;
    }
    bool word32(std::uint32_t *value) { return align(4) && words(value, 1, 4); }

    // Reads a byte count and opens a frame of that size. close_frame takes `*outer` back.
    bool open_count(const std::uint8_t **outer) {
        std::uint32_t size = 0;
        return word32(&size) && open_frame(size, outer);
    }
    bool open_frame(std::size_t size, const std::uint8_t **outer) {
        if (size > left()) {
            return false;
        }
        *outer = end_;
        end_ = at_ + size;
        return true;
    }
    // Goes behind the frame, whatever of it was read.
    void close_frame(const std::uint8_t *outer) {
        at_ = end_;
        end_ = outer;
    }

  private:
    const std::uint8_t *at_;
    const std::uint8_t *end_;
    const std::uint8_t *origin_;
};

// The header of a member of a mutable type; `size` bytes of value follow it.
struct MemberHeader {
    std::uint32_t id = 0;
    std::size_t size = 0;
    bool must_understand = false;
    bool sentinel = false;  // XCDR1: the end of the list
    bool ignored = false;   // XCDR1: a parameter that carries no member
};

// XTypes 7.4.1.2: a 16-bit id and length, or the extended form of both.
template <bool kSwap>
bool read_parameter_header(Cursor<kSwap> *cursor, MemberHeader *header) {
    std::uint16_t words[2];
    if (!cursor->align(4) || !cursor->words(words, 2, 2)) {
        return false;
    }
    const std::uint16_t pid = words[0] & kPidMask;
    header->must_understand = (words[0] & kPidMustUnderstand) != 0;
    header->sentinel = pid == kPidSentinel;
    header->ignored = pid == kPidIgnore;
    header->id = pid;
    if (header->sentinel) {
        return true;  // its length says nothing (RTPS 2.3, 9.4.2.11)
    }
    header->size = words[1];
    if (pid == kPidExtended) {
        std::uint32_t extended[2];
        if (words[1] != sizeof(extended) || !cursor->words(extended, 2, 4)) {
            return false;
        }
        header->must_understand =
            header->must_understand || (extended[0] & kExtendedMustUnderstand) != 0;
        header->id = extended[0] & kMemberIdMask;
        header->size = extended[1];
    } else if (pid > kPidIgnore) {
        return false;  // reserved
    }
    return header->size <= cursor->left();
}

// XTypes 7.4.3.4.2: flags, length code and id, and for the upper length codes a NEXTINT. The value
// begins at the cursor afterwards: with the NEXTINT itself where the value shares it.
template <bool kSwap>
bool read_member_header(Cursor<kSwap> *cursor, MemberHeader *header) {
    std::uint32_t word = 0;
    if (!cursor->word32(&word)) {
        return false;
    }
    header->must_understand = (word & kEmheaderMustUnderstand) != 0;
    header->id = word & kMemberIdMask;
    const auto code = (word >> kEmheaderLengthShift) & 7U;
    if (code < kLengthNext) {
        header->size = std::size_t{1} << code;
    } else {
        std::uint32_t next = 0;
        if (!cursor->words(&next, 1, 4)) {
            return false;
        }
        static constexpr unsigned kShifts[] = {0, 0, 2, 3};
        std::uint64_t size = std::uint64_t{next} << kShifts[code - kLengthNext];
        if (code >= kLengthShared) {
            size += 4;
            cursor->set_at(cursor->at() - 4);
        }
        header->size = size;
    }
    return header->size <= cursor->left();
}

}  // namespace kolt::type
