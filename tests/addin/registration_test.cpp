// quillmark register and unregister, checked in the registry.
#include <sstream>

#include "addin/addin_ids.h"
#include "addin_fixture.h"
#include "cli/app.h"

namespace qm::addin::testing {
namespace {

int RunCli(std::vector<std::string> arguments, std::string* out = nullptr) {
    arguments.insert(arguments.begin(), "quillmark");
    std::vector<char*> argv;
    for (auto& argument : arguments) argv.push_back(argument.data());
    std::ostringstream output, errors;
    const int code = cli::Run(static_cast<int>(argv.size()), argv.data(), output, errors);
    if (out) *out = output.str() + errors.str();
    return code;
}

std::wstring W(std::u16string_view text) { return std::wstring(text.begin(), text.end()); }

bool KeyExists(const std::wstring& key) {
    HKEY handle = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, key.c_str(), 0, KEY_READ, &handle) != ERROR_SUCCESS) return false;
    RegCloseKey(handle);
    return true;
}

std::wstring StringValue(const std::wstring& key, const wchar_t* name) {
    wchar_t buffer[1024];
    DWORD size = sizeof buffer;
    if (RegGetValueW(HKEY_CURRENT_USER, key.c_str(), name, RRF_RT_REG_SZ, nullptr, buffer, &size) != ERROR_SUCCESS) {
        return L"<missing>";
    }
    return buffer;
}

TEST(RegistrationTest, RegisterWritesWhatOneNoteNeedsAndUnregisterLeavesNothing) {
    const std::wstring dll = AddinLibrary::Get().Path().wstring();
    std::string output;
    ASSERT_EQ(RunCli({"register", "--dll", AddinLibrary::Get().Path().string()}, &output), 0) << output;

    const std::wstring classes = W(kClassesKey) + L"\\";
    for (const std::u16string_view clsid : {kClsidAddin, kClsidOutProcAddin}) {
        const std::wstring key = classes + L"CLSID\\" + W(clsid);
        EXPECT_EQ(StringValue(key + L"\\InprocServer32", nullptr), dll);
        EXPECT_EQ(StringValue(key + L"\\InprocServer32", L"ThreadingModel"), L"Apartment");
        EXPECT_EQ(StringValue(key, L"AppID"), W(kAppId));
    }
    EXPECT_EQ(StringValue(classes + L"AppID\\" + W(kAppId), L"DllSurrogate"), L"");
    EXPECT_EQ(StringValue(classes + L"Quillmark.Addin\\CLSID", nullptr), W(kClsidOutProcAddin));
    const std::wstring addin = W(kAddinKey);
    DWORD loadBehavior = 0, size = sizeof loadBehavior;
    EXPECT_EQ(RegGetValueW(HKEY_CURRENT_USER, addin.c_str(), L"LoadBehavior", RRF_RT_REG_DWORD, nullptr,
                           &loadBehavior, &size),
              ERROR_SUCCESS);
    EXPECT_EQ(loadBehavior, 3u);
    EXPECT_EQ(StringValue(addin, L"FriendlyName"), L"Quillmark");
    EXPECT_NE(StringValue(addin, L"Description"), L"<missing>");

    ASSERT_EQ(RunCli({"unregister"}, &output), 0) << output;
    for (const std::wstring& key :
         {classes + L"CLSID\\" + W(kClsidAddin), classes + L"CLSID\\" + W(kClsidOutProcAddin),
          classes + L"AppID\\" + W(kAppId), classes + L"Quillmark.Addin", addin, W(kOneNoteAddInsKey)}) {
        EXPECT_FALSE(KeyExists(key)) << std::string(key.begin(), key.end());
    }
}

TEST(RegistrationTest, MissingDllIsRefused) {
    std::string output;
    EXPECT_EQ(RunCli({"register", "--dll", "no-such-folder\\quillmark.dll"}, &output), 1);
    EXPECT_NE(output.find("Cannot find the add-in"), std::string::npos) << output;
}

}  // namespace
}  // namespace qm::addin::testing
