#include "platform/windows/WindowsApi.h"
#include "tests/helpers/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <string>

namespace qel {
namespace {

using test::TemporaryFolder;

std::filesystem::path LongDefinition(const TemporaryFolder& folder) {
    std::string lines = "code,amount\n";
    for (int i = 0; i < 4'000'000; ++i) {
        lines += "7,1\n";
    }
    folder.Write("long.csv", lines);
    return folder.Write("long.json", R"({"tables": {"t": {"file": "long.csv"}}, "cubes": [{"name": "LongFNC",
        "facts": ["t"], "dimensions": [{"name": "D", "column": "code"}],
        "measures": [{"name": "M", "column": "amount"}]}]})");
}

/// The program in a group of its own, which alone gets the console's events.
PROCESS_INFORMATION Start(std::wstring commandLine, HANDLE errors) {
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdError = errors;
    PROCESS_INFORMATION process = {};
    EXPECT_NE(::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, CREATE_NEW_PROCESS_GROUP,
                               nullptr, nullptr, &start, &process),
              FALSE);
    return process;
}

TEST(WindowsInterruption, ABuildTakesBackWhatItHasHalfDone) {
    const TemporaryFolder folder;
    const auto definition = LongDefinition(folder);
    const auto old = folder.Write("long.cub", "the old file");
    ::AllocConsole();
    SECURITY_ATTRIBUTES inherited = {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    const HANDLE errors = ::CreateFileW(folder.Path("errors").c_str(), GENERIC_WRITE, FILE_SHARE_READ,
                                        &inherited, CREATE_ALWAYS, 0, nullptr);
    const auto process = Start(L"\"" QEL_PROGRAM L"\" cube build \"" + definition.wstring() +
                                   L"\" --output \"" + old.wstring() + L"\"",
                               errors);
    while (folder.FileCount() < 5 && ::WaitForSingleObject(process.hProcess, 1) == WAIT_TIMEOUT) {
    }
    EXPECT_EQ(folder.FileCount(), 5U) << "the file that is written";
    EXPECT_NE(::GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, process.dwProcessId), FALSE);
    constexpr DWORD patience = 60'000;
    ASSERT_EQ(::WaitForSingleObject(process.hProcess, patience), WAIT_OBJECT_0);
    DWORD status = 0;
    ::GetExitCodeProcess(process.hProcess, &status);
    ::CloseHandle(errors);
    EXPECT_EQ(status, 1U);
    EXPECT_EQ(folder.Read("errors"), "qel: interrupted; the cube file is as it was\n");
    EXPECT_EQ(folder.Read("long.cub"), "the old file");
    EXPECT_EQ(folder.FileCount(), 4U) << "nothing is left of the new one";
}

} // namespace
} // namespace qel
