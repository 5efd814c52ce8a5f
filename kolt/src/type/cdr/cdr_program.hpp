// SPDX-License-Identifier: Apache-2.0
// The programs that the codec compiles a type code into: one that writes and one that reads, for
// each representation and for each form of the key.
//
// A write program is flat: nested structures are inlined, headers of a constant value are
// constants, neighbouring primitives of one size are one run, and headers with the small primitives
// between them are one stretch. A read program keeps one operation per member, since the bytes may
// come from another version of the type, and beside it a flat body for what can't differ.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "kolt/cdr.h"
#include "kolt/typecode.h"

namespace kolt::type {

// DDS-XTypes 1.3, 7.4.1: version 1 aligns up to 8 bytes, version 2 up to 4.
enum class XcdrVersion : std::uint8_t { k1 = 1, k2 = 2 };

inline constexpr std::uint32_t kUnbounded = UINT32_MAX;
inline constexpr std::uint32_t kNone = UINT32_MAX;

enum class OpCode : std::uint8_t {
    // Both programs.
    kRun,                // `count` primitives of `width` bytes, side by side in memory
    kString,             // a string of at most `count` characters
    kPrimitiveSequence,  // a sequence of at most `count` primitives of `width` bytes
    kSequence,           // a sequence of at most `count` elements `index`
    kElements,           // an array of `count` elements `index`
    // Write programs.
    kConstants,     // `count` 32-bit numbers, from place `index` of the constants
    kStretch,       // stretch `index`
    kDelimited,     // a 32-bit byte count, then element `index` at `offset`
    kPresenceFlag,  // one byte: is the pointer at `offset` set
    kIfPresent,     // element `index` where the pointer at `offset` leads, unless it is NULL
    kParameter,     // XCDR1 parameter `constant` around element `index` at `offset`
    kSentinel,      // the end of an XCDR1 parameter list
    kSelect,        // the branch that selection `index` makes
    // Read programs.
    kAggregate,       // structure or union `index`
    kOptional,        // an optional member of a plain structure: element `index`
    kOptionalPresent  // an optional member whose parameter is there: element `index`
};

enum OpFlag : std::uint8_t {
    kOpHasDheader = 1,      // a byte count precedes the elements (XTypes 7.4.3.5.3, rule 12 and 13)
    kOpExactString = 2,     // the string fits its buffer exactly and is replaced, not filled
    kOpMustUnderstand = 4,  // kParameter: the flag of that name
    kOpOptional = 8,        // kParameter: `offset` holds a pointer; absent is an empty parameter
    kOpOptionalOmitted = 16  // kParameter: the same, but an absent one is left out
};

struct Op {
    OpCode code = OpCode::kRun;
    std::uint8_t width = 0;
    std::uint8_t alignment = 1;  // of the first byte on the wire
    std::uint8_t flags = 0;
    std::uint32_t count = 0;
    std::uint32_t index = kNone;
    std::uint32_t constant = 0;
    std::size_t offset =
        0;  // from the start of the record or element that the operation belongs to
};

struct Range {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
};

// Something that is written more than once, or inside a frame: an array or sequence element, the
// value of a parameter, the content of a delimiter.
struct WriteElement {
    Range ops;
    std::size_t stride = 0;  // bytes of an element in memory
};

// Members that a stretch copies from the record: `count` primitives of `width` bytes.
struct StretchField {
    std::size_t offset = 0;    // in the record
    std::size_t position = 0;  // in the stretch
    std::uint32_t count = 0;
    std::uint8_t width = 0;
};

// Bytes that are mostly known beforehand: 32-bit numbers, aligned to 4, with zeros where the fields
// go.
struct Stretch {
    Range words;   // of the constants
    Range fields;  // of the stretch fields
};

struct Selection {
    DDS_TCKind discriminator_kind = DDS_TK_NULL;
    std::size_t discriminator_offset = 0;
    std::vector<std::pair<std::int64_t, std::uint32_t>> cases;  // label, element
    std::uint32_t default_element = kNone;
};

struct WriteProgram {
    std::vector<Op> ops;
    std::vector<WriteElement> elements;
    std::vector<Selection> selections;
    std::vector<std::uint32_t> constants;
    std::vector<Stretch> stretches;
    std::vector<StretchField> fields;
    Range root;
    XcdrVersion version = XcdrVersion::k1;

