// The DialogBox family: a macro builds a dialog, adds controls, and shows it; on OK the value of
// every named control lands in the dialog's `controls` array, and Cancel cancels the whole run.
#include "runtime/builtin.h"
#include "runtime/dialog.h"
#include "runtime/messages.h"
#include "runtime/run_control.h"

namespace qm {
namespace {

DialogBoxObject& Dialog(const Argument& arg) {
    DialogBoxObject* dialog = AsDialogBox(arg.value);
    if (!dialog) FailMacro(msg::kExpectedDialogBox);
    return *dialog;
}

MacroValue DialogBoxCreate(RuntimeServices&, std::span<Argument> args) {
    return MacroValue(ObjectRef(std::make_shared<DialogBoxObject>(args[0].value.AsString())));
}

// The controls that carry a name: text box, check box, drop-down.
DialogControl Named(DialogControlKind kind, std::span<Argument> args) {
    DialogControl control;
    control.kind = kind;
    control.label = args[1].value.AsString();
    control.name = args[2].value.AsString();
    return control;
}

MacroValue DialogBoxAddTextBox(RuntimeServices&, std::span<Argument> args) {
    DialogBoxObject& dialog = Dialog(args[0]);
    DialogControl control = Named(DialogControlKind::TextBox, args);
    control.initialValue = args[3].value.AsString();
    control.emptyOK = args[4].value.AsBoolean();
    dialog.model().controls.push_back(std::move(control));
    return {};
}

MacroValue DialogBoxAddCheckBox(RuntimeServices&, std::span<Argument> args) {
    DialogBoxObject& dialog = Dialog(args[0]);
    DialogControl control = Named(DialogControlKind::CheckBox, args);
    control.initialChecked = args[3].value.AsBoolean();
    dialog.model().controls.push_back(std::move(control));
    return {};
}

MacroValue DialogBoxAddDropDown(RuntimeServices&, std::span<Argument> args) {
    DialogBoxObject& dialog = Dialog(args[0]);
    if (args[4].value.kind() != Kind::Array) FailMacro(msg::kExpectedDropDownValues);
    DialogControl control = Named(DialogControlKind::DropDown, args);
    control.initialValue = args[3].value.AsString();
    for (const auto& element : args[4].value.array()->elements()) {
        control.possibleValues.push_back(element.value ? element.value->AsString() : std::u16string());
    }
    dialog.model().controls.push_back(std::move(control));
    return {};
}

MacroValue DialogBoxAddLabel(RuntimeServices&, std::span<Argument> args) {
    DialogBoxObject& dialog = Dialog(args[0]);
    DialogControl control;
    control.kind = DialogControlKind::Label;
    control.label = args[1].value.AsString();
    dialog.model().controls.push_back(std::move(control));
    return {};
}

MacroValue DialogBoxShow(RuntimeServices& services, std::span<Argument> args) {
    DialogBoxObject& dialog = Dialog(args[0]);
    if (!services.dialogs) FailMacro(msg::kNoDialogUi, {u"DialogBox_Show"});
    // Keep the dialog alive while it is shown, whatever the UI does with the macro's variables.
    ObjectRef keep = args[0].value.object();
    std::optional<std::vector<std::u16string>> results = services.dialogs->ShowDialog(services.macroName, dialog.model());
    if (!results) throw RunCancelled();
    const auto& controls = dialog.model().controls;
    for (std::size_t i = 0; i < controls.size(); ++i) {
        const DialogControl& control = controls[i];
        if (control.kind == DialogControlKind::Label || control.name.empty()) continue;
        std::u16string text = i < results->size() ? (*results)[i] : std::u16string();
        // A later control of the same name overwrites an earlier one's value.
        ValueRef slot = dialog.controls()->FindOrCreate(control.name);
        if (control.kind == DialogControlKind::CheckBox) {
            *slot = MacroValue(text == u"true");
        } else {
            *slot = MacroValue(std::move(text));
        }
    }
    return {};
}

ParameterInfo DialogParameter(std::u16string_view description) {
    return {u"dialogBox", u"DialogBox", std::u16string(description)};
}

}  // namespace

std::vector<BuiltinDefinition> DialogBoxBuiltins() {
    return {
        {{u"DialogBox_AddCheckBox", u"void", u"Adds a checkbox to a dialog box",
          {DialogParameter(u"The dialog box to add the checkbox to"),
           {u"label", u"String", u"A label for the checkbox"},
           {u"name", u"String",
            u"Name of the checkbox. The value of the checkbox will be stored dialogBox.controls[name] after the "
            u"dialog is displayed using DialogBox_Show function"},
           {u"initialValue", u"Bool", u"The initial value of the checkbox"}}},
         &DialogBoxAddCheckBox},
        {{u"DialogBox_AddDropDown", u"void", u"Adds a drop down list box to a dialog box",
          {DialogParameter(u"The dialog box to add the drop down list box to"),
           {u"label", u"String", u"A label for the drop down list box"},
           {u"name", u"String",
            u"Name of the drop down list box. The value of the drop down list box will be stored "
            u"dialogBox.controls[name] after the dialog is displayed using DialogBox_Show function"},
           {u"initialValue", u"String", u"The initial selected value of the drop down list box"},
           {u"possibleValues", u"Array<String>", u"The values to display in the drop down list box"}}},
         &DialogBoxAddDropDown},
        {{u"DialogBox_AddLabel", u"void", u"Adds a label to a dialog box",
          {DialogParameter(u"The dialog box to add the text box to"), {u"label", u"String", u"A text for the label"}}},
         &DialogBoxAddLabel},
        {{u"DialogBox_AddTextBox", u"void", u"Adds a text box to a dialog box",
          {DialogParameter(u"The dialog box to add the text box to"),
           {u"label", u"String", u"A label for the text box"},
           {u"name", u"String",
            u"Name of the text box. The value of the text box will be stored dialogBox.controls[name] after the "
            u"dialog is displayed using DialogBox_Show function"},
           {u"initialValue", u"String", u"The initial value of the text box"},
           {u"emptyOK", u"Bool",
            u"Whether it is OK for user to leave the text box empty or not. If this is false, then the dialog box "
            u"cannot be closed without entering some text into the text box"}}},
         &DialogBoxAddTextBox},
        {{u"DialogBox_Create", u"DialogBox",
          u"Creates a dialog box. Use DialogBox_Add* functions to add controls and DialogBox_Show to display it",
          {{u"message", u"String", u"A message to display on the dialog box. Can be empty string if no message is desired"}}},
         &DialogBoxCreate},
        {{u"DialogBox_Show", u"void", u"Displays a dialog box created with DialogBox_Create function",
          {DialogParameter(u"The dialog box object to display")}},
         &DialogBoxShow},
    };
}

}  // namespace qm
