#include "qel/engine/CubeFile.h"

#include "tests/engine/FaultOf.h"
#include "tests/engine/storage/SmallCube.h"
#include "tests/helpers/FileSizeLimit.h"
#include "tests/helpers/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <numeric>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace qel::engine {
namespace {

using test::TemporaryFolder;
using testing::ElementsAre;
using testing::HasSubstr;

std::string OpenFault(const std::filesystem::path& path) {
    return FaultOf([&] { CubeFile::Open(path)->Verify({}); }).text;
}

std::shared_ptr<const CubeFile> OpenBytes(const std::string& bytes) {
    const auto* const first = reinterpret_cast<const std::byte*>(bytes.data());
    return CubeFile::FromMemory("bad.cub", {first, first + bytes.size()});
}

TEST(CubeFile, GivesBackWhatWasWritten) {
    const TemporaryFolder folder;
    SmallCube().Write(folder.Path("a.cub"));
    EXPECT_TRUE(CubeFile::HasSignature(folder.Path("a.cub")));
    const auto cube = CubeFile::Open(folder.Path("a.cub"))->FindCube("SMALL"); // keeps the file open
    const Hierarchy& accounts = cube->Hierarchies()[0];
    EXPECT_EQ(accounts.UniqueName(), "[Accounts].[Tree]");
    EXPECT_EQ(cube->Hierarchies()[1].UniqueName(), "[Firm]");
    EXPECT_EQ(accounts.MemberUniqueName(1), "[Accounts].[Tree].[All].[4]]]");
    EXPECT_EQ(accounts.MemberUniqueName(3), "[Accounts].[Tree].[All].[4]]].&[4100]");
    EXPECT_EQ(accounts.LevelOf(0), 0U);
    EXPECT_EQ(accounts.LevelOf(3), 2U);
    EXPECT_EQ(accounts.Children(1).last, 4U);
    EXPECT_EQ(accounts.Ranges(3)[0].first, 1U);
    EXPECT_EQ(accounts.FindLevel("ACCOUNT"), 2U);
    std::vector<MemberId> found;
    accounts.FindByName("SALES", found);
    EXPECT_THAT(found, ElementsAre(2, 3));
    found.clear();
    accounts.FindByKey("4100", found);
    cube->Hierarchies()[1].FindByName("\xD7\x90", found);
    EXPECT_THAT(found, ElementsAre(3, 0));
    EXPECT_EQ(cube->FindMeasure("lines"), 1U);
    const CalculatedMember& twice = cube->GetCalculations().members.at(0);
    EXPECT_EQ(twice.formula + twice.format, "2 * [Measures].[Amount]0.00");
    EXPECT_EQ(twice.solveOrder, -1);
    EXPECT_EQ(cube->GetCalculations().sets.at(0).formula, "[Firm].Members");
    EXPECT_EQ(cube->FindDimension("firm"), 1U);
    const RowRange rows = cube->Facts().Projections()[0].RowsOfLeadingKey({1, 2});
    const auto* const values = cube->Facts().Projections()[0].Values(0, rows);
    EXPECT_THAT(std::vector<int>({static_cast<signed char>(values[0]), static_cast<signed char>(values[1])}),
                ElementsAre(-7, 9));
    EXPECT_THROW(cube->Facts().Projections()[0].PackedColumn(1, {2, 4}), EngineError);
}

TEST(CubeFile, NamesWhatCannotBeOpened) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.Path("folder"));
    folder.Write("empty", "");
    folder.Write("text", "date,amount\n2024-01-01,3\n");
    const struct {
        const char* file;
        ErrorKind kind;
        const char* message;
    } cases[] = {
        {"absent.cub", ErrorKind::FileNotFound, "absent.cub: No such file or directory"},
        {"folder", ErrorKind::FileNotFound, "folder: is a folder"},
        {"empty", ErrorKind::NotACubeFile, "empty: not a cube file"},
        {"text", ErrorKind::NotACubeFile, "text: not a cube file"},
    };
    for (const auto& test : cases) {
        EXPECT_FALSE(CubeFile::HasSignature(folder.Path(test.file))) << test.file;
        const auto [kind, text] = FaultOf([&] { CubeFile::Open(folder.Path(test.file)); });
        EXPECT_EQ(kind, test.kind) << test.file;
        EXPECT_THAT(text, HasSubstr(test.message));
    }
}

