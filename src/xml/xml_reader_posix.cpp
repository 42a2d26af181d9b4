// The pull reader over libxml2's text reader. The document is handed over as UTF-8 converted
// here, with the encoding named explicitly and the declaration's own encoding label ignored
// (documents say "utf-16", which is what they were before the conversion).
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/xmlreader.h>

#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "core/code_point.h"
#include "core/format.h"
#include "core/text.h"
#include "xml/messages.h"
#include "xml/reader_prolog.h"
#include "xml/xml_chars.h"
#include "xml/xml_error.h"
#include "xml/xml_reader.h"
#include "xml/xml_scan.h"

namespace qm::xml {

namespace {

// libxml2 hands out valid UTF-8 only. With `unshield`, shielded characters (xml_chars.h) come
// back as what they stand for.
void AssignFromUtf8(std::u16string& out, const xmlChar* text, bool unshield = false) {
    out.clear();
    if (text == nullptr) return;
    const auto* p = reinterpret_cast<const unsigned char*>(text);
    // Mostly ASCII: copied as it is until the first other character.
    const unsigned char* ascii = p;
    while (*ascii != 0 && *ascii < 0x80) ++ascii;
    out.assign(p, ascii);
    p = ascii;
    while (*p != 0) {
        char32_t c = *p;
        int extra = c < 0x80 ? 0 : c < 0xE0 ? 1 : c < 0xF0 ? 2 : 3;
        if (extra > 0) c &= 0x3F >> extra;
        ++p;
        for (; extra > 0 && *p != 0; --extra, ++p) c = (c << 6) | (*p & 0x3F);
        if (c >= 0x10000 && unshield) {
            if (const auto unit = Unshield(c)) {
                out += *unit;
                continue;
            }
        }
        AppendCodePoint(out, c);
    }
}

// libxml2's report of a failure as ours: its message without the line break, and where.
XmlError ErrorOf(const xmlError& error) {
    std::string text = error.message != nullptr ? error.message : "";
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
    return XmlError(text.empty() ? std::u16string(msg::kUnknownReaderError) : FromUtf8(text), error.line, error.int2);
}

NodeType MapNodeType(int type) {
    switch (type) {
        case XML_READER_TYPE_ELEMENT: return NodeType::Element;
        case XML_READER_TYPE_END_ELEMENT: return NodeType::EndElement;
        case XML_READER_TYPE_TEXT: return NodeType::Text;
        case XML_READER_TYPE_WHITESPACE:
        case XML_READER_TYPE_SIGNIFICANT_WHITESPACE: return NodeType::Whitespace;
        case XML_READER_TYPE_CDATA: return NodeType::CDATA;
        case XML_READER_TYPE_COMMENT: return NodeType::Comment;
        case XML_READER_TYPE_PROCESSING_INSTRUCTION: return NodeType::ProcessingInstruction;
        case XML_READER_TYPE_DOCUMENT_TYPE: return NodeType::DocumentType;
        default: return NodeType::Other;
    }
}

// libxml2 reports some failures (encoding trouble, mostly) through its per-thread generic error
// channel rather than the reader's handler; while any reader of ours lives on a thread, that
// channel is muted so nothing reaches the process's standard error. The read fails all the same.
// (Muting per call instead costs two thread-local lookups per node, a few percent of a read.)
class MuteGenericErrors {
public:
    MuteGenericErrors() {
        if (State& s = state(); s.readers++ == 0) {
            s.handler = xmlGenericError;
            s.context = xmlGenericErrorContext;
            xmlSetGenericErrorFunc(nullptr, &MuteGenericErrors::Ignore);
        }
    }
    ~MuteGenericErrors() {
        if (State& s = state(); --s.readers == 0) xmlSetGenericErrorFunc(s.context, s.handler);
    }
    MuteGenericErrors(const MuteGenericErrors&) = delete;
    MuteGenericErrors& operator=(const MuteGenericErrors&) = delete;

private:
    struct State {
        int readers = 0;
        xmlGenericErrorFunc handler = nullptr;
        void* context = nullptr;
    };
    static State& state() {
        thread_local State s;
        return s;
    }
    static void Ignore(void*, const char*, ...) {}
};

class LibXmlReader final : public XmlReader {
public:
    LibXmlReader(std::u16string_view text, const ReaderOptions& options)
        : declared_(StartsWithDeclaration(text)), unshield_(options.acceptIllegalCharacters) {
        static const bool initialized = (xmlInitParser(), true);
        (void)initialized;
        RefuseUnreadable(text);
        if (unshield_) {
            utf8_ = ToShieldedUtf8(text);
        } else {
            AppendUtf8(utf8_, text);
        }
        // No entity substitution, no DTD loading, no network. HUGE lifts libxml2's own nesting cap
        // of 256 (too low for a deep expression); Read applies kMaxElementDepth instead.
        const int parseOptions = XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_IGNORE_ENC | XML_PARSE_NOXINCNODE;
        reader_ = xmlReaderForMemory(utf8_.data(), static_cast<int>(utf8_.size()), nullptr, "UTF-8", parseOptions);
        if (reader_ == nullptr) throw XmlError(std::u16string(msg::kReaderFailed), 0, 0);
        xmlTextReaderSetStructuredErrorHandler(reader_, &LibXmlReader::OnError, this);
    }

