#include "onenote/given_page.h"

#include <vector>

#include "core/text.h"
#include "onenote/plain_text.h"
#include "xml/xml_chars.h"
#include "xml/xml_error.h"
#include "xml/xml_reader.h"
#include "xml/xml_scan.h"
#include "xml/xml_writer.h"

namespace qm::onenote::detail {

namespace {

constexpr std::string_view kDeclarationLine = "<?xml version=\"1.0\"?>\n";

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

bool IsOneNote(std::string_view uri) {
    if (uri.size() != ON::kNamespace.size()) return false;
    for (std::size_t i = 0; i < uri.size(); ++i) {
        if (static_cast<char16_t>(static_cast<unsigned char>(uri[i])) != ON::kNamespace[i]) return false;
    }
    return true;
}

// Whether the text holds only characters the file form carries as they are: no control
// characters but tab and line feed (a carriage return would not read back), no unpaired
// surrogates, no U+FFFE or U+FFFF, and no character references (which may stand for characters
// XML cannot carry, and need the shielded reading).
bool HoldsOnlyPlainCharacters(std::u16string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        for (; i + 4 <= text.size(); i += 4) {
            const xml::FourUnits four(text.data() + i);
            if (!four.Ascii() || four.AnyBelow(0x20) || four.Any(u'&')) break;
        }
        if (i == text.size()) break;
        const char16_t c = text[i];
        if (c >= 0x20 && c < 0xD800 && c != u'&') continue;
        if (c == u'&') {
            if (i + 1 < text.size() && text[i + 1] == u'#') return false;
        } else if (c == u'\r' || !xml::IsXmlChar(text, i)) {
            return false;
        }
    }
    return true;
}

// Thrown through the scan to end it at the first thing unusual.
struct Unusual {};

// Follows the scan: the layout the binding writes (checked as it goes), the root's attributes and
// the title's text. Anything else is unusual.
class PageScan final : public xml::ScanHandler {
public:
    explicit PageScan(GivenPage& page) : page_(page) {}

    void StartElement(std::string_view localName, std::string_view namespaceUri,
                      std::span<const xml::ScanAttribute> attributes) override {
        const std::size_t depth = open_.size();
        if (!IsOneNote(namespaceUri)) throw Unusual{};
        if (depth > 0) {
            Open& parent = open_.back();
            if (!parent.mixed && !IsIndentation(depth)) throw Unusual{};
            parent.hasChildren = true;
        }
        pending_.clear();
        const bool mixed = depth > 0 && open_.back().mixed;
        Part part = Part::Other;
        if (depth == 0) {
            if (localName != "Page") throw Unusual{};
            ReadRootAttributes(attributes);
        } else if (depth == 1 && localName == "Title") {
            if (page_.titleText) throw Unusual{};
            page_.titleText.emplace();
            part = Part::Title;
        } else if (depth == 2 && open_.back().part == Part::Title && localName == "OE") {
            if (sawTitleParagraph_) throw Unusual{};
            sawTitleParagraph_ = true;
            part = Part::TitleParagraph;
        } else if (depth == 3 && open_.back().part == Part::TitleParagraph && localName == "T") {
            part = Part::TitleText;
            runText_.clear();
        } else if (depth > 0 && open_.back().part == Part::TitleText) {
            throw Unusual{};  // markup inside a run is text, never elements
        }
        open_.push_back(Open{part, mixed, false});
    }

    void EndElement() override {
        const Open& top = open_.back();
        if (top.hasChildren && !top.mixed && !IsIndentation(open_.size() - 1)) throw Unusual{};
        if (top.part == Part::TitleText) *page_.titleText += PlainText(FromUtf8(runText_));
        pending_.clear();
        open_.pop_back();
    }

    void Characters(std::string_view text, bool cdata) override {
        if (open_.empty()) return;
        Open& top = open_.back();
        if (top.part == Part::TitleText) runText_ += text;
        if (top.mixed) return;
        if (cdata || text.find_first_not_of(" \t\n") != std::string_view::npos) {
            top.mixed = true;
            return;
        }
        if (pending_.size() <= kMaxIndentation) pending_ += text;
    }

    void CommentOrInstruction() override { throw Unusual{}; }

private:
    enum class Part { Other, Title, TitleParagraph, TitleText };
    struct Open {
        Part part;
        bool mixed;  // text stands here or in an ancestor: no more indentation inside
        bool hasChildren;
    };
    static constexpr std::size_t kMaxIndentation = 2 * xml::kMaxElementDepth + 1;

    // The blanks before a tag at this depth, as the binding indents: a line break, two spaces a level.
    bool IsIndentation(std::size_t depth) const {
        return pending_.size() == 1 + 2 * depth && pending_[0] == '\n' &&
               pending_.find_first_not_of(' ', 1) == std::string::npos;
    }

