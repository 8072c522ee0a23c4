#include "platform/dialog/win32/DialogFrame.h"

#include "platform/dialog/win32/CarriedPointer.h"
#include "platform/dialog/win32/DisabledWindows.h"

#include <algorithm>
#include <utility>

namespace qel::windows {

namespace {

/// A dialog template without controls. The zeros after it stand for their count, menu, class and caption.
struct EmptyTemplate {
    DLGTEMPLATE header = {};
    WORD menu = 0, windowClass = 0, caption = 0;
};

bool IsClick(UINT message) {
    return message == WM_LBUTTONDOWN || message == WM_RBUTTONDOWN || message == WM_NCLBUTTONDOWN ||
           message == WM_NCRBUTTONDOWN;
}

} // namespace

DialogFrame::DialogFrame(bool isRightToLeft, Handler handler) : handler_(std::move(handler)) {
    EmptyTemplate empty;
    empty.header.style = WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME;
    empty.header.dwExtendedStyle = isRightToLeft ? WS_EX_LAYOUTRTL : 0;
    window_ = ::CreateDialogIndirectParamW(::GetModuleHandleW(nullptr), &empty.header, CallingWindow(),
                                           &DialogFrame::Procedure, reinterpret_cast<LPARAM>(this));
}

DialogFrame::~DialogFrame() {
    ::SetWindowLongPtrW(window_, DWLP_USER, 0);
    ::DestroyWindow(window_);
}

void DialogFrame::Resize(SIZE insideFrame) const {
    RECT area = {0, 0, insideFrame.cx, insideFrame.cy};
    ::AdjustWindowRectEx(&area, static_cast<DWORD>(::GetWindowLongPtrW(window_, GWL_STYLE)), FALSE,
                         static_cast<DWORD>(::GetWindowLongPtrW(window_, GWL_EXSTYLE)));
    ::SetWindowPos(window_, nullptr, 0, 0, area.right - area.left, area.bottom - area.top,
                   SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

LONG DialogFrame::LeftIn(const RECT& around, LONG width) const {
    if (side_) {
        return *side_ == WindowSide::Left ? around.left : around.right - width;
    }
    return (around.left + around.right - width) / 2;
}

void DialogFrame::Place() const {
    const HWND owner = ::GetWindow(window_, GW_OWNER);
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof(monitor);
    ::GetMonitorInfoW(::MonitorFromWindow(owner != nullptr ? owner : window_, MONITOR_DEFAULTTOPRIMARY),
                      &monitor);
    const RECT& work = monitor.rcWork;
    RECT around = work;
    if (owner != nullptr && ::IsIconic(owner) == FALSE) {
        ::GetWindowRect(owner, &around);
    }
    RECT area = {};
    ::GetWindowRect(window_, &area);
    const LONG width = area.right - area.left;
    const LONG height = area.bottom - area.top;
    // Inside the screen; the top left corner is always visible.
    const LONG left = std::max(std::min(LeftIn(around, width), work.right - width), work.left);
    const LONG top =
        std::max(std::min((around.top + around.bottom - height) / 2, work.bottom - height), work.top);
    ::SetWindowPos(window_, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void DialogFrame::RunModal(HWND firstFocus, const std::function<void(HWND)>& beforeClick) {
    if (!isEnded_) {
        const DisabledWindows others(window_);
        Place();
        ::ShowWindow(window_, SW_SHOW);
        ::SetForegroundWindow(window_);
        ::SendMessageW(window_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(firstFocus), TRUE);
        isRunning_ = true;
        Pump(beforeClick);
        isRunning_ = false;
    } // enable the owner before the dialog disappears, so that it becomes active again
    ::ShowWindow(window_, SW_HIDE);
    if (failure_) {
        std::rethrow_exception(std::exchange(failure_, nullptr));
    }
}

void DialogFrame::Pump(const std::function<void(HWND)>& beforeClick) {
    while (!isEnded_) {
        MSG message = {};
        const BOOL got = ::GetMessageW(&message, nullptr, 0, 0);
        if (got <= 0) { // the thread is ending: post the message again once the dialog is gone
            ::SendMessageW(window_, WM_CLOSE, 0, 0);
            ::PostQuitMessage(static_cast<int>(message.wParam));
            return;
        }
        if (IsClick(message.message)) {
            beforeClick(message.hwnd);
        }
        if (::IsDialogMessageW(window_, &message) != FALSE) {
            continue;
        }
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
    }
}

void DialogFrame::End() {
    isEnded_ = true;
    ::PostMessageW(window_, WM_NULL, 0, 0); // wakes the loop
}

INT_PTR CALLBACK DialogFrame::Procedure(HWND window, UINT message, WPARAM word, LPARAM value) {
    if (message == WM_INITDIALOG) {
        ::SetWindowLongPtrW(window, DWLP_USER, value);
        return FALSE;
    }
    auto* const self = CarriedPointer<DialogFrame>(::GetWindowLongPtrW(window, DWLP_USER));
    if (self == nullptr || self->window_ == nullptr || !self->handler_) {
        return FALSE;
    }
    try {
        const auto answer = self->handler_(message, word, value);
        if (answer) {
            ::SetWindowLongPtrW(window, DWLP_MSGRESULT, static_cast<LONG_PTR>(*answer));
        }
        return answer ? TRUE : FALSE;
    } catch (...) {
        self->failure_ = std::current_exception();
        self->End();
        return FALSE;
    }
}

namespace {

// Not a lambda: on 32-bit Windows its calling convention differs.
BOOL CALLBACK TakeVisible(HWND window, LPARAM result) {
    if (::IsWindowVisible(window) == FALSE || ::IsWindowEnabled(window) == FALSE) {
        return TRUE;
    }
    *CarriedPointer<HWND>(result) = window;
    return FALSE;
}

} // namespace

HWND CallingWindow() {
    if (const HWND active = ::GetActiveWindow(); active != nullptr) {
        return active;
    }
    HWND found = nullptr;
    ::EnumThreadWindows(::GetCurrentThreadId(), TakeVisible, reinterpret_cast<LPARAM>(&found));
    return found;
}

} // namespace qel::windows
