// Reading and writing the text form of a macro (see text_form.h for the form itself).
//
// The reader works line by line with an explicit stack of open blocks, so a deep text costs no
// recursion here; the depth bound protects everything that walks the tree afterwards. The writer
// recurses once per nesting level, bounded the same way.
#include "macros/text_form.h"

#include <cstdint>
#include <utility>
#include <vector>

#include "core/error.h"
#include "core/format.h"
#include "core/parser.h"
#include "core/text.h"
#include "macros/messages.h"

namespace qm::M2 {

using namespace macros::msg;

TextFormError::TextFormError(std::string fileName, int line, int column, std::u16string message)
    : fileName_(std::move(fileName)), line_(line), column_(column), message_(std::move(message)) {
    utf8_ = ToUtf8(FullText());
}

std::u16string TextFormError::FullText() const {
    if (fileName_.empty() && line_ == 0) return message_;
    std::string where = fileName_;
    if (line_ > 0) where += ":" + std::to_string(line_);
    if (line_ > 0 && column_ > 0) where += ":" + std::to_string(column_);
    return FromUtf8(where) + u": " + message_;
}

int TextFormLines::LineOf(const Statement& statement) const {
    auto found = statements.find(&statement);
    return found == statements.end() ? 0 : found->second;
}

int TextFormLines::LineOf(const Function& function) const {
    auto found = functions.find(&function);
    return found == functions.end() ? 0 : found->second;
}

std::u16string_view StatementName(StatementKind kind) {
    switch (kind) {
        case StatementKind::ForEach: return u"ForEach";
        case StatementKind::If: return u"If";
        case StatementKind::Else: return u"Else";
        case StatementKind::While: return u"While";
        case StatementKind::Expression: return u"Expression";
        case StatementKind::Comment: return u"Comment";
        case StatementKind::Break: return u"Break";
        case StatementKind::Continue: return u"Continue";
        case StatementKind::Return: return u"Return";
        case StatementKind::None: break;
    }
    return {};
}

namespace {

bool IsBlank(char16_t c) { return c == u' ' || c == u'\t'; }
bool IsLetter(char16_t c) { return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || c == u'_'; }
bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

std::size_t SkipBlanks(std::u16string_view text, std::size_t pos) {
    while (pos < text.size() && IsBlank(text[pos])) ++pos;
    return pos;
}

// The length of the name starting at pos (0 when none starts there).
std::size_t NameLength(std::u16string_view text, std::size_t pos) {
    if (pos >= text.size() || !IsLetter(text[pos])) return 0;
    std::size_t end = pos + 1;
    while (end < text.size() && (IsLetter(text[end]) || IsDigit(text[end]))) ++end;
    return end - pos;
}

}  // namespace

bool IsName(std::u16string_view text) { return !text.empty() && NameLength(text, 0) == text.size(); }

// --- reading ----------------------------------------------------------------------------------

namespace {

// The header lines and the attribute each one sets.
enum class Header { Name, Category, Description, Id, Version, PublishDate, Count };

constexpr std::u16string_view kHeaderNames[] = {u"name", u"category", u"description", u"id", u"version",
                                                u"publishDate"};

class Reader {
public:
    Reader(std::string_view fileName, TextFormLines* lines) : fileName_(fileName), lines_(lines) {}

    std::shared_ptr<Macro> Read(std::u16string_view text) {
        macro_ = std::make_shared<Macro>();
        macro_->present = true;
        macro_->statements.owner = macro_.get();
        macro_->functions.owner = macro_.get();
        stack_.push_back(Frame{0, &macro_->statements, 1});

        if (text.starts_with(u'\uFEFF')) text.remove_prefix(1);
        std::size_t start = 0;
        while (start <= text.size()) {
            std::size_t end = text.find(u'\n', start);
            if (end == std::u16string_view::npos) end = text.size();
            std::u16string_view line = text.substr(start, end - start);
            if (line.ends_with(u'\r')) line.remove_suffix(1);
            ++line_;
            ReadLine(line);
            start = end + 1;
        }
        return std::move(macro_);
    }

private:
    struct Frame {
        int indent;        // of the lines of this block
        Statements* list;  // where its statements go
        int level;         // nesting level of those statements (top level: 1)
    };

    // What the line just read allows below it.
    enum class Above { StartOfText, NoBlock, Block };

    [[noreturn]] void Fail(int column, std::u16string message) const {
        throw TextFormError(std::string(fileName_), line_, column, std::move(message));
    }

