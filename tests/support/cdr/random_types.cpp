// SPDX-License-Identifier: Apache-2.0
// Makes up type codes from decisions.
#include "support/cdr/random_types.h"

#include <kolt/sequence.h>

#include <algorithm>
#include <cstdint>

namespace support {
namespace {

constexpr int kMaximumDepth = 4;
// Bytes that one value may take in memory, with the buffers that it is born with.
constexpr std::size_t kMaximumWeight = 16384;

std::size_t size_of(const DDS_TypeCode &type) {
    switch (type.kind) {
        case DDS_TK_BOOLEAN:
        case DDS_TK_CHAR:
        case DDS_TK_OCTET:
            return 1;
        case DDS_TK_SHORT:
        case DDS_TK_USHORT:
            return 2;
        case DDS_TK_LONGLONG:
        case DDS_TK_ULONGLONG:
        case DDS_TK_DOUBLE:
            return 8;
        case DDS_TK_STRING:
            return sizeof(DDS_Char *);
        case DDS_TK_SEQUENCE:
            return sizeof(KOLT_Sequence);
        case DDS_TK_STRUCT:
        case DDS_TK_UNION:
            return type.access->record_size;
        case DDS_TK_ARRAY: {
            std::size_t count = 1;
            for (DDS_UnsignedLong i = 0; i < type.dimension_count; ++i) {
                count *= type.dimensions[i];
            }
            return count * size_of(*type.content_type);
        }
        default:
            return 4;
    }
}

std::size_t alignment_of(const DDS_TypeCode &type) {
    switch (type.kind) {
        case DDS_TK_SEQUENCE:
            return alignof(KOLT_Sequence);
        case DDS_TK_STRUCT:
        case DDS_TK_UNION:
            return type.access->record_alignment;
        case DDS_TK_ARRAY:
            return alignment_of(*type.content_type);
        default:
            return size_of(type);
    }
}

std::size_t weight_of(const DDS_TypeCode &type) {
    switch (type.kind) {
        case DDS_TK_STRING:
            return 32 + type.bound;
        case DDS_TK_SEQUENCE:
            return 128 + type.bound * weight_of(*type.content_type);
        case DDS_TK_ARRAY:
            return size_of(type) / size_of(*type.content_type) * weight_of(*type.content_type);
        case DDS_TK_STRUCT:
        case DDS_TK_UNION: {
            std::size_t weight = type.access->record_size;
            for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
                weight += weight_of(*type.members[i].type);
            }
            return weight;
        }
        default:
            return size_of(type);
    }
}

bool is_integral(DDS_TCKind kind) {
    return (kind >= DDS_TK_BOOLEAN && kind <= DDS_TK_ULONGLONG) || kind == DDS_TK_ENUM;
}

}  // namespace

std::uint8_t Decisions::byte() {
    if (left_ == 0) {
        return 0;
    }
    --left_;
    return *at_++;
}

std::uint64_t Decisions::word() {
    std::uint64_t word = 0;
    for (int i = 0; i < 8; ++i) {
        word = word << 8 | byte();
    }
    return word;
}

RandomType::RandomType(Decisions *decisions) : decisions_(*decisions) {
    type_ = decisions_.one_in(4) ? make_union(0) : make_struct(0);
    make_shorter();
}

DDS_TypeCode *RandomType::store(const DDS_TypeCode &type) {
    types_.push_back(type);
    types_.back().representations =
        DDS_DATA_REPRESENTATION_MASK_XCDR | DDS_DATA_REPRESENTATION_MASK_XCDR2;
    return &types_.back();
}

const char *RandomType::name(const std::string &prefix) {
    texts_.push_back(prefix + std::to_string(names_++));
    return texts_.back().c_str();
}

DDS_ExtensibilityKind RandomType::extensibility() {
    return static_cast<DDS_ExtensibilityKind>(decisions_.below(3));
}

