// SPDX-License-Identifier: Apache-2.0
// Operations on values in memory, interpreted over their type codes.
#pragma once

#include "kolt/typecode.h"
#include "type/sequence/sequence_core.hpp"
#include "type/typecode/layout.hpp"

namespace kolt::type {

// The elements of a sequence member, by their type code. A string element is an exactly fitting
// owned string, which is replaced as a whole: unlike a string member it has no buffer for its
// bound, since the typed sequences of strings make none.
class TypeCodeElementOps final : public ElementOps {
  public:
    explicit TypeCodeElementOps(const DDS_TypeCode &type);
    bool initialize(void *element, const DDS_TypeAllocationParams_t &params) const override;
    void finalize(void *element, const DDS_TypeDeallocationParams_t &params) const override;
    bool copy(void *destination, const void *source) const override;

  private:
    const DDS_TypeCode &type_;
};

// `member` tells the default value; NULL where there is none (elements, records).
bool initialize_value(const DDS_TypeCode &type, const DDS_TypeCodeMember *member, void *value,
                      const DDS_TypeAllocationParams_t &params);
void finalize_value(const DDS_TypeCode &type, void *value,
                    const DDS_TypeDeallocationParams_t &params);
bool copy_value(const DDS_TypeCode &type, void *destination, const void *source);

// Gives member `index` of an initialised record its initial value again. Buffers of strings and
// sequences stay; a string that is NULL gets one. False when memory runs out.
bool reset_member(const DDS_TypeCode &type, void *record, DDS_UnsignedLong index);

// A new initialised value for an optional member; NULL when memory runs out.
void *new_optional(const DDS_TypeCode &type, const DDS_TypeAllocationParams_t &params);
void delete_optional(const DDS_TypeCode &type, void *value);

inline constexpr DDS_TypeAllocationParams_t kDefaultAllocation = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
inline constexpr DDS_TypeDeallocationParams_t kDefaultDeallocation =
    DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;

}  // namespace kolt::type
