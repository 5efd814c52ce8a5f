// SPDX-License-Identifier: Apache-2.0
// Finds the reason why a type that the codec handles cannot have a type object.
#include <algorithm>
#include <cstring>
#include <set>
#include <span>

#include "type/typecode/layout.hpp"
#include "type/typeobject/type_table.hpp"

namespace kolt::type {
namespace {

// MEMBER_NAME_MAX_LENGTH and TYPE_NAME_MAX_LENGTH (XTypes 1.3, Annex B).
constexpr std::size_t kMaximumNameLength = 256;

class Inspector {
  public:
    explicit Inspector(const ModuleMove &names) : names_(names) {}

    // Looks at the type and all that it consists of, until the first objection.
    void inspect(const DDS_TypeCode &type) {
        if (!objection_.empty() || !inspected_.insert(&type).second) {
            return;
        }
        if (is_hashed(type)) {
            inspect_named(type);
        } else if (is_collection(type)) {
            if (type.kind == DDS_TK_ARRAY) {
                inspect_array(type);
            }
            inspect(*type.content_type);
        }
    }
    std::string take() { return std::move(objection_); }

  private:
    void object(const DDS_TypeCode &type, const std::string &what) {
        if (!objection_.empty()) {
            return;
        }
        objection_ = type.name == nullptr ? "an unnamed type" : type.name;
        objection_ += ": " + what;
    }

    void inspect_named(const DDS_TypeCode &type) {
        if (type.name == nullptr || !is_name(names_.announced(type.name))) {
            return object(type, "no name of 1 to 256 characters");
        }
        if (type.member_count == 0 || type.members == nullptr) {
            return object(type, "no members");
        }
        const std::span members(type.members, type.member_count);
        for (const DDS_TypeCodeMember &member : members) {
            if (member.name == nullptr || !is_name(member.name)) {
                return object(type, "a member without a name of 1 to 256 characters");
            }
        }
        if (type.kind == DDS_TK_ENUM) {
            return inspect_enumeration(type);
        }
        if (type.kind == DDS_TK_UNION) {
            if (std::count_if(members.begin(), members.end(), [](const DDS_TypeCodeMember &branch) {
                    return branch.is_default_label != DDS_BOOLEAN_FALSE;
                }) > 1) {
                return object(type, "more than one default branch");
            }
            inspect(*type.discriminator_type);
        }
        for (const DDS_TypeCodeMember &member : members) {
            inspect(*member.type);
        }
    }

    void inspect_enumeration(const DDS_TypeCode &type) {
        if (type.extensibility == DDS_MUTABLE_EXTENSIBILITY) {
            return object(type, "a mutable enumeration");
        }
        std::set<DDS_Long> values;
        for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
            if (!values.insert(type.members[i].ordinal).second) {
                return object(type, "two enumerators with one value");
            }
        }
    }

    // The engine counts the elements of arrays of arrays with 32 bits.
    void inspect_array(const DDS_TypeCode &type) {
        std::uint64_t count = 1;
        for (const DDS_TypeCode *array = &type; array->kind == DDS_TK_ARRAY;
             array = array->content_type) {
            count *= element_count(*array);  // each is below 2^31
            if (count > UINT32_MAX) {
                return object(type, "too many elements");
            }
        }
    }

    static bool is_name(std::string_view name) {
        return !name.empty() && name.size() <= kMaximumNameLength;
    }

    const ModuleMove &names_;
    std::set<const DDS_TypeCode *> inspected_;
    std::string objection_;
};

}  // namespace

std::string find_objection(const DDS_TypeCode &type, const ModuleMove &names) {
    if (type.kind != DDS_TK_STRUCT && type.kind != DDS_TK_UNION) {
        return "neither a structure nor a union";
    }
    Inspector inspector(names);
    inspector.inspect(type);
    return inspector.take();
}

}  // namespace kolt::type
