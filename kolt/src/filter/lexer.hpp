// SPDX-License-Identifier: Apache-2.0
// The words of a filter expression.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kolt::filter {

enum class TokenKind {
    kEnd,
    kName,      // a field, a member or an enumerator
    kSigned,    // an integer that fits 64 bits with a sign
    kUnsigned,  // a larger one
    kReal,
    kString,
    kParameter,  // %n
    kLeftParenthesis,
    kRightParenthesis,
    kLeftBracket,
    kRightBracket,
    kDot,
    kEqual,
    kNotEqual,
    kLess,
    kLessOrEqual,
    kGreater,
    kGreaterOrEqual,
    kLike,
    kBetween,
    kAnd,
    kOr,
    kNot,
    kTrue,
    kFalse
};

struct Token {
    TokenKind kind = TokenKind::kEnd;
    std::size_t column = 1;
    std::string text;               // kName: as written; kString: without quotes
    std::int64_t signed_value = 0;  // kSigned, kParameter
    std::uint64_t unsigned_value = 0;
    double real_value = 0.0;
};

// Cuts a text into tokens. Functions throw Error. The text must outlive the lexer.
class Lexer {
  public:
    explicit Lexer(std::string_view text) : text_(text) {}

    Token next();

  private:
    char peek(std::size_t ahead = 0) const {
        return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0';
    }
    bool starts_number() const;
    Token read_name(Token token);
    Token read_number(Token token);
    Token read_string(Token token);
    Token read_parameter(Token token);
    Token read_operator(Token token);

    std::string_view text_;
    std::size_t at_ = 0;
};

}  // namespace kolt::filter
