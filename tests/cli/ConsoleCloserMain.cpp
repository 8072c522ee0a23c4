#include "platform/windows/WindowsApi.h"

#include <cstdlib>
#include <cwchar>

// console_closer PATTERN COMMAND: runs the command, and once there is a file that matches, does with it what
// Windows does with the programs of a console whose window is closed. Its status is the command's.

namespace {

bool IsThere(const wchar_t* pattern) {
    WIN32_FIND_DATAW found = {};
    const HANDLE search = ::FindFirstFileW(pattern, &found);
    return search != INVALID_HANDLE_VALUE && ::FindClose(search) != 0;
}

} // namespace

int wmain(int /*count*/, wchar_t** arguments) {
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION process = {};
    if (::CreateProcessW(nullptr, arguments[2], nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                         &process) == 0) {
        return EXIT_FAILURE;
    }
    while (!IsThere(arguments[1]) && ::WaitForSingleObject(process.hProcess, 10) == WAIT_TIMEOUT) {
    }
    // System libraries stand at the same place in every process.
    const auto routine = reinterpret_cast<LPTHREAD_START_ROUTINE>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"kernelbase.dll"), "CtrlRoutine")));
    ::CreateRemoteThread(process.hProcess, nullptr, 0, routine, reinterpret_cast<void*>(CTRL_CLOSE_EVENT), 0,
                         nullptr);
    constexpr DWORD patience = 60'000;
    DWORD status = ~0U;
    if (::WaitForSingleObject(process.hProcess, patience) == WAIT_OBJECT_0) {
        ::GetExitCodeProcess(process.hProcess, &status);
    }
    ::TerminateProcess(process.hProcess, status);
    return static_cast<int>(status);
}
