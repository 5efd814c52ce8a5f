// SPDX-License-Identifier: Apache-2.0
// The identity of a logger as text.
#include "net/identity.hpp"

#include <fmt/format.h>

#include <charconv>

namespace distlog {
namespace {

// Reads an id. The command shows ids signed, as the type has them; other tools often show them
// unsigned, so both are accepted.
std::optional<std::int32_t> parse_id(std::string_view text) {
    std::int64_t value = 0;
    const char *end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || rest != end || value < INT32_MIN || value > UINT32_MAX) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

}  // namespace

std::string to_string(const Identity &identity) {
    return fmt::format("{}:{}", identity.host, identity.app);
}

std::optional<Identity> parse_identity(std::string_view text) {
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos) {
        return std::nullopt;
    }
    const std::optional<std::int32_t> host = parse_id(text.substr(0, colon));
    const std::optional<std::int32_t> app = parse_id(text.substr(colon + 1));
    if (!host || !app) {
        return std::nullopt;
    }
    return Identity(*host, *app);
}

}  // namespace distlog
