// The one error kind of the XML layer: a document that is not well-formed, one the layer refuses
// (a document type declaration, nesting beyond the limit), or a tree too deep to write. It
// carries the reader's own failure text and where in the document it happened.
#pragma once

#include <exception>
#include <string>

namespace qm::xml {

class XmlError : public std::exception {
public:
    // line and column count from 1; 0 means not known (column 0: only the line is known).
    XmlError(std::u16string message, int line, int column);

    const std::u16string& message() const noexcept { return message_; }
    int line() const noexcept { return line_; }
    int column() const noexcept { return column_; }
    // The message followed by the position, as shown to the user.
    std::u16string FullText() const;
    const char* what() const noexcept override { return utf8_.c_str(); }

private:
    std::u16string message_;
    int line_;
    int column_;
    std::string utf8_;
};

}  // namespace qm::xml
