#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <regex>
#include <string>

#include "core/format.h"
#include "core/text.h"
#include "macros/macro_xml.h"
#include "macros/messages.h"
#include "store_test_util.h"
#include "xml/xml_error.h"

#if defined(__unix__)
#include <csignal>
#include <sys/resource.h>
#endif

namespace qm::macros::testing {
namespace {

std::vector<std::u16string> Names(MacroStore& store) {
    std::vector<std::u16string> names;
    for (const auto& macro : store.GetMacros().macros) names.push_back(macro->name);
    return names;
}

// Everything in a folder, by name and content, to show that nothing in it changed.
std::map<std::string, std::string> Snapshot(const fs::path& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        files[entry.path().lexically_relative(folder).string()] = entry.is_regular_file() ? Bytes(entry.path()) : "<dir>";
    }
    return files;
}

TEST(StoreFiles, NothingIsWrittenBeforeTheFirstChange) {
    const fs::path folder = ScratchFolder();
    MacroStore store(folder);
    EXPECT_TRUE(store.GetMacros().macros.empty());
    EXPECT_EQ(store.ReadLoadState(), 0);
    EXPECT_FALSE(store.ReloadIfChanged());
    EXPECT_EQ(store.Find(u"anything"), nullptr);
    EXPECT_TRUE(store.TakeNotices().empty());
    EXPECT_FALSE(fs::exists(folder));

    store.AddOrReplace(MakeMacro(u"m1", u"First"));
    EXPECT_TRUE(fs::exists(folder / "macros2.xml"));
    EXPECT_EQ(Bytes(folder / "LoadState"), "1");
}

TEST(StoreFiles, SavedListIsTheSerialisedTextInUtf16LeWithoutMark) {
    const fs::path folder = ScratchFolder();
    MacroStore store(folder);
    auto macro = MakeMacro(u"m1", u"Caf\u00e9 <1>", u"Tools");
    store.AddOrReplace(macro);
    store.Modify([](M2::Macros& list) { list.loggingEnabled = true; });

    const std::u16string expected = std::u16string(kDecl) +
        u"<Macros loggingEnabled=\"true\" loadState=\"2\">\r\n"
        u"  <Macro id=\"m1\" name=\"Caf\u00e9 &lt;1&gt;\" category=\"Tools\" description=\"\" "
        u"publishDate=\"00-00-00T00:00:00.000Z\" />\r\n"
        u"</Macros>";
    const std::string bytes = Bytes(folder / "macros2.xml");
    EXPECT_EQ(bytes.substr(0, 4), std::string("<\0?\0", 4));  // no byte order mark
    EXPECT_EQ(bytes, io::EncodeUtf16Le(expected));

    // What the store wrote, it reads back: the defaults it chose are not written and come back.
    MacroStore again(folder);
    const M2::Macros& list = again.GetMacros();
    EXPECT_EQ(list.display.value, u"category");
    EXPECT_TRUE(list.loggingEnabled.value);
    ASSERT_EQ(list.macros.size(), 1u);
    EXPECT_EQ(list.macros[0]->version.value, kMacroVersion);
    EXPECT_EQ(list.macros[0]->name, u"Caf\u00e9 <1>");
}

// A list that cannot be read is reported with the file and the place, and no operation of the
// store writes over it, whatever kind of unreadable it is.
TEST(StoreFiles, UnreadableListIsReportedAndNeverWrittenOver) {
    struct Case {
        const char* what;
        std::u16string text;  // empty: macros2.xml is a folder
        std::u16string error;
    } cases[] = {
        {"mismatched tags", std::u16string(kDecl) + u"<Macros>\r\n  <Macro name=\"a\">\r\n</Macros>", u""},
        {"another document", std::u16string(kDecl) + u"<Quillmark pinTo=\"desktop\" />",
         u"Expected a \"Macros\" element, found \"Quillmark\" (line 2)"},
        {"a folder", u"", u""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const fs::path folder = ScratchFolder();
        const fs::path file = folder / "macros2.xml";
        if (c.text.empty()) {
            fs::create_directories(file / "inside");
        } else {
            WriteUtf16(file, c.text);
        }
        const auto before = Snapshot(folder);

        MacroStore store(folder);
        std::u16string readError;
        try {
            store.GetMacros();
            ADD_FAILURE() << "the list loaded";
        } catch (const StoreError& e) {
            readError = e.message();
        }
        const std::u16string prefix = u"Cannot read \"" + PathText(file) + u"\": ";
        ASSERT_TRUE(readError.starts_with(prefix)) << ToUtf8(readError);
        if (!c.error.empty()) {
            EXPECT_EQ(readError, prefix + c.error);
        }
        if (std::string(c.what) == "mismatched tags") {
            try {
                M2::ReadMacros(c.text);
                ADD_FAILURE() << "the text read";
            } catch (const xml::XmlError& e) {
                EXPECT_EQ(e.line(), 4);
                EXPECT_GT(e.column(), 0);
                EXPECT_EQ(readError, prefix + e.FullText());
            }
        }

        const std::u16string refused = FormatMessage(msg::kKeptUnreadable, {PathText(file), readError});
        const auto expectRefused = [&](const std::function<void()>& operation) {
            try {
                operation();
                ADD_FAILURE() << "the operation went through";
            } catch (const StoreError& e) {
                EXPECT_EQ(ToUtf8(e.message()), ToUtf8(refused));
            }
        };
        expectRefused([&] { store.AddOrReplace(MakeMacro(u"m1", u"New")); });
        expectRefused([&] { store.SaveMacros(); });
        expectRefused([&] { store.BumpLoadState(); });
        expectRefused([&] { store.Remove(u"m1"); });
        expectRefused([&] { store.Modify([](M2::Macros& list) { list.compact = true; }); });
        EXPECT_THROW(store.ReloadIfChanged(), StoreError);
        EXPECT_EQ(Snapshot(folder), before);
    }
}

TEST(StoreFiles, ListThatBreaksAfterLoadingIsKeptInMemoryAndNotSaved) {
    const fs::path folder = ScratchFolder();
    const fs::path file = folder / "macros2.xml";
    WriteUtf16(file, ListText({{u"a", u"Alpha"}}, 3));
    MacroStore store(folder);
    M2::Macros& list = store.GetMacros();
    ASSERT_EQ(Names(store), std::vector<std::u16string>{u"Alpha"});

    // Another copy leaves a broken file behind and raises the counter.
    const std::u16string broken = std::u16string(kDecl) + u"<Macros loadState=\"4\"><Macro";
    WriteUtf16(file, broken);
    ASSERT_TRUE(MakeLoadCounter(folder)->Write(4));

    EXPECT_THROW(store.ReloadIfChanged(), StoreError);
    EXPECT_EQ(&store.GetMacros(), &list);
    EXPECT_EQ(Names(store), std::vector<std::u16string>{u"Alpha"});
    EXPECT_THROW(store.AddOrReplace(MakeMacro(u"b", u"Beta")), StoreError);
    EXPECT_THROW(store.SaveMacros(), StoreError);
    EXPECT_EQ(Names(store), std::vector<std::u16string>{u"Alpha"});
    EXPECT_EQ(Bytes(file), io::EncodeUtf16Le(broken));

    // Once the file reads again, the store takes it and saves again.
    WriteUtf16(file, ListText({{u"a", u"Alpha"}, {u"c", u"Gamma"}}, 4));
    EXPECT_TRUE(store.ReloadIfChanged());
    store.AddOrReplace(MakeMacro(u"b", u"Beta"));
    EXPECT_EQ(Names(store), (std::vector<std::u16string>{u"Alpha", u"Gamma", u"Beta"}));
    EXPECT_EQ(MacroStore(folder).GetMacros().macros.size(), 3u);
}

TEST(StoreFiles, FailedSaveKeepsTheOldFileTheListAndTheCounter) {
    const fs::path folder = ScratchFolder();
    const fs::path file = folder / "macros2.xml";
    MacroStore store(folder);
    store.AddOrReplace(MakeMacro(u"a", u"Alpha"));
    const std::string saved = Bytes(file);

    // The file's place is taken by a folder: the save cannot replace it.
    fs::rename(file, folder / "aside.xml");
    fs::create_directories(file / "inside");
    try {
        store.AddOrReplace(MakeMacro(u"b", u"Beta"));
        ADD_FAILURE() << "the save went through";
    } catch (const StoreError& e) {
        EXPECT_TRUE(e.message().starts_with(u"Cannot save \"" + PathText(file) + u"\": ")) << e.what();
    }
    EXPECT_EQ(Names(store), std::vector<std::u16string>{u"Alpha"});
    EXPECT_EQ(store.GetMacros().loadState.value, 1);
    EXPECT_EQ(Bytes(folder / "LoadState"), "1");
    EXPECT_THROW(store.Remove(u"Alpha"), StoreError);
    EXPECT_EQ(Names(store), std::vector<std::u16string>{u"Alpha"});
    fs::remove_all(file);
    fs::rename(folder / "aside.xml", file);

#if defined(__unix__)
    // The disk fills up mid-save (a file size limit holds even for a privileged user).
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    rlimit tight = old;
    tight.rlim_cur = 64;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tight), 0);
    EXPECT_THROW(store.AddOrReplace(MakeMacro(u"b", u"Beta")), StoreError);
    setrlimit(RLIMIT_FSIZE, &old);
    EXPECT_EQ(Bytes(file), saved);
    EXPECT_EQ(Names(store), std::vector<std::u16string>{u"Alpha"});
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"LoadState", "macros2.xml"}));
#endif
}

