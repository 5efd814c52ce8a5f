// SPDX-License-Identifier: Apache-2.0
// The children of the element `distributed_logger`: their names, the texts that they may hold, and
// the options that they set.
#pragma once

#include <vur_dl/Options.h>
#include <vur_dl/XMLConfig.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "text/output.hpp"

namespace distlog::check {

struct Element {
    std::string_view parent;  // "distributed_logger", "thread" or "cpu_list"
    std::string_view name;
    // The state in which the library takes the text, or the children, of the element.
    DL_XMLConfig_TagType state;
    std::string_view expected;  // the possible texts, for a message; empty: it holds elements
    // False when the library refuses the text; nullptr when there is none to convert.
    bool (*accepts)(const char *text);
    // Returns the number that the library reads at the start of the text; nullptr when the texts
    // are not numbers.
    std::optional<int> (*number)(const char *text);
    int base;  // of its numbers, for strtol
    // Return the option's value, for programs and for people; nullptr when the element sets no
    // option of its own.
    Json (*value)(const VUR_DL_Options &options);
    std::string (*text)(const VUR_DL_Options &options);
};

std::span<const Element> elements();
// Returns the row of an element, whose names are all different; nullptr when there is none.
const Element *find_element(std::string_view name);
// Returns the names of the children of `parent`: "a, b, c".
std::string child_names(std::string_view parent);
// Returns "thread/mask", or the bare name for a child of the logger's element.
std::string path_of(const Element &element);

}  // namespace distlog::check
