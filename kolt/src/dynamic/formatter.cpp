// SPDX-License-Identifier: Apache-2.0
// Dynamic values as text: a walk over the type code that tells a writer what it finds.

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include "dynamic/dynamic_value.hpp"
#include "dynamic/text_writer.hpp"
#include "kolt/dynamic_data.h"
#include "type/record/record.hpp"
#include "type/typecode/layout.hpp"

namespace kolt::dynamic {
namespace {

// "VUR::DL::LogMessage" is called LogMessage.
std::string_view unqualified(const char *type_name) {
    const std::string_view name = type_name == nullptr ? "value" : type_name;
    const std::size_t colon = name.rfind(':');
    return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

class Formatter {
  public:
    Formatter(TextWriter &writer, bool enum_as_int) : writer_(writer), enum_as_int_(enum_as_int) {}

    void members(const DDS_TypeCode &code, const void *record);

  private:
    void member(const DDS_TypeCode &code, const void *record, DDS_UnsignedLong index);
    void value(const DDS_TypeCode &code, const void *value, const Label &label);
    void sequence(const DDS_TypeCode &code, const void *value, const Label &label);
    void array(const DDS_TypeCode &code, DDS_UnsignedLong dimension, const char *value,
               const Label &label);
    void scalar(const DDS_TypeCode &code, const void *value, const Label &label);
    void enumeration(const DDS_TypeCode &code, const void *value, const Label &label);
    template <typename Number>
    void number(Number value, const Label &label);
    template <typename Real>
    void real(const void *value, const Label &label);

    TextWriter &writer_;
    const bool enum_as_int_;
};

void Formatter::members(const DDS_TypeCode &code, const void *record) {
    if (code.kind == DDS_TK_UNION) {
        scalar(*code.discriminator_type,
               static_cast<const char *>(record) + code.access->discriminator_offset, {"_d"});
        const DDS_UnsignedLong selected =
            type::selected_member(code, type::load_discriminator(code, record));
        if (selected < code.member_count) {
            member(code, record, selected);
        }
        return;
    }
    for (DDS_UnsignedLong i = 0; i < code.member_count; ++i) {
        member(code, record, i);
    }
}

// An optional member that is absent leaves no trace.
void Formatter::member(const DDS_TypeCode &code, const void *record, DDS_UnsignedLong index) {
    const DDS_TypeCodeMember &member = code.members[index];
    const void *place = type::member_address(code, record, index);
    if (member.is_optional) {
        place = type::load_pointer(place);
    }
    if (place != nullptr) {
        value(*member.type, place, {member.name});
    }
}

void Formatter::value(const DDS_TypeCode &code, const void *value, const Label &label) {
    switch (code.kind) {
        case DDS_TK_STRUCT:
        case DDS_TK_UNION:
            writer_.open(label, Group::kMembers);
            members(code, value);
            writer_.close(label, Group::kMembers);
            break;
        case DDS_TK_ARRAY:
            array(code, 0, static_cast<const char *>(value), label);
            break;
        case DDS_TK_SEQUENCE:
            sequence(code, value, label);
            break;
        default:
            scalar(code, value, label);
            break;
    }
}

// Returns the name for the elements of a value: "member", or "member[3]" when the value is itself
// an element.
std::string full_name(const Label &label) {
    std::string name(label.name);
    if (label.is_element) {
        name += '[' + std::to_string(label.index) + ']';
    }
    return name;
}

void Formatter::sequence(const DDS_TypeCode &code, const void *value, const Label &label) {
    const DDS_TypeCode &content = *code.content_type;
    const auto *const sequence = static_cast<const KOLT_Sequence *>(value);
    const std::size_t size = type::value_size(content);
    const std::string name = full_name(label);
    writer_.open(label, Group::kElements);
    for (std::size_t i = 0; i < sequence->_length; ++i) {
        this->value(content, type::sequence_element(sequence, size, i), {name, true, i});
    }
    writer_.close(label, Group::kElements);
}

// One dimension of an array: its elements are values, or arrays of one dimension less.
void Formatter::array(const DDS_TypeCode &code, DDS_UnsignedLong dimension, const char *value,
                      const Label &label) {
    const DDS_TypeCode &content = *code.content_type;
    const bool last = dimension + 1 == code.dimension_count;
    std::size_t stride = type::value_size(content);
    for (DDS_UnsignedLong i = dimension + 1; i < code.dimension_count; ++i) {
        stride *= code.dimensions[i];
    }
    const std::string name = full_name(label);
    writer_.open(label, Group::kElements);
    for (std::size_t i = 0; i < code.dimensions[dimension]; ++i) {
        const Label element = {name, true, i};
        if (last) {
            this->value(content, value + i * stride, element);
        } else {
            array(code, dimension + 1, value + i * stride, element);
        }
    }
    writer_.close(label, Group::kElements);
}

void Formatter::scalar(const DDS_TypeCode &code, const void *value, const Label &label) {
    switch (code.kind) {
        case DDS_TK_STRING: {
            const auto *const text = static_cast<const DDS_Char *>(type::load_pointer(value));
            writer_.value(label, Scalar::kString, text == nullptr ? "" : text);
            break;
        }
        case DDS_TK_CHAR:
            writer_.value(label, Scalar::kString, {static_cast<const DDS_Char *>(value), 1});
            break;
        case DDS_TK_BOOLEAN:
            writer_.value(label, Scalar::kLiteral,
                          type::load_integer(code.kind, value) != 0 ? "true" : "false");
            break;
        case DDS_TK_ENUM:
            enumeration(code, value, label);
            break;
        case DDS_TK_FLOAT:
            real<DDS_Float>(value, label);
            break;
        case DDS_TK_DOUBLE:
            real<DDS_Double>(value, label);
            break;
        case DDS_TK_ULONGLONG:
            number(static_cast<std::uint64_t>(type::load_integer(code.kind, value)), label);
            break;
        default:
            number(type::load_integer(code.kind, value), label);
            break;
    }
}

// Writes the enumerator's name, or the number for a value without an enumerator.
void Formatter::enumeration(const DDS_TypeCode &code, const void *value, const Label &label) {
    const std::int64_t ordinal = type::load_integer(DDS_TK_ENUM, value);
    for (DDS_UnsignedLong i = 0; !enum_as_int_ && i < code.member_count; ++i) {
        if (code.members[i].ordinal == ordinal) {
            writer_.value(label, Scalar::kEnumerator, code.members[i].name);
            return;
        }
    }
    number(ordinal, label);
}

// The shortest text that reads back as the same number, whatever the locale.
template <typename Number>
void Formatter::number(Number value, const Label &label) {
    char digits[32];
    const std::to_chars_result end = std::to_chars(digits, digits + sizeof(digits), value);
    writer_.value(label, Scalar::kLiteral, {digits, static_cast<std::size_t>(end.ptr - digits)});
}

template <typename Real>
void Formatter::real(const void *value, const Label &label) {
    Real real = 0;
    std::memcpy(&real, value, sizeof(real));
    if (std::isnan(real)) {
        writer_.value(label, Scalar::kNan, {});
    } else if (std::isinf(real)) {
        writer_.value(label, real > 0 ? Scalar::kInfinity : Scalar::kNegativeInfinity, {});
    } else {
        number(real, label);
    }
}

DDS_ReturnCode_t deliver(const std::string &text, DDS_Char *string, DDS_UnsignedLong *length) {
    if (text.size() >= std::numeric_limits<DDS_UnsignedLong>::max()) {
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
    const DDS_UnsignedLong capacity = *length;
    *length = static_cast<DDS_UnsignedLong>(text.size()) + 1;
    if (string == nullptr) {
        return DDS_RETCODE_OK;
    }
    if (capacity < *length) {
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
    std::memcpy(string, text.c_str(), *length);
    return DDS_RETCODE_OK;
}

DDS_ReturnCode_t to_string(const DDS_DynamicData &data, DDS_Char *string, DDS_UnsignedLong *length,
                           const DDS_PrintFormat &format) {
    const std::unique_ptr<TextWriter> writer = make_text_writer(format);
    if (writer == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    const std::string_view name = unqualified(data.type->name);
    writer->begin(name);
    Formatter(*writer, format.enum_as_int != 0).members(*data.type, data.record);
    writer->end(name);
    return deliver(writer->text(), string, length);
}

}  // namespace
}  // namespace kolt::dynamic

DDS_ReturnCode_t DDS_DynamicDataFormatter_to_string_w_format(const DDS_DynamicData *data,
                                                             DDS_Char *string,
                                                             DDS_UnsignedLong *length,
                                                             const DDS_PrintFormat *format) {
    if (data == nullptr || length == nullptr || format == nullptr || format->new_line == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    try {
        return kolt::dynamic::to_string(*data, string, length, *format);
    } catch (...) {  // no memory for the text
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
}
