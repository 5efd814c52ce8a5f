// The element `distributed_logger`: its conversions and messages, parsing, writing back, and what
// comes of parsing what was written.
#include <gtest/gtest.h>
#include <kolt/xml.h>
#include <vur_dl/DistLogger.h>
#include <vur_dl/XMLConfig.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "support/process.h"

namespace {

using support::StdoutCapture;
using Lines = std::vector<std::string>;

// "line method: message" of every error that was reported.
Lines &errors() {
    static Lines all;
    return all;
}

void logError(const char *message, const char *method, DDS_UnsignedLong line) {
    errors().push_back(std::to_string(line) + " " + method + ": " + message);
}

// A parser that knows the element.
class Document {
  public:
    Document() {
        errors().clear();
        class_ = VUR_DL_XMLConfig_createXMLExtensionClass(logError);
        EXPECT_NE(class_, nullptr);
        EXPECT_EQ(DDS_XMLParser_register_extension_class(parser_, class_), DDS_RETCODE_OK);
    }
    ~Document() {
        DDS_XMLParser_delete(parser_);
        VUR_DL_XMLConfig_destroyXMLExtensionClass(class_);
    }
    Document(const Document &) = delete;
    Document &operator=(const Document &) = delete;

    DDS_ReturnCode_t parse(const std::string &text) {
        return DDS_XMLParser_parse_string(parser_, text.c_str(), -1, "test.xml");
    }
    // The content of one element; its first line is line 3.
    DDS_ReturnCode_t parseElement(const std::string &content) {
        return parse("<dds>\n<distributed_logger>\n" + content + "\n</distributed_logger>\n</dds>");
    }
    DDS_XMLObject *root() const { return DDS_XMLParser_get_root(parser_); }
    DDS_XMLObject *object() const { return VUR_DL_XMLConfig_getDLXMLObjectFromRoot(root()); }
    VUR_DL_Options *options() const {
        return VUR_DL_XMLConfig_getDLOptions(VUR_DL_XMLConfig_getXMLConfigFromXMLRoot(root()));
    }
    std::string message() const { return DDS_XMLParser_get_error_message(parser_); }
    DDS_UnsignedLong line() const { return DDS_XMLParser_get_error_line(parser_); }

