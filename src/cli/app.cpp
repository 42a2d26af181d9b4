#include "cli/app.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "cli/command.h"

namespace qm::cli {

int Run(int argc, char** argv, std::ostream& out, std::ostream& err) {
    CLI::App app{"Quillmark: write, check and run OneNote macros", "quillmark"};
    app.require_subcommand(1);
    CommandContext context{{out, err}, {}};
    RegisterExpressionCommands(app, context);
    RegisterMacroCommands(app, context);
    RegisterRunCommands(app, context);
    RegisterTextFormCommands(app, context);
    RegisterNotebookCommands(app, context);

    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        // Help for the subcommand that was asked, or for the whole tool.
        const CLI::App* target = &app;
        for (const CLI::App* sub : app.get_subcommands()) target = sub;
        out << target->help();
        return kExitOk;
    } catch (const CLI::CallForAllHelp&) {
        out << app.help("", CLI::AppFormatMode::All);
        return kExitOk;
    } catch (const CLI::ParseError& e) {
        err << "quillmark: " << e.what() << "\n";
        const CLI::App* target = &app;
        for (const CLI::App* sub : app.get_subcommands()) target = sub;
        err << target->help();
        return kExitUsage;
    }
    if (!context.action) return kExitUsage;
    return context.action();
}

int Main(int argc, char** argv) { return Run(argc, argv, std::cout, std::cerr); }

}  // namespace qm::cli
