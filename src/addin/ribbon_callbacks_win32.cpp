#include "addin/ribbon_callbacks.h"

#include "addin/addin_session.h"
#include "addin/error_info.h"
#include "addin/messages.h"
#include "core/format.h"

namespace qm::addin {
namespace {

// The argument in the callback's own position (0 first), by value or by reference.
const VARIANT* Argument(const DISPPARAMS& parameters, UINT position) {
    if (position >= parameters.cArgs || !parameters.rgvarg) return nullptr;
    const VARIANT* v = &parameters.rgvarg[parameters.cArgs - 1 - position];
    if (v->vt == (VT_BYREF | VT_VARIANT)) v = v->pvarVal;
    return v;
}

[[noreturn]] void BadArguments(Callback callback) {
    throw ComFailure(DISP_E_TYPEMISMATCH, FormatMessage(msg::kBadCallbackArguments, {CallbackName(callback)}));
}

IDispatch* DispatchArgument(const DISPPARAMS& parameters, UINT position, Callback callback) {
    const VARIANT* v = Argument(parameters, position);
    if (v && v->vt == VT_DISPATCH && v->pdispVal) return v->pdispVal;
    if (v && v->vt == (VT_BYREF | VT_DISPATCH) && v->ppdispVal && *v->ppdispVal) return *v->ppdispVal;
    BadArguments(callback);
}

bool BoolArgument(const DISPPARAMS& parameters, UINT position, Callback callback) {
    const VARIANT* v = Argument(parameters, position);
    if (v && v->vt == VT_BOOL) return v->boolVal != VARIANT_FALSE;
    if (v && v->vt == (VT_BYREF | VT_BOOL) && v->pboolVal) return *v->pboolVal != VARIANT_FALSE;
    BadArguments(callback);
}

// A text property of the ribbon control (its id or its tag).
std::u16string ControlText(const DISPPARAMS& parameters, DISPID property, Callback callback) {
    IDispatch* control = DispatchArgument(parameters, 0, callback);
    DISPPARAMS none{nullptr, nullptr, 0, 0};
    Variant value;
    const HRESULT hr = control->Invoke(property, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none,
                                       value.get(), nullptr, nullptr);
    if (FAILED(hr)) throw ComFailure(hr, FormatMessage(msg::kBadCallbackArguments, {CallbackName(callback)}));
    if ((*value).vt != VT_BSTR || !(*value).bstrVal) return {};
    return std::u16string(Utf16((*value).bstrVal, SysStringLen((*value).bstrVal)));
}

std::u16string Tag(const DISPPARAMS& parameters, Callback callback) {
    return ControlText(parameters, kDispRibbonControlTag, callback);
}

void SetBool(VARIANT* result, bool value) {
    if (!result) return;
    VariantClear(result);
    result->vt = VT_BOOL;
    result->boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
}

void SetText(VARIANT* result, std::u16string_view text) {
    if (!result) return;
    VariantClear(result);
    result->vt = VT_BSTR;
    result->bstrVal = AllocBstr(text);
    if (!result->bstrVal) throw ComFailure(E_OUTOFMEMORY, std::u16string(msg::kOutOfMemory));
}

void SetInt(VARIANT* result, int value) {
    if (!result) return;
    VariantClear(result);
    result->vt = VT_I4;
    result->lVal = value;
}

AddinSession& Connected(AddinSession* session) {
    if (!session) throw ComFailure(E_UNEXPECTED, std::u16string(msg::kNotConnected));
    return *session;
}

// Ribbon sizes.
constexpr int kSizeNormal = 0;
constexpr int kSizeLarge = 1;

}  // namespace

void InvokeCallback(Callback callback, AddinSession* session, const DISPPARAMS& parameters, VARIANT* result) {
    switch (callback) {
        case Callback::OnLoad:
            Connected(session).SetRibbon(DispatchArgument(parameters, 0, callback));
            return;

        // The macros group.
        case Callback::OnMacro: Connected(session).RunMacro(Tag(parameters, callback)); return;
        case Callback::OnEditMacro: Connected(session).EditMacro(Tag(parameters, callback)); return;
        case Callback::GetMacroMenu: SetText(result, Connected(session).MacroMenu(MacroMenuKind::Run)); return;
        case Callback::GetEditMacrosMenu: SetText(result, Connected(session).MacroMenu(MacroMenuKind::Edit)); return;
        case Callback::GetDownloadMacrosMenu: SetText(result, DownloadMenuXml()); return;
        case Callback::OnDownloadMacro: return;
        case Callback::GetMacroLabel:
        case Callback::GetMacroDescription: {
            const auto macro = Connected(session).FindMacro(Tag(parameters, callback));
            SetText(result, !macro ? u"" : callback == Callback::GetMacroLabel ? macro->name : macro->description);
            return;
        }
        case Callback::GetMacroVisible:
            SetBool(result, Connected(session).FindMacro(Tag(parameters, callback)) != nullptr);
            return;
        case Callback::GetMacroCategoryLabel: SetText(result, Tag(parameters, callback)); return;
        case Callback::GetMacroCategoryVisible:
            SetBool(result, HasCategory(Connected(session).Macros(), Tag(parameters, callback)));
            return;
        case Callback::GetMacrosVisible: SetBool(result, true); return;
        case Callback::GetMacroOverflowVisible: SetBool(result, false); return;
        case Callback::GetMacroButtonSize:
            SetInt(result, *Connected(session).Macros().compact ? kSizeNormal : kSizeLarge);
            return;
        case Callback::GetMacroImage:
        case Callback::GetMacroCategoryImage: return;

        // Options.
        case Callback::GetEnableMacroLoggingPressed: SetBool(result, *Connected(session).Macros().loggingEnabled); return;
        case Callback::GetCompactModePressed: SetBool(result, *Connected(session).Macros().compact); return;
        case Callback::ToggleEnableMacroLogging:
            Connected(session).SetLogging(BoolArgument(parameters, 1, callback));
            return;
        case Callback::ToggleCompactMode: Connected(session).SetCompact(BoolArgument(parameters, 1, callback)); return;
        case Callback::SetMacroDisplay: Connected(session).SetDisplay(Tag(parameters, callback)); return;
        case Callback::ShowPageXml: Connected(session).ShowPageXml(); return;

        // Tools this version does not have: hidden, empty, without effect.
        case Callback::GetImage:
        case Callback::GetCustomStyleImage: return;
        case Callback::GetPinToMenu: SetText(result, EmptyMenuXml()); return;
        case Callback::GetPinToLabel:
        case Callback::GetCustomStyleID:
        case Callback::GetCustomStyleLabel:
        case Callback::GetGoProLabel: SetText(result, u""); return;
        case Callback::GetSetPinLocationPressed:
        case Callback::GetManageCustomStylesEnabled:
        case Callback::GetUpdateVisible: SetBool(result, false); return;
        case Callback::GetCustomStyleCount: SetInt(result, 0); return;
        case Callback::OnRotateRight90:
        case Callback::OnRotateLeft90:
        case Callback::OnFlipHorz:
        case Callback::OnFlipVert:
        case Callback::OnCleanupPrintouts:
        case Callback::OnCrop:
        case Callback::OnSelectTextFromImage:
        case Callback::OnCalvista:
        case Callback::OnPinTo:
        case Callback::OnSetPinLocation:
        case Callback::OnPinToBrowse:
        case Callback::OnFavorite:
        case Callback::OnManageFavorites:
        case Callback::OnSaveSelectionAsCustomStyle:
        case Callback::OnCustomStyle:
        case Callback::OnManageCustomStyles:
        case Callback::OnUpdate:
        case Callback::OnGoPro: return;
    }
}

}  // namespace qm::addin
