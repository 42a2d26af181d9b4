// The text form of a macro: the same statements as the stored tree, one statement a line, blocks
// by indentation, so that macros can be written, diffed and reviewed as plain text:
//
//   #name Count down
//   $n = 3
//   While $n > 0
//     $n -= 1
//   Function Twice($s)
//     Return $s & $s
//
// It maps one to one onto the statement tree: reading a text and writing the tree back gives the
// text again (in its written layout: two-space indentation, no blank lines), and writing a tree
// and reading the text gives the same tree (the editor's folding state aside).
//
// Line by line:
//  - Header lines `#name`, `#category`, `#description`, `#id`, `#version`, `#publishDate` come
//    before the first statement and set the macro's attributes; the value is the rest of the line
//    after one blank, taken as it stands.
//  - Heads: `ForEach $var in EXPR`, `If EXPR`, `Else`, `While EXPR`, `Break [EXPR]`,
//    `Continue [EXPR]`, `Return [EXPR]`, `// text`, `Function Name($a, $b)`. A keyword is
//    case-sensitive and followed by a blank or the end of the line (`Iffy($x)` is an expression).
//    An absent count or value is the empty expression. The lines indented under a comment are its
//    commented-out statements. Every other line is an expression statement.
//  - A block is the lines indented deeper than its head; a file indents with spaces or with tabs,
//    never both. Blank lines are skipped.
//  - Functions stand at the top level, anywhere; they are stored after the statements. Names of
//    loop variables and parameters are stored without "$".
//  - Expressions are written as the printer prints them, less the parentheses of an outermost
//    operator; a line break inside a string literal is written as the escape \n or \r.
#pragma once

#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "macros/m2_schema.h"

namespace qm::M2 {

// Deepest statement nesting a text may hold (a function counts as one level): the interpreter, the
// writers and the checker recurse once per level.
inline constexpr int kMaxStatementDepth = 200;

// A text that does not read, or a tree that has no text form. Line and column count from 1;
// 0 when not known.
class TextFormError : public std::exception {
public:
    TextFormError(std::string fileName, int line, int column, std::u16string message);

    const std::string& fileName() const noexcept { return fileName_; }
    int line() const noexcept { return line_; }
    int column() const noexcept { return column_; }
    const std::u16string& message() const noexcept { return message_; }
    // "count.qm:7: message", "count.qm:7:3: message", "count.qm: message" or the message alone.
    std::u16string FullText() const;
    const char* what() const noexcept override { return utf8_.c_str(); }

private:
    std::string fileName_;
    int line_;
    int column_;
    std::u16string message_;
    std::string utf8_;
};

// Where the statements and functions of a macro read from text stand (lines from 1).
struct TextFormLines {
    std::unordered_map<const Statement*, int> statements;
    std::unordered_map<const Function*, int> functions;

    int LineOf(const Statement& statement) const;  // 0 when not known
    int LineOf(const Function& function) const;
};

// Reads a macro from its text form; `fileName` only names the text in errors. Throws
// TextFormError for the first line that does not read (an expression's parse error carries the
// parser's message). The elements point back at their owners as if read from XML.
std::shared_ptr<Macro> ReadTextForm(std::u16string_view text, std::string_view fileName,
                                    TextFormLines* lines = nullptr);

// The text form of a macro, lines ended by "\n". Throws TextFormError (no file, no line) for a
// tree that cannot be written without changing it: a line break in a name, comment or attribute,
// a loop variable, function or parameter that is not a name, nesting beyond kMaxStatementDepth.
std::u16string WriteTextForm(const Macro& macro);

// The element name of a statement kind ("ForEach" ... "Return"); empty for None.
std::u16string_view StatementName(StatementKind kind);

// True for the names the expression language accepts after "$" and as function names: a letter or
// underscore, then letters, digits and underscores (ASCII).
bool IsName(std::u16string_view text);

}  // namespace qm::M2
