// SPDX-License-Identifier: Apache-2.0
// The tables behind the test types.
#include "support/types/test_types.h"

#include <kolt/sequence_define.h>

#include <array>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace support {
namespace {

constexpr DDS_DataRepresentationMask kBoth = 5;

DDS_TypeCodeMember member(const char *name, DDS_UnsignedLong id, const DDS_TypeCode *type) {
    DDS_TypeCodeMember m{};
    m.name = name;
    m.id = id;
    m.type = type;
    return m;
}
DDS_TypeCodeMember key(DDS_TypeCodeMember m) {
    m.is_key = 1;
    return m;
}
DDS_TypeCodeMember optional(DDS_TypeCodeMember m) {
    m.is_optional = 1;
    return m;
}
DDS_TypeCodeMember must_understand(DDS_TypeCodeMember m) {
    m.is_must_understand = 1;
    return m;
}
DDS_TypeCodeMember with_default(DDS_TypeCodeMember m, DDS_LongLong value) {
    m.default_value.kind = DDS_TK_LONGLONG;
    m.default_value.value.integer = value;
    return m;
}
DDS_TypeCodeMember with_default(DDS_TypeCodeMember m, const char *value) {
    m.default_value.kind = DDS_TK_STRING;
    m.default_value.value.string = value;
    return m;
}
template <std::size_t kCount>
DDS_TypeCodeMember labelled(DDS_TypeCodeMember m, const DDS_Long (&labels)[kCount]) {
    m.labels = labels;
    m.label_count = kCount;
    return m;
}

const DDS_TypeCode *primitive(DDS_TCKind kind) {
    return DDS_TypeCodeFactory_get_primitive_tc(kind);
}

DDS_TypeCode string(DDS_UnsignedLong bound) {
    DDS_TypeCode type{};
    type.kind = DDS_TK_STRING;
    type.representations = kBoth;
    type.bound = bound;
    return type;
}
DDS_TypeCode sequence(const DDS_TypeCode *content, DDS_UnsignedLong bound) {
    DDS_TypeCode type = string(bound);
    type.kind = DDS_TK_SEQUENCE;
    type.content_type = content;
    return type;
}
template <std::size_t kCount>
DDS_TypeCode array(const DDS_TypeCode *content, const DDS_UnsignedLong (&dimensions)[kCount]) {
    DDS_TypeCode type = string(0);
    type.kind = DDS_TK_ARRAY;
    type.content_type = content;
    type.dimensions = dimensions;
    type.dimension_count = kCount;
    return type;
}

// A structure with its tables. The tables live as long as the object, which is static.
template <std::size_t kCount>
struct Aggregate {
    std::array<DDS_TypeCodeMember, kCount> members;
    std::array<std::size_t, kCount> offsets;
    DDS_SampleAccessInfo access{};
    DDS_TypeCode type{};

    Aggregate(const char *name, DDS_ExtensibilityKind extensibility, std::size_t size,
              std::size_t alignment, const std::array<DDS_TypeCodeMember, kCount> &all,
              const std::array<std::size_t, kCount> &places)
        : members(all), offsets(places) {
        access.language_binding = KOLT_LANGUAGE_BINDING_PLAIN_RECORD;
        access.record_size = size;
        access.record_alignment = alignment;
        access.member_count = kCount;
        access.member_offsets = offsets.data();
        type.kind = DDS_TK_STRUCT;
        type.extensibility = extensibility;
        type.name = name;
        type.representations = kBoth;
        type.member_count = kCount;
        type.members = members.data();
        type.access = &access;
    }
    Aggregate(const Aggregate &) = delete;
    Aggregate &operator=(const Aggregate &) = delete;

