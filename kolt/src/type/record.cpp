// Initial values and release of records.
#include "type/record.hpp"

#include <cstdlib>

namespace kolt::type {
namespace {

const DDS_Char *DefaultString(const DDS_TypeCodeMember *member) {
    if (member == nullptr || member->default_value.kind != DDS_TK_STRING ||
        member->default_value.value.string == nullptr) {
        return "";
    }
    return member->default_value.value.string;
}

void InitializePrimitive(const DDS_TypeCode &type, const DDS_TypeCodeMember *member, void *value) {
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
    int64_t integer = 0;
    if (annotation != nullptr) {
        integer = annotation->value.integer;
    } else if (type.kind == DDS_TK_ENUM && type.member_count > 0) {
        integer = type.members[0].ordinal;
    }
    StoreInteger(type.kind, value, integer);
}

// Copies what fits of `text` into a buffer of `bound` characters and a terminator.
void FillBounded(DDS_Char *buffer, const DDS_Char *text, size_t bound) {
    const size_t length = strnlen(text, bound);
    std::memcpy(buffer, text, length);
    buffer[length] = '\0';
}

// An unbounded string fits its buffer exactly: another value takes another buffer.
bool InitializeUnbounded(const DDS_Char *initial, void *value, bool allocate) {
    auto *const old = allocate ? nullptr : static_cast<DDS_Char *>(LoadPointer(value));
    if (!allocate && old == nullptr) return true;
    if (old != nullptr && initial[0] == '\0') {
        old[0] = '\0';
        return true;
    }
    DDS_Char *const fresh = DDS_String_dup(initial);
    if (fresh != nullptr || allocate) StorePointer(value, fresh);
    if (fresh != nullptr) DDS_String_free(old);
    return fresh != nullptr;
}

bool InitializeString(const DDS_TypeCode &type, const DDS_TypeCodeMember *member, void *value,
                      bool allocate) {
    const DDS_Char *const initial = DefaultString(member);
    if (type.bound == 0) return InitializeUnbounded(initial, value, allocate);
    auto *buffer = static_cast<DDS_Char *>(LoadPointer(value));
    if (allocate) {
        buffer = DDS_String_alloc(type.bound);
        StorePointer(value, buffer);
    }
    if (buffer == nullptr) return !allocate;
    FillBounded(buffer, initial, type.bound);
    return true;
}

bool InitializeSequence(const DDS_TypeCode &type, void *value,
                        const DDS_TypeAllocationParams_t &params) {
    auto *const sequence = static_cast<KOLT_Sequence *>(value);
    const TypeCodeElementOps ops(*type.content_type);
    if (!params.allocate_memory) {
        SequenceEnsureInitialized(sequence);
        return SequenceSetLength(sequence, ops, 0);
    }
    SequenceReset(sequence);
    sequence->_elementAllocParams = {params.allocate_pointers, params.allocate_optional_members,
                                     params.allocate_memory};
    if (type.bound == 0 || type.bound > KOLT_SEQUENCE_ABSOLUTE_MAXIMUM) return true;
    const auto bound = static_cast<DDS_Long>(type.bound);
    return SequenceSetAbsoluteMaximum(sequence, ops, bound) &&
           SequenceSetMaximum(sequence, ops, bound);
}

bool InitializeMember(const DDS_TypeCode &type, void *record, DDS_UnsignedLong index,
                      const DDS_TypeAllocationParams_t &params) {
    const DDS_TypeCodeMember &member = type.members[index];
    char *const place = MemberAddress(type, record, index);
    if (!member.is_optional) return InitializeValue(*member.type, &member, place, params);
    if (!params.allocate_memory) DeleteOptional(*member.type, LoadPointer(place));
    StorePointer(place, nullptr);
    if (!params.allocate_optional_members) return true;
    void *const optional = NewOptional(*member.type, params);
    StorePointer(place, optional);
    return optional != nullptr;
}

bool InitializeMembers(const DDS_TypeCode &type, void *record,
                       const DDS_TypeAllocationParams_t &params) {
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        if (!InitializeMember(type, record, i, params)) return false;
    }
    return true;
}

// A record without regard for its own plugin functions, which may be made from this.
bool InitializeRecord(const DDS_TypeCode &type, void *record,
                      const DDS_TypeAllocationParams_t &params) {
    switch (type.kind) {
        case DDS_TK_UNION:
            StoreInteger(type.discriminator_type->kind,
                         static_cast<char *>(record) + type.access->discriminator_offset,
                         type.default_discriminator);
            return InitializeMembers(type, record, params);
        case DDS_TK_STRUCT:
            return InitializeMembers(type, record, params);
        case DDS_TK_ENUM:
            InitializePrimitive(type, nullptr, record);
            return true;
        default:
            return false;
    }
}

// Initialising without memory leaves strings that are NULL as they are. A value that is read needs
// all of them.
bool MakeMissingStrings(const DDS_TypeCode &type, const DDS_TypeCodeMember *member, void *value) {
    switch (type.kind) {
        case DDS_TK_STRING:
            return LoadPointer(value) != nullptr || InitializeString(type, member, value, true);
        case DDS_TK_ARRAY: {
            if (IsPrimitive(type.content_type->kind)) return true;
            const size_t size = ValueSize(*type.content_type);
            const size_t count = ElementCount(type);
            for (size_t i = 0; i < count; ++i) {
                char *const element = static_cast<char *>(value) + i * size;
                if (!MakeMissingStrings(*type.content_type, member, element)) return false;
            }
            return true;
        }
        case DDS_TK_STRUCT:
        case DDS_TK_UNION:
            for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
                const DDS_TypeCodeMember &inner = type.members[i];
                if (inner.is_optional) continue;
                char *const place = MemberAddress(type, value, i);
                if (!MakeMissingStrings(*inner.type, &inner, place)) return false;
            }
            return true;
        default:
            return true;
    }
}

