// SPDX-License-Identifier: Apache-2.0
// The codec as the rest of the library sees it: programs of a type, and bodies without their
// encapsulation header.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "type/cdr/cdr_program.hpp"

// Everything that is compiled from one type code. Immutable but for the count of references, which
// the list's lock guards.
struct KOLT_TypePrograms {
    const DDS_TypeCode *type = nullptr;
    std::size_t references = 0;
    // By XcdrVersion, from 0: the big-endian identifier, KOLT_ENCAPSULATION_INVALID for a
    // representation that the type does not allow.
    DDS_UnsignedShort encapsulation[2] = {KOLT_ENCAPSULATION_INVALID, KOLT_ENCAPSULATION_INVALID};
    kolt::type::WriteProgram write[2];
    kolt::type::ReadProgram read[2];
    // The key inside the frames of the type's own representation, and the plain XCDR2 key.
    kolt::type::WriteProgram write_key1;
    kolt::type::ReadProgram read_key[2];
    kolt::type::WriteProgram write_plain_key;
    kolt::type::ReadProgram read_plain_key;
    DDS_UnsignedLong key_max_size = 0;
    bool key_owns_memory = false;  // a record that holds nothing but a key must be finalised
};

namespace kolt::type {

// An encapsulation identifier taken apart.
struct Encapsulation {
    XcdrVersion version = XcdrVersion::k1;
    bool big_endian = false;
    bool plain_key = false;  // plain XCDR2 around the key of a type that is not final
};

enum class Part { kSample, kKey };

// False for an identifier under which the type is not sent: unknown, of a representation that the
// type does not allow, or of another extensibility. A key may also come as plain XCDR2.
bool resolve_encapsulation(const KOLT_TypePrograms &programs, DDS_UnsignedShort identifier,
                           Part part, Encapsulation *encapsulation);

// Bodies begin at an alignment of 0 and have no padding at their end.
bool encode_body(const KOLT_TypePrograms &programs, const Encapsulation &encapsulation, Part part,
                 const void *record, DDS_Octet *buffer, std::size_t capacity, std::size_t *length);
bool measure_body(const KOLT_TypePrograms &programs, const Encapsulation &encapsulation, Part part,
                  const void *record, std::size_t start, std::size_t *length);
// Return the size of a body; UINT64_MAX where KOLT_CDR_MAX_SERIALIZED_SIZE_UNBOUNDED will stand.
std::uint64_t largest_body(const KOLT_TypePrograms &programs, const Encapsulation &encapsulation,
                           Part part, std::size_t start);
std::uint64_t smallest_body(const KOLT_TypePrograms &programs, const Encapsulation &encapsulation,
                            Part part, std::size_t start);

bool decode_sample(const KOLT_TypePrograms &programs, const Encapsulation &encapsulation,
                   const DDS_Octet *bytes, std::size_t length, void *record);
// The key members of a sample.
bool decode_key_of_sample(const KOLT_TypePrograms &programs, const Encapsulation &encapsulation,
                          const DDS_Octet *bytes, std::size_t length, void *record);
// A key-only body.
bool decode_key(const KOLT_TypePrograms &programs, const Encapsulation &encapsulation,
                const DDS_Octet *bytes, std::size_t length, void *record);

// The encapsulation header of `bytes`; `*body_length` is what follows it, less the padding that its
// options tell of.
bool read_header(const DDS_Octet *bytes, std::size_t length, DDS_UnsignedShort *identifier,
                 std::size_t *body_length);
// The options say how many bytes of padding make the body a multiple of 4 (XTypes 7.6.3.1.2). The
// padding itself is added where the payload leaves for the wire.
void write_header(DDS_UnsignedShort identifier, std::size_t body_length, DDS_Octet *header);

// The canonical key (big-endian plain XCDR2). `*length` in: capacity, out: bytes needed.
bool canonical_key(const KOLT_TypePrograms &programs, const void *record, DDS_Octet *key,
                   std::size_t *length);

// A size for the C functions.
DDS_UnsignedLong saturate_size(std::uint64_t size);

}  // namespace kolt::type
