#include "core/error.h"

#include "core/text.h"

namespace qm {

MacroError::MacroError(std::u16string message) : message_(std::move(message)), utf8_(ToUtf8(message_)) {}

ParseError::ParseError(std::u16string message) : message_(std::move(message)), utf8_(ToUtf8(message_)) {}

}  // namespace qm
