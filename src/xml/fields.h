// Field descriptions: how one attribute, child or text of an element type maps onto its
// structure. A schema describes each element type once as a tuple of these, in schema order
// (attributes, then children, then text), in a specialisation of Binding<E>:
//
//     template <> struct Binding<Param> {
//         static constexpr std::u16string_view kName = u"Param";
//         static constexpr auto kFields = std::tuple{Attribute(u"name", &Param::name)};
//     };
//
// A choice type G (derived from ChoiceGroup) instead gives `kGroup` and `kAlternatives`, a tuple
// of Alternative(name, &G::slot). Optional hooks: `static void Begin(E&, ReadSession&)` before an
// element's content is read and `static void End(E&, ReadSession&)` after.
#pragma once

#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <variant>
#include <vector>

#include "xml/element.h"
#include "xml/xml_strings.h"

namespace qm::xml {

template <class E>
struct Binding;

enum class Phase { Attribute, Child, Text };

template <class E>
ReadResult ReadElement(E& element, std::u16string_view name, ReadSession& session);
template <class E>
void WriteElement(const E& element, std::u16string_view name, XmlWriter& writer);

// --- attribute values -------------------------------------------------------------------------

inline void FromXml(std::u16string_view text, std::u16string& out) { out.assign(text); }
inline void FromXml(std::u16string_view text, bool& out) { out = ParseXmlBool(text); }
inline void FromXml(std::u16string_view text, std::int32_t& out) { out = ParseXmlInt(text); }
inline void FromXml(std::u16string_view text, SystemTime& out) { out = ParseXmlDateTime(text); }
template <class T>
void FromXml(std::u16string_view text, Defaulted<T>& out) {
    FromXml(text, out.value);
}
// An optional attribute: absent when the document does not have it, and then not written.
template <class T>
void FromXml(std::u16string_view text, std::optional<T>& out) {
    FromXml(text, out.emplace());
}

inline const std::u16string& ToXml(const std::u16string& value) { return value; }
inline std::u16string ToXml(bool value) { return FormatXmlBool(value); }
inline std::u16string ToXml(std::int32_t value) { return FormatXmlInt(value); }
inline std::u16string ToXml(const SystemTime& value) { return FormatXmlDateTime(value); }
template <class T>
decltype(auto) ToXml(const Defaulted<T>& value) {
    return ToXml(value.value);
}
template <class T>
decltype(auto) ToXml(const std::optional<T>& value) {
    return ToXml(*value);
}

template <class T>
bool Omitted(const T&) {
    return false;
}
template <class T>
bool Omitted(const Defaulted<T>& value) {
    return value.IsDefault();
}
template <class T>
bool Omitted(const std::optional<T>& value) {
    return !value.has_value();
}

// --- helpers shared by child fields -----------------------------------------------------------

template <class T>
struct IsSharedPtr : std::false_type {};
template <class T>
struct IsSharedPtr<std::shared_ptr<T>> : std::true_type {};

template <class C, class P>
void Adopt(C& child, P& parent) {
    if constexpr (std::derived_from<C, Container> && std::derived_from<P, Container>) child.owner = &parent;
}

// Whether an element in a single slot came from the document (types without the header: any
// element in the slot did).
template <class C>
bool WasRead(const C& child) {
    if constexpr (std::derived_from<C, ChildElement>) {
        return child.present;
    } else {
        return true;
    }
}

// Calls read(alternative) on the first alternative named `name`; NotMine when none is.
template <class Tuple, class F>
ReadResult OfferToAlternatives(const Tuple& alternatives, std::u16string_view name, F&& read) {
    ReadResult result = ReadResult::NotMine;
    std::apply([&](const auto&... alt) { (void)((alt.name == name && ((result = read(alt)), true)) || ...); },
               alternatives);
    return result;
}

template <class Tuple>
bool IsAlternativeName(const Tuple& alternatives, std::u16string_view name) {
    return std::apply([&](const auto&... alt) { return ((alt.name == name) || ...); }, alternatives);
}

// --- attributes -------------------------------------------------------------------------------

template <class E, class T>
struct AttributeField {
    static constexpr Phase kPhase = Phase::Attribute;
    std::u16string_view name;
    T E::*member;

