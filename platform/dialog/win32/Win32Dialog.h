#pragma once

#include "platform/dialog/DesignedDialog.h"
#include "platform/dialog/win32/DialogControl.h"
#include "platform/dialog/win32/DialogFrame.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace qel::windows {

/// A dialog of the system's own controls.
class Win32Dialog : public DesignedDialog<DialogControl> {
public:
    Win32Dialog(const FormDesign& design, bool isRightToLeft, DialogEvents& events);
    ~Win32Dialog() override;
    Win32Dialog(const Win32Dialog&) = delete;
    Win32Dialog& operator=(const Win32Dialog&) = delete;

    void ShowModal() override;
    /// As ShowModal: the spreadsheet's message loop would not move the focus between the controls.
    void ShowBeside(WindowSide side) override;
    void Hide() override { frame_.End(); }
    std::function<void()> Hider() override;
    void SetHelpFile(const std::string& path) override { helpFile_ = path; }
    void SetEnabled(std::string_view control, bool isEnabled) override;
    void SetFocus(std::string_view control) override;
    std::string AskForFile(std::string_view control, const FileQuestion& question) override;

private:
    /// An event that waits until the focus has settled.
    struct Waiting {
        enum class Kind : std::uint8_t { Change, Leave } kind;
        DialogControl* control;
    };

    void SetCaption(const std::string& caption) override;
    void SetFont(const DialogFont& font) override;

    void MakeControls();
    void LayOut();
    DialogControl* WithId(int id) const;

    std::optional<LRESULT> OnMessage(UINT message, WPARAM word, LPARAM value);
    void OnCommand(int id, int code);
    void OnPressed(DialogControl& control);
    void OnClosed();
    void ShowHelp() const;
    void Wait(Waiting::Kind kind, DialogControl& control);
    void TellWaitingWhenReleased();
    bool IsButtonHeld() const;
    bool IsBehindBox() const { return frame_.IsRunning() && ::IsWindowEnabled(frame_.Window()) == FALSE; }
    /// False when a handler moved the focus back to the field that was left, or shows something new.
    bool TellWaiting();
    bool HasLeft(const DialogControl& control) const;

    std::string helpFile_;
    DialogFont font_;
    std::optional<FontMetrics> metrics_;
    DialogFrame frame_;
    std::vector<Waiting> waiting_;
    HWND firstFocus_ = nullptr;
    bool isMovingFocus_ = false; ///< the program is
};

} // namespace qel::windows
