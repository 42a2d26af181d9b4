#include "onenote/fmt_runs.h"

#include <algorithm>
#include <unordered_map>

namespace qm::onenote {

namespace {

bool IsCssBlank(char16_t c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\f'; }

std::u16string_view Trim(std::u16string_view text) {
    while (!text.empty() && IsCssBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsCssBlank(text.back())) text.remove_suffix(1);
    return text;
}

// Where each name stands in a list of declarations. A style of a few declarations is searched
// from the start, as fast as any index; from kLinear on, a map keeps a style with many
// declarations from being read in quadratic time.
class CssIndex {
public:
    explicit CssIndex(CssDeclarations& declarations) : declarations_(declarations) {}

    void Set(std::u16string_view name, std::u16string_view value) {
        if (CssDeclaration* declaration = Find(name)) {
            declaration->value.assign(value);
            return;
        }
        if (!places_.empty()) places_.emplace(std::u16string(name), declarations_.size());
        declarations_.push_back(CssDeclaration{std::u16string(name), std::u16string(value)});
    }

private:
    static constexpr std::size_t kLinear = 8;

    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::u16string_view text) const { return std::hash<std::u16string_view>{}(text); }
    };

    CssDeclaration* Find(std::u16string_view name) {
        if (places_.empty() && declarations_.size() <= kLinear) {
            for (CssDeclaration& d : declarations_) {
                if (d.name == name) return &d;
            }
            return nullptr;
        }
        if (places_.empty()) {
            for (std::size_t i = 0; i < declarations_.size(); ++i) places_.emplace(declarations_[i].name, i);
        }
        const auto place = places_.find(name);
        return place == places_.end() ? nullptr : &declarations_[place->second];
    }

    CssDeclarations& declarations_;
    std::unordered_map<std::u16string, std::size_t, Hash, std::equal_to<>> places_;
};

void AddDeclaration(CssIndex& index, std::u16string_view piece, std::u16string& lower) {
    const std::size_t colon = piece.find(u':');
    if (colon == std::u16string_view::npos) return;
    std::u16string_view name = Trim(piece.substr(0, colon));
    if (name.empty()) return;
    if (std::any_of(name.begin(), name.end(), [](char16_t c) { return c >= u'A' && c <= u'Z'; })) {
        lower.assign(name);
        for (char16_t& c : lower) {
            if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c - u'A' + u'a');
        }
        name = lower;
    }
    index.Set(name, Trim(piece.substr(colon + 1)));
}

}  // namespace

// --- CSS --------------------------------------------------------------------------------------

CssDeclarations ParseCss(std::u16string_view style) {
    CssDeclarations declarations;
    CssIndex index(declarations);
    std::u16string lower;
    while (!style.empty()) {
        const std::size_t semicolon = style.find(u';');
        AddDeclaration(index, style.substr(0, semicolon), lower);
        if (semicolon == std::u16string_view::npos) break;
        style.remove_prefix(semicolon + 1);
    }
    return declarations;
}

std::u16string FormatCss(const CssDeclarations& declarations) {
    std::u16string out;
    for (const CssDeclaration& d : declarations) {
        if (!out.empty()) out += u';';
        out += d.name;
        out += u':';
        out += d.value;
    }
    return out;
}

const std::u16string* FindCss(const CssDeclarations& declarations, std::u16string_view name) {
    for (const CssDeclaration& d : declarations) {
        if (d.name == name) return &d.value;
    }
    return nullptr;
}

void SetCss(CssDeclarations& declarations, std::u16string_view name, std::u16string value) {
    for (CssDeclaration& d : declarations) {
        if (d.name == name) {
            d.value = std::move(value);
            return;
        }
    }
    declarations.push_back(CssDeclaration{std::u16string(name), std::move(value)});
}

void MergeCss(CssDeclarations& into, const CssDeclarations& from) {
    if (from.empty()) return;
    CssIndex index(into);
    for (const CssDeclaration& d : from) index.Set(d.name, d.value);
}

