// SPDX-License-Identifier: Apache-2.0
// The logger started from XML documents: settings that apply and that don't, QoS profiles of the
// document, the live level in the saved element.
#include <gtest/gtest.h>
#include <kolt/domain.h>
#include <vur_dl/DistLogger.h>
#include <vur_dl/XMLConfig.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "support/platform/process.h"

namespace {

using support::StdoutCapture;

class XmlConfigRun : public testing::Test {
  protected:
    void SetUp() override {
        unsetenv("KOLT_QOS_PROFILES");
        path_ = "/tmp/vur_dl_xmlconfig_" + std::to_string(getpid()) + ".xml";
    }
    void TearDown() override {
        VUR_DL_DistLogger_finalizeInstance();
        if (participant_ != nullptr) {
            DDS_DomainParticipantFactory_delete_participant(factory(), participant_);
        }
        std::remove(path_.c_str());
    }
    static DDS_DomainParticipantFactory *factory() {
        return DDS_DomainParticipantFactory_get_instance();
    }
    const char *write(const std::string &content) const {
        std::ofstream(path_) << "<dds>\n" << content << "\n</dds>\n";
        return path_.c_str();
    }
    DDS_DomainParticipant *participant(int domain) {
        participant_ = DDS_DomainParticipantFactory_create_participant(factory(), domain, nullptr,
                                                                       nullptr, 0U);
        EXPECT_NE(participant_, nullptr);
        return participant_;
    }
    static std::string element(const std::string &content) {
        return "<distributed_logger><enabled>true</enabled><echo_to_stdout>false</echo_to_stdout>"
               "<log_infrastructure_messages>false</log_infrastructure_messages>" +
               content + "</distributed_logger>";
    }

