#include "addin_fixture.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "addin/addin_ids.h"
#include "core/text.h"
#include "macros/macro_store.h"
#include "macros/text_form.h"

namespace qm::addin::testing {
namespace fs = std::filesystem;

CLSID Guid(std::u16string_view text) {
    CLSID clsid{};
    const std::wstring wide(text.begin(), text.end());
    EXPECT_EQ(CLSIDFromString(wide.c_str(), &clsid), S_OK);
    return clsid;
}

AddinLibrary& AddinLibrary::Get() {
    static AddinLibrary library;
    return library;
}

AddinLibrary::AddinLibrary() : module_(LoadLibraryW(L"quillmark.dll")) {
    if (module_) {
        getClassObject_ = reinterpret_cast<decltype(getClassObject_)>(
            reinterpret_cast<void*>(GetProcAddress(module_, "DllGetClassObject")));
    }
}

HRESULT AddinLibrary::GetClassObject(REFCLSID clsid, REFIID iid, void** object) const {
    if (!getClassObject_) return E_NOTIMPL;
    return getClassObject_(clsid, iid, object);
}

fs::path AddinLibrary::Path() const {
    wchar_t path[MAX_PATH];
    const DWORD length = GetModuleFileNameW(module_, path, MAX_PATH);
    return fs::path(std::wstring(path, length));
}

// --- FakeDispatch -------------------------------------------------------------------------------

HRESULT FakeDispatch::QueryInterface(REFIID iid, void** object) {
    if (iid == IID_IUnknown || iid == IID_IDispatch) {
        *object = static_cast<IDispatch*>(this);
        AddRef();
        return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
}

ULONG FakeDispatch::Release() {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
}

HRESULT FakeDispatch::GetTypeInfoCount(UINT* count) {
    *count = 0;
    return S_OK;
}

HRESULT FakeDispatch::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                             EXCEPINFO*, UINT*) {
    std::vector<VARIANT*> arguments;
    for (UINT i = parameters ? parameters->cArgs : 0; i > 0; --i) arguments.push_back(&parameters->rgvarg[i - 1]);
    return Call(id, flags, arguments, result);
}

namespace {

std::u16string Text(const VARIANT* v) {
    if (!v || v->vt != VT_BSTR || !v->bstrVal) return {};
    return std::u16string(Utf16(v->bstrVal, SysStringLen(v->bstrVal)));
}

HRESULT Out(VARIANT* v, std::u16string_view text) {
    if (!v || v->vt != (VT_BYREF | VT_BSTR) || !v->pbstrVal) return DISP_E_TYPEMISMATCH;
    *v->pbstrVal = AllocBstr(text);
    return S_OK;
}

void SetText(VARIANT* result, std::u16string_view text) {
    if (!result) return;
    result->vt = VT_BSTR;
    result->bstrVal = AllocBstr(text);
}

}  // namespace

HRESULT FakeControl::Call(DISPID id, WORD flags, const std::vector<VARIANT*>&, VARIANT* result) {
    if (!(flags & DISPATCH_PROPERTYGET)) return DISP_E_MEMBERNOTFOUND;
    if (id == kDispRibbonControlId) SetText(result, id_);
    else if (id == kDispRibbonControlTag) SetText(result, tag_);
    else return DISP_E_MEMBERNOTFOUND;
    return S_OK;
}

HRESULT FakeRibbon::Call(DISPID id, WORD, const std::vector<VARIANT*>& arguments, VARIANT*) {
    if (id == kDispRibbonInvalidate && arguments.empty()) invalidated.emplace_back();
    else if (id == kDispRibbonInvalidateControl && arguments.size() == 1) invalidated.push_back(Text(arguments[0]));
    else return DISP_E_BADPARAMCOUNT;
    return S_OK;
}

// IApplication's methods as IDispatch calls with the arguments in their own order.
class FakeOneNote::Direct final : public IOneNoteApplication {
public:
    explicit Direct(FakeOneNote& owner) : owner_(owner) { owner_.AddRef(); }
    virtual ~Direct() { owner_.Release(); }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        return owner_.QueryInterface(iid, object);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override { return owner_.GetTypeInfoCount(count); }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }

