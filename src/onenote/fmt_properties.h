// The formatting properties of text (on Text objects, and write-only on paragraphs) and how each
// maps onto a run's formatting:
//
//   fontName        CSS font-family, as given (semicolons and blanks around it left out)
//   fontColor       CSS color; "automatic" when none (writing "automatic" or "" removes it)
//   fontSize        CSS font-size in points: "11.0pt" reads as 11, "16px" as 12; no size (or a
//                   size that is no number) reads as the empty value. A write takes a positive
//                   number and stores it as OneNote does ("11.0pt"); the empty string removes it
//   highlightColor  CSS background; "automatic" as for fontColor
//   bold            CSS font-weight is "bold" (or 600 and more); writing gives "bold" or "normal"
//   italic          CSS font-style is "italic" (or "oblique"); writing gives "italic" or "normal"
//   underline       CSS text-decoration holds "underline"; writing adds or removes that word
//   strikethrough   CSS text-decoration holds "line-through"; likewise ("none" when no word is left)
//   supersub        CSS vertical-align ("super", "sub"); the empty string removes it
//   hyperlink       the link target; the empty string removes the link
//   lang            the language; the empty string removes it
//
// "normal" rather than removal for bold and italic, so that text a paragraph style makes bold
// really stops being bold.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "core/value.h"
#include "onenote/fmt_runs.h"

namespace qm::onenote {

enum class TextProperty : std::uint8_t {
    FontName,
    FontColor,
    FontSize,
    HighlightColor,
    Bold,
    Italic,
    Underline,
    Strikethrough,
    SuperSub,
    Hyperlink,
    Lang,
};

enum class TextValueKind : std::uint8_t { String, Bool, Number };

// By exact (case-sensitive) name.
std::optional<TextProperty> TextPropertyNamed(std::u16string_view name);
std::u16string_view NameOf(TextProperty property);
TextValueKind KindOf(TextProperty property);

// The value converted to the property's kind (a string, a bool or a double); throws
// std::invalid_argument when it has none (an array, an object), or for a font size that is no
// positive number.
MacroValue ConvertTextValue(TextProperty property, const MacroValue& value);

MacroValue ReadTextProperty(const TextFormat& format, TextProperty property);
// `value` as ConvertTextValue gives it.
void WriteTextProperty(TextFormat& format, TextProperty property, const MacroValue& value);

}  // namespace qm::onenote
