// SPDX-License-Identifier: Apache-2.0
// Bodies to bytes and back: chooses the program and the byte order.
#include "type/cdr/cdr_codec.hpp"

#include <algorithm>
#include <bit>
#include <utility>

#include "type/cdr/cdr_reader.hpp"
#include "type/cdr/cdr_writer.hpp"

namespace kolt::type {
namespace {

constexpr bool kNativeIsBig = std::endian::native == std::endian::big;

std::size_t version_index(const Encapsulation &encapsulation) {
    return encapsulation.version == XcdrVersion::k2 ? 1 : 0;
}

// The key that goes with dispose and unregister: XCDR1 keeps the frames of the type. XCDR2 is the
// plain key, under the identifier of the type: that is what the engine's own types send and accept.
const WriteProgram &writer_of(const KOLT_TypePrograms &programs, const Encapsulation &encapsulation,
                              Part part) {
    if (part == Part::kSample) {
        return programs.write[version_index(encapsulation)];
    }
    return encapsulation.version == XcdrVersion::k1 ? programs.write_key1
                                                    : programs.write_plain_key;
}

template <bool kSwap>
bool encode_to(const WriteProgram &program, const void *record, DDS_Octet *buffer,
               std::size_t capacity, std::size_t *length) {
    BufferSink<kSwap> sink(buffer, capacity);
    if (!Writer(program, &sink).write(record)) {
        return false;
    }
    *length = sink.position();
    return true;
}

bool encode(const WriteProgram &program, bool big_endian, const void *record, DDS_Octet *buffer,
            std::size_t capacity, std::size_t *length) {
    return big_endian == kNativeIsBig ? encode_to<false>(program, record, buffer, capacity, length)
                                      : encode_to<true>(program, record, buffer, capacity, length);
}

bool measure(const WriteProgram &program, const void *record, std::size_t start,
             std::size_t *length) {
    CountSink sink(start);
    if (!Writer(program, &sink).write(record)) {
        return false;
    }
    *length = sink.position() - start;
    return *length < KOLT_CDR_MAX_SERIALIZED_SIZE_UNBOUNDED;
}

template <bool kSwap>
bool decode_from(const ReadProgram &program, ReadMode mode, const DDS_Octet *bytes,
                 std::size_t length, void *record, std::size_t *left) {
    Reader<kSwap> reader(program, bytes, length, mode);
    if (!reader.read(record)) {
        return false;
    }
    *left = reader.left();
    return true;
}

bool decode(const ReadProgram &program, ReadMode mode, bool big_endian, const DDS_Octet *bytes,
            std::size_t length, void *record, std::size_t *left) {
    try {
        return big_endian == kNativeIsBig
                   ? decode_from<false>(program, mode, bytes, length, record, left)
                   : decode_from<true>(program, mode, bytes, length, record, left);
    } catch (...) {  // out of memory
        return false;
    }
}

// True when the last `left` bytes of a key-only body are padding: of the payload to a multiple of 4, or
// of a key hash, which is the big-endian plain key with zeros behind it (RTPS 2.3, 9.6.3.8).
bool is_padding(const Encapsulation &encapsulation, const DDS_Octet *bytes, std::size_t length,
                std::size_t left) {
    constexpr std::size_t kKeyHashSize = 16;
    if (left == 0 || (left < 4 && length % 4 == 0)) {
        return true;
    }
    return encapsulation.version == XcdrVersion::k2 && encapsulation.big_endian &&
           length == kKeyHashSize &&
           std::all_of(bytes + length - left, bytes + length, [](DDS_Octet b) { return b == 0; });
}

}  // namespace

bool resolve_encapsulation(const KOLT_TypePrograms &programs, DDS_UnsignedShort identifier,
                           Part part, Encapsulation *encapsulation) {
    if (identifier == KOLT_ENCAPSULATION_INVALID) {
        return false;
    }
    const auto big = static_cast<std::uint16_t>(identifier & ~1U);
    encapsulation->big_endian = (identifier & 1U) == 0;
    encapsulation->plain_key = false;
    if (big == programs.encapsulation[0]) {
        encapsulation->version = XcdrVersion::k1;
        return true;
    }
    encapsulation->version = XcdrVersion::k2;
    if (big == programs.encapsulation[1]) {
        return true;
    }
    encapsulation->plain_key = part == Part::kKey && big == KOLT_ENCAPSULATION_CDR2_BE;
    return encapsulation->plain_key;
}

bool encode_body(const KOLT_TypePrograms &programs, const Encapsulation &encapsulation, Part part,
                 const void *record, DDS_Octet *buffer, std::size_t capacity, std::size_t *length) {
    return encode(writer_of(programs, encapsulation, part), encapsulation.big_endian, record,
                  buffer, capacity, length) &&
           *length < KOLT_CDR_MAX_SERIALIZED_SIZE_UNBOUNDED;
}

bool measure_body(const KOLT_TypePrograms &programs, const Encapsulation &encapsulation, Part part,
                  const void *record, std::size_t start, std::size_t *length) {
    return measure(writer_of(programs, encapsulation, part), record, start, length);
}

std::uint64_t largest_body(const KOLT_TypePrograms &programs, const Encapsulation &encapsulation,
                           Part part, std::size_t start) {
    const std::uint64_t end = maximum_end(writer_of(programs, encapsulation, part), start);
    return end == UINT64_MAX ? end : end - start;
}

std::uint64_t smallest_body(const KOLT_TypePrograms &programs, const Encapsulation &encapsulation,
                            Part part, std::size_t start) {
    const std::uint64_t end = minimum_end(writer_of(programs, encapsulation, part), start);
    return end == UINT64_MAX ? end : end - start;
}

bool decode_sample(const KOLT_TypePrograms &programs, const Encapsulation &encapsulation,
                   const DDS_Octet *bytes, std::size_t length, void *record) {
    std::size_t left = 0;
    return decode(programs.read[version_index(encapsulation)], ReadMode::kAll,
                  encapsulation.big_endian, bytes, length, record, &left);
}

bool decode_key_of_sample(const KOLT_TypePrograms &programs, const Encapsulation &encapsulation,
                          const DDS_Octet *bytes, std::size_t length, void *record) {
    std::size_t left = 0;
    return !is_keyed(*programs.type) ||
           decode(programs.read[version_index(encapsulation)], ReadMode::kKeys,
                  encapsulation.big_endian, bytes, length, record, &left);
}

// An XCDR2 key comes in one of two forms under one identifier: in the frames of the type, as the
// standard has it, or plain, as the engine's own types send it. The frames count their bytes, so
// that a plain key doesn't pass for a framed one; nor does a broken frame pass for a plain key, with
// nothing left behind it.
bool decode_key(const KOLT_TypePrograms &programs, const Encapsulation &encapsulation,
                const DDS_Octet *bytes, std::size_t length, void *record) {
    if (!is_keyed(*programs.type)) {
        return true;
    }
    std::size_t left = 0;
    if (!encapsulation.plain_key &&
        decode(programs.read_key[version_index(encapsulation)], ReadMode::kStrictKeys,
               encapsulation.big_endian, bytes, length, record, &left) &&
        is_padding(encapsulation, bytes, length, left)) {
        return true;
    }
    return encapsulation.version == XcdrVersion::k2 &&
           decode(programs.read_plain_key, ReadMode::kStrictKeys, encapsulation.big_endian, bytes,
                  length, record, &left) &&
           is_padding(encapsulation, bytes, length, left);
}

bool read_header(const DDS_Octet *bytes, std::size_t length, DDS_UnsignedShort *identifier,
                 std::size_t *body_length) {
    if (length < KOLT_ENCAPSULATION_HEADER_SIZE) {
        return false;
    }
    *identifier = static_cast<DDS_UnsignedShort>((bytes[0] << 8) | bytes[1]);
    *body_length = length - KOLT_ENCAPSULATION_HEADER_SIZE;
    // Other lengths mean that the padding was not added yet or was taken off already.
    if (*body_length % 4 == 0) {
        const std::size_t padding = bytes[3] & 3U;
        if (padding > *body_length) {
            return false;
        }
        *body_length -= padding;
    }
    return true;
}

void write_header(DDS_UnsignedShort identifier, std::size_t body_length, DDS_Octet *header) {
    header[0] = static_cast<DDS_Octet>(identifier >> 8);
    header[1] = static_cast<DDS_Octet>(identifier & 0xff);
    header[2] = 0;
    header[3] = static_cast<DDS_Octet>((0 - body_length) & 3U);
}

bool canonical_key(const KOLT_TypePrograms &programs, const void *record, DDS_Octet *key,
                   std::size_t *length) {
    const std::size_t capacity = *length;
    if (encode(programs.write_plain_key, true, record, key, capacity, length)) {
        return true;
    }
    if (!measure(programs.write_plain_key, record, 0, length)) {
        *length = 0;
    }
    return false;
}

DDS_UnsignedLong saturate_size(std::uint64_t size) {
    return size < KOLT_CDR_MAX_SERIALIZED_SIZE_UNBOUNDED ? static_cast<DDS_UnsignedLong>(size)
                                                         : KOLT_CDR_MAX_SERIALIZED_SIZE_UNBOUNDED;
}

}  // namespace kolt::type
