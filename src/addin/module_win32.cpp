// COM entry: DllGetClassObject, the only export of quillmark.dll, and the class objects it hands
// out, found in a table by class identifier.
#include "addin/module.h"

#include "addin/win32.h"

#include <atomic>
#include <new>
#include <string>

#include "addin/addin.h"
#include "addin/addin_ids.h"
#include "addin/com_holders.h"
#include "addin/com_object.h"
#include "addin/error_info.h"
#include "addin/host_log.h"
#include "addin/messages.h"

namespace qm::addin {
namespace {

std::atomic<long> liveObjects{0};
std::atomic<bool> watcherStarted{false};

constexpr DWORD kWatcherStepMs = 30000;

DWORD WINAPI SurrogateWatcher(void*) {
    do {
        Sleep(kWatcherStepMs);
    } while (liveObjects.load() != 0);
    HostLog(msg::kLogSurrogateQuitting);
    ExitProcess(0);
}

// The class objects of the two add-in classes differ only in the kind of add-in they make.
template <AddinKind kKind>
class ClassFactory : public IClassFactory {
public:
    ClassFactory() { ObjectCreated(); }
    virtual ~ClassFactory() { ObjectReleased(); }
    ClassFactory(const ClassFactory&) = delete;
    ClassFactory& operator=(const ClassFactory&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        const InterfaceEntry interfaces[] = {{&IID_IUnknown, this}, {&IID_IClassFactory, this}};
        return QueryFromTable(interfaces, iid, object);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return references_.Add(); }
    ULONG STDMETHODCALLTYPE Release() override { return references_.Release(this); }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        return Guarded(u"IClassFactory::CreateInstance", [&]() -> HRESULT {
            if (!object) return E_POINTER;
            *object = nullptr;
            if (outer) return CLASS_E_NOAGGREGATION;
            const auto addin = ComPtr<IUnknown>::Adopt(CreateAddin(kKind));
            return addin->QueryInterface(iid, object);
        });
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        if (lock) {
            ObjectCreated();
        } else {
            ObjectReleased();
        }
        return S_OK;
    }

private:
    RefCount references_;
};

class ClassFactory_Addin final : public ClassFactory<AddinKind::InProc> {};
class ClassFactory_OutProcAddin final : public ClassFactory<AddinKind::OutProc> {};

template <class Factory>
IClassFactory* Make() {
    return new (std::nothrow) Factory();
}

struct ClassEntry {
    std::u16string_view clsid;
    std::u16string_view logLine;
    IClassFactory* (*make)();
};

// Looked at in this order.
constexpr ClassEntry kClasses[] = {
    {kClsidOutProcAddin, msg::kLogOutprocRequest, &Make<ClassFactory_OutProcAddin>},
    {kClsidAddin, msg::kLogInprocRequest, &Make<ClassFactory_Addin>},
};

bool SameClass(REFCLSID clsid, std::u16string_view text) {
    CLSID parsed;
    const std::wstring wide(Wide(text), text.size());
    return SUCCEEDED(CLSIDFromString(wide.c_str(), &parsed)) && IsEqualCLSID(clsid, parsed);
}

}  // namespace

void ObjectCreated() noexcept { ++liveObjects; }

void ObjectReleased() noexcept {
    if (--liveObjects != 0 || !InSurrogate()) return;
    HostLog(msg::kLogLastObjectReleased);
    if (watcherStarted.exchange(true)) return;
    if (HANDLE thread = CreateThread(nullptr, 0, &SurrogateWatcher, nullptr, 0, nullptr)) {
        CloseHandle(thread);
    } else {
        watcherStarted = false;
    }
}

}  // namespace qm::addin

// The class object for a class identifier; the interface identifier is left to the object's own
// QueryInterface.
extern "C" HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID clsid, REFIID, void** object) {
    using namespace qm::addin;
    return Guarded(u"DllGetClassObject", [&]() -> HRESULT {
        if (!object) return E_POINTER;
        *object = nullptr;
        for (const ClassEntry& entry : kClasses) {
            if (!SameClass(clsid, entry.clsid)) continue;
            HostLog(entry.logLine);
            IClassFactory* factory = entry.make();
            if (!factory) return E_OUTOFMEMORY;
            *object = factory;
            return S_OK;
        }
        HostLog(msg::kLogUnknownClass);
        return CLASS_E_CLASSNOTAVAILABLE;
    });
}