    void make_union(const DDS_TypeCode *discriminator, std::size_t offset, DDS_Long initial) {
        type.kind = DDS_TK_UNION;
        type.discriminator_type = discriminator;
        type.default_discriminator = initial;
        access.discriminator_offset = offset;
    }
};

template <typename T, std::size_t kCount>
Aggregate<kCount> aggregate(const char *name, DDS_ExtensibilityKind extensibility,
                            const std::array<DDS_TypeCodeMember, kCount> &members,
                            const std::array<std::size_t, kCount> &offsets) {
    return Aggregate<kCount>(name, extensibility, sizeof(T), alignof(T), members, offsets);
}

template <typename... M>
std::array<DDS_TypeCodeMember, sizeof...(M)> members_of(const M &...all) {
    return {all...};
}
template <typename... O>
std::array<std::size_t, sizeof...(O)> offsets_of(O... all) {
    return {all...};
}

constexpr DDS_ExtensibilityKind kFinal = DDS_FINAL_EXTENSIBILITY;
constexpr DDS_ExtensibilityKind kAppendable = DDS_APPENDABLE_EXTENSIBILITY;
constexpr DDS_ExtensibilityKind kMutable = DDS_MUTABLE_EXTENSIBILITY;

const DDS_TypeCode *string_type(DDS_UnsignedLong bound) {
    static const DDS_TypeCode unbounded = string(0), s8 = string(8), s16 = string(16),
                              s32 = string(32), s64 = string(64);
    switch (bound) {
        case 8:
            return &s8;
        case 16:
            return &s16;
        case 32:
            return &s32;
        case 64:
            return &s64;
        default:
            return &unbounded;
    }
}

DDS_Boolean initialize_point(void *element, const DDS_TypeAllocationParams_t *params) {
    return KOLT_Record_initialize_w_params(point_type(), element, params);
}
void finalize_point(void *element, const DDS_TypeDeallocationParams_t *params) {
    KOLT_Record_finalize_w_params(point_type(), element, params);
}
DDS_Boolean copy_point(void *destination, const void *source) {
    return KOLT_Record_copy(point_type(), destination, source);
}
constexpr KOLT_SequenceElementType kPoint = {"PointSeq", sizeof(Point), initialize_point,
                                             finalize_point, copy_point};
constexpr KOLT_SequenceElementType kId = {"IdSeq", sizeof(Id), nullptr, nullptr, nullptr};

}  // namespace

KOLT_SEQUENCE_DEFINE(PointSeq, Point, &kPoint);
KOLT_SEQUENCE_DEFINE(IdSeq, Id, &kId);

const DDS_TypeCode *color_type() {
    static DDS_TypeCodeMember enumerators[3] = {
        member("RED", 0, nullptr), member("GREEN", 1, nullptr), member("BLUE", 2, nullptr)};
    static const DDS_TypeCode type = [] {
        enumerators[0].ordinal = RED;
        enumerators[1].ordinal = GREEN;
        enumerators[2].ordinal = BLUE;
        DDS_TypeCode t{};
        t.kind = DDS_TK_ENUM;
        t.extensibility = kAppendable;
        t.name = "Test::Color";
        t.representations = kBoth;
        t.member_count = 3;
        t.members = enumerators;
        return t;
    }();
    return &type;
}

const DDS_TypeCode *id_type() {
    static const auto type =
        aggregate<Id>("Test::Id", kAppendable,
                      members_of(key(member("host", 0, primitive(DDS_TK_LONG))),
                                 key(member("app", 1, primitive(DDS_TK_LONG)))),
                      offsets_of(offsetof(Id, host), offsetof(Id, app)));
    return &type.type;
}

const DDS_TypeCode *message_type() {
    static const auto type = aggregate<Message>(
        "Test::Message", kMutable,
        members_of(key(member("id", 0, id_type())), key(member("level", 1, primitive(DDS_TK_LONG))),
                   member("category", 2, string_type(16)), member("text", 3, string_type(64)),
                   member("number", 4, primitive(DDS_TK_LONGLONG))),
        offsets_of(offsetof(Message, id), offsetof(Message, level), offsetof(Message, category),
                   offsetof(Message, text), offsetof(Message, number)));
    return &type.type;
}

