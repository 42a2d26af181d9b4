// The pull reader over XmlLite. XmlLite has no import library for this toolchain, so xmllite.dll is
// loaded when the first reader is made. The document is handed over as UTF-8 with the encoding
// forced, the declaration's own label ignored, as the other platforms' reader sees it. What XmlLite
// reports differently (its own declaration node, blanks outside the root element) is evened out
// here so that every platform reports the same nodes; references to blanks and beyond U+FFFF are
// shielded before parsing (xml_chars.h), so that no XmlLite (Wine's included) can alter them.
#include <windows.h>
#include <objidl.h>
#include <shlwapi.h>
#include <xmllite.h>
#undef FormatMessage  // the system's macro; ours is qm::FormatMessage

#include <string>
#include <vector>

#include "core/format.h"
#include "core/text.h"
#include "xml/messages.h"
#include "xml/reader_prolog.h"
#include "xml/com_ptr_win32.h"
#include "xml/xml_chars.h"
#include "xml/xml_error.h"
#include "xml/xml_reader.h"
#include "xml/xml_scan.h"

namespace qm::xml {
namespace {

using CreateReaderFn = HRESULT(WINAPI*)(REFIID, void**, IMalloc*);
using CreateInputFn = HRESULT(WINAPI*)(IUnknown*, IMalloc*, LPCWSTR, BOOL, LPCWSTR, IUnknown**);

struct XmlLite {
    CreateReaderFn createReader = nullptr;
    CreateInputFn createInput = nullptr;
};

// Loaded once for the process and never unloaded.
const XmlLite& LoadXmlLite() {
    static const XmlLite lite = [] {
        XmlLite l;
        if (HMODULE module = ::LoadLibraryW(L"xmllite.dll")) {
            l.createReader = reinterpret_cast<CreateReaderFn>(
                reinterpret_cast<void*>(::GetProcAddress(module, "CreateXmlReader")));
            l.createInput = reinterpret_cast<CreateInputFn>(
                reinterpret_cast<void*>(::GetProcAddress(module, "CreateXmlReaderInputWithEncodingName")));
        }
        return l;
    }();
    return lite;
}

NodeType MapNodeType(XmlNodeType type) {
    switch (type) {
        case XmlNodeType_Element: return NodeType::Element;
        case XmlNodeType_EndElement: return NodeType::EndElement;
        case XmlNodeType_Text: return NodeType::Text;
        case XmlNodeType_Whitespace: return NodeType::Whitespace;
        case XmlNodeType_CDATA: return NodeType::CDATA;
        case XmlNodeType_Comment: return NodeType::Comment;
        case XmlNodeType_ProcessingInstruction: return NodeType::ProcessingInstruction;
        case XmlNodeType_DocumentType: return NodeType::DocumentType;
        case XmlNodeType_XmlDeclaration: return NodeType::XmlDeclaration;
        default: return NodeType::Other;
    }
}

// XmlLite's failure codes in words, by kind.
std::u16string ErrorText(HRESULT hr) {
    switch (static_cast<unsigned long>(hr)) {
        case MX_E_INPUTEND: return std::u16string(msg::kUnexpectedEnd);
        case MX_E_ENCODING:
        case MX_E_ENCODINGSWITCH:
        case MX_E_ENCODINGSIGNATURE:
        case XML_E_INVALIDENCODING: return std::u16string(msg::kBadEncoding);
        case WC_E_XMLCHARACTER:
        case XML_E_INVALID_UNICODE: return std::u16string(msg::kIllegalCharacter);
        case WC_E_NAMECHARACTER:
        case WC_E_NAME:
        case NC_E_QNAMECHARACTER:
        case NC_E_QNAMECOLON:
        case NC_E_NAMECOLON: return std::u16string(msg::kBadName);
        case WC_E_WHITESPACE:
        case WC_E_SYNTAX:
        case WC_E_CDSECT:
        case WC_E_COMMENT:
        case WC_E_PI:
        case WC_E_XMLDECL:
        case WC_E_LEADINGXML:
        case WC_E_MOREDATA: return std::u16string(msg::kBadSyntax);
        case WC_E_SEMICOLON:
        case WC_E_GREATERTHAN:
        case WC_E_QUOTE:
        case WC_E_EQUAL: return std::u16string(msg::kMissingPunctuation);
        case WC_E_LESSTHAN: return std::u16string(msg::kLessThanInAttribute);
        case WC_E_ROOTELEMENT: return std::u16string(msg::kSecondRoot);
        case WC_E_ELEMENTMATCH: return std::u16string(msg::kTagMismatch);
        case WC_E_UNIQUEATTRIBUTE: return std::u16string(msg::kDuplicateAttribute);
        case WC_E_UNDECLAREDENTITY: return std::u16string(msg::kUndeclaredEntity);
        case NC_E_UNDECLAREDPREFIX: return std::u16string(msg::kUndeclaredPrefix);
        case WC_E_HEXDIGIT:
        case WC_E_DIGIT:
        case XML_E_INVALID_DECIMAL:
        case XML_E_INVALID_HEXIDECIMAL: return std::u16string(msg::kBadCharacterReference);
        case WC_E_DTDPROHIBITED:
        case WC_E_DECLDOCTYPE: return std::u16string(msg::kDtdProhibited);
        default: break;
    }
    char code[16];
    std::snprintf(code, sizeof code, "%08lX", static_cast<unsigned long>(hr));
    return FormatMessage(msg::kXmlLiteError, {Ascii(code)});
}

class XmlLiteReader final : public XmlReader {
public:
    XmlLiteReader(std::u16string_view text, const ReaderOptions& options)
        : declared_(StartsWithDeclaration(text)),
          shield_{.illegal = options.acceptIllegalCharacters, .blankReferences = true} {
        RefuseUnreadable(text);
        const XmlLite& lite = LoadXmlLite();
        if (lite.createReader == nullptr || lite.createInput == nullptr) {
            throw XmlError(std::u16string(msg::kXmlLiteUnavailable), 0, 0);
        }
        const std::string utf8 = ToShieldedUtf8(text, shield_);
        ComPtr<IStream> stream;
        *stream.Out() = ::SHCreateMemStream(reinterpret_cast<const BYTE*>(utf8.data()), static_cast<UINT>(utf8.size()));
        ComPtr<IUnknown> input;
        // No DTD (the default, said anyway), no resolver (nothing is fetched) and no depth cap of
        // XmlLite's own (256 by default, too low for a deep expression): Read applies
        // kMaxElementDepth instead.
        if (stream.get() == nullptr ||
            FAILED(lite.createReader(__uuidof(IXmlReader), reinterpret_cast<void**>(reader_.Out()), nullptr)) ||
            FAILED(lite.createInput(stream.get(), nullptr, L"utf-8", FALSE, nullptr, input.Out())) ||
            FAILED(reader_->SetProperty(XmlReaderProperty_DtdProcessing, DtdProcessing_Prohibit)) ||
            FAILED(reader_->SetProperty(XmlReaderProperty_XmlResolver, 0)) ||
            FAILED(reader_->SetProperty(XmlReaderProperty_MaxElementDepth, 0)) ||
            FAILED(reader_->SetInput(input.get()))) {
            throw XmlError(std::u16string(msg::kReaderFailed), 0, 0);
        }
    }

