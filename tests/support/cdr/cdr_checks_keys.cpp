// SPDX-License-Identifier: Apache-2.0
// Each way to the key of a sample leads to the same key.
#include <cstring>

#include "support/cdr/cdr_checks.h"
#include "support/cdr/cdr_checks_parts.h"

namespace support {
namespace {

constexpr std::size_t kMaximumKey = 4096;

using Key = std::vector<DDS_Octet>;

// The form of a type, or of the key in it, on the wire.
struct KeyShape {
    bool is_framed = false;  // there is more than plain members
    bool varies = false;     // in size
};

void add_shape(const DDS_TypeCode &type, KeyShape *shape) {
    const bool structured = type.kind == DDS_TK_STRUCT || type.kind == DDS_TK_UNION;
    if (structured && type.extensibility != DDS_FINAL_EXTENSIBILITY) {
        shape->is_framed = true;
    }
    if (type.kind == DDS_TK_STRING || type.kind == DDS_TK_SEQUENCE || type.kind == DDS_TK_UNION) {
        shape->varies = true;
    }
    if (type.content_type != nullptr) {
        add_shape(*type.content_type, shape);
    }
    for (DDS_UnsignedLong i = 0; structured && i < type.member_count; ++i) {
        if (type.members[i].is_optional) {
            shape->varies = true;
        }
        add_shape(*type.members[i].type, shape);
    }
}

// An XCDR2 key is written plain, and read in the frames of its type as well. A plain one of another
// size than the framed ones can't pass for one of them; the rest may, by its content.
bool may_be_taken_for_framed(const DDS_TypeCode &type, DDS_UnsignedShort encapsulation) {
    KeyShape shape;
    shape.is_framed = type.extensibility != DDS_FINAL_EXTENSIBILITY;
    for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
        if (type.members[i].is_key) {
            add_shape(*type.members[i].type, &shape);
        }
    }
    return encapsulation >= KOLT_ENCAPSULATION_CDR2_BE && shape.is_framed && shape.varies;
}

// The payload is a sample, or its key only, and has this key.
void require_key(const KOLT_TypePrograms *programs, const std::uint8_t *bytes, std::size_t size,
                 DDS_Boolean key_only, const Key &expected) {
    Key key(kMaximumKey);
    std::size_t length = key.size();
    REQUIRE(KOLT_Cdr_key_of_serialized(programs, bytes, size, key_only, key.data(), &length));
    key.resize(length);
    REQUIRE(key == expected);
}

// Written as a key-only payload, and read again, the key of the record is the same.
void check_payloads(const KOLT_TypePrograms *programs, const void *record, const Key &expected) {
    const DDS_TypeCode *const type = KOLT_TypePrograms_type(programs);
    for (const DDS_UnsignedShort encapsulation : encapsulations_of(type)) {
        const DDS_UnsignedLong size = KOLT_Cdr_serialized_key_size(programs, encapsulation, record);
        std::vector<DDS_Octet> payload(size);
        std::size_t written = 0;
        REQUIRE(KOLT_Cdr_serialize_key(programs, encapsulation, record, payload.data(), size,
                                       &written));
        REQUIRE(written == size);
        if (!may_be_taken_for_framed(*type, encapsulation)) {
            require_key(programs, payload.data(), size, DDS_BOOLEAN_TRUE, expected);
        }
    }
}

// The key of a record. False when it is longer than the checks care for.
bool key_of_record(const KOLT_TypePrograms *programs, const void *record, Key *key) {
    key->resize(kMaximumKey);
    std::size_t length = key->size();
    if (!KOLT_Cdr_key_of_record(programs, record, key->data(), &length)) {
        REQUIRE(length > kMaximumKey);
        return false;
    }
    REQUIRE(length <= KOLT_Cdr_key_max_size(programs));
    key->resize(length);
    return true;
}

}  // namespace

void check_keys(const KOLT_TypePrograms *programs, const std::uint8_t *bytes, std::size_t size,
                const void *record) {
    Key expected;
    if (key_of_record(programs, record, &expected)) {
        require_key(programs, bytes, size, DDS_BOOLEAN_FALSE, expected);
        check_payloads(programs, record, expected);
    }
}

bool check_key(const DDS_TypeCode *type, const std::uint8_t *bytes, std::size_t size) {
    const ProgramsOf programs(type);
    AnyRecord record(type);
    Key key(kMaximumKey);
    std::size_t length = key.size();
    const bool has_key = KOLT_Cdr_key_of_serialized(programs, bytes, size, DDS_BOOLEAN_TRUE,
                                                    key.data(), &length) != 0;
    if (!KOLT_Cdr_deserialize_key(programs, bytes, size, record.get())) {
        REQUIRE(!has_key);
        return false;
    }
    Key expected;
    if (!key_of_record(programs, record.get(), &expected)) {
        REQUIRE(!has_key);
        return true;
    }
    REQUIRE(has_key);
    key.resize(length);
    REQUIRE(key == expected);
    check_payloads(programs, record.get(), expected);
    DDS_Octet hash[16];
    KOLT_Cdr_keyhash(programs, expected.data(), expected.size(), DDS_BOOLEAN_FALSE, hash);
    return true;
}

}  // namespace support