    void ReadLine(std::u16string_view line) {
        const std::size_t indent = SkipBlanks(line, 0);
        if (indent == line.size()) return;  // blank
        const std::u16string_view content = line.substr(indent);
        const int column = static_cast<int>(indent) + 1;
        if (content.front() == u'#' && seenStatement_) Fail(column, std::u16string(kTextHeaderAfterStatement));
        CheckIndentCharacters(line.substr(0, indent));
        FindBlock(static_cast<int>(indent), column);
        if (content.front() == u'#') {
            ReadHeader(content);
            above_ = Above::NoBlock;
            return;
        }
        seenStatement_ = true;
        ReadStatement(content, column);
    }

    void CheckIndentCharacters(std::u16string_view indent) {
        if (indent.empty()) return;
        const bool tabs = indent.find(u'\t') != std::u16string_view::npos;
        const bool spaces = indent.find(u' ') != std::u16string_view::npos;
        if (tabs && spaces) Fail(1, std::u16string(kTextMixedIndentation));
        if (indentChar_ == 0) indentChar_ = indent.front();
        if (indentChar_ != indent.front()) {
            Fail(1, std::u16string(tabs ? kTextTabsAfterSpaces : kTextSpacesAfterTabs));
        }
    }

    // Opens the block under the line above, or closes blocks down to the line's indentation.
    void FindBlock(int indent, int column) {
        if (indent > stack_.back().indent) {
            if (above_ == Above::StartOfText) Fail(column, std::u16string(kTextUnexpectedIndent));
            if (above_ == Above::NoBlock) Fail(column, std::u16string(kTextNoBlockHere));
            if (pendingLevel_ > kMaxStatementDepth) {
                Fail(column, FormatMessage(kTextTooDeep, {Ascii(std::to_string(kMaxStatementDepth))}));
            }
            stack_.push_back(Frame{indent, pendingBody_, pendingLevel_});
            return;
        }
        while (stack_.back().indent > indent) stack_.pop_back();
        if (stack_.back().indent != indent) Fail(column, std::u16string(kTextUnmatchedDedent));
    }

    void ReadHeader(std::u16string_view content) {
        std::size_t nameEnd = 1;
        while (nameEnd < content.size() && !IsBlank(content[nameEnd])) ++nameEnd;
        const std::u16string_view name = content.substr(1, nameEnd - 1);
        std::u16string value(content.substr(nameEnd < content.size() ? nameEnd + 1 : nameEnd));
        int header = 0;
        while (header < static_cast<int>(Header::Count) && kHeaderNames[header] != name) ++header;
        if (header == static_cast<int>(Header::Count)) Fail(1, std::u16string(kTextUnknownHeader));
        if (seenHeaders_[header]) Fail(1, FormatMessage(kTextHeaderTwice, {name}));
        seenHeaders_[header] = true;
        const int valueColumn = static_cast<int>(nameEnd) + 2;
        switch (static_cast<Header>(header)) {
            case Header::Name: macro_->name = std::move(value); break;
            case Header::Category: macro_->category = std::move(value); break;
            case Header::Description: macro_->description = std::move(value); break;
            case Header::Id: macro_->id = std::move(value); break;
            case Header::Version: macro_->version = ReadVersion(value, valueColumn); break;
            case Header::PublishDate:
                if (value.empty() || !IsDigit(value.front())) Fail(valueColumn, std::u16string(kTextPublishDate));
                macro_->publishDate = xml::ParseXmlDateTime(value);
                break;
            case Header::Count: break;
        }
    }

    std::int32_t ReadVersion(std::u16string_view value, int column) const {
        std::size_t pos = value.starts_with(u'-') ? 1 : 0;
        if (pos == value.size()) Fail(column, std::u16string(kTextVersionNumber));
        std::int64_t number = 0;
        for (; pos < value.size(); ++pos) {
            if (!IsDigit(value[pos])) Fail(column, std::u16string(kTextVersionNumber));
            number = number * 10 + (value[pos] - u'0');
            if (number > INT32_MAX + std::int64_t{1}) Fail(column, std::u16string(kTextVersionNumber));
        }
        if (value.starts_with(u'-')) number = -number;
        if (number > INT32_MAX) Fail(column, std::u16string(kTextVersionNumber));
        return static_cast<std::int32_t>(number);
    }