const DDS_TypeCode *point_type() {
    static const auto type = aggregate<Point>("Test::Point", kFinal,
                                              members_of(member("x", 0, primitive(DDS_TK_SHORT)),
                                                         member("y", 1, primitive(DDS_TK_SHORT))),
                                              offsets_of(offsetof(Point, x), offsetof(Point, y)));
    return &type.type;
}

const DDS_TypeCode *everything_type() {
    static constexpr DDS_UnsignedLong kMatrix[] = {2, 3};
    static constexpr DDS_UnsignedLong kTwo[] = {2};
    static const DDS_TypeCode matrix = array(primitive(DDS_TK_LONG), kMatrix);
    static const DDS_TypeCode points = array(point_type(), kTwo);
    static const DDS_TypeCode colors = array(color_type(), kTwo);
    static const DDS_TypeCode octets = sequence(primitive(DDS_TK_OCTET), 8);
    static const DDS_TypeCode numbers = sequence(primitive(DDS_TK_LONGLONG), 0);
    static const DDS_TypeCode names = sequence(string_type(8), 4);
    static const DDS_TypeCode path = sequence(point_type(), 3);
    static const auto type = aggregate<Everything>(
        "Test::Everything", kFinal,
        members_of(member("flag", 0, primitive(DDS_TK_BOOLEAN)),
                   member("wide", 1, primitive(DDS_TK_LONGLONG)),
                   member("octet", 2, primitive(DDS_TK_OCTET)),
                   member("real", 3, primitive(DDS_TK_DOUBLE)),
                   member("letter", 4, primitive(DDS_TK_CHAR)),
                   member("small", 5, primitive(DDS_TK_SHORT)),
                   member("positive", 6, primitive(DDS_TK_USHORT)),
                   member("word", 7, primitive(DDS_TK_ULONG)),
                   member("largest", 8, primitive(DDS_TK_ULONGLONG)),
                   member("single", 9, primitive(DDS_TK_FLOAT)), member("color", 10, color_type()),
                   member("text", 11, string_type(0)), member("matrix", 12, &matrix),
                   member("points", 13, &points), member("colors", 14, &colors),
                   member("octets", 15, &octets), member("numbers", 16, &numbers),
                   member("names", 17, &names), member("path", 18, &path),
                   member("id", 19, id_type())),
        offsets_of(
            offsetof(Everything, flag), offsetof(Everything, wide), offsetof(Everything, octet),
            offsetof(Everything, real), offsetof(Everything, letter), offsetof(Everything, small),
            offsetof(Everything, positive), offsetof(Everything, word),
            offsetof(Everything, largest), offsetof(Everything, single),
            offsetof(Everything, color), offsetof(Everything, text), offsetof(Everything, matrix),
            offsetof(Everything, points), offsetof(Everything, colors),
            offsetof(Everything, octets), offsetof(Everything, numbers),
            offsetof(Everything, names), offsetof(Everything, path), offsetof(Everything, id)));
    return &type.type;
}