const DDS_TypeCode *RandomType::make(int depth) {
    const unsigned choice = decisions_.below(18);
    const DDS_TypeCode *const small =
        DDS_TypeCodeFactory_get_primitive_tc(static_cast<DDS_TCKind>(DDS_TK_BOOLEAN + choice % 11));
    if (choice < 11 || budget_ == 0) {
        return small;
    }
    --budget_;
    if (choice == 11) {
        return make_enum();
    }
    if (choice == 12 || depth >= kMaximumDepth) {
        return make_string();
    }
    const DDS_TypeCode *made = nullptr;
    switch (choice) {
        case 13:
        case 14:
            made = make_struct(depth + 1);
            break;
        case 15:
            made = make_union(depth + 1);
            break;
        case 16:
            made = make_array(depth + 1);
            break;
        default:
            made = make_sequence(depth + 1);
            break;
    }
    return weight_of(*made) > kMaximumWeight ? small : made;
}

const DDS_TypeCode *RandomType::make_enum() {
    DDS_TypeCode type{};
    type.kind = DDS_TK_ENUM;
    type.extensibility = extensibility();
    type.name = name("Test::Enum");
    std::vector<DDS_TypeCodeMember> enumerators(1 + decisions_.below(4));
    DDS_Long ordinal = static_cast<DDS_Long>(decisions_.below(5)) - 2;
    for (DDS_TypeCodeMember &enumerator : enumerators) {
        enumerator.name = name("VALUE_");
        enumerator.ordinal = ordinal;
        ordinal += 1 + static_cast<DDS_Long>(decisions_.below(3));
    }
    members_.push_back(std::move(enumerators));
    type.members = members_.back().data();
    type.member_count = static_cast<DDS_UnsignedLong>(members_.back().size());
    return store(type);
}

const DDS_TypeCode *RandomType::make_string() {
    DDS_TypeCode type{};
    type.kind = DDS_TK_STRING;
    type.bound = decisions_.below(12);  // 0 is unbounded
    return store(type);
}

const DDS_TypeCode *RandomType::make_array(int depth) {
    DDS_TypeCode type{};
    type.kind = DDS_TK_ARRAY;
    std::vector<DDS_UnsignedLong> dimensions(1 + decisions_.below(2));
    for (DDS_UnsignedLong &dimension : dimensions) {
        dimension = 1 + decisions_.below(3);
    }
    dimensions_.push_back(std::move(dimensions));
    type.dimensions = dimensions_.back().data();
    type.dimension_count = static_cast<DDS_UnsignedLong>(dimensions_.back().size());
    type.content_type = make(depth);
    return store(type);
}

const DDS_TypeCode *RandomType::make_sequence(int depth) {
    DDS_TypeCode type{};
    type.kind = DDS_TK_SEQUENCE;
    type.bound = decisions_.below(5);
    type.content_type = make(depth);
    return store(type);
}

// Gives the member a default that fits the narrowest of the kinds.
void RandomType::give_default(DDS_TypeCodeMember *member) {
    const DDS_TCKind kind = member->type->kind;
    DDS_AnnotationParameterValue *const value = &member->default_value;
    if (is_integral(kind)) {
        value->kind = DDS_TK_LONGLONG;
        value->value.integer = kind == DDS_TK_ENUM ? member->type->members[0].ordinal : 1;
    } else if (kind == DDS_TK_FLOAT || kind == DDS_TK_DOUBLE) {
        value->kind = DDS_TK_DOUBLE;
        value->value.real = 0.1;
    } else if (kind == DDS_TK_STRING) {
        value->kind = DDS_TK_STRING;
        value->value.string = "d";
    }
}

std::vector<DDS_TypeCodeMember> RandomType::make_members(unsigned count, int depth, bool is_union) {
    // Ids of parameter headers are short up to 0x3f00.
    constexpr DDS_UnsignedLong kFirst[] = {1, 0, 0x3eff, 0x100000};
    DDS_UnsignedLong id = is_union ? 1 : kFirst[decisions_.below(4)];
    std::vector<DDS_TypeCodeMember> members(count);
    for (DDS_TypeCodeMember &member : members) {
        member.name = name("m");
        member.id = id;
        id += decisions_.one_in(8) ? 6U : 1U;
        member.type = make(depth);
        const unsigned flags = decisions_.byte();
        member.is_key = !is_union && flags % 5 == 4;
        member.is_optional = !is_union && !member.is_key && flags % 5 == 3;
        member.is_must_understand = flags >= 200;
        if (!member.is_optional && flags % 3 == 2) {
            give_default(&member);
        }
    }
    if (decisions_.one_in(4)) {  // ids that fall
        for (std::size_t i = 0; i < members.size() / 2; ++i) {
            std::swap(members[i].id, members[members.size() - 1 - i].id);
        }
    }
    return members;
}