void FinalizeMembers(const DDS_TypeCode &type, void *record,
                     const DDS_TypeDeallocationParams_t &params) {
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        const DDS_TypeCodeMember &member = type.members[i];
        char *const place = MemberAddress(type, record, i);
        if (!member.is_optional) {
            FinalizeValue(*member.type, place, params);
        } else if (params.delete_optional_members) {
            DeleteOptional(*member.type, LoadPointer(place));
            StorePointer(place, nullptr);
        }
    }
}

void FinalizeSequence(const DDS_TypeCode &type, void *value,
                      const DDS_TypeDeallocationParams_t &params) {
    auto *const sequence = static_cast<KOLT_Sequence *>(value);
    SequenceEnsureInitialized(sequence);
    sequence->_elementDeallocParams = {params.delete_pointers, params.delete_optional_members};
    if (sequence->_maximum > 0) {
        SequenceSetMaximum(sequence, TypeCodeElementOps(*type.content_type), 0);
    }
}

}  // namespace

TypeCodeElementOps::TypeCodeElementOps(const DDS_TypeCode &type)
    : ElementOps("Sequence", ValueSize(type), IsPrimitive(type.kind)), type_(type) {}

bool TypeCodeElementOps::Initialize(void *element, const DDS_TypeAllocationParams_t &params) const {
    if (type_.kind != DDS_TK_STRING) return InitializeValue(type_, nullptr, element, params);
    StorePointer(element, nullptr);
    if (!params.allocate_pointers) return true;
    DDS_Char *const empty = DDS_String_alloc(0);
    StorePointer(element, empty);
    return empty != nullptr;
}

void TypeCodeElementOps::Finalize(void *element, const DDS_TypeDeallocationParams_t &params) const {
    FinalizeValue(type_, element, params);
}

bool TypeCodeElementOps::Copy(void *destination, const void *source) const {
    if (type_.kind != DDS_TK_STRING) return CopyValue(type_, destination, source);
    const auto *const text = static_cast<const DDS_Char *>(LoadPointer(source));
    if (text == nullptr) return false;
    if (type_.bound > 0 && strnlen(text, size_t{type_.bound} + 1) > type_.bound) return false;
    DDS_Char *const copy = DDS_String_dup(text);
    if (copy == nullptr) return false;
    DDS_String_free(static_cast<DDS_Char *>(LoadPointer(destination)));
    StorePointer(destination, copy);
    return true;
}

