#pragma once

#include "platform/windows/WindowsApi.h"

#include <exception>
#include <vector>

namespace qel::windows {

/// Disables the thread's other visible windows during its lifetime: a spreadsheet has one per book.
class DisabledWindows {
public:
    explicit DisabledWindows(HWND dialog);
    ~DisabledWindows();
    DisabledWindows(const DisabledWindows&) = delete;
    DisabledWindows& operator=(const DisabledWindows&) = delete;

private:
    static BOOL CALLBACK Disable(HWND window, LPARAM self);
    void EnableAll() const;

    HWND dialog_;
    std::vector<HWND> windows_;
    std::exception_ptr failure_;
};

} // namespace qel::windows
