#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

// The loops over a block of a fact column: without branches, so that they are vectorised.

namespace qel::engine {

inline constexpr std::size_t blockRows = 1024;

/// For each row of a block 1 when it passed, otherwise 0.
using BlockMask = std::array<std::uint8_t, blockRows>;

/// The rows of a block: `count` slots of `width` bytes.
struct SlotBlock {
    const std::byte* data = nullptr;
    std::uint8_t width = 1;
    std::size_t count = 0;
};

/// Takes out the rows whose bits under `bits` are not between `first` and `last`, both included. The bounds
/// are of the slot as it lies, not shifted.
void KeepBetween(SlotBlock slots, std::uint32_t bits, std::uint32_t first, std::uint32_t last,
                 BlockMask& mask);
/// Takes out the rows whose code, from `shift` under `bits`, has a 0 in the table or lies beyond it.
void KeepListed(SlotBlock slots, std::uint32_t bits, unsigned shift, std::span<const std::uint8_t> isIn,
                BlockMask& mask);

/// How many rows of the block passed.
std::uint64_t CountRows(const BlockMask& mask, std::size_t count);
/// The sum of `count` signed values of `width` bytes, of those alone that passed when `mask` is not null;
/// `passed` says how many. Wraps around: values come from a file, and must not be undefined whatever they
/// are.
std::uint64_t SumValues(const std::byte* values, std::uint8_t width, std::size_t count, const BlockMask* mask,
                        std::uint64_t passed);

} // namespace qel::engine
