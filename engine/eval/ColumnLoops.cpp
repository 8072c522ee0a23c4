#include "engine/eval/ColumnLoops.h"

#include "engine/eval/Vectorised.h"
#include "engine/storage/CodeColumn.h"

namespace qel::engine {

namespace {

/// Calls test(row) for every row, in steps of fixed length that vectorise without a scalar remainder: the
/// last step ends at the end of the block and overlaps the one before, so test must be idempotent.
template <std::size_t step, class Test>
QEL_INLINE void InSteps(std::size_t count, const Test& test) {
    // A call would cost more than the step, and the compiler decides by what else it compiles.
    const auto takeStep = [&](std::size_t first) __attribute__((always_inline)) {
        for (std::size_t i = 0; i < step; ++i) {
            test(first + i);
        }
    };
    for (std::size_t first = 0; first + step <= count; first += step) {
        takeStep(first);
    }
    if (count % step != 0) {
        takeStep(count - step);
    }
}

/// Calls test(row) for every row, possibly twice.
template <class Test>
QEL_INLINE void ForEachRow(std::size_t count, const Test& test) {
    constexpr std::size_t longStep = 32, shortStep = 8;
    if (count >= longStep) {
        InSteps<longStep>(count, test);
    } else if (count >= shortStep) {
        InSteps<shortStep>(count, test);
    } else {
        for (std::size_t i = 0; i < count; ++i) {
            test(i);
        }
    }
}

/// Calls join(row, 1 or 0) for each row: whether its value lies in the span.
template <class Packed, class Join>
QEL_INLINE void Between(const std::byte* packed, std::size_t count, std::uint32_t bits, PackedSpan span,
                        const Join& join) {
    const auto under = static_cast<Packed>(bits);
    const auto lowest = static_cast<Packed>(span.first);
    // Unsigned wrap-around: a single comparison tests both ends.
    const auto width = static_cast<Packed>(span.last - span.first);
    ForEachRow(
        count, [&](std::size_t i) __attribute__((always_inline)) {
            const auto distance = static_cast<Packed>((ReadAt<Packed>(packed, i) & under) - lowest);
            join(i, static_cast<std::uint8_t>(distance <= width));
        });
}

template <class Join>
QEL_INLINE void Between(PackedBlock block, std::uint32_t bits, PackedSpan span, const Join& join) {
    if (block.width == 1) {
        Between<std::uint8_t>(block.data, block.count, bits, span, join);
    } else if (block.width == 2) {
        Between<std::uint16_t>(block.data, block.count, bits, span, join);
    } else {
        Between<std::uint32_t>(block.data, block.count, bits, span, join);
    }
}

template <class Amount>
QEL_INLINE std::uint64_t SumAll(const std::byte* values, std::size_t count) {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < count; ++i) {
        sum += static_cast<std::uint64_t>(std::int64_t{ReadAt<Amount>(values, i)});
    }
    return sum;
}

template <class Amount>
QEL_INLINE std::uint64_t SumMarked(const std::byte* values, std::size_t count, const std::uint8_t* mask) {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint64_t all = 0 - std::uint64_t{mask[i]};
        sum += static_cast<std::uint64_t>(std::int64_t{ReadAt<Amount>(values, i)}) & all;
    }
    return sum;
}

template <class Amount>
QEL_INLINE std::uint64_t SumFew(const std::byte* values, std::size_t count, const std::uint8_t* mask) {
    std::uint64_t sum = 0;
    VisitMarked(mask, count, [&](std::size_t row) {
        sum += static_cast<std::uint64_t>(std::int64_t{ReadAt<Amount>(values, row)});
    });
    return sum;
}

template <class Amount>
QEL_INLINE std::uint64_t SumBlock(const std::byte* values, std::size_t count, const BlockMask* mask,
                                  std::uint64_t passed) {
    constexpr std::uint64_t fewShare = 8;
    if (mask == nullptr) {
        return SumAll<Amount>(values, count);
    }
    return passed * fewShare < count ? SumFew<Amount>(values, count, mask->data())
                                     : SumMarked<Amount>(values, count, mask->data());
}

} // namespace

void MarkBetween(PackedBlock block, std::uint32_t bits, PackedSpan span, BlockMask& mask) {
    std::uint8_t* const marks = mask.data();
    RunVectorised([=]() __attribute__((always_inline)) {
        Between(
            block, bits, span, [marks](std::size_t i, std::uint8_t isIn) __attribute__((always_inline)) {
                marks[i] = isIn;
            });
    });
}

void KeepBetween(PackedBlock block, std::uint32_t bits, PackedSpan span, BlockMask& mask) {
    std::uint8_t* const kept = mask.data();
    RunVectorised([=]() __attribute__((always_inline)) {
        Between(
            block, bits, span, [kept](std::size_t i, std::uint8_t isIn) __attribute__((always_inline)) {
                kept[i] &= isIn;
            });
    });
}

void KeepBetweenAny(PackedBlock block, std::uint32_t bits, std::span<const PackedSpan> spans,
                    BlockMask& mask) {
    BlockMask any;
    std::uint8_t *const found = any.data(), *const kept = mask.data();
    RunVectorised([=]() __attribute__((always_inline)) {
        for (std::size_t i = 0; i < block.count; ++i) {
            found[i] = 0;
        }
        for (const PackedSpan span : spans) {
            Between(
                block, bits, span, [found](std::size_t i, std::uint8_t isIn) __attribute__((always_inline)) {
                    found[i] |= isIn;
                });
        }
        for (std::size_t i = 0; i < block.count; ++i) {
            kept[i] &= found[i];
        }
    });
}

void KeepListed(PackedBlock block, std::uint32_t bits, unsigned shift, std::span<const std::uint8_t> isIn,
                BlockMask& mask) {
    VisitCodeType(block.width, [&](auto type) {
        using Packed = decltype(type);
        for (std::size_t i = 0; i < block.count; ++i) {
            // Codes come from the file and may lie beyond the table.
            const std::size_t code = (ReadAt<Packed>(block.data, i) & bits) >> shift;
            mask[i] &= code < isIn.size() ? isIn[code] : std::uint8_t{0};
        }
    });
}

std::uint64_t CountRows(const BlockMask& mask, std::size_t count) {
    const std::uint8_t* const marks = mask.data();
    return RunVectorised([=]() __attribute__((always_inline)) {
        std::uint32_t rows = 0;
        for (std::size_t i = 0; i < count; ++i) {
            rows += marks[i];
        }
        return rows;
    });
}

std::uint64_t SumValues(const std::byte* values, std::uint8_t width, std::size_t count, const BlockMask* mask,
                        std::uint64_t passed) {
    return RunVectorised([=]() __attribute__((always_inline)) {
        switch (width) {
        case 1:
            return SumBlock<std::int8_t>(values, count, mask, passed);
        case 2:
            return SumBlock<std::int16_t>(values, count, mask, passed);
        case 4:
            return SumBlock<std::int32_t>(values, count, mask, passed);
        default:
            return SumBlock<std::int64_t>(values, count, mask, passed);
        }
    });
}

} // namespace qel::engine
