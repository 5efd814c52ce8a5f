// SPDX-License-Identifier: Apache-2.0
// Each way to read a sample says the same: record, fields found in the bytes, dynamic value, text.
#include <kolt/print_format.h>

#include <cstring>

#include "support/cdr/cdr_checks.h"
#include "support/cdr/cdr_checks_parts.h"
#include "support/cdr/cdr_field_walk.h"

namespace support {
namespace {

// Compares what is found in the bytes with the value that was read from them.
class FindFields : FieldWalk {
  public:
    FindFields(const KOLT_TypePrograms *programs, const std::uint8_t *bytes, std::size_t size,
               DDS_DynamicData *data)
        : FieldWalk(data), programs_(programs), bytes_(bytes), size_(size) {}

    void run() { walk(*KOLT_TypePrograms_type(programs_)); }

  private:
    DDS_UnsignedLong sequence_length(const DDS_TypeCode &type) override {
        DDS_UnsignedLong length = 0;
        if (DDS_DynamicData_get_length(data_, &length, name_.c_str(), DDS_MEMBER_ID_INVALID) !=
            DDS_RETCODE_OK) {
            length = 0;
        }
        if (type.content_type->kind <= DDS_TK_STRING) {  // one past the end
            path_.push_back({1, length});
            KOLT_CdrValue found;
            REQUIRE(find(&found));
            REQUIRE(found.kind == DDS_TK_NULL);
            path_.pop_back();
        }
        return length;
    }

    bool find(KOLT_CdrValue *found) {
        return KOLT_Cdr_find_field(programs_, bytes_, size_, path_.data(), path_.size(), found) !=
               0;
    }

    void leaf(const DDS_TypeCode &type) override {
        KOLT_CdrValue found;
        REQUIRE(find(&found));
        const DDS_Boolean there =
            DDS_DynamicData_member_exists(data_, name_.c_str(), DDS_MEMBER_ID_INVALID);
        if (!there) {
            REQUIRE(found.kind == DDS_TK_NULL);
            return;
        }
        REQUIRE(found.kind == type.kind);
        if (type.kind == DDS_TK_STRING) {
            require_same_string(found);
        } else if (type.kind == DDS_TK_FLOAT || type.kind == DDS_TK_DOUBLE) {
            DDS_Double real = 0;
            REQUIRE(DDS_DynamicData_get_double(data_, &real, name_.c_str(),
                                               DDS_MEMBER_ID_INVALID) == DDS_RETCODE_OK);
            // Bit by bit: NaN equals itself, and 0 differs from -0.
            // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison)
            REQUIRE(std::memcmp(&real, &found.value.real, sizeof(real)) == 0);
        } else if (type.kind == DDS_TK_ULONGLONG) {
            DDS_UnsignedLongLong number = 0;
            REQUIRE(DDS_DynamicData_get_ulonglong(data_, &number, name_.c_str(),
                                                  DDS_MEMBER_ID_INVALID) == DDS_RETCODE_OK);
            REQUIRE(number == found.value.unsigned_integer);
        } else {
            DDS_LongLong number = 0;
            REQUIRE(DDS_DynamicData_get_longlong(data_, &number, name_.c_str(),
                                                 DDS_MEMBER_ID_INVALID) == DDS_RETCODE_OK);
            REQUIRE(number == found.value.integer);
        }
    }

    void require_same_string(const KOLT_CdrValue &found) {
        DDS_Char *text = nullptr;
        REQUIRE(DDS_DynamicData_get_string(data_, &text, nullptr, name_.c_str(),
                                           DDS_MEMBER_ID_INVALID) == DDS_RETCODE_OK);
        REQUIRE(found.value.string.length == std::strlen(text));
        REQUIRE(std::memcmp(found.value.string.characters, text, found.value.string.length) == 0);
        DDS_String_free(text);
    }

    const KOLT_TypePrograms *programs_;
    const std::uint8_t *bytes_;
    std::size_t size_;
};

// Looks for every field in bytes that can't be read as a whole. Nothing outside them may be read.
class SearchMalformed : FieldWalk {
  public:
    SearchMalformed(const KOLT_TypePrograms *programs, const std::uint8_t *bytes, std::size_t size,
                    DDS_DynamicData *data)
        : FieldWalk(data), programs_(programs), bytes_(bytes), size_(size) {}

    void run() { walk(*KOLT_TypePrograms_type(programs_)); }

  private:
    DDS_UnsignedLong sequence_length(const DDS_TypeCode &) override { return 2; }

    void leaf(const DDS_TypeCode &) override {
        KOLT_CdrValue found;
        if (!KOLT_Cdr_find_field(programs_, bytes_, size_, path_.data(), path_.size(), &found)) {
            return;
        }
        if (found.kind != DDS_TK_STRING) {
            return;
        }
        std::string copy(found.value.string.characters, found.value.string.length);
        REQUIRE(copy.size() == found.value.string.length);
    }

