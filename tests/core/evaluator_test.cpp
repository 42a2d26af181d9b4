#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "core/error.h"
#include "core/evaluator.h"
#include "core/parser.h"
#include "core/text.h"
#include "fake_object.h"

namespace qm {
namespace {

using test::FakeObject;

// Functions by name; every call is recorded.
class FakeCalls : public CallHandler {
public:
    using Function = std::function<MacroValue(std::span<Argument>)>;
    MacroValue Call(const M2::Call& call, std::span<Argument> args) override {
        called.push_back(ToUtf8(call.name));
        auto it = functions.find(call.name);
        if (it == functions.end()) throw MacroError(u"Unknown function '" + call.name + u"'");
        return it->second(args);
    }
    std::map<std::u16string, Function> functions;
    std::vector<std::string> called;
};

class StringLog : public LogSink {
public:
    void Write(std::u16string_view text) override { text_ += ToUtf8(text); }
    std::string text_;
};

class EvaluatorTest : public ::testing::Test {
protected:
    EvaluatorTest() {
        calls.functions[u"f"] = [](std::span<Argument>) { return MacroValue(u"F"); };
        calls.functions[u"one"] = [](std::span<Argument>) { return MacroValue(std::int32_t{1}); };
        calls.functions[u"arr"] = [](std::span<Argument> args) {
            auto a = std::make_shared<MacroArray>();
            for (auto& arg : args) a->PushBack(arg.value);
            return MacroValue(a);
        };
        // push(array, value): Array_PushBack's way of writing through the slot.
        calls.functions[u"push"] = [](std::span<Argument> args) {
            ArrayRef a = args[0].value.AsArray();
            if (args[0].slot) *args[0].slot = args[0].value;
            a->PushBack(args[1].value);
            return MacroValue(static_cast<std::int32_t>(a->size()));
        };
        calls.functions[u"pop"] = [](std::span<Argument> args) { return args[0].value.array()->PopBack(); };
        calls.functions[u"hasSlot"] = [](std::span<Argument> args) {
            std::u16string out;
            for (auto& a : args) out += a.slot ? u"1" : u"0";
            return MacroValue(out);
        };
        calls.functions[u"obj"] = [this](std::span<Argument>) { return MacroValue(ObjectRef(object)); };
        calls.functions[u"time"] = [](std::span<Argument>) { return MacroValue(MacroTime{2016, 3, 5, 9, 7, 2}); };
        calls.functions[u"nan"] = [](std::span<Argument>) { return MacroValue(std::nan("")); };
        calls.functions[u"u"] = [](std::span<Argument> args) {
            return MacroValue(static_cast<std::uint32_t>(args[0].value.AsDecimal()));
        };
        calls.functions[u"fail"] = [](std::span<Argument>) -> MacroValue { throw MacroError(u"failed"); };
        object->properties[u"name"] = MacroValue(u"Page 1");
        object->properties[u"count"] = MacroValue(std::int32_t{2});
        object->properties[u"list"] = MacroValue(std::make_shared<MacroArray>());
        object->properties[u"child"] = MacroValue(ObjectRef(child));
        child->properties[u"title"] = MacroValue(u"T");
        scope.Variable(u"o") = MacroValue(ObjectRef(object));
        scope.Variable(u"o2") = MacroValue(ObjectRef(std::make_shared<FakeObject>(13, 1)));  // same as $o
        scope.Variable(u"p") = MacroValue(ObjectRef(std::make_shared<FakeObject>(13, 2)));
        scope.Variable(u"q") = MacroValue(ObjectRef(std::make_shared<FakeObject>(14, 1)));
    }

    MacroValue Eval(std::u16string_view text, bool logged = false) {
        Evaluator evaluator(scope, &calls, &log);
        return evaluator.Evaluate(*Parse(text), logged);
    }
    std::string Run(std::u16string_view text) { return ToUtf8(Eval(text).Describe()); }
    // Evaluates each expression in turn; the description of the last one.
    std::string RunAll(std::initializer_list<std::u16string_view> texts) {
        std::string last;
        for (auto t : texts) last = Run(t);
        return last;
    }
    // The message of the macro error that `run` ends with.
    template <class Run>
    static std::string MessageOf(Run&& run) {
        try {
            run();
        } catch (const MacroError& e) {
            return ToUtf8(e.message());
        }
        return "(no error)";
    }
    std::string ErrorOf(std::u16string_view text) { return MessageOf([&] { Eval(text); }); }
    std::string Var(std::u16string_view name) {
        const MacroValue* v = scope.variables().FindValue(name);
        return v ? ToUtf8(v->Describe()) : "(none)";
    }

