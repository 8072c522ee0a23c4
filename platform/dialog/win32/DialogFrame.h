#pragma once

#include "platform/dialog/win32/ControlsApi.h"

#include <exception>
#include <functional>
#include <optional>

namespace qel::windows {

/// A dialog's window without its controls, and the loop that runs while it is shown.
class DialogFrame {
public:
    /// Gets the window's messages; without an answer the system treats them as any dialog's.
    using Handler = std::function<std::optional<LRESULT>(UINT message, WPARAM word, LPARAM value)>;

    DialogFrame(bool isRightToLeft, Handler handler);
    ~DialogFrame();
    DialogFrame(const DialogFrame&) = delete;
    DialogFrame& operator=(const DialogFrame&) = delete;

    HWND Window() const { return window_; }
    bool IsShown() const { return ::IsWindowVisible(window_) != FALSE; }
    /// From when the window stands with its first focus until it is ended.
    bool IsRunning() const { return isRunning_; }
    void Resize(SIZE insideFrame) const;

    /// No message reaches the handler any more.
    void Silence() { handler_ = nullptr; }

    /// Takes back an End of before.
    void Begin() { isEnded_ = false; }
    /// Shows the window before its owner, which waits with every other window of the thread, until End; not
    /// at all when that was called since Begin. `beforeClick` is told the window that is about to get a
    /// click. Raises what a handler raised, which ends the dialog.
    void RunModal(HWND firstFocus, const std::function<void(HWND)>& beforeClick);
    void End();

private:
    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM word, LPARAM value);
    void Pump(const std::function<void(HWND)>& beforeClick);
    void Centre() const;

    Handler handler_;
    HWND window_ = nullptr;
    bool isEnded_ = false, isRunning_ = false;
    std::exception_ptr failure_;
};

/// The window that called: the thread's active one, otherwise a visible one of its own; null for none.
HWND CallingWindow();

} // namespace qel::windows
