#include "macros/macro_store.h"

#include <algorithm>
#include <cstdint>
#include <random>

#include "core/format.h"
#include "core/text.h"
#include "macros/macro_xml.h"
#include "macros/messages.h"
#include "xml/binding.h"
#include "xml/file_io.h"
#include "xml/xml_error.h"
#include "xml/xml_reader.h"

namespace qm::macros {
namespace {

// FileError's text starts with the path, which our messages give on their own.
std::u16string FileErrorReason(const io::FileError& e) {
    std::string_view what = e.what();
    const std::string prefix = e.path().string() + ": ";
    if (what.starts_with(prefix)) what.remove_prefix(prefix.size());
    return FromUtf8(what);
}

bool IsBlankText(std::u16string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char16_t c) { return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n'; });
}

// The counter as the list's "loadState" can hold it.
std::int32_t ClampCounter(std::uint32_t value) {
    return value > static_cast<std::uint32_t>(INT32_MAX) ? INT32_MAX : static_cast<std::int32_t>(value);
}

struct RootElement {
    std::u16string name;
    int line = 0;
    int column = 0;
};

// The document's first element, read no further than its start tag.
RootElement FindRootElement(std::u16string_view text) {
    const auto reader = xml::CreateStringXmlReader(text);
    while (reader->Read()) {
        if (reader->nodeType() == xml::NodeType::Element) {
            return {std::u16string(reader->localName()), reader->line(), reader->column()};
        }
    }
    return {};
}

// The list's membership and options, to put back when a change cannot be saved.
class ListSnapshot {
public:
    explicit ListSnapshot(const M2::Macros& list)
        : macros_(list.macros.items()),
          display_(list.display.value),
          compact_(list.compact.value),
          loggingEnabled_(list.loggingEnabled.value),
          loadState_(list.loadState.value) {}

