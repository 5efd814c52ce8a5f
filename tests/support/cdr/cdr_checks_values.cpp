// SPDX-License-Identifier: Apache-2.0
// Values of any type, filled by decisions, and their bytes.
#include "support/cdr/cdr_checks.h"
#include "support/cdr/cdr_checks_parts.h"
#include "support/cdr/cdr_field_walk.h"

namespace support {
namespace {

// Sets every field that the decisions don't leave out.
class FillFields : FieldWalk {
  public:
    FillFields(DDS_DynamicData *data, Decisions *decisions)
        : FieldWalk(data), decisions_(*decisions) {}

    void run() { walk(*DDS_DynamicData_get_type(data_)); }

  private:
    DDS_UnsignedLong branch_of(const DDS_TypeCode &type) override {
        const DDS_UnsignedLong branch = decisions_.below(type.member_count + 1);
        if (branch == type.member_count) {
            select_nothing(type);
        }
        return branch;
    }

    // Sets a discriminator without a branch, where its type has such a value.
    void select_nothing(const DDS_TypeCode &type) {
        const std::string name = name_.empty() ? "_d" : name_ + "._d";
        const DDS_ReturnCode_t result = DDS_DynamicData_set_longlong(
            data_, name.c_str(), DDS_MEMBER_ID_INVALID, DDS_LongLong{100});
        const DDS_TCKind kind = type.discriminator_type->kind;
        const bool fits = kind != DDS_TK_ENUM && kind != DDS_TK_BOOLEAN;
        REQUIRE((result == DDS_RETCODE_OK) == fits);
    }

    bool enter_optional() override { return decisions_.below(3) != 2; }

    DDS_UnsignedLong sequence_length(const DDS_TypeCode &type) override {
        const DDS_UnsignedLong length =
            decisions_.below(type.bound == 0 ? 4 : (type.bound < 200 ? type.bound + 1 : 8));
        REQUIRE(DDS_DynamicData_set_length(data_, length, name_.c_str(), DDS_MEMBER_ID_INVALID) ==
                DDS_RETCODE_OK);
        if (type.bound > 0) {
            REQUIRE(DDS_DynamicData_set_length(data_, type.bound + 1, name_.c_str(),
                                               DDS_MEMBER_ID_INVALID) == DDS_RETCODE_BAD_PARAMETER);
        }
        return length;
    }

    void leaf(const DDS_TypeCode &type) override {
        const char *const name = name_.c_str();
        switch (type.kind) {
            case DDS_TK_STRING:
                set_string(type);
                break;
            case DDS_TK_FLOAT: {
                const auto value = static_cast<DDS_Float>(decisions_.byte()) / 8;
                REQUIRE(DDS_DynamicData_set_float(data_, name, DDS_MEMBER_ID_INVALID, value) ==
                        DDS_RETCODE_OK);
                break;
            }
            case DDS_TK_DOUBLE: {
                const auto value = static_cast<DDS_Double>(decisions_.word()) / 3;
                REQUIRE(DDS_DynamicData_set_double(data_, name, DDS_MEMBER_ID_INVALID, value) ==
                        DDS_RETCODE_OK);
                break;
            }
            case DDS_TK_ULONGLONG:
                REQUIRE(DDS_DynamicData_set_ulonglong(data_, name, DDS_MEMBER_ID_INVALID,
                                                      decisions_.word()) == DDS_RETCODE_OK);
                break;
            default: {
                const DDS_LongLong value = integer(type);
                REQUIRE(DDS_DynamicData_set_longlong(data_, name, DDS_MEMBER_ID_INVALID, value) ==
                        DDS_RETCODE_OK);
                DDS_LongLong read = 0;
                REQUIRE(DDS_DynamicData_get_longlong(data_, &read, name, DDS_MEMBER_ID_INVALID) ==
                        DDS_RETCODE_OK);
                REQUIRE(read == value);
                break;
            }
        }
    }

