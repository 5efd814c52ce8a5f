// SPDX-License-Identifier: Apache-2.0
// The result of a function that gives a value or fails.
#pragma once

#include <utility>

#include "kolt/infrastructure.h"

namespace kolt::engine {

// Holds a value, or the code of the failure that there was instead.
template <typename Value>
class Result {
  public:
    Result(Value value) : value_(std::move(value)) {}
    Result(DDS_ReturnCode_t failure) : code_(failure) {}

    // True when there is a value.
    explicit operator bool() const { return code_ == DDS_RETCODE_OK; }
    DDS_ReturnCode_t code() const { return code_; }
    Value &operator*() { return value_; }

  private:
    Value value_{};
    DDS_ReturnCode_t code_ = DDS_RETCODE_OK;
};

}  // namespace kolt::engine
