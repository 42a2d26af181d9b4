// What every structure of the OneNote binding shares: the namespace, the attribute value types,
// the element base, and the attribute groups several elements include.
//
// The binding keeps a page exactly as OneNote handed it over in everything a macro does not
// touch: every attribute is optional (absent in the document, absent on writing), numbers keep
// the text they were read as, and what the binding does not model (attributes, elements, text)
// is kept in each element's `unknown` and written back in its place.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "xml/binding.h"
#include "xml/xml_strings.h"

namespace qm::ON {

// OneNote's 2010 page and hierarchy schema, the one the add-in asks for and writes back.
inline constexpr std::u16string_view kNamespace = u"http://schemas.microsoft.com/office/onenote/2010/onenote";
inline constexpr std::u16string_view kPrefix = u"one";

// --- attribute values -------------------------------------------------------------------------

// A floating-point attribute (a position, a size, a font size). It keeps the text it was read as,
// so that writing it back changes nothing ("11.0" stays "11.0", "86.4000015258789" keeps its
// digits); a value set by the add-in is written as OneNote writes numbers.
struct Float {
    std::u16string text;

    // The 32-bit value; 0 when the text does not read as a number.
    float value() const;
    // OneNote's form: the shortest text that reads back as the same double, with ".0" on whole
    // numbers ("36.0", "302.3321228027344").
    static Float Of(double value);

    friend bool operator==(const Float&, const Float&) = default;
};

// An integer attribute (an index, a level). Kept as read, like Float.
struct Int {
    std::u16string text;

    // The value as the framework reads integers (xml_strings.h): 0 when there is no number.
    std::int32_t value() const;
    static Int Of(std::int32_t value);

    friend bool operator==(const Int&, const Int&) = default;
};

// A date-time attribute, held parsed. It is written in OneNote's form,
// "2023-04-01T09:30:00.000Z"; text read in any other form is written back as it was read until
// the value is set.
struct DateTime {
    xml::SystemTime time;
    std::u16string text;  // the text as read, when it was not in OneNote's form

    static DateTime Of(const xml::SystemTime& time);

    friend bool operator==(const DateTime&, const DateTime&) = default;
};

void FromXml(std::u16string_view text, Float& out);
void FromXml(std::u16string_view text, Int& out);
void FromXml(std::u16string_view text, DateTime& out);
const std::u16string& ToXml(const Float& value);
const std::u16string& ToXml(const Int& value);
std::u16string ToXml(const DateTime& value);

using String = std::optional<std::u16string>;
using OptFloat = std::optional<Float>;
using OptInt = std::optional<Int>;
using OptDateTime = std::optional<DateTime>;
// A boolean: written only when it differs from its default (the schema's default, false when the
// schema names none). "True" and "1" read as true.
using Bool = xml::Defaulted<bool>;
// A boolean the schema requires: written whenever it was read or set.
using RequiredBool = std::optional<bool>;
// The `selected` attribute: "none", "partial" or "all", written only when not "none".
using Selection = xml::Defaulted<std::u16string>;

inline Selection NoSelection() { return Selection(std::u16string(u"none")); }

// --- elements ---------------------------------------------------------------------------------

// The base of every element structure: the framework's header and what the binding keeps beyond
// the modelled fields.
template <class E>
struct Element : xml::Child<E> {
    xml::Unknowns unknown;
};

// What every OneNote binding says (see on_binding.h).
struct OneNoteBinding {
    static constexpr std::u16string_view kPrefix = ON::kPrefix;
    static constexpr std::u16string_view kNamespace = ON::kNamespace;
    static constexpr bool kKeepUnknown = true;
};

// --- attribute groups -------------------------------------------------------------------------

struct HierarchyObjectAttributes {
    String ID;
    String name;
    OptDateTime lastModifiedTime;
    Bool isCurrentlyViewed{false};
    Bool isInRecycleBin{false};
};

struct FileObjectAttributes {
    String path;
};

struct CascadedTextAttributes {
    String style;
    OptInt quickStyleIndex;
    String lang;
};

struct EditedByAttributes {
    String author;
    String authorInitials;
    String lastModifiedBy;
    String lastModifiedByInitials;
    OptDateTime creationTime;
};

struct Position;
struct Size;

// The attributes and the first children of everything that stands on a page by itself.
struct PageObjectAttributes {
    String objectID;
    Selection selected = NoSelection();
    OptDateTime lastModifiedTime;
    std::shared_ptr<Position> position;
    std::shared_ptr<Size> size;
};

struct TagStateAttributes {
    Bool completed{false};
    Bool disabled{false};
    OptDateTime creationDate;
    OptDateTime completionDate;
};

// --- all element types ------------------------------------------------------------------------

struct Notebooks;
struct UnfiledNotes;
struct OpenSections;
struct Notebook;
struct SectionGroup;
struct Section;
struct SectionChoice;
struct Page;
struct PageElementChoice;
struct TagDef;
struct QuickStyleDef;
struct XPSFile;
struct Meta;
struct MediaPlaylist;
struct PageSettings;
struct PageSize;
struct Automatic;
struct Orientation;
struct Dimensions;
struct Margins;
struct RuleLines;
struct Horizontal;
struct Vertical;
struct Margin;
struct Title;
struct Outline;
struct Position;
struct Size;
struct Indents;
struct Indent;
struct OEChildren;
struct OEChildrenChoice;
struct HTMLBlock;
struct OE;
struct OEChoice;
struct ChildOELayout;
struct List;
struct Bullet;
struct Number;
struct T;
struct Tag;
struct OutlookTask;
struct TagChoice;
struct MediaIndex;
struct MediaReference;
struct LinkedNote;
struct LinkedNoteUri;
struct LinkedNoteShortName;
struct LinkedNoteFriendlyName;
struct LinkedNoteDescription;
struct LinkedNoteThumbnail;
struct Table;
struct Columns;
struct Column;
struct Row;
struct Cell;
struct Image;
struct OCRData;
struct OCRText;
struct OCRToken;
struct InsertedFile;
struct MediaFile;
struct InkDrawing;
struct ShapeInfo;
struct AnchorPoint;
struct InkWord;
struct InkParagraph;
struct Space;
struct EndOfLine;
struct File;
struct Data;
struct CallbackID;
struct FutureObject;

}  // namespace qm::ON
