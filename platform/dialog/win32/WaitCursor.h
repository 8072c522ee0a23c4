#pragma once

#include "platform/windows/WindowsApi.h"

namespace qel::windows {

/// Shows the hourglass during its lifetime.
class WaitCursor {
public:
    WaitCursor() : before_(::SetCursor(::LoadCursorW(nullptr, IDC_WAIT))) {}
    ~WaitCursor() { ::SetCursor(before_); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

private:
    HCURSOR before_;
};

} // namespace qel::windows
