// The page element and what stands directly in it: definitions, title, the page-element choice.
#include "onenote/on_binding.h"

namespace qm::xml {

using namespace ON::bind;

template <>
struct Binding<ON::PageElementChoice> {
    using G = ON::PageElementChoice;
    static constexpr std::u16string_view kGroup = u"PageElementChoice";
    static constexpr auto kAlternatives = std::tuple{AltOf(&G::outline),      AltOf(&G::image),
                                                     AltOf(&G::inkDrawing),   AltOf(&G::insertedFile),
                                                     AltOf(&G::mediaFile),    AltOf(&G::futureObject)};
};

template <>
struct Binding<ON::Page> : ON::OneNoteBinding {
    using E = ON::Page;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple_cat(
        HierarchyObjectFields<E>(),
        std::tuple{Attr<E>(u"dateTime", &E::dateTime), Attr<E>(u"selected", &E::selected),
                   Attr<E>(u"isSubPage", &E::isSubPage), Attr<E>(u"pageLevel", &E::pageLevel),
                   Attr<E>(u"isCollapsed", &E::isCollapsed), Attr<E>(u"isUnread", &E::isUnread),
                   Attr<E>(u"isIndexed", &E::isIndexed), Attr<E>(u"hasFutureContent", &E::hasFutureContent),
                   Attr<E>(u"stationeryName", &E::stationeryName)},
        CascadedTextFields<E>(),
        std::tuple{ListOf(&E::tagDefs), ListOf(&E::quickStyleDefs), ListOf(&E::xpsFiles), ListOf(&E::meta),
                   SlotOf<E>(&E::mediaPlaylist), SlotOf<E>(&E::pageSettings), SlotOf<E>(&E::title),
                   ChoicesOf(&E::elements)});
};

template <>
struct Binding<ON::TagDef> : ON::OneNoteBinding {
    using E = ON::TagDef;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields =
        std::tuple{Attr<E>(u"index", &E::index),         Attr<E>(u"name", &E::name),
                   Attr<E>(u"type", &E::type),           Attr<E>(u"symbol", &E::symbol),
                   Attr<E>(u"fontColor", &E::fontColor), Attr<E>(u"highlightColor", &E::highlightColor)};
};

template <>
struct Binding<ON::QuickStyleDef> : ON::OneNoteBinding {
    using E = ON::QuickStyleDef;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{
        Attr<E>(u"index", &E::index),
        Attr<E>(u"name", &E::name),
        Attr<E>(u"fontColor", &E::fontColor),
        Attr<E>(u"highlightColor", &E::highlightColor),
        Attr<E>(u"font", &E::font),
        Attr<E>(u"fontSize", &E::fontSize),
        Attr<E>(u"bold", &E::bold),
        Attr<E>(u"italic", &E::italic),
        Attr<E>(u"underline", &E::underline),
        Attr<E>(u"strikethrough", &E::strikethrough),
        Attr<E>(u"superscript", &E::superscript),
        Attr<E>(u"subscript", &E::subscript),
        Attr<E>(u"spaceBefore", &E::spaceBefore),
        Attr<E>(u"spaceAfter", &E::spaceAfter)};
};

template <>
struct Binding<ON::XPSFile> : ON::OneNoteBinding {
    using E = ON::XPSFile;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields =
        std::tuple{Attr<E>(u"xpsFileIndex", &E::xpsFileIndex), Attr<E>(u"idDocument", &E::idDocument),
                   SlotOf<E>(&E::file), SlotOf<E>(&E::data), SlotOf<E>(&E::callbackID)};
};

template <>
struct Binding<ON::Meta> : ON::OneNoteBinding {
    using E = ON::Meta;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{Attr<E>(u"name", &E::name), Attr<E>(u"content", &E::content)};
};

template <>
struct Binding<ON::MediaPlaylist> : ON::OneNoteBinding {
    using E = ON::MediaPlaylist;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{ListOf(&E::mediaReferences)};
};

template <>
struct Binding<ON::Title> : ON::OneNoteBinding {
    using E = ON::Title;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields =
        std::tuple_cat(std::tuple{Attr<E>(u"selected", &E::selected)}, CascadedTextFields<E>(),
                       std::tuple{Attr<E>(u"showDate", &E::showDate), Attr<E>(u"showTime", &E::showTime),
                                  SlotOf<E>(&E::oe)});
};

QM_ON_INSTANTIATE(Page)
QM_ON_INSTANTIATE(TagDef)
QM_ON_INSTANTIATE(QuickStyleDef)
QM_ON_INSTANTIATE(XPSFile)
QM_ON_INSTANTIATE(Meta)
QM_ON_INSTANTIATE(MediaPlaylist)
QM_ON_INSTANTIATE(Title)

}  // namespace qm::xml

namespace qm::ON::bind {

void WritePageAttributes(const Page& page, xml::XmlWriter& writer) { xml::WriteAttributes(page, writer); }

}  // namespace qm::ON::bind
