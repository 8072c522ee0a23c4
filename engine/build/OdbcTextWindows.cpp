#include "engine/build/OdbcText.h"

namespace qel::engine {

OdbcString ToOdbc(std::string_view text) {
    const auto size = static_cast<int>(text.size());
    const int length = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0);
    OdbcString wide(static_cast<std::size_t>(length), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), length);
    return wide;
}

std::string FromOdbc(OdbcView text) {
    if (text.empty()) {
        return {};
    }
    const auto size = static_cast<int>(text.size());
    const int length =
        ::WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(length), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, text.data(), size, utf8.data(), length, nullptr, nullptr);
    return length > 0 ? utf8 : "\xFF";
}

Utf8Locale::Utf8Locale() = default;

Utf8Locale::~Utf8Locale() = default;

} // namespace qel::engine
