// SPDX-License-Identifier: Apache-2.0
// Tags and texts of a document.
#pragma once

#include <fmt/format.h>
#include <kolt/xml.h>

#include <string>
#include <string_view>

namespace distlog::check {

// The text without the white space of XML at both ends.
inline std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kWhiteSpace = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kWhiteSpace);
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1);
}

// Returns the first few characters in quotes, for a message.
inline std::string quoted(std::string_view text) {
    constexpr std::size_t kShownText = 64;
    return fmt::format("\"{}{}\"", text.substr(0, kShownText),
                       text.size() > kShownText ? "..." : "");
}

inline std::string_view tag_of(const DDS_XMLObject *object) {
    return DDS_XMLObject_get_tag_name(object);
}

template <typename Visit>
void for_each_child(const DDS_XMLObject *object, Visit visit) {
    for (const DDS_XMLObject *child = DDS_XMLObject_get_first_child(object); child != nullptr;
         child = DDS_XMLObject_get_next_sibling(child)) {
        visit(child);
    }
}

// Returns a message about text where only elements count; empty when there is no such text.
inline std::string useless_text(const DDS_XMLObject *object) {
    const std::string_view text = trimmed(DDS_XMLObject_get_text(object));
    return text.empty() ? ""
                        : fmt::format("text in <{}> has no effect: {}; expected: elements",
                                      tag_of(object), quoted(text));
}

}  // namespace distlog::check
