// SPDX-License-Identifier: Apache-2.0
// Type objects: structures, unions and enumerations, minimal and complete (XTypes 1.3, Annex B).
#include <algorithm>
#include <cstring>
#include <span>

#include "type/typeobject/type_table.hpp"

namespace kolt::type {
namespace {

constexpr std::uint8_t kNoType = 0x00;
constexpr std::uint8_t kEnumeration = 0x40;
constexpr std::uint8_t kStructure = 0x51;
constexpr std::uint8_t kUnion = 0x52;

// Flags of members (XTypes 1.3, Annex B, MemberFlag). What cannot be constructed is discarded.
constexpr std::uint16_t kTryConstructDiscard = 1 << 0;
constexpr std::uint16_t kIsOptional = 1 << 3;
constexpr std::uint16_t kIsMustUnderstand = 1 << 4;
constexpr std::uint16_t kIsKey = 1 << 5;
constexpr std::uint16_t kIsDefault = 1 << 6;

constexpr std::uint16_t kEnumerationBits = 32;

std::uint16_t extensibility_flag(DDS_ExtensibilityKind extensibility) {
    return static_cast<std::uint16_t>(1U << extensibility);
}

std::span<const DDS_TypeCodeMember> members(const DDS_TypeCode &type) {
    return {type.members, type.member_count};
}

class ObjectWriter {
  public:
    ObjectWriter(Equivalence kind, const TypeTable &table, const ModuleMove &names)
        : kind_(kind), table_(table), names_(names) {}

    Bytes write(const DDS_TypeCode &type) {
        output_.write_delimited([&] {
            output_.write8(static_cast<std::uint8_t>(kind_));
            switch (type.kind) {
                case DDS_TK_STRUCT:
                    write_structure(type);
                    break;
                case DDS_TK_UNION:
                    write_union(type);
                    break;
                default:
                    write_enumeration(type);
                    break;
            }
        });
        return output_.take();
    }

  private:
    void write_structure(const DDS_TypeCode &type) {
        output_.write8(kStructure);
        output_.write16(extensibility_flag(type.extensibility));
        output_.write_delimited([&] {
            output_.write8(kNoType);  // no base type
            write_type_detail(type);
        });
        output_.write_sequence(members(type), [&](const DDS_TypeCodeMember &member) {
            std::uint16_t flags = kTryConstructDiscard;
            if (member.is_optional) {
                flags |= kIsOptional;
            }
            if (member.is_key) {
                flags |= kIsKey;
            }
            // Keys are understood by all (7.2.2.4.4.4.8).
            if (member.is_key || member.is_must_understand) {
                flags |= kIsMustUnderstand;
            }
            output_.write_delimited([&] {
                write_member(member, flags);
                write_member_detail(member.name);
            });
        });
    }

    void write_union(const DDS_TypeCode &type) {
        output_.write8(kUnion);
        output_.write16(extensibility_flag(type.extensibility));
        output_.write_delimited([&] { write_type_detail(type); });
        output_.write_delimited([&] {
            output_.write16(kTryConstructDiscard | kIsMustUnderstand);
            table_.write_identifier(*type.discriminator_type, kind_, &output_);
            write_no_annotations();
        });
        output_.write_sequence(members(type), [&](const DDS_TypeCodeMember &member) {
            std::uint16_t flags = kTryConstructDiscard;
            if (member.is_default_label) {
                flags |= kIsDefault;
            }
            output_.write_delimited([&] {
                write_member(member, flags);
                output_.write32(member.label_count);
                for (DDS_UnsignedLong i = 0; i < member.label_count; ++i) {
                    output_.write32(static_cast<std::uint32_t>(member.labels[i]));
                }
                write_member_detail(member.name);
            });
        });
    }

    // Enumerators stand in the order of their values.
    void write_enumeration(const DDS_TypeCode &type) {
        output_.write8(kEnumeration);
        output_.write16(extensibility_flag(type.extensibility));
        output_.write_delimited([&] {
            output_.write16(kEnumerationBits);
            write_type_detail(type);
        });
        const auto declared = members(type);
        std::vector<DDS_TypeCodeMember> enumerators(declared.begin(), declared.end());
        std::sort(enumerators.begin(), enumerators.end(),
                  [](const DDS_TypeCodeMember &left, const DDS_TypeCodeMember &right) {
                      return left.ordinal < right.ordinal;
                  });
        output_.write_sequence(enumerators, [&](const DDS_TypeCodeMember &enumerator) {
            output_.write_delimited([&] {
                output_.write_delimited([&] {
                    output_.write32(static_cast<std::uint32_t>(enumerator.ordinal));
                    output_.write16(0);
                });
                write_member_detail(enumerator.name);
            });
        });
    }

    void write_member(const DDS_TypeCodeMember &member, std::uint16_t flags) {
        output_.write32(member.id);
        output_.write16(flags);
        table_.write_identifier(*member.type, kind_, &output_);
    }

    void write_type_detail(const DDS_TypeCode &type) {
        if (kind_ == Equivalence::kMinimal) {
            return;
        }
        write_no_annotations();
        output_.write_string(names_.announced(type.name));
    }

    void write_member_detail(const char *name) {
        if (kind_ == Equivalence::kMinimal) {
            const std::array<std::uint8_t, 16> digest = md5(name, std::strlen(name));
            output_.write_raw(std::span(digest).first<4>());
        } else {
            output_.write_string(name);
            write_no_annotations();
        }
    }

    // Two optional members, built-in and custom annotations, that are absent.
    void write_no_annotations() {
        if (kind_ == Equivalence::kMinimal) {
            return;
        }
        output_.write8(0);
        output_.write8(0);
    }

    const Equivalence kind_;
    const TypeTable &table_;
    const ModuleMove &names_;
    Xcdr2Output output_;
};

}  // namespace

Bytes write_type_object(const DDS_TypeCode &type, Equivalence kind, const TypeTable &table,
                        const ModuleMove &names) {
    return ObjectWriter(kind, table, names).write(type);
}

}  // namespace kolt::type
