// The element structures of the current macro format. A macro is held in memory, stored and
// exchanged as these structures: its statements are the elements below and its expressions are
// the expression tree itself (M2::Expression), whose element name is that of the slot holding it
// ("Condition", "Array", "Arg", "Left" ...).
//
// Every structure keeps the back-pointer `owner` to the container holding it: a statement's owner
// is its Statement choice, whose owner is the statement list, whose owner is the element whose
// block it is.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "core/expression.h"
#include "xml/binding.h"
#include "xml/xml_strings.h"

namespace qm::M2 {

struct Statement;
struct ForEach;
struct If;
struct Else;
struct While;
struct Comment;
struct Function;
struct Param;
struct Macro;
struct Macros;

// The bindings live in m2_binding.cpp, the only file that instantiates the engine for them.
}  // namespace qm::M2

namespace qm::xml {
template <> struct Binding<M2::Expression>;
template <> struct Binding<M2::Statement>;
template <> struct Binding<M2::ForEach>;
template <> struct Binding<M2::If>;
template <> struct Binding<M2::Else>;
template <> struct Binding<M2::While>;
template <> struct Binding<M2::Comment>;
template <> struct Binding<M2::Param>;
template <> struct Binding<M2::Function>;
template <> struct Binding<M2::Macro>;
template <> struct Binding<M2::Macros>;

extern template class Child<M2::ForEach>;
extern template class Child<M2::If>;
extern template class Child<M2::Else>;
extern template class Child<M2::While>;
extern template class Child<M2::Comment>;
extern template class Child<M2::Param>;
extern template class Child<M2::Function>;
extern template class Child<M2::Macro>;
extern template class Child<M2::Macros>;
}  // namespace qm::xml

namespace qm::M2 {

// The binding of the expression content every holder element carries ("Expression", "Condition",
// "Arg" ...): at most one primary, member steps, literal text. IsCData tells how the text goes out.
using T_Expression = xml::Binding<Expression>;

// A block: the statements of a macro, a function or a compound statement, in order.
using Statements = xml::ChildList<Statement>;

// The expressions held by the Break, Continue and Return statements, named after their elements.
// They are all M2::Expression: code that needs distinct types (exception tags) declares its own.
using Expression_Break = Expression;
using Expression_Continue = Expression;
using Expression_Return = Expression;

enum class StatementKind { None, ForEach, If, Else, While, Expression, Comment, Break, Continue, Return };

// One statement: a choice of the nine statement elements, of which exactly one slot is set.
struct Statement : xml::ChoiceGroup {
    xml::ChoiceSlot<ForEach> forEach;
    xml::ChoiceSlot<If> ifStatement;
    xml::ChoiceSlot<Else> elseStatement;
    xml::ChoiceSlot<While> whileStatement;
    xml::ChoiceSlot<Expression> expression;      // "Expression": an expression statement
    xml::ChoiceSlot<Comment> comment;
    xml::ChoiceSlot<Expression> breakLevels;     // "Break": how many loops to leave (may be empty)
    xml::ChoiceSlot<Expression> continueLevels;  // "Continue"
    xml::ChoiceSlot<Expression> returnValue;     // "Return": the value (may be empty)

    // The first slot that is set.
    StatementKind kind() const;
};

struct ForEach : xml::Child<ForEach> {
    xml::Defaulted<bool> collapsed{false};  // editor state only
    std::u16string var;                     // the loop variable's name
    ExpressionPtr array;                    // "Array": the collection iterated
    Statements statements;
};

struct If : xml::Child<If> {
    xml::Defaulted<bool> collapsed{false};
    ExpressionPtr condition;
    Statements statements;
};

// Follows its If as the next sibling statement.
struct Else : xml::Child<Else> {
    xml::Defaulted<bool> collapsed{false};
    Statements statements;
};

struct While : xml::Child<While> {
    xml::Defaulted<bool> collapsed{false};
    ExpressionPtr condition;
    Statements statements;
};

// A comment line; its statements are commented out: kept, never run.
struct Comment : xml::Child<Comment> {
    std::u16string text;
    xml::Defaulted<bool> collapsed{false};
    Statements statements;
};

struct Param : xml::Child<Param> {
    std::u16string name;
};

struct Function : xml::Child<Function> {
    std::u16string name;
    xml::Defaulted<bool> collapsed{false};
    xml::ChildList<Param> params;
    Statements statements;
};

struct Macro : xml::Child<Macro> {
    xml::Defaulted<std::u16string> id;       // default set by the creator of the macro
    std::u16string name;
    std::u16string category;
    std::u16string description;
    xml::SystemTime publishDate;
    xml::Defaulted<std::int32_t> version{0};  // default set by the creator of the macro
    Statements statements;
    xml::ChildList<Function> functions;  // after the statements
};

// The macro list document's root.
struct Macros : xml::Child<Macros> {
    xml::Defaulted<std::u16string> display;  // default set by the creator of the list
    xml::Defaulted<bool> compact{false};
    xml::Defaulted<bool> loggingEnabled{false};
    xml::Defaulted<std::int32_t> loadState{0};
    xml::ChildList<Macro> macros;
};

}  // namespace qm::M2
