// SPDX-License-Identifier: Apache-2.0
// distlog-demo: an application with several threads that log at all levels, until it is done or
// interrupted. Watch it with `distlog tail`, administer it with `distlog set`.
#include <vur_dl/vur_dl.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <exception>
#include <limits>
#include <sstream>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

constexpr std::array<int, 8> kLevels{100, 200, 300, 400, 500, 600, 700, 800};
constexpr std::array<const char *, 8> kNames{"fatal",  "severe", "error", "warning",
                                             "notice", "info",   "debug", "trace"};
constexpr std::array<const char *, 3> kCategories{"", "demo.sensor", "demo.motor"};
// Leaves the write thread time to empty the queue, also on a loaded machine: messages that are
// still queued when the logger is finalised are not published.
constexpr int kDrainMilliseconds = 1000;
constexpr int kExitUsage = 2;

// Holds what the command line says; the values here are the defaults.
struct Settings {
    int domain = 0;
    int threads = 4;
    int messages = 0;    // of each thread; 0: until interrupted
    double rate = 20.0;  // messages a second, all threads together; 0: as fast as it goes
    int level = 600;
    int queue_size = 1024;
    bool quiet = false;
    std::string kind = "distlog-demo";
    std::string config;
};

// Accepts a decimal number within bounds; for an integer type, a whole number only.
template <typename Number>
CLI::Validator between(Number minimum, Number maximum) {
    const auto check = [=](std::string &text) {
        Number value{};
        const char *end = text.data() + text.size();
        const auto [rest, error] = std::from_chars(text.data(), end, value);
        if (error == std::errc() && rest == end && value >= minimum && value <= maximum) {
            return std::string();
        }
        std::ostringstream refusal;
        refusal << "'" << text << "' is wrong: a "
                << (std::is_integral_v<Number> ? "whole number" : "number") << " from " << minimum
                << " to " << maximum << " is expected";
        return refusal.str();
    };
    return CLI::Validator(check, "");
}

void add_options(CLI::App &app, Settings &settings) {
    const auto at_least = [](int minimum) {
        return between(minimum, std::numeric_limits<int>::max());
    };
    app.add_option("--messages", settings.messages,
                   "Messages of each thread; 0 goes on until interrupted (default 0)")
        ->type_name("N")
        ->check(at_least(0));
    app.add_option("--threads", settings.threads, "Logging threads, 1 to 64 (default 4)")
        ->type_name("N")
        ->check(between(1, 64));
    app.add_option("--rate", settings.rate,
                   "Messages a second of all threads together; 0: no limit (default 20)")
        ->type_name("R")
        ->check(between(0.0, 1e9));
    app.add_option("--domain", settings.domain, "DDS domain, 0 to 230 (default 0)")
        ->type_name("N")
        ->check(between(0, 230));
    app.add_option("--kind", settings.kind, "Application kind (default distlog-demo)")
        ->type_name("NAME");
    app.add_option("--level", settings.level, "Filter level: 100 fatal to 800 trace (default 600)")
        ->type_name("N")
        ->check(at_least(0));
    app.add_option("--queue", settings.queue_size,
                   "Messages that can wait to be published (default 1024)")
        ->type_name("N")
        ->check(at_least(1));
    app.add_option("--config", settings.config,
                   "Options from the distributed_logger element of an XML document; --level, "
                   "--queue and --quiet then have no effect")
        ->type_name("FILE");
    app.add_flag("--quiet", settings.quiet, "Do not print the messages");
}

VUR_DL_DistLogger *start_logger(const Settings &settings) {
    if (!settings.config.empty()) {
        const int started = VUR_DL_XMLConfig_startFromFile(settings.config.c_str(), nullptr,
                                                           settings.domain, settings.kind.c_str());
        // A document that does not enable the logger is accepted, but leaves nothing to show.
        return started == 1 && VUR_DL_DistLogger_isDistLoggerRunning() != 0
                   ? VUR_DL_DistLogger_getInstance()
                   : nullptr;
    }
    VUR_DL_Options *options = VUR_DL_Options_createDefault();
    VUR_DL_Options_setDomainId(options, settings.domain);
    VUR_DL_Options_setFilterLevel(options, settings.level);
    VUR_DL_Options_setQueueSize(options, settings.queue_size);
    VUR_DL_Options_setApplicationKind(options, settings.kind.c_str());
    VUR_DL_Options_setEchoToStdout(options, settings.quiet ? 0 : 1);
    VUR_DL_DistLogger_setOptions(options);
    VUR_DL_Options_delete(options);
    return VUR_DL_DistLogger_getInstance();
}

