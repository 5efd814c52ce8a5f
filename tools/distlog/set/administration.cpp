// SPDX-License-Identifier: Apache-2.0
// The steps that the three forms of distlog set share.
#include "set/administration.hpp"

#include <fmt/format.h>

#include <cstdio>

#include "command/failure.hpp"
#include "text/text.hpp"

namespace distlog {

std::shared_ptr<SetOptions> add_set_options(CLI::App &command) {
    auto options = std::make_shared<SetOptions>();
    add_domain(command, options->domain);
    command
        .add_option("APP", options->app,
                    "Which loggers: HOST:APP, an application kind, or 'all' (see distlog ls)")
        ->required();
    command
        .add_option_function<std::string>(
            "--timeout",
            [options](const std::string &text) {
                options->timeout = duration_argument("--timeout", text);
            },
            "How long to look for loggers and to wait for answers (default 5 s)")
        ->type_name("S");
    return options;
}

Administration::Administration(const SetOptions &options)
    : options_(options),
      selector_(options.app),
      session_(options.domain),
      directory_(session_),
      requester_(session_) {}

std::vector<Identity> Administration::find_targets(States states) {
    const std::optional<Identity> &identity = selector_.identity();
    if (identity && states == States::kWelcome) {
        return {*identity};
    }
    directory_.collect(stop_, deadline_after(options_.timeout),
                       [&] { return identity && directory_.find(*identity) != nullptr; });
    std::vector<Identity> targets;
    for (const LoggerInfo &logger : directory_.select(selector_)) {
        targets.push_back(logger.identity);
    }
    if (targets.empty()) {
        throw Failure(selector_.all()
                          ? fmt::format("no logger in domain {}", session_.domain())
                          : fmt::format("no logger '{}' in domain {}", printable(selector_.text()),
                                        session_.domain()));
    }
    return targets;
}

std::vector<Answer> Administration::send(const std::vector<Request> &requests, bool in_any_case) {
    return requester_.send(requests, deadline_after(options_.timeout),
                           in_any_case ? nullptr : &stop_);
}

int Administration::report(const std::vector<Answer> &answers,
                           const std::function<std::string(const Answer &)> &done) {
    directory_.update();
    int result = kExitOk;
    for (const Answer &answer : answers) {
        std::string text;
        switch (answer.outcome) {
            case Outcome::kOk:
                text = done(answer);
                break;
            case Outcome::kNotSupported:
                text = "does not know this command";
                break;
            case Outcome::kError:
                text = fmt::format("refused: {}", printable(answer.detail));
                break;
            case Outcome::kSilent:
                text = stop_.raised()
                           ? "no answer yet"
                           : fmt::format("no answer within {} s", options_.timeout.count());
                break;
        }
        result = answer.outcome == Outcome::kOk ? result : kExitFailure;
        fmt::print("{}: {}\n", name_of(answer.target), text);
    }
    std::fflush(stdout);
    return result;
}

int Administration::tell_all(const FillCommand &fill, const std::string &done) {
    std::vector<Request> requests;
    for (const Identity &target : find_targets(States::kWelcome)) {
        requests.push_back(Request{target, fill});
    }
    return report(send(requests), [&](const Answer &) { return done; });
}

std::string Administration::name_of(const Identity &identity) const {
    const LoggerInfo *logger = directory_.find(identity);
    return logger == nullptr || logger->kind.empty()
               ? to_string(identity)
               : fmt::format("{} ({})", printable(logger->kind), to_string(identity));
}

}  // namespace distlog