void RemoveCss(CssDeclarations& declarations, std::u16string_view name) {
    std::erase_if(declarations, [&](const CssDeclaration& d) { return d.name == name; });
}

// --- runs -------------------------------------------------------------------------------------

std::u16string FormattedText::PlainText() const {
    std::u16string out;
    out.reserve(Length());
    for (const TextRun& run : runs) out += run.text;
    return out;
}

std::size_t FormattedText::Length() const {
    std::size_t length = 0;
    for (const TextRun& run : runs) length += run.text.size();
    return length;
}

const TextRun* FormattedText::RunAt(std::size_t index) const {
    std::size_t start = 0;
    for (const TextRun& run : runs) {
        if (index < start + run.text.size()) return &run;
        start += run.text.size();
    }
    return runs.empty() ? nullptr : &runs.back();
}

std::vector<std::size_t> FormattedText::Starts() const {
    std::vector<std::size_t> starts;
    starts.reserve(runs.size());
    std::size_t start = 0;
    for (const TextRun& run : runs) {
        starts.push_back(start);
        start += run.text.size();
    }
    return starts;
}

void FormattedText::Normalize() {
    std::vector<TextRun> merged;
    merged.reserve(runs.size());
    for (TextRun& run : runs) {
        if (run.text.empty()) continue;
        if (!merged.empty() && merged.back().format == run.format) {
            merged.back().text += run.text;
        } else {
            merged.push_back(std::move(run));
        }
    }
    runs = std::move(merged);
}

void FormattedText::SplitAt(std::size_t index) {
    std::size_t start = 0;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const std::size_t size = runs[i].text.size();
        if (index > start && index < start + size) {
            TextRun tail{runs[i].text.substr(index - start), runs[i].format};
            runs[i].text.resize(index - start);
            runs.insert(runs.begin() + static_cast<std::ptrdiff_t>(i) + 1, std::move(tail));
            return;
        }
        start += size;
    }
}

void FormattedText::FormatRange(std::size_t start, std::size_t end,
                                const std::function<void(TextFormat&)>& change) {
    const std::size_t length = Length();
    end = std::min(end, length);
    start = std::min(start, end);
    if (start == end) return;
    SplitAt(start);
    SplitAt(end);
    std::size_t at = 0;
    for (TextRun& run : runs) {
        if (at >= start && at + run.text.size() <= end && !run.text.empty()) change(run.format);
        at += run.text.size();
    }
}

void FormattedText::ReplaceRange(std::size_t start, std::size_t end, std::u16string_view text) {
    const std::size_t length = Length();
    end = std::min(end, length);
    start = std::min(start, end);
    TextFormat format;
    if (const TextRun* run = RunAt(start < end || start == 0 ? start : start - 1)) format = run->format;
    std::erase_if(runs, [](const TextRun& run) { return run.text.empty(); });
    SplitAt(start);
    SplitAt(end);
    std::vector<TextRun> kept;
    kept.reserve(runs.size() + 1);
    std::size_t at = 0;
    bool inserted = false;
    for (TextRun& run : runs) {
        const std::size_t size = run.text.size();
        if (at + size <= start) {
            kept.push_back(std::move(run));
        } else {
            if (!inserted) {
                kept.push_back(TextRun{std::u16string(text), format});
                inserted = true;
            }
            if (at >= end) kept.push_back(std::move(run));
        }
        at += size;
    }
    if (!inserted) kept.push_back(TextRun{std::u16string(text), format});
    runs = std::move(kept);
}

std::u16string NormalizeLineBreaks(std::u16string_view text) {
    std::u16string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t r = std::min(text.find(u'\r', i), text.size());
        out.append(text.substr(i, r - i));
        if (r == text.size()) break;
        out += u'\n';
        i = r + 1 < text.size() && text[r + 1] == u'\n' ? r + 2 : r + 1;
    }
    return out;
}

}  // namespace qm::onenote
