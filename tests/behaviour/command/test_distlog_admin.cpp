// SPDX-License-Identifier: Apache-2.0
// distlog ls and distlog set, as a user runs them, and their answers to wrong arguments.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <string>
#include <vector>

#include "support/logger/fake_peer.h"
#include "support/logger/log_app.h"
#include "support/logger/monitor.h"
#include "support/platform/process.h"

namespace {

using support::ChildProcess;
using support::FakeParticipant;
using support::FakeResponder;
using support::Ids;
using support::LogApp;
using support::Monitor;
using support::StateSample;
using Stream = ChildProcess::Stream;

std::vector<std::string> command(const std::vector<std::string> &arguments) {
    std::vector<std::string> result{support::binary_path("distlog")};
    result.insert(result.end(), arguments.begin(), arguments.end());
    return result;
}

bool contains(const std::string &text, const std::string &part) {
    return text.find(part) != std::string::npos;
}

bool start(LogApp &app, int domain, const std::string &kind, int filter = 600) {
    return app.run("option domain " + std::to_string(domain)) &&
           app.run("option filter " + std::to_string(filter)) && app.run("option kind " + kind) &&
           app.run("create");
}

// Returns the text that the tool prints for an identity.
std::string text(const Ids &ids) {
    return std::to_string(ids.host) + ":" + std::to_string(ids.app);
}

Ids ids_of(Monitor &monitor, const std::string &kind) {
    monitor.wait_for_state([&](const StateSample &s) { return s.kind == kind; });
    const std::vector<StateSample> &all = monitor.states();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const StateSample &s) { return s.kind == kind; });
    return found == all.end() ? Ids{} : found->sender;
}

TEST(DistlogUsage, WrongArgumentsGetOneLineAndExitCode2) {
    const struct {
        std::vector<std::string> arguments;
        const char *mentioned;
    } cases[] = {
        {{}, "subcommand"},
        {{"frobnicate"}, "'frobnicate' is not a subcommand"},
        {{"tail", "extra"}, "extra"},
        {{"tail", "--frobnicate"}, "--frobnicate"},
        {{"tail", "--level", "loud"}, "'loud' is not a level"},
        {{"tail", "--level", "-1"}, "'-1' is not a level"},
        {{"tail", "--level"}, "--level"},
        {{"tail", "--app", "12"}, "'12' is not HOST:APP"},
        {{"tail", "--app", "12:x"}, "'12:x' is not HOST:APP"},
        {{"tail", "--count", "0"}, "--count"},
        {{"tail", "--count", "many"}, "--count"},
        {{"tail", "--timeout", "soon"}, "'soon' is not a duration"},
        {{"tail", "--timeout", "0"}, "'0' is not a duration"},
        {{"tail", "--domain", "231"}, "--domain"},
        {{"tail", "--domain", "-1"}, "--domain"},
        {{"tail", "--domain", "x"}, "--domain"},
        {{"ls", "--timeout", "-1"}, "'-1' is not a duration"},
        {{"ls", "extra"}, "extra"},
        {{"set"}, "subcommand"},
        {{"set", "frobnicate"}, "'frobnicate' is not a subcommand"},
        {{"set", "level"}, "APP"},
        {{"set", "level", "all"}, "LEVEL"},
        {{"set", "level", "all", "loud"}, "'loud' is not a level"},
        {{"set", "level", "all", "-100"}, "'-100' is not a level"},
        {{"set", "level", "all", "info", "--for", "never"}, "'never' is not a duration"},
        {{"set", "verbosity", "all"}, "CATEGORY=VERBOSITY"},
        {{"set", "verbosity", "all", "api"}, "'api' has no '='"},
        {{"set", "verbosity", "all", "api=loud"}, "'loud' is not a verbosity"},
        {{"set", "verbosity", "all", "network=error"}, "'network' is not a category"},
        {{"set", "verbosity", "all", "api=error", "api=silent"}, "'api' is given twice"},
        {{"set", "verbosity", "all", "all=error", "api=silent"}, "'api' is given twice"},
        {{"set", "format", "all", "pretty"}, "'pretty' is not a print format"},
        {{"set", "format", "all", "7"}, "'7' is not a print format"},
    };
    for (const auto &wrong : cases) {
        std::string shown;
        for (const std::string &argument : wrong.arguments) {
            shown += argument + " ";
        }
        SCOPED_TRACE(shown);
        ChildProcess distlog(command(wrong.arguments));
        EXPECT_EQ(distlog.wait(), 2);
        EXPECT_TRUE(distlog.lines().empty());
        const std::vector<std::string> errors = distlog.lines(Stream::kErr);
        ASSERT_EQ(errors.size(), 1U);
        EXPECT_EQ(errors[0].rfind("distlog: ", 0), 0U) << errors[0];
        EXPECT_TRUE(contains(errors[0], wrong.mentioned)) << errors[0];
    }
}