    bool ReadAttribute(E& e, std::u16string_view actual, std::u16string_view value) const {
        if (actual != name) return false;
        FromXml(value, e.*member);
        return true;
    }
    void Write(const E& e, XmlWriter& writer) const {
        if (!Omitted(e.*member)) writer.WriteAttribute(name, ToXml(e.*member));
    }
};

// An attribute whose value is stored through a setter that derives more from it.
template <class E, class T>
struct SetterAttributeField {
    static constexpr Phase kPhase = Phase::Attribute;
    std::u16string_view name;
    T E::*member;
    void (E::*setter)(T);

    bool ReadAttribute(E& e, std::u16string_view actual, std::u16string_view value) const {
        if (actual != name) return false;
        T converted{};
        FromXml(value, converted);
        (e.*setter)(std::move(converted));
        return true;
    }
    void Write(const E& e, XmlWriter& writer) const {
        if (!Omitted(e.*member)) writer.WriteAttribute(name, ToXml(e.*member));
    }
};

template <class E, class T>
constexpr AttributeField<E, T> Attribute(std::u16string_view name, T E::*member) {
    return {name, member};
}
template <class E, class T>
constexpr SetterAttributeField<E, T> Attribute(std::u16string_view name, T E::*member, void (E::*setter)(T)) {
    return {name, member, setter};
}

// --- single child slot ------------------------------------------------------------------------

template <class E, class C>
struct SlotField {
    static constexpr Phase kPhase = Phase::Child;
    std::u16string_view name;
    std::shared_ptr<C> E::*member;

    // Takes the first element of its name and refuses a second one.
    ReadResult ReadChild(E& e, std::u16string_view actual, ReadSession& session, bool&) const {
        std::shared_ptr<C>& slot = e.*member;
        if ((slot && WasRead(*slot)) || actual != name) return ReadResult::NotMine;
        slot = std::make_shared<C>();
        Adopt(*slot, e);
        return ReadElement(*slot, name, session);
    }
    void Write(const E& e, XmlWriter& writer) const {
        if (const auto& child = e.*member) WriteElement(*child, name, writer);
    }
    // Child fields also answer whether they take an element of a name at all, and visit the
    // elements they hold in order, as (element, name).
    bool Knows(std::u16string_view actual) const { return actual == name; }
    template <class V>
    void Each(const E& e, V&& visit) const {
        if (const auto& child = e.*member) visit(*child, name);
    }
};

template <class E, class C>
constexpr SlotField<E, C> Slot(std::u16string_view name, std::shared_ptr<C> E::*member) {
    return {name, member};
}
template <class E, class C>
constexpr SlotField<E, C> Slot(std::shared_ptr<C> E::*member) {
    return {Binding<C>::kName, member};
}

// --- list of one element type -----------------------------------------------------------------

// L is a ChildList<C> or a std::vector<std::shared_ptr<C>>.
template <class E, class L>
struct ListField {
    static constexpr Phase kPhase = Phase::Child;
    using C = typename L::value_type::element_type;
    std::u16string_view name;
    L E::*member;

