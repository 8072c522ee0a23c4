#include "platform/dialog/win32/SystemMessages.h"

#include "platform/dialog/ReadingOrder.h"
#include "platform/windows/WideText.h"
#include "text/Text.h"

namespace qel::windows {

namespace {

/// The text with marks for systems that ignore MB_RTLREADING. These do not count the marks in a line's width,
/// so a space makes room for them.
std::string Marked(const std::string& text) {
    return BeginsRightToLeft(text) ? LinesInOwnDirection(ReplaceAll(text, "\r\n", " \n") + " ") : text;
}

} // namespace

MessageBoxAnswer SystemMessages::Show(std::int32_t style, const std::string& title, const std::string& text) {
    HWND const owner = ::GetActiveWindow();
    // Without an owner, a plain box would leave the thread's other windows enabled.
    const UINT direction = BeginsRightToLeft(text) ? MB_RTLREADING | MB_RIGHT : 0U;
    const UINT flags = static_cast<UINT>(style) | direction | (owner == nullptr ? MB_TASKMODAL : 0U);
    const std::wstring shown = ToWide(Marked(text));
    const int answer = ::MessageBoxW(owner, shown.c_str(), ToWide(title).c_str(), flags);
    return answer > 0 ? static_cast<MessageBoxAnswer>(answer) : MessageBoxAnswer::Ok;
}

} // namespace qel::windows
