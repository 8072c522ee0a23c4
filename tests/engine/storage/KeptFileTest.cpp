#include "qel/engine/CubeFile.h"
#include "tests/engine/FaultOf.h"
#include "tests/engine/storage/SmallCube.h"
#include "tests/helpers/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <optional>
#include <windows.h>

// What other programs can do with an open cube file on Windows, and what becomes of its reader.

/// Reads that still succeed; no value: all.
static std::optional<int> readsLeft;

static BOOL WINAPI ReadOrFail(HANDLE file, LPVOID bytes, DWORD count, LPDWORD read, LPOVERLAPPED place) {
    if (readsLeft && (*readsLeft)-- <= 0) {
        ::SetLastError(ERROR_NETNAME_DELETED);
        return FALSE;
    }
    static const auto system = reinterpret_cast<decltype(&::ReadFile)>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"kernel32"), "ReadFile")));
    return system(file, bytes, count, read, place);
}

/// Replaces the import of the system's ReadFile.
#ifdef _WIN64
extern "C" decltype(&::ReadFile) importedRead asm("__imp_ReadFile");
#else
extern "C" decltype(&::ReadFile) importedRead asm("__imp__ReadFile@20");
#endif
decltype(&::ReadFile) importedRead = ReadOrFail;

namespace qel::engine {
namespace {

using test::TemporaryFolder;

constexpr std::uint64_t manyRows = 200'000;

SmallCube EqualFacts(std::int8_t value) {
    return {manyRows, [value](std::size_t) { return value; }};
}

TEST(KeptFile, IsNotWrittenIntoButReplaced) {
    const TemporaryFolder folder;
    const auto path = folder.Path("a.cub");
    EqualFacts(1).Write(path);
    {
        const std::ofstream writer(path, std::ios::binary | std::ios::in | std::ios::out);
        ASSERT_TRUE(writer);
        const auto [kind, text] = FaultOf([&] { CubeFile::Open(path); });
        EXPECT_EQ(kind, ErrorKind::FileNotFound) << "another program writes it";
        EXPECT_THAT(text, testing::HasSubstr("a.cub: "));
    }
    const auto cube = CubeFile::Open(path)->FindCube("Small");
    EXPECT_FALSE(std::ofstream(path, std::ios::binary | std::ios::in | std::ios::out)) << "it is read";
    EqualFacts(2).Write(path);
    EXPECT_EQ(*cube->Facts().Projections()[0].Values(0, {7, 8}), std::byte{1}) << "the old one is whole";
    const auto fresh = CubeFile::Open(path)->FindCube("Small");
    EXPECT_EQ(*fresh->Facts().Projections()[0].Values(0, {7, 8}), std::byte{2});
}

/// As when a network drive goes away, and comes back.
TEST(KeptFile, IsAnErrorWhileItCannotBeRead) {
    const TemporaryFolder folder;
    const auto path = folder.Path("a.cub");
    EqualFacts(1).Write(path);
    for (int reads = 0, faults = 1; faults > 0; ++reads) {
        faults = 0;
        readsLeft = reads;
        std::shared_ptr<const Cube> cube;
        const auto attempt = [&] {
            const auto [kind, text] = FaultOf([&] {
                cube = cube == nullptr ? CubeFile::Open(path)->FindCube("Small") : cube;
                EXPECT_EQ(cube->Facts().Projections()[0].Values(0, {0, manyRows})[manyRows - 1],
                          std::byte{1});
                cube->CheckUnchanged();
            });
            EXPECT_EQ(kind.value_or(ErrorKind::DamagedFile), ErrorKind::DamagedFile) << reads;
            return kind ? 1 : 0;
        };
        faults = attempt();
        readsLeft = std::nullopt;
        EXPECT_EQ(attempt(), 0) << reads;
        ASSERT_LT(reads, 50);
    }
}

} // namespace
} // namespace qel::engine
