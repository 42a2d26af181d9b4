// The binding engine: one reading loop and one writing routine for every element type, driven by
// the type's field descriptions (fields.h).
//
// Reading an element (the reader on its start tag, or before a whole document):
//  - its attributes are offered to the attribute fields by name; unclaimed ones are ignored;
//  - each child element's name is offered to the child fields in schema order, the first that
//    claims it reads it. There is no depth tracking: an element nobody claims is not skipped, its
//    own children are offered to the current element as if they were its children, and its end tag
//    ends the current element;
//  - while a single choice of the element is still empty, a name nothing claims makes the element
//    look further: the reader moves on to the next start tag (its name is offered again) or to an
//    end tag (which ends the element). At most nine names are offered this way;
//  - an element with the element's own name is read into the element itself once an XML
//    declaration has been seen: that is how a root object takes a whole document;
//  - text becomes the element's text content. Blank-only text nodes are indentation, not content,
//    unless they touch other text (a text or CDATA node directly before or after them) or the
//    element has no child elements at all.
// When an element's read ends, the context's element-end callback is told.
//
// An element with a mixed content field (fields.h) reads differently: every text node, blank or
// not, goes to that field in document order, and a child element that no field claims is
// transparent: its attributes are dropped, its content is read as the element's own, and its end
// tag does not end the element.
//
// A schema that must not lose what it does not model (documents another program owns and takes
// back) sets `kKeepUnknown` in its bindings and gives its element types an `Unknowns unknown`
// member (raw_content.h). Reading such an element differs in three ways: attributes no field
// claims are kept (namespace declarations aside, which the writer makes again where needed), and
// prefixed attributes are never matched to fields; a child element that is not in the element's
// own namespace, or that no field claims, is kept whole, in its place, instead of having its
// children offered to the element (so a list never closes because of an element it does not
// know); text in an element without a text field is kept likewise.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "xml/element.h"
#include "xml/fields.h"
#include "xml/raw_content.h"

namespace qm::xml {

// At most this many names are offered while an element looks past unclaimed ones.
inline constexpr int kMaxChoiceOffers = 9;

// What the reading loop needs from the element being read; implemented for every bound type by
// ElementReader<E>.
class ElementHandler {
public:
    virtual std::u16string_view Name() const = 0;
    virtual void Begin(ReadSession& session) = 0;
    // The reader is on the attribute.
    virtual void Attribute(std::u16string_view name, std::u16string_view value, XmlReader& reader) = 0;
    virtual ReadResult Child(std::u16string_view name, ReadSession& session) = 0;
    virtual bool WantsText() const = 0;
    virtual void Text(std::u16string text, bool cdata) = 0;
    // Text in an element that has no text field.
    virtual void StrayText(std::u16string_view text, bool cdata) = 0;
    virtual ReadResult ReadAgain(ReadSession& session) = 0;
    virtual void Finish(ReadSession& session) = 0;
    // Whether the element holds mixed content, and a text node of it.
    virtual bool Mixed() const = 0;
    virtual void MixedText(std::u16string_view text) = 0;

protected:
    ~ElementHandler() = default;
};

// The reading loop, the same for every element type.
ReadResult RunReadLoop(ElementHandler& handler, ReadSession& session);
// Moves the reader to the next start tag and returns its name in `name`; false when an end tag or
// the end of the document comes first.
bool AdvanceToElement(ReadSession& session, std::u16string& name);

template <class E>
std::u16string_view PrefixOf() {
    if constexpr (requires { Binding<E>::kPrefix; }) {
        return Binding<E>::kPrefix;
    } else {
        return {};
    }
}
template <class E>
std::u16string_view NamespaceOf() {
    if constexpr (requires { Binding<E>::kNamespace; }) {
        return Binding<E>::kNamespace;
    } else {
        return {};
    }
}

template <class E>
concept KeepsUnknown = requires(E& e) {
    { Binding<E>::kKeepUnknown } -> std::convertible_to<bool>;
    { e.unknown } -> std::convertible_to<Unknowns&>;
} && Binding<E>::kKeepUnknown;

// A field that holds mixed content.
template <class F>
concept MixedField = requires { requires F::kMixed; };

template <class E>
class ElementReader final : public ElementHandler {
    using Fields = std::remove_cvref_t<decltype(Binding<E>::kFields)>;
    static constexpr std::size_t kCount = std::tuple_size_v<Fields>;

public:
    ElementReader(E& element, std::u16string_view name) : element_(element), name_(name) {}

