#include "tests/platform/dialog/win32/Person.h"

#include "platform/dialog/ReadingOrder.h"
#include "platform/dialog/win32/CarriedPointer.h"
#include "platform/dialog/win32/ControlIds.h"
#include "platform/dialog/win32/ItemMessages.h"
#include "platform/windows/WideText.h"

#include <atomic>
#include <cstdlib>
#include <iostream>
#include <thread>

namespace qel::test {

namespace {

using windows::ToUtf8;
using windows::ToWide;

constexpr auto patience = std::chrono::seconds(60);
constexpr auto pause = std::chrono::milliseconds(20);
constexpr auto timeOfClick = std::chrono::milliseconds(60); // how long a finger holds the button down
constexpr int messageBoxText = 0xFFFF;                      // the number of a message box's label
constexpr int fileNameBox = 1148;                           // of the system's open-file dialog (cmb13)

/// A text of another process's window.
std::wstring TextOf(HWND window) {
    std::wstring text(static_cast<std::size_t>(::SendMessageW(window, WM_GETTEXTLENGTH, 0, 0)) + 1, L'\0');
    const auto length =
        ::SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

bool HasClass(HWND window, const wchar_t* name) {
    wchar_t found[64] = {};
    ::GetClassNameW(window, found, 64);
    return ::lstrcmpiW(found, name) == 0;
}

bool IsOf(const FormDesign& design, HWND window) {
    if (!HasClass(window, L"#32770") || ::IsWindowVisible(window) == FALSE) {
        return false;
    }
    for (std::size_t i = 0; i < design.controls.size(); ++i) {
        if (design.controls[i].kind != ControlKind::FileDialog &&
            ::GetDlgItem(window, windows::ControlId(design, i)) == nullptr) {
            return false;
        }
    }
    constexpr int firstId = 100;
    const int next = firstId + static_cast<int>(design.controls.size());
    return ::GetDlgItem(window, next) == nullptr; // which another design with the same first controls has
}

struct WindowSearch {
    const std::function<bool(HWND)>& isWanted;
    HWND found = nullptr;
};

// Not a lambda: on 32-bit Windows its calling convention differs.
BOOL CALLBACK LookAtWindow(HWND window, LPARAM at) {
    auto& search = *windows::CarriedPointer<WindowSearch>(at);
    if (!search.isWanted(window)) {
        return TRUE;
    }
    search.found = window;
    return FALSE;
}

/// The first matching window on the screen, or null.
HWND FindWindowWhere(const std::function<bool(HWND)>& isWanted) {
    WindowSearch search{isWanted};
    ::EnumWindows(LookAtWindow, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

HWND FindMessageBox() {
    return FindWindowWhere([](HWND window) {
        return HasClass(window, L"#32770") && ::IsWindowVisible(window) != FALSE &&
               ::GetDlgItem(window, messageBoxText) != nullptr;
    });
}

/// A message box's text without the signs of its direction.
std::string BoxText(HWND box) {
    const std::string shown = ToUtf8(TextOf(::GetDlgItem(box, messageBoxText)));
    const std::string plain = WithoutDirection(shown);
    return plain == shown ? shown : plain.substr(0, plain.size() - 1);
}

void PressKey(HWND window, WORD key) {
    ::PostMessageW(window, WM_KEYDOWN, key, 1);
    ::PostMessageW(window, WM_KEYUP, key, 1);
}

void TypeText(HWND field, const std::string& text) {
    ::PostMessageW(field, EM_SETSEL, 0, -1);
    ::PostMessageW(field, WM_CHAR, VK_BACK, 1);
    for (const wchar_t character : ToWide(text)) {
        ::PostMessageW(field, WM_CHAR, static_cast<WPARAM>(character), 1);
    }
}

void PressAndRelease(HWND window, LPARAM pressed, LPARAM released) {
    ::PostMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, pressed);
    std::this_thread::sleep_for(timeOfClick);
    ::PostMessageW(window, WM_LBUTTONUP, 0, released);
}

/// The text field of a bound list, otherwise the control itself.
HWND FieldOf(HWND control) {
    const HWND inner = ::FindWindowExW(control, nullptr, L"Edit", nullptr);
    return inner != nullptr ? inner : control;
}

} // namespace

void Person::ActDuring(const std::function<void()>& call, const std::function<void()>& act,
                       const std::string& notes) {
    std::atomic<bool> hasLeft = false;
    std::thread acting([&] {
        try {
            act();
        } catch (const std::exception& error) {
            std::cout << error.what() << "; box: " << TextOfBox() << "; after: " << notes << std::endl;
            std::_Exit(1);
        }
        hasLeft = true;
    });
    std::exception_ptr failure;
    try {
        call();
    } catch (...) {
        failure = std::current_exception();
    }
    for (MSG message = {}; !hasLeft; ::Sleep(5)) { // the person still looks at the closed dialog
        while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
            ::DispatchMessageW(&message);
        }
    }
    acting.join();
    if (failure) {
        std::rethrow_exception(failure);
    }
}

void Person::WaitUntil(const std::string& what, const std::function<bool()>& holds) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!holds()) {
        if (std::chrono::steady_clock::now() > end) {
            throw Disappointment("This never came: " + what);
        }
        std::this_thread::sleep_for(pause);
    }
}