    std::string path_;
    DDS_DomainParticipant *participant_ = nullptr;
};

TEST_F(XmlConfigRun, StartsInADomain) {
    ASSERT_EQ(VUR_DL_XMLConfig_startFromFile(
                  write(element("<filter_level>DEBUG</filter_level><queue_size>9</queue_size>")),
                  nullptr, 50, "from a file"),
              1);
    ASSERT_NE(VUR_DL_DistLogger_isDistLoggerRunning(), 0);
    EXPECT_EQ(VUR_DL_DistLogger_getFilterLevel(VUR_DL_DistLogger_getInstance()), 700);
    const VUR_DL_Options *options = VUR_DL_DistLogger_getOptions();
    ASSERT_NE(options, nullptr);
    EXPECT_EQ(options->domainId, 50U);
    EXPECT_EQ(options->queueSize, 9U);
    EXPECT_STREQ(options->applicationKind, "from a file");
    EXPECT_NE(DDS_DomainParticipantFactory_lookup_participant(factory(), 50), nullptr);
}

TEST_F(XmlConfigRun, StartsInAParticipant) {
    DDS_DomainParticipant *own = participant(51);
    ASSERT_NE(own, nullptr);
    ASSERT_EQ(VUR_DL_XMLConfig_startFromFile(write(element("")), own, 0, nullptr), 1);
    const VUR_DL_Options *options = VUR_DL_DistLogger_getOptions();
    ASSERT_NE(options, nullptr);
    EXPECT_EQ(options->domainParticipant, own);
    EXPECT_EQ(options->applicationKind, nullptr);
}

TEST_F(XmlConfigRun, RunningLoggerIsLeftAlone) {
    ASSERT_EQ(VUR_DL_XMLConfig_startFromFile(write(element("")), nullptr, 52, nullptr), 1);
    StdoutCapture capture;
    EXPECT_EQ(VUR_DL_XMLConfig_startFromFile(write(element("<filter_level>FATAL</filter_level>")),
                                             nullptr, 52, nullptr),
              1);
    EXPECT_EQ(capture.count("DL Info: VUR_DL_XMLConfig_startFromFile: DL already running. XML "
                            "Options don't apply"),
              1)
        << capture.text();
    EXPECT_EQ(VUR_DL_DistLogger_getFilterLevel(VUR_DL_DistLogger_getInstance()), 600);
}

TEST_F(XmlConfigRun, DisabledLoggerIsNotStarted) {
    StdoutCapture capture;
    EXPECT_EQ(VUR_DL_XMLConfig_startFromFile(write("<distributed_logger/>"), nullptr, 53, nullptr),
              1);
    EXPECT_EQ(capture.count("DL Info: VUR_DL_XMLConfig_startFromFile: DL not enabled in XML "
                            "Options. It won't be created"),
              1)
        << capture.text();
    EXPECT_EQ(VUR_DL_DistLogger_isDistLoggerRunning(), 0);
}

TEST_F(XmlConfigRun, WrongDocumentsAreRefused) {
    StdoutCapture capture;
    EXPECT_EQ(VUR_DL_XMLConfig_startFromFile(write(""), nullptr, 53, nullptr), 0);
    const std::string prefix = "DL Error: VUR_DL_XMLConfig_startFromFile: " + path_;
    EXPECT_EQ(capture.count(prefix + ": no element <distributed_logger>"), 1) << capture.text();

    EXPECT_EQ(VUR_DL_XMLConfig_startFromFile(write(element("\n<filter_level>LOUD</filter_level>")),
                                             nullptr, 53, nullptr),
              0);
    EXPECT_EQ(capture.count("DL Error: VUR_DL_XMLConfig_getFilterLevelFromString: line 3: integer "
                            "expected in XML text"),
              1)
        << capture.text();
    EXPECT_EQ(capture.count(prefix + ", line 3: <filter_level> was refused"), 1) << capture.text();

    // The document of that path is loaded already; this one shall be read.
    ASSERT_EQ(DDS_DomainParticipantFactory_unload_profiles(factory()), DDS_RETCODE_OK);
    EXPECT_EQ(VUR_DL_XMLConfig_startFromFile(
                  write("<qos_library name=\"L\"><qos_profil/></qos_library>" + element("")),
                  nullptr, 53, nullptr),
              0);
    EXPECT_EQ(capture.count(prefix + ": could not load the QoS profiles"), 1) << capture.text();
    EXPECT_NE(capture.text().find(path_ + ":2: unknown element <qos_profil> in <qos_library>; "
                                          "expected: qos_profile"),
              std::string::npos)
        << capture.text();

    EXPECT_EQ(VUR_DL_XMLConfig_startFromFile(write(element("")), nullptr, -1, nullptr), 0);
    EXPECT_EQ(capture.count("DL Error: VUR_DL_XMLConfig_startFromFile: invalid domain id"), 1);
    EXPECT_EQ(VUR_DL_DistLogger_isDistLoggerRunning(), 0);
}

TEST_F(XmlConfigRun, ParticipantThatCannotBeMadeIsSaid) {
    StdoutCapture capture;
    EXPECT_EQ(VUR_DL_XMLConfig_startFromFile(write(element("")), nullptr, 9999, nullptr), 0);
    EXPECT_EQ(capture.count("DL Error: VUR_DL_XMLConfig_startFromFile: Distributed Logger could "
                            "not be started"),
              1)
        << capture.text();
}

TEST_F(XmlConfigRun, SavesTheLiveLevel) {
    DDS_DomainParticipant *own = participant(54);
    DDS_XMLExtensionClass *extension = VUR_DL_XMLConfig_createXMLExtensionClass(
        [](const char *, const char *, DDS_UnsignedLong) {});
    DDS_XMLParser *parser = DDS_XMLParser_new();
    ASSERT_EQ(DDS_XMLParser_register_extension_class(parser, extension), DDS_RETCODE_OK);
    ASSERT_EQ(
        DDS_XMLParser_parse_file(parser, write(element("<filter_level>DEBUG</filter_level>"))),
        DDS_RETCODE_OK);
    DDS_XMLObject *root = DDS_XMLParser_get_root(parser);
    VUR_DL_Options *options =
        VUR_DL_XMLConfig_getDLOptions(VUR_DL_XMLConfig_getXMLConfigFromXMLRoot(root));
    const auto saved_with = [&](const std::string &level) {
        DDS_XMLSaveContext context;
        DDS_XMLSaveContext_initialize(&context);
        DDS_XMLObject_save(root, &context);
        const std::string text = DDS_XMLSaveContext_get_text(&context);
        DDS_XMLSaveContext_finalize(&context);
        return text.find("<filter_level>" + level + "</filter_level>") != std::string::npos;
    };
    ASSERT_EQ(VUR_DL_XMLConfig_startWithXMLConfiguration(own, options, "kind"), 1);
    EXPECT_EQ(options->domainParticipant, own);
    EXPECT_STREQ(options->applicationKind, "kind");
    EXPECT_TRUE(saved_with("DEBUG"));
    ASSERT_EQ(VUR_DL_DistLogger_setFilterLevel(VUR_DL_DistLogger_getInstance(), 123), 0);
    EXPECT_TRUE(saved_with("123"));
    EXPECT_EQ(options->filterLevel, 700);
    // The object may go while the logger runs: it keeps a copy of the options.
    VUR_DL_DistLogger_finalizeInstance();
    EXPECT_TRUE(saved_with("DEBUG"));
    DDS_XMLParser_delete(parser);
    VUR_DL_XMLConfig_destroyXMLExtensionClass(extension);
}

TEST_F(XmlConfigRun, RunsOnAfterItsDocumentIsGone) {
    ASSERT_EQ(VUR_DL_XMLConfig_startFromFile(write(element("")), nullptr, 55, "kind"), 1);
    std::remove(path_.c_str());
    VUR_DL_DistLogger_info(VUR_DL_DistLogger_getInstance(), "still here");
    EXPECT_STREQ(VUR_DL_DistLogger_getOptions()->applicationKind, "kind");
}

// ---- QoS profiles on entities -------------------------------------------------------------------

constexpr const char *kLibrary = R"(
<qos_library name="L">
  <qos_profile name="P" is_default_qos="true">
    <domain_participant_qos>
      <participant_name><name>from the profile</name></participant_name>
    </domain_participant_qos>
    <publisher_qos><partition><name><element>part</element></name></partition></publisher_qos>
    <datawriter_qos topic_filter="vur/*"><history><depth>7</depth></history></datawriter_qos>
    <datawriter_qos><history><depth>3</depth></history></datawriter_qos>
    <datareader_qos topic_filter="vur/*">
      <reliability><kind>RELIABLE_RELIABILITY_QOS</kind></reliability></datareader_qos>
    <topic_qos topic_filter="vur/*">
      <durability><kind>TRANSIENT_LOCAL_DURABILITY_QOS</kind></durability></topic_qos>
  </qos_profile>
</qos_library>)";

