// The properties of a paragraph (an OE element), in lookup order.
//
// Choices made here:
// - `rtl` of a paragraph without its own setting is the page's.
// - `indent` is the indent of the paragraph list holding the paragraph (its `indent` attribute, 1
//   when absent); a write stores a whole number of at least 1 and so indents the paragraph's
//   siblings too, as OneNote's lists do. `listSpacing` and `listAlignment` are that list's
//   ChildOELayout, made on first write.
// - `index` counts the paragraphs of the list holding it, from 0.
// - The bullet and number properties of a paragraph that is not part of such a list read as the
//   empty value; writing them fails (a write does not make a list).
#include "core/error.h"
#include "core/format.h"
#include "onenote/messages.h"
#include "onenote/page_objects.h"
#include "onenote/page_text.h"
#include "onenote/session.h"

namespace qm::onenote {

PropertyTable ParagraphTagGroup();
PropertyTable ParagraphAuthorGroup();

namespace {

using K = PropertyKind;
constexpr Access RW = Access::ReadWrite;
constexpr Access RO = Access::ReadOnly;
constexpr Access WO = Access::WriteOnly;

PageContentObject& Self(OneNoteObject& o) { return static_cast<PageContentObject&>(o); }
ON::OE& Paragraph(OneNoteObject& o) { return ElementOf<ON::OE>(o); }

// The list (OEChildren) that holds the paragraph; null for a title's paragraph.
ON::OEChildren* HoldingList(const ON::OE& paragraph) { return dynamic_cast<ON::OEChildren*>(ON::ParentElement(paragraph)); }

MacroValue GetRtl(OneNoteObject& o) {
    const ON::OE& paragraph = Paragraph(o);
    if (paragraph.RTL) return MacroValue(*paragraph.RTL);
    const ON::Page* page = Self(o).page()->document.get();
    return MacroValue(page && page->pageSettings && *page->pageSettings->RTL);
}
void SetRtl(OneNoteObject& o, const MacroValue& v) { Paragraph(o).RTL = v.boolean(); }

MacroValue GetHyperlink(OneNoteObject& o) {
    const ON::OE& paragraph = Paragraph(o);
    return MacroValue(o.session().Hyperlink(Self(o).page()->id, paragraph.objectID.value_or(u"")));
}

MacroValue GetContentType(OneNoteObject& o) { return MacroValue(ContentTypeOfParagraph(Paragraph(o))); }

MacroValue GetText(OneNoteObject& o) { return MacroValue(ParagraphTextOf(Paragraph(o))); }
void SetText(OneNoteObject& o, const MacroValue& v) { SetParagraphTextOf(Paragraph(o), v.string()); }
MacroValue GetTextNumber(OneNoteObject& o) { return MacroValue(ExtractDecimal(ParagraphTextOf(Paragraph(o)))); }
void SetTextNumber(OneNoteObject& o, const MacroValue& v) { SetParagraphTextOf(Paragraph(o), DecimalText(v.decimal())); }

template <const char16_t* Name>
bool Format(OneNoteObject& o, const MacroValue& v) {
    return ApplyParagraphFormat(Paragraph(o), Name, v);
}
inline constexpr char16_t kFontName[] = u"fontName";
inline constexpr char16_t kFontColor[] = u"fontColor";
inline constexpr char16_t kFontSize[] = u"fontSize";
inline constexpr char16_t kHighlightColor[] = u"highlightColor";
inline constexpr char16_t kBold[] = u"bold";
inline constexpr char16_t kItalic[] = u"italic";
inline constexpr char16_t kUnderline[] = u"underline";
inline constexpr char16_t kStrikethrough[] = u"strikethrough";
inline constexpr char16_t kSupersub[] = u"supersub";
inline constexpr char16_t kLang[] = u"lang";

// --- lists ------------------------------------------------------------------------------------

MacroValue GetInList(OneNoteObject& o) { return MacroValue(Paragraph(o).list != nullptr); }
MacroValue GetBulleted(OneNoteObject& o) {
    const ON::OE& p = Paragraph(o);
    return MacroValue(p.list && p.list->bullet);
}
MacroValue GetNumbered(OneNoteObject& o) {
    const ON::OE& p = Paragraph(o);
    return MacroValue(p.list && p.list->number);
}

template <class Marker>
Marker* MarkerOf(OneNoteObject& o) {
    const ON::OE& p = Paragraph(o);
    if (!p.list) return nullptr;
    if constexpr (std::is_same_v<Marker, ON::Bullet>) {
        return p.list->bullet.get();
    } else {
        return p.list->number.get();
    }
}

template <class Marker, class T, T Marker::*Member>
MacroValue GetMarker(OneNoteObject& o) {
    const Marker* marker = MarkerOf<Marker>(o);
    return marker ? ToValue(marker->*Member) : MacroValue();
}
template <class Marker, class T, T Marker::*Member, const char16_t* Name>
void SetMarker(OneNoteObject& o, const MacroValue& v) {
    Marker* marker = MarkerOf<Marker>(o);
    if (!marker) {
        throw MacroError(FormatMessage(std::is_same_v<Marker, ON::Bullet> ? msg::kNotBulleted : msg::kNotNumbered, {Name}));
    }
    FromValue(v, marker->*Member);
}

#define QM_MARKER(Marker, T, member, name)                                                          \
    inline constexpr char16_t k_##name[] = u## #name;                                             \
    constexpr PropertyDef k_##name##Def{k_##name, KindOf<T>(), RW, &GetMarker<Marker, T, &Marker::member>, \
                                        &SetMarker<Marker, T, &Marker::member, k_##name>};
QM_MARKER(ON::Bullet, ON::OptFloat, fontSize, bulletFontSize)
QM_MARKER(ON::Bullet, ON::String, fontColor, bulletFontColor)
QM_MARKER(ON::Number, ON::OptInt, numberSequence, numberSequence)
QM_MARKER(ON::Number, ON::String, numberFormat, numberFormat)
QM_MARKER(ON::Number, ON::String, font, numberFont)
QM_MARKER(ON::Number, ON::OptFloat, fontSize, numberFontSize)
QM_MARKER(ON::Number, ON::String, fontColor, numberFontColor)
QM_MARKER(ON::Number, ON::Bool, bold, numberBold)
QM_MARKER(ON::Number, ON::Bool, italic, numberItalic)
QM_MARKER(ON::Number, ON::String, language, numberLanguage)
QM_MARKER(ON::Number, ON::String, text, numberText)
#undef QM_MARKER

// --- the holding list -------------------------------------------------------------------------

MacroValue GetIndent(OneNoteObject& o) {
    const ON::OEChildren* list = HoldingList(Paragraph(o));
    return MacroValue(list && list->indent ? static_cast<double>(list->indent->value()) : 1.0);
}
void SetIndent(OneNoteObject& o, const MacroValue& v) {
    ON::OEChildren* list = HoldingList(Paragraph(o));
    if (!list) return;
    const double rounded = v.decimal() < 1 ? 1 : (v.decimal() > 1e9 ? 1e9 : v.decimal() + 0.5);
    list->indent = ON::Int::Of(static_cast<std::int32_t>(rounded));
}

ON::ChildOELayout* Layout(OneNoteObject& o, bool make) {
    ON::OEChildren* list = HoldingList(Paragraph(o));
    if (!list) return nullptr;
    if (!list->childOELayout && make) {
        list->childOELayout = ON::New<ON::ChildOELayout>();
        list->childOELayout->owner = list;
    }
    return list->childOELayout.get();
}
MacroValue GetListSpacing(OneNoteObject& o) {
    const ON::ChildOELayout* layout = Layout(o, false);
    return ToValue(layout ? layout->listSpacing : ON::OptFloat());
}
void SetListSpacing(OneNoteObject& o, const MacroValue& v) {
    if (ON::ChildOELayout* layout = Layout(o, true)) FromValue(v, layout->listSpacing);
}
MacroValue GetListAlignment(OneNoteObject& o) {
    const ON::ChildOELayout* layout = Layout(o, false);
    return ToValue(layout ? layout->listAlignment : ON::String());
}
void SetListAlignment(OneNoteObject& o, const MacroValue& v) {
    if (ON::ChildOELayout* layout = Layout(o, true)) FromValue(v, layout->listAlignment);
}

MacroValue GetIndex(OneNoteObject& o) {
    const ON::OE& paragraph = Paragraph(o);
    const ON::OEChildren* list = HoldingList(paragraph);
    std::int32_t index = 0;
    if (list) {
        for (const auto& item : list->items) {
            if (item->oe.get() == &paragraph) break;
            if (item->oe) ++index;
        }
    }
    return MacroValue(index);
}

MacroValue GetTexts(OneNoteObject& o) { return ObjectArray(TextObjectsOf(Self(o).page(), Paragraph(o))); }

constexpr PropertyDef kParagraphOwn[] = {
    kTypeProperty,
    {u"rtl", K::Bool, RW, &GetRtl, &SetRtl},
    Attribute<ON::OE, &ON::OE::collapsed>(u"collapsed", RW),
    Attribute<ON::OE, &ON::OE::alignment>(u"alignment", RW),
    Attribute<ON::OE, &ON::OE::selected>(u"selection", RW),
    Attribute<ON::OE, &ON::OE::objectID>(u"objectId", RW),
    Attribute<ON::OE, &ON::OE::spaceBefore>(u"spaceBefore", RO),
    Attribute<ON::OE, &ON::OE::spaceBetween>(u"spaceBetween", RO),
    Attribute<ON::OE, &ON::OE::spaceAfter>(u"spaceAfter", RO),
    Attribute<ON::OE, &ON::OE::lastModifiedTime>(u"lastModifiedTime", RW),
    Attribute<ON::OE, &ON::OE::style>(u"style", RO),
    {u"hyperlink", K::String, RO, &GetHyperlink},
    {u"contentType", K::String, RO, &GetContentType},
    {u"text", K::String, RW, &GetText, &SetText},
    {u"text_numeric", K::Number, RW, &GetTextNumber, &SetTextNumber},
    {kFontName, K::String, WO, nullptr, nullptr, nullptr, false, &Format<kFontName>},
    {kFontColor, K::String, WO, nullptr, nullptr, nullptr, false, &Format<kFontColor>},
    {kFontSize, K::Number, WO, nullptr, nullptr, nullptr, false, &Format<kFontSize>},
    {kHighlightColor, K::String, WO, nullptr, nullptr, nullptr, false, &Format<kHighlightColor>},
    {kBold, K::Bool, WO, nullptr, nullptr, nullptr, false, &Format<kBold>},
    {kItalic, K::Bool, WO, nullptr, nullptr, nullptr, false, &Format<kItalic>},
    {kUnderline, K::Bool, WO, nullptr, nullptr, nullptr, false, &Format<kUnderline>},
    {kStrikethrough, K::Bool, WO, nullptr, nullptr, nullptr, false, &Format<kStrikethrough>},
    {kSupersub, K::String, WO, nullptr, nullptr, nullptr, false, &Format<kSupersub>},
    {kLang, K::String, WO, nullptr, nullptr, nullptr, false, &Format<kLang>},
};

constexpr PropertyDef kParagraphLists[] = {
    {u"isPartOfList", K::Bool, RO, &GetInList},
    {u"isPartOfBulletedList", K::Bool, RO, &GetBulleted},
    k_bulletFontSizeDef,
    k_bulletFontColorDef,
    {u"isPartOfNumberedList", K::Bool, RO, &GetNumbered},
    k_numberSequenceDef,
    k_numberFormatDef,
    k_numberFontDef,
    k_numberFontSizeDef,
    k_numberFontColorDef,
    k_numberBoldDef,
    k_numberItalicDef,
    k_numberLanguageDef,
    k_numberTextDef,
    {u"indent", K::Number, RW, &GetIndent, &SetIndent},
    {u"listSpacing", K::Number, RW, &GetListSpacing, &SetListSpacing},
    {u"listAlignment", K::String, RW, &GetListAlignment, &SetListAlignment},
    {u"index", K::Integer, RO, &GetIndex},
    {u"texts", K::Array, RO, &GetTexts},
};

}  // namespace

std::span<const PropertyTable> ParagraphTables() {
    static const PropertyTable tables[] = {kParagraphOwn, ParagraphTagGroup(), kParagraphLists, ParagraphAuthorGroup()};
    return tables;
}

}  // namespace qm::onenote
