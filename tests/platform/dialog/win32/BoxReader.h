#pragma once

#include "platform/dialog/ReadingOrder.h"
#include "platform/windows/WideText.h"
#include "text/Text.h"

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace qel::test {

inline std::string TextOfWindow(HWND window) {
    std::wstring text(2000, L'\0');
    text.resize(static_cast<std::size_t>(::GetWindowTextW(window, text.data(), 2000)));
    return windows::ToUtf8(text);
}

/// A box's text without the signs of its direction.
inline std::string PlainText(const std::string& shown) {
    const std::string lines = WithoutDirection(shown);
    return lines == shown ? shown : ReplaceAll(lines.substr(0, lines.size() - 1), " \n", "\r\n");
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
    std::function<void(HWND)> onText; ///< gets the window of the text
    /// Optional: the button for a box, when there are several boxes.
    std::function<int(const SeenBox& box)> choose;

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
        const int button = current_->choose ? current_->choose(current_->seen) : current_->button_;
        ::PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(button), 0);
        return FALSE;
    }
    static BOOL CALLBACK LookAtPart(HWND part, LPARAM) {
        current_->ReadPart(part);
        return TRUE;
    }
    void Read(HWND box) {
        seen = {};
        seen.title = TextOfWindow(box);
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
        } else if (!TextOfWindow(part).empty() && isVisible) {
            seen.text = PlainText(TextOfWindow(part));
            if (onText) {
                onText(part);
            }
        }
    }

    static inline BoxReader* current_ = nullptr;
    int button_;
    UINT_PTR timer_ = 0;
};

} // namespace qel::test
