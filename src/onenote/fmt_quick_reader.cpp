#include "onenote/fmt_quick_reader.h"
#include "core/code_point.h"

#include <optional>
#include <string>
#include <vector>

namespace qm::onenote {

namespace {

constexpr std::size_t kMaxDepth = 64;

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

class QuickReader {
public:
    explicit QuickReader(std::u16string_view text) : text_(text) {}

    std::shared_ptr<FMT::Text> Read() {
        auto root = std::make_shared<FMT::Text>();
        std::vector<Open> open{{&root->content, u""}};
        std::u16string pending;  // text not yet added to the innermost element
        while (at_ < text_.size()) {
            const char16_t c = text_[at_];
            if (c == u'<') {
                Add(*open.back().content, pending);
                if (!Tag(open)) return nullptr;
            } else if (c == u'&') {
                if (!Reference(pending)) return nullptr;
            } else {
                const std::size_t begin = at_;
                for (; More() && text_[at_] != u'<' && text_[at_] != u'&'; ++at_) {
                    const char16_t t = text_[at_];
                    if (!IsPlain(t) || (t == u'>' && at_ >= 2 && text_[at_ - 1] == u']' && text_[at_ - 2] == u']')) {
                        return nullptr;
                    }
                }
                pending.append(text_.substr(begin, at_ - begin));
            }
        }
        if (open.size() != 1) return nullptr;
        Add(*open.back().content, pending);
        return root;
    }

private:
    struct Open {
        std::vector<FMT::Item>* content;
        std::u16string_view name;
    };

    // As the mixed content field adds text: joined to a piece of text before it.
    static void Add(std::vector<FMT::Item>& content, std::u16string& text) {
        if (text.empty()) return;
        if (!content.empty()) {
            if (auto* last = std::get_if<std::u16string>(&content.back())) {
                last->append(text);
                text.clear();
                return;
            }
        }
        content.emplace_back(std::in_place_type<std::u16string>, std::move(text));
        text.clear();
    }

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

    // A quoted attribute value, its references replaced and blanks made spaces.
    std::optional<std::u16string> Value() {
        if (!More() || (text_[at_] != u'"' && text_[at_] != u'\'')) return std::nullopt;
        const char16_t quote = text_[at_++];
        std::u16string value;
        while (More() && text_[at_] != quote) {
            const char16_t c = text_[at_];
            if (c == u'&') {
                if (!Reference(value)) return std::nullopt;
                continue;
            }
            if (c == u'<' || !IsPlain(c)) return std::nullopt;
            value += IsBlank(c) ? u' ' : c;
            ++at_;
        }
        if (!More()) return std::nullopt;
        ++at_;
        return value;
    }

    // A start or end tag at '<'.
    bool Tag(std::vector<Open>& open) {
        ++at_;
        if (More() && text_[at_] == u'/') {
            ++at_;
            const std::u16string_view name = Name();
            SkipBlanks();
            if (!More() || text_[at_] != u'>' || open.size() == 1 || name != open.back().name) return false;
            ++at_;
            open.pop_back();
            return true;
        }
        const std::u16string_view name = Name();
        std::vector<FMT::Item>& parent = *open.back().content;
        std::vector<FMT::Item>* content = nullptr;
        std::optional<std::u16string>* first = nullptr;   // style or href
        std::optional<std::u16string>* second = nullptr;  // lang
        if (name == u"span") {
            auto span = std::make_shared<FMT::span>();
            first = &span->style;
            second = &span->lang;
            content = &span->content;
            parent.emplace_back(std::move(span));
        } else if (name == u"a") {
            auto anchor = std::make_shared<FMT::a>();
            first = &anchor->href;
            content = &anchor->content;
            parent.emplace_back(std::move(anchor));
        } else {
            return false;
        }
        for (;;) {
            const std::size_t before = at_;
            SkipBlanks();
            if (!More()) return false;
            if (text_[at_] == u'>') {
                ++at_;
                if (open.size() > kMaxDepth) return false;
                open.push_back(Open{content, name});
                return true;
            }
            if (text_[at_] == u'/') {
                ++at_;
                if (!More() || text_[at_] != u'>') return false;
                ++at_;
                return true;
            }
            if (at_ == before) return false;  // attributes stand apart
            const std::u16string_view attribute = Name();
            SkipBlanks();
            if (!More() || text_[at_] != u'=') return false;
            ++at_;
            SkipBlanks();
            std::optional<std::u16string>* slot = nullptr;
            if (attribute == (second != nullptr ? u"style" : u"href")) {
                slot = first;
            } else if (second != nullptr && attribute == u"lang") {
                slot = second;
            }
            if (slot == nullptr || slot->has_value()) return false;
            *slot = Value();
            if (!slot->has_value()) return false;
        }
    }

    std::u16string_view text_;
    std::size_t at_ = 0;
};

}  // namespace

std::shared_ptr<FMT::Text> ReadSimpleMarkup(std::u16string_view prepared) { return QuickReader(prepared).Read(); }

}  // namespace qm::onenote
