#pragma once

#include "platform/value/AutomationError.h"
#include "platform/windows/WindowsApi.h"

namespace qel::windows {

/// The Err.Number that a macro sees for a result code: the platform's own number where the code stands for
/// one (0x800A0CB3 is 3251, DISP_E_TYPEMISMATCH is 13), otherwise the code itself.
[[nodiscard]] std::int32_t NumberOfResult(HRESULT result);

/// The result code for such a number.
[[nodiscard]] HRESULT ResultOfNumber(std::int32_t number);

/// The error of a call that returned `result`, with the description and source of the thread's error object.
/// Without an error object: the system's text for the code, or `what` and the code.
[[nodiscard]] AutomationError FailureOf(HRESULT result, const std::string& what);

/// The error that an Invoke reported. Frees the texts of `details`.
[[nodiscard]] AutomationError FailureOf(EXCEPINFO& details, const std::string& what);

/// Raises an error when `result` is a failure.
void Check(HRESULT result, const char* what);

} // namespace qel::windows
