// The add-in's windows on a real screen: the progress window, a macro's dialog box and the
// multi-page confirmation are made, painted, checked for their controls and their layout, and
// photographed into the build folder's "screenshots". Under Wine they need an X display (the
// Windows tests run under xvfb-run in scripts/test-all); without one they are skipped.
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "addin/addin_ui.h"
#include "addin/boxes_win32.h"
#include "addin/dialog_template_win32.h"
#include "addin/progress_wnd_win32.h"
#include "addin_fixture.h"
#include "core/text.h"
#include "macros/text_form.h"
#include "runtime/run_driver.h"
#include "runtime/strings.h"
#include "screenshot.h"

namespace qm::addin::testing {
namespace {

bool WithoutDisplay() {
    const bool wine = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
    return wine && GetEnvironmentVariableW(L"DISPLAY", nullptr, 0) == 0;
}

std::string Name(HWND window) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, 64);
    return ToUtf8(Utf16(name, wcslen(name))) + " #" + std::to_string(GetDlgCtrlID(window)) + " \"" +
           ToUtf8(WindowText(window)) + "\"";
}

// Every control lies inside the client area, no two overlap, and every text label is tall enough
// for its text as the control's own font wraps it.
void ExpectLaidOut(HWND window) {
    RECT client{};
    GetClientRect(window, &client);
    std::vector<std::pair<HWND, RECT>> controls;
    for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        RECT box{};
        GetWindowRect(child, &box);
        MapWindowPoints(HWND_DESKTOP, window, reinterpret_cast<POINT*>(&box), 2);
        EXPECT_TRUE(box.left >= 0 && box.top >= 0 && box.right <= client.right && box.bottom <= client.bottom)
            << Name(child) << " leaves the client area";
        for (const auto& [other, otherBox] : controls) {
            RECT overlap;
            EXPECT_FALSE(IntersectRect(&overlap, &box, &otherBox)) << Name(child) << " overlaps " << Name(other);
        }
        controls.emplace_back(child, box);

        wchar_t className[16] = {};
        GetClassNameW(child, className, 16);
        const std::u16string text = WindowText(child);
        if (std::wstring(className) != L"Static" || text.empty()) continue;
        const HDC dc = GetDC(child);
        const HGDIOBJ previous = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(child, WM_GETFONT, 0, 0)));
        RECT needed{0, 0, box.right - box.left, 0};
        const std::wstring wide(text.begin(), text.end());
        DrawTextW(dc, wide.c_str(), static_cast<int>(wide.size()), &needed,
                  DT_CALCRECT | DT_WORDBREAK | DT_EDITCONTROL | DT_NOPREFIX);
        SelectObject(dc, previous);
        ReleaseDC(child, dc);
        EXPECT_LE(needed.bottom, box.bottom - box.top) << Name(child) << " cuts its text";
    }
}

// Clicks a control with the mouse, as a user does: the input arrives in the thread's queue.
void Click(HWND control) {
    RECT box{};
    GetWindowRect(control, &box);
    SetCursorPos((box.left + box.right) / 2, (box.top + box.bottom) / 2);
    INPUT input[2] = {};
    input[0].type = input[1].type = INPUT_MOUSE;
    input[0].mi.dwFlags = MOUSEEVENTF_LEFTDOWN;
    input[1].mi.dwFlags = MOUSEEVENTF_LEFTUP;
    SendInput(2, input, sizeof(INPUT));
}

// The modal box this thread shows: a dialog with an owner, visible and enabled (unlike the progress
// window, which is hidden while a box is up).
HWND ModalBox() {
    HWND found = nullptr;
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND window, LPARAM out) -> BOOL {
            wchar_t className[16] = {};
            GetClassNameW(window, className, 16);
            if (std::wstring(className) != L"#32770" || !GetWindow(window, GW_OWNER) || !IsWindowVisible(window) ||
                !IsWindowEnabled(window)) {
                return TRUE;
            }
            *reinterpret_cast<HWND*>(out) = window;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

// Runs `check` on the modal box the next call opens, from inside its message loop.
class OnModalBox {
public:
    explicit OnModalBox(std::function<void(HWND)> check) {
        pending_ = std::move(check);
        timer_ = SetTimer(nullptr, 0, 100, &Tick);
    }
    ~OnModalBox() {
        KillTimer(nullptr, timer_);
        EXPECT_FALSE(pending_) << "no box was shown";
        pending_ = nullptr;
    }

private:
    static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD) {
        const HWND box = ModalBox();
        if (!pending_ || !box) return;
        const auto check = std::move(pending_);
        pending_ = nullptr;
        check(box);
    }
    static inline std::function<void(HWND)> pending_;
    UINT_PTR timer_ = 0;
};

class WindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (WithoutDisplay()) {
            GTEST_SKIP() << "No X display: Wine cannot show windows. Run the Windows tests under xvfb-run -a "
                            "(scripts/test-all does).";
        }
        _putenv_s("QUILLMARK_TEST_BOXES", "");  // real windows, not the box record
        ui_.emplace();
        onenote_ = CreateWindowExW(0, L"Static", L"OneNote", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 40, 40, 900, 640,
                                   nullptr, nullptr, nullptr, nullptr);
        ASSERT_TRUE(onenote_) << "error " << GetLastError();
        ui_->SetOwner(onenote_);
    }
    void TearDown() override {
        if (onenote_) DestroyWindow(onenote_);
    }

    HWND onenote_ = nullptr;  // stands in for OneNote's main window
    std::optional<AddinUi> ui_;
};

constexpr char16_t kBody[] = u"Running macro \"Number the weekly pages\"";

TEST_F(WindowTest, ProgressWindowShowsHidesAndCancels) {
    ProgressWnd progress;
    progress.SetOwner(onenote_);
    ASSERT_TRUE(progress.Show(strings::Text(strings::Id::RunningMacroTitle), kBody));
    const HWND window = progress.window();
    const HWND cancel = GetDlgItem(window, IDCANCEL);
    EXPECT_TRUE(IsWindowVisible(window));
    EXPECT_EQ(GetWindow(window, GW_OWNER), onenote_);
    EXPECT_EQ(WindowText(window), u"Running Macro");
    EXPECT_EQ(WindowText(GetDlgItem(window, ProgressWnd::kBodyId)), kBody);
    EXPECT_EQ(WindowText(cancel), u"Cancel");
    ExpectLaidOut(window);
    EXPECT_TRUE(SaveScreenshot(window, "progress.png"));

    // Hidden and shown again by the posted messages, at the next repaint.
    PostMessageW(window, ProgressWnd::kHideMessage, 0, 0);
    progress.Repaint(1);
    EXPECT_FALSE(IsWindowVisible(window));
    PostMessageW(window, ProgressWnd::kShowMessage, 0, 0);
    progress.Repaint(2);
    EXPECT_TRUE(IsWindowVisible(window));

    EXPECT_FALSE(progress.cancelled());
    Click(cancel);
    progress.Repaint(3);
    EXPECT_TRUE(progress.cancelled());
    EXPECT_EQ(WindowText(GetDlgItem(window, ProgressWnd::kBodyId)), strings::Text(strings::Id::Cancelled));
    EXPECT_FALSE(IsWindowEnabled(cancel));
    ExpectLaidOut(window);
    EXPECT_TRUE(SaveScreenshot(window, "progress-cancelled.png"));

    // The next run starts afresh.
    progress.Hide();
    ASSERT_TRUE(progress.Show(u"Running Macro", kBody));
    EXPECT_FALSE(progress.cancelled());
    EXPECT_TRUE(IsWindowEnabled(GetDlgItem(progress.window(), IDCANCEL)));
}

// A run that would go on for a long while ends at the statement after the click on Cancel: the
// interpreter's repaints keep the window answering while the macro runs.
TEST_F(WindowTest, CancelStopsARunningMacro) {
    class ClickingCancel final : public RunUi, public ProgressUi {
    public:
        explicit ClickingCancel(ProgressWnd& window) : window_(window) {}
        ProgressUi* progress() override { return this; }
        DialogUi* dialogs() override { return nullptr; }
        void ShowError(std::u16string_view, std::u16string_view text) override { errors.emplace_back(text); }
        Confirmation Confirm(std::u16string_view, std::u16string_view, std::u16string_view) override { return {}; }
        bool Show(std::u16string_view title, std::u16string_view body) override {
            if (!window_.Show(title, body)) return false;
            Click(GetDlgItem(window_.window(), IDCANCEL));
            return true;
        }
        void Hide() override { window_.Hide(); }
        void Repaint(std::uint64_t statements) override { window_.Repaint(statements); }
        const std::atomic<bool>& cancelled() const override { return window_.cancelled(); }
        std::vector<std::u16string> errors;

    private:
        ProgressWnd& window_;
    };
    ProgressWnd window;
    window.SetOwner(onenote_);
    ClickingCancel ui(window);
    MacroRunDriver driver(ui);
    const auto macro = M2::ReadTextForm(u"#name Long\n$n = 0\nWhile $n < 20000000\n  $n += 1\n", "long.qm");
    RunEnvironment environment;
    const RunResult result = driver.runMacro(macro.get(), RunSettings{}, environment);
    EXPECT_EQ(result.outcome, RunOutcome::Cancelled);
    EXPECT_TRUE(ui.errors.empty());
    EXPECT_FALSE(IsWindowVisible(window.window()));
}