TEST(StoreFiles, FirstFormatListIsReportedAndLeftAlone) {
    const fs::path folder = ScratchFolder();
    const fs::path old = folder / "macros.xml";
    WriteUtf16(old, u"<Macros><M name=\"old\" /></Macros>");
    const std::string oldBytes = Bytes(old);

    MacroStore store(folder);
    EXPECT_TRUE(store.GetMacros().macros.empty());
    const std::vector<std::u16string> notices = store.TakeNotices();
    ASSERT_EQ(notices.size(), 1u);
    EXPECT_EQ(notices[0], u"\"" + PathText(old) +
                              u"\" holds macros in the first macro format, which this version cannot convert. "
                              u"The file is left as it is.");
    EXPECT_TRUE(store.TakeNotices().empty());
    EXPECT_FALSE(fs::exists(folder / "macros2.xml"));

    store.AddOrReplace(MakeMacro(u"a", u"Alpha"));
    MacroStore next(folder);
    next.GetMacros();
    EXPECT_TRUE(next.TakeNotices().empty());  // the new list holds macros: the old file is ignored
    EXPECT_EQ(Bytes(old), oldBytes);
}

TEST(StoreFiles, FindAddReplaceAndRemove) {
    const fs::path folder = ScratchFolder();
    MacroStore store(folder);
    store.AddOrReplace({MakeMacro(u"a", u"b"), MakeMacro(u"b", u"Beta"), MakeMacro(u"", u"Fresh")});

    EXPECT_EQ(store.Find(u"b")->name, u"Beta");  // the id before the name
    EXPECT_EQ(store.Find(u"Beta")->id.value, u"b");
    EXPECT_EQ(store.Find(u"beta"), nullptr);     // exact names only
    EXPECT_EQ(store.Find(u""), nullptr);
    const std::string freshId = ToUtf8(store.Find(u"Fresh")->id.value);
    EXPECT_TRUE(std::regex_match(freshId, std::regex("\\{[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}\\}")))
        << freshId;
    EXPECT_NE(NewMacroId(), NewMacroId());

    // Same id: replaced where it stands.
    store.AddOrReplace(MakeMacro(u"b", u"Beta 2"));
    EXPECT_EQ(Names(store), (std::vector<std::u16string>{u"b", u"Beta 2", u"Fresh"}));

    EXPECT_EQ(store.Remove(u"Fresh")->id.value, FromUtf8(freshId));
    const std::string saved = Bytes(folder / "macros2.xml");
    try {
        store.Remove(u"Fresh");
        ADD_FAILURE() << "removed a macro that is not there";
    } catch (const StoreError& e) {
        EXPECT_EQ(e.message(), u"There is no macro with the id or name \"Fresh\".");
    }
    EXPECT_EQ(Bytes(folder / "macros2.xml"), saved);
    EXPECT_EQ(MacroStore(folder).GetMacros().macros.size(), 2u);
}

