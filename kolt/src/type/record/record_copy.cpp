// SPDX-License-Identifier: Apache-2.0
// Copies and equality of records.
#include <cstring>

#include "type/record/record.hpp"

namespace kolt::type {
namespace {

bool copy_string(const DDS_TypeCode &type, void *destination, const void *source) {
    const auto *const text = static_cast<const DDS_Char *>(load_pointer(source));
    auto *const buffer = static_cast<DDS_Char *>(load_pointer(destination));
    if (text == nullptr) {
        return false;
    }
    if (type.bound == 0) {
        DDS_Char *const copy = DDS_String_dup(text);
        if (copy == nullptr) {
            return false;
        }
        DDS_String_free(buffer);
        store_pointer(destination, copy);
        return true;
    }
    // A bounded string has a buffer for its bound, made when the record was initialised.
    if (buffer == nullptr) {
        return false;
    }
    const std::size_t length = strnlen(text, std::size_t{type.bound} + 1);
    if (length > type.bound) {
        return false;
    }
    if (buffer != text) {
        std::memcpy(buffer, text, length + 1);
    }
    return true;
}

bool copy_member(const DDS_TypeCode &type, void *destination, const void *source,
                 DDS_UnsignedLong index) {
    const DDS_TypeCodeMember &member = type.members[index];
    char *const to = member_address(type, destination, index);
    const char *const from = member_address(type, source, index);
    if (!member.is_optional) {
        return copy_value(*member.type, to, from);
    }
    const void *const source_value = load_pointer(from);
    void *value = load_pointer(to);
    if (source_value == nullptr) {
        delete_optional(*member.type, value);
        store_pointer(to, nullptr);
        return true;
    }
    if (value == nullptr) {
        value = new_optional(*member.type, kDefaultAllocation);
        store_pointer(to, value);
        if (value == nullptr) {
            return false;
        }
    }
    return copy_value(*member.type, value, source_value);
}

bool copy_union(const DDS_TypeCode &type, void *destination, const void *source) {
    const std::int64_t discriminator = load_discriminator(type, source);
    store_integer(type.discriminator_type->kind,
                  static_cast<char *>(destination) + type.access->discriminator_offset,
                  discriminator);
    const DDS_UnsignedLong selected = selected_member(type, discriminator);
    return selected == type.member_count || copy_member(type, destination, source, selected);
}

bool copy_record(const DDS_TypeCode &type, void *destination, const void *source) {
    switch (type.kind) {
        case DDS_TK_UNION:
            return copy_union(type, destination, source);
        case DDS_TK_STRUCT:
            for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
                if (!copy_member(type, destination, source, i)) {
                    return false;
                }
            }
            return true;
        case DDS_TK_ENUM:
            std::memcpy(destination, source, sizeof(DDS_Enum));
            return true;
        default:
            return false;
    }
}

bool copy_key_record(const DDS_TypeCode &type, void *destination, const void *source) {
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        const DDS_TypeCodeMember &member = type.members[i];
        if (!member.is_key) {
            continue;
        }
        // A structure that names no keys of its own is a key as a whole.
        const bool part = !member.is_optional && is_keyed(*member.type);
        const bool copied =
            part ? copy_key_record(*member.type, member_address(type, destination, i),
                                   member_address(type, source, i))
                 : copy_member(type, destination, source, i);
        if (!copied) {
            return false;
        }
    }
    return true;
}

bool equal_values(const DDS_TypeCode &type, const void *left, const void *right);

bool equal_members(const DDS_TypeCode &type, const void *left, const void *right,
                   DDS_UnsignedLong index) {
    const DDS_TypeCodeMember &member = type.members[index];
    const void *left_value = member_address(type, left, index);
    const void *right_value = member_address(type, right, index);
    if (member.is_optional) {
        left_value = load_pointer(left_value);
        right_value = load_pointer(right_value);
        if (left_value == nullptr || right_value == nullptr) {
            return left_value == right_value;
        }
    }
    return equal_values(*member.type, left_value, right_value);
}

bool equal_strings(const void *left, const void *right) {
    const auto *const left_text = static_cast<const DDS_Char *>(load_pointer(left));
    const auto *const right_text = static_cast<const DDS_Char *>(load_pointer(right));
    if (left_text == nullptr || right_text == nullptr) {
        return left_text == right_text;
    }
    return std::strcmp(left_text, right_text) == 0;
}

