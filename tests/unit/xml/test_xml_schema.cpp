// SPDX-License-Identifier: Apache-2.0
// xml/distlog.xsd agrees with the library: what one accepts the other accepts, one knows no
// element, attribute or name of a value that the other does not, and the examples are right. The
// checks need xmllint (Debian package libxml2-utils) and fail without it.
#include <gtest/gtest.h>
#include <kolt/domain.h>
#include <kolt/xml.h>
#include <vur_dl/XMLConfig.h>

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "support/config/xml_config.h"
#include "support/logger/log_capture.h"
#include "unit/xml/xml_schema_grammar.h"

namespace {

class XmlSchema : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(std::system("xmllint --version >/dev/null 2>&1"), 0)
            << "xmllint is not installed (Debian package libxml2-utils)";
        const char *source = std::getenv("VUR_DL_TEST_SOURCE_DIR");
        ASSERT_NE(source, nullptr) << "run by ctest";
        source_ = source;
        unsetenv("KOLT_QOS_PROFILES");
        path_ = "/tmp/vur_dl_schema_" + std::to_string(getpid()) + ".xml";
    }
    void TearDown() override { std::filesystem::remove(path_); }

    // Returns the message that was logged last.
    std::string last_message() const {
        const std::vector<support::LogLine> lines = log_.lines();
        return lines.empty() ? "" : lines.back().text;
    }

    std::string schema_text() const {
        std::ifstream file(source_ + "/xml/distlog.xsd");
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    bool schema_accepts(const std::string &path) const {
        const std::string command = "xmllint --noout --nonet --schema '" + source_ +
                                    "/xml/distlog.xsd' '" + path + "' >/dev/null 2>&1";
        return std::system(command.c_str()) == 0;
    }

    static bool profiles_are_accepted(const std::string &path) {
        DDS_DomainParticipantFactory *factory = DDS_DomainParticipantFactory_get_instance();
        DDS_DomainParticipantFactory_unload_profiles(factory);
        return KOLT_DomainParticipantFactory_add_profiles(factory, path.c_str()) == DDS_RETCODE_OK;
    }

    // The document is parsed with the logger's element, and its profiles are loaded.
    static bool library_accepts(const std::string &path) {
        errno = 0;
        DDS_XMLExtensionClass *extension = VUR_DL_XMLConfig_createXMLExtensionClass(
            [](const char *, const char *, DDS_UnsignedLong) {});
        DDS_XMLParser *parser = DDS_XMLParser_new();
        DDS_XMLParser_register_extension_class(parser, extension);
        const bool accepts = DDS_XMLParser_parse_file(parser, path.c_str()) == DDS_RETCODE_OK &&
                             profiles_are_accepted(path);
        DDS_XMLParser_delete(parser);
        VUR_DL_XMLConfig_destroyXMLExtensionClass(extension);
        return accepts;
    }

    void expect_both(const std::string &content, bool accepted) const {
        SCOPED_TRACE(content);
        std::ofstream(path_) << "<dds>" << content << "</dds>";
        EXPECT_EQ(schema_accepts(path_), accepted) << "schema";
        EXPECT_EQ(library_accepts(path_), accepted) << "library: " << last_message();
    }

    support::LogCapture log_;
    std::string source_;
    std::string path_;
};

TEST_F(XmlSchema, ExamplesAreRight) {
    int count = 0;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(source_ + "/examples")) {
        if (entry.path().extension() == ".xml") {
            ++count;
            EXPECT_TRUE(schema_accepts(entry.path())) << entry.path();
            EXPECT_TRUE(library_accepts(entry.path())) << entry.path();
        }
    }
    EXPECT_GT(count, 0);
}

