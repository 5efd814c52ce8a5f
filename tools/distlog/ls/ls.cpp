// SPDX-License-Identifier: Apache-2.0
// distlog ls: the loggers of a domain, once or as they come, change and go.
#include "ls/ls.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>

#include "command/failure.hpp"
#include "net/directory.hpp"
#include "net/waiting.hpp"
#include "text/arguments.hpp"
#include "text/names.hpp"
#include "text/output.hpp"
#include "text/text.hpp"

namespace distlog {
namespace {

constexpr Seconds kDefaultTimeout{5.0};

struct LsOptions {
    int domain = 0;
    bool json = false;
    bool watch = false;
    std::optional<Seconds> timeout;
};

std::string verbosities_of(const LoggerInfo &logger) {
    const auto first = logger.verbosities.front().verbosity;
    if (std::all_of(logger.verbosities.begin(), logger.verbosities.end(),
                    [&](const auto &v) { return v.verbosity == first; })) {
        return "all=" + verbosity_name(first);
    }
    std::string text;
    for (const auto &entry : logger.verbosities) {
        text += fmt::format("{}{}={}", text.empty() ? "" : ",", category_name(entry.category),
                            verbosity_name(entry.verbosity));
    }
    return text;
}

Json to_json(const LoggerInfo &logger) {
    Json verbosities = Json::object();
    for (const auto &entry : logger.verbosities) {
        verbosities[category_name(entry.category)] = verbosity_name(entry.verbosity);
    }
    return Json{{"host_id", logger.identity.host},
                {"app_id", logger.identity.app},
                {"application_kind", logger.kind},
                {"domain", logger.domain},
                {"state", state_name(logger.state)},
                {"filter_level", logger.filter_level},
                {"filter_level_name", level_name(logger.filter_level)},
                {"verbosities", verbosities},
                {"print_format", print_format_name(logger.print_format)}};
}

constexpr std::string_view kRow = "{:<20} {:<24} {:>6}  {:<15} {:<8} {:<20} {}";

std::string to_text(const LoggerInfo &logger) {
    return fmt::format(kRow, logger.kind.empty() ? "-" : printable(logger.kind),
                       to_string(logger.identity), logger.domain, state_name(logger.state),
                       level_name(logger.filter_level), print_format_name(logger.print_format),
                       verbosities_of(logger));
}

class Ls {
  public:
    explicit Ls(const LsOptions &options)
        : options_(options), session_(options.domain), directory_(session_) {}

    int once() {
        directory_.collect(stop_, deadline_after(options_.timeout.value_or(kDefaultTimeout)),
                           [] { return false; });
        print_all();
        return kExitOk;
    }

    int watch() {
        const Deadline deadline = options_.timeout ? deadline_after(*options_.timeout) : Deadline();
        // The last message of each level shows the last number of a logger that is gone.
        messages_ = std::make_unique<Reader<VUR_DL_LogMessage>>(
            session_, ReaderSettings{DDS_TRANSIENT_LOCAL_DURABILITY_QOS, DDS_KEEP_LAST_HISTORY_QOS,
                                     1, DDS_LENGTH_UNLIMITED});
        if (!options_.json) {
            output_.line("         " + header());
            output_.flush();
        }
        Waiter waiter({directory_.condition(), messages_->condition(), stop_.condition()});
        while (!stop_.raised() && output_.alive() && waiter.wait(deadline)) {
            take_messages();
            directory_.update([this](Directory::Change change, const LoggerInfo &logger) {
                show(change, logger);
            });
            output_.flush();
        }
        return kExitOk;
    }

  private:
    static std::string header() {
        return fmt::format(kRow, "APPLICATION", "HOST:APP", "DOMAIN", "STATE", "LEVEL", "FORMAT",
                           "VERBOSITY");
    }

    void print_all() {
        if (directory_.loggers().empty()) {
            fmt::print(stderr, "distlog: no logger in domain {}\n", session_.domain());
        } else if (!options_.json) {
            output_.line(header());
        }
        for (const auto &[identity, logger] : directory_.loggers()) {
            output_.line(options_.json ? to_line(to_json(logger)) : to_text(logger));
        }
        output_.flush();
    }

    void take_messages() {
        messages_->take([this](const VUR_DL_LogMessage &message, const DDS_SampleInfo &info) {
            if (info.valid_data) {
                std::int64_t &last = last_ids_[Identity(message.hostAndAppId)];
                last = std::max<std::int64_t>(last, message.messageId);
            }
        });
    }

    static std::string_view event_of(Directory::Change change, const LoggerInfo &logger) {
        switch (change) {
            case Directory::Change::kAppeared:
                return "appeared";
            case Directory::Change::kChanged:
                return "changed";
            case Directory::Change::kVanished:
                break;
        }
        return logger.state == VUR_DL_STATE_NONOPERATIONAL ? "finalised" : "lost";
    }

    void show(Directory::Change change, const LoggerInfo &logger) {
        const std::string_view event = event_of(change, logger);
        const bool gone = change == Directory::Change::kVanished;
        const auto last = last_ids_.find(logger.identity);
        const std::int64_t last_id = last == last_ids_.end() ? 0 : last->second;
        if (options_.json) {
            Json json = to_json(logger);
            json["event"] = event;
            if (gone) {
                json["last_message_id"] = last_id;
            }
            output_.line(to_line(json));
        } else if (gone) {
            output_.line(fmt::format(
                "{} {} {} {} (last message {})", local_clock(),
                logger.kind.empty() ? "-" : printable(logger.kind), to_string(logger.identity),
                event == "finalised" ? "was finalised" : "is gone without having been finalised",
                last_id == 0 ? "unknown" : fmt::format("{}", last_id)));
        } else {
            output_.line(fmt::format("{} {}", local_clock(), to_text(logger)));
        }
        if (gone) {
            last_ids_.erase(logger.identity);
        }
    }

    LsOptions options_;
    StopSignal stop_;
    Output output_;
    Session session_;
    Directory directory_;
    std::unique_ptr<Reader<VUR_DL_LogMessage>> messages_;
    std::map<Identity, std::int64_t> last_ids_;
};

}  // namespace

void add_ls(CLI::App &app, Action &action) {
    CLI::App *command = app.add_subcommand("ls", "List the loggers of a domain");
    const auto options = std::make_shared<LsOptions>();
    add_domain(*command, options->domain);
    command->add_flag("--json", options->json, "One JSON object a line");
    command->add_flag("--watch", options->watch,
                      "Go on, and tell when a logger comes, changes or goes");
    command
        ->add_option_function<std::string>(
            "--timeout",
            [options](const std::string &text) {
                options->timeout = duration_argument("--timeout", text);
            },
            "Look for at most this time (default 5 s); with --watch, end after it")
        ->type_name("S");
    command->callback([&action, options] {
        action = [options] {
            Ls ls(*options);
            return options->watch ? ls.watch() : ls.once();
        };
    });
}

}  // namespace distlog
