// The parts of the notebook folder that work on the hierarchy tree alone: walking it, cutting it
// to a scope, applying changes, naming page files, building new and empty pages, links.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "onenote/on_schema.h"
#include "onenote/onenote_api.h"

namespace qm::onenote::detail {

enum class Kind { Notebooks, Notebook, SectionGroup, Section, Page, UnfiledNotes, OpenSections, Other };

Kind KindOf(const xml::ChildElement& element);

// The direct hierarchy children of a node, in document order.
void ForEachChild(const xml::ChildElement& node, const std::function<void(xml::ChildElement&, Kind)>& visit);

// Every hierarchy node from `root` down, parents before children, in document order.
void ForEachNode(xml::ChildElement& root, const std::function<void(xml::ChildElement&, Kind)>& visit);

// The ID attribute of a node; null for the Notebooks root.
const ON::String* IdOf(const xml::ChildElement& element);

std::filesystem::path PageFileName(std::u16string_view pageId);

// The node with its descendants down to what the scope takes, as a document.
std::u16string WriteHierarchyCut(const xml::ChildElement& start, HierarchyScope scope);

// Applies the attributes a macro may change from a node handed to UpdateHierarchy to the stored
// node (or page); what changed gets `now` as its last-modified time unless one was given.
void ApplyChanges(const xml::ChildElement& given, xml::ChildElement& stored, const xml::SystemTime& now);

// A page's hierarchy entry as a page document without content.
std::u16string EmptyPageDocument(const ON::Page& entry);
// The content of a page OneNote has just made: an empty title.
std::shared_ptr<ON::Page> NewPageContent(const ON::Page& entry);

std::u16string Hyperlink(const xml::ChildElement& node, std::u16string_view objectId);

}  // namespace qm::onenote::detail
