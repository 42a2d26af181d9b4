#include "onenote/on_document.h"

#include <functional>

#include "core/format.h"
#include "core/text.h"
#include "onenote/messages.h"
#include "xml/xml_chars.h"
#include "xml/xml_error.h"

namespace qm::ON {

namespace {

// Makes the root element for a root name, or nothing when the document may not have it.
using RootMaker = std::function<xml::ChildElement*(std::u16string_view name)>;

bool HasStartTag(std::u16string_view text) {
    for (std::size_t at = text.find(u'<'); at != std::u16string_view::npos; at = text.find(u'<', at + 1)) {
        const char16_t next = at + 1 < text.size() ? text[at + 1] : u'?';
        if (next != u'?' && next != u'!' && next != u'/') return true;
    }
    return false;
}

void ReadRoot(std::u16string_view text, std::u16string_view documentName, std::u16string_view expected,
              const RootMaker& make) {
    try {
        const auto reader = xml::CreateStringXmlReader(text, xml::ReaderOptions{.acceptIllegalCharacters = true});
        const xml::ReadContext context;
        xml::ReadSession session(*reader, context);
        bool found = false;
        try {
            while (!found && reader->Read()) found = reader->nodeType() == xml::NodeType::Element;
        } catch (const xml::XmlError&) {
            // A document without any element makes libxml2 speak of "extra content", which misleads.
            if (HasStartTag(text)) throw;
        }
        if (!found) {
            throw DocumentError(DocumentError::Kind::NotWellFormed,
                                FormatMessage(onenote::msg::kDocumentEmpty, {documentName}));
        }
        const std::u16string name(reader->localName());
        if (reader->namespaceUri() != kNamespace) {
            throw DocumentError(DocumentError::Kind::Invalid,
                                FormatMessage(onenote::msg::kDocumentWrongNamespace,
                                              {documentName, name, reader->namespaceUri()}));
        }
        xml::ChildElement* root = make(name);
        if (root == nullptr) {
            throw DocumentError(DocumentError::Kind::Invalid,
                                FormatMessage(onenote::msg::kDocumentUnexpectedRoot, {documentName, expected, name}));
        }
        root->Read(session);
        // What follows the root must be well-formed too.
        while (reader->Read()) {
        }
    } catch (const xml::XmlError& e) {
        throw DocumentError(DocumentError::Kind::NotWellFormed,
                            FormatMessage(onenote::msg::kDocumentNotWellFormed, {documentName, e.FullText()}));
    }
}

template <class E>
xml::ChildElement* MakeIf(std::u16string_view name, std::shared_ptr<E>& out) {
    if (name != E::kName) return nullptr;
    out = std::make_shared<E>();
    return out.get();
}

}  // namespace

DocumentError::DocumentError(Kind kind, std::u16string message)
    : kind_(kind), message_(std::move(message)), utf8_(ToUtf8(message_)) {}

std::shared_ptr<Page> ReadPage(std::u16string_view xml, std::u16string_view documentName) {
    std::shared_ptr<Page> page;
    ReadRoot(xml, documentName, onenote::msg::kExpectedPage, [&](std::u16string_view name) { return MakeIf(name, page); });
    return page;
}

std::shared_ptr<Notebooks> ReadNotebooks(std::u16string_view xml, std::u16string_view documentName) {
    std::shared_ptr<Notebooks> root;
    ReadRoot(xml, documentName, onenote::msg::kExpectedNotebooks,
             [&](std::u16string_view name) { return MakeIf(name, root); });
    return root;
}

HierarchyDocument ReadHierarchy(std::u16string_view xml, std::u16string_view documentName) {
    HierarchyDocument document;
    ReadRoot(xml, documentName, onenote::msg::kExpectedHierarchy, [&](std::u16string_view name) -> xml::ChildElement* {
        xml::ChildElement* made = nullptr;
        std::visit(
            [&](auto&) {
                auto tryKind = [&](auto kind) {
                    using E = typename decltype(kind)::element_type;
                    if (made == nullptr && name == E::kName) {
                        auto element = std::make_shared<E>();
                        made = element.get();
                        document = element;
                    }
                };
                tryKind(std::shared_ptr<Notebooks>());
                tryKind(std::shared_ptr<Notebook>());
                tryKind(std::shared_ptr<SectionGroup>());
                tryKind(std::shared_ptr<Section>());
                tryKind(std::shared_ptr<Page>());
            },
            document);
        return made;
    });
    return document;
}

xml::ChildElement& RootOf(const HierarchyDocument& document) {
    return std::visit([](const auto& root) -> xml::ChildElement& { return *root; }, document);
}

std::u16string WriteDocument(const xml::ChildElement& root, const WriteOptions& options) {
    std::u16string out;
    xml::StringSink sink(out);
    xml::XmlWriter writer(sink, xml::WriterOptions{options.indent, options.newline, xml::IllegalCharacters::Reference});
    if (options.declaration) writer.WriteDeclaration(u"");
    std::u16string unused;
    xml::SerializeElement(root, unused, &writer, false, false, false, options.indent);
    writer.EndDocument();
    return out;
}

std::string WriteDocumentFile(const xml::ChildElement& root) {
    std::string bytes;
    xml::AppendUtf8(bytes, WriteDocument(root));
    bytes += '\n';
    return bytes;
}

}  // namespace qm::ON
