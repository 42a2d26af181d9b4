// The hierarchy documents: notebooks, section groups, sections (pages: on_binding_page.cpp).
#include "onenote/on_binding.h"
#include "onenote/on_document.h"

namespace qm::xml {

using namespace ON::bind;

template <>
struct Binding<ON::SectionChoice> {
    static constexpr std::u16string_view kGroup = u"SectionChoice";
    static constexpr auto kAlternatives =
        std::tuple{AltOf(&ON::SectionChoice::section), AltOf(&ON::SectionChoice::sectionGroup)};
};

template <>
struct Binding<ON::Notebooks> : ON::OneNoteBinding {
    using E = ON::Notebooks;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields =
        std::tuple{ListOf(&E::notebooks), SlotOf<E>(&E::unfiledNotes), SlotOf<E>(&E::openSections)};
};

template <>
struct Binding<ON::UnfiledNotes> : ON::OneNoteBinding {
    using E = ON::UnfiledNotes;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{Attr<E>(u"isCurrentlyViewed", &E::isCurrentlyViewed),
                                               Attr<E>(u"ID", &E::ID), ChoicesOf(&E::children)};
};

template <>
struct Binding<ON::OpenSections> : ON::OneNoteBinding {
    using E = ON::OpenSections;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{Attr<E>(u"isCurrentlyViewed", &E::isCurrentlyViewed),
                                               Attr<E>(u"ID", &E::ID), ChoicesOf(&E::children)};
};

template <>
struct Binding<ON::Notebook> : ON::OneNoteBinding {
    using E = ON::Notebook;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields =
        std::tuple_cat(HierarchyObjectFields<E>(),
                       std::tuple{Attr<E>(u"nickname", &E::nickname), Attr<E>(u"color", &E::color),
                                  Attr<E>(u"isUnread", &E::isUnread)},
                       FileObjectFields<E>(), std::tuple{ChoicesOf(&E::children)});
};

template <>
struct Binding<ON::SectionGroup> : ON::OneNoteBinding {
    using E = ON::SectionGroup;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple_cat(
        HierarchyObjectFields<E>(),
        std::tuple{Attr<E>(u"isUnread", &E::isUnread), Attr<E>(u"isRecycleBin", &E::isRecycleBin)},
        FileObjectFields<E>(), std::tuple{ChoicesOf(&E::children)});
};

template <>
struct Binding<ON::Section> : ON::OneNoteBinding {
    using E = ON::Section;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple_cat(
        HierarchyObjectFields<E>(),
        std::tuple{Attr<E>(u"color", &E::color), Attr<E>(u"encrypted", &E::encrypted),
                   Attr<E>(u"locked", &E::locked), Attr<E>(u"isUnread", &E::isUnread),
                   Attr<E>(u"readOnly", &E::readOnly), Attr<E>(u"areAllPagesAvailable", &E::areAllPagesAvailable),
                   Attr<E>(u"isDeletedPages", &E::isDeletedPages)},
        FileObjectFields<E>(), std::tuple{ListOf(&E::pages)});
};

QM_ON_INSTANTIATE(Notebooks)
QM_ON_INSTANTIATE(UnfiledNotes)
QM_ON_INSTANTIATE(OpenSections)
QM_ON_INSTANTIATE(Notebook)
QM_ON_INSTANTIATE(SectionGroup)
QM_ON_INSTANTIATE(Section)

}  // namespace qm::xml

namespace qm::ON {

void WriteStartWithAttributes(const xml::ChildElement& element, xml::XmlWriter& writer) {
    element.WriteStartElement(writer);
    if (const auto* e = dynamic_cast<const Notebooks*>(&element)) return xml::WriteAttributes(*e, writer);
    if (const auto* e = dynamic_cast<const Notebook*>(&element)) return xml::WriteAttributes(*e, writer);
    if (const auto* e = dynamic_cast<const SectionGroup*>(&element)) return xml::WriteAttributes(*e, writer);
    if (const auto* e = dynamic_cast<const Section*>(&element)) return xml::WriteAttributes(*e, writer);
    if (const auto* e = dynamic_cast<const Page*>(&element)) return bind::WritePageAttributes(*e, writer);
    if (const auto* e = dynamic_cast<const UnfiledNotes*>(&element)) return xml::WriteAttributes(*e, writer);
    if (const auto* e = dynamic_cast<const OpenSections*>(&element)) return xml::WriteAttributes(*e, writer);
}

}  // namespace qm::ON