TEST(DistlogUsage, HelpAndVersionAreNoErrors) {
    const std::vector<std::vector<std::string>> cases{
        {"--help"},        {"tail", "--help"},         {"ls", "--help"},
        {"set", "--help"}, {"set", "level", "--help"}, {"--version"}};
    for (const std::vector<std::string> &arguments : cases) {
        ChildProcess distlog(command(arguments));
        EXPECT_EQ(distlog.wait(), 0) << arguments.front();
        EXPECT_FALSE(distlog.lines().empty());
        EXPECT_TRUE(distlog.lines(Stream::kErr).empty());
    }
}

TEST(DistlogList, AnEmptyDomainHasNoLoggers) {
    ChildProcess ls(command({"ls", "--domain", "128", "--timeout", "0.5"}));
    EXPECT_EQ(ls.wait(), 0);
    EXPECT_TRUE(ls.lines().empty());
    EXPECT_EQ(ls.lines(Stream::kErr), std::vector<std::string>{"distlog: no logger in domain 128"});
}

TEST(DistlogList, EveryLoggerHasALine) {
    LogApp first;
    LogApp second;
    ASSERT_TRUE(start(first, 129, "alpha", 350));
    ASSERT_TRUE(start(second, 129, "beta", 700));
    Monitor monitor({.domain = 129, .log = false});
    const Ids alpha = ids_of(monitor, "alpha");
    const Ids beta = ids_of(monitor, "beta");

    ChildProcess ls(command({"ls", "--domain", "129"}));
    ASSERT_EQ(ls.wait(), 0);
    const std::vector<std::string> lines = ls.lines();
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0].rfind("APPLICATION ", 0), 0U) << lines[0];
    const std::string alpha_line = contains(lines[1], "alpha") ? lines[1] : lines[2];
    for (const std::string &part :
         {text(alpha), std::string(" 129 "), std::string(" operational "), std::string(" 350 "),
          std::string(" default "), std::string("all=error")}) {
        EXPECT_TRUE(contains(alpha_line, part)) << part << " in " << alpha_line;
    }

    ChildProcess json(command({"ls", "--domain", "129", "--json"}));
    ASSERT_EQ(json.wait(), 0);
    const std::vector<std::string> objects = json.lines();
    ASSERT_EQ(objects.size(), 2U);
    const std::string beta_line = contains(objects[0], "beta") ? objects[0] : objects[1];
    EXPECT_EQ(beta_line, "{\"host_id\":" + std::to_string(beta.host) +
                             ",\"app_id\":" + std::to_string(beta.app) +
                             ",\"application_kind\":\"beta\",\"domain\":129,\"state\":"
                             "\"operational\",\"filter_level\":700,\"filter_level_name\":\"debug\","
                             "\"verbosities\":{\"platform\":\"error\",\"communication\":\"error\","
                             "\"database\":\"error\",\"entities\":\"error\",\"api\":\"error\"},"
                             "\"print_format\":\"default\"}");
}

