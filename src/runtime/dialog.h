// Dialog boxes that a macro builds and shows to ask the user for input: the model the DialogBox_
// functions fill, the macro object that carries it, and the seam to the window that shows it.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/value.h"

namespace qm {

enum class DialogControlKind { TextBox, CheckBox, DropDown, Label };

struct DialogControl {
    DialogControlKind kind = DialogControlKind::Label;
    std::u16string label;
    std::u16string name;          // empty for labels
    std::u16string initialValue;  // text box and drop-down
    bool initialChecked = false;  // check box
    std::vector<std::u16string> possibleValues;  // drop-down
    bool emptyOK = true;          // text box: false keeps the dialog from closing while it is empty
};

struct DialogModel {
    std::u16string message;
    std::vector<DialogControl> controls;  // in the order added
};

// Shows a dialog modally. The implementation hides the run's progress window while the dialog is
// up. Returns one result text per control, in the model's order ("true" or "false" for a check
// box, anything for a label), or nothing when the user closed the dialog other than with OK.
class DialogUi {
public:
    virtual ~DialogUi() = default;
    virtual std::optional<std::vector<std::u16string>> ShowDialog(std::u16string_view caption,
                                                                  const DialogModel& model) = 0;
};

// The macro object of type "DialogBox". Copies of the value share the one dialog. Its property
// `controls` is the array, keyed by control name, that receives the values on OK; `type` is
// "DialogBox".
class DialogBoxObject final : public MacroObject {
public:
    // Outside the object model's numbering of OneNote objects.
    static constexpr std::int32_t kTypeNumber = 1000;

    explicit DialogBoxObject(std::u16string message);

    DialogModel& model() noexcept { return model_; }
    const DialogModel& model() const noexcept { return model_; }
    const ArrayRef& controls() const noexcept { return controls_; }

    std::int32_t TypeNumber() const override { return kTypeNumber; }
    std::u16string TypeName() const override;
    MacroValue GetProperty(std::u16string_view name, bool quiet) override;
    void SetProperty(std::u16string_view name, const MacroValue& value) override;
    bool SameAs(const MacroObject& other) const override { return this == &other; }
    std::u16string Describe() const override;

private:
    DialogModel model_;
    ArrayRef controls_;
};

// The dialog object a value refers to, or null when it is no DialogBox.
DialogBoxObject* AsDialogBox(const MacroValue& value);

}  // namespace qm