    MacroScope scope;
    FakeCalls calls;
    StringLog log;
    std::shared_ptr<FakeObject> object = std::make_shared<FakeObject>(13, 1);
    std::shared_ptr<FakeObject> child = std::make_shared<FakeObject>(20, 3);
};

struct Case {
    std::u16string expression;
    std::string result;
};

TEST_F(EvaluatorTest, LiteralsAreStringsAndOperatorsReadNumbersFromThem) {
    EXPECT_EQ(Run(u"5"), "5 (string)");
    EXPECT_EQ(Run(u"true"), "true (string)");
    EXPECT_EQ(Run(u"\"x\""), "x (string)");
    const Case table[] = {
        {u"3 + 4", "7 (integer)"},
        {u"\"3\" + 4", "7 (integer)"},
        {u"3 & 4", "34 (string)"},
        {u"\"a\" + 1", "a1 (string)"},
        {u"true + 1", "true1 (string)"},
        {u"1 + true", "1true (string)"},
        {u"(1 == 1) + 1", "2 (integer)"},
        {u"7 / 2", "3 (integer)"},
        {u"-7 / 2", "-3 (integer)"},
        {u"7.0 / 2", "3.5 (decimal)"},
        {u"7 % 2.5", "1 (integer)"},
        {u"2.5 % 2", "0 (integer)"},
        {u"-7 % 3", "-1 (integer)"},
        {u"1 + 2 * 3", "9 (integer)"},
        {u"1 + (2 * 3)", "7 (integer)"},
        {u"0.1 + 0.2", "0.30000000000000004 (decimal)"},
        {u"1.5 * 2", "3 (decimal)"},
        {u"007 + 1", "8 (integer)"},
        {u"2147483647 + 1", "-2147483648 (integer)"},
        {u"65536 * 65536", "0 (integer)"},
        {u"0 - 2147483647 - 1", "-2147483648 (integer)"},
        {u"(0 - 2147483647 - 1) / -1", "-2147483648 (integer)"},
        {u"(0 - 2147483647 - 1) % -1", "0 (integer)"},
        {u"(0 - 2147483647 - 1) * -1", "-2147483648 (integer)"},
        {u"-(0 - 2147483647 - 1)", "-2147483648 (integer)"},
        {u"99999999999 + 0", "2147483647 (integer)"},  // extraction saturates
        {u"1.5 + \"1e5\"", "1.51e5 (string)"},
        {u"\"\" + 1", "1 (string)"},  // the empty string is not numeric: concatenation
        {u"$never", "<empty>"},
        {u"$never + 1", "1 (integer)"},
        {u"$never & \"x\"", "x (string)"},
        {u"-\"5\"", "-5 (integer)"},
        {u"+\"5\"", "5 (integer)"},
        {u"-2.5", "-2.5 (decimal)"},
        {u"+\"2.50\"", "2.5 (decimal)"},
        {u"-$never", "0 (integer)"},
        {u"--5", "5 (integer)"},
        {u"-(1 == 1)", "-1 (integer)"},
        {u"!\"True\"", "false (boolean)"},
        {u"!\"TRUE\"", "true (boolean)"},
        {u"!1", "false (boolean)"},
        {u"!2", "true (boolean)"},
        {u"!$never", "true (boolean)"},
        {u"time() & \"\"", "2016-03-05T09:07:02 (string)"},
        {u"time() + 1", "2016-03-05T09:07:021 (string)"},
        {u"u(4294967295) + 1", "0 (integer)"},  // unsigned reads as signed -1
        {u"u(4294967295) + 0.5", "4294967295.5 (decimal)"},
        {u"nan() + 1", "nan (decimal)"},
    };
    for (const Case& c : table) EXPECT_EQ(Run(c.expression), c.result) << ToUtf8(c.expression);
}

TEST_F(EvaluatorTest, Comparisons) {
    const Case table[] = {
        {u"10 == 10.0", "true (boolean)"},
        {u"\"10\" == \"10.0\"", "true (boolean)"},
        {u"10 < 9", "false (boolean)"},
        {u"\"10\" < \"9\"", "false (boolean)"},
        {u"\"a10\" < \"a9\"", "true (boolean)"},
        {u"\"abc\" < \"abd\"", "true (boolean)"},
        {u"\"B\" < \"a\"", "true (boolean)"},
        {u"\"ab\" < \"abc\"", "true (boolean)"},
        {u"\"abc\" == \"ABC\"", "false (boolean)"},
        {u"\"abc\" != \"ABC\"", "true (boolean)"},
        {u"\"x\" <= \"x\"", "true (boolean)"},
        {u"\"x\" >= \"y\"", "false (boolean)"},
        {u"1.5 > 1", "true (boolean)"},
        {u"-1 < 0", "true (boolean)"},
        {u"$never == 0", "true (boolean)"},
        {u"$never == \"\"", "true (boolean)"},
        {u"$never < 1", "true (boolean)"},
        {u"(1 == 1) == 1", "true (boolean)"},
        {u"(1 == 1) == \"true\"", "true (boolean)"},  // "true" is not numeric: compared as text
        {u"u(4294967295) == -1", "true (boolean)"},
        {u"u(4294967295) < 0", "true (boolean)"},  // both integers: compared as signed
        {u"nan() == nan()", "false (boolean)"},
        {u"nan() != nan()", "true (boolean)"},
        {u"nan() < 1", "false (boolean)"},
        {u"time() == \"2016-03-05T09:07:02\"", "true (boolean)"},
        {u"time() < \"2017\"", "true (boolean)"},
        {u"$o == $o", "true (boolean)"},
        {u"$o == $o2", "true (boolean)"},
        {u"$o == $p", "false (boolean)"},
        {u"$o != $p", "true (boolean)"},
        {u"$o == $q", "false (boolean)"},  // another type
        {u"$o == \"x\"", "false (boolean)"},
        {u"$o != \"x\"", "true (boolean)"},
        {u"\"x\" == $o", "false (boolean)"},
        {u"$o == $never", "false (boolean)"},
        {u"$o != $never", "true (boolean)"},
        {u"$o == arr()", "false (boolean)"},
    };
    for (const Case& c : table) EXPECT_EQ(Run(c.expression), c.result) << ToUtf8(c.expression);
}

TEST_F(EvaluatorTest, LogicalOperators) {
    const Case table[] = {
        {u"\"True\" && 1", "true (boolean)"},
        {u"\"true\" && \"yes\"", "false (boolean)"},
        {u"0 || \"1\"", "true (boolean)"},
        {u"$never || $never", "false (boolean)"},
        {u"1 && 2", "false (boolean)"},
        {u"1.0 || 0", "false (boolean)"},  // "1.0" is not a true text
        {u"(1 == 1) && (2 > 1)", "true (boolean)"},
        {u"1 ? \"yes\" : \"no\"", "yes (string)"},
        {u"\"TRUE\" ? \"yes\" : \"no\"", "no (string)"},
        {u"$c ? 1 : 2 + 3", "5 (integer)"},
    };
    for (const Case& c : table) EXPECT_EQ(Run(c.expression), c.result) << ToUtf8(c.expression);
}

TEST_F(EvaluatorTest, ShortCircuitSkipsTheRightSide) {
    EXPECT_EQ(Run(u"$x && f()"), "false (boolean)");
    EXPECT_EQ(Run(u"1 || f()"), "true (boolean)");
    EXPECT_EQ(Run(u"1 ? 2 : f()"), "2 (string)");
    EXPECT_EQ(Run(u"0 ? f() : 3"), "3 (string)");
    EXPECT_TRUE(calls.called.empty());
    EXPECT_EQ(Run(u"1 && f()"), "false (boolean)");  // "F" is not true
    EXPECT_EQ(Run(u"0 || one()"), "true (boolean)");
    EXPECT_EQ(calls.called, (std::vector<std::string>{"f", "one"}));
    // No side effect of the skipped side either.
    EXPECT_EQ(Run(u"0 && ($y = 1)"), "false (boolean)");
    EXPECT_EQ(Var(u"y"), "(none)");
}

TEST_F(EvaluatorTest, Errors) {
    const Case table[] = {
        {u"1 / 0", "Division by zero"},
        {u"1.5 / 0", "Division by zero"},
        {u"1 / 0.0", "Division by zero"},
        {u"1 / $never", "Division by zero"},
        {u"1 % 0", "Modulo by zero"},
        {u"1 % 0.4", "Modulo by zero"},  // both read as integers: 0.4 is 0
        {u"\"a\" - 1", "'-' operator requires operands to be of type Numeric"},
        {u"1 * \"b\"", "'*' operator requires operands to be of type Numeric"},
        {u"\"a\" / \"b\"", "'/' operator requires operands to be of type Numeric"},
        {u"\"a\" % 1", "'%' operator requires operands to be of type Numeric"},
        {u"time() - 1", "'-' operator requires operands to be of type Numeric"},
        {u"-\"x\"", "Unary '-' operator requires operand to be of type Numeric"},
        {u"+\"1e5\"", "Unary '+' operator requires operand to be of type Numeric"},
        {u"-time()", "Unary '-' operator requires operand to be of type Numeric"},
        {u"-$o", "Unary '-' operator requires operand to be of type Numeric"},
        {u"$o < $p", "This binary operator (<) cannot be used to compare objects"},
        {u"$o >= $o", "This binary operator (>=) cannot be used to compare objects"},
        {u"$o > 1", "This binary operator (>) cannot be used to compare objects"},
        {u"1 <= $o", "This binary operator (<=) cannot be used to compare objects"},
        {u"arr() == arr()", "This binary operator (==) cannot be used to compare arrays"},
        {u"arr() < 1", "This binary operator (<) cannot be used to compare arrays"},
        {u"1 = 2", "Expected LValue"},
        {u"f() = 2", "Expected LValue"},
        {u"\"x\" += 2", "Expected LValue"},
        {u"(1 + 2) = 3", "Expected LValue"},
        {u"g()", "Unknown function 'g'"},
        {u"$s.name", "Expected an object at member access: <empty> at $s.name"},
        {u"\"abc\".length", "Expected an object at member access: abc (string) at \"abc\".length"},
        {u"arr(1).x", "Expected an object at member access: Array of size (1) at arr(1).x"},
        {u"$o.name.x", "Expected an object at member access: Page 1 (string) at $o.name.x"},
        {u"$o.missing", "Unknown property 'missing'"},
        {u"\"abc\"[0]", "Expected an array at index access: abc (string) at\"abc\"[0]"},
        {u"$o[0]", "Expected an array at index access: Fake #1 (object) at$o[0]"},
        {u"arr(1)[arr()]", "Expected a String or Numeric index at index access: Array of size (0) at arr(1)[arr()]"},
        {u"arr(1)[$o]", "Expected a String or Numeric index at index access: Fake #1 (object) at arr(1)[$o]"},
        {u"arr() + 1", "'+' operator cannot use Array of size (0) as a String"},
        {u"1 & $o", "'&' operator cannot use Fake #1 (object) as a String"},
        {u"!arr()", "'!' operator cannot use Array of size (0) as a Boolean"},
        {u"$o && 1", "'&&' operator cannot use Fake #1 (object) as a Boolean"},
        {u"0 || time()", "'||' operator cannot use 2016-03-05T09:07:02 (time) as a Boolean"},
        {u"arr() ? 1 : 2", "'?' operator cannot use Array of size (0) as a Boolean"},
        {u"fail() + 1", "failed"},
    };
    for (const Case& c : table) EXPECT_EQ(ErrorOf(c.expression), c.result) << ToUtf8(c.expression);
}

TEST_F(EvaluatorTest, UnknownOperatorsInHandMadeTrees) {
    auto unary = std::make_shared<M2::Expression>();
    M2::UnaryOp u;
    u.SetName(u"*");
    u.operand = M2::MakeLiteral(u"1");
    unary->primary = u;
    Evaluator evaluator(scope, &calls);
    EXPECT_EQ(MessageOf([&] { evaluator.Evaluate(*unary); }), "Unknown unary operator '*'");
    auto binary = std::make_shared<M2::Expression>();
    M2::BinaryOp b;
    b.SetName(u"**");
    b.left = M2::MakeLiteral(u"1");
    b.right = M2::MakeLiteral(u"2");
    binary->primary = b;
    EXPECT_EQ(MessageOf([&] { evaluator.Evaluate(*binary); }), "Unknown binary operator '**'");
    // A node whose name was set without SetName still works; a missing child is the empty literal.
    auto plain = std::make_shared<M2::Expression>();
    M2::BinaryOp p;
    p.name = u"+";
    p.left = M2::MakeLiteral(u"1");
    plain->primary = p;
    EXPECT_EQ(ToUtf8(evaluator.Evaluate(*plain).Describe()), "1 (string)");  // "1" + "": concatenation
}

TEST_F(EvaluatorTest, AssignmentStoresAndYieldsTheValue) {
    EXPECT_EQ(Run(u"$x = 5"), "5 (string)");
    EXPECT_EQ(Var(u"x"), "5 (string)");
    EXPECT_EQ(Run(u"$x += 1"), "6 (integer)");
    EXPECT_EQ(Run(u"$x -= 10"), "-4 (integer)");
    EXPECT_EQ(Run(u"$x *= -2"), "8 (integer)");
    EXPECT_EQ(Run(u"$x /= 3"), "2 (integer)");
    EXPECT_EQ(Run(u"$x %= 2"), "0 (integer)");
    EXPECT_EQ(Run(u"$x &= 1"), "01 (string)");
    EXPECT_EQ(Run(u"$x &&= 1"), "false (boolean)");
    EXPECT_EQ(Run(u"$x ||= 0"), "false (boolean)");
    EXPECT_EQ(Run(u"$x ||= \"True\""), "true (boolean)");
    EXPECT_EQ(Run(u"$a = $b = 3"), "3 (string)");
    EXPECT_EQ(Var(u"a"), "3 (string)");
    EXPECT_EQ(Var(u"b"), "3 (string)");
    EXPECT_EQ(Run(u"$x = 1 + 2"), "3 (integer)");
    EXPECT_EQ(Run(u"$s = \"ab\""), "ab (string)");
    EXPECT_EQ(Run(u"$s += \"cd\""), "abcd (string)");
    EXPECT_EQ(Run(u"$s += 1"), "abcd1 (string)");
    EXPECT_EQ(Run(u"$s &= $s"), "abcd1abcd1 (string)");
    EXPECT_EQ(Run(u"$n = 12"), "12 (string)");
    EXPECT_EQ(Run(u"$n += \"x\""), "12x (string)");
    EXPECT_EQ(Run(u"$m = 12"), "12 (string)");
    EXPECT_EQ(Run(u"$m += 1"), "13 (integer)");
    EXPECT_EQ(Run(u"$v += 1"), "1 (integer)");  // never assigned: empty reads as 0
    EXPECT_EQ(Run(u"$w &= \"x\""), "x (string)");
    EXPECT_EQ(Run(u"$d = 1.5"), "1.5 (string)");
    EXPECT_EQ(Run(u"$d *= 2"), "3 (decimal)");
    EXPECT_EQ(ErrorOf(u"$s -= 1"), "'-=' operator requires operands to be of type Numeric");
    EXPECT_EQ(ErrorOf(u"$s &= arr()"), "'&=' operator cannot use Array of size (0) as a String");
    EXPECT_EQ(ErrorOf(u"$z /= 0"), "Division by zero");
    EXPECT_EQ(Var(u"s"), "abcd1abcd1 (string)");  // unchanged by the failures
    EXPECT_EQ(Var(u"z"), "<empty>");
}

TEST_F(EvaluatorTest, NothingIsStoredWhenTheRightSideFails) {
    EXPECT_EQ(ErrorOf(u"$x = 1 / 0"), "Division by zero");
    EXPECT_EQ(Var(u"x"), "(none)");
    EXPECT_EQ(ErrorOf(u"$a[\"k\"][0] = fail()"), "failed");
    EXPECT_EQ(Var(u"a"), "(none)");  // nothing created
    EXPECT_EQ(RunAll({u"$b = arr()", u"$b"}), "Array of size (0)");
    EXPECT_EQ(ErrorOf(u"$b[\"k\"][0] = fail()"), "failed");
    EXPECT_EQ(Var(u"b"), "Array of size (0)");
    EXPECT_EQ(ErrorOf(u"$o.name = fail()"), "failed");
    EXPECT_EQ(object->writes, 0);
}

TEST_F(EvaluatorTest, ArraysIndexAndAssignment) {
    EXPECT_EQ(Run(u"$a[0] = \"x\""), "x (string)");
    EXPECT_EQ(Var(u"a"), "Array of size (1):\r\n\t[0]: x (string)");
    EXPECT_EQ(Run(u"$a[\"k\"][1] = 2"), "2 (string)");
    EXPECT_EQ(Run(u"$a[\"k\"][1] += 5"), "7 (integer)");
    EXPECT_EQ(Var(u"a"), "Array of size (2):\r\n\t[0]: x (string)\r\n\t[k]: Array of size (1):\r\n\t\t[1]: 7 (integer)");
    // The integer index 0, the text "0" and a computed 0 name one element; 1.0 is its own key.
    EXPECT_EQ(Run(u"$a[1 - 1]"), "x (string)");
    EXPECT_EQ(Run(u"$a[\"0\"]"), "x (string)");
    EXPECT_EQ(Run(u"$a[0.5 * 2]"), "<empty>");  // the decimal 1 has the text "1"
    EXPECT_EQ(Run(u"$a[2.0 / 2] = 1"), "1 (string)");
    EXPECT_EQ(Run(u"$a[1]"), "1 (string)");
    EXPECT_EQ(Run(u"$a[1 == 1] = \"t\""), "t (string)");
    EXPECT_EQ(Run(u"$a[\"true\"]"), "t (string)");
    // Reading a missing element yields empty and creates nothing.
    EXPECT_EQ(Run(u"$a[\"missing\"]"), "<empty>");
    EXPECT_EQ(Run(u"$a[\"missing\"][3]"), "<empty>");
    EXPECT_EQ(Run(u"$unset[0]"), "<empty>");
    EXPECT_EQ(Var(u"unset"), "<empty>");
    EXPECT_EQ(ToUtf8(Eval(u"$a").DescribeShort()), "Array of size (4)");
    // Indexing a non-array fails, on reading and on assignment.
    EXPECT_EQ(Run(u"$s = \"abc\""), "abc (string)");
    EXPECT_EQ(ErrorOf(u"$s[0]"), "Expected an array at index access: abc (string) at$s[0]");
    EXPECT_EQ(ErrorOf(u"$s[0] = 1"), "Expected an array at index access: abc (string) at$s[0]");
    EXPECT_EQ(ErrorOf(u"$a[0][0] = 1"), "Expected an array at index access: x (string) at$a[0][0]");
    EXPECT_EQ(ErrorOf(u"$a[arr()] = 1"),
              "Expected a String or Numeric index at index access: Array of size (0) at $a[arr()]");
}

TEST_F(EvaluatorTest, ArraysAreSharedByReference) {
    RunAll({u"$a[0] = 1", u"$b = $a", u"$b[1] = 2"});
    EXPECT_EQ(ToUtf8(Eval(u"$a").DescribeShort()), "Array of size (2)");
    // An element read through a temporary array survives the array.
    EXPECT_EQ(Run(u"arr(\"p\", \"q\")[1]"), "q (string)");
    EXPECT_EQ(Run(u"arr(arr(\"p\"))[0][0]"), "p (string)");
    // ... also when it must be copied because the right side has effects.
    EXPECT_EQ(Run(u"arr(\"p\", \"q\")[0] & f()"), "pF (string)");
    EXPECT_EQ(Run(u"arr(arr(\"p\"))[0][0] + !2"), "ptrue (string)");
}

TEST_F(EvaluatorTest, LeftOperandIsReadBeforeTheRightSideRuns) {
    EXPECT_EQ(RunAll({u"$x = 1", u"$x + ($x = 10)"}), "11 (integer)");
    EXPECT_EQ(RunAll({u"$s = \"a\"", u"$s & ($s = \"b\")"}), "ab (string)");
    // An element popped while its value is an operand.
    EXPECT_EQ(RunAll({u"$q = arr(\"x\", \"y\")", u"$q[1] & pop($q)"}), "yy (string)");
    calls.functions[u"popz"] = [](std::span<Argument> args) {
        args[0].value.array()->PopBack();
        return MacroValue(std::int32_t{0});
    };
    EXPECT_EQ(RunAll({u"$r = arr(arr(5))", u"$r[0][popz($r)]"}), "5 (string)");
    EXPECT_EQ(Var(u"r"), "Array of size (0)");
    // The right side of an assignment is read before the target is made into an array.
    EXPECT_EQ(Run(u"$e[0] = $e"), "<empty>");
    EXPECT_EQ(Var(u"e"), "Array of size (1):\r\n\t[0]: <empty>");
    // Assignment order: target keys, then the right side.
    EXPECT_EQ(RunAll({u"$i = 0", u"$t[$i] = ($i = 5)"}), "5 (string)");
    EXPECT_EQ(Var(u"t"), "Array of size (1):\r\n\t[0]: 5 (string)");
}

TEST_F(EvaluatorTest, Properties) {
    EXPECT_EQ(Run(u"$o.name"), "Page 1 (string)");
    EXPECT_EQ(Run(u"$o.child.title"), "T (string)");
    EXPECT_EQ(Run(u"$o.name = \"New\""), "New (string)");
    EXPECT_EQ(ToUtf8(object->properties[u"name"].string()), "New");
    EXPECT_EQ(Run(u"$o.count += 3"), "5 (integer)");
    EXPECT_EQ(object->properties[u"count"].integer(), 5);
    EXPECT_EQ(Run(u"$o.child.title &= \"!\""), "T! (string)");
    EXPECT_EQ(ToUtf8(child->properties[u"title"].string()), "T!");
    // An array property is shared: assigning an element writes into the object's array.
    EXPECT_EQ(Run(u"$o.list[0] = \"e\""), "e (string)");
    EXPECT_EQ(object->properties[u"list"].array()->size(), 1u);
    EXPECT_EQ(Run(u"obj().name"), "New (string)");
    EXPECT_EQ(ErrorOf(u"$o.none[0] = 1"), "Unknown property 'none'");
    object->properties[u"empty"] = MacroValue();
    EXPECT_EQ(ErrorOf(u"$o.empty[0] = 1"), "Expected an array at index access: <empty> at$o.empty[0]");
    EXPECT_EQ(ErrorOf(u"$o.name.x = 1"), "Expected an object at member access: New (string) at $o.name.x");
    EXPECT_EQ(ErrorOf(u"$nothing.x = 1"), "Expected an object at member access: <empty> at $nothing.x");
}

TEST_F(EvaluatorTest, CallsGetValuesLeftToRightAndSlotsForVariablesAndElements) {
    calls.functions[u"args"] = [](std::span<Argument> args) {
        std::u16string out;
        for (auto& a : args) out += a.value.AsString() + u";";
        return MacroValue(out);
    };
    EXPECT_EQ(Run(u"args(1, $x = 2, $x + 1, \"s\")"), "1;2;3;s; (string)");
    EXPECT_EQ(Run(u"args(1, 2, 3, 4, 5, 6, 7)"), "1;2;3;4;5;6;7; (string)");
    EXPECT_EQ(Run(u"args()"), " (string)");
    EXPECT_EQ(RunAll({u"$a[0] = 1", u"hasSlot($a, $a[0], $a[\"k\"][1], 1, $o.name, ($a), f())"}), "1110010 (string)");
    // An element argument is created, and an empty container becomes an array, so a built-in can
    // write through it.
    EXPECT_EQ(Run(u"push($g[\"x\"], 5)"), "1 (integer)");
    EXPECT_EQ(Run(u"push($g[\"x\"], 6)"), "2 (integer)");
    EXPECT_EQ(Var(u"g"), "Array of size (1):\r\n\t[x]: Array of size (2):\r\n\t\t[0]: 5 (string)\r\n\t\t[1]: 6 (string)");
    EXPECT_EQ(Run(u"$s = \"t\""), "t (string)");
    EXPECT_EQ(ErrorOf(u"push($s[0], 1)"), "Expected an array at index access: t (string) at$s[0]");
    // Without a call handler every call is unknown.
    Evaluator bare(scope);
    EXPECT_EQ(MessageOf([&] { bare.Evaluate(*Parse(u"Array_PushBack($a, 1)")); }),
              "Unknown function 'Array_PushBack'");
}

TEST_F(EvaluatorTest, LogsRequestedEvaluations) {
    const struct {
        std::u16string expression;
        bool logged;
        std::string log;
    } cases[] = {
        {u"$x = 1 + 2", true,
         "\tEvaluating expression: ($x = (1 + 2))\r\n\tNew Value: 3 (integer)\r\n\t\tValue: 3 (integer)\r\n"},
        {u"$x = 1 + 2", false, ""},
        {u"5", true, ""},  // literals are never logged
        {u"$c ? $y = 1 : 2", true, "\tEvaluating expression: ($c ? ($y = 1) : 2)\r\n\t\tValue: 2 (string)\r\n"},
        // The chosen branch inherits the request.
        {u"1 ? $y = \"a\" : 2", true,
         "\tEvaluating expression: (1 ? ($y = \"a\") : 2)\r\n\tEvaluating expression: ($y = \"a\")\r\n"
         "\tNew Value: a (string)\r\n\t\tValue: a (string)\r\n\t\tValue: a (string)\r\n"},
        {u"$o.count = 9", true,
         "\tEvaluating expression: ($o.count = 9)\r\n\tNew Value: 9 (string)\r\n\t\tValue: 9 (string)\r\n"},
    };
    for (const auto& c : cases) {
        log.text_.clear();
        Eval(c.expression, c.logged);
        EXPECT_EQ(log.text_, c.log) << ToUtf8(c.expression);
    }
    log.text_.clear();
    EXPECT_THROW(Eval(u"1 / 0 + f()", true), MacroError);
    EXPECT_EQ(log.text_, "\tEvaluating expression: ((1 / 0) + f())\r\n");
}

TEST_F(EvaluatorTest, ExecuteAndEvaluateCondition) {
    Evaluator evaluator(scope, &calls, &log);
    evaluator.Execute(*Parse(u"$x = \"True\""));
    EXPECT_EQ(Var(u"x"), "True (string)");
    EXPECT_TRUE(evaluator.EvaluateCondition(*Parse(u"$x")));
    EXPECT_FALSE(evaluator.EvaluateCondition(*Parse(u"\"TRUE\"")));
    EXPECT_TRUE(evaluator.EvaluateCondition(*Parse(u"1")));
    EXPECT_FALSE(evaluator.EvaluateCondition(*Parse(u"$never")));
    EXPECT_TRUE(evaluator.EvaluateCondition(*Parse(u"2 > 1")));
    EXPECT_EQ(MessageOf([&] { evaluator.EvaluateCondition(*Parse(u"arr(1)")); }),
              "Expected a Boolean condition: Array of size (1) at arr(1)");
}

TEST_F(EvaluatorTest, LoopsOfIntegerArithmeticStayIntegers) {
    Evaluator evaluator(scope, &calls);
    auto condition = Parse(u"$i < 1000");
    auto add = Parse(u"$sum += $i * 2");
    auto step = Parse(u"$i += 1");
    evaluator.Execute(*Parse(u"$i = 0"));
    while (evaluator.EvaluateCondition(*condition)) {
        evaluator.Execute(*add);
        evaluator.Execute(*step);
    }
    EXPECT_EQ(Var(u"sum"), "999000 (integer)");
    EXPECT_EQ(Var(u"i"), "1000 (integer)");
}

TEST_F(EvaluatorTest, ConcatenationInALoopAppendsInPlace) {
    Evaluator evaluator(scope, &calls);
    auto append = Parse(u"$s &= \"ab\"");
    for (int i = 0; i < 200'000; ++i) evaluator.Execute(*append);
    EXPECT_EQ(scope.variables().FindValue(u"s")->string().size(), 400'000u);
}

}  // namespace
}  // namespace qm
