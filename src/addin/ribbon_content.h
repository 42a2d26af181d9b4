// What the add-in puts on OneNote's ribbon: its tab with the macros group (the run, edit and
// download menus, the options menu with the logging and compact toggles, the macro display and
// "Show page XML") and a hidden group carrying the callbacks of the tools this version does not
// have. Dynamic menus are filled when they open, from the macro list as it is then.
//
// Macro menus: with the list's "display" set to "category" (the store's default) each category is
// a submenu, in the order the categories first appear in the list, and macros without a category
// come after them at the top level; any other "display" gives one flat list. Macros keep their
// order in the list. A run entry carries the macro's id in its tag, an edit entry likewise.
#pragma once

#include <string>
#include <string_view>

#include "macros/m2_schema.h"

namespace qm::addin {

// The "display" values the options menu sets.
inline constexpr std::u16string_view kDisplayByCategory = u"category";
inline constexpr std::u16string_view kDisplayAsList = u"list";

// The control OneNote is asked to refresh after a run.
inline constexpr std::u16string_view kMacrosControlId = u"Macros";

enum class MacroMenuKind { Run, Edit };

std::u16string CustomUiXml();
std::u16string MacroMenuXml(const M2::Macros& list, MacroMenuKind kind);
std::u16string DownloadMenuXml();
// The content of a dynamic menu that has nothing to show.
std::u16string EmptyMenuXml();

// The categories as the run menu shows them, for the category callbacks.
bool HasCategory(const M2::Macros& list, std::u16string_view category);

}  // namespace qm::addin
