#include "engine/eval/FactAccessPlan.h"
#include "engine/eval/FactScan.h"
#include "engine/storage/Format.h"
#include "engine/storage/PageVerifier.h"
#include "qel/engine/BracketedName.h"
#include "qel/engine/CheckCalculations.h"
#include "qel/engine/CubeFile.h"
#include "qel/engine/EngineError.h"
#include "qel/engine/RunStatement.h"

#include <xxhash.h>

#include <algorithm>
#include <cstring>
#include <span>
#include <vector>

// Opens any bytes as a cube file, reads everything in it and verifies it. The checksums are corrected first,
// because wrong ones would hide the checks behind them from nearly every input.

namespace {

using namespace qel::engine;

/// Derives the header's sizes where possible, and fills in all checksums.
void Repair(std::vector<std::byte>& bytes) {
    format::Header header = {};
    if (bytes.size() < sizeof header) {
        return;
    }
    std::memcpy(&header, bytes.data(), sizeof header);
    header.signature = format::signature;
    header.version = format::version;
    header.pageSize = static_cast<std::uint32_t>(format::pageSize);
    header.fileSize = bytes.size();
    const std::uint64_t directorySize =
        std::uint64_t{header.directoryEntries} * sizeof(format::DirectoryEntry);
    const std::uint64_t end = header.checksumTableOffset;
    if (end < sizeof header || end > bytes.size() || directorySize > bytes.size() - end) {
        return;
    }
    const std::span<const std::byte> pages(bytes.data(), end);
    const std::uint64_t pageCount = (end + format::pageSize - 1) / format::pageSize;
    header.directoryOffset = end + pageCount * sizeof(std::uint64_t);
    for (std::uint64_t page = 0; page < pageCount; ++page) {
        const std::uint64_t checksum = PageChecksum(pages, page);
        const std::uint64_t place = end + page * sizeof checksum;
        if (place + sizeof checksum <= bytes.size()) {
            std::memcpy(bytes.data() + place, &checksum, sizeof checksum);
        }
    }
    header.tailChecksum = XXH3_64bits(bytes.data() + end, bytes.size() - end);
    header.headerChecksum = XXH3_64bits(&header, format::headerChecksumOffset);
    std::memcpy(bytes.data(), &header, sizeof header);
}

std::size_t AskHierarchy(const Hierarchy& hierarchy) {
    std::vector<MemberId> found;
    std::size_t sum = 0;
    const MemberId count = std::min<MemberId>(hierarchy.MemberCount(), 1000);
    for (MemberId member = 0; member < count; ++member) {
        found.clear();
        hierarchy.FindByName(hierarchy.MemberName(member), found);
        hierarchy.FindByKey(hierarchy.MemberKey(member), found);
        for (const MemberId other : found) {
            sum += hierarchy.MemberName(other).size();
        }
        sum += hierarchy.MemberUniqueName(member).size() + hierarchy.MemberCaption(member).size();
        sum += hierarchy.LevelOf(member) + hierarchy.Children(member).Count();
        for (const KeyRange& range : hierarchy.Ranges(member)) {
            sum += range.last;
        }
    }
    hierarchy.FindByName("all", found);
    return sum + hierarchy.MemberName(hierarchy.DefaultMember()).size();
}

std::size_t AskFacts(const Cube& cube) {
    std::size_t sum = 0;
    const FactTable& facts = cube.Facts();
    for (const Projection& projection : facts.Projections()) {
        const RowRange all{0, projection.RowCount()};
        for (std::size_t i = 0; i < facts.KeyColumns().size(); ++i) {
            for (const std::uint32_t code : ReadCodes(facts, projection, i, all)) {
                sum += code;
            }
        }
        for (const Hierarchy& hierarchy : cube.Hierarchies()) {
            if (hierarchy.KeyColumn() != projection.SortOrder().front()) {
                continue;
            }
            for (const KeyRange& range : hierarchy.Ranges(hierarchy.DefaultMember())) {
                sum += projection.RowsOfLeadingKey(range).Count();
            }
        }
    }
    return sum + cube.FindMeasure("amount").value_or(0) + facts.Measures()[cube.DefaultMeasure()].name.size();
}

/// Reads the facts of every aggregate, also restricted to one code of each narrow column and to a span of
/// time.
std::size_t ReadAggregates(const FactTable& facts) {
    std::size_t sum = 0;
    const AggregateTable* const aggregates = facts.Aggregates();
    for (std::uint64_t i = 0; aggregates != nullptr && i < std::min<std::uint64_t>(aggregates->Count(), 100);
         ++i) {
        const AggregateKey& key = aggregates->At(i).key;
        std::vector<Restriction> restrictions;
        const auto restrict = [&](std::size_t column, const KeyRange& codes) {
            const auto& columns = facts.KeyColumns();
            if (column < columns.size() && codes.first < codes.last && codes.last <= columns[column].codes) {
                restrictions.push_back({column, CodeRanges(&codes, 1)});
            }
        };
        restrict(key.firstColumn, key.first);
        restrict(key.secondColumn, key.second);
        for (std::size_t measure = 0; measure < facts.Measures().size(); ++measure) {
            sum += SumFacts(facts, restrictions, measure).rows;
        }
        for (const AggregateTable::PackedKeyColumn& part : aggregates->PackedKeyColumns()) {
            static constexpr KeyRange lowest{0, 1};
            std::vector<Restriction> narrowed = restrictions;
            narrowed.push_back({part.column, CodeRanges(&lowest, 1)});
            sum += SumFacts(facts, narrowed, 0).rows;
        }
        if (const auto time = aggregates->TimeColumn()) {
            const KeyRange middle{facts.KeyColumns()[*time].codes / 3, facts.KeyColumns()[*time].codes};
            restrict(*time, middle);
            sum += SumFacts(facts, restrictions, 0).rows;
        }
    }
    return sum;
}

/// Reads the cube's calculated measures and names its first set.
std::size_t AskCalculations(const Cube& cube) {
    const Calculations& calculations = cube.GetCalculations();
    if (calculations.Empty()) {
        return 0;
    }
    const std::size_t faults = FindCalculationFault(cube) ? 1 : 0;
    const std::string set = calculations.sets.empty() ? "{}" : calculations.sets.front().name;
    const std::string cubeName = BracketedName(cube.Name());
    const Cellset cells =
        RunStatement(cube, "SELECT [Measures].AllMembers ON 0, " + set + " ON 1 FROM " + cubeName);
    return faults + cells.PositionCount(0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto* const first = reinterpret_cast<const std::byte*>(data);
    std::vector<std::byte> bytes(first, first + size);
    Repair(bytes);
    volatile std::size_t sum = 0; // keeps the reads from being optimised away
    try {
        const auto file = CubeFile::FromMemory("fuzz.cub", std::move(bytes));
        for (const Cube& cube : file->Cubes()) {
            for (const Hierarchy& hierarchy : cube.Hierarchies()) {
                sum = sum + AskHierarchy(hierarchy);
            }
            sum = sum + AskFacts(cube);
            sum = sum + ReadAggregates(cube.Facts());
            sum = sum + AskCalculations(cube);
        }
        file->Verify({});
    } catch (const EngineError&) {
        return 0; // an expected error
    }
    return 0;
}
