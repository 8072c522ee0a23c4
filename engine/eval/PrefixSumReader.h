#pragma once

#include "engine/eval/BlockFilter.h"
#include "engine/eval/FactSum.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qel::engine {

/// Sums one aggregate that is made of strips.
class PrefixSumReader {
public:
    /// The tests are of the word's columns; one of time is passed over.
    PrefixSumReader(const FactTable& facts, const Aggregate& aggregate,
                    std::span<const Restriction> residuals, std::size_t measure);

    /// The facts of the buckets of time from `first` up to, without, `last`. For a measure that is summed
    /// the rows that are told are fewer than there are, but 0 only when there is none.
    FactSum Sum(std::uint32_t first, std::uint32_t last) const;
    /// About how much memory this owns.
    std::size_t OwnedBytes() const { return BytesOf(filters_); }

private:
    void AddResidual(const AggregateTable::PackedKeyColumn& part, const Restriction& residual);
    void Narrow(std::uint8_t shift, KeyRange codes);

    const FactTable* facts_;
    const AggregateTable* aggregates_;
    std::size_t measure_;
    AggregateTable::PrefixIndex index_;
    std::uint64_t keyCount_;
    std::vector<BlockFilter> filters_; ///< of words
};

} // namespace qel::engine
