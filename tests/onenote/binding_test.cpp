#include <gtest/gtest.h>

#include <filesystem>

#include "core/text.h"
#include "onenote/notebook_listing.h"
#include "onenote/on_document.h"
#include "onenote_test_util.h"
#include "platform_test_util.h"

namespace qm::ON {
namespace {

namespace fs = std::filesystem;
using onenote::testing::Canonical;
using onenote::testing::Differences;
using onenote::testing::ReadSample;
using onenote::testing::ReferenceDir;
using onenote::testing::ValidateText;

std::u16string RoundTrip(std::u16string_view xml) { return WriteDocument(*ReadPage(xml, u"test page")); }

std::string Join(const std::vector<std::string>& lines) {
    std::string out;
    for (const auto& line : lines) out += line + "\n";
    return out;
}

constexpr std::u16string_view kPage = uR"(<?xml version="1.0"?>
<one:Page xmlns:one="http://schemas.microsoft.com/office/onenote/2010/onenote" ID="{11111111-2222-4333-8444-555555555555}{1}{E1}" name="Trip" dateTime="2023-04-01T09:30:00.000Z" lastModifiedTime="2023-04-02T10:00:00.000Z" pageLevel="1" lang="en-US">
  <one:TagDef index="0" name="To Do" type="0" symbol="3" fontColor="automatic" highlightColor="none"/>
  <one:Title lang="en-US">
    <one:OE alignment="left"><one:T><![CDATA[Trip <span style='font-weight:bold'>plan</span>]]></one:T></one:OE>
  </one:Title>
  <one:Outline objectID="{11111111-2222-4333-8444-555555555555}{20}{B0}">
    <one:Position x="36.0" y="86.4000015258789" z="0"/>
    <one:Size width="302.3321228027344" height="174.560287475586"/>
    <one:OEChildren>
      <one:OE objectID="{11111111-2222-4333-8444-555555555555}{21}{B0}" alignment="left">
        <one:Tag index="0" completed="true" creationDate="2023-04-01T09:31:00.000Z"/>
        <one:T><![CDATA[Book flights]]></one:T>
      </one:OE>
      <one:OE objectID="{11111111-2222-4333-8444-555555555555}{22}{B0}">
        <one:Table bordersVisible="true">
          <one:Columns><one:Column index="0" width="80.0"/><one:Column index="1" width="120.5" isLocked="true"/></one:Columns>
          <one:Row><one:Cell><one:OEChildren><one:OE><one:T><![CDATA[a]]></one:T></one:OE></one:OEChildren></one:Cell>
                   <one:Cell><one:OEChildren><one:OE><one:T><![CDATA[b]]></one:T></one:OE></one:OEChildren></one:Cell></one:Row>
        </one:Table>
      </one:OE>
    </one:OEChildren>
  </one:Outline>
</one:Page>
)";

TEST(OneNoteBinding, ReadsTypedStructuresWithOwnersToWalkUp) {
    const auto page = ReadPage(kPage, u"test page");
    ASSERT_TRUE(page->ID && page->name && page->dateTime);
    EXPECT_EQ(*page->name, u"Trip");
    EXPECT_EQ(page->dateTime->time, (xml::SystemTime{2023, 4, 0, 1, 9, 30, 0, 0}));
    EXPECT_EQ(page->pageLevel->value(), 1);
    ASSERT_EQ(page->tagDefs.size(), 1u);
    EXPECT_EQ(*page->tagDefs[0]->name, u"To Do");
    EXPECT_EQ(page->title->oe->content[0]->t->text, u"Trip <span style='font-weight:bold'>plan</span>");

    ASSERT_EQ(page->elements.size(), 1u);
    const Outline& outline = *page->elements[0]->outline;
    EXPECT_FLOAT_EQ(outline.position->y->value(), 86.4f);
    EXPECT_EQ(outline.position->y->text, u"86.4000015258789");
    const OEChildren& children = *outline.oeChildren[0];
    ASSERT_EQ(children.items.size(), 2u);
    const OE& first = *children.items[0]->oe;
    EXPECT_TRUE(first.tags[0]->tag->completed.value);
    EXPECT_EQ(first.content[0]->t->text, u"Book flights");

    const Table& table = *children.items[1]->oe->content[0]->table;
    EXPECT_TRUE(*table.bordersVisible);
    ASSERT_EQ(table.rows.size(), 1u);
    ASSERT_EQ(table.rows[0]->cells.size(), 2u);
    EXPECT_TRUE(*table.columns->columns[1]->isLocked);
    const OE& inCell = *table.rows[0]->cells[1]->oeChildren[0]->items[0]->oe;

    EXPECT_EQ(ParentElement(first), &children);
    EXPECT_EQ(AncestorOf<Outline>(first), &outline);
    EXPECT_EQ(AncestorOf<Cell>(inCell), table.rows[0]->cells[1].get());
    EXPECT_EQ(AncestorOf<Page>(inCell), page.get());
    EXPECT_EQ(AncestorOf<OE>(*first.tags[0]->tag), &first);
    EXPECT_EQ(AncestorOf<Page>(*page->title->oe), page.get());
    EXPECT_EQ(ParentElement(*page), nullptr);
}

TEST(OneNoteBinding, WritesWhatItReadAndValidates) {
    const std::u16string written = RoundTrip(kPage);
    EXPECT_EQ(Join(Differences(Canonical(kPage), Canonical(written))), "");
    EXPECT_EQ(RoundTrip(written), written);
    EXPECT_TRUE(written.starts_with(u"<?xml version=\"1.0\"?>\n<one:Page xmlns:one=\"http://schemas.microsoft.com/office/onenote/2010/onenote\" ID="));
    EXPECT_EQ(written.find(u"xmlns:one", 60), std::u16string::npos) << "declared on the root only";
    EXPECT_NE(written.find(u"\n  <one:Title lang=\"en-US\">\n    <one:OE alignment=\"left\">\n      <one:T><![CDATA[Trip"),
              std::u16string::npos);
    const auto v = ValidateText(written);
    EXPECT_TRUE(!v.available || v.valid) << v.output;
}

TEST(OneNoteBinding, BooleansAreWrittenOnlyWhenTheyDifferFromTheirDefault) {
    struct Case {
        std::u16string_view attributes;  // on an OE (collapsed: default false) and a Title (showDate: default true)
        std::u16string_view oe;
        std::u16string_view title;
    };
    const Case cases[] = {
        {u"True", u"<one:OE collapsed=\"true\"", u"<one:Title>"},
        {u"true", u"<one:OE collapsed=\"true\"", u"<one:Title>"},
        {u"1", u"<one:OE collapsed=\"true\"", u"<one:Title>"},
        {u"TRUE", u"<one:OE />", u"<one:Title showDate=\"false\">"},
        {u"false", u"<one:OE />", u"<one:Title showDate=\"false\">"},
    };
    for (const Case& c : cases) {
        const std::u16string value(c.attributes);
        const std::u16string xml = u"<?xml version=\"1.0\"?><one:Page xmlns:one=\"" + std::u16string(kNamespace) +
                                   u"\"><one:Title showDate=\"" + value + u"\"><one:OE collapsed=\"" + value +
                                   u"\"/></one:Title></one:Page>";
        const std::u16string written = RoundTrip(xml);
        EXPECT_NE(written.find(c.oe), std::u16string::npos) << ToUtf8(value) << "\n" << ToUtf8(written);
        EXPECT_NE(written.find(c.title), std::u16string::npos) << ToUtf8(value) << "\n" << ToUtf8(written);
    }
}

TEST(OneNoteBinding, FutureObjectsUnknownElementsAndAttributesSurviveInPlace) {
    const std::u16string xml = uR"(<?xml version="1.0"?>
<one:Page xmlns:one="http://schemas.microsoft.com/office/onenote/2010/onenote" xmlns:x="urn:x" hasFutureContent="true" futureFlag="7">
  <one:Meta name="m" content="c"/>
  <one:MeetingInfo broadcastUrl="u"><one:Inner a="1">text <b>bold</b> tail</one:Inner></one:MeetingInfo>
  <one:Title><one:OE><one:T><![CDATA[t]]></one:T></one:OE></one:Title>
  <one:Outline>
    <one:OEChildren>
      <one:OE x:note="n" hasHeaderRow="true"><one:T><![CDATA[first]]></one:T></one:OE>
      <x:Widget size="2"><x:Part/></x:Widget>
      <one:OE><one:T><![CDATA[second]]></one:T></one:OE>
      <one:OE>stray text<one:T><![CDATA[third]]></one:T></one:OE>
    </one:OEChildren>
  </one:Outline>
  <one:FutureObject objectID="{11111111-2222-4333-8444-555555555555}{30}{B0}" lastModifiedTime="2023-04-01T09:30:00.000Z">
    <one:Position x="10.0" y="20.0" z="1"/>
    <one:Size width="30.0" height="40.0"/>
    <one:Meta name="kind" content="something new"/>
  </one:FutureObject>
</one:Page>)";
    const auto page = ReadPage(xml, u"test page");
    EXPECT_TRUE(*page->hasFutureContent);
    const OEChildren& children = *page->elements[0]->outline->oeChildren[0];
    ASSERT_EQ(children.items.size(), 3u) << "an unknown element does not end the paragraphs after it";
    ASSERT_TRUE(page->elements[1]->futureObject);
    EXPECT_EQ(page->elements[1]->futureObject->unknown.children().size(), 3u);

