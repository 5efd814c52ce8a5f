// SPDX-License-Identifier: Apache-2.0
// The attributes of XML itself, which may stand on any element and say nothing to this system.
#pragma once

#include <string_view>

namespace kolt {

// True for declarations of a namespace's prefix, and for the places of schemas.
inline bool is_attribute_of_xml(std::string_view name) {
    return name.substr(0, 6) == "xmlns:" || name == "xsi:schemaLocation" ||
           name == "xsi:noNamespaceSchemaLocation";
}

// Returns the first attribute for which `is_known(name)` is false and which is not one of XML
// itself; nullptr when there is none. `attributes`: name, value, name, value, ..., nullptr; or
// nullptr.
template <typename IsKnown>
const char *unknown_attribute(const char *const *attributes, IsKnown is_known) {
    for (; attributes != nullptr && attributes[0] != nullptr; attributes += 2) {
        const std::string_view name = attributes[0];
        if (!is_attribute_of_xml(name) && !is_known(name)) {
            return attributes[0];
        }
    }
    return nullptr;
}
inline const char *unknown_attribute(const char *const *attributes) {
    return unknown_attribute(attributes, [](std::string_view) { return false; });
}

}  // namespace kolt
