// SPDX-License-Identifier: Apache-2.0
// Constants of an expression, converted to the type of the field that they are compared with.
#pragma once

#include <string>
#include <string_view>

#include "filter/lexer.hpp"
#include "filter/value.hpp"

namespace kolt::filter {

// A value with the memory of its string.
struct Constant {
    Value value;       // of a number
    std::string text;  // of a string
    bool is_text = false;

    Value get() const { return is_text ? Value(std::string_view(text)) : value; }
};

// True for a token that can be a constant: a number, a string, TRUE, FALSE, an enumerator's name.
bool is_literal(const Token &token);

// Converts a constant for a comparison with a field of type `type`. Throws Error (with the token's
// column) when the two do not go together.
Constant to_constant(const Token &token, const DDS_TypeCode &type);

// Converts the text of a parameter for the same use. The text is written as in the expression; for
// strings, characters and enumerators it may also be the bare text without quotes. Throws Error
// without a column.
Constant parameter_to_constant(std::string_view text, const DDS_TypeCode &type);

// "a long", "an enumeration": a type in a message.
std::string describe(const DDS_TypeCode &type);

bool is_number(DDS_TCKind kind);

}  // namespace kolt::filter