    const KOLT_TypePrograms *programs_;
    const std::uint8_t *bytes_;
    std::size_t size_;
};

// Written in every encapsulation and read again, the record is the same.
void check_round_trip(const KOLT_TypePrograms *programs, const void *record) {
    const DDS_TypeCode *const type = KOLT_TypePrograms_type(programs);
    AnyRecord again(type);
    for (const DDS_UnsignedShort encapsulation : encapsulations_of(type)) {
        const DDS_UnsignedLong size = KOLT_Cdr_serialized_size(programs, encapsulation, record);
        REQUIRE(size >= KOLT_Cdr_serialized_min_size(programs, encapsulation));
        REQUIRE(size <= KOLT_Cdr_serialized_max_size(programs, encapsulation));
        std::vector<DDS_Octet> bytes(size);
        std::size_t length = 0;
        REQUIRE(KOLT_Cdr_serialize(programs, encapsulation, record, bytes.data(), size, &length) !=
                0);
        REQUIRE(length == size);
        REQUIRE(
            !KOLT_Cdr_serialize(programs, encapsulation, record, bytes.data(), size - 1, &length));
        REQUIRE(KOLT_Cdr_serialize(programs, encapsulation, record, bytes.data(), size, &length));
        REQUIRE(KOLT_Cdr_deserialize(programs, bytes.data(), size, again.get()));
        REQUIRE(KOLT_Record_equals(type, record, again.get()));
    }
}

// The text has the announced size, and nothing is written where it does not fit.
void check_text(const DDS_DynamicData *data) {
    for (const DDS_PrintFormatKind kind :
         {DDS_DEFAULT_PRINT_FORMAT, DDS_XML_PRINT_FORMAT, DDS_JSON_PRINT_FORMAT}) {
        DDS_PrintFormatProperty property = DDS_PRINT_FORMAT_PROPERTY_DEFAULT;
        property.kind = kind;
        DDS_PrintFormat format;
        REQUIRE(DDS_PrintFormatProperty_to_print_format(&property, &format) == DDS_RETCODE_OK);
        DDS_UnsignedLong size = 0;
        REQUIRE(DDS_DynamicDataFormatter_to_string_w_format(data, nullptr, &size, &format) ==
                DDS_RETCODE_OK);
        std::vector<DDS_Char> text(size, '#');
        DDS_UnsignedLong length = size - 1;
        REQUIRE(DDS_DynamicDataFormatter_to_string_w_format(data, text.data(), &length, &format) ==
                DDS_RETCODE_OUT_OF_RESOURCES);
        REQUIRE(length == size && text[0] == '#');
        REQUIRE(DDS_DynamicDataFormatter_to_string_w_format(data, text.data(), &length, &format) ==
                DDS_RETCODE_OK);
        REQUIRE(length == size && std::strlen(text.data()) == size - 1);
    }
}

// The bytes as a dynamic value: the same as the record that was read from them.
void check_dynamic(const KOLT_TypePrograms *programs, const std::uint8_t *bytes, std::size_t size,
                   const void *record) {
    const DDS_TypeCode *const type = KOLT_TypePrograms_type(programs);
    const Value value(type);
    REQUIRE(DDS_DynamicData_from_cdr_buffer(value, as_chars(bytes),
                                            static_cast<DDS_UnsignedLong>(size)) == DDS_RETCODE_OK);
    FindFields(programs, bytes, size, value).run();
    for (const DDS_DataRepresentationId_t representation :
         {DDS_XCDR_DATA_REPRESENTATION, DDS_XCDR2_DATA_REPRESENTATION}) {
        const DDS_UnsignedShort encapsulation =
            DDS_TypeCode_get_native_encapsulation(type, representation);
        const std::vector<std::uint8_t> expected = checked_bytes(value, encapsulation);
        std::size_t length = 0;
        std::vector<DDS_Octet> written(expected.size());
        REQUIRE(KOLT_Cdr_serialize(programs, encapsulation, record, written.data(), written.size(),
                                   &length));
        REQUIRE(length == expected.size() && written == expected);
    }
    const Value copy(type);
    REQUIRE(DDS_DynamicData_copy(copy, value) == DDS_RETCODE_OK);
    REQUIRE(DDS_DynamicData_equals(copy, value));
    check_text(value);
    REQUIRE(DDS_DynamicData_clear_all_members(copy) == DDS_RETCODE_OK);
    const Value fresh(type);
    REQUIRE(DDS_DynamicData_equals(copy, fresh));
}

}  // namespace

bool check_sample(const DDS_TypeCode *type, const std::uint8_t *bytes, std::size_t size) {
    const ProgramsOf programs(type);
    AnyRecord record(type);
    if (!KOLT_Cdr_deserialize(programs, bytes, size, record.get())) {
        const Value value(type);
        REQUIRE(DDS_DynamicData_from_cdr_buffer(
                    value, as_chars(bytes), static_cast<DDS_UnsignedLong>(size)) != DDS_RETCODE_OK);
        const Value fresh(type);
        REQUIRE(DDS_DynamicData_equals(value, fresh));
        SearchMalformed(programs, bytes, size, value).run();
        DDS_Octet key[64];
        std::size_t length = sizeof(key);
        KOLT_Cdr_key_of_serialized(programs, bytes, size, DDS_BOOLEAN_FALSE, key, &length);
        return false;
    }
    check_round_trip(programs, record.get());
    check_keys(programs, bytes, size, record.get());
    check_dynamic(programs, bytes, size, record.get());
    return true;
}

}  // namespace support
