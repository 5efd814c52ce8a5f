// SPDX-License-Identifier: Apache-2.0
// Comparing values, and matching patterns.

#include "filter/value.hpp"

#include <limits>
#include <type_traits>
#include <utility>

namespace kolt::filter {

namespace {

// Holds every 64-bit integer, signed or not, and every double exactly: no rounding decides.
using Exact = long double;
static_assert(std::numeric_limits<Exact>::digits >= 64);

template <typename Left, typename Right>
std::partial_ordering compare_numbers(Left left, Right right) {
    if constexpr (std::is_integral_v<Left> && std::is_integral_v<Right>) {
        if (std::cmp_equal(left, right)) {
            return std::partial_ordering::equivalent;
        }
        return std::cmp_less(left, right) ? std::partial_ordering::less
                                          : std::partial_ordering::greater;
    } else {
        return static_cast<Exact>(left) <=> static_cast<Exact>(right);
    }
}

struct Comparison {
    template <typename Left, typename Right>
    std::partial_ordering operator()(const Left &left, const Right &right) const {
        if constexpr (std::is_arithmetic_v<Left> && std::is_arithmetic_v<Right>) {
            return compare_numbers(left, right);
        } else if constexpr (std::is_same_v<Left, std::string_view> &&
                             std::is_same_v<Right, std::string_view>) {
            return left <=> right;
        } else {
            return std::partial_ordering::unordered;
        }
    }
};

bool is_any_sequence(char c) {
    return c == '%' || c == '*';
}
bool is_any_character(char c) {
    return c == '_' || c == '?';
}

// One position of a pattern against one character of the text: the length of the pattern's
// position, or 0 when they differ.
std::size_t match_one(char c, std::string_view pattern) {
    if (pattern.empty() || is_any_sequence(pattern.front())) {
        return 0;
    }
    if (pattern.front() == '\\' && pattern.size() > 1) {
        return pattern[1] == c ? 2 : 0;
    }
    return is_any_character(pattern.front()) || pattern.front() == c ? 1 : 0;
}

}  // namespace

std::partial_ordering compare(const Value &left, const Value &right) {
    return std::visit(Comparison{}, left, right);
}

Value to_value(const KOLT_CdrValue &field) {
    switch (field.kind) {
        case DDS_TK_CHAR:
            return std::int64_t{static_cast<unsigned char>(field.value.integer)};
        case DDS_TK_BOOLEAN:
            return std::int64_t{field.value.integer != 0};
        case DDS_TK_OCTET:
        case DDS_TK_SHORT:
        case DDS_TK_USHORT:
        case DDS_TK_LONG:
        case DDS_TK_ULONG:
        case DDS_TK_LONGLONG:
        case DDS_TK_ENUM:
            return std::int64_t{field.value.integer};
        case DDS_TK_ULONGLONG:
            return std::uint64_t{field.value.unsigned_integer};
        case DDS_TK_FLOAT:
        case DDS_TK_DOUBLE:
            return double{field.value.real};
        case DDS_TK_STRING:
            return std::string_view(field.value.string.characters, field.value.string.length);
        default:
            return Absent{};
    }
}

// Goes back to the last sequence wildcard only: an earlier one has no more to offer. So the time is
// at most the product of the lengths.
bool is_like(std::string_view text, std::string_view pattern) {
    constexpr std::size_t kNone = std::string_view::npos;
    std::size_t at = 0;             // in the text
    std::size_t position = 0;       // in the pattern
    std::size_t after_any = kNone;  // in the pattern, after the last sequence wildcard
    std::size_t any_end = 0;        // in the text, where that one's share ends for now
    while (at < text.size()) {
        const std::size_t length = match_one(text[at], pattern.substr(position));
        if (length != 0) {
            ++at;
            position += length;
        } else if (position < pattern.size() && is_any_sequence(pattern[position])) {
            after_any = ++position;
            any_end = at;
        } else if (after_any != kNone) {
            position = after_any;
            at = ++any_end;
        } else {
            return false;
        }
    }
    while (position < pattern.size() && is_any_sequence(pattern[position])) {
        ++position;
    }
    return position == pattern.size();
}

}  // namespace kolt::filter
