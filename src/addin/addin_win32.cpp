#include "addin/addin.h"

#include <memory>
#include <new>

#include "addin/addin_session.h"
#include "addin/callback_table.h"
#include "addin/com_object.h"
#include "addin/error_info.h"
#include "addin/host_log.h"
#include "addin/messages.h"
#include "addin/office_interfaces.h"
#include "addin/ribbon_callbacks.h"
#include "addin/ribbon_content.h"

namespace qm::addin {
namespace {

class Addin final : public IDTExtensibility2, public IRibbonExtensibility, public ISupportErrorInfo {
public:
    explicit Addin(AddinKind kind) {
        ObjectCreated();
        HostLog(kind == AddinKind::InProc ? msg::kLogInprocCall : msg::kLogOutprocCall);
    }
    ~Addin() { ObjectReleased(); }
    Addin(const Addin&) = delete;
    Addin& operator=(const Addin&) = delete;

    // --- IUnknown ---------------------------------------------------------------------------

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        // IUnknown and IDispatch are handed out through IDTExtensibility2.
        const InterfaceEntry interfaces[] = {
            {&IID_IUnknown, static_cast<IDTExtensibility2*>(this)},
            {&IID_IDispatch, static_cast<IDTExtensibility2*>(this)},
            {&kIID_IDTExtensibility2, static_cast<IDTExtensibility2*>(this)},
            {&kIID_IRibbonExtensibility, static_cast<IRibbonExtensibility*>(this)},
            {&IID_ISupportErrorInfo, static_cast<ISupportErrorInfo*>(this)},
        };
        return QueryFromTable(interfaces, iid, object);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return references_.Add(); }
    ULONG STDMETHODCALLTYPE Release() override { return references_.Release(this); }

    // --- IDispatch: the ribbon's callbacks ----------------------------------------------------

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        if (!count) return E_POINTER;
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
        if (info) *info = nullptr;
        return E_NOTIMPL;
    }

    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
        return Guarded(u"GetIDsOfNames", [&]() -> HRESULT {
            if (count > 0 && (!names || !ids)) return E_POINTER;
            for (UINT i = 0; i < count; ++i) {
                const std::u16string_view name =
                    names[i] ? Utf16(names[i], wcslen(names[i])) : std::u16string_view();
                const std::optional<std::int32_t> id = CallbackId(name);
                std::u16string line(msg::kLogGetIDsOfNames);
                line += name;
                if (!id) {
                    HostLog(line + std::u16string(msg::kLogUnknownDispid));
                    return DISP_E_UNKNOWNNAME;
                }
                HostLog(line);
                ids[i] = *id;
            }
            return S_OK;
        });
    }

    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT* result,
                                     EXCEPINFO*, UINT* argumentError) override {
        const std::optional<Callback> callback = CallbackFromId(id);
        if (!callback) return DISP_E_MEMBERNOTFOUND;
        if (argumentError) *argumentError = 0;
        return Guarded(CallbackName(*callback), [&]() -> HRESULT {
            static const DISPPARAMS kNone{nullptr, nullptr, 0, 0};
            InvokeCallback(*callback, session_.get(), parameters ? *parameters : kNone, result);
            return S_OK;
        });
    }

    // --- IDTExtensibility2 ------------------------------------------------------------------

    HRESULT STDMETHODCALLTYPE OnConnection(IDispatch* application, int, IDispatch*, SAFEARRAY**) override {
        return Guarded(u"OnConnection", [&]() -> HRESULT {
            HostLog(msg::kLogOnConnection);
            if (!application) return E_POINTER;
            session_ = std::make_unique<AddinSession>(application);
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE OnDisconnection(int, SAFEARRAY**) override {
        return Guarded(u"OnDisconnection", [&]() -> HRESULT {
            HostLog(msg::kLogOnDisconnection);
            session_.reset();
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE OnAddInsUpdate(SAFEARRAY**) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnStartupComplete(SAFEARRAY**) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnBeginShutdown(SAFEARRAY**) override { return S_OK; }

    // --- IRibbonExtensibility ---------------------------------------------------------------

    HRESULT STDMETHODCALLTYPE GetCustomUI(BSTR, BSTR* xml) override {
        return Guarded(u"GetCustomUI", [&]() -> HRESULT {
            if (!xml) return E_POINTER;
            *xml = nullptr;
            const std::u16string text = CustomUiXml();
            *xml = AllocBstr(text);
            return *xml ? S_OK : E_OUTOFMEMORY;
        });
    }

    // --- ISupportErrorInfo ------------------------------------------------------------------

    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) override {
        return IsEqualIID(iid, kIID_IDTExtensibility2) || IsEqualIID(iid, kIID_IRibbonExtensibility) ||
                       IsEqualIID(iid, IID_IDispatch)
                   ? S_OK
                   : S_FALSE;
    }

private:
    // IDTExtensibility2 and IRibbonExtensibility both derive from IDispatch: the one set of
    // IUnknown and IDispatch methods above serves both.
    RefCount references_;
    std::unique_ptr<AddinSession> session_;
};

}  // namespace

IUnknown* CreateAddin(AddinKind kind) noexcept {
    try {
        return static_cast<IDTExtensibility2*>(new Addin(kind));
    } catch (...) {
        return nullptr;
    }
}

}  // namespace qm::addin