Person::Person(const FormDesign& design) : design_(design) {
    WaitUntil(std::string("the dialog ") + design.name, [&] {
        dialog_ = FindWindowWhere([&](HWND window) { return IsOf(design, window); });
        return dialog_ != nullptr;
    });
}

HWND Person::Control(const std::string& name) const {
    for (std::size_t i = 0; i < design_.controls.size(); ++i) {
        if (name == design_.controls[i].name) {
            return ::GetDlgItem(dialog_, windows::ControlId(design_, i));
        }
    }
    throw Disappointment("The form has no control " + name);
}

bool Person::IsEnabled(const std::string& control) const {
    return ::IsWindowEnabled(dialog_) != FALSE && ::IsWindowEnabled(Control(control)) != FALSE;
}

void Person::Focus(const std::string& control) const {
    WaitUntil(control + " can be used", [&] { return IsEnabled(control); });
    const HWND window = Control(control);
    const auto hasFocus = [&] {
        GUITHREADINFO state = {};
        state.cbSize = sizeof(state);
        ::GetGUIThreadInfo(::GetWindowThreadProcessId(dialog_, nullptr), &state);
        return state.hwndFocus == window || ::IsChild(window, state.hwndFocus) != FALSE;
    };
    if (hasFocus()) {
        return;
    }
    ::PostMessageW(dialog_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(window), TRUE);
    WaitUntil(control + " has the focus", hasFocus);
}

void Person::Key(const std::string& control, WORD key) const {
    Focus(control);
    PressKey(FieldOf(Control(control)), key);
}

void Person::Type(const std::string& control, const std::string& text) const {
    Focus(control);
    TypeText(FieldOf(Control(control)), text);
    Expect(control, text);
}

void Person::Choose(const std::string& control, const std::string& item) const {
    Focus(control);
    const HWND window = Control(control);
    const bool isList = HasClass(window, L"ListBox");
    const std::wstring text = ToWide(item);
    LRESULT wanted = -1;
    WaitUntil(control + " offers '" + item + "'", [&] {
        wanted = ::SendMessageW(window, isList ? LB_FINDSTRINGEXACT : CB_FINDSTRINGEXACT,
                                static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text.c_str()));
        return wanted >= 0;
    });
    const UINT selected = isList ? LB_GETCURSEL : CB_GETCURSEL;
    const LRESULT from = ::SendMessageW(window, selected, 0, 0);
    for (LRESULT step = 0; step < std::abs(static_cast<long>(wanted - from)); ++step) {
        PressKey(window, wanted > from ? VK_DOWN : VK_UP);
    }
    WaitUntil(control + " shows '" + item + "'",
              [&] { return ::SendMessageW(window, selected, 0, 0) == wanted; });
}

