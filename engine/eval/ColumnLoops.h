#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

// The loops over a block of a fact column: without branches, so that they are vectorised.

namespace qel::engine {

inline constexpr std::size_t blockRows = 1024;

/// For each row of a block 1 when it passed, otherwise 0.
using BlockMask = std::array<std::uint8_t, blockRows>;

/// The rows of a block: `count` packed columns of `width` bytes.
struct PackedBlock {
    const std::byte* data = nullptr;
    std::uint8_t width = 1;
    std::size_t count = 0;
};

/// A span of a packed column's bits as they lie, not shifted.
struct PackedSpan {
    std::uint32_t first = 0, last = 0; ///< both included
};

/// Marks each row of the block: whether its bits under `bits` are in the span.
void MarkBetween(PackedBlock block, std::uint32_t bits, PackedSpan span, BlockMask& mask);
/// Takes out the rows whose bits under `bits` are not in the span.
void KeepBetween(PackedBlock block, std::uint32_t bits, PackedSpan span, BlockMask& mask);
/// Takes out the rows whose bits under `bits` are in none of the spans, which should be few.
void KeepBetweenAny(PackedBlock block, std::uint32_t bits, std::span<const PackedSpan> spans,
                    BlockMask& mask);
/// Takes out the rows whose code, from `shift` under `bits`, has a 0 in the table or lies beyond it.
void KeepListed(PackedBlock block, std::uint32_t bits, unsigned shift, std::span<const std::uint8_t> isIn,
                BlockMask& mask);

/// Calls visit(row) for the rows that passed, in order; for blocks of which few did, as it looks at eight at
/// once.
template <class Visit>
inline __attribute__((always_inline)) void VisitMarked(const std::uint8_t* mask, std::size_t count,
                                                       const Visit& visit) {
    constexpr std::size_t step = 8;
    std::size_t i = 0;
    for (; i + step <= count; i += step) {
        std::uint64_t marks = 0;
        std::memcpy(&marks, mask + i, step);
        for (; marks != 0; marks &= marks - 1) {
            visit(i + static_cast<std::size_t>(std::countr_zero(marks)) / step);
        }
    }
    for (; i < count; ++i) {
        if (mask[i] != 0) {
            visit(i);
        }
    }
}

/// How many rows of the block passed.
std::uint64_t CountRows(const BlockMask& mask, std::size_t count);
/// The sum of `count` signed values of `width` bytes, of those alone that passed when `mask` is not null;
/// `passed` says how many. Wraps around: values come from a file, and must not be undefined whatever they
/// are.
std::uint64_t SumValues(const std::byte* values, std::uint8_t width, std::size_t count, const BlockMask* mask,
                        std::uint64_t passed);

} // namespace qel::engine
