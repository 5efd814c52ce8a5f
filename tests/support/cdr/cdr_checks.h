// The checks on the bytes of a sample of any type: each way to read them gives the same result.
// A check that fails says so on standard error and ends the process, for fuzzing as for tests.
#pragma once

#include <kolt/dynamic_data.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/cdr/random_types.h"

namespace support {

// The sample read, found field by field, keyed, rendered and written again. True when the bytes are
// a sample of the type.
bool check_sample(const DDS_TypeCode *type, const std::uint8_t *bytes, std::size_t size);

// The same for bytes that are a key-only payload. True when they are one.
bool check_key(const DDS_TypeCode *type, const std::uint8_t *bytes, std::size_t size);

// A value of the type, set member by member; what is set must be there afterwards.
void checked_fill(DDS_DynamicData *data, Decisions *decisions);

// The bytes of a value in an encapsulation of its type.
std::vector<std::uint8_t> checked_bytes(const DDS_DynamicData *data,
                                        DDS_UnsignedShort encapsulation);

// The four encapsulations in which a type is sent.
std::vector<DDS_UnsignedShort> encapsulations_of(const DDS_TypeCode *type);

// Bytes of the shorter version of a type read as the longer one, and the other way round: what both
// have is equal, and what the shorter one lacks has its initial value.
void check_evolution(const DDS_TypeCode *type, const DDS_TypeCode *shorter,
                     const DDS_DynamicData *data);

}  // namespace support
