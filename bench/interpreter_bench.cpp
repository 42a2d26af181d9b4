// Benchmarks of the macro interpreter's hot paths.
//
//  - Workload/a, /b, /c: the three macros of bench/workloads, which scripts/bench-compare also runs
//    through `quillmark run` beside the same programs in two other script languages. Here they run
//    through the interpreter alone: no process start-up, no reading of the file.
//  - Loop/...: one loop of the same length and the same work per iteration, left through Continue
//    or an inner Break on every iteration, or not at all. Leaving a block early must cost about as
//    much as reaching its end: compare the items per second of the three.
//  - Evaluate/..., Call/..., Array/...: single operations of the evaluator, the built-in dispatch
//    and the value model, to see where a workload's time goes.
//
// Run: build/bench/bench/interpreter_bench [--benchmark_filter=REGEX]
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>

#include "core/error.h"
#include "core/evaluator.h"
#include "core/parser.h"
#include "core/text.h"
#include "macros/text_form.h"
#include "runtime/dispatch.h"
#include "runtime/execution_context.h"
#include "runtime/interpreter.h"

namespace qm {
namespace {

std::u16string ReadWorkload(const std::string& name) {
    const std::string path = std::string(QUILLMARK_WORKLOAD_DIR) + "/" + name;
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        std::cerr << "cannot read " << path << "\n";
        std::abort();
    }
    std::ostringstream text;
    text << in.rdbuf();
    return FromUtf8(text.str());
}

// One run of a macro as the run driver makes it, without progress window, log or notebook: a
// fresh context (so fresh variables) each time.
void RunMacro(const M2::Macro& macro) {
    RunOptions options;
    MacroExecutionContext context(options);
    RuntimeServices services;
    Interpreter interpreter(context, services, macro);
    interpreter.executeMacro();
    benchmark::DoNotOptimize(context.statementsRun);
}

// Runs a macro text once per benchmark iteration; `items` is the number of loop iterations one
// run makes, for the items-per-second column.
void RunText(benchmark::State& state, const std::u16string& text, std::int64_t items) {
    const std::shared_ptr<M2::Macro> macro = M2::ReadTextForm(text, "bench.qm");
    try {
        RunMacro(*macro);  // fail early, outside the timing, if the macro does not run
    } catch (const MacroError& e) {
        state.SkipWithError(ToUtf8(e.message()).c_str());
        return;
    }
    for (auto _ : state) RunMacro(*macro);
    state.SetItemsProcessed(state.iterations() * items);
}

void Workload(benchmark::State& state, const char* file, std::int64_t items) {
    RunText(state, ReadWorkload(file), items);
}
BENCHMARK_CAPTURE(Workload, a, "a.qm", 1000000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Workload, b, "b.qm", 200000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Workload, c, "c.qm", 100000)->Unit(benchmark::kMillisecond);

// Loops of 100,000 iterations that do the same work: increment the counter, test it with an If
// and count in its body, and then reach the end of the loop body or Continue out of it; or run an
// inner loop of one iteration that Break leaves, against one that ends by its condition.
constexpr std::int64_t kLoopIterations = 100000;

void LoopPlain(benchmark::State& state) {
    RunText(state,
            u"$i = 0\n$k = 0\n"
            u"While $i < 100000\n"
            u"  $i += 1\n"
            u"  If $i > 0\n"
            u"    $k += 1\n",
            kLoopIterations);
}
BENCHMARK(LoopPlain)->Name("Loop/plain")->Unit(benchmark::kMillisecond);

void LoopContinue(benchmark::State& state) {
    RunText(state,
            u"$i = 0\n$k = 0\n"
            u"While $i < 100000\n"
            u"  $i += 1\n"
            u"  If $i > 0\n"
            u"    $k += 1\n"
            u"    Continue\n"
            u"  $never = 1\n",
            kLoopIterations);
}
BENCHMARK(LoopContinue)->Name("Loop/continue")->Unit(benchmark::kMillisecond);

void LoopInnerEnds(benchmark::State& state) {
    RunText(state,
            u"$i = 0\n"
            u"While $i < 100000\n"
            u"  $i += 1\n"
            u"  $j = 0\n"
            u"  While $j < 1\n"
            u"    $j += 1\n",
            kLoopIterations);
}
BENCHMARK(LoopInnerEnds)->Name("Loop/inner_ends")->Unit(benchmark::kMillisecond);

void LoopInnerBreak(benchmark::State& state) {
    RunText(state,
            u"$i = 0\n"
            u"While $i < 100000\n"
            u"  $i += 1\n"
            u"  $j = 0\n"
            u"  While $j < 1\n"
            u"    $j += 1\n"
            u"    Break\n",
            kLoopIterations);
}
BENCHMARK(LoopInnerBreak)->Name("Loop/inner_break")->Unit(benchmark::kMillisecond);

// Break 2 from an inner loop and Continue 2 to the outer one: the level count carried across loops.
void LoopContinueTwoLevels(benchmark::State& state) {
    RunText(state,
            u"$i = 0\n"
            u"While $i < 100000\n"
            u"  $i += 1\n"
            u"  $j = 0\n"
            u"  While $j < 1\n"
            u"    $j += 1\n"
            u"    Continue 2\n",
            kLoopIterations);
}
BENCHMARK(LoopContinueTwoLevels)->Name("Loop/continue_2")->Unit(benchmark::kMillisecond);

// Single expressions against a scope that already holds their variables.
void EvaluateText(benchmark::State& state, const char16_t* text) {
    const M2::ExpressionPtr expression = Parse(text);
    MacroScope scope;
    scope.Variable(u"i") = MacroValue(std::int32_t{12345});
    scope.Variable(u"s") = MacroValue(u"some text");
    RuntimeServices services;
    BuiltinCallHandler calls(services);
    Evaluator evaluator(scope, &calls);
    for (auto _ : state) evaluator.Execute(*expression);
}
BENCHMARK_CAPTURE(EvaluateText, integer_compound, u"$x += $i * 3 % 7")->Name("Evaluate/integer_compound");
BENCHMARK_CAPTURE(EvaluateText, comparison, u"$i < 1000000")->Name("Evaluate/comparison");
BENCHMARK_CAPTURE(EvaluateText, concatenation, u"$t = \"item \" & $i & \";\"")->Name("Evaluate/concatenation");
BENCHMARK_CAPTURE(EvaluateText, builtin_length, u"String_Length($s)")->Name("Call/String_Length");
BENCHMARK_CAPTURE(EvaluateText, builtin_substring, u"$t = String_Substring($s, 0, 4)")->Name("Call/String_Substring");

// A function of the macro called in a loop: the call, a fresh scope for its parameter, Return.
void CallUserFunction(benchmark::State& state) {
    RunText(state,
            u"$i = 0\n"
            u"While $i < 10000\n"
            u"  $i = Next($i)\n"
            u"Function Next($n)\n"
            u"  Return $n + 1\n",
            10000);
}
BENCHMARK(CallUserFunction)->Name("Call/user_function")->Unit(benchmark::kMillisecond);

// Appending to an array, as Array_PushBack does, without the evaluator around it.
void ArrayPushBack(benchmark::State& state) {
    for (auto _ : state) {
        MacroArray array;
        for (std::int32_t i = 0; i < 1000; ++i) array.PushBack(MacroValue(i));
        benchmark::DoNotOptimize(array.size());
    }
    state.SetItemsProcessed(state.iterations() * 1000);
}
BENCHMARK(ArrayPushBack)->Name("Array/PushBack");

}  // namespace
}  // namespace qm

BENCHMARK_MAIN();