    void Restore(M2::Macros& list) const {
        list.macros.Clear();
        for (const auto& macro : macros_) list.macros.Add(macro);
        list.display.value = display_;
        list.compact.value = compact_;
        list.loggingEnabled.value = loggingEnabled_;
        list.loadState.value = loadState_;
    }

private:
    std::vector<std::shared_ptr<M2::Macro>> macros_;
    std::u16string display_;
    bool compact_;
    bool loggingEnabled_;
    std::int32_t loadState_;
};

}  // namespace

StoreError::StoreError(std::u16string message) : message_(std::move(message)), utf8_(ToUtf8(message_)) {}

std::u16string PathText(const std::filesystem::path& path) {
    const std::u8string utf8 = path.u8string();
    return FromUtf8(std::string_view(reinterpret_cast<const char*>(utf8.data()), utf8.size()));
}

std::u16string ReadDocumentFile(const std::filesystem::path& path) {
    try {
        return io::DecodeXmlBytes(io::ReadFileBytes(path));
    } catch (const io::FileError& e) {
        throw StoreError(FormatMessage(msg::kCannotReadFile, {PathText(path), FileErrorReason(e)}));
    }
}

std::optional<std::u16string> ReadStoredDocument(const std::filesystem::path& path) {
    std::error_code ec;
    if (std::filesystem::status(path, ec).type() == std::filesystem::file_type::not_found) return std::nullopt;
    std::u16string text = ReadDocumentFile(path);
    // A file with nothing in it holds nothing to lose: it is as good as none.
    if (IsBlankText(text)) return std::nullopt;
    return text;
}

void CheckRootElement(std::u16string_view text, std::u16string_view expected) {
    const RootElement root = FindRootElement(text);
    if (root.name == expected) return;
    if (root.name.empty()) throw xml::XmlError(std::u16string(msg::kEmptyDocument), 0, 0);
    throw xml::XmlError(FormatMessage(msg::kUnexpectedRoot, {expected, root.name}), root.line, root.column);
}

void WriteStoredDocument(const std::filesystem::path& path, std::u16string_view text) {
    if (path.has_parent_path()) {
        std::error_code ignored;  // a folder that cannot be made fails the write, which says so
        std::filesystem::create_directories(path.parent_path(), ignored);
    }
    try {
        io::WriteFileAtomically(path, io::EncodeUtf16Le(text));
    } catch (const io::FileError& e) {
        throw StoreError(FormatMessage(msg::kCannotSaveFile, {PathText(path), FileErrorReason(e)}));
    }
}

std::shared_ptr<M2::Macros> NewMacroList() {
    auto list = std::make_shared<M2::Macros>();
    list->display = xml::Defaulted<std::u16string>(u"category");
    return list;
}

std::shared_ptr<M2::Macro> NewMacro() {
    auto macro = std::make_shared<M2::Macro>();
    macro->version = xml::Defaulted<std::int32_t>(kMacroVersion);
    return macro;
}

void ApplyMacroDefaults(M2::Macro& macro) {
    macro.version.defaultValue = kMacroVersion;
    if (macro.version.value == 0) macro.version.value = kMacroVersion;
}

std::u16string NewMacroId() {
    static thread_local std::mt19937_64 engine = [] {
        std::random_device device;
        std::seed_seq seed{device(), device(), device(), device()};
        return std::mt19937_64(seed);
    }();
    static constexpr char16_t kHex[] = u"0123456789ABCDEF";
    char16_t digits[32];
    for (int half = 0; half < 2; ++half) {
        std::uint64_t bits = engine();
        for (int i = 0; i < 16; ++i, bits >>= 4) digits[half * 16 + i] = kHex[bits & 0xF];
    }
    digits[12] = u'4';                                       // a random identity
    digits[16] = kHex[8 + (digits[16] - u'0') % 4];          // of the standard variant
    std::u16string id = u"{";
    for (int i = 0; i < 32; ++i) {
        if (i == 8 || i == 12 || i == 16 || i == 20) id += u'-';
        id += digits[i];
    }
    id += u'}';
    return id;
}

MacroDocument ReadMacroDocument(std::u16string_view text) {
    const std::u16string full = M2::WithImportDeclaration(text);
    const RootElement root = FindRootElement(full);
    MacroDocument document;
    if (root.name == u"Macros") {
        document.list = NewMacroList();
        M2::ReadMacros(full, *document.list);
        for (const auto& macro : document.list->macros) ApplyMacroDefaults(*macro);
    } else if (root.name == u"Macro") {
        document.macro = NewMacro();
        xml::ParseElement(full, *document.macro);
        ApplyMacroDefaults(*document.macro);
    } else if (root.name.empty()) {
        throw xml::XmlError(std::u16string(msg::kEmptyDocument), 0, 0);
    } else {
        throw xml::XmlError(FormatMessage(msg::kNotAMacroDocument, {root.name}), root.line, root.column);
    }
    return document;
}

MacroImport ReadMacroImport(std::u16string_view text) {
    MacroDocument document = ReadMacroDocument(text);
    MacroImport result;
    if (document.macro) {
        result.macros.push_back(document.macro);
    } else {
        result.macros = document.list->macros.items();
        document.list->macros.Clear();
    }
    for (const auto& macro : result.macros) {
        if (macro->id.value.empty()) macro->id.value = NewMacroId();
        if (macro->version.value > kMacroVersion) result.newerVersion = true;
    }
    return result;
}

// --- the store --------------------------------------------------------------------------------

MacroStore::MacroStore() : MacroStore(UserFolder()) {}

MacroStore::MacroStore(std::filesystem::path folder) : MacroStore(folder, MakeLoadCounter(folder)) {}

MacroStore::MacroStore(std::filesystem::path folder, std::unique_ptr<LoadCounter> counter)
    : folder_(std::move(folder)), counter_(std::move(counter)), macros_(NewMacroList()) {}

// Reads the file into a fresh list and only then takes its content over, so a failed read leaves
// the list as it was.
void MacroStore::Load() {
    const std::filesystem::path path = MacrosPath();
    // Read before the file: a save that lands between the two reads raises the counter past the
    // value kept here, and the next check reads the file again.
    const std::int32_t counter = ClampCounter(counter_->Read());
    auto fresh = NewMacroList();
    try {
        if (const std::optional<std::u16string> text = ReadStoredDocument(path)) {
            CheckRootElement(*text, u"Macros");
            M2::ReadMacros(*text, *fresh);
        }
    } catch (const xml::XmlError& e) {
        readError_ = FormatMessage(msg::kCannotReadFile, {PathText(path), e.FullText()});
        throw StoreError(*readError_);
    } catch (const StoreError& e) {
        readError_ = e.message();
        throw;
    }

    M2::Macros& list = *macros_;
    list.display.value = fresh->display.value;
    list.compact.value = fresh->compact.value;
    list.loggingEnabled.value = fresh->loggingEnabled.value;
    list.loadState.value = fresh->loadState.value;
    list.macros.Clear();
    for (const auto& macro : fresh->macros.items()) {
        ApplyMacroDefaults(*macro);
        list.macros.Add(macro);
    }
    ours_ = std::max({counter, list.loadState.value, 0});
    loaded_ = true;
    readError_.reset();

    // The first macro format is not converted by this version; its file is left alone.
    const std::filesystem::path firstFormat = folder_ / kFirstFormatFileName;
    std::error_code ec;
    if (list.macros.empty() && std::filesystem::exists(firstFormat, ec)) {
        notices_.push_back(FormatMessage(msg::kFirstFormatNotMigrated, {PathText(firstFormat)}));
    }
}

M2::Macros& MacroStore::GetMacros() {
    if (!loaded_) Load();
    return *macros_;
}

void MacroStore::RequireWritable() {
    if (loaded_ && !readError_) return;
    try {
        Load();
    } catch (const StoreError& e) {
        throw StoreError(FormatMessage(msg::kKeptUnreadable, {PathText(MacrosPath()), e.message()}));
    }
}

void MacroStore::Write() {
    std::u16string text;
    try {
        text = M2::WriteMacros(*macros_);
    } catch (const xml::XmlError& e) {
        throw StoreError(FormatMessage(msg::kCannotSaveFile, {PathText(MacrosPath()), e.FullText()}));
    }
    WriteStoredDocument(MacrosPath(), text);
}

void MacroStore::SaveMacros() {
    RequireWritable();
    Write();
}

std::int32_t MacroStore::ReadLoadState() {
    const std::int32_t listState = GetMacros().loadState.value;
    return std::max(ClampCounter(counter_->Read()), listState);
}

// The list goes out with the next counter value in its "loadState"; when the save fails, it keeps
// the value it had.
void MacroStore::SaveWithNextCounter() {
    const std::int32_t current = std::max(ReadLoadState(), ours_);
    M2::Macros& list = *macros_;
    const std::int32_t previous = list.loadState.value;
    list.loadState.value = current == INT32_MAX ? current : current + 1;
    try {
        Write();
    } catch (...) {
        list.loadState.value = previous;
        throw;
    }
}

// Only a saved list is announced to the other copies.
void MacroStore::AnnounceSave() {
    ours_ = macros_->loadState.value;
    if (!counter_->Write(static_cast<std::uint32_t>(ours_))) {
        throw StoreError(FormatMessage(msg::kCounterNotSaved, {counter_->Location()}));
    }
}

void MacroStore::BumpLoadState() {
    RequireWritable();
    SaveWithNextCounter();
    AnnounceSave();
}

bool MacroStore::ReloadIfChanged() {
    if (loaded_ && !readError_ && ClampCounter(counter_->Read()) <= ours_) return false;
    Load();
    return true;
}

std::shared_ptr<M2::Macro> MacroStore::Find(std::u16string_view idOrName) {
    if (idOrName.empty()) return nullptr;
    const M2::Macros& list = GetMacros();
    for (const auto& macro : list.macros) {
        if (macro->id.value == idOrName) return macro;
    }
    for (const auto& macro : list.macros) {
        if (macro->name == idOrName) return macro;
    }
    return nullptr;
}

void MacroStore::Modify(const std::function<void(M2::Macros&)>& change) {
    // Another copy's save is taken in first, so that this save does not write over it.
    try {
        ReloadIfChanged();
    } catch (const StoreError& e) {
        throw StoreError(FormatMessage(msg::kKeptUnreadable, {PathText(MacrosPath()), e.message()}));
    }
    M2::Macros& list = *macros_;
    const ListSnapshot before(list);
    // The list in memory stays what the file holds: a change that fails or cannot be saved is
    // undone.
    try {
        change(list);
        SaveWithNextCounter();
    } catch (...) {
        before.Restore(list);
        throw;
    }
    AnnounceSave();
}

void MacroStore::AddOrReplace(std::shared_ptr<M2::Macro> macro) {
    AddOrReplace(std::vector<std::shared_ptr<M2::Macro>>{std::move(macro)});
}

void MacroStore::AddOrReplace(const std::vector<std::shared_ptr<M2::Macro>>& macros) {
    Modify([&](M2::Macros& list) {
        for (const auto& macro : macros) {
            if (macro->id.value.empty()) macro->id.value = NewMacroId();
            const auto& items = list.macros.items();
            const auto same = std::find_if(items.begin(), items.end(),
                                           [&](const auto& held) { return held->id.value == macro->id.value; });
            if (same == items.end()) {
                list.macros.Add(macro);
            } else {
                const auto index = static_cast<std::size_t>(same - items.begin());
                list.macros.Remove(index);
                list.macros.Insert(index, macro);
            }
        }
    });
}

std::shared_ptr<M2::Macro> MacroStore::Remove(std::u16string_view idOrName) {
    std::shared_ptr<M2::Macro> removed;
    Modify([&](M2::Macros& list) {
        const auto macro = Find(idOrName);
        if (!macro) throw StoreError(FormatMessage(msg::kMacroNotFound, {idOrName}));
        const auto& items = list.macros.items();
        const auto index = static_cast<std::size_t>(std::find(items.begin(), items.end(), macro) - items.begin());
        removed = list.macros.Remove(index);
    });
    return removed;
}

std::vector<std::u16string> MacroStore::TakeNotices() {
    std::vector<std::u16string> taken;
    taken.swap(notices_);
    return taken;
}

}  // namespace qm::macros
