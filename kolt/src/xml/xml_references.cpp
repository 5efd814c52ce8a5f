// SPDX-License-Identifier: Apache-2.0
// Finds references in start tags.
#include "xml/xml_references.hpp"

#include <algorithm>

namespace kolt::xml {

namespace {

// Returns the tag with one byte a character; those beyond ASCII become '?' where they were UTF-16.
std::string narrow(std::string_view tag) {
    const bool is_little = tag.size() > 1 && tag[1] == '\0';
    const bool is_big = !tag.empty() && tag[0] == '\0';
    if (!is_little && !is_big) {
        return std::string(tag);
    }
    const std::size_t low = is_little ? 0 : 1;
    std::string text;
    for (std::size_t i = 0; i + 1 < tag.size(); i += 2) {
        text += tag[i + 1 - low] == '\0' ? tag[i + low] : '?';
    }
    return text;
}

bool is_declared(std::string_view name) {
    constexpr std::string_view kPredefined[] = {"amp", "lt", "gt", "quot", "apos"};
    return name.starts_with('#') || std::ranges::find(kPredefined, name) != std::end(kPredefined);
}

}  // namespace

std::string undeclared_reference(std::string_view tag) {
    const std::string text = narrow(tag);
    for (std::size_t at = text.find('&'); at != std::string::npos; at = text.find('&', at + 1)) {
        std::string name = text.substr(at + 1, text.find(';', at) - at - 1);
        if (!is_declared(name)) {
            return name;
        }
    }
    return "";
}

}  // namespace kolt::xml