    // The sequence rule: the list takes its elements as one contiguous run. Any other element
    // offered to it, before or after the run, closes it for good.
    ReadResult ReadChild(E& e, std::u16string_view actual, ReadSession& session, bool& closed) const {
        if (closed) return ReadResult::NotMine;
        if (actual != name) {
            closed = true;
            return ReadResult::NotMine;
        }
        auto child = std::make_shared<C>();
        C& ref = *child;
        L& list = e.*member;
        if constexpr (std::derived_from<L, Container>) {
            Adopt(list, e);
            list.Add(std::move(child));
        } else {
            list.push_back(std::move(child));
        }
        return ReadElement(ref, name, session);
    }
    void Write(const E& e, XmlWriter& writer) const {
        for (const auto& child : e.*member) {
            if (child) WriteElement(*child, name, writer);
        }
    }
    bool Knows(std::u16string_view actual) const { return actual == name; }
    template <class V>
    void Each(const E& e, V&& visit) const {
        for (const auto& child : e.*member) {
            if (child) visit(*child, name);
        }
    }
};

template <class E, class L>
constexpr ListField<E, L> List(std::u16string_view name, L E::*member) {
    return {name, member};
}
template <class E, class L>
constexpr ListField<E, L> List(L E::*member) {
    return {Binding<typename L::value_type::element_type>::kName, member};
}

// --- choices ----------------------------------------------------------------------------------

// One alternative of a choice type G: the slot of G that holds an element of that name.
template <class G, class C>
struct SlotAlternative {
    std::u16string_view name;
    ChoiceSlot<C> G::*slot;

    ReadResult ReadInto(G& group, ReadSession& session) const {
        ChoiceSlot<C>& target = group.*slot;
        target = std::make_shared<C>();
        Adopt(*target, group);
        return ReadElement(*target, name, session);
    }
    void Write(const G& group, XmlWriter& writer) const {
        if (const auto& child = group.*slot) WriteElement(*child, name, writer);
    }
    template <class V>
    void Each(const G& group, V&& visit) const {
        if (const auto& child = group.*slot) visit(*child, name);
    }
};

template <class G, class C>
constexpr SlotAlternative<G, C> Alternative(std::u16string_view name, ChoiceSlot<C> G::*slot) {
    return {name, slot};
}

// A list of choice objects (the statements of a block): like a list, but it takes any of the
// group's element names, each into a new choice object.
template <class E, class G>
struct ChoiceListField {
    static constexpr Phase kPhase = Phase::Child;
    ChildList<G> E::*member;

    ReadResult ReadChild(E& e, std::u16string_view actual, ReadSession& session, bool& closed) const {
        constexpr const auto& alternatives = Binding<G>::kAlternatives;
        if (closed) return ReadResult::NotMine;
        if (!IsAlternativeName(alternatives, actual)) {
            closed = true;
            return ReadResult::NotMine;
        }
        ChildList<G>& list = e.*member;
        Adopt(list, e);
        G& group = list.Add(std::make_shared<G>());
        return OfferToAlternatives(alternatives, actual, [&](const auto& alt) { return alt.ReadInto(group, session); });
    }
    void Write(const E& e, XmlWriter& writer) const {
        for (const auto& group : e.*member) {
            std::apply([&](const auto&... alt) { (alt.Write(*group, writer), ...); }, Binding<G>::kAlternatives);
        }
    }
    bool Knows(std::u16string_view actual) const { return IsAlternativeName(Binding<G>::kAlternatives, actual); }
    template <class V>
    void Each(const E& e, V&& visit) const {
        for (const auto& group : e.*member) {
            std::apply([&](const auto&... alt) { (alt.Each(*group, visit), ...); }, Binding<G>::kAlternatives);
        }
    }
};

template <class E, class G>
constexpr ChoiceListField<E, G> ChoiceList(ChildList<G> E::*member) {
    return {member};
}

// One alternative of a std::variant choice: the variant holds a T (an element) or a
// std::shared_ptr to one.
template <class T>
struct VariantAlternative {
    std::u16string_view name;

