// SPDX-License-Identifier: Apache-2.0
// The XML facility: trees, files, errors with their lines, limits.
#include <gtest/gtest.h>
#include <kolt/xml.h>

#include <fstream>
#include <string>
#include <vector>

#include "support/config/xml_document.h"
#include "support/logger/log_capture.h"
#include "support/platform/work_folder.h"

namespace {

using support::parse;
using support::ParserPtr;
using support::tag_of;
using support::text_of;

std::string in_utf16(const std::string &ascii) {
    std::string result = "\xFF\xFE";
    for (const char character : ascii) {
        result += character;
        result += '\0';
    }
    return result;
}

TEST(XmlTree, HasTagsTextsAttributesAndLines) {
    const ParserPtr parser(DDS_XMLParser_new());
    ASSERT_EQ(parse(parser,
                    "<?xml version=\"1.0\"?>\n"
                    "<dds xmlns=\"urn:x\">\n"
                    "  <a one=\"1\" two=\"&lt;2&gt;\"> some <b/> text </a>\n"
                    "  <c><![CDATA[<raw>&]]></c>\n"
                    "</dds>\n"),
              DDS_RETCODE_OK);
    EXPECT_STREQ(DDS_XMLParser_get_error_message(parser.get()), "");
    EXPECT_EQ(DDS_XMLParser_get_error_line(parser.get()), 0U);
    const DDS_XMLObject *root = DDS_XMLParser_get_root(parser.get());
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(tag_of(root), "dds");
    EXPECT_EQ(DDS_XMLObject_get_line_number(root), 2U);
    EXPECT_EQ(DDS_XMLObject_get_parent(root), nullptr);
    EXPECT_EQ(DDS_XMLObject_get_next_sibling(root), nullptr);
    EXPECT_STREQ(DDS_XMLObject_get_attribute(root, "xmlns"), "urn:x");

    const DDS_XMLObject *a = DDS_XMLObject_get_first_child(root);
    EXPECT_EQ(tag_of(a), "a");
    EXPECT_EQ(text_of(a), " some  text ");
    EXPECT_EQ(DDS_XMLObject_get_line_number(a), 3U);
    EXPECT_EQ(DDS_XMLObject_get_parent(a), root);
    EXPECT_STREQ(DDS_XMLObject_get_attribute(a, "one"), "1");
    EXPECT_STREQ(DDS_XMLObject_get_attribute(a, "two"), "<2>");
    EXPECT_EQ(DDS_XMLObject_get_attribute(a, "three"), nullptr);
    EXPECT_EQ(tag_of(DDS_XMLObject_get_first_child(a)), "b");
    EXPECT_EQ(text_of(DDS_XMLObject_get_first_child(a)), "");

    const DDS_XMLObject *c = DDS_XMLObject_get_next_sibling(a);
    EXPECT_EQ(text_of(c), "<raw>&");
    EXPECT_EQ(DDS_XMLObject_find_child(root, "c"), c);
    EXPECT_EQ(DDS_XMLObject_find_child(root, "d"), nullptr);
    EXPECT_EQ(DDS_XMLObject_get_attributes(c), nullptr);
    EXPECT_EQ(DDS_XMLObject_get_extension_class(c), nullptr);
}

TEST(XmlTree, NextParseReplacesTheDocument) {
    const ParserPtr parser(DDS_XMLParser_new());
    ASSERT_EQ(parse(parser, "<dds><a/></dds>"), DDS_RETCODE_OK);
    EXPECT_EQ(parse(parser, "<dds><a></dds>"), DDS_RETCODE_ERROR);
    EXPECT_EQ(DDS_XMLParser_get_root(parser.get()), nullptr);
    ASSERT_EQ(parse(parser, "<dds><b/></dds>"), DDS_RETCODE_OK);
    EXPECT_STREQ(DDS_XMLParser_get_error_message(parser.get()), "");
    EXPECT_EQ(tag_of(DDS_XMLObject_get_first_child(DDS_XMLParser_get_root(parser.get()))), "b");
}

TEST(XmlTree, ReadsEncodings) {
    const ParserPtr parser(DDS_XMLParser_new());
    ASSERT_EQ(parse(parser, "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><dds>\xE4</dds>"),
              DDS_RETCODE_OK);
    EXPECT_EQ(text_of(DDS_XMLParser_get_root(parser.get())), "\xC3\xA4");
    const std::string ascii = "<?xml version=\"1.0\"?><dds>x</dds>";
    ASSERT_EQ(parse(parser, in_utf16(ascii)), DDS_RETCODE_OK)
        << DDS_XMLParser_get_error_message(parser.get());
    EXPECT_EQ(text_of(DDS_XMLParser_get_root(parser.get())), "x");
}

struct WrongDocument {
    const char *name;
    std::string text;
    const char *message;  // part of it
    DDS_UnsignedLong line;
};

std::string repeated(const std::string &text, std::size_t count) {
    std::string result;
    for (std::size_t i = 0; i < count; ++i) {
        result += text;
    }
    return result;
}

std::vector<WrongDocument> wrong_documents() {
    const std::string head = "<?xml version=\"1.0\"?>\n";
    return {
        {"empty", "", "no element found", 1},
        {"blank", " \n\n", "no element found", 3},
        {"no markup", "hello", "syntax error", 1},
        {"root", head + "<config/>", "the root element is <config>; expected: <dds>", 2},
        {"truncated", "<dds>\n<a>\n<b>text",
         "the document ends too early (<b> is open since line 3)", 3},
        {"truncated tag", "<dds>\n<a", "unclosed token (<dds> is open since line 1)", 2},
        {"mismatch", "<dds>\n<a>\n</b></dds>", "mismatched tag (<a> is open since line 2)", 3},
        {"two roots", "<dds/>\n<dds/>", "junk after document element", 2},
        {"two attributes", "<dds><a b=\"1\" b=\"2\"/></dds>", "duplicate attribute", 1},
        {"bad utf-8", "<dds>\n\xC3\x28</dds>", "not well-formed (invalid token)", 2},
        {"bad character", "<dds>\x01</dds>", "not well-formed (invalid token)", 1},
        {"nul", std::string("<dds>\0</dds>", 12), "not well-formed (invalid token)", 1},
        {"encoding", "<?xml version=\"1.0\" encoding=\"EBCDIC-37\"?><dds/>", "unknown encoding", 1},
        {"wrong encoding", "<?xml version=\"1.0\" encoding=\"UTF-16\"?><dds/>",
         "encoding specified in XML declaration is incorrect", 1},
        {"undeclared entity", "<dds>\n\n&nothing;</dds>", "undefined entity", 3},
        {"entity", head + "<!DOCTYPE dds [\n<!ENTITY a \"b\">\n]><dds>&a;</dds>",
         "document type declarations with content (entities, attribute defaults) are not allowed",
         2},
        {"billion laughs",
         "<!DOCTYPE dds [<!ENTITY a \"ha\"><!ENTITY b \"&a;&a;\"><!ENTITY c \"&b;&b;\">]>"
         "<dds>&c;</dds>",
         "document type declarations with content", 1},
        {"external entity",
         "<!DOCTYPE dds [<!ENTITY a SYSTEM \"file:///etc/passwd\">]>\n<dds>&a;</dds>",
         "document type declarations with content", 1},
        {"attribute defaults", "<!DOCTYPE dds [<!ATTLIST a b CDATA \"c\">]><dds/>",
         "document type declarations with content", 1},
        {"entity of an external subset", "<!DOCTYPE dds SYSTEM \"x.dtd\">\n<dds>\n&a;</dds>",
         "undeclared entity \"&a;\"", 3},
        {"entity of an external subset in an attribute",
         "<!DOCTYPE dds SYSTEM \"x.dtd\">\n<dds>\n<b c='1&amp;&#65;' d=\"x&a;y\"/></dds>",
         "undeclared entity \"&a;\" in an attribute of <b>", 3},
        {"the same in UTF-16, on a tag longer than what is read at once",
         in_utf16("<!DOCTYPE dds SYSTEM \"x.dtd\">\n<dds>\n<b c='" + std::string(40000, 'x') +
                  "' d='&a;'/></dds>"),
         "undeclared entity \"&a;\" in an attribute of <b>", 3},
        {"depth", "<dds>\n" + repeated("<a>", DDS_XML_MAX_DEPTH) + "x",
         "elements are nested more than 64 deep", 2},
        {"text", "<dds>\n" + std::string(DDS_XML_MAX_TEXT_LENGTH, 'x') + "</dds>",
         "the text of <dds> is longer than 1048576 bytes", 2},
        {"elements", "<dds>" + repeated("<a/>", DDS_XML_MAX_ELEMENTS) + "</dds>",
         "the document has more than 100000 elements", 1},
        {"size", "<dds>\n<!--" + std::string(DDS_XML_MAX_DOCUMENT_SIZE, ' ') + "--></dds>",
         "the document is larger than 4194304 bytes", 2},
    };
}

TEST(XmlErrors, TellWhatAndWhere) {
    for (const WrongDocument &document : wrong_documents()) {
        SCOPED_TRACE(document.name);
        const ParserPtr parser(DDS_XMLParser_new());
        EXPECT_EQ(parse(parser, document.text), DDS_RETCODE_ERROR);
        const std::string message = DDS_XMLParser_get_error_message(parser.get());
        EXPECT_NE(message.find(document.message), std::string::npos) << message;
        EXPECT_EQ(DDS_XMLParser_get_error_line(parser.get()), document.line);
        EXPECT_EQ(DDS_XMLParser_get_root(parser.get()), nullptr);
    }
}

TEST(XmlErrors, LimitsThemselvesAreAllowed) {
    const ParserPtr parser(DDS_XMLParser_new());
    const std::size_t inner = DDS_XML_MAX_DEPTH - 1;
    EXPECT_EQ(parse(parser, "<dds>" + repeated("<a>", inner) + repeated("</a>", inner) + "</dds>"),
              DDS_RETCODE_OK);
    EXPECT_EQ(parse(parser, "<dds>" + repeated("<a/>", DDS_XML_MAX_ELEMENTS - 1) + "</dds>"),
              DDS_RETCODE_OK);
    EXPECT_EQ(parse(parser, "<dds>" + std::string(DDS_XML_MAX_TEXT_LENGTH, 'x') + "</dds>"),
              DDS_RETCODE_OK);
    EXPECT_EQ(parse(parser, "<!DOCTYPE dds SYSTEM \"dds.dtd\"><dds/>"), DDS_RETCODE_OK);
    EXPECT_EQ(
        parse(
            parser,
            "<!DOCTYPE dds SYSTEM \"dds.dtd\"><dds><a b='&lt;&gt;&amp;&quot;&apos;&#38;'/></dds>"),
        DDS_RETCODE_OK);
}

TEST(XmlErrors, EveryPrefixOfADocumentIsRefused) {
    const std::string text =
        "<?xml version=\"1.0\"?><!-- c --><dds a=\"b\"><x>t&amp;<![CDATA[u]]></x><y/></dds>";
    const ParserPtr parser(DDS_XMLParser_new());
    for (std::size_t length = 0; length < text.size(); ++length) {
        EXPECT_EQ(parse(parser, text.substr(0, length)), DDS_RETCODE_ERROR) << length;
    }
    EXPECT_EQ(parse(parser, text), DDS_RETCODE_OK);
}

// ---- Files --------------------------------------------------------------------------------------

class XmlFile : public testing::Test {
  protected:
    std::string write(const std::string &name, const std::string &content) const {
        return folder_.write(name, content);
    }
    DDS_ReturnCode_t parse(const std::string &path) {
        return DDS_XMLParser_parse_file(parser_.get(), path.c_str());
    }
    std::string message() const { return DDS_XMLParser_get_error_message(parser_.get()); }

