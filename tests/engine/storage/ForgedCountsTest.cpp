// Small files with valid checksums whose counts multiply: opening them must cost no more than their size.

#include "engine/storage/StoredTotals.h"
#include "qel/engine/CubeFile.h"
#include "tests/engine/FaultOf.h"
#include "tests/engine/storage/SmallCube.h"
#include "tests/helpers/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <span>
#include <string>
#include <unordered_map>

namespace qel::engine {
namespace {

using test::TemporaryFolder;
using testing::HasSubstr;

constexpr format::SectionId IdOf(format::SectionKind kind, std::uint32_t cube, std::uint32_t first,
                                 std::uint32_t second) {
    return {static_cast<std::uint32_t>(kind), cube, first, second};
}

/// Facts of one key column, which every sort order implies, and of counts, which store nothing.
void StoreNothing(SmallCube& cube) {
    cube.model.dimensions.resize(1);
    cube.model.keyColumns.resize(1);
    cube.model.projections = {{{0}, {0, 1, 3}}};
    cube.model.measures.erase(cube.model.measures.begin());
    cube.keys.clear();
    cube.hasAggregates = false;
}

void WriteCubes(CubeFileWriter& writer) {
    for (std::uint32_t cube = 0; cube < 200'000; ++cube) {
        writer.Begin(IdOf(format::SectionKind::CubeDescription, cube, 0, 0));
        writer.End();
    }
}

void WriteHierarchies(CubeFileWriter& writer) {
    SmallCube cube;
    cube.model.dimensions[1].name = std::string(1'000'000, 'x');
    cube.model.dimensions[1].hierarchies.resize(500, cube.model.dimensions[1].hierarchies.front());
    cube.AddTo(writer);
}

void WriteOrdersOfCounts(CubeFileWriter& writer) {
    SmallCube cube;
    StoreNothing(cube);
    cube.model.measures.resize(3000, cube.model.measures.front());
    cube.model.projections.resize(1500, cube.model.projections.front());
    writer.AddCube(cube.model);
}

void WriteOrdersOfKeys(CubeFileWriter& writer) {
    SmallCube cube;
    StoreNothing(cube);
    cube.model.keyColumns.resize(200'000, {"", 1, 1, 1, 0}); // without bits, in another packed column
    cube.model.projections.resize(20'000, cube.model.projections.front());
    writer.AddCube(cube.model);
    for (std::uint32_t order = 0; order < 20'000; ++order) {
        writer.BeginPackedColumn(0, order, 1);
        writer.Append(std::as_bytes(std::span("aa")));
        writer.End();
    }
}

void WriteAggregates(CubeFileWriter& writer) {
    SmallCube cube;
    cube.aggregates.records.resize(1);
    for (std::uint32_t i = 0; i < 100'000; ++i) {
        cube.aggregates.records.push_back({{0, AggregateKey::noColumn, {i, i + 1}, {}}, 0, 0, 0});
    }
    cube.AddTo(writer);
}

/// What is not refused opens at once; with a search of all keys in every order this would take minutes.
TEST(ForgedCounts, CostNoMoreThanTheirFile) {
    const struct {
        const char* what;
        void (*write)(CubeFileWriter& writer);
        const char* fault;
    } cases[] = {
        {"cubes", WriteCubes, "it has 200000 cubes; 10000 are the limit"},
        {"hierarchies of a dimension with a long name", WriteHierarchies, "take too much memory"},
        {"counts in many orders", WriteOrdersOfCounts, "take too much memory"},
        {"keys in many orders", WriteOrdersOfKeys, "no fault"},
        {"aggregates", WriteAggregates, "no fault"},
    };
    const TemporaryFolder folder;
    for (const auto& c : cases) {
        CubeFileWriter writer(folder.Path("forged.cub"));
        c.write(writer);
        writer.Commit();
        EXPECT_THAT(FaultOf([&] { CubeFile::Open(folder.Path("forged.cub")); }).text, HasSubstr(c.fault))
            << c.what;
    }
}

/// Keys of the same facts, whose searches begin in the same few slots of the lookup table.
TEST(ForgedCounts, ASearchForAnAggregateEnds) {
    constexpr std::uint32_t aggregates = 20'000, slots = 65'536;
    SmallCube cube;
    std::vector<Aggregate>& records = cube.aggregates.records;
    records.resize(1);
    for (Aggregate next = records.front(); records.size() < aggregates; ++next.key.first.first) {
        if ((next.key.Hash() & (slots - 1)) < 64) {
            records.push_back(next);
        }
    }
    const TemporaryFolder folder;
    cube.Write(folder.Path("forged.cub"));
    EXPECT_THAT(FaultOf([&] { CubeFile::Open(folder.Path("forged.cub"))->Verify({}); }).text,
                HasSubstr("its key does not find it"));
}

/// `ends` times `ends` aggregates that are right: each of all facts, or of none under a group of codes.
void AddAggregates(SmallCube& cube, std::uint32_t ends, bool haveFacts) {
    constexpr std::uint32_t codes = 200, codesWithoutFacts = 2;
    for (KeyColumn& column : cube.model.keyColumns) {
        column.codes = codes;
    }
    for (ProjectionModel& projection : cube.model.projections) {
        projection.leadRows.resize(codes + 1, cube.model.rowCount);
    }
    StoredAggregates& aggregates = cube.aggregates;
    aggregates.packedKeyColumns[0].bits = 8;
    const Aggregate ofAll = aggregates.records.front();
    aggregates.records.clear();
    for (std::uint32_t code = codesWithoutFacts; code < codes; code += 2) {
        aggregates.groupRanges.push_back({code, code + 1});
    }
    aggregates.groupStarts.push_back(static_cast<std::uint32_t>(aggregates.groupRanges.size()));
    for (std::uint32_t i = 0; i < ends * ends; ++i) {
        const std::uint32_t first = codesWithoutFacts + i / ends, second = codesWithoutFacts + i % ends;
        Aggregate next = haveFacts ? ofAll : Aggregate();
        next.key = haveFacts ? AggregateKey{0, 1, {0, first}, {0, second}}
                             : AggregateKey{0, 1, {0, 0}, {first, 100 + second}};
        aggregates.records.push_back(next);
    }
}

TEST(ForgedCounts, ACheckOfAggregatesEnds) {
    const struct {
        const char* what;
        std::uint32_t ends;
        bool haveFacts;
        const char* fault;
    } cases[] = {
        {"900 times all facts", 30, true, "no fault"},
        {"1,600 times all facts", 40, true, "there are too many aggregates for the facts"},
        {"few searches of a group", 10, false, "no fault"},
        {"many searches of a group", 40, false, "there are too many aggregates for the facts"},
    };
    const TemporaryFolder folder;
    for (const auto& c : cases) {
        SmallCube cube;
        AddAggregates(cube, c.ends, c.haveFacts);
        cube.Write(folder.Path("forged.cub"));
        EXPECT_THAT(FaultOf([&] { CubeFile::Open(folder.Path("forged.cub"))->Verify({}); }).text,
                    HasSubstr(c.fault))
            << c.what;
    }
}

/// Places in one chain of a hash table whose hashes are the numbers themselves: finding all of them would
/// take minutes.
TEST(ForgedCounts, ASearchForAPlaceInAnAggregateEnds) {
    constexpr std::uint64_t count = 200'000;
    std::unordered_map<std::uint64_t, std::size_t> likely;
    likely.reserve(count);
    StoredTotals totals(0);
    totals.Reserve(count);
    const auto visitPlaces = [&](const auto& visit) {
        for (std::uint64_t i = 0; i < count; ++i) {
            const std::uint64_t place = i * likely.bucket_count();
            visit(static_cast<std::uint32_t>(place >> 32U), static_cast<std::uint32_t>(place));
        }
    };
    visitPlaces([&](std::uint32_t key, std::uint32_t bucket) { totals.Add(key, bucket); });
    std::uint64_t found = 0;
    visitPlaces([&](std::uint32_t key, std::uint32_t bucket) {
        found += totals.Take(key, bucket, 0).has_value() ? 1U : 0U;
    });
    EXPECT_EQ(found, count);
    EXPECT_TRUE(totals.IsUsedUp(true));
}

} // namespace
} // namespace qel::engine
