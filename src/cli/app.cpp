#include "cli/app.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "cli/command.h"
#include "cli/console.h"

namespace qm::cli {

int Run(int argc, char** argv, std::ostream& out, std::ostream& err) {
    CLI::App app{"Quillmark: write, check and run OneNote macros", "quillmark"};
    app.require_subcommand(1);
    // Paths such as /tmp/m.qm are arguments on every platform, never Windows-style options.
    app.allow_windows_style_options(false);
    CommandContext context{{out, err}, {}};
    RegisterExpressionCommands(app, context);
    RegisterMacroCommands(app, context);
    RegisterRunCommands(app, context);
    RegisterTextFormCommands(app, context);
    RegisterNotebookCommands(app, context);
    RegisterRegistrationCommands(app, context);

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

std::filesystem::path PathArg(const std::string& text) {
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

int Main(int argc, char** argv) {
    std::vector<std::string> arguments = platform::Utf8Arguments(argc, argv);
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    return Run(static_cast<int>(pointers.size()), pointers.data(), std::cout, std::cerr);
}

}  // namespace qm::cli
