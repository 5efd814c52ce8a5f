// SPDX-License-Identifier: Apache-2.0
// Converting constants and parameters.

#include "filter/literal.hpp"

#include <optional>

#include "filter/error.hpp"

namespace kolt::filter {

namespace {

Constant make_number(Value value) {
    return {value, {}, false};
}
Constant make_text(std::string text) {
    return {Absent{}, std::move(text), true};
}

std::optional<Value> number_of(const Token &token) {
    switch (token.kind) {
        case TokenKind::kSigned:
            return token.signed_value;
        case TokenKind::kUnsigned:
            return token.unsigned_value;
        case TokenKind::kReal:
            return token.real_value;
        default:
            return std::nullopt;
    }
}

std::optional<Constant> to_number(const Token &token, DDS_TCKind kind) {
    if (token.kind == TokenKind::kReal && kind == DDS_TK_FLOAT) {
        // Rounds 0.1 in the expression to the float that 0.1 in the field is.
        return make_number(double{static_cast<float>(token.real_value)});
    }
    const auto number = number_of(token);
    return number.has_value() ? std::optional(make_number(*number)) : std::nullopt;
}

std::optional<Constant> to_boolean(const Token &token) {
    if (token.kind == TokenKind::kTrue || token.kind == TokenKind::kFalse) {
        return make_number(std::int64_t{token.kind == TokenKind::kTrue});
    }
    if (token.kind == TokenKind::kSigned && (token.signed_value | 1) == 1) {
        return make_number(token.signed_value);
    }
    return std::nullopt;
}

std::optional<Constant> to_character(const Token &token) {
    if (token.kind == TokenKind::kString && token.text.size() == 1) {
        return make_number(std::int64_t{static_cast<unsigned char>(token.text.front())});
    }
    return std::nullopt;
}

std::optional<Constant> to_enumerator(const Token &token, const DDS_TypeCode &type) {
    if (token.kind == TokenKind::kSigned) {
        return make_number(token.signed_value);
    }
    if (token.kind != TokenKind::kString && token.kind != TokenKind::kName) {
        return std::nullopt;
    }
    const DDS_TypeCodeMember *member = DDS_TypeCode_find_member_by_name(&type, token.text.c_str());
    if (member == nullptr) {
        const char *name = DDS_TypeCode_name(&type);
        throw Error{
            "'" + token.text + "' is not an enumerator of " + (name != nullptr ? name : "it"),
            token.column};
    }
    return make_number(std::int64_t{member->ordinal});
}

std::optional<Constant> convert(const Token &token, const DDS_TypeCode &type) {
    switch (type.kind) {
        case DDS_TK_BOOLEAN:
            return to_boolean(token);
        case DDS_TK_CHAR:
            return to_character(token);
        case DDS_TK_ENUM:
            return to_enumerator(token, type);
        case DDS_TK_STRING:
            return token.kind == TokenKind::kString ? std::optional(make_text(token.text))
                                                    : std::nullopt;
        default:
            return is_number(type.kind) ? to_number(token, type.kind) : std::nullopt;
    }
}

std::string describe(const Token &token) {
    switch (token.kind) {
        case TokenKind::kString:
            return "the string '" + token.text + "'";
        case TokenKind::kName:
            return "'" + token.text + "'";
        case TokenKind::kTrue:
        case TokenKind::kFalse:
            return "a boolean";
        default:
            return "a number";
    }
}

// The one token that the text consists of; none when it is not one token.
std::optional<Token> only_token(std::string_view text) {
    try {
        Lexer lexer(text);
        Token token = lexer.next();
        return is_literal(token) && lexer.next().kind == TokenKind::kEnd
                   ? std::optional(std::move(token))
                   : std::nullopt;
    } catch (const Error &) {
        return std::nullopt;
    }
}

bool takes_bare_text(DDS_TCKind kind) {
    return kind == DDS_TK_STRING || kind == DDS_TK_CHAR || kind == DDS_TK_ENUM;
}

}  // namespace

bool is_number(DDS_TCKind kind) {
    switch (kind) {
        case DDS_TK_OCTET:
        case DDS_TK_SHORT:
        case DDS_TK_USHORT:
        case DDS_TK_LONG:
        case DDS_TK_ULONG:
        case DDS_TK_LONGLONG:
        case DDS_TK_ULONGLONG:
        case DDS_TK_FLOAT:
        case DDS_TK_DOUBLE:
            return true;
        default:
            return false;
    }
}

bool is_literal(const Token &token) {
    switch (token.kind) {
        case TokenKind::kName:
        case TokenKind::kSigned:
        case TokenKind::kUnsigned:
        case TokenKind::kReal:
        case TokenKind::kString:
        case TokenKind::kTrue:
        case TokenKind::kFalse:
            return true;
        default:
            return false;
    }
}

std::string describe(const DDS_TypeCode &type) {
    switch (type.kind) {
        case DDS_TK_BOOLEAN:
            return "a boolean";
        case DDS_TK_CHAR:
            return "a character";
        case DDS_TK_ENUM:
            return "an enumeration";
        case DDS_TK_STRING:
            return "a string";
        default:
            return is_number(type.kind) ? "a number" : "a constructed type";
    }
}

Constant to_constant(const Token &token, const DDS_TypeCode &type) {
    auto constant = convert(token, type);
    if (!constant.has_value()) {
        throw Error{"cannot compare " + describe(type) + " with " + describe(token), token.column};
    }
    return std::move(*constant);
}

Constant parameter_to_constant(std::string_view text, const DDS_TypeCode &type) {
    auto token = only_token(text);
    if (takes_bare_text(type.kind) && (!token.has_value() || token->kind != TokenKind::kString) &&
        (type.kind != DDS_TK_ENUM || !token.has_value())) {
        token.emplace();
        token->kind = TokenKind::kString;
        token->text = text;
    }
    if (!token.has_value()) {
        throw Error{"'" + std::string(text) + "' is not " + describe(type), 0};
    }
    auto constant = convert(*token, type);
    if (!constant.has_value()) {
        throw Error{"'" + std::string(text) + "' is not " + describe(type), 0};
    }
    return std::move(*constant);
}

}  // namespace kolt::filter
