#pragma once

#include "engine/eval/BlockFilter.h"
#include "engine/eval/FactSum.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qel::engine {

/// Sums the prefix sums of one aggregate.
class PrefixSumReader {
public:
    /// `residuals` restrict columns of the packed key; a residual on the time column is ignored.
    PrefixSumReader(const FactTable& facts, const Aggregate& aggregate,
                    std::span<const Restriction> residuals, std::size_t measure);

    /// The facts in the time buckets from `first` up to, but not including, `last`. For sums, `rows` only
    /// tells zero from non-zero.
    FactSum Sum(std::uint32_t first, std::uint32_t last) const;
    /// Begins to fetch the keys into the processor's caches.
    void Prefetch() const;
    /// Approximate heap memory in bytes.
    std::size_t OwnedBytes() const { return BytesOf(filters_); }

private:
    void AddResidual(const AggregateTable::PackedKeyColumn& part, const Restriction& residual);
    void NarrowKeys(std::uint8_t shift, KeyRange codes);

    const FactTable* facts_;
    const AggregateTable* aggregates_;
    std::size_t measure_;
    AggregateTable::PrefixIndex index_;
    std::uint64_t keyCount_;
    std::vector<BlockFilter> filters_; ///< on packed keys
};

} // namespace qel::engine
