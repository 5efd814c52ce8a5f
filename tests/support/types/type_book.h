// SPDX-License-Identifier: Apache-2.0
// Type codes made at run time, for tests that describe types and need no records of them.
#pragma once

#include <kolt/typecode.h>

#include <cstddef>
#include <deque>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace support {

// A member to be, or a branch of a union.
struct MemberOf {
    MemberOf(std::string member_name, DDS_UnsignedLong member_id, const DDS_TypeCode *member_type)
        : name(std::move(member_name)), id(member_id), type(member_type) {}

    MemberOf &key() {
        is_key = true;
        return *this;
    }
    MemberOf &optional() {
        is_optional = true;
        return *this;
    }
    MemberOf &must_understand() {
        is_must_understand = true;
        return *this;
    }
    MemberOf &labels(std::vector<DDS_Long> values) {
        case_labels = std::move(values);
        return *this;
    }
    MemberOf &by_default() {
        is_default = true;
        return *this;
    }

    std::string name;
    DDS_UnsignedLong id;
    const DDS_TypeCode *type;
    bool is_key = false;
    bool is_optional = false;
    bool is_must_understand = false;
    bool is_default = false;
    std::vector<DDS_Long> case_labels;
};

// Owns the type codes that it makes.
class TypeBook {
  public:
    using Members = std::vector<MemberOf>;
    using Enumerators = std::vector<std::pair<std::string, DDS_Long>>;

    static const DDS_TypeCode *primitive(DDS_TCKind kind) {
        return DDS_TypeCodeFactory_get_primitive_tc(kind);
    }
    const DDS_TypeCode *string(DDS_UnsignedLong bound = 0);
    const DDS_TypeCode *sequence(const DDS_TypeCode *content, DDS_UnsignedLong bound = 0);
    const DDS_TypeCode *array(const DDS_TypeCode *content,
                              std::vector<DDS_UnsignedLong> dimensions);
    const DDS_TypeCode *enumeration(const std::string &name, DDS_ExtensibilityKind extensibility,
                                    const Enumerators &enumerators);
    const DDS_TypeCode *structure(const std::string &name, DDS_ExtensibilityKind extensibility,
                                  const Members &members);
    const DDS_TypeCode *unite(const std::string &name, DDS_ExtensibilityKind extensibility,
                              const DDS_TypeCode *discriminator, const Members &branches);

  private:
    DDS_TypeCode &add(DDS_TCKind kind);
    DDS_TypeCode &add_named(DDS_TCKind kind, const std::string &name,
                            DDS_ExtensibilityKind extensibility);
    const char *keep(const std::string &text) { return texts_.emplace_back(text).c_str(); }
    void add_members(DDS_TypeCode &type, const Members &members);

    std::deque<DDS_TypeCode> types_;
    std::deque<DDS_SampleAccessInfo> accesses_;
    std::deque<std::string> texts_;
    std::deque<std::vector<DDS_TypeCodeMember>> members_;
    std::deque<std::vector<std::size_t>> offsets_;
    std::deque<std::vector<DDS_UnsignedLong>> dimensions_;
    std::deque<std::vector<DDS_Long>> labels_;
};

}  // namespace support
