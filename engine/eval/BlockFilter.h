#pragma once

#include "engine/eval/CodeRanges.h"
#include "engine/eval/ColumnLoops.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qel::engine {

/// Tests one slot of the facts, a block of rows at a time.
class BlockFilter {
public:
    /// The restriction lets some code through.
    BlockFilter(const Restriction& restriction, const KeyColumn& column);

    std::size_t Slot() const { return slot_; }
    /// Takes over another filter of the same slot when one comparison can do both; false when not.
    bool Merge(const BlockFilter& other);
    /// Takes out the rows that do not pass. `slots` holds `count` values of the slot.
    void Apply(const std::byte* slots, std::size_t count, BlockMask& mask) const;
    /// About how much memory this owns.
    std::size_t OwnedBytes() const { return spans_.capacity() * sizeof(SlotSpan) + isIn_.capacity(); }

private:
    bool IsOneCode() const { return spans_.empty() && isIn_.empty() && span_.first == span_.last; }

    std::size_t slot_;
    std::uint8_t width_, shift_;
    std::uint32_t bits_;
    SlotSpan span_;                  ///< for a set that is a single range
    std::vector<SlotSpan> spans_;    ///< for one of few
    std::vector<std::uint8_t> isIn_; ///< by code, for any other
};

/// As few filters as test all of the restrictions.
std::vector<BlockFilter> MakeFilters(const FactTable& facts, std::span<const Restriction> restrictions);

} // namespace qel::engine
