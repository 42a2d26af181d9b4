// Content kept as read: what a binding that must not lose anything holds beyond the fields it
// models. An element type whose Binding says `kKeepUnknown` carries an `Unknowns` member named
// `unknown`; reading puts there every attribute no field claims and every child element no field
// claims (with its whole subtree), and writing puts them back where they were: attributes after
// the modelled ones, elements after the modelled sibling they followed.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "xml/element.h"
#include "xml/xml_writer.h"

namespace qm::xml {

struct RawAttribute {
    std::u16string prefix;        // empty when unprefixed; "xmlns" on a prefix declaration
    std::u16string localName;
    std::u16string namespaceUri;  // kXmlnsNamespace on a namespace declaration
    std::u16string value;

    bool IsNamespaceDeclaration() const;
    std::u16string QualifiedName() const;
};

// An element with everything inside it, or a piece of text, as read.
struct RawNode {
    enum class Kind : std::uint8_t { Element, Text, CData };

    Kind kind = Kind::Element;
    std::u16string prefix;
    std::u16string localName;
    std::u16string namespaceUri;
    std::u16string text;                   // of Text and CData nodes
    std::vector<RawAttribute> attributes;  // namespace declarations included
    std::vector<RawNode> children;

    // Reads the element the reader is on, with its whole subtree. Blank text between child
    // elements is indentation and is not kept (the rule of binding.h); comments and processing
    // instructions are not kept.
    static RawNode Capture(ReadSession& session);
    static RawNode MakeText(std::u16string text, bool cdata);

    // Writes the node back; namespaces are declared where the written document needs them.
    void Write(XmlWriter& writer) const;
};

// The unmodelled attributes and child content of one element. Empty costs one pointer.
class Unknowns {
public:
    struct Placed {
        const void* after;  // the modelled sibling it followed (the object's address), or null
        RawNode node;
    };

    bool empty() const noexcept { return !content_; }
    bool hasChildren() const noexcept { return content_ && !content_->children.empty(); }
    const std::vector<RawAttribute>& attributes() const;
    const std::vector<Placed>& children() const;

    void AddAttribute(RawAttribute attribute);
    void AddChild(const void* after, RawNode node);
    void Clear() { content_.reset(); }

    void WriteAttributes(XmlWriter& writer) const;

private:
    struct Content {
        std::vector<RawAttribute> attributes;
        std::vector<Placed> children;
    };
    std::unique_ptr<Content> content_;
};

// Writes an element's unknown children among its modelled ones: those that came first at once,
// then after each modelled child those that followed it; Finish writes those whose modelled
// sibling is no longer there, so nothing is lost when the tree was changed.
class PlacedWriter {
public:
    PlacedWriter(const Unknowns& unknowns, XmlWriter& writer);
    void After(const void* child);
    void Finish();

private:
    const std::vector<Unknowns::Placed>& placed_;
    XmlWriter& writer_;
    std::vector<bool> written_;
};

}  // namespace qm::xml
