// The writer every document of the add-in is written with, the same on every platform so that a
// document comes out byte for byte the same everywhere. It writes UTF-16 through one narrow sink.
//
// Layout: attributes in double quotes, an element without content as `<Name />`, and, when
// indenting, each element on its own line indented by two spaces per level with "\r\n" breaks.
// Once an element has text, nothing more is indented inside it, so indentation never becomes part
// of text: `<Var>name</Var>`.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qm::xml {

class XmlSink {
public:
    virtual void Write(std::u16string_view text) = 0;

protected:
    ~XmlSink() = default;
};

class StringSink final : public XmlSink {
public:
    explicit StringSink(std::u16string& out) : out_(out) {}
    void Write(std::u16string_view text) override { out_ += text; }

private:
    std::u16string& out_;
};

enum class EscapeMode {
    Text,       // & < > and carriage return (which a reader would turn into a line feed)
    Attribute,  // as Text, plus the double quote, tab and line feed (which a reader would turn into blanks)
};

// What becomes of characters XML 1.0 cannot carry at all (control characters other than tab,
// line feed and carriage return, unpaired surrogates, U+FFFE and U+FFFF).
enum class IllegalCharacters {
    Replace,    // written as U+FFFD, which is what a reader of the written document then sees
    Reference,  // written as character references, which only a reader that accepts them reads
};

// Appends text escaped for the mode.
void AppendEscaped(std::u16string& out, std::u16string_view text, EscapeMode mode,
                   IllegalCharacters illegal = IllegalCharacters::Replace);

struct WriterOptions {
    bool indent = false;
    std::u16string_view newline = u"\r\n";  // between indented lines
    IllegalCharacters illegal = IllegalCharacters::Replace;
};

class XmlWriter {
public:
    XmlWriter(XmlSink& sink, bool indent);
    XmlWriter(XmlSink& sink, const WriterOptions& options);

    // `<?xml version="1.0" encoding="utf-16"?>`: the first thing written, if at all.
    void WriteDeclaration();
    // The same with another encoding label; an empty one leaves the label out
    // (`<?xml version="1.0"?>`, which readers take for UTF-8 or what the bytes say).
    void WriteDeclaration(std::u16string_view encoding);

    // Declares the namespace on this element when it is not already in scope with that prefix.
    // Nesting beyond kMaxElementDepth raises XmlError.
    void StartElement(std::u16string_view prefix, std::u16string_view localName, std::u16string_view namespaceUri);
    void WriteAttribute(std::u16string_view name, std::u16string_view value);
    // Declares a namespace on the element just started (before its content), unless the prefix is
    // already bound to that URI. An empty prefix is the default namespace; an empty URI undeclares
    // it, which is written only when a default namespace is in scope.
    void DeclareNamespace(std::u16string_view prefix, std::u16string_view namespaceUri);
    // Escaped text. Text made only of blanks, in an element that already has child elements, is
    // written as CDATA: between elements a reader takes blanks for indentation.
    void WriteString(std::u16string_view text);
    // A CDATA section; "]]>" and carriage returns (which CDATA cannot carry) are written between
    // sections, so the text reads back exactly.
    void WriteCData(std::u16string_view text);
    void EndElement();
    // Closes every element still open.
    void EndDocument();

    int depth() const noexcept { return static_cast<int>(open_.size()); }

private:
    struct Open {
        std::u16string qualifiedName;
        std::size_t namespaces;  // declarations in scope when the element started
        bool startTagOpen;
        bool hasChildren;
        bool mixed;  // text was written here or in an ancestor: no more indentation
    };

    void CloseStartTag();
    void NewLine(std::size_t level);
    void Put(std::u16string_view text) { sink_.Write(text); }

    XmlSink& sink_;
    bool indent_;
    std::u16string newline_;
    IllegalCharacters illegal_;
    bool wroteSomething_ = false;
    std::vector<Open> open_;
    std::vector<std::pair<std::u16string, std::u16string>> namespaces_;  // prefix, URI
    std::u16string scratch_;
};

}  // namespace qm::xml
