#include "platform/dialog/win32/DialogControl.h"

#include "platform/dialog/ReadingOrder.h"
#include "platform/dialog/win32/CarriedPointer.h"
#include "platform/dialog/win32/DrawnText.h"
#include "platform/windows/WideText.h"
#include "text/Text.h"

#include <algorithm>

namespace qel::windows {

namespace {

constexpr int visibleItems = 12;
constexpr int textHeight = 8; // in dialog units

/// The window class and styles of a kind of control.
struct WindowKind {
    const wchar_t* className;
    DWORD style, extendedStyle;
};

WindowKind KindOf(const ControlDesign& design, bool isDefaultButton) {
    constexpr DWORD input = WS_TABSTOP | WS_GROUP;
    switch (design.kind) {
    case ControlKind::Label:
        return {WC_STATICW, SS_LEFT | WS_GROUP, 0};
    case ControlKind::TextBox:
        return {WC_EDITW,
                (design.isMultiLine ? ES_MULTILINE | ES_AUTOVSCROLL | WS_VSCROLL : ES_AUTOHSCROLL) | input |
                    (design.isReadOnly ? ES_READONLY : 0U),
                WS_EX_CLIENTEDGE};
    case ControlKind::Button:
        return {WC_BUTTONW, input | (isDefaultButton ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON), 0};
    case ControlKind::CheckBox:
        return {WC_BUTTONW, BS_AUTOCHECKBOX | input, 0};
    case ControlKind::ComboBox:
        return {WC_COMBOBOXW, CBS_DROPDOWNLIST | WS_VSCROLL | input, 0};
    case ControlKind::BoundList:
        return {WC_COMBOBOXW, CBS_DROPDOWN | CBS_AUTOHSCROLL | input, 0};
    case ControlKind::ListBox:
        return {WC_LISTBOXW, LBS_NOTIFY | LBS_NOINTEGRALHEIGHT | WS_VSCROLL | input, WS_EX_CLIENTEDGE};
    case ControlKind::Line:
        return {WC_STATICW, SS_ETCHEDHORZ | WS_GROUP, 0};
    case ControlKind::FileDialog:
        break;
    }
    return {nullptr, 0, 0};
}

/// The style of boxes whose items the dialog draws, so that each item reads in its own direction.
DWORD DrawnStyle(ControlKind kind) {
    return kind == ControlKind::ComboBox  ? CBS_OWNERDRAWFIXED | CBS_HASSTRINGS
           : kind == ControlKind::ListBox ? LBS_OWNERDRAWFIXED | LBS_HASSTRINGS
                                          : 0;
}

void SetBits(HWND window, int which, DWORD bits, bool areSet) {
    const auto before = static_cast<DWORD>(::GetWindowLongPtrW(window, which));
    ::SetWindowLongPtrW(window, which, static_cast<LONG_PTR>(areSet ? before | bits : before & ~bits));
}

int HeightOf(HWND window) {
    RECT area = {};
    ::GetWindowRect(window, &area);
    return area.bottom - area.top;
}

} // namespace

DialogControl::DialogControl(HWND dialog, const ControlDesign& design, WORD id, bool isDefaultButton,
                             bool isRightToLeft, std::function<void()> onChosen)
    : DesignedControl(design, isRightToLeft), id_(id) {
    const WindowKind kind = KindOf(design, isDefaultButton);
    if (kind.className == nullptr) {
        return;
    }
    // Paths, dates and numbers read from left to right in any language, so a mirrored dialog's text boxes are
    // not mirrored.
    const bool isUnmirrored = isRightToLeft && design.kind == ControlKind::TextBox;
    const bool isFromRight = isUnmirrored && !design.isMultiLine;
    const DWORD style = kind.style | WS_CHILD | WS_VISIBLE | (isFromRight ? ES_RIGHT : 0U) |
                        (isRightToLeft ? DrawnStyle(design.kind) : 0U);
    window_ = ::CreateWindowExW(kind.extendedStyle, kind.className, L"", style, 0, 0, 0, 0, dialog,
                                CarriedPointer<std::remove_pointer_t<HMENU>>(static_cast<UINT_PTR>(id)),
                                nullptr, nullptr);
    if (design.kind == ControlKind::BoundList) {
        search_ = std::make_unique<SearchList>(dialog, window_, isRightToLeft, std::move(onChosen));
    }
    if (isUnmirrored) {
        SetBits(window_, GWL_EXSTYLE, WS_EX_LAYOUTRTL, false);
    }
    if (isRightToLeft) {
        MoveScrollBar();
    }
    SetText(TextProperty::Caption, design.caption);
}

void DialogControl::MoveScrollBar() const {
    HWND list = Design().kind == ControlKind::ListBox ? window_ : nullptr;
    if (Design().kind == ControlKind::ComboBox) {
        COMBOBOXINFO parts = {};
        parts.cbSize = sizeof(parts);
        ::GetComboBoxInfo(window_, &parts);
        list = parts.hwndList;
    }
    if (list != nullptr) {
        SetBits(list, GWL_EXSTYLE, WS_EX_LAYOUTRTL, false);
        SetBits(list, GWL_EXSTYLE, WS_EX_LEFTSCROLLBAR, true);
    }
}

void DialogControl::UseFont(const FontMetrics& font) {
    font_ = &font;
    if (window_ == nullptr) {
        return;
    }
    ::SendMessageW(window_, WM_SETFONT, reinterpret_cast<WPARAM>(font.Font()), TRUE);
    RECT place = font.PixelsOf(Design().place);
    if (Design().kind == ControlKind::Line) {
        place.bottom = place.top + 2; // the two pixels of the groove
    }
    ::SetWindowPos(window_, nullptr, place.left, place.top, place.right - place.left,
                   place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
    SetRowHeight(font.PixelsOf({0, 0, 0, textHeight}).bottom);
    if (Design().kind == ControlKind::ComboBox || Design().kind == ControlKind::BoundList) {
        FitFieldOfBox(place);
    }
    if (search_) {
        search_->UseFont(font);
    }
}

void DialogControl::SetRowHeight(int height) const {
    // Boxes whose items are drawn keep the row height of the font that they were created with.
    if (IsRightToLeft() && Design().kind == ControlKind::ComboBox) {
        ::SendMessageW(window_, CB_SETITEMHEIGHT, 0, height);
    } else if (IsRightToLeft() && Design().kind == ControlKind::ListBox) {
        ::SendMessageW(window_, LB_SETITEMHEIGHT, 0, height);
    }
}

void DialogControl::FitFieldOfBox(const RECT& place) const {
    // A combo box computes its own height: the item height is reduced by the excess.
    const int wanted = place.bottom - place.top;
    constexpr auto field = static_cast<WPARAM>(-1);
    const auto item = static_cast<int>(::SendMessageW(window_, CB_GETITEMHEIGHT, field, 0));
    ::SendMessageW(window_, CB_SETITEMHEIGHT, field, item - (HeightOf(window_) - wanted));
    const int listItem = static_cast<int>(::SendMessageW(window_, CB_GETITEMHEIGHT, 0, 0));
    ::SetWindowPos(window_, nullptr, place.left, place.top, place.right - place.left,
                   wanted + visibleItems * listItem + 2 * ::GetSystemMetrics(SM_CYBORDER),
                   SWP_NOZORDER | SWP_NOACTIVATE);
}

void DialogControl::FitDropDown(const std::vector<std::string>& items) const {
    int widest = 0;
    for (const std::string& item : items) {
        widest = std::max(widest, font_->WidthOf(ToWide(item)));
    }
    const int width = widest + ::GetSystemMetrics(SM_CXVSCROLL) + 4 * ::GetSystemMetrics(SM_CXEDGE);
    ::SendMessageW(window_, CB_SETDROPPEDWIDTH, static_cast<WPARAM>(width), 0);
}

std::string DialogControl::Content() const {
    if (HasCaption()) {
        return Caption();
    }
    if (Design().kind == ControlKind::ComboBox || Design().kind == ControlKind::ListBox) {
        return ItemsOfBox().SelectedText();
    }
    return ReplaceAll(ToUtf8(WindowText(window_)), "\r\n", "\n");
}

void DialogControl::SetContent(const std::string& text) {
    if (HasCaption()) {
        SetText(TextProperty::Caption, text);
        return;
    }
    ReadFrom(text);
    ::SetWindowTextW(window_, ToWide(ReplaceAll(text, "\n", "\r\n")).c_str());
}

void DialogControl::ReadFrom(const std::string& text) const {
    if (IsRightToLeft()) {
        SetBits(window_, GWL_EXSTYLE, WS_EX_RTLREADING, BeginsRightToLeft(text));
    }
}

void DialogControl::Draw(const DRAWITEMSTRUCT& item) const {
    const int state = ::SaveDC(item.hDC);
    // The clipping of a mirrored combo box may be that of one that is not mirrored.
    ::SelectClipRgn(item.hDC, nullptr);
    ::IntersectClipRect(item.hDC, item.rcItem.left, item.rcItem.top, item.rcItem.right, item.rcItem.bottom);
    FillRow(item.hDC, item.rcItem, (item.itemState & ODS_SELECTED) != 0,
            (item.itemState & ODS_DISABLED) != 0);
    RECT place = item.rcItem;
    ::InflateRect(&place, -::GetSystemMetrics(SM_CXEDGE), 0);
    if (item.itemID != static_cast<UINT>(-1)) {
        DrawLine(item.hDC, place, ItemsOfBox().Text(item.itemID), IsRightToLeft());
    }
    if ((item.itemState & ODS_FOCUS) != 0 && (item.itemState & ODS_NOFOCUSRECT) == 0) {
        ::DrawFocusRect(item.hDC, &item.rcItem);
    }
    ::RestoreDC(item.hDC, state);
}

bool DialogControl::IsChecked() const { return ::SendMessageW(window_, BM_GETCHECK, 0, 0) == BST_CHECKED; }

void DialogControl::SetChecked(bool isChecked) const {
    ::SendMessageW(window_, BM_SETCHECK, isChecked ? BST_CHECKED : BST_UNCHECKED, 0);
}

windows::Items DialogControl::ItemsOfBox() const {
    return {window_, Design().kind == ControlKind::ListBox ? listMessages : comboMessages};
}

void DialogControl::SetItems(const std::vector<std::string>& items) const {
    ItemsOfBox().Replace(items);
    if (Design().kind == ControlKind::ComboBox) {
        FitDropDown(items);
    }
}

std::optional<std::size_t> DialogControl::Selected() const {
    return search_ ? search_->Selected() : ItemsOfBox().Selected();
}

void DialogControl::Select(std::optional<std::size_t> index) const {
    if (search_) {
        search_->Select(index);
    } else {
        ItemsOfBox().Select(index);
    }
}

void DialogControl::ShowCaption() {
    const std::string caption = MarkedCaption("&");
    ::SetWindowTextW(window_, ToWide(IsRightToLeft() ? LineInOwnDirection(caption) : caption).c_str());
}

void DialogControl::AlignToFarSide(bool isFar) {
    static_assert(SS_LEFT == 0);
    SetBits(window_, GWL_STYLE, SS_RIGHT, isFar);
    ::InvalidateRect(window_, nullptr, TRUE);
}

} // namespace qel::windows