const DDS_TypeCode *RandomType::finish(DDS_TypeCode aggregate,
                                       std::vector<DDS_TypeCodeMember> members, std::size_t start) {
    DDS_SampleAccessInfo access{};
    access.language_binding = KOLT_LANGUAGE_BINDING_PLAIN_RECORD;
    access.record_alignment = start == 0 ? 1 : alignment_of(*aggregate.discriminator_type);
    std::vector<std::size_t> offsets;
    std::size_t end = start;
    for (const DDS_TypeCodeMember &member : members) {
        const std::size_t size = member.is_optional ? sizeof(void *) : size_of(*member.type);
        const std::size_t alignment =
            member.is_optional ? alignof(void *) : alignment_of(*member.type);
        end = (end + alignment - 1) / alignment * alignment;
        offsets.push_back(end);
        end += size;
        access.record_alignment = std::max(access.record_alignment, alignment);
    }
    const std::size_t alignment = access.record_alignment;
    access.record_size = (end + alignment - 1) / alignment * alignment;
    access.member_count = static_cast<DDS_UnsignedLong>(members.size());
    offsets_.push_back(std::move(offsets));
    access.member_offsets = offsets_.back().data();
    access_.push_back(access);
    members_.push_back(std::move(members));
    aggregate.name = name("Test::Type");
    aggregate.members = members_.back().data();
    aggregate.member_count = access.member_count;
    aggregate.access = &access_.back();
    return store(aggregate);
}

const DDS_TypeCode *RandomType::make_struct(int depth) {
    DDS_TypeCode type{};
    type.kind = DDS_TK_STRUCT;
    type.extensibility = extensibility();
    const unsigned count = 1 + decisions_.below(6);
    return finish(type, make_members(count, depth, false), 0);
}

const DDS_TypeCode *RandomType::discriminator() {
    constexpr DDS_TCKind kKinds[] = {DDS_TK_LONG,  DDS_TK_BOOLEAN,  DDS_TK_CHAR,
                                     DDS_TK_OCTET, DDS_TK_SHORT,    DDS_TK_USHORT,
                                     DDS_TK_ULONG, DDS_TK_LONGLONG, DDS_TK_ULONGLONG};
    const unsigned choice = decisions_.below(10);
    return choice == 9 ? make_enum() : DDS_TypeCodeFactory_get_primitive_tc(kKinds[choice]);
}

const DDS_TypeCode *RandomType::make_union(int depth) {
    DDS_TypeCode type{};
    type.kind = DDS_TK_UNION;
    type.extensibility = extensibility();
    type.discriminator_type = discriminator();
    const bool is_boolean = type.discriminator_type->kind == DDS_TK_BOOLEAN;
    const unsigned count = 1 + decisions_.below(is_boolean ? 2 : 4);
    std::vector<DDS_TypeCodeMember> members = make_members(count, depth, true);
    DDS_Long label = type.discriminator_type->kind == DDS_TK_ENUM
                         ? type.discriminator_type->members[0].ordinal
                         : 0;
    type.default_discriminator = label;
    for (DDS_TypeCodeMember &member : members) {
        std::vector<DDS_Long> labels(is_boolean ? 1 : 1 + decisions_.below(2));
        for (DDS_Long &each : labels) {
            each = label++;
        }
        labels_.push_back(std::move(labels));
        member.labels = labels_.back().data();
        member.label_count = static_cast<DDS_UnsignedLong>(labels_.back().size());
    }
    members.back().is_default_label = decisions_.one_in(2);
    return finish(type, std::move(members), size_of(*type.discriminator_type));
}

void RandomType::make_shorter() {
    if (type_->kind != DDS_TK_STRUCT || type_->member_count < 2) {
        return;
    }
    DDS_TypeCode shorter = *type_;
    DDS_SampleAccessInfo access = *type_->access;
    --shorter.member_count;
    --access.member_count;
    access_.push_back(access);
    shorter.access = &access_.back();
    shorter_ = store(shorter);
}

}  // namespace support
