#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "core/text.h"
#include "platform_test_util.h"
#include "test_schema.h"
#include "xml/messages.h"
#include "xml/xml_error.h"

namespace qm::xml {
namespace {

using namespace test;

constexpr std::u16string_view kDecl = u"<?xml version=\"1.0\"?>";

std::shared_ptr<Doc> ReadDoc(std::u16string_view body, const ReadContext& context = {}) {
    auto doc = std::make_shared<Doc>();
    ParseElement(std::u16string(kDecl) + std::u16string(body), *doc, context);
    return doc;
}

Plain ReadPlain(std::u16string_view body) {
    Plain plain;
    ParseElement(std::u16string(kDecl) + std::u16string(body), u"P", plain);
    return plain;
}

// The error that reading `text` into a Doc ends with.
XmlError ReadError(std::u16string_view text) {
    Doc doc;
    try {
        ParseElement(std::u16string(text), doc);
    } catch (const XmlError& e) {
        return e;
    }
    return XmlError(u"(read)", 0, 0);
}

std::u16string Write(const ChildElement& e, bool indent = false) {
    std::u16string out;
    SerializeElement(e, out, nullptr, false, false, false, indent);
    return out;
}

TEST(Binding, ListsTakeOneContiguousRun) {
    auto doc = ReadDoc(u"<Doc><Item/><Item/><Other/><Item/><Other/></Doc>");
    EXPECT_EQ(doc->items.size(), 2u);
    EXPECT_EQ(doc->others.size(), 1u);  // the third Item closed the Other list
    // An element before the run closes the list as well.
    doc = ReadDoc(u"<Doc><Other/><Item/></Doc>");
    EXPECT_EQ(doc->items.size(), 0u);
    EXPECT_EQ(doc->others.size(), 1u);
}

TEST(Binding, UnknownElementsLendTheirChildrenAndEndTheParent) {
    // Wrap is nobody's: its Leaf goes to the Box, its end tag ends the Box, and the Box's own
    // Tail is then offered to the Doc; the Box's end tag ends the Doc.
    auto doc = ReadDoc(u"<Doc><Box><Wrap><Leaf>x</Leaf></Wrap><Tail/></Box><Tail/><Item/></Doc>");
    ASSERT_EQ(doc->boxes.size(), 1u);
    ASSERT_TRUE(doc->boxes[0]->leaf);
    EXPECT_EQ(doc->boxes[0]->leaf->text, u"x");
    EXPECT_FALSE(doc->boxes[0]->tail);
    ASSERT_TRUE(doc->tail);
    EXPECT_EQ(doc->items.size(), 0u);
}

TEST(Binding, SingleSlotRefusesASecondElement) {
    auto doc = ReadDoc(u"<Doc><Box><Leaf>1</Leaf><Leaf>2</Leaf></Box></Doc>");
    EXPECT_EQ(doc->boxes[0]->leaf->text, u"1");
}

TEST(Binding, EmptyChoiceLooksPastAtMostNineNames) {
    // Looking past unclaimed names skips the text between them.
    auto seek = [](int unknowns) {
        std::u16string body = u"<P>";
        for (int i = 1; i <= unknowns; ++i) body += u"<U/>t" + Ascii(std::to_string(i));
        return ReadPlain(body + u"<A>a</A>end</P>");
    };
    Plain eight = seek(8);
    EXPECT_EQ(eight.pick.index(), 1u);
    EXPECT_EQ(eight.text, u"end");
    // The ninth unclaimed name stops the search; reading goes on from there.
    Plain nine = seek(9);
    EXPECT_EQ(nine.pick.index(), 1u);
    EXPECT_EQ(nine.text, u"t9end");
    // Looking ahead into an end tag ends the element.
    Plain ended = ReadPlain(u"<P><U/>x</P>");
    EXPECT_EQ(ended.pick.index(), 0u);
    EXPECT_EQ(ended.text, u"");
    // A filled choice looks no further; later alternatives are not read.
    Plain filled = ReadPlain(u"<P><B/><A>a</A>t</P>");
    EXPECT_EQ(filled.pick.index(), 2u);
    EXPECT_EQ(filled.text, u"t");
}

TEST(Binding, DefaultedAttributesAreWrittenOnlyWhenChanged) {
    Item item;
    EXPECT_EQ(Write(item), u"<Item name=\"\" when=\"00-00-00T00:00:00.000Z\" />");
    item.flag = true;
    item.count = -3;
    item.mode = u"manual";
    item.when = {2016, 3, 0, 5, 14, 7, 9, 42};
    const std::u16string written = Write(item);
    EXPECT_EQ(written,
              u"<Item name=\"\" flag=\"true\" count=\"-3\" mode=\"manual\" when=\"2016-03-05T14:07:09.042Z\" />");
    auto doc = ReadDoc(u"<Doc>" + written + u"</Doc>");
    EXPECT_EQ(Write(*doc->items[0]), written);
}

TEST(Binding, SerializeFlagsAndSharedWriter) {
    Doc doc;
    doc.on = true;
    doc.items.Add(std::make_shared<Item>()).name = u"i";
    std::u16string out = u"stale";
    SerializeElement(doc, out, nullptr, true, true, false, false);
    EXPECT_EQ(out, u"<Item name=\"i\" when=\"00-00-00T00:00:00.000Z\" />");
    // Into a caller's writer: the output string is left alone.
    std::u16string text;
    StringSink sink(text);
    XmlWriter writer(sink, false);
    SerializeElement(doc, out, &writer, false, true, false, false);
    writer.EndDocument();
    EXPECT_EQ(text, u"<Doc>" + out + u"</Doc>");
}

TEST(Binding, AttributeValuesConvertLeniently) {
    auto doc = ReadDoc(u"<Doc on=\"TRUE\" xmlns:x=\"urn:x\" unknown=\"1\"><Item flag=\"True\" count=\"12abc\" "
                       u"when=\"2016-13\"/></Doc>");
    EXPECT_FALSE(doc->on.value);
    EXPECT_TRUE(doc->items[0]->flag.value);
    EXPECT_EQ(doc->items[0]->count.value, 12);
    EXPECT_EQ(doc->items[0]->when, (SystemTime{2016, 13, 0, 0, 0, 0, 0, 0}));
}

TEST(Binding, SpecialCharactersSurviveAttributesAndText) {
    const std::u16string nasty = u"<a href=\"x\">&amp; 'q'\r\n\ttab</a>";
    Doc doc;
    doc.items.Add(std::make_shared<Item>()).name = nasty;
    auto box = std::make_shared<Box>();
    box->leaf = std::make_shared<Leaf>();
    box->leaf->text = nasty;
    doc.boxes.Add(box);
    const std::u16string written = Write(doc, true);
    auto back = ReadDoc(written);
    EXPECT_EQ(back->items[0]->name, nasty);
    EXPECT_EQ(back->boxes[0]->leaf->text, nasty);
    EXPECT_FALSE(back->boxes[0]->leaf->cdata);
}

TEST(Binding, CDataIsKeptAsCData) {
    auto doc = ReadDoc(u"<Doc><Box><Leaf><![CDATA[a<b]]>&amp;<![CDATA[]]]]><![CDATA[>]]></Leaf></Box></Doc>");
    const Leaf& leaf = *doc->boxes[0]->leaf;
    EXPECT_TRUE(leaf.cdata);
    EXPECT_EQ(leaf.text, u"a<b&]]>");
    EXPECT_EQ(Write(leaf), u"<Leaf><![CDATA[a<b&]]]]><![CDATA[>]]></Leaf>");
}

TEST(Binding, BlankTextIsIndentationOnlyBetweenElements) {
    EXPECT_EQ(ReadPlain(u"<P>  </P>").text, u"  ");
    EXPECT_EQ(ReadPlain(u"<P>&#13;</P>").text, u"\r");
    EXPECT_EQ(ReadPlain(u"<P>\r\n  <A>a</A>\r\n</P>").text, u"");
    EXPECT_EQ(ReadPlain(u"<P>\r\n  <A>a</A><![CDATA[ ]]>&#13;<![CDATA[]]></P>").text, u" \r");
    // Comments do not separate: the blank before one touches the text after it.
    EXPECT_EQ(ReadPlain(u"<P><P>x</P> <!-- c --> y</P>").text, u"  y");
}

TEST(Binding, RootIsRecognisedOnlyAfterADeclaration) {
    Doc doc;
    ParseElement(u"<Doc on=\"true\"><Item/></Doc>", doc);
    EXPECT_TRUE(doc.present);
    EXPECT_FALSE(doc.on.value);
    EXPECT_TRUE(doc.items.empty());
    Doc declared;
    ParseElement(u"\xFEFF<?xml version=\"1.0\" encoding=\"utf-16\"?>\r\n<!-- c --><Doc on=\"true\"><Item/></Doc>",
                 declared);
    EXPECT_TRUE(declared.on.value);
    EXPECT_EQ(declared.items.size(), 1u);
}

TEST(Binding, HeaderOwnersAndEndCallback) {
    ReadContext context;
    context.source = {1, 2, 3};
    std::vector<std::u16string> ended;
    context.onElementEnd = [&](std::u16string_view name, const T_Element& element) {
        ended.emplace_back(name);
        if (name == u"Item") {
            EXPECT_EQ(element.As<Item>()->name, u"i");
        }
        EXPECT_EQ(element.As<Plain>(), nullptr);
    };
    auto doc = ReadDoc(u"<Doc><Item name=\"i\"/><Box><Leaf/></Box></Doc>", context);
    EXPECT_EQ(ended, (std::vector<std::u16string>{u"Item", u"Leaf", u"Box", u"Doc", u"Doc"}));
    const Item& item = *doc->items[0];
    EXPECT_TRUE(item.present);
    EXPECT_EQ(item.source, (ContextWords{1, 2, 3}));
    EXPECT_EQ(item.owner, &doc->items);
    EXPECT_EQ(doc->items.owner, doc.get());
    EXPECT_EQ(doc->boxes[0]->leaf->owner, doc->boxes[0].get());
}

TEST(Binding, DocumentTypeIsRefused) {
    const XmlError e = ReadError(u"<?xml version=\"1.0\"?>\n<!-- x -->\n  <!DOCTYPE Doc []><Doc/>");
    EXPECT_EQ(e.message(), msg::kDtdProhibited);
    EXPECT_EQ(e.line(), 3);
    EXPECT_EQ(e.column(), 3);
}

TEST(Binding, BillionLaughsFailsFast) {
    std::u16string text = u"<?xml version=\"1.0\"?><!DOCTYPE lolz [<!ENTITY lol \"lol\">";
    for (int i = 1; i < 10; ++i) {
        const std::u16string n = Ascii(std::to_string(i)), p = i == 1 ? u"" : Ascii(std::to_string(i - 1));
        text += u"<!ENTITY lol" + n + u" \"";
        for (int k = 0; k < 10; ++k) text += u"&lol" + p + u";";
        text += u"\">";
    }
    text += u"]><Doc>&lol9;</Doc>";
    const auto start = std::chrono::steady_clock::now();
    Doc doc;
    EXPECT_THROW(ParseElement(text, doc), XmlError);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

TEST(Binding, MalformedXmlReportsLineAndColumn) {
    const XmlError mismatched = ReadError(u"<?xml version=\"1.0\"?>\r\n<Doc>\r\n  <Item>\r\n</Doc>");
    EXPECT_FALSE(mismatched.message().empty());
    EXPECT_EQ(mismatched.line(), 4);
    EXPECT_GT(mismatched.column(), 0);
    Doc doc;
    if (!qm::test::UnderWine()) {
        EXPECT_THROW(ParseElement(u"<?xml version=\"1.0\"?><Doc>&undefined;</Doc>", doc), XmlError);
        EXPECT_THROW(ParseElement(u"<?xml version=\"1.0\"?><Doc>\x01</Doc>", doc), XmlError);
    }
    EXPECT_EQ(ReadError(std::u16string(u"<?xml version=\"1.0\"?>\n<Doc>\0</Doc>", 34)).FullText(),
              u"The document contains a null character (line 2, column 6)");
}

TEST(Binding, NestingIsBounded) {
    auto nested = [](int depth) {
        std::u16string text(kDecl);
        for (int i = 0; i < depth; ++i) text += u"<Doc>";
        for (int i = 0; i < depth; ++i) text += u"</Doc>";
        return text;
    };
    Doc doc;
    EXPECT_NO_THROW(ParseElement(nested(kMaxElementDepth), doc));
    const XmlError e = ReadError(nested(kMaxElementDepth + 1));
    EXPECT_EQ(e.message(), u"Elements are nested too deeply: more than 768 levels");
    EXPECT_EQ(e.line(), 1);
}

}  // namespace
}  // namespace qm::xml
