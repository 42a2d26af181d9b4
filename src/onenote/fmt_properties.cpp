#include "onenote/fmt_properties.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "onenote/on_types.h"

namespace qm::onenote {

namespace {

struct PropertyInfo {
    TextProperty property;
    std::u16string_view name;
    TextValueKind kind;
    std::u16string_view css;  // empty: not a CSS property
};

constexpr std::array<PropertyInfo, 11> kProperties{{
    {TextProperty::FontName, u"fontName", TextValueKind::String, u"font-family"},
    {TextProperty::FontColor, u"fontColor", TextValueKind::String, u"color"},
    {TextProperty::FontSize, u"fontSize", TextValueKind::Number, u"font-size"},
    {TextProperty::HighlightColor, u"highlightColor", TextValueKind::String, u"background"},
    {TextProperty::Bold, u"bold", TextValueKind::Bool, u"font-weight"},
    {TextProperty::Italic, u"italic", TextValueKind::Bool, u"font-style"},
    {TextProperty::Underline, u"underline", TextValueKind::Bool, u"text-decoration"},
    {TextProperty::Strikethrough, u"strikethrough", TextValueKind::Bool, u"text-decoration"},
    {TextProperty::SuperSub, u"supersub", TextValueKind::String, u"vertical-align"},
    {TextProperty::Hyperlink, u"hyperlink", TextValueKind::String, u""},
    {TextProperty::Lang, u"lang", TextValueKind::String, u""},
}};

const PropertyInfo& InfoOf(TextProperty property) { return kProperties[static_cast<std::size_t>(property)]; }

constexpr std::u16string_view kAutomatic = u"automatic";

char16_t Lower(char16_t c) { return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c - u'A' + u'a') : c; }

bool EqualsNoCase(std::u16string_view a, std::u16string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (Lower(a[i]) != Lower(b[i])) return false;
    }
    return true;
}

bool IsSeparator(char16_t c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u','; }

// The words of a text-decoration value.
std::vector<std::u16string> Words(std::u16string_view value) {
    std::vector<std::u16string> words;
    std::size_t i = 0;
    while (i < value.size()) {
        while (i < value.size() && IsSeparator(value[i])) ++i;
        const std::size_t begin = i;
        while (i < value.size() && !IsSeparator(value[i])) ++i;
        if (i > begin) words.emplace_back(value.substr(begin, i - begin));
    }
    return words;
}

bool HasWord(const TextFormat& format, std::u16string_view word) {
    const std::u16string* value = FindCss(format.style, u"text-decoration");
    if (!value) return false;
    for (const std::u16string& w : Words(*value)) {
        if (EqualsNoCase(w, word)) return true;
    }
    return false;
}

void SetWord(TextFormat& format, std::u16string_view word, bool on) {
    std::vector<std::u16string> words;
    if (const std::u16string* value = FindCss(format.style, u"text-decoration")) words = Words(*value);
    std::erase_if(words, [&](const std::u16string& w) { return EqualsNoCase(w, word) || EqualsNoCase(w, u"none"); });
    if (on) words.emplace_back(word);
    std::u16string value;
    for (const std::u16string& w : words) {
        if (!value.empty()) value += u' ';
        value += w;
    }
    SetCss(format.style, u"text-decoration", value.empty() ? std::u16string(u"none") : std::move(value));
}

// The points of a CSS size: a number, then "pt", "px" or nothing.
std::optional<double> Points(std::u16string_view value) {
    std::string number;
    std::size_t i = 0;
    while (i < value.size() && ((value[i] >= u'0' && value[i] <= u'9') || value[i] == u'.' ||
                                (i == 0 && (value[i] == u'-' || value[i] == u'+')))) {
        number += static_cast<char>(value[i++]);
    }
    if (number.empty() || number.size() > 40) return std::nullopt;
    char* end = nullptr;
    const double points = std::strtod(number.c_str(), &end);
    if (end != number.c_str() + number.size() || !std::isfinite(points)) return std::nullopt;
    const std::u16string_view unit = value.substr(i);
    if (EqualsNoCase(unit, u"px")) return points * 0.75;
    if (unit.empty() || EqualsNoCase(unit, u"pt")) return points;
    return std::nullopt;
}

bool IsBoldWeight(std::u16string_view value) {
    if (EqualsNoCase(value, u"bold") || EqualsNoCase(value, u"bolder")) return true;
    const std::optional<double> weight = Points(value);
    return weight && *weight >= 600;
}

