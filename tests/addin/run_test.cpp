// The add-in connected to a stand-in OneNote: macros run from the ribbon, their errors, the menus
// and toggles, and how long writing pages back takes.
#include <chrono>
#include <cstdio>
#include <fstream>

#include "addin/addin_ids.h"
#include "addin_fixture.h"
#include "core/text.h"
#include "macros/macro_store.h"
#include "onenote/notebook_generator.h"

namespace qm::addin::testing {
namespace {
namespace fs = std::filesystem;

constexpr char16_t kStampMacro[] =
    u"#name Stamp\n#category Pages\n"
    u"ForEach $q in QueryObjects(\"Paragraph\", GetCurrentPage())\n"
    u"  If $q.contentType == \"text\"\n"
    u"    $q.text = \"Stamped: \" & $q.text\n";
constexpr char16_t kFailingMacro[] = u"#name Divide\n$x = 1 / 0\n";

VARIANT Dispatch(IDispatch* object) {
    VARIANT v;
    VariantInit(&v);
    v.vt = VT_DISPATCH;
    v.pdispVal = object;
    return v;
}

VARIANT Bool(bool value) {
    VARIANT v;
    VariantInit(&v);
    v.vt = VT_BOOL;
    v.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
    return v;
}

class ConnectedTest : public AddinTest {
protected:
    // Connects a new add-in to a stand-in OneNote serving a copy of `notebook`, and hands it a ribbon.
    // With `direct`, OneNote's Application gives IApplication as well as IDispatch.
    void Connect(const fs::path& notebook = fs::path(QUILLMARK_SOURCE_DIR) / "examples" / "notebook",
                 bool direct = false) {
        const fs::path copy = home() / "notebook";
        fs::copy(notebook, copy, fs::copy_options::recursive);
        onenote_ = ComPtr<FakeOneNote>::Adopt(new FakeOneNote(copy, direct));
        ribbon_ = ComPtr<FakeRibbon>::Adopt(new FakeRibbon());
        addin_ = NewAddin();
        ASSERT_TRUE(addin_);
        const auto extensibility = addin_.As<IDTExtensibility2>(kIID_IDTExtensibility2);
        ASSERT_EQ(extensibility->OnConnection(onenote_.get(), 1, nullptr, nullptr), S_OK);
        ASSERT_EQ(Call(u"OnLoad", {Dispatch(ribbon_.get())}), S_OK);
    }

    void TearDown() override {
        if (addin_) {
            EXPECT_EQ(addin_.As<IDTExtensibility2>(kIID_IDTExtensibility2)->OnDisconnection(0, nullptr), S_OK);
        }
    }

    // A callback with the ribbon control carrying `tag`, then the further arguments.
    HRESULT Call(std::u16string_view name, std::vector<VARIANT> arguments, VARIANT* result = nullptr) {
        return InvokeByName(addin_.get(), name, std::move(arguments), result);
    }
    HRESULT OnControl(std::u16string_view name, std::u16string_view tag, VARIANT* result = nullptr,
                      std::optional<bool> pressed = std::nullopt) {
        const auto control = ComPtr<FakeControl>::Adopt(new FakeControl(u"Control", std::u16string(tag)));
        std::vector<VARIANT> arguments{Dispatch(control.get())};
        if (pressed) arguments.push_back(Bool(*pressed));
        return Call(name, arguments, result);
    }
    std::u16string TextResult(std::u16string_view name, std::u16string_view tag = {}) {
        Variant result;
        EXPECT_EQ(OnControl(name, tag, result.get()), S_OK);
        EXPECT_EQ((*result).vt, VT_BSTR);
        return (*result).vt == VT_BSTR ? std::u16string(Utf16((*result).bstrVal, SysStringLen((*result).bstrVal)))
                                       : std::u16string();
    }
    bool BoolResult(std::u16string_view name, std::u16string_view tag = {}) {
        Variant result;
        EXPECT_EQ(OnControl(name, tag, result.get()), S_OK);
        EXPECT_EQ((*result).vt, VT_BOOL);
        return (*result).boolVal != VARIANT_FALSE;
    }

