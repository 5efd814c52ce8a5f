// SPDX-License-Identifier: Apache-2.0
// From an expression to a program: recursive descent over the grammar of DDS 1.4, Annex B.
//
//   or        := and { OR and }
//   and       := not { AND not }
//   not       := NOT not | ( or ) | predicate
//   predicate := term relation term
//              | term [NOT] LIKE term
//              | field [NOT] BETWEEN constant AND constant
//   term      := field | constant | %n
//   field     := name { . name | [ index ] }
//
// AND and OR become forward jumps over the parts that need not be evaluated.

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "filter/error.hpp"
#include "filter/field_path.hpp"
#include "filter/program.hpp"

namespace kolt::filter {

namespace {

// Parentheses and NOTs within each other. Bounds the recursion.
constexpr int kMaximumDepth = 100;

// One side of a comparison, before it is known what it is compared with.
struct Term {
    Token token;  // of a constant or parameter; of a field its first word
    std::optional<Field> field;
};

bool is_parameter(const Term &term) {
    return term.token.kind == TokenKind::kParameter;
}

bool is_text(const DDS_TypeCode &type) {
    return type.kind == DDS_TK_STRING;
}

bool are_comparable(const DDS_TypeCode &left, const DDS_TypeCode &right) {
    const auto is_numeric = [](const DDS_TypeCode &type) {
        return is_number(type.kind) || type.kind == DDS_TK_ENUM;
    };
    return left.kind == right.kind || (is_numeric(left) && is_numeric(right));
}

std::optional<Operation> relation_of(TokenKind kind) {
    switch (kind) {
        case TokenKind::kEqual:
            return Operation::kEqual;
        case TokenKind::kNotEqual:
            return Operation::kNotEqual;
        case TokenKind::kLess:
            return Operation::kLess;
        case TokenKind::kLessOrEqual:
            return Operation::kLessOrEqual;
        case TokenKind::kGreater:
            return Operation::kGreater;
        case TokenKind::kGreaterOrEqual:
            return Operation::kGreaterOrEqual;
        case TokenKind::kLike:
            return Operation::kLike;
        default:
            return std::nullopt;
    }
}

class Parser {
  public:
    Parser(const DDS_TypeCode &type, std::string_view expression)
        : type_(type), lexer_(expression), token_(lexer_.next()) {}

    Program run() {
        parse_or();
        if (token_.kind != TokenKind::kEnd) {
            throw Error{"AND, OR or the end of the expression expected", token_.column};
        }
        return std::move(program_);
    }

  private:
    // Counts how deep the parser is in.
    class Level {
      public:
        Level(int &depth, std::size_t column) : depth_(depth) {
            if (++depth_ > kMaximumDepth) {
                --depth_;
                throw Error{"the expression is nested too deeply", column};
            }
        }
        ~Level() { --depth_; }
        Level(const Level &) = delete;
        Level &operator=(const Level &) = delete;

      private:
        int &depth_;
    };

    Token advance() { return std::exchange(token_, lexer_.next()); }

    bool skip(TokenKind kind) {
        const bool found = token_.kind == kind;
        if (found) {
            token_ = lexer_.next();
        }
        return found;
    }

    void expect(TokenKind kind, const char *what) {
        if (!skip(kind)) {
            throw Error{std::string(what) + " expected", token_.column};
        }
    }

    void emit(Operation operation, Operand left = {}, Operand right = {}, Operand upper = {}) {
        program_.instructions.push_back({operation, left, right, upper, 0});
    }

    // `part` { `word` `part` }, where the rest is jumped over once the result is known.
    template <typename Part>
    void parse_chain(TokenKind word, Operation jump, Part part) {
        std::vector<std::size_t> jumps;
        part();
        while (skip(word)) {
            jumps.push_back(program_.instructions.size());
            emit(jump);
            part();
        }
        for (const std::size_t at : jumps) {
            program_.instructions[at].target =
                static_cast<std::uint32_t>(program_.instructions.size());
        }
    }

    void parse_or() {
        parse_chain(TokenKind::kOr, Operation::kJumpIfTrue, [this] { parse_and(); });
    }

    void parse_and() {
        parse_chain(TokenKind::kAnd, Operation::kJumpIfFalse, [this] { parse_not(); });
    }

    void parse_not() {
        const Level level(depth_, token_.column);
        if (skip(TokenKind::kNot)) {
            parse_not();
            emit(Operation::kNot);
        } else if (skip(TokenKind::kLeftParenthesis)) {
            parse_or();
            expect(TokenKind::kRightParenthesis, "')'");
        } else {
            parse_predicate();
        }
    }

    void parse_predicate() {
        Term left = parse_term();
        const bool is_negated = skip(TokenKind::kNot);
        const Token word = advance();
        if (word.kind == TokenKind::kBetween) {
            parse_between(std::move(left), is_negated);
            return;
        }
        const auto relation = relation_of(word.kind);
        if (!relation.has_value()) {
            throw Error{"comparison operator, LIKE or BETWEEN expected", word.column};
        }
        if (is_negated && *relation != Operation::kLike) {
            throw Error{"LIKE or BETWEEN expected after NOT", word.column};
        }
        Term right = parse_term();
        const bool is_like = *relation == Operation::kLike;
        const DDS_TypeCode &type = type_of_comparison(left, right, word.column);
        if (is_like && !is_text(type)) {
            throw Error{"LIKE compares strings, not " + describe(type), word.column};
        }
        const Operand first = to_operand(std::move(left), type);
        const Operand second = to_operand(std::move(right), type);
        emit(is_negated ? Operation::kNotLike : *relation, first, second);
    }

