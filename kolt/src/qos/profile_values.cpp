// SPDX-License-Identifier: Apache-2.0
// Texts of QoS elements as values.

#include "qos/profile_values.hpp"

#include <charconv>

namespace kolt::qos {
namespace {

constexpr std::string_view kWhiteSpace = " \t\r\n";

// The six bits of a Base64 character; -1 for any other.
int sextet_of(char character) {
    constexpr std::string_view kAlphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const std::size_t index = kAlphabet.find(character);
    return index == std::string_view::npos ? -1 : static_cast<int>(index);
}

}  // namespace

std::string_view trim(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kWhiteSpace);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1);
}

std::optional<long long> value_of_name(std::string_view text, const NamedValue *names,
                                       std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if (names[i].name == text) {
            return names[i].value;
        }
    }
    return std::nullopt;
}

std::string list_of_names(const NamedValue *names, std::size_t count) {
    std::string list;
    for (std::size_t i = 0; i < count; ++i) {
        list += i == 0 ? "" : ", ";
        list += names[i].name;
    }
    return list;
}

std::optional<long long> integer_of(std::string_view text, long long minimum, long long maximum) {
    const bool negative = text.starts_with('-');
    std::string_view digits = text.substr(negative || text.starts_with('+') ? 1 : 0);
    int base = 10;
    if (digits.starts_with("0x") || digits.starts_with("0X")) {
        digits.remove_prefix(2);
        base = 16;
    }
    unsigned long long magnitude = 0;
    const char *end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, magnitude, base);
    constexpr unsigned long long kLargest = 1ULL << 62U;
    if (error != std::errc{} || stop != end || magnitude > kLargest) {
        return std::nullopt;
    }
    const auto value =
        negative ? -static_cast<long long>(magnitude) : static_cast<long long>(magnitude);
    if (value < minimum || value > maximum) {
        return std::nullopt;
    }
    return value;
}

std::optional<std::vector<DDS_Octet>> bytes_of_base64(std::string_view text) {
    std::vector<DDS_Octet> bytes;
    std::uint32_t bits = 0;
    std::size_t characters = 0;
    std::size_t padding = 0;
    for (const char character : text) {
        if (kWhiteSpace.find(character) != std::string_view::npos) {
            continue;
        }
        ++characters;
        const int sextet = sextet_of(character);
        if (character == '=') {
            ++padding;
        } else if (sextet < 0 || padding > 0) {
            return std::nullopt;
        }
        bits = (bits << 6U) | static_cast<std::uint32_t>(sextet < 0 ? 0 : sextet);
        if (characters % 4 == 0) {
            for (const unsigned shift : {16U, 8U, 0U}) {
                bytes.push_back(static_cast<DDS_Octet>((bits >> shift) & 0xFFU));
            }
        }
    }
    if (characters % 4 != 0 || padding > 2) {
        return std::nullopt;
    }
    bytes.resize(bytes.size() - padding);
    return bytes;
}

}  // namespace kolt::qos
