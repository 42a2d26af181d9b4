#include <gtest/gtest.h>

#include "xml/xml_error.h"
#include "xml/xml_reader.h"
#include "xml/xml_writer.h"

namespace qm::xml {
namespace {

std::u16string Escaped(std::u16string_view text, EscapeMode mode) {
    std::u16string out;
    AppendEscaped(out, text, mode);
    return out;
}

TEST(AppendEscaped, TextAndAttributeModes) {
    struct Case {
        std::u16string_view in, text, attribute;
    };
    const Case cases[] = {
        {u"a&b<c>d", u"a&amp;b&lt;c&gt;d", u"a&amp;b&lt;c&gt;d"},
        {u"\"q\" 'a'", u"\"q\" 'a'", u"&quot;q&quot; 'a'"},
        {u"l1\r\nl2\tx", u"l1&#13;\nl2\tx", u"l1&#13;&#10;l2&#9;x"},
        // Characters XML cannot carry become U+FFFD; a valid surrogate pair stays.
        {u"\x01\xFFFF\xD800x\xD83D\xDE00", u"\xFFFD\xFFFD\xFFFDx\xD83D\xDE00", u"\xFFFD\xFFFD\xFFFDx\xD83D\xDE00"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Escaped(c.in, EscapeMode::Text), c.text);
        EXPECT_EQ(Escaped(c.in, EscapeMode::Attribute), c.attribute);
    }
}

TEST(XmlWriter, IndentsChildrenAndKeepsTextOnOneLine) {
    std::u16string out;
    StringSink sink(out);
    XmlWriter w(sink, true);
    w.WriteDeclaration();
    w.StartElement(u"", u"Root", u"");
    w.WriteAttribute(u"a", u"1");
    w.StartElement(u"", u"Empty", u"");
    w.EndElement();
    w.StartElement(u"", u"Var", u"");
    w.WriteString(u"name");
    w.EndElement();
    w.StartElement(u"", u"Arg", u"");
    w.StartElement(u"", u"Prop", u"");
    w.WriteString(u"p");
    w.EndElement();
    w.WriteString(u"lit");
    w.EndElement();
    w.EndDocument();
    EXPECT_EQ(out,
              u"<?xml version=\"1.0\" encoding=\"utf-16\"?>\r\n"
              u"<Root a=\"1\">\r\n"
              u"  <Empty />\r\n"
              u"  <Var>name</Var>\r\n"
              u"  <Arg>\r\n"
              u"    <Prop>p</Prop>lit</Arg>\r\n"
              u"</Root>");
}

TEST(XmlWriter, CDataSplitsWhatItCannotCarry) {
    std::u16string out;
    StringSink sink(out);
    XmlWriter w(sink, false);
    w.StartElement(u"", u"T", u"");
    w.WriteCData(u"a]]>b\rc");
    w.EndElement();
    EXPECT_EQ(out, u"<T><![CDATA[a]]]]><![CDATA[>b]]>&#13;<![CDATA[c]]></T>");
}

TEST(XmlWriter, BlankTextAfterChildrenGoesAsCData) {
    std::u16string out;
    StringSink sink(out);
    XmlWriter w(sink, false);
    w.StartElement(u"", u"T", u"");
    w.StartElement(u"", u"C", u"");
    w.EndElement();
    w.WriteString(u" ");
    w.EndElement();
    w.StartElement(u"", u"U", u"");
    w.WriteString(u" ");
    w.EndElement();
    EXPECT_EQ(out, u"<T><C /><![CDATA[ ]]></T><U> </U>");
}

TEST(XmlWriter, DeclaresANamespaceOncePerScope) {
    std::u16string out;
    StringSink sink(out);
    XmlWriter w(sink, false);
    w.StartElement(u"one", u"Page", u"urn:x");
    w.StartElement(u"one", u"T", u"urn:x");
    w.EndElement();
    w.EndElement();
    EXPECT_EQ(out, u"<one:Page xmlns:one=\"urn:x\"><one:T /></one:Page>");
}

TEST(XmlWriter, RefusesToNestBeyondTheLimit) {
    std::u16string out;
    StringSink sink(out);
    XmlWriter w(sink, false);
    for (int i = 0; i < kMaxElementDepth; ++i) w.StartElement(u"", u"a", u"");
    EXPECT_THROW(w.StartElement(u"", u"a", u""), XmlError);
}

}  // namespace
}  // namespace qm::xml
