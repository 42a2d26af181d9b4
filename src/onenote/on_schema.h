// The binding of OneNote's 2010 hierarchy and page XML: one structure per element in namespace
// ON, named after the element, read and written by the framework of src/xml. The documents are
// read and written through on_document.h.
//
// Walking the tree: every element keeps `owner`, the container that holds it. For an element in
// a single slot that is the parent element; for one in a list, the list (whose owner is the
// parent element); for one in a choice, the choice (whose owner is the list). ParentElement and
// AncestorOf below step over the lists and choices.
#pragma once

#include <memory>

#include "onenote/on_hierarchy.h"
#include "onenote/on_media.h"
#include "onenote/on_outline.h"
#include "onenote/on_page.h"
#include "onenote/on_table.h"
#include "onenote/on_types.h"

// Every element type of the binding, for the declarations below and the instantiations in the
// binding files.
#define QM_ON_ELEMENT_TYPES(X)                                                                                   \
    X(Notebooks) X(UnfiledNotes) X(OpenSections) X(Notebook) X(SectionGroup) X(Section) X(Page) X(TagDef)         \
    X(QuickStyleDef) X(XPSFile) X(Meta) X(MediaPlaylist) X(PageSettings) X(PageSize) X(Automatic) X(Orientation)  \
    X(Dimensions) X(Margins) X(RuleLines) X(Horizontal) X(Vertical) X(Margin) X(Title) X(Outline) X(Position)     \
    X(Size) X(Indents) X(Indent) X(OEChildren) X(ChildOELayout) X(HTMLBlock) X(OE) X(List) X(Bullet) X(Number)    \
    X(T) X(Tag) X(OutlookTask) X(MediaIndex) X(MediaReference) X(LinkedNote) X(LinkedNoteUri)                    \
    X(LinkedNoteShortName) X(LinkedNoteFriendlyName) X(LinkedNoteDescription) X(LinkedNoteThumbnail) X(Table)     \
    X(Columns) X(Column) X(Row) X(Cell) X(Image) X(OCRData) X(OCRText) X(OCRToken) X(InsertedFile) X(MediaFile)  \
    X(InkDrawing) X(ShapeInfo) X(AnchorPoint) X(InkWord) X(InkParagraph) X(Space) X(EndOfLine) X(File) X(Data)    \
    X(CallbackID) X(FutureObject)

#define QM_ON_CHOICE_TYPES(X) X(SectionChoice) X(PageElementChoice) X(OEChildrenChoice) X(TagChoice) X(OEChoice)

// The bindings live in the on_binding_*.cpp files, the only ones that instantiate the engine for
// these types.
namespace qm::xml {
#define QM_ON_DECLARE_ELEMENT(E)                                                                          \
    template <>                                                                                           \
    struct Binding<ON::E>;                                                                                \
    extern template class Child<ON::E>;                                                                   \
    extern template ReadResult ReadElement<ON::E>(ON::E&, std::u16string_view, ReadSession&);             \
    extern template void WriteElement<ON::E>(const ON::E&, std::u16string_view, XmlWriter&);
#define QM_ON_DECLARE_CHOICE(G) \
    template <>                 \
    struct Binding<ON::G>;
QM_ON_ELEMENT_TYPES(QM_ON_DECLARE_ELEMENT)
QM_ON_CHOICE_TYPES(QM_ON_DECLARE_CHOICE)
#undef QM_ON_DECLARE_ELEMENT
#undef QM_ON_DECLARE_CHOICE
}  // namespace qm::xml

namespace qm::ON {

// The element that holds this one, over the lists and choices in between; null at the root.
xml::ChildElement* ParentElement(const xml::ChildElement& element);

// The nearest enclosing element of type A, or null.
template <class A>
A* AncestorOf(const xml::ChildElement& element) {
    for (xml::ChildElement* e = ParentElement(element); e != nullptr; e = ParentElement(*e)) {
        if (auto* found = dynamic_cast<A*>(e)) return found;
    }
    return nullptr;
}

// The defaults an element gets when the add-in builds it (never when it is read): colours
// "automatic", paragraph alignment "left", image format "auto", a number list's language "1033"
// and font "Verdana", OCR language "EN-US". Selection is "none" on every element either way.
void ApplyNewElementDefaults(Bullet& e);
void ApplyNewElementDefaults(Number& e);
void ApplyNewElementDefaults(OE& e);
void ApplyNewElementDefaults(Image& e);
void ApplyNewElementDefaults(OCRData& e);
void ApplyNewElementDefaults(PageSettings& e);
void ApplyNewElementDefaults(TagDef& e);
void ApplyNewElementDefaults(QuickStyleDef& e);
void ApplyNewElementDefaults(Horizontal& e);
void ApplyNewElementDefaults(Vertical& e);
void ApplyNewElementDefaults(Margin& e);
template <class E>
void ApplyNewElementDefaults(E&) {}

// A new element as the add-in builds it.
template <class E>
std::shared_ptr<E> New() {
    auto element = std::make_shared<E>();
    ApplyNewElementDefaults(*element);
    return element;
}

}  // namespace qm::ON
