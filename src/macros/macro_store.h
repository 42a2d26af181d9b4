// The macro store: the user's macro list "macros2.xml" in the per-user folder, loaded once and
// kept in memory, and the load counter that tells running copies of Quillmark apart.
//
// Files the store writes hold exactly the bytes of the serialised document (declaration naming
// "utf-16", indented) as UTF-16 little-endian without a byte order mark, and every save goes to a
// temporary file that replaces the old one only when complete. A file that exists but cannot be
// read is reported and never written over: until it reads, the store refuses to save, so a list
// that failed to load can never be saved as an empty list over the user's macros.
//
// Counter: every change is saved through BumpLoadState, which raises the counter and stores the
// new value in the list's "loadState". A copy whose own value is behind the stored counter knows
// that another copy has saved since, and ReloadIfChanged reads the file again. The counter stays
// within the range of the "loadState" attribute: at 2147483647 it stops rising.
//
// Defaults the store gives the elements it creates: a list's "display" defaults to "category"
// (the macro menu grouped by category); a macro's "id" defaults to "" (so an id, once given, is
// always written) and its "version" to kMacroVersion (so the current version is not written, and
// a macro without a "version" attribute is of the current version).
#pragma once

#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "macros/load_counter.h"
#include "macros/m2_schema.h"
#include "macros/user_folder.h"

namespace qm::macros {

// The macro format version this build writes and runs. A macro whose "version" is larger was
// written by a newer Quillmark.
inline constexpr std::int32_t kMacroVersion = 1;

inline constexpr const char* kMacrosFileName = "macros2.xml";
inline constexpr const char* kFirstFormatFileName = "macros.xml";

// A failure of the store or of a stored document, with its complete user-facing message.
class StoreError : public std::exception {
public:
    explicit StoreError(std::u16string message);
    const std::u16string& message() const noexcept { return message_; }
    const char* what() const noexcept override { return utf8_.c_str(); }

private:
    std::u16string message_;
    std::string utf8_;
};

// A path as system text, for messages.
std::u16string PathText(const std::filesystem::path& path);

// Stored documents. Reading: the decoded text, or nothing when the file does not exist or holds
// only blanks; a file that exists but cannot be read raises StoreError. Writing: UTF-16LE without a byte order mark,
// replacing the file whole (the folder is created when missing); raises StoreError.
// The decoded text of a document file in any of the encodings DecodeXmlBytes takes; StoreError
// naming the file when it cannot be read (or does not exist).
std::u16string ReadDocumentFile(const std::filesystem::path& path);
std::optional<std::u16string> ReadStoredDocument(const std::filesystem::path& path);
void WriteStoredDocument(const std::filesystem::path& path, std::u16string_view text);
// Raises xml::XmlError (at the element) unless the document's first element is named `expected`;
// a stored document of another kind is as unreadable as a broken one.
void CheckRootElement(std::u16string_view text, std::u16string_view expected);

// Elements as the store creates them, with the defaults described above.
std::shared_ptr<M2::Macros> NewMacroList();
std::shared_ptr<M2::Macro> NewMacro();
// Gives a macro read as part of a list (created by the reader, with the element's own defaults)
// the defaults of NewMacro. A "version" of 0 or none at all becomes kMacroVersion.
void ApplyMacroDefaults(M2::Macro& macro);
// A fresh identity: "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}", upper-case hexadecimal, random.
std::u16string NewMacroId();

// What a macro document holds: a whole list, or one macro read by the "Edit XML" import rule.
// Exactly one of the two is set. Raises xml::XmlError for text that does not read, or whose root
// is neither "Macros" nor "Macro".
struct MacroDocument {
    std::shared_ptr<M2::Macros> list;
    std::shared_ptr<M2::Macro> macro;
};
MacroDocument ReadMacroDocument(std::u16string_view text);

// Macros to be imported into the store: every macro has an id (a fresh one when it came without),
// and newerVersion tells that at least one was written by a newer Quillmark (the caller shows
// msg::kNewerMacroVersion and imports them anyway).
struct MacroImport {
    std::vector<std::shared_ptr<M2::Macro>> macros;
    bool newerVersion = false;
};
MacroImport ReadMacroImport(std::u16string_view text);

class MacroStore {
public:
    // The store over the per-user folder, with the platform's load counter.
    MacroStore();
    explicit MacroStore(std::filesystem::path folder);
    MacroStore(std::filesystem::path folder, std::unique_ptr<LoadCounter> counter);
    MacroStore(const MacroStore&) = delete;
    MacroStore& operator=(const MacroStore&) = delete;

    const std::filesystem::path& folder() const noexcept { return folder_; }
    std::filesystem::path MacrosPath() const { return folder_ / kMacrosFileName; }

    // The list, loaded from "macros2.xml" on the first call; a missing file is an empty list and
    // nothing is written. While the file has never loaded, each call tries again and raises
    // StoreError naming the file (and the line and column of bad XML). The object is the same for
    // the life of the store; a reload replaces its content.
    M2::Macros& GetMacros();

    // Writes the list as it is to "macros2.xml" (without touching the counter). Raises StoreError
    // when the file cannot be written, or when it could not be read (it is then left as it is).
    void SaveMacros();

    // The larger of the stored counter and the list's "loadState".
    std::int32_t ReadLoadState();

    // Raises the counter by one, stores it in the list's "loadState" and saves the list; the
    // stored counter is written once the list is saved, so a failed save never announces a change.
    void BumpLoadState();

    // Reads the list again when another copy has saved since this one loaded it (the stored
    // counter is ahead of ours), or when the last read failed; call it before the list is shown or
    // run. True when the list was (re)read. On failure the list keeps its content and StoreError
    // is raised; saves are refused until a read succeeds.
    bool ReloadIfChanged();

    // The macro with this id, else the first one with exactly this name; null when none (and for
    // the empty text).
    std::shared_ptr<M2::Macro> Find(std::u16string_view idOrName);

    // Changes, each brought up to date first (ReloadIfChanged) and saved at once through
    // BumpLoadState. When the save fails the list is put back as it was and StoreError is raised.
    //
    // AddOrReplace: a macro without an id gets a fresh one; a macro whose id is in the list takes
    // that macro's place, any other is appended.
    void AddOrReplace(std::shared_ptr<M2::Macro> macro);
    void AddOrReplace(const std::vector<std::shared_ptr<M2::Macro>>& macros);
    // Removes the macro Find gives and returns it; StoreError (msg::kMacroNotFound) when none.
    std::shared_ptr<M2::Macro> Remove(std::u16string_view idOrName);
    // Any other change to the list's content or options.
    void Modify(const std::function<void(M2::Macros&)>& change);

    // Notices gathered while loading, for the user (the first-format file that cannot be
    // migrated); taking them empties the list.
    std::vector<std::u16string> TakeNotices();

private:
    void Load();
    void RequireWritable();
    void Write();
    void SaveWithNextCounter();
    void AnnounceSave();

    std::filesystem::path folder_;
    std::unique_ptr<LoadCounter> counter_;
    std::shared_ptr<M2::Macros> macros_;
    bool loaded_ = false;                 // a read has succeeded (or found no file)
    std::optional<std::u16string> readError_;  // the last read failed: why
    std::int32_t ours_ = 0;               // the counter value of the list we hold
    std::vector<std::u16string> notices_;
};

}  // namespace qm::macros
