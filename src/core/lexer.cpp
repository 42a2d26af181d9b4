// The expression lexer: one pass over the text, driven by the kind of the token being built.
// It never fails; what it cannot place becomes an Unrecognized token for the parser to reject.
#include <array>
#include <cstddef>

#include "core/token.h"

namespace qm {

namespace {

// Indexed by kind. Both ternary halves share a name, and the assignment modulo name really has no
// blank before "Operator": parse errors quote these texts as users have always seen them.
constexpr std::array<std::u16string_view, 39> kKindNames{{
    u"Expression",
    u"Unrecognized Token",
    u"String Literal",
    u"Numeric Literal",
    u"Boolean Literal",
    u"Function",
    u"Variable",
    u"Property",
    u"Comma",
    u"Open Parenthesis",
    u"Close Parenthesis",
    u"Open Square Bracket",
    u"Close Square Bracket",
    u"Assignment Operator",
    u"Addition Assignment Operator",
    u"Subtraction Assignment Operator",
    u"Multiplication Assignment Operator",
    u"Division Assignment Operator",
    u"Modulo AssignmentOperator",
    u"Logical And Assignment Operator",
    u"Logical Or Assignment Operator",
    u"String Concatenation Assignment Operator",
    u"Unary Not Operator",
    u"Addition Operator",
    u"Subtraction Operator",
    u"Multiplication Operator",
    u"Division Operator",
    u"Modulo Operator",
    u"Logical And Operator",
    u"Logical Or Operator",
    u"String Concatenation Operator",
    u"Equal To Operator",
    u"Not Equal To Operator",
    u"Less Than Operator",
    u"Less Than Or Equal To Operator",
    u"Greater Than Operator",
    u"Greater Than Or Equal To Operator",
    u"Ternary Conditional Operator",
    u"Ternary Conditional Operator",
}};

bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

bool IsLetter(char16_t c) { return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || c == u'_'; }

// Digits continue a name but never start one.
bool IsNameChar(char16_t c, bool first) { return IsLetter(c) || (!first && IsDigit(c)); }

// The NUL that ends the text counts as white space, so it closes whatever token is still open.
bool IsSpace(char16_t c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\0'; }

bool IsHighSurrogate(char16_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool IsLowSurrogate(char16_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

class Lexer {
public:
    explicit Lexer(std::u16string_view text) : text_(text) {}

    TokenList Run() {
        // One step past the end: the terminating NUL.
        for (pos_ = 0; pos_ <= text_.size(); ++pos_) {
            const char16_t c = At(pos_);
            if (!Continue(c)) Start(c);
        }
        return std::move(tokens_);
    }

private:
    char16_t At(std::size_t i) const { return i < text_.size() ? text_[i] : u'\0'; }

    void Emit() {
        tokens_.push_back(Token{state_, std::move(current_)});
        state_ = TokenKind::Expression;
        current_.clear();
    }

    void EmitNow(TokenKind kind, std::u16string text) { tokens_.push_back(Token{kind, std::move(text)}); }

    // Feeds the character to the open token. False when the character is not taken (no token is
    // open, or it ended the token) and must be handled as the start of something new.
    bool Continue(char16_t c) {
        switch (state_) {
            case TokenKind::StringLiteral:
                if (c == u'"') {
                    Emit();
                } else if (c == u'\\') {
                    current_.push_back(Unescape(At(pos_ + 1)));
                    ++pos_;
                } else {
                    current_.push_back(c);
                }
                return true;
            case TokenKind::NumericLiteral:
                // The form is not checked here: 1.2.3 is one token.
                if (IsDigit(c) || c == u'.') {
                    current_.push_back(c);
                    return true;
                }
                Emit();
                return false;
            case TokenKind::Function:
                if (IsNameChar(c, false)) {
                    current_.push_back(c);
                    return true;
                }
                if (current_ == u"true" || current_ == u"false") state_ = TokenKind::BooleanLiteral;
                Emit();
                return false;
            case TokenKind::Property:
                // ". name" names the same property as ".name".
                if (current_.empty() && IsSpace(c)) return true;
                [[fallthrough]];
            case TokenKind::Variable:
                if (IsNameChar(c, current_.empty())) {
                    current_.push_back(c);
                    return true;
                }
                Emit();
                return false;
            default:
                return false;
        }
    }

    static char16_t Unescape(char16_t c) {
        switch (c) {
            case u'n': return u'\n';
            case u'r': return u'\r';
            case u't': return u'\t';
            default: return c;  // \" and \\ included: the backslash only protects the character
        }
    }

    // Consumes the next character as well when it is '='.
    bool FollowedByEquals() {
        if (At(pos_ + 1) != u'=') return false;
        ++pos_;
        return true;
    }

    void Operator(char16_t c, TokenKind single, TokenKind withEquals) {
        if (FollowedByEquals()) {
            EmitNow(withEquals, std::u16string{c, u'='});
        } else {
            EmitNow(single, std::u16string(1, c));
        }
    }

    // Doubled operators: "&&=", "&&", "&=", "&" and "||=", "||", "|" (the last not an operator).
    void Doubled(char16_t c, TokenKind tripleKind, TokenKind doubleKind, TokenKind equalsKind,
                 TokenKind singleKind) {
        if (At(pos_ + 1) == c) {
            ++pos_;
            if (FollowedByEquals()) {
                EmitNow(tripleKind, std::u16string{c, c, u'='});
            } else {
                EmitNow(doubleKind, std::u16string{c, c});
            }
        } else if (equalsKind != TokenKind::Unrecognized && FollowedByEquals()) {
            EmitNow(equalsKind, std::u16string{c, u'='});
        } else {
            EmitNow(singleKind, std::u16string(1, c));
        }
    }

    void Start(char16_t c) {
        if (IsSpace(c)) return;
        if (IsDigit(c)) {
            state_ = TokenKind::NumericLiteral;
            current_.push_back(c);
            return;
        }
        if (IsLetter(c)) {
            state_ = TokenKind::Function;
            current_.push_back(c);
            return;
        }
        switch (c) {
            case u'"': state_ = TokenKind::StringLiteral; return;
            case u'$': state_ = TokenKind::Variable; return;
            case u'.':
                if (IsDigit(At(pos_ + 1))) {
                    state_ = TokenKind::NumericLiteral;
                    current_.push_back(c);
                } else {
                    state_ = TokenKind::Property;
                }
                return;
            case u'(': EmitNow(TokenKind::OpenParen, u"("); return;
            case u')': EmitNow(TokenKind::CloseParen, u")"); return;
            case u',': EmitNow(TokenKind::Comma, u","); return;
            case u'[': EmitNow(TokenKind::OpenBracket, u"["); return;
            case u']': EmitNow(TokenKind::CloseBracket, u"]"); return;
            case u'?': EmitNow(TokenKind::Question, u"?"); return;
            case u':': EmitNow(TokenKind::Colon, u":"); return;
            case u'!': Operator(c, TokenKind::Not, TokenKind::NotEqual); return;
            case u'%': Operator(c, TokenKind::Modulo, TokenKind::ModuloAssign); return;
            case u'*': Operator(c, TokenKind::Multiply, TokenKind::MultiplyAssign); return;
            case u'+': Operator(c, TokenKind::Add, TokenKind::AddAssign); return;
            case u'-': Operator(c, TokenKind::Subtract, TokenKind::SubtractAssign); return;
            case u'/': Operator(c, TokenKind::Divide, TokenKind::DivideAssign); return;
            case u'<': Operator(c, TokenKind::Less, TokenKind::LessOrEqual); return;
            case u'=': Operator(c, TokenKind::Assign, TokenKind::Equal); return;
            case u'>': Operator(c, TokenKind::Greater, TokenKind::GreaterOrEqual); return;
            case u'&':
                Doubled(c, TokenKind::AndAssign, TokenKind::And, TokenKind::ConcatAssign, TokenKind::Concat);
                return;
            case u'|':
                Doubled(c, TokenKind::OrAssign, TokenKind::Or, TokenKind::Unrecognized, TokenKind::Unrecognized);
                return;
            default: break;
        }
        // A character outside the basic plane stays whole, so the message quotes what was typed.
        std::u16string text(1, c);
        if (IsHighSurrogate(c) && IsLowSurrogate(At(pos_ + 1))) text.push_back(At(++pos_));
        EmitNow(TokenKind::Unrecognized, std::move(text));
    }

    std::u16string_view text_;
    std::size_t pos_ = 0;
    TokenKind state_ = TokenKind::Expression;
    std::u16string current_;
    TokenList tokens_;
};

}  // namespace

std::u16string_view TokenKindName(TokenKind kind) {
    const auto index = static_cast<std::size_t>(kind);
    return index < kKindNames.size() ? kKindNames[index] : std::u16string_view{};
}

TokenList Tokenize(std::u16string_view text) { return Lexer(text).Run(); }

}  // namespace qm
