// distlog: watches and administers the distributed loggers of a DDS domain.
#include <fmt/format.h>

#include <algorithm>
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

// One line, whatever the parser had to say.
int report_usage(const CLI::App &app, const CLI::ParseError &error) {
    std::string text = error.what();
    // A word that is no subcommand says more about the mistake than the subcommand that is missing.
    const std::vector<std::string> unknown = app.remaining(true);
    if (dynamic_cast<const CLI::RequiredError *>(&error) != nullptr && !unknown.empty()) {
        text = fmt::format("'{}' is no subcommand", unknown.front());
    }
    std::replace(text.begin(), text.end(), '\n', ' ');
    fmt::print(stderr, "distlog: {}\n", distlog::printable(text));
    return distlog::kExitUsage;
}

int run_action(const distlog::Action &action) {
    try {
        distlog::divert_middleware_log();
        return action();
    } catch (const std::exception &error) {
        fmt::print(stderr, "distlog: {}\n", error.what());
        return distlog::kExitFailure;
    }
}

}  // namespace

int main(int argc, char **argv) {
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
    return run_action(action);
}
