#include <objbase.h>
#include <shlobj.h>
#include <shobjidl.h>

#include <cstdlib>

#include "macros/user_folder.h"
#include "xml/com_ptr_win32.h"

namespace qm::platform {
namespace {

// COM for the calling thread while it is needed: OneNote's thread has it already (the call then
// only counts once more), the command-line tool's main thread does not.
class ComScope {
public:
    ComScope() : hr_(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
    ~ComScope() {
        if (SUCCEEDED(hr_)) ::CoUninitialize();
    }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;

private:
    HRESULT hr_;
};

// The roaming application data folder from the Known Folder Manager; empty when it cannot tell.
std::filesystem::path RoamingAppData() {
    ComScope com;
    ComPtr<IKnownFolderManager> manager;
    if (FAILED(::CoCreateInstance(CLSID_KnownFolderManager, nullptr, CLSCTX_INPROC_SERVER, IID_IKnownFolderManager,
                                  reinterpret_cast<void**>(manager.Out())))) {
        return {};
    }
    ComPtr<IKnownFolder> folder;
    if (FAILED(manager->GetFolder(FOLDERID_RoamingAppData, folder.Out()))) return {};
    PWSTR path = nullptr;
    if (FAILED(folder->GetPath(0, &path)) || path == nullptr) return {};
    std::filesystem::path result(path);
    ::CoTaskMemFree(path);
    return result;
}

}  // namespace

std::filesystem::path HomeOverride() {
    const wchar_t* home = ::_wgetenv(L"QUILLMARK_HOME");
    return home != nullptr ? std::filesystem::path(home) : std::filesystem::path();
}

// Roaming application data + "\quillmark\" (%APPDATA% should the folder manager fail).
std::filesystem::path DefaultUserFolder() {
    std::filesystem::path base = RoamingAppData();
    if (base.empty()) {
        const wchar_t* appData = ::_wgetenv(L"APPDATA");
        base = appData != nullptr ? std::filesystem::path(appData) : std::filesystem::path(L".");
    }
    return base / "quillmark" / "";
}

}  // namespace qm::platform
