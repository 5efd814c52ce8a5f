// What both compilers need: framing, alignment, member selection, well-formedness.
#include <algorithm>

#include "kolt/config_logger.h"
#include "type/cdr_program.hpp"
#include "type/layout.hpp"

namespace kolt::type {
namespace {

// Deeper nesting than any sane type has; also what ends a type code that contains itself.
constexpr int kMaximumDepth = 64;

bool Malformed(const DDS_TypeCode &type, const char *problem) {
    KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_API, KOLT_CONFIG_LOG_LEVEL_ERROR,
                     "KOLT_TypePrograms_acquire", "malformed type code %s: %s",
                     type.name == nullptr ? "(anonymous)" : type.name, problem);
    return false;
}

bool Validate(const DDS_TypeCode &type, int depth);

bool ValidateArray(const DDS_TypeCode &type, int depth) {
    if (type.dimension_count == 0 || type.dimensions == nullptr) {
        return Malformed(type, "array without dimensions");
    }
    uint64_t count = 1;
    for (DDS_UnsignedLong i = 0; i < type.dimension_count; ++i) {
        count *= type.dimensions[i];
        if (count == 0 || count > INT32_MAX) return Malformed(type, "array size out of range");
    }
    return Validate(*type.content_type, depth + 1);
}

bool IsDiscriminatorKind(DDS_TCKind kind) {
    return kind == DDS_TK_ENUM ||
           (IsPrimitive(kind) && kind != DDS_TK_FLOAT && kind != DDS_TK_DOUBLE);
}

bool ValidateUnion(const DDS_TypeCode &type) {
    if (type.discriminator_type == nullptr || !IsDiscriminatorKind(type.discriminator_type->kind)) {
        return Malformed(type, "no integral discriminator");
    }
    const size_t size = PrimitiveSize(type.discriminator_type->kind);
    if (type.access->discriminator_offset > type.access->record_size ||
        type.access->record_size - type.access->discriminator_offset < size) {
        return Malformed(type, "discriminator outside the record");
    }
    return true;
}

bool ValidateMember(const DDS_TypeCode &type, DDS_UnsignedLong index, int depth) {
    const DDS_TypeCodeMember &member = type.members[index];
    if (member.name == nullptr || member.type == nullptr) {
        return Malformed(type, "member without name or type");
    }
    if (member.id > kMemberIdMask) return Malformed(type, "member id out of range");
    const bool is_union = type.kind == DDS_TK_UNION;
    const bool mutable_union = is_union && type.extensibility == DDS_MUTABLE_EXTENSIBILITY;
    if (mutable_union && member.id == kDiscriminatorId) {
        return Malformed(type, "member id 0 belongs to the discriminator");
    }
    for (DDS_UnsignedLong i = 0; i < index; ++i) {
        if (type.members[i].id == member.id) return Malformed(type, "two members with one id");
    }
    if (member.is_optional && (member.is_key || is_union)) {
        return Malformed(type, "optional key member or union branch");
    }
    if (is_union && member.label_count > 0 && member.labels == nullptr) {
        return Malformed(type, "union branch without labels");
    }
    if (!Validate(*member.type, depth + 1)) return false;
    const size_t size = member.is_optional ? sizeof(void *) : ValueSize(*member.type);
    const size_t offset = type.access->member_offsets[index];
    if (offset > type.access->record_size || type.access->record_size - offset < size) {
        return Malformed(type, "member outside the record");
    }
    return true;
}

bool ValidateAggregate(const DDS_TypeCode &type, int depth) {
    if (type.access == nullptr || type.access->record_size == 0 ||
        type.access->member_count != type.member_count ||
        (type.member_count > 0 && type.access->member_offsets == nullptr)) {
        return Malformed(type, "no sample access information that fits");
    }
    if (type.member_count > 0 && type.members == nullptr) return Malformed(type, "no members");
    if (type.kind == DDS_TK_UNION && !ValidateUnion(type)) return false;
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        if (!ValidateMember(type, i, depth)) return false;
    }
    return true;
}

bool Validate(const DDS_TypeCode &type, int depth) {
    if (depth > kMaximumDepth) return Malformed(type, "nested too deeply");
    switch (type.kind) {
        case DDS_TK_STRUCT:
        case DDS_TK_UNION:
            return ValidateAggregate(type, depth);
        case DDS_TK_ARRAY:
            return type.content_type == nullptr ? Malformed(type, "no element type")
                                                : ValidateArray(type, depth);
        case DDS_TK_SEQUENCE:
            return type.content_type == nullptr ? Malformed(type, "no element type")
                                                : Validate(*type.content_type, depth + 1);
        case DDS_TK_STRING:
        case DDS_TK_ENUM:
            return true;
        default:
            return IsPrimitive(type.kind) || Malformed(type, "unknown kind");
    }
}

}  // namespace

bool ValidateTypeCode(const DDS_TypeCode &type) {
    if (type.kind != DDS_TK_STRUCT && type.kind != DDS_TK_UNION && type.kind != DDS_TK_ENUM) {
        return Malformed(type, "neither structure, union nor enumeration");
    }
    return Validate(type, 0);
}

Framing FramingOf(const DDS_TypeCode &type, const CompileOptions &options) {
    if (options.force_final) return Framing::kPlain;
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

uint8_t AlignmentOf(XcdrVersion version, size_t width) {
    const size_t largest = version == XcdrVersion::k1 ? 8 : 4;
    return static_cast<uint8_t>(std::min(width, largest));
}

std::vector<DDS_UnsignedLong> SelectMembers(const DDS_TypeCode &type, bool key_only) {
    std::vector<DDS_UnsignedLong> selected;
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        if (!key_only || type.members[i].is_key) selected.push_back(i);
    }
    if (key_only) {
        std::sort(selected.begin(), selected.end(), [&](DDS_UnsignedLong a, DDS_UnsignedLong b) {
            return type.members[a].id < type.members[b].id;
        });
    }
    return selected;
}

CompileOptions NestedOptions(const DDS_TypeCode &type, const CompileOptions &options) {
    CompileOptions nested = options;
    nested.key_only = options.key_only && IsKeyed(type);
    return nested;
}

void AppendOp(std::vector<Op> *ops, const Op &op) {
    if (!ops->empty() && op.code == OpCode::kRun && op.flags == 0) {
        Op &last = ops->back();
        const bool adjacent = last.code == OpCode::kRun && last.flags == 0 &&
                              last.width == op.width &&
                              last.offset + size_t{last.count} * last.width == op.offset;
        if (adjacent && last.count <= UINT32_MAX - op.count) {
            last.count += op.count;
            return;
        }
    }
    ops->push_back(op);
}

bool NeedsDheader(const DDS_TypeCode &element, XcdrVersion version) {
    return version == XcdrVersion::k2 && !IsPrimitive(element.kind);
}

}  // namespace kolt::type