    void ReadRootAttributes(std::span<const xml::ScanAttribute> attributes) {
        for (const auto& a : attributes) {
            if (!a.namespaceUri.empty()) continue;
            if (a.localName == "ID") {
                page_.id = FromUtf8(a.value);
            } else if (a.localName == "name") {
                page_.name = FromUtf8(a.value);
            } else if (a.localName == "dateTime") {
                ON::FromXml(FromUtf8(a.value), page_.dateTime.emplace());
            } else if (a.localName == "pageLevel") {
                ON::FromXml(FromUtf8(a.value), page_.pageLevel.emplace());
            }
        }
        if (page_.id.empty()) throw Unusual{};
    }

    GivenPage& page_;
    std::vector<Open> open_;
    std::string pending_;  // the blanks since the last tag
    std::string runText_;  // of the title's run being read
    bool sawTitleParagraph_ = false;
};

// Where the root's start tag ends, and the attributes in it with the blanks before each.
struct RootTag {
    struct Attribute {
        std::string_view name;
        std::size_t start;  // of the blanks before it
        std::size_t end;    // after its closing quote
    };
    std::size_t nameEnd = 0;
    std::size_t end = 0;
    std::vector<Attribute> attributes;
};

// Splits the start tag at `start`; the scan has found the document well-formed, so the tag is.
RootTag SplitRootTag(std::string_view bytes, std::size_t start) {
    RootTag tag;
    std::size_t i = start + 1;
    while (i < bytes.size() && !IsBlank(bytes[i]) && bytes[i] != '>' && bytes[i] != '/') ++i;
    tag.nameEnd = i;
    while (i < bytes.size()) {
        const std::size_t before = i;
        while (i < bytes.size() && IsBlank(bytes[i])) ++i;
        if (i >= bytes.size() || bytes[i] == '>' || bytes[i] == '/') {
            tag.end = before;
            return tag;
        }
        const std::size_t nameStart = i;
        while (i < bytes.size() && bytes[i] != '=' && !IsBlank(bytes[i])) ++i;
        const std::string_view name = bytes.substr(nameStart, i - nameStart);
        i = bytes.find_first_of("\"'", i);
        if (i == std::string_view::npos) break;
        i = bytes.find(bytes[i], i + 1);
        if (i == std::string_view::npos) break;
        ++i;
        tag.attributes.push_back(RootTag::Attribute{name, before, i});
    }
    tag.end = bytes.size();
    return tag;
}

void AppendAttribute(std::string& out, std::string_view name, std::u16string_view value) {
    std::u16string escaped;
    xml::AppendEscaped(escaped, value, xml::EscapeMode::Attribute, xml::IllegalCharacters::Reference);
    out += ' ';
    out += name;
    out += "=\"";
    xml::AppendUtf8(out, escaped);
    out += '"';
}

}  // namespace

std::optional<GivenPage> ReadGivenPage(std::u16string_view xml) {
    if (!HoldsOnlyPlainCharacters(xml)) return std::nullopt;
    GivenPage page;
    xml::AppendUtf8(page.bytes, xml);
    // The root element right after the declaration's line: a comment or instruction there is
    // unusual anyway, and the root's start tag is then where PageFileBytes looks for it.
    if (!page.bytes.starts_with(kDeclarationLine) || page.bytes.size() == kDeclarationLine.size() ||
        page.bytes[kDeclarationLine.size()] != '<') {
        return std::nullopt;
    }
    PageScan scan(page);
    try {
        xml::ScanUtf8Document(page.bytes, scan);
    } catch (const Unusual&) {
        return std::nullopt;
    } catch (const xml::XmlError&) {
        return std::nullopt;  // the binding says what is wrong
    }
    return page;
}

std::string PageFileBytes(const GivenPage& page, const ON::String& name, const ON::DateTime& lastModified) {
    const std::string_view bytes = page.bytes;
    const RootTag tag = SplitRootTag(bytes, kDeclarationLine.size());
    std::string out;
    out.reserve(bytes.size() + 256);
    out += bytes.substr(0, tag.nameEnd);
    for (const auto& attribute : tag.attributes) {
        if (attribute.name == "name" || attribute.name == "lastModifiedTime") continue;
        out += bytes.substr(attribute.start, attribute.end - attribute.start);
        if (attribute.name == "ID") {
            if (name) AppendAttribute(out, "name", *name);
            AppendAttribute(out, "lastModifiedTime", ON::ToXml(lastModified));
        }
    }
    std::size_t end = bytes.size();
    while (end > tag.end && IsBlank(bytes[end - 1])) --end;
    out += bytes.substr(tag.end, end - tag.end);
    out += '\n';
    return out;
}

}  // namespace qm::onenote::detail
