// SPDX-License-Identifier: Apache-2.0
// Writing XML, and the helpers for common elements.
#include <gtest/gtest.h>
#include <kolt/xml.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "support/config/xml_document.h"

namespace {

using support::parse;
using support::ParserPtr;
using support::save;
using support::text_of;

TEST(XmlSave, ParsedTreeComesBack) {
    const std::string text =
        "<dds a=\"&lt;&amp;&quot;&#10;&#9;\">\n"
        "    <b>one &amp; two &lt; three\n line</b>\n"
        "    <c>\n"
        "        <d></d>\n"
        "    </c>\n"
        "</dds>\n";
    const ParserPtr parser(DDS_XMLParser_new());
    ASSERT_EQ(parse(parser, text), DDS_RETCODE_OK);
    EXPECT_EQ(save(DDS_XMLParser_get_root(parser.get())), text);
}

TEST(XmlSave, TextBesideChildrenIsKept) {
    const ParserPtr parser(DDS_XMLParser_new());
    ASSERT_EQ(parse(parser, "<dds>te<a/>xt</dds>"), DDS_RETCODE_OK);
    const std::string once = save(DDS_XMLParser_get_root(parser.get()));
    ASSERT_EQ(parse(parser, once), DDS_RETCODE_OK);
    EXPECT_NE(text_of(DDS_XMLParser_get_root(parser.get())).find("text"), std::string::npos);
}

TEST(XmlSave, WhatNoDocumentCanHoldIsAnError) {
    for (const char *text : {"\x01", "\xC3", "\xC0\x80", "\xED\xA0\x80", "\xEF\xBF\xBE",
                             "\xF4\x90\x80\x80", "ok\xFFnot"}) {
        DDS_XMLSaveContext context;
        DDS_XMLSaveContext_initialize(&context);
        DDS_XMLSaveContext_escaped(&context, text);
        EXPECT_EQ(context.error, 1) << text;
        DDS_XMLSaveContext_finalize(&context);
    }
    DDS_XMLSaveContext context;
    DDS_XMLSaveContext_initialize(&context);
    DDS_XMLSaveContext_escaped(&context, "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80\r");
    EXPECT_EQ(context.error, 0);
    EXPECT_STREQ(DDS_XMLSaveContext_get_text(&context),
                 "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80&#13;");
    DDS_XMLSaveContext_finalize(&context);
}

TEST(XmlSave, HelpersWriteOneElementALine) {
    DDS_XMLSaveContext context;
    DDS_XMLSaveContext_initialize(&context);
    EXPECT_EQ(DDS_XML_OPEN_TAG, 7);
    EXPECT_EQ(DDS_XML_CLOSE_TAG, 27);
    DDS_XMLHelper_save_tag("t", DDS_XML_OPEN_TAG, &context);
    DDS_XMLHelper_save_long("l", -5, nullptr, DDS_BOOLEAN_FALSE, &context);
    const DDS_Long same = -5;
    DDS_XMLHelper_save_long("left_out", -5, &same, DDS_BOOLEAN_FALSE, &context);
    DDS_XMLHelper_save_long("forced", -5, &same, DDS_BOOLEAN_TRUE, &context);
    DDS_XMLHelper_save_string("s", "<&>", nullptr, DDS_BOOLEAN_FALSE, &context);
    DDS_XMLHelper_save_string("left_out", "x", "x", DDS_BOOLEAN_FALSE, &context);
    DDS_XMLHelper_save_string("n", nullptr, nullptr, DDS_BOOLEAN_FALSE, &context);
    DDS_LongSeq list = DDS_SEQUENCE_INITIALIZER;
    DDS_XMLHelper_save_long_seq("empty", &list, nullptr, &context);
    const DDS_Long values[] = {3, 1};
    ASSERT_TRUE(DDS_LongSeq_from_array(&list, values, 2));
    DDS_XMLHelper_save_long_seq("list", &list, nullptr, &context);
    DDS_XMLHelper_save_long_seq("left_out", &list, &list, &context);
    DDS_LongSeq_finalize(&list);
    DDS_XMLHelper_save_tag("t", DDS_XML_CLOSE_TAG, &context);
    EXPECT_STREQ(DDS_XMLSaveContext_get_text(&context),
                 "<t>\n"
                 "    <l>-5</l>\n"
                 "    <forced>-5</forced>\n"
                 "    <s>&lt;&amp;&gt;</s>\n"
                 "    <n></n>\n"
                 "    <empty></empty>\n"
                 "    <list>\n"
                 "        <element>3</element>\n"
                 "        <element>1</element>\n"
                 "    </list>\n"
                 "</t>\n");
    EXPECT_EQ(context.depth, 0);
    EXPECT_EQ(context.error, 0);
    DDS_XMLSaveContext_finalize(&context);
}

TEST(XmlSave, WritesIntoAFile) {
    char *text = nullptr;
    std::size_t size = 0;
    FILE *file = open_memstream(&text, &size);
    ASSERT_NE(file, nullptr);
    DDS_XMLSaveContext context;
    ASSERT_TRUE(DDS_XMLSaveContext_initialize_w_file(&context, file));
    context.depth = 20;
    DDS_XMLSaveContext_indent(&context);
    DDS_XMLSaveContext_freeform(&context, "%s-%d", "x", 5);
    EXPECT_EQ(context.error, 0);
    EXPECT_STREQ(DDS_XMLSaveContext_get_text(&context), "");
    DDS_XMLSaveContext_finalize(&context);
    std::fclose(file);
    EXPECT_EQ(std::string(text), std::string(80, ' ') + "x-5");
    std::free(text);
}

TEST(XmlSave, LostOutputIsAnError) {
    FILE *full = std::fopen("/dev/full", "w");
    ASSERT_NE(full, nullptr);
    std::setvbuf(full, nullptr, _IONBF, 0);
    DDS_XMLSaveContext context;
    ASSERT_TRUE(DDS_XMLSaveContext_initialize_w_file(&context, full));
    DDS_XMLSaveContext_freeform(&context, "%s", "text");
    EXPECT_EQ(context.error, 1);
    DDS_XMLSaveContext_finalize(&context);
    std::fclose(full);
}

TEST(XmlBoolean, AcceptsFourSpellings) {
    struct Row {
        const char *text;
        bool valid;
        DDS_Boolean value;
    };
    const Row rows[] = {{"true", true, 1},  {"1", true, 1},    {" TRUE\n", true, 1},
                        {"false", true, 0}, {"0", true, 0},    {"\tFalse ", true, 0},
                        {"", false, 7},     {"yes", false, 7}, {"truee", false, 7},
                        {"tru", false, 7},  {"2", false, 7},   {nullptr, false, 7}};
    for (const Row &row : rows) {
        DDS_Boolean value = 7;
        DDS_XMLContext context = DDS_XML_CONTEXT_INITIALIZER;
        EXPECT_EQ(DDS_XMLHelper_str_to_boolean(&value, row.text, &context) != 0, row.valid);
        EXPECT_EQ(value, row.value);
        EXPECT_EQ(context.error, row.valid ? 0 : 1);
    }
    DDS_Boolean value = 7;
    EXPECT_FALSE(DDS_XMLHelper_str_to_boolean(&value, "x", nullptr));
    DDS_XMLContext context = DDS_XML_CONTEXT_INITIALIZER;
    EXPECT_FALSE(DDS_XMLHelper_str_to_boolean(&value, "maybe", &context));
    EXPECT_STREQ(DDS_XMLContext_get_error_message(&context),
                 "\"maybe\" is not a boolean; expected: true, false, 1, 0");
}

}  // namespace
