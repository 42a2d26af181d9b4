// Outlines and what they hold: paragraphs (OE) in nested lists (OEChildren), their text runs,
// list markers, tags and linked notes.
#pragma once

#include "onenote/on_types.h"

namespace qm::ON {

struct Outline : Element<Outline>, PageObjectAttributes, CascadedTextAttributes, EditedByAttributes {
    static constexpr std::u16string_view kName = u"Outline";
    using PageObjectAttributes::position;  // not the header's caller-defined position
    xml::ChildList<Meta> meta{this};
    std::shared_ptr<Indents> indents;
    xml::ChildList<OEChildren> oeChildren{this};
};

struct Position : Element<Position> {
    static constexpr std::u16string_view kName = u"Position";
    OptFloat x;
    OptFloat y;
    OptInt z;
};

struct Size : Element<Size> {
    static constexpr std::u16string_view kName = u"Size";
    OptFloat width;
    OptFloat height;
    Bool isSetByUser{false};
};

struct Indents : Element<Indents> {
    static constexpr std::u16string_view kName = u"Indents";
    xml::ChildList<Indent> indents{this};
};

struct Indent : Element<Indent> {
    static constexpr std::u16string_view kName = u"Indent";
    OptInt level;
    OptFloat indent;
};

// One item of an OEChildren: a paragraph or a block of HTML.
struct OEChildrenChoice : xml::ChoiceGroup {
    xml::ChoiceSlot<OE> oe;
    xml::ChoiceSlot<HTMLBlock> htmlBlock;
};

struct OEChildren : Element<OEChildren>, CascadedTextAttributes {
    static constexpr std::u16string_view kName = u"OEChildren";
    OptInt indent;
    Selection selected = NoSelection();
    std::shared_ptr<ChildOELayout> childOELayout;
    xml::ChildList<OEChildrenChoice> items{this};
};

struct ChildOELayout : Element<ChildOELayout> {
    static constexpr std::u16string_view kName = u"ChildOELayout";
    OptFloat spaceBefore;
    OptFloat spaceBetween;
    OptFloat spaceAfter;
    OptFloat listSpacing;
    String listAlignment;
};

struct HTMLBlock : Element<HTMLBlock> {
    static constexpr std::u16string_view kName = u"HTMLBlock";
    std::shared_ptr<File> file;
    std::shared_ptr<Data> data;
    std::shared_ptr<CallbackID> callbackID;
};

// A tag-like item carried before an object's content: a tag, an Outlook task, or a reference
// into the page's recordings.
struct TagChoice : xml::ChoiceGroup {
    xml::ChoiceSlot<MediaIndex> mediaIndex;
    xml::ChoiceSlot<Tag> tag;
    xml::ChoiceSlot<OutlookTask> outlookTask;
    xml::ChoiceSlot<MediaReference> mediaReference;
};

// The content of a paragraph: usually one object; text may alternate with ink words.
struct OEChoice : xml::ChoiceGroup {
    xml::ChoiceSlot<T> t;
    xml::ChoiceSlot<Table> table;
    xml::ChoiceSlot<Image> image;
    xml::ChoiceSlot<InkDrawing> inkDrawing;
    xml::ChoiceSlot<InkWord> inkWord;
    xml::ChoiceSlot<InkParagraph> inkParagraph;
    xml::ChoiceSlot<InsertedFile> insertedFile;
    xml::ChoiceSlot<MediaFile> mediaFile;
    xml::ChoiceSlot<FutureObject> futureObject;
};

// A paragraph.
struct OE : Element<OE>, CascadedTextAttributes, EditedByAttributes {
    static constexpr std::u16string_view kName = u"OE";
    std::optional<bool> RTL;  // absent: as the page
    Bool bodyText{false};
    Bool collapsed{false};
    Bool collapsedBodyText{false};
    String alignment;
    Selection selected = NoSelection();
    String objectID;
    OptFloat spaceBefore;
    OptFloat spaceBetween;
    OptFloat spaceAfter;
    OptDateTime lastModifiedTime;
    Bool preserveTextContent{false};

    xml::ChildList<TagChoice> tags{this};
    xml::ChildList<Meta> meta{this};
    std::shared_ptr<List> list;
    xml::ChildList<OEChoice> content{this};
    xml::ChildList<OEChildren> oeChildren{this};
    std::shared_ptr<LinkedNote> linkedNote;
};

struct List : Element<List> {
    static constexpr std::u16string_view kName = u"List";
    std::shared_ptr<Bullet> bullet;
    std::shared_ptr<Number> number;
};

struct Bullet : Element<Bullet> {
    static constexpr std::u16string_view kName = u"Bullet";
    OptInt bullet;
    OptFloat fontSize;
    String fontColor;
};

struct Number : Element<Number> {
    static constexpr std::u16string_view kName = u"Number";
    OptInt numberSequence;
    String numberFormat;
    OptInt restartNumberingAt;
    String font;
    OptFloat fontSize;
    String fontColor;
    Bool bold{false};
    Bool italic{false};
    String language;
    String text;
};

// A run of text: HTML-like markup, kept exactly as read (usually a CDATA section).
struct T : Element<T>, CascadedTextAttributes {
    static constexpr std::u16string_view kName = u"T";
    Selection selected = NoSelection();
    Bool preserveWhiteSpace{true};
    std::u16string text;
};

struct Tag : Element<Tag>, TagStateAttributes {
    static constexpr std::u16string_view kName = u"Tag";
    OptInt index;
};

struct OutlookTask : Element<OutlookTask>, TagStateAttributes {
    static constexpr std::u16string_view kName = u"OutlookTask";
    OptDateTime startDate;
    OptDateTime dueDate;
    String guidTask;
};

struct MediaIndex : Element<MediaIndex> {
    static constexpr std::u16string_view kName = u"MediaIndex";
    OptInt timeIndex;
    std::shared_ptr<MediaReference> mediaReference;
};

struct MediaReference : Element<MediaReference> {
    static constexpr std::u16string_view kName = u"MediaReference";
    String mediaID;
};

// An element that holds only text.
template <class E>
struct TextElement : Element<E> {
    std::u16string text;
};

struct LinkedNoteUri : TextElement<LinkedNoteUri> {
    static constexpr std::u16string_view kName = u"LinkedNoteUri";
};
struct LinkedNoteShortName : TextElement<LinkedNoteShortName> {
    static constexpr std::u16string_view kName = u"LinkedNoteShortName";
};
struct LinkedNoteFriendlyName : TextElement<LinkedNoteFriendlyName> {
    static constexpr std::u16string_view kName = u"LinkedNoteFriendlyName";
};
struct LinkedNoteDescription : TextElement<LinkedNoteDescription> {
    static constexpr std::u16string_view kName = u"LinkedNoteDescription";
};

struct LinkedNoteThumbnail : Element<LinkedNoteThumbnail> {
    static constexpr std::u16string_view kName = u"LinkedNoteThumbnail";
    std::shared_ptr<Data> data;
    std::shared_ptr<CallbackID> callbackID;
};

struct LinkedNote : Element<LinkedNote> {
    static constexpr std::u16string_view kName = u"LinkedNote";
    String state;
    std::shared_ptr<LinkedNoteUri> uri;
    std::shared_ptr<LinkedNoteShortName> shortName;
    std::shared_ptr<LinkedNoteFriendlyName> friendlyName;
    std::shared_ptr<LinkedNoteDescription> description;
    std::shared_ptr<LinkedNoteThumbnail> thumbnail;
};

}  // namespace qm::ON
