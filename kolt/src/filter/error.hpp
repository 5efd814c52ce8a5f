// SPDX-License-Identifier: Apache-2.0
// The reason why a filter expression or a parameter is refused, and its place.
#pragma once

#include <cstddef>
#include <string>

namespace kolt::filter {

// Thrown inside this folder only; Filter's functions catch it and give it as a value.
struct Error {
    std::string text;
    std::size_t column = 0;  // in the expression, from 1; 0: the error has no place in it
};

}  // namespace kolt::filter