    XmlLiteReader(const XmlLiteReader&) = delete;
    XmlLiteReader& operator=(const XmlLiteReader&) = delete;

    bool Read() override {
        onAttribute_ = false;
        if (declared_) {
            declared_ = false;
            type_ = NodeType::XmlDeclaration;
            return true;
        }
        for (;;) {
            XmlNodeType raw = XmlNodeType_None;
            const HRESULT hr = reader_->Read(&raw);
            if (FAILED(hr)) {
                throw XmlError(ErrorText(hr), Position(&IXmlReader::GetLineNumber),
                               Position(&IXmlReader::GetLinePosition));
            }
            if (hr == S_FALSE) {
                type_ = NodeType::None;
                return false;
            }
            type_ = MapNodeType(raw);
            // Declared documents report the declaration once, above; blanks outside the root
            // element are no node on any platform.
            if (type_ == NodeType::XmlDeclaration) continue;
            if (type_ == NodeType::Whitespace && Depth() == 0) continue;
            break;
        }
        line_ = Position(&IXmlReader::GetLineNumber);
        if (type_ == NodeType::DocumentType) throw XmlError(std::u16string(msg::kDtdProhibited), line_, 0);
        if (type_ == NodeType::Element && Depth() >= kMaxElementDepth) {
            throw XmlError(FormatMessage(msg::kNestedTooDeeply, {Ascii(std::to_string(kMaxElementDepth))}), line_, 0);
        }
        return true;
    }

    NodeType nodeType() const override { return type_; }

    std::u16string_view localName() const override {
        if (type_ == NodeType::XmlDeclaration) return u"xml";
        return Text(&IXmlReader::GetLocalName);
    }
    std::u16string_view prefix() const override { return Text(&IXmlReader::GetPrefix); }
    std::u16string_view namespaceUri() const override { return Text(&IXmlReader::GetNamespaceUri); }

