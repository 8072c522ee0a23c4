#pragma once

#include "platform/dialog/DialogToolkit.h"
#include "platform/dialog/win32/ControlsApi.h"

#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>

namespace qel::test {

/// What a person waited for did not come.
class Disappointment : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Somebody before the screen, in another thread or process than the dialog: keys, clicks, and what is to be
/// seen. Everything is waited for, however slow the machine is, and raises Disappointment when it never
/// comes.
class Person {
public:
    /// Waits until a dialog of this design is open.
    explicit Person(const FormDesign& design);

    HWND Dialog() const { return dialog_; }
    HWND Control(const std::string& name) const;

    /// Presses a key while the control has the focus.
    void Key(const std::string& control, WORD key) const;
    /// Replaces the text of a text box or bound list by typing.
    void Type(const std::string& control, const std::string& text) const;
    /// Goes to an item of a combo box by its arrow keys, or of a list box.
    void Choose(const std::string& control, const std::string& item) const;
    /// Clicks a button, check box or the arrow of a list, when it can be clicked.
    void Click(const std::string& control) const;
    /// Presses a button and lets it go beside it, which is no click.
    void PressAndSlipOff(const std::string& button) const;
    void UseCloseBox() const;

    std::string Read(const std::string& control) const;
    /// Waits until the control shows something: a reading overtakes clicks and keys that are on their way.
    std::string ReadWhenShown(const std::string& control) const;
    bool IsEnabled(const std::string& control) const;
    bool IsTicked(const std::string& control) const;
    /// Waits until the control shows the text.
    void Expect(const std::string& control, const std::string& text) const;

    /// Waits for a message box, answers it with the button of that number, and gives its text. A box may
    /// stand there before the dialog does.
    static std::string Answer(int button);
    /// The text of the message box that stands there now; empty for none.
    static std::string TextOfBox();
    /// Chooses a file in the system's dialog for opening one.
    void ChooseFile(const std::string& path) const;
    /// Waits until the dialog is gone.
    void ExpectGone() const;

    static void WaitUntil(const std::string& what, const std::function<bool()>& holds);

private:
    void Focus(const std::string& control) const;
    /// The box or system dialog that stands before the dialog.
    HWND WaitForPopup() const;

    const FormDesign& design_;
    HWND dialog_ = nullptr;
};

} // namespace qel::test