void SetOrRemove(TextFormat& format, std::u16string_view css, const std::u16string& value, bool removes) {
    if (removes) {
        RemoveCss(format.style, css);
    } else {
        SetCss(format.style, css, value);
    }
}

// A value as a declaration can hold it: no semicolon, no blanks around it.
std::u16string CssValue(const MacroValue& value) {
    std::u16string text = value.AsString();
    std::erase(text, u';');
    const auto blank = [](char16_t c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\f'; };
    while (!text.empty() && blank(text.back())) text.pop_back();
    std::size_t begin = 0;
    while (begin < text.size() && blank(text[begin])) ++begin;
    return text.substr(begin);
}

std::optional<std::u16string> NonEmpty(const std::u16string& value) {
    return value.empty() ? std::nullopt : std::optional<std::u16string>(value);
}

}  // namespace

std::optional<TextProperty> TextPropertyNamed(std::u16string_view name) {
    for (const PropertyInfo& info : kProperties) {
        if (info.name == name) return info.property;
    }
    return std::nullopt;
}

std::u16string_view NameOf(TextProperty property) { return InfoOf(property).name; }
TextValueKind KindOf(TextProperty property) { return InfoOf(property).kind; }

MacroValue ConvertTextValue(TextProperty property, const MacroValue& value) {
    switch (KindOf(property)) {
        case TextValueKind::String: return MacroValue(value.AsString());
        case TextValueKind::Bool: return MacroValue(value.AsBoolean());
        case TextValueKind::Number: break;
    }
    // An empty text removes the size; anything else must be a positive number.
    if (value.kind() == Kind::String && value.string().empty()) return MacroValue(std::u16string());
    const double size = value.AsDecimal();
    if (!(size > 0) || !std::isfinite(size)) throw std::invalid_argument("a font size must be a positive number");
    return MacroValue(size);
}

MacroValue ReadTextProperty(const TextFormat& format, TextProperty property) {
    const std::u16string* css = InfoOf(property).css.empty() ? nullptr : FindCss(format.style, InfoOf(property).css);
    switch (property) {
        case TextProperty::FontName:
        case TextProperty::SuperSub: return MacroValue(css ? *css : std::u16string());
        case TextProperty::FontColor:
        case TextProperty::HighlightColor:
            return MacroValue(css && !css->empty() ? *css : std::u16string(kAutomatic));
        case TextProperty::FontSize: {
            const std::optional<double> points = css ? Points(*css) : std::nullopt;
            return points ? MacroValue(*points) : MacroValue();
        }
        case TextProperty::Bold: return MacroValue(css && IsBoldWeight(*css));
        case TextProperty::Italic:
            return MacroValue(css && (EqualsNoCase(*css, u"italic") || EqualsNoCase(*css, u"oblique")));
        case TextProperty::Underline: return MacroValue(HasWord(format, u"underline"));
        case TextProperty::Strikethrough: return MacroValue(HasWord(format, u"line-through"));
        case TextProperty::Hyperlink: return MacroValue(format.href.value_or(std::u16string()));
        case TextProperty::Lang: return MacroValue(format.lang.value_or(std::u16string()));
    }
    return MacroValue();
}

void WriteTextProperty(TextFormat& format, TextProperty property, const MacroValue& value) {
    const std::u16string_view css = InfoOf(property).css;
    switch (property) {
        case TextProperty::FontName:
        case TextProperty::SuperSub: {
            const std::u16string text = CssValue(value);
            SetOrRemove(format, css, text, text.empty());
            return;
        }
        case TextProperty::FontColor:
        case TextProperty::HighlightColor: {
            const std::u16string text = CssValue(value);
            SetOrRemove(format, css, text, text.empty() || EqualsNoCase(text, kAutomatic));
            return;
        }
        case TextProperty::FontSize:
            if (value.kind() == Kind::String && value.string().empty()) {
                RemoveCss(format.style, css);
            } else {
                SetCss(format.style, css, ON::Float::Of(value.AsDecimal()).text + u"pt");
            }
            return;
        case TextProperty::Bold: SetCss(format.style, css, value.AsBoolean() ? u"bold" : u"normal"); return;
        case TextProperty::Italic: SetCss(format.style, css, value.AsBoolean() ? u"italic" : u"normal"); return;
        case TextProperty::Underline: SetWord(format, u"underline", value.AsBoolean()); return;
        case TextProperty::Strikethrough: SetWord(format, u"line-through", value.AsBoolean()); return;
        case TextProperty::Hyperlink: format.href = NonEmpty(value.AsString()); return;
        case TextProperty::Lang: format.lang = NonEmpty(value.AsString()); return;
    }
}

}  // namespace qm::onenote
