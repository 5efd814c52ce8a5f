// SPDX-License-Identifier: Apache-2.0
// Writing documents: the save context and the helpers for common elements.

#include <utf8/unchecked.h>

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "xml/xml_object.hpp"

namespace {

void lose_output(DDS_XMLSaveContext *self) {
    self->_failed = DDS_BOOLEAN_TRUE;
    self->error = 1;
}

// Room for `size` bytes more and a terminator.
bool reserve(DDS_XMLSaveContext *self, std::size_t size) {
    const std::size_t needed = self->_length + size + 1;
    if (needed <= self->_capacity) {
        return true;
    }
    const std::size_t capacity = needed > 2 * self->_capacity ? needed : 2 * self->_capacity;
    void *text = std::realloc(self->_text, capacity);
    if (text == nullptr) {
        return false;
    }
    self->_text = static_cast<char *>(text);
    self->_capacity = capacity;
    return true;
}

void write(DDS_XMLSaveContext *self, std::string_view text) {
    if (self->_failed != DDS_BOOLEAN_FALSE || text.empty()) {
        return;
    }
    if (self->_file != nullptr) {
        if (std::fwrite(text.data(), 1, text.size(), self->_file) != text.size()) {
            lose_output(self);
        }
        return;
    }
    if (!reserve(self, text.size())) {
        lose_output(self);
        return;
    }
    std::memcpy(self->_text + self->_length, text.data(), text.size());
    self->_length += text.size();
    self->_text[self->_length] = '\0';
}

// True for a character that may stand in a document (XML 1.0, 2.2).
bool is_xml_character(std::uint32_t character) {
    if (character < 0x20U) {
        return character == '\t' || character == '\n' || character == '\r';
    }
    return character != 0xFFFEU && character != 0xFFFFU;
}

const char *escape_of(char character, bool in_attribute) {
    switch (character) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\r':
            return "&#13;";
        case '\n':
            return in_attribute ? "&#10;" : nullptr;
        case '\t':
            return in_attribute ? "&#9;" : nullptr;
        default:
            return nullptr;
    }
}

// Stops with an error at the first byte that is not part of an XML character in UTF-8.
void write_escaped(DDS_XMLSaveContext *self, std::string_view text, bool in_attribute) {
    const char *next = text.data();
    const char *const end = next + text.size();
    const char *const end_of_valid = utf8::find_invalid(next, end);
    while (next != end_of_valid) {
        const char *const start = next;
        if (!is_xml_character(utf8::unchecked::next(next))) {
            self->error = 1;
            return;
        }
        const char *const escape = escape_of(*start, in_attribute);
        write(self, escape != nullptr ? std::string_view(escape) : std::string_view(start, next));
    }
    if (next != end) {
        self->error = 1;
    }
}

void write_plain_object(const DDS_XMLObject *self, DDS_XMLSaveContext *context) {
    DDS_XMLSaveContext_indent(context);
    DDS_XMLSaveContext_freeform(context, "<%s", self->_tag_name);
    const char *const *attribute = self->_attributes;
    for (; attribute != nullptr && attribute[0] != nullptr; attribute += 2) {
        DDS_XMLSaveContext_freeform(context, " %s=\"", attribute[0]);
        write_escaped(context, attribute[1], true);
        write(context, "\"");
    }
    write(context, ">");

    if (self->_first_child == nullptr) {
        write_escaped(context, DDS_XMLObject_get_text(self), false);
    } else {
        write(context, "\n");
        ++context->depth;
        // Text between elements has lost its places; all of it comes first.
        const std::string_view text = DDS_XMLObject_get_text(self);
        if (text.find_first_not_of(" \t\r\n") != std::string_view::npos) {
            write_escaped(context, text, false);
            write(context, "\n");
        }
        for (const DDS_XMLObject *child = self->_first_child; child != nullptr;
             child = child->_next_sibling) {
            DDS_XMLObject_save(child, context);
        }
        --context->depth;
        DDS_XMLSaveContext_indent(context);
    }
    DDS_XMLSaveContext_freeform(context, "</%s>\n", self->_tag_name);
}

bool equal_lists(const DDS_LongSeq *left, const DDS_LongSeq *right) {
    const DDS_UnsignedLong length = DDS_LongSeq_get_length(left);
    if (length != DDS_LongSeq_get_length(right)) {
        return false;
    }
    for (DDS_UnsignedLong i = 0; i < length; ++i) {
        const auto index = static_cast<DDS_Long>(i);
        if (DDS_LongSeq_get(left, index) != DDS_LongSeq_get(right, index)) {
            return false;
        }
    }
    return true;
}

}  // namespace

