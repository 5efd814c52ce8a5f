// distlog-demo: an application with several threads that log at all levels, until it is done or
// interrupted. Watch it with `distlog tail`, administer it with `distlog set`.
#include <getopt.h>
#include <vur_dl/vur_dl.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr std::array<int, 8> kLevels{100, 200, 300, 400, 500, 600, 700, 800};
constexpr std::array<const char *, 8> kNames{"fatal",  "severe", "error", "warning",
                                             "notice", "info",   "debug", "trace"};
constexpr std::array<const char *, 3> kCategories{"", "demo.sensor", "demo.motor"};
// Enough for a loaded machine: what is still queued when the logger is finalised is not published.
constexpr int kDrainMilliseconds = 1000;

struct Settings {
    int domain = 0;
    int threads = 4;
    long messages = 0;   // of each thread; 0: until interrupted
    double rate = 20.0;  // messages a second, all threads together; 0: as fast as it goes
    int level = 600;
    int queue_size = 1024;
    bool quiet = false;
    std::string kind = "distlog-demo";
    std::string config;
};

const char *const kUsage =
    "usage: distlog-demo [options]\n"
    "  --messages N   messages of each thread; 0 goes on until interrupted (default 0)\n"
    "  --threads N    logging threads, 1 to 64 (default 4)\n"
    "  --rate R       messages a second of all threads together; 0: no limit (default 20)\n"
    "  --domain N     DDS domain, 0 to 230 (default 0)\n"
    "  --kind NAME    application kind (default distlog-demo)\n"
    "  --level N      filter level: 100 fatal to 800 trace (default 600)\n"
    "  --queue N      messages that can wait to be published (default 1024)\n"
    "  --config FILE  options from the distributed_logger element of an XML document;\n"
    "                 --level, --queue and --quiet then have no effect\n"
    "  --quiet        do not print the messages\n";

// A number within bounds, or the end of the program with one line that says what is wrong.
double number(const char *option, const char *text, double minimum, double maximum) {
    char *end = nullptr;
    errno = 0;
    const double value = std::strtod(text, &end);
    if (errno != 0 || end == text || *end != '\0' || !(value >= minimum && value <= maximum)) {
        std::fprintf(stderr, "distlog-demo: %s: '%s' is no number from %g to %g\n", option, text,
                     minimum, maximum);
        std::exit(2);
    }
    return value;
}

int integer(const char *option, const char *text, int minimum, int maximum) {
    const double value = number(option, text, minimum, maximum);
    if (value != static_cast<double>(static_cast<int>(value))) {
        std::fprintf(stderr, "distlog-demo: %s: '%s' is no whole number\n", option, text);
        std::exit(2);
    }
    return static_cast<int>(value);
}

Settings parse(int argc, char **argv) {
    static const option options[] = {{"messages", required_argument, nullptr, 'm'},
                                     {"threads", required_argument, nullptr, 't'},
                                     {"rate", required_argument, nullptr, 'r'},
                                     {"domain", required_argument, nullptr, 'd'},
                                     {"kind", required_argument, nullptr, 'k'},
                                     {"level", required_argument, nullptr, 'l'},
                                     {"queue", required_argument, nullptr, 's'},
                                     {"config", required_argument, nullptr, 'c'},
                                     {"quiet", no_argument, nullptr, 'q'},
                                     {"help", no_argument, nullptr, 'h'},
                                     {nullptr, 0, nullptr, 0}};
    Settings settings;
    int chosen = 0;
    while ((chosen = getopt_long(argc, argv, "", options, nullptr)) != -1) {
        switch (chosen) {
            case 'm':
                settings.messages = integer("--messages", optarg, 0, INT_MAX);
                break;
            case 't':
                settings.threads = integer("--threads", optarg, 1, 64);
                break;
            case 'r':
                settings.rate = number("--rate", optarg, 0.0, 1e9);
                break;
            case 'd':
                settings.domain = integer("--domain", optarg, 0, 230);
                break;
            case 'k':
                settings.kind = optarg;
                break;
            case 'l':
                settings.level = integer("--level", optarg, 0, INT_MAX);
                break;
            case 's':
                settings.queue_size = integer("--queue", optarg, 1, INT_MAX);
                break;
            case 'c':
                settings.config = optarg;
                break;
            case 'q':
                settings.quiet = true;
                break;
            case 'h':
                std::fputs(kUsage, stdout);
                std::exit(0);
            default:
                std::exit(2);  // getopt has said what is wrong
        }
    }
    if (optind < argc) {
        std::fprintf(stderr, "distlog-demo: unexpected argument '%s'\n", argv[optind]);
        std::exit(2);
    }
    return settings;
}

VUR_DL_DistLogger *start_logger(const Settings &settings) {
    if (!settings.config.empty()) {
        const int started = VUR_DL_XMLConfig_startFromFile(settings.config.c_str(), nullptr,
                                                           settings.domain, settings.kind.c_str());
        // A document that does not enable the logger is no error, but leaves nothing to show.
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

// What one thread does: its messages in turn at every level, at its share of the rate.
void log_messages(VUR_DL_DistLogger *logger, const Settings &settings, int thread,
                  const std::atomic<bool> &stop, Counts &sent) {
    const bool limited = settings.rate > 0.0;
    const std::chrono::duration<double> interval(limited ? settings.threads / settings.rate : 0.0);
    const auto begin = std::chrono::steady_clock::now();
    for (long i = 0; (settings.messages == 0 || i < settings.messages) && !stop; ++i) {
        if (limited) {
            // In slices, so that an interruption does not wait for a slow rate.
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

}  // namespace

int main(int argc, char **argv) {
    const Settings settings = parse(argc, argv);
    // Blocked here, before any thread exists, and waited for below.
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
    // The number of the last message that was offered to the queue, full or not.
    const std::int64_t numbered =
        VUR_DL_MessageQueue_getMessageId(VUR_DL_DistLogger_getMessageQueue());
    VUR_DL_Utility_sleep(kDrainMilliseconds);
    const int result = VUR_DL_DistLogger_finalizeInstance();
    print_summary(sent, numbered);
    return result;
}
