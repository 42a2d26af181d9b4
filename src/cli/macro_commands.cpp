// macros list|show|import|export|remove|logging, and xml roundtrip: the user's macro list in the
// per-user folder from the command line, through the same store the add-in uses, and the macro
// file format read and written back.
//
// Macros are named by id or by exact name (the id wins). Macro texts are printed as UTF-8;
// a file written by export is UTF-16LE like the store's own files.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <functional>
#include <memory>
#include <ostream>
#include <string>

#include "cli/command.h"
#include "core/format.h"
#include "core/text.h"
#include "macros/macro_store.h"
#include "macros/macro_xml.h"
#include "macros/messages.h"
#include "xml/xml_error.h"

namespace qm::cli {
namespace {

namespace msg = macros::msg;
using macros::MacroStore;
using macros::StoreError;

void PrintMessage(std::ostream& stream, std::u16string_view message) { stream << ToUtf8(message) << "\n"; }

// Runs a command, turning the failures any of them can meet into their message on the error
// stream and exit code 1.
int Guarded(Io& io, const std::function<int()>& body) {
    try {
        return body();
    } catch (const StoreError& e) {
        io.out.flush();
        PrintMessage(io.err, e.message());
    } catch (const xml::XmlError& e) {
        io.out.flush();
        PrintMessage(io.err, e.FullText());
    }
    return kExitError;
}

void PrintNotices(MacroStore& store, Io& io) {
    for (const auto& notice : store.TakeNotices()) PrintMessage(io.err, notice);
}

// The store brought up to date, for commands that read the list. (Commands that change it leave
// that to the store, which then says why it refuses a change.)
void Prepare(MacroStore& store, Io& io) {
    store.ReloadIfChanged();
    PrintNotices(store, io);
}

std::shared_ptr<M2::Macro> FindOrFail(MacroStore& store, const std::string& idOrName) {
    const std::u16string key = FromUtf8(idOrName);
    auto macro = store.Find(key);
    if (!macro) throw StoreError(FormatMessage(msg::kMacroNotFound, {key}));
    return macro;
}

void PrintMacroLine(std::ostream& out, const M2::Macro& macro) {
    out << ToUtf8(macro.id.value) << "\t" << ToUtf8(macro.name) << "\t" << ToUtf8(macro.category) << "\n";
}

// A document file's text; XML errors in it are reported naming the file.
template <class F>
auto WithFileName(const std::filesystem::path& path, F&& read) {
    try {
        return read();
    } catch (const xml::XmlError& e) {
        throw StoreError(FormatMessage(msg::kCannotReadFile, {macros::PathText(path), e.FullText()}));
    }
}

int ListMacros(Io& io) {
    MacroStore store;
    Prepare(store, io);
    for (const auto& macro : store.GetMacros().macros) PrintMacroLine(io.out, *macro);
    return kExitOk;
}

int ShowMacro(const std::string& idOrName, Io& io) {
    MacroStore store;
    Prepare(store, io);
    io.out << ToUtf8(M2::WriteMacroXml(*FindOrFail(store, idOrName))) << "\n";
    return kExitOk;
}

int ImportMacros(const std::string& file, Io& io) {
    const std::filesystem::path path = PathArg(file);
    const std::u16string text = macros::ReadDocumentFile(path);
    const macros::MacroImport imported = WithFileName(path, [&] { return macros::ReadMacroImport(text); });
    if (imported.newerVersion) PrintMessage(io.err, msg::kNewerMacroVersion);
    MacroStore store;
    store.AddOrReplace(imported.macros);
    PrintNotices(store, io);
    for (const auto& macro : imported.macros) PrintMacroLine(io.out, *macro);
    return kExitOk;
}

int ExportMacro(const std::string& idOrName, const std::string& file, Io& io) {
    MacroStore store;
    Prepare(store, io);
    const std::u16string text = M2::WriteMacroXml(*FindOrFail(store, idOrName));
    if (file.empty()) {
        io.out << ToUtf8(text);
    } else {
        macros::WriteStoredDocument(PathArg(file), text);
    }
    return kExitOk;
}

int RemoveMacro(const std::string& idOrName, Io& io) {
    MacroStore store;
    const auto removed = store.Remove(FromUtf8(idOrName));
    PrintNotices(store, io);
    PrintMacroLine(io.out, *removed);
    return kExitOk;
}

int SetLogging(bool on, Io& io) {
    MacroStore store;
    store.Modify([on](M2::Macros& list) { list.loggingEnabled = on; });
    PrintNotices(store, io);
    PrintMessage(io.out, on ? msg::kLoggingOn : msg::kLoggingOff);
    return kExitOk;
}

int RoundTrip(const std::string& file, Io& io) {
    const std::filesystem::path path = PathArg(file);
    const std::u16string text = macros::ReadDocumentFile(path);
    const macros::MacroDocument document = WithFileName(path, [&] { return macros::ReadMacroDocument(text); });
    io.out << ToUtf8(document.list ? M2::WriteMacros(*document.list) : M2::WriteMacroXml(*document.macro));
    return kExitOk;
}

// Installs `body` as the action of `command`, guarded.
void OnRun(CLI::App* command, CommandContext& context, std::function<int(Io&)> body) {
    command->callback([&context, body = std::move(body)] {
        context.action = [&context, body] { return Guarded(context.io, [&] { return body(context.io); }); };
    });
}

}  // namespace

void RegisterMacroCommands(CLI::App& app, CommandContext& context) {
    CLI::App* macrosCommand = app.add_subcommand("macros", "The macro list in the per-user folder");
    macrosCommand->require_subcommand(1);

    OnRun(macrosCommand->add_subcommand("list", "List the macros: id, name and category, tab separated"), context,
          [](Io& io) { return ListMacros(io); });

    auto showKey = std::make_shared<std::string>();
    CLI::App* show = macrosCommand->add_subcommand("show", "Print a macro's Edit XML text");
    show->add_option("MACRO", *showKey, "The macro's id or name")->required();
    OnRun(show, context, [showKey](Io& io) { return ShowMacro(*showKey, io); });

    auto importFile = std::make_shared<std::string>();
    CLI::App* import = macrosCommand->add_subcommand(
        "import", "Import a file holding a macro or a macro list; a macro with the same id is replaced");
    import->add_option("FILE", *importFile, "The macro file (UTF-16 or UTF-8)")->required();
    OnRun(import, context, [importFile](Io& io) { return ImportMacros(*importFile, io); });

    auto exportKey = std::make_shared<std::string>();
    auto exportFile = std::make_shared<std::string>();
    CLI::App* exportCommand = macrosCommand->add_subcommand(
        "export", "Write a macro's Edit XML text to FILE (UTF-16LE) or to the standard output (UTF-8)");
    exportCommand->add_option("MACRO", *exportKey, "The macro's id or name")->required();
    exportCommand->add_option("FILE", *exportFile, "The file to write");
    OnRun(exportCommand, context, [exportKey, exportFile](Io& io) { return ExportMacro(*exportKey, *exportFile, io); });

    auto removeKey = std::make_shared<std::string>();
    CLI::App* remove = macrosCommand->add_subcommand("remove", "Remove a macro from the list");
    remove->add_option("MACRO", *removeKey, "The macro's id or name")->required();
    OnRun(remove, context, [removeKey](Io& io) { return RemoveMacro(*removeKey, io); });

    auto loggingState = std::make_shared<std::string>();
    CLI::App* logging = macrosCommand->add_subcommand("logging", "Switch the macro log on or off");
    logging->add_option("STATE", *loggingState, "on or off")->required()->check(CLI::IsMember({"on", "off"}));
    OnRun(logging, context, [loggingState](Io& io) { return SetLogging(*loggingState == "on", io); });

    CLI::App* xmlCommand = app.add_subcommand("xml", "The macro file format");
    xmlCommand->require_subcommand(1);
    auto roundTripFile = std::make_shared<std::string>();
    CLI::App* roundTrip = xmlCommand->add_subcommand(
        "roundtrip", "Read a macro list or macro file (UTF-16 or UTF-8) and write it back as UTF-8");
    roundTrip->add_option("FILE", *roundTripFile, "The macro file")->required();
    OnRun(roundTrip, context, [roundTripFile](Io& io) { return RoundTrip(*roundTripFile, io); });
}

}  // namespace qm::cli
