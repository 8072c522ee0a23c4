#pragma once

#include "engine/storage/FactTable.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qel::engine {

/// Reads an integer at any alignment. The file aligns its columns, but the compiler does not know that.
template <class T>
T ReadAt(const std::byte* data, std::size_t index) {
    T value;
    std::memcpy(&value, data + index * sizeof(T), sizeof(T));
    return value;
}

/// Calls `visit` with a value of the unsigned type of that width.
template <class Visit>
decltype(auto) VisitCodeType(std::uint8_t width, const Visit& visit) {
    if (width == 1) {
        return visit(std::uint8_t{});
    }
    return width == 2 ? visit(std::uint16_t{}) : visit(std::uint32_t{});
}

/// The codes of some rows in one key column.
class CodeColumn {
public:
    /// `packed` holds the rows' values of the packed column.
    CodeColumn(const std::byte* packed, const KeyColumn& column)
        : data_(packed), mask_(column.Mask()), shift_(column.shift), width_(column.width) {}

    std::uint32_t operator[](std::size_t row) const {
        return VisitCodeType(width_, [&](auto type) -> std::uint32_t {
            return (ReadAt<decltype(type)>(data_, row) & mask_) >> shift_;
        });
    }

    /// The first row in [first, last) whose code is not less than `code`. The rows are sorted. Gallops from
    /// `first`, because the answer is usually near.
    std::size_t LowerBound(std::size_t first, std::size_t last, std::uint32_t code) const {
        const std::uint64_t wanted = std::uint64_t{code} << shift_;
        return VisitCodeType(width_, [&](auto type) {
            const auto isBefore = [&](std::size_t row) {
                return (ReadAt<decltype(type)>(data_, row) & mask_) < wanted;
            };
            std::size_t step = 16;
            while (step < last - first && isBefore(first + step - 1)) {
                first += step;
                step *= 4;
            }
            std::size_t count = std::min(step, last - first);
            while (count > 1) { // branch-free: the branch would be mispredicted half of the time
                const std::size_t half = count / 2;
                first += isBefore(first + half - 1) ? half : 0;
                count -= half;
            }
            return count == 1 && isBefore(first) ? first + 1 : first;
        });
    }

private:
    const std::byte* data_;
    std::uint32_t mask_;
    std::uint8_t shift_, width_;
};

} // namespace qel::engine
