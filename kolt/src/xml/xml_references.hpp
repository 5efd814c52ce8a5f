// SPDX-License-Identifier: Apache-2.0
// References to entities in start tags.
#pragma once

#include <string>
#include <string_view>

namespace kolt::xml {

// Returns the name of the first entity, other than the predefined ones, that an attribute of the start
// tag refers to; empty when there is none. `tag` is the tag as it stands in the document, in UTF-16 or
// in an encoding that has ASCII in it.
//
// The XML library leaves such a reference out without a word when the document names an external
// subset, which it does not read and where the entity might be declared.
std::string undeclared_reference(std::string_view tag);

}  // namespace kolt::xml
