#include "platform/dialog/win32/Win32Dialog.h"

#include "platform/dialog/win32/CarriedPointer.h"
#include "platform/dialog/win32/ControlIds.h"
#include "platform/dialog/win32/OpenFileQuestion.h"
#include "platform/dialog/win32/ReadingDirection.h"
#include "platform/dialog/win32/VisualStyles.h"
#include "platform/dialog/win32/WaitCursor.h"
#include "platform/value/AutomationError.h"
#include "platform/windows/WideText.h"

#include <algorithm>
#include <utility>

namespace qel::windows {

namespace {

constexpr UINT tellWaiting = WM_APP + 1;
constexpr UINT_PTR whileButtonIsHeld = 1; ///< a timer
constexpr UINT timeBetweenLooks = 15;     ///< ms

/// Counts up for as long as it lives.
class Counted {
public:
    explicit Counted(int& count) : count_(count) { ++count_; }
    ~Counted() { --count_; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

private:
    int& count_;
};

bool HasFocus(const DialogControl& control) {
    const HWND focus = ::GetFocus();
    return focus == control.Window() || ::IsChild(control.Window(), focus) != FALSE;
}

bool IsFieldKind(ControlKind kind) {
    return kind == ControlKind::TextBox || kind == ControlKind::ComboBox || kind == ControlKind::BoundList;
}

} // namespace

Win32Dialog::Win32Dialog(const FormDesign& design, bool isRightToLeft, DialogEvents& events)
    : design_(design), isRightToLeft_(isRightToLeft), events_(events), font_{"Tahoma", 8},
      frame_(isRightToLeft,
             [this](UINT message, WPARAM word, LPARAM value) { return OnMessage(message, word, value); }) {
    const Counted own(ownChanges_);
    MakeControls();
    Win32Dialog::SetCaption(design.caption);
    LayOut();
}

void Win32Dialog::MakeControls() {
    const VisualStyles styles;
    for (std::size_t i = 0; i < design_.controls.size(); ++i) {
        const ControlDesign& control = design_.controls[i];
        const auto onChosen = [this, i] { Wait(Waiting::Kind::Change, *controls_[i]); };
        controls_.push_back(std::make_unique<DialogControl>(
            frame_.Window(), control, ControlId(design_, i),
            control.name == std::string_view(design_.defaultButton), isRightToLeft_, onChosen));
    }
}

void Win32Dialog::LayOut() {
    FontMetrics metrics(font_, DotsPerInchOf(frame_.Window()));
    std::optional<FontMetrics> before =
        std::exchange(metrics_, std::move(metrics)); // ends after its last use
    for (const auto& control : controls_) {
        control->UseFont(*metrics_);
    }
    const RECT inside = metrics_->PixelsOf({0, 0, design_.width, design_.height});
    frame_.Resize({inside.right, inside.bottom});
}

void Win32Dialog::ShowModal() {
    const VisualStyles styles;
    firstFocus_ = nullptr;
    frame_.Begin();
    events_.OnLoad();
    const HWND first =
        firstFocus_ != nullptr ? firstFocus_ : ::GetNextDlgTabItem(frame_.Window(), nullptr, FALSE);
    frame_.RunModal(first, [this](HWND clicked) {
        for (const auto& control : controls_) {
            if (control->Search() != nullptr) {
                control->Search()->OnClickIn(clicked);
            }
        }
    });
    waiting_.clear();
}

DialogControl& Win32Dialog::Find(std::string_view control, std::initializer_list<ControlKind> kinds) const {
    const auto found = std::find_if(controls_.begin(), controls_.end(), [&](const auto& candidate) {
        return candidate->Design().name == control;
    });
    if (found == controls_.end() ||
        std::find(kinds.begin(), kinds.end(), (*found)->Design().kind) == kinds.end()) {
        throw AutomationError(ErrorNumber::InvalidProcedureCall, std::string(design_.name) +
                                                                     ": no control '" + std::string(control) +
                                                                     "' that can do this");
    }
    return **found;
}

DialogControl* Win32Dialog::WithId(int id) const {
    const auto found = std::find_if(controls_.begin(), controls_.end(),
                                    [&](const auto& candidate) { return candidate->Id() == id; });
    return found != controls_.end() ? found->get() : nullptr;
}

void Win32Dialog::SetEnabled(std::string_view control, bool isEnabled) {
    using enum ControlKind;
    const HWND window =
        Find(control, {Label, TextBox, Button, CheckBox, ComboBox, BoundList, ListBox, Line}).Window();
    const HWND focus = ::GetFocus();
    const bool losesFocus = !isEnabled && (focus == window || ::IsChild(window, focus) != FALSE);
    if (losesFocus) { // nobody could go on by the keyboard otherwise
        ::SendMessageW(frame_.Window(), WM_NEXTDLGCTL, 0, FALSE);
    }
    ::EnableWindow(window, isEnabled ? TRUE : FALSE);
}

bool Win32Dialog::IsEnabled(std::string_view control) const {
    using enum ControlKind;
    return ::IsWindowEnabled(
               Find(control, {Label, TextBox, Button, CheckBox, ComboBox, BoundList, ListBox, Line})
                   .Window()) != FALSE;
}

void Win32Dialog::SetFocus(std::string_view control) {
    using enum ControlKind;
    firstFocus_ = Find(control, {TextBox, Button, CheckBox, ComboBox, BoundList, ListBox}).Window();
    if (frame_.IsShown()) {
        ::SendMessageW(frame_.Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(firstFocus_), TRUE);
    }
}

std::string Win32Dialog::Text(std::string_view control) const {
    using enum ControlKind;
    return Find(control, {Label, TextBox, Button, CheckBox, ComboBox, BoundList, ListBox}).Content();
}

void Win32Dialog::SetText(std::string_view control, const std::string& text) {
    using enum ControlKind;
    const Counted own(ownChanges_);
    Find(control, {Label, TextBox, Button, CheckBox}).SetContent(text);
}

bool Win32Dialog::IsChecked(std::string_view control) const {
    return Find(control, {ControlKind::CheckBox}).IsChecked();
}

void Win32Dialog::SetChecked(std::string_view control, bool isChecked) {
    const Counted own(ownChanges_);
    Find(control, {ControlKind::CheckBox}).SetChecked(isChecked);
}

void Win32Dialog::SetItems(std::string_view control, const std::vector<std::string>& items) {
    const Counted own(ownChanges_);
    Find(control, {ControlKind::ComboBox, ControlKind::ListBox}).SetItems(items);
}

std::optional<std::size_t> Win32Dialog::Selected(std::string_view control) const {
    using enum ControlKind;
    return Find(control, {ComboBox, ListBox, BoundList}).Selected();
}

void Win32Dialog::Select(std::string_view control, std::optional<std::size_t> index) {
    using enum ControlKind;
    const Counted own(ownChanges_);
    Find(control, {ComboBox, ListBox, BoundList}).Select(index);
}

void Win32Dialog::Bind(std::string_view control, std::shared_ptr<const ListSource> rows) {
    const Counted own(ownChanges_);
    Find(control, {ControlKind::BoundList}).Search()->Bind(std::move(rows));
}

std::string Win32Dialog::AskForFile(std::string_view control, const FileQuestion& question) {
    Find(control, {ControlKind::FileDialog});
    return AskForFileToOpen(frame_.Window(), question);
}

std::string Win32Dialog::Tag() const {
    return design_.tag != 0 ? std::to_string(design_.tag) : std::string();
}

void Win32Dialog::SetCaption(const std::string& caption) {
    ::SetWindowTextW(frame_.Window(), AsRead(ToWide(caption), isRightToLeft_).c_str());
}

void Win32Dialog::SetFont(const DialogFont& font) {
    if (font == font_) {
        return;
    }
    font_ = font;
    LayOut();
}

std::vector<FormControl*> Win32Dialog::Controls() const {
    std::vector<FormControl*> controls;
    for (const auto& control : controls_) {
        controls.push_back(control.get());
    }
    return controls;
}

std::optional<LRESULT> Win32Dialog::OnMessage(UINT message, WPARAM word, LPARAM value) {
    switch (message) {
    case WM_COMMAND:
        OnCommand(LOWORD(word), HIWORD(word));
        return 0;
    case WM_NOTIFY: {
        LRESULT result = 0;
        for (const auto& control : controls_) {
            if (control->Search() != nullptr &&
                control->Search()->Answer(*CarriedPointer<const NMHDR>(value), result)) {
                return result;
            }
        }
        return std::nullopt;
    }
    case tellWaiting:
    case WM_TIMER:
        TellWaitingWhenReleased();
        return 0;
    case WM_HELP:
        ShowHelp();
        return TRUE;
    case WM_CLOSE:
        OnClosed();
        return 0;
    case WM_DESTROY: // from outside: the controls can still be read
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
    if (ownChanges_ > 0) {
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
            events_.OnChange(control->Design().name);
        }
        break;
    case ControlKind::ComboBox:
    case ControlKind::ListBox:
        static_assert(CBN_SELCHANGE == LBN_SELCHANGE);
        if (code == CBN_SELCHANGE) {
            events_.OnChange(control->Design().name);
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
    // A list's combo box passes the focus on to its own text field.
    if (IsFieldKind(control->Design().kind) && code == focusLost && !HasFocus(*control)) {
        if (control->Search() != nullptr) {
            control->Search()->Commit();
        }
        Wait(Waiting::Kind::Leave, *control);
    }
}

void Win32Dialog::OnPressed(DialogControl& control) {
    // Keys press a button without leaving the field in which something was typed.
    for (const auto& other : controls_) {
        if (other->Search() != nullptr && control.Id() != IDCANCEL) {
            other->Search()->Commit();
        }
    }
    // A handler that refuses what was left in a field says why and leads back to it, or disables the button.
    const bool isRefused = !TellWaiting() || ::IsWindowEnabled(control.Window()) == FALSE;
    const bool isCancel = control.Id() == IDCANCEL; // which needs nothing of the field
    if (!frame_.IsRunning() || (control.Design().kind == ControlKind::Button && isRefused && !isCancel)) {
        return;
    }
    const WaitCursor wait;
    events_.OnClick(control.Design().name);
}

void Win32Dialog::OnClosed() {
    events_.OnQueryUnload();
    frame_.End();
}

void Win32Dialog::ShowHelp() const {
    if (!helpFile_.empty()) {
        ::ShellExecuteW(frame_.Window(), L"open", ToWide(helpFile_).c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    }
}

void Win32Dialog::Wait(Waiting::Kind kind, DialogControl& control) {
    if (!frame_.IsRunning()) { // the system's own first focus is nobody's doing
        return;
    }
    waiting_.push_back({kind, &control});
    ::PostMessageW(frame_.Window(), tellWaiting, 0, 0);
}

void Win32Dialog::TellWaitingWhenReleased() {
    // The mouse is not up yet: a message box of a handler would swallow the click, which tells what waits
    // anyway.
    if (IsButtonHeld()) {
        ::SetTimer(frame_.Window(), whileButtonIsHeld, timeBetweenLooks, nullptr);
        return;
    }
    ::KillTimer(frame_.Window(), whileButtonIsHeld);
    TellWaiting();
}

bool Win32Dialog::IsButtonHeld() const {
    const HWND holder = ::GetCapture();
    return holder != nullptr && std::any_of(controls_.begin(), controls_.end(), [&](const auto& control) {
               const ControlKind kind = control->Design().kind;
               return control->Window() == holder &&
                      (kind == ControlKind::Button || kind == ControlKind::CheckBox);
           });
}

bool Win32Dialog::TellWaiting() {
    bool areLeft = true;
    // Handlers may show message boxes, which pump messages: each event is told once.
    while (!waiting_.empty()) {
        const Waiting next = waiting_.front();
        waiting_.erase(waiting_.begin());
        if (next.kind == Waiting::Kind::Change) {
            events_.OnChange(next.control->Design().name);
        } else if (HasLeft(*next.control)) {
            events_.OnLeave(next.control->Design().name);
            areLeft = areLeft && !HasFocus(*next.control);
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
