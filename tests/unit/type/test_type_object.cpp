// SPDX-License-Identifier: Apache-2.0
// Descriptions of types: type objects, identifiers, TypeInformation, TypeMapping. The bytes here
// are written down by hand from DDS-XTypes 1.3; tests/interop/test_type_information.cpp holds the
// same code against another implementation.

#include <gtest/gtest.h>
#include <kolt/type_object.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "support/types/test_types.h"
#include "support/types/type_book.h"

namespace {

using support::Bytes;
using support::from_hex;
using support::MemberOf;
using support::to_hex;
using support::TypeBook;

// ---- Reading descriptions -----------------------------------------------------------------------

// Little-endian XCDR2, as far as descriptions need it.
class Input {
  public:
    explicit Input(const Bytes &bytes) : bytes_(bytes) {}

    std::uint32_t number() {
        position_ = (position_ + 3) / 4 * 4;
        const Bytes four = raw(4);
        return four[0] | std::uint32_t{four[1]} << 8 | std::uint32_t{four[2]} << 16 |
               std::uint32_t{four[3]} << 24;
    }
    Bytes raw(std::size_t count) {
        if (bytes_.size() - position_ < count) {
            ADD_FAILURE() << "the description ends at " << bytes_.size();
            return Bytes(count);
        }
        position_ += count;
        return Bytes(bytes_.begin() + static_cast<std::ptrdiff_t>(position_ - count),
                     bytes_.begin() + static_cast<std::ptrdiff_t>(position_));
    }
    std::size_t position() const { return position_; }
    bool is_at_end() const { return position_ == bytes_.size(); }

