// The add-in host's texts, in one list: the lines of its diagnostic logs, the labels of its ribbon
// controls and the texts of its boxes. Templates carry numbered placeholders filled by
// FormatMessage.
#pragma once

#include <string_view>

namespace qm::addin::msg {

// The host's logs ("Quillmark_Addin_inproc.log", "Quillmark_Addin_outproc.log").
inline constexpr std::u16string_view kLogOutprocRequest = u"Request for outproc addin received";
inline constexpr std::u16string_view kLogInprocRequest = u"Request for inproc addin received";
inline constexpr std::u16string_view kLogUnknownClass = u"Request for unknown class received";
inline constexpr std::u16string_view kLogLastObjectReleased = u"Last object is released";
inline constexpr std::u16string_view kLogSurrogateQuitting = u"Done with surrogate process, quitting";
inline constexpr std::u16string_view kLogGetIDsOfNames = u"GetIDsOfNames: ";
inline constexpr std::u16string_view kLogUnknownDispid = u" - Unknown dispid!";
inline constexpr std::u16string_view kLogInprocCall = u"Inproc call received";
inline constexpr std::u16string_view kLogOutprocCall = u"Outproc call received";
inline constexpr std::u16string_view kLogOnConnection = u"Addin::OnConnection is called";
inline constexpr std::u16string_view kLogOnDisconnection = u"Addin::OnDisconnection is called";
// A failure at the COM boundary: [1] the method or callback, [2] the message.
inline constexpr std::u16string_view kLogCallFailed = u"[1] failed: [2]";
inline constexpr std::u16string_view kLogFileStem = u"Quillmark_Addin_";
inline constexpr std::u16string_view kLogSuffixInproc = u"inproc.log";
inline constexpr std::u16string_view kLogSuffixOutproc = u"outproc.log";

// Failures turned into HRESULTs; the text goes into the error information.
inline constexpr std::u16string_view kUnexpectedFailure = u"Unexpected failure: [1]";
inline constexpr std::u16string_view kOutOfMemory = u"Out of memory";
inline constexpr std::u16string_view kNotConnected = u"Quillmark is not connected to OneNote";
inline constexpr std::u16string_view kBadCallbackArguments = u"The ribbon called [1] with arguments it does not take";
inline constexpr std::u16string_view kNoCurrentPage = u"No page is open in OneNote";
inline constexpr std::u16string_view kMacroGone = u"The macro is no longer in the macro list: [1]";

// The ribbon: the tab, the macros group and its controls.
inline constexpr std::u16string_view kTabLabel = u"Quillmark";
inline constexpr std::u16string_view kMacrosGroupLabel = u"Macros";
inline constexpr std::u16string_view kRunMacroLabel = u"Run Macro";
inline constexpr std::u16string_view kEditMacroLabel = u"Edit Macro";
inline constexpr std::u16string_view kDownloadMacrosLabel = u"Download Macros";
inline constexpr std::u16string_view kOptionsLabel = u"Options";
inline constexpr std::u16string_view kLoggingLabel = u"Enable Macro Logging";
inline constexpr std::u16string_view kCompactLabel = u"Compact Mode";
inline constexpr std::u16string_view kDisplayTitle = u"Show Macros";
inline constexpr std::u16string_view kDisplayByCategory = u"By Category";
inline constexpr std::u16string_view kDisplayAsList = u"As One List";
inline constexpr std::u16string_view kShowPageXmlLabel = u"Show page XML";
inline constexpr std::u16string_view kToolsGroupLabel = u"Tools";
inline constexpr std::u16string_view kNoMacros = u"No macros yet";
inline constexpr std::u16string_view kNoGallery = u"The macro gallery is not available in this version";

// Boxes.
inline constexpr std::u16string_view kOk = u"OK";
inline constexpr std::u16string_view kCancel = u"Cancel";
inline constexpr std::u16string_view kYes = u"&Yes";
inline constexpr std::u16string_view kNo = u"&No";
inline constexpr std::u16string_view kPageXmlTitle = u"Page XML";
// A macro's dialog box that cannot be shown: [1] the number of controls, [2] the most there can be.
inline constexpr std::u16string_view kTooManyDialogControls =
    u"The dialog box has [1] controls; it can show at most [2]";
// [1] the system's error code.
inline constexpr std::u16string_view kDialogFailed = u"The dialog box could not be shown (error [1])";
// An "Edit XML" import that does not read: [1] the reader's message.
inline constexpr std::u16string_view kImportFailed = u"The XML could not be imported: [1]";

// Registration (quillmark register / unregister).
inline constexpr std::u16string_view kRegistered =
    u"Registered \"[1]\" for OneNote. Restart OneNote to load the add-in.";
inline constexpr std::u16string_view kUnregistered = u"The add-in is no longer registered for OneNote.";
inline constexpr std::u16string_view kDllNotFound = u"Cannot find the add-in \"[1]\": pass its path with --dll";
inline constexpr std::u16string_view kRegistryFailed = u"Cannot write the registry key \"[1]\" (error [2])";
inline constexpr std::u16string_view kRegistryRemoveFailed = u"Cannot remove the registry key \"[1]\" (error [2])";
inline constexpr std::u16string_view kFriendlyName = u"Quillmark";
inline constexpr std::u16string_view kDescription = u"Macros for OneNote";

}  // namespace qm::addin::msg
