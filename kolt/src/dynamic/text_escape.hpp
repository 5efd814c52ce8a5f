// SPDX-License-Identifier: Apache-2.0
// Strings from records, which may hold any bytes, as parts of well-formed UTF-8 texts.
#pragma once

#include <string>
#include <string_view>

namespace kolt::dynamic {

// Both append to `text`. A byte that is not part of a UTF-8 character becomes U+FFFD.

// In double quotes, with the escapes of JSON (RFC 8259, clause 7).
void append_json_string(std::string &text, std::string_view characters);

// As character data of XML 1.0, where control characters other than tabulator and line feeds cannot
// stand in any form: they become U+FFFD, too.
void append_xml_text(std::string &text, std::string_view characters);

}  // namespace kolt::dynamic
