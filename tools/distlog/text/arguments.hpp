// SPDX-License-Identifier: Apache-2.0
// Options that several subcommands have, and the checks of their values.
#pragma once

#include <CLI/CLI.hpp>
#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace distlog {

using Seconds = std::chrono::duration<double>;

// Convert the text of an argument. On a wrong text they throw CLI::ValidationError, which names
// `what`, the option or argument that the text came from.
int level_argument(const std::string &what, const std::string &text);
Seconds duration_argument(const std::string &what, const std::string &text);

// Reads a duration like "90", "1.5s", "5m" or "1h30m"; a number without a unit means seconds. Empty
// for any other text, and unless the duration is above zero and below a year.
std::optional<Seconds> parse_duration(std::string_view text);

// Adds --domain, 0 to 230.
void add_domain(CLI::App &command, int &domain);

}  // namespace distlog
