#include <gtest/gtest.h>

#include <climits>

#include "xml/xml_strings.h"

namespace qm::xml {
namespace {

TEST(XmlBool, OnlyThreeSpellingsAreTrue) {
    for (const char16_t* text : {u"true", u"True", u"1"}) EXPECT_TRUE(ParseXmlBool(text));
    for (const char16_t* text : {u"TRUE", u"yes", u"0", u"", u" true", u"true "}) EXPECT_FALSE(ParseXmlBool(text));
    EXPECT_EQ(FormatXmlBool(true), u"true");
    EXPECT_EQ(FormatXmlBool(false), u"false");
}

TEST(XmlDateTime, FormatsZeroFilledWithTwoDigitMinimumYear) {
    EXPECT_EQ(FormatXmlDateTime({2016, 3, 6, 5, 14, 7, 9, 42}), u"2016-03-05T14:07:09.042Z");
    EXPECT_EQ(FormatXmlDateTime({}), u"00-00-00T00:00:00.000Z");
    EXPECT_EQ(FormatXmlDateTime({5, 12, 0, 31, 23, 59, 59, 999}), u"05-12-31T23:59:59.999Z");
}

TEST(XmlDateTime, ParsesAnySeparatorsAndStopsAtTheFirstFailure) {
    const SystemTime full{2016, 3, 0, 5, 14, 7, 9, 42};
    EXPECT_EQ(ParseXmlDateTime(u"2016-03-05T14:07:09.042Z"), full);
    EXPECT_EQ(ParseXmlDateTime(u"2016/03/05 14.07.09,042"), full);
    EXPECT_EQ(ParseXmlDateTime(u"00-00-00T00:00:00.000Z"), SystemTime{});
    EXPECT_EQ(ParseXmlDateTime(u"2016-03"), (SystemTime{2016, 3, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(ParseXmlDateTime(u"2016-xx-05"), (SystemTime{2016, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(ParseXmlDateTime(u"garbage"), SystemTime{});
    EXPECT_EQ(ParseXmlDateTime(u""), SystemTime{});
}

TEST(XmlInt, TakesWhatTheStreamExtractionGives) {
    EXPECT_EQ(ParseXmlInt(u"42"), 42);
    EXPECT_EQ(ParseXmlInt(u"  -7"), -7);
    EXPECT_EQ(ParseXmlInt(u"12abc"), 12);
    EXPECT_EQ(ParseXmlInt(u"abc"), 0);
    EXPECT_EQ(ParseXmlInt(u"99999999999"), INT_MAX);
    EXPECT_EQ(FormatXmlInt(-15), u"-15");
}

TEST(EscapeXml, ReplacesTheFourCharactersInOnePass) {
    EXPECT_EQ(EscapeXml(u"plain 'text'"), u"plain 'text'");
    EXPECT_EQ(EscapeXml(u"a<b>\"c\"&'d'"), u"a&lt;b&gt;&quot;c&quot;&amp;'d'");
    EXPECT_EQ(EscapeXml(u"&lt;"), u"&amp;lt;");
    EXPECT_EQ(UnescapeXml(u"a&lt;b&gt;&quot;c&quot;&amp;'d'"), u"a<b>\"c\"&'d'");
    EXPECT_EQ(UnescapeXml(u"&amp;lt;"), u"&lt;");
    EXPECT_EQ(UnescapeXml(u"&apos; &#38; & tail&"), u"&apos; &#38; & tail&");
}

TEST(EscapeAmpersands, LeavesNumericReferencesAlone) {
    EXPECT_EQ(EscapeAmpersands(u"a & b &#38; c&"), u"a &amp; b &#38; c&amp;");
    EXPECT_EQ(UnescapeAmpersands(u"a &amp; b &amp;#38; &amp;"), u"a & b &amp;#38; &");
    EXPECT_EQ(UnescapeAmpersands(EscapeAmpersands(u"x & y &#169;")), u"x & y &#169;");
}

}  // namespace
}  // namespace qm::xml
