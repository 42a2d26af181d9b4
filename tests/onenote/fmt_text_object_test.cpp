#include <gtest/gtest.h>

#include "core/error.h"
#include "core/text.h"
#include "onenote/fmt_paragraph.h"
#include "onenote/text_object.h"

namespace qm::onenote {
namespace {

class RecordingHost final : public TextHost, public LogSink {
public:
    void MarkModified() override { ++modified; }
    LogSink* log() override { return logging ? this : nullptr; }
    void Write(std::u16string_view text) override { written += text; }

    int modified = 0;
    bool logging = false;
    std::u16string written;
};

// A paragraph holding one text element per content given.
std::shared_ptr<ON::OE> Paragraph(std::initializer_list<std::u16string_view> contents) {
    auto oe = std::make_shared<ON::OE>();
    for (const std::u16string_view content : contents) {
        auto choice = std::make_shared<ON::OEChoice>();
        choice->t = std::make_shared<ON::T>();
        choice->t->text = std::u16string(content);
        choice->t->owner = choice.get();
        oe->content.Add(std::move(choice));
    }
    return oe;
}

const std::u16string& Content(const ON::OE& oe, std::size_t index = 0) { return oe.content[index]->t->text; }

TextObject& AsText(const ObjectRef& object) { return dynamic_cast<TextObject&>(*object); }

std::string MessageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const MacroError& e) {
        return ToUtf8(e.message());
    }
    return "(no error)";
}

std::string Describe(const MacroValue& value) { return ToUtf8(value.Describe()); }

constexpr std::u16string_view kSample =
    u"plain <span style='font-weight:bold;font-style:italic;color:#FF0000;font-size:11.0pt;"
    u"font-family:Calibri;background:yellow;text-decoration:underline line-through;vertical-align:super' "
    u"lang=de-DE>rich</span> <a href=\"http://x\">link</a>";

