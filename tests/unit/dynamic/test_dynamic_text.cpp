// SPDX-License-Identifier: Apache-2.0
// Dynamic data as text: JSON, XML and the default format.

#include <gtest/gtest.h>
#include <vur_dl/distlogPlugin.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "support/types/dynamic_data.h"
#include "support/types/test_types.h"

namespace {

using namespace support;

DDS_PrintFormat format(DDS_PrintFormatKind kind, bool pretty = false, bool root = false,
                       bool enum_as_int = false) {
    const DDS_PrintFormatProperty property = {kind, static_cast<DDS_Boolean>(pretty),
                                              static_cast<DDS_Boolean>(enum_as_int),
                                              static_cast<DDS_Boolean>(root)};
    DDS_PrintFormat result = {};
    EXPECT_EQ(DDS_PrintFormatProperty_to_print_format(&property, &result), DDS_RETCODE_OK);
    return result;
}

std::string render(const Data &data, const DDS_PrintFormat &print_format) {
    DDS_UnsignedLong length = 0;
    EXPECT_EQ(
        DDS_DynamicDataFormatter_to_string_w_format(data.get(), nullptr, &length, &print_format),
        DDS_RETCODE_OK);
    std::string text(length, '?');
    EXPECT_EQ(DDS_DynamicDataFormatter_to_string_w_format(data.get(), text.data(), &length,
                                                          &print_format),
              DDS_RETCODE_OK);
    EXPECT_EQ(length, text.size());
    EXPECT_EQ(std::strlen(text.c_str()) + 1, length);
    text.resize(length - 1);
    return text;
}

Data make_request() {
    Data data = make(VUR_DL_ADMIN_CommandRequest_get_typecode());
    DDS_DynamicData_set_long(data.get(), "targetHostAndAppId.rtps_host_id", kNoId, 1);
    DDS_DynamicData_set_long(data.get(), "invocation", kNoId, -7);
    DDS_DynamicData_set_length(data.get(), 2, "command.categoryAndVerbosity", kNoId);
    DDS_DynamicData_set_long(data.get(), "command.categoryAndVerbosity[1].category", kNoId, 4);
    return data;
}

TEST(DynamicText, JsonOnOneLine) {
    EXPECT_EQ(render(make_request(), format(DDS_JSON_PRINT_FORMAT)),
              R"({"targetHostAndAppId":{"rtps_host_id":1,"rtps_app_id":0},)"
              R"("originatorHostAndAppId":{"rtps_host_id":0,"rtps_app_id":0},"invocation":-7,)"
              R"("command":{"_d":"VUR_DL_SET_VUR_LOGGER_LEVEL","categoryAndVerbosity":[)"
              R"({"category":"VUR_DL_KOLT_CONFIG_LOG_CATEGORY_PLATFORM",)"
              R"("verbosity":"VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_SILENT"},)"
              R"({"category":"VUR_DL_KOLT_CONFIG_LOG_CATEGORY_API",)"
              R"("verbosity":"VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_SILENT"}]}})");
}

TEST(DynamicText, JsonPrettyWithRoot) {
    const Data data = make(VUR_DL_ADMIN_Command_get_typecode());
    EXPECT_EQ(render(data, format(DDS_JSON_PRINT_FORMAT, true, true, true)),
              "{\n"
              "    \"Command\": {\n"
              "        \"_d\": 0,\n"
              "        \"filterLevel\": 0\n"
              "    }\n"
              "}");
    DDS_DynamicData_set_discriminator(data.get(), 1);
    EXPECT_EQ(render(data, format(DDS_JSON_PRINT_FORMAT, true, false, true)),
              "{\n"
              "    \"_d\": 1,\n"
              "    \"categoryAndVerbosity\": []\n"
              "}");
}

TEST(DynamicText, Xml) {
    const Data data = make(VUR_DL_ADMIN_Command_get_typecode());
    DDS_DynamicData_set_length(data.get(), 1, "categoryAndVerbosity", kNoId);
    EXPECT_EQ(render(data, format(DDS_XML_PRINT_FORMAT, true, true)),
              "<Command>\n"
              "    <_d>VUR_DL_SET_VUR_LOGGER_LEVEL</_d>\n"
              "    <categoryAndVerbosity>\n"
              "        <item>\n"
              "            <category>VUR_DL_KOLT_CONFIG_LOG_CATEGORY_PLATFORM</category>\n"
              "            <verbosity>VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_SILENT</verbosity>\n"
              "        </item>\n"
              "    </categoryAndVerbosity>\n"
              "</Command>");
    DDS_DynamicData_set_long(data.get(), "filterLevel", kNoId, 400);
    EXPECT_EQ(render(data, format(DDS_XML_PRINT_FORMAT, false, false, true)),
              "<_d>0</_d><filterLevel>400</filterLevel>");
}

TEST(DynamicText, Default) {
    const Data data = make(VUR_DL_ADMIN_CommandRequest_get_typecode());
    DDS_DynamicData_set_length(data.get(), 1, "command.categoryAndVerbosity", kNoId);
    EXPECT_EQ(render(data, format(DDS_DEFAULT_PRINT_FORMAT, true, true, true)),
              "targetHostAndAppId:\n"
              "    rtps_host_id: 0\n"
              "    rtps_app_id: 0\n"
              "originatorHostAndAppId:\n"
              "    rtps_host_id: 0\n"
              "    rtps_app_id: 0\n"
              "invocation: 0\n"
              "command:\n"
              "    _d: 1\n"
              "    categoryAndVerbosity[0]:\n"
              "        category: 0\n"
              "        verbosity: 0");
    DDS_DynamicData_set_length(data.get(), 0, "command.categoryAndVerbosity", kNoId);
    const std::string text = render(data, format(DDS_DEFAULT_PRINT_FORMAT, true));
    EXPECT_NE(text.find("    categoryAndVerbosity: []"), std::string::npos) << text;
    EXPECT_EQ(render(make(id_type()), format(DDS_DEFAULT_PRINT_FORMAT)), "{host: 0, app: 0}");
}

TEST(DynamicText, EveryKind) {
    const Data data = make(everything_type());
    DDS_DynamicData_set_boolean(data.get(), "flag", kNoId, 1);
    DDS_DynamicData_set_ulonglong(data.get(), "largest", kNoId, ~0ULL);
    DDS_DynamicData_set_double(data.get(), "real", kNoId, 0.1);
    DDS_DynamicData_set_float(data.get(), "single", kNoId, -1e-10F);
    DDS_DynamicData_set_char(data.get(), "letter", kNoId, 'Z');
    DDS_DynamicData_set_length(data.get(), 2, "names", kNoId);
    DDS_DynamicData_set_string(data.get(), "names[1]", kNoId, "n");
    const std::string text = render(data, format(DDS_JSON_PRINT_FORMAT));
    for (const char *part :
         {"\"flag\":true", "\"largest\":18446744073709551615", "\"real\":0.1", "\"single\":-1e-10",
          "\"letter\":\"Z\"", "\"matrix\":[[0,0,0],[0,0,0]]", "\"names\":[\"\",\"n\"]",
          "\"octets\":[]", "\"points\":[{\"x\":0,\"y\":0},{\"x\":0,\"y\":0}]"}) {
        EXPECT_NE(text.find(part), std::string::npos) << part << " in " << text;
    }
}

TEST(DynamicText, WhatIsNoNumber) {
    const Data data = make(everything_type());
    DDS_DynamicData_set_double(data.get(), "real", kNoId, std::nan(""));
    DDS_DynamicData_set_float(data.get(), "single", kNoId,
                              -std::numeric_limits<DDS_Float>::infinity());
    const std::string json = render(data, format(DDS_JSON_PRINT_FORMAT));
    EXPECT_NE(json.find("\"real\":null"), std::string::npos);
    EXPECT_NE(json.find("\"single\":null"), std::string::npos);
    const std::string xml = render(data, format(DDS_XML_PRINT_FORMAT));
    EXPECT_NE(xml.find("<real>NaN</real>"), std::string::npos);
    EXPECT_NE(xml.find("<single>-INF</single>"), std::string::npos);
    const std::string plain = render(data, format(DDS_DEFAULT_PRINT_FORMAT));
    EXPECT_NE(plain.find("real: nan"), std::string::npos);
    EXPECT_NE(plain.find("single: -inf"), std::string::npos);
}

TEST(DynamicText, OptionalMembersThatAreAbsentAreLeftOut) {
    const Data data = make(mutable_options_type());
    EXPECT_EQ(render(data, format(DDS_JSON_PRINT_FORMAT)), R"({"always":0,"last":0})");
    DDS_DynamicData_set_long(data.get(), "point.y", kNoId, 2);
    EXPECT_EQ(render(data, format(DDS_JSON_PRINT_FORMAT)),
              R"({"always":0,"point":{"x":0,"y":2},"last":0})");
}

TEST(DynamicText, AnUnknownEnumeratorIsANumber) {
    VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity record = {
        static_cast<VUR_DL_ADMIN_VURLoggerCategory>(99), VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_ERROR};
    std::vector<char> bytes(64);
    DDS_UnsignedLong length = 64;
    const Data data = make(VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity_get_typecode());
    ASSERT_TRUE(VUR_DL_ADMIN_VURLoggerCategoryAndVerbosityPlugin_serialize_to_cdr_buffer(
        bytes.data(), &length, &record));
    ASSERT_EQ(DDS_DynamicData_from_cdr_buffer(data.get(), bytes.data(), length), DDS_RETCODE_OK);
    EXPECT_EQ(render(data, format(DDS_JSON_PRINT_FORMAT)),
              R"({"category":99,"verbosity":"VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_ERROR"})");
}

struct TextCase {
    const char *value;
    const char *json;
    const char *xml;
};

class DynamicTextEscapes : public testing::TestWithParam<TextCase> {};

TEST_P(DynamicTextEscapes, InJsonAndXml) {
    const Data data = make(message_type());
    ASSERT_EQ(DDS_DynamicData_set_string(data.get(), "text", kNoId, GetParam().value),
              DDS_RETCODE_OK);
    const std::string json = render(data, format(DDS_JSON_PRINT_FORMAT));
    EXPECT_NE(json.find(std::string("\"text\":\"") + GetParam().json + "\""), std::string::npos)
        << json;
    const std::string xml = render(data, format(DDS_XML_PRINT_FORMAT));
    EXPECT_NE(xml.find(std::string("<text>") + GetParam().xml + "</text>"), std::string::npos)
        << xml;
}

#define REPLACEMENT "\xef\xbf\xbd"

INSTANTIATE_TEST_SUITE_P(
    Texts, DynamicTextEscapes,
    testing::Values(
        TextCase{"a\"b\\c/", R"(a\"b\\c/)", "a\"b\\c/"},
        TextCase{"<a>&'</a>", "<a>&'</a>", "&lt;a&gt;&amp;'&lt;/a&gt;"},
        TextCase{"\b\f\n\r\t", R"(\b\f\n\r\t)", REPLACEMENT REPLACEMENT "\n&#13;\t"},
        TextCase{"\x01\x1f\x7f", R"(\u0001\u001f\u007f)", REPLACEMENT REPLACEMENT "\x7f"},
        TextCase{"\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80", "\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80",
                 "\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80"},
        // Broken UTF-8: a lone continuation, an overlong form, a surrogate, too large, cut off.
        TextCase{"\x80", REPLACEMENT, REPLACEMENT},
        TextCase{"\xc0\xaf", REPLACEMENT REPLACEMENT, REPLACEMENT REPLACEMENT},
        TextCase{"\xe0\x80\xaf", REPLACEMENT REPLACEMENT REPLACEMENT,
                 REPLACEMENT REPLACEMENT REPLACEMENT},
        TextCase{"\xed\xa0\x80", REPLACEMENT REPLACEMENT REPLACEMENT,
                 REPLACEMENT REPLACEMENT REPLACEMENT},
        TextCase{"\xf4\x90\x80\x80", REPLACEMENT REPLACEMENT REPLACEMENT REPLACEMENT,
                 REPLACEMENT REPLACEMENT REPLACEMENT REPLACEMENT},
        TextCase{"x\xe2\x82", "x" REPLACEMENT REPLACEMENT, "x" REPLACEMENT REPLACEMENT},
        TextCase{"\xe2"
                 "a",
                 REPLACEMENT "a", REPLACEMENT "a"},
        TextCase{"\xef\xbf\xbf", "\xef\xbf\xbf", REPLACEMENT}));

TEST(DynamicText, MissingArguments) {
    const Data data = make(id_type());
    const DDS_PrintFormat json = format(DDS_JSON_PRINT_FORMAT);
    DDS_UnsignedLong length = 0;
    EXPECT_EQ(DDS_DynamicDataFormatter_to_string_w_format(nullptr, nullptr, &length, &json),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicDataFormatter_to_string_w_format(data.get(), nullptr, nullptr, &json),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DynamicDataFormatter_to_string_w_format(data.get(), nullptr, &length, nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    DDS_PrintFormat wrong = json;
    wrong.kind = static_cast<DDS_PrintFormatKind>(3);
    EXPECT_EQ(DDS_DynamicDataFormatter_to_string_w_format(data.get(), nullptr, &length, &wrong),
              DDS_RETCODE_BAD_PARAMETER);
    char text[4] = "abc";
    length = sizeof(text);
    EXPECT_EQ(DDS_DynamicDataFormatter_to_string_w_format(data.get(), text, &length, &json),
              DDS_RETCODE_OUT_OF_RESOURCES);
    EXPECT_STREQ(text, "abc");
    EXPECT_EQ(length, std::strlen(R"({"host":0,"app":0})") + 1);
    DDS_PrintFormat unchanged = {};
    DDS_PrintFormatProperty property = DDS_PRINT_FORMAT_PROPERTY_DEFAULT;
    EXPECT_EQ(DDS_PrintFormatProperty_to_print_format(nullptr, &unchanged),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_PrintFormatProperty_to_print_format(&property, nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    property.kind = static_cast<DDS_PrintFormatKind>(3);
    EXPECT_EQ(DDS_PrintFormatProperty_to_print_format(&property, &unchanged),
              DDS_RETCODE_BAD_PARAMETER);
}

}  // namespace
