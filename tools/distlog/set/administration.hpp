// SPDX-License-Identifier: Apache-2.0
// The steps that the three forms of distlog set share: finding the loggers, sending them a command,
// and reporting the outcome.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "command/action.hpp"
#include "net/directory.hpp"
#include "net/requests.hpp"
#include "net/waiting.hpp"
#include "text/arguments.hpp"

namespace distlog {

struct SetOptions {
    int domain = 0;
    std::string app;
    Seconds timeout{5.0};
};

// Adds APP, --domain and --timeout to a form of the command.
std::shared_ptr<SetOptions> add_set_options(CLI::App &command);

// One run of the command: its arguments, its session, and the loggers that it knows.
class Administration {
  public:
    // Throws Failure.
    explicit Administration(const SetOptions &options);

    StopSignal &stop() { return stop_; }
    Directory &directory() { return directory_; }

    enum class States { kWelcome, kNeeded };
    // Returns the loggers that APP stands for; throws Failure when there is none. A logger that is
    // addressed by its identity is not looked for unless its State is needed.
    std::vector<Identity> find_targets(States states);

    // Sends the requests and waits for the answers. The user may cut that short, unless
    // `in_any_case` is set.
    std::vector<Answer> send(const std::vector<Request> &requests, bool in_any_case = false);

    // Prints a line for each answer; `done` gives the text for a command that was carried out.
    // Returns the exit code.
    int report(const std::vector<Answer> &answers,
               const std::function<std::string(const Answer &)> &done);

    // Does all of it: sends every target the same command and prints `done`. Returns the exit code.
    int tell_all(const FillCommand &fill, const std::string &done);

    // Returns kind and identity, so that there is no doubt who was addressed.
    std::string name_of(const Identity &identity) const;

  private:
    SetOptions options_;
    StopSignal stop_;
    Selector selector_;
    Session session_;
    Directory directory_;
    Requester requester_;
};

void add_set_level(CLI::App &set, Action &action);
void add_set_verbosity(CLI::App &set, Action &action);
void add_set_format(CLI::App &set, Action &action);

}  // namespace distlog
