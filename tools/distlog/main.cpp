// SPDX-License-Identifier: Apache-2.0
// distlog: watches and administers the distributed loggers of a DDS domain.
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "check/check.hpp"
#include "command/action.hpp"
#include "command/failure.hpp"
#include "ls/ls.hpp"
#include "net/session.hpp"
#include "set/set.hpp"
#include "tail/tail.hpp"
#include "text/text.hpp"

namespace {

// Returns the names of the subcommands that were possible where the arguments stopped making sense.
std::string subcommands_of(const CLI::App &app) {
    const CLI::App *parser = &app;
    while (!parser->get_subcommands().empty()) {
        parser = parser->get_subcommands().front();
    }
    std::string names;
    for (const CLI::App *command : parser->get_subcommands([](const CLI::App *) { return true; })) {
        names += (names.empty() ? "" : ", ") + command->get_name();
    }
    return names;
}

// Prints what the parser refused as one line; returns the exit code.
int report_usage(const CLI::App &app, const CLI::ParseError &error) {
    std::string text = error.what();
    // An unknown word is the mistake; that a subcommand is missing only follows from it.
    const std::vector<std::string> unknown = app.remaining(true);
    if (dynamic_cast<const CLI::RequiredError *>(&error) != nullptr && !unknown.empty()) {
        text = fmt::format("'{}' is not a subcommand: {}", unknown.front(), subcommands_of(app));
    }
    std::replace(text.begin(), text.end(), '\n', ' ');
    fmt::print(stderr, "distlog: {}\n", distlog::printable(text));
    return distlog::kExitUsage;
}

// Parses the arguments and does what they say; returns the exit code.
int run(int argc, char **argv) {
    CLI::App app("Watches and administers the distributed loggers of a DDS domain.", "distlog");
    app.set_version_flag("--version", "distlog " VUR_DL_VERSION);
    app.require_subcommand(1);
    distlog::Action action;
    distlog::add_tail(app, action);
    distlog::add_ls(app, action);
    distlog::add_set(app, action);
    distlog::add_check(app, action);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        // --help and --version come this way, too.
        return error.get_exit_code() == 0 ? app.exit(error) : report_usage(app, error);
    }
    distlog::divert_middleware_log();
    return action();
}

}  // namespace

int main(int argc, char **argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "distlog: %s\n", error.what());
        return distlog::kExitFailure;
    }
}
