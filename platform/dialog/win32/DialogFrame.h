#pragma once

#include "platform/dialog/DialogToolkit.h"
#include "platform/dialog/win32/ControlsApi.h"

#include <exception>
#include <functional>
#include <optional>

namespace qel::windows {

/// A dialog's window without its controls, and its modal message loop.
class DialogFrame {
public:
    /// Handles the window's messages. Nullopt leaves a message to the system's default.
    using Handler = std::function<std::optional<LRESULT>(UINT message, WPARAM word, LPARAM value)>;

    DialogFrame(bool isRightToLeft, Handler handler);
    ~DialogFrame();
    DialogFrame(const DialogFrame&) = delete;
    DialogFrame& operator=(const DialogFrame&) = delete;

    HWND Window() const { return window_; }
    bool IsShown() const { return ::IsWindowVisible(window_) != FALSE; }
    /// True from the window's first focus until End.
    bool IsRunning() const { return isRunning_; }
    void Resize(SIZE insideFrame) const;

    /// Stops passing messages to the handler.
    void Silence() { handler_ = nullptr; }

    /// Resets an earlier End.
    void Begin() { isEnded_ = false; }
    /// From now on the window is shown at that side of its owner, not in front of it.
    void StandAt(WindowSide side) { side_ = side; }
    /// Shows the window in front of its owner until End, with the thread's other windows disabled. Returns at
    /// once when End was called after Begin. `beforeClick` is called with a window before it gets a click. An
    /// exception from a handler ends the dialog and is passed on.
    void RunModal(HWND firstFocus, const std::function<void(HWND)>& beforeClick);
    void End();

private:
    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM word, LPARAM value);
    void Pump(const std::function<void(HWND)>& beforeClick);
    /// Where it stands in the owner's or the screen's area.
    LONG LeftIn(const RECT& around, LONG width) const;
    void Place() const;

    Handler handler_;
    HWND window_ = nullptr;
    std::optional<WindowSide> side_;
    bool isEnded_ = false, isRunning_ = false;
    std::exception_ptr failure_;
};

/// The thread's active window, or else one of its visible windows, or null.
HWND CallingWindow();

} // namespace qel::windows