    std::u16string_view Name() const override { return name_; }

    void Begin(ReadSession& session) override {
        if constexpr (std::derived_from<E, ChildElement>) {
            // Through the header: a schema may well have an attribute or child named "position".
            ChildElement& header = element_;
            header.source = session.context().source;
            header.position = session.context().position;
            header.present = true;
        }
        if constexpr (requires { Binding<E>::Begin(element_, session); }) Binding<E>::Begin(element_, session);
    }

    void Attribute(std::u16string_view name, std::u16string_view value, XmlReader& reader) override {
        if constexpr (KeepsUnknown<E>) {
            const std::u16string_view prefix = reader.prefix();
            if (prefix.empty() && ClaimAttribute(name, value)) return;
            const std::u16string_view ns = reader.namespaceUri();
            if (ns == kXmlnsNamespace) return;
            element_.unknown.AddAttribute(RawAttribute{std::u16string(prefix), std::u16string(name),
                                                       std::u16string(ns), std::u16string(value)});
        } else {
            ClaimAttribute(name, value);
        }
    }

    ReadResult Child(std::u16string_view name, ReadSession& session) override {
        if constexpr (KeepsUnknown<E>) {
            if (session.reader().namespaceUri() == NamespaceOf<E>() && KnowsChild(name)) {
                const ReadResult result = Offer(name, session, std::make_index_sequence<kCount>{});
                if (result != ReadResult::NotMine) {
                    lastChild_ = session.lastElement();
                    return result;
                }
            }
            element_.unknown.AddChild(lastChild_, RawNode::Capture(session));
            return ReadResult::Handled;
        }
        std::u16string advanced;
        for (int offer = 1;; ++offer) {
            const ReadResult result = Offer(name, session, std::make_index_sequence<kCount>{});
            if (result != ReadResult::NotMine) return result;
            if (!HasOpenChoice()) return ReadResult::NotMine;
            if (offer == kMaxChoiceOffers) return ReadResult::Handled;
            if (!AdvanceToElement(session, advanced)) return ReadResult::Finished;
            name = advanced;
        }
    }

    bool WantsText() const override {
        return std::apply([](const auto&... field) { return ((FieldPhase(field) == Phase::Text) || ...); },
                          Binding<E>::kFields);
    }

    void Text(std::u16string text, bool cdata) override {
        if constexpr (std::derived_from<E, ChildElement>) {
            if (cdata) element_.cdata = true;
        }
        std::apply(
            [&](const auto&... field) {
                (SetTextOf(field, text, cdata), ...);
            },
            Binding<E>::kFields);
    }

    void StrayText(std::u16string_view text, bool cdata) override {
        if constexpr (KeepsUnknown<E>) element_.unknown.AddChild(lastChild_, RawNode::MakeText(std::u16string(text), cdata));
    }

    ReadResult ReadAgain(ReadSession& session) override { return ReadElement(element_, name_, session); }

    bool Mixed() const override {
        return std::apply([](const auto&... field) { return (IsMixedField(field) || ...); }, Binding<E>::kFields);
    }

    void MixedText(std::u16string_view text) override {
        std::apply([&](const auto&... field) { (AddMixedText(field, text), ...); }, Binding<E>::kFields);
    }

    void Finish(ReadSession& session) override {
        session.SetLastElement(&element_);
        if constexpr (requires { Binding<E>::End(element_, session); }) Binding<E>::End(element_, session);
        if (const auto& callback = session.context().onElementEnd) {
            const ChildElement* header = nullptr;
            if constexpr (std::derived_from<E, ChildElement>) header = &element_;
            callback(name_, T_Element(element_, header));
        }
    }

private:
    template <class F>
    static constexpr Phase FieldPhase(const F&) {
        return F::kPhase;
    }

