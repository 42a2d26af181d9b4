#include "xml/raw_content.h"

#include <algorithm>

#include "xml/xml_reader.h"

namespace qm::xml {

namespace {

bool IsBlank(const RawNode& node) {
    return node.kind == RawNode::Kind::Text &&
           std::all_of(node.text.begin(), node.text.end(),
                       [](char16_t c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r'; });
}

bool IsText(const RawNode* node) { return node != nullptr && node->kind != RawNode::Kind::Element && !IsBlank(*node); }

// Blank text is indentation when the element has child elements and the blank touches no text.
void DropIndentation(std::vector<RawNode>& children) {
    const bool hasElements = std::any_of(children.begin(), children.end(),
                                         [](const RawNode& n) { return n.kind == RawNode::Kind::Element; });
    if (!hasElements) return;
    std::vector<RawNode> kept;
    kept.reserve(children.size());
    for (std::size_t i = 0; i < children.size(); ++i) {
        if (IsBlank(children[i])) {
            const RawNode* before = i > 0 ? &children[i - 1] : nullptr;
            const RawNode* after = i + 1 < children.size() ? &children[i + 1] : nullptr;
            if (!IsText(before) && !IsText(after)) continue;
        }
        kept.push_back(std::move(children[i]));
    }
    children = std::move(kept);
}

const std::vector<RawAttribute> kNoAttributes;
const std::vector<Unknowns::Placed> kNoChildren;

}  // namespace

bool RawAttribute::IsNamespaceDeclaration() const { return namespaceUri == kXmlnsNamespace; }

std::u16string RawAttribute::QualifiedName() const {
    if (prefix.empty()) return localName;
    std::u16string name = prefix;
    name += u':';
    name += localName;
    return name;
}

RawNode RawNode::MakeText(std::u16string text, bool cdata) {
    RawNode node;
    node.kind = cdata ? Kind::CData : Kind::Text;
    node.text = std::move(text);
    return node;
}

RawNode RawNode::Capture(ReadSession& session) {
    session.Enter();
    XmlReader& reader = session.reader();
    RawNode node;
    node.prefix.assign(reader.prefix());
    node.localName.assign(reader.localName());
    node.namespaceUri.assign(reader.namespaceUri());
    if (reader.MoveToFirstAttribute()) {
        do {
            node.attributes.push_back(RawAttribute{std::u16string(reader.prefix()), std::u16string(reader.localName()),
                                                   std::u16string(reader.namespaceUri()),
                                                   std::u16string(reader.value())});
        } while (reader.MoveToNextAttribute());
        reader.MoveToElement();
    }
    if (!reader.isEmptyElement()) {
        bool ended = false;
        while (!ended && reader.Read()) {
            switch (reader.nodeType()) {
                case NodeType::Element: node.children.push_back(Capture(session)); break;
                case NodeType::Text:
                case NodeType::Whitespace: node.children.push_back(MakeText(std::u16string(reader.value()), false)); break;
                case NodeType::CDATA: node.children.push_back(MakeText(std::u16string(reader.value()), true)); break;
                case NodeType::EndElement: ended = true; break;
                default: break;
            }
        }
        DropIndentation(node.children);
    }
    session.Leave();
    return node;
}

void RawNode::Write(XmlWriter& writer) const {
    switch (kind) {
        case Kind::Text: writer.WriteString(text); return;
        case Kind::CData: writer.WriteCData(text); return;
        case Kind::Element: break;
    }
    writer.StartElement(prefix, localName, u"");
    for (const RawAttribute& a : attributes) {
        if (a.IsNamespaceDeclaration()) writer.DeclareNamespace(a.prefix.empty() ? u"" : a.localName, a.value);
    }
    writer.DeclareNamespace(prefix, namespaceUri);
    for (const RawAttribute& a : attributes) {
        if (!a.IsNamespaceDeclaration() && !a.prefix.empty() && a.prefix != u"xml") {
            writer.DeclareNamespace(a.prefix, a.namespaceUri);
        }
    }
    for (const RawAttribute& a : attributes) {
        if (!a.IsNamespaceDeclaration()) writer.WriteAttribute(a.QualifiedName(), a.value);
    }
    for (const RawNode& child : children) child.Write(writer);
    writer.EndElement();
}

const std::vector<RawAttribute>& Unknowns::attributes() const {
    return content_ ? content_->attributes : kNoAttributes;
}

const std::vector<Unknowns::Placed>& Unknowns::children() const {
    return content_ ? content_->children : kNoChildren;
}

void Unknowns::AddAttribute(RawAttribute attribute) {
    if (!content_) content_ = std::make_unique<Content>();
    content_->attributes.push_back(std::move(attribute));
}

void Unknowns::AddChild(const void* after, RawNode node) {
    if (!content_) content_ = std::make_unique<Content>();
    content_->children.push_back(Placed{after, std::move(node)});
}

void Unknowns::WriteAttributes(XmlWriter& writer) const {
    if (!content_) return;
    for (const RawAttribute& a : content_->attributes) {
        if (!a.prefix.empty() && a.prefix != u"xml") writer.DeclareNamespace(a.prefix, a.namespaceUri);
    }
    for (const RawAttribute& a : content_->attributes) writer.WriteAttribute(a.QualifiedName(), a.value);
}

PlacedWriter::PlacedWriter(const Unknowns& unknowns, XmlWriter& writer)
    : placed_(unknowns.children()), writer_(writer), written_(placed_.size(), false) {
    After(nullptr);
}

void PlacedWriter::After(const void* child) {
    for (std::size_t i = 0; i < placed_.size(); ++i) {
        if (!written_[i] && placed_[i].after == child) {
            placed_[i].node.Write(writer_);
            written_[i] = true;
        }
    }
}

void PlacedWriter::Finish() {
    for (std::size_t i = 0; i < placed_.size(); ++i) {
        if (!written_[i]) placed_[i].node.Write(writer_);
    }
}

}  // namespace qm::xml