namespace {

struct ChoiceType : Aggregate<3> {
    ChoiceType(const char *name, DDS_ExtensibilityKind extensibility)
        : Aggregate<3>(
              name, extensibility, sizeof(Choice), alignof(Choice), members3(),
              {offsetof(Choice, _u.number), offsetof(Choice, _u.ids), offsetof(Choice, _u.text)}) {
        make_union(primitive(DDS_TK_LONG), offsetof(Choice, _d), 0);
    }
    static std::array<DDS_TypeCodeMember, 3> members3() {
        static constexpr DDS_Long kNumber[] = {0};
        static constexpr DDS_Long kIds[] = {1, 2};
        static constexpr DDS_Long kText[] = {3};
        static const DDS_TypeCode ids = sequence(id_type(), 5);
        return {labelled(member("number", 1, primitive(DDS_TK_LONG)), kNumber),
                labelled(member("ids", 2, &ids), kIds),
                labelled(member("text", 3, string_type(8)), kText)};
    }
};

struct RequestType : Aggregate<3> {
    RequestType(const char *name, DDS_ExtensibilityKind extensibility, const DDS_TypeCode *choice)
        : Aggregate<3>(name, extensibility, sizeof(Request), alignof(Request),
                       members_of(member("target", 0, id_type()), member("choice", 1, choice),
                                  member("after", 2, primitive(DDS_TK_LONG))),
                       offsets_of(offsetof(Request, target), offsetof(Request, choice),
                                  offsetof(Request, after))) {}
};

struct OptionsType : Aggregate<5> {
    OptionsType(const char *name, DDS_ExtensibilityKind extensibility)
        : Aggregate<5>(name, extensibility, sizeof(Options), alignof(Options),
                       members_of(member("always", 0, primitive(DDS_TK_LONG)),
                                  optional(member("number", 1, primitive(DDS_TK_LONG))),
                                  optional(member("text", 2, string_type(8))),
                                  optional(member("point", 3, point_type())),
                                  member("last", 4, primitive(DDS_TK_OCTET))),
                       offsets_of(offsetof(Options, always), offsetof(Options, number),
                                  offsetof(Options, text), offsetof(Options, point),
                                  offsetof(Options, last))) {}
};

struct Version1Type : Aggregate<2> {
    Version1Type(const char *name, DDS_ExtensibilityKind extensibility)
        : Aggregate<2>(
              name, extensibility, sizeof(Version1), alignof(Version1),
              members_of(member("a", 0, primitive(DDS_TK_LONG)), member("name", 1, string_type(8))),
              offsets_of(offsetof(Version1, a), offsetof(Version1, name))) {}
};

struct Version2Type : Aggregate<5> {
    Version2Type(const char *name, DDS_ExtensibilityKind extensibility, bool strict = false)
        : Aggregate<5>(
              name, extensibility, sizeof(Version2), alignof(Version2), all(strict),
              offsets_of(offsetof(Version2, a), offsetof(Version2, name), offsetof(Version2, b),
                         offsetof(Version2, extra), offsetof(Version2, more))) {}
    static std::array<DDS_TypeCodeMember, 5> all(bool strict) {
        static const DDS_TypeCode more = sequence(primitive(DDS_TK_LONG), 4);
        const DDS_TypeCodeMember b =
            with_default(member("b", 2, primitive(DDS_TK_SHORT)), DDS_LongLong{7});
        return {member("a", 0, primitive(DDS_TK_LONG)), member("name", 1, string_type(8)),
                strict ? must_understand(b) : b,
                with_default(member("extra", 3, string_type(8)), "none"), member("more", 4, &more)};
    }
};

struct HolderType : Aggregate<3> {
    HolderType(const char *name, DDS_ExtensibilityKind extensibility)
        : Aggregate<3>(
              name, extensibility, sizeof(Holder), alignof(Holder),
              members_of(key(member("name", 30, string_type(32))), key(member("id", 20, id_type())),
                         member("where", 10, point_type())),
              offsets_of(offsetof(Holder, name), offsetof(Holder, id), offsetof(Holder, where))) {}
};

}  // namespace

const DDS_TypeCode *final_choice_type() {
    static const ChoiceType type("Test::FinalChoice", kFinal);
    return &type.type;
}
const DDS_TypeCode *appendable_choice_type() {
    static const ChoiceType type("Test::AppendableChoice", kAppendable);
    return &type.type;
}
const DDS_TypeCode *mutable_choice_type() {
    static const ChoiceType type("Test::MutableChoice", kMutable);
    return &type.type;
}

const DDS_TypeCode *fallback_type() {
    static constexpr DDS_Long kOne[] = {1};
    static auto type = aggregate<Fallback>(
        "Test::Fallback", kFinal,
        members_of(labelled(member("wide", 1, primitive(DDS_TK_LONGLONG)), kOne),
                   member("small", 2, primitive(DDS_TK_OCTET))),
        offsets_of(offsetof(Fallback, _u.wide), offsetof(Fallback, _u.small)));
    static const bool made = [] {
        type.members[1].is_default_label = 1;
        type.make_union(primitive(DDS_TK_OCTET), offsetof(Fallback, _d), 0);
        return true;
    }();
    return made ? &type.type : nullptr;
}

