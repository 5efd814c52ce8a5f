// SPDX-License-Identifier: Apache-2.0
// Small types with every feature that the type layer knows, as records and type codes.
#pragma once

#include <kolt/cdr.h>
#include <kolt/sequence.h>
#include <kolt/typecode.h>

#include <cstdint>
#include <string>
#include <vector>

namespace support {

// @appendable enum Color { RED = 1, GREEN = 2, BLUE = 5 }
enum Color : DDS_Enum { RED = 1, GREEN = 2, BLUE = 5 };  // NOLINT: as the IDL has them
const DDS_TypeCode *color_type();

// @appendable struct Id { @key long host; @key long app; }
struct Id {
    DDS_Long host;
    DDS_Long app;
};
const DDS_TypeCode *id_type();

// @mutable struct Message { @key Id id; @key long level; string<16> category; string<64> text;
//                           long long number; }
struct Message {
    Id id;
    DDS_Long level;
    DDS_Char *category;
    DDS_Char *text;
    DDS_LongLong number;
};
const DDS_TypeCode *message_type();

// @final struct Point { short x; short y; }
struct Point {
    DDS_Short x;
    DDS_Short y;
};
const DDS_TypeCode *point_type();
KOLT_SEQUENCE_DECLARE(PointSeq, Point, );
KOLT_SEQUENCE_DECLARE(IdSeq, Id, );

// @final struct Everything { ... }: all kinds, in an order that needs padding everywhere.
struct Everything {
    DDS_Boolean flag;
    DDS_LongLong wide;
    DDS_Octet octet;
    DDS_Double real;
    DDS_Char letter;
    DDS_Short small;
    DDS_UnsignedShort positive;
    DDS_UnsignedLong word;
    DDS_UnsignedLongLong largest;
    DDS_Float single;
    DDS_Enum color;
    DDS_Char *text;           // string
    DDS_Long matrix[2][3];    // long matrix[2][3]
    Point points[2];          // Point points[2]
    DDS_Enum colors[2];       // Color colors[2]
    DDS_OctetSeq octets;      // sequence<octet, 8>
    DDS_LongLongSeq numbers;  // sequence<long long>
    DDS_StringSeq names;      // sequence<string<8>, 4>
    PointSeq path;            // sequence<Point, 3>
    Id id;                    // an appendable structure
};
const DDS_TypeCode *everything_type();

// union Choice switch (long) { case 0: long number; case 1: case 2: sequence<Id, 5> ids;
//                              case 3: string<8> text; }, in each extensibility.
// NOLINTBEGIN(readability-identifier-naming): unions are as they are mapped to C
struct Choice {
    DDS_Long _d;
    struct {
        DDS_Long number;
        IdSeq ids;
        DDS_Char *text;
    } _u;
};
// NOLINTEND(readability-identifier-naming)
const DDS_TypeCode *final_choice_type();
const DDS_TypeCode *appendable_choice_type();
const DDS_TypeCode *mutable_choice_type();

// @final union Fallback switch (octet) { case 1: long long wide; default: octet small; }
// NOLINTBEGIN(readability-identifier-naming)
struct Fallback {
    DDS_Octet _d;
    struct {
        DDS_LongLong wide;
        DDS_Octet small;
    } _u;
};
// NOLINTEND(readability-identifier-naming)
const DDS_TypeCode *fallback_type();

// struct Request { Id target; Choice choice; long after; }: @mutable around the mutable union,
// @final around the final one.
struct Request {
    Id target;
    Choice choice;
    DDS_Long after;
};
const DDS_TypeCode *mutable_request_type();
const DDS_TypeCode *final_request_type();

// struct Options { long always; @optional long number; @optional string<8> text;
//                  @optional Point point; octet last; }
struct Options {
    DDS_Long always;
    DDS_Long *number;
    DDS_Char **text;
    Point *point;
    DDS_Octet last;
};
const DDS_TypeCode *final_options_type();
const DDS_TypeCode *appendable_options_type();
const DDS_TypeCode *mutable_options_type();

// Two versions of a type, appendable and mutable.
struct Version1 {
    DDS_Long a;
    DDS_Char *name;  // string<8>
};
struct Version2 {
    DDS_Long a;
    DDS_Char *name;    // string<8>
    DDS_Short b;       // @default 7
    DDS_Char *extra;   // string<8>, @default "none"
    DDS_LongSeq more;  // sequence<long, 4>
};
const DDS_TypeCode *appendable_version1_type();
const DDS_TypeCode *appendable_version2_type();
const DDS_TypeCode *mutable_version1_type();
const DDS_TypeCode *mutable_version2_type();
// mutable_version2_type() with a member `b` that must be understood.
const DDS_TypeCode *strict_version2_type();

// @mutable struct Holder { @key string<32> name; @key Id id; Point where; } with ids 30, 20, 10,
// and the same as @final and @appendable.
struct Holder {
    DDS_Char *name;
    Id id;
    Point where;
};
const DDS_TypeCode *mutable_holder_type();
const DDS_TypeCode *final_holder_type();
const DDS_TypeCode *appendable_holder_type();

// @mutable struct Large { sequence<octet> data; @id(0x3f01) long far;
//                         @id(0x0ffffff0) long farther; }
struct Large {
    DDS_OctetSeq data;
    DDS_Long far;
    DDS_Long farther;
};
const DDS_TypeCode *large_type();

// @mutable struct Collections { sequence<long long, 4> wide; sequence<double, 4> reals;
//     sequence<long, 4> numbers; sequence<octet, 8> octets; long triple[3]; long long pair[2];
//     octet four[4]; short half; octet one; }
struct Collections {
    DDS_LongLongSeq wide;
    DDS_DoubleSeq reals;
    DDS_LongSeq numbers;
    DDS_OctetSeq octets;
    DDS_Long triple[3];
    DDS_LongLong pair[2];
    DDS_Octet four[4];
    DDS_Short half;
    DDS_Octet one;
};
const DDS_TypeCode *collections_type();

// A value initialised by its type code and finalised with the scope.
template <typename T>
class Record {
  public:
    explicit Record(const DDS_TypeCode *type) : type_(type), value_{} {
        const DDS_TypeAllocationParams_t params = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
        ok_ = KOLT_Record_initialize_w_params(type, &value_, &params) != 0;
    }
    ~Record() {
        const DDS_TypeDeallocationParams_t params = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;
        KOLT_Record_finalize_w_params(type_, &value_, &params);
    }
    Record(const Record &) = delete;
    Record &operator=(const Record &) = delete;

