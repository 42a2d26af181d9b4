// Writing a run's changes back to OneNote (see session.h for when and in which order).
#include "onenote/on_document.h"
#include "onenote/session.h"
#include "xml/xml_writer.h"

namespace qm::onenote {
namespace {

// A hierarchy node alone, with its attributes and without its children: UpdateHierarchy applies
// what it is given, and the node's children have not changed.
std::u16string NodeDocument(const xml::ChildElement& element) {
    std::u16string out;
    xml::StringSink sink(out);
    xml::XmlWriter writer(sink, xml::WriterOptions{true, u"\n", xml::IllegalCharacters::Reference});
    writer.WriteDeclaration(u"");
    ON::WriteStartWithAttributes(element, writer);
    writer.EndElement();
    writer.EndDocument();
    return out;
}

}  // namespace

void Session::SaveHierarchyChanges() {
    std::vector<std::shared_ptr<HierarchyObject>> changed = std::move(changed_);
    changed_.clear();
    for (const auto& object : changed) {
        if (!object->changed()) continue;
        api_->UpdateHierarchy(NodeDocument(*object->node()));
        object->ClearChanged();
    }
}

std::size_t Session::FinalizeModified() {
    SaveHierarchyChanges();
    // The run is over: pages nothing changed are let go (a macro value may still hold one).
    std::vector<std::shared_ptr<LoadedPage>> kept;
    for (auto& page : pageTable_) {
        if (page->modified) kept.push_back(std::move(page));
    }
    pageTable_ = std::move(kept);
    pageIndex_.clear();
    for (std::size_t i = 0; i < pageTable_.size(); ++i) pageIndex_.emplace(pageTable_[i]->id, i);
    return pageTable_.size();
}

void Session::SaveModified() {
    for (const auto& page : pageTable_) {
        if (!page->modified || !page->document) continue;
        api_->UpdatePageContent(ON::WriteDocument(*page->document));
        page->modified = false;
    }
    pageTable_.clear();
    pageIndex_.clear();
}

}  // namespace qm::onenote
