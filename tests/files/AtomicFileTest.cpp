#include "files/AtomicFile.h"

#include "tests/helpers/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <sys/stat.h>

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

} // namespace
} // namespace qel
