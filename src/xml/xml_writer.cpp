#include "xml/xml_writer.h"

#include <algorithm>

#include "core/format.h"
#include "core/text.h"
#include "xml/messages.h"
#include "xml/xml_chars.h"
#include "xml/xml_error.h"
#include "xml/xml_reader.h"

namespace qm::xml {

namespace {

constexpr char16_t kReplacement = u'\xFFFD';

void AppendReference(std::u16string& out, char16_t c) {
    static constexpr char16_t kHex[] = u"0123456789ABCDEF";
    out += u"&#x";
    bool started = false;
    for (int shift = 12; shift >= 0; shift -= 4) {
        const unsigned digit = (c >> shift) & 0xF;
        if (digit != 0 || started || shift == 0) {
            out += kHex[digit];
            started = true;
        }
    }
    out += u';';
}

bool IsBlankOnly(std::u16string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char16_t c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r'; });
}

}  // namespace

void AppendEscaped(std::u16string& out, std::u16string_view text, EscapeMode mode, IllegalCharacters illegal) {
    const bool attribute = mode == EscapeMode::Attribute;
    std::size_t run = 0;  // start of the characters still to be copied as they are
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (c >= 0x20 && c < 0xD800 && c != u'&' && c != u'<' && c != u'>' && c != u'"') continue;
        std::u16string_view replacement;
        switch (c) {
            case u'&': replacement = u"&amp;"; break;
            case u'<': replacement = u"&lt;"; break;
            case u'>': replacement = u"&gt;"; break;
            case u'\r': replacement = u"&#13;"; break;
            case u'"':
                if (attribute) replacement = u"&quot;";
                break;
            case u'\n':
                if (attribute) replacement = u"&#10;";
                break;
            case u'\t':
                if (attribute) replacement = u"&#9;";
                break;
            default: break;
        }
        if (replacement.empty() && IsXmlChar(text, i)) continue;
        out.append(text.substr(run, i - run));
        run = i + 1;
        if (!replacement.empty()) {
            out += replacement;
        } else if (illegal == IllegalCharacters::Reference && c != 0) {
            AppendReference(out, c);
        } else {
            out += kReplacement;
        }
    }
    out.append(text.substr(run));
}

XmlWriter::XmlWriter(XmlSink& sink, bool indent) : XmlWriter(sink, WriterOptions{indent}) {}

XmlWriter::XmlWriter(XmlSink& sink, const WriterOptions& options)
    : sink_(sink), indent_(options.indent), newline_(options.newline), illegal_(options.illegal) {}

void XmlWriter::WriteDeclaration() { WriteDeclaration(u"utf-16"); }

void XmlWriter::WriteDeclaration(std::u16string_view encoding) {
    Put(u"<?xml version=\"1.0\"");
    if (!encoding.empty()) {
        Put(u" encoding=\"");
        Put(encoding);
        Put(u"\"");
    }
    Put(u"?>");
    wroteSomething_ = true;
}

void XmlWriter::CloseStartTag() {
    if (!open_.empty() && open_.back().startTagOpen) {
        Put(u">");
        open_.back().startTagOpen = false;
    }
}

void XmlWriter::NewLine(std::size_t level) {
    scratch_.assign(newline_);
    scratch_.append(level * 2, u' ');
    Put(scratch_);
}

void XmlWriter::StartElement(std::u16string_view prefix, std::u16string_view localName,
                             std::u16string_view namespaceUri) {
    if (depth() >= kMaxElementDepth) {
        throw XmlError(FormatMessage(msg::kWriteTooDeep, {Ascii(std::to_string(kMaxElementDepth))}), 0, 0);
    }
    bool mixed = false;
    if (!open_.empty()) {
        CloseStartTag();
        open_.back().hasChildren = true;
        mixed = open_.back().mixed;
    }
    if (indent_ && !mixed && wroteSomething_) NewLine(open_.size());
    wroteSomething_ = true;

    std::u16string qualified;
    if (!prefix.empty()) {
        qualified.assign(prefix);
        qualified += u':';
    }
    qualified += localName;
    Put(u"<");
    Put(qualified);
    open_.push_back(Open{std::move(qualified), namespaces_.size(), true, false, mixed});

    if (!namespaceUri.empty()) {
        const auto inScope = std::find_if(namespaces_.rbegin(), namespaces_.rend(),
                                          [&](const auto& ns) { return ns.first == prefix; });
        if (inScope == namespaces_.rend() || inScope->second != namespaceUri) {
            namespaces_.emplace_back(std::u16string(prefix), std::u16string(namespaceUri));
            WriteAttribute(prefix.empty() ? u"xmlns" : u"xmlns:" + std::u16string(prefix), namespaceUri);
        }
    }
}

