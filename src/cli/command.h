// What every subcommand module sees: the output streams and the slot for the action that the
// parsed command line selected.
#pragma once

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <string>

namespace CLI {
class App;
}

namespace qm::cli {

struct Io {
    std::ostream& out;
    std::ostream& err;
};

// Exit codes shared by every subcommand.
inline constexpr int kExitOk = 0;
inline constexpr int kExitError = 1;
inline constexpr int kExitUsage = 2;
inline constexpr int kExitCancelled = 3;

// The action a subcommand's callback installs; it runs after the whole command line has parsed.
using Action = std::function<int()>;

struct CommandContext {
    Io io;
    Action action;
};

// A path given on the command line, which is UTF-8 on every platform.
std::filesystem::path PathArg(const std::string& text);

// One registration function per module, in the manner of a library table; each lives in its own
// <module>_commands.cpp.
void RegisterExpressionCommands(CLI::App& app, CommandContext& context);  // eval, parse, tokens
void RegisterMacroCommands(CLI::App& app, CommandContext& context);       // macros ..., xml roundtrip
void RegisterRunCommands(CLI::App& app, CommandContext& context);         // run, functions
void RegisterTextFormCommands(CLI::App& app, CommandContext& context);    // convert, check
void RegisterNotebookCommands(CLI::App& app, CommandContext& context);    // notebook ...
// register, unregister: the OneNote add-in's registration (Windows; elsewhere no commands).
void RegisterRegistrationCommands(CLI::App& app, CommandContext& context);

}  // namespace qm::cli
