#pragma once

#include "platform/windows/WindowsApi.h"

#include <iostream>
#include <streambuf>
#include <string>

namespace qel {

/// Whether the handle is a console's, not a file's or a pipe's.
bool IsConsole(HANDLE handle);

/// While it lives, a stream writes UTF-8 to a console, whatever its code page.
class ConsoleOutput : private std::streambuf {
public:
    ConsoleOutput(std::ostream& stream, HANDLE console);
    ~ConsoleOutput() override;
    ConsoleOutput(const ConsoleOutput&) = delete;
    ConsoleOutput& operator=(const ConsoleOutput&) = delete;

private:
    std::streamsize xsputn(const char* text, std::streamsize count) override;
    int_type overflow(int_type character) override;
    int sync() override;
    bool Write(std::wstring_view text) const;

    std::ostream& stream_;
    std::streambuf* former_;
    HANDLE console_;
    DWORD formerMode_ = 0;
    std::string pending_; ///< not written yet; may end within a character
};

/// While it lives, a stream reads what is typed at a console as UTF-8. Ctrl+Z and Enter end it.
class ConsoleInput : private std::streambuf {
public:
    ConsoleInput(std::istream& stream, HANDLE console);
    ~ConsoleInput() override;
    ConsoleInput(const ConsoleInput&) = delete;
    ConsoleInput& operator=(const ConsoleInput&) = delete;

private:
    int_type underflow() override;

    std::istream& stream_;
    std::streambuf* former_;
    HANDLE console_;
    std::string line_;
};

} // namespace qel