TEST_F(XmlConfigRun, DefaultProfileIsTheDefaultOfEntities) {
    ASSERT_EQ(KOLT_DomainParticipantFactory_add_profiles(factory(), write(kLibrary)),
              DDS_RETCODE_OK);
    DDS_DomainParticipant *own = participant(56);
    ASSERT_NE(own, nullptr);
    DDS_DomainParticipantQos participant_qos;
    ASSERT_EQ(DDS_DomainParticipantQos_initialize(&participant_qos), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DomainParticipant_get_qos(own, &participant_qos), DDS_RETCODE_OK);
    ASSERT_NE(participant_qos.participant_name.name, nullptr);
    EXPECT_STREQ(participant_qos.participant_name.name, "from the profile");
    DDS_DomainParticipantQos_finalize(&participant_qos);

    DDS_DataWriterQos writer;
    ASSERT_EQ(DDS_DataWriterQos_initialize(&writer), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DomainParticipant_get_default_datawriter_qos_w_topic_name(own, &writer, "vur/x"),
              DDS_RETCODE_OK);
    EXPECT_EQ(writer.history.depth, 7);
    EXPECT_EQ(DDS_DomainParticipant_get_default_datawriter_qos_w_topic_name(own, &writer, "other"),
              DDS_RETCODE_OK);
    EXPECT_EQ(writer.history.depth, 3);
    DDS_DataWriterQos_finalize(&writer);

    DDS_DataReaderQos reader;
    ASSERT_EQ(DDS_DataReaderQos_initialize(&reader), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DomainParticipant_get_default_datareader_qos_w_topic_name(own, &reader, "vur/x"),
              DDS_RETCODE_OK);
    EXPECT_EQ(reader.reliability.kind, DDS_RELIABLE_RELIABILITY_QOS);
    EXPECT_EQ(DDS_DomainParticipant_get_default_datareader_qos_w_topic_name(own, &reader, "other"),
              DDS_RETCODE_OK);
    EXPECT_EQ(reader.reliability.kind, DDS_BEST_EFFORT_RELIABILITY_QOS);
    DDS_DataReaderQos_finalize(&reader);

    DDS_TopicQos topic;
    ASSERT_EQ(DDS_TopicQos_initialize(&topic), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DomainParticipant_get_default_topic_qos_w_topic_name(own, &topic, "vur/x"),
              DDS_RETCODE_OK);
    EXPECT_EQ(topic.durability.kind, DDS_TRANSIENT_LOCAL_DURABILITY_QOS);
    DDS_TopicQos_finalize(&topic);

    DDS_PublisherQos publisher;
    ASSERT_EQ(DDS_PublisherQos_initialize(&publisher), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DomainParticipant_get_default_publisher_qos(own, &publisher), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_StringSeq_get_length(&publisher.partition.name), 1U);
    DDS_PublisherQos_finalize(&publisher);
}

TEST_F(XmlConfigRun, ParticipantIsMadeWithAProfile) {
    ASSERT_EQ(
        KOLT_DomainParticipantFactory_add_profiles(
            factory(), write("<qos_library name=\"L\"><qos_profile name=\"P\"><participant_qos>"
                             "<participant_name><name>n</name></participant_name></participant_qos>"
                             "</qos_profile></qos_library>")),
        DDS_RETCODE_OK);
    participant_ = DDS_DomainParticipantFactory_create_participant_with_profile(factory(), 57, "L",
                                                                                "P", nullptr, 0U);
    ASSERT_NE(participant_, nullptr);
    DDS_DomainParticipantQos qos;
    ASSERT_EQ(DDS_DomainParticipantQos_initialize(&qos), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DomainParticipant_get_qos(participant_, &qos), DDS_RETCODE_OK);
    EXPECT_STREQ(qos.participant_name.name, "n");
    DDS_DomainParticipantQos_finalize(&qos);
}

}  // namespace