    ~LibXmlReader() override {
        if (reader_ != nullptr) xmlFreeTextReader(reader_);
    }

    LibXmlReader(const LibXmlReader&) = delete;
    LibXmlReader& operator=(const LibXmlReader&) = delete;

    bool Read() override {
        onAttribute_ = false;
        if (declared_) {
            declared_ = false;
            type_ = NodeType::XmlDeclaration;
            return true;
        }
        int rc;
        {
            rc = xmlTextReaderRead(reader_);
        }
        if (error_) throw *error_;
        if (rc == 0) {
            type_ = NodeType::None;
            return false;
        }
        if (rc < 0) throw XmlError(std::u16string(msg::kUnknownReaderError), line(), 0);
        type_ = MapNodeType(xmlTextReaderNodeType(reader_));
        if (type_ == NodeType::DocumentType) throw XmlError(std::u16string(msg::kDtdProhibited), line(), 0);
        if (type_ == NodeType::Element && xmlTextReaderDepth(reader_) >= kMaxElementDepth) {
            throw XmlError(FormatMessage(msg::kNestedTooDeeply, {Ascii(std::to_string(kMaxElementDepth))}), line(),
                           0);
        }
        return true;
    }

    NodeType nodeType() const override { return type_; }

    std::u16string_view localName() const override {
        if (type_ == NodeType::XmlDeclaration) return u"xml";
        if (type_ == NodeType::None) return {};
        // Names come from the parser's dictionary and live as long as the reader, so the pointer
        // identifies the text: most calls convert nothing.
        const xmlChar* raw = xmlTextReaderConstLocalName(reader_);
        if (raw != lastName_) {
            lastName_ = raw;
            AssignFromUtf8(name_, raw);
        }
        return name_;
    }

    std::u16string_view prefix() const override {
        if (type_ == NodeType::XmlDeclaration || type_ == NodeType::None) return {};
        const xmlChar* raw = xmlTextReaderConstPrefix(reader_);
        if (raw != lastPrefix_) {
            lastPrefix_ = raw;
            AssignFromUtf8(prefix_, raw);
        }
        return prefix_;
    }

    std::u16string_view namespaceUri() const override {
        if (type_ == NodeType::XmlDeclaration || type_ == NodeType::None) return {};
        const xmlChar* raw = xmlTextReaderConstNamespaceUri(reader_);
        if (raw != lastNamespace_) {
            lastNamespace_ = raw;
            AssignFromUtf8(namespace_, raw);
        }
        return namespace_;
    }

    std::u16string_view value() const override {
        if (type_ == NodeType::XmlDeclaration || type_ == NodeType::None) return {};
        AssignFromUtf8(value_, xmlTextReaderConstValue(reader_), unshield_);
        return value_;
    }

    bool isEmptyElement() const override {
        return type_ == NodeType::Element && !onAttribute_ && xmlTextReaderIsEmptyElement(reader_) == 1;
    }

    bool MoveToFirstAttribute() override {
        if (type_ != NodeType::Element) return false;
        return Moved(xmlTextReaderMoveToFirstAttribute(reader_));
    }

