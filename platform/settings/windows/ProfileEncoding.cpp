#include "platform/settings/windows/ProfileEncoding.h"

#include "platform/windows/WindowsApi.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string_view>
#include <system_error>

namespace qel::windows {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view utf16Mark = "\xFF\xFE";

bool CodePageHas(const std::wstring& text) {
    BOOL isReplaced = FALSE;
    const int length = ::WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, text.data(),
                                             static_cast<int>(text.size()), nullptr, 0, nullptr, &isReplaced);
    return text.empty() || (length > 0 && isReplaced == FALSE);
}

/// Empty when the file is missing; nullopt when it cannot be read.
std::optional<std::string> ReadBytes(const fs::path& file) {
    std::error_code failed;
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        return fs::exists(file, failed) || failed ? std::nullopt : std::optional(std::string());
    }
    return std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

std::wstring FromCodePage(const std::string& bytes) {
    const int size = static_cast<int>(bytes.size());
    const int length = ::MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, nullptr, 0);
    std::wstring text(static_cast<std::size_t>(length), L'\0');
    ::MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, text.data(), length);
    return text;
}

/// True when everything was written to disk.
bool WriteUtf16(const std::wstring& text, const fs::path& file) {
    std::ofstream stream(file, std::ios::binary);
    stream << utf16Mark;
    stream.write(reinterpret_cast<const char*>(text.data()),
                 static_cast<std::streamsize>(text.size() * sizeof(wchar_t)));
    stream.close();
    return static_cast<bool>(stream);
}

} // namespace

void MakeRoomFor(const std::wstring& text, const std::wstring& file) {
    if (CodePageHas(text)) {
        return;
    }
    const auto bytes = ReadBytes(file);
    if (!bytes || bytes->starts_with(utf16Mark)) {
        return;
    }
    const std::wstring rewritten = file + L".new"; // replaces the file once it is complete
    std::error_code ignored;
    if (WriteUtf16(FromCodePage(*bytes), rewritten)) {
        fs::rename(rewritten, file, ignored);
    }
    fs::remove(rewritten, ignored);
}

} // namespace qel::windows