// Every element, attribute and name of a value of QoS libraries. The library tells what it knows in
// its messages about wrong documents.
TEST_F(XmlSchema, KnowsTheSameQosAsTheLibrary) {
    const schema::Grammar known = schema::grammar_of_library([this](const std::string &document) {
        std::ofstream(path_) << document;
        log_.clear();
        return profiles_are_accepted(path_) ? "" : last_message();
    });
    const schema::Grammar said = schema::grammar_of_schema(schema_text(), "qos_library");
    EXPECT_EQ(known.size(), said.size());
    EXPECT_GT(said.size(), 200U);
    for (const auto &[path, place] : said) {
        const auto found = known.find(path);
        if (found == known.end()) {
            ADD_FAILURE() << "only the schema knows " << path;
        } else {
            EXPECT_EQ(schema::to_string({{path, place}}), schema::to_string({*found}));
        }
    }
    for (const auto &[path, place] : known) {
        EXPECT_TRUE(said.contains(path)) << "only the library knows " << path;
    }
}

// Every child of the logger's element: each puts the parser's object into a state of its own.
TEST_F(XmlSchema, KnowsTheSameChildrenOfTheLoggerAsTheLibrary) {
    support::XmlConfigDocument document;
    ASSERT_EQ(document.parse_element(""), DDS_RETCODE_OK);
    auto &config = *reinterpret_cast<VUR_DL_XMLConfig *>(document.object());
    const auto state_after = [&](DL_XMLConfig_TagType before, const char *tag) {
        config.currentStatus = before;
        VUR_DL_XMLConfig_onStartElement(&config.baseObject, tag, nullptr, nullptr);
        return config.currentStatus;
    };
    const schema::Grammar said = schema::grammar_of_schema(schema_text(), "distributed_logger");
    std::map<int, std::string> states;
    for (const std::string &name : said.at("distributed_logger").elements) {
        const int state = state_after(DL_XMLCONFIG_OTHER, name.c_str());
        EXPECT_TRUE(states.emplace(state, name).second) << name << ", " << states[state];
    }
    for (const std::string &name : said.at("distributed_logger/thread").elements) {
        const int state = state_after(DL_XMLCONFIG_THREAD_TAG, name.c_str());
        EXPECT_TRUE(states.emplace(state, name).second) << name << ", " << states[state];
    }
    for (int state = DL_XMLCONFIG_FILTER_LEVEL_TAG;
         state <= DL_XMLCONFIG_LOG_INFRASTRUCTURE_MESSAGES_TAG; ++state) {
        EXPECT_TRUE(states.contains(state)) << "no element of the schema for the state " << state;
    }
    EXPECT_EQ(states.size(), 11U);
    EXPECT_EQ(said.at("distributed_logger/thread/cpu_list").elements,
              std::set<std::string>{"element"});
}

// Every name that the schema has for a value of the logger.
TEST_F(XmlSchema, NamesOfTheLoggersValuesAreAccepted) {
    int count = 0;
    for (const auto &[path, place] :
         schema::grammar_of_schema(schema_text(), "distributed_logger")) {
        for (const std::string &name : place.names) {
            std::string document = name;
            std::string rest = path;
            while (!rest.empty()) {
                const std::size_t slash = rest.rfind('/');
                const std::string tag = rest.substr(slash == std::string::npos ? 0 : slash + 1);
                document.insert(0, "<" + tag + ">");
                document += "</" + tag + ">";
                rest.resize(slash == std::string::npos ? 0 : slash);
            }
            std::ofstream(path_) << "<dds>" << document << "</dds>";
            EXPECT_TRUE(library_accepts(path_)) << document;
            ++count;
        }
    }
    // Levels, priorities, stack sizes, rotations, 0 and 1 of three booleans, and names of the mask.
    EXPECT_EQ(count, 9 + 15 + 2 + 6 + 6 + 15);
}