  private:
    DDS_XMLParser *parser_ = DDS_XMLParser_new();
    DDS_XMLExtensionClass *class_ = nullptr;
};

std::string save(const DDS_XMLObject *object, int *error = nullptr, DDS_Long *depth = nullptr) {
    DDS_XMLSaveContext context;
    DDS_XMLSaveContext_initialize(&context);
    DDS_XMLObject_save(object, &context);
    std::string text = DDS_XMLSaveContext_get_text(&context);
    if (error != nullptr) {
        *error = context.error;
    }
    if (depth != nullptr) {
        *depth = context.depth;
    }
    DDS_XMLSaveContext_finalize(&context);
    return text;
}

// ---- Parsing
// -------------------------------------------------------------------------------------

TEST(XmlConfigParse, EmptyElementIsTheDefaultButOff) {
    Document document;
    ASSERT_EQ(document.parseElement(""), DDS_RETCODE_OK);
    const VUR_DL_Options *options = document.options();
    ASSERT_NE(options, nullptr);
    EXPECT_EQ(options->enabled, 0);
    EXPECT_EQ(options->filterLevel, 600);
    EXPECT_EQ(options->queueSize, 128U);
    EXPECT_EQ(options->echoToStdout, 1);
    EXPECT_EQ(options->logInfrastructureMessages, 1);
    EXPECT_EQ(options->remoteAdministrationEnabled, 1);
    const DDS_ThreadSettings_t defaults = DDS_THREAD_SETTINGS_DEFAULT;
    EXPECT_TRUE(DDS_ThreadSettings_is_equal(&options->threadSettings, &defaults));
}

TEST(XmlConfigParse, EveryChildIsRead) {
    Document document;
    ASSERT_EQ(document.parseElement("<filter_level>TRACE</filter_level>"
                                    "<enabled>true</enabled>"
                                    "<queue_size>0x10</queue_size>"
                                    "<echo_to_stdout>false</echo_to_stdout>"
                                    "<log_infrastructure_messages>0</log_infrastructure_messages>"
                                    "<thread>"
                                    "<mask> stdio |\tFloating_Point </mask>"
                                    "<priority>-5</priority>"
                                    "<stack_size>0x400</stack_size>"
                                    "<cpu_list><element>0</element><element>1</element>"
                                    "<element>0x2</element></cpu_list>"
                                    "<cpu_rotation>cpu_rr_rotation</cpu_rotation>"
                                    "</thread>"),
              DDS_RETCODE_OK)
        << document.message();
    const VUR_DL_Options *options = document.options();
    EXPECT_EQ(options->filterLevel, 800);
    EXPECT_EQ(options->enabled, 1);
    EXPECT_EQ(options->queueSize, 16U);
    EXPECT_EQ(options->echoToStdout, 0);
    EXPECT_EQ(options->logInfrastructureMessages, 0);
    const DDS_ThreadSettings_t &thread = options->threadSettings;
    EXPECT_EQ(thread.mask, 0x03U);
    EXPECT_EQ(thread.priority, -5);
    EXPECT_EQ(thread.stack_size, 1024);
    ASSERT_EQ(DDS_LongSeq_get_length(&thread.cpu_list), 3U);
    for (DDS_Long i = 0; i < 3; ++i) {
        EXPECT_EQ(DDS_LongSeq_get(&thread.cpu_list, i), i);
    }
    EXPECT_EQ(thread.cpu_rotation, DDS_THREAD_SETTINGS_CPU_RR_ROTATION);
    EXPECT_TRUE(errors().empty());
}

struct WrongElement {
    std::string content;
    Lines reported;
    Lines printed = {};
};

TEST(XmlConfigParse, ErrorsAreReportedWithTheirLine) {
    const std::string kEnd = "VUR_DL_XMLConfig_onEndElement: ";
    const WrongElement rows[] = {
        {"\n<filter_level>trace</filter_level>",
         {"4 VUR_DL_XMLConfig_getFilterLevelFromString: integer expected in XML text",
          "4 " + kEnd + "invalid filter level string in XML configuration"}},
        {"<filter_level></filter_level>",
         {"3 VUR_DL_XMLConfig_getFilterLevelFromString: integer expected in XML text",
          "3 " + kEnd + "invalid filter level string in XML configuration"}},
        {"<filter_level>-3</filter_level>",
         {"3 VUR_DL_XMLConfig_getFilterLevelFromString: negative integer not allowed for filter "
          "level",
          "3 " + kEnd + "invalid filter level string in XML configuration"}},
        {"<queue_size>0</queue_size>",
         {"3 VUR_DL_XMLConfig_getQueueSize: positive integer expected"},
         {"DL Error: VUR_DL_Options_setQueueSize: Queue Size must be positive",
          "DL Error: VUR_DL_XMLConfig_onEndElement: Unable to set queue size"}},
        {"<queue_size>many</queue_size>",
         {"3 VUR_DL_XMLConfig_getQueueSize: integer expected in XML text"},
         {"DL Error: VUR_DL_Options_setQueueSize: Queue Size must be positive",
          "DL Error: VUR_DL_XMLConfig_onEndElement: Unable to set queue size"}},
        {"<thread>\n\n<mask>STDIO|</mask></thread>",
         {"5 VUR_DL_XMLConfig_getThreadSettingsKindMask: illegal value on thread mask XML tag"}},
        {"<thread><priority>abc</priority></thread>",
         {"3 VUR_DL_XMLConfig_getThreadPriority: integer expected in XML text"}},
        {"<thread><stack_size>-1</stack_size></thread>",
         {"3 VUR_DL_XMLConfig_getThreadStackSize: positive integer expected"}},
        {"<thread><cpu_list>\n<element>x</element></cpu_list></thread>",
         {"4 VUR_DL_XMLConfig_addElementToCpuList: integer expected in XML text"}},
        {"<thread><cpu_rotation>2</cpu_rotation></thread>",
         {"3 VUR_DL_XMLConfig_getCpuRotation: error getting cpu_rotation"}},
    };
    for (const WrongElement &row : rows) {
        SCOPED_TRACE(row.content);
        errno = 0;
        StdoutCapture capture;
        Document document;
        EXPECT_EQ(document.parseElement(row.content), DDS_RETCODE_ERROR);
        EXPECT_EQ(document.root(), nullptr);
        EXPECT_EQ(errors(), row.reported);
        for (const std::string &line : row.printed) {
            EXPECT_EQ(capture.count(line), 1) << line << "\n" << capture.text();
        }
        EXPECT_NE(document.line(), 0U);
    }
}

TEST(XmlConfigParse, WrongBooleanFailsTheParse) {
    for (const char *tag : {"enabled", "echo_to_stdout", "log_infrastructure_messages"}) {
        Document document;
        const std::string name = tag;
        EXPECT_EQ(document.parseElement("\n<" + name + ">yes</" + name + ">"), DDS_RETCODE_ERROR);
        EXPECT_EQ(document.message(),
                  "<" + name + ">: \"yes\" is no boolean; expected: true, false, 1, 0");
        EXPECT_EQ(document.line(), 4U);
    }
}

TEST(XmlConfigParse, FirstErrorIsTheLast) {
    Document document;
    errno = 0;
    EXPECT_EQ(document.parseElement("<filter_level>x</filter_level>\n<queue_size>y</queue_size>"),
              DDS_RETCODE_ERROR);
    EXPECT_EQ(errors().size(), 2U) << "both of the filter level";
    EXPECT_EQ(document.line(), 3U);
    EXPECT_EQ(document.message(), "<filter_level> was refused");
}

TEST(XmlConfigParse, ThreadChildrenCountInsideThreadOnly) {
    Document document;
    ASSERT_EQ(document.parseElement("<priority>7</priority><mask>nonsense</mask>"
                                    "<element>x</element><thread><priority>8</priority></thread>"
                                    "<priority>9</priority><stack_size>-4</stack_size>"),
              DDS_RETCODE_OK);
    EXPECT_EQ(document.options()->threadSettings.priority, 8);
    EXPECT_EQ(document.options()->threadSettings.mask, 0U);
    EXPECT_EQ(DDS_LongSeq_get_length(&document.options()->threadSettings.cpu_list), 0U);
}

TEST(XmlConfigParse, UnknownChildrenAndAttributesAreIgnored) {
    Document document;
    ASSERT_EQ(document.parse("<dds><distributed_logger name=\"x\"><colour>blue</colour>"
                             "<Enabled>true</Enabled><filter_level>FATAL</filter_level>"
                             "</distributed_logger></dds>"),
              DDS_RETCODE_OK);
    EXPECT_EQ(document.options()->enabled, 0);
    EXPECT_EQ(document.options()->filterLevel, 100);
}

TEST(XmlConfigParse, LastOfRepeatedChildrenWinsAndCpuListsAddUp) {
    Document document;
    ASSERT_EQ(
        document.parseElement("<filter_level>INFO</filter_level><filter_level>650</filter_level>"
                              "<thread><mask>STDIO</mask><mask>PRIORITY_ENFORCE</mask>"
                              "<cpu_list><element>3</element></cpu_list>"
                              "<cpu_list><element>1</element></cpu_list></thread>"),
        DDS_RETCODE_OK);
    EXPECT_EQ(document.options()->filterLevel, 650);
    EXPECT_EQ(document.options()->threadSettings.mask, 0x10U);
    const DDS_LongSeq &list = document.options()->threadSettings.cpu_list;
    ASSERT_EQ(DDS_LongSeq_get_length(&list), 2U);
    EXPECT_EQ(DDS_LongSeq_get(&list, 0), 3);
    EXPECT_EQ(DDS_LongSeq_get(&list, 1), 1);
}

TEST(XmlConfigParse, FirstElementInTheDocumentIsFound) {
    Document document;
    ASSERT_EQ(document.parse("<dds><other/><a><b><distributed_logger>"
                             "<filter_level>1</filter_level></distributed_logger></b></a>"
                             "<distributed_logger><filter_level>2</filter_level>"
                             "</distributed_logger></dds>"),
              DDS_RETCODE_OK);
    EXPECT_EQ(document.options()->filterLevel, 1);
    // From a node in the middle the search goes on with what follows it.
    DDS_XMLObject *other = DDS_XMLObject_get_first_child(document.root());
    DDS_XMLObject *last = DDS_XMLObject_get_next_sibling(DDS_XMLObject_get_next_sibling(other));
    EXPECT_EQ(VUR_DL_XMLConfig_getDLXMLObjectFromRoot(last), last);
    EXPECT_EQ(VUR_DL_XMLConfig_getDLXMLObjectFromRoot(other), document.object());
    ASSERT_EQ(document.parse("<dds><Distributed_Logger/></dds>"), DDS_RETCODE_OK);
    EXPECT_EQ(document.object(), nullptr);
    EXPECT_EQ(VUR_DL_XMLConfig_getDLXMLObjectFromRoot(nullptr), nullptr);
    EXPECT_EQ(VUR_DL_XMLConfig_getXMLConfigFromXMLRoot(nullptr), nullptr);
}

TEST(XmlConfigParse, ClassNeedsAFunction) {
    StdoutCapture capture;
    EXPECT_EQ(VUR_DL_XMLConfig_createXMLExtensionClass(nullptr), nullptr);
    EXPECT_EQ(VUR_DL_XMLConfig_getDLOptions(nullptr), nullptr);
    EXPECT_EQ(capture.count("DL Error: VUR_DL_XMLConfig_createXMLExtensionClass: invalid log "
                            "function"),
              1);
    EXPECT_EQ(
        capture.count("DL Error: VUR_DL_XMLConfig_getDLOptions: invalid XML configuration object"),
        1);
}

// A class of the same callbacks whose user data are wrong.
TEST(XmlConfigParse, ListenerIsChecked) {
    VUR_DL_XMLConfig_ExtensionClassListener without_function = {nullptr};
    struct Row {
        void *listener;
        const char *line;
    };
    const Row rows[] = {
        {nullptr, "DL Error: VUR_DL_XMLConfig_new: could not get extension listener"},
        {&without_function, "DL Error: VUR_DL_XMLConfig_new: invalid parsing error log function"}};
    for (const Row &row : rows) {
        StdoutCapture capture;
        DDS_XMLExtensionClass *extension = DDS_XMLExtensionClass_new(
            "distributed_logger", row.listener, nullptr, 0U, VUR_DL_XMLConfig_onStartElement,
            VUR_DL_XMLConfig_onEndElement, VUR_DL_XMLConfig_new, VUR_DL_XMLConfig_delete,
            VUR_DL_XMLConfig_save);
        DDS_XMLParser *parser = DDS_XMLParser_new();
        ASSERT_EQ(DDS_XMLParser_register_extension_class(parser, extension), DDS_RETCODE_OK);
        EXPECT_EQ(
            DDS_XMLParser_parse_string(parser, "<dds><distributed_logger/></dds>", -1, nullptr),
            DDS_RETCODE_ERROR);
        EXPECT_EQ(capture.count(row.line), 1) << capture.text();
        DDS_XMLParser_delete(parser);
        DDS_XMLExtensionClass_delete(extension);
    }
}

TEST(XmlConfigParse, EndOfAnElementChecksItsListener) {
    VUR_DL_XMLConfig config = {};
    DDS_XMLContext context = DDS_XML_CONTEXT_INITIALIZER;
    StdoutCapture capture;
    VUR_DL_XMLConfig_onEndElement(&config.baseObject, "enabled", "true", &context);
    EXPECT_EQ(capture.count("DL Error: VUR_DL_XMLConfig_onEndElement: invalid extension listener"),
              1);
    VUR_DL_XMLConfig_ExtensionClassListener without_function = {nullptr};
    config.extensionListener = &without_function;
    VUR_DL_XMLConfig_onEndElement(&config.baseObject, "enabled", "true", &context);
    EXPECT_EQ(capture.count("DL Error: VUR_DL_XMLConfig_onEndElement: invalid log parse error "
                            "function pointer"),
              1);
}

// ---- The state that the tags lead through
// --------------------------------------------------------

TEST(XmlConfigState, FollowsTheTags) {
    Document document;
    ASSERT_EQ(document.parseElement(""), DDS_RETCODE_OK);
    auto *config = reinterpret_cast<VUR_DL_XMLConfig *>(document.object());
    DDS_XMLContext context = DDS_XML_CONTEXT_INITIALIZER;
    const auto start = [&](const char *tag) {
        const char *none = nullptr;
        VUR_DL_XMLConfig_onStartElement(&config->baseObject, tag, &none, &context);
        return config->currentStatus;
    };
    const auto end = [&](const char *tag, const char *text) {
        VUR_DL_XMLConfig_onEndElement(&config->baseObject, tag, text, &context);
        return config->currentStatus;
    };
    EXPECT_EQ(config->currentStatus, DL_XMLCONFIG_OTHER);
    EXPECT_EQ(start("mask"), DL_XMLCONFIG_OTHER);
    EXPECT_EQ(start("filter_level"), DL_XMLCONFIG_FILTER_LEVEL_TAG);
    EXPECT_EQ(end("enabled", "true"), DL_XMLCONFIG_FILTER_LEVEL_TAG) << "not its own end tag";
    EXPECT_EQ(end("filter_level", "x"), DL_XMLCONFIG_FILTER_LEVEL_TAG) << "an error keeps it";
    EXPECT_EQ(context.error, 1);
    EXPECT_EQ(end("filter_level", "5"), DL_XMLCONFIG_OTHER);
    EXPECT_EQ(start("enabled"), DL_XMLCONFIG_ENABLED_TAG);
    EXPECT_EQ(end("enabled", "true"), DL_XMLCONFIG_OTHER);
    EXPECT_EQ(start("echo_to_stdout"), DL_XMLCONFIG_ECHO_TO_STDOUT_TAG);
    EXPECT_EQ(end("echo_to_stdout", "false"), DL_XMLCONFIG_OTHER);
    EXPECT_EQ(start("log_infrastructure_messages"), DL_XMLCONFIG_LOG_INFRASTRUCTURE_MESSAGES_TAG);
    EXPECT_EQ(end("log_infrastructure_messages", "false"), DL_XMLCONFIG_OTHER);
    EXPECT_EQ(start("queue_size"), DL_XMLCONFIG_QUEUE_SIZE_TAG);
    EXPECT_EQ(end("queue_size", "9"), DL_XMLCONFIG_OTHER);
    EXPECT_EQ(start("thread"), DL_XMLCONFIG_THREAD_TAG);
    EXPECT_EQ(start("element"), DL_XMLCONFIG_THREAD_TAG);
    EXPECT_EQ(start("mask"), DL_XMLCONFIG_THREAD_MASK_TAG);
    EXPECT_EQ(start("priority"), DL_XMLCONFIG_THREAD_MASK_TAG) << "a child of mask";
    EXPECT_EQ(end("mask", ""), DL_XMLCONFIG_THREAD_TAG);
    EXPECT_EQ(start("priority"), DL_XMLCONFIG_THREAD_PRIORITY_TAG);
    EXPECT_EQ(end("priority", "1"), DL_XMLCONFIG_THREAD_TAG);
    EXPECT_EQ(start("stack_size"), DL_XMLCONFIG_THREAD_STACK_SIZE_TAG);
    EXPECT_EQ(end("stack_size", "0"), DL_XMLCONFIG_THREAD_TAG);
    EXPECT_EQ(start("cpu_list"), DL_XMLCONFIG_THREAD_CPU_LIST_TAG);
    EXPECT_EQ(start("element"), DL_XMLCONFIG_THREAD_CPU_LIST_TAG);
    EXPECT_EQ(end("element", "4"), DL_XMLCONFIG_THREAD_CPU_LIST_TAG);
    EXPECT_EQ(end("cpu_list", ""), DL_XMLCONFIG_THREAD_TAG);
    EXPECT_EQ(start("cpu_rotation"), DL_XMLCONFIG_THREAD_CPU_ROTATION_TAG);
    EXPECT_EQ(end("cpu_rotation", "CPU_NO_ROTATION"), DL_XMLCONFIG_THREAD_TAG);
    EXPECT_EQ(end("thread", ""), DL_XMLCONFIG_OTHER);
    EXPECT_EQ(end("distributed_logger", ""), DL_XMLCONFIG_OTHER);
    EXPECT_EQ(document.options()->filterLevel, 5);
    EXPECT_EQ(document.options()->queueSize, 9U);
}

// ---- Conversions
// ---------------------------------------------------------------------------------

class XmlConfigConversion : public testing::Test {
  protected:
    void SetUp() override {
        errors().clear();
        errno = 0;
    }
    // The messages since the last call, without line and method; the context's error is cleared.
    Lines take() {
        Lines result;
        for (const std::string &error : errors()) {
            result.push_back(error.substr(error.find(": ") + 2));
        }
        EXPECT_EQ(context_.error, result.empty() ? 0 : 1);
        context_.error = 0;
        errors().clear();
        return result;
    }
    DDS_XMLContext context_ = DDS_XML_CONTEXT_INITIALIZER;
};

TEST_F(XmlConfigConversion, FilterLevel) {
    const auto level = [&](const char *text) {
        return VUR_DL_XMLConfig_getFilterLevelFromString(text, &context_, logError);
    };
    const std::pair<const char *, int> right[] = {
        {"SILENT", 0},   {"FATAL", 100}, {"SEVERE", 200}, {"ERROR", 300},   {"WARNING", 400},
        {"NOTICE", 500}, {"INFO", 600},  {"DEBUG", 700},  {"TRACE", 800},   {"650", 650},
        {" +7x", 7},     {"010", 10},    {"0x10", 0},     {"4294967296", 0}};
    for (const auto &[text, value] : right) {
        EXPECT_EQ(level(text), value) << text;
        EXPECT_EQ(take(), Lines{}) << text;
    }
    EXPECT_EQ(level(nullptr), -1);
    EXPECT_EQ(errors(), Lines{"0 VUR_DL_XMLConfig_getFilterLevelFromString: null string found for "
                              "filter level"});
    EXPECT_EQ(take().size(), 1U);
    for (const char *text : {"info", " INFO", "INFO ", "", "x1"}) {
        EXPECT_EQ(level(text), -1) << text;
        EXPECT_EQ(take(), Lines{"integer expected in XML text"}) << text;
    }
    for (const char *text : {"-1", "2147483648", "99999999999999999999"}) {
        EXPECT_EQ(level(text), -1) << text;
        EXPECT_EQ(take(), Lines{"negative integer not allowed for filter level"}) << text;
    }
}

TEST_F(XmlConfigConversion, QueueSize) {
    int size = 77;
    const auto convert = [&](const char *text) {
        VUR_DL_XMLConfig_getQueueSize(&size, text, &context_, logError);
        return size;
    };
    const std::pair<const char *, int> right[] = {
        {"1", 1}, {"0x10", 16}, {"010", 8}, {" 12 messages", 12}, {"4294967297", 1}};
    for (const auto &[text, value] : right) {
        EXPECT_EQ(convert(text), value) << text;
        EXPECT_EQ(take(), Lines{}) << text;
    }
    size = 77;
    EXPECT_EQ(convert("many"), 77);
    EXPECT_EQ(take(), Lines{"integer expected in XML text"});
    for (const char *text : {"0", "-1", "2147483648", "4294967296"}) {
        EXPECT_EQ(convert(text), 77) << text;
        EXPECT_EQ(take(), Lines{"positive integer expected"}) << text;
    }
    EXPECT_EQ(convert("99999999999999999999"), 77);
    EXPECT_EQ(take(), Lines{"integer out of bounds in XML text"});
    // A range error that somebody else left behind counts, too.
    errno = ERANGE;
    EXPECT_EQ(convert("5"), 77);
    EXPECT_EQ(take(), Lines{"integer out of bounds in XML text"});
    errno = 0;
    EXPECT_EQ(convert("5"), 5);
}

TEST_F(XmlConfigConversion, ThreadMask) {
    DDS_ThreadSettingsKindMask mask = 0xFFU;
    const auto convert = [&](const std::string &text) {
        VUR_DL_XMLConfig_getThreadSettingsKindMask(&mask, text.c_str(), &context_, logError);
        return mask;
    };
    const std::pair<const char *, DDS_ThreadSettingsKindMask> right[] = {
        {"", 0U},
        {" \t\n", 0U},
        {"mask_default", 0U},
        {"DDS_THREAD_SETTINGS_KIND_MASK_DEFAULT", 0U},
        {"THREAD_SETTINGS_KIND_MASK_DEFAULT|STDIO", 2U},
        {"stdio | Floating_Point", 3U},
        {"DDS_THREAD_SETTINGS_REALTIME_PRIORITY", 8U},
        {"thread_settings_priority_enforce", 16U},
        {"PRIORITY_ENFORCE|REALTIME_PRIORITY|DDS_THREAD_SETTINGS_STDIO|FLOATING_POINT", 27U}};
    for (const auto &[text, value] : right) {
        EXPECT_EQ(convert(text), value) << text;
        EXPECT_EQ(take(), Lines{}) << text;
    }
    const std::pair<const char *, DDS_ThreadSettingsKindMask> wrong[] = {
        {"STDIO|", 2U}, {"STDIO||FLOATING_POINT", 2U}, {"|STDIO", 0U},
        {"4", 0U},      {"STDIO FLOATING_POINT", 0U},  {"STDIO|x|FLOATING_POINT", 2U}};
    for (const auto &[text, value] : wrong) {
        EXPECT_EQ(convert(text), value) << text;
        EXPECT_EQ(take(), Lines{"illegal value on thread mask XML tag"}) << text;
    }
    mask = 0x5AU;
    EXPECT_EQ(convert(std::string(2048, ' ')), 0x5AU);
    EXPECT_EQ(take(), Lines{"thread settings kind too long"});
    EXPECT_EQ(convert(std::string(2047, ' ')), 0U);
    EXPECT_EQ(take(), Lines{});
    VUR_DL_XMLConfig_getThreadSettingsKindMask(&mask, nullptr, &context_, logError);
    EXPECT_EQ(take(), Lines{"error trimming thread settings mask string"});
}

TEST_F(XmlConfigConversion, FirstElementOfAMask) {
    char text[] = "one|two|three";
    char *rest = VUR_DL_XMLConfig_separateFirstElementFromMask(text);
    EXPECT_STREQ(text, "one");
    EXPECT_STREQ(rest, "two|three");
    char last[] = "one|";
    EXPECT_STREQ(VUR_DL_XMLConfig_separateFirstElementFromMask(last), "");
    char only[] = "one";
    EXPECT_EQ(VUR_DL_XMLConfig_separateFirstElementFromMask(only), nullptr);
}

TEST_F(XmlConfigConversion, ThreadPriority) {
    DDS_Long priority = 77;
    const auto convert = [&](const char *text) {
        VUR_DL_XMLConfig_getThreadPriority(&priority, text, &context_, logError);
        return priority;
    };
    for (const char *name : {"DEFAULT", "HIGH", "ABOVE_NORMAL", "NORMAL", "BELOW_NORMAL", "LOW"}) {
        priority = 77;
        EXPECT_EQ(convert(("DDS_THREAD_PRIORITY_" + std::string(name)).c_str()), -9999999);
        priority = 77;
        EXPECT_EQ(convert(("thread_priority_" + std::string(name)).c_str()), -9999999);
    }
    for (const char *name : {"MAX_PRIORITY", "norm_priority", "Min_Priority"}) {
        priority = 77;
        EXPECT_EQ(convert(name), -9999999);
    }
    EXPECT_EQ(convert("10"), 10);
    EXPECT_EQ(convert("-5"), -5);
    EXPECT_EQ(convert("0x10"), 0);
    EXPECT_EQ(take(), Lines{});
    priority = 77;
    EXPECT_EQ(convert("abc"), 0);
    EXPECT_EQ(take(), Lines{"integer expected in XML text"});
}

TEST_F(XmlConfigConversion, ThreadStackSize) {
    DDS_Long size = 77;
    const auto convert = [&](const char *text) {
        VUR_DL_XMLConfig_getThreadStackSize(&size, text, &context_, logError);
        return size;
    };
    EXPECT_EQ(convert("0"), 0);
    EXPECT_EQ(convert("0x400"), 1024);
    EXPECT_EQ(convert("020"), 16);
    EXPECT_EQ(convert("thread_stack_size_default"), -1);
    EXPECT_EQ(convert("DDS_THREAD_STACK_SIZE_DEFAULT"), -1);
    EXPECT_EQ(take(), Lines{});
    size = 77;
    EXPECT_EQ(convert("-1"), 77);
    EXPECT_EQ(take(), Lines{"positive integer expected"});
    EXPECT_EQ(convert("big"), 77);
    EXPECT_EQ(take(), Lines{"integer expected in XML text"});
    EXPECT_EQ(convert("99999999999999999999"), 77);
    EXPECT_EQ(take(), Lines{"integer out of bounds in XML text"});
}

TEST_F(XmlConfigConversion, CpuListAndRotation) {
    DDS_LongSeq list = DDS_SEQUENCE_INITIALIZER;
    const auto add = [&](const char *text) {
        VUR_DL_XMLConfig_addElementToThreadCpuList(&list, text, &context_, logError);
    };
    add("3");
    add("0x11");
    EXPECT_EQ(take(), Lines{});
    add("x");
    EXPECT_EQ(take(), Lines{"integer expected in XML text"});
    add("-1");
    EXPECT_EQ(take(), Lines{"positive integer expected"});
    ASSERT_EQ(DDS_LongSeq_get_length(&list), 4U);
    EXPECT_EQ(DDS_LongSeq_get_maximum(&list), 4U) << "it grows one by one";
    EXPECT_EQ(DDS_LongSeq_get(&list, 0), 3);
    EXPECT_EQ(DDS_LongSeq_get(&list, 1), 17);
    EXPECT_EQ(DDS_LongSeq_get(&list, 2), 0);
    DDS_LongSeq_finalize(&list);
    // A list that cannot grow.
    DDS_Long loaned[1] = {5};
    ASSERT_TRUE(DDS_LongSeq_loan_contiguous(&list, loaned, 1, 1));
    add("1");
    EXPECT_EQ(errors(), Lines{"0 VUR_DL_XMLConfig_addElementToCpuList: failed to ensure sequence "
                              "length"});
    EXPECT_EQ(take().size(), 1U);
    DDS_LongSeq_unloan(&list);

    DDS_ThreadSettingsCpuRotationKind rotation = DDS_THREAD_SETTINGS_CPU_NO_ROTATION;
    const auto rotate = [&](const char *text) {
        VUR_DL_XMLConfig_getThreadCpuRotation(&rotation, text, &context_, logError);
        return rotation;
    };
    for (const char *prefix : {"", "THREAD_SETTINGS_", "dds_thread_settings_"}) {
        EXPECT_EQ(rotate((prefix + std::string("CPU_RR_ROTATION")).c_str()),
                  DDS_THREAD_SETTINGS_CPU_RR_ROTATION);
        EXPECT_EQ(rotate((prefix + std::string("cpu_no_rotation")).c_str()),
                  DDS_THREAD_SETTINGS_CPU_NO_ROTATION);
    }
    EXPECT_EQ(take(), Lines{});
    rotate("CPU_RR_ROTATION");
    EXPECT_EQ(rotate("0"), DDS_THREAD_SETTINGS_CPU_RR_ROTATION);
    EXPECT_EQ(errors(), Lines{"0 VUR_DL_XMLConfig_getCpuRotation: error getting cpu_rotation"});
    EXPECT_EQ(take().size(), 1U);
}

// ---- Writing
// -------------------------------------------------------------------------------------

TEST(XmlConfigSave, UnchangedConfigurationIsSevenLines) {
    Document document;
    ASSERT_EQ(document.parseElement(""), DDS_RETCODE_OK);
    EXPECT_EQ(save(document.object()),
              "<distributed_logger>\n"
              "    <filter_level>INFO</filter_level>\n"
              "    <enabled>false</enabled>\n"
              "<echo_to_stdout>true</echo_to_stdout>\n"
              "<log_infrastructure_messages>true</log_infrastructure_messages>\n"
              "    <queue_size>128</queue_size>\n"
              "</distributed_logger>\n");
}

TEST(XmlConfigSave, EverythingIsWrittenAtItsDepth) {
    Document document;
    ASSERT_EQ(document.parseElement(
                  "<filter_level>650</filter_level><enabled>1</enabled><queue_size>5</queue_size>"
                  "<thread><mask>STDIO|FLOATING_POINT|PRIORITY_ENFORCE|REALTIME_PRIORITY</mask>"
                  "<priority>3</priority><stack_size>0</stack_size>"
                  "<cpu_list><element>2</element><element>0</element></cpu_list>"
                  "<cpu_rotation>CPU_RR_ROTATION</cpu_rotation></thread>"),
              DDS_RETCODE_OK);
    EXPECT_EQ(save(document.root()),
              "<dds>\n"
              "    <distributed_logger>\n"
              "        <filter_level>650</filter_level>\n"
              "        <enabled>true</enabled>\n"
              "<echo_to_stdout>true</echo_to_stdout>\n"
              "<log_infrastructure_messages>true</log_infrastructure_messages>\n"
              "        <thread>\n"
              "            <mask>THREAD_SETTINGS_FLOATING_POINT | THREAD_SETTINGS_STDIO | "
              "THREAD_SETTINGS_REALTIME_PRIORITY | THREAD_SETTINGS_PRIORITY_ENFORCE</mask>\n"
              "                        <priority>3</priority>\n"
              "            <stack_size>0</stack_size>\n"
              "            <cpu_list>\n"
              "                <element>2</element>\n"
              "                <element>0</element>\n"
              "            </cpu_list>\n"
              "            <cpu_rotation>THREAD_SETTINGS_CPU_RR_ROTATION</cpu_rotation>\n"
              "        </thread>\n"
              "        <queue_size>5</queue_size>\n"
              "    </distributed_logger>\n"
              "</dds>\n");
}

TEST(XmlConfigSave, RotationAloneMakesAThreadElement) {
    Document document;
    ASSERT_EQ(
        document.parseElement("<thread><cpu_rotation>CPU_RR_ROTATION</cpu_rotation></thread>"),
        DDS_RETCODE_OK);
    const std::string text = save(document.object());
    EXPECT_NE(text.find("    <thread>\n"
                        "        <mask></mask>\n"
                        "        <priority>THREAD_PRIORITY_DEFAULT</priority>\n"
                        "        <cpu_list></cpu_list>\n"
                        "        <cpu_rotation>THREAD_SETTINGS_CPU_RR_ROTATION</cpu_rotation>\n"
                        "    </thread>\n"),
              std::string::npos)
        << text;
}

TEST(XmlConfigSave, NamedLevelsAreWrittenByName) {
    const std::pair<int, const char *> rows[] = {
        {0, "SILENT"},   {100, "FATAL"}, {200, "SEVERE"}, {300, "ERROR"}, {400, "WARNING"},
        {500, "NOTICE"}, {600, "INFO"},  {700, "DEBUG"},  {800, "TRACE"}, {801, "801"}};
    Document document;
    ASSERT_EQ(document.parseElement(""), DDS_RETCODE_OK);
    for (const auto &[level, name] : rows) {
        document.options()->filterLevel = level;
        EXPECT_NE(
            save(document.object()).find("<filter_level>" + std::string(name) + "</filter_level>"),
            std::string::npos);
    }
}

TEST(XmlConfigSave, UnknownRotationStopsTheElement) {
    Document document;
    ASSERT_EQ(document.parseElement(""), DDS_RETCODE_OK);
    document.options()->threadSettings.mask = DDS_THREAD_SETTINGS_STDIO;
    const int unknown = 7;
    std::memcpy(&document.options()->threadSettings.cpu_rotation, &unknown, sizeof(unknown));
    int error = 0;
    const std::string text = save(document.object(), &error);
    EXPECT_EQ(error, 1);
    EXPECT_NE(text.find("<thread>"), std::string::npos);
    EXPECT_EQ(text.find("</thread>"), std::string::npos);
    EXPECT_EQ(text.find("queue_size"), std::string::npos);
    EXPECT_EQ(text.find("</distributed_logger>"), std::string::npos);
}

TEST(XmlConfigSave, MissingOptionsAreAnError) {
    Document document;
    ASSERT_EQ(document.parseElement(""), DDS_RETCODE_OK);
    auto *config = reinterpret_cast<VUR_DL_XMLConfig *>(document.object());
    config->parsedDLOptions = VUR_DL_Options_delete(config->parsedDLOptions);
    int error = 0;
    DDS_Long depth = 0;
    EXPECT_EQ(save(document.object(), &error, &depth), "<distributed_logger>\n    ");
    EXPECT_EQ(error, 1);
    EXPECT_EQ(depth, 1);
}

TEST(XmlConfigSave, OtherMaskBitsAreDropped) {
    Document document;
    ASSERT_EQ(document.parseElement(""), DDS_RETCODE_OK);
    document.options()->threadSettings.mask = 0xE6U;
    EXPECT_NE(save(document.object()).find("<mask>THREAD_SETTINGS_STDIO</mask>"),
              std::string::npos);
}

// What is written parses back to the same options, and is written the same again.
TEST(XmlConfigSave, ParsesBack) {
    std::mt19937 random(20240607);
    const auto number = [&](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    const auto coin = [&] { return number(0, 1); };
    for (int n = 0; n < 1000; ++n) {
        Document document;
        ASSERT_EQ(document.parseElement(""), DDS_RETCODE_OK);
        VUR_DL_Options *options = document.options();
        options->filterLevel = coin() != 0 ? 100 * number(0, 9) : number(0, 2147483647);
        options->enabled = coin();
        options->echoToStdout = coin();
        options->logInfrastructureMessages = coin();
        options->queueSize = static_cast<DDS_UnsignedLong>(number(1, 2147483647));
        if (coin() != 0) {
            DDS_ThreadSettings_t &thread = options->threadSettings;
            thread.mask = static_cast<DDS_UnsignedLong>(number(0, 31)) & 0x1BU;
            thread.priority = coin() != 0 ? -9999999 : number(-2147483647, 2147483647);
            thread.stack_size = coin() != 0 ? -1 : number(0, 2147483647);
            thread.cpu_rotation = static_cast<DDS_ThreadSettingsCpuRotationKind>(coin());
            const int processors = number(0, 5);
            ASSERT_TRUE(DDS_LongSeq_ensure_length(&thread.cpu_list, processors, processors));
            for (int i = 0; i < processors; ++i) {
                *DDS_LongSeq_get_reference(&thread.cpu_list, i) = number(0, 2147483647);
            }
        }
        const std::string text = save(document.root());
        Document again;
        errno = 0;
        ASSERT_EQ(again.parse(text), DDS_RETCODE_OK) << text << again.message();
        ASSERT_TRUE(VUR_DL_Options_equals(options, again.options())) << text;
        ASSERT_EQ(save(again.root()), text);
    }
}

// ---- Starting, as far as it needs no network
// ------------------------------------------------------

TEST(XmlConfigStart, RefusesWhatIsMissing) {
    StdoutCapture capture;
    Document document;
    ASSERT_EQ(document.parseElement("<enabled>true</enabled>"), DDS_RETCODE_OK);
    EXPECT_EQ(VUR_DL_XMLConfig_startWithXMLConfiguration(nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(VUR_DL_XMLConfig_startWithXMLConfiguration(nullptr, document.options(), nullptr), 0);
    const std::string method = "VUR_DL_XMLConfig_startWithXMLConfiguration: ";
    EXPECT_EQ(capture.count("DL Error: " + method + "no options found in XML configuration"), 1);
    EXPECT_EQ(capture.count("DL Error: " + method + "invalid DomainParticipant"), 1);
}

TEST(XmlConfigStart, OffUnlessEnabled) {
    StdoutCapture capture;
    Document document;
    ASSERT_EQ(document.parseElement(""), DDS_RETCODE_OK);
    DDS_DomainParticipant participant = {};  // nobody looks at it
    EXPECT_EQ(VUR_DL_XMLConfig_startWithXMLConfiguration(&participant, document.options(), "kind"),
              1);
    EXPECT_EQ(capture.count("DL Info: VUR_DL_XMLConfig_startWithXMLConfiguration: DL not enabled "
                            "in XML Options. It won't be created"),
              1);
    EXPECT_EQ(VUR_DL_DistLogger_isDistLoggerRunning(), 0);
    EXPECT_EQ(document.options()->domainParticipant, nullptr);
    EXPECT_EQ(document.options()->applicationKind, nullptr);
}

TEST(XmlConfigStart, FileThatCannotBeUsedIsSaid) {
    StdoutCapture capture;
    const std::string method = "DL Error: VUR_DL_XMLConfig_startFromFile: ";
    EXPECT_EQ(VUR_DL_XMLConfig_startFromFile(nullptr, nullptr, 0, nullptr), 0);
    EXPECT_EQ(capture.count(method + "no path given"), 1);
    EXPECT_EQ(VUR_DL_XMLConfig_startFromFile("/nowhere.xml", nullptr, 0, nullptr), 0);
    EXPECT_EQ(capture.count(method + "/nowhere.xml, line 0: cannot open the file: No such file or "
                                     "directory"),
              1)
        << capture.text();
}

}  // namespace
