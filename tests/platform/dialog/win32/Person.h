#pragma once

#include "platform/dialog/DialogToolkit.h"
#include "platform/dialog/win32/ControlsApi.h"

#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>

namespace qel::test {

/// Something that a person waited for did not happen.
class Disappointment : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A user in another thread or process than the dialog: presses keys, clicks, and reads the screen. Every
/// step waits until it is possible, and raises Disappointment after a minute.
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
    /// Moves to an item of a combo box or list box with the arrow keys.
    void Choose(const std::string& control, const std::string& item) const;
    /// Clicks a button, check box or the arrow of a list, when it can be clicked.
    void Click(const std::string& control) const;
    /// Presses the mouse on a button and releases it beside it, which is not a click.
    void PressAndSlipOff(const std::string& button) const;
    void UseCloseBox() const;

    std::string Read(const std::string& control) const;
    /// Waits until the control has a text, because reading overtakes pending clicks and keys.
    std::string ReadWhenShown(const std::string& control) const;
    bool IsEnabled(const std::string& control) const;
    bool IsTicked(const std::string& control) const;
    /// Waits until the control shows the text.
    void Expect(const std::string& control, const std::string& text) const;

    /// Waits for a message box, presses the button with that id, and returns the box's text. The box may
    /// appear before the dialog.
    static std::string Answer(int button);
    /// The text of the open message box, or empty.
    static std::string TextOfBox();
    /// Chooses a file in the system's dialog for opening one.
    void ChooseFile(const std::string& path) const;
    /// Waits until the dialog is gone.
    void ExpectGone() const;

    /// Makes the call while another thread acts in the dialog that it opens. Of a disappointed person's
    /// dialog nobody can say how it would end, so the program ends, and prints `notes`. Raises what the call
    /// raises.
    static void ActDuring(const std::function<void()>& call, const std::function<void()>& act,
                          const std::string& notes);

    static void WaitUntil(const std::string& what, const std::function<bool()>& holds);

private:
    void Focus(const std::string& control) const;
    /// The message box or system dialog in front of the dialog.
    HWND WaitForPopup() const;

    const FormDesign& design_;
    HWND dialog_ = nullptr;
};

} // namespace qel::test
