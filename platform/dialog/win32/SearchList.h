#pragma once

#include "platform/dialog/win32/MatchPopup.h"

#include <functional>
#include <optional>

namespace qel::windows {

/// A combo box over a ListSource. Typing opens a list of the matching rows. The arrow keys move in it; Enter,
/// a click or leaving the field chooses a row; Esc undoes the typing.
class SearchList {
public:
    /// `combo` is a combo box with a text field. `onChosen` is called when the user's choice changes.
    SearchList(HWND dialog, HWND combo, bool isRightToLeft, std::function<void()> onChosen);
    ~SearchList();
    SearchList(const SearchList&) = delete;
    SearchList& operator=(const SearchList&) = delete;

    void UseFont(const FontMetrics& font) { popup_.UseFont(font); }
    void Bind(std::shared_ptr<const ListSource> rows);
    std::optional<std::size_t> Selected() const { return chosen_; }
    /// Raises 9 for a row that the source lacks.
    void Select(std::optional<std::size_t> row);

    /// The text field's text was edited.
    void OnTyped();
    /// Chooses the row that the typed text stands for, and closes the list.
    void Commit();
    /// Closes the list when the clicked window is not part of it.
    void OnClickIn(HWND window);
    bool Answer(const NMHDR& question, LRESULT& result) const { return popup_.Answer(question, result); }

private:
    static LRESULT CALLBACK ComboProcedure(HWND window, UINT message, WPARAM word, LPARAM value, UINT_PTR id,
                                           DWORD_PTR self);
    static LRESULT CALLBACK FieldProcedure(HWND window, UINT message, WPARAM word, LPARAM value, UINT_PTR id,
                                           DWORD_PTR self);
    std::optional<LRESULT> OnComboMessage(UINT message, WPARAM word);
    std::optional<LRESULT> OnFieldMessage(UINT message, WPARAM word, LPARAM value);
    /// True when the key was handled.
    bool OnKey(WPARAM key);

    void Open();
    void Toggle();
    void PickHighlighted();
    void TakeBack();
    void Choose(std::optional<std::size_t> row);

    /// The field shows a choice that is not being edited.
    bool ShowsChoice() const;
    void PaintChoice() const;
    void DrawChoice(HDC screen) const;

    HWND combo_, field_;
    bool isRightToLeft_;
    std::function<void()> onChosen_;
    MatchPopup popup_;
    std::shared_ptr<const ListSource> rows_;
    std::vector<std::uint32_t> matches_;
    std::optional<std::size_t> chosen_;
    std::optional<std::size_t> before_; ///< what was chosen before the user began to type
    bool isTyped_ = false;
    bool isWriting_ = false; ///< the program is setting the text
};

} // namespace qel::windows
