// SPDX-License-Identifier: Apache-2.0
// distlog set: changes running loggers by remote command.
#include "set/set.hpp"

#include "set/administration.hpp"

namespace distlog {

void add_set(CLI::App &app, Action &action) {
    CLI::App *command = app.add_subcommand("set", "Change running loggers");
    command->require_subcommand(1);
    command->footer(
        "Every logger that was addressed gets a line. The exit code is 1 if any of them\n"
        "refused or did not answer.");
    add_set_level(*command, action);
    add_set_verbosity(*command, action);
    add_set_format(*command, action);
}

}  // namespace distlog
