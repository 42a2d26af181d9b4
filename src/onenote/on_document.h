// Whole OneNote documents: a page (GetPageContent, UpdatePageContent) or a piece of the hierarchy
// (GetHierarchy, UpdateHierarchy), read from and written to XML text.
//
// Reading accepts the documents OneNote writes, control characters and unpaired surrogates in
// text included (xml_chars.h); the root element must be in the OneNote 2010 namespace. Writing
// gives the form OneNote writes: `<?xml version="1.0"?>`, `xmlns:one` on the root only,
// two-space indentation, characters XML 1.0 cannot carry as character references.
#pragma once

#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

#include "onenote/on_schema.h"

namespace qm::ON {

// A document that cannot be read. The message names the document and says why.
class DocumentError : public std::exception {
public:
    enum class Kind {
        NotWellFormed,  // not XML at all
        Invalid,        // XML, but not the OneNote document expected
    };

    DocumentError(Kind kind, std::u16string message);
    // A document that is XML but not the one expected.
    explicit DocumentError(std::u16string message) : DocumentError(Kind::Invalid, std::move(message)) {}
    Kind kind() const noexcept { return kind_; }
    const std::u16string& message() const noexcept { return message_; }
    const char* what() const noexcept override { return utf8_.c_str(); }

private:
    Kind kind_;
    std::u16string message_;
    std::string utf8_;
};

// `documentName` says which document it is in error messages: "page {...}", "\"path\"".
std::shared_ptr<Page> ReadPage(std::u16string_view xml, std::u16string_view documentName);
std::shared_ptr<Notebooks> ReadNotebooks(std::u16string_view xml, std::u16string_view documentName);

// A hierarchy document is rooted at whatever node it was asked for.
using HierarchyDocument = std::variant<std::shared_ptr<Notebooks>, std::shared_ptr<Notebook>,
                                       std::shared_ptr<SectionGroup>, std::shared_ptr<Section>,
                                       std::shared_ptr<Page>>;
HierarchyDocument ReadHierarchy(std::u16string_view xml, std::u16string_view documentName);
xml::ChildElement& RootOf(const HierarchyDocument& document);

struct WriteOptions {
    bool declaration = true;
    bool indent = true;
    std::u16string_view newline = u"\n";
};

std::u16string WriteDocument(const xml::ChildElement& root, const WriteOptions& options = {});
// The same as UTF-8 bytes ending with a line break: the form of files.
std::string WriteDocumentFile(const xml::ChildElement& root);

// Writes the start tag of a hierarchy element with its attributes, leaving its content to the
// caller (a hierarchy is handed out cut to a depth).
void WriteStartWithAttributes(const xml::ChildElement& element, xml::XmlWriter& writer);

}  // namespace qm::ON
