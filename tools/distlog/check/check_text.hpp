// SPDX-License-Identifier: Apache-2.0
// White space around the texts of a document.
#pragma once

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

}  // namespace distlog::check
