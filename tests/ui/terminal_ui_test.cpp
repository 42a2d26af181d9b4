// The terminal user interface with string streams for the terminal: the progress line, the
// confirmation, and dialog boxes asked on the terminal or answered in advance.
#include <gtest/gtest.h>

#include <sstream>

#include "core/text.h"
#include "ui/terminal_ui.h"

namespace qm::ui {
namespace {

struct Terminal {
    std::istringstream in;
    std::ostringstream err;
    TerminalUi ui;

    Terminal(TerminalOptions options, std::string input) : in(std::move(input)), ui(std::move(options), in, err) {}
};

TerminalOptions Interactive() {
    TerminalOptions options;
    options.interactive = true;
    return options;
}

DialogControl TextBox(std::u16string name, std::u16string initial, bool emptyOK) {
    DialogControl control;
    control.kind = DialogControlKind::TextBox;
    control.label = u"Label " + name;
    control.name = std::move(name);
    control.initialValue = std::move(initial);
    control.emptyOK = emptyOK;
    return control;
}

DialogControl CheckBox(std::u16string name, bool initial) {
    DialogControl control;
    control.kind = DialogControlKind::CheckBox;
    control.label = u"Tick " + name;
    control.name = std::move(name);
    control.initialChecked = initial;
    return control;
}

DialogControl DropDown(std::u16string name, std::u16string initial, std::vector<std::u16string> values) {
    DialogControl control;
    control.kind = DialogControlKind::DropDown;
    control.label = u"Pick " + name;
    control.name = std::move(name);
    control.initialValue = std::move(initial);
    control.possibleValues = std::move(values);
    return control;
}

DialogModel Model(std::vector<DialogControl> controls) {
    DialogModel model;
    model.message = u"Tell me";
    model.controls = std::move(controls);
    return model;
}

std::string Joined(const std::optional<std::vector<std::u16string>>& results) {
    if (!results) return "<cancelled>";
    std::string out;
    for (const auto& result : *results) out += ToUtf8(result) + "|";
    return out;
}

TEST(TerminalProgress, DrawsOnlyOnATerminal) {
    Terminal off({}, "");
    EXPECT_FALSE(off.ui.Show(u"Running Macro", u"Running macro \"m\""));
    off.ui.Repaint(10);
    EXPECT_EQ(off.err.str(), "");

    TerminalOptions options;
    options.showProgress = true;
    Terminal on(options, "");
    EXPECT_TRUE(on.ui.Show(u"Running Macro", u"Running macro \"m\""));
    on.ui.Repaint(42);
    EXPECT_EQ(on.err.str().rfind("\r\x1b[KRunning macro \"m\": 42 statements, 0.", 0), 0u) << on.err.str();
    on.ui.Hide();
    EXPECT_EQ(on.err.str().substr(on.err.str().size() - 4), "\r\x1b[K");
    const auto size = on.err.str().size();
    on.ui.Repaint(43);  // hidden: nothing drawn
    EXPECT_EQ(on.err.str().size(), size);
}

TEST(TerminalConfirm, AnswersByMode) {
    struct Case {
        bool interactive;
        bool yes;
        const char* input;
        bool accepted;
    };
    const Case cases[] = {
        {true, false, "y\n", true},     {true, false, "No\n", false}, {true, false, "\n", false},
        {true, false, "maybe\nyes\n", true}, {true, false, "", false},  {false, false, "y\n", false},
        {false, true, "", true},        {true, true, "n\n", true},
    };
    for (const Case& c : cases) {
        TerminalOptions options;
        options.interactive = c.interactive;
        options.assumeYes = c.yes;
        Terminal t(options, c.input);
        EXPECT_EQ(t.ui.Confirm(u"m", u"Save?", u"&Do not ask").accepted, c.accepted) << c.input;
    }
}

TEST(TerminalConfirm, RefusalExplainsItself) {
    Terminal t({}, "");
    t.ui.Confirm(u"m", u"Save?", u"&Do not ask");
    EXPECT_EQ(t.err.str(), "Save?\nNot saving: no one to ask on this terminal. Pass --yes to allow saving multiple pages.\n");
}

TEST(TerminalDialog, AsksEachControl) {
    Terminal t(Interactive(), "Ada\n\nmaybe\ny\n5\n2\n");
    DialogControl label;
    label.label = u"Some words";
    auto results = t.ui.ShowDialog(u"Macro", Model({TextBox(u"name", u"x", true), TextBox(u"age", u"36", true),
                                                    CheckBox(u"done", false), label,
                                                    DropDown(u"colour", u"red", {u"red", u"green"})}));
    EXPECT_EQ(Joined(results), "Ada|36|true||green|");
    const std::string shown = t.err.str();
    EXPECT_EQ(shown.rfind("== Macro ==\nTell me\nLabel name [x]: ", 0), 0u) << shown;
    EXPECT_NE(shown.find("Answer y or n."), std::string::npos);
    EXPECT_NE(shown.find("  1) red\n  2) green\nPick colour [number, now 1]: "), std::string::npos);
    EXPECT_NE(shown.find("Answer with a number from 1 to 2."), std::string::npos);
}

TEST(TerminalDialog, RequiredTextBoxAsksAgain) {
    Terminal t(Interactive(), "\n\nfilled\n");
    EXPECT_EQ(Joined(t.ui.ShowDialog(u"M", Model({TextBox(u"name", u"", false)}))), "filled|");
    EXPECT_NE(t.err.str().find("A value is required."), std::string::npos);
}

TEST(TerminalDialog, EmptyRepliesKeepInitialValues) {
    Terminal t(Interactive(), "\n\n\n\n");
    auto results = t.ui.ShowDialog(u"M", Model({CheckBox(u"a", true), DropDown(u"b", u"green", {u"red", u"green"}),
                                               DropDown(u"c", u"blue", {u"red", u"green"}), DropDown(u"d", u"", {})}));
    EXPECT_EQ(Joined(results), "true|green|red||");
}

TEST(TerminalDialog, EndOfInputCancels) {
    Terminal t(Interactive(), "Ada\n");
    EXPECT_EQ(Joined(t.ui.ShowDialog(u"M", Model({TextBox(u"a", u"", true), TextBox(u"b", u"", true)}))),
              "<cancelled>");
}

TEST(TerminalDialog, InterruptCancels) {
    Terminal t(Interactive(), "Ada\n");
    t.ui.cancelFlag() = true;
    EXPECT_EQ(Joined(t.ui.ShowDialog(u"M", Model({TextBox(u"a", u"", true)}))), "<cancelled>");
}

TEST(TerminalDialog, GivenAnswers) {
    struct Case {
        std::vector<std::pair<std::u16string, std::u16string>> answers;
        const char* results;
        const char* message;
    };
    const Case cases[] = {
        {{{u"name", u"Ada"}, {u"done", u"Yes"}, {u"colour", u"green"}}, "Ada|true|green|", ""},
        {{{u"done", u"y"}, {u"colour", u"red"}}, "<cancelled>",
         "The dialog box asks for 'name' (text box) and no one can answer it here: pass --answer name=VALUE\n"},
        {{{u"name", u""}, {u"done", u"n"}, {u"colour", u"red"}}, "<cancelled>",
         "The dialog box needs a value for 'name': it may not be empty\n"},
        {{{u"name", u"A"}, {u"done", u"perhaps"}, {u"colour", u"red"}}, "<cancelled>",
         "The answer for check box 'done' must be y or n, not 'perhaps'\n"},
        {{{u"name", u"A"}, {u"done", u"0"}, {u"colour", u"blue"}}, "<cancelled>",
         "The answer for 'colour' must be one of: red, green\n"},
    };
    for (const Case& c : cases) {
        TerminalOptions options;
        for (const auto& [name, value] : c.answers) options.answers[name] = value;
        Terminal t(options, "");
        auto results = t.ui.ShowDialog(
            u"M", Model({TextBox(u"name", u"", false), CheckBox(u"done", false), DropDown(u"colour", u"red", {u"red", u"green"})}));
        EXPECT_EQ(Joined(results), c.results);
        EXPECT_EQ(t.err.str(), c.message);
    }
}

TEST(TerminalDialog, GivenAnswersSpareQuestions) {
    TerminalOptions options = Interactive();
    options.answers[u"a"] = u"given";
    Terminal t(options, "typed\n");
    EXPECT_EQ(Joined(t.ui.ShowDialog(u"M", Model({TextBox(u"a", u"", true), TextBox(u"b", u"", true)}))), "given|typed|");
    EXPECT_EQ(t.err.str().find("Label a"), std::string::npos);
}

TEST(TerminalError, PrintsTheRunError) {
    Terminal t({}, "");
    t.ui.ShowError(u"Error", u"Division by zero");
    EXPECT_EQ(t.err.str(), "Error while running macro: Division by zero\n");
}

}  // namespace
}  // namespace qm::ui