    const Op *begin(Range range) const { return ops.data() + range.first; }
    const Op *end(Range range) const { return begin(range) + range.count; }
};

// How an aggregated type stands on the wire.
enum class Framing : std::uint8_t {
    kPlain,           // members one after the other, all of them
    kOpen,            // the same, but the end of the surrounding frame may cut the last ones off
    kDelimited,       // XCDR2 appendable: a byte count, then the members, possibly cut off
    kParameterList1,  // XCDR1 mutable
    kParameterList2   // XCDR2 mutable
};

struct ReadMember {
    Op op;
    std::uint32_t id = 0;
    DDS_UnsignedLong index = 0;  // in the type code
    bool is_key = false;
};

struct Aggregate {
    const DDS_TypeCode *type = nullptr;
    Framing framing = Framing::kPlain;
    bool is_union = false;
    bool is_keyed = false;
    Op discriminator;                    // union
    std::uint32_t discriminator_id = 0;  // mutable union
    std::vector<ReadMember> members;     // in the order of the wire
    std::vector<std::pair<std::uint32_t, std::uint32_t>>
        by_id;             // id and place in `members`, sorted
    std::vector<Op> body;  // all members, flat; a structure that is kPlain or has a fixed size
    std::uint32_t fixed_size = 0;  // bytes of the body if they are always the same, else 0
};

struct ReadElement {
    Op op;
    std::size_t stride = 0;
    std::size_t minimum_size =
        1;  // on the wire; never 0, so that bytes bound the number of elements
    const DDS_TypeCode *type = nullptr;
};

struct ReadProgram {
    std::vector<Aggregate> aggregates;
    std::vector<ReadElement> elements;
    Op root;
    XcdrVersion version = XcdrVersion::k1;
};

// How a program differs from the plain reading of the type code.
struct CompileOptions {
    XcdrVersion version = XcdrVersion::k1;
    bool key_only = false;     // key members only, in the order of their ids (XTypes 7.6.8)
    bool force_final = false;  // no frames around structures and unions
};

// Both throw std::bad_alloc. The type code is well formed.
WriteProgram compile_write(const DDS_TypeCode &type, const CompileOptions &options);
ReadProgram compile_read(const DDS_TypeCode &type, const CompileOptions &options);

// The extensibility that shows on the wire.
Framing framing_of(const DDS_TypeCode &type, const CompileOptions &options);
// Alignment of a primitive of `width` bytes.
std::uint8_t alignment_of(XcdrVersion version, std::size_t width);
// The members of a structure that a program handles, in its order.
std::vector<DDS_UnsignedLong> select_members(const DDS_TypeCode &type, bool key_only);
// The options for the type of a member: within a key, a structure that names keys of its own is
// reduced to them; collections and unions are keys as a whole.
CompileOptions nested_options(const DDS_TypeCode &type, const CompileOptions &options);
// Joins `op` to the run before it where both memory and wire allow.
void append_op(std::vector<Op> *ops, const Op &op);
// Arrays and sequences of anything but primitives carry a byte count in XCDR2.
bool needs_dheader(const DDS_TypeCode &element, XcdrVersion version);

// False (logged) for a type code that can't be compiled.
bool validate_type_code(const DDS_TypeCode &type);

// The largest and the smallest end position of what the program writes from `start`; saturates at
// UINT64_MAX.
std::uint64_t maximum_end(const WriteProgram &program, std::uint64_t start);
std::uint64_t minimum_end(const WriteProgram &program, std::uint64_t start);

// The discriminator of a mutable union is its member 0 (XTypes 7.3.1.2.1.1).
inline constexpr std::uint32_t kDiscriminatorId = 0;

// XCDR1 parameter headers (XTypes 7.4.1.2).
inline constexpr std::uint16_t kPidMustUnderstand = 0x4000;
inline constexpr std::uint16_t kPidMask = 0x3fff;
inline constexpr std::uint16_t kPidExtended = 0x3f01;
inline constexpr std::uint16_t kPidSentinel = 0x3f02;
inline constexpr std::uint16_t kPidIgnore = 0x3f03;
inline constexpr std::uint32_t kLargestShortId = 0x3f00;
inline constexpr std::uint32_t kLargestShortLength = 0xffff;
inline constexpr std::uint32_t kExtendedMustUnderstand = 0x40000000;
inline constexpr std::uint32_t kMemberIdMask = 0x0fffffff;

// XCDR2 member headers (XTypes 7.4.3.4.2).
inline constexpr std::uint32_t kEmheaderMustUnderstand = 0x80000000;
inline constexpr unsigned kEmheaderLengthShift = 28;
enum LengthCode : std::uint32_t {
    kLength1,
    kLength2,
    kLength4,
    kLength8,
    kLengthNext,
    kLengthShared,
    kLengthShared4,
    kLengthShared8
};

}  // namespace kolt::type
