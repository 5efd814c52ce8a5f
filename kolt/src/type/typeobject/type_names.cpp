// SPDX-License-Identifier: Apache-2.0
// Moving qualified names from one module into another.
#include "type/typeobject/type_names.hpp"

#include <algorithm>

namespace kolt::type {
namespace {

constexpr std::string_view kSeparator = "::";

// The parts of a qualified name; the last one is the type's.
std::vector<std::string_view> split(std::string_view name) {
    std::vector<std::string_view> parts;
    for (std::size_t end = name.find(kSeparator); end != std::string_view::npos;
         end = name.find(kSeparator)) {
        parts.push_back(name.substr(0, end));
        name.remove_prefix(end + kSeparator.size());
    }
    parts.push_back(name);
    return parts;
}

void append(std::string *name, std::string_view part) {
    if (!name->empty()) {
        *name += kSeparator;
    }
    *name += part;
}

}  // namespace

ModuleMove::ModuleMove(std::string_view own_name, std::string_view registered_name)
    : own_name_(own_name),
      registered_name_(registered_name),
      own_(split(own_name)),
      registered_(split(registered_name)) {
    moves_ = own_.back() == registered_.back();
    own_.pop_back();
    registered_.pop_back();
}

std::string ModuleMove::announced(std::string_view name) const {
    if (name == own_name_) {
        return std::string(registered_name_);
    }
    if (!moves_) {
        return std::string(name);
    }
    const Modules parts = split(name);
    const std::size_t limit = std::min(own_.size(), parts.size() - 1);
    std::size_t common = 0;
    while (common < limit && own_[common] == parts[common]) {
        ++common;
    }
    if (common == 0 && !own_.empty()) {
        return std::string(name);  // lies elsewhere
    }
    const std::size_t innermost = own_.size() - common;  // that the type does not lie in
    std::string result;
    for (std::size_t i = 0; i + innermost < registered_.size(); ++i) {
        append(&result, registered_[i]);
    }
    for (std::size_t i = common; i < parts.size(); ++i) {
        append(&result, parts[i]);
    }
    return result;
}

}  // namespace kolt::type
