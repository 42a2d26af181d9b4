#include "onenote/fmt_quick_reader.h"
#include "core/code_point.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace qm::onenote {

namespace {

constexpr std::size_t kMaxDepth = 64;
constexpr std::u16string_view kSpan = u"span", kAnchor = u"a", kStyle = u"style", kHref = u"href", kLang = u"lang";

bool IsBlank(char16_t c) { return c == u' ' || c == u'\t' || c == u'\n'; }

// What text and attribute values may hold as they are. Carriage returns (which the XML reader
// turns into line feeds), null characters (which it refuses) and the units of the plane that
// shielding uses (xml_chars.h) are left to the XML reader.
bool IsPlain(char16_t c) { return c != u'\r' && c != u'\0' && (c < 0xDBC0 || c > 0xDBFF); }

bool IsNameStart(char16_t c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_'; }
bool IsNameChar(char16_t c) { return IsNameStart(c) || (c >= u'0' && c <= u'9') || c == u'-' || c == u'.'; }

// The characters a character reference may stand for here: those XML allows (carriage returns
// and the shielding plane left out).
bool IsReferable(char32_t c) {
    return c == 0x9 || c == 0xA || (c >= 0x20 && c <= 0xD7FF) || (c >= 0xE000 && c <= 0xFFFD) ||
           (c >= 0x10000 && c < 0x100000);
}

// An attribute value as read: `text` is the value itself, in the markup or in a buffer.
struct Value {
    bool present = false;
    std::u16string_view text;

    std::optional<std::u16string_view> View() const { return present ? std::optional(text) : std::nullopt; }
    std::optional<std::u16string> Copy() const { return present ? std::optional(std::u16string(text)) : std::nullopt; }
};

// The reader hands what it reads to a sink: text, `span` and `a` starts, element ends.
template <class Sink>
class QuickReader {
public:
    QuickReader(std::u16string_view text, Sink& sink) : text_(text), sink_(sink) {}

    bool Read() {
        while (at_ < text_.size()) {
            const char16_t c = text_[at_];
            if (c == u'<') {
                if (!Tag()) return false;
            } else if (c == u'&') {
                reference_.clear();
                if (!Reference(reference_)) return false;
                sink_.Text(reference_);
            } else {
                const std::size_t begin = at_;
                for (; More(); ++at_) {
                    const char16_t t = text_[at_];
                    if (t > u'>' && t < 0xDBC0) continue;  // most characters, at one test
                    if (t == u'<' || t == u'&') break;
                    if (!IsPlain(t) || (t == u'>' && at_ >= 2 && text_[at_ - 1] == u']' && text_[at_ - 2] == u']')) {
                        return false;
                    }
                }
                sink_.Text(text_.substr(begin, at_ - begin));
            }
        }
        return depth_ == 0;
    }

private:
    bool More() const { return at_ < text_.size(); }
    void SkipBlanks() {
        while (More() && IsBlank(text_[at_])) ++at_;
    }

    std::u16string_view Name() {
        const std::size_t begin = at_;
        if (!More() || !IsNameStart(text_[at_])) return {};
        while (More() && IsNameChar(text_[at_])) ++at_;
        return text_.substr(begin, at_ - begin);
    }

    // A reference at '&', appended to `out`.
    bool Reference(std::u16string& out) {
        const std::size_t end = text_.find(u';', at_);
        if (end == std::u16string_view::npos || end - at_ > 12) return false;
        const std::u16string_view name = text_.substr(at_ + 1, end - at_ - 1);
        at_ = end + 1;
        if (name == u"amp") {
            out += u'&';
        } else if (name == u"lt") {
            out += u'<';
        } else if (name == u"gt") {
            out += u'>';
        } else if (name == u"quot") {
            out += u'"';
        } else if (name == u"apos") {
            out += u'\'';
        } else if (name.size() >= 2 && name[0] == u'#') {
            const bool hex = name[1] == u'x';
            const std::u16string_view digits = name.substr(hex ? 2 : 1);
            if (digits.empty()) return false;
            char32_t value = 0;
            for (const char16_t d : digits) {
                int digit;
                if (d >= u'0' && d <= u'9') {
                    digit = d - u'0';
                } else if (hex && d >= u'a' && d <= u'f') {
                    digit = d - u'a' + 10;
                } else if (hex && d >= u'A' && d <= u'F') {
                    digit = d - u'A' + 10;
                } else {
                    return false;
                }
                value = value * (hex ? 16 : 10) + static_cast<char32_t>(digit);
                if (value > 0x10FFFF) return false;
            }
            if (!IsReferable(value)) return false;
            AppendCodePoint(out, value);
        } else {
            return false;
        }
        return true;
    }

    // A quoted attribute value, its references replaced and blanks made spaces: the markup
    // itself when it holds neither, else `buffer`.
    bool ReadValue(Value& value, std::u16string& buffer) {
        if (!More() || (text_[at_] != u'"' && text_[at_] != u'\'')) return false;
        const char16_t quote = text_[at_++];
        const std::size_t begin = at_;
        for (; More(); ++at_) {
            const char16_t c = text_[at_];
            if (c > u'>' && c < 0xDBC0) continue;  // most characters, at one test
            if (c == quote || c == u'&' || c == u'<' || !IsPlain(c) || (c != u' ' && IsBlank(c))) break;
        }
        if (More() && text_[at_] == quote) {
            value = Value{true, text_.substr(begin, at_ - begin)};
            ++at_;
            return true;
        }
        buffer.assign(text_.substr(begin, at_ - begin));
        while (More() && text_[at_] != quote) {
            const char16_t c = text_[at_];
            if (c == u'&') {
                if (!Reference(buffer)) return false;
                continue;
            }
            if (c == u'<' || !IsPlain(c)) return false;
            buffer += IsBlank(c) ? u' ' : c;
            ++at_;
        }
        if (!More()) return false;
        ++at_;
        value = Value{true, buffer};
        return true;
    }

    // A start or end tag at '<'.
    bool Tag() {
        ++at_;
        if (More() && text_[at_] == u'/') {
            ++at_;
            const std::u16string_view name = Name();
            SkipBlanks();
            if (!More() || text_[at_] != u'>' || depth_ == 0 || name != (isSpan_[depth_ - 1] ? kSpan : kAnchor)) {
                return false;
            }
            ++at_;
            --depth_;
            sink_.Close();
            return true;
        }
        const std::u16string_view name = Name();
        const bool span = name == kSpan;
        if (!span && name != kAnchor) return false;
        Value first, second;  // style or href; lang
        for (;;) {
            const std::size_t before = at_;
            SkipBlanks();
            if (!More()) return false;
            const bool empty = text_[at_] == u'/';
            if (text_[at_] == u'>' || empty) {
                ++at_;
                if (empty) {
                    if (!More() || text_[at_] != u'>') return false;
                    ++at_;
                } else if (depth_ == kMaxDepth) {
                    return false;
                }
                if (span) {
                    sink_.OpenSpan(first, second);
                } else {
                    sink_.OpenAnchor(first);
                }
                if (empty) {
                    sink_.Close();
                } else {
                    isSpan_[depth_++] = span;
                }
                return true;
            }
            if (at_ == before) return false;  // attributes stand apart
            const std::u16string_view attribute = Name();
            SkipBlanks();
            if (!More() || text_[at_] != u'=') return false;
            ++at_;
            SkipBlanks();
            Value* slot = nullptr;
            std::u16string* buffer = nullptr;
            if (attribute == (span ? kStyle : kHref)) {
                slot = &first;
                buffer = &firstBuffer_;
            } else if (span && attribute == kLang) {
                slot = &second;
                buffer = &secondBuffer_;
            }
            if (slot == nullptr || slot->present || !ReadValue(*slot, *buffer)) return false;
        }
    }

    std::u16string_view text_;
    Sink& sink_;
    std::size_t at_ = 0;
    std::array<bool, kMaxDepth> isSpan_{};  // the open elements, outer to inner: span or a
    std::size_t depth_ = 0;
    std::u16string reference_, firstBuffer_, secondBuffer_;
};

// Builds the tree the FMT binding would.
class TreeSink {
public:
    explicit TreeSink(FMT::Text& root) { open_.push_back(&root.content); }

    // As the mixed content field adds text: joined to a piece of text before it.
    void Text(std::u16string_view text) {
        if (text.empty()) return;
        std::vector<FMT::Item>& content = *open_.back();
        if (!content.empty()) {
            if (auto* last = std::get_if<std::u16string>(&content.back())) {
                last->append(text);
                return;
            }
        }
        content.emplace_back(std::in_place_type<std::u16string>, text);
    }
    void OpenSpan(const Value& style, const Value& lang) {
        auto span = std::make_shared<FMT::span>();
        span->style = style.Copy();
        span->lang = lang.Copy();
        open_.push_back(&span->content);
        open_[open_.size() - 2]->emplace_back(std::move(span));
    }
    void OpenAnchor(const Value& href) {
        auto anchor = std::make_shared<FMT::a>();
        anchor->href = href.Copy();
        open_.push_back(&anchor->content);
        open_[open_.size() - 2]->emplace_back(std::move(anchor));
    }
    void Close() { open_.pop_back(); }

private:
    std::vector<std::vector<FMT::Item>*> open_;
};

// Hands the events to a RunBuilder or a SummaryBuilder.
template <class Builder>
class BuilderSink {
public:
    explicit BuilderSink(Builder& builder) : builder_(builder) {}
    void Text(std::u16string_view text) { builder_.Text(text); }
    void OpenSpan(const Value& style, const Value& lang) { builder_.OpenSpan(style.View(), lang.View()); }
    void OpenAnchor(const Value& href) { builder_.OpenAnchor(href.View()); }
    void Close() { builder_.Close(); }

private:
    Builder& builder_;
};

template <class Builder>
auto Build(std::u16string_view prepared, std::size_t markupSize) -> std::optional<decltype(Builder(0).Take())> {
    Builder builder(markupSize);
    BuilderSink<Builder> sink(builder);
    if (!QuickReader(prepared, sink).Read()) return std::nullopt;
    return builder.Take();
}

}  // namespace

std::shared_ptr<FMT::Text> ReadSimpleMarkup(std::u16string_view prepared) {
    auto root = std::make_shared<FMT::Text>();
    TreeSink sink(*root);
    return QuickReader(prepared, sink).Read() ? root : nullptr;
}

std::optional<std::vector<TextRun>> ReadSimpleRuns(std::u16string_view prepared, std::size_t markupSize) {
    return Build<RunBuilder>(prepared, markupSize);
}

std::optional<TextSummary> ReadSimpleSummary(std::u16string_view prepared, std::size_t markupSize) {
    return Build<SummaryBuilder>(prepared, markupSize);
}

}  // namespace qm::onenote
