#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

// Branch-free loops over a block of a fact column, written to be vectorised.

namespace qel::engine {

inline constexpr std::size_t blockRows = 1024;

/// One byte per row of a block: 1 when the row passes, otherwise 0.
using BlockMask = std::array<std::uint8_t, blockRows>;

/// A block of a packed column: `count` values of `width` bytes.
struct PackedBlock {
    const std::byte* data = nullptr;
    std::uint8_t width = 1;
    std::size_t count = 0;
};

/// A range of packed values, unshifted.
struct PackedSpan {
    std::uint32_t first = 0, last = 0; ///< inclusive
};

/// Sets each row's mark to whether its value, masked by `bits`, lies in the span.
void MarkBetween(PackedBlock block, std::uint32_t bits, PackedSpan span, BlockMask& mask);
/// Clears the marks of rows whose value, masked by `bits`, lies outside the span.
void KeepBetween(PackedBlock block, std::uint32_t bits, PackedSpan span, BlockMask& mask);
/// Clears the marks of rows whose value, masked by `bits`, lies in none of the spans. For few spans.
void KeepBetweenAny(PackedBlock block, std::uint32_t bits, std::span<const PackedSpan> spans,
                    BlockMask& mask);
/// Clears the marks of rows whose code (masked by `bits`, shifted by `shift`) is 0 in the table or beyond it.
void KeepListed(PackedBlock block, std::uint32_t bits, unsigned shift, std::span<const std::uint8_t> isIn,
                BlockMask& mask);

/// Begins to fetch bytes into the processor's caches.
inline void PrefetchBytes(const void* first, std::uint64_t count) {
    constexpr std::uint64_t lineBytes = 64;
    for (std::uint64_t at = 0; at < count; at += lineBytes) {
        __builtin_prefetch(static_cast<const std::byte*>(first) + at);
    }
}

/// Calls visit(row) for every marked row, in order. Skips eight unmarked rows at once, so it is fast for
/// sparse masks.
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

/// The number of marked rows.
std::uint64_t CountRows(const BlockMask& mask, std::size_t count);
/// The sum of `count` signed values of `width` bytes, or of the marked ones when `mask` is not null; `passed`
/// is their number. Wraps around on overflow, because a damaged file may hold any values.
std::uint64_t SumValues(const std::byte* values, std::uint8_t width, std::size_t count, const BlockMask* mask,
                        std::uint64_t passed);

} // namespace qel::engine
