// UTF-8 in, JSON strings and XML character data out.

#include "dynamic/text_escape.hpp"

#include <cstddef>
#include <cstdio>

namespace kolt::dynamic {
namespace {

constexpr char32_t kReplacement = 0xfffd;

bool is_continuation(unsigned char byte) {
    return (byte & 0xc0U) == 0x80U;
}

// Bytes of a character that begins with `lead`; 0 for a byte that begins none.
std::size_t character_length(unsigned char lead) {
    if (lead < 0x80) {
        return 1;
    }
    if (lead >= 0xc2 && lead <= 0xdf) {
        return 2;
    }
    if (lead >= 0xe0 && lead <= 0xef) {
        return 3;
    }
    return lead >= 0xf0 && lead <= 0xf4 ? 4 : 0;
}

// The smallest code point that needs this many bytes.
constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};

// Takes the next character off `rest`; one byte when they make no character.
char32_t take_character(std::string_view &rest) {
    const auto lead = static_cast<unsigned char>(rest.front());
    const std::size_t length = character_length(lead);
    if (length == 1) {
        rest.remove_prefix(1);
        return lead;
    }
    if (length == 0 || rest.size() < length) {
        rest.remove_prefix(1);
        return kReplacement;
    }
    char32_t character = lead & (0xffU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(rest[i]);
        if (!is_continuation(byte)) {
            rest.remove_prefix(1);
            return kReplacement;
        }
        character = character << 6 | (byte & 0x3fU);
    }
    const bool surrogate = character >= 0xd800 && character <= 0xdfff;
    if (character < kSmallest[length] || character > 0x10ffff || surrogate) {
        rest.remove_prefix(1);
        return kReplacement;
    }
    rest.remove_prefix(length);
    return character;
}

void append_utf8(std::string &text, char32_t character) {
    const auto continuation = [&text, character](unsigned shift) {
        text += static_cast<char>(0x80U | ((character >> shift) & 0x3fU));
    };
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xc0U | character >> 6);
        continuation(0);
    } else if (character < 0x10000) {
        text += static_cast<char>(0xe0U | character >> 12);
        continuation(6);
        continuation(0);
    } else {
        text += static_cast<char>(0xf0U | character >> 18);
        continuation(12);
        continuation(6);
        continuation(0);
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
    while (!characters.empty()) {
        append_json_character(text, take_character(characters));
    }
    text += '"';
}

void append_xml_text(std::string &text, std::string_view characters) {
    while (!characters.empty()) {
        append_xml_character(text, take_character(characters));
    }
}

}  // namespace kolt::dynamic