    bool MoveToNextAttribute() override {
        if (!onAttribute_) return false;
        return Moved(xmlTextReaderMoveToNextAttribute(reader_));
    }

    void MoveToElement() override {
        if (type_ == NodeType::Element) xmlTextReaderMoveToElement(reader_);
        onAttribute_ = false;
    }

    int line() const override {
        if (type_ == NodeType::XmlDeclaration) return 1;
        xmlNodePtr node = xmlTextReaderCurrentNode(reader_);
        if (node != nullptr && node->type == XML_ATTRIBUTE_NODE) node = node->parent;
        return node != nullptr ? static_cast<int>(xmlGetLineNo(node)) : 0;
    }

    // libxml2 keeps no column per node; only its own errors carry one.
    int column() const override { return type_ == NodeType::XmlDeclaration ? 1 : 0; }

private:
    bool Moved(int rc) {
        if (error_) throw *error_;
        if (rc < 0) throw XmlError(std::u16string(msg::kUnknownReaderError), line(), 0);
        // After the last attribute the reader stays on it: only a move makes it leave.
        if (rc == 1) onAttribute_ = true;
        return rc == 1;
    }

    static void OnError(void* self, xmlErrorPtr error) {
        auto* reader = static_cast<LibXmlReader*>(self);
        if (error == nullptr || error->level < XML_ERR_ERROR || reader->error_) return;
        reader->error_.emplace(ErrorOf(*error));
    }

    MuteGenericErrors mute_;  // first member: muted before the parser exists, until after it is gone
    std::string utf8_;
    xmlTextReaderPtr reader_ = nullptr;
    bool declared_;
    bool unshield_;
    bool onAttribute_ = false;
    NodeType type_ = NodeType::None;
    std::optional<XmlError> error_;
    mutable const xmlChar* lastName_ = nullptr;
    mutable std::u16string name_;
    mutable const xmlChar* lastPrefix_ = nullptr;
    mutable std::u16string prefix_;
    mutable const xmlChar* lastNamespace_ = nullptr;
    mutable std::u16string namespace_;
    mutable std::u16string value_;
};

// A scan through libxml2's SAX2 callbacks: no tree, no node objects, nothing converted.
class SaxScan {
public:
    SaxScan(std::string_view utf8, ScanHandler& handler) : handler_(handler) {
        static const bool initialized = (xmlInitParser(), true);
        (void)initialized;
        ctxt_ = xmlCreateMemoryParserCtxt(utf8.data(), static_cast<int>(utf8.size()));
        if (ctxt_ == nullptr) throw XmlError(std::u16string(msg::kReaderFailed), 0, 0);
        // As the pull reader: no entity substitution, no DTD loading, no network, libxml2's own
        // nesting cap lifted for kMaxElementDepth. Options first: they may set handlers of their own.
        xmlCtxtUseOptions(ctxt_, XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_IGNORE_ENC);
        xmlSwitchEncoding(ctxt_, XML_CHAR_ENCODING_UTF8);
        xmlSAXHandler& sax = *ctxt_->sax;
        sax = xmlSAXHandler{};
        sax.initialized = XML_SAX2_MAGIC;
        sax.startElementNs = &SaxScan::OnStart;
        sax.endElementNs = &SaxScan::OnEnd;
        sax.characters = &SaxScan::OnText;
        sax.ignorableWhitespace = &SaxScan::OnText;
        sax.cdataBlock = &SaxScan::OnCData;
        sax.comment = &SaxScan::OnComment;
        sax.processingInstruction = &SaxScan::OnInstruction;
        sax.internalSubset = &SaxScan::OnDocumentType;
        sax.serror = &SaxScan::OnError;
        ctxt_->_private = this;
    }
    ~SaxScan() { xmlFreeParserCtxt(ctxt_); }
    SaxScan(const SaxScan&) = delete;
    SaxScan& operator=(const SaxScan&) = delete;

