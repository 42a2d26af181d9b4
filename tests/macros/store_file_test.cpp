#include <gtest/gtest.h>

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

using Strings = std::vector<std::u16string>;

// Everything in a folder, by name and content, to show that nothing in it changed.
std::map<std::string, std::string> Snapshot(const fs::path& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        files[entry.path().lexically_relative(folder).string()] = entry.is_regular_file() ? Bytes(entry.path()) : "";
    }
    return files;
}

TEST(StoreFiles, NothingIsWrittenBeforeTheFirstChangeThenTheExactText) {
    const fs::path folder = ScratchFolder();
    MacroStore store(folder);
    EXPECT_TRUE(store.GetMacros().macros.empty());
    EXPECT_EQ(store.ReadLoadState(), 0);
    EXPECT_FALSE(store.ReloadIfChanged());
    EXPECT_EQ(store.Find(u"anything"), nullptr);
    EXPECT_FALSE(fs::exists(folder));

    store.AddOrReplace(MakeMacro(u"m1", u"Caf\u00e9 <1>", u"Tools"));
    store.Modify([](M2::Macros& list) { list.loggingEnabled = true; });
    const std::u16string expected = std::u16string(kDecl) +
        u"<Macros loggingEnabled=\"true\" loadState=\"2\">\r\n"
        u"  <Macro id=\"m1\" name=\"Caf\u00e9 &lt;1&gt;\" category=\"Tools\" description=\"\" "
        u"publishDate=\"00-00-00T00:00:00.000Z\" />\r\n"
        u"</Macros>";
    EXPECT_EQ(Bytes(folder / "macros2.xml"), io::EncodeUtf16Le(expected));  // no byte order mark
    EXPECT_EQ(MakeLoadCounter(folder)->Read(), 2u);

    // The defaults the store chose are not written, and come back on reading.
    MacroStore again(folder);
    EXPECT_EQ(again.GetMacros().display.value, u"category");
    EXPECT_EQ(again.Find(u"m1")->version.value, kMacroVersion);
}

// However a list is unreadable, it is reported with the file and the place, and no operation of
// the store writes over it.
TEST(StoreFiles, UnreadableListIsReportedAndNeverWrittenOver) {
    const std::u16string mismatched = std::u16string(kDecl) + u"<Macros>\r\n  <Macro name=\"a\">\r\n</Macros>";
    std::u16string xmlError;
    try {
        M2::ReadMacros(mismatched);
    } catch (const xml::XmlError& e) {
        EXPECT_EQ(e.line(), 4);
        EXPECT_GT(e.column(), 0);
        xmlError = e.FullText();
    }
    struct Case {
        const char* what;
        std::u16string text;  // empty: macros2.xml is a folder
        std::u16string error;  // empty: the file system's own words
    } cases[] = {
        {"mismatched tags", mismatched, xmlError},
        {"another document", std::u16string(kDecl) + u"<Quillmark />",
         u"Expected a \"Macros\" element, found \"Quillmark\" (line 2)"},
        {"a folder", u"", u""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const fs::path folder = ScratchFolder();
        const fs::path file = folder / "macros2.xml";
        c.text.empty() ? (void)fs::create_directories(file / "inside") : WriteUtf16(file, c.text);
        const auto before = Snapshot(folder);

        MacroStore store(folder);
        const std::u16string readError = StoreErrorOf([&] { store.GetMacros(); });
        const std::u16string prefix = u"Cannot read \"" + PathText(file) + u"\": ";
        EXPECT_TRUE(readError.starts_with(prefix)) << ToUtf8(readError);
        if (!c.error.empty()) {
            EXPECT_EQ(readError, prefix + c.error);
        }

        const std::u16string refused = FormatMessage(msg::kKeptUnreadable, {PathText(file), readError});
        const std::function<void()> changes[] = {
            [&] { store.AddOrReplace(MakeMacro(u"m1", u"New")); },
            [&] { store.SaveMacros(); },
            [&] { store.BumpLoadState(); },
            [&] { store.Remove(u"m1"); },
        };
        for (const auto& change : changes) EXPECT_EQ(StoreErrorOf(change), refused);
        EXPECT_EQ(Snapshot(folder), before);
    }
}

TEST(StoreFiles, ListThatBreaksAfterLoadingIsKeptInMemoryAndNotSaved) {
    const fs::path folder = ScratchFolder();
    const fs::path file = folder / "macros2.xml";
    WriteUtf16(file, ListText({{u"a", u"Alpha"}}, 3));
    MacroStore store(folder);
    ASSERT_EQ(Ids(store), Strings{u"a"});

    // Another copy leaves a broken file behind and raises the counter.
    const std::u16string broken = std::u16string(kDecl) + u"<Macros loadState=\"4\"><Macro";
    WriteUtf16(file, broken);
    ASSERT_TRUE(MakeLoadCounter(folder)->Write(4));
    EXPECT_THROW(store.ReloadIfChanged(), StoreError);
    EXPECT_THROW(store.AddOrReplace(MakeMacro(u"b", u"Beta")), StoreError);
    EXPECT_EQ(Ids(store), Strings{u"a"});
    EXPECT_EQ(Bytes(file), io::EncodeUtf16Le(broken));

    // Once the file reads again, the store takes it in and saves again.
    WriteUtf16(file, ListText({{u"a", u"Alpha"}, {u"c", u"Gamma"}}, 4));
    store.AddOrReplace(MakeMacro(u"b", u"Beta"));
    EXPECT_EQ(Ids(MacroStore(folder)), (Strings{u"a", u"c", u"b"}));
}

TEST(StoreFiles, FailedSaveKeepsTheOldFileTheListAndTheCounter) {
    const fs::path folder = ScratchFolder();
    const fs::path file = folder / "macros2.xml";
    MacroStore store(folder);
    store.AddOrReplace(MakeMacro(u"a", u"Alpha"));

    // The file's place is taken by a folder: the save cannot replace it.
    fs::rename(file, folder / "aside.xml");
    fs::create_directories(file / "inside");
    const std::u16string saveError = StoreErrorOf([&] { store.AddOrReplace(MakeMacro(u"b", u"Beta")); });
    EXPECT_TRUE(saveError.starts_with(u"Cannot save \"" + PathText(file) + u"\": ")) << ToUtf8(saveError);
    EXPECT_EQ(Ids(store), Strings{u"a"});
    EXPECT_EQ(store.GetMacros().loadState.value, 1);
    EXPECT_EQ(MakeLoadCounter(folder)->Read(), 1u);
    fs::remove_all(file);
    fs::rename(folder / "aside.xml", file);
    const std::string saved = Bytes(file);

#if defined(__unix__)
    // The disk fills up mid-save (a file size limit holds even for a privileged user).
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    rlimit tight = old;
    tight.rlim_cur = 64;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tight), 0);
    EXPECT_THROW(store.Remove(u"a"), StoreError);
    setrlimit(RLIMIT_FSIZE, &old);
    EXPECT_EQ(Bytes(file), saved);
    EXPECT_EQ(Ids(store), Strings{u"a"});
    EXPECT_EQ(Snapshot(folder).size(), 2u);  // no temporary file left behind
