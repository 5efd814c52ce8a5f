// SPDX-License-Identifier: Apache-2.0
// A parser that knows the element `distributed_logger`, and the errors that were reported.
#pragma once

#include <gtest/gtest.h>
#include <kolt/xml.h>
#include <vur_dl/XMLConfig.h>

#include <string>
#include <vector>

namespace support {

using Lines = std::vector<std::string>;

// "line method: message" of every error that was reported.
inline Lines &errors() {
    static Lines all;
    return all;
}

inline void log_error(const char *message, const char *method, DDS_UnsignedLong line) {
    errors().push_back(std::to_string(line) + " " + method + ": " + message);
}

// A parser that knows the element.
class XmlConfigDocument {
  public:
    XmlConfigDocument() {
        errors().clear();
        class_ = VUR_DL_XMLConfig_createXMLExtensionClass(log_error);
        EXPECT_NE(class_, nullptr);
        EXPECT_EQ(DDS_XMLParser_register_extension_class(parser_, class_), DDS_RETCODE_OK);
    }
    ~XmlConfigDocument() {
        DDS_XMLParser_delete(parser_);
        VUR_DL_XMLConfig_destroyXMLExtensionClass(class_);
    }
    XmlConfigDocument(const XmlConfigDocument &) = delete;
    XmlConfigDocument &operator=(const XmlConfigDocument &) = delete;

    DDS_ReturnCode_t parse(const std::string &text) {
        return DDS_XMLParser_parse_string(parser_, text.c_str(), -1, "test.xml");
    }
    DDS_ReturnCode_t parse_file(const std::string &path) {
        return DDS_XMLParser_parse_file(parser_, path.c_str());
    }
    // Parses the content of one element, whose first line is line 3.
    DDS_ReturnCode_t parse_element(const std::string &content) {
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

}  // namespace support
