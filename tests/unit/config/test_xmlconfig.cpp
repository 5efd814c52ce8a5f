// SPDX-License-Identifier: Apache-2.0
// The element `distributed_logger`: parsing it, its states, its errors, and starting from it as far
// as that needs no network.
#include <gtest/gtest.h>
#include <kolt/xml.h>
#include <vur_dl/DistLogger.h>
#include <vur_dl/XMLConfig.h>

#include <cerrno>
#include <string>
#include <vector>

#include "support/config/xml_config.h"
#include "support/platform/process.h"

namespace {

using support::errors;
using support::Lines;
using support::StdoutCapture;
using Document = support::XmlConfigDocument;

// ---- Parsing ------------------------------------------------------------------------------------

TEST(XmlConfigParse, EmptyElementIsTheDefaultButOff) {
    Document document;
    ASSERT_EQ(document.parse_element(""), DDS_RETCODE_OK);
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
    ASSERT_EQ(document.parse_element("<filter_level>TRACE</filter_level>"
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
        {"\n\n<filter_level>2147483648</filter_level>",
         {"5 VUR_DL_XMLConfig_getFilterLevelFromString: negative integer not allowed for filter "
          "level",
          "5 " + kEnd + "invalid filter level string in XML configuration"}},
        {"<queue_size>\n99999999999999999999\n</queue_size>",
         {"5 VUR_DL_XMLConfig_getQueueSize: integer out of bounds in XML text"},
         {"DL Error: VUR_DL_Options_setQueueSize: Queue Size must be positive",
          "DL Error: VUR_DL_XMLConfig_onEndElement: Unable to set queue size"}},
        {"<queue_size/>",
         {"3 VUR_DL_XMLConfig_getQueueSize: integer expected in XML text"},
         {"DL Error: VUR_DL_XMLConfig_onEndElement: Unable to set queue size"}},
        {"<queue_size>many</queue_size>",
         {"3 VUR_DL_XMLConfig_getQueueSize: integer expected in XML text"},
         {"DL Error: VUR_DL_Options_setQueueSize: Queue Size must be positive",
          "DL Error: VUR_DL_XMLConfig_onEndElement: Unable to set queue size"}},
        {"<thread>\n\n<mask>STDIO|</mask></thread>",
         {"5 VUR_DL_XMLConfig_getThreadSettingsKindMask: illegal value on thread mask XML tag"}},
        {"<thread>\n<mask>" + std::string(2048, ' ') + "</mask></thread>",
         {"4 VUR_DL_XMLConfig_getThreadSettingsKindMask: thread settings kind too long"}},
        {"<thread><priority/></thread>",
         {"3 VUR_DL_XMLConfig_getThreadPriority: integer expected in XML text"}},
        {"<thread><stack_size>big</stack_size></thread>",
         {"3 VUR_DL_XMLConfig_getThreadStackSize: integer expected in XML text"}},
        {"<thread>\n<stack_size>0xFFFFFFFFFFFFFFFFFF</stack_size></thread>",
         {"4 VUR_DL_XMLConfig_getThreadStackSize: integer out of bounds in XML text"}},
        {"<thread><cpu_list><element>0</element>\n<element>-1</element></cpu_list></thread>",
         {"4 VUR_DL_XMLConfig_addElementToCpuList: positive integer expected"}},
        {"<thread><cpu_list><element>99999999999999999999</element></cpu_list></thread>",
         {"3 VUR_DL_XMLConfig_addElementToCpuList: integer out of bounds in XML text"}},
        {"<thread><cpu_rotation></cpu_rotation></thread>",
         {"3 VUR_DL_XMLConfig_getCpuRotation: error getting cpu_rotation"}},
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
        EXPECT_EQ(document.parse_element(row.content), DDS_RETCODE_ERROR);
        EXPECT_EQ(document.root(), nullptr);
        EXPECT_EQ(errors(), row.reported);
        for (const std::string &line : row.printed) {
            EXPECT_EQ(capture.count(line), 1) << line << "\n" << capture.text();
        }
        EXPECT_EQ(std::to_string(document.line()) + " ",
                  row.reported.back().substr(0, row.reported.back().find(' ') + 1));
    }
}

TEST(XmlConfigParse, WrongBooleanFailsTheParse) {
    for (const char *tag : {"enabled", "echo_to_stdout", "log_infrastructure_messages"}) {
        Document document;
        const std::string name = tag;
        EXPECT_EQ(document.parse_element("\n<" + name + ">yes</" + name + ">"), DDS_RETCODE_ERROR);
        EXPECT_EQ(document.message(),
                  "<" + name + ">: \"yes\" is not a boolean; expected: true, false, 1, 0");
        EXPECT_EQ(document.line(), 4U);
    }
}

TEST(XmlConfigParse, FirstErrorIsTheLast) {
    Document document;
    errno = 0;
    EXPECT_EQ(document.parse_element("<filter_level>x</filter_level>\n<queue_size>y</queue_size>"),
              DDS_RETCODE_ERROR);
    EXPECT_EQ(errors().size(), 2U) << "both of the filter level";
    EXPECT_EQ(document.line(), 3U);
    EXPECT_EQ(document.message(), "<filter_level> was refused");
}

TEST(XmlConfigParse, ThreadChildrenCountInsideThreadOnly) {
    Document document;
    ASSERT_EQ(document.parse_element("<priority>7</priority><mask>nonsense</mask>"
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
        document.parse_element("<filter_level>INFO</filter_level><filter_level>650</filter_level>"
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

// ---- The state that the tags lead through -------------------------------------------------------

TEST(XmlConfigState, FollowsTheTags) {
    Document document;
    ASSERT_EQ(document.parse_element(""), DDS_RETCODE_OK);
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

// Wrong texts: their messages, and the options afterwards.
TEST(XmlConfigState, ErrorsLeaveTheOptionsAsTheyWereOrSayWhat) {
    Document document;
    ASSERT_EQ(document.parse_element(""), DDS_RETCODE_OK);
    auto *config = reinterpret_cast<VUR_DL_XMLConfig *>(document.object());
    const VUR_DL_Options &options = *document.options();
    DDS_XMLContext context = DDS_XML_CONTEXT_INITIALIZER;
    context._line_number = 12;
    const auto element = [&](const char *tag, const char *text) {
        const char *none = nullptr;
        VUR_DL_XMLConfig_onStartElement(&config->baseObject, tag, &none, &context);
        errors().clear();
        context.error = 0;
        errno = 0;
        VUR_DL_XMLConfig_onEndElement(&config->baseObject, tag, text, &context);
        return errors();
    };
    const auto thread_element = [&](const char *tag, const char *text) {
        config->currentStatus = DL_XMLCONFIG_THREAD_TAG;
        Lines lines = element(tag, text);
        config->currentStatus = DL_XMLCONFIG_OTHER;
        return lines;
    };
    const Lines kNone;
    {
        StdoutCapture capture;
        EXPECT_EQ(element("queue_size", "0"),
                  Lines{"12 VUR_DL_XMLConfig_getQueueSize: positive integer expected"});
        EXPECT_EQ(context.error, 1);
        EXPECT_EQ(capture.lines(),
                  (Lines{"DL Error: VUR_DL_Options_setQueueSize: Queue Size must be positive",
                         "DL Error: VUR_DL_XMLConfig_onEndElement: Unable to set queue size"}));
    }
    EXPECT_EQ(options.queueSize, 128U);
    EXPECT_EQ(element("filter_level", "trace").size(), 2U);
    EXPECT_EQ(options.filterLevel, 600);
    config->currentStatus = DL_XMLCONFIG_OTHER;
    // A text that is not a boolean counts as false, since the conversion's result goes unread.
    EXPECT_EQ(element("echo_to_stdout", "perhaps"), kNone);
    EXPECT_EQ(context.error, 1);
    EXPECT_EQ(options.echoToStdout, 0);

    const DDS_ThreadSettings_t &thread = options.threadSettings;
    EXPECT_EQ(
        thread_element("mask", "STDIO|"),
        Lines{"12 VUR_DL_XMLConfig_getThreadSettingsKindMask: illegal value on thread mask XML "
              "tag"});
    EXPECT_EQ(thread.mask, 0x02U);
    EXPECT_EQ(thread_element("priority", "abc").size(), 1U);
    EXPECT_EQ(thread.priority, 0);
    EXPECT_EQ(thread_element("stack_size", "-1").size(), 1U);
    EXPECT_EQ(thread.stack_size, -1) << "the default";
    EXPECT_EQ(thread_element("cpu_rotation", "CPU_RR_ROTATION"), kNone);
    EXPECT_EQ(thread_element("cpu_rotation", "1").size(), 1U);
    EXPECT_EQ(thread.cpu_rotation, DDS_THREAD_SETTINGS_CPU_RR_ROTATION);
    config->currentStatus = DL_XMLCONFIG_THREAD_CPU_LIST_TAG;
    EXPECT_EQ(element("element", "x").size(), 1U);
    EXPECT_EQ(config->currentStatus, DL_XMLCONFIG_THREAD_CPU_LIST_TAG);
    EXPECT_EQ(DDS_LongSeq_get_length(&thread.cpu_list), 1U);
}

// A child of the logger inside `thread` ends the state of `thread`.
TEST(XmlConfigState, AChildOfTheLoggerInsideThreadEndsIt) {
    Document document;
    ASSERT_EQ(document.parse_element("<thread><priority>1</priority><filter_level>7</filter_level>"
                                     "<priority>2</priority></thread><enabled>true</enabled>"),
              DDS_RETCODE_OK);
    EXPECT_EQ(document.options()->filterLevel, 7);
    EXPECT_EQ(document.options()->threadSettings.priority, 1);
    EXPECT_EQ(document.options()->enabled, 1);
}

// ---- Starting, as far as it needs no network ----------------------------------------------------

TEST(XmlConfigStart, RefusesWhatIsMissing) {
    StdoutCapture capture;
    Document document;
    ASSERT_EQ(document.parse_element("<enabled>true</enabled>"), DDS_RETCODE_OK);
    EXPECT_EQ(VUR_DL_XMLConfig_startWithXMLConfiguration(nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(VUR_DL_XMLConfig_startWithXMLConfiguration(nullptr, document.options(), nullptr), 0);
    const std::string method = "VUR_DL_XMLConfig_startWithXMLConfiguration: ";
    EXPECT_EQ(capture.count("DL Error: " + method + "no options found in XML configuration"), 1);
    EXPECT_EQ(capture.count("DL Error: " + method + "invalid DomainParticipant"), 1);
}

TEST(XmlConfigStart, OffUnlessEnabled) {
    StdoutCapture capture;
    Document document;
    ASSERT_EQ(document.parse_element(""), DDS_RETCODE_OK);
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
