// Outlines, paragraphs and what paragraphs carry: text, lists, tags, linked notes.
#include "onenote/on_binding.h"

namespace qm::xml {

using namespace ON::bind;

template <>
struct Binding<ON::OEChildrenChoice> {
    static constexpr std::u16string_view kGroup = u"OEChildrenChoice";
    static constexpr auto kAlternatives =
        std::tuple{AltOf(&ON::OEChildrenChoice::oe), AltOf(&ON::OEChildrenChoice::htmlBlock)};
};

template <>
struct Binding<ON::OEChoice> {
    using G = ON::OEChoice;
    static constexpr std::u16string_view kGroup = u"OEChoice";
    static constexpr auto kAlternatives =
        std::tuple{AltOf(&G::t),       AltOf(&G::table),        AltOf(&G::image),
                   AltOf(&G::inkDrawing), AltOf(&G::inkWord),   AltOf(&G::inkParagraph),
                   AltOf(&G::insertedFile), AltOf(&G::mediaFile), AltOf(&G::futureObject)};
};

template <>
struct Binding<ON::Outline> : ON::OneNoteBinding {
    using E = ON::Outline;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields =
        std::tuple_cat(PageObjectFields<E>(), CascadedTextFields<E>(), EditedByFields<E>(),
                       std::tuple{ListOf(&E::meta), SlotOf<E>(&E::indents), ListOf(&E::oeChildren)});
};

template <>
struct Binding<ON::Position> : ON::OneNoteBinding {
    using E = ON::Position;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields =
        std::tuple{Attr<E>(u"x", &E::x), Attr<E>(u"y", &E::y), Attr<E>(u"z", &E::z)};
};

template <>
struct Binding<ON::Size> : ON::OneNoteBinding {
    using E = ON::Size;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{Attr<E>(u"width", &E::width), Attr<E>(u"height", &E::height),
                                               Attr<E>(u"isSetByUser", &E::isSetByUser)};
};

template <>
struct Binding<ON::Indents> : ON::OneNoteBinding {
    static constexpr std::u16string_view kName = ON::Indents::kName;
    static constexpr auto kFields = std::tuple{ListOf(&ON::Indents::indents)};
};

template <>
struct Binding<ON::Indent> : ON::OneNoteBinding {
    using E = ON::Indent;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{Attr<E>(u"level", &E::level), Attr<E>(u"indent", &E::indent)};
};

template <>
struct Binding<ON::OEChildren> : ON::OneNoteBinding {
    using E = ON::OEChildren;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple_cat(
        std::tuple{Attr<E>(u"indent", &E::indent), Attr<E>(u"selected", &E::selected)}, CascadedTextFields<E>(),
        std::tuple{SlotOf<E>(&E::childOELayout), ChoicesOf(&E::items)});
};

template <>
struct Binding<ON::ChildOELayout> : ON::OneNoteBinding {
    using E = ON::ChildOELayout;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{
        Attr<E>(u"spaceBefore", &E::spaceBefore), Attr<E>(u"spaceBetween", &E::spaceBetween),
        Attr<E>(u"spaceAfter", &E::spaceAfter), Attr<E>(u"listSpacing", &E::listSpacing),
        Attr<E>(u"listAlignment", &E::listAlignment)};
};

template <>
struct Binding<ON::HTMLBlock> : ON::OneNoteBinding {
    using E = ON::HTMLBlock;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields =
        std::tuple{SlotOf<E>(&E::file), SlotOf<E>(&E::data), SlotOf<E>(&E::callbackID)};
};

template <>
struct Binding<ON::OE> : ON::OneNoteBinding {
    using E = ON::OE;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple_cat(
        std::tuple{Attr<E>(u"RTL", &E::RTL), Attr<E>(u"bodyText", &E::bodyText),
                   Attr<E>(u"collapsed", &E::collapsed), Attr<E>(u"collapsedBodyText", &E::collapsedBodyText),
                   Attr<E>(u"alignment", &E::alignment), Attr<E>(u"selected", &E::selected),
                   Attr<E>(u"objectID", &E::objectID), Attr<E>(u"spaceBefore", &E::spaceBefore),
                   Attr<E>(u"spaceBetween", &E::spaceBetween), Attr<E>(u"spaceAfter", &E::spaceAfter),
                   Attr<E>(u"lastModifiedTime", &E::lastModifiedTime),
                   Attr<E>(u"preserveTextContent", &E::preserveTextContent)},
        CascadedTextFields<E>(), EditedByFields<E>(),
        std::tuple{ChoicesOf(&E::tags), ListOf(&E::meta), SlotOf<E>(&E::list), ChoicesOf(&E::content),
                   ListOf(&E::oeChildren), SlotOf<E>(&E::linkedNote)});
};

template <>
struct Binding<ON::List> : ON::OneNoteBinding {
    static constexpr std::u16string_view kName = ON::List::kName;
    static constexpr auto kFields =
        std::tuple{SlotOf<ON::List>(&ON::List::bullet), SlotOf<ON::List>(&ON::List::number)};
};

template <>
struct Binding<ON::Bullet> : ON::OneNoteBinding {
    using E = ON::Bullet;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{Attr<E>(u"bullet", &E::bullet), Attr<E>(u"fontSize", &E::fontSize),
                                               Attr<E>(u"fontColor", &E::fontColor)};
};

template <>
struct Binding<ON::Number> : ON::OneNoteBinding {
    using E = ON::Number;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{
        Attr<E>(u"numberSequence", &E::numberSequence), Attr<E>(u"numberFormat", &E::numberFormat),
        Attr<E>(u"restartNumberingAt", &E::restartNumberingAt), Attr<E>(u"font", &E::font),
        Attr<E>(u"fontSize", &E::fontSize), Attr<E>(u"fontColor", &E::fontColor), Attr<E>(u"bold", &E::bold),
        Attr<E>(u"italic", &E::italic), Attr<E>(u"language", &E::language), Attr<E>(u"text", &E::text)};
};

// The text of a run is kept exactly as read; the formatted-text layer parses it when asked.
template <>
struct Binding<ON::T> : ON::OneNoteBinding {
    using E = ON::T;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple_cat(
        std::tuple{Attr<E>(u"selected", &E::selected), Attr<E>(u"preserveWhiteSpace", &E::preserveWhiteSpace)},
        CascadedTextFields<E>(), std::tuple{Text(&E::text)});
};

template <>
struct Binding<ON::Tag> : ON::OneNoteBinding {
    using E = ON::Tag;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple_cat(std::tuple{Attr<E>(u"index", &E::index)}, TagStateFields<E>());
};

template <>
struct Binding<ON::OutlookTask> : ON::OneNoteBinding {
    using E = ON::OutlookTask;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields =
        std::tuple_cat(TagStateFields<E>(), std::tuple{Attr<E>(u"startDate", &E::startDate),
                                                       Attr<E>(u"dueDate", &E::dueDate),
                                                       Attr<E>(u"guidTask", &E::guidTask)});
};

template <>
struct Binding<ON::MediaIndex> : ON::OneNoteBinding {
    using E = ON::MediaIndex;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{Attr<E>(u"timeIndex", &E::timeIndex), SlotOf<E>(&E::mediaReference)};
};

template <>
struct Binding<ON::MediaReference> : ON::OneNoteBinding {
    using E = ON::MediaReference;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{Attr<E>(u"mediaID", &E::mediaID)};
};

template <class E>
struct TextElementBinding : ON::OneNoteBinding {
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{Text(static_cast<std::u16string E::*>(&ON::TextElement<E>::text))};
};

template <>
struct Binding<ON::LinkedNoteUri> : TextElementBinding<ON::LinkedNoteUri> {};
template <>
struct Binding<ON::LinkedNoteShortName> : TextElementBinding<ON::LinkedNoteShortName> {};
template <>
struct Binding<ON::LinkedNoteFriendlyName> : TextElementBinding<ON::LinkedNoteFriendlyName> {};
template <>
struct Binding<ON::LinkedNoteDescription> : TextElementBinding<ON::LinkedNoteDescription> {};

template <>
struct Binding<ON::LinkedNoteThumbnail> : ON::OneNoteBinding {
    using E = ON::LinkedNoteThumbnail;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{SlotOf<E>(&E::data), SlotOf<E>(&E::callbackID)};
};

template <>
struct Binding<ON::LinkedNote> : ON::OneNoteBinding {
    using E = ON::LinkedNote;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields =
        std::tuple{Attr<E>(u"state", &E::state),         SlotOf<E>(&E::uri),         SlotOf<E>(&E::shortName),
                   SlotOf<E>(&E::friendlyName), SlotOf<E>(&E::description), SlotOf<E>(&E::thumbnail)};
};

QM_ON_INSTANTIATE(Outline)
QM_ON_INSTANTIATE(Position)
QM_ON_INSTANTIATE(Size)
QM_ON_INSTANTIATE(Indents)
QM_ON_INSTANTIATE(Indent)
QM_ON_INSTANTIATE(OEChildren)
QM_ON_INSTANTIATE(ChildOELayout)
QM_ON_INSTANTIATE(HTMLBlock)
QM_ON_INSTANTIATE(OE)
QM_ON_INSTANTIATE(List)
QM_ON_INSTANTIATE(Bullet)
QM_ON_INSTANTIATE(Number)
QM_ON_INSTANTIATE(T)
QM_ON_INSTANTIATE(Tag)
QM_ON_INSTANTIATE(OutlookTask)
QM_ON_INSTANTIATE(MediaIndex)
QM_ON_INSTANTIATE(MediaReference)
QM_ON_INSTANTIATE(LinkedNoteUri)
QM_ON_INSTANTIATE(LinkedNoteShortName)
QM_ON_INSTANTIATE(LinkedNoteFriendlyName)
QM_ON_INSTANTIATE(LinkedNoteDescription)
QM_ON_INSTANTIATE(LinkedNoteThumbnail)
QM_ON_INSTANTIATE(LinkedNote)

}  // namespace qm::xml
