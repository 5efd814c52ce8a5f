// SPDX-License-Identifier: Apache-2.0
// distlog check, as a user runs it: the errors that it finds, with place and remedy, its report on
// a document that is right, and its agreement with the library.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "support/config/distlog_check.h"
#include "support/platform/pubsub.h"

namespace {

using support::check;
using support::contains;
using support::joined;
using support::Json;
using support::Lines;
using support::Outcome;

class DistlogCheck : public support::DistlogCheckTest {};

struct Row {
    std::string content;
    std::string expected;  // "line: severity: part of the text"
};

// The first line of standard error that names this line and severity and has this text.
testing::AssertionResult reports(const Outcome &outcome, const std::string &expected,
                                 const std::string &name = "a.xml") {
    const std::size_t colon = expected.find(": ", expected.find(": ") + 2);
    const std::string place = name + ":" + expected.substr(0, colon + 2);
    const std::string text = expected.substr(colon + 2);
    for (const std::string &line : outcome.err) {
        if (line.rfind(place, 0) == 0 && contains(line, text)) {
            return testing::AssertionSuccess();
        }
    }
    return testing::AssertionFailure() << "no " << place << "..." << text << " in\n"
                                       << joined(outcome.err);
}

TEST_F(DistlogCheck, TheExampleIsFine) {
    const char *source = std::getenv("VUR_DL_TEST_SOURCE_DIR");
    ASSERT_NE(source, nullptr);
    const std::string path = std::string(source) + "/examples/distlog.xml";
    const Outcome outcome = check({path});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(outcome.err.empty()) << joined(outcome.err);
    ASSERT_FALSE(outcome.out.empty());
    EXPECT_EQ(outcome.out.front(), path + ": valid");
}

TEST_F(DistlogCheck, TextShowsEveryOptionWithItsPlace) {
    write_document(
        logger("<filter_level>650</filter_level>\n<thread>\n"
               "<mask>stdio | REALTIME_PRIORITY</mask>\n<priority>-5</priority>\n"
               "<cpu_list><element>0</element><element>0x2</element></cpu_list>\n"
               "</thread>"));
    const Outcome outcome = check({"a.xml"});
    ASSERT_EQ(outcome.code, 0) << joined(outcome.err);
    const Lines expected{"a.xml: valid",
                         "",
                         "Options (<distributed_logger> in line 2)",
                         "  enabled                      line 3   true",
                         "  filter_level                 line 4   650",
                         "  queue_size                   default  128 messages",
                         "  echo_to_stdout               default  true",
                         "  log_infrastructure_messages  default  true",
                         "  thread/mask                  line 6   STDIO | REALTIME_PRIORITY",
                         "  thread/priority              line 7   -5",
                         "  thread/stack_size            default  the system's",
                         "  thread/cpu_list              line 8   0, 2",
                         "  thread/cpu_rotation          default  CPU_NO_ROTATION",
                         "  remote_administration        code     true",
                         "  domain_id                    code     0",
                         "  domain_participant           code     one of the logger's own",
                         "  application_kind             code     none",
                         "",
                         "QoS profiles, in the order in which they are loaded",
                         "  a.xml: no profiles",
                         "  in force: none"};
    ASSERT_GE(outcome.out.size(), expected.size());
    EXPECT_EQ(joined(Lines(outcome.out.begin(),
                           outcome.out.begin() + static_cast<std::ptrdiff_t>(expected.size()))),
              joined(expected));
}

TEST_F(DistlogCheck, JsonHasValuesAndPlaces) {
    write_document(
        logger("<filter_level>TRACE</filter_level>\n"
               "<thread><stack_size>0x4000</stack_size></thread>"));
    const Json report = json();
    EXPECT_EQ(report["file"], "a.xml");
    EXPECT_EQ(report["verdict"], "valid");
    EXPECT_EQ(report["valid"], true);
    EXPECT_EQ(report["enabled"], true);
    EXPECT_TRUE(report["problems"].empty());
    const Json &options = report["options"];
    EXPECT_EQ(options["filter_level"], (Json{{"value", 800}, {"source", "document"}, {"line", 4}}));
    EXPECT_EQ(options["thread/stack_size"]["value"], 16384);
    EXPECT_EQ(options["queue_size"],
              (Json{{"value", 128}, {"source", "default"}, {"line", nullptr}}));
    EXPECT_EQ(options["thread/priority"]["value"], nullptr);
    EXPECT_EQ(options["remote_administration"]["source"], "code");
    EXPECT_EQ(report["entities"].size(), 11U);
}

// ---- What is wrong ------------------------------------------------------------------------------

TEST_F(DistlogCheck, ErrorsNameThePlaceAndWhatWouldBeRight) {
    const Row rows[] = {
        {logger("<filter_level>INFOO</filter_level>"),
         "4: error: wrong value of <filter_level>: \"INFOO\"; expected: SILENT, FATAL, SEVERE"},
        {logger("<filter_level> INFO</filter_level>"), "4: error: wrong value of <filter_level>"},
        {logger("<filter_level></filter_level>"), "4: error: wrong value of <filter_level>: \"\""},
        {logger("<echo_to_stdout>yes</echo_to_stdout>"),
         "4: error: wrong value of <echo_to_stdout>: \"yes\"; expected: true, false, 1, 0"},
        {logger("<queue_size>0</queue_size>"),
         "4: error: wrong value of <queue_size>: \"0\"; expected: a number from 1"},
        {logger("<queue_size>99999999999999999999</queue_size>"),
         "4: error: wrong value of <queue_size>"},
        {logger("<thread>\n<mask>STDIO|</mask></thread>"),
         "5: error: wrong value of <mask>: \"STDIO|\"; expected: MASK_DEFAULT, FLOATING_POINT"},
        {logger("<thread><priority>high</priority></thread>"),
         "4: error: wrong value of <priority>: \"high\"; expected: a decimal number, or "
         "THREAD_PRIORITY_DEFAULT"},
        {logger("<thread><stack_size>-1</stack_size></thread>"),
         "4: error: wrong value of <stack_size>: \"-1\"; expected: a number of bytes"},
        {logger("<thread><cpu_list>\n<element>x</element></cpu_list></thread>"),
         "5: error: wrong value of <element>: \"x\"; expected: the number of a processor"},
        {logger("<thread><cpu_rotation>1</cpu_rotation></thread>"),
         "4: error: wrong value of <cpu_rotation>: \"1\"; expected: CPU_NO_ROTATION"},
        {"<distributed_logger/><distributed_logger><queue_size>x</queue_size>"
         "</distributed_logger>",
         "2: error: wrong value of <queue_size>"},
        {logger("") + profile("<data_writer_qos/>"),
         "6: error: unknown element <data_writer_qos> in <qos_profile>; expected: "
         "domain_participant_qos"},
        {logger("") + profile("<datawriter_qos><history>\n<kind>KEEP_SOME</kind></history>"
                              "</datawriter_qos>"),
         "7: error: wrong value of <kind>: \"KEEP_SOME\"; expected: KEEP_LAST_HISTORY_QOS"},
        {logger("") + profile("", "base_name=\"Q\""), "5: error: unknown base profile L::Q"},
        {logger("") + "<qos_library name=\"L\">" + logger("") + "</qos_library>",
         "5: error: unknown element <distributed_logger> in <qos_library>"},
        {"<distributed_logger>\n<enabled>true\n</distributed_logger>",
         "4: error: mismatched tag (<enabled> is open since line 3); the tag that ends in this "
         "line "
         "has another name"},
    };
    int domain = 194;
    for (const Row &row : rows) {
        SCOPED_TRACE(row.content);
        write_document(row.content);
        const Outcome outcome = check({"a.xml"});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_TRUE(reports(outcome, row.expected));
        ASSERT_EQ(outcome.out.size(), 1U) << joined(outcome.out);
        EXPECT_EQ(outcome.out.front(), "a.xml: not valid, 1 error");
        EXPECT_FALSE(library_starts(domain));
    }
}

TEST_F(DistlogCheck, EveryWrongValueIsReportedAtOnce) {
    write_document(logger("<filter_level>x</filter_level>\n<queue_size>x</queue_size>\n"
                          "<echo_to_stdout>x</echo_to_stdout>") +
                   profile("<x/>"));
    const Outcome outcome = check({"a.xml"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.err.size(), 4U) << joined(outcome.err);
    EXPECT_EQ(outcome.out, Lines{"a.xml: not valid, 4 errors"});
}

TEST_F(DistlogCheck, DocumentsThatAreNoneAreErrors) {
    const struct {
        std::string bytes;
        std::string expected;
    } rows[] = {
        {"", "a.xml:1: error: no element found"},
        {"enabled=true\n", "a.xml:1: error: "},
        {"<distributed_logger/>",
         "a.xml:1: error: the root element is <distributed_logger>; "
         "expected: <dds>"},
        {"<?xml version=\"1.0\" encoding=\"KOI8-R\"?><dds/>",
         "a.xml:1: error: unknown encoding; expected: UTF-8, UTF-16, ISO-8859-1, US-ASCII"},
        {"<dds>\n<!-- \xff\xfe -->\n</dds>", "a.xml:2: error: not well-formed"},
        {"<!DOCTYPE dds [<!ENTITY a \"b\">]><dds/>", "a.xml:1: error: document type"},
    };
    for (const auto &row : rows) {
        write("a.xml", row.bytes);
        const Outcome outcome = check({"a.xml"});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_TRUE(contains(joined(outcome.err), row.expected))
            << row.expected << " in " << joined(outcome.err);
    }
    const Outcome missing = check({"missing.xml"});
    EXPECT_EQ(missing.code, 1);
    EXPECT_EQ(missing.err,
              Lines{"missing.xml: error: cannot open the file: No such file or directory"});
    EXPECT_EQ(check({"."}).code, 1);
}

TEST_F(DistlogCheck, WhatTheLibraryIgnoresIsAWarning) {
    const Row rows[] = {
        {logger("<filter_lvl>INFO</filter_lvl>"),
         "4: warning: unknown element <filter_lvl> in <distributed_logger> has no effect; "
         "expected: enabled, filter_level, queue_size, echo_to_stdout, "
         "log_infrastructure_messages, thread"},
        {logger("<priority>5</priority>"),
         "4: warning: element <priority> in <distributed_logger> does not belong there, but in "
         "<thread>"},
        {logger("<thread><prio>5</prio></thread>"),
         "4: warning: unknown element <prio> in <thread> has no effect; expected: mask, priority, "
         "stack_size, cpu_list, cpu_rotation"},
        {logger("<echo_to_stdout>true<a/></echo_to_stdout>"),
         "4: warning: element <a> in <echo_to_stdout> has no effect; expected: a value"},
        {logger("") + "text", "1: warning: text in <dds> has no effect: \"text\""},
        {logger("<thread>5</thread>"), "4: warning: text in <thread> has no effect: \"5\""},
        {logger("<queue_size unit=\"1\">5</queue_size>"),
         "4: warning: unknown attribute \"unit\" of <queue_size> has no effect"},
        {logger("<queue_size>5</queue_size>\n<queue_size>6</queue_size>"),
         "5: warning: <queue_size> is given again; the last one holds"},
        {logger("<queue_size>1000 messages</queue_size>"),
         "4: warning: <queue_size>: \"1000 messages\" is read as 1000"},
        {logger("<filter_level>0x10</filter_level>"),
         "4: warning: <filter_level>: \"0x10\" is read as 0"},
        {logger("<queue_size>4294967297</queue_size>"), "4: warning: <queue_size>"},
        {logger("") + "<distributed_loger/>",
         "5: warning: unknown element <distributed_loger> in <dds> has no effect; expected: "
         "distributed_logger, qos_library"},
        {logger("") + "<distributed_logger/>",
         "5: warning: this <distributed_logger> has no effect: the first one, in line 2, holds"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.content);
        write_document(row.content);
        const Outcome outcome = check({"a.xml"});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_TRUE(reports(outcome, row.expected));
        ASSERT_FALSE(outcome.out.empty());
        EXPECT_EQ(outcome.out.front(), "a.xml: valid, 1 warning") << joined(outcome.err);
    }
}

TEST_F(DistlogCheck, WhatIsReadAsItStandsIsFine) {
    for (const char *content :
         {"<queue_size> 010 </queue_size>", "<queue_size>0x7fffffff</queue_size>",
          "<filter_level>2147483647</filter_level>",
          "<thread><priority>+7</priority><stack_size>0</stack_size></thread>",
          "<thread><priority>max_priority</priority></thread>",
          "<thread><cpu_list><element>0</element></cpu_list></thread><thread><cpu_list>"
          "<element>1</element></cpu_list></thread>"}) {
        SCOPED_TRACE(content);
        write_document(logger(content));
        const Outcome outcome = check({"a.xml"});
        EXPECT_EQ(outcome.code, 0);
        EXPECT_TRUE(outcome.err.empty()) << joined(outcome.err);
    }
}

TEST_F(DistlogCheck, ALoggerThatStaysOffIsANote) {
    const struct {
        std::string content;
        std::string note;
        std::string verdict;
    } rows[] = {
        {"<distributed_logger/>",
         "a.xml:2: note: the logger stays off: there is no "
         "<enabled>true</enabled>",
         "a.xml: valid, the logger stays off"},
        {"<distributed_logger><enabled>0</enabled></distributed_logger>",
         "a.xml:2: note: the logger stays off: <enabled> is false",
         "a.xml: valid, the logger stays off"},
        {profile(""),
         "a.xml: note: no element <distributed_logger>: no logger is started from "
         "this document",
         "a.xml: valid, starts no logger"},
    };
    for (const auto &row : rows) {
        write_document(row.content);
        const Outcome outcome = check({"a.xml"});
        EXPECT_EQ(outcome.code, 0);
        EXPECT_EQ(outcome.err, Lines{row.note});
        ASSERT_FALSE(outcome.out.empty());
        EXPECT_EQ(outcome.out.front(), row.verdict);
    }
}

// ---- How it is used -----------------------------------------------------------------------------

TEST_F(DistlogCheck, StandardInputIsADocument) {
    Outcome outcome = check({"-"}, {},
                            "<dds><distributed_logger><enabled>1</enabled>"
                            "</distributed_logger></dds>");
    EXPECT_EQ(outcome.code, 0) << joined(outcome.err);
    ASSERT_FALSE(outcome.out.empty());
    EXPECT_EQ(outcome.out.front(), "stdin: valid");
    outcome = check({"-"}, {}, "<dds>\n<qos_library name=\"L\">\n<x/></qos_library></dds>");
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.err, Lines{"stdin:3: error: unknown element <x> in <qos_library>; expected: "
                                 "qos_profile"});
}

TEST_F(DistlogCheck, EachDocumentForItself) {
    write_document(logger("") + profile(""));
    write_document(logger("<x/>") + profile(""), "b.xml");
    const Outcome text = check({"a.xml", "b.xml"});
    EXPECT_EQ(text.code, 1);
    EXPECT_TRUE(contains(joined(text.out), "a.xml: valid\n")) << joined(text.out);
    EXPECT_TRUE(contains(joined(text.out), "\n\nb.xml: valid, 1 warning\n")) << joined(text.out);
    const Outcome json = check({"--json", "a.xml", "b.xml", "missing.xml"});
    EXPECT_EQ(json.code, 1);
    EXPECT_TRUE(json.err.empty());
    ASSERT_EQ(json.out.size(), 3U);
    EXPECT_EQ(Json::parse(json.out[0])["problems"].size(), 0U);
    EXPECT_EQ(Json::parse(json.out[1])["problems"][0],
              (Json{{"severity", "warning"},
                    {"file", "b.xml"},
                    {"line", 4},
                    {"message",
                     "unknown element <x> in <distributed_logger> has no effect; "
                     "expected: enabled, filter_level, queue_size, echo_to_stdout, "
                     "log_infrastructure_messages, thread"}}));
    const Json missing = Json::parse(json.out[2]);
    EXPECT_EQ(missing["valid"], false);
    EXPECT_EQ(missing["options"], nullptr);
    EXPECT_EQ(missing["entities"], nullptr);
}

TEST_F(DistlogCheck, AllShowsEveryPolicy) {
    write_document(logger(""));
    const std::string some = joined(check({"a.xml"}).out);
    const std::string all = joined(check({"--all", "a.xml"}).out);
    EXPECT_FALSE(contains(some, "  lifespan "));
    EXPECT_TRUE(contains(all, "  lifespan                     default  infinite\n")) << all;
    EXPECT_TRUE(contains(all, "  latency_budget               logger   infinite\n")) << all;
}

TEST_F(DistlogCheck, TheEnginesConfigurationIsChecked) {
    write_document(logger(""));
    const struct {
        std::string uri;
        std::string reason;
    } rows[] = {
        {"file:///nonexistent.xml", "can't open configuration file file:///nonexistent.xml"},
        {"<CycloneDDS><Domain Id='any'><General><Interfaces><NetworkInterface name='nosuch0'/>"
         "</Interfaces></General></Domain></CycloneDDS>",
         "nosuch0: does not match an available interface."},
        {"<CycloneDDS><Domain Id='any'><Nonsense/></Domain></CycloneDDS>",
         "config: //CycloneDDS/Domain: Nonsense: unknown element (CYCLONEDDS_URI+0 line 1)"}};
    for (const auto &row : rows) {
        const Outcome outcome = check({"a.xml"}, {{"CYCLONEDDS_URI", row.uri}});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_EQ(outcome.err,
                  Lines{"a.xml: error: the logger does not start with the engine's configuration "
                        "(CYCLONEDDS_URI): " +
                        row.reason});
        EXPECT_EQ(outcome.out, Lines{"a.xml: not valid, 1 error"});
    }
}

TEST_F(DistlogCheck, TheEnginesConfigurationIsThatOfTheDomain) {
    write_document(logger(""));
    const support::ChildProcess::Environment environment{
        {"CYCLONEDDS_URI",
         "<CycloneDDS><Domain Id='5'><General><Interfaces><NetworkInterface name='nosuch0'/>"
         "</Interfaces></General></Domain><Domain Id='6'><General><Interfaces><NetworkInterface "
         "name='lo' multicast='false'/></Interfaces></General></Domain></CycloneDDS>"}};
    EXPECT_EQ(check({"--domain", "5", "a.xml"}, environment).code, 1);
    EXPECT_EQ(check({"--domain", "6", "a.xml"}, environment).code, 0);
    EXPECT_NE(check({"--domain", "231", "a.xml"}, environment).code, 0);
}

// The application is running, and has the ports that the configuration gives it.
TEST_F(DistlogCheck, TheEnginesConfigurationIsTriedBesideTheApplication) {
    write_document(logger(""));
    const support::ChildProcess::Environment environment{
        {"CYCLONEDDS_URI",
         "<CycloneDDS><Domain Id='any'><General><Interfaces><NetworkInterface name='lo' "
         "multicast='false'/></Interfaces><AllowMulticast>false</AllowMulticast></General>"
         "<Discovery><ParticipantIndex>90</ParticipantIndex></Discovery></Domain></CycloneDDS>"}};
    setenv(environment[0].first.c_str(), environment[0].second.c_str(), 1);
    const support::Node application(77);
    support::ChildProcess rival({support::binary_path("distlog"), "ls", "--domain", "77"},
                                environment);
    EXPECT_EQ(rival.wait(), 1);
    EXPECT_TRUE(
        contains(joined(rival.lines(support::ChildProcess::Stream::kErr)), "unicast sockets"));
    EXPECT_EQ(check({"--domain", "77", "a.xml"}, environment).code, 0);
}

// A socket that the engine is told to look for others at.
class Listener {
  public:
    Listener() : socket_(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        bind(socket_, reinterpret_cast<sockaddr *>(&address), size);
        getsockname(socket_, reinterpret_cast<sockaddr *>(&address), &size);
        port_ = ntohs(address.sin_port);
    }
    ~Listener() { close(socket_); }
    Listener(const Listener &) = delete;
    Listener &operator=(const Listener &) = delete;

