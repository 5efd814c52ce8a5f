// SPDX-License-Identifier: Apache-2.0
// The encapsulation that a type has in memory order, by its extensibility.
#include <bit>

#include "kolt/cdr.h"

namespace {

DDS_UnsignedShort big_endian_encapsulation(const DDS_TypeCode &type, bool xcdr2) {
    // Only structures and unions have an extensibility that shows; the rest is plain.
    const bool aggregated = type.kind == DDS_TK_STRUCT || type.kind == DDS_TK_UNION;
    const DDS_ExtensibilityKind extensibility =
        aggregated ? type.extensibility : DDS_FINAL_EXTENSIBILITY;
    switch (extensibility) {
        case DDS_MUTABLE_EXTENSIBILITY:
            return xcdr2 ? KOLT_ENCAPSULATION_PL_CDR2_BE : KOLT_ENCAPSULATION_PL_CDR_BE;
        case DDS_APPENDABLE_EXTENSIBILITY:
            return xcdr2 ? KOLT_ENCAPSULATION_D_CDR2_BE : KOLT_ENCAPSULATION_CDR_BE;
        case DDS_FINAL_EXTENSIBILITY:
            break;
    }
    return xcdr2 ? KOLT_ENCAPSULATION_CDR2_BE : KOLT_ENCAPSULATION_CDR_BE;
}

}  // namespace

DDS_UnsignedShort DDS_TypeCode_get_native_encapsulation(const DDS_TypeCode *self,
                                                        DDS_DataRepresentationId_t representation) {
    if (self == nullptr) {
        return KOLT_ENCAPSULATION_INVALID;
    }
    const bool xcdr1 = (self->representations & DDS_DATA_REPRESENTATION_MASK_XCDR) != 0;
    const bool xcdr2 = (self->representations & DDS_DATA_REPRESENTATION_MASK_XCDR2) != 0;
    bool second = false;
    if (representation == DDS_AUTO_DATA_REPRESENTATION) {
        second = !xcdr1;
    } else if (representation == DDS_XCDR2_DATA_REPRESENTATION) {
        second = true;
    } else if (representation != DDS_XCDR_DATA_REPRESENTATION) {
        return KOLT_ENCAPSULATION_INVALID;
    }
    if (second ? !xcdr2 : !xcdr1) {
        return KOLT_ENCAPSULATION_INVALID;
    }
    constexpr DDS_UnsignedShort kNativeBit = std::endian::native == std::endian::little ? 1 : 0;
    return static_cast<DDS_UnsignedShort>(big_endian_encapsulation(*self, second) | kNativeBit);
}
