// Type objects: structures, unions and enumerations, minimal and complete (XTypes 1.3, Annex B).
#include <algorithm>
#include <cstring>
#include <span>

#include "type/type_table.hpp"

namespace kolt::type {
namespace {

constexpr uint8_t kNoType = 0x00;
constexpr uint8_t kEnumeration = 0x40;
constexpr uint8_t kStructure = 0x51;
constexpr uint8_t kUnion = 0x52;

// Flags of members (XTypes 1.3, Annex B, MemberFlag). What cannot be constructed is discarded.
constexpr uint16_t kTryConstructDiscard = 1 << 0;
constexpr uint16_t kIsOptional = 1 << 3;
constexpr uint16_t kIsMustUnderstand = 1 << 4;
constexpr uint16_t kIsKey = 1 << 5;
constexpr uint16_t kIsDefault = 1 << 6;

constexpr uint16_t kEnumerationBits = 32;

uint16_t ExtensibilityFlag(DDS_ExtensibilityKind extensibility) {
    return static_cast<uint16_t>(1U << extensibility);
}

std::span<const DDS_TypeCodeMember> Members(const DDS_TypeCode &type) {
    return {type.members, type.member_count};
}

class ObjectWriter {
  public:
    ObjectWriter(Equivalence kind, const TypeTable &table, const ModuleMove &names)
        : kind_(kind), table_(table), names_(names) {}

    Bytes Write(const DDS_TypeCode &type) {
        output_.WriteDelimited([&] {
            output_.Write8(static_cast<uint8_t>(kind_));
            switch (type.kind) {
                case DDS_TK_STRUCT:
                    WriteStructure(type);
                    break;
                case DDS_TK_UNION:
                    WriteUnion(type);
                    break;
                default:
                    WriteEnumeration(type);
                    break;
            }
        });
        return output_.Take();
    }

  private:
    void WriteStructure(const DDS_TypeCode &type) {
        output_.Write8(kStructure);
        output_.Write16(ExtensibilityFlag(type.extensibility));
        output_.WriteDelimited([&] {
            output_.Write8(kNoType);  // no base type
            WriteTypeDetail(type);
        });
        output_.WriteSequence(Members(type), [&](const DDS_TypeCodeMember &member) {
            uint16_t flags = kTryConstructDiscard;
            if (member.is_optional) flags |= kIsOptional;
            if (member.is_key) flags |= kIsKey;
            // Keys are understood by all (7.2.2.4.4.4.8).
            if (member.is_key || member.is_must_understand) flags |= kIsMustUnderstand;
            output_.WriteDelimited([&] {
                WriteMember(member, flags);
                WriteMemberDetail(member.name);
            });
        });
    }

    void WriteUnion(const DDS_TypeCode &type) {
        output_.Write8(kUnion);
        output_.Write16(ExtensibilityFlag(type.extensibility));
        output_.WriteDelimited([&] { WriteTypeDetail(type); });
        output_.WriteDelimited([&] {
            output_.Write16(kTryConstructDiscard | kIsMustUnderstand);
            table_.WriteIdentifier(*type.discriminator_type, kind_, &output_);
            WriteNoAnnotations();
        });
        output_.WriteSequence(Members(type), [&](const DDS_TypeCodeMember &member) {
            uint16_t flags = kTryConstructDiscard;
            if (member.is_default_label) flags |= kIsDefault;
            output_.WriteDelimited([&] {
                WriteMember(member, flags);
                output_.Write32(member.label_count);
                for (DDS_UnsignedLong i = 0; i < member.label_count; ++i) {
                    output_.Write32(static_cast<uint32_t>(member.labels[i]));
                }
                WriteMemberDetail(member.name);
            });
        });
    }

    // Enumerators stand in the order of their values.
    void WriteEnumeration(const DDS_TypeCode &type) {
        output_.Write8(kEnumeration);
        output_.Write16(ExtensibilityFlag(type.extensibility));
        output_.WriteDelimited([&] {
            output_.Write16(kEnumerationBits);
            WriteTypeDetail(type);
        });
        const auto members = Members(type);
        std::vector<DDS_TypeCodeMember> enumerators(members.begin(), members.end());
        std::sort(enumerators.begin(), enumerators.end(),
                  [](const DDS_TypeCodeMember &left, const DDS_TypeCodeMember &right) {
                      return left.ordinal < right.ordinal;
                  });
        output_.WriteSequence(enumerators, [&](const DDS_TypeCodeMember &enumerator) {
            output_.WriteDelimited([&] {
                output_.WriteDelimited([&] {
                    output_.Write32(static_cast<uint32_t>(enumerator.ordinal));
                    output_.Write16(0);
                });
                WriteMemberDetail(enumerator.name);
            });
        });
    }

    void WriteMember(const DDS_TypeCodeMember &member, uint16_t flags) {
        output_.Write32(member.id);
        output_.Write16(flags);
        table_.WriteIdentifier(*member.type, kind_, &output_);
    }

    void WriteTypeDetail(const DDS_TypeCode &type) {
        if (kind_ == Equivalence::kMinimal) return;
        WriteNoAnnotations();
        output_.WriteString(names_.Announced(type.name));
    }

    void WriteMemberDetail(const char *name) {
        if (kind_ == Equivalence::kMinimal) {
            const std::array<uint8_t, 16> digest = Md5(name, std::strlen(name));
            output_.WriteRaw(std::span(digest).first<4>());
        } else {
            output_.WriteString(name);
            WriteNoAnnotations();
        }
    }

    // Two optional members, built-in and custom annotations, that are absent.
    void WriteNoAnnotations() {
        if (kind_ == Equivalence::kMinimal) return;
        output_.Write8(0);
        output_.Write8(0);
    }

    const Equivalence kind_;
    const TypeTable &table_;
    const ModuleMove &names_;
    Xcdr2Output output_;
};

}  // namespace

Bytes WriteTypeObject(const DDS_TypeCode &type, Equivalence kind, const TypeTable &table,
                      const ModuleMove &names) {
    return ObjectWriter(kind, table, names).Write(type);
}

}  // namespace kolt::type
