#include "addin/addin_session.h"

#include "addin/messages.h"
#include "core/format.h"
#include "macros/macro_xml.h"
#include "macros/messages.h"
#include "onenote/on_types.h"
#include "onenote/session.h"
#include "runtime/strings.h"
#include "xml/xml_error.h"
#include "xml/xml_reader.h"

namespace qm::addin {
namespace {

// The ID of the page OneNote shows, from a hierarchy down to pages; empty when none is shown.
std::u16string CurrentPageId(std::u16string_view hierarchy) {
    const auto reader = xml::CreateStringXmlReader(hierarchy, {.acceptIllegalCharacters = true});
    while (reader->Read()) {
        if (reader->nodeType() != xml::NodeType::Element || reader->localName() != u"Page" ||
            reader->namespaceUri() != ON::kNamespace) {
            continue;
        }
        std::u16string id;
        bool current = false;
        for (bool more = reader->MoveToFirstAttribute(); more; more = reader->MoveToNextAttribute()) {
            if (reader->localName() == u"ID") id = reader->value();
            if (reader->localName() == u"isCurrentlyViewed") current = reader->value() == u"true";
        }
        if (current) return id;
    }
    return {};
}

}  // namespace

AddinSession::AddinSession(IDispatch* application)
    : application_(ComPtr<IDispatch>::Share(application)), onenote_(application), driver_(ui_) {
    // Loaded now, so that the first menu opens at once; a file that does not read is reported
    // when the list is first needed, and again until it reads.
    try {
        store_.GetMacros();
    } catch (const macros::StoreError&) {
    }
    try {
        settings_.Get();
    } catch (const macros::StoreError&) {
    }
}

void AddinSession::SetRibbon(IDispatch* ribbonUi) { ribbon_ = ComPtr<IDispatch>::Share(ribbonUi); }

void AddinSession::TakeOneNoteOwner() { ui_.SetOwner(OneNoteWindow(application_.get())); }

void AddinSession::Invalidate(std::u16string_view controlId) {
    if (!ribbon_) return;
    Bstr id(controlId);
    VARIANTARG argument;
    VariantInit(&argument);
    argument.vt = VT_BSTR;
    argument.bstrVal = id.get();
    DISPPARAMS parameters{&argument, nullptr, controlId.empty() ? 0u : 1u, 0};
    // A ribbon that cannot refresh shows the old contents; that is no reason to fail the callback.
    ribbon_->Invoke(controlId.empty() ? kDispRibbonInvalidate : kDispRibbonInvalidateControl, IID_NULL,
                    LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr);
}

M2::Macros& AddinSession::Macros() {
    store_.ReloadIfChanged();
    return store_.GetMacros();
}

std::shared_ptr<M2::Macro> AddinSession::FindMacro(std::u16string_view id) {
    store_.ReloadIfChanged();
    if (id.empty()) return nullptr;
    for (const auto& macro : store_.GetMacros().macros) {
        if (*macro->id == id) return macro;
    }
    return nullptr;
}

template <class Action>
void AddinSession::Reported(Action&& action) {
    TakeOneNoteOwner();
    try {
        action();
    } catch (const macros::StoreError& e) {
        ui_.ShowError(strings::Text(strings::Id::Error), e.message());
    } catch (const onenote::OneNoteError& e) {
        ui_.ShowError(strings::Text(strings::Id::Error), e.text());
    }
}

void AddinSession::RunMacro(std::u16string_view id) {
    Reported([&] { Run(id); });
}

void AddinSession::Run(std::u16string_view id) {
    const std::shared_ptr<M2::Macro> macro = FindMacro(id);
    if (!macro) return;
    RunSettings settings;
    settings.logging = *store_.GetMacros().loggingEnabled;
    onenote::Session session(onenote_);
    RunEnvironment environment;
    environment.objects = &session;
    environment.documents = &session;
    environment.logOpened = [&session](LogSink* log) { session.SetLog(log); };
    driver_.runMacro(macro.get(), settings, environment);
    Invalidate(kMacrosControlId);
}

void AddinSession::EditMacro(std::u16string_view id) {
    Reported([&] { Edit(id); });
}

void AddinSession::Edit(std::u16string_view id) {
    const std::shared_ptr<M2::Macro> macro = FindMacro(id);
    if (!macro) return;
    const std::optional<std::u16string> edited =
        ui_.ShowText(macros::msg::kEditXmlTitle, macros::msg::kEditXmlMessage, M2::WriteMacroXml(*macro), true);
    if (!edited) return;
    std::shared_ptr<M2::Macro> fresh;
    try {
        fresh = M2::ImportMacroXml(*edited);
    } catch (const xml::XmlError& e) {
        ui_.ShowError(macros::msg::kEditXmlTitle, FormatMessage(msg::kImportFailed, {e.FullText()}));
        return;
    }
    macros::ApplyMacroDefaults(*fresh);
    if (fresh->id.value.empty()) fresh->id.value = macro->id.value;
    if (*fresh->version > macros::kMacroVersion) ui_.Ask(macros::msg::kEditXmlTitle, macros::msg::kNewerMacroVersion);
    store_.Modify([&](M2::Macros& list) {
        for (std::size_t i = 0; i < list.macros.size(); ++i) {
            if (*list.macros[i]->id != *macro->id) continue;
            list.macros.Remove(i);
            list.macros.Insert(i, fresh);
            return;
        }
        throw macros::StoreError(FormatMessage(msg::kMacroGone, {macro->name}));
    });
    Invalidate();
}

void AddinSession::ShowPageXml() {
    Reported([&] {
        const std::u16string page = CurrentPageId(onenote_.GetHierarchy(u"", onenote::HierarchyScope::Pages));
        if (page.empty()) {
            ui_.ShowError(msg::kPageXmlTitle, msg::kNoCurrentPage);
            return;
        }
        ui_.ShowText(msg::kPageXmlTitle, page, onenote_.GetPageContent(page), false);
    });
}

std::u16string AddinSession::MacroMenu(MacroMenuKind kind) { return MacroMenuXml(Macros(), kind); }

void AddinSession::SetLogging(bool on) {
    Reported([&] { store_.Modify([on](M2::Macros& list) { list.loggingEnabled = on; }); });
}

void AddinSession::SetCompact(bool on) {
    Reported([&] { store_.Modify([on](M2::Macros& list) { list.compact = on; }); });
    Invalidate();
}

void AddinSession::SetDisplay(std::u16string_view display) {
    Reported([&] { store_.Modify([display](M2::Macros& list) { list.display = std::u16string(display); }); });
    Invalidate();
}

}  // namespace qm::addin
