// SPDX-License-Identifier: Apache-2.0
// Type codes: the primitive ones, and the getters.
#include "kolt/typecode.h"

#include <array>
#include <cstring>

#include "type/typecode/layout.hpp"

namespace {

constexpr DDS_DataRepresentationMask kBothRepresentations =
    DDS_DATA_REPRESENTATION_MASK_XCDR | DDS_DATA_REPRESENTATION_MASK_XCDR2;

constexpr DDS_TypeCode primitive(DDS_TCKind kind, const char *name) {
    DDS_TypeCode type{};
    type.kind = kind;
    type.name = name;
    type.representations = kBothRepresentations;
    return type;
}

// In the order of DDS_TCKind, from DDS_TK_BOOLEAN.
constexpr std::array<DDS_TypeCode, 11> kPrimitives = {
    primitive(DDS_TK_BOOLEAN, "boolean"),
    primitive(DDS_TK_CHAR, "char"),
    primitive(DDS_TK_OCTET, "octet"),
    primitive(DDS_TK_SHORT, "short"),
    primitive(DDS_TK_USHORT, "unsigned short"),
    primitive(DDS_TK_LONG, "long"),
    primitive(DDS_TK_ULONG, "unsigned long"),
    primitive(DDS_TK_LONGLONG, "long long"),
    primitive(DDS_TK_ULONGLONG, "unsigned long long"),
    primitive(DDS_TK_FLOAT, "float"),
    primitive(DDS_TK_DOUBLE, "double"),
};
static_assert(kPrimitives[DDS_TK_DOUBLE - DDS_TK_BOOLEAN].kind == DDS_TK_DOUBLE);

bool has_members(const DDS_TypeCode *type) {
    return type != nullptr && type->members != nullptr;
}

}  // namespace

const DDS_TypeCode *DDS_TypeCodeFactory_get_primitive_tc(DDS_TCKind kind) {
    return kolt::type::is_primitive(kind)
               ? &kPrimitives[static_cast<std::size_t>(kind) - DDS_TK_BOOLEAN]
               : nullptr;
}

DDS_TCKind DDS_TypeCode_kind(const DDS_TypeCode *self) {
    return self == nullptr ? DDS_TK_NULL : self->kind;
}

const char *DDS_TypeCode_name(const DDS_TypeCode *self) {
    return self == nullptr ? nullptr : self->name;
}

DDS_UnsignedLong DDS_TypeCode_member_count(const DDS_TypeCode *self) {
    return has_members(self) ? self->member_count : 0;
}

const DDS_TypeCodeMember *DDS_TypeCode_member(const DDS_TypeCode *self, DDS_UnsignedLong index) {
    if (!has_members(self) || index >= self->member_count) {
        return nullptr;
    }
    return &self->members[index];
}

const DDS_TypeCodeMember *DDS_TypeCode_find_member_by_name(const DDS_TypeCode *self,
                                                           const char *name) {
    if (name == nullptr) {
        return nullptr;
    }
    for (DDS_UnsignedLong i = 0; i < DDS_TypeCode_member_count(self); ++i) {
        if (std::strcmp(self->members[i].name, name) == 0) {
            return &self->members[i];
        }
    }
    return nullptr;
}

const DDS_TypeCodeMember *DDS_TypeCode_find_member_by_id(const DDS_TypeCode *self,
                                                         DDS_UnsignedLong id) {
    for (DDS_UnsignedLong i = 0; i < DDS_TypeCode_member_count(self); ++i) {
        if (self->members[i].id == id) {
            return &self->members[i];
        }
    }
    return nullptr;
}

DDS_Boolean DDS_TypeCode_is_keyed(const DDS_TypeCode *self) {
    return self != nullptr && kolt::type::is_keyed(*self);
}
