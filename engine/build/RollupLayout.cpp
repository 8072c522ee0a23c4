#include "engine/build/RollupLayout.h"

#include <algorithm>
#include <bit>

namespace qel::engine {

namespace {

/// More granules than this would leave strips with little to share.
constexpr std::size_t mostGranules = 400;
/// One less than a word has: a column of one code takes no bits, and would be shifted by all 32.
constexpr unsigned wordBits = 31;
/// A column of more bits has groups of members that are asked for; it is a key of rollups instead.
constexpr unsigned mostBitsInWord = 5;

const HierarchyModel* TimeHierarchy(const CubeModel& model) {
    for (const DimensionModel& dimension : model.dimensions) {
        if (dimension.isTime && dimension.hierarchies.front().keyColumn) {
            return &dimension.hierarchies.front();
        }
    }
    return nullptr;
}

/// The members of the finest level that is not too fine. Every level of a calendar covers all of it.
std::vector<std::uint32_t> GranulesOf(const HierarchyModel& time, std::uint32_t codes) {
    std::vector<std::uint32_t> granules;
    std::uint32_t levelEnd = static_cast<std::uint32_t>(time.parents.size());
    for (auto level = time.levels.rbegin(); level != time.levels.rend() && granules.empty(); ++level) {
        const std::uint32_t first = levelEnd - level->memberCount;
        for (std::uint32_t member = first; member < levelEnd && level->memberCount <= mostGranules;
             ++member) {
            granules.push_back(time.ranges[time.rangeOffsets[member]].first);
        }
        levelEnd = first;
    }
    granules.push_back(codes);
    if (granules.front() != 0) {
        granules.insert(granules.begin(), 0);
    }
    return granules;
}

} // namespace

RollupModel LayOutRollups(const CubeModel& model) {
    RollupModel rollups;
    rollups.granules = {0, 1};
    if (const HierarchyModel* time = TimeHierarchy(model)) {
        rollups.timeColumn = time->keyColumn;
        rollups.granules = GranulesOf(*time, model.keyColumns[*time->keyColumn].codes);
    }
    const auto blocks =
        static_cast<std::uint32_t>((rollups.granules.size() - 2) / RollupTable::blockGranules);
    rollups.blockBits = static_cast<std::uint8_t>(std::bit_width(blocks));
    std::vector<std::uint16_t> narrow;
    for (std::size_t i = 0; i < model.keyColumns.size(); ++i) {
        if (model.keyColumns[i].Bits() <= mostBitsInWord && i != rollups.timeColumn) {
            narrow.push_back(static_cast<std::uint16_t>(i));
        }
    }
    std::stable_sort(narrow.begin(), narrow.end(), [&](auto left, auto right) {
        return model.keyColumns[left].Bits() < model.keyColumns[right].Bits();
    });
    unsigned end = rollups.blockBits;
    for (const std::uint16_t column : narrow) {
        const unsigned bits = model.keyColumns[column].Bits();
        if (end + bits > wordBits) {
            break;
        }
        rollups.wordColumns.push_back({column, 0, static_cast<std::uint8_t>(bits)});
        end += bits;
    }
    // The column of most codes is the lowest: strips that differ in it alone, which a question that leaves
    // it out reads together, are neighbours.
    for (RollupTable::WordColumn& word : rollups.wordColumns) {
        end -= word.bits;
        word.shift = static_cast<std::uint8_t>(end);
    }
    rollups.sums.resize(model.measures.size());
    return rollups;
}

bool IsRollupKey(const RollupModel& rollups, std::size_t keyColumn) {
    const auto& words = rollups.wordColumns;
    return keyColumn != rollups.timeColumn && std::none_of(words.begin(), words.end(), [&](const auto& word) {
               return word.column == keyColumn;
           });
}

} // namespace qel::engine