bool equal_sequences(const DDS_TypeCode &type, const void *left, const void *right) {
    const auto *const left_sequence = static_cast<const KOLT_Sequence *>(left);
    const auto *const right_sequence = static_cast<const KOLT_Sequence *>(right);
    sequence_ensure_initialized(left_sequence);
    sequence_ensure_initialized(right_sequence);
    if (left_sequence->_length != right_sequence->_length) {
        return false;
    }
    const std::size_t size = value_size(*type.content_type);
    for (std::size_t i = 0; i < left_sequence->_length; ++i) {
        const void *const left_element = sequence_element(left_sequence, size, i);
        const void *const right_element = sequence_element(right_sequence, size, i);
        if (left_element == nullptr || right_element == nullptr) {
            return false;
        }
        if (!equal_values(*type.content_type, left_element, right_element)) {
            return false;
        }
    }
    return true;
}

bool equal_unions(const DDS_TypeCode &type, const void *left, const void *right) {
    const std::int64_t discriminator = load_discriminator(type, left);
    if (discriminator != load_discriminator(type, right)) {
        return false;
    }
    const DDS_UnsignedLong selected = selected_member(type, discriminator);
    return selected == type.member_count || equal_members(type, left, right, selected);
}

bool equal_values(const DDS_TypeCode &type, const void *left, const void *right) {
    switch (type.kind) {
        case DDS_TK_STRING:
            return equal_strings(left, right);
        case DDS_TK_SEQUENCE:
            return equal_sequences(type, left, right);
        case DDS_TK_UNION:
            return equal_unions(type, left, right);
        case DDS_TK_STRUCT:
            for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
                if (!equal_members(type, left, right, i)) {
                    return false;
                }
            }
            return true;
        case DDS_TK_ARRAY: {
            const std::size_t size = value_size(*type.content_type);
            const std::size_t count = element_count(type);
            for (std::size_t i = 0; i < count; ++i) {
                if (!equal_values(*type.content_type, static_cast<const char *>(left) + i * size,
                                  static_cast<const char *>(right) + i * size)) {
                    return false;
                }
            }
            return true;
        }
        default:
            return std::memcmp(left, right, primitive_size(type.kind)) == 0;
    }
}

}  // namespace

bool copy_value(const DDS_TypeCode &type, void *destination, const void *source) {
    switch (type.kind) {
        case DDS_TK_STRING:
            return copy_string(type, destination, source);
        case DDS_TK_SEQUENCE: {
            auto *const to = static_cast<KOLT_Sequence *>(destination);
            const auto *const from = static_cast<const KOLT_Sequence *>(source);
            sequence_ensure_initialized(to);
            sequence_ensure_initialized(from);
            return sequence_copy(to, TypeCodeElementOps(*type.content_type), from);
        }
        case DDS_TK_ARRAY: {
            const std::size_t size = value_size(*type.content_type);
            const std::size_t count = element_count(type);
            for (std::size_t i = 0; i < count; ++i) {
                if (!copy_value(*type.content_type, static_cast<char *>(destination) + i * size,
                                static_cast<const char *>(source) + i * size)) {
                    return false;
                }
            }
            return true;
        }
        case DDS_TK_STRUCT:
        case DDS_TK_UNION:
            if (type.plugin != nullptr && type.plugin->copy != nullptr) {
                return type.plugin->copy(destination, source) != 0;
            }
            return copy_record(type, destination, source);
        default:
            std::memmove(destination, source, primitive_size(type.kind));
            return true;
    }
}

}  // namespace kolt::type

DDS_Boolean KOLT_Record_copy(const DDS_TypeCode *type, void *destination, const void *source) {
    if (type == nullptr || destination == nullptr || source == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    return destination == source || kolt::type::copy_record(*type, destination, source);
}

DDS_Boolean KOLT_Record_copy_key(const DDS_TypeCode *type, void *destination, const void *source) {
    if (type == nullptr || destination == nullptr || source == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    if (destination == source) {
        return DDS_BOOLEAN_TRUE;
    }
    return type->kind == DDS_TK_STRUCT && kolt::type::copy_key_record(*type, destination, source);
}

DDS_Boolean KOLT_Record_equals(const DDS_TypeCode *type, const void *left, const void *right) {
    if (type == nullptr || left == nullptr || right == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    return kolt::type::equal_values(*type, left, right);
}
