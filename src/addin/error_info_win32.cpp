#include "addin/error_info.h"

#include <exception>
#include <new>

#include "addin/addin_ids.h"
#include "addin/com_holders.h"
#include "addin/com_object.h"
#include "addin/host_log.h"
#include "addin/messages.h"
#include "core/error.h"
#include "core/format.h"
#include "core/text.h"
#include "macros/macro_store.h"
#include "onenote/onenote_api.h"

namespace qm::addin {
namespace {

// The error information handed to COM: a source, a description, nothing else.
class ErrorInfo final : public IErrorInfo {
public:
    explicit ErrorInfo(std::u16string description) : description_(std::move(description)) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        const InterfaceEntry interfaces[] = {{&IID_IUnknown, this}, {&IID_IErrorInfo, this}};
        return QueryFromTable(interfaces, iid, object);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return references_.Add(); }
    ULONG STDMETHODCALLTYPE Release() override { return references_.Release(this); }
    HRESULT STDMETHODCALLTYPE GetGUID(GUID* guid) override {
        if (!guid) return E_POINTER;
        *guid = GUID_NULL;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetSource(BSTR* source) override { return Give(source, kProgId); }
    HRESULT STDMETHODCALLTYPE GetDescription(BSTR* description) override { return Give(description, description_); }
    HRESULT STDMETHODCALLTYPE GetHelpFile(BSTR* file) override { return Give(file, {}); }
    HRESULT STDMETHODCALLTYPE GetHelpContext(DWORD* context) override {
        if (!context) return E_POINTER;
        *context = 0;
        return S_OK;
    }

private:
    static HRESULT Give(BSTR* out, std::u16string_view text) {
        if (!out) return E_POINTER;
        *out = AllocBstr(text);
        return *out || text.empty() ? S_OK : E_OUTOFMEMORY;
    }

    RefCount references_;
    std::u16string description_;
};

}  // namespace

HRESULT ReportError(HRESULT hr, std::u16string_view description) noexcept {
    try {
        const auto info = ComPtr<IErrorInfo>::Adopt(new ErrorInfo(std::u16string(description)));
        SetErrorInfo(0, info.get());
    } catch (...) {
        SetErrorInfo(0, nullptr);
    }
    return hr;
}

HRESULT FailFromCurrentException(std::u16string_view where) noexcept {
    HRESULT hr = E_FAIL;
    std::u16string text;
    try {
        try {
            throw;
        } catch (const ComFailure& e) {
            hr = e.hr();
            text = e.text();
        } catch (const onenote::OneNoteError& e) {
            hr = static_cast<HRESULT>(e.code());
            text = e.text();
        } catch (const macros::StoreError& e) {
            text = e.message();
        } catch (const MacroError& e) {
            text = e.message();
        } catch (const std::bad_alloc&) {
            hr = E_OUTOFMEMORY;
            text = std::u16string(msg::kOutOfMemory);
        } catch (const std::exception& e) {
            text = FormatMessage(msg::kUnexpectedFailure, {FromUtf8(e.what())});
        } catch (...) {
            hr = E_UNEXPECTED;
            text = FormatMessage(msg::kUnexpectedFailure, {u"?"});
        }
        HostLog(FormatMessage(msg::kLogCallFailed, {where, text}));
    } catch (...) {
        // Out of memory while wording the failure: report the code alone.
    }
    return ReportError(hr, text);
}

}  // namespace qm::addin
