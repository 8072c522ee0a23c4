#include "platform/dialog/win32/MatchPopup.h"

#include "platform/dialog/win32/CarriedPointer.h"
#include "platform/dialog/win32/DrawnText.h"
#include "platform/windows/WideText.h"

#include <algorithm>

namespace qel::windows {

namespace {

constexpr int mostVisibleRows = 12;
constexpr std::size_t mostMeasuredRows = 200;

int WidthOf(const RECT& area) { return area.right - area.left; }
int HeightOf(const RECT& area) { return area.bottom - area.top; }

RECT WorkAreaOf(HWND window) {
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof(monitor);
    ::GetMonitorInfoW(::MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor);
    return monitor.rcWork;
}

} // namespace

MatchPopup::MatchPopup(HWND dialog, HWND field, bool isRightToLeft, std::function<void()> onPicked)
    : field_(field), isRightToLeft_(isRightToLeft), onPicked_(std::move(onPicked)) {
    constexpr DWORD style = WS_POPUP | WS_BORDER | LVS_REPORT | LVS_NOCOLUMNHEADER | LVS_OWNERDATA |
                            LVS_SINGLESEL | LVS_SHOWSELALWAYS;
    const DWORD scrollBar = isRightToLeft ? WS_EX_LEFTSCROLLBAR : 0;
    window_ = ::CreateWindowExW(WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE | scrollBar, WC_LISTVIEWW, L"", style, 0,
                                0, 0, 0, dialog, nullptr, nullptr, nullptr);
    ::SendMessageW(window_, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
    ::SetWindowSubclass(window_, &MatchPopup::Procedure, 1, reinterpret_cast<DWORD_PTR>(this));
}

MatchPopup::~MatchPopup() {
    ::RemoveWindowSubclass(window_, &MatchPopup::Procedure, 1);
    ::DestroyWindow(window_);
}

void MatchPopup::UseFont(const FontMetrics& font) {
    font_ = &font;
    ::SendMessageW(window_, WM_SETFONT, reinterpret_cast<WPARAM>(font.Font()), FALSE);
}

void MatchPopup::Show(std::shared_ptr<const ListSource> source, std::vector<std::uint32_t> rows,
                      std::optional<std::size_t> highlighted) {
    source_ = std::move(source);
    rows_ = std::move(rows);
    if (rows_.empty()) {
        Close();
        return;
    }
    ::SendMessageW(window_, LVM_SETITEMCOUNT, rows_.size(), 0);
    LayOut();
    Highlight(highlighted);
    isOpen_ = true;
    ::ShowWindow(window_, SW_SHOWNOACTIVATE);
    ::InvalidateRect(window_, nullptr, TRUE);
}

void MatchPopup::Close() {
    isOpen_ = false;
    ::ShowWindow(window_, SW_HIDE);
}

std::optional<std::size_t> MatchPopup::Highlighted() const {
    const LRESULT place = ::SendMessageW(window_, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED);
    return place < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(place));
}

void MatchPopup::MoveHighlight(int places) {
    const auto last = static_cast<std::ptrdiff_t>(rows_.size()) - 1;
    const auto from = Highlighted() ? static_cast<std::ptrdiff_t>(*Highlighted()) : std::ptrdiff_t{-1};
    Highlight(static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(from + places, 0, last)));
}

int MatchPopup::RowsPerPage() const {
    return static_cast<int>(::SendMessageW(window_, LVM_GETCOUNTPERPAGE, 0, 0));
}

void MatchPopup::Highlight(std::optional<std::size_t> place) const {
    LVITEMW item = {};
    item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    ::SendMessageW(window_, LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&item));
    if (!place) {
        return;
    }
    item.state = LVIS_SELECTED | LVIS_FOCUSED;
    ::SendMessageW(window_, LVM_SETITEMSTATE, *place, reinterpret_cast<LPARAM>(&item));
    ::SendMessageW(window_, LVM_ENSUREVISIBLE, *place, FALSE);
}

bool MatchPopup::Answer(const NMHDR& question, LRESULT& result) const {
    if (question.hwndFrom != window_) {
        return false;
    }
    if (question.code == LVN_GETDISPINFOW) {
        FillIn(reinterpret_cast<NMLVDISPINFOW&>(const_cast<NMHDR&>(question)).item);
        return false;
    }
    if (question.code != NM_CUSTOMDRAW) {
        return false;
    }
    const auto& drawing = reinterpret_cast<const NMLVCUSTOMDRAW&>(question).nmcd;
    result = drawing.dwDrawStage == CDDS_PREPAINT ? CDRF_NOTIFYITEMDRAW : CDRF_DODEFAULT;
    if (drawing.dwDrawStage == CDDS_ITEMPREPAINT) {
        Draw(drawing.hdc, drawing.dwItemSpec);
        result = CDRF_SKIPDEFAULT;
    }
    return true;
}

void MatchPopup::FillIn(LVITEMW& item) const {
    if ((item.mask & LVIF_TEXT) == 0 || item.cchTextMax <= 0) {
        return;
    }
    const std::wstring text =
        TextAt(static_cast<std::size_t>(item.iItem), static_cast<std::size_t>(item.iSubItem));
    const std::size_t length = text.copy(item.pszText, static_cast<std::size_t>(item.cchTextMax) - 1);
    item.pszText[length] = L'\0';
}

std::wstring MatchPopup::TextAt(std::size_t place, std::size_t column) const {
    return source_ && place < rows_.size() ? ToWide(source_->Text(rows_[place], column)) : std::wstring();
}