// True once the watch tells `change` of the logger. A logger that is just being created may be
// shown before it is operational.
bool tells(ChildProcess &watch, const std::string &logger, const std::string &change) {
    while (const auto line = watch.read_line_with(logger)) {
        if (contains(*line, change)) {
            return true;
        }
    }
    return false;
}

TEST(DistlogList, WatchTellsOfEveryChangeAndEveryEnd) {
    ChildProcess watch(command({"ls", "--domain", "130", "--watch"}));
    LogApp polite;
    LogApp crashing;
    ASSERT_TRUE(start(polite, 130, "polite"));
    EXPECT_TRUE(tells(watch, "polite", " operational "));
    ASSERT_TRUE(start(crashing, 130, "crashing"));
    ASSERT_TRUE(watch.read_line_with("crashing"));

    ChildProcess set(command({"set", "level", "polite", "trace", "--domain", "130"}));
    ASSERT_EQ(set.wait(), 0);
    EXPECT_TRUE(tells(watch, "polite", " trace "));

    ASSERT_TRUE(polite.run("series 7 300"));
    ASSERT_TRUE(crashing.run("series 3 300"));
    // All of these have been published once a reader that comes now has the last ones.
    Monitor monitor({.domain = 130, .commands = false});
    ASSERT_TRUE(monitor.wait_for_log(10));
    ASSERT_TRUE(polite.run("finalize"));
    EXPECT_TRUE(contains(watch.read_line_with("nonoperational").value_or(""), "polite"));
    EXPECT_TRUE(contains(watch.read_line_with("was finalised").value_or(""), "(last message 7)"));
    // Its lease has to run out first.
    crashing.say("die");
    EXPECT_TRUE(contains(watch
                             .read_line_with("gone without having been finalised", Stream::kOut,
                                             std::chrono::seconds(60))
                             .value_or(""),
                         "(last message 3)"));
    watch.signal(SIGINT);
    EXPECT_EQ(watch.wait(), 0);
}

TEST(DistlogSet, ALevelIsSetByKindIdentityOrForAll) {
    LogApp first;
    LogApp second;
    ASSERT_TRUE(start(first, 131, "alpha"));
    ASSERT_TRUE(start(second, 131, "beta"));
    Monitor monitor({.domain = 131, .log = false});
    const Ids alpha = ids_of(monitor, "alpha");
    const Ids beta = ids_of(monitor, "beta");
    const auto level_of = [&](const Ids &ids, int level) {
        return support::eventually([&] {
            const std::vector<StateSample> &all = monitor.states();
            const auto last = std::find_if(all.rbegin(), all.rend(), [&](const StateSample &s) {
                return s.valid && s.sender == ids;
            });
            return last != all.rend() && last->filter_level == level;
        });
    };

    ChildProcess by_kind(command({"set", "level", "alpha", "Trace", "--domain", "131"}));
    EXPECT_EQ(by_kind.wait(), 0);
    EXPECT_EQ(by_kind.lines(),
              std::vector<std::string>{"alpha (" + text(alpha) + "): level set to trace"});
    EXPECT_TRUE(level_of(alpha, 800));
    EXPECT_TRUE(level_of(beta, 600));

    ChildProcess by_ids(command({"set", "level", text(beta), "123", "--domain", "131"}));
    EXPECT_EQ(by_ids.wait(), 0);
    ASSERT_EQ(by_ids.lines().size(), 1U);
    EXPECT_TRUE(contains(by_ids.lines()[0], text(beta))) << by_ids.lines()[0];
    EXPECT_TRUE(contains(by_ids.lines()[0], ": level set to 123")) << by_ids.lines()[0];
    EXPECT_TRUE(level_of(beta, 123));

    ChildProcess all(command({"set", "level", "all", "silent", "--domain", "131"}));
    EXPECT_EQ(all.wait(), 0);
    EXPECT_EQ(all.lines().size(), 2U);
    EXPECT_TRUE(level_of(alpha, 0));
    EXPECT_TRUE(level_of(beta, 0));
}

