// SPDX-License-Identifier: Apache-2.0
// The C functions of the parser.

#include <cstring>
#include <new>

#include "kolt/config_logger.h"
#include "xml/xml_parser.hpp"

struct DDS_XMLParser {
    std::vector<DDS_XMLExtensionClass *> classes;
    kolt::xml::ObjectPtr root;
    kolt::xml::ParseError error;
};

namespace {

constexpr const char *kRootTag = "dds";

// Replaces the parser's document by the one that `parse(document_parser)` reads.
template <typename Parse>
DDS_ReturnCode_t replace_document(DDS_XMLParser &self, const char *method_name,
                                  const char *source_name, Parse parse) noexcept {
    std::string text = "out of memory";
    try {
        self.root.reset();
        self.error = {};
        kolt::xml::DocumentParser parser(self.classes);
        self.root = parse(parser);
        self.error = parser.error();
        text = self.error.text(source_name);
    } catch (const std::bad_alloc &) {
        self.root.reset();
        self.error.code = DDS_RETCODE_OUT_OF_RESOURCES;
        self.error.message = "out of memory";
    }
    if (self.error.code != DDS_RETCODE_OK) {
        KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_PLATFORM, KOLT_CONFIG_LOG_LEVEL_ERROR,
                         method_name, "%s", text.c_str());
    }
    return self.error.code;
}

}  // namespace

DDS_XMLParser *DDS_XMLParser_new() {
    return new (std::nothrow) DDS_XMLParser;
}

void DDS_XMLParser_delete(DDS_XMLParser *self) {
    delete self;
}

DDS_ReturnCode_t DDS_XMLParser_register_extension_class(DDS_XMLParser *self,
                                                        DDS_XMLExtensionClass *extension_class) {
    if (self == nullptr || extension_class == nullptr || extension_class->tag_name == kRootTag) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    for (const DDS_XMLExtensionClass *other : self->classes) {
        if (other->tag_name == extension_class->tag_name) {
            return DDS_RETCODE_PRECONDITION_NOT_MET;
        }
    }
    try {
        self->classes.push_back(extension_class);
        return DDS_RETCODE_OK;
    } catch (const std::bad_alloc &) {
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
}

DDS_ReturnCode_t DDS_XMLParser_parse_file(DDS_XMLParser *self, const char *path) {
    if (self == nullptr || path == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    return replace_document(*self, "DDS_XMLParser_parse_file", path,
                            [&](auto &parser) { return parser.parse_file(path); });
}

DDS_ReturnCode_t DDS_XMLParser_parse_string(DDS_XMLParser *self, const char *text,
                                            DDS_LongLong length, const char *source_name) {
    if (self == nullptr || text == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    const std::size_t size = length < 0 ? std::strlen(text) : static_cast<std::size_t>(length);
    const char *name = source_name == nullptr ? "string" : source_name;
    return replace_document(*self, "DDS_XMLParser_parse_string", name, [&](auto &parser) {
        return parser.parse_text({text, size}, name);
    });
}

DDS_XMLObject *DDS_XMLParser_get_root(const DDS_XMLParser *self) {
    return self == nullptr ? nullptr : self->root.get();
}

const char *DDS_XMLParser_get_error_message(const DDS_XMLParser *self) {
    return self == nullptr ? "" : self->error.message.c_str();
}

DDS_UnsignedLong DDS_XMLParser_get_error_line(const DDS_XMLParser *self) {
    return self == nullptr ? 0U : self->error.line;
}
