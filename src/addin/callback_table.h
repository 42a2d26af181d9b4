// The names OneNote's ribbon calls the add-in by, and the dispatch identifiers it calls them with.
// The ribbon XML names its callbacks from this table, so the two always agree; OneNote turns each
// name into its identifier once (GetIDsOfNames) and then invokes by identifier.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace qm::addin {

// Identifiers 0 to 51, in table order.
enum class Callback : std::int32_t {
    OnLoad, GetImage,
    OnRotateRight90, OnRotateLeft90, OnFlipHorz, OnFlipVert, OnCleanupPrintouts, OnCrop, OnSelectTextFromImage,
    OnCalvista,
    OnPinTo, GetPinToMenu, GetPinToLabel, OnSetPinLocation, GetSetPinLocationPressed, OnPinToBrowse, OnFavorite,
    OnManageFavorites,
    OnSaveSelectionAsCustomStyle, OnCustomStyle, GetCustomStyleCount, GetCustomStyleID, GetCustomStyleImage,
    GetCustomStyleLabel, OnManageCustomStyles, GetManageCustomStylesEnabled,
    GetEditMacrosMenu, GetMacroMenu, GetMacroLabel, GetMacroImage, GetMacroDescription, GetMacroButtonSize,
    GetMacroCategoryLabel, GetMacroCategoryImage, GetMacroCategoryVisible, GetMacroVisible, GetMacrosVisible,
    GetMacroOverflowVisible,
    GetEnableMacroLoggingPressed, GetCompactModePressed, ToggleEnableMacroLogging, ToggleCompactMode,
    SetMacroDisplay, OnEditMacro, OnMacro, OnDownloadMacro, GetDownloadMacrosMenu,
    ShowPageXml, OnUpdate, GetUpdateVisible, GetGoProLabel, OnGoPro,
};

inline constexpr std::array<std::u16string_view, 52> kCallbackNames{
    u"OnLoad", u"GetImage",
    u"OnRotateRight90", u"OnRotateLeft90", u"OnFlipHorz", u"OnFlipVert", u"OnCleanupPrintouts", u"OnCrop",
    u"OnSelectTextFromImage", u"OnCalvista",
    u"OnPinTo", u"GetPinToMenu", u"GetPinToLabel", u"OnSetPinLocation", u"GetSetPinLocationPressed",
    u"OnPinToBrowse", u"OnFavorite", u"OnManageFavorites",
    u"OnSaveSelectionAsCustomStyle", u"OnCustomStyle", u"GetCustomStyleCount", u"GetCustomStyleID",
    u"GetCustomStyleImage", u"GetCustomStyleLabel", u"OnManageCustomStyles", u"GetManageCustomStylesEnabled",
    u"GetEditMacrosMenu", u"GetMacroMenu", u"GetMacroLabel", u"GetMacroImage", u"GetMacroDescription",
    u"GetMacroButtonSize", u"GetMacroCategoryLabel", u"GetMacroCategoryImage", u"GetMacroCategoryVisible",
    u"GetMacroVisible", u"GetMacrosVisible", u"GetMacroOverflowVisible",
    u"GetEnableMacroLoggingPressed", u"GetCompactModePressed", u"ToggleEnableMacroLogging", u"ToggleCompactMode",
    u"SetMacroDisplay", u"OnEditMacro", u"OnMacro", u"OnDownloadMacro", u"GetDownloadMacrosMenu",
    u"ShowPageXml", u"OnUpdate", u"GetUpdateVisible", u"GetGoProLabel", u"OnGoPro",
};

// The name of a callback, as the ribbon XML writes it.
constexpr std::u16string_view CallbackName(Callback callback) {
    return kCallbackNames[static_cast<std::size_t>(callback)];
}

// The identifier of a name (compared exactly), from a map filled once on first need; nothing for
// a name that is not in the table.
std::optional<std::int32_t> CallbackId(std::u16string_view name);

// The callback an identifier stands for; nothing outside 0 to 51.
std::optional<Callback> CallbackFromId(std::int32_t id);

}  // namespace qm::addin
