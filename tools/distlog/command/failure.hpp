// SPDX-License-Identifier: Apache-2.0
// How a subcommand ends: the exit codes, and the exception that stands for a failure.
#pragma once

#include <stdexcept>

namespace distlog {

constexpr int kExitOk = 0;
// Something that was asked for did not happen: no answer, a refusal, no connection to the domain.
constexpr int kExitFailure = 1;
// The arguments were wrong; nothing was done.
constexpr int kExitUsage = 2;

// Ends the command with kExitFailure and one line on standard error.
class Failure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace distlog