void XmlWriter::WriteAttribute(std::u16string_view name, std::u16string_view value) {
    scratch_.assign(u" ");
    scratch_ += name;
    scratch_ += u"=\"";
    AppendEscaped(scratch_, value, EscapeMode::Attribute, illegal_);
    scratch_ += u'"';
    Put(scratch_);
}

void XmlWriter::DeclareNamespace(std::u16string_view prefix, std::u16string_view namespaceUri) {
    if (open_.empty() || !open_.back().startTagOpen) return;
    const auto inScope = std::find_if(namespaces_.rbegin(), namespaces_.rend(),
                                      [&](const auto& ns) { return ns.first == prefix; });
    const std::u16string_view current = inScope == namespaces_.rend() ? std::u16string_view() : inScope->second;
    if (current == namespaceUri) return;
    if (namespaceUri.empty() && !prefix.empty()) return;  // a prefix cannot be undeclared in XML 1.0
    namespaces_.emplace_back(std::u16string(prefix), std::u16string(namespaceUri));
    WriteAttribute(prefix.empty() ? u"xmlns" : u"xmlns:" + std::u16string(prefix), namespaceUri);
}

void XmlWriter::WriteString(std::u16string_view text) {
    if (text.empty()) return;
    if (!open_.empty() && open_.back().hasChildren && IsBlankOnly(text)) {
        WriteCData(text);
        return;
    }
    CloseStartTag();
    if (!open_.empty()) open_.back().mixed = true;
    scratch_.clear();
    AppendEscaped(scratch_, text, EscapeMode::Text, illegal_);
    Put(scratch_);
}

void XmlWriter::WriteCData(std::u16string_view text) {
    CloseStartTag();
    if (!open_.empty()) open_.back().mixed = true;
    scratch_.assign(u"<![CDATA[");
    std::size_t run = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (c >= 0x20 && c < 0xD800 && c != u']') continue;
        if (c == u'\n' || c == u'\t' || (c == u']' && !text.substr(i).starts_with(u"]]>"))) continue;
        if (IsXmlChar(text, i) && c != u'\r' && c != u']') continue;
        scratch_.append(text.substr(run, i - run));
        run = i + 1;
        if (c == u'\r') {
            scratch_ += u"]]>&#13;<![CDATA[";
        } else if (c == u']') {
            scratch_ += u"]]]]><![CDATA[>";
            i += 2;
            run = i + 1;
        } else if (illegal_ == IllegalCharacters::Reference && c != 0) {
            scratch_ += u"]]>";
            AppendReference(scratch_, c);
            scratch_ += u"<![CDATA[";
        } else {
            scratch_ += kReplacement;
        }
    }
    scratch_.append(text.substr(run));
    scratch_ += u"]]>";
    Put(scratch_);
}

void XmlWriter::EndElement() {
    if (open_.empty()) return;
    const Open& top = open_.back();
    if (top.startTagOpen) {
        Put(u" />");
    } else {
        if (indent_ && top.hasChildren && !top.mixed) NewLine(open_.size() - 1);
        Put(u"</");
        Put(top.qualifiedName);
        Put(u">");
    }
    namespaces_.resize(top.namespaces);
    open_.pop_back();
}

void XmlWriter::EndDocument() {
    while (!open_.empty()) EndElement();
}

}  // namespace qm::xml
