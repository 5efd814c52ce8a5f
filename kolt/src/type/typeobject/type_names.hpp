// SPDX-License-Identifier: Apache-2.0
// Qualified names of types ("module::module::Type"), and types that are announced under other
// modules than those of their type codes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kolt::type {

// A type is announced by the name that it is registered under, and the types that it consists of
// follow it: names in the modules of the type's own name move into the modules of the registered
// one. Modules correspond from the innermost to the outermost; when there are more in the
// registered name, the outermost module stands for all of the rest. So when "A::B::T" is registered
// as "x::y::b::T", "A::B::U" becomes "x::y::b::U", "A::V" becomes "x::y::V", and "C::W" stays.
//
// If the last parts of the two names differ, the registered name is just another name for the type,
// and nothing else moves.
class ModuleMove {
  public:
    ModuleMove(std::string_view own_name, std::string_view registered_name);

    std::string announced(std::string_view name) const;

  private:
    using Modules = std::vector<std::string_view>;

    std::string_view own_name_;
    std::string_view registered_name_;
    bool moves_ = false;
    Modules own_;
    Modules registered_;
};

}  // namespace kolt::type
