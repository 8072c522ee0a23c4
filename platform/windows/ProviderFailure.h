#pragma once

#include "platform/value/AutomationError.h"
#include "platform/windows/WindowsApi.h"

namespace qel::windows {

/// The number that a macro's Err.Number shows for a result code: those that stand for one of the platform's
/// own numbers become it (0x800A0CB3 is 3251, DISP_E_TYPEMISMATCH is 13), every other code stays as it is.
std::int32_t NumberOfResult(HRESULT result);

/// The result code by which a caller sees that number.
HRESULT ResultOfNumber(std::int32_t number);

/// The failure of a call that returned `result`: number, and the description and source that the thread's
/// error object holds. Without one, the system's text for the code, or `what` and the code.
AutomationError FailureOf(HRESULT result, const std::string& what);

/// The failure that an Invoke reported; frees the texts of `details`.
AutomationError FailureOf(EXCEPINFO& details, const std::string& what);

/// Raises the failure when the result is one.
void Check(HRESULT result, const char* what);

} // namespace qel::windows
