#include "platform/dialog/win32/Win32Dialog.h"

#include "platform/dialog/ReadingOrder.h"
#include "platform/dialog/win32/CarriedPointer.h"
#include "platform/dialog/win32/ControlIds.h"
#include "platform/dialog/win32/OpenFileQuestion.h"
#include "platform/dialog/win32/VisualStyles.h"
#include "platform/dialog/win32/WaitCursor.h"
#include "platform/value/AutomationError.h"
#include "platform/windows/WideText.h"

#include <algorithm>
#include <utility>

namespace qel::windows {

namespace {

constexpr UINT tellWaiting = WM_APP + 1;
constexpr UINT hideDialog = WM_APP + 2;
constexpr UINT_PTR whileButtonIsHeld = 1; ///< a timer
constexpr UINT timeBetweenLooks = 15;     ///< ms

bool HasFocus(const DialogControl& control) {
    const HWND focus = ::GetFocus();
    return focus == control.Window() || ::IsChild(control.Window(), focus) != FALSE;
}

} // namespace

Win32Dialog::Win32Dialog(const FormDesign& design, bool isRightToLeft, DialogEvents& events)
    : DesignedDialog(design, isRightToLeft, events), font_{"Tahoma", 8},
      frame_(isRightToLeft,
             [this](UINT message, WPARAM word, LPARAM value) { return OnMessage(message, word, value); }) {
    const OwnChange own(*this);
    MakeControls();
    Win32Dialog::SetCaption(design.caption);
    LayOut();
}

Win32Dialog::~Win32Dialog() {
    frame_.Silence();
    RemoveControls(); // before their window and their font
}

void Win32Dialog::MakeControls() {
    const VisualStyles styles;
    for (std::size_t i = 0; i < Design().controls.size(); ++i) {
        const ControlDesign& control = Design().controls[i];
        const auto onChosen = [this, i] { Wait(Waiting::Kind::Change, *OwnControls()[i]); };
        Add(std::make_unique<DialogControl>(frame_.Window(), control, ControlId(Design(), i),
                                            control.name == std::string_view(Design().defaultButton),
                                            IsRightToLeft(), onChosen));
    }
}

void Win32Dialog::LayOut() {
    FontMetrics metrics(font_, DotsPerInchOf(frame_.Window()));
    std::optional<FontMetrics> before =
        std::exchange(metrics_, std::move(metrics)); // ends after its last use
    for (const auto& control : OwnControls()) {
        control->UseFont(*metrics_);
    }
    const RECT inside = metrics_->PixelsOf({0, 0, Design().width, Design().height});
    frame_.Resize({inside.right, inside.bottom});
}

void Win32Dialog::ShowModal() {
    const VisualStyles styles;
    firstFocus_ = nullptr;
    frame_.Begin();
    Events().OnLoad();
    const HWND first =
        firstFocus_ != nullptr ? firstFocus_ : ::GetNextDlgTabItem(frame_.Window(), nullptr, FALSE);
    frame_.RunModal(first, [this](HWND clicked) {
        for (const auto& control : OwnControls()) {
            if (control->Search() != nullptr) {
                control->Search()->OnClickIn(clicked);
            }
        }
    });
    waiting_.clear();
}

void Win32Dialog::ShowBeside(WindowSide side) {
    frame_.StandAt(side);
    ShowModal();
}

std::function<void()> Win32Dialog::Hider() {
    return [window = frame_.Window()] { ::PostMessageW(window, hideDialog, 0, 0); };
}

DialogControl* Win32Dialog::WithId(int id) const {
    const auto found = std::find_if(OwnControls().begin(), OwnControls().end(),
                                    [&](const auto& candidate) { return candidate->Id() == id; });
    return found != OwnControls().end() ? found->get() : nullptr;
}

void Win32Dialog::SetEnabled(std::string_view control, bool isEnabled) {
    const HWND window = Find(control, shown).Window();
    const HWND focus = ::GetFocus();
    const bool losesFocus = !isEnabled && (focus == window || ::IsChild(window, focus) != FALSE);
    if (losesFocus) { // otherwise the keyboard would have no focus
        ::SendMessageW(frame_.Window(), WM_NEXTDLGCTL, 0, FALSE);
    }
    ::EnableWindow(window, isEnabled ? TRUE : FALSE);
}

void Win32Dialog::SetFocus(std::string_view control) {
    firstFocus_ = Find(control, focusable).Window();
    if (frame_.IsShown()) {
        isMovingFocus_ = true;
        ::SendMessageW(frame_.Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(firstFocus_), TRUE);
        isMovingFocus_ = false;
    }
}

std::string Win32Dialog::AskForFile(std::string_view control, const FileQuestion& question) {
    Find(control, {ControlKind::FileDialog});
    return AskForFileToOpen(frame_.Window(), question);
}

void Win32Dialog::SetCaption(const std::string& caption) {
    ::SetWindowTextW(frame_.Window(),
                     ToWide(IsRightToLeft() ? LineInOwnDirection(caption) : caption).c_str());
}

void Win32Dialog::SetFont(const DialogFont& font) {
    if (font == font_) {
        return;
    }
    font_ = font;
    LayOut();
}

std::optional<LRESULT> Win32Dialog::OnMessage(UINT message, WPARAM word, LPARAM value) {
    switch (message) {
    case WM_COMMAND:
        OnCommand(LOWORD(word), HIWORD(word));
        return 0;
    case WM_NOTIFY: {
        LRESULT result = 0;
        for (const auto& control : OwnControls()) {
            if (control->Search() != nullptr &&
                control->Search()->Answer(*CarriedPointer<const NMHDR>(value), result)) {
                return result;
            }
        }
        return std::nullopt;
    }
    case WM_DRAWITEM:
        if (const DialogControl* const control = WithId(static_cast<int>(word)); control != nullptr) {
            control->Draw(*CarriedPointer<const DRAWITEMSTRUCT>(value));
        }
        return TRUE;
    case tellWaiting:
    case WM_TIMER:
        TellWaitingWhenReleased();
        return 0;
    case hideDialog:
        Hide();
        return 0;
    case WM_HELP:
        ShowHelp();
        return TRUE;
    case WM_CLOSE:
        OnClosed();
        return 0;
    case WM_DESTROY: // closed from outside; the controls can still be read
        if (frame_.IsShown()) {
            OnClosed();
        }
        return std::nullopt;
    case WM_DPICHANGED:
        LayOut();
        return 0;
    default:
        return std::nullopt;
    }
}

void Win32Dialog::OnCommand(int id, int code) {
    DialogControl* const control = WithId(id);
    if (control == nullptr) {
        if (id == IDCANCEL) { // Esc on a form without such a button
            OnClosed();
        }
        return;
    }
    if (IsOwnChange()) {
        return;
    }
    switch (control->Design().kind) {
    case ControlKind::Button:
    case ControlKind::CheckBox:
        if (code == BN_CLICKED && ::IsWindowEnabled(control->Window()) != FALSE) {
            OnPressed(*control);
        }
        break;
    case ControlKind::TextBox:
        if (code == EN_CHANGE) {
            Events().OnChange(control->Design().name);
        }
        break;
    case ControlKind::ComboBox:
    case ControlKind::ListBox:
        static_assert(CBN_SELCHANGE == LBN_SELCHANGE);
        if (code == CBN_SELCHANGE) {
            Events().OnChange(control->Design().name);
        }
        break;
    case ControlKind::BoundList:
        if (code == CBN_EDITCHANGE) {
            control->Search()->OnTyped();
        }
        break;
    default:
        break;
    }
    const int focusLost = control->Design().kind == ControlKind::TextBox ? EN_KILLFOCUS : CBN_KILLFOCUS;
    // A bound list's combo box passes the focus on to its text field.
    if (IsFieldKind(control->Design().kind) && code == focusLost && !HasFocus(*control)) {
        if (control->Search() != nullptr) {
            control->Search()->Commit();
        }
        Wait(Waiting::Kind::Leave, *control);
    }
}

void Win32Dialog::OnPressed(DialogControl& control) {
    // Keys press a button without moving the focus out of the edited field.
    for (const auto& other : OwnControls()) {
        if (other->Search() != nullptr && control.Id() != IDCANCEL) {
            other->Search()->Commit();
        }
    }
    // A handler that rejects a field's content moves the focus back to it or disables the button.
    const bool isRefused = !TellWaiting() || ::IsWindowEnabled(control.Window()) == FALSE;
    const bool isCancel = control.Id() == IDCANCEL; // cancelling ignores the field
    if (!frame_.IsRunning() || (control.Design().kind == ControlKind::Button && isRefused && !isCancel)) {
        return;
    }
    const WaitCursor wait;
    Events().OnClick(control.Design().name);
}

void Win32Dialog::OnClosed() {
    Events().OnQueryUnload();
    frame_.End();
}

void Win32Dialog::ShowHelp() const {
    if (!helpFile_.empty()) {
        ::ShellExecuteW(frame_.Window(), L"open", ToWide(helpFile_).c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    }
}

void Win32Dialog::Wait(Waiting::Kind kind, DialogControl& control) {
    if (!frame_.IsRunning()) { // the system sets the first focus, not the user
        return;
    }
    // Two fields that are refused would otherwise lead to each other for ever.
    if (kind == Waiting::Kind::Leave && isMovingFocus_) {
        return;
    }
    waiting_.push_back({kind, &control});
    ::PostMessageW(frame_.Window(), tellWaiting, 0, 0);
}

void Win32Dialog::TellWaitingWhenReleased() {
    // While the mouse button is down, a handler's message box would swallow the click. The click itself
    // raises the waiting events. The handler that shows a box has not ended.
    if (IsButtonHeld() || IsBehindBox()) {
        ::SetTimer(frame_.Window(), whileButtonIsHeld, timeBetweenLooks, nullptr);
        return;
    }
    ::KillTimer(frame_.Window(), whileButtonIsHeld);
    TellWaiting();
}

bool Win32Dialog::IsButtonHeld() const {
    const HWND holder = ::GetCapture();
    return holder != nullptr &&
           std::any_of(OwnControls().begin(), OwnControls().end(), [&](const auto& control) {
               const ControlKind kind = control->Design().kind;
               return control->Window() == holder &&
                      (kind == ControlKind::Button || kind == ControlKind::CheckBox);
           });
}

bool Win32Dialog::TellWaiting() {
    bool areLeft = true;
    // Handlers may show message boxes, which pump messages, so an event is removed before it is raised.
    while (!waiting_.empty()) {
        const Waiting next = waiting_.front();
        waiting_.erase(waiting_.begin());
        if (next.kind == Waiting::Kind::Change) {
            Events().OnChange(next.control->Design().name);
        } else if (HasLeft(*next.control)) {
            const bool pressCounts = Events().OnLeave(next.control->Design().name);
            areLeft = areLeft && pressCounts && !HasFocus(*next.control);
        }
    }
    return areLeft;
}

bool Win32Dialog::HasLeft(const DialogControl& control) const {
    const HWND focus = ::GetFocus();
    if (focus == nullptr || ::IsChild(frame_.Window(), focus) == FALSE || HasFocus(control)) {
        return false;
    }
    return ::GetDlgCtrlID(focus) != IDCANCEL;
}

} // namespace qel::windows
