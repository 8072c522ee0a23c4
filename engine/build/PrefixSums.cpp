#include "engine/build/PrefixSums.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace qel::engine {

namespace {

/// One prefix sum.
struct PrefixEntry {
    AggregateCell cell;
    std::uint32_t index = 0; ///< into sums and counts
    bool isFirst = false;    ///< of its packed key
};

/// The prefix sums sorted by cell, with the packed keys masked by `kept`.
std::vector<PrefixEntry> SortedEntries(const PrefixSums& prefixSums, std::uint32_t kept) {
    std::vector<PrefixEntry> entries;
    entries.reserve(prefixSums.counts.size());
    for (std::size_t i = 0; i < prefixSums.keys.size(); ++i) {
        std::uint32_t index = prefixSums.starts[i];
        for (std::uint64_t left = prefixSums.bucketMasks[i]; left != 0; left &= left - 1, ++index) {
            const auto bucket = static_cast<std::uint32_t>(std::countr_zero(left)); // within the key's block
            entries.push_back({{prefixSums.keys[i] & kept, bucket}, index, index == prefixSums.starts[i]});
        }
    }
    std::sort(entries.begin(), entries.end(), [](const PrefixEntry& left, const PrefixEntry& right) {
        return std::pair(left.cell.key, left.cell.bucket) < std::pair(right.cell.key, right.cell.bucket);
    });
    return entries;
}

/// The number of distinct keys under the mask `kept`.
std::size_t CountKeys(std::vector<std::uint32_t> keys, std::uint32_t kept) {
    std::transform(keys.begin(), keys.end(), keys.begin(), [&](auto key) { return key & kept; });
    std::sort(keys.begin(), keys.end());
    return static_cast<std::size_t>(std::unique(keys.begin(), keys.end()) - keys.begin());
}

} // namespace

void PrefixSumWriter::MoveTo(AggregateCell cell) {
    const bool isNewKey = !last_ || last_->key != cell.key;
    if (isNewKey) {
        prefixSums_.keys.push_back(cell.key);
        prefixSums_.bucketMasks.push_back(0);
        prefixSums_.starts.push_back(static_cast<std::uint32_t>(prefixSums_.counts.size()));
    }
    if (isNewKey || last_->bucket != cell.bucket) {
        prefixSums_.bucketMasks.back() |= std::uint64_t{1} << cell.bucket % AggregateTable::blockBuckets;
        prefixSums_.counts.push_back(isNewKey ? 0 : prefixSums_.counts.back());
        for (const std::size_t i : summed_) {
            prefixSums_.sums[i].push_back(isNewKey ? 0 : prefixSums_.sums[i].back());
        }
    }
    last_ = cell;
}

std::uint32_t AddCoarserAggregate(const AggregateTable::PackedKeyColumn& leftOut,
                                  std::span<const std::size_t> summed, PrefixSums& prefixSums) {
    constexpr std::size_t leastReduction = 4;
    const std::uint32_t kept = ~leftOut.Mask();
    const std::size_t keyCount = CountKeys(prefixSums.keys, kept);
    if (keyCount * leastReduction > prefixSums.keys.size()) {
        return 0;
    }
    PrefixSumWriter writer(prefixSums, summed);
    for (const PrefixEntry& entry : SortedEntries(prefixSums, kept)) {
        writer.MoveTo(entry.cell);
        const auto added = [&](const auto& prefix) {
            return prefix[entry.index] - (entry.isFirst ? 0 : prefix[entry.index - 1]);
        };
        prefixSums.counts.back() += added(prefixSums.counts);
        for (const std::size_t i : summed) {
            prefixSums.sums[i].back() += added(prefixSums.sums[i]);
        }
    }
    return static_cast<std::uint32_t>(keyCount);
}

} // namespace qel::engine