    std::string configuration() const {
        return "<CycloneDDS><Domain Id='any'><General><Interfaces><NetworkInterface name='lo' "
               "multicast='false'/></Interfaces><AllowMulticast>false</AllowMulticast></General>"
               "<Discovery><ParticipantIndex>auto</ParticipantIndex>"
               "<MaxAutoParticipantIndex>100</MaxAutoParticipantIndex>"
               "<Peers><Peer Address='127.0.0.1:" +
               std::to_string(port_) + "'/></Peers></Discovery></Domain></CycloneDDS>";
    }
    // True when something has arrived. What is sent on this machine arrives at once.
    bool heard() const {
        char byte = 0;
        return recv(socket_, &byte, sizeof byte, 0) >= 0;
    }

  private:
    int socket_;
    int port_ = 0;
};

TEST_F(DistlogCheck, NobodyHearsOfIt) {
    write_document(logger(""));
    const Listener listener;
    const Outcome outcome = check({"a.xml"}, {{"CYCLONEDDS_URI", listener.configuration()}});
    EXPECT_EQ(outcome.code, 0) << joined(outcome.err);
    EXPECT_FALSE(listener.heard());
    // Of a command that joins the domain somebody does.
    support::ChildProcess list(
        {support::binary_path("distlog"), "ls", "--domain", "21", "--timeout", "0.1s"},
        {{"CYCLONEDDS_URI", listener.configuration()}});
    EXPECT_TRUE(list.wait().has_value());
    EXPECT_TRUE(listener.heard());
}

TEST_F(DistlogCheck, WrongUsageIsExitCode2) {
    write_document("");
    const struct {
        Lines arguments;
        const char *mentioned;
    } rows[] = {{{}, "FILE"},
                {{"--frobnicate", "a.xml"}, "--frobnicate"},
                {{"--profile", "L", "a.xml"}, "'L' is not LIBRARY::PROFILE"},
                {{"--profile", "::P", "a.xml"}, "'::P' is not LIBRARY::PROFILE"},
                {{"a.xml", "--profile"}, "--profile"}};
    for (const auto &row : rows) {
        const Outcome outcome = check(row.arguments);
        EXPECT_EQ(outcome.code, 2);
        EXPECT_TRUE(outcome.out.empty());
        ASSERT_EQ(outcome.err.size(), 1U);
        EXPECT_TRUE(contains(outcome.err[0], row.mentioned)) << outcome.err[0];
    }
    const Outcome help = check({"--help"});
    EXPECT_EQ(help.code, 0);
    EXPECT_FALSE(help.out.empty());
}

// Texts of a document cannot act on the terminal.
TEST_F(DistlogCheck, ControlCharactersAreShown) {
    write_document(logger("<filter_level>a&#13;&#x85;b</filter_level>"));
    const Outcome outcome = check({"a.xml"});
    ASSERT_EQ(outcome.err.size(), 1U);
    EXPECT_TRUE(contains(outcome.err[0], "\"a\\r\\u{0085}b\"")) << outcome.err[0];
}

}  // namespace
