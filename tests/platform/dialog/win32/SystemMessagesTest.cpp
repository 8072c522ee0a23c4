#include "platform/dialog/win32/SystemMessages.h"

#include "platform/dialog/win32/AlwaysOnTop.h"
#include "support/ModError.h"
#include "tests/platform/dialog/win32/BoxReader.h"
#include "tests/platform/dialog/win32/Picture.h"

#include <gtest/gtest.h>

namespace qel::test {
namespace {

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

TEST(SystemMessages, AHebrewSentenceEndsOnTheLeftAndKeepsItsFirstLetter) {
    windows::SystemMessages messages;
    BoxReader box(IDOK);
    std::optional<int> sign;
    std::optional<int> word;
    box.onText = [&](HWND text) {
        const Picture picture = Picture::OfWindow(text);
        sign = picture.Find(Picture::OfText(text, L"?"));
        word = picture.Find(Picture::OfText(text, L"יש"));
    };
    messages.Show(MessageBoxStyle::Exclamation, "", "יש למחוק?\r\nA.cub");
    EXPECT_EQ(box.seen.text, "יש למחוק?\r\nA.cub");
    EXPECT_TRUE(sign && word);
    EXPECT_LT(sign, word);
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
