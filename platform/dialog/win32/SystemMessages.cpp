#include "platform/dialog/win32/SystemMessages.h"

#include "platform/dialog/ReadingOrder.h"
#include "platform/windows/WideText.h"

namespace qel::windows {

MessageBoxAnswer SystemMessages::Show(std::int32_t style, const std::string& title, const std::string& text) {
    HWND const owner = ::GetActiveWindow();
    // Without an owner, a plain box would leave the thread's other windows enabled.
    const UINT direction = BeginsRightToLeft(text) ? MB_RTLREADING | MB_RIGHT : 0U;
    const UINT flags = static_cast<UINT>(style) | direction | (owner == nullptr ? MB_TASKMODAL : 0U);
    const int answer = ::MessageBoxW(owner, ToWide(text).c_str(), ToWide(title).c_str(), flags);
    return answer > 0 ? static_cast<MessageBoxAnswer>(answer) : MessageBoxAnswer::Ok;
}

} // namespace qel::windows
