#include "onenote/onenote_api.h"

#include <array>

#include "core/format.h"
#include "core/text.h"
#include "onenote/messages.h"

namespace qm::onenote {

namespace {

constexpr std::array<ErrorText, 47> kErrorTexts{{
    {0x80042000, u"The XML is not well-formed."},
    {0x80042001, u"The XML is invalid."},
    {0x80042002, u"The section could not be created."},
    {0x80042003, u"The section could not be opened."},
    {0x80042004, u"The section does not exist."},
    {0x80042005, u"The page does not exist."},
    {0x80042006, u"The file does not exist."},
    {0x80042007, u"The image could not be inserted."},
    {0x80042008, u"The ink could not be inserted."},
    {0x80042009, u"The HTML could not be inserted."},
    {0x8004200A, u"The page could not be opened."},
    {0x8004200B, u"The section is read-only."},
    {0x8004200C, u"The page is read-only."},
    {0x8004200D, u"The outline text could not be inserted."},
    {0x8004200E, u"The page object does not exist."},
    {0x8004200F, u"The binary object does not exist."},
    {0x80042010, u"The last modified date does not match."},
    {0x80042011, u"The section group does not exist."},
    {0x80042012, u"The page does not exist in the section group."},
    {0x80042013, u"There is no active selection."},
    {0x80042014, u"The object does not exist."},
    {0x80042015, u"The notebook does not exist."},
    {0x80042016, u"The file could not be inserted."},
    {0x80042017, u"The name is invalid."},
    {0x80042018, u"The folder (section group) does not exist."},
    {0x80042019, u"The query is invalid."},
    {0x8004201A, u"The file already exists."},
    {0x8004201B, u"The section is encrypted and locked."},
    {0x8004201C, u"The action is disabled by a policy."},
    {0x8004201D, u"OneNote has not yet synchronized content."},
    {0x8004201E, u"The section is from OneNote 2007 or earlier."},
    {0x8004201F, u"The merge operation failed."},
    {0x80042020, u"The XML Schema is invalid."},
    {0x80042022, u"Content loss has occurred (from future versions of OneNote)."},
    {0x80042023, u"The action timed out."},
    {0x80042024, u"Audio recording is in progress."},
    {0x80042025, u"The linked-note state is unknown."},
    {0x80042026, u"No short name exists for the linked note."},
    {0x80042027, u"No friendly name exists for the linked note."},
    {0x80042028, u"The linked note URI is invalid."},
    {0x80042029, u"The linked note thumbnail is invalid."},
    {0x8004202A, u"The importation of linked note thumbnail failed."},
    {0x8004202B, u"Unread highlighting is disabled for the notebook."},
    {0x8004202C, u"The selection is invalid."},
    {0x8004202D, u"The conversion failed."},
    {0x8004202E, u"Edit failed in the Recycle Bin."},
    {0x80042030, u"A modal dialog is blocking the app."},
}};

std::u16string TextFor(std::uint32_t code) {
    if (const auto text = OneNoteErrorText(code)) return std::u16string(*text);
    static constexpr char16_t kHex[] = u"0123456789ABCDEF";
    std::u16string hex;
    for (int shift = 28; shift >= 0; shift -= 4) hex += kHex[(code >> shift) & 0xF];
    return FormatMessage(msg::kUnknownOneNoteError, {hex});
}

}  // namespace

std::optional<std::u16string_view> OneNoteErrorText(std::uint32_t code) {
    for (const ErrorText& entry : kErrorTexts) {
        if (entry.code == code) return entry.text;
    }
    return std::nullopt;
}

OneNoteError::OneNoteError(std::uint32_t code) : OneNoteError(code, TextFor(code)) {}

OneNoteError::OneNoteError(std::uint32_t code, std::u16string text)
    : code_(code), text_(std::move(text)), utf8_(ToUtf8(text_)) {}

}  // namespace qm::onenote
