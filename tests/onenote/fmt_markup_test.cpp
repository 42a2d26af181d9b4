#include <gtest/gtest.h>

#include <filesystem>

#include "core/text.h"
#include "core/value.h"
#include "onenote/fmt_markup.h"
#include "onenote/fmt_paragraph.h"
#include "onenote/fmt_quick_reader.h"
#include "onenote/fmt_schema.h"
#include "onenote/on_document.h"
#include "onenote_test_util.h"
#include "platform_test_util.h"

namespace qm::onenote {
namespace {

namespace fs = std::filesystem;

// A run written compactly: text, then "css", "lang", "href" (empty: none).
struct R {
    R(std::u16string t, std::u16string c = {}, std::u16string l = {}, std::u16string h = {})
        : text(std::move(t)), css(std::move(c)), lang(std::move(l)), href(std::move(h)) {}
    std::u16string text;
    std::u16string css;
    std::u16string lang;
    std::u16string href;
};

TextRun Run(const R& r) {
    TextRun run{r.text, {}};
    run.format.style = ParseCss(r.css);
    if (!r.lang.empty()) run.format.lang = r.lang;
    if (!r.href.empty()) run.format.href = r.href;
    return run;
}

std::vector<TextRun> Runs(std::initializer_list<R> runs) {
    std::vector<TextRun> out;
    for (const R& r : runs) out.push_back(Run(r));
    return out;
}

std::string Show(const std::vector<TextRun>& runs) {
    std::string out;
    for (const TextRun& run : runs) {
        out += "[" + ToUtf8(run.text) + "|" + ToUtf8(FormatCss(run.format.style)) + "|" +
               ToUtf8(run.format.lang.value_or(u"")) + "|" + ToUtf8(run.format.href.value_or(u"")) + "]";
    }
    return out;
}

// The summary of the markup is the plain text and the first formatting of its runs.
void ExpectSummaryOf(std::u16string_view content, const FormattedText& runs) {
    const auto summary = ParseMarkupSummary(content);
    EXPECT_EQ(ToUtf8(summary->plain), ToUtf8(runs.PlainText()));
    const TextRun* first = runs.RunAt(0);
    EXPECT_EQ(Show({TextRun{u"", summary->first}}), Show({TextRun{u"", first ? first->format : TextFormat{}}}));
}

// Reading what was written gives the runs back, joined.
void ExpectStable(const FormattedText& text) {
    FormattedText joined = text;
    joined.Normalize();
    const std::u16string markup = WriteMarkup(text);
    const FormattedText again = ParseMarkup(markup);
    EXPECT_TRUE(again.readable) << ToUtf8(markup);
    EXPECT_EQ(Show(again.runs), Show(joined.runs)) << ToUtf8(markup);
}

TEST(FormattedTextReading, RunsFollowTheChainsOfSpansAndLinks) {
    struct Case {
        std::u16string content;
        std::vector<TextRun> runs;
    };
    const Case cases[] = {
        {u"", {}},
        {u"plain", Runs({{u"plain"}})},
        {u"a<br>b", Runs({{u"a\nb"}})},
        {u"a<BR/>b<br />c", Runs({{u"a\nb\nc"}})},
        {u"one&nbsp; two&nbsp;", Runs({{u"one  two "}})},
        {u"&lt;T&gt; &amp; &quot;q&quot;", Runs({{u"<T> & \"q\""}})},
        {u"Text can be <span\nstyle='font-weight:bold'>bold</span>, <span style='text-decoration:\nline-through'>gone</span>.",
         Runs({{u"Text can be "}, {u"bold", u"font-weight:bold"}, {u", "}, {u"gone", u"text-decoration:line-through"},
               {u"."}})},
        {u"<span lang=en-US>Hi</span><span style='color:red' lang=de-DE>Du</span>",
         Runs({{u"Hi", u"", u"en-US"}, {u"Du", u"color:red", u"de-DE"}})},
        {u"See <a\nhref=\"http://x.org/?a=1&amp;b=2\">x <span style='font-style:italic'>org</span></a>!",
         Runs({{u"See "}, {u"x ", u"", u"", u"http://x.org/?a=1&b=2"},
               {u"org", u"font-style:italic", u"", u"http://x.org/?a=1&b=2"}, {u"!"}})},
        // Nested spans: the inner declaration wins, the outer ones stay.
        {u"<span style='font-weight:bold;color:red' lang=fr><span style='color:blue'>x</span>y</span>",
         Runs({{u"x", u"font-weight:bold;color:blue", u"fr"}, {u"y", u"font-weight:bold;color:red", u"fr"}})},
        // Two spans with the same style are two chains; an empty span does not part its neighbours.
        {u"<span style='a:1'>x</span><span style='a:1'>y</span>a<span></span>b",
         Runs({{u"x", u"a:1"}, {u"y", u"a:1"}, {u"ab"}})},
        // Elements other than span and a count for their text only.
        {u"<b>x</b><p>y<span style='a:1'>z</span></p>", Runs({{u"xy"}, {u"z", u"a:1"}})},
        // Blank text between elements is text.
        {u"<span style='a:1'>x</span>  <span style='a:2'>y</span>", Runs({{u"x", u"a:1"}, {u"  "}, {u"y", u"a:2"}})},
        // The indentation of the page XML around the text is not text; other blanks are.
        {u"\n          <span style='a:1'>x</span>\n        ", Runs({{u"x", u"a:1"}})},
        {u"  x ", Runs({{u"  x "}})},
        {u"x\x01y", Runs({{u"x\x01y"}})},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(ToUtf8(c.content));
        const FormattedText text = ParseMarkup(c.content);
        EXPECT_TRUE(text.readable);
        EXPECT_EQ(Show(text.runs), Show(c.runs));
        EXPECT_EQ(Show(ReadMarkupThroughTree(c.content).runs), Show(c.runs));
        ExpectSummaryOf(c.content, text);
        ExpectStable(text);
    }
}

TEST(FormattedTextReading, NbspIsAPlainSpaceAndIndicesCountTheReplacedText) {
    const FormattedText text = ParseMarkup(u"a&nbsp;<span style='x:y'>b<br>c</span>d");
    EXPECT_EQ(text.PlainText(), u"a b\ncd");
    EXPECT_EQ(text.PlainText().find(u'\xA0'), std::u16string::npos);
    EXPECT_EQ(text.Starts(), (std::vector<std::size_t>{0, 2, 5}));
    ASSERT_NE(text.RunAt(3), nullptr);
    EXPECT_EQ(text.RunAt(3)->text, u"b\nc");
    EXPECT_EQ(text.RunAt(99)->text, u"d");
}

TEST(FormattedTextReading, MarkupThatDoesNotReadIsOnePlainRunOfTheStoredText) {
    const std::u16string broken[] = {
        u"<span style='a:1'>unclosed",
        u"caf&eacute; &copy;",
        u"a < b",
        u"<span style=a:1>x</span>",  // quoted by the repair: this one reads
        u"</span>stray end",
        u"x</Text><Text>y",
        u"<span style='a'>x</span",
    };
    for (const std::u16string& content : broken) {
        SCOPED_TRACE(ToUtf8(content));
        if (content.find(u"&eacute;") != std::u16string::npos && qm::test::UnderWine()) continue;
        const FormattedText text = ParseMarkup(u"\n  " + content + u"\n");
        if (content.starts_with(u"<span style=a:1>")) {
            EXPECT_TRUE(text.readable);
            EXPECT_EQ(Show(text.runs), Show(Runs({{u"x", u"a:1"}})));
            continue;
        }
        EXPECT_FALSE(text.readable);
        EXPECT_EQ(Show(text.runs), Show(Runs({{content}})));
        EXPECT_FALSE(ReadMarkupThroughTree(u"\n  " + content + u"\n").readable);
        ExpectSummaryOf(u"\n  " + content + u"\n", text);
    }
}

TEST(FormattedTextReading, UnquotedValuesAreQuotedInsideStartTagsOnly) {
    EXPECT_EQ(PrepareMarkup(u"lang=en <span lang=en-US style='a:b'>x=y</span>"),
              u"lang=en <span lang=\"en-US\" style='a:b'>x=y</span>");
    EXPECT_EQ(PrepareMarkup(u"<a href=http://x/?a=1&b=2&amp;c>y</a>"),
              u"<a href=\"http://x/?a=1&amp;b=2&amp;c\">y</a>");
    EXPECT_EQ(PrepareMarkup(u"<span lang=a\"b>x</span><!-- lang=x -->"), u"<span lang='a\"b'>x</span><!-- lang=x -->");
}

TEST(FormattedTextWriting, RunsBecomeOneNoteMarkup) {
    struct Case {
        std::vector<TextRun> runs;
        std::u16string markup;
    };
    const Case cases[] = {
        {Runs({{u"plain"}}), u"plain"},
        {Runs({{u"a", u"font-weight:bold"}, {u"b", u"font-weight:bold"}, {u"c"}}),
         u"<span style='font-weight:bold'>ab</span>c"},
        {Runs({{u"x", u"font-family:\"Segoe UI\";color:#FF0000", u"en-US"}}),
         u"<span style='font-family:\"Segoe UI\";color:#FF0000' lang=en-US>x</span>"},
        {Runs({{u"x", u"font-family:O'Neil", u"x y"}}), u"<span style='font-family:O&#39;Neil' lang='x y'>x</span>"},
        {Runs({{u"go ", u"", u"", u"http://a/?b=\"1\"&c"}, {u"there", u"font-style:italic", u"", u"http://a/?b=\"1\"&c"},
               {u"!"}}),
         u"<a href=\"http://a/?b=&quot;1&quot;&amp;c\">go <span style='font-style:italic'>there</span></a>!"},
        {Runs({{u"a", u"", u"", u"u1"}, {u"b", u"", u"", u"u2"}}), u"<a href=\"u1\">a</a><a href=\"u2\">b</a>"},
        {Runs({{u"1 < 2 & \"3\" > 0\nnext\rline"}}), u"1 &lt; 2 &amp; &quot;3&quot; &gt; 0<br>next&#13;line"},
        // Spaces HTML would fold: at the ends of the text and of its lines, and before another space.
        {Runs({{u" a  b   c \n d "}}), u"&nbsp;a&nbsp; b&nbsp;&nbsp; c&nbsp;<br>&nbsp;d&nbsp;"},
        {Runs({{u"a"}, {u"", u"color:red"}, {u"b"}}), u"ab"},
        {Runs({{u"a", u"x:1"}, {u""}, {u"b", u"x:1"}, {u" "}}), u"<span style='x:1'>ab</span>&nbsp;"},
        // Whether a space folds depends on its neighbours in other runs.
        {Runs({{u"a ", u"color:red"}, {u" b"}, {u" "}, {u"\nc", u"x:1"}}),
         u"<span style='color:red'>a&nbsp;</span> b&nbsp;<span style='x:1'><br>c</span>"},
    };
    for (const Case& c : cases) {
        FormattedText text;
        text.runs = c.runs;
        SCOPED_TRACE(Show(c.runs));
        EXPECT_EQ(ToUtf8(WriteMarkup(text)), ToUtf8(c.markup));
        ExpectStable(text);
    }
}

TEST(FormattedTextWriting, ContentOneNoteWroteIsStoredOnlyWhenItChanges) {
    const std::u16string contents[] = {
        u"\n          Text can be <span\nstyle='font-weight:bold'>bold</span>,  <span lang=en-US>x</span>&nbsp;\n        ",
        u"<a\nhref=\"https://docs.example.org/a?b=c\">https://docs.example.org/a?b=c</a>&nbsp;",
        u"<span style='font-weight:bold;text-decoration:underline'>Can</span><span\nstyle='font-weight:bold'> be</span>.",
        u"broken <span",
    };
    for (const std::u16string& content : contents) {
        SCOPED_TRACE(ToUtf8(content));
        ON::T t;
        t.text = content;
        const FormattedText runs = ReadRuns(t);
        FormattedText same = runs;
        same.Normalize();
        EXPECT_FALSE(StoreRuns(t, runs, same));
        EXPECT_EQ(t.text, content);
        if (runs.readable) ExpectStable(runs);
    }
}

TEST(FormattedTextWriting, RunsAreStoredWhenTheirJoinedFormDiffers) {
    struct Case {
        std::vector<TextRun> before, after;
        bool changed;
    };
    const Case cases[] = {
        {Runs({{u"ab", u"x:1"}, {u"c"}}), Runs({{u"a", u"x:1"}, {u""}, {u"b", u"x:1"}, {u"c"}, {u""}}), false},
        {Runs({{u"abc"}}), Runs({{u"a"}, {u"bc"}}), false},
        {{}, Runs({{u""}, {u"", u"x:1"}}), false},
        {Runs({{u"abc"}}), Runs({{u"ab"}}), true},
        {Runs({{u"ab"}}), Runs({{u"abc"}}), true},
        {Runs({{u"abc"}}), Runs({{u"a"}, {u"b", u"x:1"}, {u"c"}}), true},
        {Runs({{u"abc", u"x:1"}}), Runs({{u"abc", u"x:2"}}), true},
        {Runs({{u"abc", u"", u"en"}}), Runs({{u"abc"}}), true},
        {Runs({{u"ab"}, {u"c", u"", u"", u"h"}}), Runs({{u"ab"}, {u"d", u"", u"", u"h"}}), true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(Show(c.before) + " -> " + Show(c.after));
        FormattedText before, after;
        before.runs = c.before;
        after.runs = c.after;
        ON::T t;
        t.text = u"kept";
        EXPECT_EQ(StoreRuns(t, before, after), c.changed);
        EXPECT_EQ(t.text, c.changed ? WriteMarkup(after) : u"kept");
    }
}

TEST(FormattedTextCss, ANameGivenTwiceKeepsItsFirstPlaceAndItsLastValue) {
    // Few declarations are searched in place, many through an index: both the same way.
    for (const int count : {3, 8, 9, 40}) {
        SCOPED_TRACE(count);
        std::u16string style = u"COLOR:red;";
        std::u16string expected = u"color:blue";
        for (int i = 0; i < count; ++i) {
            style += u" n" + IntegerText(i) + u" : v ;";
            expected += u";n" + IntegerText(i) + u":" + (i == 1 ? u"w" : u"v");
        }
        style += u"Color: blue;n1:w;:x;y";
        CssDeclarations parsed = ParseCss(style);
        EXPECT_EQ(ToUtf8(FormatCss(parsed)), ToUtf8(expected));
        MergeCss(parsed, ParseCss(u"n0:z;new:1"));
        EXPECT_EQ(*FindCss(parsed, u"n0"), u"z");
        EXPECT_EQ(parsed.back(), (CssDeclaration{u"new", u"1"}));
        EXPECT_EQ(parsed.size(), static_cast<std::size_t>(count) + 2);
    }
}

TEST(FormattedTextBinding, MixedContentKeepsTextAndElementsInOrder) {
    const auto root = FMT::ParseText(
        u"<?xml version=\"1.0\"?><Text>a <span style='s' lang='l'>b<a href='h'>c</a> </span><i>d</i>e</Text>");
    ASSERT_EQ(root->content.size(), 3u);
    EXPECT_EQ(std::get<std::u16string>(root->content[0]), u"a ");
    const auto& span = std::get<std::shared_ptr<FMT::span>>(root->content[1]);
    EXPECT_EQ(span->style, u"s");
    EXPECT_EQ(span->lang, u"l");
    ASSERT_EQ(span->content.size(), 3u);
    EXPECT_EQ(std::get<std::shared_ptr<FMT::a>>(span->content[1])->href, u"h");
    EXPECT_EQ(std::get<std::u16string>(span->content[2]), u" ");
    EXPECT_EQ(std::get<std::u16string>(root->content[2]), u"de");
    EXPECT_EQ(FMT::SerializeText(*root),
              u"<Text>a <span style=\"s\" lang=\"l\">b<a href=\"h\">c</a><![CDATA[ ]]></span>de</Text>");
}

TEST(FormattedTextBinding, TheDirectReaderBuildsTheTreeTheXmlReaderBuilds) {
    struct Case {
        std::u16string_view prepared;
        bool direct;  // whether the direct reader takes it, rather than leaving it to the XML reader
    };
    const Case cases[] = {
        {u"plain text, \x01\x0B\xDC00 & all", false},  // a bare & is not well-formed
        {u"a <span style='font-weight:bold' lang=\"en-US\">b<a href=\"h?x=1&amp;y=&#50;\">c</a> </span>d", true},
        {u"<span\nstyle='color:\n#FF0000'\t>x</span ><span/>&lt;&gt;&quot;&apos;&#x1F600;\x01\xD800 ]>", true},
        {u"<span style='a' style='b'>x</span>", false},    // repeated attribute
        {u"<span class='c'>x</span>", false},              // another attribute
        {u"<i>x</i>", false},                              // another element
        {u"<span>x</a>", false},                           // mismatched end tag
        {u"<span>x", false},                               // unclosed
        {u"x]]>y", false},                                 // not allowed in text
        {u"x\ry", false},                                  // carriage returns are normalised
        {u"&#0; &#xD800; &#13; &copy;", false},            // references left to the XML reader
        {u"<!-- c -->x<![CDATA[y]]>", false},
        {u"<span style=a>x</span>", false},                // unquoted (preparation quotes these)
        {u"<x:span xmlns:x='u'>x</x:span>", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(ToUtf8(c.prepared));
        const auto direct = ReadSimpleMarkup(c.prepared);
        EXPECT_EQ(direct != nullptr, c.direct);
        if (!direct) continue;
        const auto full = FMT::ParseText(u"<?xml version=\"1.0\"?><Text>" + std::u16string(c.prepared) + u"</Text>");
        EXPECT_EQ(ToUtf8(FMT::SerializeText(*direct)), ToUtf8(FMT::SerializeText(*full)));
        // Its runs, made as it reads, are those of the tree.
        const auto runs = ReadSimpleRuns(c.prepared, 100);
        ASSERT_TRUE(runs.has_value());
        EXPECT_EQ(Show(*runs), Show(RunsOfTree(*full, 100)));
    }
}

TEST(FormattedTextBinding, DeepNestingFailsCleanlyAndFallsBack) {
    std::u16string deep;
    for (int i = 0; i < 2000; ++i) deep += u"<span>";
    deep += u"x";
    const FormattedText text = ParseMarkup(deep);
    EXPECT_FALSE(text.readable);
    EXPECT_FALSE(ReadMarkupThroughTree(deep).readable);
    ASSERT_EQ(text.runs.size(), 1u);
    EXPECT_EQ(text.runs[0].text, deep);
}

TEST(FormattedTextBinding, FormattingRepeatedFarBeyondTheMarkupsSizeFallsBack) {
    std::u16string content = u"<a href=\"" + std::u16string(20000, u'x') + u"\">";
    for (int i = 0; i < 5000; ++i) content += u"<span>y</span>";
    content += u"</a>";
    EXPECT_FALSE(ParseMarkup(content).readable);
    ExpectSummaryOf(content, ParseMarkup(content));
    // The summary counts formatting by the size of the styles it comes from, far above their
    // runs' here (one declaration repeated): it leaves the verdict to the runs.
    std::u16string repeated;
    for (int i = 0; i < 60; ++i) repeated += u"<span style='" + [] {
        std::u16string style;
        for (int k = 0; k < 1000; ++k) style += u"a:1;";
        return style;
    }() + u"'>";
    for (int i = 0; i < 100; ++i) repeated += u"<span>x</span>";
    for (int i = 0; i < 60; ++i) repeated += u"</span>";
    const FormattedText runs = ParseMarkup(repeated);
    EXPECT_TRUE(runs.readable);
    EXPECT_EQ(runs.PlainText(), std::u16string(100, u'x'));
    ExpectSummaryOf(repeated, runs);
    // A long style reads in linear time, each name once.
    std::u16string style;
    for (int i = 0; i < 20000; ++i) style += u"n" + IntegerText(i % 2000) + u":v;";
    EXPECT_EQ(ParseCss(style).size(), 2000u);
}

// The text elements of a page: its title's, its outlines' and their tables', in order.
std::vector<const ON::T*> TextElementsOfPage(const ON::Page& page) {
    std::vector<const ON::T*> out;
    std::vector<const ON::OE*> pending;
    auto addLists = [&](const xml::ChildList<ON::OEChildren>& lists) {
        std::vector<const ON::OE*> found;
        for (const auto& list : lists) {
            for (const auto& item : list->items) {
                if (item->oe) found.push_back(item->oe.get());
            }
        }
        pending.insert(pending.end(), found.rbegin(), found.rend());
    };
    for (auto it = page.elements.items().rbegin(); it != page.elements.items().rend(); ++it) {
        if ((*it)->outline) addLists((*it)->outline->oeChildren);
    }
    if (page.title && page.title->oe) pending.push_back(page.title->oe.get());
    while (!pending.empty()) {
        const ON::OE* oe = pending.back();
        pending.pop_back();
        addLists(oe->oeChildren);
        for (auto it = oe->content.items().rbegin(); it != oe->content.items().rend(); ++it) {
            if ((*it)->table) {
                for (auto row = (*it)->table->rows.items().rbegin(); row != (*it)->table->rows.items().rend(); ++row) {
                    for (auto cell = (*row)->cells.items().rbegin(); cell != (*row)->cells.items().rend(); ++cell) {
                        addLists((*cell)->oeChildren);
                    }
                }
            }
        }
        for (const auto& choice : oe->content) {
            if (choice->t) out.push_back(choice->t.get());
        }
    }
    return out;
}

// Every text element of the real pages reads, and writing its runs back reads as the same runs.
TEST(FormattedTextSamples, EveryTextElementOfTheRealPagesReadsWithoutLoss) {
    const fs::path dir = testing::ReferenceDir();
    if (dir.empty()) GTEST_SKIP() << "the OneNote reference samples are not beside the repository";
    int elements = 0, formatted = 0;
    for (const auto& entry : fs::directory_iterator(dir / "samples")) {
        const std::string name = entry.path().filename().string();
        if (entry.path().extension() != ".xml" || !name.starts_with("p")) continue;
        SCOPED_TRACE(name);
        const auto page = ON::ReadPage(testing::ReadSample(entry.path()), FromUtf8(name));
        const std::vector<const ON::T*> ts = TextElementsOfPage(*page);
        for (const ON::T* t : ts) {
            ++elements;
            const FormattedText runs = ParseMarkup(t->text);
            EXPECT_TRUE(runs.readable) << ToUtf8(t->text);
            EXPECT_EQ(Show(runs.runs), Show(ReadMarkupThroughTree(t->text).runs));
            ExpectSummaryOf(t->text, runs);
            if (runs.runs.size() > 1 || (runs.runs.size() == 1 && !runs.runs[0].format.IsPlain())) ++formatted;
            EXPECT_EQ(runs.PlainText().find(u"&nbsp;"), std::u16string::npos);
            ExpectStable(runs);
        }
    }
    EXPECT_GT(elements, 100);
    EXPECT_GT(formatted, 20);
}

}  // namespace
}  // namespace qm::onenote
