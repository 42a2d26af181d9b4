// The add-in as COM sees it: class objects, class factories, interfaces, the callback names and
// the ribbon XML.
#include <fstream>
#include <iterator>
#include <set>

#include "addin/addin_ids.h"
#include "addin/callback_table.h"
#include "addin_fixture.h"
#include "core/text.h"
#include "xml/xml_reader.h"

namespace qm::addin::testing {
namespace {

using ComEntryTest = AddinTest;

TEST_F(ComEntryTest, ClassObjectsForTheTwoClassesOnly) {
    struct Case {
        std::u16string_view clsid;
        HRESULT expected;
        const char* logLine;
    };
    const Case cases[] = {
        {kClsidAddin, S_OK, "Request for inproc addin received"},
        {kClsidOutProcAddin, S_OK, "Request for outproc addin received"},
        {kAppId, CLASS_E_CLASSNOTAVAILABLE, "Request for unknown class received"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(ToUtf8(c.clsid));
        IUnknown* object = reinterpret_cast<IUnknown*>(0x1);
        EXPECT_EQ(AddinLibrary::Get().GetClassObject(Guid(c.clsid), IID_IClassFactory, reinterpret_cast<void**>(&object)),
                  c.expected);
        const auto held = ComPtr<IUnknown>::Adopt(object);
        EXPECT_EQ(object != nullptr, c.expected == S_OK);
        EXPECT_NE(HostLogText().find(c.logLine), std::string::npos);
        if (object) {
            // The class object answers for itself, whatever was asked of DllGetClassObject.
            ComPtr<IClassFactory> factory = held.As<IClassFactory>(IID_IClassFactory);
            ASSERT_TRUE(factory);
            EXPECT_EQ(factory->LockServer(TRUE), S_OK);
            EXPECT_EQ(factory->LockServer(FALSE), S_OK);
            EXPECT_FALSE(held.As<IDispatch>(IID_IDispatch));
            IUnknown* aggregated = nullptr;
            EXPECT_EQ(factory->CreateInstance(held.get(), IID_IUnknown, reinterpret_cast<void**>(&aggregated)),
                      CLASS_E_NOAGGREGATION);
            EXPECT_EQ(aggregated, nullptr);
            ComPtr<IDispatch> addin;
            EXPECT_EQ(factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(addin.Out())), S_OK);
            EXPECT_TRUE(addin);
        }
    }
}

TEST_F(ComEntryTest, AddinAnswersItsThreeInterfacesAsOneObject) {
    const ComPtr<IDispatch> addin = NewAddin();
    ASSERT_TRUE(addin);
    const ComPtr<IUnknown> identity = addin.As<IUnknown>(IID_IUnknown);
    for (const IID* iid : {&IID_IDispatch, &kIID_IDTExtensibility2, &kIID_IRibbonExtensibility}) {
        const ComPtr<IUnknown> face = addin.As<IUnknown>(*iid);
        ASSERT_TRUE(face);
        EXPECT_EQ(face.As<IUnknown>(IID_IUnknown).get(), identity.get());
    }
    EXPECT_FALSE(addin.As<IUnknown>(IID_IClassFactory));
}

TEST_F(ComEntryTest, CallbackNamesGiveTheirIds) {
    const ComPtr<IDispatch> addin = NewAddin();
    ASSERT_TRUE(addin);
    std::vector<std::wstring> names{L"OnMacro", L"GetMacroMenu", L"OnLoad", L"OnGoPro", L"ShowPageXml"};
    std::vector<LPOLESTR> pointers;
    for (auto& name : names) pointers.push_back(name.data());
    std::vector<DISPID> ids(names.size(), -7);
    ASSERT_EQ(addin->GetIDsOfNames(IID_NULL, pointers.data(), static_cast<UINT>(pointers.size()), 0, ids.data()), S_OK);
    EXPECT_EQ(ids, (std::vector<DISPID>{44, 27, 0, 51, 47}));
    EXPECT_NE(HostLogText().find("GetIDsOfNames: GetMacroMenu"), std::string::npos);

    // An unknown first name fails before the later ones are looked up.
    std::wstring unknown = L"onMacro";  // names compare exactly
    LPOLESTR both[] = {unknown.data(), pointers[0]};
    DISPID got[] = {-7, -7};
    _putenv_s("QUILLMARK_HOME", (home() / "second").string().c_str());
    EXPECT_EQ(addin->GetIDsOfNames(IID_NULL, both, 2, 0, got), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(got[1], -7);
    std::ifstream log(home() / "second" / "Quillmark_Addin_inproc.log", std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(log)), std::istreambuf_iterator<char>());
    EXPECT_NE(text.find("GetIDsOfNames: onMacro - Unknown dispid!"), std::string::npos);
    EXPECT_EQ(text.find("GetIDsOfNames: OnMacro"), std::string::npos);
}

// The callback names an XML document of the ribbon uses: the values of onLoad, onAction and get*.
std::set<std::u16string> CallbackAttributes(std::u16string_view document, std::u16string_view rootName) {
    std::set<std::u16string> names;
    const auto reader = xml::CreateStringXmlReader(document);
    bool root = true;
    while (reader->Read()) {
        if (reader->nodeType() != xml::NodeType::Element) continue;
        if (root) {
            EXPECT_EQ(reader->localName(), rootName);
            EXPECT_EQ(reader->namespaceUri(), u"http://schemas.microsoft.com/office/2009/07/customui");
            root = false;
        }
        for (bool more = reader->MoveToFirstAttribute(); more; more = reader->MoveToNextAttribute()) {
            const std::u16string_view name = reader->localName();
            if (name == u"onLoad" || name == u"onAction" || name.starts_with(u"get")) names.emplace(reader->value());
        }
    }
    return names;
}

TEST_F(ComEntryTest, CustomUiIsWellFormedAndEveryCallbackResolves) {
    const ComPtr<IDispatch> addin = NewAddin();
    const ComPtr<IRibbonExtensibility> ribbon = addin.As<IRibbonExtensibility>(kIID_IRibbonExtensibility);
    ASSERT_TRUE(ribbon);
    Bstr id(u"Microsoft.OneNote"), xml;
    ASSERT_EQ(ribbon->GetCustomUI(id.get(), xml.Out()), S_OK);
    const std::set<std::u16string> names = CallbackAttributes(xml.Text(), u"customUI");
    EXPECT_GE(names.size(), 20u);
    for (const std::u16string_view name : {u"GetMacroMenu", u"GetEditMacrosMenu", u"GetDownloadMacrosMenu",
                                            u"ToggleEnableMacroLogging", u"ToggleCompactMode", u"ShowPageXml", u"OnLoad"}) {
        EXPECT_TRUE(names.count(std::u16string(name))) << ToUtf8(name);
    }
    for (const std::u16string& name : names) {
        std::wstring wide(name.begin(), name.end());
        LPOLESTR pointer = wide.data();
        DISPID dispid = -1;
        EXPECT_EQ(addin->GetIDsOfNames(IID_NULL, &pointer, 1, 0, &dispid), S_OK) << ToUtf8(name);
    }
    EXPECT_NE(xml.Text().find(u"id=\"Macros\""), std::u16string::npos);
}

}  // namespace
}  // namespace qm::addin::testing
