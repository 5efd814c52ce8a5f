// SPDX-License-Identifier: Apache-2.0
// The element `distributed_logger` written back, and the written element parsed again.
#include <gtest/gtest.h>
#include <kolt/xml.h>
#include <vur_dl/XMLConfig.h>

#include <cerrno>
#include <cstring>
#include <random>
#include <string>
#include <utility>

#include "support/config/xml_config.h"

namespace {

using Document = support::XmlConfigDocument;

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

TEST(XmlConfigSave, UnchangedConfigurationIsSevenLines) {
    Document document;
    ASSERT_EQ(document.parse_element(""), DDS_RETCODE_OK);
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
    ASSERT_EQ(document.parse_element(
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
        document.parse_element("<thread><cpu_rotation>CPU_RR_ROTATION</cpu_rotation></thread>"),
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
    ASSERT_EQ(document.parse_element(""), DDS_RETCODE_OK);
    for (const auto &[level, name] : rows) {
        document.options()->filterLevel = level;
        EXPECT_NE(
            save(document.object()).find("<filter_level>" + std::string(name) + "</filter_level>"),
            std::string::npos);
    }
}

TEST(XmlConfigSave, UnknownRotationStopsTheElement) {
    Document document;
    ASSERT_EQ(document.parse_element(""), DDS_RETCODE_OK);
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
    ASSERT_EQ(document.parse_element(""), DDS_RETCODE_OK);
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
    ASSERT_EQ(document.parse_element(""), DDS_RETCODE_OK);
    document.options()->threadSettings.mask = 0xE6U;
    EXPECT_NE(save(document.object()).find("<mask>THREAD_SETTINGS_STDIO</mask>"),
              std::string::npos);
}

// The written element parses back to the same options, and is written the same again.
TEST(XmlConfigSave, ParsesBack) {
    std::mt19937 random(20240607);
    const auto number = [&](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    const auto coin = [&] { return number(0, 1); };
    for (int n = 0; n < 1000; ++n) {
        Document document;
        ASSERT_EQ(document.parse_element(""), DDS_RETCODE_OK);
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

}  // namespace