TEST(DistlogSet, VerbosityAndFormatReachTheMiddlewaresLogger) {
    LogApp app;
    ASSERT_TRUE(start(app, 132, "alpha"));
    Monitor monitor({.domain = 132, .log = false});
    const Ids alpha = ids_of(monitor, "alpha");
    ChildProcess verbosity(
        command({"set", "verbosity", "alpha", "api=silent", "communication=status-remote",
                 "database=5", "--domain", "132"}));
    EXPECT_EQ(verbosity.wait(), 0);
    EXPECT_EQ(verbosity.lines(),
              std::vector<std::string>{"alpha (" + text(alpha) +
                                       "): verbosity set: api=silent communication=status_remote "
                                       "database=status_all"});
    EXPECT_TRUE(monitor.wait_for_state([](const StateSample &s) {
        return s.verbosities[0].verbosity == VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_ERROR &&
               s.verbosities[1].verbosity == VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_REMOTE &&
               s.verbosities[2].verbosity == VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL &&
               s.verbosities[4].verbosity == VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_SILENT;
    }));
    ChildProcess everything(
        command({"set", "verbosity", "alpha", "all=warning", "--domain", "132"}));
    EXPECT_EQ(everything.wait(), 0);
    EXPECT_TRUE(monitor.wait_for_state([](const StateSample &s) {
        return std::all_of(s.verbosities.begin(), s.verbosities.end(), [](const auto &v) {
            return v.verbosity == VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_WARNING;
        });
    }));
    ChildProcess format(
        command({"set", "format", "alpha", "verbose-timestamped", "--domain", "132"}));
    EXPECT_EQ(format.wait(), 0);
    EXPECT_EQ(format.lines(),
              std::vector<std::string>{"alpha (" + text(alpha) +
                                       "): print format set to verbose_timestamped"});
    EXPECT_TRUE(monitor.wait_for_state([](const StateSample &s) {
        return s.format == VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_VERBOSE_TIMESTAMPED;
    }));
}

TEST(DistlogSet, SilenceIsAnErrorAndIsNamed) {
    ChildProcess nobody(
        command({"set", "level", "1:2", "info", "--domain", "133", "--timeout", "0.5"}));
    EXPECT_EQ(nobody.wait(), 1);
    EXPECT_EQ(nobody.lines(), std::vector<std::string>{"1:2: no answer within 0.5 s"});
    ChildProcess unknown(
        command({"set", "level", "alpha", "info", "--domain", "133", "--timeout", "0.5"}));
    EXPECT_EQ(unknown.wait(), 1);
    EXPECT_EQ(unknown.lines(Stream::kErr),
              std::vector<std::string>{"distlog: no logger 'alpha' in domain 133"});
    ChildProcess all(
        command({"set", "level", "all", "info", "--domain", "133", "--timeout", "0.5"}));
    EXPECT_EQ(all.wait(), 1);
    EXPECT_EQ(all.lines(Stream::kErr),
              std::vector<std::string>{"distlog: no logger in domain 133"});
}

TEST(DistlogSet, ALoggerThatTakesNoCommandsIsNamedBesideTheOthers) {
    LogApp deaf;
    LogApp hearing;
    ASSERT_TRUE(deaf.run("option remote 0"));
    ASSERT_TRUE(start(deaf, 134, "deaf"));
    ASSERT_TRUE(start(hearing, 134, "hearing"));
    ChildProcess set(
        command({"set", "level", "all", "debug", "--domain", "134", "--timeout", "3"}));
    EXPECT_EQ(set.wait(), 1);
    const std::vector<std::string> lines = set.lines();
    ASSERT_EQ(lines.size(), 2U);
    const bool deaf_first = lines[0].rfind("deaf ", 0) == 0;
    EXPECT_TRUE(contains(lines[deaf_first ? 0 : 1], ": no answer within 3 s"));
    EXPECT_TRUE(contains(lines[deaf_first ? 1 : 0], ": level set to debug"));
}

