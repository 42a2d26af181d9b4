// The property tables of every object type: each property's name, kind and access, in lookup
// order (the type's own table, then its groups), exactly as macros see them.
#include <gtest/gtest.h>

#include <set>

#include "core/text.h"
#include "onenote/object_properties.h"
#include "onenote/session_fixture.h"

namespace qm::onenote::testing {
namespace {

using K = PropertyKind;
constexpr Access RO = Access::ReadOnly;
constexpr Access RW = Access::ReadWrite;
constexpr Access WO = Access::WriteOnly;

struct Expected {
    std::u16string_view name;
    K kind;
    Access access;
};
using Table = std::vector<Expected>;

Table Join(std::initializer_list<Table> parts) {
    Table all;
    for (const Table& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

const Table kHierarchyGroup = {{u"id", K::String, RO},           {u"name", K::String, RW},
                               {u"lastModifiedTime", K::DateTime, RW}, {u"isCurrentlyViewed", K::Bool, RO},
                               {u"isInRecycleBin", K::Bool, RO}, {u"hyperlink", K::String, RO}};
const Table kPageHierarchyGroup = {{u"id", K::String, RO},           {u"name", K::String, RO},
                                   {u"lastModifiedTime", K::DateTime, RW}, {u"isCurrentlyViewed", K::Bool, RO},
                                   {u"isInRecycleBin", K::Bool, RO}, {u"hyperlink", K::String, RO}};
const Table kFileGroup = {{u"path", K::String, RO}};
const Table kChildren = {{u"sectionCount", K::Integer, RO},
                         {u"sections", K::Array, RO},
                         {u"sectionGroupCount", K::Integer, RO},
                         {u"sectionGroups", K::Array, RO}};
const Table kAuthor = {{u"author", K::String, RW},
                       {u"authorInitials", K::String, RW},
                       {u"lastModifiedBy", K::String, RW},
                       {u"lastModifiedByInitials", K::String, RW},
                       {u"creationTime", K::DateTime, RW}};
const Table kPageObject = {{u"objectId", K::String, RW}, {u"selection", K::String, RW},
                           {u"lastModifiedTime", K::DateTime, RW}, {u"x", K::Number, RW},
                           {u"y", K::Number, RW},         {u"z", K::Integer, RW},
                           {u"width", K::Number, RW},     {u"height", K::Number, RW},
                           {u"sizeSetByUser", K::Bool, RW}};
const Table kTagGroup = {{u"tags", K::Array, RO},           {u"tagName", K::String, RO},
                         {u"tagType", K::Integer, RO},       {u"tagSymbol", K::Integer, RO},
                         {u"tagFontColor", K::String, RO},   {u"tagHighlightColor", K::String, RO},
                         {u"tagCompleted", K::Bool, RW},     {u"tagDisabled", K::Bool, RW},
                         {u"tagCreationDate", K::DateTime, RW}, {u"tagCompletionDate", K::DateTime, RW}};
const Table kType = {{u"type", K::String, RO}};

const Table kRoot = Join({kType, {{u"notebooks", K::Array, RO}}});
const Table kNotebook = Join({kType,
                              {{u"nickname", K::String, RW}, {u"color", K::String, RW}, {u"isUnread", K::Bool, RW}},
                              kChildren, kHierarchyGroup, kFileGroup});
const Table kSectionGroup =
    Join({kType, {{u"isUnread", K::Bool, RW}, {u"isRecycleBin", K::Bool, RO}}, kChildren, kHierarchyGroup, kFileGroup});
const Table kSection = Join({kType,
                             {{u"color", K::String, RW},
                              {u"encrypted", K::Bool, RO},
                              {u"locked", K::Bool, RO},
                              {u"isUnread", K::Bool, RW},
                              {u"readOnly", K::Bool, RO},
                              {u"areAllPagesAvailable", K::Bool, RO},
                              {u"isDeletedPages", K::Bool, RO},
                              {u"pageCount", K::Integer, RO},
                              {u"pages", K::Array, RO}},
                             kHierarchyGroup, kFileGroup});
const Table kPage = Join({kType,
                          {{u"dateTime", K::DateTime, RW},
                           {u"selection", K::String, RW},
                           {u"pageLevel", K::Integer, RW},
                           {u"isCollapsed", K::Bool, RW},
                           {u"isUnread", K::Bool, RW},
                           {u"isIndexed", K::Bool, RO},
                           {u"stationeryName", K::String, RO},
                           {u"rtl", K::Bool, RW},
                           {u"color", K::String, RW},
                           {u"automaticSize", K::Bool, RW},
                           {u"orientation", K::String, RW},
                           {u"width", K::Number, RW},
                           {u"height", K::Number, RW},
                           {u"marginTop", K::Number, RW},
                           {u"marginBottom", K::Number, RW},
                           {u"marginLeft", K::Number, RW},
                           {u"marginRight", K::Number, RW},
                           {u"ruleLinesVisible", K::Bool, RW},
                           {u"ruleLinesHorizontalColor", K::String, RW},
                           {u"ruleLinesHorizontalSpacing", K::Number, RW},
                           {u"ruleLinesVerticalColor", K::String, RW},
                           {u"ruleLinesVerticalSpacing", K::Number, RW},
                           {u"ruleLinesMarginColor", K::String, RW},
                           {u"pageObjects", K::Array, RO},
                           {u"outlines", K::Array, RO},
                           {u"images", K::Array, RO}},
                          kPageHierarchyGroup});
const Table kTitle =
    Join({kType, {{u"selection", K::String, RW}, {u"showDate", K::Bool, RW}, {u"showTime", K::Bool, RW}}});
const Table kOutline =
    Join({kType, {{u"text", K::String, RW}, {u"paragraphs", K::Array, RO}}, kPageObject, kAuthor});
const Table kTableType = Join({kType,
                               {{u"objectId", K::String, RW},
                                {u"bordersVisible", K::Bool, RW},
                                {u"selection", K::String, RW},
                                {u"lastModifiedTime", K::DateTime, RW},
                                {u"rowCount", K::Integer, RO},
                                {u"rows", K::Array, RO},
                                {u"colCount", K::Integer, RO},
                                {u"columns", K::Array, RO}},
                               kAuthor});
const Table kColumn =
    Join({kType, {{u"index", K::Integer, RO}, {u"width", K::Number, RW}, {u"isLocked", K::Bool, RW}}});
const Table kRow = Join({kType,
                         {{u"objectId", K::String, RW},
                          {u"selection", K::String, RW},
                          {u"lastModifiedTime", K::DateTime, RW},
                          {u"index", K::Integer, RO},
                          {u"cells", K::Array, RO}},
                         kAuthor});
const Table kCell = Join({kType,
                          {{u"objectId", K::String, RW},
                           {u"selection", K::String, RW},
                           {u"lastModifiedTime", K::DateTime, RW},
                           {u"colIndex", K::Integer, RO},
                           {u"rowIndex", K::Integer, RO},
                           {u"paragraphs", K::Array, RO},
                           {u"text", K::String, RW},
                           {u"text_numeric", K::Number, RW}},
                          kAuthor});
const Table kParagraph = Join({kType,
                               {{u"rtl", K::Bool, RW},
                                {u"collapsed", K::Bool, RW},
                                {u"alignment", K::String, RW},
                                {u"selection", K::String, RW},
                                {u"objectId", K::String, RW},
                                {u"spaceBefore", K::Number, RO},
                                {u"spaceBetween", K::Number, RO},
                                {u"spaceAfter", K::Number, RO},
                                {u"lastModifiedTime", K::DateTime, RW},
                                {u"style", K::String, RO},
                                {u"hyperlink", K::String, RO},
                                {u"contentType", K::String, RO},
                                {u"text", K::String, RW},
                                {u"text_numeric", K::Number, RW},
                                {u"fontName", K::String, WO},
                                {u"fontColor", K::String, WO},
                                {u"fontSize", K::Number, WO},
                                {u"highlightColor", K::String, WO},
                                {u"bold", K::Bool, WO},
                                {u"italic", K::Bool, WO},
                                {u"underline", K::Bool, WO},
                                {u"strikethrough", K::Bool, WO},
                                {u"supersub", K::String, WO},
                                {u"lang", K::String, WO}},
                               kTagGroup,
                               {{u"isPartOfList", K::Bool, RO},
                                {u"isPartOfBulletedList", K::Bool, RO},
                                {u"bulletFontSize", K::Number, RW},
                                {u"bulletFontColor", K::String, RW},
                                {u"isPartOfNumberedList", K::Bool, RO},
                                {u"numberSequence", K::Integer, RW},
                                {u"numberFormat", K::String, RW},
                                {u"numberFont", K::String, RW},
                                {u"numberFontSize", K::Number, RW},
                                {u"numberFontColor", K::String, RW},
                                {u"numberBold", K::Bool, RW},
                                {u"numberItalic", K::Bool, RW},
                                {u"numberLanguage", K::String, RW},
                                {u"numberText", K::String, RW},
                                {u"indent", K::Number, RW},
                                {u"listSpacing", K::Number, RW},
                                {u"listAlignment", K::String, RW},
                                {u"index", K::Integer, RO},
                                {u"texts", K::Array, RO}},
                               kAuthor});
const Table kImage = Join({kType,
                           {{u"format", K::String, RW},
                            {u"printOutFileNumber", K::Integer, RW},
                            {u"printOutDocumentNumber", K::Integer, RW},
                            {u"printOutPageNumber", K::Integer, RW},
                            {u"isPrintOut", K::Bool, RW},
                            {u"background", K::Bool, RW},
                            {u"hyperlink", K::String, RW},
                            {u"altText", K::String, RW}},
                           kTagGroup, kPageObject});
const Table kEmbeddedFile = Join({kType, {{u"fileName", K::String, RO}}, kTagGroup, kPageObject});
const Table kTag = Join({kType,
                         {{u"name", K::String, RO},
                          {u"symbol", K::Integer, RO},
                          {u"fontColor", K::String, RO},
                          {u"highlightColor", K::String, RO},
                          {u"completed", K::Bool, RW},
                          {u"disabled", K::Bool, RW},
                          {u"creationDate", K::DateTime, RW},
                          {u"completionDate", K::DateTime, RW}}});

// The properties an object offers, in lookup order: each name once, as the lookup finds it.
Table Offered(const OneNoteObject& object) {
    Table offered;
    std::set<std::u16string_view> seen;
    for (const PropertyTable& table : object.Tables()) {
        for (const PropertyDef& property : table) {
            if (property.available && !property.available(object)) continue;
            if (!seen.insert(property.name).second) continue;
            offered.push_back({property.name, property.kind, property.access});
        }
    }
    return offered;
}

std::string Text(const Table& table) {
    std::string text;
    for (const Expected& entry : table) {
        text += ToUtf8(entry.name) + ":" + std::to_string(static_cast<int>(entry.kind)) + "/" +
                std::to_string(static_cast<int>(entry.access)) + "\n";
    }
    return text;
}

class PropertyTableTest : public SessionTest {
protected:
    void ExpectTable(const ObjectRef& object, const Table& expected) {
        ASSERT_TRUE(object);
        const auto& typed = dynamic_cast<const OneNoteObject&>(*object);
        EXPECT_EQ(Text(Offered(typed)), Text(expected)) << ToUtf8(object->TypeName());
        // The lookup by name finds each property with its kind and access.
        for (const Expected& entry : expected) {
            const PropertyDef* found = typed.FindProperty(entry.name);
            ASSERT_NE(found, nullptr) << ToUtf8(entry.name);
            EXPECT_EQ(found->kind, entry.kind) << ToUtf8(entry.name);
            EXPECT_EQ(found->access, entry.access) << ToUtf8(entry.name);
        }
    }
    ObjectRef First(std::u16string_view type, std::u16string_view pageName) {
        std::vector<ObjectRef> found = Query(type, Find(u"Page", pageName));
        return found.empty() ? nullptr : found.front();
    }
};

TEST_F(PropertyTableTest, HierarchyTypes) {
    ExpectTable(Root(), kRoot);
    ExpectTable(Find(u"Notebook", u"Work"), kNotebook);
    ExpectTable(Find(u"SectionGroup", u"Archive"), kSectionGroup);
    ExpectTable(Find(u"Section", u"Ideas"), kSection);
    ExpectTable(Find(u"Page", u"First"), kPage);
}

TEST_F(PropertyTableTest, PageContentTypes) {
    ExpectTable(First(u"Title", u"First"), kTitle);
    ExpectTable(First(u"Outline", u"First"), kOutline);
    ExpectTable(First(u"Paragraph", u"First"), kParagraph);
    ExpectTable(First(u"Table", u"First"), kTableType);
    ExpectTable(First(u"Column", u"First"), kColumn);
    ExpectTable(First(u"Row", u"First"), kRow);
    ExpectTable(First(u"Cell", u"First"), kCell);
    ExpectTable(Query(u"Image", Find(u"Page", u"First")).back(), kImage);
    ExpectTable(First(u"EmbeddedFile", u"Second"), kEmbeddedFile);
    ExpectTable(First(u"Tag", u"First"), kTag);
}

// Position and size properties exist only where the element has a Position or a Size: the
// outline of the second page has neither, the image in a paragraph only a size.
TEST_F(PropertyTableTest, PositionAndSizeOnlyWhenPresent) {
    const ObjectRef bareOutline = First(u"Outline", u"Second");
    for (std::u16string_view name : {u"x", u"y", u"z", u"width", u"height", u"sizeSetByUser"}) {
        EXPECT_EQ(dynamic_cast<OneNoteObject&>(*bareOutline).FindProperty(name), nullptr) << ToUtf8(name);
        EXPECT_EQ(ErrorOf([&] { Get(bareOutline, name); }),
                  u"A property named '" + std::u16string(name) + u"' on object of type 'Outline' does not exist.");
    }
    const ObjectRef inlineImage = Query(u"Image", Find(u"Page", u"First")).front();
    auto& image = dynamic_cast<OneNoteObject&>(*inlineImage);
    EXPECT_EQ(image.FindProperty(u"x"), nullptr);
    EXPECT_NE(image.FindProperty(u"width"), nullptr);
    EXPECT_EQ(Get(inlineImage, u"width").decimal(), 10.0);
}

}  // namespace
}  // namespace qm::onenote::testing