TEST(CubeFile, EveryDamagedByteAndEveryTruncationIsFound) {
    const TemporaryFolder folder;
    SmallCube cube;
    cube.KeepDetails();
    cube.Write(folder.Path("a.cub"));
    const std::string good = folder.Read("a.cub");
    for (std::size_t place = 0; place < good.size(); ++place) {
        std::string bad = good;
        bad[place] = static_cast<char>(bad[place] ^ 0x41);
        // Metadata and facts share the only page.
        EXPECT_THAT(FaultOf([&] { OpenBytes(bad); }).text, HasSubstr("bad.cub")) << "byte " << place;
    }
    for (std::size_t size = 0; size < good.size(); ++size) {
        EXPECT_THROW(OpenBytes(good.substr(0, size)), EngineError) << size << " bytes";
    }
    EXPECT_THAT(OpenFault(folder.Write("bad.cub", good + '\0')), HasSubstr("bytes instead of"));
}

TEST(CubeFile, TellsAnotherVersionFromDamage) {
    const TemporaryFolder folder;
    SmallCube().Write(folder.Path("a.cub"));
    std::string bytes = folder.Read("a.cub");
    for (const auto& [version, message] :
         {std::pair{char{2}, "format version 2; this program reads version 3; build the file again"},
          std::pair{char{4}, "format version 4; this program reads version 3; install a newer version"}}) {
        bytes[8] = version;
        const auto [kind, text] = FaultOf([&] { CubeFile::Open(folder.Write("other.cub", bytes)); });
        EXPECT_EQ(kind, ErrorKind::UnsupportedVersion);
        EXPECT_THAT(text, HasSubstr(message));
    }
}

/// Pages of facts are not read when the file is opened; they are checked when read.
TEST(CubeFile, FactPagesAreCheckedWhenTheyAreRead) {
    const TemporaryFolder folder;
    constexpr std::size_t rows = 300000;
    SmallCube(rows, [](std::size_t) { return std::int8_t{1}; }).Write(folder.Path("a.cub"));
    EXPECT_EQ(OpenFault(folder.Path("a.cub")), "no fault");
    std::string bytes = folder.Read("a.cub");
    bytes[bytes.size() - 100000] = 3; // in the last column, the values
    const auto file = CubeFile::Open(folder.Write("bad.cub", bytes));
    const Projection& projection = file->Cubes()[0].Facts().Projections()[0];
    EXPECT_NO_THROW(projection.PackedColumn(1, {0, rows}));
    EXPECT_NO_THROW(projection.Values(0, {0, 1000}));
    EXPECT_THROW(projection.Values(0, {0, rows}), EngineError);
    EXPECT_THROW(file->Verify({}), EngineError);
}

/// Inconsistent contents with valid checksums, as a faulty or hostile writer would produce.
template <class Element, class... Numbers>
void Set(std::vector<Element>& list, Numbers... numbers) {
    list = {static_cast<Element>(numbers)...};
}

void Set(KeyRange& range, std::uint32_t first, std::uint32_t last) { range = {first, last}; }

void SetGroups(SmallCube& cube, std::vector<std::uint32_t> starts, std::vector<KeyRange> ranges) {
    cube.aggregates.groupStarts = std::move(starts);
    cube.aggregates.groupRanges = std::move(ranges);
}

