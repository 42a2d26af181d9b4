#include <gtest/gtest.h>

#include <string>

#include "core/text.h"
#include "store_test_util.h"

namespace qm::macros::testing {
namespace {

TEST(LoadCounterFile, TextThatIsNotACounterReadsAsZeroAndIsReplaced) {
    struct Case {
        const char* text;
        std::uint32_t value;
        const char* after;  // the file afterwards
    } cases[] = {
        {"abc", 0, "0"},
        {"", 0, "0"},
        {"-1", 0, "0"},
        {"12x", 0, "0"},
        {"4294967296", 0, "0"},
        {"4294967295", 4294967295u, "4294967295"},
        {" 7\n", 7, " 7\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const fs::path folder = ScratchFolder();
        fs::create_directories(folder);
        io::WriteFileAtomically(folder / "LoadState", c.text);
        EXPECT_EQ(MakeLoadCounter(folder)->Read(), c.value);
        EXPECT_EQ(Bytes(folder / "LoadState"), c.after);
    }
}

TEST(LoadCounterFile, MissingValueReadsAsZeroWithoutWriting) {
    const fs::path folder = ScratchFolder();
    auto counter = MakeLoadCounter(folder);
    EXPECT_EQ(counter->Read(), 0u);
    EXPECT_FALSE(fs::exists(folder));
    EXPECT_TRUE(counter->Write(12));
    EXPECT_EQ(Bytes(folder / "LoadState"), "12");
    EXPECT_EQ(counter->Read(), 12u);
    EXPECT_EQ(counter->Location(), PathText(folder / "LoadState"));
}

// The store's counter is the larger of the stored one and the list's own, whichever was reset.
TEST(StoreCounter, LargerOfStoredCounterAndListWins) {
    struct Case {
        const char* what;
        std::uint32_t stored;
        int listState;
        int expected;
    } cases[] = {
        {"counter reset", 2, 7, 7},
        {"list behind", 9, 7, 9},
        {"equal", 5, 5, 5},
        {"at the top", 4294967295u, 12, 2147483647},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const fs::path folder = ScratchFolder();
        WriteUtf16(folder / "macros2.xml", ListText({{u"a", u"Alpha"}}, c.listState));
        ASSERT_TRUE(MakeLoadCounter(folder)->Write(c.stored));

        MacroStore store(folder);
        EXPECT_EQ(store.ReadLoadState(), c.expected);
        store.BumpLoadState();
        const int next = c.expected == 2147483647 ? c.expected : c.expected + 1;
        EXPECT_EQ(store.GetMacros().loadState.value, next);
        EXPECT_EQ(MakeLoadCounter(folder)->Read(), static_cast<std::uint32_t>(next));
        EXPECT_EQ(MacroStore(folder).GetMacros().loadState.value, next);
    }
}

TEST(StoreCounter, ListAtTheTopOfTheRangeStaysThere) {
    const fs::path folder = ScratchFolder();
    WriteUtf16(folder / "macros2.xml", ListText({}, 2147483647));
    MacroStore store(folder);
    store.AddOrReplace(MakeMacro(u"a", u"Alpha"));
    EXPECT_EQ(store.ReadLoadState(), 2147483647);
    EXPECT_EQ(Bytes(folder / "LoadState"), "2147483647");
}

TEST(StoreCounter, SecondCopySeesTheFirstOnesSaveAndReloads) {
    const fs::path folder = ScratchFolder();
    MacroStore first(folder);
    MacroStore second(folder);
    first.AddOrReplace(MakeMacro(u"a", u"Alpha"));
    M2::Macros& seen = second.GetMacros();
    EXPECT_EQ(seen.macros.size(), 1u);
    EXPECT_FALSE(second.ReloadIfChanged());

    first.AddOrReplace(MakeMacro(u"b", u"Beta"));
    EXPECT_EQ(second.Find(u"b"), nullptr);
    EXPECT_TRUE(second.ReloadIfChanged());
    EXPECT_EQ(&second.GetMacros(), &seen);  // the same list object, with the new content
    ASSERT_NE(second.Find(u"b"), nullptr);
    EXPECT_EQ(second.Find(u"b")->owner, &seen.macros);
    EXPECT_FALSE(second.ReloadIfChanged());

    // A change in the copy that is behind takes the other's save in first: nothing is lost.
    first.Remove(u"a");
    second.AddOrReplace(MakeMacro(u"c", u"Gamma"));
    MacroStore third(folder);
    std::vector<std::u16string> ids;
    for (const auto& macro : third.GetMacros().macros) ids.push_back(macro->id.value);
    EXPECT_EQ(ids, (std::vector<std::u16string>{u"b", u"c"}));
    EXPECT_EQ(third.ReadLoadState(), 4);
    EXPECT_TRUE(first.ReloadIfChanged());
    EXPECT_EQ(first.GetMacros().macros.size(), 2u);
}

}  // namespace
}  // namespace qm::macros::testing