    HRESULT STDMETHODCALLTYPE GetHierarchy(BSTR start, int scope, BSTR* xml, int schema) override {
        return Forward(OneNoteMethod::GetHierarchy, {Str(start), Int(scope), OutStr(xml), Int(schema)});
    }
    HRESULT STDMETHODCALLTYPE UpdateHierarchy(BSTR changes, int schema) override {
        return Forward(OneNoteMethod::UpdateHierarchy, {Str(changes), Int(schema)});
    }
    HRESULT STDMETHODCALLTYPE CreateNewPage(BSTR section, BSTR* page, int style) override {
        return Forward(OneNoteMethod::CreateNewPage, {Str(section), OutStr(page), Int(style)});
    }
    HRESULT STDMETHODCALLTYPE GetHierarchyParent(BSTR object, BSTR* parent) override {
        return Forward(OneNoteMethod::GetHierarchyParent, {Str(object), OutStr(parent)});
    }
    HRESULT STDMETHODCALLTYPE GetPageContent(BSTR page, BSTR* xml, int info, int schema) override {
        return Forward(OneNoteMethod::GetPageContent, {Str(page), OutStr(xml), Int(info), Int(schema)});
    }
    HRESULT STDMETHODCALLTYPE UpdatePageContent(BSTR xml, DATE expected, int schema, VARIANT_BOOL force) override {
        VARIANT date = Int(0), flag = Int(0);
        date.vt = VT_DATE;
        date.date = expected;
        flag.vt = VT_BOOL;
        flag.boolVal = force;
        return Forward(OneNoteMethod::UpdatePageContent, {Str(xml), date, Int(schema), flag});
    }
    HRESULT STDMETHODCALLTYPE GetHyperlinkToObject(BSTR node, BSTR object, BSTR* link) override {
        return Forward(OneNoteMethod::GetHyperlinkToObject, {Str(node), Str(object), OutStr(link)});
    }
    // Never called by the add-in.
    HRESULT STDMETHODCALLTYPE OpenHierarchy_() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DeleteHierarchy_() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CloseNotebook_() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetBinaryPageContent_() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DeletePageContent_() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE NavigateTo_() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE NavigateToUrl_() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Publish_() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OpenPackage_() override { return E_NOTIMPL; }

private:
    static VARIANT Str(BSTR text) {
        VARIANT v;
        VariantInit(&v);
        v.vt = VT_BSTR;
        v.bstrVal = text;
        return v;
    }
    static VARIANT Int(int number) {
        VARIANT v;
        VariantInit(&v);
        v.vt = VT_I4;
        v.lVal = number;
        return v;
    }
    static VARIANT OutStr(BSTR* out) {
        VARIANT v;
        VariantInit(&v);
        v.vt = VT_BYREF | VT_BSTR;
        v.pbstrVal = out;
        return v;
    }
    HRESULT Forward(OneNoteMethod method, std::vector<VARIANT> arguments) {
        ++owner_.directCalls;
        std::vector<VARIANT*> pointers;
        for (VARIANT& argument : arguments) pointers.push_back(&argument);
        return owner_.Call(OneNoteDispId(method), DISPATCH_METHOD, pointers, nullptr);
    }

    FakeOneNote& owner_;
    std::atomic<ULONG> references_{1};
};

HRESULT FakeOneNote::QueryInterface(REFIID iid, void** object) {
    if (direct_ && iid == kIID_IApplication) {
        *object = static_cast<IOneNoteApplication*>(new Direct(*this));
        return S_OK;
    }
    return FakeDispatch::QueryInterface(iid, object);
}

