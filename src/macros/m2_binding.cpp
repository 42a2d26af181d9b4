// The field descriptions of the macro format, and the one instantiation of the binding engine for
// them. The expression tree belongs to the expression core, which knows nothing of XML: it is
// bound here from outside, through its description alone.
#include <string>
#include <tuple>

#include "core/format.h"
#include "core/text.h"
#include "macros/messages.h"
#include "macros/m2_schema.h"

namespace qm::xml {

using namespace M2;

// --- expressions ------------------------------------------------------------------------------

template <>
struct Binding<Var> {
    static constexpr auto kFields = std::tuple{Text(&Var::name, &Var::cdata)};
};

template <>
struct Binding<Prop> {
    static constexpr auto kFields = std::tuple{Text(&Prop::name, &Prop::cdata)};
};

template <>
struct Binding<Call> {
    static constexpr auto kFields = std::tuple{Attribute(u"name", &Call::name), List(u"Arg", &Call::args)};
};

template <>
struct Binding<UnaryOp> {
    static constexpr auto kFields =
        std::tuple{Attribute(u"name", &UnaryOp::name, &UnaryOp::SetName), Slot(u"Operand", &UnaryOp::operand)};
};

template <>
struct Binding<BinaryOp> {
    static constexpr auto kFields = std::tuple{Attribute(u"name", &BinaryOp::name, &BinaryOp::SetName),
                                               Slot(u"Left", &BinaryOp::left), Slot(u"Right", &BinaryOp::right)};
};

template <>
struct Binding<TernaryOp> {
    static constexpr auto kFields =
        std::tuple{Slot(u"Condition", &TernaryOp::condition), Slot(u"True", &TernaryOp::whenTrue),
                   Slot(u"False", &TernaryOp::whenFalse)};
};

// The content of every expression holder ("Expression", "Condition", "Arg", "Index" ...): at most
// one primary, then member steps, then the literal text.
//
// Literal text belongs to a holder without a primary only: a holder with a primary ignores any
// text it holds (and never writes one). Blank text between the child elements is indentation
// (see binding.h); a literal that is blank only is written as CDATA when the holder has member
// steps, so it reads back as text.
template <>
struct Binding<Expression> {
    static bool IsCData(const Expression& e) { return e.cdata; }

    static constexpr auto kFields = std::tuple{
        Choice(u"Primary", &Expression::primary, Alternative<Var>(u"Var"), Alternative<Call>(u"Call"),
               Alternative<BinaryOp>(u"BinaryOp"), Alternative<UnaryOp>(u"UnaryOp"),
               Alternative<TernaryOp>(u"TernaryOp")),
        ChoiceList(u"Member", &Expression::members, Alternative<Prop>(u"Prop"), Alternative<ExpressionPtr>(u"Index")),
        Text(+[](const Expression& e) -> std::u16string_view {
                 if (!e.IsLiteral()) return {};
                 return e.text();
             },
             +[](Expression& e, std::u16string text, bool cdata) {
                 if (!e.IsLiteral()) return;
                 e.SetText(std::move(text));
                 e.cdata = e.cdata || cdata;
             },
             &IsCData)};

