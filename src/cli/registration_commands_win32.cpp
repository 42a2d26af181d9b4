// register and unregister: the per-user registry entries that make OneNote load the add-in.
//
//   quillmark register [--dll PATH]
//       Registers quillmark.dll (by default the one beside quillmark.exe) under
//       HKEY_CURRENT_USER: both add-in classes with InprocServer32 and their threading model, the
//       AppID with an empty DllSurrogate (so that either class can also be served by a dllhost.exe
//       surrogate), the ProgID, and OneNote's entry for the add-in with LoadBehavior 3,
//       FriendlyName and Description. Registering again replaces the entries.
//   quillmark unregister
//       Removes all of them, and OneNote's add-in keys above them when nothing else is left in
//       them.
#include <CLI/CLI.hpp>
#include <windows.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "addin/addin_ids.h"
#include "addin/messages.h"
#include "cli/command.h"
#include "core/text.h"
#include "core/value.h"

#undef FormatMessage
#include "core/format.h"

namespace qm::cli {
namespace {

namespace ids = addin;
namespace msg = addin::msg;

struct Failure {
    std::u16string text;
};

std::wstring W(std::u16string_view text) { return std::wstring(text.begin(), text.end()); }

std::u16string Key(std::initializer_list<std::u16string_view> parts) {
    std::u16string key;
    for (const std::u16string_view part : parts) {
        if (!key.empty()) key += u'\\';
        key += part;
    }
    return key;
}

// One registry value to write: a string (REG_SZ) or, with `number`, a REG_DWORD; an empty name is
// the key's default value.
struct Value {
    std::u16string_view name;
    std::u16string text;
    std::optional<DWORD> number;
};

void WriteKey(const std::u16string& key, const std::vector<Value>& values) {
    HKEY handle = nullptr;
    LSTATUS status = RegCreateKeyExW(HKEY_CURRENT_USER, W(key).c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                     KEY_WRITE | KEY_WOW64_64KEY, nullptr, &handle, nullptr);
    for (const Value& value : values) {
        if (status != ERROR_SUCCESS) break;
        const std::wstring name = W(value.name);
        if (value.number) {
            status = RegSetValueExW(handle, name.c_str(), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&*value.number),
                                    sizeof(DWORD));
        } else {
            const std::wstring text = W(value.text);
            status = RegSetValueExW(handle, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                                    static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
        }
    }
    if (handle) RegCloseKey(handle);
    if (status != ERROR_SUCCESS) {
        throw Failure{FormatMessage(msg::kRegistryFailed, {key, IntegerText(static_cast<std::int64_t>(status))})};
    }
}

void RemoveKey(const std::u16string& key) {
    const LSTATUS status = RegDeleteTreeW(HKEY_CURRENT_USER, W(key).c_str());
    if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) {
        throw Failure{FormatMessage(msg::kRegistryRemoveFailed, {key, IntegerText(static_cast<std::int64_t>(status))})};
    }
}

// Removes a key that holds neither values nor subkeys.
void RemoveIfEmpty(const std::u16string& key) {
    HKEY handle = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, W(key).c_str(), 0, KEY_READ | KEY_WOW64_64KEY, &handle) != ERROR_SUCCESS) {
        return;
    }
    DWORD subkeys = 0, values = 0;
    const bool empty = RegQueryInfoKeyW(handle, nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr, &values,
                                        nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS &&
                       subkeys == 0 && values == 0;
    RegCloseKey(handle);
    if (empty) RegDeleteKeyW(HKEY_CURRENT_USER, W(key).c_str());
}

std::u16string ClassKey(std::u16string_view clsid) { return Key({ids::kClassesKey, u"CLSID", clsid}); }
std::u16string AppIdKey() { return Key({ids::kClassesKey, u"AppID", ids::kAppId}); }
std::u16string ProgIdKey() { return Key({ids::kClassesKey, ids::kProgId}); }