const DDS_TypeCode *mutable_request_type() {
    static const RequestType type("Test::MutableRequest", kMutable, mutable_choice_type());
    return &type.type;
}
const DDS_TypeCode *final_request_type() {
    static const RequestType type("Test::FinalRequest", kFinal, final_choice_type());
    return &type.type;
}

const DDS_TypeCode *final_options_type() {
    static const OptionsType type("Test::FinalOptions", kFinal);
    return &type.type;
}
const DDS_TypeCode *appendable_options_type() {
    static const OptionsType type("Test::AppendableOptions", kAppendable);
    return &type.type;
}
const DDS_TypeCode *mutable_options_type() {
    static const OptionsType type("Test::MutableOptions", kMutable);
    return &type.type;
}

const DDS_TypeCode *appendable_version1_type() {
    static const Version1Type type("Test::AppendableVersion", kAppendable);
    return &type.type;
}
const DDS_TypeCode *appendable_version2_type() {
    static const Version2Type type("Test::AppendableVersion", kAppendable);
    return &type.type;
}
const DDS_TypeCode *mutable_version1_type() {
    static const Version1Type type("Test::MutableVersion", kMutable);
    return &type.type;
}
const DDS_TypeCode *mutable_version2_type() {
    static const Version2Type type("Test::MutableVersion", kMutable);
    return &type.type;
}
const DDS_TypeCode *strict_version2_type() {
    static const Version2Type type("Test::MutableVersion", kMutable, true);
    return &type.type;
}

const DDS_TypeCode *mutable_holder_type() {
    static const HolderType type("Test::MutableHolder", kMutable);
    return &type.type;
}
const DDS_TypeCode *final_holder_type() {
    static const HolderType type("Test::FinalHolder", kFinal);
    return &type.type;
}
const DDS_TypeCode *appendable_holder_type() {
    static const HolderType type("Test::AppendableHolder", kAppendable);
    return &type.type;
}

const DDS_TypeCode *large_type() {
    static const DDS_TypeCode data = sequence(primitive(DDS_TK_OCTET), 0);
    static const auto type = aggregate<Large>(
        "Test::Large", kMutable,
        members_of(member("data", 0, &data), member("far", 0x3f01, primitive(DDS_TK_LONG)),
                   member("farther", 0x0ffffff0, primitive(DDS_TK_LONG))),
        offsets_of(offsetof(Large, data), offsetof(Large, far), offsetof(Large, farther)));
    return &type.type;
}

const DDS_TypeCode *collections_type() {
    static constexpr DDS_UnsignedLong kThree[] = {3};
    static constexpr DDS_UnsignedLong kTwo[] = {2};
    static constexpr DDS_UnsignedLong kFour[] = {4};
    static const DDS_TypeCode wide = sequence(primitive(DDS_TK_LONGLONG), 4);
    static const DDS_TypeCode reals = sequence(primitive(DDS_TK_DOUBLE), 4);
    static const DDS_TypeCode numbers = sequence(primitive(DDS_TK_LONG), 4);
    static const DDS_TypeCode octets = sequence(primitive(DDS_TK_OCTET), 8);
    static const DDS_TypeCode triple = array(primitive(DDS_TK_LONG), kThree);
    static const DDS_TypeCode pair = array(primitive(DDS_TK_LONGLONG), kTwo);
    static const DDS_TypeCode four = array(primitive(DDS_TK_OCTET), kFour);
    static const auto type = aggregate<Collections>(
        "Test::Collections", kMutable,
        members_of(member("wide", 0, &wide), member("reals", 1, &reals),
                   member("numbers", 2, &numbers), member("octets", 3, &octets),
                   member("triple", 4, &triple), member("pair", 5, &pair), member("four", 6, &four),
                   member("half", 7, primitive(DDS_TK_SHORT)),
                   member("one", 8, primitive(DDS_TK_OCTET))),
        offsets_of(offsetof(Collections, wide), offsetof(Collections, reals),
                   offsetof(Collections, numbers), offsetof(Collections, octets),
                   offsetof(Collections, triple), offsetof(Collections, pair),
                   offsetof(Collections, four), offsetof(Collections, half),
                   offsetof(Collections, one)));
    return &type.type;
}

