// SPDX-License-Identifier: Apache-2.0
// The parser of configuration documents, which returns its errors and logs nothing. The public
// functions (xml_parser_functions.cpp) and the store of QoS profiles use it.
#pragma once

#include <cstdarg>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "xml/xml_object.hpp"

struct XML_ParserStruct;

namespace kolt::xml {

struct ParseError {
    DDS_ReturnCode_t code = DDS_RETCODE_OK;
    std::string message;
    DDS_UnsignedLong line = 0;  // 0: no place in the document

    // "source:line: message"
    std::string text(const std::string &source_name) const;
};

struct ObjectDeleter {
    void operator()(DDS_XMLObject *object) const { delete_object(object); }
};
using ObjectPtr = std::unique_ptr<DDS_XMLObject, ObjectDeleter>;

// The path that a path or a file URL stands for; empty for a URL of another scheme or with a wrong
// escape.
std::string path_of(std::string_view path_or_url);

class DocumentParser {
  public:
    // `classes` and what they point to must outlive the parser.
    explicit DocumentParser(const std::vector<DDS_XMLExtensionClass *> &classes)
        : classes_(classes) {}
    DocumentParser(const DocumentParser &) = delete;
    DocumentParser &operator=(const DocumentParser &) = delete;

    // The root of the document; nullptr when it is wrong, and error() then says why. One document
    // a parser. They may throw std::bad_alloc.
    ObjectPtr parse_file(const std::string &path_or_url);
    ObjectPtr parse_text(std::string_view text, const std::string &source_name);

    const ParseError &error() const { return error_; }

  private:
    // An element that has begun and not ended.
    struct OpenElement {
        std::string tag_name;
        DDS_UnsignedLong line;
        DDS_XMLObject *object;  // its object; inside an extension element, that element's
        bool inside_extension;  // below an extension element, not itself one
        std::string text;
    };
    struct Handlers;  // the functions that the XML library calls

    bool begin(const std::string &source_name);
    bool feed(std::string_view bytes, bool is_last);
    ObjectPtr end();

    void start_element(const char *tag_name, const char **attributes);
    void end_element(const char *tag_name);
    void character_data(std::string_view text);
    bool check_start(const char *tag_name);
    // Refuses a reference to an undeclared entity in an attribute of the start tag that is read.
    void check_references(const char *tag_name);
    DDS_XMLObject *make_object(const char *tag_name, const char **attributes);
    DDS_XMLObject *make_extension_object(DDS_XMLExtensionClass *extension_class,
                                         DDS_XMLObject *parent, const char *tag_name,
                                         const char **attributes);
    bool parent_is_allowed(const DDS_XMLExtensionClass &extension_class, const char *tag_name);
    void check_context(const char *tag_name);
    DDS_XMLExtensionClass *find_class(std::string_view tag_name) const;

    DDS_UnsignedLong current_line() const;
    void fail(const char *format, ...) __attribute__((format(printf, 2, 3)));
    void fail_too_large();
    void fail_without_memory() noexcept;
    void stop() noexcept;
    void report_malformed(bool is_last);
    bool failed() const { return error_.code != DDS_RETCODE_OK; }

    const std::vector<DDS_XMLExtensionClass *> &classes_;
    std::unique_ptr<XML_ParserStruct, void (*)(XML_ParserStruct *)> expat_{nullptr, nullptr};
    DDS_XMLContext context_ = DDS_XML_CONTEXT_INITIALIZER;
    std::vector<OpenElement> open_;
    ObjectPtr root_;
    std::size_t size_ = 0;
    std::size_t elements_ = 0;
    bool has_doctype_ = false;
    ParseError error_;
};

}  // namespace kolt::xml