TEST_F(XmlSchema, AgreesOnTheElementOfTheLogger) {
    const auto element = [](const std::string &content) {
        return "<distributed_logger>" + content + "</distributed_logger>";
    };
    for (const char *content :
         {"", "<enabled>TRUE</enabled>", "<filter_level>TRACE</filter_level>",
          "<filter_level>650</filter_level>", "<queue_size>0x1F</queue_size>",
          "<thread><mask/></thread>", "<thread><mask> STDIO | FLOATING_POINT </mask></thread>",
          // NOLINTNEXTLINE(bugprone-suspicious-missing-comma): one text in two parts
          "<thread><mask>THREAD_SETTINGS_STDIO|DDS_THREAD_SETTINGS_KIND_MASK_DEFAULT</mask></"
          "thread>",
          "<thread><priority>-5</priority><priority>MAX_PRIORITY</priority></thread>",
          "<thread><stack_size>0</stack_size></thread>",
          "<thread><cpu_list><element>1</element></cpu_list><cpu_list/></thread>",
          "<thread><cpu_rotation>CPU_RR_ROTATION</cpu_rotation></thread>"}) {
        expect_both(element(content), true);
    }
    for (const char *content :
         {"<enabled>yes</enabled>", "<filter_level>trace</filter_level>",
          "<filter_level>-1</filter_level>", "<queue_size>0</queue_size>",
          "<queue_size>0x0</queue_size>", "<queue_size/>", "<thread><mask>STDIO|</mask></thread>",
          "<thread><mask>STDOI</mask></thread>", "<filter_level/>",
          "<filter_level> INFO</filter_level>", "<thread><priority>high</priority></thread>",
          "<thread><stack_size>-1</stack_size></thread>",
          "<thread><cpu_list><element>x</element></cpu_list></thread>",
          "<thread><cpu_rotation>1</cpu_rotation></thread>"}) {
        expect_both(element(content), false);
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
          "</datareader_qos>",
          "<datawriter_qos><history><depth>0x10</depth></history><resource_limits><max_samples>-1"
          "</max_samples><max_instances>LENGTH_UNLIMITED</max_instances></resource_limits>"
          "</datawriter_qos>"}) {
        expect_both(profile(content), true);
    }
    for (const char *content :
         {"<writer_qos/>", "<publisher_qos topic_filter=\"a\"/>",
          "<datawriter_qos><history><kind>KEEP_SOME</kind></history></datawriter_qos>",
          "<datawriter_qos><history><depth>few</depth></history></datawriter_qos>",
          "<datawriter_qos><history><depth>0</depth></history></datawriter_qos>",
          "<topic_qos><durability_service><history_depth>0x0</history_depth></durability_service>"
          "</topic_qos>",
          "<datawriter_qos><resource_limits><max_samples>0</max_samples></resource_limits>"
          "</datawriter_qos>",
          "<datawriter_qos><resource_limits><max_instances>-2</max_instances></resource_limits>"
          "</datawriter_qos>",
          "<datawriter_qos><deadline><period>5</period></deadline></datawriter_qos>",
          "<datawriter_qos kind=\"x\"/>", "<datawriter_qos><time_based_filter/></datawriter_qos>",
          "<participant_qos><property><value><element><value>v</value></element></value></property>"
          "</participant_qos>"}) {
        expect_both(profile(content), false);
    }
}

TEST_F(XmlSchema, AgreesOnNames) {
    for (const char *content :
         {"<qos_library name=\"a:b\"><qos_profile name=\"P\"/><qos_profile name=\"Q\" "
          "base_name=\"P\" is_default_qos=\"1\"/><qos_profile name=\"R\" "
          "base_name=\"a:b::P\"/></qos_library>",
          "<qos_library name=\"L\"/><qos_library name=\"L\"/>"}) {
        expect_both(content, true);
    }
    for (const char *content :
         {"<qos_library/>", "<qos_library name=\"\"/>", "<qos_library name=\"a::b\"/>",
          "<qos_library name=\"L\" x=\"y\"/>", "<qos_library name=\"L\"><profile/></qos_library>",
          "<qos_library name=\"L\"><qos_profile/></qos_library>",
          "<qos_library name=\"L\"><qos_profile name=\"P\" is_default_qos=\"yes\"/></qos_library>",
          "<qos_library name=\"L\"><qos_profile name=\"P\" base=\"Q\"/></qos_library>",
          "<qos_library name=\"L\"><qos_profile name=\"P\" base_name=\"::Q\"/></qos_library>",
          "<qos_library name=\"L\"><qos_profile name=\"P\" base_name=\"Q::\"/></qos_library>"}) {
        expect_both(content, false);
    }
}

}  // namespace
