// Message templates carry numbered placeholders "[1]", "[2]", "[3]" filled by position; a
// placeholder may occur more than once.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace qm {

std::u16string FormatMessage(std::u16string_view templ, std::initializer_list<std::u16string_view> args);

}  // namespace qm
