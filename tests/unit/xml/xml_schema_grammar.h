// SPDX-License-Identifier: Apache-2.0
// The grammar of QoS libraries as a table, told by the schema and, in its messages, by the library.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>

namespace schema {

// The names that may stand in one place of a document.
struct Place {
    std::set<std::string> elements;
    std::set<std::string> attributes;
    std::set<std::string> names;  // of values: enumerators, symbolic numbers, booleans

    bool operator==(const Place &) const = default;
};

// By path from a child of the root on: "qos_library/qos_profile/datawriter_qos/history/kind".
using Grammar = std::map<std::string, Place>;

// One line a place, for messages.
std::string to_string(const Grammar &grammar);

// Returns what a schema (the text of an xsd document) allows in the element `name` and below it.
Grammar grammar_of_schema(const std::string &xsd, const std::string &name);

// Returns what a library allows in the element `qos_library` and below it. It is asked by wrong
// documents: `load` takes a document and returns the error in it, "" when there is none.
using Load = std::function<std::string(const std::string &document)>;
Grammar grammar_of_library(const Load &load);

}  // namespace schema
