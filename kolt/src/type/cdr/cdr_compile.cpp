// SPDX-License-Identifier: Apache-2.0
// The parts that both compilers share: framing, alignment, member selection, well-formedness.
#include <algorithm>

#include "kolt/config_logger.h"
#include "type/cdr/cdr_program.hpp"
#include "type/typecode/layout.hpp"

namespace kolt::type {
namespace {

// Deeper nesting than any sane type has; also what ends a type code that contains itself.
constexpr int kMaximumDepth = 64;

bool malformed(const DDS_TypeCode &type, const char *problem) {
    KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_API, KOLT_CONFIG_LOG_LEVEL_ERROR,
                     "KOLT_TypePrograms_acquire", "malformed type code %s: %s",
                     type.name == nullptr ? "(anonymous)" : type.name, problem);
    return false;
}

bool validate(const DDS_TypeCode &type, int depth);

bool validate_array(const DDS_TypeCode &type, int depth) {
    if (type.dimension_count == 0 || type.dimensions == nullptr) {
        return malformed(type, "array without dimensions");
    }
    std::uint64_t count = 1;
    for (DDS_UnsignedLong i = 0; i < type.dimension_count; ++i) {
        count *= type.dimensions[i];
        if (count == 0 || count > INT32_MAX) {
            return malformed(type, "array size out of range");
        }
    }
    return validate(*type.content_type, depth + 1);
}

bool is_discriminator_kind(DDS_TCKind kind) {
    return kind == DDS_TK_ENUM ||
           (is_primitive(kind) && kind != DDS_TK_FLOAT && kind != DDS_TK_DOUBLE);
}

bool validate_union(const DDS_TypeCode &type) {
    if (type.discriminator_type == nullptr ||
        !is_discriminator_kind(type.discriminator_type->kind)) {
        return malformed(type, "no integral discriminator");
    }
    const std::size_t size = primitive_size(type.discriminator_type->kind);
    if (type.access->discriminator_offset > type.access->record_size ||
        type.access->record_size - type.access->discriminator_offset < size) {
        return malformed(type, "discriminator outside the record");
    }
    return true;
}

bool validate_member(const DDS_TypeCode &type, DDS_UnsignedLong index, int depth) {
    const DDS_TypeCodeMember &member = type.members[index];
    if (member.name == nullptr || member.type == nullptr) {
        return malformed(type, "member without name or type");
    }
    if (member.id > kMemberIdMask) {
        return malformed(type, "member id out of range");
    }
    const bool is_union = type.kind == DDS_TK_UNION;
    const bool mutable_union = is_union && type.extensibility == DDS_MUTABLE_EXTENSIBILITY;
    if (mutable_union && member.id == kDiscriminatorId) {
        return malformed(type, "member id 0 belongs to the discriminator");
    }
    for (DDS_UnsignedLong i = 0; i < index; ++i) {
        if (type.members[i].id == member.id) {
            return malformed(type, "two members with one id");
        }
    }
    if (member.is_optional && (member.is_key || is_union)) {
        return malformed(type, "optional key member or union branch");
    }
    if (is_union && member.label_count > 0 && member.labels == nullptr) {
        return malformed(type, "union branch without labels");
    }
    if (!validate(*member.type, depth + 1)) {
        return false;
    }
    const std::size_t size = member.is_optional ? sizeof(void *) : value_size(*member.type);
    const std::size_t offset = type.access->member_offsets[index];
    if (offset > type.access->record_size || type.access->record_size - offset < size) {
        return malformed(type, "member outside the record");
    }
    return true;
}

bool validate_aggregate(const DDS_TypeCode &type, int depth) {
    if (type.access == nullptr || type.access->record_size == 0 ||
        type.access->member_count != type.member_count ||
        (type.member_count > 0 && type.access->member_offsets == nullptr)) {
        return malformed(type, "no sample access information that fits");
    }
    if (type.member_count > 0 && type.members == nullptr) {
        return malformed(type, "no members");
    }
    if (type.kind == DDS_TK_UNION && !validate_union(type)) {
        return false;
    }
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        if (!validate_member(type, i, depth)) {
            return false;
        }
    }
    return true;
}

bool validate(const DDS_TypeCode &type, int depth) {
    if (depth > kMaximumDepth) {
        return malformed(type, "nested too deeply");
    }
    switch (type.kind) {
        case DDS_TK_STRUCT:
        case DDS_TK_UNION:
            return validate_aggregate(type, depth);
        case DDS_TK_ARRAY:
            return type.content_type == nullptr ? malformed(type, "no element type")
                                                : validate_array(type, depth);
        case DDS_TK_SEQUENCE:
            return type.content_type == nullptr ? malformed(type, "no element type")
                                                : validate(*type.content_type, depth + 1);
        case DDS_TK_STRING:
        case DDS_TK_ENUM:
            return true;
        default:
            return is_primitive(type.kind) || malformed(type, "unknown kind");
    }
}

}  // namespace

bool validate_type_code(const DDS_TypeCode &type) {
    if (type.kind != DDS_TK_STRUCT && type.kind != DDS_TK_UNION && type.kind != DDS_TK_ENUM) {
        return malformed(type, "neither structure, union nor enumeration");
    }
    return validate(type, 0);
}

Framing framing_of(const DDS_TypeCode &type, const CompileOptions &options) {
    if (options.force_final) {
        return Framing::kPlain;
    }
    const bool second = options.version == XcdrVersion::k2;
    switch (type.extensibility) {
        case DDS_MUTABLE_EXTENSIBILITY:
            return second ? Framing::kParameterList2 : Framing::kParameterList1;
        case DDS_APPENDABLE_EXTENSIBILITY:
            return second ? Framing::kDelimited : Framing::kPlain;
        case DDS_FINAL_EXTENSIBILITY:
            break;
    }
    return Framing::kPlain;
}

std::uint8_t alignment_of(XcdrVersion version, std::size_t width) {
    const std::size_t largest = version == XcdrVersion::k1 ? 8 : 4;
    return static_cast<std::uint8_t>(std::min(width, largest));
}

std::vector<DDS_UnsignedLong> select_members(const DDS_TypeCode &type, bool key_only) {
    std::vector<DDS_UnsignedLong> selected;
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        if (!key_only || type.members[i].is_key) {
            selected.push_back(i);
        }
    }
    if (key_only) {
        std::sort(selected.begin(), selected.end(), [&](DDS_UnsignedLong a, DDS_UnsignedLong b) {
            return type.members[a].id < type.members[b].id;
        });
    }
    return selected;
}

CompileOptions nested_options(const DDS_TypeCode &type, const CompileOptions &options) {
    CompileOptions nested = options;
    nested.key_only = options.key_only && is_keyed(type);
    return nested;
}

void append_op(std::vector<Op> *ops, const Op &op) {
    if (!ops->empty() && op.code == OpCode::kRun && op.flags == 0) {
        Op &last = ops->back();
        const bool adjacent = last.code == OpCode::kRun && last.flags == 0 &&
                              last.width == op.width &&
                              last.offset + std::size_t{last.count} * last.width == op.offset;
        if (adjacent && last.count <= UINT32_MAX - op.count) {
            last.count += op.count;
            return;
        }
    }
    ops->push_back(op);
}

bool needs_dheader(const DDS_TypeCode &element, XcdrVersion version) {
    return version == XcdrVersion::k2 && !is_primitive(element.kind);
}

}  // namespace kolt::type
