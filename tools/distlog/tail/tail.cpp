// SPDX-License-Identifier: Apache-2.0
// distlog tail: prints log messages as they arrive and keeps account of those that do not.
#include "tail/tail.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <ctime>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "command/failure.hpp"
#include "net/directory.hpp"
#include "net/endpoints.hpp"
#include "net/waiting.hpp"
#include "tail/loss_ledger.hpp"
#include "text/arguments.hpp"
#include "text/names.hpp"
#include "text/output.hpp"
#include "text/text.hpp"

namespace distlog {
namespace {

// The number of samples that may pile up while our output is blocked. Beyond it the middleware
// holds the senders' samples back.
constexpr DDS_Long kMaximumWaitingSamples = 32768;
constexpr int kLevelWidth = 7;

struct TailOptions {
    int domain = 0;
    std::optional<int> level;
    std::set<std::string> categories;
    std::optional<Identity> app;
    bool json = false;
    bool history = false;
    std::optional<std::uint64_t> count;
    std::optional<Seconds> timeout;
};

// A sample with its place in the reading order; valid while the samples are on loan.
struct Received {
    const VUR_DL_LogMessage *message;
    DDS_Time_t time;
    LossLedger::Entry entry;
    std::int64_t order = 0;  // see in_reading_order
};

// Sorts one batch for reading: the messages of one sender by their numbers, different senders by
// time. When two threads log at once, the time stamps of a sender may run slightly backwards
// against its numbers. So a message counts as sent no earlier than those with smaller numbers.
void in_reading_order(std::vector<Received> &batch) {
    const auto sender = [](const Received &r) {
        return std::tuple(r.entry.sender, r.entry.publication, r.entry.id);
    };
    std::sort(batch.begin(), batch.end(), [&](const Received &left, const Received &right) {
        return sender(left) < sender(right);
    });
    for (std::size_t i = 0; i < batch.size(); ++i) {
        const bool first = i == 0 || batch[i - 1].entry.sender != batch[i].entry.sender ||
                           batch[i - 1].entry.publication != batch[i].entry.publication;
        batch[i].order = first ? batch[i].entry.timestamp
                               : std::max(batch[i - 1].order, batch[i].entry.timestamp);
    }
    std::stable_sort(batch.begin(), batch.end(), [](const Received &left, const Received &right) {
        return left.order < right.order;
    });
}

std::string category_of(const VUR_DL_LogMessage &message) {
    return std::string(whole_characters(message.category, VUR_DL_LOG_MESSAGE_CATEGORY_BOUND));
}

std::string text_of(const VUR_DL_LogMessage &message) {
    return std::string(whole_characters(message.message, VUR_DL_LOG_MESSAGE_MESSAGE_BOUND));
}

Json to_json(const Received &received) {
    const VUR_DL_LogMessage &message = *received.message;
    return Json{{"host_id", message.hostAndAppId.rtps_host_id},
                {"app_id", message.hostAndAppId.rtps_app_id},
                {"level", message.level},
                {"level_name", level_name(message.level)},
                {"category", category_of(message)},
                {"message", text_of(message)},
                {"message_id", message.messageId},
                {"timestamp_ns", received.entry.timestamp}};
}

std::string to_text(const Received &received, const std::string &sender, bool colour) {
    const VUR_DL_LogMessage &message = *received.message;
    const std::string category = printable(category_of(message));
    return fmt::format(
        "{} {} {}{} {}", local_time(received.time),
        level_in_colour(message.level, level_name(message.level), colour, kLevelWidth), sender,
        category.empty() ? ":" : fmt::format(" [{}]:", category), printable(text_of(message)));
}

class Tail {
  public:
    explicit Tail(const TailOptions &options)
        : options_(options),
          session_(options.domain),
          directory_(session_),
          reader_(session_, ReaderSettings{options.history ? DDS_TRANSIENT_LOCAL_DURABILITY_QOS
                                                           : DDS_VOLATILE_DURABILITY_QOS,
                                           DDS_KEEP_ALL_HISTORY_QOS, 1, kMaximumWaitingSamples}),
          listening_since_(now()) {}

    int run() {
        const Deadline deadline = options_.timeout ? deadline_after(*options_.timeout) : Deadline();
        {
            // States are taken first, so that messages are shown with a kind that arrives with
            // them.
            Waiter waiter({directory_.condition(), reader_.condition(), stop_.condition()});
            while (!complete() && !stop_.raised() && output_.alive() && waiter.wait(deadline)) {
                directory_.update();
                take_messages();
            }
        }
        output_.flush();
        summarize();
        if (options_.count && !complete() && !stop_.raised()) {
            fmt::print(stderr, "distlog: {} of {} messages in time\n", shown_, *options_.count);
            return kExitFailure;
        }
        return kExitOk;
    }

  private:
    static std::int64_t now() {
        timespec time{};
        clock_gettime(CLOCK_REALTIME, &time);
        return to_nanoseconds(DDS_Time_t{time.tv_sec, static_cast<DDS_UnsignedLong>(time.tv_nsec)});
    }

