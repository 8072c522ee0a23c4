#include "qel/engine/CubeFile.h"
#include "tests/engine/storage/SmallCube.h"
#include "tests/helpers/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdint>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qel::engine {
namespace {

using test::TemporaryFolder;

/// Writes the cube in a process that is killed, without clean-up, by the write that takes the file beyond
/// `bytes`. Returns whether it finished anyway.
bool WriteUntil(std::uint64_t bytes, const SmallCube& cube, const std::filesystem::path& path) {
    const pid_t child = fork();
    if (child == 0) {
        const rlimit limit{bytes, bytes};
        const rlimit noCore{0, 0};
        setrlimit(RLIMIT_CORE, &noCore);
        std::signal(SIGXFSZ, SIG_DFL);
        setrlimit(RLIMIT_FSIZE, &limit);
        try {
            cube.Write(path);
        } catch (const std::exception&) {
            // The write at the limit was cut short; as in a power cut, nothing follows.
            kill(getpid(), SIGKILL);
        }
        _exit(0);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST(PowerCut, LeavesTheOldFileOrTheNewOneAtEveryWrite) {
    const TemporaryFolder folder;
    const auto path = folder.Path("a.cub");
    const SmallCube cube(200'000, [](std::size_t) { return std::int8_t{1}; }); // of several pages
    cube.Write(path);
    const std::string complete = folder.Read("a.cub");
    SmallCube().Write(path);
    const std::string old = folder.Read("a.cub");
    ASSERT_NE(old, complete);
    constexpr std::uint64_t page = 65536;
    ASSERT_GT(complete.size(), 4 * page);
    std::size_t cuts = 0;
    // At the start of every page, inside it, and right before the end of the file.
    for (std::uint64_t bytes = 0; bytes < complete.size(); bytes += bytes % page == 0 ? 1000 : page - 1000) {
        EXPECT_FALSE(WriteUntil(bytes, cube, path)) << bytes;
        ASSERT_EQ(folder.Read("a.cub"), old) << "cut at " << bytes;
        ++cuts;
    }
    EXPECT_FALSE(WriteUntil(complete.size() - 1, cube, path));
    ASSERT_EQ(folder.Read("a.cub"), old);
    EXPECT_GT(cuts, 8U);
    EXPECT_TRUE(WriteUntil(complete.size(), cube, path));
    EXPECT_EQ(folder.Read("a.cub"), complete);
    EXPECT_NO_THROW(CubeFile::Open(path)->Verify({}));
}

} // namespace
} // namespace qel::engine
