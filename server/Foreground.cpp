#include "server/Foreground.h"

#include "platform/windows/WindowsApi.h"

namespace qel::server {

bool CanAskPerson() {
    HWND const foreground = ::GetForegroundWindow();
    return foreground != nullptr && ::IsWindowVisible(foreground) != 0 &&
           ::GetWindowThreadProcessId(foreground, nullptr) == ::GetCurrentThreadId();
}

} // namespace qel::server
