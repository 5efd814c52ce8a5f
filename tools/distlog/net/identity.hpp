// SPDX-License-Identifier: Apache-2.0
// The identity of a logger on the network: its participant's RTPS host and app id, which its
// samples carry.
#pragma once

#include <vur_dl/distlog.h>

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace distlog {

struct Identity {
    std::int32_t host = 0;
    std::int32_t app = 0;

    Identity() = default;
    Identity(std::int32_t host_id, std::int32_t app_id) : host(host_id), app(app_id) {}
    explicit Identity(const VUR_DL_HostAndAppId &ids)
        : host(ids.rtps_host_id), app(ids.rtps_app_id) {}

    auto operator<=>(const Identity &) const = default;
};

// Returns "HOST:APP" in signed decimal.
std::string to_string(const Identity &identity);
// Reads "HOST:APP"; accepts each id signed or unsigned. Empty for any other text.
std::optional<Identity> parse_identity(std::string_view text);

}  // namespace distlog
