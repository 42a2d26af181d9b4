#include "core/expression.h"

#include <array>
#include <utility>

#include "core/value.h"

namespace qm::M2 {

Operator OperatorFromText(std::u16string_view text) {
    static constexpr std::array<std::pair<std::u16string_view, Operator>, 24> kOperators{{
        {u"=", Operator::Assign},        {u"+=", Operator::AddAssign},     {u"-=", Operator::SubtractAssign},
        {u"*=", Operator::MultiplyAssign}, {u"/=", Operator::DivideAssign}, {u"%=", Operator::ModuloAssign},
        {u"&&=", Operator::AndAssign},   {u"||=", Operator::OrAssign},     {u"&=", Operator::ConcatAssign},
        {u"+", Operator::Add},           {u"-", Operator::Subtract},       {u"*", Operator::Multiply},
        {u"/", Operator::Divide},        {u"%", Operator::Modulo},         {u"==", Operator::Equal},
        {u"!=", Operator::NotEqual},     {u"<", Operator::Less},           {u">", Operator::Greater},
        {u"<=", Operator::LessOrEqual},  {u">=", Operator::GreaterOrEqual}, {u"&&", Operator::And},
        {u"||", Operator::Or},           {u"&", Operator::Concat},         {u"!", Operator::Not},
    }};
    for (const auto& [spelling, op] : kOperators) {
        if (spelling == text) return op;
    }
    return Operator::Unknown;
}

void UnaryOp::SetName(std::u16string text) {
    name = std::move(text);
    op = OperatorFromText(name);
}

void BinaryOp::SetName(std::u16string text) {
    name = std::move(text);
    op = OperatorFromText(name);
}

void Expression::SetText(std::u16string text) {
    text_ = std::move(text);
    literal_.isInteger = IsIntegerText(text_);
    literal_.isNumeric = IsNumericText(text_);
    literal_.boolean = BooleanText(text_);
    literal_.integer = ExtractInteger(text_);
    literal_.decimal = ExtractDecimal(text_);
}

void Expression::AppendText(std::u16string_view more) {
    SetText(text_ + std::u16string(more));
}

ExpressionPtr MakeLiteral(std::u16string text) {
    auto e = std::make_shared<Expression>();
    e->SetText(std::move(text));
    return e;
}

}  // namespace qm::M2
