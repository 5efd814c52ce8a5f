// SPDX-License-Identifier: Apache-2.0
// Wrong documents of QoS profiles: errors with file, line and the names that would have been right.
#include <gtest/gtest.h>
#include <kolt/domain.h>

#include <string>

#include "support/config/qos_profiles.h"

namespace {

using support::factory;
using support::Strings;
using support::WriterQos;

class QosProfileErrors : public support::QosProfilesTest {};

struct WrongProfile {
    std::string content;  // of a profile, from line 4
    std::string message;
    int line;
};

TEST_F(QosProfileErrors, WhatIsWrongIsToldWithLineAndNames) {
    const auto writer = [](const std::string &policy) {
        return "<datawriter_qos>\n" + policy + "\n</datawriter_qos>";
    };
    const WrongProfile rows[] = {
        {"<data_writer_qos/>",
         "unknown element <data_writer_qos> in <qos_profile>; expected: domain_participant_qos, "
         "participant_qos, publisher_qos, subscriber_qos, topic_qos, datawriter_qos, "
         "datareader_qos",
         4},
        {writer("<histroy/>"),
         "unknown element <histroy> in <datawriter_qos>; expected: durability, durability_service, "
         "deadline, latency_budget, liveliness, reliability, destination_order, history, "
         "resource_limits, transport_priority, lifespan, user_data, ownership, "
         "ownership_strength, writer_data_lifecycle, representation, property, protocol",
         5},
        {writer("<history>\n<kind>KEEP_SOME</kind></history>"),
         "wrong value of <kind>: \"KEEP_SOME\"; expected: KEEP_LAST_HISTORY_QOS, "
         "KEEP_ALL_HISTORY_QOS",
         6},
        {writer("<history>\n<length>3</length></history>"),
         "unknown element <length> in <history>; expected: kind, depth", 6},
        {writer("<history>\n<depth>many</depth></history>"),
         "wrong value of <depth>: \"many\"; expected: a 32-bit integer, LENGTH_UNLIMITED", 6},
        {writer("<history><depth>2147483648</depth></history>"), "wrong value of <depth>", 5},
        {writer("<history><depth></depth></history>"), "wrong value of <depth>: \"\"", 5},
        {writer("<history>\n<depth>0</depth></history>"), "<depth> must be 1 or more", 6},
        {writer("<resource_limits>\n<max_samples>-2</max_samples></resource_limits>"),
         "<max_samples> must be 1 or more, or LENGTH_UNLIMITED", 6},
        {writer("<history><kind><x/></kind></history>"), "element <x> in <kind>; expected: a value",
         5},
        {writer("<history>KEEP_LAST_HISTORY_QOS</history>"),
         "text in <history>: \"KEEP_LAST_HISTORY_QOS\"; expected: elements", 5},
        {writer("<history kind=\"x\"/>"), "unknown attribute \"kind\" of <history>; expected: none",
         5},
        {writer("<deadline><period><seconds>1</seconds></period></deadline>"),
         "unknown element <seconds> in <period>; expected: sec, nanosec", 5},
        {writer("<deadline><period><sec>-1</sec></period></deadline>"),
         "wrong value of <sec>: \"-1\"; expected: an integer from 0 to 2147483647, "
         "DURATION_INFINITY, DURATION_INFINITE_SEC, DURATION_ZERO_SEC",
         5},
        {writer("<deadline><period><nanosec>1000000000</nanosec></period></deadline>"),
         "expected: an integer from 0 to 999999999, DURATION_INFINITY, DURATION_INFINITE_NSEC, "
         "DURATION_ZERO_NSEC",
         5},
        {writer("<deadline><period><sec>1</sec><nanosec>DURATION_INFINITY</nanosec></period>"
                "</deadline>"),
         "<period>: infinite nanosec needs infinite sec", 5},
        {writer("<protocol><vendor_specific_entity>yes</vendor_specific_entity></protocol>"),
         "expected: true, false, 1, 0", 5},
        {writer("<user_data><value>A</value></user_data>"),
         "expected: Base64 text, or <element> children", 5},
        {writer("<user_data><value><element>256</element></value></user_data>"),
         "expected: an integer from 0 to 255", 5},
        {writer("<representation><value><element>CDR</element></value></representation>"),
         "expected: XCDR_DATA_REPRESENTATION, XML_DATA_REPRESENTATION, "
         "XCDR2_DATA_REPRESENTATION, AUTO_DATA_REPRESENTATION",
         5},
        {writer("<representation><value><item/></value></representation>"),
         "unknown element <item> in <value>; expected: element", 5},
        {writer("<property><value><element><value>v</value></element></value></property>"),
         "a property without a <name>", 5},
        {"<domain_participant_qos><wire_protocol/></domain_participant_qos>",
         "unknown element <wire_protocol> in <domain_participant_qos>; expected: user_data, "
         "entity_factory, property, participant_name, protocol",
         4},
        {"<topic_qos topic_filter=\"" + std::string(1025, '*') + "\"/>",
         "the topic_filter is longer than 1024 bytes", 4},
        {"<publisher_qos topic_filter=\"*\"/>",
         "unknown attribute \"topic_filter\" of <publisher_qos>; expected: name", 4},
    };
    for (const WrongProfile &row : rows) {
        SCOPED_TRACE(row.content);
        log_.clear();
        EXPECT_EQ(add_library("<qos_profile name=\"P\">\n" + row.content + "</qos_profile>"),
                  DDS_RETCODE_ERROR);
        const std::string expected = "/a.xml:" + std::to_string(row.line) + ": ";
        EXPECT_TRUE(log_.has(expected)) << log_.text();
        EXPECT_TRUE(log_.has(row.message)) << log_.text();
        EXPECT_TRUE(libraries().empty());
    }
}

TEST_F(QosProfileErrors, WrongLibrariesAndProfilesAreRefused) {
    const WrongProfile rows[] = {
        {"<dds><qos_library/></dds>", "<qos_library> needs the attribute \"name\"", 1},
        {"<dds><qos_library name=\"\"/></dds>", "<qos_library> needs the attribute \"name\"", 1},
        {"<dds><qos_library name=\"a::b\"/></dds>", "a name must not contain \"::\": \"a::b\"", 1},
        {"<dds><qos_library name=\"L\" x=\"y\"/></dds>",
         "unknown attribute \"x\" of <qos_library>; expected: name", 1},
        {"<dds><qos_library name=\"L\">\n<profile/></qos_library></dds>",
         "unknown element <profile> in <qos_library>; expected: qos_profile", 2},
        {"<dds><qos_library name=\"L\">\n<qos_profile/></qos_library></dds>",
         "<qos_profile> needs the attribute \"name\"", 2},
        {"<dds><qos_library name=\"L\"><qos_profile name=\"P\" is_default_qos=\"yes\"/>"
         "</qos_library></dds>",
         "wrong value of is_default_qos: \"yes\"; expected: true, false, 1, 0", 1},
        {"<dds><qos_library name=\"L\"><qos_profile name=\"P\" base=\"Q\"/></qos_library></dds>",
         "unknown attribute \"base\" of <qos_profile>; expected: name, base_name, is_default_qos",
         1},
        {"<dds><qos_library name=\"L\"><qos_profile name=\"P\"/>\n<qos_profile name=\"P\"/>"
         "</qos_library></dds>",
         "the profile L::P is defined already", 2},
        {"<dds><qos_library name=\"L\"><qos_profile name=\"P\" base_name=\"Q\"/>"
         "</qos_library></dds>",
         "unknown base profile L::Q; expected: a profile of this document or of one loaded before",
         1},
        {"<dds><qos_library name=\"L\"><qos_profile name=\"P\" base_name=\"::Q\"/>"
         "</qos_library></dds>",
         "wrong base_name \"::Q\"; expected: Profile or Library::Profile", 1},
        {"<dds><qos_library name=\"L\"><qos_profile name=\"P\" base_name=\"P\"/>"
         "</qos_library></dds>",
         "the profile L::P is a base of itself", 1},
        {"<dds><qos_library name=\"L\">\n<qos_profile name=\"A\" base_name=\"B\"/>\n"
         "<qos_profile name=\"B\" base_name=\"C\"/>\n<qos_profile name=\"C\" base_name=\"B\"/>"
         "</qos_library></dds>",
         "the profile L::B is a base of itself", 3},
        {"<dds>\n<a></dds>", "mismatched tag", 2},
    };
    for (const WrongProfile &row : rows) {
        SCOPED_TRACE(row.content);
        log_.clear();
        EXPECT_EQ(add(row.content), DDS_RETCODE_ERROR);
        EXPECT_TRUE(log_.has("/a.xml:" + std::to_string(row.line) + ": " + row.message))
            << log_.text();
        EXPECT_TRUE(libraries().empty());
    }
    EXPECT_EQ(KOLT_DomainParticipantFactory_add_profiles(factory(), "/nowhere.xml"),
              DDS_RETCODE_ERROR);
    EXPECT_TRUE(log_.has("/nowhere.xml: cannot open the file")) << log_.text();
}

TEST_F(QosProfileErrors, UnknownNamesAreToldWithTheKnownOnes) {
    ASSERT_EQ(add_library(profile("name=\"P\"", 2) + profile("name=\"Q\"", 3)), DDS_RETCODE_OK);
    WriterQos qos;
    qos->history.depth = 77;
    EXPECT_EQ(DDS_DomainParticipantFactory_get_datawriter_qos_from_profile(factory(), qos.get(),
                                                                           "M", "P"),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log_.has("no QoS library \"M\"; libraries: L")) << log_.text();
    EXPECT_EQ(DDS_DomainParticipantFactory_get_datawriter_qos_from_profile(factory(), qos.get(),
                                                                           "L", "p"),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log_.has("no QoS profile \"p\" in the library \"L\"; profiles: P, Q"))
        << log_.text();
    EXPECT_EQ(qos->history.depth, 77);
    EXPECT_EQ(profiles("M", DDS_RETCODE_BAD_PARAMETER), Strings{});
}

TEST_F(QosProfileErrors, ElementsOfOthersAreLeftAlone) {
    EXPECT_EQ(add("<dds><distributed_logger><enabled>true</enabled></distributed_logger>"
                  "<types/><qos_library name=\"L\"/></dds>"),
              DDS_RETCODE_OK);
    EXPECT_EQ(libraries(), Strings{"L"});
    EXPECT_EQ(profiles("L"), Strings{});
}

}  // namespace
