// Scratch folders and file helpers for the store tests: every test works in a folder of its own
// under the test home, which it starts without.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "core/text.h"
#include "macros/load_counter.h"
#include "macros/macro_store.h"
#include "xml/file_io.h"

namespace qm::macros::testing {

namespace fs = std::filesystem;

inline constexpr std::u16string_view kDecl = u"<?xml version=\"1.0\" encoding=\"utf-16\"?>\r\n";

// A folder named after the running test, removed if a previous run left it; not created.
inline fs::path ScratchFolder() {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string name = std::string(info->test_suite_name()) + "." + info->name();
    for (char& c : name) {
        if (c == '/') c = '_';
    }
    const char* home = std::getenv("QUILLMARK_HOME");
    const fs::path base = home != nullptr && *home != '\0' ? fs::path(home) : fs::temp_directory_path() / "quillmark";
    const fs::path folder = base / "store" / name;
    fs::remove_all(folder);
#ifdef _WIN32
    // The counter is one registry value for every folder there: each test starts it at 0.
    MakeLoadCounter(folder)->Write(0);
#endif
    return folder;
}

inline void WriteUtf16(const fs::path& path, std::u16string_view text) {
    fs::create_directories(path.parent_path());
    io::WriteFileAtomically(path, io::EncodeUtf16Le(text));
}

inline std::string Bytes(const fs::path& path) { return io::ReadFileBytes(path); }

inline std::shared_ptr<M2::Macro> MakeMacro(std::u16string id, std::u16string name, std::u16string category = u"") {
    auto macro = NewMacro();
    macro->id.value = std::move(id);
    macro->name = std::move(name);
    macro->category = std::move(category);
    return macro;
}

inline std::vector<std::u16string> Ids(MacroStore& store) {
    std::vector<std::u16string> ids;
    for (const auto& macro : store.GetMacros().macros) ids.push_back(macro->id.value);
    return ids;
}
inline std::vector<std::u16string> Ids(MacroStore&& store) { return Ids(store); }

// The message of the store error that `change` ends with, or a marker when it went through.
template <class Change>
std::u16string StoreErrorOf(Change&& change) {
    try {
        change();
    } catch (const StoreError& e) {
        return e.message();
    }
    return u"(no error)";
}

// A list file holding the given macros (id, name) and loadState.
inline std::u16string ListText(std::initializer_list<std::pair<std::u16string, std::u16string>> macros,
                               int loadState = 0) {
    std::u16string text(kDecl);
    text += u"<Macros";
    if (loadState != 0) text += u" loadState=\"" + std::u16string(Ascii(std::to_string(loadState))) + u"\"";
    text += u">\r\n";
    for (const auto& [id, name] : macros) {
        text += u"  <Macro id=\"" + id + u"\" name=\"" + name +
                u"\" category=\"\" description=\"\" publishDate=\"00-00-00T00:00:00.000Z\" />\r\n";
    }
    text += u"</Macros>";
    return text;
}

}  // namespace qm::macros::testing