DDS_Boolean DDS_XMLSaveContext_initialize(DDS_XMLSaveContext *self) {
    if (self == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    *self = DDS_XMLSaveContext{};
    return DDS_BOOLEAN_TRUE;
}

DDS_Boolean DDS_XMLSaveContext_initialize_w_file(DDS_XMLSaveContext *self, FILE *file) {
    if (file == nullptr || !DDS_XMLSaveContext_initialize(self)) {
        return DDS_BOOLEAN_FALSE;
    }
    self->_file = file;
    return DDS_BOOLEAN_TRUE;
}

DDS_Boolean DDS_XMLSaveContext_finalize(DDS_XMLSaveContext *self) {
    if (self == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    std::free(self->_text);
    *self = DDS_XMLSaveContext{};
    return DDS_BOOLEAN_TRUE;
}

const char *DDS_XMLSaveContext_get_text(const DDS_XMLSaveContext *self) {
    return self == nullptr || self->_text == nullptr ? "" : self->_text;
}

void DDS_XMLSaveContext_indent(DDS_XMLSaveContext *self) {
    if (self == nullptr) {
        return;
    }
    constexpr std::string_view kBlanks = "                                ";
    DDS_LongLong blanks = DDS_LongLong{self->depth} * DDS_XML_INDENT_WIDTH;
    for (; blanks > 0 && self->_failed == DDS_BOOLEAN_FALSE;
         blanks -= static_cast<DDS_LongLong>(kBlanks.size())) {
        write(self, kBlanks.substr(0, static_cast<std::size_t>(blanks)));
    }
}

void DDS_XMLSaveContext_freeform(DDS_XMLSaveContext *self, const char *format, ...) {
    if (self == nullptr || format == nullptr || self->_failed != DDS_BOOLEAN_FALSE) {
        return;
    }
    std::va_list arguments;
    va_start(arguments, format);
    if (self->_file != nullptr) {
        if (std::vfprintf(self->_file, format, arguments) < 0) {
            lose_output(self);
        }
    } else {
        std::va_list again;
        va_copy(again, arguments);
        const int length = std::vsnprintf(nullptr, 0, format, arguments);
        if (length < 0 || !reserve(self, static_cast<std::size_t>(length))) {
            lose_output(self);
        } else {
            const std::size_t size = static_cast<std::size_t>(length) + 1;
            std::vsnprintf(self->_text + self->_length, size, format, again);
            self->_length += static_cast<std::size_t>(length);
        }
        va_end(again);
    }
    va_end(arguments);
}

void DDS_XMLSaveContext_escaped(DDS_XMLSaveContext *self, const char *text) {
    if (self != nullptr && text != nullptr) {
        write_escaped(self, text, false);
    }
}

DDS_Boolean DDS_XMLObject_save(const DDS_XMLObject *self, DDS_XMLSaveContext *context) {
    if (self == nullptr || context == nullptr || self->_tag_name == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    if (self->_extension_class == nullptr) {
        write_plain_object(self, context);
    } else if (self->_extension_class->save != nullptr) {
        self->_extension_class->save(self, context);
    }
    return context->error == 0 ? DDS_BOOLEAN_TRUE : DDS_BOOLEAN_FALSE;
}

void DDS_XMLHelper_save_tag(const char *tag_name, DDS_Long flags, DDS_XMLSaveContext *context) {
    if (tag_name == nullptr || context == nullptr) {
        return;
    }
    const auto has = [flags](DDS_Long flag) { return (flags & flag) != 0; };
    if (has(DDS_XML_TAG_LOWER)) {
        --context->depth;
    }
    if (has(DDS_XML_TAG_INDENT)) {
        DDS_XMLSaveContext_indent(context);
    }
    if (has(DDS_XML_TAG_OPEN)) {
        DDS_XMLSaveContext_freeform(context, "<%s>", tag_name);
        ++context->depth;
    }
    if (has(DDS_XML_TAG_CLOSE)) {
        DDS_XMLSaveContext_freeform(context, "</%s>", tag_name);
    }
    if (has(DDS_XML_TAG_NEWLINE)) {
        write(context, "\n");
    }
}

void DDS_XMLHelper_save_long(const char *tag_name, DDS_Long value, const DDS_Long *default_value,
                             DDS_Boolean save_default, DDS_XMLSaveContext *context) {
    if (tag_name == nullptr || context == nullptr ||
        (default_value != nullptr && *default_value == value && !save_default)) {
        return;
    }
    DDS_XMLSaveContext_indent(context);
    DDS_XMLSaveContext_freeform(context, "<%s>%d</%s>\n", tag_name, value, tag_name);
}

void DDS_XMLHelper_save_string(const char *tag_name, const char *value, const char *default_value,
                               DDS_Boolean save_default, DDS_XMLSaveContext *context) {
    if (tag_name == nullptr || context == nullptr) {
        return;
    }
    const char *text = value == nullptr ? "" : value;
    if (default_value != nullptr && std::strcmp(text, default_value) == 0 && !save_default) {
        return;
    }
    DDS_XMLSaveContext_indent(context);
    DDS_XMLSaveContext_freeform(context, "<%s>", tag_name);
    write_escaped(context, text, false);
    DDS_XMLSaveContext_freeform(context, "</%s>\n", tag_name);
}

void DDS_XMLHelper_save_long_seq(const char *tag_name, const DDS_LongSeq *value,
                                 const DDS_LongSeq *default_value, DDS_XMLSaveContext *context) {
    if (tag_name == nullptr || context == nullptr ||
        (value != nullptr && default_value != nullptr && equal_lists(value, default_value))) {
        return;
    }
    const DDS_UnsignedLong length = value == nullptr ? 0U : DDS_LongSeq_get_length(value);
    if (length == 0U) {
        DDS_XMLSaveContext_indent(context);
        DDS_XMLSaveContext_freeform(context, "<%s></%s>\n", tag_name, tag_name);
        return;
    }
    DDS_XMLHelper_save_tag(tag_name, DDS_XML_OPEN_TAG, context);
    for (DDS_UnsignedLong i = 0; i < length; ++i) {
        const DDS_Long element = DDS_LongSeq_get(value, static_cast<DDS_Long>(i));
        DDS_XMLHelper_save_long("element", element, nullptr, DDS_BOOLEAN_FALSE, context);
    }
    DDS_XMLHelper_save_tag(tag_name, DDS_XML_CLOSE_TAG, context);
}
