#include "platform/dialog/win32/DrawnText.h"

#include "platform/dialog/ReadingOrder.h"
#include "platform/windows/WideText.h"

namespace qel::windows {

void FillRow(HDC screen, const RECT& row, bool isHighlighted, bool isDisabled) {
    ::FillRect(screen, &row,
               ::GetSysColorBrush(isDisabled      ? COLOR_3DFACE
                                  : isHighlighted ? COLOR_HIGHLIGHT
                                                  : COLOR_WINDOW));
    ::SetTextColor(screen, ::GetSysColor(isDisabled      ? COLOR_GRAYTEXT
                                         : isHighlighted ? COLOR_HIGHLIGHTTEXT
                                                         : COLOR_WINDOWTEXT));
    ::SetBkMode(screen, TRANSPARENT);
}

void DrawLine(HDC screen, const RECT& place, const std::wstring& text, bool isRightToLeft) {
    // On a mirrored device "left" is on the right, and the systems differ about DT_RTLREADING; marks in the
    // text hold in all of them. On another device marks may be as wide as a letter.
    const bool isMirrored = (::GetLayout(screen) & LAYOUT_RTL) != 0;
    const std::string plain = ToUtf8(text);
    const std::wstring shown = isMirrored ? ToWide(LineInOwnDirection(plain)) : text;
    const UINT reading = !isMirrored && BeginsRightToLeft(plain) ? DT_RTLREADING : 0U;
    const UINT side = isRightToLeft == isMirrored ? DT_LEFT : DT_RIGHT;
    RECT area = place;
    ::DrawTextW(screen, shown.c_str(), static_cast<int>(shown.size()), &area,
                DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS | reading | side);
}

} // namespace qel::windows
