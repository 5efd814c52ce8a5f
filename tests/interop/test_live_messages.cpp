// SPDX-License-Identifier: Apache-2.0
// Log messages to a monitor that idlc made, in a process of its own: all of them, in order.
#include <gtest/gtest.h>
#include <vur_dl/DDSEntities.h>

#include <csignal>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <future>
#include <map>
#include <string>
#include <thread>

#include "live_logger.h"

namespace {

using interop::Fields;
using support::ChildProcess;

constexpr int kDomain = 146;
constexpr std::int64_t kMessages = 2000;
// Fewer than the queue holds, and a thread of its own publishes from it.
constexpr std::int64_t kOutstanding = 64;

// Of every length from 0 to the bound; the first character tells the bytes of different messages
// apart.
std::string text(std::int64_t number) {
    const std::size_t length =
        number == kMessages ? 4096 : static_cast<std::size_t>(number * 61 % 4097);
    return std::string(length, static_cast<char>('a' + number % 26));
}
int level(std::int64_t number) {
    return static_cast<int>(100 * (number % 8 + 1));
}
std::string category(std::int64_t number) {
    return std::string(static_cast<std::size_t>(number * 7 % 513), 'c');
}

// Returns the fields that the monitor prints of a message.
Fields expected(const Fields &sender, std::int64_t number) {
    return {"sample",
            "alive",
            sender[0],
            sender[1],
            std::to_string(level(number)),
            std::to_string(number),
            category(number),
            text(number)};
}

TEST(LiveMessages, EveryMessageArrivesInOrder) {
    interop::LiveLogger logger(kDomain, 800);
    ASSERT_NE(logger.get(), nullptr);
    ChildProcess monitor(
        {support::helper_path("peer_monitor"), std::to_string(kDomain), VUR_DL_LOG_TOPIC_NAME});
    ASSERT_FALSE(interop::read_until(monitor, "matched").empty());

    const support::Ids ids = logger.ids(kDomain);
    const Fields sender{std::to_string(ids.host), std::to_string(ids.app)};
    std::int64_t logged = 0;
    const auto log = [&] {
        ++logged;
        VUR_DL_DistLogger_logMessageWithLevelCategory(
            logger.get(), level(logged), text(logged).c_str(), category(logged).c_str());
    };
    // A reader that the logger's writer has not found yet gets the last message of each level
    // afterwards: the first message alone is certain to arrive, and says that it has.
    std::int64_t received = 0;
    std::map<int, std::int64_t> next;  // by level: levels are instances, which are ordered
    for (std::int64_t i = 1; i <= 8; ++i) {
        next[level(i)] = i;
    }
    while (received < kMessages) {
        while (logged < kMessages && logged - received < (received == 0 ? 1 : kOutstanding)) {
            log();
        }
        // Others may log in the domain.
        const Fields fields = interop::read_until(monitor, [&sender](const Fields &line) {
            return line[0] == "sample" && line.at(2) == sender[0] && line.at(3) == sender[1];
        });
        ASSERT_EQ(fields.size(), 8U) << "after " << received << " of " << logged;
        const std::int64_t number = std::stoll(fields[5]);
        ASSERT_EQ(fields, expected(sender, number));
        ASSERT_EQ(number, next[level(number)]);
        next[level(number)] += 8;
        ++received;
    }
    EXPECT_EQ(VUR_DL_MessageQueue_getMessageId(VUR_DL_DistLogger_getMessageQueue()), kMessages);
    interop::dismiss(monitor);
}

// ---- One instance, which is ordered as a whole --------------------------------------------------

// A logger, a monitor that has found it, and messages that are numbered by their texts as well.
class Stream {
  public:
    Stream(int domain, const interop::LiveSettings &settings)
        : logger_(domain, 800, settings),
          monitor_({support::helper_path("peer_monitor"), std::to_string(domain),
                    VUR_DL_LOG_TOPIC_NAME}) {
        if (logger_.get() == nullptr || interop::read_until(monitor_, "matched").empty()) {
            ADD_FAILURE() << "they do not meet";
            return;
        }
        sender_ = logger_.ids(domain);
        // The first message alone is certain to arrive: it says that the writer has found the
        // reader.
        log();
        expect_next();
    }

