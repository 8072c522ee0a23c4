#include "platform/dialog/win32/DisabledWindows.h"

#include "platform/dialog/win32/CarriedPointer.h"

namespace qel::windows {

DisabledWindows::DisabledWindows(HWND dialog) : dialog_(dialog) {
    ::EnumThreadWindows(::GetCurrentThreadId(), &DisabledWindows::Disable, reinterpret_cast<LPARAM>(this));
    if (failure_) {
        EnableAll();
        std::rethrow_exception(failure_);
    }
}

DisabledWindows::~DisabledWindows() { EnableAll(); }

void DisabledWindows::EnableAll() const {
    for (HWND window : windows_) {
        ::EnableWindow(window, TRUE);
    }
}

BOOL CALLBACK DisabledWindows::Disable(HWND window, LPARAM self) {
    auto& disabled = *CarriedPointer<DisabledWindows>(self);
    if (window == disabled.dialog_ || ::IsWindowVisible(window) == FALSE ||
        ::IsWindowEnabled(window) == FALSE) {
        return TRUE;
    }
    try {
        disabled.windows_.push_back(window);
    } catch (...) { // the system calls this
        disabled.failure_ = std::current_exception();
        return FALSE;
    }
    ::EnableWindow(window, FALSE);
    return TRUE;
}

} // namespace qel::windows
