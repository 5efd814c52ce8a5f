// SPDX-License-Identifier: Apache-2.0
// Field names of an expression, resolved against the type.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "filter/program.hpp"

namespace kolt::filter {

// Goes down from a type, step by step. Functions throw Error with the given column.
class FieldPath {
  public:
    explicit FieldPath(const DDS_TypeCode &type) : type_(&type) {}

    // Into a member of a structure or union.
    void enter_member(const std::string &name, std::size_t column);
    // Into an element of an array (one index for each dimension) or a sequence (one index).
    void enter_element(const std::vector<std::uint64_t> &indices, std::size_t column);
    // The field, which must be something that can be compared.
    Field finish(std::size_t column) &&;

  private:
    std::vector<KOLT_CdrPathStep> steps_;
    const DDS_TypeCode *type_;
};

}  // namespace kolt::filter
