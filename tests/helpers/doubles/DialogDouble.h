#pragma once

#include "platform/dialog/DialogToolkit.h"

#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace qel::test {

/// An act that a person could not do: the control is missing or disabled, or lacks the item.
class ImpossibleAct : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

/// A dialog in memory, and the person who uses it.
class DialogDouble : public Dialog, public TranslatableForm {
public:
    DialogDouble(const FormDesign& design, bool isRightToLeft, DialogEvents& events);

    // What a person does. Raises ImpossibleAct when the control does not allow it.
    void Press(std::string_view control);
    void Tick(std::string_view control, bool isChecked);
    /// The first item of a combo or list box that holds the text.
    void Choose(std::string_view control, std::string_view part);
    /// Types into a text box and leaves it.
    void Type(std::string_view control, const std::string& text);
    /// Types into a bound list and chooses the first matching row. Returns the number of matches.
    std::size_t Find(std::string_view control, std::string_view typed);

    // What a person sees.
    const std::vector<std::string>& Items(std::string_view control) const { return At(control).items; }
    const ListSource& Rows(std::string_view control) const { return *At(control).rows; }
    const std::string& Caption() const { return caption_; }
    const std::string& HelpFile() const { return helpFile_; }
    bool IsHidden() const { return isHidden_; }
    const FileQuestion& AskedForFile() const { return asked_; }
    std::string_view Focus() const { return focus_; }
    /// The controls that the program filled, in order, without immediate repetitions.
    std::vector<std::string> TakeFilled() { return std::exchange(filled_, {}); }

    std::string chosenFile;                       ///< the answer of the file dialog
    std::function<void(DialogDouble&)> beforeRun; ///< what the person does while the dialog is shown

    // Dialog
    /// Loads the dialog, lets the person act, and uses the close box unless the dialog is hidden already.
    void ShowModal() override;
    void Hide() override { isHidden_ = true; }
    /// The person alone closes the double.
    std::function<void()> Hider() override {
        return [] {};
    }
    TranslatableForm& Texts() override { return *this; }
    void SetHelpFile(const std::string& path) override { helpFile_ = path; }
    void SetEnabled(std::string_view control, bool isEnabled) override { At(control).isEnabled = isEnabled; }
    bool IsEnabled(std::string_view control) const override { return At(control).isEnabled; }
    void SetFocus(std::string_view control) override { focus_ = At(control).Name(); }
    std::string Text(std::string_view control) const override;
    void SetText(std::string_view control, const std::string& text) override;
    void SetSpokenName(std::string_view control, const std::string& name) override {
        At(control).spokenName = name;
    }
    bool IsChecked(std::string_view control) const override { return At(control).isChecked; }
    void SetChecked(std::string_view control, bool isChecked) override { At(control).isChecked = isChecked; }
    void SetItems(std::string_view control, const std::vector<std::string>& items) override;
    std::optional<std::size_t> Selected(std::string_view control) const override {
        return At(control).selected;
    }
    void Select(std::string_view control, std::optional<std::size_t> index) override;
    void Bind(std::string_view control, std::shared_ptr<const ListSource> rows) override;
    std::string AskForFile(std::string_view control, const FileQuestion& question) override;

    // TranslatableForm
    std::string Tag() const override { return std::to_string(design_.tag); }
    void SetCaption(const std::string& caption) override { caption_ = caption; }
    void SetFont(const DialogFont& font) override { font_ = font; }
    bool IsRightToLeft() const override { return isRightToLeft_; }
    std::vector<FormControl*> Controls() const override;

private:
    class Control : public FormControl {
    public:
        explicit Control(const ControlDesign& controlDesign)
            : design(&controlDesign), text(controlDesign.caption) {}

        std::string_view Name() const { return design->name; }
        std::string TypeName() const override;
        std::string GetText(TextProperty property) const override;
        void SetText(TextProperty property, const std::string& value) override;
        void SetFont(const DialogFont& /*font*/) override {}
        void SetAligment(std::int32_t value) override { aligment = value; }
        std::vector<FormItem*> Items() const override { return {}; }

        const ControlDesign* design;
        std::string text, spokenName;
        std::vector<std::string> items;
        std::shared_ptr<const ListSource> rows;
        std::optional<std::size_t> selected;
        std::int32_t aligment = -1;
        bool isEnabled = true, isChecked = false;
    };

    void RecordFilling(std::string_view control);
    Control& At(std::string_view control);
    const Control& At(std::string_view control) const;
    Control& Usable(std::string_view control, std::initializer_list<ControlKind> kinds);

    const FormDesign& design_;
    DialogEvents& events_;
    std::map<std::string, std::unique_ptr<Control>, std::less<>> controls_;
    std::string caption_, helpFile_;
    DialogFont font_;
    FileQuestion asked_;
    std::string_view focus_;
    std::vector<std::string> filled_;
    bool isRightToLeft_, isHidden_ = true;
};

/// Shows dialogs to a scripted person.
class ToolkitDouble : public DialogToolkit {
public:
    std::function<void(DialogDouble&)> person; ///< acts while a dialog is shown
    std::string chosenFile;                    ///< what the file dialog answers

    std::unique_ptr<Dialog> NewDialog(const FormDesign& design, bool isRightToLeft,
                                      DialogEvents& events) override;
};

} // namespace qel::test