#endif
}

TEST(StoreFiles, FirstFormatListIsReportedAndLeftAlone) {
    const fs::path folder = ScratchFolder();
    const fs::path old = folder / "macros.xml";
    WriteUtf16(old, u"<Macros><M name=\"old\" /></Macros>");
    const std::string oldBytes = Bytes(old);

    MacroStore store(folder);
    EXPECT_TRUE(store.GetMacros().macros.empty());
    EXPECT_EQ(store.TakeNotices(), Strings{u"\"" + PathText(old) +
                                           u"\" holds macros in the first macro format, which this version "
                                           u"cannot convert. The file is left as it is."});
    EXPECT_FALSE(fs::exists(folder / "macros2.xml"));

    store.AddOrReplace(MakeMacro(u"a", u"Alpha"));
    MacroStore next(folder);
    next.GetMacros();
    EXPECT_TRUE(next.TakeNotices().empty());  // the list holds macros: the old file is ignored
    EXPECT_EQ(Bytes(old), oldBytes);
}

TEST(StoreFiles, FindAddReplaceAndRemove) {
    const fs::path folder = ScratchFolder();
    MacroStore store(folder);
    store.AddOrReplace({MakeMacro(u"a", u"b"), MakeMacro(u"b", u"Beta"), MakeMacro(u"", u"Fresh")});
    EXPECT_EQ(store.Find(u"b")->name, u"Beta");  // the id before the name
    EXPECT_EQ(store.Find(u"Beta")->id.value, u"b");
    EXPECT_EQ(store.Find(u"beta"), nullptr);
    const std::string freshId = ToUtf8(store.Find(u"Fresh")->id.value);
    EXPECT_TRUE(std::regex_match(freshId, std::regex("\\{[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}\\}")))
        << freshId;

    store.AddOrReplace(MakeMacro(u"b", u"Beta 2"));  // replaced where it stands
    EXPECT_EQ(store.GetMacros().macros[1]->name, u"Beta 2");
    EXPECT_EQ(store.Remove(u"Fresh")->id.value, FromUtf8(freshId));
    EXPECT_EQ(StoreErrorOf([&] { store.Remove(u"Fresh"); }), u"There is no macro with the id or name \"Fresh\".");
    EXPECT_EQ(Ids(MacroStore(folder)), (Strings{u"a", u"b"}));
}

}  // namespace
}  // namespace qm::macros::testing
