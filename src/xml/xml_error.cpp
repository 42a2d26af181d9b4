#include "xml/xml_error.h"

#include "core/format.h"
#include "core/text.h"
#include "xml/messages.h"

namespace qm::xml {

XmlError::XmlError(std::u16string message, int line, int column)
    : message_(std::move(message)), line_(line), column_(column), utf8_(ToUtf8(FullText())) {}

std::u16string XmlError::FullText() const {
    if (line_ <= 0) return message_;
    const std::u16string line = Ascii(std::to_string(line_));
    if (column_ <= 0) return message_ + FormatMessage(msg::kAtLine, {line});
    return message_ + FormatMessage(msg::kAtLineColumn, {line, Ascii(std::to_string(column_))});
}

}  // namespace qm::xml