    // True when `content` starts with the keyword followed by a blank or the end; `rest` is then
    // what follows, blanks skipped, and `restColumn` its column.
    bool Keyword(std::u16string_view content, std::u16string_view keyword, int column, std::u16string_view& rest,
                 int& restColumn) const {
        if (!content.starts_with(keyword)) return false;
        if (content.size() > keyword.size() && !IsBlank(content[keyword.size()])) return false;
        const std::size_t pos = SkipBlanks(content, keyword.size());
        rest = content.substr(pos);
        restColumn = column + static_cast<int>(pos);
        return true;
    }

    ExpressionPtr ParseText(std::u16string_view text) const {
        try {
            return Parse(text);
        } catch (const ParseError& error) {
            Fail(0, error.message());
        }
    }

    // An absent count or value is the empty expression.
    ExpressionPtr ParseOptional(std::u16string_view text) const {
        return text.empty() ? std::make_shared<Expression>() : ParseText(text);
    }

    Statement& AddStatement() {
        Statement& statement = stack_.back().list->Add(std::make_shared<Statement>());
        if (lines_) lines_->statements[&statement] = line_;
        return statement;
    }

    // Puts a new element of a block-taking kind into the statement; what follows indented goes
    // into its block.
    template <class E>
    E& AddBlockStatement(xml::ChoiceSlot<E> Statement::*slot) {
        Statement& statement = AddStatement();
        auto element = std::make_shared<E>();
        element->owner = &statement;
        element->present = true;
        element->statements.owner = element.get();
        E& ref = *element;
        statement.*slot = std::move(element);
        TakesBlock(ref.statements, stack_.back().level + 1);
        return ref;
    }

    void AddExpressionStatement(xml::ChoiceSlot<Expression> Statement::*slot, ExpressionPtr expression) {
        AddStatement().*slot = std::move(expression);
        above_ = Above::NoBlock;
    }

    void TakesBlock(Statements& body, int level) {
        above_ = Above::Block;
        pendingBody_ = &body;
        pendingLevel_ = level;
    }

