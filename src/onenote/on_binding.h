// Shared by the binding files only: helpers that describe fields by their element types' names,
// the attribute groups bound once for every element that includes them, and the tag holder.
#pragma once

#include <memory>
#include <string_view>
#include <tuple>

#include "onenote/on_schema.h"

namespace qm::ON::bind {

template <class M>
struct MemberOf;
template <class V, class B>
struct MemberOf<V B::*> {
    using Type = V;
};

// An attribute of E, also when the member is in one of E's attribute groups.
template <class E, class M>
constexpr auto Attr(std::u16string_view name, M member) {
    using V = typename MemberOf<M>::Type;
    return xml::AttributeField<E, V>{name, static_cast<V E::*>(member)};
}

// A single child of E, named after its type.
template <class E, class M>
constexpr auto SlotOf(M member) {
    using C = typename MemberOf<M>::Type::element_type;
    return xml::SlotField<E, C>{C::kName, static_cast<std::shared_ptr<C> E::*>(member)};
}

// Children of one type.
template <class E, class C>
constexpr auto ListOf(xml::ChildList<C> E::*member) {
    return xml::ListField<E, xml::ChildList<C>>{C::kName, member};
}

// Children each of which is one of a choice's alternatives.
template <class E, class G>
constexpr auto ChoicesOf(xml::ChildList<G> E::*member) {
    return xml::ChoiceListField<E, G>{member};
}

template <class G, class C>
constexpr auto AltOf(xml::ChoiceSlot<C> G::*slot) {
    return xml::SlotAlternative<G, C>{C::kName, slot};
}

// --- attribute groups -------------------------------------------------------------------------

template <class E>
constexpr auto HierarchyObjectFields() {
    using H = HierarchyObjectAttributes;
    return std::tuple{Attr<E>(u"ID", &H::ID), Attr<E>(u"name", &H::name),
                      Attr<E>(u"lastModifiedTime", &H::lastModifiedTime),
                      Attr<E>(u"isCurrentlyViewed", &H::isCurrentlyViewed),
                      Attr<E>(u"isInRecycleBin", &H::isInRecycleBin)};
}

template <class E>
constexpr auto FileObjectFields() {
    return std::tuple{Attr<E>(u"path", &FileObjectAttributes::path)};
}

template <class E>
constexpr auto CascadedTextFields() {
    using C = CascadedTextAttributes;
    return std::tuple{Attr<E>(u"style", &C::style), Attr<E>(u"quickStyleIndex", &C::quickStyleIndex),
                      Attr<E>(u"lang", &C::lang)};
}

template <class E>
constexpr auto EditedByFields() {
    using B = EditedByAttributes;
    return std::tuple{Attr<E>(u"author", &B::author), Attr<E>(u"authorInitials", &B::authorInitials),
                      Attr<E>(u"lastModifiedBy", &B::lastModifiedBy),
                      Attr<E>(u"lastModifiedByInitials", &B::lastModifiedByInitials),
                      Attr<E>(u"creationTime", &B::creationTime)};
}

// The page object group: its attributes and its first children, Position and Size (the Meta
// children that follow are each element's own list).
template <class E>
constexpr auto PageObjectFields() {
    using P = PageObjectAttributes;
    return std::tuple{Attr<E>(u"objectID", &P::objectID), Attr<E>(u"selected", &P::selected),
                      Attr<E>(u"lastModifiedTime", &P::lastModifiedTime), SlotOf<E>(&P::position),
                      SlotOf<E>(&P::size)};
}

template <class E>
constexpr auto TagStateFields() {
    using S = TagStateAttributes;
    return std::tuple{Attr<E>(u"completed", &S::completed), Attr<E>(u"disabled", &S::disabled),
                      Attr<E>(u"creationDate", &S::creationDate), Attr<E>(u"completionDate", &S::completionDate)};
}

// The attributes of a page, for WriteStartWithAttributes (on_binding_hierarchy.cpp).
void WritePageAttributes(const Page& page, xml::XmlWriter& writer);

}  // namespace qm::ON::bind

namespace qm::xml {

// The tag holder of paragraphs, images, embedded files and ink: tags, Outlook tasks and media
// references, in document order.
template <>
struct Binding<ON::TagChoice> {
    static constexpr std::u16string_view kGroup = u"TagChoice";
    static constexpr auto kAlternatives =
        std::tuple{ON::bind::AltOf(&ON::TagChoice::mediaIndex), ON::bind::AltOf(&ON::TagChoice::tag),
                   ON::bind::AltOf(&ON::TagChoice::outlookTask), ON::bind::AltOf(&ON::TagChoice::mediaReference)};
};

}  // namespace qm::xml

#define QM_ON_INSTANTIATE(E)                                                                        \
    template class Child<ON::E>;                                                                    \
    template ReadResult ReadElement<ON::E>(ON::E&, std::u16string_view, ReadSession&);             \
    template void WriteElement<ON::E>(const ON::E&, std::u16string_view, XmlWriter&);
