// Copies and equality of records.
#include <cstring>

#include "type/record.hpp"

namespace kolt::type {
namespace {

bool CopyString(const DDS_TypeCode &type, void *destination, const void *source) {
    const auto *const text = static_cast<const DDS_Char *>(LoadPointer(source));
    auto *const buffer = static_cast<DDS_Char *>(LoadPointer(destination));
    if (text == nullptr) return false;
    if (type.bound == 0) {
        DDS_Char *const copy = DDS_String_dup(text);
        if (copy == nullptr) return false;
        DDS_String_free(buffer);
        StorePointer(destination, copy);
        return true;
    }
    // A bounded string has a buffer for its bound, made when the record was initialised.
    if (buffer == nullptr) return false;
    const size_t length = strnlen(text, size_t{type.bound} + 1);
    if (length > type.bound) return false;
    if (buffer != text) std::memcpy(buffer, text, length + 1);
    return true;
}

bool CopyMember(const DDS_TypeCode &type, void *destination, const void *source,
                DDS_UnsignedLong index) {
    const DDS_TypeCodeMember &member = type.members[index];
    char *const to = MemberAddress(type, destination, index);
    const char *const from = MemberAddress(type, source, index);
    if (!member.is_optional) return CopyValue(*member.type, to, from);
    const void *const source_value = LoadPointer(from);
    void *value = LoadPointer(to);
    if (source_value == nullptr) {
        DeleteOptional(*member.type, value);
        StorePointer(to, nullptr);
        return true;
    }
    if (value == nullptr) {
        value = NewOptional(*member.type, kDefaultAllocation);
        StorePointer(to, value);
        if (value == nullptr) return false;
    }
    return CopyValue(*member.type, value, source_value);
}

bool CopyUnion(const DDS_TypeCode &type, void *destination, const void *source) {
    const int64_t discriminator = LoadDiscriminator(type, source);
    StoreInteger(type.discriminator_type->kind,
                 static_cast<char *>(destination) + type.access->discriminator_offset,
                 discriminator);
    const DDS_UnsignedLong selected = SelectedMember(type, discriminator);
    return selected == type.member_count || CopyMember(type, destination, source, selected);
}

bool CopyRecord(const DDS_TypeCode &type, void *destination, const void *source) {
    switch (type.kind) {
        case DDS_TK_UNION:
            return CopyUnion(type, destination, source);
        case DDS_TK_STRUCT:
            for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
                if (!CopyMember(type, destination, source, i)) return false;
            }
            return true;
        case DDS_TK_ENUM:
            std::memcpy(destination, source, sizeof(DDS_Enum));
            return true;
        default:
            return false;
    }
}

bool CopyKeyRecord(const DDS_TypeCode &type, void *destination, const void *source) {
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        const DDS_TypeCodeMember &member = type.members[i];
        if (!member.is_key) continue;
        // A structure that names no keys of its own is a key as a whole.
        const bool part = !member.is_optional && IsKeyed(*member.type);
        const bool copied = part ? CopyKeyRecord(*member.type, MemberAddress(type, destination, i),
                                                 MemberAddress(type, source, i))
                                 : CopyMember(type, destination, source, i);
        if (!copied) return false;
    }
    return true;
}

bool EqualValues(const DDS_TypeCode &type, const void *left, const void *right);

bool EqualMembers(const DDS_TypeCode &type, const void *left, const void *right,
                  DDS_UnsignedLong index) {
    const DDS_TypeCodeMember &member = type.members[index];
    const void *left_value = MemberAddress(type, left, index);
    const void *right_value = MemberAddress(type, right, index);
    if (member.is_optional) {
        left_value = LoadPointer(left_value);
        right_value = LoadPointer(right_value);
        if (left_value == nullptr || right_value == nullptr) return left_value == right_value;
    }
    return EqualValues(*member.type, left_value, right_value);
}

bool EqualStrings(const void *left, const void *right) {
    const auto *const left_text = static_cast<const DDS_Char *>(LoadPointer(left));
    const auto *const right_text = static_cast<const DDS_Char *>(LoadPointer(right));
    if (left_text == nullptr || right_text == nullptr) return left_text == right_text;
    return std::strcmp(left_text, right_text) == 0;
}

