// SPDX-License-Identifier: Apache-2.0
// distlog set: changes running loggers.
#pragma once

#include "command/action.hpp"

namespace distlog {

// Adds the subcommand to the parser; choosing it sets `action`.
void add_set(CLI::App &app, Action &action);

}  // namespace distlog
