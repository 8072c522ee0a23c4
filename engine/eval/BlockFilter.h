#pragma once

#include "engine/eval/CodeRanges.h"
#include "engine/eval/ColumnLoops.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace qel::engine {

/// Tests one packed column of the facts, a block of rows at a time.
class BlockFilter {
public:
    /// The restriction lets some code through.
    BlockFilter(const Restriction& restriction, const KeyColumn& column);

    std::size_t PackedColumn() const { return packedColumn_; }
    /// Takes over another filter of the same packed column when one comparison can do both; false when not.
    bool Merge(const BlockFilter& other);
    /// Marks each row: whether it passes. `packed columns` holds `count` values of the packed column.
    void Mark(const std::byte* packed, std::size_t count, BlockMask& mask) const;
    /// Takes out the rows that do not pass.
    void Apply(const std::byte* packed, std::size_t count, BlockMask& mask) const;
    /// About how much memory this owns.
    std::size_t OwnedBytes() const;

private:
    /// Of a set of several ranges.
    struct Set {
        std::vector<PackedSpan> spans;  ///< when they are few
        std::vector<std::uint8_t> isIn; ///< by code, for any other
    };

    bool IsOneCode() const { return set_ == nullptr && span_.first == span_.last; }

    std::uint16_t packedColumn_;
    std::uint8_t width_, shift_;
    std::uint32_t bits_;
    PackedSpan span_;                ///< for a set that is a single range
    std::shared_ptr<const Set> set_; ///< for any other; apart, so that plans are small
};

/// Adds a filter, or makes one of those that there are test it as well.
void AddFilter(BlockFilter filter, std::vector<BlockFilter>& filters);

/// Marks the rows of a block that pass all filters, at least one: valuesOf(filter) has the values that it
/// tests.
template <class ValuesOf>
void MarkPassing(std::span<const BlockFilter> filters, std::size_t count, BlockMask& mask,
                 const ValuesOf& valuesOf) {
    filters.front().Mark(valuesOf(filters.front()), count, mask);
    for (const BlockFilter& filter : filters.subspan(1)) {
        filter.Apply(valuesOf(filter), count, mask);
    }
}

/// About how much memory they take.
std::size_t BytesOf(std::span<const BlockFilter> filters);

/// As few filters as test all of the restrictions.
std::vector<BlockFilter> MakeFilters(const FactTable& facts, std::span<const Restriction> restrictions);

} // namespace qel::engine
