#include "onenote/fmt_run_builder.h"

#include <memory>
#include <utility>

namespace qm::onenote {

namespace {

constexpr std::size_t kNoRun = static_cast<std::size_t>(-1);

std::size_t SizeOf(const TextFormat& format) {
    std::size_t size = 1 + (format.lang ? format.lang->size() : 0) + (format.href ? format.href->size() : 0);
    for (const CssDeclaration& d : format.style) size += d.name.size() + d.value.size() + 2;
    return size;
}

std::size_t Budget(std::size_t markupSize) { return 32 * markupSize + 65536; }

TextFormat InnerSpan(const TextFormat& outer, const std::optional<std::u16string_view>& style,
                     const std::optional<std::u16string_view>& lang) {
    TextFormat format = outer;
    if (style) {
        if (format.style.empty()) {
            format.style = ParseCss(*style);
        } else {
            MergeCss(format.style, ParseCss(*style));
        }
    }
    if (lang && !lang->empty()) format.lang = std::u16string(*lang);
    return format;
}

TextFormat InnerAnchor(const TextFormat& outer, const std::optional<std::u16string_view>& href) {
    TextFormat format = outer;
    if (href && !href->empty()) format.href = std::u16string(*href);
    return format;
}

std::size_t SizeOf(const std::optional<std::u16string_view>& value) { return value ? value->size() : 0; }

}  // namespace

RunBuilder::RunBuilder(std::size_t markupSize) : budget_(Budget(markupSize)) {
    frames_.reserve(4);
    runs_.reserve(8);
    frames_.push_back(Frame{TextFormat{}, SizeOf(TextFormat{}), 0, kNoRun});
}

void RunBuilder::Spend(std::size_t size) {
    if (size > budget_) throw TooManyFormats{};
    budget_ -= size;
}

void RunBuilder::Text(std::u16string_view text) {
    if (text.empty()) return;
    Frame& top = frames_.back();
    if (!runs_.empty() && lastElement_ == top.element) {
        runs_.back().text += text;
        return;
    }
    Spend(top.size);
    if (top.firstRun == kNoRun) {
        top.firstRun = runs_.size();
        runs_.push_back(TextRun{std::u16string(text), TextFormat{}});
    } else {
        runs_.push_back(TextRun{std::u16string(text), top.format});
    }
    lastElement_ = top.element;
}

void RunBuilder::Open(TextFormat format) {
    const std::size_t size = SizeOf(format);
    frames_.push_back(Frame{std::move(format), size, ++elements_, kNoRun});
}

void RunBuilder::OpenSpan(const std::optional<std::u16string_view>& style,
                          const std::optional<std::u16string_view>& lang) {
    Spend(frames_.back().size + SizeOf(style));
    Open(InnerSpan(frames_.back().format, style, lang));
}

void RunBuilder::OpenAnchor(const std::optional<std::u16string_view>& href) {
    Spend(frames_.back().size + SizeOf(href));
    Open(InnerAnchor(frames_.back().format, href));
}

void RunBuilder::Close() {
    Frame& top = frames_.back();
    if (top.firstRun != kNoRun) runs_[top.firstRun].format = std::move(top.format);
    frames_.pop_back();
}

std::vector<TextRun> RunBuilder::Take() {
    while (!frames_.empty()) Close();
    return std::move(runs_);
}

// The bound of a format: that of the outer one, plus each declaration of the style at most its
// piece of the style and a semicolon, plus the new language or link.
SummaryBuilder::SummaryBuilder(std::size_t markupSize) : budget_(Budget(markupSize)) {
    summary_.plain.reserve(markupSize);  // the text is never longer than its markup
    frames_.reserve(4);
    frames_.push_back(Frame{SizeOf(TextFormat{}), 0, TextFormat{}});
}

void SummaryBuilder::Spend(std::size_t size) {
    if (size > budget_) throw TooManyFormats{};
    budget_ -= size;
}

void SummaryBuilder::Text(std::u16string_view text) {
    if (text.empty()) return;
    Frame& top = frames_.back();
    if (!started_ || lastElement_ != top.element) Spend(top.bound);
    if (!started_) {
        summary_.first = std::move(top.format);
        started_ = true;
    }
    lastElement_ = top.element;
    summary_.plain += text;
}

void SummaryBuilder::OpenSpan(const std::optional<std::u16string_view>& style,
                              const std::optional<std::u16string_view>& lang) {
    const Frame& top = frames_.back();
    Spend(top.bound + SizeOf(style));
    const std::size_t bound = top.bound + (style ? style->size() + 1 : 0) + SizeOf(lang);
    TextFormat format = started_ ? TextFormat{} : InnerSpan(top.format, style, lang);
    frames_.push_back(Frame{bound, ++elements_, std::move(format)});
}

void SummaryBuilder::OpenAnchor(const std::optional<std::u16string_view>& href) {
    const Frame& top = frames_.back();
    Spend(top.bound + SizeOf(href));
    const std::size_t bound = top.bound + SizeOf(href);
    TextFormat format = started_ ? TextFormat{} : InnerAnchor(top.format, href);
    frames_.push_back(Frame{bound, ++elements_, std::move(format)});
}

void SummaryBuilder::Close() { frames_.pop_back(); }

TextSummary SummaryBuilder::Take() { return std::move(summary_); }

std::vector<TextRun> RunsOfTree(const FMT::Text& root, std::size_t markupSize) {
    struct Level {
        const std::vector<FMT::Item>* items;
        std::size_t next;
    };
    RunBuilder builder(markupSize);
    std::vector<Level> stack{{&root.content, 0}};
    const auto view = [](const std::optional<std::u16string>& value) {
        return value ? std::optional<std::u16string_view>(*value) : std::nullopt;
    };
    while (!stack.empty()) {
        Level& top = stack.back();
        if (top.next == top.items->size()) {
            stack.pop_back();
            if (!stack.empty()) builder.Close();
            continue;
        }
        const FMT::Item& item = (*top.items)[top.next++];
        if (const auto* text = std::get_if<std::u16string>(&item)) {
            builder.Text(*text);
        } else if (const auto* span = std::get_if<std::shared_ptr<FMT::span>>(&item)) {
            if (!*span) continue;
            builder.OpenSpan(view((*span)->style), view((*span)->lang));
            stack.push_back(Level{&(*span)->content, 0});
        } else if (const auto* anchor = std::get_if<std::shared_ptr<FMT::a>>(&item)) {
            if (!*anchor) continue;
            builder.OpenAnchor(view((*anchor)->href));
            stack.push_back(Level{&(*anchor)->content, 0});
        }
    }
    return builder.Take();
}

}  // namespace qm::onenote
