// SPDX-License-Identifier: Apache-2.0
// The named types that a type consists of, with their type objects and identifiers.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "kolt/typecode.h"
#include "type/typeobject/type_names.hpp"
#include "type/typeobject/xcdr2_output.hpp"

namespace kolt::type {

// Says how equal two types with one identifier are (XTypes 7.3.4.7): kMinimal in all that matters
// when one reads the other, kComplete also in names and annotations. kBoth is for identifiers that
// are the same in both forms, because they leave nothing out.
enum class Equivalence : std::uint8_t { kMinimal = 0xf1, kComplete = 0xf2, kBoth = 0xf3 };

// A type object as it stands in a TypeMapping, and the first 14 bytes of its MD5.
struct TypeObject {
    Bytes bytes;
    std::array<std::uint8_t, 14> hash;
};

// A structure, union or enumeration, which is identified by the hash of its type object.
struct HashedType {
    const DDS_TypeCode *type = nullptr;
    TypeObject minimal{};
    TypeObject complete{};

    const TypeObject &object(Equivalence kind) const {
        return kind == Equivalence::kMinimal ? minimal : complete;
    }
};

inline bool is_hashed(const DDS_TypeCode &type) {
    return type.kind == DDS_TK_STRUCT || type.kind == DDS_TK_UNION || type.kind == DDS_TK_ENUM;
}

inline bool is_collection(const DDS_TypeCode &type) {
    return type.kind == DDS_TK_SEQUENCE || type.kind == DDS_TK_ARRAY;
}

class TypeTable {
  public:
    // `type` is well-formed and describable (find_objection).
    TypeTable(const DDS_TypeCode &type, const ModuleMove &names);

    // The type itself, then the others in the order in which a walk through the members meets them.
    // No two have the same complete identifier.
    const std::vector<HashedType> &types() const { return types_; }

    // The TypeIdentifier of a type in the table, or of one that needs no object (XTypes 7.3.4.2).
    void write_identifier(const DDS_TypeCode &type, Equivalence kind, Xcdr2Output *output) const;

  private:
    void add(const DDS_TypeCode &type);
    void remove_duplicates();
    const HashedType &find(const DDS_TypeCode &type) const;
    void write_collection(const DDS_TypeCode &type, Equivalence kind, Xcdr2Output *output) const;

    const ModuleMove &names_;
    std::vector<HashedType> types_;
};

// Writes the MinimalTypeObject or CompleteTypeObject of a type whose parts are in the table.
Bytes write_type_object(const DDS_TypeCode &type, Equivalence kind, const TypeTable &table,
                        const ModuleMove &names);

// Returns the reason why a well-formed type cannot be described; empty when it can. The reasons are
// rules of the standard, for which the engine would refuse the type as part of a topic's type.
std::string find_objection(const DDS_TypeCode &type, const ModuleMove &names);

// The MD5 of some bytes (RFC 1321).
std::array<std::uint8_t, 16> md5(const void *bytes, std::size_t length);

}  // namespace kolt::type
