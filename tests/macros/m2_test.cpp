#include <gtest/gtest.h>

#include <string>

#include "core/text.h"
#include "macros/macro_xml.h"
#include "macros/messages.h"
#include "xml/xml_error.h"

namespace qm::M2 {
namespace {

constexpr std::u16string_view kDecl = u"<?xml version=\"1.0\" encoding=\"utf-16\"?>\r\n";

// A document in exactly the form the writer gives it, using every element of the format.
const std::u16string kSample = std::u16string(kDecl) +
    u"<Macros loggingEnabled=\"true\">\r\n"
    u"  <Macro id=\"m1\" name=\"Sample\" category=\"Demo\" description=\"Lists &lt;pages&gt; &amp; more\" "
    u"publishDate=\"2016-03-05T14:07:09.042Z\" version=\"2\">\r\n"
    u"    <ForEach var=\"page\">\r\n"
    u"      <Array>\r\n"
    u"        <Call name=\"QueryObjects\">\r\n"
    u"          <Arg>\r\n"
    u"            <Call name=\"GetCurrentSection\" />\r\n"
    u"          </Arg>\r\n"
    u"          <Arg>Page</Arg>\r\n"
    u"        </Call>\r\n"
    u"      </Array>\r\n"
    u"      <Expression>\r\n"
    u"        <BinaryOp name=\"=\">\r\n"
    u"          <Left>\r\n"
    u"            <Var>page</Var>\r\n"
    u"            <Prop>title</Prop>\r\n"
    u"          </Left>\r\n"
    u"          <Right>a &lt; b &amp; c</Right>\r\n"
    u"        </BinaryOp>\r\n"
    u"      </Expression>\r\n"
    u"    </ForEach>\r\n"
    u"    <If collapsed=\"true\">\r\n"
    u"      <Condition>\r\n"
    u"        <BinaryOp name=\"&lt;\">\r\n"
    u"          <Left>\r\n"
    u"            <Var>i</Var>\r\n"
    u"          </Left>\r\n"
    u"          <Right>3</Right>\r\n"
    u"        </BinaryOp>\r\n"
    u"      </Condition>\r\n"
    u"      <Break />\r\n"
    u"    </If>\r\n"
    u"    <Else>\r\n"
    u"      <Return>\r\n"
    u"        <UnaryOp name=\"-\">\r\n"
    u"          <Operand>\r\n"
    u"            <Var>x</Var>\r\n"
    u"          </Operand>\r\n"
    u"        </UnaryOp>\r\n"
    u"      </Return>\r\n"
    u"    </Else>\r\n"
    u"    <Comment text=\"disabled\">\r\n"
    u"      <Continue>2</Continue>\r\n"
    u"    </Comment>\r\n"
    u"    <While>\r\n"
    u"      <Condition>\r\n"
    u"        <TernaryOp>\r\n"
    u"          <Condition>true</Condition>\r\n"
    u"          <True>\r\n"
    u"            <Var><![CDATA[a<b]]></Var>\r\n"
    u"          </True>\r\n"
    u"          <False>\r\n"
    u"            <Index>0</Index>\r\n"
    u"            <Prop>p</Prop>x y</False>\r\n"
    u"        </TernaryOp>\r\n"
    u"      </Condition>\r\n"
    u"    </While>\r\n"
    u"    <Function name=\"f\">\r\n"
    u"      <Param name=\"a\" />\r\n"
    u"      <Return>\r\n"
    u"        <Var>a</Var>\r\n"
    u"      </Return>\r\n"
    u"    </Function>\r\n"
    u"  </Macro>\r\n"
    u"</Macros>";

std::shared_ptr<Macro> ReadMacro(std::u16string_view body) { return ImportMacroXml(body); }

TEST(MacroFile, SampleReadsIntoTheTreeAndWritesBackUnchanged) {
    auto macros = ReadMacros(kSample);
    EXPECT_EQ(WriteMacros(*macros), kSample);

    ASSERT_EQ(macros->macros.size(), 1u);
    const Macro& macro = *macros->macros[0];
    EXPECT_TRUE(macros->loggingEnabled.value);
    EXPECT_EQ(macro.version.value, 2);
    EXPECT_EQ(macro.description, u"Lists <pages> & more");
    EXPECT_EQ(macro.publishDate, (xml::SystemTime{2016, 3, 0, 5, 14, 7, 9, 42}));
    ASSERT_EQ(macro.statements.size(), 5u);
    ASSERT_EQ(macro.functions.size(), 1u);

    const Statement& first = *macro.statements[0];
    EXPECT_EQ(first.kind(), StatementKind::ForEach);
    EXPECT_EQ(first.owner, &macro.statements);
    EXPECT_EQ(first.forEach->owner, &first);
    EXPECT_EQ(macro.statements.owner, &macro);
    const Call& call = std::get<Call>(first.forEach->array->primary);
    ASSERT_EQ(call.args.size(), 2u);
    EXPECT_EQ(call.args[1]->text(), u"Page");
    const BinaryOp& assign = std::get<BinaryOp>(first.forEach->statements[0]->expression->primary);
    EXPECT_EQ(assign.op, Operator::Assign);
    EXPECT_EQ(std::get<Var>(assign.left->primary).name, u"page");
    EXPECT_EQ(std::get<Prop>(assign.left->members[0]).name, u"title");
    EXPECT_EQ(assign.right->text(), u"a < b & c");

    const If& branch = *macro.statements[1]->ifStatement;
    EXPECT_TRUE(branch.collapsed.value);
    EXPECT_TRUE(std::get<BinaryOp>(branch.condition->primary).right->literal().isNumeric);
    EXPECT_TRUE(branch.statements[0]->breakLevels->IsEmpty());
    EXPECT_EQ(std::get<UnaryOp>(macro.statements[2]->elseStatement->statements[0]->returnValue->primary).op,
              Operator::Subtract);
    // A comment keeps the statements it comments out.
    EXPECT_EQ(macro.statements[3]->comment->statements[0]->kind(), StatementKind::Continue);

    const TernaryOp& ternary = std::get<TernaryOp>(macro.statements[4]->whileStatement->condition->primary);
    EXPECT_TRUE(ternary.condition->literal().boolean);
    EXPECT_TRUE(std::get<Var>(ternary.whenTrue->primary).cdata);
    EXPECT_EQ(ternary.whenFalse->text(), u"x y");
    EXPECT_EQ(std::get<ExpressionPtr>(ternary.whenFalse->members[0])->text(), u"0");
}

TEST(MacroFile, DefaultsAreLeftOut) {
    auto macros = ReadMacros(std::u16string(kDecl) +
                             u"<Macros display=\"\" compact=\"false\" loggingEnabled=\"false\" loadState=\"0\">"
                             u"<Macro version=\"0\"><If collapsed=\"false\"/></Macro></Macros>");
    EXPECT_EQ(WriteMacros(*macros), std::u16string(kDecl) +
                                        u"<Macros>\r\n  <Macro name=\"\" category=\"\" description=\"\" "
                                        u"publishDate=\"00-00-00T00:00:00.000Z\">\r\n    <If />\r\n  </Macro>\r\n"
                                        u"</Macros>");
    Macros list;
    list.display = xml::Defaulted<std::u16string>(u"ribbon");
    list.compact = true;
    EXPECT_EQ(WriteMacros(list), std::u16string(kDecl) + u"<Macros compact=\"true\" />");
    list.display = u"menu";
    EXPECT_EQ(WriteMacros(list), std::u16string(kDecl) + u"<Macros display=\"menu\" compact=\"true\" />");
}

TEST(MacroFile, StatementsAfterAFunctionOrAStrangerAreLost) {
    auto macro = ReadMacro(u"<Macro><Function name=\"f\"/><Expression>1</Expression></Macro>");
    EXPECT_TRUE(macro->statements.empty());
    EXPECT_EQ(macro->functions.size(), 1u);
    macro = ReadMacro(u"<Macro><Expression>1</Expression><Stranger/><Expression>2</Expression></Macro>");
    EXPECT_EQ(macro->statements.size(), 1u);
}

TEST(MacroFile, HolderContentRules) {
    // Indentation around a primary is not a literal; text beside a primary is dropped.
    auto macro = ReadMacro(u"<Macro>\r\n  <Expression>\r\n    <Var>a</Var>\r\n  </Expression>\r\n"
                           u"  <Expression><Var>b</Var>junk</Expression>\r\n</Macro>");
    ASSERT_EQ(macro->statements.size(), 2u);
    EXPECT_EQ(macro->statements[0]->expression->text(), u"");
    EXPECT_EQ(macro->statements[1]->expression->text(), u"");
    // A blank literal is a literal; an unclaimed element in a holder is looked past.
    macro = ReadMacro(u"<Macro><Expression> </Expression><Expression><Odd/><Var>c</Var></Expression></Macro>");
    EXPECT_EQ(macro->statements[0]->expression->text(), u" ");
    EXPECT_EQ(std::get<Var>(macro->statements[1]->expression->primary).name, u"c");
}

TEST(MacroFile, BlankLiteralWithMembersRoundTrips) {
    Macro macro;
    auto& statement = macro.statements.Add(std::make_shared<Statement>());
    statement.expression = MakeLiteral(u" \r\n");
    statement.expression->members.emplace_back(Prop{u"Length", false});
    const std::u16string written = WriteMacroXml(macro);
    auto back = ImportMacroXml(written);
    EXPECT_EQ(back->statements[0]->expression->text(), u" \r\n");
    EXPECT_EQ(WriteMacroXml(*back), written);
}

// A chain of `levels` unary nodes around a variable, as deep as its number of nodes.
ExpressionPtr Chain(int levels) {
    auto root = std::make_shared<Expression>();
    Expression* at = root.get();
    for (int i = 1; i < levels; ++i) {
        UnaryOp& op = at->primary.emplace<UnaryOp>();
        op.SetName(u"-");
        op.operand = std::make_shared<Expression>();
        at = op.operand.get();
    }
    at->primary = Var{u"v", false};
    return root;
}

std::shared_ptr<Macros> NestedMacro(int statements, int expressionDepth) {
    auto macros = std::make_shared<Macros>();
    Statements* list = &macros->macros.Add(std::make_shared<Macro>()).statements;
    for (int i = 0; i < statements; ++i) {
        auto branch = std::make_shared<If>();
        branch->condition = MakeLiteral(u"true");
        list->Add(std::make_shared<Statement>()).ifStatement = branch;
        list = &branch->statements;
    }
    list->Add(std::make_shared<Statement>()).expression = Chain(expressionDepth);
    return macros;
}

TEST(MacroFile, DeepestExpressionRoundTripsAndDeeperFailsCleanly) {
    const std::u16string deepest = WriteMacros(*NestedMacro(200, kMaxExpressionDepth));
    EXPECT_EQ(WriteMacros(*ReadMacros(deepest)), deepest);
    try {
        ReadMacros(WriteMacros(*NestedMacro(200, kMaxExpressionDepth + 1)));
        FAIL();
    } catch (const xml::XmlError& e) {
        EXPECT_EQ(e.message(), u"Expression in macro is nested too deeply: more than 256 levels");
        EXPECT_GT(e.line(), 200);
    }
}

TEST(EditXml, TextBeginsWithTheDeclarationAndImportsWithoutOne) {
    auto macro = ReadMacro(u"<Macro name=\"m\"><Expression>1</Expression></Macro>");
    EXPECT_EQ(macro->name, u"m");
    const std::u16string text = WriteMacroXml(*macro);
    EXPECT_EQ(text, std::u16string(kDecl) + u"<Macro name=\"m\" category=\"\" description=\"\" "
                                            u"publishDate=\"00-00-00T00:00:00.000Z\">\r\n"
                                            u"  <Expression>1</Expression>\r\n</Macro>");
    EXPECT_EQ(WithImportDeclaration(text), text);
    EXPECT_EQ(WithImportDeclaration(u"<M a/>"), u"<?xml version=\"1.0\"?><M a/>");
    EXPECT_EQ(WithImportDeclaration(u"<M/> "), u"<M/> ");
    EXPECT_TRUE(ImportMacroXml(u"<M/>")->statements.empty());
    EXPECT_THROW(ImportMacroXml(u"<Macro><If></Macro>"), xml::XmlError);
}

}  // namespace
}  // namespace qm::M2
