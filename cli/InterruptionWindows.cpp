#include "cli/Interruption.h"
#include "platform/windows/WindowsApi.h"

#include <atomic>
#include <stdexcept>

namespace qel {

namespace {

// A handler takes no argument of ours.
std::atomic<bool> wasAsked = false;
std::atomic<bool> isClosing = false;

/// Runs on a thread of the system's. When a window closes or the user leaves, the program has the time until
/// this returns, and some seconds at most.
BOOL WINAPI TakeNote(DWORD event) {
    const bool closes = event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT;
    isClosing = isClosing || closes;
    wasAsked = true;
    if (closes) {
        ::Sleep(INFINITE);
    }
    return TRUE;
}

} // namespace

Interruption::Interruption() { ::SetConsoleCtrlHandler(TakeNote, TRUE); }

Interruption::~Interruption() {
    if (!isClosing) { // the list of handlers is locked while one of them runs
        ::SetConsoleCtrlHandler(TakeNote, FALSE);
    }
}

void Interruption::Check(const char* message) const {
    if (wasAsked) {
        throw std::runtime_error(message);
    }
}

} // namespace qel
