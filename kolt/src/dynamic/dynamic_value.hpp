// SPDX-License-Identifier: Apache-2.0
// The record behind a dynamic value, and the way to a member of it.
#pragma once

#include "kolt/cdr.h"
#include "kolt/dynamic_data.h"

// The type's own record in memory, laid out as its access information says, and the type's
// programs.
struct DDS_DynamicData {
    const DDS_TypeCode *type;
    const KOLT_TypePrograms *programs;
    DDS_DynamicDataProperty_t property;
    void *record;
};

namespace kolt::dynamic {

// The place of a value. `value` is NULL when an optional member on the way is absent. The place of
// a union's discriminator also names the union, whose branch changes with it.
struct Place {
    const DDS_TypeCode *type = nullptr;
    void *value = nullptr;
    const DDS_TypeCode *union_type = nullptr;
    void *union_record = nullptr;
};

enum class Access {
    kRead,   // the member must be selected and present
    kProbe,  // only the types and the elements' indexes must fit; nothing changes
    kWrite   // branches on the way are selected, optional members made
};

// Finds a member by name (a path) or, when that is NULL, by id. OK, BAD_PARAMETER,
// PRECONDITION_NOT_MET, NO_DATA or OUT_OF_RESOURCES as kolt/dynamic_data.h says.
DDS_ReturnCode_t find_member(const DDS_DynamicData &data, const char *name,
                             DDS_DynamicDataMemberId id, Access access, Place *place);

// Sets a union's discriminator. When it then selects another branch, that branch gets its initial
// value. False when memory runs out.
bool set_discriminator(const DDS_TypeCode &type, void *record, DDS_LongLong value);

// True when a discriminator or enumeration of this type can have the value.
bool holds_integer(const DDS_TypeCode &type, DDS_LongLong value);

}  // namespace kolt::dynamic
