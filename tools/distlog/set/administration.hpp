// What the three forms of distlog set have in common: finding the loggers that are meant, telling
// them, and saying what came of it.
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

class Administration {
  public:
    // Throws Failure.
    explicit Administration(const SetOptions &options);

    StopSignal &stop() { return stop_; }
    Directory &directory() { return directory_; }

    enum class States { kWelcome, kNeeded };
    // The loggers that APP stands for; throws Failure when there is none. One that is addressed by
    // its identity is taken on trust unless its State is needed.
    std::vector<Identity> find_targets(States states);

    // Sends the requests and waits for the answers; unless `in_any_case`, the user may cut that
    // short.
    std::vector<Answer> send(const std::vector<Request> &requests, bool in_any_case = false);

    // Prints a line for each answer, with what `done` says for those who have done it. The exit
    // code.
    int report(const std::vector<Answer> &answers,
               const std::function<std::string(const Answer &)> &done);

    // All of it: tells every target the same and says `done`.
    int tell_all(const FillCommand &fill, const std::string &done);

    // Kind and identity: who was addressed is said without ambiguity.
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
