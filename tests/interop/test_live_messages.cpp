// Log messages to a monitor that idlc made, in a process of its own: all of them, in order.
#include <gtest/gtest.h>
#include <vur_dl/DDSEntities.h>

#include <cstdint>
#include <map>
#include <string>

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

// What the monitor prints of a message.
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
        {support::helperPath("peer_monitor"), std::to_string(kDomain), VUR_DL_LOG_TOPIC_NAME});
    ASSERT_FALSE(interop::readUntil(monitor, "matched").empty());

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
        const Fields fields = interop::readUntil(monitor, [&sender](const Fields &line) {
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

}  // namespace
