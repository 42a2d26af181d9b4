// The user-facing texts of the expression language, in one list. Templates carry numbered
// placeholders filled by FormatMessage.
#pragma once

#include <string_view>

namespace qm::msg {

// Parser
inline constexpr std::u16string_view kUnexpectedToken = u"Unexpected '[1]' ([2])\r\nexpected ([3])";
inline constexpr std::u16string_view kUnexpectedEnd = u"Unexpected end of expression\r\nexpected ([1])";
inline constexpr std::u16string_view kUnexpectedPrimary =
    u"Unexpected '[1]' ([2])\r\nexpected (Variable), (Function) or end of expression";
inline constexpr std::u16string_view kUnexpectedLeftover = u"Unexpected '[1]' ([2])\r\nexpected end of expression";
inline constexpr std::u16string_view kWhileParsing = u"\r\nwhile parsing expression:\r\n\t";
inline constexpr std::u16string_view kNestedTooDeeply =
    u"Expression is nested too deeply: more than [1] levels of parentheses, operators or accessors";

// Evaluator
inline constexpr std::u16string_view kUnknownOperator = u"Unknown [1] '[2]'";
inline constexpr std::u16string_view kUnaryNeedsNumeric = u"Unary '[1]' operator requires operand to be of type Numeric";
inline constexpr std::u16string_view kOperandsNeedNumeric = u"'[1]' operator requires operands to be of type Numeric";
inline constexpr std::u16string_view kDivisionByZero = u"Division by zero";
inline constexpr std::u16string_view kCompareObjects = u"This binary operator ([1]) cannot be used to compare objects";
inline constexpr std::u16string_view kExpectedLValue = u"Expected LValue";
inline constexpr std::u16string_view kExpectedObject = u"Expected an object at member access: [1] at [2]";
inline constexpr std::u16string_view kExpectedArray = u"Expected an array at index access: [1] at[2]";
inline constexpr std::u16string_view kUnknownFunction = u"Unknown function '[1]'";
// Messages of our own for the cases the operators would otherwise reach only as internal errors.
// "%" by zero ("Division by zero" belongs to "/").
inline constexpr std::u16string_view kModuloByZero = u"Modulo by zero";
// An operand that has no text ("+" concatenation, "&", string comparison): an array or an object.
inline constexpr std::u16string_view kOperandNeedsString = u"'[1]' operator cannot use [2] as a String";
// An operand that has no truth value ("!", "&&", "||", "?"): an array, an object or a time.
inline constexpr std::u16string_view kOperandNeedsBoolean = u"'[1]' operator cannot use [2] as a Boolean";
// Comparison of arrays: arrays have no order and the operators have no array equality.
inline constexpr std::u16string_view kCompareArrays = u"This binary operator ([1]) cannot be used to compare arrays";
// An index whose value has no text (an array or an object).
inline constexpr std::u16string_view kIndexNeedsKey = u"Expected a String or Numeric index at index access: [1] at [2]";
// A statement condition (If, While) whose value has no truth value.
inline constexpr std::u16string_view kConditionNeedsBoolean = u"Expected a Boolean condition: [1] at [2]";

// Log lines
inline constexpr std::u16string_view kLogEvaluating = u"\tEvaluating expression: ";
inline constexpr std::u16string_view kLogValue = u"\t\tValue: ";
inline constexpr std::u16string_view kLogNewValue = u"\tNew Value: ";

}  // namespace qm::msg
