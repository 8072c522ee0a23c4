#pragma once

#include "engine/eval/CodeRanges.h"
#include "engine/eval/ColumnLoops.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace qel::engine {

/// Tests one packed column, a block of rows at a time.
class BlockFilter {
public:
    /// The restriction must not be empty.
    BlockFilter(const Restriction& restriction, const KeyColumn& column);

    std::size_t PackedColumn() const { return packedColumn_; }
    /// Merges another filter on the same packed column when one comparison can test both; otherwise returns
    /// false.
    bool Merge(const BlockFilter& other);
    /// Sets each row's mark to whether it passes. `packed` holds `count` values of the packed column.
    void Mark(const std::byte* packed, std::size_t count, BlockMask& mask) const;
    /// Clears the marks of the rows that do not pass.
    void Apply(const std::byte* packed, std::size_t count, BlockMask& mask) const;
    /// Approximate heap memory in bytes.
    std::size_t OwnedBytes() const;

private:
    /// A set of several ranges.
    struct Set {
        std::vector<PackedSpan> spans;  ///< for few ranges
        std::vector<std::uint8_t> isIn; ///< by code, for many ranges
    };

    bool IsOneCode() const { return set_ == nullptr && span_.first == span_.last; }

    std::uint16_t packedColumn_;
    std::uint8_t width_, shift_;
    std::uint32_t bits_;
    PackedSpan span_;                ///< for a single range
    std::shared_ptr<const Set> set_; ///< for several ranges; shared, to keep plans small
};

/// Adds a filter, or merges it into one that is there.
void AddFilter(BlockFilter filter, std::vector<BlockFilter>& filters);

/// Marks the rows of a block that pass all filters, of which there is at least one. valuesOf(filter) returns
/// the values of the filter's packed column.
template <class ValuesOf>
void MarkPassing(std::span<const BlockFilter> filters, std::size_t count, BlockMask& mask,
                 const ValuesOf& valuesOf) {
    filters.front().Mark(valuesOf(filters.front()), count, mask);
    for (const BlockFilter& filter : filters.subspan(1)) {
        filter.Apply(valuesOf(filter), count, mask);
    }
}

/// Approximate memory in bytes.
std::size_t BytesOf(std::span<const BlockFilter> filters);

/// The fewest filters that test all restrictions.
std::vector<BlockFilter> MakeFilters(const FactTable& facts, std::span<const Restriction> restrictions);

} // namespace qel::engine
