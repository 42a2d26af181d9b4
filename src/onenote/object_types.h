// The macro-visible object types of the OneNote object model, with their fixed numbers. A macro
// object's TypeNumber() is one of these; object equality of two values first compares the
// numbers, so every object type of this layer has exactly one number and no other layer reuses
// them (the dialog box of the runtime is 1000).
//
// Text (13) is the type whose equality compares four identifying fields (the run's paragraph,
// its text element and the run's start and end) instead of the node reference: a text run is not
// a node of the page but a stretch of one, and two queries that find the same stretch must give
// equal objects.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace qm::onenote {

enum class ObjectType : std::int32_t {
    NotebookRoot = 1,
    Notebook = 2,
    SectionGroup = 3,
    Section = 4,
    Page = 5,
    Title = 6,
    Outline = 7,
    Paragraph = 8,
    Table = 9,
    Row = 10,
    Column = 11,
    Cell = 12,
    Text = 13,
    Image = 14,
    EmbeddedFile = 15,
    Tag = 16,
};

struct ObjectTypeInfo {
    ObjectType type;
    std::u16string_view name;     // the value of the property `type`, and the name macros query by
    std::u16string_view logName;  // the kind in log lines ("section group"); the type name for content
};

inline constexpr std::array<ObjectTypeInfo, 16> kObjectTypes{{
    {ObjectType::NotebookRoot, u"NotebookRoot", u"notebook root"},
    {ObjectType::Notebook, u"Notebook", u"notebook"},
    {ObjectType::SectionGroup, u"SectionGroup", u"section group"},
    {ObjectType::Section, u"Section", u"section"},
    {ObjectType::Page, u"Page", u"page"},
    {ObjectType::Title, u"Title", u"Title"},
    {ObjectType::Outline, u"Outline", u"Outline"},
    {ObjectType::Paragraph, u"Paragraph", u"Paragraph"},
    {ObjectType::Table, u"Table", u"Table"},
    {ObjectType::Row, u"Row", u"Row"},
    {ObjectType::Column, u"Column", u"Column"},
    {ObjectType::Cell, u"Cell", u"Cell"},
    {ObjectType::Text, u"Text", u"Text"},
    {ObjectType::Image, u"Image", u"Image"},
    {ObjectType::EmbeddedFile, u"EmbeddedFile", u"EmbeddedFile"},
    {ObjectType::Tag, u"Tag", u"Tag"},
}};

constexpr std::int32_t Number(ObjectType type) { return static_cast<std::int32_t>(type); }

constexpr const ObjectTypeInfo& Info(ObjectType type) { return kObjectTypes[Number(type) - 1]; }
constexpr std::u16string_view TypeName(ObjectType type) { return Info(type).name; }
constexpr std::u16string_view LogName(ObjectType type) { return Info(type).logName; }

// The type a macro names, by exact (case-sensitive) match.
constexpr std::optional<ObjectType> TypeFromName(std::u16string_view name) {
    for (const ObjectTypeInfo& info : kObjectTypes) {
        if (info.name == name) return info.type;
    }
    return std::nullopt;
}

// The type of a TypeNumber(), when it is one of this layer's.
constexpr std::optional<ObjectType> TypeFromNumber(std::int32_t number) {
    if (number < 1 || number > static_cast<std::int32_t>(kObjectTypes.size())) return std::nullopt;
    return static_cast<ObjectType>(number);
}

// Notebooks, section groups, sections and pages (and their root) come from the hierarchy; the
// other types live in a page's content.
constexpr bool IsHierarchyType(ObjectType type) { return Number(type) <= Number(ObjectType::Page); }
constexpr bool IsPageContentType(ObjectType type) { return !IsHierarchyType(type); }

static_assert(Number(ObjectType::Text) == 13);
static_assert(Info(ObjectType::Tag).type == ObjectType::Tag);

}  // namespace qm::onenote