    bool complete() const { return options_.count && shown_ >= *options_.count; }

    void take_messages() {
        std::vector<Received> batch;
        reader_.take(
            [&](const VUR_DL_LogMessage &message, const DDS_SampleInfo &info) {
                if (info.valid_data) {
                    batch.push_back(receive(message, info));
                }
            },
            [&] {
                in_reading_order(batch);
                show(batch);
            });
    }

    // Tells history from new messages. Messages from before we listened arrive with holes, because
    // the writers keep only the last few of each level. The first batch of a sender counts as
    // history also when its clock is ahead of ours.
    Received receive(const VUR_DL_LogMessage &message, const DDS_SampleInfo &info) const {
        const Identity sender(message.hostAndAppId);
        const std::int64_t timestamp = to_nanoseconds(info.source_timestamp);
        const bool historical =
            options_.history && (timestamp <= listening_since_ || !ledger_.knows(sender));
        return Received{&message, info.source_timestamp,
                        LossLedger::Entry{sender, info.publication_handle, message.messageId,
                                          timestamp, historical}};
    }

    void show(const std::vector<Received> &batch) {
        for (const Received &received : batch) {
            const LossLedger::Verdict verdict = ledger_.record(received.entry);
            if (verdict.gap) {
                announce(received.entry.sender, *verdict.gap);
            }
            if (!verdict.repeated && passes(*received.message) && !complete()) {
                ++shown_;
                output_.line(options_.json
                                 ? to_line(to_json(received))
                                 : to_text(received, directory_.label(received.entry.sender),
                                           output_.colour()));
            }
        }
        output_.flush();
    }

    void announce(const Identity &sender, const LossLedger::Gap &gap) {
        output_.flush();
        fmt::print(stderr, "{} lost from {}, {} to {}\n", gap.count(), directory_.label(sender),
                   gap.first, gap.last);
    }

    bool passes(const VUR_DL_LogMessage &message) const {
        return (!options_.level || message.level <= *options_.level) &&
               (options_.categories.empty() || options_.categories.count(message.category) != 0) &&
               (!options_.app || Identity(message.hostAndAppId) == *options_.app);
    }

    void summarize() const {
        std::int64_t received = 0;
        std::int64_t lost = 0;
        for (const auto &[sender, account] : ledger_.accounts()) {
            received += account.received;
            lost += account.lost;
            if (account.lost > 0) {
                fmt::print(stderr, "distlog: {} of {} messages lost from {}\n", account.lost,
                           account.received + account.lost, directory_.label(sender));
            }
        }
        fmt::print(stderr, "distlog: {} messages from {} senders, {} shown, {} lost\n", received,
                   ledger_.accounts().size(), shown_, lost);
    }

    TailOptions options_;
    StopSignal stop_;
    Output output_;
    Session session_;
    Directory directory_;
    Reader<VUR_DL_LogMessage> reader_;
    std::int64_t listening_since_;
    LossLedger ledger_;
    std::uint64_t shown_ = 0;
};

Identity app_argument(const std::string &text) {
    const std::optional<Identity> identity = parse_identity(text);
    if (!identity) {
        throw CLI::ValidationError(
            "--app",
            fmt::format("'{}' is not HOST:APP: two numbers with a colon, as distlog ls shows them",
                        text));
    }
    return *identity;
}

}  // namespace

void add_tail(CLI::App &app, Action &action) {
    CLI::App *command = app.add_subcommand("tail", "Print log messages as they arrive");
    const auto options = std::make_shared<TailOptions>();
    add_domain(*command, options->domain);
    command
        ->add_option_function<std::string>(
            "--level",
            [options](const std::string &text) {
                options->level = level_argument("--level", text);
            },
            "Show messages of this level and more severe ones only")
        ->type_name("LEVEL");
    command
        ->add_option_function<std::vector<std::string>>(
            "--category",
            [options](const std::vector<std::string> &texts) {
                options->categories = {texts.begin(), texts.end()};
            },
            "Show messages of exactly this category only; may be given several times")
        ->type_name("TEXT")
        ->take_all()
        ->expected(1)
        ->allow_extra_args(false);
    command
        ->add_option_function<std::string>(
            "--app", [options](const std::string &text) { options->app = app_argument(text); },
            "Show messages of one logger only")
        ->type_name("HOST:APP");
    command->add_flag("--json", options->json, "One JSON object a line");
    command->add_flag("--history", options->history,
                      "Begin with the last messages of each level that the loggers still hold");
    command->add_option("--count", options->count, "End after this many shown messages")
        ->type_name("N")
        ->check(CLI::PositiveNumber);
    command
        ->add_option_function<std::string>(
            "--timeout",
            [options](const std::string &text) {
                options->timeout = duration_argument("--timeout", text);
            },
            "End after this time; with --count, fail if the messages have not come by then")
        ->type_name("S");
    command->footer(
        "Missing message numbers are announced on standard error as losses, whether the sender's "
        "queue\n"
        "was full or the message was lost on the way; a summary follows at the end.");
    command->callback([&action, options] { action = [options] { return Tail(*options).run(); }; });
}

}  // namespace distlog