TEST(CubeFile, InconsistentContentsAreFound) {
    constexpr auto differs1 = "aggregate 1: it differs from the facts",
                   differs2 = "aggregate 2: it differs from the facts",
                   disorder1 = "aggregate 1: its facts are not in order",
                   disorder2 = "aggregate 2: its facts are not in order",
                   noCodes = "aggregate 2: its key has codes that do not exist",
                   packedKey = "the aggregates' packed key", buckets = "the aggregates' time buckets",
                   calculations = "calculated members are not well-formed",
                   section = "section of the aggregates", groups = "the groups of codes are not in order",
                   malformed = "the groups of codes are not well-formed",
                   measure = "measure Amount is not well-formed",
                   length = "a column of facts has the wrong length",
                   differ = "sort orders 1 and 2 hold different facts";
    const struct {
        const char* what;
        std::function<void(SmallCube&)> spoil;
        const char* fault;
    } cases[] = {
        {"default measure", [](auto& c) { c.model.defaultMeasure = 2; }, "default measure does not exist"},
        {"no sort order", [](auto& c) { c.model.projections.clear(); }, "no facts in any order"},
        {"empty sort order", [](auto& c) { c.model.projections[1].sortOrder.clear(); },
         "sort order is empty"},
        {"sort order of no column", [](auto& c) { c.model.projections[1].sortOrder = {2}; },
         "names a key column that does not exist"},
        {"width of codes", [](auto& c) { c.model.keyColumns[0].width = 3; },
         "key column account has a wrong width"},
        {"codes beyond the width", [](auto& c) { c.model.keyColumns[0].codes = 257; }, "has a wrong width"},
        {"a packed column that does not exist", [](auto& c) { c.model.keyColumns[0].packedColumn = 2; },
         "account lies in a packed column that does not exist"},
        {"a packed column without a key column",
         [](auto& c) { c.model.keyColumns[0].packedColumn = 1, c.model.keyColumns[0].shift = 4; },
         "a packed column belongs to no key column"},
        {"bits beyond the packed column", [](auto& c) { c.model.keyColumns[0].shift = 8; },
         "account has a wrong width"},
        {"columns on the same bits", [](auto& c) { c.model.keyColumns[1].packedColumn = 0; },
         "firm lies over another"},
        {"unit", [](auto& c) { c.model.measures[0].unit = 0; }, measure},
        {"width of values", [](auto& c) { c.model.measures[0].width = 0; }, measure},
        {"decimals", [](auto& c) { c.model.measures[0].decimals = 19; }, measure},
        {"rows", [](auto& c) { c.model.rowCount = 4; }, "row numbers of a sort order"},
        {"rows that are not stored",
         [](auto& c) {
             c.model.rowCount = 0xFFFFFFFFU;
             c.model.projections[0].leadRows.back() = c.model.projections[1].leadRows.back() =
                 c.model.rowCount;
         },
         length},
        {"rows that nothing stores, beyond all numbers",
         [](auto& c) {
             c.model.rowCount = 0x1000000000000000U;
             c.model.projections[1].leadRows = {0, 2, c.model.rowCount};
             c.model.projections[0].leadRows = {0, 1, c.model.rowCount};
             c.model.measures.erase(c.model.measures.begin());
             c.hasAggregates = false;
         },
         "more facts than there can be"},
        {"lead rows descend", [](auto& c) { Set(c.model.projections[0].leadRows, 0, 4, 3); }, "row numbers"},
        {"a lead row too few", [](auto& c) { Set(c.model.projections[0].leadRows, 0, 3); }, "row numbers"},
        {"key column of a hierarchy", [](auto& c) { c.Accounts().keyColumn = 2; },
         "key column that does not exist"},
        {"default member", [](auto& c) { c.Accounts().defaultMember = 4; },
         "default member of [Accounts].[Tree]"},
        {"no levels", [](auto& c) { c.Accounts().levels.clear(); }, "default member of"},
        {"All below the top", [](auto& c) { c.Accounts().levels[1].isAll = true; }, "level Group of"},
        {"All of two members",
         [](auto& c) {
             c.Accounts().levels = {{"A", true, 2}};
         },
         "level A of"},
        {"members beyond all numbers", [](auto& c) { c.Accounts().levels[2].memberCount = 0xFFFFFFFEU; },
         "level Account of"},
        {"a member too many", [](auto& c) { ++c.Accounts().levels[2].memberCount; },
         "places of the members' texts"},
        {"no hierarchy", [](auto& c) { c.model.dimensions[1].hierarchies.clear(); }, "Firm has no hierarchy"},
        {"offsets descend", [](auto& c) { c.Accounts().names.offsets[2] = 1; },
         "places of the members' texts"},
        {"offsets beyond the text", [](auto& c) { c.Accounts().keys.bytes.pop_back(); }, "members' texts"},
        {"a parent of its own", [](auto& c) { c.Accounts().parents[1] = 1; }, "tree of [Accounts].[Tree]"},
        {"a top member with a parent", [](auto& c) { c.Accounts().parents[0] = 0; }, "tree of"},
        {"a parent of another level", [](auto& c) { Set(c.Accounts().firstChild, 1, 2, 3, 4, 4); },
         "tree of"},
        {"children beyond the level", [](auto& c) { Set(c.Accounts().firstChild, 1, 4, 4, 4, 4); },
         "tree of"},
        {"children too few", [](auto& c) { Set(c.Accounts().firstChild, 1, 2, 4); }, "tree of"},
        {"children beyond all", [](auto& c) { c.Accounts().firstChild.back() = 5; }, "tree of"},
        {"a code out of range", [](auto& c) { c.Accounts().ranges[1].last = 3; },
         "keys of [Accounts].[Tree]"},
        {"an empty range", [](auto& c) { Set(c.Accounts().ranges[2], 0, 0); }, "keys of"},
        {"ranges that touch",
         [](auto& c) {
             c.Accounts().ranges.insert(c.Accounts().ranges.begin(), {0, 1});
             c.Accounts().ranges[1] = {1, 2};
             c.Accounts().rangeOffsets = {0, 2, 3, 4, 5};
         },
         "keys of"},
        {"range places descend", [](auto& c) { Set(c.Accounts().rangeOffsets, 0, 2, 1, 3, 4); }, "keys of"},
        {"a calculated member with a long formula",
         [](auto& c) {
             c.model.calculations.members = {{"[Measures].x", std::string(50'001, '1'), "", 0}};
         },
         calculations},
        {"a formula that is not UTF-8",
         [](auto& c) {
             c.model.calculations.sets = {{"s", "\xFF"}};
         },
         calculations},
        {"too many sets",
         [](auto& c) {
             c.model.calculations.sets.resize(1001, {"s", "{}"});
         },
         calculations},
        {"a column too short", [](auto& c) { c.keys[1][0].pop_back(); }, length},
        {"a column missing", [](auto& c) { c.keys[0].pop_back(); }, "section 49 of cube 0 is missing"},
        // The files below can be opened, because opening reads no facts, but do not pass verification.
        {"a fact's code out of range",
         [](auto& c) {
             c.model.keyColumns[1].codes = 3;
             c.model.projections[1].leadRows = {0, 2, 3, 3};
             c.keys[0][1][2] = 3;
             c.hasAggregates = false;
         },
         "key column firm has a code out of range"},
        {"a fact with other bits", [](auto& c) { c.keys[0][1][2] = 2; },
         "a packed column has bits of no key column"},
        {"facts not in order", [](auto& c) { Set(c.keys[0][1], 0, 1, 0); },
         "sort order 1: the facts are not in their"},
        {"a fact under another lead", [](auto& c) { Set(c.model.projections[0].leadRows, 0, 2, 3); }, differ},
        {"orders that differ", [](auto& c) { c.values[1][0] = 8; }, differ},
        {"a child's code its parent lacks", [](auto& c) { Set(c.Accounts().ranges[1], 0, 1); },
         "parent lacks some"},
        {"aggregates by a time that does not exist", [](auto& c) { c.aggregates.timeColumn = 2; },
         "the aggregates' time"},
        {"a packed key of a column that does not exist",
         [](auto& c) { c.aggregates.packedKeyColumns[0].column = 2; }, packedKey},
        {"a column with other bits in the packed key",
         [](auto& c) { c.aggregates.packedKeyColumns[0].bits = 2; }, packedKey},
        {"a column beyond the packed key", [](auto& c) { c.aggregates.packedKeyColumns[0].shift = 32; },
         packedKey},
        {"a column of no bits beyond the packed key",
         [](auto& c) {
             c.model.keyColumns.push_back({"one", 1, 1, 2, 0});
             c.keys[0].push_back({0, 0, 0}), c.keys[1].push_back({0, 0, 0});
             c.aggregates.packedKeyColumns = {{2, 32, 0}, {1, 0, 1}};
         },
         packedKey},
        {"columns on the same bits of the packed key",
         [](auto& c) {
             c.aggregates.packedKeyColumns.push_back({1, 0, 1});
         },
         packedKey},
        {"no time buckets", [](auto& c) { c.aggregates.timeBuckets.clear(); }, buckets},
        {"time buckets that do not cover all codes", [](auto& c) { Set(c.aggregates.timeBuckets, 0, 2); },
         buckets},
        {"more time buckets than the blocks hold",
         [](auto& c) {
             c.aggregates.timeColumn = 0;
             c.model.keyColumns[0].codes = 66, c.model.keyColumns[0].width = 1;
             c.model.projections[0].leadRows.assign(67, 3);
             c.model.projections[0].leadRows[0] = 0;
             c.aggregates.timeBuckets.resize(67);
             std::iota(c.aggregates.timeBuckets.begin(), c.aggregates.timeBuckets.end(), 0U);
         },
         buckets},
        {"aggregate rows beyond the section", [](auto& c) { c.aggregates.rows = 3; }, section},
        {"packed keys without sums", [](auto& c) { c.aggregates.sums[0].pop_back(); }, section},
        {"packed keys without buckets", [](auto& c) { c.aggregates.bucketMasks.pop_back(); }, section},
        {"an aggregate beyond the rows", [](auto& c) { c.aggregates.records[1].start = 1; }, disorder2},
        {"an aggregate beyond the packed keys", [](auto& c) { c.aggregates.records[0].keyCount = 5; },
         "lie outside a section"},
        {"packed keys that descend", [](auto& c) { Set(c.aggregates.packedKeys, 1, 0, 0); }, disorder1},
        {"a packed key with other buckets", [](auto& c) { c.aggregates.bucketMasks[0] = 3; }, disorder1},
        {"aggregate rows that descend", [](auto& c) { Set(c.aggregateFirms, 1, 0); }, disorder2},
        {"a sum that differs", [](auto& c) { c.aggregates.sums[0][1] = 8; }, differs1},
        {"a coarser sum that differs", [](auto& c) { c.aggregates.sums[0][2] = 8; }, differs1},
        {"a coarser key of one firm", [](auto& c) { c.aggregates.packedKeys[2] = 1; }, differs1},
        {"a coarser aggregate of rows", [](auto& c) { c.aggregates.records[1].coarserKeyCount = 1; },
         "where there can be none"},
        {"a coarser aggregate without a packed key", [](auto& c) { c.aggregates.packedKeyColumns.clear(); },
         "where there can be none"},
        {"a coarser aggregate beyond the packed keys",
         [](auto& c) { c.aggregates.records[0].coarserKeyCount = 2; }, "lie outside a section"},
        {"sums of other packed keys",
         [](auto& c) { std::swap(c.aggregates.sums[0][0], c.aggregates.sums[0][1]); }, differs1},
        {"sums of other buckets", [](auto& c) { c.SumByAccounts(), c.aggregates.sums[0][0] = -7; }, differs1},
        {"buckets of other facts", [](auto& c) { c.SumByAccounts(), c.aggregates.bucketMasks[1] = 1; },
         differs1},
        {"rows that nothing stores, more than the cube has",
         [](auto& c) {
             c.model.measures = {{{"Lines", "Lines", AggregateFunction::Count, 0}, 0, 1}};
             c.aggregates = StoredAggregates();
             c.aggregates.timeBuckets = {0, 1};
             c.aggregates.records = {{{}, 0, 0, std::uint64_t{1} << 40U}};
             c.aggregates.rows = std::uint64_t{1} << 40U;
             c.aggregates.sums = {{}};
             c.aggregates.prefixStarts = {0};
         },
         disorder1},
        {"aggregate rows of another packed key", [](auto& c) { Set(c.aggregateFirms, 0, 0); }, differs2},
        {"a bucket that does not exist", [](auto& c) { c.aggregates.bucketMasks[0] = 2; }, disorder1},
        {"a group of one range",
         [](auto& c) {
             SetGroups(c, {0, 1}, {{0, 1}});
         },
         groups},
        {"ranges of a group that touch",
         [](auto& c) {
             SetGroups(c, {0, 2}, {{0, 1}, {1, 2}});
         },
         groups},
        {"a count that differs", [](auto& c) { c.aggregates.counts[0] = 1; }, differs1},
        {"an aggregate's value that differs", [](auto& c) { c.aggregateValues[0] = 7; }, differs2},
        {"an aggregate of no column", [](auto& c) { c.aggregates.records[1].key.firstColumn = 2; }, noCodes},
        {"groups without an end", [](auto& c) { Set(c.aggregates.groupStarts, 0, 2); }, malformed},
        {"groups that overlap",
         [](auto& c) {
             SetGroups(c, {0, 2, 1}, {{0, 1}});
         },
         malformed},
        {"no starts of groups", [](auto& c) { c.aggregates.groupStarts.clear(); }, malformed},
        {"groups that descend",
         [](auto& c) {
             SetGroups(c, {0, 2, 4}, {{0, 1}, {3, 4}, {0, 1}, {2, 3}});
         },
         groups},
        {"an aggregate of a group that does not exist",
         [](auto& c) { Set(c.aggregates.records[1].key.first, 0, 0); }, noCodes},
        {"an aggregate of a group beyond the codes",
         [](auto& c) {
             SetGroups(c, {0, 2}, {{0, 1}, {2, 3}}), Set(c.aggregates.records[1].key.first, 0, 0);
         },
         noCodes},
        {"an aggregate of another member's facts",
         [](auto& c) { Set(c.aggregates.records[1].key.first, 0, 1); }, differs2},
        {"two aggregates of one key", [](auto& c) { c.aggregates.records[1].key = {}; },
         "its key does not find it"},
        {"a name that is not UTF-8", [](auto& c) { c.Accounts().names.bytes[0] = '\xFF'; }, "not UTF-8"},
    };
    const TemporaryFolder folder;
    for (const auto& test : cases) {
        SmallCube cube;
        test.spoil(cube);
        cube.Write(folder.Path("bad.cub"));
        EXPECT_THAT(OpenFault(folder.Path("bad.cub")), HasSubstr(test.fault)) << test.what;
    }
}

TEST(CubeFile, InconsistentDetailsAreFound) {
    constexpr auto other = "the details belong to other facts",
                   lines = "the lines of the details are not in order",
                   malformed = "the detail 1 is not well-formed";
    const struct {
        const char* what;
        std::function<void(SmallCube&)> spoil;
        const char* fault;
    } cases[] = {
        {"a fact twice", [](auto& c) { Set(c.detailFacts[0], 1, 1, 2); }, other},
        {"other facts",
         [](auto& c) {
             c.detailFacts[1] = {0, 1, 2};
         },
         other},
        {"a fact that does not exist", [](auto& c) { Set(c.detailFacts[1], 1, 0, 3); },
         "fact that does not exist"},
        {"too few facts", [](auto& c) { c.detailFacts[1].pop_back(); },
         "facts of the details have the wrong length"},
        {"a text that does not exist", [](auto& c) { Set(c.detailCodes, 0, 2, 0); },
         "a detail that does not exist"},
        {"texts out of order", [](auto& c) { Set(c.detailOffsets, 0, 6, 5); }, "not in order"},
        {"a text beyond the end", [](auto& c) { Set(c.detailOffsets, 0, 5, 10); }, "outside a section"},
        {"no UTF-8", [](auto& c) { c.detailTexts[0] = '\xFF'; }, "a text that is no UTF-8"},
        {"too few texts", [](auto& c) { c.model.details.columns[0].texts = 3; }, malformed},
        {"codes of no width", [](auto& c) { c.model.details.columns[0].codeWidth = 0; }, malformed},
        {"a file that does not exist", [](auto& c) { c.model.details.runs[1].file = 1; }, lines},
        {"a late first line", [](auto& c) { c.model.details.runs[0].first = 1; }, lines},
        {"equal lines", [](auto& c) { c.model.details.runs[1].first = 0; }, lines},
    };
    const TemporaryFolder folder;
    for (const auto& test : cases) {
        SmallCube cube;
        cube.KeepDetails();
        cube.Write(folder.Path("good.cub"));
        EXPECT_EQ(OpenFault(folder.Path("good.cub")), "no fault");
        test.spoil(cube);
        cube.Write(folder.Path("bad.cub"));
        EXPECT_THAT(OpenFault(folder.Path("bad.cub")), HasSubstr(test.fault)) << test.what;
    }
}

/// Aggregates are optional: a file without them gives the same facts.
TEST(CubeFile, HasAggregatesByKeysByTimeOrNone) {
    const TemporaryFolder folder;
    SmallCube with, byTime, without;
    byTime.SumByAccounts();
    without.hasAggregates = false;
    for (const auto& [cube, name] : {std::pair(&with, "with"), {&byTime, "by time"}, {&without, "without"}}) {
        cube->Write(folder.Path(name));
        EXPECT_EQ(OpenFault(folder.Path(name)), "no fault") << name;
    }
    const auto first = CubeFile::Open(folder.Path("with")), second = CubeFile::Open(folder.Path("without"));
    const auto valuesOf = [](const CubeFile& file) {
        const auto* const bytes = file.Cubes()[0].Facts().Projections()[1].Values(0, {0, 3});
        return std::vector<std::byte>(bytes, bytes + 3);
    };
    EXPECT_EQ(valuesOf(*first), valuesOf(*second));
    ASSERT_NE(first->Cubes()[0].Facts().Aggregates(), nullptr);
    EXPECT_EQ(second->Cubes()[0].Facts().Aggregates(), nullptr);
}

TEST(CubeFile, AppearsOnlyWhenComplete) {
    const TemporaryFolder folder;
    SmallCube().Write(folder.Path("a.cub"));
    const auto before = folder.Read("a.cub");
    const auto opened = CubeFile::Open(folder.Path("a.cub"));
    {
        CubeFileWriter abandoned(folder.Path("a.cub"));
        abandoned.AddCube(SmallCube().model);
    }
    EXPECT_EQ(folder.Read("a.cub"), before);
    EXPECT_EQ(folder.FileCount(), 1U) << "a temporary file was left behind";

    SmallCube other;
    other.model.name = "Other";
    std::filesystem::create_symlink(folder.Path("a.cub"), folder.Path("link.cub"));
    other.Write(folder.Path("link.cub"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.Path("link.cub")));
    EXPECT_EQ(CubeFile::Open(folder.Path("a.cub"))->Cubes()[0].Name(), "Other");
    EXPECT_EQ(opened->Cubes()[0].Name(), "Small") << "a reader keeps the file it opened";
    EXPECT_NO_THROW(opened->Verify({}));

    EXPECT_THROW(CubeFileWriter(folder.Path("absent/a.cub")), EngineError);
    EXPECT_THROW(CubeFileWriter(folder.Path()), EngineError);
}

/// Runs `work` in a process without superuser rights and returns its fault.
std::string AsAnyUser(const TemporaryFolder& folder, const std::function<void()>& work) {
    const auto answer = folder.Write("answer", "");
    std::filesystem::permissions(answer, std::filesystem::perms::all);
    const pid_t child = fork();
    if (child == 0) {
        constexpr unsigned nobody = 65534;
        const bool mayDoAll = geteuid() == 0;
        if (mayDoAll && (setgid(nobody) != 0 || setuid(nobody) != 0)) {
            _exit(1);
        }
        const auto [kind, text] = FaultOf(work);
        std::ofstream(answer) << (kind == ErrorKind::FileNotFound ? "read: " : "write: ") << text;
        _exit(0);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    return folder.Read("answer");
}

TEST(CubeFile, NoPermissionIsAnErrorThatSaysSo) {
    const TemporaryFolder folder;
    SmallCube().Write(folder.Path("a.cub"));
    folder.Write("answer", ""); // while files can still be created
    std::filesystem::permissions(folder.Path("a.cub"), std::filesystem::perms::none);
    std::filesystem::permissions(folder.Path(), std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::remove);
    EXPECT_THAT(AsAnyUser(folder, [&] { CubeFile::Open(folder.Path("a.cub")); }),
                AllOf(testing::StartsWith("read: "), testing::EndsWith("a.cub: Permission denied")));
    EXPECT_THAT(AsAnyUser(folder, [&] { SmallCube().Write(folder.Path("new.cub")); }),
                AllOf(testing::StartsWith("write: "),
                      testing::EndsWith("new.cub: cannot be written: Permission denied")));
    std::filesystem::permissions(folder.Path(), std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::add);
}

TEST(CubeFile, AFullDiskIsAnError) {
    const TemporaryFolder folder;
    SmallCube().Write(folder.Path("a.cub"));
    const auto before = folder.Read("a.cub");
    const test::FileSizeLimit limit(100);
    const auto [kind, text] = FaultOf([&] { SmallCube().Write(folder.Path("a.cub")); });
    EXPECT_EQ(kind, ErrorKind::CannotWrite);
    EXPECT_THAT(text, HasSubstr("a.cub: cannot be written: File too large"));
    EXPECT_EQ(folder.Read("a.cub"), before);
    EXPECT_EQ(folder.FileCount(), 1U);
}

} // namespace
} // namespace qel::engine
