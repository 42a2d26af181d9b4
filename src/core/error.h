// The one error kind of a running macro: every run-time failure a macro can cause is raised as a
// MacroError carrying its complete user-facing message and the macro-error code.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace qm {

class MacroError : public std::exception {
public:
    static constexpr std::int32_t kCode = -96;  // 0xFFFFFFA0

    explicit MacroError(std::u16string message);

    const std::u16string& message() const noexcept { return message_; }
    std::int32_t code() const noexcept { return kCode; }
    const char* what() const noexcept override { return utf8_.c_str(); }

private:
    std::u16string message_;
    std::string utf8_;
};

// A failure while turning expression text into a tree; the message is one of the parser's.
class ParseError : public std::exception {
public:
    explicit ParseError(std::u16string message);

    const std::u16string& message() const noexcept { return message_; }
    const char* what() const noexcept override { return utf8_.c_str(); }

private:
    std::u16string message_;
    std::string utf8_;
};

}  // namespace qm
