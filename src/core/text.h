// Text helpers: the system keeps every user-visible string as UTF-16 (char16_t); the terminal,
// command lines and files on Linux speak UTF-8. These are the only conversions between the two.
#pragma once

#include <string>
#include <string_view>

namespace qm {

// Invalid UTF-8 sequences become U+FFFD.
std::u16string FromUtf8(std::string_view utf8);

// Lone surrogates are written as U+FFFD so that the output is always valid UTF-8.
std::string ToUtf8(std::u16string_view utf16);

// ASCII-only conveniences for literals and numbers in system text.
std::u16string Ascii(std::string_view ascii);

}  // namespace qm
