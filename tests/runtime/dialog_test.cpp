#include "runtime/dialog.h"
#include "runtime/run_control.h"
#include "runtime_harness.h"

namespace qm::test {
namespace {

// Answers every dialog with fixed results, or cancels when it has none.
class FakeUi final : public DialogUi {
public:
    std::optional<std::vector<std::u16string>> answer;
    std::u16string caption;
    DialogModel shown;
    int shows = 0;

    std::optional<std::vector<std::u16string>> ShowDialog(std::u16string_view c, const DialogModel& model) override {
        caption = c;
        shown = model;
        ++shows;
        return answer;
    }
};

struct DialogHarness : Harness {
    FakeUi ui;
    DialogHarness() {
        services.dialogs = &ui;
        services.macroName = u"Tidy pages";
    }
    // A dialog with one control of each kind.
    void Build() {
        Eval(u"$d = DialogBox_Create(\"Choose\")");
        Eval(u"DialogBox_AddTextBox($d, \"Name\", \"name\", \"initial\", false)");
        Eval(u"DialogBox_AddCheckBox($d, \"Done\", \"done\", true)");
        Eval(u"DialogBox_AddDropDown($d, \"Colour\", \"colour\", \"red\", Array(\"red\", \"green\"))");
        Eval(u"DialogBox_AddLabel($d, \"A note\")");
    }
    std::u16string Control(std::u16string_view name) {
        return Eval(u"$d.controls[\"" + std::u16string(name) + u"\"]").Describe();
    }
};

TEST(DialogBuiltins, BuildTheModelInOrder) {
    DialogHarness h;
    h.Build();
    DialogBoxObject* dialog = AsDialogBox(h.Var(u"d"));
    ASSERT_NE(dialog, nullptr);
    const DialogModel& model = dialog->model();
    EXPECT_EQ(model.message, u"Choose");
    ASSERT_EQ(model.controls.size(), 4u);
    EXPECT_EQ(model.controls[0].initialValue, u"initial");
    EXPECT_FALSE(model.controls[0].emptyOK);
    EXPECT_TRUE(model.controls[1].initialChecked);
    EXPECT_EQ(model.controls[2].possibleValues, (std::vector<std::u16string>{u"red", u"green"}));
    EXPECT_EQ(model.controls[3].kind, DialogControlKind::Label);
    // Nothing lands in controls before the dialog is shown.
    EXPECT_EQ(h.Eval(u"Array_Length($d.controls)").AsInteger(), 0);
    EXPECT_EQ(h.Eval(u"$d.type").AsString(), u"DialogBox");
    // Copies of the value are the same dialog.
    h.Eval(u"$e = $d");
    h.Eval(u"DialogBox_AddLabel($e, \"more\")");
    EXPECT_EQ(dialog->model().controls.size(), 5u);
    EXPECT_TRUE(h.Eval(u"$e == $d").AsBoolean());
}

TEST(DialogBuiltins, OkStoresTheValuesByName) {
    DialogHarness h;
    h.Build();
    h.ui.answer = std::vector<std::u16string>{u"42", u"true", u"green", u""};
    EXPECT_TRUE(h.Eval(u"DialogBox_Show($d)").IsEmpty());
    EXPECT_EQ(h.ui.caption, u"Tidy pages");
    EXPECT_EQ(h.ui.shown.controls.size(), 4u);
    EXPECT_EQ(h.Control(u"name"), u"42 (string)");
    EXPECT_EQ(h.Control(u"done"), u"true (boolean)");
    EXPECT_EQ(h.Control(u"colour"), u"green (string)");
    EXPECT_EQ(h.Eval(u"Array_Length($d.controls)").AsInteger(), 3);
}

TEST(DialogBuiltins, TheLaterOfTwoControlsOfOneNameWins) {
    DialogHarness h;
    h.Eval(u"$d = DialogBox_Create(\"\")");
    h.Eval(u"DialogBox_AddTextBox($d, \"First\", \"x\", \"\", true)");
    h.Eval(u"DialogBox_AddCheckBox($d, \"Second\", \"x\", false)");
    h.Eval(u"DialogBox_AddCheckBox($d, \"Third\", \"y\", true)");
    h.ui.answer = std::vector<std::u16string>{u"typed", u"true", u"True"};
    h.Eval(u"DialogBox_Show($d)");
    EXPECT_EQ(h.Control(u"x"), u"true (boolean)");
    // Only the exact text "true" ticks a check box.
    EXPECT_EQ(h.Control(u"y"), u"false (boolean)");
    EXPECT_EQ(h.Eval(u"Array_Length($d.controls)").AsInteger(), 2);
}

TEST(DialogBuiltins, CancelCancelsTheRun) {
    DialogHarness h;
    h.Build();
    h.ui.answer.reset();
    EXPECT_THROW(h.Eval(u"DialogBox_Show($d)"), RunCancelled);
    EXPECT_EQ(h.ui.shows, 1);
    EXPECT_EQ(h.Eval(u"Array_Length($d.controls)").AsInteger(), 0);
    EXPECT_EQ(RunCancelled().code(), 0x80004004u);
}

TEST(DialogBuiltins, RefuseWrongArguments) {
    const std::pair<std::u16string_view, std::u16string_view> cases[] = {
        {u"DialogBox_AddLabel(\"x\", \"label\")", u"Expected an object of type DialogBox at first parameter of AddControl"},
        {u"DialogBox_Show(1)", u"Expected an object of type DialogBox at first parameter of AddControl"},
        {u"DialogBox_AddDropDown($d, \"l\", \"n\", \"red\", \"red,green\")",
         u"Expected an array at fifth parameter of DialogBox_AddDropDown"},
        // The dialog is tested first.
        {u"DialogBox_AddDropDown(1, \"l\", \"n\", \"red\", 2)",
         u"Expected an object of type DialogBox at first parameter of AddControl"},
        {u"$d.controls = Array()", u"Attempting to write read-only property 'controls' on object of type 'DialogBox'"},
        {u"$d.size", u"A property named 'size' on object of type 'DialogBox' does not exist."},
    };
    for (const auto& [expression, message] : cases) {
        DialogHarness h;
        h.Eval(u"$d = DialogBox_Create(\"m\")");
        EXPECT_EQ(h.Error(expression), message) << ToUtf8(expression);
        EXPECT_TRUE(AsDialogBox(h.Var(u"d"))->model().controls.empty());
    }
}

TEST(DialogBuiltins, ShowNeedsAWindow) {
    Harness h;
    h.Eval(u"$d = DialogBox_Create(\"m\")");
    EXPECT_EQ(h.Error(u"DialogBox_Show($d)"), u"DialogBox_Show cannot show a dialog box: this run has no window to show it in");
}

}  // namespace
}  // namespace qm::test
