// Expression text, read as UTF-8, through tokenize -> parse -> print -> parse -> print. Parse
// errors are expected; a crash, a printed text that does not parse again, a different tree after
// the second parse or a second print that differs from the first is a fault.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <variant>

#include "core/error.h"
#include "core/parser.h"
#include "core/text.h"
#include "core/token.h"

namespace {

using qm::M2::Expression;
using qm::M2::ExpressionPtr;

bool Same(const ExpressionPtr& a, const ExpressionPtr& b);

bool Same(const Expression& a, const Expression& b) {
    if (a.primary.index() != b.primary.index() || a.text() != b.text() || a.members.size() != b.members.size()) {
        return false;
    }
    if (const auto* va = std::get_if<qm::M2::Var>(&a.primary)) {
        if (va->name != std::get<qm::M2::Var>(b.primary).name) return false;
    } else if (const auto* ca = std::get_if<qm::M2::Call>(&a.primary)) {
        const auto& cb = std::get<qm::M2::Call>(b.primary);
        if (ca->name != cb.name || ca->args.size() != cb.args.size()) return false;
        for (std::size_t i = 0; i < ca->args.size(); ++i) {
            if (!Same(ca->args[i], cb.args[i])) return false;
        }
    } else if (const auto* ua = std::get_if<qm::M2::UnaryOp>(&a.primary)) {
        const auto& ub = std::get<qm::M2::UnaryOp>(b.primary);
        if (ua->name != ub.name || !Same(ua->operand, ub.operand)) return false;
    } else if (const auto* ba = std::get_if<qm::M2::BinaryOp>(&a.primary)) {
        const auto& bb = std::get<qm::M2::BinaryOp>(b.primary);
        if (ba->name != bb.name || !Same(ba->left, bb.left) || !Same(ba->right, bb.right)) return false;
    } else if (const auto* ta = std::get_if<qm::M2::TernaryOp>(&a.primary)) {
        const auto& tb = std::get<qm::M2::TernaryOp>(b.primary);
        if (!Same(ta->condition, tb.condition) || !Same(ta->whenTrue, tb.whenTrue) ||
            !Same(ta->whenFalse, tb.whenFalse)) {
            return false;
        }
    }
    for (std::size_t i = 0; i < a.members.size(); ++i) {
        const auto* pa = std::get_if<qm::M2::Prop>(&a.members[i]);
        const auto* pb = std::get_if<qm::M2::Prop>(&b.members[i]);
        if ((pa == nullptr) != (pb == nullptr)) return false;
        if (pa != nullptr ? pa->name != pb->name
                          : !Same(std::get<ExpressionPtr>(a.members[i]), std::get<ExpressionPtr>(b.members[i]))) {
            return false;
        }
    }
    return true;
}

bool Same(const ExpressionPtr& a, const ExpressionPtr& b) { return a && b ? Same(*a, *b) : a == b; }

[[noreturn]] void Fail(const char* what, const std::u16string& first, const std::u16string& second) {
    std::fprintf(stderr, "%s\nfirst:  %s\nsecond: %s\n", what, qm::ToUtf8(first).c_str(), qm::ToUtf8(second).c_str());
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::u16string text = qm::FromUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
    (void)qm::Tokenize(text);

    ExpressionPtr tree;
    try {
        tree = qm::Parse(text);
    } catch (const qm::ParseError&) {
        return 0;
    }
    const std::u16string printed = qm::PrintText(*tree);

    ExpressionPtr again;
    try {
        again = qm::Parse(printed);
    } catch (const qm::ParseError& error) {
        Fail("printed text does not parse", printed, error.message());
    }
    const std::u16string reprinted = qm::PrintText(*again);
    if (reprinted != printed) Fail("second print differs", printed, reprinted);
    if (!Same(tree, again)) Fail("tree differs after printing", printed, reprinted);
    return 0;
}