    template <class V>
    ReadResult ReadInto(V& choice, ReadSession& session) const {
        T& target = choice.template emplace<T>();
        if constexpr (IsSharedPtr<T>::value) {
            target = std::make_shared<typename T::element_type>();
            return ReadElement(*target, name, session);
        } else {
            return ReadElement(target, name, session);
        }
    }
    template <class V>
    void Write(const V& choice, XmlWriter& writer) const {
        Each(choice, [&](const auto& child, std::u16string_view n) { WriteElement(child, n, writer); });
    }
    template <class V, class F>
    void Each(const V& choice, F&& visit) const {
        const T* held = std::get_if<T>(&choice);
        if (held == nullptr) return;
        if constexpr (IsSharedPtr<T>::value) {
            if (*held) visit(**held, name);
        } else {
            visit(*held, name);
        }
    }
};

template <class T>
constexpr VariantAlternative<T> Alternative(std::u16string_view name) {
    return {name};
}

// A single choice held in place as a std::variant whose first alternative (std::monostate) means
// none. It takes one element and refuses later ones. While it is empty it is open, which makes
// the element skip names nothing claims (see ElementReader::Child).
template <class E, class V, class... Alts>
struct VariantChoiceField {
    static constexpr Phase kPhase = Phase::Child;
    std::u16string_view group;
    V E::*member;
    std::tuple<Alts...> alternatives;

    bool IsOpen(const E& e) const { return (e.*member).index() == 0; }
    ReadResult ReadChild(E& e, std::u16string_view actual, ReadSession& session, bool&) const {
        if (!IsOpen(e)) return ReadResult::NotMine;
        return OfferToAlternatives(alternatives, actual,
                                   [&](const auto& alt) { return alt.ReadInto(e.*member, session); });
    }
    void Write(const E& e, XmlWriter& writer) const {
        std::apply([&](const auto&... alt) { (alt.Write(e.*member, writer), ...); }, alternatives);
    }
    bool Knows(std::u16string_view actual) const { return IsAlternativeName(alternatives, actual); }
    template <class F>
    void Each(const E& e, F&& visit) const {
        std::apply([&](const auto&... alt) { (alt.Each(e.*member, visit), ...); }, alternatives);
    }
};

template <class E, class V, class... Alts>
constexpr VariantChoiceField<E, V, Alts...> Choice(std::u16string_view group, V E::*member, Alts... alternatives) {
    return {group, member, std::tuple<Alts...>{alternatives...}};
}

// A list of std::variant choices, with the sequence rule of lists.
template <class E, class V, class... Alts>
struct VariantChoiceListField {
    static constexpr Phase kPhase = Phase::Child;
    std::u16string_view group;
    std::vector<V> E::*member;
    std::tuple<Alts...> alternatives;

    ReadResult ReadChild(E& e, std::u16string_view actual, ReadSession& session, bool& closed) const {
        if (closed) return ReadResult::NotMine;
        if (!IsAlternativeName(alternatives, actual)) {
            closed = true;
            return ReadResult::NotMine;
        }
        std::vector<V>& list = e.*member;
        list.emplace_back();
        // Nothing appends to this list while the new element reads its own content, so the
        // reference stays valid.
        V& choice = list.back();
        return OfferToAlternatives(alternatives, actual,
                                   [&](const auto& alt) { return alt.ReadInto(choice, session); });
    }
    void Write(const E& e, XmlWriter& writer) const {
        for (const V& choice : e.*member) {
            std::apply([&](const auto&... alt) { (alt.Write(choice, writer), ...); }, alternatives);
        }
    }
    bool Knows(std::u16string_view actual) const { return IsAlternativeName(alternatives, actual); }
    template <class F>
    void Each(const E& e, F&& visit) const {
        for (const V& choice : e.*member) {
            std::apply([&](const auto&... alt) { (alt.Each(choice, visit), ...); }, alternatives);
        }
    }
};

template <class E, class V, class... Alts>
constexpr VariantChoiceListField<E, V, Alts...> ChoiceList(std::u16string_view group, std::vector<V> E::*member,
                                                             Alts... alternatives) {
    return {group, member, std::tuple<Alts...>{alternatives...}};
}

// --- mixed content ----------------------------------------------------------------------------

// Text interleaved with elements, as in HTML-like markup: one list in document order whose items
// are pieces of text (the variant's std::u16string alternative) and elements of the named
// alternatives (VariantAlternative). Every text node counts, blank ones included, and adjacent
// text is joined into one piece. An element holding such a field reads as mixed content (see
// binding.h): an element no alternative claims is transparent there.
template <class E, class V, class... Alts>
struct MixedContentField {
    static constexpr Phase kPhase = Phase::Child;
    static constexpr bool kMixed = true;
    std::vector<V> E::*member;
    std::tuple<Alts...> alternatives;