Bytes from_hex(const std::string &hex) {
    Bytes bytes;
    int high = -1;
    bool quoted = false;
    for (const char c : hex) {
        if (c == '\'') {
            quoted = !quoted;
        } else if (quoted) {
            bytes.push_back(static_cast<std::uint8_t>(c));
        } else if (std::isxdigit(static_cast<unsigned char>(c)) != 0) {
            const int digit = std::isdigit(static_cast<unsigned char>(c)) != 0
                                  ? c - '0'
                                  : std::tolower(static_cast<unsigned char>(c)) - 'a' + 10;
            if (high < 0) {
                high = digit;
            } else {
                bytes.push_back(static_cast<std::uint8_t>(high * 16 + digit));
                high = -1;
            }
        }
    }
    return bytes;
}

std::string to_hex(const Bytes &bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        char digits[4];
        std::snprintf(digits, sizeof(digits), "%02x", bytes[i]);
        if (i > 0 && i % 4 == 0) {
            text += ' ';
        }
        text += digits;
    }
    return text;
}

Bytes serialize(const KOLT_TypePrograms *programs, unsigned encapsulation, const void *record) {
    const auto id = static_cast<DDS_UnsignedShort>(encapsulation);
    Bytes bytes(KOLT_Cdr_serialized_size(programs, id, record));
    std::size_t length = 0;
    if (bytes.empty() ||
        !KOLT_Cdr_serialize(programs, id, record, bytes.data(), bytes.size(), &length) ||
        length != bytes.size()) {
        return {};
    }
    return bytes;
}

Bytes serialize_key(const KOLT_TypePrograms *programs, unsigned encapsulation, const void *record) {
    const auto id = static_cast<DDS_UnsignedShort>(encapsulation);
    Bytes bytes(KOLT_Cdr_serialized_key_size(programs, id, record));
    std::size_t length = 0;
    if (bytes.empty() ||
        !KOLT_Cdr_serialize_key(programs, id, record, bytes.data(), bytes.size(), &length) ||
        length != bytes.size()) {
        return {};
    }
    return bytes;
}

void set_text(DDS_Char *buffer, const char *text) {
    std::memcpy(buffer, text, std::strlen(text) + 1);
}

void fill_everything(Everything *record) {
    record->flag = 1;
    record->wide = -2;
    record->octet = 0xfe;
    record->real = 1.5;
    record->letter = 'k';
    record->small = -3;
    record->positive = 65535;
    record->word = 4000000000U;
    record->largest = 0x0102030405060708U;
    record->single = -0.25F;
    record->color = BLUE;
    DDS_String_replace(&record->text, "text");
    for (int i = 0; i < 6; ++i) {
        record->matrix[i / 3][i % 3] = i + 1;
    }
    record->points[0] = {1, -1};
    record->points[1] = {2, -2};
    record->colors[0] = GREEN;
    record->colors[1] = RED;
    constexpr DDS_Octet kOctets[] = {9, 8, 7};
    constexpr DDS_LongLong kNumbers[] = {1, -1};
    DDS_OctetSeq_from_array(&record->octets, kOctets, 3);
    DDS_LongLongSeq_from_array(&record->numbers, kNumbers, 2);
    DDS_StringSeq_set_length(&record->names, 2);
    DDS_String_replace(DDS_StringSeq_get_reference(&record->names, 0), "one");
    DDS_String_replace(DDS_StringSeq_get_reference(&record->names, 1), "eight888");
    constexpr Point kPath[] = {{5, 6}};
    PointSeq_from_array(&record->path, kPath, 1);
    record->id = {10, 20};
}

}  // namespace support
