// SPDX-License-Identifier: Apache-2.0
// Options that several subcommands have, and the checks of their values.
#include "text/arguments.hpp"

#include <fmt/format.h>

#include <charconv>

#include "text/names.hpp"

namespace distlog {
namespace {

// The largest domain id whose ports exist (RTPS 2.3, 9.6.1.1).
constexpr int kMaximumDomain = 230;
constexpr double kLongestDuration = 366.0 * 24 * 3600;

std::optional<double> unit_seconds(std::string_view unit) {
    if (unit.empty() || unit == "s") {
        return 1.0;
    }
    if (unit == "ms") {
        return 0.001;
    }
    if (unit == "m" || unit == "min") {
        return 60.0;
    }
    if (unit == "h") {
        return 3600.0;
    }
    return std::nullopt;
}

}  // namespace

int level_argument(const std::string &what, const std::string &text) {
    const std::optional<int> level = parse_level(text);
    if (!level) {
        throw CLI::ValidationError(
            what,
            fmt::format("'{}' is not a level: {}, or a number of 0 or more", text, level_names()));
    }
    return *level;
}

Seconds duration_argument(const std::string &what, const std::string &text) {
    const std::optional<Seconds> duration = parse_duration(text);
    if (!duration) {
        throw CLI::ValidationError(
            what,
            fmt::format("'{}' is not a duration: a number above 0, in seconds or with ms, s, m or "
                        "h, and below a year, like 90, 1.5s or 1h30m",
                        text));
    }
    return *duration;
}

std::optional<Seconds> parse_duration(std::string_view text) {
    double total = 0.0;
    if (text.empty()) {
        return std::nullopt;
    }
    while (!text.empty()) {
        double number = 0.0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number,
                                                  std::chars_format::fixed);
        if (error != std::errc() || text.front() == '-') {
            return std::nullopt;
        }
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
        const std::size_t unit_length = std::min(text.find_first_of("0123456789."), text.size());
        const std::optional<double> unit = unit_seconds(text.substr(0, unit_length));
        if (!unit) {
            return std::nullopt;
        }
        text.remove_prefix(unit_length);
        total += number * *unit;
    }
    // Not-a-number fails both comparisons, so it is refused, too.
    if (!(total > 0.0 && total < kLongestDuration)) {
        return std::nullopt;
    }
    return Seconds(total);
}

void add_domain(CLI::App &command, int &domain) {
    command.add_option("--domain", domain, "DDS domain to look at")
        ->type_name("N")
        ->capture_default_str()
        ->check(CLI::Range(0, kMaximumDomain));
}

}  // namespace distlog