    const std::u16string written = WriteDocument(*page);
    EXPECT_EQ(Join(Differences(Canonical(xml), Canonical(written))), "") << ToUtf8(written);
    EXPECT_EQ(RoundTrip(written), written);

    // Content kept for an element that a macro removes stays in the document, at the end.
    page->elements[0]->outline->oeChildren[0]->items.Remove(0);
    const std::u16string changed = WriteDocument(*page);
    EXPECT_NE(changed.find(u"<x:Widget xmlns:x=\"urn:x\" size=\"2\">"), std::u16string::npos) << ToUtf8(changed);
    EXPECT_LT(changed.find(u"second"), changed.find(u"x:Widget"));
}

TEST(OneNoteBinding, KnownElementsOutOfOrderAreKeptNotLost) {
    // Tags around an Outlook task are one holder. A second List has no place: it is kept as read,
    // and so is the text after it (the content list takes one contiguous run).
    const std::u16string xml = u"<?xml version=\"1.0\"?><one:Page xmlns:one=\"" + std::u16string(kNamespace) +
                               uR"("><one:Outline><one:OEChildren><one:OE>
        <one:Tag index="0"/><one:OutlookTask guidTask="{11111111-2222-4333-8444-555555555555}"/><one:Tag index="1"/>
        <one:List><one:Bullet bullet="2"/></one:List><one:T><![CDATA[x]]></one:T>
        <one:List><one:Number numberSequence="1" numberFormat="##."/></one:List><one:T><![CDATA[y]]></one:T>
        </one:OE></one:OEChildren></one:Outline></one:Page>)";
    const auto page = ReadPage(xml, u"test page");
    const OE& oe = *page->elements[0]->outline->oeChildren[0]->items[0]->oe;
    EXPECT_EQ(oe.tags.size(), 3u);
    EXPECT_TRUE(oe.list && oe.list->bullet);
    EXPECT_EQ(oe.content.size(), 1u);
    ASSERT_EQ(oe.unknown.children().size(), 2u);
    EXPECT_EQ(oe.unknown.children()[0].after, oe.content[0]->t.get());
    EXPECT_EQ(oe.unknown.children()[1].after, oe.content[0]->t.get());
    const std::u16string written = WriteDocument(*page);
    EXPECT_EQ(Join(Differences(Canonical(xml), Canonical(written))), "") << ToUtf8(written);
}

