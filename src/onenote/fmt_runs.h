// The text of one paragraph text element as runs: stretches of characters with one formatting
// each (CSS declarations, a language, a link target), and the edits the Text objects make on
// them. Reading and writing the markup is fmt_markup.h.
//
// Indices count UTF-16 code units of the plain text, from 0.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qm::onenote {

// One CSS declaration, "name:value". Names are kept in lower case.
struct CssDeclaration {
    std::u16string name;
    std::u16string value;

    friend bool operator==(const CssDeclaration&, const CssDeclaration&) = default;
};

using CssDeclarations = std::vector<CssDeclaration>;

// Declarations separated by semicolons; blanks around names and values are dropped, a piece
// without a colon or without a name is dropped, and a name given twice keeps its first place and
// its last value. Every semicolon separates (quotes do not protect one): so FormatCss always
// reads back as the same declarations, and no font name OneNote knows holds one.
CssDeclarations ParseCss(std::u16string_view style);
// "name:value;name:value", the form OneNote writes.
std::u16string FormatCss(const CssDeclarations& declarations);

// The value of a declaration, or null.
const std::u16string* FindCss(const CssDeclarations& declarations, std::u16string_view name);
// Replaces the value in place, or appends the declaration.
void SetCss(CssDeclarations& declarations, std::u16string_view name, std::u16string value);
// SetCss for each declaration of `from` in turn, in time linear in the two.
void MergeCss(CssDeclarations& into, const CssDeclarations& from);
void RemoveCss(CssDeclarations& declarations, std::u16string_view name);

// What a run's characters are formatted with: the CSS of its spans, the language of its span and
// the target of its link. An empty language or link counts as none.
struct TextFormat {
    CssDeclarations style;
    std::optional<std::u16string> lang;
    std::optional<std::u16string> href;

    bool IsPlain() const { return style.empty() && !lang && !href; }
    friend bool operator==(const TextFormat&, const TextFormat&) = default;
};

struct TextRun {
    std::u16string text;
    TextFormat format;

    friend bool operator==(const TextRun&, const TextRun&) = default;
};

// The runs of one text element, in order.
struct FormattedText {
    std::vector<TextRun> runs;
    // False when the markup could not be read: `runs` then holds one plain run with the stored
    // text itself, markup and all (fmt_markup.h).
    bool readable = true;

    std::u16string PlainText() const;
    std::size_t Length() const;

    // The run that holds the character at `index` (the last run for the index just past the end);
    // null when there are no runs.
    const TextRun* RunAt(std::size_t index) const;
    // The start index of every run, in order.
    std::vector<std::size_t> Starts() const;

    // Drops empty runs and joins neighbours with the same formatting: the form written back.
    void Normalize();
    // Makes a run boundary at `index` (clamped to the length).
    void SplitAt(std::size_t index);
    // Changes the formatting of the characters in [start, end), splitting the runs at both ends.
    void FormatRange(std::size_t start, std::size_t end, const std::function<void(TextFormat&)>& change);
    // Replaces the characters in [start, end) by `text`, formatted as the first character
    // replaced (or, for an empty range, as the character before it, else the one after it).
    void ReplaceRange(std::size_t start, std::size_t end, std::u16string_view text);
};

// What reading all of a text, or replacing all of it, needs of its runs: the plain text and the
// formatting of its first character (plain when it has none).
struct TextSummary {
    std::u16string plain;
    TextFormat first;
};

// Line breaks as the paragraph holds them: "\r\n" and a lone "\r" become "\n".
std::u16string NormalizeLineBreaks(std::u16string_view text);

}  // namespace qm::onenote
