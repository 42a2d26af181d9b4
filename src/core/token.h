// Tokens of the expression language and the display names that parse errors quote verbatim.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qm {

enum class TokenKind : std::int32_t {
    Expression = 0,  // any expression, and the end of the token list
    Unrecognized = 1,
    StringLiteral = 2,
    NumericLiteral = 3,
    BooleanLiteral = 4,
    Function = 5,
    Variable = 6,
    Property = 7,
    Comma = 8,
    OpenParen = 9,
    CloseParen = 10,
    OpenBracket = 11,
    CloseBracket = 12,
    Assign = 13,
    AddAssign = 14,
    SubtractAssign = 15,
    MultiplyAssign = 16,
    DivideAssign = 17,
    ModuloAssign = 18,
    AndAssign = 19,
    OrAssign = 20,
    ConcatAssign = 21,
    Not = 22,
    Add = 23,
    Subtract = 24,
    Multiply = 25,
    Divide = 26,
    Modulo = 27,
    And = 28,
    Or = 29,
    Concat = 30,
    Equal = 31,
    NotEqual = 32,
    Less = 33,
    LessOrEqual = 34,
    Greater = 35,
    GreaterOrEqual = 36,
    Question = 37,
    Colon = 38,
};

struct Token {
    TokenKind kind = TokenKind::Expression;
    std::u16string text;

    friend bool operator==(const Token&, const Token&) = default;
};

using TokenList = std::vector<Token>;

// The display name of a kind, e.g. "Numeric Literal".
std::u16string_view TokenKindName(TokenKind kind);

// Never fails: characters it cannot place become Unrecognized tokens.
TokenList Tokenize(std::u16string_view text);

}  // namespace qm