TEST(OneNoteBinding, NumbersAndDatesKeepTheirTextUntilSet) {
    EXPECT_EQ(Float::Of(36).text, u"36.0");
    EXPECT_EQ(Float::Of(86.4).text, u"86.4000015258789");
    EXPECT_EQ(Float::Of(302.3321228027344).text, u"302.3321228027344");
    EXPECT_EQ(Float::Of(0.5).text, u"0.5");
    EXPECT_FLOAT_EQ((Float{u"2.65465970562583E-28"}.value()), 2.65465970562583e-28f);
    EXPECT_EQ((Float{u"wide"}.value()), 0.0f);
    EXPECT_EQ(Int::Of(-12).text, u"-12");

    const std::u16string xml = u"<?xml version=\"1.0\"?><one:Page xmlns:one=\"" + std::u16string(kNamespace) +
                               uR"(" dateTime="2023-04-01T09:30:00Z" lastModifiedTime="2023-04-01T09:30:00.000Z" pageLevel="01"><one:QuickStyleDef index="1" name="p" font="Calibri" fontSize="11.0"/></one:Page>)";
    const auto page = ReadPage(xml, u"test page");
    EXPECT_EQ(page->dateTime->time.wMinute, 30);
    EXPECT_EQ(page->pageLevel->value(), 1);
    std::u16string written = WriteDocument(*page);
    for (std::u16string_view kept : {u"dateTime=\"2023-04-01T09:30:00Z\"", u"pageLevel=\"01\"", u"fontSize=\"11.0\""}) {
        EXPECT_NE(written.find(kept), std::u16string::npos) << ToUtf8(kept);
    }
    page->dateTime = DateTime::Of(xml::SystemTime{2024, 2, 0, 29, 23, 5, 9, 0});
    page->quickStyleDefs[0]->fontSize = Float::Of(12);
    written = WriteDocument(*page);
    EXPECT_NE(written.find(u"dateTime=\"2024-02-29T23:05:09.000Z\""), std::u16string::npos);
    EXPECT_NE(written.find(u"fontSize=\"12.0\""), std::u16string::npos);
}

