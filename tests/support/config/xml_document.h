// SPDX-License-Identifier: Apache-2.0
// Short forms for tests that parse and write XML.
#pragma once

#include <gtest/gtest.h>
#include <kolt/xml.h>

#include <memory>
#include <string>

namespace support {

struct DeleteParser {
    void operator()(DDS_XMLParser *parser) const { DDS_XMLParser_delete(parser); }
};
using ParserPtr = std::unique_ptr<DDS_XMLParser, DeleteParser>;

inline DDS_ReturnCode_t parse(const ParserPtr &parser, const std::string &text) {
    return DDS_XMLParser_parse_string(parser.get(), text.data(),
                                      static_cast<DDS_LongLong>(text.size()), nullptr);
}

inline std::string tag_of(const DDS_XMLObject *object) {
    const char *name = DDS_XMLObject_get_tag_name(object);
    return name == nullptr ? "(none)" : name;
}

inline std::string text_of(const DDS_XMLObject *object) {
    const char *text = DDS_XMLObject_get_text(object);
    return text == nullptr ? "(none)" : text;
}

inline std::string save(const DDS_XMLObject *object, int *error = nullptr) {
    DDS_XMLSaveContext context;
    EXPECT_TRUE(DDS_XMLSaveContext_initialize(&context));
    DDS_XMLObject_save(object, &context);
    std::string text = DDS_XMLSaveContext_get_text(&context);
    if (error != nullptr) {
        *error = context.error;
    }
    EXPECT_EQ(context.depth, 0);
    DDS_XMLSaveContext_finalize(&context);
    return text;
}

}  // namespace support
