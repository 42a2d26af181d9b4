// Tree to text. Every binary and ternary node prints inside its own parentheses, which is what
// makes the printed text parse back to the same tree under the left-to-right grammar.
//
// A few literals cannot be written bare without changing the tree, so they are quoted instead (a
// literal's kind is not stored, so the quotes change nothing):
//  - numeric text with a leading minus ("-5" would read back as the unary minus of 5);
//  - numeric text followed by a property (the point of ".name" would join the number).
// An unnamed property at the very end of the text would be lost, so such an expression is closed
// in parentheses as a whole.
// A unary operand is wrapped in parentheses when it has member steps (-($a.b) shows that the
// whole access is negated) and when the unary node itself has member steps (-($a).b, where the
// step applies to the negation and must not be read as part of the operand).
#include <string>
#include <utility>
#include <variant>

#include "core/parser.h"

namespace qm {

namespace {

using M2::Expression;

// A missing child (possible only in trees that did not come from the parser) prints as the empty
// expression rather than failing.
const Expression& Deref(const M2::ExpressionPtr& child) {
    static const Expression kEmpty;
    return child ? *child : kEmpty;
}

bool CarriesOwnParentheses(const Expression& e) {
    return std::holds_alternative<M2::BinaryOp>(e.primary) || std::holds_alternative<M2::TernaryOp>(e.primary);
}

class Printer {
public:
    std::vector<Segment> Take() { return std::move(out_); }

    void Node(const Expression& e) {
        std::visit([&](const auto& primary) { Primary(e, primary); }, e.primary);
        for (const M2::Member& member : e.members) {
            if (const auto* prop = std::get_if<M2::Prop>(&member)) {
                Add(SegmentClass::PropertyName, u".");
                Add(SegmentClass::PropertyName, prop->name);
            } else {
                Add(SegmentClass::Punctuation, u"[");
                Node(Deref(std::get<M2::ExpressionPtr>(member)));
                Add(SegmentClass::Punctuation, u"]");
            }
        }
    }

private:
    // Adjacent pieces of one class join into one segment.
    void Add(SegmentClass cls, std::u16string_view text) {
        if (!out_.empty() && out_.back().cls == cls) {
            out_.back().text += text;
        } else {
            out_.push_back(Segment{cls, std::u16string(text)});
        }
    }

    void Primary(const Expression& e, std::monostate) {
        const std::u16string& text = e.text();
        if (text == u"true" || text == u"false") {
            Add(SegmentClass::BooleanLiteral, text);
            return;
        }
        const bool propertyFollows = !e.members.empty() && std::holds_alternative<M2::Prop>(e.members.front());
        if (e.literal().isNumeric && text.front() != u'-' && !propertyFollows) {
            Add(SegmentClass::NumericLiteral, text);
            return;
        }
        std::u16string quoted;
        quoted.reserve(text.size() + 2);
        quoted.push_back(u'"');
        for (char16_t c : text) {
            if (c == u'"' || c == u'\\') quoted.push_back(u'\\');
            quoted.push_back(c);
        }
        quoted.push_back(u'"');
        Add(SegmentClass::StringLiteral, quoted);
    }

    void Primary(const Expression&, const M2::Var& var) {
        Add(SegmentClass::Variable, u"$");
        Add(SegmentClass::Variable, var.name);
    }

    void Primary(const Expression&, const M2::Call& call) {
        Add(SegmentClass::FunctionName, call.name);
        Add(SegmentClass::Punctuation, u"(");
        bool first = true;
        for (const M2::ExpressionPtr& arg : call.args) {
            if (!first) Add(SegmentClass::Punctuation, u", ");
            first = false;
            Node(Deref(arg));
        }
        Add(SegmentClass::Punctuation, u")");
    }

    void Primary(const Expression& e, const M2::UnaryOp& unary) {
        Add(SegmentClass::Punctuation, unary.name);
        const Expression& operand = Deref(unary.operand);
        const bool wrap = !CarriesOwnParentheses(operand) && (!operand.members.empty() || !e.members.empty());
        if (wrap) Add(SegmentClass::Punctuation, u"(");
        Node(operand);
        if (wrap) Add(SegmentClass::Punctuation, u")");
    }

    void Primary(const Expression&, const M2::BinaryOp& binary) {
        Add(SegmentClass::Punctuation, u"(");
        Node(Deref(binary.left));
        Add(SegmentClass::Punctuation, u" ");
        Add(SegmentClass::Punctuation, binary.name);
        Add(SegmentClass::Punctuation, u" ");
        Node(Deref(binary.right));
        Add(SegmentClass::Punctuation, u")");
    }

    void Primary(const Expression&, const M2::TernaryOp& ternary) {
        Add(SegmentClass::Punctuation, u"(");
        Node(Deref(ternary.condition));
        Add(SegmentClass::Punctuation, u" ? ");
        Node(Deref(ternary.whenTrue));
        Add(SegmentClass::Punctuation, u" : ");
        Node(Deref(ternary.whenFalse));
        Add(SegmentClass::Punctuation, u")");
    }

    std::vector<Segment> out_;
};

}  // namespace

std::vector<Segment> Print(const M2::Expression& expression) {
    Printer printer;
    printer.Node(expression);
    std::vector<Segment> segments = printer.Take();
    // A property still waiting for its name when the text ends is never read, so an unnamed
    // property at the very end is kept by closing the whole expression in parentheses.
    if (!segments.empty() && segments.back().cls == SegmentClass::PropertyName && segments.back().text.back() == u'.') {
        if (segments.front().cls == SegmentClass::Punctuation) {
            segments.front().text.insert(0, u"(");
        } else {
            segments.insert(segments.begin(), Segment{SegmentClass::Punctuation, u"("});
        }
        segments.push_back(Segment{SegmentClass::Punctuation, u")"});
    }
    return segments;
}

std::u16string PrintText(const M2::Expression& expression) {
    std::u16string text;
    for (const Segment& segment : Print(expression)) text += segment.text;
    return text;
}

}  // namespace qm
