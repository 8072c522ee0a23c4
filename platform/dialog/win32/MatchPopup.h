#pragma once

#include "platform/dialog/DialogToolkit.h"
#include "platform/dialog/win32/ControlsApi.h"
#include "platform/dialog/win32/FontMetrics.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace qel::windows {

/// The list that opens below a SearchList. It never takes the focus, which stays where the user types, and
/// asks its source only for the rows that are seen.
class MatchPopup {
public:
    /// `onPicked` is told when a row was clicked.
    MatchPopup(HWND dialog, HWND field, bool isRightToLeft, std::function<void()> onPicked);
    ~MatchPopup();
    MatchPopup(const MatchPopup&) = delete;
    MatchPopup& operator=(const MatchPopup&) = delete;

    HWND Window() const { return window_; }
    void UseFont(const FontMetrics& font);

    /// Opens the list on these rows, or shows them when it is open.
    void Show(std::shared_ptr<const ListSource> source, std::vector<std::uint32_t> rows,
              std::optional<std::size_t> highlighted);
    void Close();
    bool IsOpen() const { return isOpen_; }
    /// The place of the highlighted row in the shown ones.
    std::optional<std::size_t> Highlighted() const;
    void MoveHighlight(int places);
    int RowsPerPage() const;

    /// Answers what the list asks of the dialog. True when `result` is the answer.
    bool Answer(const NMHDR& question, LRESULT& result) const;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM word, LPARAM value, UINT_PTR id,
                                      DWORD_PTR self);
    LRESULT OnMessage(UINT message, WPARAM word, LPARAM value);
    std::optional<std::size_t> PlaceAt(LPARAM point) const;
    void Highlight(std::optional<std::size_t> place) const;
    void FillIn(LVITEMW& item) const;
    int WidthOfColumn(std::size_t column) const;
    void LayOut() const;

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
