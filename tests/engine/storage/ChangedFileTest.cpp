#include "qel/engine/CubeFile.h"
#include "tests/engine/FaultOf.h"
#include "tests/engine/storage/SmallCube.h"
#include "tests/helpers/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <functional>
#include <optional>
#include <string>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

// Files that another program modifies while they are open. No reader may crash or return a wrong number.

namespace qel::engine {
namespace {

using test::TemporaryFolder;
using testing::HasSubstr;

constexpr std::uint64_t manyRows = 200'000;

/// Facts over several pages, all with the same value.
SmallCube EqualFacts(std::int8_t value) {
    return {manyRows, [value](std::size_t) { return value; }};
}

std::int64_t SumValues(const Cube& cube) {
    const auto* const values =
        reinterpret_cast<const std::int8_t*>(cube.Facts().Projections()[0].Values(0, {0, manyRows}));
    std::int64_t sum = 0;
    for (std::uint64_t row = 0; row < manyRows; ++row) {
        sum += values[row];
    }
    return sum;
}

/// The sum, or nothing when the file is found to have changed.
std::optional<std::int64_t> CheckedSum(const Cube& cube, std::string* fault = nullptr) {
    std::int64_t sum = 0;
    const auto [kind, text] = FaultOf([&] {
        sum = SumValues(cube);
        cube.CheckUnchanged();
    });
    EXPECT_EQ(kind.value_or(ErrorKind::DamagedFile), ErrorKind::DamagedFile);
    if (fault != nullptr) {
        *fault = text;
    }
    return kind ? std::nullopt : std::optional(sum);
}

/// Runs `work` in a child process.
pid_t InAnotherProcess(const std::function<void()>& work) {
    const pid_t child = fork();
    if (child == 0) {
        work();
        _exit(0);
    }
    return child;
}

void WaitFor(pid_t child) {
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST(ChangedFile, CrashesNoReaderAndIsAnError) {
    const TemporaryFolder folder;
    EqualFacts(2).Write(folder.Path("other.cub"));
    const std::string other = folder.Read("other.cub");
    const struct {
        const char* what;
        std::function<void(const std::filesystem::path&, std::uint64_t size)> change;
    } cases[] = {
        {"cut to nothing", [](const auto& path, auto) { std::filesystem::resize_file(path, 0); }},
        {"cut within the facts", [](const auto& path, auto size) { resize_file(path, size / 2); }},
        {"cut within a page of memory, which only becomes zeros",
         [](const auto& path, auto size) { resize_file(path, size - 1); }},
        {"made longer", [](const auto& path, auto size) { resize_file(path, size + 1); }},
        {"a value written through a mapping, and the time of modification restored",
         [](const auto& path, auto size) {
             const int file = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
             struct stat before = {};
             ::fstat(file, &before);
             auto* const bytes =
                 static_cast<char*>(::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
             bytes[size / 2] += 1;
             const timespec times[] = {before.st_atim, before.st_mtim};
             ::futimens(file, times);
         }},
        {"another cube copied into it",
         [&](const auto& path, auto) { std::ofstream(path, std::ios::binary) << other; }},
    };
    for (const auto& test : cases) {
        const auto path = folder.Path("a.cub");
        EqualFacts(1).Write(path);
        const auto readBefore = CubeFile::Open(path)->FindCube("Small");
        const auto unread = CubeFile::Open(path)->FindCube("Small");
        ASSERT_EQ(CheckedSum(*readBefore), manyRows) << test.what;
        WaitFor(InAnotherProcess([&] { test.change(path, std::filesystem::file_size(path)); }));
        for (const auto& cube : {readBefore, unread}) {
            std::string fault;
            EXPECT_EQ(CheckedSum(*cube, &fault), std::nullopt) << test.what;
            EXPECT_THAT(fault, HasSubstr("a.cub: the file was changed or cut short while it was open"))
                << test.what;
            EXPECT_EQ(cube->Hierarchies()[0].MemberUniqueName(2), "[Accounts].[Tree].[All].[4]]].&[4000]")
                << test.what;
        }
        EqualFacts(3).Write(path);
        EXPECT_EQ(CheckedSum(*readBefore), std::nullopt) << test.what << ": it is whole again";
        EXPECT_EQ(CheckedSum(*CubeFile::Open(path)->FindCube("Small")), 3 * manyRows) << test.what;
    }
}

/// A program that rewrites the file in place for ever, like a nightly job without a rename.
TEST(ChangedFile, GivesItsSumOrAnErrorWhileItIsWritten) {
    const TemporaryFolder folder;
    const auto path = folder.Path("a.cub");
    EqualFacts(1).Write(path);
    const std::string bytes = folder.Read("a.cub");
    constexpr int copies = 20;
    const pid_t writer = InAnotherProcess([&] {
        for (int copy = 0; copy < copies; ++copy) {
            {
                std::ofstream file(path, std::ios::binary);
                file << std::string_view(bytes).substr(0, bytes.size() / 2) << std::flush;
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
                file << std::string_view(bytes).substr(bytes.size() / 2);
            }
            // Modification times have a resolution of some milliseconds.
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    });
    std::size_t sums = 0;
    const auto readUntil = [&](const std::function<bool()>& isDone) {
        while (!isDone()) {
            try {
                const auto cube = CubeFile::Open(path)->FindCube("Small");
                for (int again = 0; again < 20; ++again) {
                    if (const auto sum = CheckedSum(*cube)) {
                        ASSERT_EQ(*sum, static_cast<std::int64_t>(manyRows));
                        ++sums;
                    }
                }
            } catch (const EngineError&) {
                continue; // half a file cannot be opened
            }
        }
    };
    readUntil([&] {
        int status = 0;
        return waitpid(writer, &status, WNOHANG) == writer;
    });
    EXPECT_GT(sums, 0U);
    EXPECT_EQ(CheckedSum(*CubeFile::Open(path)->FindCube("Small")), manyRows);
}

/// Reads bytes of this test's own mapping that its file no longer has.
[[noreturn]] void ReadBeyondFile(const std::filesystem::path& path) {
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    const int file = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
    void* const data = ::mmap(nullptr, 4096, PROT_READ, MAP_SHARED, file, 0);
    ::ftruncate(file, 0);
    _exit(*static_cast<volatile char*>(data));
}

TEST(ChangedFile, LeavesOtherBusErrorsToOthers) {
    const TemporaryFolder folder;
    EqualFacts(1).Write(folder.Path("a.cub"));
    const auto open = CubeFile::Open(folder.Path("a.cub"));
    const auto path = folder.Write("own", std::string(4096, '\0'));
    const auto failed = [](int status) { return status != 0; }; // a sanitizer exits with its own status
    EXPECT_EXIT(ReadBeyondFile(path), failed, "");
    EXPECT_EXIT(
        {
            std::raise(SIGBUS);
            _exit(0);
        },
        failed, "");
    EXPECT_EXIT(
        {
            std::signal(SIGBUS, [](int) { _exit(7); }); // a handler that the program installs later
            ReadBeyondFile(folder.Write("own", std::string(4096, '\0')));
        },
        testing::ExitedWithCode(7), "");
}

} // namespace
} // namespace qel::engine