    // Evaluating, printing and freeing a tree recurse over it: a file may not hold a tree deeper
    // than the parser would build.
    static constexpr char kNesting = 0;
    static void Begin(Expression&, ReadSession& session) {
        if (++session.Counter(&kNesting) > kMaxExpressionDepth) {
            session.Fail(FormatMessage(macros::msg::kExpressionTooDeep, {Ascii(std::to_string(kMaxExpressionDepth))}));
        }
    }
    static void End(Expression&, ReadSession& session) { --session.Counter(&kNesting); }
};

// --- statements -------------------------------------------------------------------------------

template <>
struct Binding<Statement> {
    static constexpr std::u16string_view kGroup = u"Statement";
    static constexpr auto kAlternatives = std::tuple{
        Alternative(u"ForEach", &Statement::forEach),          Alternative(u"If", &Statement::ifStatement),
        Alternative(u"Else", &Statement::elseStatement),       Alternative(u"While", &Statement::whileStatement),
        Alternative(u"Expression", &Statement::expression),    Alternative(u"Comment", &Statement::comment),
        Alternative(u"Break", &Statement::breakLevels),        Alternative(u"Continue", &Statement::continueLevels),
        Alternative(u"Return", &Statement::returnValue)};
};

template <>
struct Binding<ForEach> {
    static constexpr std::u16string_view kName = u"ForEach";
    static constexpr auto kFields =
        std::tuple{Attribute(u"collapsed", &ForEach::collapsed), Attribute(u"var", &ForEach::var),
                   Slot(u"Array", &ForEach::array), ChoiceList(&ForEach::statements)};
};

template <>
struct Binding<If> {
    static constexpr std::u16string_view kName = u"If";
    static constexpr auto kFields = std::tuple{Attribute(u"collapsed", &If::collapsed),
                                               Slot(u"Condition", &If::condition), ChoiceList(&If::statements)};
};

template <>
struct Binding<Else> {
    static constexpr std::u16string_view kName = u"Else";
    static constexpr auto kFields = std::tuple{Attribute(u"collapsed", &Else::collapsed), ChoiceList(&Else::statements)};
};

template <>
struct Binding<While> {
    static constexpr std::u16string_view kName = u"While";
    static constexpr auto kFields = std::tuple{Attribute(u"collapsed", &While::collapsed),
                                               Slot(u"Condition", &While::condition), ChoiceList(&While::statements)};
};

template <>
struct Binding<Comment> {
    static constexpr std::u16string_view kName = u"Comment";
    static constexpr auto kFields = std::tuple{Attribute(u"text", &Comment::text),
                                               Attribute(u"collapsed", &Comment::collapsed),
                                               ChoiceList(&Comment::statements)};
};

// --- macros -----------------------------------------------------------------------------------

template <>
struct Binding<Param> {
    static constexpr std::u16string_view kName = u"Param";
    static constexpr auto kFields = std::tuple{Attribute(u"name", &Param::name)};
};

template <>
struct Binding<Function> {
    static constexpr std::u16string_view kName = u"Function";
    static constexpr auto kFields =
        std::tuple{Attribute(u"name", &Function::name), Attribute(u"collapsed", &Function::collapsed),
                   List(&Function::params), ChoiceList(&Function::statements)};
};

template <>
struct Binding<Macro> {
    static constexpr std::u16string_view kName = u"Macro";
    static constexpr auto kFields = std::tuple{
        Attribute(u"id", &Macro::id),           Attribute(u"name", &Macro::name),
        Attribute(u"category", &Macro::category), Attribute(u"description", &Macro::description),
        Attribute(u"publishDate", &Macro::publishDate), Attribute(u"version", &Macro::version),
        ChoiceList(&Macro::statements),         List(&Macro::functions)};
};

template <>
struct Binding<Macros> {
    static constexpr std::u16string_view kName = u"Macros";
    static constexpr auto kFields =
        std::tuple{Attribute(u"display", &Macros::display), Attribute(u"compact", &Macros::compact),
                   Attribute(u"loggingEnabled", &Macros::loggingEnabled),
                   Attribute(u"loadState", &Macros::loadState), List(&Macros::macros)};
};

template class Child<ForEach>;
template class Child<If>;
template class Child<Else>;
template class Child<While>;
template class Child<Comment>;
template class Child<Param>;
template class Child<Function>;
template class Child<Macro>;
template class Child<Macros>;

}  // namespace qm::xml

namespace qm::M2 {

StatementKind Statement::kind() const {
    if (forEach) return StatementKind::ForEach;
    if (ifStatement) return StatementKind::If;
    if (elseStatement) return StatementKind::Else;
    if (whileStatement) return StatementKind::While;
    if (expression) return StatementKind::Expression;
    if (comment) return StatementKind::Comment;
    if (breakLevels) return StatementKind::Break;
    if (continueLevels) return StatementKind::Continue;
    if (returnValue) return StatementKind::Return;
    return StatementKind::None;
}

}  // namespace qm::M2
