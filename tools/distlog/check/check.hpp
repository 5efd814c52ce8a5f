// SPDX-License-Identifier: Apache-2.0
// distlog check: examines configuration documents without starting a logger.
#pragma once

#include "command/action.hpp"

namespace distlog {

// Adds the subcommand to the parser; choosing it sets `action`.
void add_check(CLI::App &app, Action &action);

}  // namespace distlog