std::filesystem::path DefaultDll() {
    std::wstring exe(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, exe.data(), static_cast<DWORD>(exe.size()));
        if (length < exe.size()) {
            exe.resize(length);
            break;
        }
        exe.resize(exe.size() * 2);
    }
    return std::filesystem::path(exe).parent_path() / L"quillmark.dll";
}

void Register(const std::filesystem::path& dll) {
    const std::u16string path = dll.u16string();
    for (const std::u16string_view clsid : {ids::kClsidAddin, ids::kClsidOutProcAddin}) {
        WriteKey(ClassKey(clsid), {{u"", std::u16string(msg::kFriendlyName), {}}, {u"AppID", std::u16string(ids::kAppId), {}}});
        WriteKey(Key({ClassKey(clsid), u"InprocServer32"}),
                 {{u"", path, {}}, {u"ThreadingModel", std::u16string(ids::kThreadingModel), {}}});
    }
    WriteKey(Key({ClassKey(ids::kClsidOutProcAddin), u"ProgID"}), {{u"", std::u16string(ids::kProgId), {}}});
    WriteKey(AppIdKey(), {{u"", std::u16string(msg::kFriendlyName), {}}, {u"DllSurrogate", u"", {}}});
    WriteKey(ProgIdKey(), {{u"", std::u16string(msg::kFriendlyName), {}}});
    WriteKey(Key({ProgIdKey(), u"CLSID"}), {{u"", std::u16string(ids::kClsidOutProcAddin), {}}});
    WriteKey(std::u16string(ids::kAddinKey), {{u"LoadBehavior", u"", ids::kLoadBehavior},
                                               {u"FriendlyName", std::u16string(msg::kFriendlyName), {}},
                                               {u"Description", std::u16string(msg::kDescription), {}}});
}

void Unregister() {
    RemoveKey(ClassKey(ids::kClsidAddin));
    RemoveKey(ClassKey(ids::kClsidOutProcAddin));
    RemoveKey(AppIdKey());
    RemoveKey(ProgIdKey());
    RemoveKey(std::u16string(ids::kAddinKey));
    // OneNote's own keys above, when the add-in was all they held.
    std::u16string parent(ids::kOneNoteAddInsKey);
    for (int level = 0; level < 3; ++level) {
        RemoveIfEmpty(parent);
        parent.resize(parent.rfind(u'\\'));
    }
}

int RunRegistration(const std::optional<std::string>& dll, bool remove, Io& io) {
    try {
        if (remove) {
            Unregister();
            io.out << ToUtf8(msg::kUnregistered) << "\n";
            return kExitOk;
        }
        std::filesystem::path path = dll ? PathArg(*dll) : DefaultDll();
        std::error_code error;
        path = std::filesystem::absolute(path, error);
        if (error || !std::filesystem::is_regular_file(path, error)) {
            io.err << ToUtf8(FormatMessage(msg::kDllNotFound, {path.u16string()})) << "\n";
            return kExitError;
        }
        Register(path);
        io.out << ToUtf8(FormatMessage(msg::kRegistered, {path.u16string()})) << "\n";
        return kExitOk;
    } catch (const Failure& e) {
        io.err << ToUtf8(e.text) << "\n";
        return kExitError;
    }
}

}  // namespace

void RegisterRegistrationCommands(CLI::App& app, CommandContext& context) {
    auto dll = std::make_shared<std::optional<std::string>>();
    CLI::App* add = app.add_subcommand("register", "Register the OneNote add-in for the current user");
    add->add_option("--dll", *dll, "The add-in to register (default: quillmark.dll beside quillmark.exe)")
        ->option_text("PATH");
    add->callback([&context, dll] {
        context.action = [&context, dll] { return RunRegistration(*dll, false, context.io); };
    });
    CLI::App* remove = app.add_subcommand("unregister", "Remove the OneNote add-in's registration");
    remove->callback([&context] {
        context.action = [&context] { return RunRegistration(std::nullopt, true, context.io); };
    });
}

}  // namespace qm::cli
