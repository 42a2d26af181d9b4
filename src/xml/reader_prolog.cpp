#include "xml/reader_prolog.h"

#include <optional>
#include <string>
#include <utility>

#include "xml/messages.h"
#include "xml/xml_chars.h"
#include "xml/xml_error.h"

namespace qm::xml {
namespace {

bool IsBlank(char16_t c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r'; }

std::u16string_view SkipByteOrderMark(std::u16string_view text) {
    return !text.empty() && text.front() == u'\xFEFF' ? text.substr(1) : text;
}

// A document type declaration can only stand in the prolog: after the XML declaration, among
// blanks, comments and processing instructions.
std::optional<std::size_t> FindDocumentType(std::u16string_view text) {
    std::size_t i = text.size() - SkipByteOrderMark(text).size();
    auto skipPast = [&](std::u16string_view close, std::size_t from) {
        const std::size_t end = text.find(close, from);
        i = end == std::u16string_view::npos ? text.size() : end + close.size();
    };
    if (text.substr(i).starts_with(u"<?xml")) skipPast(u"?>", i + 5);
    while (i < text.size()) {
        if (IsBlank(text[i])) {
            ++i;
            continue;
        }
        const std::u16string_view rest = text.substr(i);
        if (rest.starts_with(u"<!--")) {
            skipPast(u"-->", i + 4);
        } else if (rest.starts_with(u"<?")) {
            skipPast(u"?>", i + 2);
        } else if (rest.starts_with(u"<!DOCTYPE")) {
            return i;
        } else {
            break;
        }
    }
    return std::nullopt;
}

std::pair<int, int> LineAndColumn(std::u16string_view text, std::size_t offset) {
    int line = 1;
    std::size_t lineStart = 0;
    for (std::size_t i = 0; i < offset && i < text.size(); ++i) {
        if (text[i] == u'\n' || (text[i] == u'\r' && (i + 1 >= text.size() || text[i + 1] != u'\n'))) {
            ++line;
            lineStart = i + 1;
        }
    }
    return {line, static_cast<int>(offset - lineStart) + 1};
}

}  // namespace

bool StartsWithDeclaration(std::u16string_view text) {
    text = SkipByteOrderMark(text);
    return text.size() > 5 && text.starts_with(u"<?xml") && IsBlank(text[5]);
}

void RefuseUnreadable(std::u16string_view text) {
    // A null character is never part of XML; refused here, it cannot mislead a parser's guess at
    // a four-byte encoding either.
    std::size_t clean = 0;  // no null character before it, looked for four units at a time
    while (clean + 4 <= text.size() && !FourUnits(text.data() + clean).Any(u'\0')) clean += 4;
    if (const std::size_t nul = text.find(u'\0', clean); nul != std::u16string_view::npos) {
        const auto [line, column] = LineAndColumn(text, nul);
        throw XmlError(std::u16string(msg::kNullCharacter), line, column);
    }
    if (const auto doctype = FindDocumentType(text)) {
        const auto [line, column] = LineAndColumn(text, *doctype);
        throw XmlError(std::u16string(msg::kDtdProhibited), line, column);
    }
}

}  // namespace qm::xml