    void Run() {
        xmlParseDocument(ctxt_);
        if (thrown_) std::rethrow_exception(thrown_);
        if (error_) throw *error_;
        if (ctxt_->wellFormed == 0) throw XmlError(std::u16string(msg::kUnknownReaderError), ctxt_->input->line, 0);
    }

private:
    static SaxScan& Of(void* ctx) { return *static_cast<SaxScan*>(static_cast<xmlParserCtxtPtr>(ctx)->_private); }
    static std::string_view View(const xmlChar* text) {
        return text != nullptr ? std::string_view(reinterpret_cast<const char*>(text)) : std::string_view();
    }
    static std::string_view View(const xmlChar* text, int length) {
        return {reinterpret_cast<const char*>(text), static_cast<std::size_t>(length)};
    }

    // Runs a handler call; what it throws stops the parser and is thrown again after it.
    template <class Call>
    void Guard(Call call) {
        if (thrown_ || error_) return;
        try {
            call();
        } catch (...) {
            thrown_ = std::current_exception();
            xmlStopParser(ctxt_);
        }
    }
    void Stop(XmlError error) {
        if (!error_) error_.emplace(std::move(error));
        xmlStopParser(ctxt_);
    }

    static void OnStart(void* ctx, const xmlChar* localName, const xmlChar*, const xmlChar* uri, int, const xmlChar**,
                        int count, int, const xmlChar** raw) {
        SaxScan& self = Of(ctx);
        if (self.depth_++ >= kMaxElementDepth) {
            self.Stop(XmlError(FormatMessage(msg::kNestedTooDeeply, {Ascii(std::to_string(kMaxElementDepth))}),
                               self.ctxt_->input->line, 0));
            return;
        }
        self.attributes_.clear();
        for (int i = 0; i < count; ++i) {
            const xmlChar* const* a = raw + 5 * i;  // local name, prefix, URI, value start, value end
            self.attributes_.push_back(ScanAttribute{View(a[0]), View(a[2]), View(a[3], static_cast<int>(a[4] - a[3]))});
        }
        self.Guard([&] { self.handler_.StartElement(View(localName), View(uri), self.attributes_); });
    }
    static void OnEnd(void* ctx, const xmlChar*, const xmlChar*, const xmlChar*) {
        SaxScan& self = Of(ctx);
        --self.depth_;
        self.Guard([&] { self.handler_.EndElement(); });
    }
    static void OnText(void* ctx, const xmlChar* text, int length) {
        SaxScan& self = Of(ctx);
        self.Guard([&] { self.handler_.Characters(View(text, length), false); });
    }
    static void OnCData(void* ctx, const xmlChar* text, int length) {
        SaxScan& self = Of(ctx);
        self.Guard([&] { self.handler_.Characters(View(text, length), true); });
    }
    static void OnComment(void* ctx, const xmlChar*) {
        SaxScan& self = Of(ctx);
        self.Guard([&] { self.handler_.CommentOrInstruction(); });
    }
    static void OnInstruction(void* ctx, const xmlChar*, const xmlChar*) { OnComment(ctx, nullptr); }
    static void OnDocumentType(void* ctx, const xmlChar*, const xmlChar*, const xmlChar*) {
        SaxScan& self = Of(ctx);
        self.Stop(XmlError(std::u16string(msg::kDtdProhibited), self.ctxt_->input->line, 0));
    }
    static void OnError(void* ctx, xmlErrorPtr error) {
        if (error == nullptr || error->level < XML_ERR_ERROR || ctx == nullptr) return;
        SaxScan& self = Of(ctx);
        if (!self.error_) self.error_.emplace(ErrorOf(*error));
    }

    MuteGenericErrors mute_;  // first member: muted before the parser exists, until after it is gone
    ScanHandler& handler_;
    xmlParserCtxtPtr ctxt_ = nullptr;
    int depth_ = 0;
    std::vector<ScanAttribute> attributes_;
    std::optional<XmlError> error_;
    std::exception_ptr thrown_;
};

}  // namespace

std::unique_ptr<XmlReader> CreateStringXmlReader(std::u16string_view text, const ReaderOptions& options) {
    return std::make_unique<LibXmlReader>(text, options);
}

void ScanUtf8Document(std::string_view utf8, ScanHandler& handler) { SaxScan(utf8, handler).Run(); }

}  // namespace qm::xml
