// Options that several subcommands have, and the checks of their values.
#pragma once

#include <CLI/CLI.hpp>
#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace distlog {

using Seconds = std::chrono::duration<double>;

// Each throws CLI::ValidationError naming `what`, the option or argument that the text came from.
int level_argument(const std::string &what, const std::string &text);
Seconds duration_argument(const std::string &what, const std::string &text);

// "90", "1.5s", "5m", "1h30m": a number without a unit means seconds. Empty when it is none of
// these, or nothing above zero and below a year.
std::optional<Seconds> parse_duration(std::string_view text);

// --domain, 0 to 230.
void add_domain(CLI::App &command, int &domain);

}  // namespace distlog
