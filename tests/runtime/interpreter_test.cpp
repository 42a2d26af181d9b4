// The statement interpreter on its own: the odd corners of If/Else pairing and of Break and
// Continue counts, the exceptions that leave it, cancellation and repainting between statements,
// and the bounds on nesting and recursion. The language as a whole is covered by tests/scripts.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "core/format.h"
#include "runtime/messages.h"
#include "run_harness.h"

namespace qm::test {
namespace {

struct Case {
    const char* name;
    const char16_t* text;
    const char16_t* expectR;  // Describe of $r after the run (also after an error)
    const char16_t* error;    // null: the run must finish
};

void PrintTo(const Case& c, std::ostream* os) { *os << c.name; }

class InterpreterCases : public ::testing::TestWithParam<Case> {};

TEST_P(InterpreterCases, RunsAsWritten) {
    const Case& c = GetParam();
    InterpreterRun run(c.text);
    std::optional<std::u16string> error = run.Run();
    if (c.error) {
        ASSERT_TRUE(error.has_value());
        EXPECT_EQ(ToUtf8(*error), ToUtf8(c.error));
    } else {
        EXPECT_FALSE(error.has_value()) << ToUtf8(error.value_or(u""));
    }
    EXPECT_EQ(ToUtf8(run.Var(u"r")), ToUtf8(c.expectR));
}

// The pairing flags are shared by all levels and set only when an If has finished.
const Case kElseCases[] = {
    // A loop clears the flags when it starts; an empty body leaves them cleared.
    {"ElseAfterEmptyLoop", u"If 0\n  $r = 1\nForEach $x in Array()\n  If 0\n    $r = 3\nElse\n  $r = 2\n",
     u"<empty>", u"Else without If"},
    // The If sets the flags only after its body: an Else first in the body still sees the
    // earlier If's flags.
    {"ElseFirstInBodySeesOuterFlags", u"If 0\n  $r = 1\nIf 1\n  Else\n    $r = 2\n", u"2 (string)", nullptr},
    // A Break leaves the If unfinished: the flags are those the Break cleared.
    {"ElseAfterBreakInIf", u"While 1\n  If 1\n    Break\nElse\n  $r = 2\n", u"<empty>", u"Else without If"},
    // A function's Ifs do not pair with the caller's Else.
    {"FunctionKeepsCallerFlags", u"If 0\n  $r = 1\n$x = F()\nElse\n  $r = 2\nFunction F()\n  If 0\n    $y = 1\n",
     u"<empty>", u"Else without If"},
    {"FunctionFlagsFresh", u"If 0\n  $r = 1\nElse\n  $r = F()\nFunction F()\n  Else\n    Return 3\n", u"<empty>",
     u"Else without If"},
};
INSTANTIATE_TEST_SUITE_P(Else, InterpreterCases, ::testing::ValuesIn(kElseCases),
                         [](const auto& info) { return std::string(info.param.name); });

const Case kLoopCases[] = {
    {"BreakUnsetIsZero", u"While 1\n  Break $nothing\n", u"<empty>", u"Unexpected Break count at: Break $nothing"},
    {"BreakArray", u"While 1\n  Break Array(1)\n", u"<empty>", u"Expected a Numeric count at: Break Array(1)"},
    {"BreakWithoutCountIsOne", u"$r = 0\nWhile 1\n  While 1\n    Break\n  $r += 1\n  Break\n", u"1 (integer)",
     nullptr},
    // A decimal count is rounded (3); a text count is read as a number ("3.4" is 3).
    {"BreakThreeFromDecimal", u"$r = 0\nWhile 1\n  While 1\n    While 1\n      $r += 1\n      Break 2.6 + 0\n",
     u"1 (integer)", nullptr},
    {"BreakThreeFromText", u"$r = 0\nWhile 1\n  While 1\n    While 1\n      $r += 1\n      Break \"3.4\"\n",
     u"1 (integer)", nullptr},
    // The snapshot copies the elements' values; an array among them is still shared.
    {"ForEachSharesNestedArrays",
     u"$a = Array(Array(1))\nForEach $x in $a\n  Array_PushBack($x, 2)\n$r = Array_Length($a[0])\n",
     u"2 (integer)", nullptr},
    {"ContinueCrossesNoFunction", u"While 1\n  $r = F()\n  Break\nFunction F()\n  Continue\n", u"<empty>",
     u"Continue statement encountered without For or While at: Continue "},
    {"ReturnFromLoopInFunction",
     u"$r = F()\nFunction F()\n  ForEach $x in Array(1, 2, 3)\n    While 1\n      If $x == 2\n        Return $x\n      "
     u"Break\n",
     u"2 (string)", nullptr},
};
INSTANTIATE_TEST_SUITE_P(Loops, InterpreterCases, ::testing::ValuesIn(kLoopCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(Interpreter, StrayBreakLeavesAsException) {
    InterpreterRun run(u"$r = 0\nWhile 1\n  $r += 1\n  Break 2\n");
    Interpreter interpreter(run.context, run.services, *run.macro);
    try {
        interpreter.executeMacro();
        FAIL() << "no exception";
    } catch (const Macro::BreakException& e) {
        EXPECT_EQ(e.levels(), 1u);
        EXPECT_EQ(e.context(), &run.context);
        EXPECT_EQ(ToUtf8(Interpreter::StrayBreakMessage(e.expression())),
                  "Break statement encountered without For or While at: Break 2");
    }
    EXPECT_EQ(ToUtf8(run.Var(u"r")), "1 (integer)");
}

TEST(Interpreter, StrayContinueLeavesAsException) {
    InterpreterRun run(u"Continue $n + 1\n");
    Interpreter interpreter(run.context, run.services, *run.macro);
    try {
        interpreter.executeMacro();
        FAIL() << "no exception";
    } catch (const Macro::ContinueException& e) {
        EXPECT_EQ(ToUtf8(Interpreter::StrayContinueMessage(e.expression())),
                  "Continue statement encountered without For or While at: Continue ($n + 1)");
    }
}

TEST(Interpreter, StatementWithoutContentFailsWithoutText) {
    InterpreterRun run(u"$r = 1\n");
    run.macro->statements.Add(std::make_shared<M2::Statement>());
    EXPECT_EQ(run.Run(), std::u16string());
    EXPECT_EQ(ToUtf8(run.Var(u"r")), "1 (string)");
}

TEST(Interpreter, MissingExpressionsActAsEmpty) {
    InterpreterRun run(u"If 1\n  $r = 1\nWhile 1\n  $r = 2\nForEach $x in Array(1)\n  $r = 3\n");
    run.macro->statements[0]->ifStatement->condition = nullptr;
    run.macro->statements[1]->whileStatement->condition = nullptr;
    run.macro->statements[2]->forEach->array = nullptr;
    EXPECT_FALSE(run.Run().has_value());
    EXPECT_EQ(ToUtf8(run.Var(u"r")), "<empty>");
}

TEST(Interpreter, CancelBeforeFirstStatement) {
    InterpreterRun run(u"$r = 1\n");
    run.progress.cancel = true;
    EXPECT_THROW(run.Run(), RunCancelled);
    EXPECT_EQ(ToUtf8(run.Var(u"r")), "<empty>");
}

// Runs the macro while another thread presses Cancel after `delay`: the run must end cancelled.
// Returns how long the run took.
std::chrono::steady_clock::duration RunCancelledAfter(InterpreterRun& run, std::chrono::milliseconds delay) {
    std::thread canceller([&] {
        std::this_thread::sleep_for(delay);
        run.progress.cancel = true;
    });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THROW(run.Run(), RunCancelled);
    const auto elapsed = std::chrono::steady_clock::now() - start;
    canceller.join();
    return elapsed;
}

TEST(Interpreter, CancelStopsEndlessWhile) {
    InterpreterRun run(u"$r = 0\nWhile 1\n  $r += 1\n");
    RunCancelledAfter(run, std::chrono::milliseconds(30));
    EXPECT_GT(run.context.variables.Variable(u"r").AsInteger(), 0);
}

TEST(Interpreter, CancelInsideFunction) {
    InterpreterRun run(u"$r = F()\nFunction F()\n  $n = 0\n  While 1\n    $n += 1\n    If $n == 1000\n      $x = G()\n"
                       u"Function G()\n  Return 1\n");
    run.services.macroName = u"m";
    RunCancelledAfter(run, std::chrono::milliseconds(30));
    // The call was cut short: the assignment never happened.
    EXPECT_EQ(ToUtf8(run.Var(u"r")), "<empty>");
}

TEST(Interpreter, RepaintsAtMostEvery50Milliseconds) {
    InterpreterRun run(u"$i = 0\nWhile $i < 1000000000\n  $i += 1\n");
    run.options.progressInUse = true;
    const auto elapsed = RunCancelledAfter(run, std::chrono::milliseconds(260));
    EXPECT_GE(run.progress.repaints, 1);
    EXPECT_LE(run.progress.repaints, elapsed / std::chrono::milliseconds(50) + 1);
}

TEST(Interpreter, NoRepaintWhenProgressNotInUse) {
    InterpreterRun run(u"$i = 0\nWhile $i < 20000\n  $i += 1\n");
    EXPECT_FALSE(run.Run().has_value());
    EXPECT_EQ(run.progress.repaints, 0);
    EXPECT_EQ(run.context.statementsRun, 20002u);
}

// Deep blocks inside deep recursion: the run stops with a macro error, never with the stack.
TEST(Interpreter, DeepNestingInRecursionEndsWithError) {
    std::u16string text = u"$r = F(0)\nFunction F($n)\n";
    std::u16string indent = u"  ";
    for (int i = 0; i < 150; ++i) {
        text += indent + u"If 1\n";
        indent += u"  ";
    }
    text += indent + u"Return F($n + 1)\n";
    InterpreterRun run(text);
    std::optional<std::u16string> error = run.Run();
    ASSERT_TRUE(error.has_value());
    const bool bounded = *error == msg::kBlocksNestedTooDeeply ||
                         *error == FormatMessage(msg::kCallsTooDeep, {u"F", u"200"});
    EXPECT_TRUE(bounded) << ToUtf8(*error);
}

// Recursion as deep as the limit allows works.
TEST(Interpreter, RecursionUpToTheLimit) {
    InterpreterRun run(u"$r = F(199)\nFunction F($n)\n  If $n == 0\n    Return 0\n  Return 1 + F($n - 1)\n");
    EXPECT_FALSE(run.Run().has_value());
    EXPECT_EQ(ToUtf8(run.Var(u"r")), "199 (integer)");
}

}  // namespace
}  // namespace qm::test