    void ReadStatement(std::u16string_view content, int column) {
        std::u16string_view rest;
        int restColumn = 0;
        if (content.starts_with(u"//")) {
            std::u16string_view text = content.substr(2);
            if (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
            AddBlockStatement(&Statement::comment).text = std::u16string(text);
        } else if (Keyword(content, u"ForEach", column, rest, restColumn)) {
            ReadForEach(rest, restColumn);
        } else if (Keyword(content, u"If", column, rest, restColumn)) {
            ExpressionPtr condition = ParseText(rest);
            AddBlockStatement(&Statement::ifStatement).condition = std::move(condition);
        } else if (Keyword(content, u"Else", column, rest, restColumn)) {
            if (!rest.empty()) Fail(restColumn, std::u16string(kTextAfterElse));
            AddBlockStatement(&Statement::elseStatement);
        } else if (Keyword(content, u"While", column, rest, restColumn)) {
            ExpressionPtr condition = ParseText(rest);
            AddBlockStatement(&Statement::whileStatement).condition = std::move(condition);
        } else if (Keyword(content, u"Break", column, rest, restColumn)) {
            AddExpressionStatement(&Statement::breakLevels, ParseOptional(rest));
        } else if (Keyword(content, u"Continue", column, rest, restColumn)) {
            AddExpressionStatement(&Statement::continueLevels, ParseOptional(rest));
        } else if (Keyword(content, u"Return", column, rest, restColumn)) {
            AddExpressionStatement(&Statement::returnValue, ParseOptional(rest));
        } else if (Keyword(content, u"Function", column, rest, restColumn)) {
            if (stack_.size() > 1) Fail(column, std::u16string(kTextFunctionNotTopLevel));
            ReadFunction(rest, restColumn);
        } else {
            AddExpressionStatement(&Statement::expression, ParseText(content));
        }
    }

    // `$name in EXPR`
    void ReadForEach(std::u16string_view rest, int column) {
        const std::size_t length = rest.starts_with(u'$') ? NameLength(rest, 1) : 0;
        std::size_t pos = 1 + length;
        const std::size_t inPos = SkipBlanks(rest, pos);
        const bool hasIn = length > 0 && inPos > pos && rest.substr(inPos).starts_with(u"in") &&
                           (inPos + 2 == rest.size() || IsBlank(rest[inPos + 2]));
        if (!hasIn) Fail(column, std::u16string(kTextForEachForm));
        ExpressionPtr array = ParseText(rest.substr(inPos + 2));
        ForEach& forEach = AddBlockStatement(&Statement::forEach);
        forEach.var = std::u16string(rest.substr(1, length));
        forEach.array = std::move(array);
    }

    // `Name($a, $b)`
    void ReadFunction(std::u16string_view rest, int column) {
        auto fail = [&](std::size_t pos) { Fail(column + static_cast<int>(pos), std::u16string(kTextFunctionForm)); };
        auto function = std::make_shared<Function>();
        const std::size_t nameLength = NameLength(rest, 0);
        if (nameLength == 0) fail(0);
        function->name = std::u16string(rest.substr(0, nameLength));
        std::size_t pos = SkipBlanks(rest, nameLength);
        if (pos >= rest.size() || rest[pos] != u'(') fail(pos);
        pos = SkipBlanks(rest, pos + 1);
        function->params.owner = function.get();
        if (pos < rest.size() && rest[pos] == u')') {
            ++pos;
        } else {
            for (;;) {
                const std::size_t length = pos < rest.size() && rest[pos] == u'$' ? NameLength(rest, pos + 1) : 0;
                if (length == 0) fail(pos);
                auto param = std::make_shared<Param>();
                param->present = true;
                param->name = std::u16string(rest.substr(pos + 1, length));
                function->params.Add(std::move(param));
                pos = SkipBlanks(rest, pos + 1 + length);
                if (pos < rest.size() && rest[pos] == u')') {
                    ++pos;
                    break;
                }
                if (pos >= rest.size() || rest[pos] != u',') fail(pos);
                pos = SkipBlanks(rest, pos + 1);
            }
        }
        if (SkipBlanks(rest, pos) != rest.size()) fail(SkipBlanks(rest, pos));

        function->present = true;
        function->statements.owner = function.get();
        Function& ref = macro_->functions.Add(std::move(function));
        if (lines_) lines_->functions[&ref] = line_;
        TakesBlock(ref.statements, 2);
    }

    std::string_view fileName_;
    TextFormLines* lines_;
    std::shared_ptr<Macro> macro_;
    std::vector<Frame> stack_;
    int line_ = 0;
    char16_t indentChar_ = 0;
    bool seenStatement_ = false;
    bool seenHeaders_[static_cast<int>(Header::Count)] = {};
    Above above_ = Above::StartOfText;
    Statements* pendingBody_ = nullptr;
    int pendingLevel_ = 0;
};

}  // namespace

std::shared_ptr<Macro> ReadTextForm(std::u16string_view text, std::string_view fileName, TextFormLines* lines) {
    return Reader(fileName, lines).Read(text);
}

// --- writing ----------------------------------------------------------------------------------

namespace {

bool HasLineBreak(std::u16string_view text) { return text.find_first_of(u"\r\n") != std::u16string_view::npos; }

class Writer {
public:
    std::u16string Write(const Macro& macro) {
        Header(u"name", macro.name);
        Header(u"category", macro.category);
        Header(u"description", macro.description);
        Header(u"id", *macro.id);
        // As in the XML: a version equal to its creator's default is no version of its own.
        if (!macro.version.IsDefault()) Header(u"version", Ascii(std::to_string(*macro.version)));
        if (!(macro.publishDate == xml::SystemTime{})) {
            Header(u"publishDate", xml::FormatXmlDateTime(macro.publishDate));
        }
        Block(macro.statements, u"Macro", 1);
        int index = 0;
        for (const auto& function : macro.functions) {
            const std::u16string path = u"Macro/Function[" + Ascii(std::to_string(++index)) + u"]";
            RequireName(path, function->name);
            std::u16string head = u"Function " + function->name + u"(";
            bool first = true;
            for (const auto& param : function->params) {
                RequireName(path, param->name);
                if (!first) head += u", ";
                first = false;
                head += u"$" + param->name;
            }
            Line(head + u")");
            ++indent_;
            Block(function->statements, path, 2);
            --indent_;
        }
        return std::move(out_);
    }

private:
    [[noreturn]] static void Fail(std::u16string message) { throw TextFormError({}, 0, 0, std::move(message)); }

    static void RequireNoLineBreak(std::u16string_view path, std::u16string_view text) {
        if (HasLineBreak(text)) Fail(FormatMessage(kTextCannotWriteLineBreak, {path}));
    }

    static void RequireName(std::u16string_view path, std::u16string_view name) {
        if (!IsName(name)) Fail(FormatMessage(kTextCannotWriteName, {path, name}));
    }

    void Header(std::u16string_view name, std::u16string_view value) {
        if (value.empty()) return;
        RequireNoLineBreak(u"Macro/@" + std::u16string(name), value);
        out_ += u"#";
        out_ += name;
        out_ += u" ";
        out_ += value;
        out_ += u"\n";
    }