DialogModel WeeklyPagesDialog() {
    DialogModel model;
    model.message = u"New pages are added at the end of the current section, one for each week.";
    model.controls = {
        {DialogControlKind::TextBox, u"Title", u"title", u"", false, {}, false},
        {DialogControlKind::TextBox, u"Prefix for numbers", u"prefix", u"Week ", false, {}, true},
        {DialogControlKind::CheckBox, u"Mark the new pages as read", u"read", u"", true, {}, true},
        {DialogControlKind::DropDown, u"Colour", u"colour", u"Green", false, {u"Red", u"Green", u"Blue"}, true},
        {DialogControlKind::Label, u"Existing pages keep their titles & numbers.", u"", u"", false, {}, true},
    };
    return model;
}

TEST_F(WindowTest, DialogBoxKeepsOkDisabledUntilTheTitleIsGiven) {
    const DialogModel model = WeeklyPagesDialog();
    ASSERT_TRUE(ui_->progress()->Show(u"Running Macro", kBody));
    const HWND progress = static_cast<ProgressWnd*>(ui_->progress())->window();
    std::optional<std::vector<std::u16string>> results;
    {
        OnModalBox answer([&](HWND dialog) {
            EXPECT_FALSE(IsWindowVisible(progress));  // steps aside while the dialog is up
            EXPECT_EQ(GetWindow(dialog, GW_OWNER), onenote_);
            EXPECT_FALSE(IsWindowEnabled(onenote_));
            EXPECT_EQ(WindowText(dialog), u"Weekly pages");
            EXPECT_EQ(WindowText(GetDlgItem(dialog, kDialogMessageId)), model.message);
            EXPECT_EQ(WindowText(GetDlgItem(dialog, kDialogLabelId)), u"Title");
            EXPECT_EQ(WindowText(GetDlgItem(dialog, kDialogControlId + 1)), u"Week ");
            EXPECT_EQ(WindowText(GetDlgItem(dialog, kDialogControlId + 4)), model.controls[4].label);
            ExpectLaidOut(dialog);
            const HWND ok = GetDlgItem(dialog, IDOK);
            EXPECT_FALSE(IsWindowEnabled(ok));
            EXPECT_TRUE(SaveScreenshot(dialog, "dialog-box.png"));
            SendMessageW(dialog, WM_COMMAND, IDOK, 0);  // Enter does nothing either
            EXPECT_TRUE(IsWindow(dialog));

            SetDlgItemTextW(dialog, kDialogControlId, L"Week 48");
            EXPECT_TRUE(IsWindowEnabled(ok));
            SendDlgItemMessageW(dialog, kDialogControlId + 3, CB_SETCURSEL, 2, 0);
            SendDlgItemMessageW(dialog, kDialogControlId + 2, BM_CLICK, 0, 0);
            EXPECT_TRUE(SaveScreenshot(dialog, "dialog-box-filled.png"));
            SendMessageW(ok, BM_CLICK, 0, 0);
        });
        results = ui_->ShowDialog(u"Weekly pages", model);
    }
    ASSERT_TRUE(results);
    EXPECT_EQ(*results, (std::vector<std::u16string>{u"Week 48", u"Week ", u"false", u"Blue", u""}));
    EXPECT_TRUE(IsWindowVisible(progress));  // back for the rest of the run
    EXPECT_TRUE(IsWindowEnabled(onenote_));

    // Closed any other way than with OK: no results, and the run ends as cancelled.
    {
        OnModalBox close([](HWND dialog) { PostMessageW(dialog, WM_CLOSE, 0, 0); });
        EXPECT_FALSE(ui_->ShowDialog(u"Weekly pages", model));
    }
}

// Long texts wrap inside their columns instead of widening the dialog off the screen; an empty
// drop-down list gives an empty value.
TEST_F(WindowTest, DialogBoxWrapsLongTexts) {
    const std::u16string longText =
        u"Every page of the section gets the tag, its title is renumbered from the first page on, and pages "
        u"that already carry a number keep it unless the box below is ticked; nothing is saved before OK.";
    DialogModel model;
    model.message = longText;
    model.controls = {
        {DialogControlKind::TextBox, u"The number the first of the renumbered pages starts with", u"start", u"1",
         false, {}, false},
        {DialogControlKind::CheckBox, u"Renumber pages that carry a number & keep their titles otherwise, " + longText,
         u"all", u"", false, {}, true},
        {DialogControlKind::DropDown, u"Tag", u"tag", u"", false, {}, true},
        {DialogControlKind::Label, longText, u"", u"", false, {}, true},
    };
    std::optional<std::vector<std::u16string>> results;
    {
        OnModalBox answer([&](HWND dialog) {
            RECT frame{};
            GetWindowRect(dialog, &frame);
            EXPECT_LT(frame.right - frame.left, GetSystemMetrics(SM_CXSCREEN));
            EXPECT_NE(WindowText(GetDlgItem(dialog, kDialogControlId + 1)).find(u"number && keep"), std::u16string::npos);
            ExpectLaidOut(dialog);
            EXPECT_TRUE(SaveScreenshot(dialog, "dialog-box-long-texts.png"));
            SendDlgItemMessageW(dialog, IDOK, BM_CLICK, 0, 0);
        });
        results = ui_->ShowDialog(u"Renumber", model);
    }
    ASSERT_TRUE(results);
    EXPECT_EQ(*results, (std::vector<std::u16string>{u"1", u"false", u"", u""}));
}

