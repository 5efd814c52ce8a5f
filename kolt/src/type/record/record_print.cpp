// SPDX-License-Identifier: Apache-2.0
// Records as text on standard output.
#include <cinttypes>
#include <cstdio>
#include <string>

#include "type/record/record.hpp"

namespace kolt::type {
namespace {

constexpr int kSpacesPerLevel = 3;

void print_indent(DDS_UnsignedLong indent) {
    for (DDS_UnsignedLong i = 0; i < indent; ++i) {
        std::printf("%*s", kSpacesPerLevel, "");
    }
}

// "VUR::DL::X" is the record VUR_DL_X.
void print_record_name(const char *type_name) {
    for (const char *p = type_name == nullptr ? "" : type_name; *p != '\0'; ++p) {
        if (p[0] == ':' && p[1] == ':') {
            ++p;
        }
        std::putchar(*p == ':' ? '_' : *p);
    }
}

// "<record name> <enumerator> (<value>)"; the enumerator is left out when there is none.
void print_enumeration(const DDS_TypeCode &type, const void *value) {
    const std::int64_t ordinal = load_integer(DDS_TK_ENUM, value);
    print_record_name(type.name);
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        if (type.members[i].ordinal == ordinal) {
            std::printf(" %s", type.members[i].name);
            break;
        }
    }
    std::printf(" (%" PRId64 ")", ordinal);
}

void print_primitive(const DDS_TypeCode &type, const void *value) {
    switch (type.kind) {
        case DDS_TK_BOOLEAN:
            std::fputs(load_integer(type.kind, value) != 0 ? "true" : "false", stdout);
            break;
        case DDS_TK_CHAR:
            std::printf("'%c'", static_cast<char>(load_integer(type.kind, value)));
            break;
        case DDS_TK_OCTET:
            std::printf("0x%02x", static_cast<unsigned>(load_integer(type.kind, value)));
            break;
        case DDS_TK_ULONGLONG:
            std::printf("%" PRIu64, static_cast<std::uint64_t>(load_integer(type.kind, value)));
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
            std::printf("%" PRId64, load_integer(type.kind, value));
            break;
    }
}

void print_record(const DDS_TypeCode &type, const void *record, const char *description,
                  DDS_UnsignedLong indent);

// A value on a line of its own ("name: value"), or a record as a block under its name.
void print_value(const DDS_TypeCode &type, const void *value, const std::string &name,
                 DDS_UnsignedLong indent);

void print_elements(const DDS_TypeCode &type, const void *value, const std::string &name,
                    DDS_UnsignedLong indent) {
    const DDS_TypeCode &content = *type.content_type;
    if (type.kind == DDS_TK_ARRAY) {
        const std::size_t size = value_size(content);
        const std::size_t count = element_count(type);
        for (std::size_t i = 0; i < count; ++i) {
            print_value(content, static_cast<const char *>(value) + i * size,
                        name + "[" + std::to_string(i) + "]", indent);
        }
        return;
    }
    const auto *const sequence = static_cast<const KOLT_Sequence *>(value);
    sequence_ensure_initialized(sequence);
    const std::size_t size = value_size(content);
    for (std::size_t i = 0; i < sequence->_length; ++i) {
        print_value(content, sequence_element(sequence, size, i),
                    name + "[" + std::to_string(i) + "]", indent);
    }
}

void print_value(const DDS_TypeCode &type, const void *value, const std::string &name,
                 DDS_UnsignedLong indent) {
    switch (type.kind) {
        case DDS_TK_STRUCT:
        case DDS_TK_UNION:
            print_record(type, value, name.c_str(), indent);
            return;
        case DDS_TK_ARRAY:
        case DDS_TK_SEQUENCE:
            if (value == nullptr) {
                break;
            }
            print_elements(type, value, name, indent);
            return;
        default:
            break;
    }
    print_indent(indent);
    std::printf("%s: ", name.c_str());
    const bool is_string = type.kind == DDS_TK_STRING;
    const void *const shown = is_string && value != nullptr ? load_pointer(value) : value;
    if (shown == nullptr) {
        std::fputs("NULL", stdout);
    } else if (is_string) {
        std::printf("\"%s\"", static_cast<const char *>(shown));
    } else if (type.kind == DDS_TK_ENUM) {
        print_enumeration(type, value);
    } else {
        print_primitive(type, value);
    }
    std::putchar('\n');
}

void print_member(const DDS_TypeCode &type, const void *record, DDS_UnsignedLong index,
                  const char *prefix, DDS_UnsignedLong indent) {
    const DDS_TypeCodeMember &member = type.members[index];
    const void *value = member_address(type, record, index);
    if (member.is_optional) {
        value = load_pointer(value);
    }
    print_value(*member.type, value, std::string(prefix) + member.name, indent);
}

void print_record(const DDS_TypeCode &type, const void *record, const char *description,
                  DDS_UnsignedLong indent) {
    print_indent(indent);
    if (description != nullptr) {
        std::printf("%s:", description);
    }
    std::putchar('\n');
    if (record == nullptr) {
        std::puts("NULL");
        return;
    }
    if (type.kind == DDS_TK_ENUM) {  // a record without members: its value
        print_indent(indent + 1);
        print_enumeration(type, record);
        std::putchar('\n');
        return;
    }
    if (type.kind == DDS_TK_UNION) {
        print_value(*type.discriminator_type,
                    static_cast<const char *>(record) + type.access->discriminator_offset, "_d",
                    indent + 1);
        const DDS_UnsignedLong selected = selected_member(type, load_discriminator(type, record));
        if (selected < type.member_count) {
            print_member(type, record, selected, "_u.", indent + 1);
        }
        return;
    }
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        print_member(type, record, i, "", indent + 1);
    }
}

}  // namespace
}  // namespace kolt::type

void KOLT_Record_print(const DDS_TypeCode *type, const void *record, const char *description,
                       DDS_UnsignedLong indent) {
    if (type == nullptr) {
        return;
    }
    try {
        // One record stays together when several threads print.
        flockfile(stdout);
        kolt::type::print_record(*type, record, description, indent);
    } catch (...) {  // No memory for a name: the rest stays unprinted.
    }
    funlockfile(stdout);
}
