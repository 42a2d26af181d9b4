// The Office and OneNote interfaces the add-in implements or calls, declared here in vtable order
// since the system headers do not carry them, with their interface identifiers.
#pragma once

#include "addin/win32.h"

namespace qm::addin {

// {B65AD801-ABAF-11D0-BB8B-00A0C90F2744}
inline constexpr IID kIID_IDTExtensibility2 = {0xB65AD801, 0xABAF, 0x11D0, {0xBB, 0x8B, 0x00, 0xA0, 0xC9, 0x0F, 0x27, 0x44}};
// {000C0396-0000-0000-C000-000000000046}
inline constexpr IID kIID_IRibbonExtensibility = {0x000C0396, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
// {000C0395-0000-0000-C000-000000000046}
inline constexpr IID kIID_IRibbonControl = {0x000C0395, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
// {000C03A7-0000-0000-C000-000000000046}
inline constexpr IID kIID_IRibbonUI = {0x000C03A7, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
// {452AC71A-B655-4967-A208-A4CC39DD7949}
inline constexpr IID kIID_IApplication = {0x452AC71A, 0xB655, 0x4967, {0xA2, 0x08, 0xA4, 0xCC, 0x39, 0xDD, 0x79, 0x49}};

// Dispatch identifiers of the calls made through IDispatch.
inline constexpr DISPID kDispRibbonControlId = 1;
inline constexpr DISPID kDispRibbonControlTag = 3;
inline constexpr DISPID kDispRibbonInvalidate = 1;
inline constexpr DISPID kDispRibbonInvalidateControl = 2;
inline constexpr DISPID kDispExtOnConnection = 1;
inline constexpr DISPID kDispExtOnDisconnection = 2;
inline constexpr DISPID kDispExtOnAddInsUpdate = 3;
inline constexpr DISPID kDispExtOnStartupComplete = 4;
inline constexpr DISPID kDispExtOnBeginShutdown = 5;
inline constexpr DISPID kDispGetCustomUI = 1;

struct IDTExtensibility2 : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE OnConnection(IDispatch* application, int connectMode, IDispatch* addInInst,
                                                   SAFEARRAY** custom) = 0;
    virtual HRESULT STDMETHODCALLTYPE OnDisconnection(int disconnectMode, SAFEARRAY** custom) = 0;
    virtual HRESULT STDMETHODCALLTYPE OnAddInsUpdate(SAFEARRAY** custom) = 0;
    virtual HRESULT STDMETHODCALLTYPE OnStartupComplete(SAFEARRAY** custom) = 0;
    virtual HRESULT STDMETHODCALLTYPE OnBeginShutdown(SAFEARRAY** custom) = 0;
};

struct IRibbonExtensibility : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE GetCustomUI(BSTR ribbonId, BSTR* xml) = 0;
};

// OneNote's application interface, up to the last method the add-in calls. Slots it never calls
// are declared only to keep the vtable in order.
struct IOneNoteApplication : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE GetHierarchy(BSTR startNodeId, int scope, BSTR* xml, int schema) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateHierarchy(BSTR changesXml, int schema) = 0;
    virtual HRESULT STDMETHODCALLTYPE OpenHierarchy_() = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteHierarchy_() = 0;
    virtual HRESULT STDMETHODCALLTYPE CreateNewPage(BSTR sectionId, BSTR* pageId, int style) = 0;
    virtual HRESULT STDMETHODCALLTYPE CloseNotebook_() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetHierarchyParent(BSTR objectId, BSTR* parentId) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetPageContent(BSTR pageId, BSTR* xml, int pageInfo, int schema) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdatePageContent(BSTR pageXml, DATE expectedLastModified, int schema,
                                                        VARIANT_BOOL force) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetBinaryPageContent_() = 0;
    virtual HRESULT STDMETHODCALLTYPE DeletePageContent_() = 0;
    virtual HRESULT STDMETHODCALLTYPE NavigateTo_() = 0;
    virtual HRESULT STDMETHODCALLTYPE NavigateToUrl_() = 0;
    virtual HRESULT STDMETHODCALLTYPE Publish_() = 0;
    virtual HRESULT STDMETHODCALLTYPE OpenPackage_() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetHyperlinkToObject(BSTR hierarchyId, BSTR pageContentObjectId, BSTR* link) = 0;
};

// OneNote's method numbers: vtable slot 7 + n, dispatch identifier 0x60020000 + n.
enum class OneNoteMethod : int {
    GetHierarchy = 0,
    UpdateHierarchy = 1,
    CreateNewPage = 4,
    GetHierarchyParent = 6,
    GetPageContent = 7,
    UpdatePageContent = 8,
    GetHyperlinkToObject = 15,
};
constexpr DISPID OneNoteDispId(OneNoteMethod method) { return 0x60020000 + static_cast<int>(method); }

// OneNote's enumerations as the add-in passes them.
inline constexpr int kSchema2010 = 1;
inline constexpr int kPageInfoBasic = 0;
inline constexpr int kNewPageDefault = 0;

}  // namespace qm::addin
