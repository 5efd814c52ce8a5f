// SPDX-License-Identifier: Apache-2.0
// The checks on the bytes of a sample of any type: each way to read them gives the same result.
// A check that fails says so on standard error and ends the process, for fuzzing as for tests.
#pragma once

#include <kolt/dynamic_data.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/cdr/random_types.h"

namespace support {

// Reads the sample, finds its fields one by one, takes its key, renders it and writes it again.
// True when the bytes are a sample of the type.
bool check_sample(const DDS_TypeCode *type, const std::uint8_t *bytes, std::size_t size);

// Checks bytes as a key-only payload. True when they are one.
bool check_key(const DDS_TypeCode *type, const std::uint8_t *bytes, std::size_t size);

// Sets a value member by member; each member must be there afterwards.
void checked_fill(DDS_DynamicData *data, Decisions *decisions);

// Returns the bytes of a value in an encapsulation of its type.
std::vector<std::uint8_t> checked_bytes(const DDS_DynamicData *data,
                                        DDS_UnsignedShort encapsulation);

// Returns the encapsulations in which a type is sent.
std::vector<DDS_UnsignedShort> encapsulations_of(const DDS_TypeCode *type);

// Reads bytes of the longer version of a type as the shorter one, and the other way round. Members
// of both are equal, and the member that the shorter one lacks has its initial value.
void check_evolution(const DDS_TypeCode *type, const DDS_TypeCode *shorter,
                     const DDS_DynamicData *data);

}  // namespace support
