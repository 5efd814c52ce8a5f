// What the subcommands of distlog share: exit codes, failures, and how they register themselves.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <stdexcept>

namespace distlog {

constexpr int kExitOk = 0;
// Something that was asked for did not happen: no answer, a refusal, no connection to the domain.
constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;

// Ends the command with kExitFailure and one line on standard error.
class Failure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Set by the parser to what the chosen subcommand does; returns the exit code.
using Action = std::function<int()>;

void add_tail(CLI::App &app, Action &action);
void add_list(CLI::App &app, Action &action);
void add_set(CLI::App &app, Action &action);
void add_check(CLI::App &app, Action &action);

}  // namespace distlog
