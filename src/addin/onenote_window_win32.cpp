// OneNote's main window, the owner of everything the add-in shows.
//
// OneNote tells it through its object model: Application.Windows.CurrentWindow.WindowHandle. Those
// members are asked for by name, since their dispatch identifiers are OneNote's own business; a
// OneNote that refuses (inside the surrogate it may refuse type information) or answers with no
// window leaves the foreground window's top-level window, which is OneNote's while the user clicks
// its ribbon.
#include "addin/addin_ui.h"

#include "addin/com_holders.h"

namespace qm::addin {
namespace {

bool GetByName(IDispatch* object, const wchar_t* name, Variant& value) {
    if (!object) return false;
    LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
    DISPID id = 0;
    if (FAILED(object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id))) return false;
    DISPPARAMS none{nullptr, nullptr, 0, 0};
    return SUCCEEDED(
        object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, value.get(), nullptr, nullptr));
}

HWND CurrentWindowHandle(IDispatch* application) {
    Variant windows, current, handle;
    if (!GetByName(application, L"Windows", windows) || (*windows).vt != VT_DISPATCH) return nullptr;
    if (!GetByName((*windows).pdispVal, L"CurrentWindow", current) || (*current).vt != VT_DISPATCH) return nullptr;
    if (!GetByName((*current).pdispVal, L"WindowHandle", handle)) return nullptr;
    // A 64-bit number in OneNote's type library; any integer type is taken.
    if (FAILED(VariantChangeType(handle.get(), handle.get(), 0, VT_UI8))) return nullptr;
    const HWND window = reinterpret_cast<HWND>(static_cast<ULONG_PTR>((*handle).ullVal));
    return IsWindow(window) ? window : nullptr;
}

}  // namespace

HWND OneNoteWindow(IDispatch* application) {
    if (const HWND window = CurrentWindowHandle(application)) return window;
    const HWND foreground = GetForegroundWindow();
    return foreground ? GetAncestor(foreground, GA_ROOTOWNER) : nullptr;
}

}  // namespace qm::addin