    template <class F>
    static constexpr bool IsMixedField(const F&) {
        return MixedField<F>;
    }

    template <class F>
    void AddMixedText(const F& field, std::u16string_view text) {
        if constexpr (MixedField<F>) field.AddText(element_, text);
    }

    bool ClaimAttribute(std::u16string_view name, std::u16string_view value) {
        return std::apply([&](const auto&... field) { return (ReadAttributeInto(field, name, value) || ...); },
                          Binding<E>::kFields);
    }

    bool KnowsChild(std::u16string_view name) const {
        return std::apply([&](const auto&... field) { return (FieldKnows(field, name) || ...); },
                          Binding<E>::kFields);
    }

    template <class F>
    static bool FieldKnows(const F& field, std::u16string_view name) {
        if constexpr (F::kPhase == Phase::Child) {
            return field.Knows(name);
        } else {
            return false;
        }
    }

    template <class F>
    bool ReadAttributeInto(const F& field, std::u16string_view name, std::u16string_view value) {
        if constexpr (F::kPhase == Phase::Attribute) {
            return field.ReadAttribute(element_, name, value);
        } else {
            return false;
        }
    }

    template <std::size_t... I>
    ReadResult Offer([[maybe_unused]] std::u16string_view name, [[maybe_unused]] ReadSession& session,
                     std::index_sequence<I...>) {
        ReadResult result = ReadResult::NotMine;
        (void)(((result = OfferTo<I>(name, session)) != ReadResult::NotMine) || ...);
        return result;
    }

    template <std::size_t I>
    ReadResult OfferTo(std::u16string_view name, ReadSession& session) {
        const auto& field = std::get<I>(Binding<E>::kFields);
        if constexpr (std::remove_cvref_t<decltype(field)>::kPhase == Phase::Child) {
            return field.ReadChild(element_, name, session, closed_[I]);
        } else {
            return ReadResult::NotMine;
        }
    }

    bool HasOpenChoice() const {
        return std::apply(
            [&](const auto&... field) {
                return (IsOpenChoice(field) || ...);
            },
            Binding<E>::kFields);
    }

    template <class F>
    bool IsOpenChoice(const F& field) const {
        if constexpr (requires { field.IsOpen(element_); }) {
            return field.IsOpen(element_);
        } else {
            return false;
        }
    }

    template <class F>
    void SetTextOf(const F& field, std::u16string& text, bool cdata) {
        if constexpr (F::kPhase == Phase::Text) field.Set(element_, std::move(text), cdata);
    }

    E& element_;
    std::u16string_view name_;
    std::array<bool, kCount + 1> closed_{};  // per list field: the sequence rule has closed it
    const void* lastChild_ = nullptr;        // the modelled child read last (kKeepUnknown)
};

template <class E>
ReadResult ReadElement(E& element, std::u16string_view name, ReadSession& session) {
    ElementReader<E> handler(element, name);
    return RunReadLoop(handler, session);
}

template <class F, class E>
void WriteField(const F& field, const E& element, XmlWriter& writer, Phase phase) {
    if (F::kPhase != phase) return;
    if constexpr (F::kPhase == Phase::Text) {
        WriteText(field, element, writer);
    } else {
        field.Write(element, writer);
    }
}

template <class E>
void WritePhase(const E& element, XmlWriter& writer, Phase phase) {
    std::apply([&](const auto&... field) { (WriteField(field, element, writer, phase), ...); }, Binding<E>::kFields);
}

// The attributes alone, kept ones included.
template <class E>
void WriteAttributes(const E& element, XmlWriter& writer) {
    WritePhase(element, writer, Phase::Attribute);
    if constexpr (KeepsUnknown<E>) element.unknown.WriteAttributes(writer);
}

// Visits the element's children in field order, as (child, name).
template <class E, class V>
void EachChild(const E& element, V&& visit) {
    std::apply(
        [&](const auto&... field) {
            (
                [&](const auto& f) {
                    if constexpr (std::remove_cvref_t<decltype(f)>::kPhase == Phase::Child) f.Each(element, visit);
                }(field),
                ...);
        },
        Binding<E>::kFields);
}

// Attributes (unless skipped), then children, then text.
template <class E>
void WriteContent(const E& element, XmlWriter& writer, bool skipAttributes) {
    if (!skipAttributes) WriteAttributes(element, writer);
    if constexpr (KeepsUnknown<E>) {
        if (element.unknown.hasChildren()) {
            PlacedWriter placed(element.unknown, writer);
            EachChild(element, [&](const auto& child, std::u16string_view name) {
                WriteElement(child, name, writer);
                placed.After(&child);
            });
            placed.Finish();
        } else {
            WritePhase(element, writer, Phase::Child);
        }
    } else {
        WritePhase(element, writer, Phase::Child);
    }
    WritePhase(element, writer, Phase::Text);
}

template <class E>
void WriteElement(const E& element, std::u16string_view name, XmlWriter& writer) {
    writer.StartElement(PrefixOf<E>(), name, NamespaceOf<E>());
    WriteContent(element, writer, false);
    writer.EndElement();
}

// The base of element types defined in xml-aware layers: the header, and the element operations
// implemented by the engine from Binding<E>. Elements live in shared pointers.
//
// The operations are defined out of line, so that a schema's header can declare its element
// types with `extern template class Child<E>;` and keep the engine's instantiation (which needs
// the Binding specialisations) in the one file that defines them.
template <class E>
class Child : public ChildElement, public std::enable_shared_from_this<E> {
public:
    static std::u16string_view Name();

