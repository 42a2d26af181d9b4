#include <gtest/gtest.h>

#include <string>

#include "store_test_util.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace qm::macros::testing {
namespace {

TEST(LoadCounterFile, TextThatIsNotACounterReadsAsZeroAndIsReplaced) {
#ifdef _WIN32
    GTEST_SKIP() << "Windows keeps the counter in the registry, not in a file";
#endif
    struct Case {
        const char* text;  // null: no file
        std::uint32_t value;
        const char* after;  // null: still no file
    } cases[] = {
        {"abc", 0, "0"},          {"", 0, "0"},  {"-1", 0, "0"}, {"4294967296", 0, "0"},
        {"4294967295", 4294967295u, "4294967295"}, {" 7\n", 7, " 7\n"}, {nullptr, 0, nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text != nullptr ? c.text : "no file");
        const fs::path folder = ScratchFolder();
        if (c.text != nullptr) {
            fs::create_directories(folder);
            io::WriteFileAtomically(folder / "LoadState", c.text);
        }
        EXPECT_EQ(MakeLoadCounter(folder)->Read(), c.value);
        if (c.after != nullptr) {
            EXPECT_EQ(Bytes(folder / "LoadState"), c.after);
        } else {
            EXPECT_FALSE(fs::exists(folder));
        }
    }
}

#ifdef _WIN32
// A value of another type, or none, reads as 0 and is (re)made REG_DWORD 0.
TEST(LoadCounterRegistry, ValueOfAnotherTypeOrNoneReadsAsZeroAndBecomesADword) {
    const wchar_t* key = L"Software\\Microsoft\\Office\\OneNote\\AddIns\\Quillmark.Addin";
    for (const bool asText : {true, false}) {
        SCOPED_TRACE(asText ? "text" : "missing");
        const fs::path folder = ScratchFolder();
        if (asText) {
            ASSERT_EQ(::RegSetKeyValueW(HKEY_CURRENT_USER, key, L"LoadState", REG_SZ, L"7", 4), ERROR_SUCCESS);
        } else {
            ::RegDeleteKeyValueW(HKEY_CURRENT_USER, key, L"LoadState");
        }
        EXPECT_EQ(MakeLoadCounter(folder)->Read(), 0u);
        DWORD type = 0, data = 1, size = sizeof data;
        ASSERT_EQ(::RegGetValueW(HKEY_CURRENT_USER, key, L"LoadState", RRF_RT_ANY, &type, &data, &size), ERROR_SUCCESS);
        EXPECT_EQ(type, static_cast<DWORD>(REG_DWORD));
        EXPECT_EQ(data, 0u);
    }
}
#endif

// Whichever of the two was reset, the larger wins; the counter stops at the top of the range.
TEST(StoreCounter, LargerOfStoredCounterAndListWins) {
    struct Case {
        const char* what;
        std::uint32_t stored;
        int listState, expected, next;
    } cases[] = {
        {"counter reset", 2, 7, 7, 8},
        {"list behind", 9, 7, 9, 10},
        {"counter at the top", 4294967295u, 12, 2147483647, 2147483647},
        {"list at the top", 0, 2147483647, 2147483647, 2147483647},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const fs::path folder = ScratchFolder();
        WriteUtf16(folder / "macros2.xml", ListText({{u"a", u"Alpha"}}, c.listState));
        ASSERT_TRUE(MakeLoadCounter(folder)->Write(c.stored));

        MacroStore store(folder);
        EXPECT_EQ(store.ReadLoadState(), c.expected);
        store.BumpLoadState();
        EXPECT_EQ(MakeLoadCounter(folder)->Read(), static_cast<std::uint32_t>(c.next));
        EXPECT_EQ(MacroStore(folder).GetMacros().loadState.value, c.next);
    }
}

TEST(StoreCounter, SecondCopySeesTheFirstOnesSaveAndReloads) {
    const fs::path folder = ScratchFolder();
    MacroStore first(folder);
    MacroStore second(folder);
    first.AddOrReplace(MakeMacro(u"a", u"Alpha"));
    M2::Macros& seen = second.GetMacros();
    EXPECT_FALSE(second.ReloadIfChanged());

    first.AddOrReplace(MakeMacro(u"b", u"Beta"));
    EXPECT_EQ(second.Find(u"b"), nullptr);
    EXPECT_TRUE(second.ReloadIfChanged());
    ASSERT_NE(second.Find(u"b"), nullptr);
    EXPECT_EQ(second.Find(u"b")->owner, &seen.macros);  // the same list object, new content
    EXPECT_FALSE(second.ReloadIfChanged());

    // A change in the copy that is behind takes the other's save in first: nothing is lost.
    first.Remove(u"a");
    second.AddOrReplace(MakeMacro(u"c", u"Gamma"));
    EXPECT_EQ(Ids(MacroStore(folder)), (std::vector<std::u16string>{u"b", u"c"}));
    EXPECT_TRUE(first.ReloadIfChanged());
    EXPECT_EQ(Ids(first), (std::vector<std::u16string>{u"b", u"c"}));
}

}  // namespace
}  // namespace qm::macros::testing