    const ParserPtr parser_{DDS_XMLParser_new()};
    const support::WorkFolder folder_;
};

TEST_F(XmlFile, IsReadByPathAndByUrl) {
    const std::string path = write("with blank.xml", "<dds><a/></dds>");
    EXPECT_EQ(parse(path), DDS_RETCODE_OK);
    EXPECT_EQ(parse("file://" + path), DDS_RETCODE_OK) << message();
    EXPECT_EQ(parse("file://localhost" + path), DDS_RETCODE_OK) << message();
    EXPECT_EQ(parse("file://" + folder_.path() + "/with%20blank.xml"), DDS_RETCODE_OK) << message();
    EXPECT_NE(DDS_XMLParser_get_root(parser_.get()), nullptr);
}

TEST_F(XmlFile, SaysWhyItCannotBeRead) {
    EXPECT_EQ(parse(folder_.path("absent.xml")), DDS_RETCODE_ERROR);
    EXPECT_EQ(message(), "cannot open the file: No such file or directory");
    EXPECT_EQ(DDS_XMLParser_get_error_line(parser_.get()), 0U);
    EXPECT_EQ(parse(folder_.path()), DDS_RETCODE_ERROR);
    EXPECT_EQ(message(), "cannot read the file: Is a directory");
    for (const char *path :
         {"", "http://example.com/a.xml", "file:///tmp/%zz", "file:///tmp/%00"}) {
        EXPECT_EQ(parse(path), DDS_RETCODE_ERROR);
        EXPECT_EQ(message(), "not a path or a file:// URL") << path;
    }
}

TEST_F(XmlFile, LargerThanAllowedIsRefusedWithoutReadingItAll) {
    // A gigabyte that takes no room on the disk: were it read whole, this test would be slow at
    // least.
    const std::string path = write("large.xml", "<dds>");
    ASSERT_EQ(truncate(path.c_str(), 1073741824), 0);
    EXPECT_EQ(parse(path), DDS_RETCODE_ERROR);
    const std::string spaces = write("spaces.xml", "<dds>" + std::string(5000000, ' ') + "</dds>");
    EXPECT_EQ(parse(spaces), DDS_RETCODE_ERROR);
    EXPECT_EQ(message(), "the text of <dds> is longer than 1048576 bytes");
    const std::string comments =
        write("comments.xml", "<dds><!--" + std::string(5000000, ' ') + "--></dds>");
    EXPECT_EQ(parse(comments), DDS_RETCODE_ERROR);
    EXPECT_EQ(message(), "the document is larger than 4194304 bytes");
}

TEST_F(XmlFile, ErrorsAreLoggedWithFileAndLine) {
    const support::LogCapture log;
    const std::string path = write("wrong.xml", "<dds>\n<a>\n</dds>");
    EXPECT_EQ(parse(path), DDS_RETCODE_ERROR);
    EXPECT_EQ(log.lines().size(), 1U);
    EXPECT_TRUE(log.has(path + ":3: mismatched tag")) << log.text();
}

// ---- Objects made by hand -----------------------------------------------------------------------

TEST(XmlObject, CanBeFinalisedInEveryState) {
    DDS_XMLObject zero = {};
    DDS_XMLObject_finalize(&zero);
    DDS_XMLObject_finalize(nullptr);
    DDS_XMLObject object;
    ASSERT_TRUE(DDS_XMLObject_initialize(&object, nullptr, nullptr, "a", nullptr));
    DDS_XMLObject_finalize(&object);
    DDS_XMLObject_finalize(&object);
    EXPECT_EQ(DDS_XMLObject_get_tag_name(&object), nullptr);
    EXPECT_FALSE(DDS_XMLObject_initialize(nullptr, nullptr, nullptr, "a", nullptr));
    EXPECT_FALSE(DDS_XMLObject_initialize(&object, nullptr, nullptr, nullptr, nullptr));
}

TEST(XmlObject, LeavesItsParentWhereverItStands) {
    for (std::size_t removed = 0; removed < 3; ++removed) {
        DDS_XMLObject parent;
        ASSERT_TRUE(DDS_XMLObject_initialize(&parent, nullptr, nullptr, "p", nullptr));
        DDS_XMLObject children[3];
        const char *names[] = {"0", "1", "2"};
        for (std::size_t i = 0; i < 3; ++i) {
            ASSERT_TRUE(
                DDS_XMLObject_initialize(&children[i], nullptr, &parent, names[i], nullptr));
        }
        DDS_XMLObject_finalize(&children[removed]);
        std::string left;
        for (const DDS_XMLObject *child = DDS_XMLObject_get_first_child(&parent); child != nullptr;
             child = DDS_XMLObject_get_next_sibling(child)) {
            left += tag_of(child);
        }
        EXPECT_EQ(left, std::string("012").erase(removed, 1));
        for (DDS_XMLObject &child : children) {
            DDS_XMLObject_finalize(&child);
        }
        EXPECT_EQ(DDS_XMLObject_get_first_child(&parent), nullptr);
        DDS_XMLObject_finalize(&parent);
    }
}

TEST(XmlObject, GettersBearNull) {
    EXPECT_EQ(DDS_XMLObject_get_tag_name(nullptr), nullptr);
    EXPECT_EQ(DDS_XMLObject_get_text(nullptr), nullptr);
    EXPECT_EQ(DDS_XMLObject_get_attribute(nullptr, "a"), nullptr);
    EXPECT_EQ(DDS_XMLObject_get_attributes(nullptr), nullptr);
    EXPECT_EQ(DDS_XMLObject_get_parent(nullptr), nullptr);
    EXPECT_EQ(DDS_XMLObject_get_first_child(nullptr), nullptr);
    EXPECT_EQ(DDS_XMLObject_get_next_sibling(nullptr), nullptr);
    EXPECT_EQ(DDS_XMLObject_find_child(nullptr, "a"), nullptr);
    EXPECT_EQ(DDS_XMLObject_get_extension_class(nullptr), nullptr);
    EXPECT_EQ(DDS_XMLObject_get_line_number(nullptr), 0U);
    EXPECT_FALSE(DDS_XMLObject_save(nullptr, nullptr));
    EXPECT_EQ(DDS_XMLParser_get_root(nullptr), nullptr);
    EXPECT_STREQ(DDS_XMLParser_get_error_message(nullptr), "");
    EXPECT_EQ(DDS_XMLParser_get_error_line(nullptr), 0U);
    EXPECT_EQ(DDS_XMLParser_parse_string(nullptr, "<dds/>", -1, nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_XMLParser_parse_file(nullptr, "x"), DDS_RETCODE_BAD_PARAMETER);
    DDS_XMLParser_delete(nullptr);
    DDS_XMLExtensionClass_delete(nullptr);
    EXPECT_EQ(DDS_XMLContext_get_current_line_number(nullptr), 0U);
    EXPECT_STREQ(DDS_XMLContext_get_source_name(nullptr), "");
    EXPECT_STREQ(DDS_XMLContext_get_error_message(nullptr), "");
    DDS_XMLContext_report_error(nullptr, "x");
}

}  // namespace