    ComPtr<FakeOneNote> onenote_;
    ComPtr<FakeRibbon> ribbon_;
    ComPtr<IDispatch> addin_;
};

class OnMacroTest : public ConnectedTest, public ::testing::WithParamInterface<bool> {};

TEST_P(OnMacroTest, RunsTheStoredMacroAndWritesThePageBack) {
    const bool direct = GetParam();
    const std::u16string id = StoreMacro(kStampMacro);
    Connect(fs::path(QUILLMARK_SOURCE_DIR) / "examples" / "notebook", direct);
    EXPECT_NE(HostLogText().find("Addin::OnConnection is called"), std::string::npos);
    onenote_->busyAnswers = 2;  // OneNote busy at first: asked again

    ASSERT_EQ(OnControl(u"OnMacro", id), S_OK);
    ASSERT_EQ(onenote_->updatedPages.size(), 1u);
    const std::u16string& page = onenote_->updatedPages[0];
    EXPECT_NE(page.find(u"{E19551348720312895214720176823459981024610301}"), std::u16string::npos);
    EXPECT_NE(page.find(u"Stamped: "), std::u16string::npos);
    EXPECT_EQ(ribbon_->invalidated, std::vector<std::u16string>{u"Macros"});
    EXPECT_TRUE(Boxes().empty());
    EXPECT_EQ(onenote_->directCalls > 0, direct);
    EXPECT_EQ(onenote_->directCalls == onenote_->calls, direct);

    // An id that is not in the list does nothing.
    EXPECT_EQ(OnControl(u"OnMacro", u"{00000000-0000-0000-0000-000000000000}"), S_OK);
    EXPECT_EQ(onenote_->updatedPages.size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(ThroughDispatchAndThroughIApplication, OnMacroTest, ::testing::Bool());

TEST_F(ConnectedTest, FailingMacroShowsItsErrorAndWritesNothing) {
    const std::u16string id = StoreMacro(kFailingMacro);
    Connect();
    EXPECT_EQ(OnControl(u"OnMacro", id), S_OK);
    const std::vector<std::string> boxes = Boxes();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].rfind("Error\t", 0), 0u) << boxes[0];
    EXPECT_TRUE(onenote_->updatedPages.empty());
}

// A macro's dialog box shown from the ribbon, answered through the box record: OK on the values the
// controls start with, or Cancel when a text box that may not be empty starts empty.
std::u16string PrefixMacro(std::u16string_view initialPrefix) {
    return u"#name Prefix\n"
           u"$d = DialogBox_Create(\"Prefix for every paragraph\")\n"
           u"DialogBox_AddTextBox($d, \"Prefix\", \"prefix\", \"" + std::u16string(initialPrefix) + u"\", \"false\")\n"
           u"DialogBox_AddCheckBox($d, \"Bold\", \"bold\", \"true\")\n"
           u"DialogBox_Show($d)\n"
           u"ForEach $q in QueryObjects(\"Paragraph\", GetCurrentPage())\n"
           u"  If $q.contentType == \"text\"\n"
           u"    $q.text = $d.controls[\"prefix\"] & $q.text\n";
}

TEST_F(ConnectedTest, DialogBoxTakesItsInitialValues) {
    const std::u16string id = StoreMacro(PrefixMacro(u"Done: "));
    Connect();
    ASSERT_EQ(OnControl(u"OnMacro", id), S_OK);
    EXPECT_EQ(Boxes(), std::vector<std::string>{"Prefix\tPrefix for every paragraph\tPrefix=Done: \tBold=true"});
    ASSERT_EQ(onenote_->updatedPages.size(), 1u);
    EXPECT_NE(onenote_->updatedPages[0].find(u"Done: "), std::u16string::npos);
}

TEST_F(ConnectedTest, DialogBoxThatCannotBeConfirmedCancelsTheRun) {
    const std::u16string id = StoreMacro(PrefixMacro(u""));
    Connect();
    ASSERT_EQ(OnControl(u"OnMacro", id), S_OK);
    // The dialog and nothing else: a cancelled run shows no Error box and writes no page.
    EXPECT_EQ(Boxes(), std::vector<std::string>{"Prefix\tPrefix for every paragraph\tPrefix=\tBold=true"});
    EXPECT_TRUE(onenote_->updatedPages.empty());
}

TEST_F(ConnectedTest, UnreadableMacroListIsReportedNotThrown) {
    std::ofstream(home() / "macros2.xml", std::ios::binary) << "<?xml version=\"1.0\"?><Macros><Macro";
    Connect();
    EXPECT_EQ(OnControl(u"OnMacro", u"{any}"), S_OK);
    const std::vector<std::string> boxes = Boxes();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].rfind("Error\tCannot read", 0), 0u) << boxes[0];
    Variant menu;
    EXPECT_EQ(OnControl(u"GetMacroMenu", {}, menu.get()), E_FAIL);
}

TEST_F(ConnectedTest, MenusListTheStoredMacrosByCategory) {
    const std::u16string id = StoreMacro(kStampMacro);
    Connect();
    const std::u16string menu = TextResult(u"GetMacroMenu");
    EXPECT_EQ(menu.rfind(u"<menu xmlns=\"http://schemas.microsoft.com/office/2009/07/customui\">", 0), 0u);
    EXPECT_NE(menu.find(u"<menu id=\"MacroCategory_0\" label=\"Pages\">"), std::u16string::npos);
    EXPECT_NE(menu.find(u"tag=\"" + id + u"\" label=\"Stamp\""), std::u16string::npos);
    EXPECT_NE(menu.find(u"onAction=\"OnMacro\""), std::u16string::npos);
    EXPECT_NE(TextResult(u"GetEditMacrosMenu").find(u"onAction=\"OnEditMacro\""), std::u16string::npos);
    EXPECT_EQ(TextResult(u"GetMacroLabel", id), u"Stamp");
    EXPECT_TRUE(BoolResult(u"GetMacroCategoryVisible", u"Pages"));

    EXPECT_EQ(OnControl(u"SetMacroDisplay", u"list"), S_OK);
    EXPECT_EQ(TextResult(u"GetMacroMenu").find(u"MacroCategory_"), std::u16string::npos);
}

