#include "cli/ConsoleStreams.h"

#include "platform/windows/WideText.h"
#include "text/Text.h"

#include <algorithm>

namespace qel {

namespace {

/// The bytes of whole characters at the start.
std::size_t WholeCharacters(std::string_view text) {
    constexpr std::size_t longest = 4;
    for (std::size_t back = 1; back <= std::min(longest, text.size()); ++back) {
        const auto byte = static_cast<unsigned char>(text[text.size() - back]);
        if (byte < 0x80) {
            break;
        }
        if (byte >= 0xC0) {
            const std::size_t length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
            return back < length ? text.size() - back : text.size();
        }
    }
    return text.size();
}

} // namespace

bool IsConsole(HANDLE handle) {
    DWORD mode = 0;
    return ::GetConsoleMode(handle, &mode) != FALSE;
}

ConsoleOutput::ConsoleOutput(std::ostream& stream, HANDLE console)
    : stream_(stream), former_(stream.rdbuf(this)), console_(console) {
    constexpr DWORD terminalSequences = 0x0004; // ENABLE_VIRTUAL_TERMINAL_PROCESSING
    ::GetConsoleMode(console_, &formerMode_);
    ::SetConsoleMode(console_, formerMode_ | terminalSequences);
}

ConsoleOutput::~ConsoleOutput() {
    sync();
    ::SetConsoleMode(console_, formerMode_);
    stream_.rdbuf(former_);
}

std::streamsize ConsoleOutput::xsputn(const char* text, std::streamsize count) {
    constexpr std::size_t enough = 4096;
    pending_.append(text, static_cast<std::size_t>(count));
    return pending_.size() < enough || sync() == 0 ? count : 0;
}

ConsoleOutput::int_type ConsoleOutput::overflow(int_type character) {
    if (traits_type::eq_int_type(character, traits_type::eof())) {
        return traits_type::not_eof(character);
    }
    const char byte = traits_type::to_char_type(character);
    return xsputn(&byte, 1) == 1 ? character : traits_type::eof();
}

int ConsoleOutput::sync() {
    const std::size_t whole = WholeCharacters(pending_);
    const std::wstring text = windows::ToWide(std::string_view(pending_).substr(0, whole));
    pending_.erase(0, whole);
    return Write(text) ? 0 : -1;
}

bool ConsoleOutput::Write(std::wstring_view text) const {
    constexpr std::size_t mostAtOnce = 8192; // older consoles take 64 KiB in all
    while (!text.empty()) {
        DWORD written = 0;
        if (::WriteConsoleW(console_, text.data(), static_cast<DWORD>(std::min(text.size(), mostAtOnce)),
                            &written, nullptr) == FALSE ||
            written == 0) {
            return false;
        }
        text.remove_prefix(written);
    }
    return true;
}

ConsoleInput::ConsoleInput(std::istream& stream, HANDLE console)
    : stream_(stream), former_(stream.rdbuf(this)), console_(console) {}

ConsoleInput::~ConsoleInput() { stream_.rdbuf(former_); }

ConsoleInput::int_type ConsoleInput::underflow() {
    constexpr DWORD longest = 8192;
    constexpr wchar_t endKey = L'\x1A'; // Ctrl+Z
    std::wstring typed(longest, L'\0');
    DWORD length = 0;
    if (::ReadConsoleW(console_, typed.data(), longest, &length, nullptr) == FALSE || length == 0 ||
        typed.front() == endKey) {
        return traits_type::eof();
    }
    typed.resize(length);
    line_ = ReplaceAll(windows::ToUtf8(typed), "\r\n", "\n");
    setg(line_.data(), line_.data(), line_.data() + line_.size());
    return traits_type::to_int_type(line_.front());
}

} // namespace qel