using Counts = std::array<std::atomic<std::int64_t>, kLevels.size()>;

// Runs on each thread: logs at every level in turn, at the thread's share of the rate.
void log_messages(VUR_DL_DistLogger *logger, const Settings &settings, int thread,
                  const std::atomic<bool> &stop, Counts &sent) {
    const bool limited = settings.rate > 0.0;
    const std::chrono::duration<double> interval(limited ? settings.threads / settings.rate : 0.0);
    const auto begin = std::chrono::steady_clock::now();
    for (std::int64_t i = 0; (settings.messages == 0 || i < settings.messages) && !stop; ++i) {
        if (limited) {
            // Sleeps in slices, so that an interruption does not wait for a slow rate.
            const auto due = begin + interval * static_cast<double>(i);
            while (!stop && std::chrono::steady_clock::now() < due) {
                const auto slice = std::chrono::steady_clock::now() + std::chrono::milliseconds(50);
                std::this_thread::sleep_until(
                    std::min<std::chrono::time_point<std::chrono::steady_clock,
                                                     std::chrono::duration<double>>>(slice, due));
            }
        }
        const std::size_t turn = static_cast<std::size_t>(i + thread);
        const std::size_t level = turn % kLevels.size();
        const std::string text = "thread " + std::to_string(thread) + ", message " +
                                 std::to_string(i + 1) + ", " + kNames[level];
        VUR_DL_DistLogger_logMessageWithLevelCategory(logger, kLevels[level], text.c_str(),
                                                      kCategories[turn % kCategories.size()]);
        ++sent[level];
    }
}

// Returns when all threads are done or a signal has come.
void wait_for_end(const sigset_t &signals, const std::atomic<int> &running) {
    const timespec slice{0, 50'000'000};
    while (running > 0 && sigtimedwait(&signals, nullptr, &slice) < 0) {
    }
}

void print_summary(const Counts &sent, std::int64_t numbered) {
    std::int64_t total = 0;
    std::string by_level;
    for (std::size_t i = 0; i < sent.size(); ++i) {
        total += sent[i];
        by_level += (i == 0 ? "" : ", ") + std::string(kNames[i]) + " " + std::to_string(sent[i]);
    }
    std::printf("distlog-demo: logged %lld messages (%s), %lld of them passed the filter\n",
                static_cast<long long>(total), by_level.c_str(), static_cast<long long>(numbered));
}

// Logs until all threads are done or a signal has come; returns the exit code.
int run(const Settings &settings) {
    // The signals are blocked here, before any thread exists, and waited for below.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    VUR_DL_DistLogger *logger = start_logger(settings);
    if (logger == nullptr) {
        std::fprintf(stderr, "distlog-demo: the logger has not been started\n");
        return 1;
    }
    std::atomic<bool> stop{false};
    std::atomic<int> running{settings.threads};
    Counts sent{};
    std::vector<std::thread> threads;
    threads.reserve(static_cast<std::size_t>(settings.threads));
    for (int i = 0; i < settings.threads; ++i) {
        threads.emplace_back([&, i] {
            log_messages(logger, settings, i, stop, sent);
            --running;
        });
    }
    wait_for_end(signals, running);
    stop = true;
    for (std::thread &thread : threads) {
        thread.join();
    }
    // The number of messages that were offered to the queue, whether it was full or not.
    const std::int64_t numbered =
        VUR_DL_MessageQueue_getMessageId(VUR_DL_DistLogger_getMessageQueue());
    VUR_DL_Utility_sleep(kDrainMilliseconds);
    const int result = VUR_DL_DistLogger_finalizeInstance();
    print_summary(sent, numbered);
    return result;
}

// Parses the arguments and does what they say; returns the exit code.
int parse_and_run(int argc, char **argv) {
    Settings settings;
    CLI::App app("Logs at all levels from several threads, until done or interrupted.",
                 "distlog-demo");
    app.option_defaults()->take_last();
    add_options(app, settings);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() == 0) {
            return app.exit(error);  // --help
        }
        std::fprintf(stderr, "distlog-demo: %s; see distlog-demo --help\n", error.what());
        return kExitUsage;
    }
    return run(settings);
}

}  // namespace

int main(int argc, char **argv) {
    try {
        return parse_and_run(argc, argv);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "distlog-demo: %s\n", error.what());
        return 1;
    }
}