TEST(OneNoteBinding, ControlCharactersAndLoneSurrogatesSurvive) {
    // OneNote puts these into page text; XML 1.0 cannot carry them. Read raw or as references,
    // they are written back as character references.
    const std::u16string xml = u"<?xml version=\"1.0\"?><one:Page xmlns:one=\"" + std::u16string(kNamespace) +
                               u"\" name=\"a\x0B" u"b&#xD800;\"><one:Title><one:OE><one:T><![CDATA[x\x01y\xDC00z &#1;]]>"
                               u"</one:T></one:OE></one:Title></one:Page>";
    const auto page = ReadPage(xml, u"test page");
    EXPECT_EQ(*page->name, u"a\x0B" u"b\xD800");
    EXPECT_EQ(page->title->oe->content[0]->t->text, u"x\x01y\xDC00z &#1;");
    const std::u16string written = WriteDocument(*page);
    EXPECT_NE(written.find(u"name=\"a&#xB;b&#xD800;\""), std::u16string::npos) << ToUtf8(written);
    EXPECT_NE(written.find(u"<![CDATA[x]]>&#x1;<![CDATA[y]]>&#xDC00;<![CDATA[z &#1;]]>"), std::u16string::npos)
        << ToUtf8(written);
    const auto again = ReadPage(written, u"test page");
    EXPECT_EQ(*again->name, *page->name);
    EXPECT_EQ(again->title->oe->content[0]->t->text, page->title->oe->content[0]->t->text);
    EXPECT_EQ(WriteDocument(*again), written);
}

TEST(OneNoteBinding, BadDocumentsGiveAnErrorThatNamesThem) {
    const std::u16string ns(kNamespace);
    struct Case {
        std::u16string xml;
        std::u16string message;
    };
    const Case cases[] = {
        {u"<?xml version=\"1.0\"?><one:Page xmlns:one=\"" + ns + u"\"><one:Title></one:Page>",
         u"Cannot read page {P}: Opening and ending tag mismatch: Title line 1 and Page (line 1, column 123)"},
        {u"<!-- nothing -->", u"Cannot read page {P}: it holds no element"},
        {u"<one:Page xmlns:one=\"http://schemas.microsoft.com/office/onenote/2013/onenote\"/>",
         u"Cannot read page {P}: its root element \"Page\" is not in the OneNote 2010 namespace (found "
         u"\"http://schemas.microsoft.com/office/onenote/2013/onenote\")"},
        {u"<one:Section xmlns:one=\"" + ns + u"\"/>", u"Cannot read page {P}: expected a \"Page\" element, found \"Section\""},
        {u"<one:Page xmlns:one=\"" + ns + u"\"/><one:Page xmlns:one=\"" + ns + u"\"/>",
         u"Cannot read page {P}: Extra content at the end of the document (line 1, column 81)"},
    };
    for (const Case& c : cases) {
        try {
            ReadPage(c.xml, u"page {P}");
            ADD_FAILURE() << "no error for " << ToUtf8(c.xml);
        } catch (const DocumentError& e) {
            EXPECT_TRUE(qm::test::SameReadError(e.message(), c.message)) << ToUtf8(e.message());
        }
    }
}

TEST(OneNoteBinding, DeepOrHostileContentFailsCleanly) {
    std::u16string deep = u"<one:Page xmlns:one=\"" + std::u16string(kNamespace) + u"\"><one:Outline>";
    for (int i = 0; i < 2000; ++i) deep += u"<one:OEChildren><one:OE>";
    EXPECT_THROW(ReadPage(deep, u"deep"), DocumentError);
    std::u16string unknownDeep = u"<one:Page xmlns:one=\"" + std::u16string(kNamespace) + u"\">";
    for (int i = 0; i < 2000; ++i) unknownDeep += u"<x>";
    EXPECT_THROW(ReadPage(unknownDeep, u"deep"), DocumentError);
    // Required attributes missing: nothing invented, nothing lost.
    const std::u16string bare = u"<one:Page xmlns:one=\"" + std::u16string(kNamespace) +
                                u"\"><one:TagDef/><one:Outline><one:Position/></one:Outline></one:Page>";
    EXPECT_EQ(Join(Differences(Canonical(bare), Canonical(RoundTrip(bare)))), "");
}