TEST(TextObject, ReadsTheFormattingOfItsRun) {
    auto host = std::make_shared<RecordingHost>();
    const auto texts = TextObjectsOfParagraph(Paragraph({kSample}), host);
    ASSERT_EQ(texts.size(), 4u);
    struct Case {
        std::u16string_view property;
        std::string plain;  // of the first run
        std::string rich;   // of the second
    };
    const Case cases[] = {
        {u"type", "Text (string)", "Text (string)"},
        {u"value", "plain  (string)", "rich (string)"},
        {u"startIndex", "0 (integer)", "6 (integer)"},
        {u"endIndex", "6 (integer)", "10 (integer)"},
        {u"selected", "false (boolean)", "false (boolean)"},
        {u"fontName", " (string)", "Calibri (string)"},
        {u"fontColor", "automatic (string)", "#FF0000 (string)"},
        {u"fontSize", "<empty>", "11 (decimal)"},
        {u"highlightColor", "automatic (string)", "yellow (string)"},
        {u"bold", "false (boolean)", "true (boolean)"},
        {u"italic", "false (boolean)", "true (boolean)"},
        {u"underline", "false (boolean)", "true (boolean)"},
        {u"strikethrough", "false (boolean)", "true (boolean)"},
        {u"supersub", " (string)", "super (string)"},
        {u"hyperlink", " (string)", " (string)"},
        {u"lang", " (string)", "de-DE (string)"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(ToUtf8(c.property));
        EXPECT_EQ(Describe(texts[0]->GetProperty(c.property, false)), c.plain);
        EXPECT_EQ(Describe(texts[1]->GetProperty(c.property, false)), c.rich);
    }
    EXPECT_EQ(Describe(texts[3]->GetProperty(u"hyperlink", false)), "http://x (string)");
    EXPECT_EQ(texts[1]->Describe(), u"Text \"rich\" (Text)");
    EXPECT_EQ(texts[1]->TypeNumber(), 13);
}

TEST(TextObject, UnknownAndReadOnlyPropertiesFailWithTheirMessages) {
    auto host = std::make_shared<RecordingHost>();
    const auto oe = Paragraph({u"abc"});
    const ObjectRef text = TextObjectsOfParagraph(oe, host).at(0);
    EXPECT_EQ(MessageOf([&] { text->GetProperty(u"Value", false); }),
              "A property named 'Value' on object of type 'Text' does not exist.");
    EXPECT_TRUE(text->GetProperty(u"Value", true).IsEmpty());
    EXPECT_EQ(MessageOf([&] { text->SetProperty(u"nope", MacroValue(u"x")); }),
              "A property named 'nope' on object of type 'Text' does not exist.");
    for (const char16_t* name : {u"startIndex", u"endIndex", u"type"}) {
        EXPECT_EQ(MessageOf([&] { text->SetProperty(name, MacroValue(1)); }),
                  "Attempting to write read-only property '" + ToUtf8(name) + "' on object of type 'Text'");
    }
    EXPECT_EQ(MessageOf([&] { text->SetProperty(u"fontSize", MacroValue(u"big")); }),
              "Cannot set property 'fontSize' on object of type 'Text' to big (string): expected a positive number");
    EXPECT_EQ(MessageOf([&] { text->SetProperty(u"bold", MacroValue(std::make_shared<MacroArray>())); }),
              "Cannot set property 'bold' on object of type 'Text' to Array of size (0): expected a Bool");
    EXPECT_EQ(Content(*oe), u"abc");
    EXPECT_EQ(host->modified, 0);
}

TEST(TextObject, WritesFormatItsStretchOnly) {
    struct Case {
        std::u16string_view content;
        std::size_t run;
        std::u16string_view property;
        MacroValue value;
        std::u16string_view markup;
    };
    const Case cases[] = {
        {u"one <span style='color:red'>two</span>", 1, u"bold", MacroValue(true),
         u"one <span style='color:red;font-weight:bold'>two</span>"},
        {u"one <span style='font-weight:bold'>two</span>", 1, u"bold", MacroValue(false),
         u"one <span style='font-weight:normal'>two</span>"},
        {u"<span style='color:red'>a</span>b", 0, u"fontColor", MacroValue(u"automatic"), u"ab"},
        {u"a<span style='color:red'>b</span>", 0, u"fontColor", MacroValue(u"red"),
         u"<span style='color:red'>ab</span>"},
        {u"x", 0, u"fontSize", MacroValue(14), u"<span style='font-size:14.0pt'>x</span>"},
        {u"x", 0, u"fontSize", MacroValue(u"10.5"), u"<span style='font-size:10.5pt'>x</span>"},
        {u"x", 0, u"fontName", MacroValue(u"Segoe UI"), u"<span style='font-family:Segoe UI'>x</span>"},
        {u"x", 0, u"highlightColor", MacroValue(u"yellow"), u"<span style='background:yellow'>x</span>"},
        {u"x", 0, u"italic", MacroValue(u"true"), u"<span style='font-style:italic'>x</span>"},
        {u"<span style='text-decoration:underline'>x</span>", 0, u"strikethrough", MacroValue(true),
         u"<span style='text-decoration:underline line-through'>x</span>"},
        {u"<span style='text-decoration:underline'>x</span>", 0, u"underline", MacroValue(false),
         u"<span style='text-decoration:none'>x</span>"},
        {u"x", 0, u"supersub", MacroValue(u"sub"), u"<span style='vertical-align:sub'>x</span>"},
        {u"x", 0, u"lang", MacroValue(u"en-GB"), u"<span lang=en-GB>x</span>"},
        {u"a <a href=\"u\">b</a>", 0, u"hyperlink", MacroValue(u"u"), u"<a href=\"u\">a b</a>"},
        {u"a <a href=\"u\">b</a>", 1, u"hyperlink", MacroValue(u""), u"a b"},
        {u"a<br>b&nbsp;", 0, u"bold", MacroValue(true), u"<span style='font-weight:bold'>a<br>b&nbsp;</span>"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(ToUtf8(c.content) + " " + ToUtf8(c.property));
        auto host = std::make_shared<RecordingHost>();
        const auto oe = Paragraph({c.content});
        const ObjectRef text = TextObjectsOfParagraph(oe, host).at(c.run);
        text->SetProperty(c.property, c.value);
        EXPECT_EQ(ToUtf8(Content(*oe)), ToUtf8(c.markup));
        EXPECT_EQ(host->modified, 1);
        EXPECT_TRUE(oe->content[0]->t->cdata);
    }
}

TEST(TextObject, AWriteThatChangesNothingLeavesThePageAlone) {
    auto host = std::make_shared<RecordingHost>();
    const std::u16string content = u"\n   <span\nstyle='font-weight:bold'>b</span>&nbsp;\n  ";
    const auto oe = Paragraph({content});
    const auto texts = TextObjectsOfParagraph(oe, host);
    texts[0]->SetProperty(u"bold", MacroValue(true));
    texts[1]->SetProperty(u"value", MacroValue(u" "));
    texts[1]->SetProperty(u"fontColor", MacroValue(u"automatic"));
    EXPECT_EQ(Content(*oe), content);
    EXPECT_EQ(host->modified, 0);
}

TEST(TextObject, WritingTheValueReplacesTheStretchAndLogs) {
    auto host = std::make_shared<RecordingHost>();
    host->logging = true;
    const auto oe = Paragraph({u"ab <span style='font-weight:bold'>cd</span> ef"});
    const auto texts = TextObjectsOfParagraph(oe, host);
    TextObject& bold = AsText(texts[1]);
    bold.SetProperty(u"value", MacroValue(u"x\r\ny"));
    EXPECT_EQ(Content(*oe), u"ab <span style='font-weight:bold'>x<br>y</span> ef");
    EXPECT_EQ(bold.start(), 3u);
    EXPECT_EQ(bold.end(), 6u);
    EXPECT_EQ(host->written,
              u"\r\n\tModifying property(value) = cd (string)\r\n\tNew value: x\ny (string)");
    EXPECT_EQ(host->modified, 1);
    // The last run's object still names its old stretch: objects over one element are not moved.
    EXPECT_EQ(texts[2]->GetProperty(u"value", false).string(), u"y e");
    host->written.clear();
    EXPECT_THROW(bold.SetProperty(u"endIndex", MacroValue(1)), MacroError);
    EXPECT_EQ(host->written, u"\r\n\tModifying property(endIndex) = 6 (integer)");
}

TEST(TextObject, SelectionIsTheElements) {
    auto host = std::make_shared<RecordingHost>();
    const auto oe = Paragraph({u"a<span style='a:b'>b</span>"});
    const auto texts = TextObjectsOfParagraph(oe, host);
    texts[0]->SetProperty(u"selected", MacroValue(u"true"));
    EXPECT_EQ(oe->content[0]->t->selected.value, u"all");
    EXPECT_TRUE(texts[1]->GetProperty(u"selected", false).boolean());
    texts[1]->SetProperty(u"selected", MacroValue(false));
    EXPECT_TRUE(oe->content[0]->t->selected.IsDefault());
    EXPECT_EQ(host->modified, 2);
}

TEST(TextObject, EqualWhenTheSameStretchOfTheSameElement) {
    auto host = std::make_shared<RecordingHost>();
    const auto oe = Paragraph({u"abcabc", u"abc"});
    const auto first = TextObjectsOfParagraph(oe, host);
    const auto second = TextObjectsOfParagraph(oe, host);
    const auto found = FindTextInParagraph(oe, u"abc", false, host);
    ASSERT_EQ(found.size(), 3u);
    EXPECT_TRUE(first[0]->SameAs(*second[0]));
    EXPECT_FALSE(first[0]->SameAs(*found[0]));  // 0..6 against 0..3
    EXPECT_FALSE(found[0]->SameAs(*found[1]));
    EXPECT_FALSE(found[0]->SameAs(*found[2]));  // same stretch, another element
    EXPECT_TRUE(found[2]->SameAs(*second[1]));
    EXPECT_FALSE(found[0]->SameAs(*TextObjectsOfParagraph(Paragraph({u"abc"}), host)[0]));
    // Indices run on across the paragraph's elements.
    EXPECT_EQ(found[2]->GetProperty(u"startIndex", false).integer(), 6);
    EXPECT_EQ(found[2]->GetProperty(u"endIndex", false).integer(), 9);
}

TEST(TextSearch, MatchesAreFoundLeftToRightWithoutOverlap) {
    struct Case {
        std::u16string_view text;
        std::u16string_view value;
        bool ignoreCase;
        std::vector<std::pair<std::size_t, std::size_t>> matches;
    };
    const Case cases[] = {
        {u"aaaa", u"aa", false, {{0, 2}, {2, 4}}},
        {u"abcABC", u"abc", false, {{0, 3}}},
        {u"abcABC", u"aBc", true, {{0, 3}, {3, 6}}},
        {u"\x00C4rger \x00E4rger", u"\x00E4RGER", true, {{0, 5}, {6, 11}}},
        {u"abababc", u"ababc", false, {{2, 7}}},
        {u"abc", u"", false, {}},
        {u"ab", u"abc", false, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(ToUtf8(c.text) + " / " + ToUtf8(c.value));
        std::vector<std::pair<std::size_t, std::size_t>> got;
        for (const TextMatch& m : FindMatches(c.text, c.value, c.ignoreCase)) got.emplace_back(m.start, m.end);
        EXPECT_EQ(got, c.matches);
    }
    EXPECT_EQ(FoundTextLogLine(3, u"a'b"), u"\t\tFound 3pieces of text with value 'a'b");
}

TEST(TextSearch, AMatchAcrossRunsIsOneObjectThatFormatsTheWholeMatch) {
    auto host = std::make_shared<RecordingHost>();
    const auto oe = Paragraph({u"say <span style='color:red'>Hel</span>lo<br>HELLO"});
    const auto found = FindTextInParagraph(oe, u"hello", true, host);
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0]->GetProperty(u"value", false).string(), u"Hello");
    EXPECT_EQ(found[0]->GetProperty(u"fontColor", false).string(), u"red");  // its first character's
    EXPECT_EQ(found[1]->GetProperty(u"startIndex", false).integer(), 10);
    found[0]->SetProperty(u"bold", MacroValue(true));
    EXPECT_EQ(Content(*oe),
              u"say <span style='color:red;font-weight:bold'>Hel</span><span style='font-weight:bold'>lo</span><br>HELLO");
    found[1]->SetProperty(u"value", MacroValue(u"you"));
    EXPECT_EQ(TextOfParagraph(*oe), u"say Hello\nyou");
    EXPECT_EQ(host->modified, 2);
    EXPECT_TRUE(FindTextInParagraph(oe, u"hello", false, host).empty());
}

TEST(ParagraphText, TheWholeTextTakesTheFirstRunsFormatting) {
    const auto oe = Paragraph({u"<span style='font-weight:bold'>a</span>b", u"c"});
    EXPECT_EQ(TextOfParagraph(*oe), u"abc");
    EXPECT_TRUE(SetTextOfParagraph(*oe, u"x & y\r\nz"));
    ASSERT_EQ(oe->content.size(), 1u);
    EXPECT_EQ(Content(*oe), u"<span style='font-weight:bold'>x &amp; y<br>z</span>");
    EXPECT_EQ(TextOfParagraph(*oe), u"x & y\nz");
    EXPECT_FALSE(SetTextOfParagraph(*oe, u"x & y\nz"));

    const auto empty = std::make_shared<ON::OE>();
    EXPECT_TRUE(SetTextOfParagraph(*empty, u"new"));
    EXPECT_EQ(Content(*empty), u"new");
    EXPECT_EQ(TextOfParagraph(*empty), u"new");
}

TEST(ParagraphText, ParagraphWideFormattingReachesEveryRunAndElement) {
    const auto oe = Paragraph({u"a<span style='color:red'>b</span>", u"<a href=\"u\">c</a>", u""});
    EXPECT_TRUE(FormatParagraph(*oe, TextProperty::FontSize, ConvertTextValue(TextProperty::FontSize, MacroValue(9))));
    EXPECT_EQ(Content(*oe, 0),
              u"<span style='font-size:9.0pt'>a</span><span style='color:red;font-size:9.0pt'>b</span>");
    EXPECT_EQ(Content(*oe, 1), u"<a href=\"u\"><span style='font-size:9.0pt'>c</span></a>");
    EXPECT_EQ(Content(*oe, 2), u"");
    EXPECT_FALSE(FormatParagraph(*oe, TextProperty::FontSize, MacroValue(9.0)));
    EXPECT_TRUE(FormatParagraph(*oe, TextProperty::Lang, MacroValue(u"fr")));
    EXPECT_EQ(Content(*oe, 1), u"<a href=\"u\"><span style='font-size:9.0pt' lang=fr>c</span></a>");
}

}  // namespace
}  // namespace qm::onenote
