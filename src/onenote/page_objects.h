// The macro objects inside a page: titles, outlines, paragraphs, tables, rows, columns, cells,
// images, embedded files and tags. Each is a view over one element of the page's bound content;
// it keeps the page's record (and so its document) alive, and two of them are equal when they
// stand for the same element of the same page document. They are made on demand and not cached:
// the element is the identity.
//
// Writing any of their properties marks the page modified; the run saves it at its end.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "onenote/object_properties.h"

namespace qm::onenote {

struct LoadedPage;

class PageContentObject final : public OneNoteObject {
public:
    PageContentObject(Session& session, ObjectType type, std::shared_ptr<LoadedPage> page,
                      std::shared_ptr<xml::ChildElement> element);

    xml::ChildElement* node() const override { return element_.get(); }
    const std::shared_ptr<xml::ChildElement>& element() const noexcept { return element_; }
    const std::shared_ptr<LoadedPage>& page() const noexcept { return page_; }
    std::span<const PropertyTable> Tables() const override;

    bool SameAs(const MacroObject& other) const override;
    // `Paragraph "Buy milk" (Paragraph)`, `Table (Table)`: text-bearing objects show the start
    // of their text.
    std::u16string Describe() const override;

protected:
    void Written(const PropertyDef& property) override;

private:
    std::shared_ptr<LoadedPage> page_;
    std::shared_ptr<xml::ChildElement> element_;
};

// The macro type of a page element, when it has one (Title, Outline, OE, Table, Row, Column,
// Cell, Image, InsertedFile, Tag).
std::optional<ObjectType> ContentTypeOf(const xml::ChildElement& element);

// The object for an element of a loaded page; null when the element has no macro type.
ObjectRef MakeContentObject(Session& session, const std::shared_ptr<LoadedPage>& page, xml::ChildElement& element);

// The elements directly below an element that are, or may hold, macro-visible objects, in
// document order (a page: its title, then its outlines, images and files; a paragraph: its tags,
// its table, image or file, then its child paragraphs ...).
std::vector<std::shared_ptr<xml::ChildElement>> ContentChildren(const xml::ChildElement& element);

// The property tables of each content type (page_objects.cpp, paragraph_properties.cpp).
std::span<const PropertyTable> ContentTables(ObjectType type);
std::span<const PropertyTable> ParagraphTables();

// The paragraphs (OE) of a list of paragraph lists, in order; HTML blocks are skipped.
std::vector<std::shared_ptr<ON::OE>> ParagraphsOf(const xml::ChildList<ON::OEChildren>& lists);
// The Tag elements of a tag holder, in order.
std::vector<std::shared_ptr<ON::Tag>> TagsOf(const xml::ChildList<ON::TagChoice>& holder);
// The objects for elements of a loaded page.
template <class E>
std::vector<ObjectRef> ObjectsFor(Session& session, const std::shared_ptr<LoadedPage>& page,
                                  const std::vector<std::shared_ptr<E>>& elements) {
    std::vector<ObjectRef> objects;
    objects.reserve(elements.size());
    for (const auto& element : elements) {
        if (ObjectRef object = MakeContentObject(session, page, *element)) objects.push_back(std::move(object));
    }
    return objects;
}

}  // namespace qm::onenote
