// SPDX-License-Identifier: Apache-2.0
// Field names of an expression, resolved against the type.

#include "filter/field_path.hpp"

#include "filter/error.hpp"

namespace kolt::filter {

namespace {

bool has_members(const DDS_TypeCode &type) {
    return type.kind == DDS_TK_STRUCT || type.kind == DDS_TK_UNION;
}

bool can_be_compared(const DDS_TypeCode &type) {
    return is_number(type.kind) || type.kind == DDS_TK_BOOLEAN || type.kind == DDS_TK_CHAR ||
           type.kind == DDS_TK_ENUM || type.kind == DDS_TK_STRING;
}

// The elements of an array of several dimensions lie in one row, the last index running fastest.
std::uint64_t array_position(const DDS_TypeCode &type, const std::vector<std::uint64_t> &indices,
                             std::size_t column) {
    if (indices.size() != type.dimension_count) {
        throw Error{"the array has " + std::to_string(type.dimension_count) + " dimension(s)",
                    column};
    }
    std::uint64_t position = 0;
    for (std::size_t i = 0; i < indices.size(); ++i) {
        if (indices[i] >= type.dimensions[i]) {
            throw Error{"index " + std::to_string(indices[i]) + " is past the end of the array",
                        column};
        }
        position = position * type.dimensions[i] + indices[i];
    }
    return position;
}

std::uint64_t sequence_position(const DDS_TypeCode &type, const std::vector<std::uint64_t> &indices,
                                std::size_t column) {
    if (indices.size() != 1) {
        throw Error{"a sequence has one index", column};
    }
    if (indices.front() > UINT32_MAX || (type.bound != 0 && indices.front() >= type.bound)) {
        throw Error{"index " + std::to_string(indices.front()) + " is past the sequence's bound",
                    column};
    }
    return indices.front();
}

}  // namespace

void FieldPath::enter_member(const std::string &name, std::size_t column) {
    if (!has_members(*type_)) {
        throw Error{"'" + name + "': " + describe(*type_) + " has no members", column};
    }
    for (DDS_UnsignedLong i = 0; i < type_->member_count; ++i) {
        if (name == type_->members[i].name) {
            steps_.push_back({DDS_BOOLEAN_FALSE, i});
            type_ = type_->members[i].type;
            return;
        }
    }
    const std::string owner = type_->name != nullptr ? type_->name : "the type";
    throw Error{"'" + name + "' is not a member of " + owner, column};
}

void FieldPath::enter_element(const std::vector<std::uint64_t> &indices, std::size_t column) {
    std::uint64_t position = 0;
    if (type_->kind == DDS_TK_ARRAY) {
        position = array_position(*type_, indices, column);
    } else if (type_->kind == DDS_TK_SEQUENCE) {
        position = sequence_position(*type_, indices, column);
    } else {
        throw Error{describe(*type_) + " has no elements", column};
    }
    steps_.push_back({DDS_BOOLEAN_TRUE, static_cast<DDS_UnsignedLong>(position)});
    type_ = type_->content_type;
}

Field FieldPath::finish(std::size_t column) && {
    if (!can_be_compared(*type_)) {
        throw Error{"a field of a constructed type cannot be compared, only its parts can", column};
    }
    return {std::move(steps_), type_};
}

}  // namespace kolt::filter
