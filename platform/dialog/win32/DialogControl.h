#pragma once

#include "platform/dialog/DesignedControl.h"
#include "platform/dialog/win32/ItemMessages.h"
#include "platform/dialog/win32/SearchList.h"

#include <functional>
#include <memory>

namespace qel::windows {

/// One control of a dialog: the system's window for it, and its texts.
class DialogControl : public DesignedControl {
public:
    /// `onChosen` is called when the user chooses another row of a bound list.
    DialogControl(HWND dialog, const ControlDesign& design, WORD id, bool isDefaultButton, bool isRightToLeft,
                  std::function<void()> onChosen);

    /// Null for a control that is not on the form.
    HWND Window() const { return window_; }
    WORD Id() const { return id_; }
    /// Sets the font, and the position that depends on it. `font` must outlive the control.
    void UseFont(const FontMetrics& font);

    std::string Content() const;
    void SetContent(const std::string& text);
    bool IsEnabled() const { return ::IsWindowEnabled(window_) != FALSE; }
    bool IsChecked() const;
    void SetChecked(bool isChecked) const;
    /// Combo and list boxes.
    void SetItems(const std::vector<std::string>& items) const;
    /// Combo boxes, list boxes and bound lists.
    std::optional<std::size_t> Selected() const;
    void Select(std::optional<std::size_t> index) const;
    /// Draws an item of a mirrored combo or list box.
    void Draw(const DRAWITEMSTRUCT& item) const;
    /// Null unless the control is a bound list.
    SearchList* Search() const { return search_.get(); }

private:
    /// Sets the reading direction of a text box from its text.
    void ReadFrom(const std::string& text) const;
    void ShowCaption() override;
    void AlignToFarSide(bool isFar) override;
    windows::Items ItemsOfBox() const;
    void FitFieldOfBox(const RECT& place) const;
    /// Puts a mirrored list's scroll bar on its left. The list itself is not mirrored, for the reason of
    /// MatchPopup's.
    void MoveScrollBar() const;
    void SetRowHeight(int height) const;
    void FitDropDown(const std::vector<std::string>& items) const;

    WORD id_;
    HWND window_ = nullptr;
    const FontMetrics* font_ = nullptr;
    std::unique_ptr<SearchList> search_;
};

} // namespace qel::windows
