// What the add-in holds while OneNote is connected, and what its ribbon callbacks do with it: the
// macro list and the settings (loaded at connection), OneNote's Application object, the run
// driver with its session table of confirmations, and the ribbon (handed to OnLoad) to refresh.
//
// The macro list is brought up to date (ReloadIfChanged) before it is shown in a menu or run, so
// that a change saved by another copy of Quillmark is seen. Every change made from the ribbon is
// saved at once through the store, and the ribbon is asked to fetch what depends on it again.
// Commands (runs, edits, toggles) report their failures in the Error box; the ribbon's questions
// (menus, labels, states) raise them to the COM boundary.
#pragma once

#include "addin/win32.h"

#include <memory>
#include <string>
#include <string_view>

#include "addin/addin_ui.h"
#include "addin/com_holders.h"
#include "addin/onenote_com.h"
#include "addin/ribbon_content.h"
#include "macros/macro_store.h"
#include "macros/settings.h"
#include "runtime/run_driver.h"

namespace qm::addin {

class AddinSession {
public:
    explicit AddinSession(IDispatch* application);
    AddinSession(const AddinSession&) = delete;
    AddinSession& operator=(const AddinSession&) = delete;

    void SetRibbon(IDispatch* ribbonUi);

    // OnMacro: runs the stored macro with this id; nothing happens for an id not in the list.
    void RunMacro(std::u16string_view id);
    // OnEditMacro: the macro's "Edit XML" box; on OK the text replaces the macro.
    void EditMacro(std::u16string_view id);
    // ShowPageXml: the current page's XML in a read-only box.
    void ShowPageXml();

    std::u16string MacroMenu(MacroMenuKind kind);
    // The macro with this id, reloading the list first; null when none.
    std::shared_ptr<M2::Macro> FindMacro(std::u16string_view id);
    M2::Macros& Macros();

    void SetLogging(bool on);
    void SetCompact(bool on);
    void SetDisplay(std::u16string_view display);

private:
    // Boxes are owned by OneNote's main window, asked for at every command.
    void TakeOneNoteOwner();
    void Invalidate(std::u16string_view controlId = {});
    void Run(std::u16string_view id);
    void Edit(std::u16string_view id);
    // Runs what the user asked for; a macro list that cannot be read or saved, or a OneNote that
    // fails, is told in the Error box.
    template <class Action>
    void Reported(Action&& action);

    ComPtr<IDispatch> application_;
    ComOneNote onenote_;
    macros::MacroStore store_;
    macros::SettingsStore settings_;
    AddinUi ui_;
    MacroRunDriver driver_;
    ComPtr<IDispatch> ribbon_;
};

}  // namespace qm::addin
