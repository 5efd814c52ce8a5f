// SPDX-License-Identifier: Apache-2.0
// Messages of the engine itself, not of the platform's layer, in the distributed log.
#include <gtest/gtest.h>

#include <string>

#include "support/logger/logger.h"
#include "support/platform/process.h"
#include "support/platform/pubsub.h"

namespace {

using support::ChildProcess;
using support::Logger;
using support::Node;
using support::StdoutCapture;

constexpr char kEngineText[] = "could not deliver data on time";

// The engine complains when a reader within the process has no room and a writer's patience ends.
void make_the_engine_complain(Node &node) {
    DDS_DataReader *reader = node.reader([](DDS_DataReaderQos &qos) {
        qos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
        qos.resource_limits.max_samples = 1;
        qos.resource_limits.max_samples_per_instance = 1;
    });
    ASSERT_NE(reader, nullptr);
    DDS_DataWriter *writer = node.writer([](DDS_DataWriterQos &qos) {
        qos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
        qos.reliability.max_blocking_time = {0, 50'000'000};
    });
    ASSERT_NE(writer, nullptr);
    EXPECT_EQ(support::write(writer, 1, 1, 1), DDS_RETCODE_OK);
    EXPECT_EQ(support::write(writer, 1, 1, 2), DDS_RETCODE_TIMEOUT);
}

TEST(EngineMessages, ArriveAtAnotherProcessWithTheirCategory) {
    ChildProcess tail({support::binary_path("distlog"), "tail", "--domain", "150", "--history",
                       "--json", "--category", "com.vur.kolt.config.Logger"});
    const Logger logger({.domain = 150, .forward = true});
    ASSERT_NE(logger.get(), nullptr);
    Node node(151);
    ASSERT_NO_FATAL_FAILURE(make_the_engine_complain(node));
    const auto line = tail.read_line_with(kEngineText);
    ASSERT_TRUE(line);
    EXPECT_NE(line->find("\"category\":\"com.vur.kolt.config.Logger\""), std::string::npos)
        << *line;
    EXPECT_NE(line->find("\"level\":300"), std::string::npos) << *line;
}

TEST(EngineMessages, GoToStandardOutputWithoutForwarding) {
    const Logger logger({.domain = 152, .forward = false});
    ASSERT_NE(logger.get(), nullptr);
    Node node(153);
    StdoutCapture capture;
    ASSERT_NO_FATAL_FAILURE(make_the_engine_complain(node));
    EXPECT_NE(capture.text().find(kEngineText), std::string::npos) << capture.text();
}

}  // namespace
