#pragma once

#include "engine/eval/FactScan.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace qel::engine {

inline constexpr std::size_t blockRows = 1024;

/// For each row of a block 1 when it passed, otherwise 0.
using BlockMask = std::array<std::uint8_t, blockRows>;

/// Tests the codes of one key column, a block of rows at a time, in loops without branches.
class BlockFilter {
public:
    BlockFilter(const Restriction& restriction, const KeyColumn& column);

    std::size_t KeyColumnIndex() const { return restriction_.keyColumn; }
    /// Takes out the rows whose code is not in the set. `codes` holds `count` codes of the column.
    void Apply(const std::byte* codes, std::size_t count, BlockMask& mask) const;

private:
    Restriction restriction_;
    std::uint8_t width_;
    std::vector<std::uint8_t> isIn_; ///< by code, when there are too many ranges to compare with each
};

} // namespace qel::engine
