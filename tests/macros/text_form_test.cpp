#include <gtest/gtest.h>

#include <string>

#include "core/parser.h"
#include "core/text.h"
#include "macros/macro_xml.h"
#include "macros/text_form.h"

namespace qm::M2 {
namespace {

const std::u16string kCountdown =
    u"#name Count down\n"
    u"#category Samples\n"
    u"#description Shows the text form\n"
    u"$n = 3\n"
    u"$log = \"\"\n"
    u"While $n > 0\n"
    u"  $n -= 1\n"
    u"  If $n == 1\n"
    u"    Continue\n"
    u"  Else\n"
    u"    // commented-out statements sit indented under a comment\n"
    u"      $log &= \"never\"\n"
    u"  $log &= $n\n"
    u"ForEach $x in Array(\"a\", \"b\")\n"
    u"  $log &= Twice($x)\n"
    u"Function Twice($s)\n"
    u"  Return $s & $s\n";

std::u16string Text(const ExpressionPtr& e) { return PrintText(*e); }

std::u16string ReadError(std::u16string_view text) {
    try {
        ReadTextForm(text, "f.qm");
    } catch (const TextFormError& e) {
        return e.FullText();
    }
    return u"(read)";
}

std::u16string WriteError(const Macro& macro) {
    try {
        WriteTextForm(macro);
    } catch (const TextFormError& e) {
        return e.FullText();
    }
    return u"(written)";
}

TEST(TextForm, ExampleReadsIntoTheStatements) {
    TextFormLines lines;
    auto macro = ReadTextForm(kCountdown, "countdown.qm", &lines);
    EXPECT_EQ(macro->name, u"Count down");
    EXPECT_EQ(macro->category, u"Samples");
    EXPECT_EQ(macro->description, u"Shows the text form");
    ASSERT_EQ(macro->statements.size(), 4u);
    EXPECT_EQ(Text(macro->statements[1]->expression), u"($log = \"\")");

    const Statement& loop = *macro->statements[2];
    ASSERT_EQ(loop.kind(), StatementKind::While);
    EXPECT_EQ(Text(loop.whileStatement->condition), u"($n > 0)");
    const Statements& body = loop.whileStatement->statements;
    ASSERT_EQ(body.size(), 4u);
    EXPECT_TRUE(body[1]->ifStatement->statements[0]->continueLevels->IsEmpty());
    const Comment& comment = *body[2]->elseStatement->statements[0]->comment;
    EXPECT_EQ(comment.text, u"commented-out statements sit indented under a comment");
    EXPECT_EQ(Text(comment.statements[0]->expression), u"($log &= \"never\")");

    const ForEach& forEach = *macro->statements[3]->forEach;
    EXPECT_EQ(forEach.var, u"x");
    EXPECT_EQ(Text(forEach.array), u"Array(\"a\", \"b\")");

    ASSERT_EQ(macro->functions.size(), 1u);
    const Function& twice = *macro->functions[0];
    EXPECT_EQ(twice.name, u"Twice");
    ASSERT_EQ(twice.params.size(), 1u);
    EXPECT_EQ(twice.params[0]->name, u"s");
    EXPECT_EQ(Text(twice.statements[0]->returnValue), u"($s & $s)");

    // Owners as the XML reader sets them: element -> choice -> list -> element.
    EXPECT_EQ(macro->statements.owner, macro.get());
    EXPECT_EQ(loop.owner, &macro->statements);
    EXPECT_EQ(loop.whileStatement->owner, &loop);
    EXPECT_EQ(body.owner, loop.whileStatement.get());
    EXPECT_EQ(twice.owner, &macro->functions);
    EXPECT_EQ(twice.params[0]->owner, &twice.params);

    EXPECT_EQ(lines.LineOf(loop), 6);
    EXPECT_EQ(lines.LineOf(*comment.statements[0]), 12);
    EXPECT_EQ(lines.LineOf(twice), 16);
    EXPECT_EQ(lines.LineOf(*twice.statements[0]), 17);
}

TEST(TextForm, TextThroughXmlComesBackUnchanged) {
    auto macro = ReadTextForm(kCountdown, "countdown.qm");
    auto viaXml = ImportMacroXml(WriteMacroXml(*macro));
    EXPECT_EQ(WriteTextForm(*viaXml), kCountdown);
}

TEST(TextForm, XmlThroughTextGivesTheSameTree) {
    const std::u16string xml =
        u"<?xml version=\"1.0\"?><Macro id=\"m1\" name=\"All\" category=\"c\" description=\"a &lt; b\" "
        u"publishDate=\"2016-03-05T14:07:09.042Z\" version=\"2\">"
        u"<ForEach var=\"p\"><Array><Call name=\"QueryObjects\"><Arg>Page</Arg><Arg><Call name=\"GetCurrentSection\"/>"
        u"</Arg></Call></Array><Expression><BinaryOp name=\"=\"><Left><Var>p</Var><Prop>title</Prop></Left>"
        u"<Right>line&#10;two \"q\" \\</Right></BinaryOp></Expression></ForEach>"
        u"<If><Condition><UnaryOp name=\"!\"><Operand><Var>a</Var><Index>0</Index></Operand></UnaryOp></Condition>"
        u"<Break/></If><Else><Return><TernaryOp><Condition>true</Condition><True>-5</True><False>12</False>"
        u"</TernaryOp></Return></Else>"
        u"<Comment text=\" indented\"><Continue>2</Continue></Comment><Comment text=\"\"/>"
        u"<While><Condition><Call name=\"f\"/></Condition></While><Expression/>"
        u"<Function name=\"f\"><Param name=\"a\"/><Param name=\"b\"/><Return/></Function><Function name=\"g\"/>"
        u"</Macro>";
    auto original = ImportMacroXml(xml);
    const std::u16string text = WriteTextForm(*original);
    auto back = ReadTextForm(text, "all.qm");
    EXPECT_EQ(WriteMacroXml(*back), WriteMacroXml(*original)) << ToUtf8(text);
    EXPECT_NE(text.find(u"= \"line\\ntwo \\\"q\\\" \\\\\"\n"), std::u16string::npos) << ToUtf8(text);
}

TEST(TextForm, StatementExpressionsLoseOnlyTheirOutermostGroup) {
    const struct {
        std::u16string_view in, out;
    } cases[] = {
        {u"$a = 1 + 2", u"$a = (1 + 2)"},
        {u"(($a))", u"$a"},
        {u"-($a + 1)", u"-($a + 1)"},
        {u"f(1) & (2 & 3)", u"f(1) & (2 & 3)"},
        {u"$c ? 1 : 2", u"$c ? 1 : 2"},
        {u"Iffy($x)", u"Iffy($x)"},
        {u"If($x)", u"If($x)"},
        {u"While 1 + 2", u"While 1 + 2"},
        {u"Break  2", u"Break 2"},
        {u"Return", u"Return"},
        {u"//x", u"// x"},
        {u"//", u"//"},
        {u"#name  two blanks", u"#name  two blanks"},
    };
    for (const auto& c : cases) {
        auto macro = ReadTextForm(c.in, "f.qm");
        EXPECT_EQ(WriteTextForm(*macro), std::u16string(c.out) + u"\n") << ToUtf8(c.in);
    }
}

TEST(TextForm, LayoutVariantsReadTheSame) {
    const std::u16string canonical = u"If $a\n  $b = 1\nElse\n  Break\n";
    for (std::u16string_view variant : {
             u"If $a\r\n    $b = 1\r\nElse   \r\n\r\n    Break",
             u"\uFEFFIf $a\n\t$b = 1\n\nElse\n\t\tBreak\n",
         }) {
        EXPECT_EQ(WriteTextForm(*ReadTextForm(variant, "f.qm")), canonical) << ToUtf8(variant);
    }
    // A function may stand anywhere at the top level; it is stored after the statements.
    auto macro = ReadTextForm(u"Function F()\n  Return 1\n$x = F()\n", "f.qm");
    EXPECT_EQ(WriteTextForm(*macro), u"$x = F()\nFunction F()\n  Return 1\n");
}

TEST(TextForm, ErrorsNameTheFileLineAndColumn) {
    const struct {
        std::u16string_view text, error;
    } cases[] = {
        {u"If 1\n \tBreak", u"f.qm:2:1: Indentation mixes tabs and spaces"},
        {u"If 1\n  If 2\n\t\tBreak", u"f.qm:3:1: Indented with tabs, but earlier lines indent with spaces"},
        {u"If 1\n\tIf 2\n  Break", u"f.qm:3:1: Indented with spaces, but earlier lines indent with tabs"},
        {u"  $a = 1", u"f.qm:1:3: Unexpected indentation"},
        {u"$a = 1\n  $b = 2", u"f.qm:2:3: Unexpected indentation: the line above takes no indented block"},
        {u"While 1\n  Break\n    $a", u"f.qm:3:5: Unexpected indentation: the line above takes no indented block"},
        {u"#name x\n  $a", u"f.qm:2:3: Unexpected indentation: the line above takes no indented block"},
        {u"If 1\n    $a = 1\n  $b = 2", u"f.qm:3:3: Indentation does not match any enclosing block"},
        {u"$a = 1\n\n$a = = 2",
         u"f.qm:3: Unexpected '=' (Assignment Operator)\r\nexpected (Variable), (Function) or end of expression"},
        {u"If", u"f.qm:1: Unexpected end of expression\r\nexpected (Expression)"},
        {u"Else x", u"f.qm:1:6: Unexpected text after Else"},
        {u"ForEach x in 1", u"f.qm:1:9: Expected ForEach $name in expression"},
        {u"ForEach $x  inn 1", u"f.qm:1:9: Expected ForEach $name in expression"},
        {u"Function F($a,)", u"f.qm:1:15: Expected Function Name($a, $b)"},
        {u"Function F($a) x", u"f.qm:1:16: Expected Function Name($a, $b)"},
        {u"If 1\n  Function F()", u"f.qm:2:3: Function definitions belong at the top level, without indentation"},
        {u"#nam x", u"f.qm:1:1: Unknown header line: expected #name, #category, #description, #id, #version or "
                    u"#publishDate"},
        {u"$a = 1\n#name x", u"f.qm:2:1: Header lines come before the first statement"},
        {u"#name a\n#name b", u"f.qm:2:1: Header #name is given twice"},
        {u"#version 1x", u"f.qm:1:10: #version expects a whole number"},
        {u"#version 99999999999", u"f.qm:1:10: #version expects a whole number"},
        {u"#publishDate soon", u"f.qm:1:14: #publishDate expects a date and time such as 2016-03-05T14:07:09.042Z"},
    };
    for (const auto& c : cases) EXPECT_EQ(ToUtf8(ReadError(c.text)), ToUtf8(c.error)) << ToUtf8(c.text);
}

// `levels` Ifs, each in the block of the one before, indented with one tab a level.
std::u16string NestedText(int levels) {
    std::u16string text;
    for (int i = 0; i < levels; ++i) text += std::u16string(static_cast<std::size_t>(i), u'\t') + u"If 1\n";
    return text;
}

TEST(TextForm, NestingIsBounded) {
    auto deepest = ReadTextForm(NestedText(kMaxStatementDepth), "f.qm");
    EXPECT_EQ(ToUtf8(ReadError(NestedText(kMaxStatementDepth + 1))),
              "f.qm:201:201: Statements are nested too deeply: more than 200 levels");
    EXPECT_EQ(ReadTextForm(WriteTextForm(*deepest), "f.qm")->statements.size(), 1u);

    // A tree read from XML may be deeper than any text; it has no text form.
    Macro macro;
    Statements* list = &macro.statements;
    for (int i = 0; i <= kMaxStatementDepth; ++i) {
        auto loop = std::make_shared<While>();
        loop->condition = MakeLiteral(u"1");
        list->Add(std::make_shared<Statement>()).whileStatement = loop;
        list = &loop->statements;
    }
    EXPECT_EQ(ToUtf8(WriteError(macro)), "Statements are nested too deeply: more than 200 levels");
}

TEST(TextForm, TreesWithoutATextFormAreRefused) {
    const struct {
        std::u16string_view xml, error;
    } cases[] = {
        {u"<Macro description=\"two&#10;lines\"/>",
         u"Macro/@description cannot be written in the text form: it holds a line break"},
        {u"<Macro><If/><If><Comment text=\"a&#13;b\"/></If></Macro>",
         u"Macro/If[2]/Comment[1] cannot be written in the text form: it holds a line break"},
        {u"<Macro><ForEach var=\"$x\"/></Macro>",
         u"Macro/ForEach[1] cannot be written in the text form: '$x' is not a name"},
        {u"<Macro><Function name=\"f\"><Param name=\"a b\"/></Function></Macro>",
         u"Macro/Function[1] cannot be written in the text form: 'a b' is not a name"},
        {u"<Macro><Expression><Var>a&#10;b</Var></Expression></Macro>",
         u"Macro/Expression[1] cannot be written in the text form: it holds a line break"},
        {u"<Macro><While><Condition><BinaryOp name=\"=~\"><Left>1</Left><Right>2</Right></BinaryOp></Condition>"
         u"</While></Macro>",
         u"Macro/While[1] cannot be written in the text form: the expression (1 =~ 2) does not read back as it is"},
        {u"<Macro><Break><Call name=\"If x\"/></Break></Macro>",
         u"Macro/Break[1] cannot be written in the text form: the expression If x() does not read back as it is"},
    };
    for (const auto& c : cases) EXPECT_EQ(ToUtf8(WriteError(*ImportMacroXml(c.xml))), ToUtf8(c.error)) << ToUtf8(c.xml);
}

}  // namespace
}  // namespace qm::M2
