#pragma once

#include "platform/dialog/DialogToolkit.h"
#include "platform/dialog/win32/ControlsApi.h"
#include "platform/dialog/win32/FontMetrics.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace qel::windows {

/// The list that opens below a SearchList. It never takes the focus from the text field, and reads only
/// visible rows from its source. It is not mirrored but draws its rows from right to left: a mirrored list's
/// letters and scroll bar depend on the system's version.
class MatchPopup {
public:
    /// `onPicked` is called when a row is clicked.
    MatchPopup(HWND dialog, HWND field, bool isRightToLeft, std::function<void()> onPicked);
    ~MatchPopup();
    MatchPopup(const MatchPopup&) = delete;
    MatchPopup& operator=(const MatchPopup&) = delete;

    HWND Window() const { return window_; }
    void UseFont(const FontMetrics& font);

    /// Shows these rows, and opens the list if it is closed.
    void Show(std::shared_ptr<const ListSource> source, std::vector<std::uint32_t> rows,
              std::optional<std::size_t> highlighted);
    void Close();
    bool IsOpen() const { return isOpen_; }
    /// The index of the highlighted row among the shown rows.
    std::optional<std::size_t> Highlighted() const;
    void MoveHighlight(int places);
    int RowsPerPage() const;

    /// Handles the list's notifications to the dialog. True when `result` is to be returned.
    bool Answer(const NMHDR& question, LRESULT& result) const;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM word, LPARAM value, UINT_PTR id,
                                      DWORD_PTR self);
    LRESULT OnMessage(UINT message, WPARAM word, LPARAM value);
    std::optional<std::size_t> PlaceAt(LPARAM point) const;
    void Highlight(std::optional<std::size_t> place) const;
    void FillIn(LVITEMW& item) const;
    std::wstring TextAt(std::size_t place, std::size_t column) const;
    void Draw(HDC screen, std::size_t place) const;
    int WidthOfColumn(std::size_t column) const;
    int MakeColumns(int mostWidth) const;
    void LayOut() const;
    void FillWidth() const;

    HWND field_;
    HWND window_;
    bool isRightToLeft_;
    std::function<void()> onPicked_;
    const FontMetrics* font_ = nullptr;
    std::shared_ptr<const ListSource> source_;
    std::vector<std::uint32_t> rows_;
    bool isOpen_ = false;
};

} // namespace qel::windows