bool InitializeValue(const DDS_TypeCode &type, const DDS_TypeCodeMember *member, void *value,
                     const DDS_TypeAllocationParams_t &params) {
    switch (type.kind) {
        case DDS_TK_STRING:
            return InitializeString(type, member, value, params.allocate_memory != 0);
        case DDS_TK_SEQUENCE:
            return InitializeSequence(type, value, params);
        case DDS_TK_ARRAY: {
            const size_t size = ValueSize(*type.content_type);
            const size_t count = ElementCount(type);
            for (size_t i = 0; i < count; ++i) {
                if (!InitializeValue(*type.content_type, member,
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
            return InitializeRecord(type, value, params);
        default:
            InitializePrimitive(type, member, value);
            return true;
    }
}

void FinalizeValue(const DDS_TypeCode &type, void *value,
                   const DDS_TypeDeallocationParams_t &params) {
    switch (type.kind) {
        case DDS_TK_STRING:
            DDS_String_free(static_cast<DDS_Char *>(LoadPointer(value)));
            StorePointer(value, nullptr);
            break;
        case DDS_TK_SEQUENCE:
            FinalizeSequence(type, value, params);
            break;
        case DDS_TK_ARRAY: {
            if (IsPrimitive(type.content_type->kind)) break;
            const size_t size = ValueSize(*type.content_type);
            const size_t count = ElementCount(type);
            for (size_t i = 0; i < count; ++i) {
                FinalizeValue(*type.content_type, static_cast<char *>(value) + i * size, params);
            }
            break;
        }
        case DDS_TK_STRUCT:
        case DDS_TK_UNION:
            if (type.plugin != nullptr && type.plugin->finalize_w_params != nullptr) {
                type.plugin->finalize_w_params(value, &params);
            } else {
                FinalizeMembers(type, value, params);
            }
            break;
        default:
            break;
    }
}

bool ResetMember(const DDS_TypeCode &type, void *record, DDS_UnsignedLong index) {
    DDS_TypeAllocationParams_t params = kDefaultAllocation;
    params.allocate_memory = DDS_BOOLEAN_FALSE;
    const DDS_TypeCodeMember &member = type.members[index];
    return InitializeMember(type, record, index, params) &&
           (member.is_optional ||
            MakeMissingStrings(*member.type, &member, MemberAddress(type, record, index)));
}

void *NewOptional(const DDS_TypeCode &type, const DDS_TypeAllocationParams_t &params) {
    DDS_TypeAllocationParams_t with_memory = params;
    with_memory.allocate_memory = DDS_BOOLEAN_TRUE;
    void *const value = std::calloc(1, ValueSize(type));
    if (value != nullptr && !InitializeValue(type, nullptr, value, with_memory)) {
        DeleteOptional(type, value);
        return nullptr;
    }
    return value;
}

void DeleteOptional(const DDS_TypeCode &type, void *value) {
    if (value == nullptr) return;
    FinalizeValue(type, value, kDefaultDeallocation);
    std::free(value);
}

}  // namespace kolt::type

DDS_Boolean KOLT_Record_initialize_w_params(const DDS_TypeCode *type, void *record,
                                            const DDS_TypeAllocationParams_t *params) {
    if (type == nullptr || record == nullptr || params == nullptr) return DDS_BOOLEAN_FALSE;
    return kolt::type::InitializeRecord(*type, record, *params);
}

void KOLT_Record_finalize_w_params(const DDS_TypeCode *type, void *record,
                                   const DDS_TypeDeallocationParams_t *params) {
    if (type == nullptr || record == nullptr || params == nullptr) return;
    if (type->kind != DDS_TK_STRUCT && type->kind != DDS_TK_UNION) return;
    kolt::type::FinalizeMembers(*type, record, *params);
}
