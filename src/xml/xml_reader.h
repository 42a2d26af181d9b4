// The pull reader the binding reads documents through. One implementation per platform stands
// behind CreateStringXmlReader; they all report the same node types for the same document.
#pragma once

#include <memory>
#include <string_view>

namespace qm::xml {

enum class NodeType {
    None,  // before the first Read
    Element,
    EndElement,
    Text,
    Whitespace,  // text made of blanks only (space, tab, line feed, carriage return)
    CDATA,
    XmlDeclaration,
    Comment,
    ProcessingInstruction,
    DocumentType,
    Other,
};

// Deepest element nesting any document may have. Beyond it the reader fails; the binding, whose
// reading recurses once per element (some 600 bytes of stack per level in an optimised build),
// stays within it as well. A macro needs about two levels per expression node (up to 256) plus
// one per nested statement.
inline constexpr int kMaxElementDepth = 768;

class XmlReader {
public:
    virtual ~XmlReader() = default;

    // Moves to the next node: false at the end of the document. A document that is not
    // well-formed, holds a document type declaration, or nests deeper than kMaxElementDepth
    // raises XmlError.
    virtual bool Read() = 0;

    virtual NodeType nodeType() const = 0;
    // Of the current node, or of the current attribute while on one. Valid until the next move.
    virtual std::u16string_view localName() const = 0;
    // The prefix as written ("one" in one:Page), and the namespace the name is in (empty for none).
    // A namespace declaration attribute is in the namespace kXmlnsNamespace.
    virtual std::u16string_view prefix() const = 0;
    virtual std::u16string_view namespaceUri() const = 0;
    virtual std::u16string_view value() const = 0;
    // A self-closing start tag (no EndElement follows).
    virtual bool isEmptyElement() const = 0;

    // Attribute iteration on an element: false when there is none (no more).
    virtual bool MoveToFirstAttribute() = 0;
    virtual bool MoveToNextAttribute() = 0;
    virtual void MoveToElement() = 0;

    // Where the current node starts, counted from 1; 0 when not known.
    virtual int line() const = 0;
    virtual int column() const = 0;
};

inline constexpr std::u16string_view kXmlnsNamespace = u"http://www.w3.org/2000/xmlns/";

struct ReaderOptions {
    // Characters XML 1.0 cannot carry (control characters other than tab, line feed and carriage
    // return, unpaired surrogates, U+FFFE, U+FFFF) are accepted where text can stand: raw, or as
    // character references outside CDATA sections. Values then hand them out as they were. Some
    // producers (OneNote among them) write them into page text; without this they fail the read.
    bool acceptIllegalCharacters = false;
};

// A reader over an in-memory UTF-16 document. The document is declared when it starts with
// "<?xml" and a blank (after an optional byte order mark): the reader then reports an
// XmlDeclaration node first. Document type declarations are refused, external resources are never
// loaded and entities are never expanded.
std::unique_ptr<XmlReader> CreateStringXmlReader(std::u16string_view text, const ReaderOptions& options = {});

}  // namespace qm::xml
