#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/text.h"
#include "core/token.h"

namespace qm {
namespace {

using K = TokenKind;

struct Expected {
    TokenKind kind;
    std::string text;  // UTF-8, for readable failures
};

struct LexCase {
    std::u16string input;
    std::vector<Expected> tokens;
};

std::string Describe(const TokenList& tokens) {
    std::string out;
    for (const Token& t : tokens) {
        out += "[" + ToUtf8(TokenKindName(t.kind)) + " '" + ToUtf8(t.text) + "'] ";
    }
    return out;
}

void ExpectTokens(const LexCase& c) {
    const TokenList actual = Tokenize(c.input);
    SCOPED_TRACE("input: " + ToUtf8(c.input) + "\nactual: " + Describe(actual));
    ASSERT_EQ(actual.size(), c.tokens.size());
    for (size_t i = 0; i < actual.size(); ++i) {
        EXPECT_EQ(actual[i].kind, c.tokens[i].kind) << "token " << i;
        EXPECT_EQ(ToUtf8(actual[i].text), c.tokens[i].text) << "token " << i;
    }
}

TEST(Lexer, NamesNumbersAndVariables) {
    const LexCase cases[] = {
        {u"$a+=1", {{K::Variable, "a"}, {K::AddAssign, "+="}, {K::NumericLiteral, "1"}}},
        {u".5", {{K::NumericLiteral, ".5"}}},
        {u"$x.5", {{K::Variable, "x"}, {K::NumericLiteral, ".5"}}},
        {u"1.2.3", {{K::NumericLiteral, "1.2.3"}}},
        {u"1 2", {{K::NumericLiteral, "1"}, {K::NumericLiteral, "2"}}},
        {u"1a", {{K::NumericLiteral, "1"}, {K::Function, "a"}}},
        {u"1.x", {{K::NumericLiteral, "1."}, {K::Function, "x"}}},
        {u"True", {{K::Function, "True"}}},
        {u"true false", {{K::BooleanLiteral, "true"}, {K::BooleanLiteral, "false"}}},
        {u"trueish", {{K::Function, "trueish"}}},
        {u"a1 _b", {{K::Function, "a1"}, {K::Function, "_b"}}},
        {u"f($x)", {{K::Function, "f"}, {K::OpenParen, "("}, {K::Variable, "x"}, {K::CloseParen, ")"}}},
        // A name never starts with a digit, so "$5" is an unnamed variable and a number.
        {u"$", {{K::Variable, ""}}},
        {u"$5", {{K::Variable, ""}, {K::NumericLiteral, "5"}}},
        {u"$a_1.b2", {{K::Variable, "a_1"}, {K::Property, "b2"}}},
        {u"$a . b", {{K::Variable, "a"}, {K::Property, "b"}}},
        {u"$a.\r\n\tb", {{K::Variable, "a"}, {K::Property, "b"}}},
        {u"$a.[0]", {{K::Variable, "a"}, {K::Property, ""}, {K::OpenBracket, "["}, {K::NumericLiteral, "0"},
                     {K::CloseBracket, "]"}}},
        {u"$a..b", {{K::Variable, "a"}, {K::Property, ""}, {K::Property, "b"}}},
        // A property still waiting for its name at the end is never closed.
        {u"$a.", {{K::Variable, "a"}}},
        {u"$a. ", {{K::Variable, "a"}}},
        {u"1\t\r\n2", {{K::NumericLiteral, "1"}, {K::NumericLiteral, "2"}}},
        {std::u16string(u"1\0 2", 4), {{K::NumericLiteral, "1"}, {K::NumericLiteral, "2"}}},
        {u"", {}},
        {u" \t ", {}},
    };
    for (const LexCase& c : cases) ExpectTokens(c);
}

TEST(Lexer, StringLiterals) {
    const LexCase cases[] = {
        {u"\"abc\"", {{K::StringLiteral, "abc"}}},
        {u"\"\"", {{K::StringLiteral, ""}}},
        {u"\" a\tb \"", {{K::StringLiteral, " a\tb "}}},
        {u"\"a\\qb\"", {{K::StringLiteral, "aqb"}}},
        {u"\"a\\tb\"", {{K::StringLiteral, "a\tb"}}},
        {u"\"\\\"\\\\\\n\\r\"", {{K::StringLiteral, "\"\\\n\r"}}},
        {u"\"$a.b(1)\"", {{K::StringLiteral, "$a.b(1)"}}},
        {u"\"x\"\"y\"", {{K::StringLiteral, "x"}, {K::StringLiteral, "y"}}},
        // An unclosed string is lost together with everything after its quote.
        {u"\"abc", {}},
        {u"1 + \"abc", {{K::NumericLiteral, "1"}, {K::Add, "+"}}},
        {u"\"abc\\", {}},
        {u"\"abc\\\"", {}},
    };
    for (const LexCase& c : cases) ExpectTokens(c);
}

TEST(Lexer, OperatorsAndPunctuation) {
    const LexCase cases[] = {
        {u"= += -= *= /= %= &&= ||= &=",
         {{K::Assign, "="}, {K::AddAssign, "+="}, {K::SubtractAssign, "-="}, {K::MultiplyAssign, "*="},
          {K::DivideAssign, "/="}, {K::ModuloAssign, "%="}, {K::AndAssign, "&&="}, {K::OrAssign, "||="},
          {K::ConcatAssign, "&="}}},
        {u"! + - * / % && || &",
         {{K::Not, "!"}, {K::Add, "+"}, {K::Subtract, "-"}, {K::Multiply, "*"}, {K::Divide, "/"},
          {K::Modulo, "%"}, {K::And, "&&"}, {K::Or, "||"}, {K::Concat, "&"}}},
        {u"== != < <= > >= ? :",
         {{K::Equal, "=="}, {K::NotEqual, "!="}, {K::Less, "<"}, {K::LessOrEqual, "<="}, {K::Greater, ">"},
          {K::GreaterOrEqual, ">="}, {K::Question, "?"}, {K::Colon, ":"}}},
        {u"()[],",
         {{K::OpenParen, "("}, {K::CloseParen, ")"}, {K::OpenBracket, "["}, {K::CloseBracket, "]"},
          {K::Comma, ","}}},
        // Operators are read greedily, never across more than their own spelling.
        {u"!==", {{K::NotEqual, "!="}, {K::Assign, "="}}},
        {u"===", {{K::Equal, "=="}, {K::Assign, "="}}},
        {u"&&&", {{K::And, "&&"}, {K::Concat, "&"}}},
        {u"&&&=", {{K::And, "&&"}, {K::ConcatAssign, "&="}}},
        {u"--1", {{K::Subtract, "-"}, {K::Subtract, "-"}, {K::NumericLiteral, "1"}}},
        {u"<>", {{K::Less, "<"}, {K::Greater, ">"}}},
        {u"$a-=$b", {{K::Variable, "a"}, {K::SubtractAssign, "-="}, {K::Variable, "b"}}},
        // A single bar is no operator.
        {u"a | b", {{K::Function, "a"}, {K::Unrecognized, "|"}, {K::Function, "b"}}},
        {u"|||", {{K::Or, "||"}, {K::Unrecognized, "|"}}},
        {u"|=", {{K::Unrecognized, "|"}, {K::Assign, "="}}},
        {u"#@'\\", {{K::Unrecognized, "#"}, {K::Unrecognized, "@"}, {K::Unrecognized, "'"}, {K::Unrecognized, "\\"}}},
        {u"\u00e9", {{K::Unrecognized, "\u00e9"}}},
        {u"1\U0001F600", {{K::NumericLiteral, "1"}, {K::Unrecognized, "\U0001F600"}}},
    };
    for (const LexCase& c : cases) ExpectTokens(c);
}

TEST(Lexer, KindNames) {
    EXPECT_EQ(TokenKindName(K::Expression), u"Expression");
    EXPECT_EQ(TokenKindName(K::Unrecognized), u"Unrecognized Token");
    EXPECT_EQ(TokenKindName(K::CloseBracket), u"Close Square Bracket");
    EXPECT_EQ(TokenKindName(K::ModuloAssign), u"Modulo AssignmentOperator");
    EXPECT_EQ(TokenKindName(K::ConcatAssign), u"String Concatenation Assignment Operator");
    EXPECT_EQ(TokenKindName(K::GreaterOrEqual), u"Greater Than Or Equal To Operator");
    EXPECT_EQ(TokenKindName(K::Question), u"Ternary Conditional Operator");
    EXPECT_EQ(TokenKindName(K::Colon), u"Ternary Conditional Operator");
    for (int k = 0; k <= 38; ++k) EXPECT_FALSE(TokenKindName(static_cast<K>(k)).empty()) << k;
    EXPECT_TRUE(TokenKindName(static_cast<K>(39)).empty());
    EXPECT_TRUE(TokenKindName(static_cast<K>(-1)).empty());
}

}  // namespace
}  // namespace qm
