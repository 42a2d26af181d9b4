// Structural comparison of expression trees for tests: same primaries, names, operators, literal
// texts and member steps, all the way down.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <variant>

#include "core/expression.h"
#include "core/parser.h"
#include "core/text.h"

namespace qm::tests {

inline bool SameTree(const M2::ExpressionPtr& a, const M2::ExpressionPtr& b);

inline bool SameTree(const M2::Expression& a, const M2::Expression& b) {
    if (a.primary.index() != b.primary.index() || a.text() != b.text() || a.members.size() != b.members.size()) {
        return false;
    }
    bool same = std::visit(
        [&](const auto& pa) {
            using T = std::decay_t<decltype(pa)>;
            const T& pb = std::get<T>(b.primary);
            if constexpr (std::is_same_v<T, M2::Var>) {
                return pa.name == pb.name;
            } else if constexpr (std::is_same_v<T, M2::Call>) {
                if (pa.name != pb.name || pa.args.size() != pb.args.size()) return false;
                for (size_t i = 0; i < pa.args.size(); ++i) {
                    if (!SameTree(pa.args[i], pb.args[i])) return false;
                }
                return true;
            } else if constexpr (std::is_same_v<T, M2::UnaryOp>) {
                return pa.name == pb.name && pa.op == pb.op && SameTree(pa.operand, pb.operand);
            } else if constexpr (std::is_same_v<T, M2::BinaryOp>) {
                return pa.name == pb.name && pa.op == pb.op && SameTree(pa.left, pb.left) &&
                       SameTree(pa.right, pb.right);
            } else if constexpr (std::is_same_v<T, M2::TernaryOp>) {
                return SameTree(pa.condition, pb.condition) && SameTree(pa.whenTrue, pb.whenTrue) &&
                       SameTree(pa.whenFalse, pb.whenFalse);
            } else {
                return true;
            }
        },
        a.primary);
    if (!same) return false;
    for (size_t i = 0; i < a.members.size(); ++i) {
        const M2::Member& ma = a.members[i];
        const M2::Member& mb = b.members[i];
        if (ma.index() != mb.index()) return false;
        if (const auto* pa = std::get_if<M2::Prop>(&ma)) {
            if (pa->name != std::get<M2::Prop>(mb).name) return false;
        } else if (!SameTree(std::get<M2::ExpressionPtr>(ma), std::get<M2::ExpressionPtr>(mb))) {
            return false;
        }
    }
    return true;
}

inline bool SameTree(const M2::ExpressionPtr& a, const M2::ExpressionPtr& b) {
    if (!a || !b) return a == b;
    return SameTree(*a, *b);
}

// For EXPECT_TRUE: names both trees by their printed text when they differ.
inline ::testing::AssertionResult TreesEqual(const M2::ExpressionPtr& a, const M2::ExpressionPtr& b) {
    if (SameTree(a, b)) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "trees differ: " << (a ? ToUtf8(PrintText(*a)) : "(null)") << " vs "
                                         << (b ? ToUtf8(PrintText(*b)) : "(null)");
}

}  // namespace qm::tests
