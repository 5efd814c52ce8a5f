// SPDX-License-Identifier: Apache-2.0
// Bytes in little-endian XCDR version 2 (DDS-XTypes 1.3, 7.4.2, 7.4.3), without an encapsulation
// header, for data that has no record and no type code.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <vector>

namespace kolt::type {

using Bytes = std::vector<std::uint8_t>;

class Xcdr2Output {
  public:
    void write8(std::uint8_t value) { bytes_.push_back(value); }
    void write16(std::uint16_t value) { write_integer(value); }
    void write32(std::uint32_t value) { write_integer(value); }
    // A string with its length and its NUL.
    void write_string(std::string_view text) {
        write32(static_cast<std::uint32_t>(text.size() + 1));
        bytes_.insert(bytes_.end(), text.begin(), text.end());
        bytes_.push_back(0);
    }
    // Bytes as they stand.
    template <typename Range>
    void write_raw(const Range &range) {
        bytes_.insert(bytes_.end(), std::begin(range), std::end(range));
    }
    void align(std::size_t alignment) {
        while (bytes_.size() % alignment != 0) {
            bytes_.push_back(0);
        }
    }
    // Writes a 32-bit length and then what `body` writes: an appendable type, a sequence whose
    // elements are not primitive, the value of a member of a mutable type.
    template <typename Body>
    void write_delimited(Body &&body) {
        write32(0);
        const std::size_t start = bytes_.size();
        body();
        const auto length = static_cast<std::uint32_t>(bytes_.size() - start);
        for (unsigned i = 0; i < 4; ++i) {
            bytes_[start - 4 + i] = static_cast<std::uint8_t>(length >> (8 * i));
        }
    }
    // A sequence whose elements are not primitive; `write` writes one.
    template <typename Elements, typename Write>
    void write_sequence(const Elements &elements, Write &&write) {
        write_delimited([&] {
            write32(static_cast<std::uint32_t>(elements.size()));
            for (const auto &element : elements) {
                write(element);
            }
        });
    }

    Bytes take() { return std::move(bytes_); }

  private:
    template <typename Integer>
    void write_integer(Integer value) {
        static_assert(std::is_unsigned_v<Integer>);
        align(sizeof(Integer));
        for (unsigned i = 0; i < sizeof(Integer); ++i) {
            bytes_.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
        }
    }

    Bytes bytes_;
};

}  // namespace kolt::type