    ReadResult ReadChild(E& e, std::u16string_view actual, ReadSession& session, bool&) const {
        if (!IsAlternativeName(alternatives, actual)) return ReadResult::NotMine;
        std::vector<V>& items = e.*member;
        items.emplace_back();
        // The new element reads its own content into its own list, so the reference stays valid.
        V& item = items.back();
        return OfferToAlternatives(alternatives, actual, [&](const auto& alt) { return alt.ReadInto(item, session); });
    }
    void AddText(E& e, std::u16string_view text) const {
        if (text.empty()) return;
        std::vector<V>& items = e.*member;
        if (!items.empty()) {
            if (auto* last = std::get_if<std::u16string>(&items.back())) {
                last->append(text);
                return;
            }
        }
        items.emplace_back(std::in_place_type<std::u16string>, text);
    }
    void Write(const E& e, XmlWriter& writer) const {
        for (const V& item : e.*member) {
            if (const auto* text = std::get_if<std::u16string>(&item)) {
                writer.WriteString(*text);
            } else {
                std::apply([&](const auto&... alt) { (alt.Write(item, writer), ...); }, alternatives);
            }
        }
    }
    bool Knows(std::u16string_view actual) const { return IsAlternativeName(alternatives, actual); }
    template <class F>
    void Each(const E& e, F&& visit) const {
        for (const V& item : e.*member) {
            std::apply([&](const auto&... alt) { (alt.Each(item, visit), ...); }, alternatives);
        }
    }
};

template <class E, class V, class... Alts>
constexpr MixedContentField<E, V, Alts...> Mixed(std::vector<V> E::*member, Alts... alternatives) {
    return {member, std::tuple<Alts...>{alternatives...}};
}

// --- text content -----------------------------------------------------------------------------

// Text kept in a string member; the cdata flag in a bool member (for header types, the header's).
template <class E>
struct MemberTextField {
    static constexpr Phase kPhase = Phase::Text;
    std::u16string E::*text;
    bool E::*cdataFlag;

    void Set(E& e, std::u16string value, bool cdata) const {
        e.*text = std::move(value);
        if (cdata) e.*cdataFlag = true;
    }
    std::u16string_view Get(const E& e) const { return e.*text; }
    bool IsCData(const E& e) const { return e.*cdataFlag; }
};

// Text kept behind accessors, for types that derive more from their text.
template <class E>
struct AccessorTextField {
    static constexpr Phase kPhase = Phase::Text;
    std::u16string_view (*get)(const E&);
    void (*set)(E&, std::u16string value, bool cdata);
    bool (*isCData)(const E&);

    void Set(E& e, std::u16string value, bool cdata) const { set(e, std::move(value), cdata); }
    std::u16string_view Get(const E& e) const { return get(e); }
    bool IsCData(const E& e) const { return isCData(e); }
};

template <class E>
constexpr MemberTextField<E> Text(std::u16string E::*text, bool E::*cdataFlag) {
    return {text, cdataFlag};
}
template <class E>
constexpr MemberTextField<E> Text(std::u16string E::*text) {
    return {text, static_cast<bool E::*>(&ChildElement::cdata)};
}
template <class E>
constexpr AccessorTextField<E> Text(std::u16string_view (*get)(const E&), void (*set)(E&, std::u16string, bool),
                                    bool (*isCData)(const E&)) {
    return {get, set, isCData};
}

// Written last: as CDATA when the element's text came as CDATA, else escaped.
template <class Field, class E>
void WriteText(const Field& field, const E& e, XmlWriter& writer) {
    const std::u16string_view text = field.Get(e);
    if (text.empty()) return;
    if (field.IsCData(e)) {
        writer.WriteCData(text);
    } else {
        writer.WriteString(text);
    }
}

}  // namespace qm::xml
