// eval, parse and tokens: the expression language on the command line, for trying expressions
// out and for seeing how the lexer and parser read them.
#include <CLI/CLI.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/runtime_bridge.h"
#include "core/error.h"
#include "core/evaluator.h"
#include "core/parser.h"
#include "core/text.h"
#include "core/token.h"

namespace qm::cli {
namespace {

int Eval(const std::vector<std::string>& expressions, Io& io) {
    MacroScope scope;
    auto calls = MakeCommandLineCalls();
    Evaluator evaluator(scope, calls.get());
    for (const std::string& text : expressions) {
        try {
            M2::ExpressionPtr tree = ParseForMacro(FromUtf8(text));
            MacroValue value = evaluator.Evaluate(*tree);
            io.out << ToUtf8(value.Describe()) << "\n";
        } catch (const MacroError& e) {
            io.out.flush();
            io.err << ToUtf8(e.message()) << "\n";
            return kExitError;
        }
    }
    return kExitOk;
}

int PrintParsed(const std::string& text, Io& io) {
    try {
        io.out << ToUtf8(PrintText(*Parse(FromUtf8(text)))) << "\n";
        return kExitOk;
    } catch (const ParseError& e) {
        io.err << ToUtf8(e.message()) << "\n";
        return kExitError;
    }
}

int PrintTokens(const std::string& text, Io& io) {
    for (const Token& token : Tokenize(FromUtf8(text))) {
        io.out << ToUtf8(TokenKindName(token.kind)) << "\t" << ToUtf8(token.text) << "\n";
    }
    return kExitOk;
}

}  // namespace

void RegisterExpressionCommands(CLI::App& app, CommandContext& context) {
    auto expressions = std::make_shared<std::vector<std::string>>();
    CLI::App* eval = app.add_subcommand(
        "eval", "Evaluate expressions in order, in one variable scope, printing each value as the macro log does");
    eval->add_option("EXPR", *expressions, "Expression text (use -- before an expression that starts with '-')")
        ->required();
    eval->callback([&context, expressions] { context.action = [&context, expressions] { return Eval(*expressions, context.io); }; });

    auto parseText = std::make_shared<std::string>();
    CLI::App* parse = app.add_subcommand("parse", "Parse an expression and print it back fully parenthesised");
    parse->add_option("EXPR", *parseText, "Expression text")->required();
    parse->callback([&context, parseText] { context.action = [&context, parseText] { return PrintParsed(*parseText, context.io); }; });

    auto tokensText = std::make_shared<std::string>();
    CLI::App* tokens = app.add_subcommand("tokens", "List the tokens of an expression: kind name, tab, text");
    tokens->add_option("EXPR", *tokensText, "Expression text")->required();
    tokens->callback([&context, tokensText] { context.action = [&context, tokensText] { return PrintTokens(*tokensText, context.io); }; });
}

}  // namespace qm::cli
