#include "platform/dialog/win32/SearchList.h"

#include "platform/dialog/DesignedControl.h"
#include "platform/dialog/win32/CarriedPointer.h"
#include "platform/dialog/win32/DrawnText.h"
#include "platform/dialog/win32/ItemMessages.h"
#include "platform/dialog/win32/WaitCursor.h"
#include "platform/value/AutomationError.h"
#include "platform/windows/WideText.h"

#include <algorithm>

namespace qel::windows {

namespace {

HWND TextFieldOf(HWND combo) {
    COMBOBOXINFO parts = {};
    parts.cbSize = sizeof(parts);
    ::GetComboBoxInfo(combo, &parts);
    return parts.hwndItem;
}

/// What can change a field's text, selection or focus: the system then draws without WM_PAINT.
bool ChangesLook(UINT message) {
    return message == WM_SETTEXT || message == EM_SETSEL || message == WM_SETFOCUS ||
           message == WM_KILLFOCUS || message == WM_KEYDOWN || message == WM_CHAR || message == WM_ENABLE ||
           (message >= WM_LBUTTONDOWN && message <= WM_LBUTTONDBLCLK);
}

bool IsAltDown(LPARAM value) { return (HIWORD(value) & KF_ALTDOWN) != 0; }

} // namespace

SearchList::SearchList(HWND dialog, HWND combo, bool isRightToLeft, std::function<void()> onChosen)
    : combo_(combo), field_(TextFieldOf(combo)), isRightToLeft_(isRightToLeft),
      onChosen_(std::move(onChosen)), popup_(dialog, combo, isRightToLeft, [this] { PickHighlighted(); }) {
    ::SetWindowSubclass(combo_, &SearchList::ComboProcedure, 1, reinterpret_cast<DWORD_PTR>(this));
    ::SetWindowSubclass(field_, &SearchList::FieldProcedure, 1, reinterpret_cast<DWORD_PTR>(this));
}

SearchList::~SearchList() {
    ::RemoveWindowSubclass(combo_, &SearchList::ComboProcedure, 1);
    ::RemoveWindowSubclass(field_, &SearchList::FieldProcedure, 1);
}

void SearchList::Bind(std::shared_ptr<const ListSource> rows) {
    popup_.Close();
    rows_ = std::move(rows);
    Choose(std::nullopt);
}

void SearchList::Select(std::optional<std::size_t> row) {
    if (row && (!rows_ || *row >= rows_->RowCount())) {
        throw PlatformError(ErrorNumber::SubscriptOutOfRange);
    }
    popup_.Close();
    Choose(row);
}

void SearchList::OnTyped() {
    if (isWriting_) {
        return;
    }
    if (!isTyped_) {
        before_ = chosen_;
    }
    isTyped_ = true;
    chosen_.reset();
    const std::string typed = ToUtf8(WindowText(combo_));
    if (!rows_) {
        return;
    }
    const WaitCursor wait;
    matches_ = rows_->Matching(typed);
    popup_.Show(rows_, matches_, typed.empty() ? std::nullopt : std::optional<std::size_t>(0));
}

void SearchList::Commit() {
    const auto highlighted = popup_.IsOpen() ? popup_.Highlighted() : std::nullopt;
    popup_.Close();
    ::SendMessageW(field_, EM_SETSEL, 0, 0);
    if (!isTyped_) {
        return;
    }
    std::optional<std::size_t> row;
    if (::GetWindowTextLengthW(combo_) != 0 && rows_ && !matches_.empty()) {
        row = matches_[highlighted.value_or(0)];
    }
    const auto before = before_;
    Choose(row);
    if (row != before) {
        onChosen_();
    }
}

void SearchList::OnClickIn(HWND window) {
    if (popup_.IsOpen() && window != popup_.Window() && window != combo_ &&
        ::IsChild(combo_, window) == FALSE) {
        Commit();
    }
}

void SearchList::Open() {
    if (!rows_) {
        return;
    }
    const WaitCursor wait;
    matches_ = rows_->Matching(isTyped_ ? ToUtf8(WindowText(combo_)) : std::string());
    std::optional<std::size_t> highlighted;
    if (const auto found = std::find(matches_.begin(), matches_.end(), chosen_);
        chosen_ && found != matches_.end()) {
        highlighted = static_cast<std::size_t>(found - matches_.begin());
    }
    popup_.Show(rows_, matches_, highlighted);
}

void SearchList::Toggle() {
    if (popup_.IsOpen()) {
        Commit();
    } else {
        Open();
    }
}

void SearchList::PickHighlighted() {
    const auto highlighted = popup_.Highlighted();
    popup_.Close();
    if (!highlighted) {
        Commit();
        return;
    }
    const auto before = isTyped_ ? before_ : chosen_;
    const std::size_t row = matches_[*highlighted];
    Choose(row);
    ::SendMessageW(field_, EM_SETSEL, 0, -1);
    if (before != row) {
        onChosen_();
    }
}

void SearchList::TakeBack() {
    popup_.Close();
    if (isTyped_) {
        Choose(before_);
    }
}

void SearchList::Choose(std::optional<std::size_t> row) {
    chosen_ = row;
    isTyped_ = false;
    const std::wstring text = row ? ToWide(RowText(*rows_, *row)) : std::wstring();
    isWriting_ = true;
    ::SetWindowTextW(combo_, text.c_str());
    isWriting_ = false;
}

std::optional<LRESULT> SearchList::OnComboMessage(UINT message, WPARAM word) {
    switch (message) {
    case WM_LBUTTONDOWN: // on the arrow: keep the system's own, empty list closed
    case WM_LBUTTONDBLCLK:
        ::SetFocus(field_);
        Toggle();
        return 0;
    case CB_SHOWDROPDOWN:
        if ((word != FALSE) != popup_.IsOpen()) {
            Toggle();
        }
        return TRUE;
    case CB_GETDROPPEDSTATE:
        return popup_.IsOpen() ? TRUE : FALSE;
    default:
        return std::nullopt;
    }
}

std::optional<LRESULT> SearchList::OnFieldMessage(UINT message, WPARAM word, LPARAM value) {
    switch (message) {
    case WM_PAINT: // the field's own drawing takes one direction for every text
    case WM_PRINTCLIENT:
        if (!isRightToLeft_ || !ShowsChoice()) {
            return std::nullopt;
        }
        if (message == WM_PAINT) {
            PaintChoice();
        } else {
            DrawChoice(CarriedPointer<HDC__>(word));
        }
        return 0;
    case WM_GETDLGCODE:
        // While the list is open, it handles Enter and Esc itself.
        if (popup_.IsOpen() && (word == VK_RETURN || word == VK_ESCAPE)) {
            return DLGC_WANTALLKEYS | DLGC_WANTCHARS | DLGC_HASSETSEL;
        }
        return std::nullopt;
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN:
        if (message == WM_SYSKEYDOWN && (!IsAltDown(value) || (word != VK_DOWN && word != VK_UP))) {
            return std::nullopt;
        }
        if (message == WM_SYSKEYDOWN) {
            Toggle();
            return 0;
        }
        return OnKey(word) ? std::optional<LRESULT>(0) : std::nullopt;
    case WM_CHAR:
        if (word == VK_RETURN || word == VK_ESCAPE) {
            return 0; // the field would only beep
        }
        return std::nullopt;
    case WM_MOUSEWHEEL:
        if (!popup_.IsOpen()) {
            return std::nullopt;
        }
        return ::SendMessageW(popup_.Window(), message, word, value);
    default:
        return std::nullopt;
    }
}

bool SearchList::ShowsChoice() const {
    if (isTyped_ || !chosen_) {
        return false;
    }
    DWORD from = 0;
    DWORD to = 0;
    ::SendMessageW(field_, EM_GETSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
    const bool isWhole = from == 0 && to == static_cast<DWORD>(::GetWindowTextLengthW(field_));
    return ::GetFocus() != field_ || isWhole;
}

void SearchList::PaintChoice() const {
    PAINTSTRUCT painting = {};
    DrawChoice(::BeginPaint(field_, &painting));
    ::EndPaint(field_, &painting);
}

void SearchList::DrawChoice(HDC screen) const {
    const HGDIOBJ before =
        ::SelectObject(screen, CarriedPointer<void>(::SendMessageW(field_, WM_GETFONT, 0, 0)));
    RECT place = {};
    ::GetClientRect(field_, &place);
    FillRow(screen, place, ::GetFocus() == field_, ::IsWindowEnabled(field_) == FALSE);
    ::InflateRect(&place, -::GetSystemMetrics(SM_CXEDGE), 0);
    DrawLine(screen, place, WindowText(field_), true);
    ::SelectObject(screen, before);
}

bool SearchList::OnKey(WPARAM key) {
    if (!popup_.IsOpen()) {
        if (key != VK_DOWN && key != VK_UP && key != VK_F4) {
            return false;
        }
        Open();
        return true;
    }
    switch (key) {
    case VK_DOWN:
        popup_.MoveHighlight(1);
        return true;
    case VK_UP:
        popup_.MoveHighlight(-1);
        return true;
    case VK_NEXT:
        popup_.MoveHighlight(popup_.RowsPerPage());
        return true;
    case VK_PRIOR:
        popup_.MoveHighlight(-popup_.RowsPerPage());
        return true;
    case VK_F4:
    case VK_RETURN:
        PickHighlighted();
        return true;
    case VK_ESCAPE:
        TakeBack();
        return true;
    default:
        return false;
    }
}

LRESULT CALLBACK SearchList::ComboProcedure(HWND window, UINT message, WPARAM word, LPARAM value,
                                            UINT_PTR /*id*/, DWORD_PTR self) {
    try {
        if (const auto answer = CarriedPointer<SearchList>(self)->OnComboMessage(message, word)) {
            return *answer;
        }
    } catch (...) {
        return 0; // a source that raises shows no rows
    }
    return ::DefSubclassProc(window, message, word, value);
}

LRESULT CALLBACK SearchList::FieldProcedure(HWND window, UINT message, WPARAM word, LPARAM value,
                                            UINT_PTR /*id*/, DWORD_PTR self) {
    try {
        if (const auto answer = CarriedPointer<SearchList>(self)->OnFieldMessage(message, word, value)) {
            return *answer;
        }
    } catch (...) {
        return 0; // a source that raises shows no rows
    }
    const LRESULT result = ::DefSubclassProc(window, message, word, value);
    if (ChangesLook(message)) {
        ::InvalidateRect(window, nullptr, TRUE);
    }
    return result;
}

} // namespace qel::windows