    void Line(std::u16string_view text) {
        out_.append(2 * static_cast<std::size_t>(indent_), u' ');
        out_ += text;
        out_ += u"\n";
    }

    // The printed expression without the parentheses of an outermost operator. Line breaks inside
    // string literals are written as the escapes the lexer reads back (\n, \r); anywhere else
    // (only a name could hold one) the tree has no text form.
    static std::u16string ExpressionText(const ExpressionPtr& expression, std::u16string_view path) {
        static const Expression kEmpty;
        const Expression& e = expression ? *expression : kEmpty;
        std::u16string text;
        for (const Segment& segment : Print(e)) {
            if (segment.cls != SegmentClass::StringLiteral) {
                RequireNoLineBreak(path, segment.text);
                text += segment.text;
                continue;
            }
            for (char16_t c : segment.text) {
                if (c == u'\n') {
                    text += u"\\n";
                } else if (c == u'\r') {
                    text += u"\\r";
                } else {
                    text.push_back(c);
                }
            }
        }
        const bool grouped =
            std::holds_alternative<BinaryOp>(e.primary) || std::holds_alternative<TernaryOp>(e.primary);
        if (grouped && e.members.empty() && text.size() >= 2 && text.front() == u'(' && text.back() == u')') {
            text = text.substr(1, text.size() - 2);
        }
        // A tree from a file may hold what no text makes (an operator or a name the lexer does not
        // know); written, it would read back as another tree or not at all.
        const std::u16string printed = PrintText(e);
        bool same = false;
        try {
            same = PrintText(*Parse(text)) == printed;
        } catch (const ParseError&) {
        }
        if (!same) Fail(FormatMessage(kTextCannotWriteExpression, {path, printed}));
        return text;
    }

    static std::u16string WithOptional(std::u16string_view keyword, const ExpressionPtr& expression,
                                       std::u16string_view path) {
        std::u16string line(keyword);
        if (expression && !expression->IsEmpty()) line += u" " + ExpressionText(expression, path);
        return line;
    }

    void Block(const Statements& statements, std::u16string_view path, int level) {
        if (level > kMaxStatementDepth && !statements.empty()) {
            Fail(FormatMessage(kTextTooDeep, {Ascii(std::to_string(kMaxStatementDepth))}));
        }
        int counts[10] = {};
        for (const auto& statement : statements) {
            const StatementKind kind = statement->kind();
            // A choice with no element cannot come from a document; there is nothing to write.
            if (kind == StatementKind::None) continue;
            const std::u16string here = std::u16string(path) + u"/" + std::u16string(StatementName(kind)) + u"[" +
                                        Ascii(std::to_string(++counts[static_cast<int>(kind)])) + u"]";
            WriteStatement(*statement, kind, here, level);
        }
    }

    template <class E>
    void Body(const E& element, std::u16string_view path, int level) {
        ++indent_;
        Block(element.statements, path, level + 1);
        --indent_;
    }

    void WriteStatement(const M2::Statement& s, StatementKind kind, std::u16string_view path, int level) {
        switch (kind) {
            case StatementKind::ForEach:
                RequireName(path, s.forEach->var);
                Line(u"ForEach $" + s.forEach->var + u" in " + ExpressionText(s.forEach->array, path));
                Body(*s.forEach, path, level);
                break;
            case StatementKind::If:
                Line(u"If " + ExpressionText(s.ifStatement->condition, path));
                Body(*s.ifStatement, path, level);
                break;
            case StatementKind::Else:
                Line(u"Else");
                Body(*s.elseStatement, path, level);
                break;
            case StatementKind::While:
                Line(u"While " + ExpressionText(s.whileStatement->condition, path));
                Body(*s.whileStatement, path, level);
                break;
            case StatementKind::Expression: Line(ExpressionText(s.expression, path)); break;
            case StatementKind::Comment:
                RequireNoLineBreak(path, s.comment->text);
                Line(s.comment->text.empty() ? u"//" : u"// " + s.comment->text);
                Body(*s.comment, path, level);
                break;
            case StatementKind::Break: Line(WithOptional(u"Break", s.breakLevels, path)); break;
            case StatementKind::Continue: Line(WithOptional(u"Continue", s.continueLevels, path)); break;
            case StatementKind::Return: Line(WithOptional(u"Return", s.returnValue, path)); break;
            case StatementKind::None: break;
        }
    }

    std::u16string out_;
    int indent_ = 0;
};

}  // namespace

std::u16string WriteTextForm(const Macro& macro) { return Writer().Write(macro); }

}  // namespace qm::M2
