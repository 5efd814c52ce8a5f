// SPDX-License-Identifier: Apache-2.0
// A logger configured by XML and changed from elsewhere: levels set by another process, and QoS
// profiles that are missing, or missing for some topics.
#include <gtest/gtest.h>
#include <kolt/domain.h>
#include <vur_dl/DDSEntities.h>
#include <vur_dl/DistLogger.h>
#include <vur_dl/XMLConfig.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "support/config/qos_profiles.h"
#include "support/config/xml_config.h"
#include "support/logger/monitor.h"
#include "support/platform/process.h"

namespace {

using support::ChildProcess;
using support::factory;
using support::StdoutCapture;

constexpr char kMissingProfile[] =
    "DL Warning: VUR_DL_DDSEntities_create: QoS Library and Profile cannot be found, using default "
    "QoS";

std::string logger(const std::string &content) {
    return "<distributed_logger><enabled>true</enabled><echo_to_stdout>false</echo_to_stdout>"
           "<log_infrastructure_messages>false</log_infrastructure_messages>" +
           content + "</distributed_logger>";
}

std::string saved(const DDS_XMLObject *object) {
    DDS_XMLSaveContext context;
    DDS_XMLSaveContext_initialize(&context);
    EXPECT_TRUE(DDS_XMLObject_save(object, &context));
    std::string text = DDS_XMLSaveContext_get_text(&context);
    DDS_XMLSaveContext_finalize(&context);
    return text;
}

// The saved level is the one that a command of another process has set, and parses back to it.
TEST(XmlConfigRemote, TheLevelSetFromAnotherProcessIsSaved) {
    constexpr int kDomain = 208;
    const std::string kind = "saving " + std::to_string(getpid());
    DDS_DomainParticipant *participant =
        DDS_DomainParticipantFactory_create_participant(factory(), kDomain, nullptr, nullptr, 0U);
    ASSERT_NE(participant, nullptr);
    support::XmlConfigDocument document;
    ASSERT_EQ(document.parse("<dds>" + logger("<filter_level>ERROR</filter_level>") + "</dds>"),
              DDS_RETCODE_OK);
    ASSERT_EQ(
        VUR_DL_XMLConfig_startWithXMLConfiguration(participant, document.options(), kind.c_str()),
        1);
    const auto expect_saved = [&](const std::string &level, int number) {
        const std::string text = saved(document.root());
        EXPECT_NE(text.find("<filter_level>" + level + "</filter_level>"), std::string::npos)
            << text;
        EXPECT_EQ(document.options()->filterLevel, 300) << "the parsed options stay";
        support::XmlConfigDocument again;
        EXPECT_EQ(again.parse(text), DDS_RETCODE_OK);
        EXPECT_EQ(again.options()->filterLevel, number);
    };
    expect_saved("ERROR", 300);
    for (const auto &[given, name, number] :
         {std::tuple("trace", "TRACE", 800), std::tuple("123", "123", 123),
          std::tuple("silent", "SILENT", 0)}) {
        ChildProcess command({support::binary_path("distlog"), "set", "level", kind, given,
                              "--domain", std::to_string(kDomain)});
        EXPECT_EQ(command.wait(), 0);
        EXPECT_EQ(command.lines(ChildProcess::Stream::kErr), std::vector<std::string>{});
        expect_saved(name, number);
    }
    EXPECT_EQ(VUR_DL_DistLogger_finalizeInstance(), 0);
    expect_saved("ERROR", 300);
    EXPECT_EQ(DDS_DomainParticipantFactory_delete_participant(factory(), participant),
              DDS_RETCODE_OK);
}

// ---- Profiles that are not there, or not for every topic ----------------------------------------

class XmlConfigProfiles : public support::QosProfilesTest {
  protected:
    void TearDown() override {
        VUR_DL_DistLogger_finalizeInstance();
        support::QosProfilesTest::TearDown();
    }
    // Starts the logger with the names of a library and a profile. What it prints.
    static std::string start(const char *library, const char *profile) {
        StdoutCapture capture;
        VUR_DL_Options *options = VUR_DL_Options_createDefault();
        EXPECT_EQ(VUR_DL_Options_setDomainId(options, 209), DDS_RETCODE_OK);
        EXPECT_EQ(VUR_DL_Options_setEchoToStdout(options, 0), DDS_RETCODE_OK);
        EXPECT_EQ(VUR_DL_Options_setLogInfrastructureMessages(options, 0), DDS_RETCODE_OK);
        EXPECT_EQ(VUR_DL_Options_setQosLibrary(options, library), DDS_RETCODE_OK);
        EXPECT_EQ(VUR_DL_Options_setQosProfile(options, profile), DDS_RETCODE_OK);
        EXPECT_EQ(VUR_DL_DistLogger_setOptions(options), 1);
        VUR_DL_Options_delete(options);
        EXPECT_NE(VUR_DL_DistLogger_getInstance(), nullptr);
        return capture.text();
    }
    struct History {
        DDS_HistoryQosPolicyKind kind;
        DDS_Long depth;
        DDS_ReliabilityQosPolicyKind reliability;
        DDS_DurabilityQosPolicyKind durability;
        DDS_UnsignedLong representations;
        bool operator==(const History &) const = default;
    };
    static History history(const char *topic) {
        DDS_DataWriter *log_writer = VUR_DL_LogMessageDataWriter_as_datawriter(
            VUR_DL_DistLogger_getLogMessageWriteThread()->logMessageWriter);
        DDS_DataWriter *writer =
            DDS_Publisher_lookup_datawriter(DDS_DataWriter_get_publisher(log_writer), topic);
        support::WriterQos qos;
        EXPECT_EQ(DDS_DataWriter_get_qos(writer, qos.get()), DDS_RETCODE_OK);
        return {qos->history.kind, qos->history.depth, qos->reliability.kind, qos->durability.kind,
                DDS_ShortSeq_get_length(&qos->representation.value)};
    }
    static History kept(DDS_Long depth, bool durable) {
        return {DDS_KEEP_LAST_HISTORY_QOS, depth, DDS_RELIABLE_RELIABILITY_QOS,
                durable ? DDS_TRANSIENT_LOCAL_DURABILITY_QOS : DDS_VOLATILE_DURABILITY_QOS, 0U};
    }
    static void expect_defaults() {
        EXPECT_EQ(history(VUR_DL_LOG_TOPIC_NAME), kept(10, true));
        EXPECT_EQ(history(VUR_DL_STATE_TOPIC_NAME), kept(1, true));
        EXPECT_EQ(history(VUR_DL_COMMAND_RESPONSE_TOPIC_NAME), kept(10, false));
    }
};

TEST_F(XmlConfigProfiles, ALibraryThatDoesNotExistIsAWarning) {
    ASSERT_EQ(add_library(profile("name=\"P\"", 77)), DDS_RETCODE_OK);
    EXPECT_EQ(start("M", "P"), std::string(kMissingProfile) + "\n");
    expect_defaults();
}

TEST_F(XmlConfigProfiles, AProfileThatDoesNotExistIsAWarning) {
    ASSERT_EQ(add_library(profile("name=\"P\"", 77)), DDS_RETCODE_OK);
    EXPECT_EQ(start("L", "p"), std::string(kMissingProfile) + "\n") << "names are exact";
    expect_defaults();
}

TEST_F(XmlConfigProfiles, EmptyNamesAreAWarning) {
    ASSERT_EQ(add_library(profile("name=\"P\"", 77)), DDS_RETCODE_OK);
    EXPECT_EQ(start("L", ""), std::string(kMissingProfile) + "\n");
    expect_defaults();
}

TEST_F(XmlConfigProfiles, ADocumentThatIsWrongHasNoProfiles) {
    EXPECT_EQ(add_library("<qos_profile name=\"P\"><datawriter_qos><histroy/></datawriter_qos>"
                          "</qos_profile>"),
              DDS_RETCODE_ERROR);
    EXPECT_EQ(start("L", "P"), std::string(kMissingProfile) + "\n");
    expect_defaults();
}

// The profile is there: what it says counts, and a topic that it leaves out has the standard's
// default, with what the logger needs on top.
TEST_F(XmlConfigProfiles, AProfileWithoutATopicHasTheStandardsDefaults) {
    ASSERT_EQ(add_library("<qos_profile name=\"P\"><datawriter_qos "
                          "topic_filter=\"vur/distlog/administration/state\"><history><depth>5"
                          "</depth></history></datawriter_qos></qos_profile>"),
              DDS_RETCODE_OK);
    EXPECT_EQ(start("L", "P"), "");
    EXPECT_EQ(history(VUR_DL_LOG_TOPIC_NAME), kept(1, true));
    EXPECT_EQ(history(VUR_DL_STATE_TOPIC_NAME), kept(5, true));
    EXPECT_EQ(history(VUR_DL_COMMAND_RESPONSE_TOPIC_NAME), kept(1, false));
}

TEST_F(XmlConfigProfiles, AnEmptyProfileStartsTheLogger) {
    ASSERT_EQ(add_library("<qos_profile name=\"P\"/>"), DDS_RETCODE_OK);
    EXPECT_EQ(start("L", "P"), "");
    EXPECT_EQ(history(VUR_DL_LOG_TOPIC_NAME), kept(1, true));
}

// A profile whose policies do not fit each other is found when the writer is made.
TEST_F(XmlConfigProfiles, AProfileThatContradictsItselfStopsTheStart) {
    ASSERT_EQ(add_library("<qos_profile name=\"P\"><datawriter_qos><history><depth>9</depth>"
                          "</history><resource_limits><max_samples_per_instance>3"
                          "</max_samples_per_instance></resource_limits></datawriter_qos>"
                          "</qos_profile>"),
              DDS_RETCODE_OK);
    StdoutCapture capture;
    VUR_DL_Options *options = VUR_DL_Options_createDefault();
    VUR_DL_Options_setDomainId(options, 209);
    VUR_DL_Options_setQosLibrary(options, "L");
    VUR_DL_Options_setQosProfile(options, "P");
    EXPECT_EQ(VUR_DL_DistLogger_setOptions(options), 1);
    VUR_DL_Options_delete(options);
    EXPECT_EQ(VUR_DL_DistLogger_getInstance(), nullptr);
    EXPECT_EQ(capture.count("DL Error: VUR_DL_DDSEntities_create: Unable to create logMessage "
                            "DataWriter"),
              1)
        << capture.text();
}

// ---- The profile of the logger's name -----------------------------------------------------------

TEST_F(XmlConfigProfiles, TheProfileOfTheLoggersNameIsChosenFromTheFirstLibrary) {
    const std::string path = write(
        "logger.xml",
        "<dds>" + logger("") +
            "<qos_library name=\"A\"><qos_profile name=\"Distributed_Logger\"/></qos_library>"
            "<qos_library name=\"B\">" +
            profile("name=\"distributed_logger\"", 21) + "</qos_library><qos_library name=\"C\">" +
            profile("name=\"distributed_logger\"", 22) + "</qos_library></dds>");
    StdoutCapture capture;
    ASSERT_EQ(VUR_DL_XMLConfig_startFromFile(path.c_str(), nullptr, 210, nullptr), 1);
    EXPECT_EQ(capture.text(), "");
    EXPECT_EQ(history(VUR_DL_LOG_TOPIC_NAME), kept(21, true));
    EXPECT_STREQ(VUR_DL_DistLogger_getOptions()->qosLibrary, "B");
    EXPECT_STREQ(VUR_DL_DistLogger_getOptions()->qosProfile, "distributed_logger");
}

TEST_F(XmlConfigProfiles, TheProfileOfTheLoggersNameMayComeFromTheEnvironment) {
    const std::string profiles =
        write("qos.xml", "<dds><qos_library name=\"E\">" +
                             profile("name=\"distributed_logger\"", 23) + "</qos_library></dds>");
    setenv("KOLT_QOS_PROFILES", profiles.c_str(), 1);
    const std::string path = write("logger.xml", "<dds>" + logger("") + "</dds>");
    ASSERT_EQ(VUR_DL_XMLConfig_startFromFile(path.c_str(), nullptr, 210, nullptr), 1);
    EXPECT_EQ(history(VUR_DL_LOG_TOPIC_NAME), kept(23, true));
}

TEST_F(XmlConfigProfiles, AProfileThatIsNamedAlreadyIsLeftAlone) {
    ASSERT_EQ(add_library(profile("name=\"distributed_logger\"", 25)), DDS_RETCODE_OK);
    VUR_DL_Options *options = VUR_DL_Options_createDefault();
    EXPECT_EQ(VUR_DL_Options_setQosLibrary(options, "mine"), DDS_RETCODE_OK);
    EXPECT_EQ(VUR_DL_XMLConfig_chooseQosProfile(options), 1);
    EXPECT_STREQ(options->qosLibrary, "mine");
    EXPECT_EQ(options->qosProfile, nullptr);
    VUR_DL_Options_delete(options);
    StdoutCapture capture;
    EXPECT_EQ(VUR_DL_XMLConfig_chooseQosProfile(nullptr), 0);
    EXPECT_EQ(capture.text(), "DL Error: VUR_DL_XMLConfig_chooseQosProfile: no options given\n");
}

TEST_F(XmlConfigProfiles, WithoutAProfileOfTheLoggersNameDefaultsApply) {
    const std::string path =
        write("logger.xml", "<dds>" + logger("") + "<qos_library name=\"A\">" +
                                profile("name=\"other\"", 24) + "</qos_library></dds>");
    ASSERT_EQ(VUR_DL_XMLConfig_startFromFile(path.c_str(), nullptr, 210, nullptr), 1);
    EXPECT_EQ(VUR_DL_DistLogger_getOptions()->qosLibrary, nullptr);
    expect_defaults();
}

}  // namespace