    void WriteContent(XmlWriter& writer, bool skipAttributes) const override;
    void WriteStartElement(XmlWriter& writer) const override;
    ReadResult Read(ReadSession& session) override;
    std::u16string_view ElementName() const override;

protected:
    Child() = default;
};

template <class E>
std::u16string_view Child<E>::Name() {
    return Binding<E>::kName;
}
template <class E>
void Child<E>::WriteContent(XmlWriter& writer, bool skipAttributes) const {
    xml::WriteContent(static_cast<const E&>(*this), writer, skipAttributes);
}
template <class E>
void Child<E>::WriteStartElement(XmlWriter& writer) const {
    writer.StartElement(PrefixOf<E>(), Binding<E>::kName, NamespaceOf<E>());
}
template <class E>
ReadResult Child<E>::Read(ReadSession& session) {
    return ReadElement(static_cast<E&>(*this), Binding<E>::kName, session);
}
template <class E>
std::u16string_view Child<E>::ElementName() const {
    return Binding<E>::kName;
}

// --- documents --------------------------------------------------------------------------------

// Reads a whole document into `root` (the reader starts before the document, so the root element
// is recognised only after an XML declaration). Raises XmlError; the partly filled root is then
// the caller's to discard.
void ParseElement(std::u16string_view text, ChildElement& root, const ReadContext& context = {});

template <class E>
void ParseElement(std::u16string_view text, std::u16string_view rootName, E& root, const ReadContext& context = {}) {
    const auto reader = CreateStringXmlReader(text);
    ReadSession session(*reader, context);
    ReadElement(root, rootName, session);
}

// Writes an element. With no writer given, one is made for the call (declaration and
// indentation as asked) and `out` receives the whole text; with a writer, the element goes to it
// and `out` is untouched. contentOnly leaves out the element's own tags.
void SerializeElement(const ChildElement& element, std::u16string& out, XmlWriter* writer, bool contentOnly,
                      bool skipAttributes, bool withDeclaration, bool indent);

template <class E>
void SerializeElement(const E& element, std::u16string_view name, std::u16string& out, XmlWriter* writer,
                      bool contentOnly, bool skipAttributes, bool withDeclaration, bool indent) {
    std::u16string text;
    StringSink sink(text);
    XmlWriter own(sink, indent);
    XmlWriter& target = writer != nullptr ? *writer : own;
    if (writer == nullptr && withDeclaration) own.WriteDeclaration();
    if (!contentOnly) target.StartElement(PrefixOf<E>(), name, NamespaceOf<E>());
    WriteContent(element, target, skipAttributes);
    if (!contentOnly) target.EndElement();
    if (writer == nullptr) {
        own.EndDocument();
        out = std::move(text);
    }
}

}  // namespace qm::xml
