// SPDX-License-Identifier: Apache-2.0
// Type codes made at run time.
#include "support/types/type_book.h"

#include <kolt/sequence.h>

#include <cstddef>

namespace support {
namespace {

constexpr std::size_t kAlignment = alignof(std::max_align_t);

// The room for a value in a record, aligned for whatever comes next.
std::size_t room_for(const DDS_TypeCode &type) {
    std::size_t size = kAlignment;
    if (type.kind == DDS_TK_SEQUENCE) {
        size = sizeof(KOLT_Sequence);
    }
    if (type.access != nullptr) {
        size = type.access->record_size;
    }
    if (type.kind == DDS_TK_ARRAY) {
        size = room_for(*type.content_type);
        for (DDS_UnsignedLong i = 0; i < type.dimension_count; ++i) {
            size *= type.dimensions[i];
        }
    }
    return (size + kAlignment - 1) / kAlignment * kAlignment;
}

}  // namespace

DDS_TypeCode &TypeBook::add(DDS_TCKind kind) {
    DDS_TypeCode &type = types_.emplace_back();
    type.kind = kind;
    type.representations = DDS_DATA_REPRESENTATION_MASK_XCDR | DDS_DATA_REPRESENTATION_MASK_XCDR2;
    return type;
}

DDS_TypeCode &TypeBook::add_named(DDS_TCKind kind, const std::string &name,
                                  DDS_ExtensibilityKind extensibility) {
    DDS_TypeCode &type = add(kind);
    type.name = keep(name);
    type.extensibility = extensibility;
    return type;
}

const DDS_TypeCode *TypeBook::string(DDS_UnsignedLong bound) {
    DDS_TypeCode &type = add(DDS_TK_STRING);
    type.bound = bound;
    return &type;
}

const DDS_TypeCode *TypeBook::sequence(const DDS_TypeCode *content, DDS_UnsignedLong bound) {
    DDS_TypeCode &type = add(DDS_TK_SEQUENCE);
    type.content_type = content;
    type.bound = bound;
    return &type;
}

const DDS_TypeCode *TypeBook::array(const DDS_TypeCode *content,
                                    std::vector<DDS_UnsignedLong> dimensions) {
    const auto &kept = dimensions_.emplace_back(std::move(dimensions));
    DDS_TypeCode &type = add(DDS_TK_ARRAY);
    type.content_type = content;
    type.dimensions = kept.data();
    type.dimension_count = static_cast<DDS_UnsignedLong>(kept.size());
    return &type;
}

const DDS_TypeCode *TypeBook::enumeration(const std::string &name,
                                          DDS_ExtensibilityKind extensibility,
                                          const Enumerators &enumerators) {
    DDS_TypeCode &type = add_named(DDS_TK_ENUM, name, extensibility);
    auto &members = members_.emplace_back();
    for (const auto &[text, value] : enumerators) {
        DDS_TypeCodeMember &member = members.emplace_back();
        member.name = keep(text);
        member.ordinal = value;
    }
    type.members = members.data();
    type.member_count = static_cast<DDS_UnsignedLong>(members.size());
    return &type;
}

void TypeBook::add_members(DDS_TypeCode &type, const Members &members) {
    auto &kept = members_.emplace_back();
    auto &offsets = offsets_.emplace_back();
    std::size_t end = kAlignment;  // behind a discriminator
    for (const MemberOf &member : members) {
        DDS_TypeCodeMember &code = kept.emplace_back();
        code.name = keep(member.name);
        code.id = member.id;
        code.type = member.type;
        code.is_key = member.is_key;
        code.is_optional = member.is_optional;
        code.is_must_understand = member.is_must_understand;
        code.is_default_label = member.is_default;
        const auto &labels = labels_.emplace_back(member.case_labels);
        code.labels = labels.data();
        code.label_count = static_cast<DDS_UnsignedLong>(labels.size());
        offsets.push_back(end);
        end += room_for(*member.type);
    }
    DDS_SampleAccessInfo &access = accesses_.emplace_back();
    access.language_binding = KOLT_LANGUAGE_BINDING_PLAIN_RECORD;
    access.record_size = end;
    access.record_alignment = kAlignment;
    access.member_count = static_cast<DDS_UnsignedLong>(kept.size());
    access.member_offsets = offsets.data();
    type.members = kept.data();
    type.member_count = access.member_count;
    type.access = &access;
}

const DDS_TypeCode *TypeBook::structure(const std::string &name,
                                        DDS_ExtensibilityKind extensibility,
                                        const Members &members) {
    DDS_TypeCode &type = add_named(DDS_TK_STRUCT, name, extensibility);
    add_members(type, members);
    return &type;
}

const DDS_TypeCode *TypeBook::unite(const std::string &name, DDS_ExtensibilityKind extensibility,
                                    const DDS_TypeCode *discriminator, const Members &branches) {
    DDS_TypeCode &type = add_named(DDS_TK_UNION, name, extensibility);
    type.discriminator_type = discriminator;
    add_members(type, branches);
    return &type;
}

}  // namespace support
