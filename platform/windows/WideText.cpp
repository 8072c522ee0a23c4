#include "platform/windows/WideText.h"

#include "platform/value/AutomationError.h"

#include <limits>

namespace qel::windows {

namespace {

int LengthOf(std::size_t size) {
    if (size > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        throw PlatformError(ErrorNumber::Overflow);
    }
    return static_cast<int>(size);
}

} // namespace

std::wstring ToWide(std::string_view text) {
    const int length = LengthOf(text.size());
    const int wideLength = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(wideLength), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data(), wideLength);
    return wide;
}

std::string ToUtf8(std::wstring_view text) {
    const int length = LengthOf(text.size());
    const int bytes = ::WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(bytes), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, text.data(), length, utf8.data(), bytes, nullptr, nullptr);
    return utf8;
}

std::string TextOfBstr(BSTR text) {
    if (text == nullptr) {
        return {};
    }
    return ToUtf8({text, ::SysStringLen(text)});
}

} // namespace qel::windows
