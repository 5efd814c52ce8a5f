// The children of the element `distributed_logger`: their names, what they may hold, and the
// options that they set.
#pragma once

#include <vur_dl/Options.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "text/output.hpp"

namespace distlog::check {

struct Element {
    std::string_view parent;  // "distributed_logger", "thread" or "cpu_list"
    std::string_view name;
    std::string_view expected;  // what its text may be; empty: it holds elements
    // False when the library refuses the text; nullptr when there is none to convert.
    bool (*accepts)(const char *text);
    // The number that the library reads at the start of the text; nullptr when texts are no
    // numbers.
    std::optional<int> (*number)(const char *text);
    // The option's value, for programs and for people; nullptr when it sets none of its own.
    Json (*value)(const VUR_DL_Options &options);
    std::string (*text)(const VUR_DL_Options &options);
};

std::span<const Element> elements();
// nullptr when `parent` has no such child.
const Element *find_element(std::string_view parent, std::string_view name);
// "a, b, c": what may stand in `parent`.
std::string child_names(std::string_view parent);
// "thread/mask"; a child of the logger's element has its bare name.
std::string path_of(const Element &element);

}  // namespace distlog::check
