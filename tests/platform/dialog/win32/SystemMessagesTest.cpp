#include "platform/dialog/win32/SystemMessages.h"

#include "platform/dialog/win32/AlwaysOnTop.h"
#include "platform/windows/WideText.h"
#include "support/ModError.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace qel::test {
namespace {

std::string TextOf(HWND window) {
    std::wstring text(2000, L'\0');
    text.resize(static_cast<std::size_t>(::GetWindowTextW(window, text.data(), 2000)));
    return windows::ToUtf8(text);
}

/// What a message box showed.
struct SeenBox {
    std::string title, text;
    HWND owner = nullptr;
    bool hasIcon = false, ownerIsEnabled = true;
    std::vector<int> buttons; ///< their numbers, ascending
};

/// Watches the thread's windows: reads a message box when it appears, and presses one of its buttons.
class BoxReader {
public:
    explicit BoxReader(int button) : button_(button) {
        current_ = this;
        timer_ = ::SetTimer(nullptr, 0, 20, &BoxReader::Look);
    }
    ~BoxReader() {
        ::KillTimer(nullptr, timer_);
        current_ = nullptr;
    }
    BoxReader(const BoxReader&) = delete;
    BoxReader& operator=(const BoxReader&) = delete;

    SeenBox seen;

private:
    static void CALLBACK Look(HWND, UINT, UINT_PTR, DWORD) {
        ::EnumThreadWindows(::GetCurrentThreadId(), &BoxReader::LookAt, 0);
    }
    /// FALSE ends the search.
    static BOOL CALLBACK LookAt(HWND window, LPARAM) {
        wchar_t name[16] = {};
        ::GetClassNameW(window, name, 16);
        if (std::wstring(name) != L"#32770") {
            return TRUE;
        }
        current_->Read(window);
        ::PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(current_->button_), 0);
        return FALSE;
    }
    static BOOL CALLBACK LookAtPart(HWND part, LPARAM) {
        current_->ReadPart(part);
        return TRUE;
    }
    void Read(HWND box) {
        seen = {};
        seen.title = TextOf(box);
        seen.owner = ::GetWindow(box, GW_OWNER);
        seen.ownerIsEnabled = seen.owner != nullptr && ::IsWindowEnabled(seen.owner) != 0;
        ::EnumChildWindows(box, &BoxReader::LookAtPart, 0);
        std::sort(seen.buttons.begin(), seen.buttons.end());
    }
    void ReadPart(HWND part) {
        wchar_t name[16] = {};
        ::GetClassNameW(part, name, 16);
        const bool isVisible = (::GetWindowLongW(part, GWL_STYLE) & WS_VISIBLE) != 0;
        if (std::wstring(name) == L"Button" && isVisible) {
            seen.buttons.push_back(::GetDlgCtrlID(part));
        } else if ((::GetWindowLongW(part, GWL_STYLE) & SS_TYPEMASK) == SS_ICON) {
            seen.hasIcon = seen.hasIcon || isVisible;
        } else if (!TextOf(part).empty() && isVisible) {
            seen.text = TextOf(part);
        }
    }

    static inline BoxReader* current_ = nullptr;
    int button_;
    UINT_PTR timer_ = 0;
};

class OwnerWindow {
public:
    OwnerWindow()
        : window_(::CreateWindowExW(0, L"STATIC", L"sheet", WS_OVERLAPPEDWINDOW, 10, 20, 200, 100, nullptr,
                                    nullptr, nullptr, nullptr)) {}
    ~OwnerWindow() { ::DestroyWindow(window_); }
    OwnerWindow(const OwnerWindow&) = delete;
    OwnerWindow& operator=(const OwnerWindow&) = delete;
    HWND Get() const { return window_; }

private:
    HWND window_;
};

TEST(SystemMessages, AReportIsOneWarningWithOkAlone) {
    windows::SystemMessages messages;
    BoxReader box(IDOK);
    ModError::ReportError(messages, {75, "התיקייה 'ג:\\' אינה זמינה", "Jet", 3}, "", "SetDate",
                          "frmFuncQelWiz");
    EXPECT_EQ(box.seen.title, "OrmFuncQel4");
    EXPECT_EQ(box.seen.text,
              "Error : 75\r\n\r\nהתיקייה 'ג:\\' אינה זמינה\r\n\r\n\r\nCode Section : 3\r\nFunction : SetDate"
              "\r\nModule : frmFuncQelWiz\r\nSource : Jet");
    EXPECT_EQ(box.seen.buttons, std::vector<int>{IDOK});
    EXPECT_TRUE(box.seen.hasIcon);
}

TEST(SystemMessages, AnswersWithTheButtonThatWasPressed) {
    windows::SystemMessages messages;
    struct AnswerCase {
        std::int32_t style;
        int button;
        MessageBoxAnswer answer;
        std::vector<int> buttons;
    };
    const AnswerCase cases[] = {
        {MessageBoxStyle::YesNoWithStop, IDYES, MessageBoxAnswer::Yes, {IDYES, IDNO}},
        {MessageBoxStyle::YesNoWithStop, IDNO, MessageBoxAnswer::No, {IDYES, IDNO}},
        {MessageBoxStyle::Exclamation, IDOK, MessageBoxAnswer::Ok, {IDOK}},
    };
    for (const auto& c : cases) {
        BoxReader box(c.button);
        EXPECT_EQ(messages.Show(c.style, "", "למחוק?"), c.answer) << c.button;
        EXPECT_EQ(box.seen.title, "") << "not the system's own word for an error";
        EXPECT_EQ(box.seen.text, "למחוק?");
        EXPECT_EQ(box.seen.buttons, c.buttons);
    }
}

TEST(SystemMessages, ABoxBelongsToTheActiveWindow) {
    const OwnerWindow owner;
    ::ShowWindow(owner.Get(), SW_SHOW);
    ::SetActiveWindow(owner.Get());
    windows::SystemMessages messages;
    BoxReader box(IDOK);
    messages.Show(MessageBoxStyle::Exclamation, "t", "x");
    EXPECT_EQ(box.seen.owner, owner.Get());
    EXPECT_FALSE(box.seen.ownerIsEnabled) << "waits for the answer";
    EXPECT_TRUE(::IsWindowEnabled(owner.Get())) << "is usable again";
}

TEST(AlwaysOnTop, RaisesAWindowAboveAllOthersAndLowersItAgain) {
    const OwnerWindow window;
    RECT before = {};
    RECT after = {};
    ::GetWindowRect(window.Get(), &before);
    const auto isTopmost = [&] { return (::GetWindowLongW(window.Get(), GWL_EXSTYLE) & WS_EX_TOPMOST) != 0; };
    EXPECT_NE(windows::SetAlwaysOnTop(window.Get(), true), 0);
    EXPECT_TRUE(isTopmost());
    EXPECT_EQ(windows::SetAlwaysOnTop(window.Get(), false), 0);
    EXPECT_FALSE(isTopmost());
    ::GetWindowRect(window.Get(), &after);
    EXPECT_TRUE(::EqualRect(&before, &after)) << "its place and size stay";
    EXPECT_EQ(windows::SetAlwaysOnTop(reinterpret_cast<HWND>(0x12), true), 0) << "no window";
}

} // namespace
} // namespace qel::test
