// SPDX-License-Identifier: Apache-2.0
// The way from a value to one of its members: "a.b[2].c", "u._d", or a member id.

#include <cstdint>
#include <cstring>
#include <string_view>

#include "dynamic/dynamic_value.hpp"
#include "type/record/record.hpp"
#include "type/typecode/layout.hpp"

namespace kolt::dynamic {
namespace {

using type::load_pointer;
using type::member_address;

constexpr std::string_view kDiscriminatorName = "_d";

DDS_UnsignedLong member_by_name(const DDS_TypeCode &code, std::string_view name) {
    DDS_UnsignedLong index = 0;
    while (index < code.member_count && name != code.members[index].name) {
        ++index;
    }
    return index;
}

DDS_UnsignedLong member_by_id(const DDS_TypeCode &code, DDS_DynamicDataMemberId id) {
    DDS_UnsignedLong index = 0;
    while (index < code.member_count && code.members[index].id != id) {
        ++index;
    }
    return index;
}

bool has_label(const DDS_TypeCode &code, DDS_LongLong value) {
    for (DDS_UnsignedLong i = 0; i < code.member_count; ++i) {
        for (DDS_UnsignedLong j = 0; j < code.members[i].label_count; ++j) {
            if (code.members[i].labels[j] == value) {
                return true;
            }
        }
    }
    return false;
}

// A discriminator value that no label names, for the `default:` branch.
bool find_unlabelled(const DDS_TypeCode &code, DDS_LongLong *value) {
    const DDS_TypeCode &discriminator = *code.discriminator_type;
    if (discriminator.kind == DDS_TK_ENUM) {
        for (DDS_UnsignedLong i = 0; i < discriminator.member_count; ++i) {
            *value = discriminator.members[i].ordinal;
            if (!has_label(code, *value)) {
                return true;
            }
        }
        return false;
    }
    for (*value = 0; holds_integer(discriminator, *value); ++*value) {
        if (!has_label(code, *value)) {
            return true;
        }
    }
    return false;
}

DDS_ReturnCode_t select_branch(const DDS_TypeCode &code, void *record, DDS_UnsignedLong index) {
    if (type::selected_member(code, type::load_discriminator(code, record)) == index) {
        return DDS_RETCODE_OK;
    }
    const DDS_TypeCodeMember &member = code.members[index];
    DDS_LongLong value = 0;
    if (member.label_count > 0) {
        value = member.labels[0];
    } else if (!find_unlabelled(code, &value)) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    return set_discriminator(code, record, value) ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
}

DDS_ReturnCode_t enter_optional(const DDS_TypeCode &code, Access access, Place *place) {
    void *present = load_pointer(place->value);
    if (present == nullptr && access == Access::kRead) {
        return DDS_RETCODE_NO_DATA;
    }
    if (present == nullptr && access == Access::kWrite) {
        present = type::new_optional(code, type::kDefaultAllocation);
        if (present == nullptr) {
            return DDS_RETCODE_OUT_OF_RESOURCES;
        }
        type::store_pointer(place->value, present);
    }
    place->value = present;
    return DDS_RETCODE_OK;
}

// One step: `place` is a structure or union and becomes its member.
DDS_ReturnCode_t enter_member(DDS_UnsignedLong index, Access access, Place *place) {
    const DDS_TypeCode &code = *place->type;
    if (index >= code.member_count) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    const DDS_TypeCodeMember &member = code.members[index];
    place->type = member.type;
    if (place->value == nullptr) {
        return DDS_RETCODE_OK;
    }
    if (code.kind == DDS_TK_UNION) {
        const std::int64_t discriminator = type::load_discriminator(code, place->value);
        if (access == Access::kRead && type::selected_member(code, discriminator) != index) {
            return DDS_RETCODE_PRECONDITION_NOT_MET;
        }
        if (access == Access::kWrite) {
            const DDS_ReturnCode_t result = select_branch(code, place->value, index);
            if (result != DDS_RETCODE_OK) {
                return result;
            }
        }
    }
    place->value = member_address(code, place->value, index);
    return member.is_optional ? enter_optional(*member.type, access, place) : DDS_RETCODE_OK;
}

DDS_ReturnCode_t enter_named(std::string_view name, Access access, Place *place) {
    const DDS_TypeCode &code = *place->type;
    if (code.kind != DDS_TK_STRUCT && code.kind != DDS_TK_UNION) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    if (code.kind == DDS_TK_UNION && name == kDiscriminatorName) {
        place->type = code.discriminator_type;
        place->union_type = &code;
        place->union_record = place->value;
        if (place->value != nullptr) {
            place->value = static_cast<char *>(place->value) + code.access->discriminator_offset;
        }
        return DDS_RETCODE_OK;
    }
    return enter_member(member_by_name(code, name), access, place);
}

// Reads "[<digits>]" off the front of `path`. False when `path` does not begin so.
bool take_index(std::string_view *path, std::size_t *index) {
    const std::size_t end = path->find(']');
    if (path->empty() || path->front() != '[' || end == std::string_view::npos || end == 1) {
        return false;
    }
    *index = 0;
    for (const char digit : path->substr(1, end - 1)) {
        if (digit < '0' || digit > '9' || *index > UINT32_MAX) {
            return false;
        }
        *index = *index * 10 + static_cast<std::size_t>(digit - '0');
    }
    path->remove_prefix(end + 1);
    return true;
}

// Steps into an array; every dimension takes an index of its own, the last one counts fastest.
DDS_ReturnCode_t enter_array(std::string_view *indexes, Place *place) {
    const DDS_TypeCode &code = *place->type;
    std::size_t element = 0;
    for (DDS_UnsignedLong i = 0; i < code.dimension_count; ++i) {
        std::size_t index = 0;
        if (!take_index(indexes, &index) || index >= code.dimensions[i]) {
            return DDS_RETCODE_BAD_PARAMETER;
        }
        element = element * code.dimensions[i] + index;
    }
    place->type = code.content_type;
    if (place->value != nullptr) {
        place->value =
            static_cast<char *>(place->value) + element * type::value_size(*code.content_type);
    }
    return DDS_RETCODE_OK;
}

// Steps into a sequence. One that is absent has no elements.
DDS_ReturnCode_t enter_sequence(std::string_view *indexes, Place *place) {
    const DDS_TypeCode &content = *place->type->content_type;
    const auto *const sequence = static_cast<const KOLT_Sequence *>(place->value);
    std::size_t index = 0;
    if (!take_index(indexes, &index) || sequence == nullptr || index >= sequence->_length) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    place->type = &content;
    place->value = type::sequence_element(sequence, type::value_size(content), index);
    return DDS_RETCODE_OK;
}

// One segment of a path: a name with its indexes.
DDS_ReturnCode_t walk_segment(std::string_view segment, Access access, Place *place) {
    const std::size_t name_length = segment.find('[');
    DDS_ReturnCode_t result = enter_named(segment.substr(0, name_length), access, place);
    segment.remove_prefix(name_length == std::string_view::npos ? segment.size() : name_length);
    while (result == DDS_RETCODE_OK && !segment.empty()) {
        switch (place->type->kind) {
            case DDS_TK_ARRAY:
                result = enter_array(&segment, place);
                break;
            case DDS_TK_SEQUENCE:
                result = enter_sequence(&segment, place);
                break;
            default:
                result = DDS_RETCODE_BAD_PARAMETER;
                break;
        }
    }
    return result;
}

DDS_ReturnCode_t walk(std::string_view path, Access access, Place *place) {
    for (;;) {
        const std::size_t dot = path.find('.');
        const DDS_ReturnCode_t result = walk_segment(path.substr(0, dot), access, place);
        if (result != DDS_RETCODE_OK || dot == std::string_view::npos) {
            return result;
        }
        path.remove_prefix(dot + 1);
    }
}

}  // namespace

DDS_ReturnCode_t find_member(const DDS_DynamicData &data, const char *name,
                             DDS_DynamicDataMemberId id, Access access, Place *place) {
    *place = {data.type, data.record, nullptr, nullptr};
    if (name == nullptr) {
        return enter_member(member_by_id(*data.type, id), access, place);
    }
    return walk(name, access, place);
}

bool set_discriminator(const DDS_TypeCode &type, void *record, DDS_LongLong value) {
    const DDS_UnsignedLong before =
        type::selected_member(type, type::load_discriminator(type, record));
    const DDS_UnsignedLong after = type::selected_member(type, value);
    if (after != before && after < type.member_count && !type::reset_member(type, record, after)) {
        return false;
    }
    type::store_integer(type.discriminator_type->kind,
                        static_cast<char *>(record) + type.access->discriminator_offset, value);
    return true;
}

bool holds_integer(const DDS_TypeCode &type, DDS_LongLong value) {
    switch (type.kind) {
        case DDS_TK_BOOLEAN:
            return value == 0 || value == 1;
        case DDS_TK_CHAR:
            return value >= INT8_MIN && value <= INT8_MAX;
        case DDS_TK_OCTET:
            return value >= 0 && value <= UINT8_MAX;
        case DDS_TK_SHORT:
            return value >= INT16_MIN && value <= INT16_MAX;
        case DDS_TK_USHORT:
            return value >= 0 && value <= UINT16_MAX;
        case DDS_TK_LONG:
            return value >= INT32_MIN && value <= INT32_MAX;
        case DDS_TK_ULONG:
            return value >= 0 && value <= UINT32_MAX;
        case DDS_TK_LONGLONG:
            return true;
        case DDS_TK_ULONGLONG:
            return value >= 0;
        case DDS_TK_ENUM:
            for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
                if (type.members[i].ordinal == value) {
                    return true;
                }
            }
            return false;
        default:
            return false;
    }
}

}  // namespace kolt::dynamic
