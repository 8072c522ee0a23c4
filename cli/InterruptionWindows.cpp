#include "cli/Interruption.h"
#include "platform/windows/WindowsApi.h"

#include <atomic>
#include <stdexcept>

namespace qel {

namespace {

// A handler takes no argument of ours.
std::atomic<bool> wasAsked = false;

/// Runs on a thread of the system's. When a window closes or the user leaves, the program has the time until
/// this returns, and some seconds at most.
BOOL WINAPI TakeNote(DWORD event) {
    wasAsked = true;
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
        ::Sleep(INFINITE);
    }
    return TRUE;
}

} // namespace

Interruption::Interruption() { ::SetConsoleCtrlHandler(TakeNote, TRUE); }

Interruption::~Interruption() { ::SetConsoleCtrlHandler(TakeNote, FALSE); }

void Interruption::Check(const char* message) const {
    if (wasAsked) {
        throw std::runtime_error(message);
    }
}

} // namespace qel
