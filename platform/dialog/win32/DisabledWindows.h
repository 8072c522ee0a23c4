#pragma once

#include "platform/windows/WindowsApi.h"

#include <vector>

namespace qel::windows {

/// Disables every other visible window of the thread for as long as it lives: a spreadsheet has one a book.
class DisabledWindows {
public:
    explicit DisabledWindows(HWND dialog);
    ~DisabledWindows();
    DisabledWindows(const DisabledWindows&) = delete;
    DisabledWindows& operator=(const DisabledWindows&) = delete;

private:
    static BOOL CALLBACK Disable(HWND window, LPARAM self);

    HWND dialog_;
    std::vector<HWND> windows_;
};

} // namespace qel::windows
