#include "platform/dialog/win32/AlwaysOnTop.h"

namespace qel::windows {

std::int32_t SetAlwaysOnTop(HWND window, bool onTop) {
    const BOOL answer =
        ::SetWindowPos(window, onTop ? HWND_TOPMOST : HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    return onTop ? answer : 0;
}

} // namespace qel::windows
