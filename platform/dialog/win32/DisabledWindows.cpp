#include "platform/dialog/win32/DisabledWindows.h"

#include "platform/dialog/win32/CarriedPointer.h"

namespace qel::windows {

DisabledWindows::DisabledWindows(HWND dialog) : dialog_(dialog) {
    ::EnumThreadWindows(::GetCurrentThreadId(), &DisabledWindows::Disable, reinterpret_cast<LPARAM>(this));
}

DisabledWindows::~DisabledWindows() {
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
    disabled.windows_.push_back(window);
    ::EnableWindow(window, FALSE);
    return TRUE;
}

} // namespace qel::windows
