#pragma once

#include "platform/dialog/DesignedControl.h"
#include "platform/value/AutomationError.h"

#include <algorithm>
#include <initializer_list>

namespace qel {

/// What a dialog of every toolkit does alike: it finds its controls by name, checks that their kind has the
/// operation, and marks what the program changes. `Control` is the toolkit's DesignedControl.
template <class Control>
class DesignedDialog : public Dialog, protected TranslatableForm {
public:
    TranslatableForm& Texts() override { return *this; }

    bool IsEnabled(std::string_view control) const override { return Find(control, shown).IsEnabled(); }

    std::string Text(std::string_view control) const override {
        using enum ControlKind;
        return Find(control, {Label, TextBox, Button, CheckBox, ComboBox, BoundList, ListBox}).Content();
    }

    void SetText(std::string_view control, const std::string& text) override {
        using enum ControlKind;
        const OwnChange own(*this);
        Find(control, {Label, TextBox, Button, CheckBox}).SetContent(text);
    }

    void SetSpokenName(std::string_view control, const std::string& name) override {
        Find(control, shown).SetText(TextProperty::ToolTipText, name);
    }

    bool IsChecked(std::string_view control) const override {
        return Find(control, {ControlKind::CheckBox}).IsChecked();
    }

    void SetChecked(std::string_view control, bool isChecked) override {
        const OwnChange own(*this);
        Find(control, {ControlKind::CheckBox}).SetChecked(isChecked);
    }

    void SetItems(std::string_view control, const std::vector<std::string>& items) override {
        const OwnChange own(*this);
        Find(control, {ControlKind::ComboBox, ControlKind::ListBox}).SetItems(items);
    }

    std::optional<std::size_t> Selected(std::string_view control) const override {
        return Find(control, lists).Selected();
    }

    void Select(std::string_view control, std::optional<std::size_t> index) override {
        const OwnChange own(*this);
        Find(control, lists).Select(index);
    }

    void Bind(std::string_view control, std::shared_ptr<const ListSource> rows) override {
        const OwnChange own(*this);
        Find(control, {ControlKind::BoundList}).Search()->Bind(std::move(rows));
    }

protected:
    using Kinds = std::initializer_list<ControlKind>;
    static constexpr Kinds lists = {ControlKind::ComboBox, ControlKind::ListBox, ControlKind::BoundList};
    static constexpr Kinds focusable = {ControlKind::TextBox,  ControlKind::Button,    ControlKind::CheckBox,
                                        ControlKind::ComboBox, ControlKind::BoundList, ControlKind::ListBox};
    static constexpr Kinds shown = {ControlKind::Label,    ControlKind::TextBox,  ControlKind::Button,
                                    ControlKind::CheckBox, ControlKind::ComboBox, ControlKind::BoundList,
                                    ControlKind::ListBox,  ControlKind::Line};

    /// While one lives, the program changes a control and no event is raised.
    class OwnChange {
    public:
        explicit OwnChange(DesignedDialog& dialog) : count_(dialog.ownChanges_) { ++count_; }
        ~OwnChange() { --count_; }
        OwnChange(const OwnChange&) = delete;
        OwnChange& operator=(const OwnChange&) = delete;

    private:
        int& count_;
    };

    DesignedDialog(const FormDesign& design, bool isRightToLeft, DialogEvents& events)
        : design_(design), isRightToLeft_(isRightToLeft), events_(events) {}

    const FormDesign& Design() const { return design_; }
    DialogEvents& Events() const { return events_; }
    bool IsOwnChange() const { return ownChanges_ > 0; }
    bool IsRightToLeft() const override { return isRightToLeft_; }
    const std::vector<std::unique_ptr<Control>>& OwnControls() const { return controls_; }
    void Add(std::unique_ptr<Control> control) { controls_.push_back(std::move(control)); }
    void RemoveControls() { controls_.clear(); }

    /// Raises 5 when the design has no such control, or one of another kind.
    Control& Find(std::string_view control, Kinds kinds) const {
        const auto found = std::find_if(controls_.begin(), controls_.end(), [&](const auto& candidate) {
            return candidate->Design().name == control;
        });
        if (found == controls_.end() ||
            std::find(kinds.begin(), kinds.end(), (*found)->Design().kind) == kinds.end()) {
            throw AutomationError(ErrorNumber::InvalidProcedureCall,
                                  std::string(design_.name) + ": no control '" + std::string(control) +
                                      "' that can do this");
        }
        return **found;
    }

private:
    std::string Tag() const override {
        return design_.tag != 0 ? std::to_string(design_.tag) : std::string();
    }

    std::vector<FormControl*> Controls() const override {
        std::vector<FormControl*> controls;
        for (const auto& control : controls_) {
            controls.push_back(control.get());
        }
        return controls;
    }

    const FormDesign& design_;
    bool isRightToLeft_;
    DialogEvents& events_;
    std::vector<std::unique_ptr<Control>> controls_;
    int ownChanges_ = 0;
};

/// A field that tells when it is left.
inline bool IsFieldKind(ControlKind kind) {
    return kind == ControlKind::TextBox || kind == ControlKind::ComboBox || kind == ControlKind::BoundList;
}

} // namespace qel