HRESULT FakeOneNote::Call(DISPID id, WORD flags, const std::vector<VARIANT*>& a, VARIANT*) {
    ++calls;
    if (busyAnswers > 0) {
        --busyAnswers;
        return static_cast<HRESULT>(0x8001010A);  // OneNote is busy
    }
    if (flags != DISPATCH_METHOD) return DISP_E_MEMBERNOTFOUND;
    const auto schemaIs2010 = [&](std::size_t i) { return a.size() > i && a[i]->vt == VT_I4 && a[i]->lVal == kSchema2010; };
    try {
        switch (id) {
            case OneNoteDispId(OneNoteMethod::GetHierarchy):
                if (a.size() != 4 || !schemaIs2010(3)) return E_INVALIDARG;
                return Out(a[2], folder_.GetHierarchy(Text(a[0]), static_cast<onenote::HierarchyScope>(a[1]->lVal)));
            case OneNoteDispId(OneNoteMethod::UpdateHierarchy):
                if (a.size() != 2 || !schemaIs2010(1)) return E_INVALIDARG;
                folder_.UpdateHierarchy(Text(a[0]));
                return S_OK;
            case OneNoteDispId(OneNoteMethod::GetHierarchyParent):
                if (a.size() != 2) return E_INVALIDARG;
                return Out(a[1], folder_.GetHierarchyParent(Text(a[0])));
            case OneNoteDispId(OneNoteMethod::GetPageContent):
                if (a.size() != 4 || !schemaIs2010(3)) return E_INVALIDARG;
                return Out(a[1], folder_.GetPageContent(Text(a[0])));
            case OneNoteDispId(OneNoteMethod::UpdatePageContent): {
                if (a.size() != 4 || !schemaIs2010(2) || a[1]->vt != VT_DATE) return E_INVALIDARG;
                std::optional<xml::SystemTime> expected;
                if (a[1]->date != 0) {
                    SYSTEMTIME t;
                    VariantTimeToSystemTime(a[1]->date, &t);
                    expected = xml::SystemTime{t.wYear, t.wMonth, t.wDayOfWeek, t.wDay, t.wHour, t.wMinute, t.wSecond, 0};
                }
                LARGE_INTEGER start, end, frequency;
                QueryPerformanceCounter(&start);
                folder_.UpdatePageContent(Text(a[0]), expected);
                QueryPerformanceCounter(&end);
                QueryPerformanceFrequency(&frequency);
                updateSeconds += static_cast<double>(end.QuadPart - start.QuadPart) / static_cast<double>(frequency.QuadPart);
                updatedPages.push_back(Text(a[0]));
                return S_OK;
            }
            case OneNoteDispId(OneNoteMethod::GetHyperlinkToObject):
                if (a.size() != 3) return E_INVALIDARG;
                return Out(a[2], folder_.GetHyperlinkToObject(Text(a[0]), Text(a[1])));
            case OneNoteDispId(OneNoteMethod::CreateNewPage):
                if (a.size() != 3) return E_INVALIDARG;
                return Out(a[1], folder_.CreateNewPage(Text(a[0])));
            default: return DISP_E_MEMBERNOTFOUND;
        }
    } catch (const onenote::OneNoteError& e) {
        return static_cast<HRESULT>(e.code());
    }
}

HRESULT InvokeByName(IDispatch* addin, std::u16string_view name, std::vector<VARIANT> arguments, VARIANT* result) {
    std::wstring wide(name.begin(), name.end());
    LPOLESTR names[] = {wide.data()};
    DISPID id = 0;
    if (const HRESULT hr = addin->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id); FAILED(hr)) return hr;
    std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
    DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    return addin->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, result, nullptr, nullptr);
}

// --- AddinTest ----------------------------------------------------------------------------------

void AddinTest::SetUp() {
    const ::testing::TestInfo* test = ::testing::UnitTest::GetInstance()->current_test_info();
    home_ = fs::temp_directory_path() / "quillmark-addin-tests" / (std::string(test->test_suite_name()) + "." + test->name());
    fs::remove_all(home_);
    fs::create_directories(home_);
    _putenv_s("QUILLMARK_HOME", home_.string().c_str());
    _putenv_s("QUILLMARK_TEST_BOXES", (home_ / "boxes.txt").string().c_str());
}

std::vector<std::string> AddinTest::Boxes() const {
    std::ifstream in(home_ / "boxes.txt", std::ios::binary);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

std::string AddinTest::HostLogText() const {
    std::ifstream in(home_ / "Quillmark_Addin_inproc.log", std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

ComPtr<IDispatch> AddinTest::NewAddin() const {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(AddinLibrary::Get().GetClassObject(Guid(kClsidAddin), IID_IClassFactory,
                                                  reinterpret_cast<void**>(factory.Out())),
              S_OK);
    ComPtr<IDispatch> addin;
    if (factory) {
        EXPECT_EQ(factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(addin.Out())), S_OK);
    }
    return addin;
}

std::u16string AddinTest::StoreMacro(std::u16string_view text) const {
    macros::MacroStore store(home_);
    std::shared_ptr<M2::Macro> macro = M2::ReadTextForm(text, "test.qm");
    store.AddOrReplace(macro);
    return *macro->id;
}

}  // namespace qm::addin::testing
