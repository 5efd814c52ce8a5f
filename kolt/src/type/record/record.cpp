// SPDX-License-Identifier: Apache-2.0
// Initial values and release of records.
#include "type/record/record.hpp"

#include <cstdlib>

namespace kolt::type {
namespace {

const DDS_Char *default_string(const DDS_TypeCodeMember *member) {
    if (member == nullptr || member->default_value.kind != DDS_TK_STRING ||
        member->default_value.value.string == nullptr) {
        return "";
    }
    return member->default_value.value.string;
}

void initialize_primitive(const DDS_TypeCode &type, const DDS_TypeCodeMember *member, void *value) {
    const DDS_AnnotationParameterValue *annotation =
        member != nullptr && member->default_value.kind != DDS_TK_NULL ? &member->default_value
                                                                       : nullptr;
    if (type.kind == DDS_TK_FLOAT || type.kind == DDS_TK_DOUBLE) {
        const DDS_Double wide = annotation == nullptr ? 0.0 : annotation->value.real;
        const auto narrow = static_cast<DDS_Float>(wide);
        if (type.kind == DDS_TK_FLOAT) {
            std::memcpy(value, &narrow, sizeof(narrow));
        } else {
            std::memcpy(value, &wide, sizeof(wide));
        }
        return;
    }
    std::int64_t integer = 0;
    if (annotation != nullptr) {
        integer = annotation->value.integer;
    } else if (type.kind == DDS_TK_ENUM && type.member_count > 0) {
        integer = type.members[0].ordinal;
    }
    store_integer(type.kind, value, integer);
}

// Copies what fits of `text` into a buffer of `bound` characters and a terminator.
void fill_bounded(DDS_Char *buffer, const DDS_Char *text, std::size_t bound) {
    const std::size_t length = strnlen(text, bound);
    std::memcpy(buffer, text, length);
    buffer[length] = '\0';
}

// An unbounded string fits its buffer exactly: another value takes another buffer.
bool initialize_unbounded(const DDS_Char *initial, void *value, bool allocate) {
    auto *const old = allocate ? nullptr : static_cast<DDS_Char *>(load_pointer(value));
    if (!allocate && old == nullptr) {
        return true;
    }
    if (old != nullptr && initial[0] == '\0') {
        old[0] = '\0';
        return true;
    }
    DDS_Char *const fresh = DDS_String_dup(initial);
    if (fresh != nullptr || allocate) {
        store_pointer(value, fresh);
    }
    if (fresh != nullptr) {
        DDS_String_free(old);
    }
    return fresh != nullptr;
}

bool initialize_string(const DDS_TypeCode &type, const DDS_TypeCodeMember *member, void *value,
                       bool allocate) {
    const DDS_Char *const initial = default_string(member);
    if (type.bound == 0) {
        return initialize_unbounded(initial, value, allocate);
    }
    auto *buffer = static_cast<DDS_Char *>(load_pointer(value));
    if (allocate) {
        buffer = DDS_String_alloc(type.bound);
        store_pointer(value, buffer);
    }
    if (buffer == nullptr) {
        return !allocate;
    }
    fill_bounded(buffer, initial, type.bound);
    return true;
}

bool initialize_sequence(const DDS_TypeCode &type, void *value,
                         const DDS_TypeAllocationParams_t &params) {
    auto *const sequence = static_cast<KOLT_Sequence *>(value);
    const TypeCodeElementOps ops(*type.content_type);
    if (!params.allocate_memory) {
        sequence_ensure_initialized(sequence);
        return sequence_set_length(sequence, ops, 0);
    }
    sequence_reset(sequence);
    sequence->_elementAllocParams = {params.allocate_pointers, params.allocate_optional_members,
                                     params.allocate_memory};
    if (type.bound == 0 || type.bound > KOLT_SEQUENCE_ABSOLUTE_MAXIMUM) {
        return true;
    }
    const auto bound = static_cast<DDS_Long>(type.bound);
    return sequence_set_absolute_maximum(sequence, ops.sequence_name(), bound) &&
           sequence_set_maximum(sequence, ops, bound);
}

bool initialize_member(const DDS_TypeCode &type, void *record, DDS_UnsignedLong index,
                       const DDS_TypeAllocationParams_t &params) {
    const DDS_TypeCodeMember &member = type.members[index];
    char *const place = member_address(type, record, index);
    if (!member.is_optional) {
        return initialize_value(*member.type, &member, place, params);
    }
    if (!params.allocate_memory) {
        delete_optional(*member.type, load_pointer(place));
    }
    store_pointer(place, nullptr);
    if (!params.allocate_optional_members) {
        return true;
    }
    void *const optional = new_optional(*member.type, params);
    store_pointer(place, optional);
    return optional != nullptr;
}

bool initialize_members(const DDS_TypeCode &type, void *record,
                        const DDS_TypeAllocationParams_t &params) {
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        if (!initialize_member(type, record, i, params)) {
            return false;
        }
    }
    return true;
}

// A record without regard for its own plugin functions, which may be made from this.
bool initialize_record(const DDS_TypeCode &type, void *record,
                       const DDS_TypeAllocationParams_t &params) {
    switch (type.kind) {
        case DDS_TK_UNION:
            store_integer(type.discriminator_type->kind,
                          static_cast<char *>(record) + type.access->discriminator_offset,
                          type.default_discriminator);
            return initialize_members(type, record, params);
        case DDS_TK_STRUCT:
            return initialize_members(type, record, params);
        case DDS_TK_ENUM:
            initialize_primitive(type, nullptr, record);
            return true;
        default:
            return false;
    }
}

// Initialising without memory leaves strings that are NULL as they are. A value that is read needs
// all of them.
bool make_missing_strings(const DDS_TypeCode &type, const DDS_TypeCodeMember *member, void *value) {
    switch (type.kind) {
        case DDS_TK_STRING:
            return load_pointer(value) != nullptr || initialize_string(type, member, value, true);
        case DDS_TK_ARRAY: {
            if (is_primitive(type.content_type->kind)) {
                return true;
            }
            const std::size_t size = value_size(*type.content_type);
            const std::size_t count = element_count(type);
            for (std::size_t i = 0; i < count; ++i) {
                char *const element = static_cast<char *>(value) + i * size;
                if (!make_missing_strings(*type.content_type, member, element)) {
                    return false;
                }
            }
            return true;
        }
        case DDS_TK_STRUCT:
        case DDS_TK_UNION:
            for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
                const DDS_TypeCodeMember &inner = type.members[i];
                if (inner.is_optional) {
                    continue;
                }
                char *const place = member_address(type, value, i);
                if (!make_missing_strings(*inner.type, &inner, place)) {
                    return false;
                }
            }
            return true;
        default:
            return true;
    }
}

