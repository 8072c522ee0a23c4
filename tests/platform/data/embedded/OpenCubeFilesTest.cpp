#include "platform/data/embedded/OpenCubeFiles.h"

#include "platform/data/embedded/ProviderErrors.h"
#include "tests/helpers/ErrorOf.h"
#include "tests/helpers/books/BooksCube.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <thread>

namespace qel {
namespace {

using engine::ErrorKind;
using test::BuildBooks;
using test::TemporaryFolder;
using ::testing::HasSubstr;

TEST(OpenCubeFiles, OpensAFileAgainOnceItIsReplacedAndKeepsTheOldOneReadable) {
    const TemporaryFolder folder;
    const auto path = BuildBooks(folder.Path("a.cub"));
    OpenCubeFiles files;
    const auto old = files.Open(path);
    EXPECT_EQ(files.Open(path).get(), old.get());
    BuildBooks(path);
    const auto fresh = files.Open(path);
    EXPECT_NE(fresh.get(), old.get());
    EXPECT_EQ(files.Open(path).get(), fresh.get());
    old->Verify({});
    EXPECT_EQ(old->Cubes().size(), 2U);
}

TEST(OpenCubeFiles, AFileCutShortOrRemovedIsAnError) {
    const TemporaryFolder folder;
    const auto path = BuildBooks(folder.Path("a.cub"));
    const std::string whole = folder.Read("a.cub");
    OpenCubeFiles files;
    const auto old = files.Open(path);
    std::filesystem::resize_file(path, whole.size() / 2);
    EXPECT_THROW(files.Open(path), AutomationError);
    EXPECT_THROW(old->Verify({}), engine::EngineError);
    folder.Write("a.cub", whole);
    EXPECT_NO_THROW(files.Open(path)->Verify({}));
    std::filesystem::remove(path);
    EXPECT_THROW(files.Open(path), AutomationError);
}

TEST(OpenCubeFiles, AFileInMemoryCannotBeChangedByOthers) {
    const TemporaryFolder folder;
    const auto path = BuildBooks(folder.Path("a.cub"));
    OpenCubeFiles files;
    files.ReadIntoMemory();
    const auto open = files.Open(path);
    EXPECT_EQ(files.Open(path).get(), open.get());
    folder.Write("a.cub", std::string(std::filesystem::file_size(path), '\0'));
    EXPECT_NO_THROW(open->Verify({}));
    EXPECT_THROW(files.Open(path), AutomationError);
}

TEST(OpenCubeFiles, KeepsOnlyTheLastFilesOpen) {
    const TemporaryFolder folder;
    OpenCubeFiles files;
    std::vector<std::weak_ptr<const engine::CubeFile>> opened(10);
    for (std::size_t i = 0; i < opened.size(); ++i) {
        opened[i] = files.Open(BuildBooks(folder.Path(fmt::format("{}.cub", i))));
    }
    EXPECT_TRUE(opened[1].expired());
    EXPECT_FALSE(opened[2].expired());
}

TEST(OpenCubeFiles, ServesManyThreads) {
    const TemporaryFolder folder;
    const auto path = BuildBooks(folder.Path("a.cub"));
    OpenCubeFiles files;
    std::vector<std::size_t> cubes(4);
    std::vector<std::thread> threads;
    threads.reserve(cubes.size());
    for (auto& count : cubes) {
        threads.emplace_back([&] {
            for (int i = 0; i < 200; ++i) {
                count += files.Open(path)->Cubes().size();
            }
        });
    }
    for (int i = 0; i < 20; ++i) {
        BuildBooks(path);
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(cubes, (std::vector<std::size_t>{400, 400, 400, 400}));
}

TEST(OpenCubeFiles, TellsWhatIsWrongWithASource) {
    const TemporaryFolder folder;
    folder.Write("empty.cub", "");
    folder.Write("text.cub", std::string(1000, 'x'));
    std::filesystem::create_directory(folder.Path("folder.cub"));
    const auto cut = BuildBooks(folder.Path("cut.cub"));
    std::filesystem::resize_file(cut, std::filesystem::file_size(cut) / 2);
    const struct {
        std::string source;
        std::int32_t number;
        const char* part;
    } cases[] = {
        {folder.Path("none.cub").string(), ErrorNumberOf(ErrorKind::FileNotFound), "does not exist"},
        {(folder.Path("empty.cub") / "x").string(), ErrorNumberOf(ErrorKind::FileNotFound), "x'"},
        {folder.Path("folder.cub").string(), ErrorNumberOf(ErrorKind::FileNotFound), "is a folder"},
        {"/dev/null", ErrorNumberOf(ErrorKind::FileNotFound), "not an ordinary file"},
        {folder.Path("empty.cub").string(), ErrorNumberOf(ErrorKind::NotACubeFile), "is empty"},
        {folder.Path("text.cub").string(), ErrorNumberOf(ErrorKind::NotACubeFile), "qel cube build"},
        {folder.Path("cut.cub").string(), ErrorNumberOf(ErrorKind::DamagedFile), "cut.cub"},
        {"HTTPS://server/msmdpump.dll", static_cast<std::int32_t>(0x80040E6F),
         "is the address of a server, where a cube file is needed"},
    };
    for (const auto& c : cases) {
        const auto error = test::FailureOf([&] { OpenCubeFiles().Open(c.source); });
        EXPECT_EQ(error.Number(), c.number) << error.Description();
        EXPECT_THAT(error.Description(), AllOf(HasSubstr(c.source), HasSubstr(c.part)));
    }
}

} // namespace
} // namespace qel
