// SPDX-License-Identifier: Apache-2.0
// Descriptions of a type as in DDS-XTypes 1.3: type objects (7.3.4), the identifiers made of them,
// and the two forms in which they are handed out, TypeInformation (7.6.3.2) and TypeMapping.
//
// Where the standard and the engine's IDL compiler differ, the compiler is followed, because types
// are matched by comparing their identifiers:
//  - members stand in the order of their declaration in minimal objects, too, not in that of ids;
//  - the flags of an enumeration tell its extensibility;
//  - the flags of a union's discriminator have must-understand;
//  - the labels of a branch stand in the order of the type code.
// An array is "small" when each of its dimensions is below 256, which is the standard's rule and
// the engine's own; the compiler wants the product of the dimensions below 256.
#pragma once

#include <optional>
#include <string>

#include "kolt/typecode.h"
#include "type/typeobject/xcdr2_output.hpp"

namespace kolt::type {

// Both in little-endian XCDR2, without an encapsulation header.
struct TypeDescription {
    // Minimal and complete identifier of the type and of those that it consists of.
    Bytes information;
    // The type objects that the identifiers stand for.
    Bytes mapping;
};

// Describes a well-formed structure or union. `name` is what the type is announced as; types in the
// modules of the type code's own name move to the modules of that one (type_names.hpp). Empty when
// the standard has no object for such a type, or the engine would refuse it; `*problem` says why.
std::optional<TypeDescription> describe_type(const DDS_TypeCode &type, const char *name,
                                             std::string *problem);

}  // namespace kolt::type
