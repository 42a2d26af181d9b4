// Expression text to tree, and tree back to text. The grammar has no precedence: binary operators
// group strictly left to right, assignments and the ternary take everything to their right.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/expression.h"

namespace qm {

// Throws ParseError with one of the parser's messages.
M2::ExpressionPtr Parse(std::u16string_view text);

// As Parse, but a failure is raised again as a MacroError whose message ends with
// "\r\nwhile parsing expression:\r\n\t" and the text: what a macro sees.
M2::ExpressionPtr ParseForMacro(std::u16string_view text);

enum class SegmentClass {
    Punctuation,
    PropertyName,
    BooleanLiteral,
    NumericLiteral,
    StringLiteral,
    Variable,
    FunctionName,
};

struct Segment {
    SegmentClass cls;
    std::u16string text;
};

std::vector<Segment> Print(const M2::Expression& expression);
// The segments joined: the expression's text.
std::u16string PrintText(const M2::Expression& expression);

}  // namespace qm
