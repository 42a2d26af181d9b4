// Readable listings of OneNote documents, as `quillmark notebook show` prints them: a hierarchy
// as an indented tree of notebooks, section groups, sections and pages with their IDs, and a page
// as its title, outlines, paragraphs (plain text, with list markers and tags), tables as rows,
// and the other objects by kind. Every line ends with a line feed.
#pragma once

#include <string>

#include "onenote/on_schema.h"

namespace qm::onenote {

// A hierarchy node (the Notebooks root, a notebook, section group, section or page entry) and
// everything below it that the document holds.
std::u16string ListHierarchy(const xml::ChildElement& node);

std::u16string ListPage(const ON::Page& page);

}  // namespace qm::onenote
