// SPDX-License-Identifier: Apache-2.0
// Running a filter program over a serialised sample.

#include <array>
#include <compare>

#include "filter/program.hpp"

namespace kolt::filter {

namespace {

// One evaluation: the sample, and the fields of it that were looked up.
class Evaluation {
  public:
    Evaluation(const Program &program, std::span<const Constant> parameters,
               const KOLT_TypePrograms *codec, const std::uint8_t *bytes, std::size_t length)
        : program_(program),
          parameters_(parameters),
          codec_(codec),
          bytes_(bytes),
          length_(length) {}

    bool run() {
        bool result = false;
        const std::size_t end = program_.instructions.size();
        for (std::size_t at = 0; at < end;) {
            const Instruction &instruction = program_.instructions[at++];
            switch (instruction.operation) {
                case Operation::kNot:
                    result = !result;
                    break;
                case Operation::kJumpIfTrue:
                case Operation::kJumpIfFalse:
                    if (result == (instruction.operation == Operation::kJumpIfTrue)) {
                        at = instruction.target;
                    }
                    break;
                default:
                    result = holds(instruction);
                    break;
            }
        }
        return result && !is_malformed_;
    }

  private:
    // Fields up to this number are looked up once, further ones each time.
    static constexpr std::size_t kCached = 16;

    bool holds(const Instruction &instruction) {
        const Value left = get(instruction.left);
        const Value right = get(instruction.right);
        switch (instruction.operation) {
            case Operation::kLike:
            case Operation::kNotLike:
                return matches_pattern(left, right, instruction.operation == Operation::kLike);
            case Operation::kBetween:
            case Operation::kNotBetween:
                return is_in_range(compare(left, right), compare(left, get(instruction.upper)),
                                   instruction.operation == Operation::kBetween);
            default:
                return relation_holds(instruction.operation, left, right);
        }
    }

    static bool relation_holds(Operation operation, const Value &left, const Value &right) {
        const std::partial_ordering order = compare(left, right);
        switch (operation) {
            case Operation::kEqual:
                return order == 0;
            case Operation::kNotEqual:
                // A NaN differs from everything; nothing is known of what is absent.
                return order != 0 && !is_absent(left) && !is_absent(right);
            case Operation::kLess:
                return order < 0;
            case Operation::kLessOrEqual:
                return order <= 0;
            case Operation::kGreater:
                return order > 0;
            default:
                return order >= 0;
        }
    }

    static bool is_absent(const Value &value) { return std::holds_alternative<Absent>(value); }

    static bool matches_pattern(const Value &text, const Value &pattern, bool expected) {
        const auto *characters = std::get_if<std::string_view>(&text);
        const auto *wildcards = std::get_if<std::string_view>(&pattern);
        return characters != nullptr && wildcards != nullptr &&
               is_like(*characters, *wildcards) == expected;
    }

    static bool is_in_range(std::partial_ordering to_lower, std::partial_ordering to_upper,
                            bool expected) {
        constexpr auto kUnordered = std::partial_ordering::unordered;
        return to_lower != kUnordered && to_upper != kUnordered &&
               (to_lower >= 0 && to_upper <= 0) == expected;
    }

    Value get(const Operand &operand) {
        switch (operand.kind) {
            case Operand::Kind::kConstant:
                return program_.constants[operand.index].get();
            case Operand::Kind::kParameter:
                return parameters_[operand.index].get();
            default:
                return get_field(operand.index);
        }
    }

    Value get_field(std::uint32_t index) {
        if (index >= kCached) {
            return find(program_.fields[index]);
        }
        if (!is_known_[index]) {
            known_[index] = find(program_.fields[index]);
            is_known_[index] = true;
        }
        return known_[index];
    }

    Value find(const Field &field) {
        KOLT_CdrValue value{};
        if (!KOLT_Cdr_find_field(codec_, bytes_, length_, field.path.data(), field.path.size(),
                                 &value)) {
            is_malformed_ = true;
            return Absent{};
        }
        return to_value(value);
    }

    const Program &program_;
    const std::span<const Constant> parameters_;
    const KOLT_TypePrograms *codec_;
    const std::uint8_t *bytes_;
    const std::size_t length_;
    std::array<Value, kCached> known_{};
    std::array<bool, kCached> is_known_{};
    bool is_malformed_ = false;
};

}  // namespace

bool evaluate(const Program &program, std::span<const Constant> parameters,
              const KOLT_TypePrograms *codec, const std::uint8_t *bytes, std::size_t length) {
    return Evaluation(program, parameters, codec, bytes, length).run();
}

}  // namespace kolt::filter