void Person::Click(const std::string& control) const {
    WaitUntil(control + " can be clicked", [&] { return IsEnabled(control); });
    const HWND window = Control(control);
    RECT area = {};
    ::GetClientRect(window, &area);
    // A list's arrow is at its end.
    const LPARAM point = MAKELPARAM(HasClass(window, L"ComboBox") ? area.right - 6 : 5, area.bottom / 2);
    PressAndRelease(window, point, point);
}

void Person::PressAndSlipOff(const std::string& button) const {
    WaitUntil(button + " can be pressed", [&] { return IsEnabled(button); });
    PressAndRelease(Control(button), MAKELPARAM(5, 5), MAKELPARAM(-50, -50));
}

void Person::UseCloseBox() const { ::PostMessageW(dialog_, WM_SYSCOMMAND, SC_CLOSE, 0); }

std::string Person::Read(const std::string& control) const {
    const HWND window = Control(control);
    if (!HasClass(window, L"ListBox")) {
        return ToUtf8(TextOf(window));
    }
    std::wstring lines;
    const LRESULT count = ::SendMessageW(window, LB_GETCOUNT, 0, 0);
    for (LRESULT i = 0; i < count; ++i) {
        const auto index = static_cast<WPARAM>(i);
        std::wstring line(static_cast<std::size_t>(::SendMessageW(window, LB_GETTEXTLEN, index, 0)), L'\0');
        ::SendMessageW(window, LB_GETTEXT, index, reinterpret_cast<LPARAM>(line.data()));
        lines += (i == 0 ? L"" : L"|") + line;
    }
    return ToUtf8(lines);
}

std::string Person::ReadWhenShown(const std::string& control) const {
    std::string text;
    WaitUntil(control + " shows something", [&] {
        text = Read(control);
        return !text.empty();
    });
    return text;
}

bool Person::IsTicked(const std::string& control) const {
    return ::SendMessageW(Control(control), BM_GETCHECK, 0, 0) == BST_CHECKED;
}

void Person::Expect(const std::string& control, const std::string& text) const {
    try {
        WaitUntil(control, [&] { return Read(control) == text; });
    } catch (const Disappointment&) {
        throw Disappointment(control + " shows '" + Read(control) + "' and not '" + text + "'");
    }
}

HWND Person::WaitForPopup() const {
    HWND popup = nullptr;
    WaitUntil("a box before the dialog", [&] {
        DWORD process = 0;
        ::GetWindowThreadProcessId(dialog_, &process);
        popup = FindWindowWhere([&](HWND window) {
            DWORD owner = 0;
            ::GetWindowThreadProcessId(window, &owner);
            return window != dialog_ && owner == process && HasClass(window, L"#32770") &&
                   ::IsWindowVisible(window) != FALSE;
        });
        return popup != nullptr;
    });
    return popup;
}

std::string Person::TextOfBox() {
    const HWND box = FindMessageBox();
    return box != nullptr ? BoxText(box) : std::string();
}

std::string Person::Answer(int button) {
    HWND box = nullptr;
    WaitUntil("a message box", [&] {
        box = FindMessageBox();
        return box != nullptr;
    });
    std::string text = BoxText(box);
    ::PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(button), 0);
    WaitUntil("the box closes", [&] { return ::IsWindow(box) == FALSE; });
    return text;
}

void Person::ChooseFile(const std::string& path) const {
    const HWND box = WaitForPopup();
    HWND field = nullptr;
    WaitUntil("the field of the file's name", [&] {
        field = ::GetDlgItem(box, fileNameBox);
        if (field == nullptr) {
            field = ::GetDlgItem(box, 1152); // an older form of the dialog has a text box (edt1)
        }
        return field != nullptr;
    });
    const std::wstring text = ToWide(path);
    ::SendMessageW(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
    ::PostMessageW(box, WM_COMMAND, IDOK, 0);
    WaitUntil("the file dialog closes", [&] { return ::IsWindow(box) == FALSE; });
}

void Person::ExpectGone() const {
    WaitUntil("the dialog closes",
              [&] { return ::IsWindow(dialog_) == FALSE || ::IsWindowVisible(dialog_) == FALSE; });
}

} // namespace qel::test
