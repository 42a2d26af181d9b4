// GetParentOfType and GetAncestorOfType: walking upwards from an object.
//
// The parent of a page-content object is the nearest enclosing macro-visible element of the page
// (the paragraph of a text run or a tag, the cell of a paragraph in a table, the outline of a
// top-level paragraph), up to the page; the parent of a notebook is the notebook root; the parent
// of a section group, section or page is asked of OneNote (GetHierarchyParent) and taken from the
// run's cache by ID.
//
// Choices made here: the type is matched against the parent's type name exactly; when nothing is
// found the output argument keeps its value; "Cannot find" names the parent that did not match.
#include "core/error.h"
#include "core/format.h"
#include "onenote/messages.h"
#include "onenote/page_objects.h"
#include "onenote/page_text.h"
#include "onenote/session.h"
#include "onenote/text_object.h"

namespace qm::onenote {
namespace {

// More steps than any page or hierarchy can nest: a walk that takes them is going round in
// circles (a parent that names its own child) and stops.
constexpr int kMaxSteps = 4096;

std::u16string_view LogTypeName(const MacroObject& object) {
    const std::optional<ObjectType> type = TypeFromNumber(object.TypeNumber());
    return type ? LogName(*type) : std::u16string_view();
}

}  // namespace

ObjectRef Session::ParentOf(const MacroObject& object) {
    if (const auto* content = dynamic_cast<const PageContentObject*>(&object)) {
        for (xml::ChildElement* e = ON::ParentElement(*content->node()); e != nullptr; e = ON::ParentElement(*e)) {
            if (auto* page = dynamic_cast<ON::Page*>(e); page && content->page()->document.get() == page) {
                return ObjectById(ObjectType::Page, content->page()->id);
            }
            if (ContentTypeOf(*e)) return MakeContentObject(*this, content->page(), *e);
        }
        return nullptr;
    }
    const auto* hierarchy = dynamic_cast<const HierarchyObject*>(&object);
    if (!hierarchy) {
        const auto* text = dynamic_cast<const TextObject*>(&object);
        if (!text || !text->paragraph()) return nullptr;
        const std::shared_ptr<LoadedPage> page = PageHolding(*text->paragraph());
        return page ? MakeContentObject(*this, page, *text->paragraph()) : nullptr;
    }
    switch (hierarchy->type()) {
        case ObjectType::NotebookRoot: return nullptr;
        case ObjectType::Notebook: return root_;
        default: break;
    }
    const std::u16string parentId = api_->GetHierarchyParent(hierarchy->id());
    for (ObjectType kind : {ObjectType::Section, ObjectType::SectionGroup, ObjectType::Notebook}) {
        if (auto parent = ObjectById(kind, parentId)) return parent;
    }
    return TreeParent(*hierarchy);
}

MacroValue Session::WalkUp(const MacroValue& object, const MacroValue& type, Argument& out, bool parentOnly,
                           std::u16string_view function) {
    if (object.kind() != Kind::Object || !object.object()) {
        throw MacroError(FormatMessage(msg::kExpectedObjectFirst, {function}));
    }
    const std::u16string wanted =
        type.kind() == Kind::Array || type.kind() == Kind::Object ? std::u16string() : type.AsString();
    ObjectRef current = object.object();
    if (log_) {
        std::u16string line(msg::kLogLookingFor);
        line += parentOnly ? msg::kLogAParent : msg::kLogAnAncestor;
        line += msg::kLogOfType;
        line += wanted;
        line += msg::kLogOfAn;
        line += current->Describe();
        LogLine(log_, line);
    }
    for (int step = 0; step < kMaxSteps; ++step) {
        if (current->TypeNumber() == Number(ObjectType::NotebookRoot)) {
            LogLine(log_, msg::kLogAlreadyAtRoot);
            return MacroValue(false);
        }
        if (log_) {
            std::u16string line(msg::kLogCurrentObject);
            line += LogTypeName(*current);
            line += msg::kLogLookingForItsParent;
            LogLine(log_, line);
        }
        ObjectRef parent = ParentOf(*current);
        if (!parent) return MacroValue(false);
        if (parent->TypeName() == wanted) {
            if (log_) LogLine(log_, std::u16string(msg::kLogFound) + parent->Describe());
            if (out.slot) *out.slot = MacroValue(parent);
            out.value = MacroValue(parent);
            return MacroValue(true);
        }
        if (parentOnly) {
            if (log_) LogLine(log_, std::u16string(msg::kLogCannotFind) + parent->Describe());
            return MacroValue(false);
        }
        current = std::move(parent);
    }
    return MacroValue(false);
}

MacroValue Session::GetParentOfType(const MacroValue& object, const MacroValue& type, Argument& parent) {
    return WalkUp(object, type, parent, true, u"GetParentOfType");
}

MacroValue Session::GetAncestorOfType(const MacroValue& object, const MacroValue& type, Argument& ancestor) {
    return WalkUp(object, type, ancestor, false, u"GetAncestorOfType");
}

}  // namespace qm::onenote
