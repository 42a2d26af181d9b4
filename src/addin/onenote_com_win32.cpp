#include "addin/onenote_com.h"

#include <vector>

namespace qm::addin {
namespace {

// Runs a call, again while OneNote is busy; raises OneNoteError when it fails.
template <class Call>
void Checked(Call&& call) {
    HRESULT hr = S_OK;
    for (int attempt = 1;; ++attempt) {
        hr = call();
        if (hr != kOneNoteBusy || attempt == kBusyAttempts) break;
        Sleep(kBusyPauseMs);
    }
    if (FAILED(hr)) throw onenote::OneNoteError(static_cast<std::uint32_t>(hr));
}

DATE ToDate(const std::optional<xml::SystemTime>& time) {
    if (!time) return 0;  // no check
    SYSTEMTIME system{time->wYear,   time->wMonth,  time->wDayOfWeek, time->wDay,
                      time->wHour,   time->wMinute, time->wSecond,    time->wMilliseconds};
    DATE date = 0;
    if (!SystemTimeToVariantTime(&system, &date)) return 0;
    return date;
}

}  // namespace

ComOneNote::ComOneNote(IDispatch* application)
    : dispatch_(ComPtr<IDispatch>::Share(application)),
      direct_(dispatch_.As<IOneNoteApplication>(kIID_IApplication)) {}

void ComOneNote::Invoke(OneNoteMethod method, std::initializer_list<Argument> arguments) {
    // DISPPARAMS carries the arguments last to first.
    std::vector<VARIANTARG> reversed(arguments.size());
    std::size_t i = arguments.size();
    for (const Argument& argument : arguments) {
        VARIANTARG& v = reversed[--i];
        VariantInit(&v);
        v.vt = argument.type;
        switch (argument.type) {
            case VT_BSTR: v.bstrVal = argument.text; break;
            case VT_I4: v.lVal = argument.number; break;
            case VT_DATE: v.date = argument.date; break;
            case VT_BOOL: v.boolVal = argument.flag; break;
            default: v.pbstrVal = argument.out; break;  // VT_BYREF | VT_BSTR
        }
    }
    DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    Checked([&] {
        Variant result;
        return dispatch_->Invoke(OneNoteDispId(method), IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters,
                                 result.get(), nullptr, nullptr);
    });
}

std::u16string ComOneNote::GetHierarchy(std::u16string_view startNodeId, onenote::HierarchyScope scope) {
    Bstr start(startNodeId), xml;
    const int scopeNumber = static_cast<int>(scope);
    if (direct_) {
        Checked([&] { return direct_->GetHierarchy(start.get(), scopeNumber, xml.Out(), kSchema2010); });
    } else {
        BSTR* out = xml.Out();
        Invoke(OneNoteMethod::GetHierarchy, {{VT_BSTR, {.text = start.get()}},
                                             {VT_I4, {.number = scopeNumber}},
                                             {VT_BYREF | VT_BSTR, {.out = out}},
                                             {VT_I4, {.number = kSchema2010}}});
    }
    return xml.Text();
}

void ComOneNote::UpdateHierarchy(std::u16string_view changesXml) {
    Bstr changes(changesXml);
    if (direct_) {
        Checked([&] { return direct_->UpdateHierarchy(changes.get(), kSchema2010); });
    } else {
        Invoke(OneNoteMethod::UpdateHierarchy, {{VT_BSTR, {.text = changes.get()}}, {VT_I4, {.number = kSchema2010}}});
    }
}

std::u16string ComOneNote::GetHierarchyParent(std::u16string_view objectId) {
    Bstr object(objectId), parent;
    if (direct_) {
        Checked([&] { return direct_->GetHierarchyParent(object.get(), parent.Out()); });
    } else {
        BSTR* out = parent.Out();
        Invoke(OneNoteMethod::GetHierarchyParent,
               {{VT_BSTR, {.text = object.get()}}, {VT_BYREF | VT_BSTR, {.out = out}}});
    }
    return parent.Text();
}

std::u16string ComOneNote::GetPageContent(std::u16string_view pageId) {
    Bstr page(pageId), xml;
    if (direct_) {
        Checked([&] { return direct_->GetPageContent(page.get(), xml.Out(), kPageInfoBasic, kSchema2010); });
    } else {
        BSTR* out = xml.Out();
        Invoke(OneNoteMethod::GetPageContent, {{VT_BSTR, {.text = page.get()}},
                                               {VT_BYREF | VT_BSTR, {.out = out}},
                                               {VT_I4, {.number = kPageInfoBasic}},
                                               {VT_I4, {.number = kSchema2010}}});
    }
    return xml.Text();
}

void ComOneNote::UpdatePageContent(std::u16string_view pageXml, std::optional<xml::SystemTime> expectedLastModified) {
    Bstr xml(pageXml);
    const DATE expected = ToDate(expectedLastModified);
    if (direct_) {
        Checked([&] { return direct_->UpdatePageContent(xml.get(), expected, kSchema2010, VARIANT_FALSE); });
    } else {
        Invoke(OneNoteMethod::UpdatePageContent, {{VT_BSTR, {.text = xml.get()}},
                                                  {VT_DATE, {.date = expected}},
                                                  {VT_I4, {.number = kSchema2010}},
                                                  {VT_BOOL, {.flag = VARIANT_FALSE}}});
    }
}

std::u16string ComOneNote::GetHyperlinkToObject(std::u16string_view hierarchyId,
                                                std::u16string_view pageContentObjectId) {
    Bstr node(hierarchyId), object(pageContentObjectId), link;
    if (direct_) {
        Checked([&] { return direct_->GetHyperlinkToObject(node.get(), object.get(), link.Out()); });
    } else {
        BSTR* out = link.Out();
        Invoke(OneNoteMethod::GetHyperlinkToObject, {{VT_BSTR, {.text = node.get()}},
                                                     {VT_BSTR, {.text = object.get()}},
                                                     {VT_BYREF | VT_BSTR, {.out = out}}});
    }
    return link.Text();
}

std::u16string ComOneNote::CreateNewPage(std::u16string_view sectionId) {
    Bstr section(sectionId), page;
    if (direct_) {
        Checked([&] { return direct_->CreateNewPage(section.get(), page.Out(), kNewPageDefault); });
    } else {
        BSTR* out = page.Out();
        Invoke(OneNoteMethod::CreateNewPage, {{VT_BSTR, {.text = section.get()}},
                                              {VT_BYREF | VT_BSTR, {.out = out}},
                                              {VT_I4, {.number = kNewPageDefault}}});
    }
    return page.Text();
}

}  // namespace qm::addin
