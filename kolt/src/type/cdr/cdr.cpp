// SPDX-License-Identifier: Apache-2.0
// The exported codec functions: argument checks and the encapsulation header.
#include "kolt/cdr.h"

#include <cstring>

#include "type/cdr/cdr_codec.hpp"

namespace {

using kolt::type::Encapsulation;
using kolt::type::Part;

DDS_UnsignedLong with_header(std::uint64_t body) {
    return body == UINT64_MAX ? KOLT_CDR_MAX_SERIALIZED_SIZE_UNBOUNDED
                              : kolt::type::saturate_size(KOLT_ENCAPSULATION_HEADER_SIZE + body);
}

DDS_UnsignedLong size(const KOLT_TypePrograms *self, DDS_UnsignedShort identifier, Part part,
                      const void *record) {
    Encapsulation encapsulation;
    std::size_t body = 0;
    if (self == nullptr || record == nullptr ||
        !kolt::type::resolve_encapsulation(*self, identifier, part, &encapsulation) ||
        !kolt::type::measure_body(*self, encapsulation, part, record, 0, &body)) {
        return 0;
    }
    const DDS_UnsignedLong size = with_header(body);
    return size == KOLT_CDR_MAX_SERIALIZED_SIZE_UNBOUNDED ? 0 : size;
}

DDS_Boolean serialize(const KOLT_TypePrograms *self, DDS_UnsignedShort identifier, Part part,
                      const void *record, DDS_Octet *buffer, std::size_t capacity,
                      std::size_t *length) {
    Encapsulation encapsulation;
    if (self == nullptr || record == nullptr || buffer == nullptr || length == nullptr ||
        capacity < KOLT_ENCAPSULATION_HEADER_SIZE ||
        !kolt::type::resolve_encapsulation(*self, identifier, part, &encapsulation)) {
        return DDS_BOOLEAN_FALSE;
    }
    const std::size_t room = capacity - KOLT_ENCAPSULATION_HEADER_SIZE;
    DDS_Octet *const body = buffer + KOLT_ENCAPSULATION_HEADER_SIZE;
    std::size_t size = 0;
    if (!kolt::type::encode_body(*self, encapsulation, part, record, body, room, &size)) {
        return DDS_BOOLEAN_FALSE;
    }
    kolt::type::write_header(identifier, size, buffer);
    *length = KOLT_ENCAPSULATION_HEADER_SIZE + size;
    return DDS_BOOLEAN_TRUE;
}

template <typename Decode>
DDS_Boolean deserialize(const KOLT_TypePrograms *self, Part part, const DDS_Octet *bytes,
                        std::size_t length, void *record, Decode decode) {
    DDS_UnsignedShort identifier = 0;
    std::size_t body = 0;
    Encapsulation encapsulation;
    return self != nullptr && bytes != nullptr && record != nullptr &&
           kolt::type::read_header(bytes, length, &identifier, &body) &&
           kolt::type::resolve_encapsulation(*self, identifier, part, &encapsulation) &&
           decode(*self, encapsulation, bytes + KOLT_ENCAPSULATION_HEADER_SIZE, body, record);
}

}  // namespace

DDS_UnsignedLong KOLT_Cdr_serialized_size(const KOLT_TypePrograms *self,
                                          DDS_UnsignedShort encapsulation, const void *record) {
    return size(self, encapsulation, Part::kSample, record);
}

DDS_UnsignedLong KOLT_Cdr_serialized_key_size(const KOLT_TypePrograms *self,
                                              DDS_UnsignedShort encapsulation, const void *record) {
    return size(self, encapsulation, Part::kKey, record);
}

DDS_UnsignedLong KOLT_Cdr_serialized_max_size(const KOLT_TypePrograms *self,
                                              DDS_UnsignedShort encapsulation) {
    Encapsulation resolved;
    if (self == nullptr ||
        !kolt::type::resolve_encapsulation(*self, encapsulation, Part::kSample, &resolved)) {
        return 0;
    }
    return with_header(kolt::type::largest_body(*self, resolved, Part::kSample, 0));
}

DDS_UnsignedLong KOLT_Cdr_serialized_min_size(const KOLT_TypePrograms *self,
                                              DDS_UnsignedShort encapsulation) {
    Encapsulation resolved;
    if (self == nullptr ||
        !kolt::type::resolve_encapsulation(*self, encapsulation, Part::kSample, &resolved)) {
        return 0;
    }
    return with_header(kolt::type::smallest_body(*self, resolved, Part::kSample, 0));
}

DDS_Boolean KOLT_Cdr_serialize(const KOLT_TypePrograms *self, DDS_UnsignedShort encapsulation,
                               const void *record, DDS_Octet *buffer, std::size_t capacity,
                               std::size_t *length) {
    return serialize(self, encapsulation, Part::kSample, record, buffer, capacity, length);
}

DDS_Boolean KOLT_Cdr_serialize_key(const KOLT_TypePrograms *self, DDS_UnsignedShort encapsulation,
                                   const void *record, DDS_Octet *buffer, std::size_t capacity,
                                   std::size_t *length) {
    return serialize(self, encapsulation, Part::kKey, record, buffer, capacity, length);
}

DDS_Boolean KOLT_Cdr_deserialize(const KOLT_TypePrograms *self, const DDS_Octet *bytes,
                                 std::size_t length, void *record) {
    return deserialize(self, Part::kSample, bytes, length, record, kolt::type::decode_sample);
}

DDS_Boolean KOLT_Cdr_deserialize_key(const KOLT_TypePrograms *self, const DDS_Octet *bytes,
                                     std::size_t length, void *record) {
    return deserialize(self, Part::kKey, bytes, length, record, kolt::type::decode_key);
}
