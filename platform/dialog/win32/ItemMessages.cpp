#include "platform/dialog/win32/ItemMessages.h"

#include "platform/value/AutomationError.h"
#include "platform/windows/WideText.h"

namespace qel::windows {

void Items::Replace(const std::vector<std::string>& items) const {
    Send(WM_SETREDRAW, FALSE);
    Send(messages_.reset);
    for (const std::string& item : items) {
        Send(messages_.add, 0, reinterpret_cast<LPARAM>(ToWide(item).c_str()));
    }
    Send(WM_SETREDRAW, TRUE);
    ::InvalidateRect(window_, nullptr, TRUE);
}

std::optional<std::size_t> Items::Selected() const {
    const LRESULT index = Send(messages_.selected);
    return index < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(index));
}

void Items::Select(std::optional<std::size_t> index) const {
    if (index && *index >= static_cast<std::size_t>(Send(messages_.count))) {
        throw PlatformError(ErrorNumber::SubscriptOutOfRange);
    }
    Send(messages_.select, index ? *index : static_cast<WPARAM>(-1));
}

std::wstring Items::Text(std::size_t index) const {
    std::wstring text(static_cast<std::size_t>(Send(messages_.textLength, index)), L'\0');
    Send(messages_.text, index, reinterpret_cast<LPARAM>(text.data()));
    return text;
}

std::string Items::SelectedText() const {
    const auto index = Selected();
    return index ? ToUtf8(Text(*index)) : std::string();
}

std::wstring WindowText(HWND window) {
    std::wstring text(static_cast<std::size_t>(::GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(
        static_cast<std::size_t>(::GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

} // namespace qel::windows
