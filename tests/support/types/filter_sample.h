// SPDX-License-Identifier: Apache-2.0
// A structure with a field of each kind that a filter can compare, and a sample of it.
#pragma once

#include <kolt/cdr.h>
#include <kolt/filter.h>
#include <kolt/sequence.h>

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace filter_sample {

struct Point {
    DDS_Long x;
    DDS_Long y;
};

struct Choice {
    DDS_Long _d;
    DDS_Long number;
    DDS_Char *name;
};

struct Record {
    DDS_Boolean flag;
    DDS_Char letter;
    DDS_Octet octet;
    DDS_Short short_;
    DDS_UnsignedShort ushort;
    DDS_Long long_;
    DDS_UnsignedLong ulong;
    DDS_LongLong longlong;
    DDS_UnsignedLongLong ulonglong;
    DDS_Float real;
    DDS_Double precise;
    DDS_Enum color;
    DDS_Char *text;
    Point point;
    DDS_Long grid[2][3];
    DDS_LongSeq list;
    Choice choice;
    DDS_Long *maybe;  // optional
};

inline constexpr DDS_DataRepresentationMask kBoth =
    DDS_DATA_REPRESENTATION_MASK_XCDR | DDS_DATA_REPRESENTATION_MASK_XCDR2;

inline DDS_TypeCode make_type(DDS_TCKind kind, const char *name = nullptr) {
    DDS_TypeCode type{};
    type.kind = kind;
    type.name = name;
    type.extensibility = DDS_APPENDABLE_EXTENSIBILITY;
    type.representations = kBoth;
    return type;
}

inline DDS_TypeCodeMember make_member(const char *name, DDS_UnsignedLong id,
                                      const DDS_TypeCode *type) {
    DDS_TypeCodeMember member{};
    member.name = name;
    member.id = id;
    member.type = type;
    return member;
}

// The type codes, tied together.
class Types {
  public:
    static const DDS_TypeCode &record() {
        static const Types types;
        return types.record_;
    }
    Types(const Types &) = delete;
    Types &operator=(const Types &) = delete;

  private:
    Types() {
        string_ = make_type(DDS_TK_STRING);
        make_color();
        make_point();
        make_choice();
        grid_ = make_type(DDS_TK_ARRAY);
        grid_.dimension_count = 2;
        grid_.dimensions = dimensions_;
        grid_.content_type = primitive(DDS_TK_LONG);
        list_ = make_type(DDS_TK_SEQUENCE);
        list_.bound = 5;
        list_.content_type = primitive(DDS_TK_LONG);
        make_record();
    }

    static const DDS_TypeCode *primitive(DDS_TCKind kind) {
        return DDS_TypeCodeFactory_get_primitive_tc(kind);
    }

    void make_color() {
        color_ = make_type(DDS_TK_ENUM, "Color");
        colors_ = {make_member("RED", 0, nullptr), make_member("GREEN", 1, nullptr),
                   make_member("BLUE", 7, nullptr)};
        colors_[1].ordinal = 1;
        colors_[2].ordinal = 7;
        set_members(color_, colors_);
    }

    void make_point() {
        point_ = make_type(DDS_TK_STRUCT, "Point");
        points_ = {make_member("x", 0, primitive(DDS_TK_LONG)),
                   make_member("y", 1, primitive(DDS_TK_LONG))};
        set_members(point_, points_);
        point_access_ = {KOLT_LANGUAGE_BINDING_PLAIN_RECORD,
                         sizeof(Point),
                         alignof(Point),
                         0,
                         2,
                         point_offsets_};
        point_.access = &point_access_;
    }

    void make_choice() {
        choice_ = make_type(DDS_TK_UNION, "Choice");
        choice_.discriminator_type = primitive(DDS_TK_LONG);
        choices_ = {make_member("number", 1, primitive(DDS_TK_LONG)),
                    make_member("name", 2, &string_)};
        for (std::size_t i = 0; i < 2; ++i) {
            choices_[i].labels = &labels_[i];
            choices_[i].label_count = 1;
        }
        set_members(choice_, choices_);
        choice_access_ = {KOLT_LANGUAGE_BINDING_PLAIN_RECORD,
                          sizeof(Choice),
                          alignof(Choice),
                          offsetof(Choice, _d),
                          2,
                          choice_offsets_};
        choice_.access = &choice_access_;
    }

    void make_record() {
        record_ = make_type(DDS_TK_STRUCT, "Record");
        const std::pair<const char *, const DDS_TypeCode *> members[] = {
            {"flag", primitive(DDS_TK_BOOLEAN)},
            {"letter", primitive(DDS_TK_CHAR)},
            {"octet", primitive(DDS_TK_OCTET)},
            {"short_", primitive(DDS_TK_SHORT)},
            {"ushort", primitive(DDS_TK_USHORT)},
            {"long_", primitive(DDS_TK_LONG)},
            {"ulong", primitive(DDS_TK_ULONG)},
            {"longlong", primitive(DDS_TK_LONGLONG)},
            {"ulonglong", primitive(DDS_TK_ULONGLONG)},
            {"real", primitive(DDS_TK_FLOAT)},
            {"precise", primitive(DDS_TK_DOUBLE)},
            {"color", &color_},
            {"text", &string_},
            {"point", &point_},
            {"grid", &grid_},
            {"list", &list_},
            {"choice", &choice_},
            {"maybe", primitive(DDS_TK_LONG)},
        };
        DDS_UnsignedLong id = 0;
        for (const auto &[name, type] : members) {
            members_.push_back(make_member(name, id++, type));
        }
        members_.back().is_optional = DDS_BOOLEAN_TRUE;
        set_members(record_, members_);
        access_ = {KOLT_LANGUAGE_BINDING_PLAIN_RECORD,
                   sizeof(Record),
                   alignof(Record),
                   0,
                   record_.member_count,
                   offsets_};
        record_.access = &access_;
    }

    template <typename Members>
    static void set_members(DDS_TypeCode &type, const Members &members) {
        type.member_count = static_cast<DDS_UnsignedLong>(members.size());
        type.members = members.data();
    }

    DDS_TypeCode string_, color_, point_, choice_, grid_, list_, record_;
    std::array<DDS_TypeCodeMember, 3> colors_;
    std::array<DDS_TypeCodeMember, 2> points_;
    std::array<DDS_TypeCodeMember, 2> choices_;
    std::vector<DDS_TypeCodeMember> members_;
    DDS_SampleAccessInfo point_access_, choice_access_, access_;
    const DDS_UnsignedLong dimensions_[2] = {2, 3};
    const DDS_Long labels_[2] = {1, 2};
    const std::size_t point_offsets_[2] = {offsetof(Point, x), offsetof(Point, y)};
    const std::size_t choice_offsets_[2] = {offsetof(Choice, number), offsetof(Choice, name)};
    const std::size_t offsets_[18] = {
        offsetof(Record, flag),   offsetof(Record, letter),   offsetof(Record, octet),
        offsetof(Record, short_), offsetof(Record, ushort),   offsetof(Record, long_),
        offsetof(Record, ulong),  offsetof(Record, longlong), offsetof(Record, ulonglong),
        offsetof(Record, real),   offsetof(Record, precise),  offsetof(Record, color),
        offsetof(Record, text),   offsetof(Record, point),    offsetof(Record, grid),
        offsetof(Record, list),   offsetof(Record, choice),   offsetof(Record, maybe)};
};

// Returns header and body; empty when the record cannot be serialised.
inline std::vector<DDS_Octet> serialize(const Record &record, DDS_UnsignedShort encapsulation) {
    const auto *programs = KOLT_TypePrograms_acquire(&Types::record());
    std::vector<DDS_Octet> bytes(4096);
    std::size_t length = 0;
    if (!KOLT_Cdr_serialize(programs, encapsulation, &record, bytes.data(), bytes.size(),
                            &length)) {
        length = 0;
    }
    bytes.resize(length);
    KOLT_TypePrograms_release(programs);
    return bytes;
}

// A sample with a value in every field but `maybe`.
class Sample {
  public:
    Sample() {
        record.flag = DDS_BOOLEAN_TRUE;
        record.letter = 'q';
        record.octet = 200;
        record.short_ = -300;
        record.ushort = 60000;
        record.long_ = -5;
        record.ulong = 4000000000U;
        record.longlong = -9000000000000000000LL;
        record.ulonglong = 18000000000000000000ULL;
        record.real = 0.1F;
        record.precise = 2.5;
        record.color = 7;
        record.text = text_.data();
        record.point = {3, -4};
        for (int i = 0; i < 6; ++i) {
            record.grid[i / 3][i % 3] = i * 10;
        }
        DDS_LongSeq_initialize(&record.list);
        const DDS_Long numbers[] = {11, 22};
        DDS_LongSeq_from_array(&record.list, numbers, 2);
        record.choice = {2, 0, name_.data()};
    }
    ~Sample() { DDS_LongSeq_finalize(&record.list); }
    Sample(const Sample &) = delete;
    Sample &operator=(const Sample &) = delete;

    std::vector<DDS_Octet> bytes(
        DDS_UnsignedShort encapsulation = KOLT_ENCAPSULATION_D_CDR2_LE) const {
        return serialize(record, encapsulation);
    }

    Record record{};

  private:
    std::string text_ = "it's a text";
    std::string name_ = "chosen";
};

struct DeleteFilter {
    void operator()(KOLT_Filter *filter) const { KOLT_Filter_delete(filter); }
};
using Filter = std::unique_ptr<KOLT_Filter, DeleteFilter>;

inline Filter compile(const std::string &expression,
                      const std::vector<const char *> &parameters = {},
                      KOLT_FilterError *error = nullptr) {
    return Filter(KOLT_Filter_new(&Types::record(), expression.c_str(), parameters.data(),
                                  static_cast<DDS_UnsignedLong>(parameters.size()), error));
}

}  // namespace filter_sample
