// notebook reset, show and generate: the notebook folder the tool runs macros against. By default
// that is the working copy of the sample notebook in the per-user folder, made on first use.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string>

#include "cli/command.h"
#include "core/format.h"
#include "core/text.h"
#include "onenote/messages.h"
#include "onenote/notebook_folder.h"
#include "onenote/notebook_generator.h"
#include "onenote/notebook_listing.h"
#include "onenote/on_document.h"
#include "onenote/sample_notebook.h"
#include "xml/file_io.h"

namespace qm::cli {
namespace {

namespace fs = std::filesystem;
namespace msg = onenote::msg;

// Enough for any benchmark; more would take hours and fill the disk.
constexpr long long kMaxGeneratedPages = 100000;

std::u16string PathText(const fs::path& path) { return path.u16string(); }

// Runs a command body; the failures a notebook folder can raise become a message and exit 1.
int Guarded(Io& io, const std::function<int()>& body) {
    try {
        return body();
    } catch (const onenote::FolderError& e) {
        io.err << ToUtf8(e.message()) << "\n";
    } catch (const ON::DocumentError& e) {
        io.err << ToUtf8(e.message()) << "\n";
    } catch (const onenote::OneNoteError& e) {
        io.err << ToUtf8(e.text()) << "\n";
    } catch (const io::FileError& e) {
        io.err << e.what() << "\n";
    } catch (const fs::filesystem_error& e) {
        io.err << e.what() << "\n";
    }
    return kExitError;
}

int Reset(Io& io) {
    const fs::path folder = onenote::ResetWorkingNotebook();
    io.out << ToUtf8(FormatMessage(msg::kResetDone, {PathText(folder)})) << "\n";
    return kExitOk;
}

int Show(const std::string& id, const std::string& notebook, Io& io) {
    onenote::NotebookFolder folder(notebook.empty() ? onenote::WorkingNotebook() : PathArg(notebook));
    const std::u16string start = FromUtf8(id);
    std::u16string hierarchy;
    try {
        hierarchy = folder.GetHierarchy(start, onenote::HierarchyScope::Pages);
    } catch (const onenote::OneNoteError&) {
        io.err << ToUtf8(FormatMessage(msg::kUnknownObject, {start})) << "\n";
        return kExitError;
    }
    const ON::HierarchyDocument document = ON::ReadHierarchy(hierarchy, start);
    if (std::holds_alternative<std::shared_ptr<ON::Page>>(document)) {
        const std::u16string content = folder.GetPageContent(start);
        io.out << ToUtf8(onenote::ListPage(*ON::ReadPage(content, FormatMessage(msg::kPageName, {start}))));
    } else {
        io.out << ToUtf8(onenote::ListHierarchy(ON::RootOf(document)));
    }
    return kExitOk;
}

int Generate(const std::string& dir, const onenote::GeneratedSize& size, Io& io) {
    const fs::path folder(dir);
    if (static_cast<long long>(size.notebooks) * size.sections * size.pages > kMaxGeneratedPages) {
        io.err << ToUtf8(FormatMessage(msg::kGenerateTooLarge, {Ascii(std::to_string(kMaxGeneratedPages))})) << "\n";
        return kExitError;
    }
    std::error_code ec;
    if (fs::exists(folder, ec) && !fs::is_empty(folder, ec)) {
        io.err << ToUtf8(FormatMessage(msg::kGenerateFolderNotEmpty, {PathText(folder)})) << "\n";
        return kExitError;
    }
    onenote::GenerateNotebookFolder(folder, size);
    const int sections = size.notebooks * size.sections;
    io.out << ToUtf8(FormatMessage(msg::kGenerated, {Ascii(std::to_string(size.notebooks)),
                                                     Ascii(std::to_string(sections)),
                                                     Ascii(std::to_string(sections * size.pages)), PathText(folder)}))
           << "\n";
    return kExitOk;
}

void OnRun(CLI::App* command, CommandContext& context, std::function<int(Io&)> body) {
    command->callback([&context, body = std::move(body)] {
        context.action = [&context, body] { return Guarded(context.io, [&] { return body(context.io); }); };
    });
}

}  // namespace

void RegisterNotebookCommands(CLI::App& app, CommandContext& context) {
    CLI::App* notebook = app.add_subcommand(
        "notebook", "The notebook folder macros run against: by default the working copy of the sample notebook");
    notebook->require_subcommand(1);

    OnRun(notebook->add_subcommand("reset", "Make the working copy the sample notebook again"), context,
          [](Io& io) { return Reset(io); });

    auto showId = std::make_shared<std::string>();
    auto showFolder = std::make_shared<std::string>();
    CLI::App* show = notebook->add_subcommand(
        "show", "Print the notebooks, sections and pages with their IDs, or the notebook, section or page with ID");
    show->add_option("ID", *showId, "The ID of a notebook, section group, section or page");
    show->add_option("--notebook", *showFolder, "A notebook folder instead of the working copy");
    OnRun(show, context, [showId, showFolder](Io& io) { return Show(*showId, *showFolder, io); });

    auto dir = std::make_shared<std::string>();
    auto size = std::make_shared<onenote::GeneratedSize>(onenote::GeneratedSize{1, 3, 5, 20});
    CLI::App* generate = notebook->add_subcommand(
        "generate", "Write a synthetic notebook folder of the size asked, for benchmarks and scale tests");
    generate->add_option("DIR", *dir, "A new or empty folder")->required();
    generate->add_option("--notebooks", size->notebooks, "Notebooks")->check(CLI::Range(1, 1000))->capture_default_str();
    generate->add_option("--sections", size->sections, "Sections per notebook")
        ->check(CLI::Range(1, 1000))
        ->capture_default_str();
    generate->add_option("--pages", size->pages, "Pages per section")->check(CLI::Range(1, 10000))->capture_default_str();
    generate->add_option("--paragraphs", size->paragraphs, "Paragraphs per page")
        ->check(CLI::Range(1, 10000))
        ->capture_default_str();
    OnRun(generate, context, [dir, size](Io& io) { return Generate(*dir, *size, io); });
}

}  // namespace qm::cli
