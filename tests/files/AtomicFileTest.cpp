#include "files/AtomicFile.h"

#include "tests/helpers/TemporaryFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <sys/stat.h>

/// Replaces the system's fsync: records what is synced, and can fail.
static std::function<int(int)> onSync;
extern "C" int fsync(int descriptor) { return onSync ? onSync(descriptor) : 0; }

namespace qel {
namespace {

using test::TemporaryFolder;

void Raise(const std::string& message) { throw std::runtime_error(message); }

void WriteText(AtomicFile& file, std::string_view text) { file.Append(std::as_bytes(std::span(text))); }

unsigned ModeOf(const std::filesystem::path& path) {
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
}

/// The other file in a folder of two.
std::filesystem::path Beside(const std::filesystem::path& path) {
    for (const auto& entry : std::filesystem::directory_iterator(path.parent_path())) {
        if (entry.path() != path) {
            return entry.path();
        }
    }
    return {};
}

TEST(AtomicFile, HasTheModeOfTheFileThatItReplacesAndIsPrivateBefore) {
    for (const unsigned mode : {0600U, 0640U, 0666U}) {
        const TemporaryFolder folder;
        const auto path = folder.Write("x.cub", "old");
        ASSERT_EQ(::chmod(path.c_str(), mode), 0);
        AtomicFile file(path, Raise);
        EXPECT_EQ(ModeOf(Beside(path)) & ~mode, 0U) << "nobody may read more than before";
        WriteText(file, "new");
        EXPECT_EQ(folder.Read("x.cub"), "old");
        file.Commit();
        EXPECT_EQ(folder.Read("x.cub"), "new");
        EXPECT_EQ(ModeOf(path), mode);
    }
}

TEST(AtomicFile, RemovesWhatEndedProgramsLeftAndNothingElse) {
    const TemporaryFolder folder;
    const auto path = folder.Path("x.cub");
    AtomicFile living(path, Raise);
    WriteText(living, "of the first");
    folder.Write("x.cub.0123abcd.tmp", "of an ended program");
    for (const char* other :
         {"x.cub.tmp", "x.cub.0123abcg.tmp", "y.cub.0123abcd.tmp", "x.cub.0123abcd.tmp2"}) {
        folder.Write(other, "of others");
    }
    {
        AtomicFile second(path, Raise);
        EXPECT_FALSE(std::filesystem::exists(folder.Path("x.cub.0123abcd.tmp")));
        EXPECT_EQ(folder.FileCount(), 4U + 2U);
        second.Commit();
    }
    living.Commit();
    EXPECT_EQ(folder.Read("x.cub"), "of the first");
    EXPECT_EQ(folder.FileCount(), 4U + 1U);
}

TEST(AtomicFile, IsOnTheDiskBeforeItTakesItsName) {
    const TemporaryFolder folder;
    const auto path = folder.Write("x.cub", "old");
    std::vector<std::string> synced;
    int result = 0;
    onSync = [&](int descriptor) {
        struct stat status = {};
        ::fstat(descriptor, &status);
        synced.push_back(S_ISDIR(status.st_mode)
                             ? "folder with " + folder.Read("x.cub")
                             : fmt::format("{} bytes beside {}", status.st_size, folder.Read("x.cub")));
        return result;
    };
    const auto write = [&](std::string_view text) {
        AtomicFile file(path, Raise);
        WriteText(file, text);
        file.Commit();
    };
    write("new");
    EXPECT_EQ(synced, (std::vector<std::string>{"3 bytes beside old", "folder with new"}));
    result = -1;
    EXPECT_THROW(write("newest"), std::runtime_error);
    EXPECT_EQ(folder.Read("x.cub"), "new") << "what may not be on the disk replaces nothing";
    onSync = nullptr;
}

} // namespace
} // namespace qel
