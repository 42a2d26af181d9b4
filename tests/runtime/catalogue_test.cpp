#include <map>

#include "runtime/catalogue.h"
#include "runtime/run_control.h"
#include "runtime_harness.h"

namespace qm::test {
namespace {

TEST(Catalogue, HoldsTheFiftyFiveBuiltinsNumberedInNameOrder) {
    const FunctionCatalogue& catalogue = getFunctionCatalogue();
    ASSERT_EQ(catalogue.size(), 55u);
    std::int32_t id = 0;
    for (const auto& [name, info] : catalogue) {
        EXPECT_EQ(info.id, ++id) << ToUtf8(name);
        EXPECT_EQ(info.name, name);
        EXPECT_EQ(FindBuiltin(name), &info);
    }
    EXPECT_EQ(catalogue.begin()->first, u"Array");
    EXPECT_EQ(catalogue.rbegin()->first, u"String_Substring");
    EXPECT_EQ(&getFunctionCatalogue(), &catalogue);
}

TEST(Catalogue, ParameterCountsFollowTheArityGroups) {
    std::map<std::size_t, int> byCount;
    for (const auto& [name, info] : getFunctionCatalogue()) {
        if (!info.variadic()) ++byCount[info.parameters.size()];
    }
    EXPECT_EQ(byCount, (std::map<std::size_t, int>{{0, 6}, {1, 24}, {2, 6}, {3, 15}, {4, 1}, {5, 2}}));
    EXPECT_TRUE(FindBuiltin(u"Array")->variadic());
    EXPECT_EQ(FindBuiltin(u"DialogBox_AddLabel")->parameters.size(), 2u);
    EXPECT_EQ(FindBuiltin(u"QueryObjects")->parameters.size(), 2u);
    EXPECT_EQ(FindBuiltin(u"DialogBox_AddCheckBox")->parameters.size(), 4u);
}

// Reference texts users know word for word, odd wording included.
TEST(Catalogue, KeepsTheReferenceTextsWordForWord) {
    struct Case {
        std::u16string_view function;
        int parameter;  // -1: the function's description
        std::u16string_view text;
    };
    const Case cases[] = {
        {u"Array_PopBack", 0, u"Array to remove and return the the last item from"},
        {u"Array_PopFront", 0, u"Array to remove and return the the first item from"},
        {u"String_LessThan", -1, u"Returns true if the first string is comes before the second string, false otherwise"},
        {u"DateTime_Year", 0, u"DateTime value to return the month portion of"},
        {u"DialogBox_AddDropDown", 2,
         u"Name of the drop down list box. The value of the drop down list box will be stored "
         u"dialogBox.controls[name] after the dialog is displayed using DialogBox_Show function"},
    };
    for (const auto& c : cases) {
        const FunctionInfo* info = FindBuiltin(c.function);
        ASSERT_NE(info, nullptr);
        const std::u16string& text = c.parameter < 0 ? info->description : info->parameters.at(c.parameter).description;
        EXPECT_EQ(text, c.text) << ToUtf8(c.function);
    }
    EXPECT_EQ(FindBuiltin(u"GetParentOfType")->parameters[2].type, u"out Object");
}

TEST(Dispatch, ReportsUnknownNamesAndWrongCounts) {
    struct Case {
        std::u16string_view expression;
        std::u16string_view message;
    };
    const Case cases[] = {
        {u"String_Length()", u"Function 'String_Length' takes 1 parameters, 0 provided"},
        {u"String_Equals(\"a\", \"a\")", u"Function 'String_Equals' takes 3 parameters, 2 provided"},
        {u"DateTime_Now(1)", u"Function 'DateTime_Now' takes 0 parameters, 1 provided"},
        {u"DialogBox_AddTextBox(1, 2, 3, 4, 5, 6)", u"Function 'DialogBox_AddTextBox' takes 5 parameters, 6 provided"},
        {u"Nope(1)", u"Unknown function 'Nope'"},
        // Names are exact: the reference shows how to write them.
        {u"string_length(\"abc\")", u"Unknown function 'string_length'"},
        {u"ARRAY()", u"Unknown function 'ARRAY'"},
    };
    Harness h;
    for (const auto& c : cases) EXPECT_EQ(h.Error(c.expression), c.message) << ToUtf8(c.expression);
}

TEST(Dispatch, TurnsValuesOfTheWrongKindIntoMacroErrors) {
    Harness h;
    EXPECT_EQ(h.Error(u"String_Length(Array())"),
              u"Function 'String_Length' cannot use one of the values it was given: it has the wrong type");
    EXPECT_EQ(h.Error(u"Array_Join(Array(1, Array()), \",\")"),
              u"Function 'Array_Join' cannot use one of the values it was given: it has the wrong type");
    EXPECT_EQ(h.Error(u"ExitMacro(Array())"),
              u"Function 'ExitMacro' cannot use one of the values it was given: it has the wrong type");
}

TEST(Dispatch, HandsNamesThatAreNoBuiltinToTheMacrosOwnFunctions) {
    Harness h;
    std::vector<std::u16string> seen;
    h.calls.SetFallback([&](const M2::Call& call, std::span<Argument> args) -> std::optional<MacroValue> {
        seen.push_back(call.name);
        if (call.name != u"Twice") return std::nullopt;
        return MacroValue(args[0].value.AsString() + args[0].value.AsString());
    });
    EXPECT_EQ(h.Eval(u"Twice(\"ab\")").AsString(), u"abab");
    EXPECT_EQ(h.Error(u"Other()"), u"Unknown function 'Other'");
    // A built-in is never looked up among the macro's functions, even with a wrong count.
    EXPECT_EQ(h.Error(u"Array_Length()"), u"Function 'Array_Length' takes 1 parameters, 0 provided");
    EXPECT_EQ(h.Eval(u"Array_Length(Array(1))").AsInteger(), 1);
    EXPECT_EQ(seen, (std::vector<std::u16string>{u"Twice", u"Other"}));
}

// A call site remembers its built-in; a tree changed in place (as an editor may change it) calls
// what its name says now.
TEST(Dispatch, ACallSiteRenamedAfterARunCallsWhatItNamesNow) {
    Harness h;
    const M2::ExpressionPtr expression = Parse(u"String_Equals(\"a\", \"A\", true)");
    auto& call = std::get<M2::Call>(expression->primary);
    Evaluator evaluator(h.scope, &h.calls);
    EXPECT_EQ(evaluator.Evaluate(*expression).Describe(), u"true (boolean)");
    EXPECT_EQ(evaluator.Evaluate(*expression).Describe(), u"true (boolean)");
    call.name = u"String_DoesNotEqual";
    EXPECT_EQ(evaluator.Evaluate(*expression).Describe(), u"false (boolean)");
    call.name = u"String_Equal";
    EXPECT_THROW(evaluator.Evaluate(*expression), MacroError);
    call.name = u"String_Equals";
    EXPECT_EQ(evaluator.Evaluate(*expression).Describe(), u"true (boolean)");
    // A copy of the tree calls the same function.
    const M2::Expression copy = *expression;
    EXPECT_EQ(evaluator.Evaluate(copy).Describe(), u"true (boolean)");
}

TEST(Dispatch, ExitMacroCarriesTheSaveFlag) {
    const std::pair<std::u16string_view, bool> cases[] = {
        {u"ExitMacro(true)", true}, {u"ExitMacro(1)", true}, {u"ExitMacro(\"TRUE\")", false}, {u"ExitMacro($unset)", false},
    };
    for (const auto& [expression, save] : cases) {
        Harness h;
        try {
            h.Eval(expression);
            ADD_FAILURE() << ToUtf8(expression) << " did not exit";
        } catch (const Macro::ExitException& e) {
            EXPECT_EQ(e.saveChanges(), save) << ToUtf8(expression);
        }
    }
}

TEST(Dispatch, OneNoteFunctionsNeedAnOpenNotebook) {
    Harness h;
    EXPECT_EQ(h.Error(u"QueryObjects(\"Page\", $scope)"), u"QueryObjects needs a OneNote notebook: none is open in this run");
    EXPECT_EQ(h.Error(u"GetCurrentPage()"), u"GetCurrentPage needs a OneNote notebook: none is open in this run");
    EXPECT_EQ(h.Error(u"SortObjects(Array(), \"name\", true)"),
              u"SortObjects needs a OneNote notebook: none is open in this run");
}

}  // namespace
}  // namespace qm::test