TEST(OneNoteBinding, NewElementsGetTheDefaultsOfNewContent) {
    const auto number = New<Number>();
    EXPECT_EQ(*number->language, u"1033");
    EXPECT_EQ(*number->font, u"Verdana");
    EXPECT_EQ(*New<OE>()->alignment, u"left");
    EXPECT_EQ(*New<Image>()->format, u"auto");
    EXPECT_EQ(*New<OCRData>()->lang, u"EN-US");
    EXPECT_EQ(*New<Bullet>()->fontColor, u"automatic");
    EXPECT_EQ(*New<Table>()->selected, u"none");
    EXPECT_FALSE(ReadPage(u"<one:Page xmlns:one=\"" + std::u16string(kNamespace) +
                              u"\"><one:Outline><one:OEChildren><one:OE><one:List><one:Number numberSequence=\"0\" "
                              u"numberFormat=\"##.\"/></one:List></one:OE></one:OEChildren></one:Outline></one:Page>",
                          u"p")
                     ->elements[0]
                     ->outline->oeChildren[0]
                     ->items[0]
                     ->oe->list->number->language)
        << "reading never invents attributes";
    // A list built by hand knows its element, so new children can walk up.
    auto oe = New<OE>();
    auto children = New<OEChildren>();
    auto choice = std::make_shared<OEChildrenChoice>();
    choice->oe = New<OE>();
    choice->oe->owner = choice.get();
    children->items.Add(choice);
    oe->oeChildren.Add(children);
    EXPECT_EQ(AncestorOf<OE>(*choice->oe), oe.get());
}

// The sample with what OneNote also puts into text: a control character, a vertical tab and an
// unpaired surrogate at the start of every text run and of every name.
std::u16string WithUnwritableCharacters(std::u16string text) {
    for (const std::u16string_view at : {u"<![CDATA[", u" name=\""}) {
        for (std::size_t i = text.find(at); i != std::u16string::npos; i = text.find(at, i + at.size())) {
            text.insert(i + at.size(), u"\x01\x0B\xDC00");
        }
    }
    return text;
}

TEST(OneNoteSamples, EveryRealPageAndHierarchyReadsShowsAndWritesBackItsContent) {
    if (ReferenceDir().empty()) GTEST_SKIP() << "the OneNote reference samples are not beside the repository";
    int pages = 0, hierarchies = 0;
    for (const auto& entry : fs::directory_iterator(ReferenceDir() / "samples")) {
        const std::string name = entry.path().filename().string();
        if (entry.path().extension() != ".xml" || name.starts_with("n")) continue;
        SCOPED_TRACE(name);
        const std::u16string original = ReadSample(entry.path());
        std::u16string written;
        if (name.starts_with("p")) {
            const auto page = ReadPage(original, FromUtf8(name));
            EXPECT_TRUE(onenote::ListPage(*page).starts_with(u"Page: "));
            written = WriteDocument(*page);
            const std::u16string awkward = WithUnwritableCharacters(original);
            EXPECT_EQ(Join(Differences(Canonical(awkward), Canonical(WriteDocument(*ReadPage(awkward, u"p"))))), "");
            ++pages;
        } else {
            const HierarchyDocument hierarchy = ReadHierarchy(original, FromUtf8(name));
            EXPECT_FALSE(onenote::ListHierarchy(RootOf(hierarchy)).empty());
            written = WriteDocument(RootOf(hierarchy));
            ++hierarchies;
        }
        EXPECT_EQ(Join(Differences(Canonical(original), Canonical(written))), "");
        EXPECT_EQ(WriteDocument(RootOf(ReadHierarchy(written, u"again"))), written) << "stable after one round";
        // What was valid stays valid.
        const auto before = ValidateText(original);
        if (before.available && before.valid) {
            const auto after = ValidateText(written);
            EXPECT_TRUE(after.valid) << after.output;
        }
    }
    EXPECT_EQ(pages, 17);
    EXPECT_EQ(hierarchies, 7);
}

TEST(OneNoteSamples, ABrokenNamespaceIsRefusedNamingTheFile) {
    if (ReferenceDir().empty()) GTEST_SKIP() << "the OneNote reference samples are not beside the repository";
    const fs::path file = ReferenceDir() / "samples" / "n01_gpl3_convertonenote2markdown_Notebooks_typo_namespace.xml";
    try {
        ReadHierarchy(ReadSample(file), u"\"n01.xml\"");
        ADD_FAILURE() << "no error";
    } catch (const DocumentError& e) {
        EXPECT_EQ(e.message(), u"Cannot read \"n01.xml\": its root element \"Notebooks\" is not in the OneNote 2010 "
                               u"namespace (found \"http://schemas.microsoft.co1m/office/onenote/2010/onenote\")");
    }
}

}  // namespace
}  // namespace qm::ON