TEST(DistlogSet, RefusalsAreToldInTheLoggersWords) {
    const FakeParticipant participant(135);
    FakeResponder responder(participant);
    ChildProcess refused(command({"set", "level", "-3:4", "info", "--domain", "135"}));
    ASSERT_TRUE(responder.answer_one(VUR_DL_COMMAND_RESULT_ERROR, "not \x1b[1mtoday"));
    EXPECT_EQ(refused.wait(), 1);
    EXPECT_EQ(refused.lines(), std::vector<std::string>{"-3:4: refused: not \\x1b[1mtoday"});
}

TEST(DistlogSet, ACommandThatALoggerDoesNotKnowIsSaidSo) {
    const FakeParticipant participant(136);
    FakeResponder responder(participant);
    ChildProcess unknown(command({"set", "format", "-3:4", "debug", "--domain", "136"}));
    ASSERT_TRUE(responder.answer_one(VUR_DL_COMMAND_RESULT_NOT_SUPPORTED, ""));
    EXPECT_EQ(unknown.wait(), 1);
    EXPECT_EQ(unknown.lines(), std::vector<std::string>{"-3:4: does not know this command"});
}

TEST(DistlogSet, ALevelForAWhileIsSetBack) {
    LogApp app;
    ASSERT_TRUE(start(app, 137, "alpha", 450));
    Monitor monitor({.domain = 137, .log = false});
    const std::string name = "alpha (" + text(ids_of(monitor, "alpha")) + ")";
    ChildProcess set(command({"set", "level", "alpha", "trace", "--for", "1s", "--domain", "137"}));
    EXPECT_EQ(set.read_line(), name + ": level set to trace (was 450)");
    EXPECT_TRUE(monitor.wait_for_state([](const StateSample &s) { return s.filter_level == 800; }));
    EXPECT_EQ(set.wait(), 0);
    EXPECT_EQ(set.read_line(), name + ": level set back to 450");
    EXPECT_TRUE(support::eventually([&] { return monitor.last_state().filter_level == 450; }));
}

TEST(DistlogSet, AnInterruptionSetsTheLevelBackEarly) {
    LogApp app;
    ASSERT_TRUE(start(app, 138, "alpha"));
    Monitor monitor({.domain = 138, .log = false});
    const std::string name = "alpha (" + text(ids_of(monitor, "alpha")) + ")";
    ChildProcess set(command({"set", "level", "alpha", "trace", "--for", "1h", "--domain", "138"}));
    EXPECT_EQ(set.read_line(), name + ": level set to trace (was info)");
    set.signal(SIGINT);
    EXPECT_EQ(set.wait(), 0);
    EXPECT_EQ(set.read_line(), name + ": level set back to info");
    EXPECT_TRUE(support::eventually([&] { return monitor.last_state().filter_level == 600; }));
}

TEST(DistlogSet, ALevelThatSomebodyElseHasChangedIsLeftAlone) {
    LogApp app;
    ASSERT_TRUE(start(app, 139, "alpha"));
    ChildProcess for_a_while(
        command({"set", "level", "alpha", "trace", "--for", "1h", "--domain", "139"}));
    ASSERT_TRUE(for_a_while.read_line_with("level set to trace"));
    ChildProcess other(command({"set", "level", "alpha", "error", "--domain", "139"}));
    ASSERT_EQ(other.wait(), 0);
    // There is nothing left to wait for.
    EXPECT_TRUE(for_a_while.read_line_with("level is error by now, left as it is"));
    EXPECT_EQ(for_a_while.wait(), 0);
}

}  // namespace
