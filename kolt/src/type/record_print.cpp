// Records as text on standard output.
#include <cinttypes>
#include <cstdio>
#include <string>

#include "type/record.hpp"

namespace kolt::type {
namespace {

constexpr int kSpacesPerLevel = 3;

void PrintIndent(DDS_UnsignedLong indent) {
    for (DDS_UnsignedLong i = 0; i < indent; ++i) std::printf("%*s", kSpacesPerLevel, "");
}

// "VUR::DL::X" is the record VUR_DL_X.
void PrintRecordName(const char *type_name) {
    for (const char *p = type_name == nullptr ? "" : type_name; *p != '\0'; ++p) {
        if (p[0] == ':' && p[1] == ':') ++p;
        std::putchar(*p == ':' ? '_' : *p);
    }
}

// "<record name> <enumerator> (<value>)"; the enumerator is left out when there is none.
void PrintEnumeration(const DDS_TypeCode &type, const void *value) {
    const int64_t ordinal = LoadInteger(DDS_TK_ENUM, value);
    PrintRecordName(type.name);
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        if (type.members[i].ordinal == ordinal) {
            std::printf(" %s", type.members[i].name);
            break;
        }
    }
    std::printf(" (%" PRId64 ")", ordinal);
}

void PrintPrimitive(const DDS_TypeCode &type, const void *value) {
    switch (type.kind) {
        case DDS_TK_BOOLEAN:
            std::fputs(LoadInteger(type.kind, value) != 0 ? "true" : "false", stdout);
            break;
        case DDS_TK_CHAR:
            std::printf("'%c'", static_cast<char>(LoadInteger(type.kind, value)));
            break;
        case DDS_TK_OCTET:
            std::printf("0x%02x", static_cast<unsigned>(LoadInteger(type.kind, value)));
            break;
        case DDS_TK_ULONGLONG:
            std::printf("%" PRIu64, static_cast<uint64_t>(LoadInteger(type.kind, value)));
            break;
        case DDS_TK_FLOAT: {
            DDS_Float real = 0;
            std::memcpy(&real, value, sizeof(real));
            std::printf("%.9g", static_cast<double>(real));
            break;
        }
        case DDS_TK_DOUBLE: {
            DDS_Double real = 0;
            std::memcpy(&real, value, sizeof(real));
            std::printf("%.17g", real);
            break;
        }
        default:
            std::printf("%" PRId64, LoadInteger(type.kind, value));
            break;
    }
}

void PrintRecord(const DDS_TypeCode &type, const void *record, const char *description,
                 DDS_UnsignedLong indent);

// A value on a line of its own ("name: value"), or a record as a block under its name.
void PrintValue(const DDS_TypeCode &type, const void *value, const std::string &name,
                DDS_UnsignedLong indent);

void PrintElements(const DDS_TypeCode &type, const void *value, const std::string &name,
                   DDS_UnsignedLong indent) {
    const DDS_TypeCode &content = *type.content_type;
    if (type.kind == DDS_TK_ARRAY) {
        const size_t size = ValueSize(content);
        const size_t count = ElementCount(type);
        for (size_t i = 0; i < count; ++i) {
            PrintValue(content, static_cast<const char *>(value) + i * size,
                       name + "[" + std::to_string(i) + "]", indent);
        }
        return;
    }
    const auto *const sequence = static_cast<const KOLT_Sequence *>(value);
    SequenceEnsureInitialized(sequence);
    const TypeCodeElementOps ops(content);
    for (size_t i = 0; i < sequence->_length; ++i) {
        PrintValue(content, SequenceElement(sequence, ops, i), name + "[" + std::to_string(i) + "]",
                   indent);
    }
}

void PrintValue(const DDS_TypeCode &type, const void *value, const std::string &name,
                DDS_UnsignedLong indent) {
    switch (type.kind) {
        case DDS_TK_STRUCT:
        case DDS_TK_UNION:
            PrintRecord(type, value, name.c_str(), indent);
            return;
        case DDS_TK_ARRAY:
        case DDS_TK_SEQUENCE:
            if (value == nullptr) break;
            PrintElements(type, value, name, indent);
            return;
        default:
            break;
    }
    PrintIndent(indent);
    std::printf("%s: ", name.c_str());
    if (value == nullptr) {
        std::fputs("NULL", stdout);
    } else if (type.kind == DDS_TK_ENUM) {
        PrintEnumeration(type, value);
    } else if (type.kind != DDS_TK_STRING) {
        PrintPrimitive(type, value);
    } else if (const void *const text = LoadPointer(value)) {
        std::printf("\"%s\"", static_cast<const char *>(text));
    } else {
        std::fputs("NULL", stdout);
    }
    std::putchar('\n');
}

void PrintMember(const DDS_TypeCode &type, const void *record, DDS_UnsignedLong index,
                 const char *prefix, DDS_UnsignedLong indent) {
    const DDS_TypeCodeMember &member = type.members[index];
    const void *value = MemberAddress(type, record, index);
    if (member.is_optional) value = LoadPointer(value);
    PrintValue(*member.type, value, std::string(prefix) + member.name, indent);
}

void PrintRecord(const DDS_TypeCode &type, const void *record, const char *description,
                 DDS_UnsignedLong indent) {
    PrintIndent(indent);
    if (description != nullptr) std::printf("%s:", description);
    std::putchar('\n');
    if (record == nullptr) {
        std::puts("NULL");
        return;
    }
    if (type.kind == DDS_TK_ENUM) {  // a record without members: what it is
        PrintIndent(indent + 1);
        PrintEnumeration(type, record);
        std::putchar('\n');
        return;
    }
    if (type.kind == DDS_TK_UNION) {
        PrintValue(*type.discriminator_type,
                   static_cast<const char *>(record) + type.access->discriminator_offset, "_d",
                   indent + 1);
        const DDS_UnsignedLong selected = SelectedMember(type, LoadDiscriminator(type, record));
        if (selected < type.member_count) PrintMember(type, record, selected, "_u.", indent + 1);
        return;
    }
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        PrintMember(type, record, i, "", indent + 1);
    }
}

}  // namespace
}  // namespace kolt::type

void KOLT_Record_print(const DDS_TypeCode *type, const void *record, const char *description,
                       DDS_UnsignedLong indent) {
    if (type == nullptr) return;
    try {
        // One record stays together when several threads print.
        flockfile(stdout);
        kolt::type::PrintRecord(*type, record, description, indent);
    } catch (...) {  // No memory for a name: the rest stays unprinted.
    }
    funlockfile(stdout);
}
