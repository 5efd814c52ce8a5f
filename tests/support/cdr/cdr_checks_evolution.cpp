// SPDX-License-Identifier: Apache-2.0
// Types of which one has a member more: each reads the other's bytes.
#include "support/cdr/cdr_checks.h"
#include "support/cdr/cdr_checks_parts.h"

namespace support {

void check_evolution(const DDS_TypeCode *type, const DDS_TypeCode *shorter,
                     const DDS_DynamicData *data) {
    const DDS_TypeCodeMember &last = type->members[shorter->member_count];
    const bool must_understand = last.is_key || last.is_must_understand;
    const ProgramsOf programs(type);
    const ProgramsOf shorter_programs(shorter);
    for (const DDS_UnsignedShort encapsulation : encapsulations_of(type)) {
        const std::vector<std::uint8_t> bytes = checked_bytes(data, encapsulation);
        AnyRecord full(type);
        AnyRecord record(shorter);
        REQUIRE(KOLT_Cdr_deserialize(programs, bytes.data(), bytes.size(), full.get()));
        const bool read =
            KOLT_Cdr_deserialize(shorter_programs, bytes.data(), bytes.size(), record.get()) != 0;
        if (type->extensibility == DDS_FINAL_EXTENSIBILITY) {
            continue;
        }
        const bool refused = type->extensibility == DDS_MUTABLE_EXTENSIBILITY && must_understand &&
                             DDS_DynamicData_member_exists(data, last.name, DDS_MEMBER_ID_INVALID);
        REQUIRE(read == !refused);
        if (!read) {
            continue;
        }
        REQUIRE(KOLT_Record_equals(shorter, full.get(), record.get()));
        // And back.
        const DDS_UnsignedLong size =
            KOLT_Cdr_serialized_size(shorter_programs, encapsulation, record.get());
        std::vector<DDS_Octet> short_bytes(size);
        std::size_t length = 0;
        REQUIRE(KOLT_Cdr_serialize(shorter_programs, encapsulation, record.get(),
                                   short_bytes.data(), size, &length));
        REQUIRE(KOLT_Cdr_deserialize(programs, short_bytes.data(), size, full.get()));
        REQUIRE(KOLT_Record_equals(shorter, full.get(), record.get()));
        check_sample(type, short_bytes.data(), size);
    }
}

}  // namespace support
