#pragma once

#include "platform/dialog/win32/ItemMessages.h"
#include "platform/dialog/win32/SearchList.h"

#include <functional>
#include <memory>

namespace qel::windows {

/// One control of a dialog: the system's window for it, and its texts.
class DialogControl : public FormControl {
public:
    /// `onChosen` is told when the user chose another row of a bound list.
    DialogControl(HWND dialog, const ControlDesign& design, WORD id, bool isDefaultButton, bool isRightToLeft,
                  std::function<void()> onChosen);

    const ControlDesign& Design() const { return design_; }
    /// Null for a control that takes no place.
    HWND Window() const { return window_; }
    WORD Id() const { return id_; }
    /// Takes the font, and the place that follows from it. It outlives the control.
    void UseFont(const FontMetrics& font);

    std::string Content() const;
    void SetContent(const std::string& text);
    bool IsChecked() const;
    void SetChecked(bool isChecked) const;
    /// Combo and list boxes.
    void SetItems(const std::vector<std::string>& items) const;
    /// Combo boxes, list boxes and bound lists.
    std::optional<std::size_t> Selected() const;
    void Select(std::optional<std::size_t> index) const;
    /// Null for any other kind than a bound list.
    SearchList* Search() const { return search_.get(); }

    std::string GetText(TextProperty property) const override;
    void SetText(TextProperty property, const std::string& text) override;
    std::string TypeName() const override;
    void SetFont(const DialogFont& /*font*/) override {} // all controls have the dialog's
    void SetAligment(std::int32_t aligment) override;
    std::vector<FormItem*> Items() const override { return {}; }

private:
    bool HasCaption() const;
    /// Reads a text box's text from the side where the text itself begins.
    void ReadFrom(const std::wstring& text) const;
    void ShowCaption() const;
    windows::Items ItemsOfBox() const;
    void FitFieldOfBox(const RECT& place) const;
    void FitDropDown(const std::vector<std::string>& items) const;

    const ControlDesign& design_;
    WORD id_;
    bool isRightToLeft_;
    HWND window_ = nullptr;
    const FontMetrics* font_ = nullptr;
    std::string caption_;
    std::unique_ptr<SearchList> search_;
};

} // namespace qel::windows