TEST_F(ConnectedTest, TogglesPersistInTheMacroList) {
    Connect();
    EXPECT_FALSE(BoolResult(u"GetEnableMacroLoggingPressed"));
    EXPECT_EQ(OnControl(u"ToggleEnableMacroLogging", {}, nullptr, true), S_OK);
    EXPECT_EQ(OnControl(u"ToggleCompactMode", {}, nullptr, true), S_OK);
    EXPECT_TRUE(BoolResult(u"GetEnableMacroLoggingPressed"));
    EXPECT_TRUE(BoolResult(u"GetCompactModePressed"));
    macros::MacroStore store(home());
    EXPECT_TRUE(*store.GetMacros().loggingEnabled);
    EXPECT_TRUE(*store.GetMacros().compact);
    Variant size;
    EXPECT_EQ(OnControl(u"GetMacroButtonSize", {}, size.get()), S_OK);
    EXPECT_EQ((*size).lVal, 0);  // compact: normal-sized controls
}

TEST_F(ConnectedTest, EditXmlAndPageXmlBoxes) {
    const std::u16string id = StoreMacro(kStampMacro);
    Connect();
    EXPECT_EQ(OnControl(u"OnEditMacro", id), S_OK);
    EXPECT_EQ(Call(u"ShowPageXml", {Dispatch(ComPtr<FakeControl>::Adopt(new FakeControl(u"ShowPageXml", u"")).get())}),
              S_OK);
    const std::vector<std::string> boxes = Boxes();
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes[0].rfind("Edit XML\tYou can copy the below XML", 0), 0u);
    EXPECT_NE(boxes[0].find("<Macro id=\"" + ToUtf8(id) + "\""), std::string::npos);
    EXPECT_EQ(boxes[1].rfind("Page XML\t{7D4E2A10-91C3-4B5E-8F26-1A9C3E5B7D02}{1}{E1955", 0), 0u);
    EXPECT_NE(boxes[1].find("Weekly team sync"), std::string::npos);
    // The box was closed with OK on the unchanged text: the macro is still there, as it was.
    macros::MacroStore store(home());
    ASSERT_EQ(store.GetMacros().macros.size(), 1u);
    EXPECT_EQ(store.GetMacros().macros[0]->name, u"Stamp");
}

TEST_F(ConnectedTest, ToolsOfOtherVersionsAnswerAndStayHidden) {
    Connect();
    EXPECT_FALSE(BoolResult(u"GetUpdateVisible"));
    EXPECT_EQ(TextResult(u"GetGoProLabel"), u"");
    EXPECT_EQ(OnControl(u"OnCrop", {}), S_OK);
    EXPECT_EQ(OnControl(u"OnCalvista", {}), S_OK);
}

TEST_F(AddinTest, CallbacksBeforeConnectionFailWithErrorInformation) {
    const ComPtr<IDispatch> addin = NewAddin();
    const auto control = ComPtr<FakeControl>::Adopt(new FakeControl(u"Control", u"x"));
    EXPECT_EQ(InvokeByName(addin.get(), u"OnMacro", {Dispatch(control.get())}, nullptr), E_UNEXPECTED);
    ComPtr<IErrorInfo> info;
    ASSERT_EQ(GetErrorInfo(0, info.Out()), S_OK);
    Bstr description;
    info->GetDescription(description.Out());
    EXPECT_EQ(description.Text(), u"Quillmark is not connected to OneNote");
    // A callback called without its control fails the same way, and nothing escapes.
    EXPECT_EQ(InvokeByName(addin.get(), u"GetMacroMenu", {}, nullptr), E_UNEXPECTED);
}

// Writing pages back is most of what a user waits for: a macro that changes every paragraph of
// every page of a section, through the stand-in OneNote.
TEST_F(ConnectedTest, WritingPagesBack) {
    const fs::path generated = home() / "generated";
    onenote::GenerateNotebookFolder(generated, {.notebooks = 1, .sections = 1, .pages = 40, .paragraphs = 60});
    const std::u16string id = StoreMacro(
        u"#name Every paragraph\n"
        u"ForEach $q in QueryObjects(\"Paragraph\", GetCurrentSection())\n"
        u"  If $q.contentType == \"text\"\n"
        u"    $q.text = \"Changed\"\n");
    Connect(generated);
    const auto start = std::chrono::steady_clock::now();
    ASSERT_EQ(OnControl(u"OnMacro", id), S_OK);
    const double total = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    ASSERT_EQ(onenote_->updatedPages.size(), 40u);
    std::size_t bytes = 0;
    for (const auto& page : onenote_->updatedPages) bytes += page.size() * 2;
    std::printf("[ measure  ] 40 pages of 60 paragraphs: run %.3f s, of which OneNote stand-in writing %.3f s; "
                "%zu KiB of page XML sent; %d calls\n",
                total, onenote_->updateSeconds, bytes / 1024, onenote_->calls);
    RecordProperty("run_seconds", std::to_string(total));
    RecordProperty("write_seconds", std::to_string(onenote_->updateSeconds));
}

}  // namespace
}  // namespace qm::addin::testing
