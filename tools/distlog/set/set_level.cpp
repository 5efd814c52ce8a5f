// SPDX-License-Identifier: Apache-2.0
// distlog set level: sets the filter level, permanently or for a while.
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <map>

#include "set/administration.hpp"
#include "text/names.hpp"

namespace distlog {
namespace {

FillCommand level_command(int level) {
    return [level](VUR_DL_ADMIN_Command &command) {
        command._d = VUR_DL_SET_LOG_LEVEL;
        command._u.filterLevel = level;
    };
}

// Sets a level and sets it back when the time is up or the user wants to stop.
class LevelForAWhile {
  public:
    LevelForAWhile(const SetOptions &options, int level, Seconds span)
        : administration_(options), level_(level), span_(span) {}

    int run() {
        std::vector<Request> requests;
        std::map<Identity, int> previous;
        for (const Identity &target :
             administration_.find_targets(Administration::States::kNeeded)) {
            previous[target] = administration_.directory().find(target)->filter_level;
            requests.push_back(Request{target, level_command(level_)});
        }
        const std::vector<Answer> answers = administration_.send(requests);
        const int result = administration_.report(answers, [&](const Answer &answer) {
            return fmt::format("level set to {} (was {})", level_name(level_),
                               level_name(previous.at(answer.target)));
        });
        for (const Answer &answer : answers) {
            if (answer.outcome == Outcome::kOk && previous.at(answer.target) != level_) {
                changed_[answer.target] = Changed{previous.at(answer.target), false};
            }
        }
        watch_over(deadline_after(span_));
        return std::max(result, restore());
    }

  private:
    // A logger whose level is to be set back.
    struct Changed {
        int previous = 0;
        bool seen = false;  // its State has shown our level
    };

    // Waits until the time is up, the user wants to stop, or there is nothing to set back any more.
    void watch_over(const Deadline &deadline) {
        Waiter waiter(
            {administration_.directory().condition(), administration_.stop().condition()});
        drop_settled();
        while (!changed_.empty() && !administration_.stop().raised() && waiter.wait(deadline)) {
            administration_.directory().update();
            drop_settled();
        }
    }

    void drop_settled() {
        for (auto entry = changed_.begin(); entry != changed_.end();) {
            entry =
                is_settled(entry->first, entry->second) ? changed_.erase(entry) : std::next(entry);
        }
        std::fflush(stdout);
    }

    // True for a logger that is gone, or whose level somebody else has changed since: that change
    // is not ours to undo.
    bool is_settled(const Identity &identity, Changed &change) {
        const LoggerInfo *logger = administration_.directory().find(identity);
        if (logger == nullptr) {
            fmt::print("{}: is gone\n", administration_.directory().label(identity));
            return true;
        }
        change.seen = change.seen || logger->filter_level == level_;
        // A State that was sent before our command may arrive after its answer.
        const bool ours = logger->filter_level == level_ ||
                          (!change.seen && logger->filter_level == change.previous);
        if (!ours) {
            fmt::print("{}: level is {} by now, left as it is\n", administration_.name_of(identity),
                       level_name(logger->filter_level));
        }
        return !ours;
    }

    int restore() {
        std::vector<Request> requests;
        for (const auto &[identity, change] : changed_) {
            requests.push_back(Request{identity, level_command(change.previous)});
        }
        // The signal that may have brought us here does not cut this short.
        const std::vector<Answer> answers = administration_.send(requests, true);
        return administration_.report(answers, [this](const Answer &answer) {
            return fmt::format("level set back to {}",
                               level_name(changed_.at(answer.target).previous));
        });
    }

    Administration administration_;
    int level_;
    Seconds span_;
    std::map<Identity, Changed> changed_;
};

}  // namespace

void add_set_level(CLI::App &set, Action &action) {
    CLI::App *command = set.add_subcommand("level", "Set the filter level");
    const auto options = add_set_options(*command);
    const auto level = std::make_shared<int>(0);
    const auto span = std::make_shared<std::optional<Seconds>>();
    command
        ->add_option_function<std::string>(
            "LEVEL", [level](const std::string &text) { *level = level_argument("LEVEL", text); },
            "Messages up to this level are published: " + level_names() + ", or a number")
        ->required();
    command
        ->add_option_function<std::string>(
            "--for", [span](const std::string &text) { *span = duration_argument("--for", text); },
            "Stay, and set the level back after this time or when interrupted: 30s, 5m, 1h")
        ->type_name("TIME");
    command->callback([&action, options, level, span] {
        action = [options, level, span] {
            if (*span) {
                return LevelForAWhile(*options, *level, **span).run();
            }
            return Administration(*options).tell_all(level_command(*level),
                                                     "level set to " + level_name(*level));
        };
    });
}

}  // namespace distlog