bool EqualSequences(const DDS_TypeCode &type, const void *left, const void *right) {
    const auto *const left_sequence = static_cast<const KOLT_Sequence *>(left);
    const auto *const right_sequence = static_cast<const KOLT_Sequence *>(right);
    SequenceEnsureInitialized(left_sequence);
    SequenceEnsureInitialized(right_sequence);
    if (left_sequence->_length != right_sequence->_length) return false;
    const TypeCodeElementOps ops(*type.content_type);
    for (size_t i = 0; i < left_sequence->_length; ++i) {
        const void *const left_element = SequenceElement(left_sequence, ops, i);
        const void *const right_element = SequenceElement(right_sequence, ops, i);
        if (left_element == nullptr || right_element == nullptr) return false;
        if (!EqualValues(*type.content_type, left_element, right_element)) return false;
    }
    return true;
}

bool EqualUnions(const DDS_TypeCode &type, const void *left, const void *right) {
    const int64_t discriminator = LoadDiscriminator(type, left);
    if (discriminator != LoadDiscriminator(type, right)) return false;
    const DDS_UnsignedLong selected = SelectedMember(type, discriminator);
    return selected == type.member_count || EqualMembers(type, left, right, selected);
}

bool EqualValues(const DDS_TypeCode &type, const void *left, const void *right) {
    switch (type.kind) {
        case DDS_TK_STRING:
            return EqualStrings(left, right);
        case DDS_TK_SEQUENCE:
            return EqualSequences(type, left, right);
        case DDS_TK_UNION:
            return EqualUnions(type, left, right);
        case DDS_TK_STRUCT:
            for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
                if (!EqualMembers(type, left, right, i)) return false;
            }
            return true;
        case DDS_TK_ARRAY: {
            const size_t size = ValueSize(*type.content_type);
            const size_t count = ElementCount(type);
            for (size_t i = 0; i < count; ++i) {
                if (!EqualValues(*type.content_type, static_cast<const char *>(left) + i * size,
                                 static_cast<const char *>(right) + i * size)) {
                    return false;
                }
            }
            return true;
        }
        default:
            return std::memcmp(left, right, PrimitiveSize(type.kind)) == 0;
    }
}

}  // namespace

bool CopyValue(const DDS_TypeCode &type, void *destination, const void *source) {
    switch (type.kind) {
        case DDS_TK_STRING:
            return CopyString(type, destination, source);
        case DDS_TK_SEQUENCE: {
            auto *const to = static_cast<KOLT_Sequence *>(destination);
            const auto *const from = static_cast<const KOLT_Sequence *>(source);
            SequenceEnsureInitialized(to);
            SequenceEnsureInitialized(from);
            return SequenceCopy(to, TypeCodeElementOps(*type.content_type), from);
        }
        case DDS_TK_ARRAY: {
            const size_t size = ValueSize(*type.content_type);
            const size_t count = ElementCount(type);
            for (size_t i = 0; i < count; ++i) {
                if (!CopyValue(*type.content_type, static_cast<char *>(destination) + i * size,
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
            return CopyRecord(type, destination, source);
        default:
            std::memmove(destination, source, PrimitiveSize(type.kind));
            return true;
    }
}

}  // namespace kolt::type

DDS_Boolean KOLT_Record_copy(const DDS_TypeCode *type, void *destination, const void *source) {
    if (type == nullptr || destination == nullptr || source == nullptr) return DDS_BOOLEAN_FALSE;
    return destination == source || kolt::type::CopyRecord(*type, destination, source);
}

DDS_Boolean KOLT_Record_copy_key(const DDS_TypeCode *type, void *destination, const void *source) {
    if (type == nullptr || destination == nullptr || source == nullptr) return DDS_BOOLEAN_FALSE;
    if (destination == source) return DDS_BOOLEAN_TRUE;
    return type->kind == DDS_TK_STRUCT && kolt::type::CopyKeyRecord(*type, destination, source);
}

DDS_Boolean KOLT_Record_equals(const DDS_TypeCode *type, const void *left, const void *right) {
    if (type == nullptr || left == nullptr || right == nullptr) return DDS_BOOLEAN_FALSE;
    return kolt::type::EqualValues(*type, left, right);
}
