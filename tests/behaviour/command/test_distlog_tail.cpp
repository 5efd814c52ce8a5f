// SPDX-License-Identifier: Apache-2.0
// distlog tail, as a user runs it: lines, filters, history, and the account of losses.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <string>
#include <vector>

#include "support/logger/fake_peer.h"
#include "support/logger/log_app.h"
#include "support/platform/process.h"

namespace {

using support::ChildProcess;
using support::FakeParticipant;
using support::FakeSender;
using support::Ids;
using support::LogApp;
using Stream = ChildProcess::Stream;

std::vector<std::string> tail_command(int domain, const std::vector<std::string> &arguments) {
    std::vector<std::string> command{support::binary_path("distlog"), "tail", "--domain",
                                     std::to_string(domain)};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

bool contains(const std::string &text, const std::string &part) {
    return text.find(part) != std::string::npos;
}

bool start(LogApp &app, int domain, int filter = 600) {
    return app.run("option domain " + std::to_string(domain)) &&
           app.run("option filter " + std::to_string(filter)) && app.run("option queue 1000") &&
           app.run("option kind tested-app") && app.run("create");
}

// Has the application say "hello" until the tail shows it: from then on nothing is missed.
bool meet(LogApp &app, ChildProcess &tail) {
    return support::eventually([&] {
        return app.run("log 100 hello hello") &&
               tail.read_line_with("hello", Stream::kOut, std::chrono::milliseconds(100));
    });
}

TEST(DistlogTail, JsonLinesHaveAllMembers) {
    ChildProcess tail(tail_command(110, {"--json", "--history", "--count", "2"}));
    LogApp app;
    ASSERT_TRUE(start(app, 110));
    ASSERT_TRUE(app.run("log 300 some.category a \"quoted\" text \\ with ünïcode"));
    ASSERT_TRUE(app.run("log 250 - plain"));
    ASSERT_EQ(tail.wait(), 0);
    std::vector<std::string> lines = tail.lines();
    ASSERT_EQ(lines.size(), 2U);
    std::sort(lines.begin(), lines.end(), [](const std::string &left, const std::string &right) {
        return contains(left, "\"message_id\":1,") && !contains(right, "\"message_id\":1,");
    });
    EXPECT_EQ(lines[0].rfind("{\"host_id\":", 0), 0U) << lines[0];
    EXPECT_TRUE(contains(lines[0], ",\"app_id\":"));
    EXPECT_TRUE(contains(lines[0],
                         ",\"level\":300,\"level_name\":\"error\","
                         "\"category\":\"some.category\",\"message\":\"a "
                         "\\\"quoted\\\" text \\\\ with ünïcode\",\"message_id\":1,"
                         "\"timestamp_ns\":"))
        << lines[0];
    EXPECT_TRUE(contains(lines[1],
                         "\"level\":250,\"level_name\":\"250\",\"category\":\"\","
                         "\"message\":\"plain\",\"message_id\":2,"))
        << lines[1];
}

TEST(DistlogTail, BytesThatAreNoUtf8AreReplacedInJson) {
    const FakeParticipant participant(111);
    FakeSender sender(participant, Ids{-5, 17});
    ChildProcess tail(tail_command(111, {"--json", "--count", "1"}));
    ASSERT_TRUE(sender.wait_for_readers(1));
    ASSERT_TRUE(sender.write(1, 600, "bad \xff\xc3( \xed\xa0\x80 end"));
    const std::optional<std::string> line = tail.read_line();
    ASSERT_TRUE(line);
    EXPECT_TRUE(contains(*line, "\"host_id\":-5,\"app_id\":17,")) << *line;
    EXPECT_TRUE(contains(*line, "bad \xef\xbf\xbd")) << *line;
    EXPECT_TRUE(contains(*line, " end\"")) << *line;
    EXPECT_FALSE(contains(*line, "\xff"));
    EXPECT_EQ(tail.wait(), 0);
}

// A sender cuts texts to their bounds by bytes.
TEST(DistlogTail, HalfACharacterAtTheEndOfACutTextIsLeftOut) {
    const FakeParticipant participant(23);
    FakeSender sender(participant, Ids{-5, 17});
    ChildProcess lines(tail_command(23, {"--count", "4"}));
    ChildProcess json(tail_command(23, {"--json", "--count", "4"}));
    ASSERT_TRUE(sender.wait_for_readers(2));
    const std::string text(VUR_DL_LOG_MESSAGE_MESSAGE_BOUND - 2, 'x');
    const std::string category(VUR_DL_LOG_MESSAGE_CATEGORY_BOUND - 1, 'c');
    ASSERT_TRUE(sender.write(1, 600, (text + "\xe2\x82").c_str(), (category + "\xc3").c_str()));
    ASSERT_TRUE(sender.write(2, 600, (text + "\xc3\xa4").c_str()));
    ASSERT_TRUE(sender.write(3, 600, (text + "y\x82").c_str()));
    ASSERT_TRUE(sender.write(4, 600, "short \xe2\x82"));
    const auto ends_with = [](const std::optional<std::string> &line, const std::string &end) {
        return line && line->size() >= end.size() &&
               line->compare(line->size() - end.size(), end.size(), end) == 0;
    };
    EXPECT_TRUE(ends_with(lines.read_line(), " [" + category + "]: " + text));
    EXPECT_TRUE(ends_with(lines.read_line(), text + "\xc3\xa4"));
    EXPECT_TRUE(ends_with(lines.read_line(), text + "y\\x82"));
    EXPECT_TRUE(ends_with(lines.read_line(), "short \\xe2\\x82"));
    const std::optional<std::string> first = json.read_line();
    ASSERT_TRUE(first);
    EXPECT_TRUE(contains(*first, "c\",\"message\":\"x"));
    EXPECT_TRUE(contains(*first, "x\",\"message_id\":1,"));
    EXPECT_EQ(lines.wait(), 0);
}

TEST(DistlogTail, TextCannotMoveTheTerminal) {
    const FakeParticipant participant(112);
    FakeSender sender(participant, Ids{1, 2});
    ChildProcess tail(tail_command(112, {"--count", "2"}));
    ASSERT_TRUE(sender.wait_for_readers(1));
    ASSERT_TRUE(
        sender.write(1, 300, "\x1b[2Jtwo\nlines\ttab\x7f\xc2\x9b umläut \xff\n", "c\x07tegory"));
    ASSERT_TRUE(sender.write(2, 300,
                             "\xe2\x80\xae"
                             "override"));
    const std::optional<std::string> first = tail.read_line();
    ASSERT_TRUE(first);
    EXPECT_TRUE(contains(*first,
                         " error   1:2 [c\\x07tegory]: \\x1b[2Jtwo\\nlines\\ttab\\x7f"
                         "\\u{009b} umläut \\xff"))
        << *first;
    EXPECT_EQ(first->back(), 'f');
    const std::optional<std::string> second = tail.read_line();
    ASSERT_TRUE(second);
    EXPECT_TRUE(contains(*second, "1:2: \\u{202e}override")) << *second;
    EXPECT_EQ(tail.wait(), 0);
}

TEST(DistlogTail, TheKindStandsForTheSender) {
    LogApp app;
    ASSERT_TRUE(start(app, 113));
    ChildProcess tail(tail_command(113, {}));
    ASSERT_TRUE(meet(app, tail));
    // The State may arrive after the first messages.
    EXPECT_TRUE(support::eventually([&] {
        app.run("log 400 cat once more");
        const auto line = tail.read_line_with("once more");
        return line && contains(*line, " warning tested-app [cat]: once more");
    }));
    tail.signal(SIGINT);
    EXPECT_EQ(tail.wait(), 0);
}

TEST(DistlogTail, FiltersHideAndWhatTheyHideIsNotLost) {
    LogApp app;
    ASSERT_TRUE(start(app, 117));
    ChildProcess by_level(tail_command(117, {"--level", "error"}));
    ChildProcess by_number(tail_command(117, {"--level", "300"}));
    ChildProcess by_category(tail_command(117, {"--category", "wanted", "--category", "hello"}));
    ChildProcess by_app(tail_command(117, {"--app", "0:0", "--timeout", "60"}));
    for (ChildProcess *tail : {&by_level, &by_number, &by_category}) {
        ASSERT_TRUE(meet(app, *tail));
    }
    ASSERT_TRUE(app.run("log 400 wanted a warning"));
    ASSERT_TRUE(app.run("log 300 other an error"));
    ASSERT_TRUE(app.run("log 100 hello the end"));
    for (ChildProcess *tail : {&by_level, &by_number}) {
        EXPECT_TRUE(contains(tail->read_line_with("an error").value_or(""), " error "));
        EXPECT_TRUE(tail->read_line_with("the end"));
    }
    EXPECT_TRUE(contains(by_category.read_line_with("a warning").value_or(""), " warning "));
    EXPECT_TRUE(by_category.read_line_with("the end"));
    for (ChildProcess *tail : {&by_level, &by_number, &by_category, &by_app}) {
        tail->signal(SIGINT);
        EXPECT_EQ(tail->wait(), 0);
        const std::vector<std::string> errors = tail->lines(Stream::kErr);
        ASSERT_EQ(errors.size(), 1U) << errors.front();
        EXPECT_TRUE(contains(errors[0], " 0 lost")) << errors[0];
    }
    for (const std::string &line : by_level.lines()) {
        EXPECT_FALSE(contains(line, "warning"));
    }
    for (const std::string &line : by_category.lines()) {
        EXPECT_FALSE(contains(line, "an error"));
    }
    EXPECT_TRUE(by_app.lines().empty());
}

TEST(DistlogTail, OneLoggerCanBePickedOut) {
    const FakeParticipant participant(120);
    FakeSender one(participant, Ids{-7, 1});
    FakeSender two(participant, Ids{-7, 2});
    ChildProcess tail(tail_command(120, {"--app", "-7:2", "--count", "1"}));
    ASSERT_TRUE(one.wait_for_readers(1));
    ASSERT_TRUE(two.wait_for_readers(1));
    ASSERT_TRUE(one.write(1, 600, "from one"));
    ASSERT_TRUE(two.write(1, 600, "from two"));
    EXPECT_EQ(tail.wait(), 0);
    ASSERT_EQ(tail.lines().size(), 1U);
    EXPECT_TRUE(contains(tail.lines()[0], "-7:2: from two"));
}

TEST(DistlogTail, AGapIsAnnouncedAndSummedUp) {
    const FakeParticipant participant(121);
    FakeSender sender(participant, Ids{11, 22});
    ChildProcess tail(tail_command(121, {}));
    ASSERT_TRUE(sender.wait_for_readers(1));
    ASSERT_TRUE(sender.write(8120));
    ASSERT_TRUE(sender.write(8121, 300));
    ASSERT_TRUE(sender.write(8159));
    EXPECT_EQ(tail.read_line(Stream::kErr), "37 lost from 11:22, 8122 to 8158");
    ASSERT_TRUE(sender.write(8160));
    ASSERT_TRUE(sender.write(8162, 100));
    EXPECT_EQ(tail.read_line(Stream::kErr), "1 lost from 11:22, 8161 to 8161");
    tail.signal(SIGTERM);
    EXPECT_EQ(tail.wait(), 0);
    EXPECT_EQ(tail.read_line(Stream::kErr), "distlog: 38 of 43 messages lost from 11:22");
    EXPECT_EQ(tail.read_line(Stream::kErr), "distlog: 5 messages from 1 senders, 5 shown, 38 lost");
    EXPECT_EQ(tail.lines().size(), 5U);
}

TEST(DistlogTail, ASenderThatStartsAnewStartsItsNumbersAnew) {
    const FakeParticipant participant(122);
    ChildProcess tail(tail_command(122, {}));
    for (int life = 0; life < 3; ++life) {
        FakeSender sender(participant, Ids{11, 22});
        ASSERT_TRUE(sender.wait_for_readers(1));
        for (int id = 1; id <= 4; ++id) {
            ASSERT_TRUE(sender.write(id * (life == 1 ? 1 : 1), 100 * id));
        }
    }
    for (int i = 0; i < 12; ++i) {
        ASSERT_TRUE(tail.read_line());
    }
    tail.signal(SIGINT);
    EXPECT_EQ(tail.wait(), 0);
    EXPECT_EQ(tail.lines(Stream::kErr),
              std::vector<std::string>{"distlog: 12 messages from 1 senders, 12 shown, 0 lost"});
}

TEST(DistlogTail, HistoryIsShownInOrderAndItsHolesAreNoLosses) {
    LogApp app;
    ASSERT_TRUE(start(app, 123, 800));
    ASSERT_TRUE(app.run("series 30 300"));
    ASSERT_TRUE(app.run("series 15 600"));
    ASSERT_TRUE(app.run("series 3 800"));
    ChildProcess tail(tail_command(123, {"--history", "--json"}));
    std::vector<std::int64_t> ids;
    const auto read_id = [&] {
        const std::optional<std::string> line = tail.read_line();
        const std::size_t at = line ? line->find("\"message_id\":") : std::string::npos;
        ids.push_back(at == std::string::npos ? -1 : std::stoll(line->substr(at + 13)));
    };
    for (int i = 0; i < 23; ++i) {
        read_id();
    }
    std::vector<std::int64_t> expected;
    for (const auto &[first, last] : {std::pair(21, 30), std::pair(36, 45), std::pair(46, 48)}) {
        for (int id = first; id <= last; ++id) {
            expected.push_back(id);
        }
    }
    EXPECT_EQ(ids, expected);
    // Every line from now on is live.
    ASSERT_TRUE(app.run("log 300 - live"));
    ASSERT_TRUE(app.run("log 600 - live"));
    read_id();
    read_id();
    EXPECT_EQ(ids[23] + ids[24], 49 + 50);
    tail.signal(SIGINT);
    EXPECT_EQ(tail.wait(), 0);
    const std::vector<std::string> errors = tail.lines(Stream::kErr);
    ASSERT_EQ(errors.size(), 1U) << errors.front();
    EXPECT_TRUE(contains(errors[0], "25 messages from 1 senders, 25 shown, 0 lost")) << errors[0];
}

TEST(DistlogTail, WithoutHistoryOnlyWhatIsNewArrives) {
    LogApp app;
    ASSERT_TRUE(start(app, 124));
    ASSERT_TRUE(app.run("log 300 - old"));
    ChildProcess tail(tail_command(124, {}));
    ASSERT_TRUE(meet(app, tail));
    for (const std::string &line : tail.lines()) {
        EXPECT_FALSE(contains(line, "old")) << line;
    }
}

TEST(DistlogTail, TimeoutEndsIt) {
    ChildProcess plain(tail_command(125, {"--timeout", "0.5"}));
    ChildProcess counting(tail_command(125, {"--timeout", "500ms", "--count", "3"}));
    EXPECT_EQ(plain.wait(), 0);
    EXPECT_EQ(counting.wait(), 1);
    EXPECT_EQ(counting.lines(Stream::kErr).back(), "distlog: 0 of 3 messages in time");
}

TEST(DistlogTail, AClosedOutputEndsItQuietly) {
    const FakeParticipant participant(126);
    FakeSender sender(participant, Ids{1, 2});
    const std::string command = support::binary_path("distlog") + " tail --domain 126 | head -n 1";
    ChildProcess pipe({"/bin/sh", "-c", command});
    ASSERT_TRUE(sender.wait_for_readers(1));
    std::int64_t id = 0;
    EXPECT_TRUE(support::eventually([&] {
        return !sender.write(++id) || pipe.wait(std::chrono::milliseconds(20)).has_value();
    }));
    EXPECT_EQ(pipe.wait(), 0);
    EXPECT_EQ(pipe.lines().size(), 1U);
}

TEST(DistlogTail, ColourIsForTerminals) {
    const FakeParticipant participant(127);
    FakeSender sender(participant, Ids{1, 2});
    const std::string command = support::binary_path("distlog") + " tail --domain 127 --count 1";
    const std::vector<std::string> on_terminal{"/usr/bin/script", "-qec", command, "/dev/null"};
    ChildProcess coloured(on_terminal, {{"TERM", "xterm"}, {"NO_COLOR", ""}});
    ChildProcess refused(on_terminal, {{"TERM", "xterm"}, {"NO_COLOR", "1"}});
    ChildProcess piped(tail_command(127, {"--count", "1"}), {{"TERM", "xterm"}});
    ASSERT_TRUE(sender.wait_for_readers(3));
    ASSERT_TRUE(sender.write(1, 300, "in red"));
    EXPECT_TRUE(contains(coloured.read_line_with("in red").value_or(""), "\x1b[31merror  \x1b[0m"));
    EXPECT_FALSE(contains(refused.read_line_with("in red").value_or("\x1b"), "\x1b"));
    EXPECT_FALSE(contains(piped.read_line_with("in red").value_or("\x1b"), "\x1b"));
}

}  // namespace
