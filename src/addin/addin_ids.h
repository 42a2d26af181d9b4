// The add-in's identities and where Windows and OneNote look for them: the two class identifiers
// (the in-process class and the class a dllhost.exe surrogate serves out of process), the
// surrogate's AppID, the ProgID and the registry keys, all under HKEY_CURRENT_USER.
#pragma once

#include <string_view>

namespace qm::addin {

inline constexpr std::u16string_view kClsidAddin = u"{893CCEF2-5F66-43B5-917E-5AFEEED7E6D2}";
inline constexpr std::u16string_view kClsidOutProcAddin = u"{241E9ADF-BD8E-456B-8EA8-BF3371C25511}";
inline constexpr std::u16string_view kAppId = u"{7E74143C-C5EA-4121-AC35-3AD496646599}";
inline constexpr std::u16string_view kProgId = u"Quillmark.Addin";

// OneNote's list of add-ins; the add-in's own key there also holds "LoadState".
inline constexpr std::u16string_view kOneNoteAddInsKey = u"Software\\Microsoft\\Office\\OneNote\\AddIns";
inline constexpr std::u16string_view kAddinKey = u"Software\\Microsoft\\Office\\OneNote\\AddIns\\Quillmark.Addin";
// Where per-user class registrations live.
inline constexpr std::u16string_view kClassesKey = u"Software\\Classes";

// Loaded at start-up, connected (OneNote's LoadBehavior).
inline constexpr unsigned kLoadBehavior = 3;
// Callbacks arrive on OneNote's user-interface thread; the surrogate may use any apartment.
inline constexpr std::u16string_view kThreadingModel = u"Apartment";

}  // namespace qm::addin
