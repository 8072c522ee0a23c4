#pragma once

#include "engine/eval/BlockFilter.h"
#include "engine/eval/FactSum.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qel::engine {

/// Sums one rollup that is made of strips.
class StripSum {
public:
    /// The tests are of the word's columns; one of time is passed over.
    StripSum(const FactTable& facts, const Rollup& rollup, std::span<const Restriction> tests,
             std::size_t measure);

    /// The facts of the granules of time from `first` up to, without, `last`. For a measure that is summed
    /// the rows that are told are fewer than there are, but 0 only when there is none.
    FactSum Sum(std::uint32_t first, std::uint32_t last) const;
    /// About how much memory this owns.
    std::size_t OwnedBytes() const { return BytesOf(filters_); }

private:
    void AddTest(const RollupTable::WordColumn& word, const Restriction& test);
    void Narrow(std::uint8_t shift, KeyRange codes);

    const FactTable* facts_;
    const RollupTable* rollups_;
    std::size_t measure_;
    RollupTable::Strips strips_;
    std::uint64_t stripCount_;
    std::vector<BlockFilter> filters_; ///< of words
};

} // namespace qel::engine
