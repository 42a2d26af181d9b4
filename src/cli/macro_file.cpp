#include "cli/macro_file.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "cli/messages.h"
#include "core/format.h"
#include "core/text.h"
#include "macros/macro_store.h"
#include "macros/macro_xml.h"
#include "macros/messages.h"
#include "xml/file_io.h"
#include "xml/xml_error.h"

namespace qm::cli {

std::optional<MacroFormat> MacroFormatOf(const std::string& file) {
    std::string extension = PathArg(file).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (extension == ".qm") return MacroFormat::Text;
    if (extension == ".xml") return MacroFormat::Xml;
    return std::nullopt;
}

MacroFile LoadMacroFile(const std::string& name, MacroFormat format) {
    MacroFile file;
    file.name = name;
    file.format = format;
    const std::u16string text = io::DecodeXmlBytes(io::ReadFileBytes(PathArg(name)));
    if (format == MacroFormat::Text) {
        file.macros.push_back({M2::ReadTextForm(text, name, &file.lines), u"Macro"});
        return file;
    }
    try {
        macros::MacroDocument document = macros::ReadMacroDocument(text);
        if (document.macro) {
            file.macros.push_back({document.macro, u"Macro"});
        } else {
            file.list = document.list;
            int index = 0;
            for (const auto& macro : document.list->macros) {
                file.macros.push_back({macro, u"Macros/Macro[" + Ascii(std::to_string(++index)) + u"]"});
            }
        }
    } catch (const xml::XmlError& e) {
        throw CommandFailure{FromUtf8(name) + u": " + e.FullText()};
    }
    return file;
}

const LoadedMacro& PickMacro(const MacroFile& file, const std::string& selector) {
    const std::u16string wanted = FromUtf8(selector);
    for (const auto& loaded : file.macros) {
        if (loaded.macro->id.value == wanted) return loaded;
    }
    for (const auto& loaded : file.macros) {
        if (loaded.macro->name == wanted) return loaded;
    }
    throw CommandFailure{FromUtf8(file.name) + u": " + FormatMessage(macros::msg::kMacroNotFound, {wanted})};
}

const LoadedMacro& SingleMacro(const MacroFile& file, const std::optional<std::string>& selector) {
    if (selector) return PickMacro(file, *selector);
    if (file.macros.size() == 1) return file.macros.front();
    if (file.macros.empty()) throw CommandFailure{FormatMessage(msg::kNoMacro, {FromUtf8(file.name)})};
    std::u16string text =
        FormatMessage(msg::kSeveralMacros, {FromUtf8(file.name), Ascii(std::to_string(file.macros.size()))});
    for (const auto& loaded : file.macros) {
        text += u"\n" + FormatMessage(msg::kListEntry, {*loaded.macro->id, loaded.macro->name});
    }
    throw CommandFailure{std::move(text), kExitUsage};
}

}  // namespace qm::cli
