// SPDX-License-Identifier: Apache-2.0
// UTF-8 in, JSON strings and XML character data out.

#include "dynamic/text_escape.hpp"

#include <utf8/unchecked.h>

#include <cstdio>
#include <iterator>

namespace kolt::dynamic {
namespace {

constexpr char32_t kReplacement = 0xfffd;

void append_utf8(std::string &text, char32_t character) {
    utf8::unchecked::append(character, std::back_inserter(text));
}

// Calls `append(character)` for each character, with U+FFFD for each byte that is part of none.
template <typename Append>
void for_each_character(std::string_view characters, Append append) {
    const char *next = characters.data();
    const char *const end = next + characters.size();
    while (next != end) {
        const char *const end_of_valid = utf8::find_invalid(next, end);
        while (next != end_of_valid) {
            append(char32_t{utf8::unchecked::next(next)});
        }
        if (next != end) {
            append(kReplacement);
            ++next;
        }
    }
}

void append_json_character(std::string &text, char32_t character) {
    switch (character) {
        case '"':
            text += "\\\"";
            return;
        case '\\':
            text += "\\\\";
            return;
        case '\b':
            text += "\\b";
            return;
        case '\f':
            text += "\\f";
            return;
        case '\n':
            text += "\\n";
            return;
        case '\r':
            text += "\\r";
            return;
        case '\t':
            text += "\\t";
            return;
        default:
            break;
    }
    // DEL is allowed as it stands, but terminals act on it as they do on the other controls.
    if (character < 0x20 || character == 0x7f) {
        char escape[8];
        std::snprintf(escape, sizeof(escape), "\\u%04x", static_cast<unsigned>(character));
        text += escape;
        return;
    }
    append_utf8(text, character);
}

void append_xml_character(std::string &text, char32_t character) {
    switch (character) {
        case '&':
            text += "&amp;";
            return;
        case '<':
            text += "&lt;";
            return;
        case '>':
            text += "&gt;";
            return;
        case '\r':
            text += "&#13;";
            return;  // as it stands a parser would make a line feed of it
        case '\n':
        case '\t':
            text += static_cast<char>(character);
            return;
        default:
            break;
    }
    const bool forbidden = character < 0x20 || character == 0xfffe || character == 0xffff;
    append_utf8(text, forbidden ? kReplacement : character);
}

}  // namespace

void append_json_string(std::string &text, std::string_view characters) {
    text += '"';
    for_each_character(characters,
                       [&text](char32_t character) { append_json_character(text, character); });
    text += '"';
}

void append_xml_text(std::string &text, std::string_view characters) {
    for_each_character(characters,
                       [&text](char32_t character) { append_xml_character(text, character); });
}

}  // namespace kolt::dynamic
