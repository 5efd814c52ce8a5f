// SPDX-License-Identifier: Apache-2.0
// How a subcommand registers itself: the parser's callback stores what is to be done afterwards.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>

namespace distlog {

// Runs the chosen subcommand and returns the exit code. Set while the arguments are parsed.
using Action = std::function<int()>;

}  // namespace distlog
