// SPDX-License-Identifier: Apache-2.0
// The words of a filter expression (DDS 1.4, Annex B).

#include "filter/lexer.hpp"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "filter/error.hpp"

namespace kolt::filter {

namespace {

// Independent of the locale, unlike <cctype>.
bool is_digit(char c) {
    return c >= '0' && c <= '9';
}
bool is_letter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
bool is_blank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
char to_upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

struct Keyword {
    std::string_view name;
    TokenKind kind;
};

constexpr Keyword kKeywords[] = {
    {"AND", TokenKind::kAnd},         {"OR", TokenKind::kOr},     {"NOT", TokenKind::kNot},
    {"BETWEEN", TokenKind::kBetween}, {"LIKE", TokenKind::kLike}, {"TRUE", TokenKind::kTrue},
    {"FALSE", TokenKind::kFalse},
};

// Longer operators first.
constexpr Keyword kOperators[] = {
    {"<>", TokenKind::kNotEqual},
    {"!=", TokenKind::kNotEqual},
    {"<=", TokenKind::kLessOrEqual},
    {">=", TokenKind::kGreaterOrEqual},
    {"=", TokenKind::kEqual},
    {"<", TokenKind::kLess},
    {">", TokenKind::kGreater},
    {"(", TokenKind::kLeftParenthesis},
    {")", TokenKind::kRightParenthesis},
    {"[", TokenKind::kLeftBracket},
    {"]", TokenKind::kRightBracket},
    {".", TokenKind::kDot},
};

bool equals_keyword(std::string_view word, std::string_view keyword) {
    return std::equal(word.begin(), word.end(), keyword.begin(), keyword.end(),
                      [](char left, char right) { return to_upper(left) == right; });
}

constexpr std::int64_t kHighestParameter = 99;

// Digits without a sign, in base 10 or 16. False when they do not fit 64 bits.
bool to_unsigned(std::string_view digits, int base, std::uint64_t &value) {
    const char *end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, value, base);
    return result.ec == std::errc() && result.ptr == end;
}

// The magnitude with its sign. False when it is below the least 64-bit number.
bool set_integer(Token &token, std::uint64_t magnitude, bool is_negative) {
    constexpr std::uint64_t kLeast = std::uint64_t{1} << 63U;
    if (magnitude < kLeast || (is_negative && magnitude == kLeast)) {
        token.kind = TokenKind::kSigned;
        token.signed_value = static_cast<std::int64_t>(is_negative ? 0 - magnitude : magnitude);
        return true;
    }
    token.kind = TokenKind::kUnsigned;
    token.unsigned_value = magnitude;
    return !is_negative;
}

}  // namespace

bool Lexer::starts_number() const {
    const std::size_t sign = peek() == '-' || peek() == '+' ? 1 : 0;
    return is_digit(peek(sign)) || (peek(sign) == '.' && is_digit(peek(sign + 1)));
}

Token Lexer::next() {
    while (at_ < text_.size() && is_blank(text_[at_])) {
        ++at_;
    }
    Token token;
    token.column = at_ + 1;
    if (at_ == text_.size()) {
        return token;
    }
    const char c = peek();
    if (is_letter(c)) {
        return read_name(std::move(token));
    }
    if (starts_number()) {
        return read_number(std::move(token));
    }
    // A string may begin with a left quote and ends with a right one.
    if (c == '\'' || c == '`') {
        return read_string(std::move(token));
    }
    return c == '%' ? read_parameter(std::move(token)) : read_operator(std::move(token));
}

Token Lexer::read_name(Token token) {
    const std::size_t start = at_;
    while (is_letter(peek()) || is_digit(peek())) {
        ++at_;
    }
    token.kind = TokenKind::kName;
    token.text = text_.substr(start, at_ - start);
    for (const Keyword &keyword : kKeywords) {
        if (equals_keyword(token.text, keyword.name)) {
            token.kind = keyword.kind;
        }
    }
    return token;
}

Token Lexer::read_number(Token token) {
    const bool is_negative = peek() == '-';
    if (peek() == '-' || peek() == '+') {
        ++at_;
    }
    const std::size_t start = at_;
    const bool is_hexadecimal = peek() == '0' && to_upper(peek(1)) == 'X';
    bool is_real = false;
    while (
        is_letter(peek()) || is_digit(peek()) || peek() == '.' ||
        (!is_hexadecimal && (peek() == '-' || peek() == '+') && to_upper(text_[at_ - 1]) == 'E')) {
        is_real = is_real || peek() == '.' || (!is_hexadecimal && to_upper(peek()) == 'E');
        ++at_;
    }
    const std::string_view digits = text_.substr(start, at_ - start);
    if (is_real) {
        const char *end = digits.data() + digits.size();
        const auto result = std::from_chars(digits.data(), end, token.real_value);
        if (result.ec != std::errc() || result.ptr != end) {
            throw Error{"malformed number", token.column};
        }
        token.kind = TokenKind::kReal;
        token.real_value = is_negative ? -token.real_value : token.real_value;
        return token;
    }
    std::uint64_t magnitude = 0;
    if (!to_unsigned(digits.substr(is_hexadecimal ? 2 : 0), is_hexadecimal ? 16 : 10, magnitude) ||
        !set_integer(token, magnitude, is_negative)) {
        throw Error{"malformed number, or one that needs more than 64 bits", token.column};
    }
    return token;
}

Token Lexer::read_string(Token token) {
    token.kind = TokenKind::kString;
    ++at_;
    while (at_ < text_.size()) {
        const char c = text_[at_++];
        if (c != '\'') {
            token.text.push_back(c);
        } else if (peek() == '\'') {
            // Two quotes stand for one.
            token.text.push_back(c);
            ++at_;
        } else {
            return token;
        }
    }
    throw Error{"string without closing quote", token.column};
}

Token Lexer::read_parameter(Token token) {
    ++at_;
    const std::size_t start = at_;
    while (is_digit(peek())) {
        ++at_;
    }
    std::uint64_t index = 0;
    if (!to_unsigned(text_.substr(start, at_ - start), 10, index) || index > kHighestParameter) {
        throw Error{"a parameter is %0 to %99", token.column};
    }
    token.kind = TokenKind::kParameter;
    token.signed_value = static_cast<std::int64_t>(index);
    return token;
}

Token Lexer::read_operator(Token token) {
    for (const Keyword &candidate : kOperators) {
        if (text_.substr(at_).starts_with(candidate.name)) {
            at_ += candidate.name.size();
            token.kind = candidate.kind;
            return token;
        }
    }
    throw Error{"unexpected character", token.column};
}

}  // namespace kolt::filter