void MatchPopup::Draw(HDC screen, std::size_t place) const {
    RECT row = {LVIR_BOUNDS, 0, 0, 0};
    ::SendMessageW(window_, LVM_GETITEMRECT, place, reinterpret_cast<LPARAM>(&row));
    // The list never has the focus, so the system would draw the highlighted row in grey.
    FillRow(screen, row, Highlighted() == place);
    const HGDIOBJ before = ::SelectObject(screen, font_->Font());
    const int margin = 2 * ::GetSystemMetrics(SM_CXEDGE);
    for (std::size_t column = 0; column < source_->ColumnCount(); ++column) {
        const auto width = static_cast<LONG>(::SendMessageW(window_, LVM_GETCOLUMNWIDTH, column, 0));
        RECT cell = {isRightToLeft_ ? row.right - width : row.left, row.top,
                     isRightToLeft_ ? row.right : row.left + width, row.bottom};
        (isRightToLeft_ ? row.right : row.left) += isRightToLeft_ ? -width : width;
        ::InflateRect(&cell, -margin, 0);
        DrawLine(screen, cell, TextAt(place, column), isRightToLeft_);
    }
    ::SelectObject(screen, before);
}

int MatchPopup::WidthOfColumn(std::size_t column) const {
    // A sample of the rows is enough to estimate the column's width.
    const std::size_t step = std::max<std::size_t>(rows_.size() / mostMeasuredRows, 1);
    int width = 0;
    for (std::size_t place = 0; place < rows_.size(); place += step) {
        width = std::max(width, font_->WidthOf(ToWide(source_->Text(rows_[place], column))));
    }
    return width;
}

int MatchPopup::MakeColumns(int mostWidth) const {
    while (::SendMessageW(window_, LVM_DELETECOLUMN, 0, 0) != 0) {
    }
    const int padding = 2 * ::GetSystemMetrics(SM_CXEDGE) + font_->WidthOf(L"M");
    int total = 0;
    for (std::size_t column = 0; column < source_->ColumnCount(); ++column) {
        LVCOLUMNW definition = {};
        definition.mask = LVCF_WIDTH;
        definition.cx = std::min(WidthOfColumn(column) + padding, mostWidth);
        total += definition.cx;
        ::SendMessageW(window_, LVM_INSERTCOLUMNW, column, reinterpret_cast<LPARAM>(&definition));
    }
    return total;
}

void MatchPopup::FillWidth() const {
    RECT inside = {};
    ::GetClientRect(window_, &inside);
    LONG width = WidthOf(inside);
    const std::size_t last = source_->ColumnCount() - 1;
    for (std::size_t column = 0; column < last; ++column) {
        width -= static_cast<LONG>(::SendMessageW(window_, LVM_GETCOLUMNWIDTH, column, 0));
    }
    ::SendMessageW(window_, LVM_SETCOLUMNWIDTH, last, MAKELPARAM(std::max<LONG>(width, 0), 0));
}

void MatchPopup::LayOut() const {
    const RECT workArea = WorkAreaOf(field_);
    RECT field = {};
    ::GetWindowRect(field_, &field);
    const int total = MakeColumns(WidthOf(workArea) / 3);
    const int borders = 2 * ::GetSystemMetrics(SM_CXBORDER);
    const bool scrolls = rows_.size() > static_cast<std::size_t>(mostVisibleRows);
    const int width =
        std::max(WidthOf(field), total + borders + (scrolls ? ::GetSystemMetrics(SM_CXVSCROLL) : 0));
    const auto visible = static_cast<WPARAM>(std::min<std::size_t>(rows_.size(), mostVisibleRows));
    const auto size = ::SendMessageW(window_, LVM_APPROXIMATEVIEWRECT, visible, -1);
    const int height = HIWORD(size) + borders;

    const int left = isRightToLeft_ ? field.right - width : field.left;
    const bool fitsBelow = field.bottom + height <= workArea.bottom;
    const bool fitsAbove = field.top - height >= workArea.top;
    const int top = fitsBelow || !fitsAbove ? field.bottom : field.top - height;
    const int inside =
        std::clamp<int>(left, workArea.left, std::max<int>(workArea.right - width, workArea.left));
    ::SetWindowPos(window_, HWND_TOP, inside, top, width, std::min(height, HeightOf(workArea)),
                   SWP_NOACTIVATE);
    FillWidth();
}

std::optional<std::size_t> MatchPopup::PlaceAt(LPARAM point) const {
    LVHITTESTINFO hit = {};
    hit.pt = {static_cast<short>(LOWORD(point)), static_cast<short>(HIWORD(point))};
    // A row is as wide as the list, so the horizontal position is irrelevant.
    hit.pt.x = 1;
    const LRESULT place = ::SendMessageW(window_, LVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
    return place < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(place));
}

LRESULT MatchPopup::OnMessage(UINT message, WPARAM word, LPARAM value) {
    switch (message) {
    case WM_MOUSEACTIVATE:
        return MA_NOACTIVATE;
    case WM_MOUSEMOVE:
        if (const auto place = PlaceAt(value); place && place != Highlighted()) {
            Highlight(place);
        }
        return 0;
    case WM_LBUTTONDOWN: // the list itself would take the focus
    case WM_LBUTTONDBLCLK:
    case WM_RBUTTONDOWN:
        return 0;
    case WM_LBUTTONUP:
        if (const auto place = PlaceAt(value)) {
            Highlight(place);
            onPicked_();
        }
        return 0;
    default:
        return ::DefSubclassProc(window_, message, word, value);
    }
}

LRESULT CALLBACK MatchPopup::Procedure(HWND window, UINT message, WPARAM word, LPARAM value, UINT_PTR /*id*/,
                                       DWORD_PTR self) {
    try {
        return CarriedPointer<MatchPopup>(self)->OnMessage(message, word, value);
    } catch (...) {
        return ::DefSubclassProc(window, message, word, value);
    }
}

} // namespace qel::windows