void finalize_members(const DDS_TypeCode &type, void *record,
                      const DDS_TypeDeallocationParams_t &params) {
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        const DDS_TypeCodeMember &member = type.members[i];
        char *const place = member_address(type, record, i);
        if (!member.is_optional) {
            finalize_value(*member.type, place, params);
        } else if (params.delete_optional_members) {
            delete_optional(*member.type, load_pointer(place));
            store_pointer(place, nullptr);
        }
    }
}

void finalize_sequence(const DDS_TypeCode &type, void *value,
                       const DDS_TypeDeallocationParams_t &params) {
    auto *const sequence = static_cast<KOLT_Sequence *>(value);
    sequence_ensure_initialized(sequence);
    sequence->_elementDeallocParams = {params.delete_pointers, params.delete_optional_members};
    if (sequence->_maximum > 0) {
        sequence_set_maximum(sequence, TypeCodeElementOps(*type.content_type), 0);
    }
}

}  // namespace

TypeCodeElementOps::TypeCodeElementOps(const DDS_TypeCode &type)
    : ElementOps("Sequence", value_size(type), is_primitive(type.kind)), type_(type) {}

bool TypeCodeElementOps::initialize(void *element, const DDS_TypeAllocationParams_t &params) const {
    if (type_.kind != DDS_TK_STRING) {
        return initialize_value(type_, nullptr, element, params);
    }
    store_pointer(element, nullptr);
    if (!params.allocate_pointers) {
        return true;
    }
    DDS_Char *const empty = DDS_String_alloc(0);
    store_pointer(element, empty);
    return empty != nullptr;
}

void TypeCodeElementOps::finalize(void *element, const DDS_TypeDeallocationParams_t &params) const {
    finalize_value(type_, element, params);
}