TEST(StoreImport, SingleMacrosListsAndTheirIdsAndVersions) {
    // A single macro pasted without a declaration, without an id.
    MacroImport single = ReadMacroImport(u"<Macro name=\"Pasted\" category=\"\" description=\"\" />");
    ASSERT_EQ(single.macros.size(), 1u);
    EXPECT_EQ(single.macros[0]->name, u"Pasted");
    EXPECT_EQ(single.macros[0]->id.value.size(), 38u);
    EXPECT_EQ(single.macros[0]->version.value, kMacroVersion);
    EXPECT_FALSE(single.newerVersion);

    MacroImport list = ReadMacroImport(std::u16string(kDecl) +
                                       u"<Macros display=\"flat\"><Macro id=\"x\" name=\"One\" version=\"2\" />"
                                       u"<Macro name=\"Two\" /></Macros>");
    ASSERT_EQ(list.macros.size(), 2u);
    EXPECT_EQ(list.macros[0]->id.value, u"x");
    EXPECT_NE(list.macros[1]->id.value, u"");
    EXPECT_TRUE(list.newerVersion);
    EXPECT_EQ(list.macros[0]->owner, nullptr);

    try {
        ReadMacroImport(std::u16string(kDecl) + u"<Quillmark />");
        ADD_FAILURE() << "imported settings as macros";
    } catch (const xml::XmlError& e) {
        EXPECT_EQ(e.FullText(), u"Expected a \"Macro\" or \"Macros\" element, found \"Quillmark\" (line 2)");
    }
    EXPECT_THROW(ReadMacroImport(u"<Macro name=\"x\">"), xml::XmlError);
}

}  // namespace
}  // namespace qm::macros::testing
