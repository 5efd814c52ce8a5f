// SPDX-License-Identifier: Apache-2.0
// Standard output of the command: lines, and the colours of levels.
#include "text/output.hpp"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace distlog {
namespace {

// True on a terminal, unless NO_COLOR is set and not empty (https://no-color.org) or TERM is
// "dumb".
bool wants_colour() {
    const char *no_colour = std::getenv("NO_COLOR");
    const char *terminal = std::getenv("TERM");
    const bool refused = no_colour != nullptr && no_colour[0] != '\0';
    const bool dumb = terminal != nullptr && std::string_view(terminal) == "dumb";
    return isatty(STDOUT_FILENO) == 1 && !refused && !dumb;
}

std::string_view colour_of(int level) {
    if (level <= 200) {
        return "\x1b[1;31m";  // bold red: fatal, severe
    }
    if (level <= 300) {
        return "\x1b[31m";  // red: error
    }
    if (level <= 400) {
        return "\x1b[33m";  // yellow: warning
    }
    if (level <= 500) {
        return "\x1b[36m";  // cyan: notice
    }
    if (level <= 600) {
        return "\x1b[32m";  // green: info
    }
    return "\x1b[2m";  // faint: debug, trace and below
}

}  // namespace

std::string to_line(const Json &json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Output::Output() : colour_(wants_colour()) {}

void Output::line(std::string_view text) {
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size() &&
                         std::fputc('\n', stdout) != EOF;
    alive_ = alive_ && written;
}

void Output::flush() {
    alive_ = std::fflush(stdout) == 0 && alive_;
}

std::string level_in_colour(int level, std::string_view text, bool colour, int width) {
    if (!colour) {
        return fmt::format("{:<{}}", text, width);
    }
    return fmt::format("{}{:<{}}\x1b[0m", colour_of(level), text, width);
}

}  // namespace distlog
