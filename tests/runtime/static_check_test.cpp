#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "core/text.h"
#include "macros/macro_xml.h"
#include "macros/text_form.h"
#include "runtime/static_check.h"
#include "xml/file_io.h"

namespace qm {
namespace {

// Each finding as "line path: message".
std::vector<std::string> Check(std::u16string_view text) {
    M2::TextFormLines lines;
    auto macro = M2::ReadTextForm(text, "t.qm", &lines);
    std::vector<std::string> out;
    for (const Finding& f : CheckMacro(*macro, &lines)) {
        out.push_back(std::to_string(f.line) + " " + ToUtf8(f.path) + ": " + ToUtf8(f.message));
    }
    return out;
}

using Findings = std::vector<std::string>;

TEST(StaticCheck, FindingsNameTheStatement) {
    const struct {
        std::u16string_view text;
        Findings expected;
    } cases[] = {
        // Calls
        {u"$a = Array() & Array(1, 2, 3) & String_Length(\"x\")\nWhile GetCurrentPage()", {}},
        {u"$a = Nope(1)", {"1 Macro/Expression[1]: Unknown function 'Nope'"}},
        {u"$a = array_length($x)", {"1 Macro/Expression[1]: Unknown function 'array_length'"}},
        {u"$n = String_Length()\n$e = String_Equals($a, $b)",
         {"1 Macro/Expression[1]: Function 'String_Length' takes 1 parameters, 0 provided",
          "2 Macro/Expression[2]: Function 'String_Equals' takes 3 parameters, 2 provided"}},
        {u"$x = F(1, 2)\n$y = F(F(3))\nFunction F($a)\n  Return F($a)",
         {"1 Macro/Expression[1]: Function 'F' takes 1 parameters, 2 provided"}},
        {u"If $a[Nope()] ? Foo() : Array_Keys()\n  Return X()",
         {"1 Macro/If[1]: Unknown function 'Nope'", "1 Macro/If[1]: Unknown function 'Foo'",
          "1 Macro/If[1]: Function 'Array_Keys' takes 1 parameters, 0 provided",
          "2 Macro/If[1]/Return[1]: Unknown function 'X'"}},
        // Else pairing
        {u"Else\n  $a = 1", {"1 Macro/Else[1]: Else without If"}},
        {u"If 1\n  $a = 1\n// note\nElse", {"4 Macro/Else[1]: Else without If"}},
        {u"If 0\nElse\nElse", {"3 Macro/Else[2]: Else without If"}},
        {u"While $a\n  If $b\nElse\nForEach $x in $y\n  While 1\n    If 1\n      Break\nElse", {}},
        {u"ForEach $x in $y\nElse\nWhile 1\n  If 1\n  Else\nElse",
         {"2 Macro/Else[1]: Else without If", "6 Macro/Else[2]: Else without If"}},
        // Break and Continue
        {u"Break", {"1 Macro/Break[1]: Break statement encountered without For or While at: Break \"\""}},
        {u"While 1\n  Break 2\n  If 1\n    Continue 0",
         {"2 Macro/While[1]/Break[1]: Break statement encountered without For or While at: Break 2",
          "4 Macro/While[1]/If[1]/Continue[1]: Unexpected Continue count at: Continue 0"}},
        {u"While 1\n  ForEach $x in $y\n    Break 2\n    Continue $n\n    Break \"1\"", {}},
        {u"While 1\n  Break \"-1\"",
         {"2 Macro/While[1]/Break[1]: Break statement encountered without For or While at: Break \"-1\""}},
        {u"If 1\nIf 2\n  While 1\n    Continue 3",
         {"4 Macro/If[2]/While[1]/Continue[1]: Continue statement encountered without For or While at: Continue 3"}},
        // A function is a boundary; commented-out statements are never run.
        {u"While 1\n  F()\nFunction F()\n  Break\n  While 1\n    Break",
         {"4 Macro/Function[1]/Break[1]: Break statement encountered without For or While at: Break \"\""}},
        {u"// off\n  Break\n  Else\n  $a = Nope()", {}},
    };
    for (const auto& c : cases) EXPECT_EQ(Check(c.text), c.expected) << ToUtf8(c.text);
}

// The script suite states the error each script's run ends with: whatever the check finds must be
// that very error, and a script that runs clean must check clean.
TEST(StaticCheck, AgreesWithTheRunsOfTheScriptSuite) {
    int withFindings = 0;
    const std::filesystem::path scripts = std::filesystem::path(QUILLMARK_TEST_DIR) / "scripts";
    for (const auto& entry : std::filesystem::directory_iterator(scripts)) {
        if (entry.path().extension() != ".qm") continue;
        auto macro = M2::ReadTextForm(io::DecodeXmlBytes(io::ReadFileBytes(entry.path())), "script.qm");
        std::u16string expected;
        for (const auto& statement : macro->statements) {
            if (statement->comment && statement->comment->text.starts_with(u"expect-error: ")) {
                expected = statement->comment->text.substr(14);
            }
        }
        const std::vector<Finding> findings = CheckMacro(*macro);
        if (!findings.empty()) ++withFindings;
        for (const Finding& f : findings) EXPECT_EQ(f.message, expected) << entry.path();
    }
    EXPECT_GE(withFindings, 5);
}

TEST(StaticCheck, WithoutLinesThePathAloneLocates) {
    auto macro = M2::ImportMacroXml(u"<Macro><While><Condition>1</Condition><Expression>1</Expression>"
                                    u"<Else/></While><Function name=\"f\"><Continue/></Function></Macro>");
    const std::vector<Finding> findings = CheckMacro(*macro, nullptr, u"Macros/Macro[2]");
    ASSERT_EQ(findings.size(), 2u);
    EXPECT_EQ(findings[0].path, u"Macros/Macro[2]/While[1]/Else[1]");
    EXPECT_EQ(findings[0].line, 0);
    EXPECT_EQ(findings[1].path, u"Macros/Macro[2]/Function[1]/Continue[1]");
    EXPECT_EQ(findings[1].message, u"Continue statement encountered without For or While at: Continue \"\"");
}

TEST(StaticCheck, NestingBeyondTheLimitIsAFindingNotACrash) {
    M2::Macro macro;
    M2::Statements* list = &macro.statements;
    for (int i = 0; i < 1000; ++i) {
        auto loop = std::make_shared<M2::While>();
        list->Add(std::make_shared<M2::Statement>()).whileStatement = loop;
        list = &loop->statements;
    }
    const std::vector<Finding> findings = CheckMacro(macro);
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_EQ(findings[0].message, u"Statements are nested too deeply: more than 200 levels");
}

}  // namespace
}  // namespace qm
