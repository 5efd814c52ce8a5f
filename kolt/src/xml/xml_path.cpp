// SPDX-License-Identifier: Apache-2.0
// Paths and file URLs (RFC 8089) of documents.

#include "xml/xml_parser.hpp"

namespace kolt::xml {
namespace {

constexpr std::string_view kFileScheme = "file://";
constexpr std::string_view kLocalHost = "localhost/";

int hex_digit(char character) {
    if (character >= '0' && character <= '9') {
        return character - '0';
    }
    const int lower = character | 0x20;
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Replaces %xx; empty when one is wrong or stands for the terminator.
std::string decode(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded += text[i];
            continue;
        }
        const int high = i + 2 < text.size() ? hex_digit(text[i + 1]) : -1;
        const int low = i + 2 < text.size() ? hex_digit(text[i + 2]) : -1;
        if (high < 0 || low < 0 || (high == 0 && low == 0)) {
            return {};
        }
        decoded += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return decoded;
}

}  // namespace

std::string path_of(std::string_view path_or_url) {
    if (path_or_url.starts_with(kFileScheme)) {
        std::string_view path = path_or_url.substr(kFileScheme.size());
        if (path.starts_with(kLocalHost)) {
            path.remove_prefix(kLocalHost.size() - 1);
        }
        return decode(path);
    }
    if (path_or_url.find("://") != std::string_view::npos) {
        return {};
    }
    return std::string(path_or_url);
}

}  // namespace kolt::xml
