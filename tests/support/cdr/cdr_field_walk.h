// SPDX-License-Identifier: Apache-2.0
// A walk over all fields of a value of any type, by their names and by their places in its bytes.
#pragma once

#include <kolt/cdr.h>
#include <kolt/dynamic_data.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace support {

// A sample is walked through up to this many fields.
constexpr unsigned kMaximumFields = 64;

// Every field of a type by its name for dynamic data and by its steps for the serialised sample.
class FieldWalk {
  public:
    virtual ~FieldWalk() = default;

  protected:
    static constexpr DDS_UnsignedLong kAllBranches = UINT32_MAX;

    explicit FieldWalk(DDS_DynamicData *data) : data_(data) {}

    // A primitive, enumeration or string.
    virtual void leaf(const DDS_TypeCode &type) = 0;
    // The one branch of a union to walk, or kAllBranches.
    virtual DDS_UnsignedLong branch_of(const DDS_TypeCode &) { return kAllBranches; }
    virtual bool enter_optional() { return true; }
    virtual DDS_UnsignedLong sequence_length(const DDS_TypeCode &type) = 0;

    void walk(const DDS_TypeCode &type) {
        if (fields_ == kMaximumFields) {
            return;
        }
        switch (type.kind) {
            case DDS_TK_STRUCT:
            case DDS_TK_UNION:
                walk_members(type);
                break;
            case DDS_TK_ARRAY:
                walk_array(type);
                break;
            case DDS_TK_SEQUENCE: {
                const DDS_UnsignedLong length = sequence_length(type);
                for (DDS_UnsignedLong i = 0; i < length; ++i) {
                    into(*type.content_type, "[" + std::to_string(i) + "]", {1, i});
                }
                break;
            }
            default:
                ++fields_;
                leaf(type);
                break;
        }
    }

    DDS_DynamicData *data_;
    std::string name_;
    std::vector<KOLT_CdrPathStep> path_;

  private:
    void into(const DDS_TypeCode &type, const std::string &suffix, KOLT_CdrPathStep step) {
        const std::size_t length = name_.size();
        name_ += suffix;
        path_.push_back(step);
        walk(type);
        path_.pop_back();
        name_.resize(length);
    }

    void walk_members(const DDS_TypeCode &type) {
        const DDS_UnsignedLong branch = type.kind == DDS_TK_UNION ? branch_of(type) : kAllBranches;
        for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
            const DDS_TypeCodeMember &member = type.members[i];
            if (branch != kAllBranches && branch != i) {
                continue;
            }
            if (member.is_optional && !enter_optional()) {
                continue;
            }
            into(*member.type, (name_.empty() ? "" : ".") + std::string(member.name), {0, i});
        }
    }

    void walk_array(const DDS_TypeCode &type) {
        DDS_UnsignedLong count = 1;
        for (DDS_UnsignedLong i = 0; i < type.dimension_count; ++i) {
            count *= type.dimensions[i];
        }
        for (DDS_UnsignedLong flat = 0; flat < count; ++flat) {
            std::string indexes;
            DDS_UnsignedLong rest = flat;
            for (DDS_UnsignedLong i = type.dimension_count; i-- > 0;) {
                indexes.insert(0, "[" + std::to_string(rest % type.dimensions[i]) + "]");
                rest /= type.dimensions[i];
            }
            into(*type.content_type, indexes, {1, flat});
        }
    }

    unsigned fields_ = 0;
};

}  // namespace support
