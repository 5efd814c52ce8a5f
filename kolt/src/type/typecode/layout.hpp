// SPDX-License-Identifier: Apache-2.0
// How values lie in memory, and questions about type codes that several files ask.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "kolt/sequence.h"
#include "kolt/typecode.h"

namespace kolt::type {

inline bool is_primitive(DDS_TCKind kind) {
    return kind >= DDS_TK_BOOLEAN && kind <= DDS_TK_DOUBLE;
}

// Bytes of a primitive or an enumeration, in memory and on the wire; 0 for other kinds.
inline std::size_t primitive_size(DDS_TCKind kind) {
    switch (kind) {
        case DDS_TK_BOOLEAN:
        case DDS_TK_CHAR:
        case DDS_TK_OCTET:
            return 1;
        case DDS_TK_SHORT:
        case DDS_TK_USHORT:
            return 2;
        case DDS_TK_LONG:
        case DDS_TK_ULONG:
        case DDS_TK_FLOAT:
        case DDS_TK_ENUM:
            return 4;
        case DDS_TK_LONGLONG:
        case DDS_TK_ULONGLONG:
        case DDS_TK_DOUBLE:
            return 8;
        default:
            return 0;
    }
}

inline bool is_signed(DDS_TCKind kind) {
    return kind == DDS_TK_SHORT || kind == DDS_TK_LONG || kind == DDS_TK_LONGLONG ||
           kind == DDS_TK_ENUM || kind == DDS_TK_CHAR;
}

inline std::size_t element_count(const DDS_TypeCode &array) {
    std::size_t count = 1;
    for (DDS_UnsignedLong i = 0; i < array.dimension_count; ++i) {
        count *= array.dimensions[i];
    }
    return count;
}

// Bytes of a value of the type inside a record; 0 for a malformed type code.
inline std::size_t value_size(const DDS_TypeCode &type) {
    switch (type.kind) {
        case DDS_TK_STRING:
            return sizeof(DDS_Char *);
        case DDS_TK_SEQUENCE:
            return sizeof(KOLT_Sequence);
        case DDS_TK_STRUCT:
        case DDS_TK_UNION:
            return type.access == nullptr ? 0 : type.access->record_size;
        case DDS_TK_ARRAY:
            return type.content_type == nullptr
                       ? 0
                       : element_count(type) * value_size(*type.content_type);
        default:
            return primitive_size(type.kind);
    }
}

inline bool is_keyed(const DDS_TypeCode &type) {
    if (type.kind != DDS_TK_STRUCT) {
        return false;
    }
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        if (type.members[i].is_key) {
            return true;
        }
    }
    return false;
}

// The integer that `value` points to; floating-point kinds give their bits.
inline std::int64_t load_integer(DDS_TCKind kind, const void *value) {
    const std::size_t size = primitive_size(kind);
    if (size == 1) {
        std::uint8_t byte = 0;
        std::memcpy(&byte, value, 1);
        return kind == DDS_TK_CHAR ? static_cast<std::int8_t>(byte) : byte;
    }
    if (size == 2) {
        std::uint16_t half = 0;
        std::memcpy(&half, value, 2);
        return is_signed(kind) ? static_cast<std::int16_t>(half) : half;
    }
    if (size == 4) {
        std::uint32_t word = 0;
        std::memcpy(&word, value, 4);
        return is_signed(kind) ? static_cast<std::int32_t>(word) : static_cast<std::int64_t>(word);
    }
    std::int64_t wide = 0;
    if (size == 8) {
        std::memcpy(&wide, value, 8);
    }
    return wide;
}

// Stores the low bytes of `integer` as a value of an integral kind.
inline void store_integer(DDS_TCKind kind, void *value, std::int64_t integer) {
    const auto bits = static_cast<std::uint64_t>(integer);
    const auto byte = static_cast<std::uint8_t>(bits);
    const auto half = static_cast<std::uint16_t>(bits);
    const auto word = static_cast<std::uint32_t>(bits);
    switch (primitive_size(kind)) {
        case 1:
            std::memcpy(value, &byte, 1);
            break;
        case 2:
            std::memcpy(value, &half, 2);
            break;
        case 4:
            std::memcpy(value, &word, 4);
            break;
        case 8:
            std::memcpy(value, &bits, 8);
            break;
        default:
            break;
    }
}

// The member that a discriminator selects, or member_count when it selects none.
inline DDS_UnsignedLong selected_member(const DDS_TypeCode &type, std::int64_t discriminator) {
    DDS_UnsignedLong fallback = type.member_count;
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        const DDS_TypeCodeMember &member = type.members[i];
        for (DDS_UnsignedLong j = 0; j < member.label_count; ++j) {
            if (member.labels[j] == discriminator) {
                return i;
            }
        }
        if (member.is_default_label) {
            fallback = i;
        }
    }
    return fallback;
}

inline std::int64_t load_discriminator(const DDS_TypeCode &type, const void *record) {
    return load_integer(type.discriminator_type->kind,
                        static_cast<const char *>(record) + type.access->discriminator_offset);
}

inline char *member_address(const DDS_TypeCode &type, void *record, DDS_UnsignedLong index) {
    return static_cast<char *>(record) + type.access->member_offsets[index];
}

inline const char *member_address(const DDS_TypeCode &type, const void *record,
                                  DDS_UnsignedLong index) {
    return static_cast<const char *>(record) + type.access->member_offsets[index];
}

// A pointer that lies in a record, whatever its type there.
inline void *load_pointer(const void *place) {
    void *pointer = nullptr;
    std::memcpy(&pointer, place, sizeof(pointer));
    return pointer;
}

inline void store_pointer(void *place, const void *pointer) {
    std::memcpy(place, &pointer, sizeof(pointer));
}

}  // namespace kolt::type
