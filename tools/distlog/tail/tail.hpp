// SPDX-License-Identifier: Apache-2.0
// distlog tail: prints log messages as they arrive.
#pragma once

#include "command/action.hpp"

namespace distlog {

// Adds the subcommand to the parser; choosing it sets `action`.
void add_tail(CLI::App &app, Action &action);

}  // namespace distlog
