#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/text.h"
#include "core/token.h"

namespace qm {
namespace {

using K = TokenKind;

// Tokens as "Kind name 'text'" lines, so a failure shows the whole list.
std::string Lex(std::u16string_view input) {
    std::string out;
    for (const Token& t : Tokenize(input)) out += ToUtf8(TokenKindName(t.kind)) + " '" + ToUtf8(t.text) + "'\n";
    return out;
}

TEST(Lexer, Tokens) {
    const struct {
        std::u16string input;
        std::string tokens;
    } cases[] = {
        {u"$a+=1", "Variable 'a'\nAddition Assignment Operator '+='\nNumeric Literal '1'\n"},
        {u"$x.5", "Variable 'x'\nNumeric Literal '.5'\n"},
        {u"1.2.3 1.x", "Numeric Literal '1.2.3'\nNumeric Literal '1.'\nFunction 'x'\n"},
        {u"True true false1", "Function 'True'\nBoolean Literal 'true'\nFunction 'false1'\n"},
        {u"1 2", "Numeric Literal '1'\nNumeric Literal '2'\n"},
        // A name never starts with a digit: "$5" is an unnamed variable and a number.
        {u"$5", "Variable ''\nNumeric Literal '5'\n"},
        {u"$a . \r\n b.[", "Variable 'a'\nProperty 'b'\nProperty ''\nOpen Square Bracket '['\n"},
        // A property still waiting for its name at the end is never closed.
        {u"$a. ", "Variable 'a'\n"},
        {std::u16string(u"1\0\t2", 4), "Numeric Literal '1'\nNumeric Literal '2'\n"},
        {u"\"a\\qb\\t\\\"\\\\\\n\\r c\"", "String Literal 'aqb\t\"\\\n\r c'\n"},
        // An unclosed string is lost with everything after its quote.
        {u"1 + \"abc", "Numeric Literal '1'\nAddition Operator '+'\n"},
        {u"\"abc\\\"", ""},
        {u"%= &&= ||= &= && || & !==",
         "Modulo AssignmentOperator '%='\nLogical And Assignment Operator '&&='\nLogical Or Assignment Operator "
         "'||='\nString Concatenation Assignment Operator '&='\nLogical And Operator '&&'\nLogical Or Operator "
         "'||'\nString Concatenation Operator '&'\nNot Equal To Operator '!='\nAssignment Operator '='\n"},
        {u"<=>?:", "Less Than Or Equal To Operator '<='\nGreater Than Operator '>'\nTernary Conditional Operator "
                   "'?'\nTernary Conditional Operator ':'\n"},
        {u"a | b", "Function 'a'\nUnrecognized Token '|'\nFunction 'b'\n"},
        {u"|||=", "Logical Or Operator '||'\nUnrecognized Token '|'\nAssignment Operator '='\n"},
        {u"#\U0001F600", "Unrecognized Token '#'\nUnrecognized Token '\U0001F600'\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(Lex(c.input), c.tokens) << ToUtf8(c.input);
}

TEST(Lexer, EveryOperatorSpelling) {
    const TokenList tokens = Tokenize(u", ( ) [ ] = += -= *= /= %= &&= ||= &= ! + - * / % && || & == != < <= > >= ? :");
    ASSERT_EQ(tokens.size(), 31u);
    for (size_t i = 0; i < tokens.size(); ++i) EXPECT_EQ(tokens[i].kind, static_cast<K>(8 + i)) << i;
}

TEST(Lexer, KindNames) {
    EXPECT_EQ(TokenKindName(K::Expression), u"Expression");
    EXPECT_EQ(TokenKindName(K::CloseBracket), u"Close Square Bracket");
    EXPECT_EQ(TokenKindName(K::GreaterOrEqual), u"Greater Than Or Equal To Operator");
    EXPECT_EQ(TokenKindName(K::Colon), u"Ternary Conditional Operator");
    EXPECT_TRUE(TokenKindName(static_cast<K>(39)).empty());
}

}  // namespace
}  // namespace qm