  private:
    const Bytes &bytes_;
    std::size_t position_ = 0;
};

constexpr std::size_t kIdentifierSize = 15;  // the kind and 14 bytes of a hash

struct Identified {
    Bytes identifier;
    Bytes object;
};

// A description taken apart.
struct Description {
    DDS_ReturnCode_t code = DDS_RETCODE_ERROR;
    std::vector<Identified> minimal, complete;
    std::vector<std::pair<Bytes, Bytes>> pairs;
    // Of the TypeInformation: the type, then its dependencies, each with its object's size.
    std::vector<std::pair<Bytes, std::uint32_t>> minimal_ids, complete_ids;
};

std::vector<Identified> read_objects(Input &input) {
    std::vector<Identified> objects;
    const std::uint32_t size = input.number();
    const std::size_t end = input.position() + size;
    for (std::uint32_t count = input.number(); count > 0; --count) {
        Identified next{input.raw(kIdentifierSize), {}};
        const std::uint32_t length = input.number();
        next.object = input.raw(length);
        objects.push_back(std::move(next));
    }
    EXPECT_EQ(input.position(), end);
    return objects;
}

std::pair<Bytes, std::uint32_t> read_id_with_size(Input &input) {
    EXPECT_EQ(input.number(), kIdentifierSize + 1 + 4);
    Bytes id = input.raw(kIdentifierSize);
    const std::uint32_t size = input.number();
    return {std::move(id), size};
}

std::vector<std::pair<Bytes, std::uint32_t>> read_ids(Input &input, std::uint32_t member) {
    std::vector<std::pair<Bytes, std::uint32_t>> ids;
    EXPECT_EQ(input.number(), 0x40000000U | member);
    EXPECT_GT(input.number(), 0U);  // length of the member
    EXPECT_GT(input.number(), 0U);  // of the appendable structure in it
    ids.push_back(read_id_with_size(input));
    const std::uint32_t count = input.number();
    EXPECT_GT(input.number(), 0U);  // of the sequence
    EXPECT_EQ(input.number(), count);
    for (std::uint32_t i = 0; i < count; ++i) {
        ids.push_back(read_id_with_size(input));
    }
    return ids;
}

Bytes bytes_of(const DDS_OctetSeq &seq) {
    const DDS_Octet *const buffer = DDS_OctetSeq_get_contiguous_buffer(&seq);
    return Bytes(buffer, buffer + DDS_OctetSeq_get_length(&seq));
}

Description describe(const DDS_TypeCode *type, const char *name) {
    Description result;
    DDS_OctetSeq information = DDS_SEQUENCE_INITIALIZER;
    DDS_OctetSeq mapping = DDS_SEQUENCE_INITIALIZER;
    result.code = KOLT_TypeObject_describe(type, name, &information, &mapping);
    const Bytes information_bytes = bytes_of(information);
    const Bytes mapping_bytes = bytes_of(mapping);
    DDS_OctetSeq_finalize(&information);
    DDS_OctetSeq_finalize(&mapping);
    if (result.code != DDS_RETCODE_OK) {
        return result;
    }

    Input objects(mapping_bytes);
    result.minimal = read_objects(objects);
    result.complete = read_objects(objects);
    const std::uint32_t size = objects.number();
    for (std::uint32_t count = objects.number(); count > 0; --count) {
        Bytes complete = objects.raw(kIdentifierSize);
        result.pairs.emplace_back(std::move(complete), objects.raw(kIdentifierSize));
    }
    EXPECT_EQ(size, 4 + result.pairs.size() * 2 * kIdentifierSize);
    EXPECT_TRUE(objects.is_at_end());

    Input ids(information_bytes);
    EXPECT_EQ(ids.number(), information_bytes.size() - 4);
    result.minimal_ids = read_ids(ids, 0x1001);
    result.complete_ids = read_ids(ids, 0x1002);
    EXPECT_TRUE(ids.is_at_end());
    return result;
}
Description describe(const DDS_TypeCode *type) {
    return describe(type, type->name);
}

// The minimal identifier of a member's type, as it stands in the minimal object around it.
std::string member_identifier(const DDS_TypeCode *type) {
    TypeBook book;
    const Description description =
        describe(book.structure("Holder", DDS_FINAL_EXTENSIBILITY, {{"m", 0, type}}));
    EXPECT_EQ(description.code, DDS_RETCODE_OK);
    if (description.minimal.empty()) {
        return {};
    }
    // Kinds 2, flags 2, DHEADER 4, base type 1 and 3, DHEADER 4, count 4, DHEADER 4, id 4, flags 2.
    const Bytes &object = description.minimal[0].object;
    // The name hash is last.
    return to_hex(Bytes(object.begin() + 30, object.end() - 4));
}

std::string hex(const std::string &text) {
    return to_hex(from_hex(text));
}

bool contains(const Bytes &bytes, const Bytes &part) {
    return std::search(bytes.begin(), bytes.end(), part.begin(), part.end()) != bytes.end();
}

// ---- Whole objects ------------------------------------------------------------------------------

// @final struct Point { short x; short y; }. The name hashes are the first bytes of MD5("x"),
// 9dd4e461..., and MD5("y"), 41529076...
TEST(TypeObject, MinimalStructure) {
    const Description point = describe(support::point_type());
    ASSERT_EQ(point.minimal.size(), 1U);
    EXPECT_EQ(to_hex(point.minimal[0].object),
              hex("f1 51  0100"          // minimal, structure; final
                  "01000000 00  000000"  // header: no base type
                  "23000000 02000000"    // members
                  "0b000000 00000000 0100 03 9dd4e461 00"
                  "0b000000 01000000 0100 03 41529076"));
}

TEST(TypeObject, CompleteStructure) {
    const Description point = describe(support::point_type());
    ASSERT_EQ(point.complete.size(), 1U);
    EXPECT_EQ(to_hex(point.complete[0].object),
              hex("f2 51  0100"
                  "14000000 00 00 00 00 0c000000 'Test::Point' 00"  // no annotations; the name
                  "2c000000 02000000"
                  "10000000 00000000 0100 03 00 02000000 'x' 00 00 00"
                  "10000000 01000000 0100 03 00 02000000 'y' 00 00 00"));
}

// @appendable enum Color { RED = 1, GREEN = 2, BLUE = 5 }
TEST(TypeObject, Enumeration) {
    TypeBook book;
    const Description description = describe(book.structure("Painted", DDS_MUTABLE_EXTENSIBILITY,
                                                            {{"color", 0, support::color_type()}}));
    ASSERT_EQ(description.minimal.size(), 2U);
    EXPECT_EQ(to_hex(description.minimal[1].object),
              hex("f1 40  0200"
                  "02000000 2000 0000"  // 32 bits
                  "3e000000 03000000"
                  "0e000000 06000000 01000000 0000 a2d9547b 0000"
                  "0e000000 06000000 02000000 0000 9de0e5dd 0000"
                  "0e000000 06000000 05000000 0000 1b3e1ee9"));
}

// "the member name "color" has NameHash {0x70, 0xDD, 0xA5, 0xDF}" (XTypes 1.3, Annex B).
TEST(TypeObject, NameHashOfTheStandardsExample) {
    TypeBook book;
    const Description description = describe(book.structure("Painted", DDS_MUTABLE_EXTENSIBILITY,
                                                            {{"color", 0, support::color_type()}}));
    ASSERT_EQ(description.minimal.size(), 2U);
    EXPECT_TRUE(contains(description.minimal[0].object, from_hex("70dda5df")));
}

// ---- Identifiers --------------------------------------------------------------------------------

TEST(TypeIdentifier, Primitives) {
    const std::pair<DDS_TCKind, const char *> kinds[] = {
        {DDS_TK_BOOLEAN, "01"}, {DDS_TK_OCTET, "02"},     {DDS_TK_SHORT, "03"},
        {DDS_TK_LONG, "04"},    {DDS_TK_LONGLONG, "05"},  {DDS_TK_USHORT, "06"},
        {DDS_TK_ULONG, "07"},   {DDS_TK_ULONGLONG, "08"}, {DDS_TK_FLOAT, "09"},
        {DDS_TK_DOUBLE, "0a"},  {DDS_TK_CHAR, "10"}};
    for (const auto &[kind, identifier] : kinds) {
        EXPECT_EQ(member_identifier(TypeBook::primitive(kind)), identifier) << kind;
    }
}

TEST(TypeIdentifier, Strings) {
    TypeBook book;
    EXPECT_EQ(member_identifier(book.string()), hex("70 00"));
    EXPECT_EQ(member_identifier(book.string(255)), hex("70 ff"));
    EXPECT_EQ(member_identifier(book.string(256)), hex("71 00 00010000"));  // aligned by one byte
}

// The element's kind of equivalence, 0xf3 for what has one description only, then flags, bound and
// element.
TEST(TypeIdentifier, Sequences) {
    TypeBook book;
    const DDS_TypeCode *const number = TypeBook::primitive(DDS_TK_LONG);
    EXPECT_EQ(member_identifier(book.sequence(number)), hex("80 f3 0100 00 04"));
    EXPECT_EQ(member_identifier(book.sequence(number, 255)), hex("80 f3 0100 ff 04"));
    EXPECT_EQ(member_identifier(book.sequence(number, 256)), hex("81 f3 0100 0000 00010000 04"));
    EXPECT_EQ(member_identifier(book.sequence(book.string(3), 2)), hex("80 f3 0100 02 70 03"));
}

// Small when each dimension is.
TEST(TypeIdentifier, Arrays) {
    TypeBook book;
    const DDS_TypeCode *const number = TypeBook::primitive(DDS_TK_LONG);
    EXPECT_EQ(member_identifier(book.array(number, {3})), hex("90 f3 0100 0000 01000000 03 04"));
    EXPECT_EQ(member_identifier(book.array(number, {200, 100})),
              hex("90 f3 0100 0000 02000000 c8 64 04"));
    EXPECT_EQ(member_identifier(book.array(number, {2, 256})),
              hex("91 f3 0100 0000 02000000 02000000 00010000 04"));
}

TEST(TypeIdentifier, CollectionsOfNamedTypes) {
    TypeBook book;
    const DDS_TypeCode *const list = book.sequence(book.array(support::point_type(), {2}), 3);
    const Description point = describe(support::point_type());
    const std::string minimal = to_hex(point.minimal.at(0).identifier);
    EXPECT_EQ(member_identifier(list), hex("80 f1 0100 03  90 f1 00 0100 01000000 02" + minimal));
}

// ---- Flags --------------------------------------------------------------------------------------

std::uint16_t flags_of(const MemberOf &member) {
    TypeBook book;
    const Description description =
        describe(book.structure("Flags", DDS_MUTABLE_EXTENSIBILITY, {member}));
    const Bytes &object = description.minimal.at(0).object;
    return static_cast<std::uint16_t>(object.at(28) | object.at(29) << 8);
}

TEST(TypeFlags, Members) {
    const MemberOf plain("m", 0, TypeBook::primitive(DDS_TK_LONG));
    EXPECT_EQ(flags_of(plain), 0x01);
    EXPECT_EQ(flags_of(MemberOf(plain).optional()), 0x09);
    EXPECT_EQ(flags_of(MemberOf(plain).must_understand()), 0x11);
    // Keys must be understood.
    EXPECT_EQ(flags_of(MemberOf(plain).key()), 0x31);
    EXPECT_EQ(flags_of(MemberOf(plain).optional().must_understand()), 0x19);
}

TEST(TypeFlags, Extensibility) {
    TypeBook book;
    const std::pair<DDS_ExtensibilityKind, int> kinds[] = {{DDS_FINAL_EXTENSIBILITY, 1},
                                                           {DDS_APPENDABLE_EXTENSIBILITY, 2},
                                                           {DDS_MUTABLE_EXTENSIBILITY, 4}};
    for (const auto &[extensibility, flag] : kinds) {
        const Description description = describe(
            book.structure("T", extensibility, {{"m", 0, TypeBook::primitive(DDS_TK_LONG)}}));
        EXPECT_EQ(description.minimal.at(0).object.at(2), flag);
        EXPECT_EQ(description.complete.at(0).object.at(2), flag);
    }
}

// ---- Members ------------------------------------------------------------------------------------

TEST(TypeObject, IdsAndOrderOfMembers) {
    TypeBook book;
    const DDS_TypeCode *const number = TypeBook::primitive(DDS_TK_LONG);
    const Description description =
        describe(book.structure("Ids", DDS_MUTABLE_EXTENSIBILITY,
                                {{"a", 0x0fffffff, number}, {"b", 7, number}, {"c", 70, number}}));
    Input input(description.minimal.at(0).object);
    input.raw(12);
    input.number();
    ASSERT_EQ(input.number(), 3U);
    for (const std::uint32_t id : {0x0fffffffU, 7U, 70U}) {
        input.number();
        EXPECT_EQ(input.number(), id);
        input.raw(3 + 4);  // flags, identifier, name hash
    }
}

// Enumerators are ordered by their values, whatever the type code's order.
TEST(TypeObject, OrderOfEnumerators) {
    TypeBook book;
    const DDS_TypeCode *const kind =
        book.enumeration("Kind", DDS_FINAL_EXTENSIBILITY, {{"C", 70000}, {"A", -2}, {"B", 5}});
    const Description description =
        describe(book.structure("T", DDS_FINAL_EXTENSIBILITY, {{"kind", 0, kind}}));
    const Bytes &object = description.complete.at(1).object;
    Input input(object);
    input.raw(4);
    input.raw(input.number());
    input.number();
    ASSERT_EQ(input.number(), 3U);
    for (const auto &[value, name] :
         {std::pair<std::int32_t, const char *>{-2, "A"}, {5, "B"}, {70000, "C"}}) {
        EXPECT_GT(input.number(), 0U);
        EXPECT_EQ(input.number(), 6U);
        EXPECT_EQ(static_cast<std::int32_t>(input.number()), value);
        EXPECT_EQ(to_hex(input.raw(2)), "0000");
        EXPECT_EQ(input.number(), 2U);
        EXPECT_EQ(input.raw(4)[0], static_cast<std::uint8_t>(name[0]));
    }
}

// @mutable union U switch (octet) { case 1: case -7: long long x; default: octet y; }
TEST(TypeObject, Union) {
    TypeBook book;
    const Description description =
        describe(book.unite("U", DDS_MUTABLE_EXTENSIBILITY, TypeBook::primitive(DDS_TK_OCTET),
                            {MemberOf("x", 1, TypeBook::primitive(DDS_TK_LONGLONG)).labels({1, -7}),
                             MemberOf("y", 2, TypeBook::primitive(DDS_TK_OCTET)).by_default()}));
    ASSERT_EQ(description.minimal.size(), 1U);
    EXPECT_EQ(to_hex(description.minimal[0].object),
              hex("f1 52  0400"
                  "00000000"             // header
                  "03000000 1100 02 00"  // discriminator: must be understood
                  "34000000 02000000"
                  "18000000 01000000 0100 05 00 02000000 01000000 f9ffffff 9dd4e461"
                  "10000000 02000000 4100 02 00 00000000 41529076"));
}

// ---- What belongs together ----------------------------------------------------------------------

TEST(TypeInformation, IdentifiersAndSizesAreThoseOfTheObjects) {
    const Description description = describe(support::everything_type());
    ASSERT_EQ(description.code, DDS_RETCODE_OK);
    // Everything; Color, Point, Id.
    ASSERT_EQ(description.minimal.size(), 4U);
    ASSERT_EQ(description.complete.size(), 4U);
    ASSERT_EQ(description.minimal_ids.size(), 4U);
    ASSERT_EQ(description.complete_ids.size(), 4U);
    ASSERT_EQ(description.pairs.size(), 4U);
    for (std::size_t i = 0; i < 4; ++i) {
        const auto check = [](const auto &id, const Identified &object, std::uint8_t kind) {
            EXPECT_EQ(id.first, object.identifier);
            EXPECT_EQ(id.second, object.object.size() + 4);  // with its DHEADER
            EXPECT_EQ(object.identifier[0], kind);
            EXPECT_EQ(object.object[0], kind);
        };
        check(description.minimal_ids[i], description.minimal[i], 0xf1);
        check(description.complete_ids[i], description.complete[i], 0xf2);
        EXPECT_EQ(description.pairs[i].first, description.complete[i].identifier);
        EXPECT_EQ(description.pairs[i].second, description.minimal[i].identifier);
    }
}

TEST(TypeInformation, ATypeIsThereOnce) {
    TypeBook book;
    const TypeBook::Members members = {{"x", 0, TypeBook::primitive(DDS_TK_SHORT)}};
    const DDS_TypeCode *const first = book.structure("Same", DDS_FINAL_EXTENSIBILITY, members);
    const DDS_TypeCode *const again = book.structure("Same", DDS_FINAL_EXTENSIBILITY, members);
    const DDS_TypeCode *const alike = book.structure("Alike", DDS_FINAL_EXTENSIBILITY, members);
    const Description description = describe(
        book.structure("T", DDS_FINAL_EXTENSIBILITY,
                       {{"a", 0, first}, {"b", 1, again}, {"c", 2, alike}, {"d", 3, first}}));
    EXPECT_EQ(description.complete_ids.size(), 3U);
    // Types that differ in their names have one minimal identifier.
    EXPECT_EQ(description.minimal_ids.size(), 2U);
    EXPECT_EQ(description.complete.size(), 3U);
}

// A type's name changes its complete identifier and leaves the minimal one.
TEST(TypeInformation, NamesOfTypesAreInCompleteIdentifiersOnly) {
    TypeBook book;
    const TypeBook::Members members = {{"x", 0, TypeBook::primitive(DDS_TK_SHORT)}};
    const auto *const type = book.structure("A", DDS_FINAL_EXTENSIBILITY, members);
    const Description one = describe(type, "A");
    const Description other = describe(type, "B");
    EXPECT_EQ(one.minimal_ids, other.minimal_ids);
    EXPECT_NE(one.complete_ids, other.complete_ids);
    const Description wider = describe(
        book.structure("A", DDS_FINAL_EXTENSIBILITY, {{"x", 0, TypeBook::primitive(DDS_TK_LONG)}}));
    EXPECT_NE(one.minimal_ids, wider.minimal_ids);
}

// ---- Names --------------------------------------------------------------------------------------

// Returns the names of a type and of one that it holds, when it is registered under a name.
std::vector<std::string> names(const std::string &own, const std::string &registered,
                               const std::string &nested) {
    TypeBook book;
    const DDS_TypeCode *const part = book.structure(nested, DDS_FINAL_EXTENSIBILITY,
                                                    {{"x", 0, TypeBook::primitive(DDS_TK_SHORT)}});
    const Description description = describe(
        book.structure(own, DDS_FINAL_EXTENSIBILITY, {{"part", 0, part}}), registered.c_str());
    std::vector<std::string> result;
    for (const Identified &type : description.complete) {
        // Behind kinds, flags, DHEADER, base type and annotations.
        Input input(type.object);
        input.raw(11);
        const std::uint32_t length = input.number();
        const Bytes text = input.raw(length);
        result.emplace_back(text.begin(), text.end() - 1);
    }
    return result;
}

TEST(TypeNames, MoveWithTheRegisteredName) {
    using Names = std::vector<std::string>;
    const struct {
        const char *own, *registered, *nested, *announced;
    } cases[] = {
        {"A::B::T", "A::B::T", "A::B::U", "A::B::U"},
        {"A::B::T", "x::b::T", "A::B::U", "x::b::U"},
        {"A::B::T", "x::y::b::T", "A::B::U", "x::y::b::U"},
        {"A::B::T", "x::y::b::T", "A::V", "x::y::V"},
        {"A::B::T", "x::y::b::T", "A::B::C::W", "x::y::b::C::W"},
        {"A::B::T", "x::y::b::T", "A::Z::W", "x::y::Z::W"},
        {"A::B::T", "x::y::b::T", "C::W", "C::W"},
        {"A::B::T", "x::y::b::T", "W", "W"},
        {"A::B::T", "b::T", "A::B::U", "b::U"},
        {"A::B::T", "b::T", "A::V", "V"},
        {"A::B::T", "T", "A::B::U", "U"},
        {"T", "x::y::T", "U", "x::y::U"},
        {"T", "x::y::T", "A::U", "x::y::A::U"},
        // Just another name.
        {"A::B::T", "Alias", "A::B::U", "A::B::U"},
        {"A::B::T", "x::Alias", "A::B::U", "A::B::U"},
    };
    for (const auto &[own, registered, nested, announced] : cases) {
        EXPECT_EQ(names(own, registered, nested), (Names{registered, announced}))
            << own << " as " << registered << ": " << nested;
    }
}

}  // namespace
