// A page: its hierarchy attributes, the definitions it carries (tags, styles, printouts), its
// settings and title, and the objects that stand on it.
#pragma once

#include "onenote/on_types.h"

namespace qm::ON {

// One object standing on a page, in document order.
struct PageElementChoice : xml::ChoiceGroup {
    xml::ChoiceSlot<Outline> outline;
    xml::ChoiceSlot<Image> image;
    xml::ChoiceSlot<InkDrawing> inkDrawing;
    xml::ChoiceSlot<InsertedFile> insertedFile;
    xml::ChoiceSlot<MediaFile> mediaFile;
    xml::ChoiceSlot<FutureObject> futureObject;
};

struct Page : Element<Page>, HierarchyObjectAttributes, CascadedTextAttributes {
    static constexpr std::u16string_view kName = u"Page";
    OptDateTime dateTime;
    Selection selected = NoSelection();
    Bool isSubPage{false};
    OptInt pageLevel;
    Bool isCollapsed{false};
    Bool isUnread{false};
    Bool isIndexed{true};
    Bool hasFutureContent{false};
    String stationeryName;

    xml::ChildList<TagDef> tagDefs{this};
    xml::ChildList<QuickStyleDef> quickStyleDefs{this};
    xml::ChildList<XPSFile> xpsFiles{this};
    xml::ChildList<Meta> meta{this};
    std::shared_ptr<MediaPlaylist> mediaPlaylist;
    std::shared_ptr<PageSettings> pageSettings;
    std::shared_ptr<Title> title;
    xml::ChildList<PageElementChoice> elements{this};
};

// How one tag index of the page looks: its name, kind and symbol.
struct TagDef : Element<TagDef> {
    static constexpr std::u16string_view kName = u"TagDef";
    OptInt index;
    String name;
    OptInt type;
    OptInt symbol;
    String fontColor;
    String highlightColor;
};

struct QuickStyleDef : Element<QuickStyleDef> {
    static constexpr std::u16string_view kName = u"QuickStyleDef";
    OptInt index;
    String name;
    String fontColor;
    String highlightColor;
    String font;
    OptFloat fontSize;
    Bool bold{false};
    Bool italic{false};
    Bool underline{false};
    Bool strikethrough{false};
    Bool superscript{false};
    Bool subscript{false};
    OptFloat spaceBefore;
    OptFloat spaceAfter;
};

// A printout's document; its data comes as a file, inline data or a callback.
struct XPSFile : Element<XPSFile> {
    static constexpr std::u16string_view kName = u"XPSFile";
    OptInt xpsFileIndex;
    String idDocument;
    std::shared_ptr<File> file;
    std::shared_ptr<Data> data;
    std::shared_ptr<CallbackID> callbackID;
};

struct Meta : Element<Meta> {
    static constexpr std::u16string_view kName = u"Meta";
    String name;
    String content;
};

struct MediaPlaylist : Element<MediaPlaylist> {
    static constexpr std::u16string_view kName = u"MediaPlaylist";
    xml::ChildList<MediaReference> mediaReferences{this};
};

struct PageSettings : Element<PageSettings> {
    static constexpr std::u16string_view kName = u"PageSettings";
    Bool RTL{false};
    String color;
    std::shared_ptr<PageSize> pageSize;
    std::shared_ptr<RuleLines> ruleLines;
};

// Either Automatic, or Orientation, Dimensions and Margins.
struct PageSize : Element<PageSize> {
    static constexpr std::u16string_view kName = u"PageSize";
    std::shared_ptr<Automatic> automatic;
    std::shared_ptr<Orientation> orientation;
    std::shared_ptr<Dimensions> dimensions;
    std::shared_ptr<Margins> margins;
};

struct Automatic : Element<Automatic> {
    static constexpr std::u16string_view kName = u"Automatic";
};

struct Orientation : Element<Orientation> {
    static constexpr std::u16string_view kName = u"Orientation";
    Bool landscape{false};
};

struct Dimensions : Element<Dimensions> {
    static constexpr std::u16string_view kName = u"Dimensions";
    OptFloat width;
    OptFloat height;
};

struct Margins : Element<Margins> {
    static constexpr std::u16string_view kName = u"Margins";
    OptFloat top;
    OptFloat bottom;
    OptFloat left;
    OptFloat right;
};

// Either Automatic, or the horizontal lines and then vertical lines or a margin line.
struct RuleLines : Element<RuleLines> {
    static constexpr std::u16string_view kName = u"RuleLines";
    RequiredBool visible;
    std::shared_ptr<Automatic> automatic;
    std::shared_ptr<Horizontal> horizontal;
    std::shared_ptr<Vertical> vertical;
    std::shared_ptr<Margin> margin;
};

struct RuleLineAttributes {
    String color;
    OptFloat spacing;
};

struct Horizontal : Element<Horizontal>, RuleLineAttributes {
    static constexpr std::u16string_view kName = u"Horizontal";
};

struct Vertical : Element<Vertical>, RuleLineAttributes {
    static constexpr std::u16string_view kName = u"Vertical";
};

struct Margin : Element<Margin> {
    static constexpr std::u16string_view kName = u"Margin";
    String color;
};

struct Title : Element<Title>, CascadedTextAttributes {
    static constexpr std::u16string_view kName = u"Title";
    Selection selected = NoSelection();
    Bool showDate{true};
    Bool showTime{true};
    std::shared_ptr<OE> oe;
};

}  // namespace qm::ON
