// SPDX-License-Identifier: Apache-2.0
// Members of dynamic values: numbers, strings, lengths, discriminators and nested values.

#include <cfloat>
#include <cmath>
#include <cstring>
#include <type_traits>
#include <utility>

#include "dynamic/dynamic_value.hpp"
#include "kolt/dynamic_data.h"
#include "type/record/record.hpp"
#include "type/typecode/layout.hpp"

namespace {

namespace type = kolt::type;
using kolt::dynamic::Access;
using kolt::dynamic::find_member;
using kolt::dynamic::Place;

// ---- Numbers ----------------------------------------------------------------------------------

bool is_real(DDS_TCKind kind) {
    return kind == DDS_TK_FLOAT || kind == DDS_TK_DOUBLE;
}

bool is_integral(DDS_TCKind kind) {
    return kind == DDS_TK_ENUM || (type::is_primitive(kind) && !is_real(kind));
}

// The C types stand for themselves but for characters and booleans, which have ranges of their own.
template <typename T, typename Integer>
bool fits(DDS_TCKind kind, Integer value) {
    if (kind == DDS_TK_BOOLEAN) {
        return value == 0 || value == 1;
    }
    if constexpr (std::is_same_v<T, DDS_Char>) {
        return std::in_range<signed char>(value);
    } else {
        return std::in_range<T>(value);
    }
}

// Reads an integral member into a T that the accessor calls `kind`.
template <typename T>
DDS_ReturnCode_t load(const Place &place, DDS_TCKind kind, T *value) {
    const DDS_TCKind source = place.type->kind;
    if constexpr (std::is_floating_point_v<T>) {
        if (source == DDS_TK_FLOAT) {
            DDS_Float real = 0;
            std::memcpy(&real, place.value, sizeof(real));
            *value = real;
            return DDS_RETCODE_OK;
        }
        if (source == DDS_TK_DOUBLE) {
            DDS_Double real = 0;
            std::memcpy(&real, place.value, sizeof(real));
            if (std::is_same_v<T, DDS_Float> && std::isfinite(real) &&
                std::fabs(real) > static_cast<DDS_Double>(FLT_MAX)) {
                return DDS_RETCODE_BAD_PARAMETER;
            }
            *value = static_cast<T>(real);
            return DDS_RETCODE_OK;
        }
        return DDS_RETCODE_BAD_PARAMETER;
    } else {
        if (!is_integral(source)) {
            return DDS_RETCODE_BAD_PARAMETER;
        }
        const std::int64_t integer = type::load_integer(source, place.value);
        const bool fitting = source == DDS_TK_ULONGLONG
                                 ? fits<T>(kind, static_cast<std::uint64_t>(integer))
                                 : fits<T>(kind, integer);
        if (!fitting) {
            return DDS_RETCODE_BAD_PARAMETER;
        }
        *value = static_cast<T>(integer);
        return DDS_RETCODE_OK;
    }
}

// True when a member of this type can hold the value.
template <typename T>
bool accepts(const DDS_TypeCode &target, T value) {
    if constexpr (std::is_floating_point_v<T>) {
        const auto real = static_cast<DDS_Double>(value);
        return target.kind == DDS_TK_DOUBLE ||
               (target.kind == DDS_TK_FLOAT &&
                (!std::isfinite(real) || std::fabs(real) <= static_cast<DDS_Double>(FLT_MAX)));
    } else if constexpr (std::is_same_v<T, DDS_UnsignedLongLong>) {
        return target.kind == DDS_TK_ULONGLONG ||
               (std::in_range<DDS_LongLong>(value) &&
                kolt::dynamic::holds_integer(target, static_cast<DDS_LongLong>(value)));
    } else {
        return kolt::dynamic::holds_integer(target, value);
    }
}

template <typename T>
void store(const Place &place, T value) {
    if constexpr (std::is_floating_point_v<T>) {
        if (place.type->kind == DDS_TK_FLOAT) {
            const auto real = static_cast<DDS_Float>(value);
            std::memcpy(place.value, &real, sizeof(real));
        } else {
            const auto real = static_cast<DDS_Double>(value);
            std::memcpy(place.value, &real, sizeof(real));
        }
    } else {
        type::store_integer(place.type->kind, place.value, static_cast<std::int64_t>(value));
    }
}

template <typename T>
DDS_ReturnCode_t get_number(const DDS_DynamicData *self, T *value, const char *name,
                            DDS_DynamicDataMemberId id, DDS_TCKind kind) {
    if (self == nullptr || value == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    Place place;
    const DDS_ReturnCode_t result = find_member(*self, name, id, Access::kRead, &place);
    return result == DDS_RETCODE_OK ? load(place, kind, value) : result;
}

// The value is checked before anything changes.
template <typename T>
DDS_ReturnCode_t set_number(DDS_DynamicData *self, const char *name, DDS_DynamicDataMemberId id,
                            T value) {
    if (self == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    Place place;
    DDS_ReturnCode_t result = find_member(*self, name, id, Access::kProbe, &place);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    if (!accepts(*place.type, value)) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    result = find_member(*self, name, id, Access::kWrite, &place);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    if constexpr (std::is_integral_v<T>) {
        if (place.union_type != nullptr) {
            return kolt::dynamic::set_discriminator(*place.union_type, place.union_record,
                                                    static_cast<DDS_LongLong>(value))
                       ? DDS_RETCODE_OK
                       : DDS_RETCODE_OUT_OF_RESOURCES;
        }
    }
    store(place, value);
    return DDS_RETCODE_OK;
}

// ---- Lengths ----------------------------------------------------------------------------------

// Elements that come into sight hold what earlier ones left: they start afresh, buffers kept.
bool reset_elements(const DDS_TypeCode &content, const KOLT_Sequence *sequence,
                    DDS_UnsignedLong first) {
    const std::size_t size = type::value_size(content);
    DDS_TypeAllocationParams_t params = type::kDefaultAllocation;
    params.allocate_memory = DDS_BOOLEAN_FALSE;
    for (DDS_UnsignedLong i = first; i < sequence->_length; ++i) {
        if (!type::initialize_value(content, nullptr, type::sequence_element(sequence, size, i),
                                    params)) {
            return false;
        }
    }
    return true;
}

DDS_ReturnCode_t set_sequence_length(const Place &place, DDS_UnsignedLong length) {
    const DDS_TypeCode &content = *place.type->content_type;
    auto *const sequence = static_cast<KOLT_Sequence *>(place.value);
    const DDS_UnsignedLong before = sequence->_length;
    if (!type::sequence_set_length(sequence, type::TypeCodeElementOps(content),
                                   static_cast<DDS_Long>(length)) ||
        !reset_elements(content, sequence, before)) {
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
    return DDS_RETCODE_OK;
}

// ---- Strings ----------------------------------------------------------------------------------

const DDS_Char *text_of(const Place &place) {
    const auto *const text = static_cast<const DDS_Char *>(type::load_pointer(place.value));
    return text == nullptr ? "" : text;
}

// Returns a new copy of `text` with room for the type's bound, so that other strings can be copied
// into the record later.
DDS_Char *make_string(const DDS_TypeCode &code, const DDS_Char *text) {
    if (code.bound == 0) {
        return DDS_String_dup(text);
    }
    DDS_Char *const copy = DDS_String_alloc(code.bound);
    if (copy != nullptr) {
        std::memcpy(copy, text, std::strlen(text) + 1);
    }
    return copy;
}

}  // namespace

// ---- Numbers -----------------------------------------------------------------------------------

#define KOLT_DYNAMIC_DATA_DEFINE_ACCESS(suffix, T, kind)                                          \
    DDS_ReturnCode_t DDS_DynamicData_get_##suffix(const DDS_DynamicData *self, T *value,          \
                                                  const char *name, DDS_DynamicDataMemberId id) { \
        return get_number(self, value, name, id, kind);                                           \
    }                                                                                             \
    DDS_ReturnCode_t DDS_DynamicData_set_##suffix(DDS_DynamicData *self, const char *name,        \
                                                  DDS_DynamicDataMemberId id, T value) {          \
        return set_number(self, name, id, value);                                                 \
    }

KOLT_DYNAMIC_DATA_DEFINE_ACCESS(boolean, DDS_Boolean, DDS_TK_BOOLEAN)
KOLT_DYNAMIC_DATA_DEFINE_ACCESS(char, DDS_Char, DDS_TK_CHAR)
KOLT_DYNAMIC_DATA_DEFINE_ACCESS(octet, DDS_Octet, DDS_TK_OCTET)
KOLT_DYNAMIC_DATA_DEFINE_ACCESS(short, DDS_Short, DDS_TK_SHORT)
KOLT_DYNAMIC_DATA_DEFINE_ACCESS(ushort, DDS_UnsignedShort, DDS_TK_USHORT)
KOLT_DYNAMIC_DATA_DEFINE_ACCESS(long, DDS_Long, DDS_TK_LONG)
KOLT_DYNAMIC_DATA_DEFINE_ACCESS(ulong, DDS_UnsignedLong, DDS_TK_ULONG)
KOLT_DYNAMIC_DATA_DEFINE_ACCESS(longlong, DDS_LongLong, DDS_TK_LONGLONG)
KOLT_DYNAMIC_DATA_DEFINE_ACCESS(ulonglong, DDS_UnsignedLongLong, DDS_TK_ULONGLONG)
KOLT_DYNAMIC_DATA_DEFINE_ACCESS(float, DDS_Float, DDS_TK_FLOAT)
KOLT_DYNAMIC_DATA_DEFINE_ACCESS(double, DDS_Double, DDS_TK_DOUBLE)

// ---- In general --------------------------------------------------------------------------------

DDS_Boolean DDS_DynamicData_member_exists(const DDS_DynamicData *self, const char *name,
                                          DDS_DynamicDataMemberId id) {
    Place place;
    return self != nullptr && find_member(*self, name, id, Access::kRead, &place) == DDS_RETCODE_OK;
}

DDS_ReturnCode_t DDS_DynamicData_get_length(const DDS_DynamicData *self, DDS_UnsignedLong *length,
                                            const char *name, DDS_DynamicDataMemberId id) {
    if (self == nullptr || length == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    Place place;
    const DDS_ReturnCode_t result = find_member(*self, name, id, Access::kRead, &place);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    switch (place.type->kind) {
        case DDS_TK_SEQUENCE:
            *length = static_cast<const KOLT_Sequence *>(place.value)->_length;
            return DDS_RETCODE_OK;
        case DDS_TK_ARRAY:
            *length = static_cast<DDS_UnsignedLong>(type::element_count(*place.type));
            return DDS_RETCODE_OK;
        case DDS_TK_STRING:
            *length = static_cast<DDS_UnsignedLong>(std::strlen(text_of(place)));
            return DDS_RETCODE_OK;
        default:
            return DDS_RETCODE_BAD_PARAMETER;
    }
}

DDS_ReturnCode_t DDS_DynamicData_set_length(DDS_DynamicData *self, DDS_UnsignedLong length,
                                            const char *name, DDS_DynamicDataMemberId id) {
    if (self == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    Place place;
    DDS_ReturnCode_t result = find_member(*self, name, id, Access::kProbe, &place);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    const DDS_UnsignedLong bound = place.type->bound;
    if (place.type->kind != DDS_TK_SEQUENCE || length > KOLT_SEQUENCE_ABSOLUTE_MAXIMUM ||
        (bound != 0 && length > bound)) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    result = find_member(*self, name, id, Access::kWrite, &place);
    return result == DDS_RETCODE_OK ? set_sequence_length(place, length) : result;
}

DDS_ReturnCode_t DDS_DynamicData_get_discriminator(const DDS_DynamicData *self,
                                                   DDS_LongLong *value) {
    if (self == nullptr || value == nullptr || self->type->kind != DDS_TK_UNION) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    *value = type::load_discriminator(*self->type, self->record);
    return DDS_RETCODE_OK;
}

DDS_ReturnCode_t DDS_DynamicData_set_discriminator(DDS_DynamicData *self, DDS_LongLong value) {
    if (self == nullptr || self->type->kind != DDS_TK_UNION ||
        !kolt::dynamic::holds_integer(*self->type->discriminator_type, value)) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    return kolt::dynamic::set_discriminator(*self->type, self->record, value)
               ? DDS_RETCODE_OK
               : DDS_RETCODE_OUT_OF_RESOURCES;
}

// ---- Nested values -----------------------------------------------------------------------------

DDS_ReturnCode_t DDS_DynamicData_get_complex_member(const DDS_DynamicData *self,
                                                    DDS_DynamicData *value, const char *name,
                                                    DDS_DynamicDataMemberId id) {
    if (self == nullptr || value == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    Place place;
    const DDS_ReturnCode_t result = find_member(*self, name, id, Access::kRead, &place);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    if (place.type != value->type) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    return KOLT_Record_copy(value->type, value->record, place.value) ? DDS_RETCODE_OK
                                                                     : DDS_RETCODE_OUT_OF_RESOURCES;
}

DDS_ReturnCode_t DDS_DynamicData_set_complex_member(DDS_DynamicData *self,
                                                    const DDS_DynamicData *value, const char *name,
                                                    DDS_DynamicDataMemberId id) {
    if (self == nullptr || value == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    Place place;
    DDS_ReturnCode_t result = find_member(*self, name, id, Access::kProbe, &place);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    if (place.type != value->type) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    result = find_member(*self, name, id, Access::kWrite, &place);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    return KOLT_Record_copy(value->type, place.value, value->record) ? DDS_RETCODE_OK
                                                                     : DDS_RETCODE_OUT_OF_RESOURCES;
}

// ---- Strings -----------------------------------------------------------------------------------

DDS_ReturnCode_t DDS_DynamicData_get_string(const DDS_DynamicData *self, DDS_Char **value,
                                            DDS_UnsignedLong *size, const char *name,
                                            DDS_DynamicDataMemberId id) {
    if (self == nullptr || value == nullptr || (*value != nullptr && size == nullptr)) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    Place place;
    const DDS_ReturnCode_t result = find_member(*self, name, id, Access::kRead, &place);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    if (place.type->kind != DDS_TK_STRING) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    const DDS_Char *const text = text_of(place);
    const std::size_t needed = std::strlen(text) + 1;
    if (*value == nullptr) {
        *value = DDS_String_dup(text);
    } else if (*size < needed) {
        *size = static_cast<DDS_UnsignedLong>(needed);
        return DDS_RETCODE_OUT_OF_RESOURCES;
    } else {
        std::memcpy(*value, text, needed);
    }
    return *value == nullptr ? DDS_RETCODE_OUT_OF_RESOURCES : DDS_RETCODE_OK;
}

DDS_ReturnCode_t DDS_DynamicData_set_string(DDS_DynamicData *self, const char *name,
                                            DDS_DynamicDataMemberId id, const DDS_Char *value) {
    if (self == nullptr || value == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    Place place;
    DDS_ReturnCode_t result = find_member(*self, name, id, Access::kProbe, &place);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    const DDS_TypeCode &code = *place.type;
    if (code.kind != DDS_TK_STRING || (code.bound != 0 && std::strlen(value) > code.bound)) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    DDS_Char *const text = make_string(code, value);
    if (text == nullptr) {
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
    result = find_member(*self, name, id, Access::kWrite, &place);
    if (result != DDS_RETCODE_OK) {
        DDS_String_free(text);
        return result;
    }
    DDS_String_free(static_cast<DDS_Char *>(type::load_pointer(place.value)));
    type::store_pointer(place.value, text);
    return DDS_RETCODE_OK;
}