    void parse_between(Term term, bool is_negated) {
        if (!term.field.has_value()) {
            throw_no_field(term, "BETWEEN needs a field before it");
        }
        const DDS_TypeCode &type = *term.field->type;
        Term lower = parse_term();
        expect(TokenKind::kAnd, "AND");
        Term upper = parse_term();
        check_range_end(lower, type);
        check_range_end(upper, type);
        const Operand value = to_operand(std::move(term), type);
        const Operand low = to_operand(std::move(lower), type);
        const Operand high = to_operand(std::move(upper), type);
        emit(is_negated ? Operation::kNotBetween : Operation::kBetween, value, low, high);
    }

    static void check_range_end(const Term &term, const DDS_TypeCode &type) {
        if (term.field.has_value() && !are_comparable(*term.field->type, type)) {
            throw Error{"cannot compare " + describe(type) + " with " + describe(*term.field->type),
                        term.token.column};
        }
    }

    // The type that a constant of this comparison has to be of.
    const DDS_TypeCode &type_of_comparison(const Term &left, const Term &right,
                                           std::size_t column) {
        if (left.field.has_value() && right.field.has_value() &&
            !are_comparable(*left.field->type, *right.field->type)) {
            throw Error{"cannot compare " + describe(*left.field->type) + " with " +
                            describe(*right.field->type),
                        column};
        }
        if (left.field.has_value()) {
            return *left.field->type;
        }
        if (right.field.has_value()) {
            return *right.field->type;
        }
        const bool is_right_named = right.token.kind == TokenKind::kName;
        throw_no_field(left.token.kind != TokenKind::kName && is_right_named ? right : left,
                       "a comparison needs a field");
    }

    // Complains of a name that is not a field, where there is one: that says more than `message`.
    [[noreturn]] void throw_no_field(const Term &term, const char *message) {
        if (term.token.kind == TokenKind::kName) {
            FieldPath(type_).enter_member(term.token.text, term.token.column);
        }
        throw Error{message, term.token.column};
    }

    Term parse_term() {
        Term term;
        term.token = advance();
        if (term.token.kind == TokenKind::kName && starts_field(term.token)) {
            term.field = parse_field(term.token);
        } else if (!is_parameter(term) && !is_literal(term.token)) {
            throw Error{"field, constant or parameter expected", term.token.column};
        }
        return term;
    }

    // Otherwise the name may be an enumerator.
    bool starts_field(const Token &name) const {
        return token_.kind == TokenKind::kDot || token_.kind == TokenKind::kLeftBracket ||
               DDS_TypeCode_find_member_by_name(&type_, name.text.c_str()) != nullptr;
    }

    Field parse_field(const Token &name) {
        FieldPath path(type_);
        path.enter_member(name.text, name.column);
        while (true) {
            const std::size_t column = token_.column;
            if (skip(TokenKind::kDot)) {
                const Token member = advance();
                if (member.kind != TokenKind::kName) {
                    throw Error{"member name expected", member.column};
                }
                path.enter_member(member.text, member.column);
            } else if (token_.kind == TokenKind::kLeftBracket) {
                path.enter_element(parse_indices(), column);
            } else {
                return std::move(path).finish(name.column);
            }
        }
    }

    // All indices in a row: [1][2].
    std::vector<std::uint64_t> parse_indices() {
        std::vector<std::uint64_t> indices;
        while (skip(TokenKind::kLeftBracket)) {
            const Token index = advance();
            if (index.kind != TokenKind::kSigned || index.signed_value < 0) {
                throw Error{"index expected", index.column};
            }
            indices.push_back(static_cast<std::uint64_t>(index.signed_value));
            expect(TokenKind::kRightBracket, "']'");
        }
        return indices;
    }

    Operand to_operand(Term term, const DDS_TypeCode &type) {
        if (term.field.has_value()) {
            return add_field(std::move(*term.field));
        }
        if (is_parameter(term)) {
            const auto index = static_cast<std::size_t>(term.token.signed_value);
            program_.parameter_uses.push_back({index, &type, term.token.column});
            return {Operand::Kind::kParameter, last_of(program_.parameter_uses)};
        }
        if (term.token.kind == TokenKind::kName && type.kind != DDS_TK_ENUM) {
            throw_no_field(term, "field or constant expected");
        }
        program_.constants.push_back(to_constant(term.token, type));
        return {Operand::Kind::kConstant, last_of(program_.constants)};
    }

    // Each field is in the program once: it is looked up once a sample.
    Operand add_field(Field field) {
        for (std::size_t i = 0; i < program_.fields.size(); ++i) {
            if (equal_paths(program_.fields[i].path, field.path)) {
                return {Operand::Kind::kField, static_cast<std::uint32_t>(i)};
            }
        }
        program_.fields.push_back(std::move(field));
        return {Operand::Kind::kField, last_of(program_.fields)};
    }

    static bool equal_paths(const std::vector<KOLT_CdrPathStep> &left,
                            const std::vector<KOLT_CdrPathStep> &right) {
        return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                          [](const KOLT_CdrPathStep &a, const KOLT_CdrPathStep &b) {
                              return a.is_element == b.is_element && a.index == b.index;
                          });
    }

    template <typename Element>
    static std::uint32_t last_of(const std::vector<Element> &list) {
        return static_cast<std::uint32_t>(list.size() - 1);
    }

    const DDS_TypeCode &type_;
    Lexer lexer_;
    Token token_;
    Program program_;
    int depth_ = 0;
};

}  // namespace

Program parse(const DDS_TypeCode &type, std::string_view expression) {
    return Parser(type, expression).run();
}

}  // namespace kolt::filter
