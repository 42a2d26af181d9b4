// The COM boundary: no C++ exception leaves a method OneNote calls. Every method body runs inside
// Guarded, which turns an escaping exception into an HRESULT, hands the caller an ErrorInfo
// object with the failure's text (SetErrorInfo) and writes the failure to the host log.
#pragma once

#include "addin/win32.h"

#include <string>
#include <string_view>

namespace qm::addin {

// A failure with its own HRESULT, raised by the add-in's code.
class ComFailure {
public:
    ComFailure(HRESULT hr, std::u16string text) : hr_(hr), text_(std::move(text)) {}
    HRESULT hr() const noexcept { return hr_; }
    const std::u16string& text() const noexcept { return text_; }

private:
    HRESULT hr_;
    std::u16string text_;
};

// Sets the thread's error information (an ErrorInfo with the description) and returns hr.
HRESULT ReportError(HRESULT hr, std::u16string_view description) noexcept;

// Called inside a catch block: the HRESULT for the exception being handled, reported as above and
// logged with `where`.
HRESULT FailFromCurrentException(std::u16string_view where) noexcept;

template <class Body>
HRESULT Guarded(std::u16string_view where, Body&& body) noexcept {
    try {
        return body();
    } catch (...) {
        return FailFromCurrentException(where);
    }
}

}  // namespace qm::addin
