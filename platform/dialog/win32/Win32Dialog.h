#pragma once

#include "platform/dialog/win32/DialogControl.h"
#include "platform/dialog/win32/DialogFrame.h"

#include <memory>
#include <optional>
#include <vector>

namespace qel::windows {

/// A dialog of the system's own controls.
class Win32Dialog : public Dialog, private TranslatableForm {
public:
    Win32Dialog(const FormDesign& design, bool isRightToLeft, DialogEvents& events);
    ~Win32Dialog() override { frame_.Silence(); }
    Win32Dialog(const Win32Dialog&) = delete;
    Win32Dialog& operator=(const Win32Dialog&) = delete;

    void ShowModal() override;
    void Hide() override { frame_.End(); }
    TranslatableForm& Texts() override { return *this; }
    void SetHelpFile(const std::string& path) override { helpFile_ = path; }
    void SetEnabled(std::string_view control, bool isEnabled) override;
    bool IsEnabled(std::string_view control) const override;
    void SetFocus(std::string_view control) override;
    std::string Text(std::string_view control) const override;
    void SetText(std::string_view control, const std::string& text) override;
    bool IsChecked(std::string_view control) const override;
    void SetChecked(std::string_view control, bool isChecked) override;
    void SetItems(std::string_view control, const std::vector<std::string>& items) override;
    std::optional<std::size_t> Selected(std::string_view control) const override;
    void Select(std::string_view control, std::optional<std::size_t> index) override;
    void Bind(std::string_view control, std::shared_ptr<const ListSource> rows) override;
    std::string AskForFile(std::string_view control, const FileQuestion& question) override;

private:
    /// What waits until the focus has settled.
    struct Waiting {
        enum class Kind : std::uint8_t { Change, Leave } kind;
        DialogControl* control;
    };

    std::string Tag() const override;
    void SetCaption(const std::string& caption) override;
    void SetFont(const DialogFont& font) override;
    bool IsRightToLeft() const override { return isRightToLeft_; }
    std::vector<FormControl*> Controls() const override;

    void MakeControls();
    void LayOut();
    /// Raises 5 when there is none, or none of these kinds.
    DialogControl& Find(std::string_view control, std::initializer_list<ControlKind> kinds) const;
    DialogControl* WithId(int id) const;

    std::optional<LRESULT> OnMessage(UINT message, WPARAM word, LPARAM value);
    void OnCommand(int id, int code);
    void OnPressed(DialogControl& control);
    void OnClosed();
    void ShowHelp() const;
    void Wait(Waiting::Kind kind, DialogControl& control);
    void TellWaitingWhenReleased();
    bool IsButtonHeld() const;
    /// False when a handler led back to a field that was left.
    bool TellWaiting();
    bool HasLeft(const DialogControl& control) const;

    const FormDesign& design_;
    bool isRightToLeft_;
    DialogEvents& events_;
    std::string helpFile_;
    DialogFont font_;
    std::optional<FontMetrics> metrics_;
    DialogFrame frame_;
    std::vector<std::unique_ptr<DialogControl>> controls_; ///< end before the window that they stand on
    std::vector<Waiting> waiting_;
    HWND firstFocus_ = nullptr;
    int ownChanges_ = 0; ///< above 0 while the program changes a control
};

} // namespace qel::windows
