// One pass over a whole UTF-8 document that builds nothing: whether it is well-formed, and its
// elements, attributes and character data as they pass. For a caller that needs a few values of a
// large document and keeps the document as text. Each platform's reader file implements it
// (xml_reader_*.cpp); they refuse what the pull reader (xml_reader.h) refuses.
#pragma once

#include <span>
#include <string_view>

namespace qm::xml {

struct ScanAttribute {
    std::string_view localName;
    std::string_view namespaceUri;  // empty for none
    std::string_view value;         // with references replaced
};

// Everything handed over is valid only during the call.
class ScanHandler {
public:
    virtual void StartElement(std::string_view localName, std::string_view namespaceUri,
                              std::span<const ScanAttribute> attributes) = 0;
    virtual void EndElement() = 0;
    // Character data: text with references replaced, blanks, CDATA sections. One run of text may
    // come in several pieces.
    virtual void Characters(std::string_view text, bool cdata) = 0;
    // A comment or a processing instruction (in the document, or before or after the root).
    virtual void CommentOrInstruction() = 0;

protected:
    ~ScanHandler() = default;
};

// Reads `utf8` (no byte order mark; an encoding label in its declaration is ignored) from start to
// end. Throws XmlError when it is not well-formed, holds a document type declaration or nests
// deeper than kMaxElementDepth; an exception the handler throws ends the scan and passes through.
void ScanUtf8Document(std::string_view utf8, ScanHandler& handler);

}  // namespace qm::xml
