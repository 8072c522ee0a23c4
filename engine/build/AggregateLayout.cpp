#include "engine/build/AggregateLayout.h"

#include <algorithm>
#include <bit>

namespace qel::engine {

namespace {

/// With more buckets too few facts share one.
constexpr std::size_t mostBuckets = 400;
/// One less than 32: a column of a single code has no bits and would be shifted by the full width.
constexpr unsigned keyBits = 31;
/// Wider columns have groups of members that queries select; they become key columns of aggregates instead.
constexpr unsigned mostBitsInKey = 5;

const HierarchyModel* TimeHierarchy(const CubeModel& model) {
    for (const DimensionModel& dimension : model.dimensions) {
        if (dimension.isTime && dimension.hierarchies.front().keyColumn) {
            return &dimension.hierarchies.front();
        }
    }
    return nullptr;
}

/// The first codes of the members of the finest level that has few enough. Every level of a calendar covers
/// all codes.
std::vector<std::uint32_t> TimeBucketsOf(const HierarchyModel& time, std::uint32_t codes) {
    std::vector<std::uint32_t> buckets;
    std::uint32_t levelEnd = static_cast<std::uint32_t>(time.parents.size());
    for (auto level = time.levels.rbegin(); level != time.levels.rend() && buckets.empty(); ++level) {
        const std::uint32_t first = levelEnd - level->memberCount;
        for (std::uint32_t member = first; member < levelEnd && level->memberCount <= mostBuckets; ++member) {
            buckets.push_back(time.ranges[time.rangeOffsets[member]].first);
        }
        levelEnd = first;
    }
    buckets.push_back(codes);
    if (buckets.front() != 0) {
        buckets.insert(buckets.begin(), 0);
    }
    return buckets;
}

} // namespace

AggregateModel LayOutAggregates(const CubeModel& model) {
    AggregateModel aggregates;
    aggregates.timeBuckets = {0, 1};
    if (const HierarchyModel* time = TimeHierarchy(model)) {
        aggregates.timeColumn = time->keyColumn;
        aggregates.timeBuckets = TimeBucketsOf(*time, model.keyColumns[*time->keyColumn].codes);
    }
    const auto blocks =
        static_cast<std::uint32_t>((aggregates.timeBuckets.size() - 2) / AggregateTable::blockBuckets);
    aggregates.blockBits = static_cast<std::uint8_t>(std::bit_width(blocks));
    std::vector<std::uint16_t> narrow;
    for (std::size_t i = 0; i < model.keyColumns.size(); ++i) {
        if (model.keyColumns[i].Bits() <= mostBitsInKey && i != aggregates.timeColumn) {
            narrow.push_back(static_cast<std::uint16_t>(i));
        }
    }
    std::stable_sort(narrow.begin(), narrow.end(), [&](auto left, auto right) {
        return model.keyColumns[left].Bits() < model.keyColumns[right].Bits();
    });
    unsigned end = aggregates.blockBits;
    for (const std::uint16_t column : narrow) {
        const unsigned bits = model.keyColumns[column].Bits();
        if (end + bits > keyBits) {
            break;
        }
        aggregates.packedKeyColumns.push_back({column, 0, static_cast<std::uint8_t>(bits)});
        end += bits;
    }
    // The column with the most codes gets the lowest bits: a query that leaves it out then reads consecutive
    // keys.
    for (AggregateTable::PackedKeyColumn& part : aggregates.packedKeyColumns) {
        end -= part.bits;
        part.shift = static_cast<std::uint8_t>(end);
    }
    return aggregates;
}

bool IsAggregateKey(const AggregateModel& aggregates, std::size_t keyColumn) {
    const auto& parts = aggregates.packedKeyColumns;
    return keyColumn != aggregates.timeColumn &&
           std::none_of(parts.begin(), parts.end(),
                        [&](const auto& part) { return part.column == keyColumn; });
}

} // namespace qel::engine
