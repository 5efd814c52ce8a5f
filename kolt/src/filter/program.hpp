// SPDX-License-Identifier: Apache-2.0
// A compiled filter expression: flat, immutable, shared by all threads that evaluate it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "filter/literal.hpp"
#include "kolt/cdr.h"

namespace kolt::filter {

// A field, found once by name.
struct Field {
    std::vector<KOLT_CdrPathStep> path;
    const DDS_TypeCode *type;  // primitive, enumeration or string
};

// A place where the expression uses a parameter. One parameter may be used in several, each
// compared with another type.
struct ParameterUse {
    std::size_t index;  // n of %n
    const DDS_TypeCode *type;
    std::size_t column;
};

struct Operand {
    enum class Kind : std::uint8_t { kField, kConstant, kParameter };
    Kind kind;
    std::uint32_t index;  // into fields, constants or parameter uses
};

enum class Operation : std::uint8_t {
    kEqual,
    kNotEqual,
    kLess,
    kLessOrEqual,
    kGreater,
    kGreaterOrEqual,
    kLike,
    kNotLike,
    kBetween,
    kNotBetween,
    // The operations above set the one boolean register; these use it.
    kNot,
    kJumpIfTrue,  // to `target`
    kJumpIfFalse,
};

struct Instruction {
    Operation operation;
    Operand left;
    Operand right;
    Operand upper;         // kBetween, kNotBetween
    std::uint32_t target;  // jumps: always forward
};

struct Program {
    std::vector<Instruction> instructions;
    std::vector<Field> fields;
    std::vector<Constant> constants;
    std::vector<ParameterUse> parameter_uses;
};

// Compiles an expression over a structure type. Throws Error.
Program parse(const DDS_TypeCode &type, std::string_view expression);

// Runs a program over a serialised sample. `parameters` has a constant for each parameter use.
// False when the sample does not match or is malformed.
bool evaluate(const Program &program, std::span<const Constant> parameters,
              const KOLT_TypePrograms *codec, const std::uint8_t *bytes, std::size_t length);

}  // namespace kolt::filter