TEST_F(WindowTest, ConfirmationCarriesItsCheckBox) {
    const std::u16string text = u"The macro \"Stamp\" is attempting to modify multiple pages. You will not be able to "
                                u"undo this operation. Do you want to continue?";
    const std::u16string_view checkBox = strings::Text(strings::Id::DoNotAskAgain);
    struct Case {
        const char* name;
        bool tick;
        int button;
        Confirmation expected;
    };
    const Case cases[] = {
        {"YesTicked", true, IDYES, {true, true}},
        {"Yes", false, IDYES, {true, false}},
        {"NoTicked", true, IDNO, {false, false}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Confirmation answer;
        {
            OnModalBox respond([&](HWND box) {
                EXPECT_EQ(GetWindow(box, GW_OWNER), onenote_);
                EXPECT_EQ(WindowText(box), u"Stamp");
                EXPECT_EQ(WindowText(GetDlgItem(box, kConfirmTextId)), text);
                EXPECT_EQ(WindowText(GetDlgItem(box, kConfirmCheckBoxId)), checkBox);
                ExpectLaidOut(box);
                if (c.tick) SendDlgItemMessageW(box, kConfirmCheckBoxId, BM_CLICK, 0, 0);
                if (c.button == IDYES && c.tick) {
                    EXPECT_TRUE(SaveScreenshot(box, "confirmation.png"));
                }
                SendDlgItemMessageW(box, c.button, BM_CLICK, 0, 0);
            });
            answer = ui_->Confirm(u"Stamp", text, checkBox);
        }
        EXPECT_EQ(answer.accepted, c.expected.accepted);
        EXPECT_EQ(answer.checkBoxTicked, c.expected.checkBoxTicked);
    }
}

// One property of an object of OneNote's, found by its name.
class NamedProperty final : public FakeDispatch {
public:
    NamedProperty(std::wstring name, const VARIANT& value) : name_(std::move(name)) {
        VariantInit(&value_);
        VariantCopy(&value_, const_cast<VARIANT*>(&value));
    }
    ~NamedProperty() override { VariantClear(&value_); }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
        if (count != 1 || name_ != names[0]) return DISP_E_UNKNOWNNAME;
        ids[0] = 7;
        return S_OK;
    }

protected:
    HRESULT Call(DISPID id, WORD flags, const std::vector<VARIANT*>&, VARIANT* result) override {
        if (id != 7 || !(flags & DISPATCH_PROPERTYGET) || !result) return DISP_E_MEMBERNOTFOUND;
        return VariantCopy(result, &value_);
    }

private:
    std::wstring name_;
    VARIANT value_;
};

ComPtr<IDispatch> Named(const wchar_t* name, const VARIANT& value) {
    return ComPtr<IDispatch>::Adopt(new NamedProperty(name, value));
}

ComPtr<IDispatch> NamedObject(const wchar_t* name, IDispatch* object) {
    VARIANT v;
    VariantInit(&v);
    v.vt = VT_DISPATCH;
    v.pdispVal = object;
    return Named(name, v);
}

// Application.Windows.CurrentWindow.WindowHandle.
ComPtr<IDispatch> ApplicationWithWindow(ULONGLONG handle) {
    VARIANT v;
    VariantInit(&v);
    v.vt = VT_UI8;
    v.ullVal = handle;
    const ComPtr<IDispatch> window = Named(L"WindowHandle", v);
    const ComPtr<IDispatch> windows = NamedObject(L"CurrentWindow", window.get());
    return NamedObject(L"Windows", windows.get());
}

TEST_F(WindowTest, OwnerIsTheWindowOneNoteNames) {
    const HWND foreground = GetForegroundWindow();
    const HWND fallback = foreground ? GetAncestor(foreground, GA_ROOTOWNER) : nullptr;
    EXPECT_EQ(OneNoteWindow(ApplicationWithWindow(reinterpret_cast<ULONG_PTR>(onenote_)).get()), onenote_);
    // A handle that is no window, or a OneNote that does not answer: the foreground window.
    EXPECT_EQ(OneNoteWindow(ApplicationWithWindow(0x7FFF0000).get()), fallback);
    VARIANT nothing;
    VariantInit(&nothing);
    EXPECT_EQ(OneNoteWindow(Named(L"Unrelated", nothing).get()), fallback);
}

}  // namespace
}  // namespace qm::addin::testing
