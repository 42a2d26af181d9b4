// A page handed to the notebook folder's UpdatePageContent in the form its files have: UTF-8 once
// converted, `<?xml version="1.0"?>` on a line of its own, elements indented by two spaces, no
// characters XML cannot carry, no character references, comments or processing instructions. A
// run sends its pages so, as the binding writes them. Such a page needs no binding: one pass checks
// that it is well-formed and takes what the hierarchy keeps of it, and the text is stored with
// only its name and last-modified time set. A page in any other form, or one the pass finds
// anything unusual in (not well-formed included), is bound and written anew instead, which
// reports what is wrong with it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "onenote/on_types.h"

namespace qm::onenote::detail {

struct GivenPage {
    std::u16string id;
    std::optional<std::u16string> name;       // the name attribute, when given
    std::optional<std::u16string> titleText;  // the title's plain text, when the page has a title
    ON::OptDateTime dateTime;
    ON::OptInt pageLevel;
    std::string bytes;  // the page as UTF-8
};

// The page, or nothing when it is not in the file form or the pass finds it unusual.
std::optional<GivenPage> ReadGivenPage(std::u16string_view xml);

// The page file: the page with its root's name and lastModifiedTime attributes set (each where the
// binding writes it: name after ID, lastModifiedTime after name) and a final line break.
// The name attribute is left out when there is no name.
std::string PageFileBytes(const GivenPage& page, const ON::String& name, const ON::DateTime& lastModified);

}  // namespace qm::onenote::detail
