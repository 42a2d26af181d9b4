// Writing a run's changes back to OneNote (see session.h for when and in which order).
#include "onenote/on_document.h"
#include "onenote/ordered_pipeline.h"
#include "onenote/session.h"
#include "xml/xml_writer.h"

namespace qm::onenote {
namespace {

// The hierarchy nodes directly below a node, in order.
std::vector<const xml::ChildElement*> ChildNodes(const xml::ChildElement& element) {
    std::vector<const xml::ChildElement*> children;
    const xml::ChildList<ON::SectionChoice>* choices = nullptr;
    if (const auto* root = dynamic_cast<const ON::Notebooks*>(&element)) {
        for (const auto& notebook : root->notebooks) children.push_back(notebook.get());
    } else if (const auto* notebook = dynamic_cast<const ON::Notebook*>(&element)) {
        choices = &notebook->children;
    } else if (const auto* group = dynamic_cast<const ON::SectionGroup*>(&element)) {
        choices = &group->children;
    } else if (const auto* section = dynamic_cast<const ON::Section*>(&element)) {
        for (const auto& page : section->pages) children.push_back(page.get());
    }
    if (choices) {
        for (const auto& choice : *choices) {
            if (choice->section) children.push_back(choice->section.get());
            if (choice->sectionGroup) children.push_back(choice->sectionGroup.get());
        }
    }
    return children;
}

// A hierarchy node with its attributes, and its children (attributes only) when their order
// changed: UpdateHierarchy applies what it is given, and nothing else below the node changed.
std::u16string NodeDocument(const HierarchyObject& object) {
    std::u16string out;
    xml::StringSink sink(out);
    xml::XmlWriter writer(sink, xml::WriterOptions{true, u"\n", xml::IllegalCharacters::Reference});
    writer.WriteDeclaration(u"");
    ON::WriteStartWithAttributes(*object.node(), writer);
    if (object.childrenMoved()) {
        for (const xml::ChildElement* child : ChildNodes(*object.node())) {
            ON::WriteStartWithAttributes(*child, writer);
            writer.EndElement();
        }
    }
    writer.EndElement();
    writer.EndDocument();
    return out;
}

}  // namespace

// Runs when the driver finalises the page table at a saving end of the run, so before any page is
// sent: one UpdateHierarchy call per changed node, in the order of the nodes' first changes.
void Session::SaveHierarchyChanges() {
    std::vector<std::shared_ptr<HierarchyObject>> changed = std::move(changed_);
    changed_.clear();
    for (const auto& object : changed) {
        if (!object->changed()) continue;
        api_->UpdateHierarchy(NodeDocument(*object));
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
    std::vector<LoadedPage*> modified;
    for (const auto& page : pageTable_) {
        if (page->modified && page->document) modified.push_back(page.get());
    }
    // Pages are written to XML on worker threads, a few ahead of the one being sent; nothing
    // touches a page's content while it is sent. Each page's text goes as soon as it is sent.
    OrderedPipeline<const ON::Page*, std::u16string> texts(
        modified.size(), [&](std::size_t i) -> const ON::Page* { return modified[i]->document.get(); },
        [](const ON::Page* document) { return ON::WriteDocument(*document); });
    for (LoadedPage* page : modified) {
        api_->UpdatePageContent(texts.Next());
        page->modified = false;
    }
    pageTable_.clear();
    pageIndex_.clear();
}

}  // namespace qm::onenote
