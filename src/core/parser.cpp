// The expression parser. The grammar is flat: binary operators group strictly left to right
// whatever they are, an assignment or a ternary takes everything to its right, and parentheses are
// the only grouping. `1 + 2 * 3` is therefore `(1 + 2) * 3`.
//
// Nesting is bounded twice. The tree may be at most kMaxExpressionDepth nodes high, because
// evaluation, printing and destruction recurse over it; a left-to-right chain such as 1+1+1+...
// grows the tree without any recursion here, so heights are tracked as the tree is built. The
// parser's own recursion is bounded too, since parentheses nest calls without adding nodes. That
// bound is twice the height limit: the printed form of any accepted tree puts at most two levels
// of parsing (a parenthesis and an operand) on each level of the tree, and it must parse again.
#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

#include "core/error.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/parser.h"
#include "core/text.h"
#include "core/token.h"

namespace qm {

namespace {

using M2::Expression;
using M2::ExpressionPtr;

constexpr int kMaxHeight = M2::kMaxExpressionDepth;
constexpr int kMaxRecursion = 2 * M2::kMaxExpressionDepth;

bool IsAssignmentKind(TokenKind kind) { return kind >= TokenKind::Assign && kind <= TokenKind::ConcatAssign; }

// The binary operators and the ternary question mark.
bool IsBinaryKind(TokenKind kind) { return kind >= TokenKind::Add && kind <= TokenKind::Question; }

[[noreturn]] void ThrowNestedTooDeeply() {
    throw ParseError(FormatMessage(msg::kNestedTooDeeply, {Ascii(std::to_string(M2::kMaxExpressionDepth))}));
}

// The height of a node whose highest child is `below` high (0 without children).
int Above(int below) {
    if (below >= kMaxHeight) ThrowNestedTooDeeply();
    return below + 1;
}

class Parser {
public:
    explicit Parser(const TokenList& tokens) : tokens_(tokens) {}

    ExpressionPtr ParseAll() {
        auto root = std::make_shared<Expression>();
        ParseExpression(*root, true, 1);
        if (!AtEnd()) {
            throw ParseError(FormatMessage(msg::kUnexpectedLeftover, {Current().text, TokenKindName(Current().kind)}));
        }
        return root;
    }

private:
    bool AtEnd() const { return pos_ >= tokens_.size(); }
    const Token& Current() const { return tokens_[pos_]; }
    TokenKind Kind() const { return AtEnd() ? TokenKind::Expression : tokens_[pos_].kind; }
    void Advance() { ++pos_; }

    [[noreturn]] void ThrowMissing(TokenKind required) const {
        if (AtEnd()) throw ParseError(FormatMessage(msg::kUnexpectedEnd, {TokenKindName(required)}));
        throw ParseError(FormatMessage(msg::kUnexpectedToken,
                                       {Current().text, TokenKindName(Current().kind), TokenKindName(required)}));
    }

    void Require(TokenKind required) {
        if (Kind() != required) ThrowMissing(required);
        Advance();
    }

    // Parses a child expression into a new node; `below` becomes at least the child's height.
    ExpressionPtr Child(bool allowOperators, int level, int& below) {
        auto child = std::make_shared<Expression>();
        below = std::max(below, ParseExpression(*child, allowOperators, level + 1));
        return child;
    }

    // Fills `node` and returns its height (a lone literal or variable is 1).
    int ParseExpression(Expression& node, bool allowOperators, int level) {
        if (level > kMaxRecursion) ThrowNestedTooDeeply();
        int height = 0;
        if (Kind() == TokenKind::OpenParen) {
            // The parenthesised expression is this very node; nothing may be accessed on it.
            Advance();
            height = ParseExpression(node, true, level + 1);
            Require(TokenKind::CloseParen);
        } else {
            int below = 0;
            ParsePrimary(node, level, below);
            ParseMembers(node, level, below);
            height = Above(below);
        }
        if (!allowOperators) return height;

        while (IsAssignmentKind(Kind()) || IsBinaryKind(Kind())) {
            // What was built so far moves down into the new operator node that takes its place.
            auto first = std::make_shared<Expression>(std::move(node));
            node = Expression{};
            int below = height;
            if (Kind() == TokenKind::Question) {
                Advance();
                M2::TernaryOp ternary;
                ternary.condition = std::move(first);
                ternary.whenTrue = Child(true, level, below);
                Require(TokenKind::Colon);
                ternary.whenFalse = Child(true, level, below);
                node.primary = std::move(ternary);
            } else {
                const bool assignment = IsAssignmentKind(Kind());
                M2::BinaryOp binary;
                binary.SetName(Current().text);
                Advance();
                binary.left = std::move(first);
                // A plain operator takes one operand; an assignment takes the rest of the expression.
                binary.right = Child(assignment, level, below);
                node.primary = std::move(binary);
            }
            height = Above(below);
        }
        return height;
    }

    void ParsePrimary(Expression& node, int level, int& below) {
        switch (Kind()) {
            case TokenKind::StringLiteral:
            case TokenKind::NumericLiteral:
            case TokenKind::BooleanLiteral:
                node.SetText(Current().text);
                Advance();
                return;
            case TokenKind::Not:
            case TokenKind::Add:
            case TokenKind::Subtract: {
                M2::UnaryOp unary;
                unary.SetName(Current().text);
                Advance();
                unary.operand = Child(false, level, below);
                node.primary = std::move(unary);
                return;
            }
            case TokenKind::Function:
                ParseCall(node, level, below);
                return;
            case TokenKind::Variable:
                node.primary = M2::Var{Current().text};
                Advance();
                return;
            case TokenKind::Expression:  // the end of the tokens
                ThrowMissing(TokenKind::Expression);
            default:
                throw ParseError(FormatMessage(msg::kUnexpectedPrimary, {Current().text, TokenKindName(Current().kind)}));
        }
    }

    void ParseCall(Expression& node, int level, int& below) {
        M2::Call call;
        call.name = Current().text;
        Advance();
        Require(TokenKind::OpenParen);
        if (Kind() == TokenKind::CloseParen) {
            Advance();
        } else {
            call.args.push_back(Child(true, level, below));
            while (Kind() == TokenKind::Comma) {
                Advance();
                call.args.push_back(Child(true, level, below));
            }
            Require(TokenKind::CloseParen);
        }
        node.primary = std::move(call);
    }

    void ParseMembers(Expression& node, int level, int& below) {
        for (;;) {
            if (Kind() == TokenKind::Property) {
                node.members.emplace_back(M2::Prop{Current().text});
                Advance();
            } else if (Kind() == TokenKind::OpenBracket) {
                Advance();
                node.members.emplace_back(Child(true, level, below));
                Require(TokenKind::CloseBracket);
            } else {
                return;
            }
        }
    }

    const TokenList& tokens_;
    std::size_t pos_ = 0;
};

}  // namespace

M2::ExpressionPtr Parse(std::u16string_view text) {
    const TokenList tokens = Tokenize(text);
    return Parser(tokens).ParseAll();
}

M2::ExpressionPtr ParseForMacro(std::u16string_view text) {
    try {
        return Parse(text);
    } catch (const ParseError& error) {
        std::u16string message = error.message();
        message += msg::kWhileParsing;
        message += text;
        throw MacroError(std::move(message));
    }
}

}  // namespace qm
