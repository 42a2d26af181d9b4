#include "runtime/dialog.h"

#include "core/error.h"
#include "core/format.h"
#include "runtime/messages.h"

namespace qm {

DialogBoxObject::DialogBoxObject(std::u16string message) : controls_(std::make_shared<MacroArray>()) {
    model_.message = std::move(message);
}

std::u16string DialogBoxObject::TypeName() const { return std::u16string(msg::kDialogBoxTypeName); }

MacroValue DialogBoxObject::GetProperty(std::u16string_view name, bool quiet) {
    if (name == u"controls") return MacroValue(controls_);
    if (name == u"type") return MacroValue(TypeName());
    if (quiet) return MacroValue();
    throw MacroError(FormatMessage(msg::kUnknownProperty, {name, msg::kDialogBoxTypeName}));
}

// The values land in `controls` through DialogBox_Show; a macro changes them through the array
// itself ($dialog.controls["name"] = ...), never by replacing it.
void DialogBoxObject::SetProperty(std::u16string_view name, const MacroValue&) {
    if (name == u"controls" || name == u"type") {
        throw MacroError(FormatMessage(msg::kReadOnlyProperty, {name, msg::kDialogBoxTypeName}));
    }
    throw MacroError(FormatMessage(msg::kUnknownProperty, {name, msg::kDialogBoxTypeName}));
}

std::u16string DialogBoxObject::Describe() const { return std::u16string(msg::kDialogBoxTypeName) + u" (object)"; }

DialogBoxObject* AsDialogBox(const MacroValue& value) {
    if (value.kind() != Kind::Object) return nullptr;
    return dynamic_cast<DialogBoxObject*>(value.object().get());
}

}  // namespace qm
