// xml/distlog.xsd agrees with the library: what one accepts the other accepts, and the examples are
// right. Needs xmllint; skipped without it.
#include <gtest/gtest.h>
#include <kolt/config_logger.h>
#include <kolt/domain.h>
#include <kolt/xml.h>
#include <vur_dl/XMLConfig.h>

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

class XmlSchema : public testing::Test {
  protected:
    void SetUp() override {
        if (std::system("xmllint --version >/dev/null 2>&1") != 0) {
            GTEST_SKIP() << "xmllint is not installed";
        }
        const char *source = std::getenv("VUR_DL_TEST_SOURCE_DIR");
        ASSERT_NE(source, nullptr) << "run by ctest";
        source_ = source;
        unsetenv("KOLT_QOS_PROFILES");
        KOLT_Config_Logger_set_verbosity(KOLT_Config_Logger_get_instance(),
                                         KOLT_CONFIG_LOG_VERBOSITY_SILENT);
        path_ = "/tmp/vur_dl_schema_" + std::to_string(getpid()) + ".xml";
    }
    void TearDown() override { std::filesystem::remove(path_); }

    bool schemaAccepts(const std::string &path) const {
        const std::string command = "xmllint --noout --nonet --schema '" + source_ +
                                    "/xml/distlog.xsd' '" + path + "' >/dev/null 2>&1";
        return std::system(command.c_str()) == 0;
    }

    // The document is parsed with the logger's element, and its profiles are loaded.
    static bool libraryAccepts(const std::string &path) {
        errno = 0;
        DDS_XMLExtensionClass *extension = VUR_DL_XMLConfig_createXMLExtensionClass(
            [](const char *, const char *, DDS_UnsignedLong) {});
        DDS_XMLParser *parser = DDS_XMLParser_new();
        DDS_XMLParser_register_extension_class(parser, extension);
        DDS_DomainParticipantFactory *factory = DDS_DomainParticipantFactory_get_instance();
        DDS_DomainParticipantFactory_unload_profiles(factory);
        const bool accepts =
            DDS_XMLParser_parse_file(parser, path.c_str()) == DDS_RETCODE_OK &&
            KOLT_DomainParticipantFactory_add_profiles(factory, path.c_str()) == DDS_RETCODE_OK;
        DDS_XMLParser_delete(parser);
        VUR_DL_XMLConfig_destroyXMLExtensionClass(extension);
        return accepts;
    }

    void expectBoth(const std::string &content, bool accepted) const {
        SCOPED_TRACE(content);
        std::ofstream(path_) << "<dds>" << content << "</dds>";
        EXPECT_EQ(schemaAccepts(path_), accepted) << "schema";
        EXPECT_EQ(libraryAccepts(path_), accepted) << "library";
    }

    std::string source_;
    std::string path_;
};

TEST_F(XmlSchema, ExamplesAreRight) {
    int count = 0;
    for (const auto &entry : std::filesystem::directory_iterator(source_ + "/examples")) {
        if (entry.path().extension() == ".xml") {
            ++count;
            EXPECT_TRUE(schemaAccepts(entry.path())) << entry.path();
            EXPECT_TRUE(libraryAccepts(entry.path())) << entry.path();
        }
    }
    EXPECT_GT(count, 0);
}

TEST_F(XmlSchema, AgreesOnTheElementOfTheLogger) {
    const auto element = [](const std::string &content) {
        return "<distributed_logger>" + content + "</distributed_logger>";
    };
    for (const char *content :
         {"", "<enabled>TRUE</enabled>", "<filter_level>TRACE</filter_level>",
          "<filter_level>650</filter_level>", "<queue_size>0x1F</queue_size>",
          "<thread><mask/></thread>", "<thread><mask> STDIO | floating_point </mask></thread>",
          "<thread><priority>-5</priority><priority>MAX_PRIORITY</priority></thread>",
          "<thread><stack_size>0</stack_size></thread>",
          "<thread><cpu_list><element>1</element></cpu_list><cpu_list/></thread>",
          "<thread><cpu_rotation>CPU_RR_ROTATION</cpu_rotation></thread>"}) {
        expectBoth(element(content), true);
    }
    for (const char *content :
         {"<enabled>yes</enabled>", "<filter_level>trace</filter_level>",
          "<filter_level>-1</filter_level>", "<queue_size>0</queue_size>",
          "<queue_size>0x0</queue_size>", "<thread><mask>STDIO|</mask></thread>",
          "<thread><priority>high</priority></thread>",
          "<thread><stack_size>-1</stack_size></thread>",
          "<thread><cpu_list><element>x</element></cpu_list></thread>",
          "<thread><cpu_rotation>1</cpu_rotation></thread>"}) {
        expectBoth(element(content), false);
    }
}

TEST_F(XmlSchema, AgreesOnProfiles) {
    const auto profile = [](const std::string &content) {
        return "<qos_library name=\"L\"><qos_profile name=\"P\">" + content +
               "</qos_profile></qos_library>";
    };
    for (const char *content :
         {"", "<participant_qos name=\"x\"/>",
          "<publisher_qos><partition><name><element>p</element></name></partition></publisher_qos>",
          "<topic_qos topic_filter=\"a*\"><durability><kind> VOLATILE_DURABILITY_QOS </kind>"
          "</durability></topic_qos>",
          "<datawriter_qos><history><depth>5</depth></history><deadline><period><sec>"
          "DURATION_INFINITY</sec></period></deadline></datawriter_qos>",
          "<datareader_qos><user_data><value>AQID</value></user_data></datareader_qos>",
          "<datareader_qos><user_data><value><element>1</element></value></user_data>"
          "</datareader_qos>"}) {
        expectBoth(profile(content), true);
    }
    for (const char *content :
         {"<writer_qos/>", "<publisher_qos topic_filter=\"a\"/>",
          "<datawriter_qos><history><kind>KEEP_SOME</kind></history></datawriter_qos>",
          "<datawriter_qos><history><depth>few</depth></history></datawriter_qos>",
          "<datawriter_qos><time_based_filter/></datawriter_qos>",
          "<participant_qos><property><value><element><value>v</value></element></value></property>"
          "</participant_qos>"}) {
        expectBoth(profile(content), false);
    }
}

}  // namespace
