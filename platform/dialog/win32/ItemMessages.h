#pragma once

#include "platform/windows/WindowsApi.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace qel::windows {

/// The messages that access the items of a combo box or list box.
struct ItemMessages {
    UINT reset, add, count, select, selected, text, textLength;
};

inline constexpr ItemMessages comboMessages = {CB_RESETCONTENT, CB_ADDSTRING, CB_GETCOUNT,    CB_SETCURSEL,
                                               CB_GETCURSEL,    CB_GETLBTEXT, CB_GETLBTEXTLEN};
inline constexpr ItemMessages listMessages = {LB_RESETCONTENT, LB_ADDSTRING, LB_GETCOUNT,  LB_SETCURSEL,
                                              LB_GETCURSEL,    LB_GETTEXT,   LB_GETTEXTLEN};

/// The items of a combo box or list box.
class Items {
public:
    Items(HWND window, const ItemMessages& messages) : window_(window), messages_(messages) {}

    void Replace(const std::vector<std::string>& items) const;
    std::optional<std::size_t> Selected() const;
    /// Raises 9 for an index out of range.
    void Select(std::optional<std::size_t> index) const;
    std::wstring Text(std::size_t index) const;
    /// The chosen item's text, or empty.
    std::string SelectedText() const;

private:
    LRESULT Send(UINT message, WPARAM word = 0, LPARAM value = 0) const {
        return ::SendMessageW(window_, message, word, value);
    }

    HWND window_;
    const ItemMessages& messages_;
};

/// A window's whole text.
std::wstring WindowText(HWND window);

} // namespace qel::windows