    std::u16string_view value() const override {
        const std::u16string_view raw = Text(&IXmlReader::GetValue);
        value_.clear();
        for (std::size_t i = 0; i < raw.size(); ++i) {
            const char16_t c = raw[i];
            if (c >= 0xD800 && c <= 0xDBFF && i + 1 < raw.size() && raw[i + 1] >= 0xDC00 && raw[i + 1] <= 0xDFFF) {
                const char32_t point = 0x10000 + ((static_cast<char32_t>(c) - 0xD800) << 10) + (raw[i + 1] - 0xDC00);
                if (const auto unit = Unshield(point, shield_)) {
                    value_ += *unit;
                    ++i;
                    continue;
                }
            }
            value_ += c;
        }
        return value_;
    }

    bool isEmptyElement() const override {
        return type_ == NodeType::Element && !onAttribute_ && reader_->IsEmptyElement();
    }

    bool MoveToFirstAttribute() override {
        if (type_ != NodeType::Element) return false;
        return Moved(reader_->MoveToFirstAttribute());
    }

    bool MoveToNextAttribute() override {
        if (!onAttribute_) return false;
        return Moved(reader_->MoveToNextAttribute());
    }

    void MoveToElement() override {
        if (type_ == NodeType::Element) reader_->MoveToElement();
        onAttribute_ = false;
    }

    // Of the node's start, also while on one of its attributes. Like every platform's reader, the
    // column of a node is not told (0); only the reader's own errors carry one.
    int line() const override { return type_ == NodeType::XmlDeclaration ? 1 : line_; }
    int column() const override { return type_ == NodeType::XmlDeclaration ? 1 : 0; }

private:
    bool Moved(HRESULT hr) {
        if (FAILED(hr)) throw XmlError(ErrorText(hr), line_, 0);
        // After the last attribute the reader stays on it: only a move makes it leave.
        if (hr == S_OK) onAttribute_ = true;
        return hr == S_OK;
    }

    int Depth() const {
        UINT depth = 0;
        reader_->GetDepth(&depth);
        return static_cast<int>(depth);
    }

    int Position(HRESULT (STDMETHODCALLTYPE IXmlReader::*get)(UINT*)) const {
        UINT n = 0;
        return SUCCEEDED((reader_.get()->*get)(&n)) ? static_cast<int>(n) : 0;
    }

    // XmlLite's texts live until the reader moves; wchar_t is UTF-16 here.
    std::u16string_view Text(HRESULT (STDMETHODCALLTYPE IXmlReader::*get)(LPCWSTR*, UINT*)) const {
        if (type_ == NodeType::XmlDeclaration || type_ == NodeType::None) return {};
        LPCWSTR text = nullptr;
        UINT length = 0;
        if (FAILED((reader_.get()->*get)(&text, &length)) || text == nullptr) return {};
        return {reinterpret_cast<const char16_t*>(text), length};
    }

    ComPtr<IXmlReader> reader_;
    bool declared_;
    ShieldOptions shield_;
    bool onAttribute_ = false;
    NodeType type_ = NodeType::None;
    int line_ = 0;
    mutable std::u16string value_;
};

}  // namespace

std::unique_ptr<XmlReader> CreateStringXmlReader(std::u16string_view text, const ReaderOptions& options) {
    return std::make_unique<XmlLiteReader>(text, options);
}

// The pull reader serves the scan here: the document is decoded and read node by node.
void ScanUtf8Document(std::string_view utf8, ScanHandler& handler) {
    XmlLiteReader reader(Utf8ToUtf16(utf8), ReaderOptions{});
    std::vector<std::string> texts;  // local name, namespace and value of each attribute
    std::vector<ScanAttribute> attributes;
    while (reader.Read()) {
        switch (reader.nodeType()) {
            case NodeType::Element: {
                const std::string name = ToUtf8(reader.localName());
                const std::string uri = ToUtf8(reader.namespaceUri());
                const bool empty = reader.isEmptyElement();
                texts.clear();
                for (bool more = reader.MoveToFirstAttribute(); more; more = reader.MoveToNextAttribute()) {
                    if (reader.namespaceUri() == kXmlnsNamespace) continue;
                    texts.push_back(ToUtf8(reader.localName()));
                    texts.push_back(ToUtf8(reader.namespaceUri()));
                    texts.push_back(ToUtf8(reader.value()));
                }
                reader.MoveToElement();
                attributes.clear();
                for (std::size_t i = 0; i < texts.size(); i += 3) {
                    attributes.push_back(ScanAttribute{texts[i], texts[i + 1], texts[i + 2]});
                }
                handler.StartElement(name, uri, attributes);
                if (empty) handler.EndElement();
                break;
            }
            case NodeType::EndElement: handler.EndElement(); break;
            case NodeType::Text:
            case NodeType::Whitespace: handler.Characters(ToUtf8(reader.value()), false); break;
            case NodeType::CDATA: handler.Characters(ToUtf8(reader.value()), true); break;
            case NodeType::Comment:
            case NodeType::ProcessingInstruction: handler.CommentOrInstruction(); break;
            default: break;
        }
    }
}

}  // namespace qm::xml