bool TypeCodeElementOps::copy(void *destination, const void *source) const {
    if (type_.kind != DDS_TK_STRING) {
        return copy_value(type_, destination, source);
    }
    const auto *const text = static_cast<const DDS_Char *>(load_pointer(source));
    if (text == nullptr) {
        return false;
    }
    if (type_.bound > 0 && strnlen(text, std::size_t{type_.bound} + 1) > type_.bound) {
        return false;
    }
    DDS_Char *const copy = DDS_String_dup(text);
    if (copy == nullptr) {
        return false;
    }
    DDS_String_free(static_cast<DDS_Char *>(load_pointer(destination)));
    store_pointer(destination, copy);
    return true;
}

bool initialize_value(const DDS_TypeCode &type, const DDS_TypeCodeMember *member, void *value,
                      const DDS_TypeAllocationParams_t &params) {
    switch (type.kind) {
        case DDS_TK_STRING:
            return initialize_string(type, member, value, params.allocate_memory != 0);
        case DDS_TK_SEQUENCE:
            return initialize_sequence(type, value, params);
        case DDS_TK_ARRAY: {
            const std::size_t size = value_size(*type.content_type);
            const std::size_t count = element_count(type);
            for (std::size_t i = 0; i < count; ++i) {
                if (!initialize_value(*type.content_type, member,
                                      static_cast<char *>(value) + i * size, params)) {
                    return false;
                }
            }
            return true;
        }
        case DDS_TK_STRUCT:
        case DDS_TK_UNION:
            if (type.plugin != nullptr && type.plugin->initialize_w_params != nullptr) {
                return type.plugin->initialize_w_params(value, &params) != 0;
            }
            return initialize_record(type, value, params);
        default:
            initialize_primitive(type, member, value);
            return true;
    }
}

void finalize_value(const DDS_TypeCode &type, void *value,
                    const DDS_TypeDeallocationParams_t &params) {
    switch (type.kind) {
        case DDS_TK_STRING:
            DDS_String_free(static_cast<DDS_Char *>(load_pointer(value)));
            store_pointer(value, nullptr);
            break;
        case DDS_TK_SEQUENCE:
            finalize_sequence(type, value, params);
            break;
        case DDS_TK_ARRAY: {
            if (is_primitive(type.content_type->kind)) {
                break;
            }
            const std::size_t size = value_size(*type.content_type);
            const std::size_t count = element_count(type);
            for (std::size_t i = 0; i < count; ++i) {
                finalize_value(*type.content_type, static_cast<char *>(value) + i * size, params);
            }
            break;
        }
        case DDS_TK_STRUCT:
        case DDS_TK_UNION:
            if (type.plugin != nullptr && type.plugin->finalize_w_params != nullptr) {
                type.plugin->finalize_w_params(value, &params);
            } else {
                finalize_members(type, value, params);
            }
            break;
        default:
            break;
    }
}

bool reset_member(const DDS_TypeCode &type, void *record, DDS_UnsignedLong index) {
    DDS_TypeAllocationParams_t params = kDefaultAllocation;
    params.allocate_memory = DDS_BOOLEAN_FALSE;
    const DDS_TypeCodeMember &member = type.members[index];
    return initialize_member(type, record, index, params) &&
           (member.is_optional ||
            make_missing_strings(*member.type, &member, member_address(type, record, index)));
}

void *new_optional(const DDS_TypeCode &type, const DDS_TypeAllocationParams_t &params) {
    DDS_TypeAllocationParams_t with_memory = params;
    with_memory.allocate_memory = DDS_BOOLEAN_TRUE;
    void *const value = std::calloc(1, value_size(type));
    if (value != nullptr && !initialize_value(type, nullptr, value, with_memory)) {
        delete_optional(type, value);
        return nullptr;
    }
    return value;
}

void delete_optional(const DDS_TypeCode &type, void *value) {
    if (value == nullptr) {
        return;
    }
    finalize_value(type, value, kDefaultDeallocation);
    std::free(value);
}

}  // namespace kolt::type

DDS_Boolean KOLT_Record_initialize_w_params(const DDS_TypeCode *type, void *record,
                                            const DDS_TypeAllocationParams_t *params) {
    if (type == nullptr || record == nullptr || params == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    return kolt::type::initialize_record(*type, record, *params);
}

void KOLT_Record_finalize_w_params(const DDS_TypeCode *type, void *record,
                                   const DDS_TypeDeallocationParams_t *params) {
    if (type == nullptr || record == nullptr || params == nullptr) {
        return;
    }
    if (type->kind != DDS_TK_STRUCT && type->kind != DDS_TK_UNION) {
        return;
    }
    kolt::type::finalize_members(*type, record, *params);
}
