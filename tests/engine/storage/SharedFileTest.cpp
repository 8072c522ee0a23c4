#include "qel/engine/CubeFile.h"
#include "tests/engine/FaultOf.h"
#include "tests/engine/storage/SmallCube.h"
#include "tests/helpers/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

namespace qel::engine {
namespace {

using test::TemporaryFolder;
using testing::EndsWith;
using testing::HasSubstr;

constexpr std::uint64_t page = 65536;

/// Threads that read the same unchecked pages at once each get the right bytes or the error.
TEST(SharedFile, ThreadsCheckPagesTogether) {
    const TemporaryFolder folder;
    constexpr std::uint64_t rows = 12 * page;
    constexpr std::uint64_t badRow = 7 * page;
    SmallCube(rows, [](std::size_t row) {
        return static_cast<std::int8_t>(row % 128);
    }).Write(folder.Path("a.cub"));
    std::string bytes = folder.Read("a.cub");
    // The values are the last column; what follows has the same size in every file of this many pages.
    const std::size_t firstValue = bytes.rfind(std::string("\x7E\x7F", 2)) + 2 - rows;
    ASSERT_EQ(bytes[firstValue + 100], 100);
    bytes[firstValue + badRow] = 1; // was 0
    folder.Write("bad.cub", bytes);

    constexpr std::size_t threadCount = 4;
    constexpr std::uint64_t step = page / 4;
    for (int round = 0; round < 20; ++round) {
        const auto file = CubeFile::Open(folder.Path("bad.cub"));
        const Projection& facts = file->Cubes()[0].Facts().Projections()[0];
        std::atomic<std::size_t> ready = 0, wrongValues = 0, faults = 0;
        const auto read = [&](std::size_t thread) {
            for (++ready; ready < threadCount;) {
                std::this_thread::yield();
            }
            for (std::uint64_t i = 0; i < rows / step; ++i) {
                // Half of the threads read forwards, half backwards.
                const std::uint64_t row = (thread % 2 == 0 ? i : rows / step - 1 - i) * step;
                try {
                    const auto* const values = facts.Values(0, {row, row + step});
                    for (std::uint64_t k = 0; k < step; ++k) {
                        wrongValues += values[k] == static_cast<std::byte>((row + k) % 128) ? 0U : 1U;
                    }
                } catch (const EngineError&) {
                    ++faults;
                }
            }
        };
        std::vector<std::thread> threads;
        for (std::size_t thread = 0; thread < threadCount; ++thread) {
            threads.emplace_back(read, thread);
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        EXPECT_EQ(wrongValues, 0U) << "a damaged page was returned";
        // A page takes four steps, or five when it starts inside one; every thread reads each page.
        EXPECT_GE(faults, threadCount * 4);
        EXPECT_LE(faults, threadCount * 5);
    }
}

/// A file of three cubes; the second may be damaged.
void WriteThree(const std::filesystem::path& path, void (*spoil)(SmallCube&)) {
    CubeFileWriter writer(path);
    for (const char* const name : {"One", "Two", "Three"}) {
        SmallCube cube;
        cube.model.name = name;
        if (cube.model.name == "Two") {
            spoil(cube);
        }
        cube.AddTo(writer);
    }
    writer.Commit();
}

TEST(SharedFile, EveryCubeIsFoundWithItsOwnFacts) {
    const TemporaryFolder folder;
    WriteThree(folder.Path("three.cub"), [](SmallCube& cube) {
        cube.values = {{50, -70, 90}, {-70, 50, 90}};
    });
    const auto file = CubeFile::Open(folder.Path("three.cub"));
    const auto firstValue = [&](const char* name) {
        return static_cast<int>(*file->FindCube(name)->Facts().Projections()[0].Values(0, {0, 1}));
    };
    EXPECT_EQ(firstValue("one"), 5);
    EXPECT_EQ(firstValue("TWO"), 50);
    EXPECT_EQ(firstValue("Three"), 5);
    const auto [kind, text] = FaultOf([&] { file->FindCube("Four"); });
    EXPECT_EQ(kind, ErrorKind::UnknownCube);
    EXPECT_THAT(text, EndsWith("three.cub: there is no cube \"Four\"; the file holds One, Two, Three"));
}

TEST(SharedFile, HasNoMoreCubesThanMemoryAllows) {
    const TemporaryFolder folder;
    const auto faultOf = [&](int count) {
        CubeFileWriter writer(folder.Path("many.cub"));
        for (int i = 0; i < count; ++i) {
            SmallCube cube;
            cube.model.name = "C" + std::to_string(i);
            cube.AddTo(writer);
        }
        writer.Commit();
        return FaultOf([&] { CubeFile::Open(folder.Path("many.cub"))->FindCube("none"); });
    };
    EXPECT_THAT(faultOf(25).text, EndsWith("C18, C19 and 5 more"));
    const auto [kind, text] = faultOf(10'001);
    EXPECT_EQ(kind, ErrorKind::DamagedFile);
    EXPECT_THAT(text, EndsWith("it has 10001 cubes; 10000 are the limit"));
}

TEST(SharedFile, VerifyReadsEveryCubeAndNamesTheDamagedOne) {
    const struct {
        const char* what;
        void (*spoil)(SmallCube&);
        const char* fault; ///< null: no fault
    } cases[] = {
        {"all are whole", [](SmallCube&) {}, nullptr},
        {"facts that differ", [](SmallCube& cube) { cube.values[1][0] = 8; },
         "cube Two: sort orders 1 and 2 hold different facts"},
        {"members at fault", [](SmallCube& cube) { cube.Accounts().names.bytes[0] = '\xFF'; },
         "cube Two, [Accounts].[Tree], member 0: a text is not UTF-8"},
        {"a level's name", [](SmallCube& cube) { cube.Accounts().levels[1].name = "Gr\xFCppe"; },
         "cube Two: a name is not UTF-8"},
    };
    const TemporaryFolder folder;
    for (const auto& test : cases) {
        WriteThree(folder.Path("three.cub"), test.spoil);
        std::vector<double> shares;
        const auto [kind, fault] = FaultOf([&] {
            CubeFile::Open(folder.Path("three.cub"))->Verify([&](double share) { shares.push_back(share); });
        });
        ASSERT_FALSE(shares.empty()) << test.what;
        for (std::size_t i = 1; i < shares.size(); ++i) {
            EXPECT_GE(shares[i], shares[i - 1]) << test.what << ": progress goes back between cubes";
        }
        if (test.fault == nullptr) {
            EXPECT_FALSE(kind) << test.what << ": " << fault;
            EXPECT_EQ(shares.back(), 1) << test.what;
        } else {
            EXPECT_EQ(kind, ErrorKind::DamagedFile) << test.what;
            EXPECT_THAT(fault, HasSubstr(test.fault)) << test.what;
            EXPECT_LT(shares.back(), 1) << test.what;
        }
    }
}

} // namespace
} // namespace qel::engine