    bool ok() const { return ok_; }
    T *operator->() { return &value_; }
    T *get() { return &value_; }

  private:
    const DDS_TypeCode *type_;
    T value_;
    bool ok_ = false;
};

// A reference on the programs of a type.
class Programs {
  public:
    explicit Programs(const DDS_TypeCode *type) : programs_(KOLT_TypePrograms_acquire(type)) {}
    ~Programs() { KOLT_TypePrograms_release(programs_); }
    Programs(const Programs &) = delete;
    Programs &operator=(const Programs &) = delete;
    operator const KOLT_TypePrograms *() const { return programs_; }

  private:
    const KOLT_TypePrograms *programs_;
};

using Bytes = std::vector<std::uint8_t>;

// "00 07 0000 'abc' 00": hexadecimal digits, white space ignored, text in single quotes.
Bytes from_hex(const std::string &hex);
std::string to_hex(const Bytes &bytes);

// Returns the serialised bytes of a record; empty when it can't be serialised.
Bytes serialize(const KOLT_TypePrograms *programs, unsigned encapsulation, const void *record);
Bytes serialize_key(const KOLT_TypePrograms *programs, unsigned encapsulation, const void *record);

// Sets a string member that has a buffer.
void set_text(DDS_Char *buffer, const char *text);

// An Everything with a value everywhere.
void fill_everything(Everything *record);

}  // namespace support
