// SPDX-License-Identifier: Apache-2.0
// distlog ls: lists the loggers of a domain.
#pragma once

#include "command/action.hpp"

namespace distlog {

// Adds the subcommand to the parser; choosing it sets `action`.
void add_ls(CLI::App &app, Action &action);

}  // namespace distlog