    DDS_LongLong integer(const DDS_TypeCode &type) {
        switch (type.kind) {
            case DDS_TK_BOOLEAN:
                return decisions_.below(2);
            case DDS_TK_CHAR:
                return static_cast<std::int8_t>(decisions_.byte());
            case DDS_TK_OCTET:
                return decisions_.byte();
            case DDS_TK_SHORT:
                return static_cast<std::int16_t>(decisions_.word());
            case DDS_TK_USHORT:
                return static_cast<std::uint16_t>(decisions_.word());
            case DDS_TK_LONG:
                return static_cast<std::int32_t>(decisions_.word());
            case DDS_TK_ULONG:
                return static_cast<std::uint32_t>(decisions_.word());
            case DDS_TK_ENUM:
                return type.members[decisions_.below(type.member_count)].ordinal;
            default:
                return static_cast<DDS_LongLong>(decisions_.word());
        }
    }

    void set_string(const DDS_TypeCode &type) {
        std::string text(decisions_.below(type.bound == 0 ? 20 : type.bound % 256 + 1), '\0');
        for (char &character : text) {
            const std::uint8_t byte = decisions_.byte();
            character = static_cast<char>(byte == 0 ? 'a' : byte);
        }
        REQUIRE(DDS_DynamicData_set_string(data_, name_.c_str(), DDS_MEMBER_ID_INVALID,
                                           text.c_str()) == DDS_RETCODE_OK);
        DDS_UnsignedLong length = 0;
        REQUIRE(DDS_DynamicData_get_length(data_, &length, name_.c_str(), DDS_MEMBER_ID_INVALID) ==
                DDS_RETCODE_OK);
        REQUIRE(length == text.size());
    }

    Decisions &decisions_;
};

}  // namespace

std::vector<DDS_UnsignedShort> encapsulations_of(const DDS_TypeCode *type) {
    std::vector<DDS_UnsignedShort> all;
    for (const DDS_DataRepresentationId_t representation :
         {DDS_XCDR_DATA_REPRESENTATION, DDS_XCDR2_DATA_REPRESENTATION}) {
        const DDS_UnsignedShort native =
            DDS_TypeCode_get_native_encapsulation(type, representation);
        if (native == KOLT_ENCAPSULATION_INVALID) {
            continue;
        }
        all.push_back(native);
        all.push_back(native ^ 1U);
    }
    return all;
}

void checked_fill(DDS_DynamicData *data, Decisions *decisions) {
    FillFields(data, decisions).run();
}

std::vector<std::uint8_t> checked_bytes(const DDS_DynamicData *data,
                                        DDS_UnsignedShort encapsulation) {
    const DDS_TypeCode *const type = DDS_DynamicData_get_type(data);
    const bool second = encapsulation >= KOLT_ENCAPSULATION_CDR2_BE;
    const DDS_DataRepresentationId_t representation =
        second ? DDS_XCDR2_DATA_REPRESENTATION : DDS_XCDR_DATA_REPRESENTATION;
    DDS_UnsignedLong length = 0;
    REQUIRE(DDS_DynamicData_to_cdr_buffer_ex(data, nullptr, &length, representation) ==
            DDS_RETCODE_OK);
    std::vector<std::uint8_t> bytes(length);
    REQUIRE(DDS_DynamicData_to_cdr_buffer_ex(data, reinterpret_cast<DDS_Char *>(bytes.data()),
                                             &length, representation) == DDS_RETCODE_OK);
    REQUIRE(length == bytes.size());
    if (encapsulation == DDS_TypeCode_get_native_encapsulation(type, representation)) {
        return bytes;
    }
    // The other byte order is the codec's alone.
    const ProgramsOf programs(type);
    AnyRecord record(type);
    REQUIRE(KOLT_Cdr_deserialize(programs, bytes.data(), bytes.size(), record.get()));
    std::size_t written = 0;
    REQUIRE(KOLT_Cdr_serialize(programs, encapsulation, record.get(), bytes.data(), bytes.size(),
                               &written));
    REQUIRE(written == bytes.size());
    return bytes;
}

}  // namespace support