    void log(std::size_t padding = 0) {
        ++logged_;
        std::string text = std::to_string(logged_);
        text.append(padding, '.');
        VUR_DL_DistLogger_log(logger_.get(), 600, text.c_str());
    }
    // The message behind the last one is the next to arrive.
    bool expect_next() {
        const Fields fields = interop::read_until(monitor_, [this](const Fields &line) {
            return line[0] == "sample" && line.at(2) == std::to_string(sender_.host) &&
                   line.at(3) == std::to_string(sender_.app);
        });
        if (fields.size() != 8U) {
            ADD_FAILURE() << "nothing after " << received_ << " of " << logged_;
            return false;
        }
        ++received_;
        const std::string number = std::to_string(received_);
        const bool right =
            fields[5] == number && fields[7].substr(0, fields[7].find('.')) == number;
        EXPECT_TRUE(right) << "message " << fields[5] << " in place of " << received_;
        return right;
    }
    void expect_all() {
        while (received_ < logged_ && expect_next()) {
        }
    }
    void end() { interop::dismiss(monitor_); }

    std::int64_t logged() const { return logged_; }
    std::int64_t received() const { return received_; }
    ChildProcess &monitor() { return monitor_; }

  private:
    interop::LiveLogger logger_;
    ChildProcess monitor_;
    support::Ids sender_;
    std::int64_t logged_ = 0;
    std::int64_t received_ = 0;
};

void expect_hundred_thousand(int domain, const char *profile) {
    constexpr std::int64_t kMany = 100000;
    constexpr int kQueue = 8192;
    Stream stream(domain, {.queue_size = kQueue, .profile = profile});
    const auto start = std::chrono::steady_clock::now();
    // The queue never overflows: all messages that have not arrived fit into it, and each stays
    // there a moment longer than its write takes. The writer itself keeps fewer and must wait for
    // the reader again and again.
    while (stream.received() < kMany) {
        while (stream.logged() < kMany && stream.logged() - stream.received() < kQueue - 1) {
            stream.log(static_cast<std::size_t>(stream.logged() % 200));
        }
        ASSERT_TRUE(stream.expect_next());
    }
    const std::chrono::duration<double> span = std::chrono::steady_clock::now() - start;
    std::printf("%.2f s, %.0f messages/s\n", span.count(), kMany / span.count());
    EXPECT_EQ(VUR_DL_MessageQueue_getMessageId(VUR_DL_DistLogger_getMessageQueue()), kMany);
    stream.end();
}

TEST(LiveMessages, AHundredThousandArriveInOrder) {
    expect_hundred_thousand(201, "Xcdr2");
}

// The writer waits for ever, and keeps no more than a little once everybody has it. (The engine
// announces a writer's resource limits and does not enforce them: bytes that are not acknowledged
// hold it back.)
TEST(LiveMessages, AHundredThousandArriveInOrderFromABoundedHistory) {
    expect_hundred_thousand(202, "Bounded");
}

// The writer waits for a reader that stands still, and log calls do not wait for the writer.
TEST(LiveMessages, AReaderThatStandsStillLosesNothing) {
    constexpr int kMany = 2000;
    Stream stream(203, {.queue_size = kMany});
    stream.monitor().signal(SIGSTOP);
    for (int i = 0; i < kMany; ++i) {
        stream.log(2000);  // more in all than the writer keeps for a reader
    }
    stream.monitor().signal(SIGCONT);
    stream.expect_all();
    stream.end();
}

// A write that times out leaves its message in the queue; every message logged later sends one of
// those that wait.
TEST(LiveMessages, AWriteThatTimesOutDelaysItsMessage) {
    constexpr int kMany = 400;
    Stream stream(204, {.queue_size = 4096, .profile = "Impatient"});
    stream.monitor().signal(SIGSTOP);
    for (int i = 0; i < kMany; ++i) {
        stream.log(2000);
    }
    // Long enough for many writes to time out, if the engine is as fast as it should be. Nothing
    // below depends on it.
    std::this_thread::sleep_for(std::chrono::seconds(2));
    stream.monitor().signal(SIGCONT);
    const std::int64_t target = stream.logged();
    while (stream.received() < target) {
        stream.log();
        ASSERT_TRUE(stream.expect_next());
    }
    stream.end();
}

// The writer would wait for ever for a reader that stands still. The engine gives that up after ten
// seconds, when it takes the reader's process for gone: the end of the logger does not wait so long.
TEST(LiveMessages, FinalisationDoesNotWaitForAReaderThatStandsStill) {
    constexpr int kMany = 1000;
    Stream stream(45, {.queue_size = kMany, .profile = "Bounded"});
    stream.monitor().signal(SIGSTOP);
    for (int i = 0; i < kMany; ++i) {
        stream.log(2000);
    }
    std::future<int> finalised = std::async(std::launch::async, VUR_DL_DistLogger_finalizeInstance);
    EXPECT_EQ(finalised.wait_for(std::chrono::seconds(7)), std::future_status::ready);
    EXPECT_EQ(finalised.get(), 0);
    stream.monitor().signal(SIGCONT);
}

}  // namespace
