// SPDX-License-Identifier: Apache-2.0
// The values that a filter compares.
#pragma once

#include <compare>
#include <cstdint>
#include <string_view>
#include <variant>

#include "kolt/cdr.h"

namespace kolt::filter {

// A field that the sample does not have.
struct Absent {};

// Booleans are 0 and 1, characters their codes (0 to 255), enumerators their values. Strings point
// into the sample, the program or the parameters.
using Value = std::variant<Absent, std::int64_t, std::uint64_t, double, std::string_view>;

// Numbers compare by their mathematical values, whatever their types; strings byte by byte. A
// string with a number, a NaN, and a value that is absent are unordered.
std::partial_ordering compare(const Value &left, const Value &right);

Value to_value(const KOLT_CdrValue &field);

// True when `text` matches `pattern`: '%' and '*' stand for any characters, also none, '_' and '?'
// for any one, '\' makes the character after it stand for itself.
bool is_like(std::string_view text, std::string_view pattern);

}  // namespace kolt::filter
