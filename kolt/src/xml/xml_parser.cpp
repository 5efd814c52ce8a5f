// SPDX-License-Identifier: Apache-2.0
// The parser of configuration documents, on expat.

#include "xml/xml_parser.hpp"

#include <expat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>

#include "xml/xml_references.hpp"

namespace kolt::xml {

std::string ParseError::text(const std::string &source_name) const {
    return source_name + (line == 0 ? "" : ":" + std::to_string(line)) + ": " + message;
}

// Keeps exceptions out of the XML library, and does nothing after the first error: the library may
// call a few handlers more after it was stopped.
struct DocumentParser::Handlers {
    template <typename Call>
    static void guard(void *user_data, Call call) noexcept {
        auto &parser = *static_cast<DocumentParser *>(user_data);
        if (parser.failed()) {
            return;
        }
        try {
            parser.context_._line_number = parser.current_line();
            errno = 0;
            call(parser);
        } catch (const std::bad_alloc &) {
            parser.fail_without_memory();
        }
    }

    static void start(void *user_data, const XML_Char *tag_name, const XML_Char **attributes) {
        guard(user_data, [&](auto &parser) { parser.start_element(tag_name, attributes); });
    }
    static void end(void *user_data, const XML_Char *tag_name) {
        guard(user_data, [&](auto &parser) { parser.end_element(tag_name); });
    }
    static void text(void *user_data, const XML_Char *text, int length) {
        guard(user_data, [&](auto &parser) {
            parser.character_data({text, static_cast<std::size_t>(length)});
        });
    }
    static void doctype(void *user_data, const XML_Char *, const XML_Char *, const XML_Char *,
                        int has_internal_subset) {
        guard(user_data, [&](auto &parser) {
            parser.has_doctype_ = true;
            if (has_internal_subset != 0) {
                parser.fail(
                    "document type declarations with content (entities, attribute defaults) are "
                    "not allowed");
            }
        });
    }
    static void entity(void *user_data, const XML_Char *name, int, const XML_Char *, int,
                       const XML_Char *, const XML_Char *, const XML_Char *, const XML_Char *) {
        guard(user_data, [&](auto &parser) {
            parser.fail("entity declarations are not allowed: \"%.64s\"", name);
        });
    }
    static void skipped_entity(void *user_data, const XML_Char *name, int) {
        guard(user_data, [&](auto &parser) { parser.fail("undeclared entity \"&%.64s;\"", name); });
    }
};

bool DocumentParser::begin(const std::string &source_name) {
    expat_ = {XML_ParserCreate(nullptr), [](XML_Parser parser) { XML_ParserFree(parser); }};
    if (expat_ == nullptr) {
        fail_without_memory();
        return false;
    }
    // Bounded, so that references to it stay valid while an element is open.
    open_.reserve(DDS_XML_MAX_DEPTH);
    context_._source_name = source_name.c_str();
    XML_SetUserData(expat_.get(), this);
    XML_SetElementHandler(expat_.get(), Handlers::start, Handlers::end);
    XML_SetCharacterDataHandler(expat_.get(), Handlers::text);
    XML_SetStartDoctypeDeclHandler(expat_.get(), Handlers::doctype);
    XML_SetEntityDeclHandler(expat_.get(), Handlers::entity);
    XML_SetSkippedEntityHandler(expat_.get(), Handlers::skipped_entity);
    return true;
}

bool DocumentParser::feed(std::string_view bytes, bool is_last) {
    size_ += bytes.size();
    if (size_ > DDS_XML_MAX_DOCUMENT_SIZE) {
        fail_too_large();
        return false;
    }
    const auto status =
        XML_Parse(expat_.get(), bytes.data(), static_cast<int>(bytes.size()), is_last ? 1 : 0);
    if (status != XML_STATUS_OK && !failed()) {
        report_malformed(is_last);
    }
    return !failed();
}

ObjectPtr DocumentParser::end() {
    context_._source_name = "";
    return failed() ? nullptr : std::move(root_);
}

ObjectPtr DocumentParser::parse_text(std::string_view text, const std::string &source_name) {
    if (begin(source_name)) {
        // A text that is too large is parsed up to the limit, as a file is.
        const bool is_whole = text.size() <= DDS_XML_MAX_DOCUMENT_SIZE;
        if (feed(text.substr(0, DDS_XML_MAX_DOCUMENT_SIZE), is_whole) && !is_whole) {
            fail_too_large();
        }
    }
    return end();
}

ObjectPtr DocumentParser::parse_file(const std::string &path_or_url) {
    const std::string path = path_of(path_or_url);
    if (path.empty()) {
        fail("not a path or a file:// URL");
        return nullptr;
    }
    const std::unique_ptr<FILE, int (*)(FILE *)> file(std::fopen(path.c_str(), "rbe"), std::fclose);
    if (file == nullptr) {
        fail("cannot open the file: %s", std::strerror(errno));
        return nullptr;
    }
    if (!begin(path_or_url)) {
        return end();
    }
    char buffer[16384];
    bool is_last = false;
    while (!is_last && !failed()) {
        errno = 0;
        const std::size_t count = std::fread(buffer, 1, sizeof(buffer), file.get());
        if (std::ferror(file.get()) != 0) {
            fail("cannot read the file: %s", std::strerror(errno));
            error_.line = 0;  // it is the file's fault, not that of a line
            break;
        }
        is_last = std::feof(file.get()) != 0;
        feed({buffer, count}, is_last);
    }
    return end();
}

void DocumentParser::check_references(const char *tag_name) {
    int offset = 0;
    int size = 0;
    const char *const input = XML_GetInputContext(expat_.get(), &offset, &size);
    const auto length = static_cast<std::size_t>(XML_GetCurrentByteCount(expat_.get()));
    const std::string name = input != nullptr ? undeclared_reference({input + offset, length}) : "";
    if (!name.empty()) {
        fail("undeclared entity \"&%.64s;\" in an attribute of <%.64s>", name.c_str(), tag_name);
    }
}

bool DocumentParser::check_start(const char *tag_name) {
    if (open_.empty() && std::strcmp(tag_name, "dds") != 0) {
        fail("the root element is <%.64s>; expected: <dds>", tag_name);
    } else if (open_.size() >= DDS_XML_MAX_DEPTH) {
        fail("elements are nested more than %d deep", DDS_XML_MAX_DEPTH);
    } else if (++elements_ > DDS_XML_MAX_ELEMENTS) {
        fail("the document has more than %u elements", DDS_XML_MAX_ELEMENTS);
    } else if (has_doctype_) {
        check_references(tag_name);
    }
    return !failed();
}

void DocumentParser::start_element(const char *tag_name, const char **attributes) {
    if (!check_start(tag_name)) {
        return;
    }
    const bool inside_extension =
        !open_.empty() && open_.back().object->_extension_class != nullptr;
    DDS_XMLObject *object =
        inside_extension ? open_.back().object : make_object(tag_name, attributes);
    if (failed()) {
        return;
    }
    open_.push_back({tag_name, current_line(), object, inside_extension, {}});
    if (inside_extension && object->_extension_class->on_start_element != nullptr) {
        object->_extension_class->on_start_element(object, tag_name, attributes, &context_);
        check_context(tag_name);
    }
}

DDS_XMLObject *DocumentParser::make_object(const char *tag_name, const char **attributes) {
    DDS_XMLObject *parent = open_.empty() ? nullptr : open_.back().object;
    DDS_XMLObject *object = nullptr;
    DDS_XMLExtensionClass *extension_class = parent == nullptr ? nullptr : find_class(tag_name);
    if (extension_class != nullptr) {
        object = make_extension_object(extension_class, parent, tag_name, attributes);
    } else {
        object = new_object(parent, tag_name, attributes);
        if (object == nullptr) {
            fail_without_memory();
        }
    }
    if (object == nullptr) {
        return nullptr;
    }
    object->_line_number = current_line();
    if (parent == nullptr) {
        root_.reset(object);
    }
    return object;
}

DDS_XMLObject *DocumentParser::make_extension_object(DDS_XMLExtensionClass *extension_class,
                                                     DDS_XMLObject *parent, const char *tag_name,
                                                     const char **attributes) {
    if (!parent_is_allowed(*extension_class, tag_name)) {
        return nullptr;
    }
    DDS_XMLObject *object =
        extension_class->new_object(extension_class, parent, attributes, &context_);
    if (object == nullptr) {
        context_.error = 1;
    } else {
        // Sets the fields that the parser relies on, whatever the class's function did.
        object->_extension_class = extension_class;
        if (object->_parent == nullptr) {
            append_child(parent, object);
        }
    }
    check_context(tag_name);
    return object;
}

bool DocumentParser::parent_is_allowed(const DDS_XMLExtensionClass &extension_class,
                                       const char *tag_name) {
    if (extension_class.parent_tag_names.empty()) {
        return true;
    }
    std::string expected;
    for (const std::string &name : extension_class.parent_tag_names) {
        if (name == open_.back().tag_name) {
            return true;
        }
        expected += (expected.empty() ? "<" : ", <") + name + ">";
    }
    fail("<%.64s> may not stand in <%.64s>; expected: in %.256s", tag_name,
         open_.back().tag_name.c_str(), expected.c_str());
    return false;
}

void DocumentParser::end_element(const char *tag_name) {
    OpenElement &element = open_.back();
    DDS_XMLObject *object = element.object;
    if (const DDS_XMLExtensionClass *extension_class = object->_extension_class) {
        if (extension_class->on_end_element != nullptr) {
            extension_class->on_end_element(object, tag_name, element.text.c_str(), &context_);
            check_context(tag_name);
        }
    } else if (!element.text.empty()) {
        object->_text = DDS_String_dup(element.text.c_str());
        if (object->_text == nullptr) {
            fail_without_memory();
        }
    }
    open_.pop_back();
}

void DocumentParser::character_data(std::string_view text) {
    if (open_.empty()) {
        return;
    }
    OpenElement &element = open_.back();
    if (text.size() > DDS_XML_MAX_TEXT_LENGTH - element.text.size()) {
        fail("the text of <%.64s> is longer than %u bytes", element.tag_name.c_str(),
             DDS_XML_MAX_TEXT_LENGTH);
        return;
    }
    element.text += text;
}

void DocumentParser::check_context(const char *tag_name) {
    if (context_.error == 0 || failed()) {
        return;
    }
    const char *message = DDS_XMLContext_get_error_message(&context_);
    fail("<%.64s>%s%s", tag_name, message[0] == '\0' ? " was refused" : ": ", message);
}

DDS_XMLExtensionClass *DocumentParser::find_class(std::string_view tag_name) const {
    for (DDS_XMLExtensionClass *extension_class : classes_) {
        if (extension_class->tag_name == tag_name) {
            return extension_class;
        }
    }
    return nullptr;
}

DDS_UnsignedLong DocumentParser::current_line() const {
    if (expat_ == nullptr) {
        return 0;
    }
    return static_cast<DDS_UnsignedLong>(XML_GetCurrentLineNumber(expat_.get()));
}

void DocumentParser::fail(const char *format, ...) {
    char message[512];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(message, sizeof(message), format, arguments);
    va_end(arguments);
    stop();
    error_ = {DDS_RETCODE_ERROR, message, current_line()};
}

void DocumentParser::fail_too_large() {
    fail("the document is larger than %u bytes", DDS_XML_MAX_DOCUMENT_SIZE);
}

void DocumentParser::fail_without_memory() noexcept {
    stop();
    error_.code = DDS_RETCODE_OUT_OF_RESOURCES;
    error_.line = current_line();
    // Short enough for a string to hold without allocating.
    error_.message = "out of memory";
}

void DocumentParser::stop() noexcept {
    if (expat_ != nullptr) {
        XML_StopParser(expat_.get(), XML_FALSE);
    }
}

void DocumentParser::report_malformed(bool is_last) {
    const XML_Error code = XML_GetErrorCode(expat_.get());
    if (code == XML_ERROR_NO_MEMORY) {
        fail_without_memory();
        return;
    }
    const char *reason = XML_ErrorString(code);
    if (open_.empty()) {
        fail("%s", reason);
        return;
    }
    const OpenElement &innermost = open_.back();
    const bool ends_early = is_last && code == XML_ERROR_NO_ELEMENTS;
    fail("%s (<%.64s> is open since line %u)", ends_early ? "the document ends too early" : reason,
         innermost.tag_name.c_str(), innermost.line);
}

}  // namespace kolt::xml
