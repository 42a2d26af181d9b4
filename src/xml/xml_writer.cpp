#include "xml/xml_writer.h"

#include <algorithm>

#include "core/format.h"
#include "core/text.h"
#include "xml/messages.h"
#include "xml/xml_error.h"
#include "xml/xml_reader.h"

namespace qm::xml {

namespace {

constexpr char16_t kReplacement = u'\xFFFD';

bool IsHighSurrogate(char16_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool IsLowSurrogate(char16_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

// Whether text[i] can stand in an XML 1.0 document; a valid surrogate pair counts as one.
bool IsXmlChar(std::u16string_view text, std::size_t i) {
    const char16_t c = text[i];
    if (c < 0x20) return c == u'\t' || c == u'\n' || c == u'\r';
    if (IsHighSurrogate(c)) return i + 1 < text.size() && IsLowSurrogate(text[i + 1]);
    if (IsLowSurrogate(c)) return i > 0 && IsHighSurrogate(text[i - 1]);
    return c != 0xFFFE && c != 0xFFFF;
}

bool IsBlankOnly(std::u16string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char16_t c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r'; });
}

}  // namespace

void AppendEscaped(std::u16string& out, std::u16string_view text, EscapeMode mode) {
    const bool attribute = mode == EscapeMode::Attribute;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        switch (c) {
            case u'&': out += u"&amp;"; continue;
            case u'<': out += u"&lt;"; continue;
            case u'>': out += u"&gt;"; continue;
            case u'\r': out += u"&#13;"; continue;
            case u'"':
                if (attribute) { out += u"&quot;"; continue; }
                break;
            case u'\n':
                if (attribute) { out += u"&#10;"; continue; }
                break;
            case u'\t':
                if (attribute) { out += u"&#9;"; continue; }
                break;
            default: break;
        }
        out += IsXmlChar(text, i) ? c : kReplacement;
    }
}

XmlWriter::XmlWriter(XmlSink& sink, bool indent) : sink_(sink), indent_(indent) {}

void XmlWriter::WriteDeclaration() {
    Put(u"<?xml version=\"1.0\" encoding=\"utf-16\"?>");
    wroteSomething_ = true;
}

void XmlWriter::CloseStartTag() {
    if (!open_.empty() && open_.back().startTagOpen) {
        Put(u">");
        open_.back().startTagOpen = false;
    }
}

void XmlWriter::NewLine(std::size_t level) {
    scratch_.assign(u"\r\n");
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
    AppendEscaped(scratch_, value, EscapeMode::Attribute);
    scratch_ += u'"';
    Put(scratch_);
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
    AppendEscaped(scratch_, text, EscapeMode::Text);
    Put(scratch_);
}

void XmlWriter::WriteCData(std::u16string_view text) {
    CloseStartTag();
    if (!open_.empty()) open_.back().mixed = true;
    scratch_.assign(u"<![CDATA[");
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (c == u'\r') {
            scratch_ += u"]]>&#13;<![CDATA[";
        } else if (c == u']' && text.substr(i).starts_with(u"]]>")) {
            scratch_ += u"]]]]><![CDATA[>";
            i += 2;
        } else {
            scratch_ += IsXmlChar(text, i) ? c : kReplacement;
        }
    }
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
