#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qel::engine {

/// Reads an integer of the column's type; columns are aligned in the file, but the compiler need not know.
template <class T>
T ReadAt(const std::byte* data, std::size_t index) {
    T value;
    std::memcpy(&value, data + index * sizeof(T), sizeof(T));
    return value;
}

/// Calls `visit` with a value of the unsigned type that has so many bytes.
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
    CodeColumn(const std::byte* data, std::uint8_t width) : data_(data), width_(width) {}

    std::uint32_t operator[](std::size_t row) const {
        return VisitCodeType(width_,
                             [&](auto type) -> std::uint32_t { return ReadAt<decltype(type)>(data_, row); });
    }

    /// The first row in [first, last) whose code is not less than `code`; the rows are sorted.
    std::size_t LowerBound(std::size_t first, std::size_t last, std::uint32_t code) const {
        return VisitCodeType(width_, [&](auto type) {
            while (first < last) {
                const std::size_t middle = first + (last - first) / 2;
                if (ReadAt<decltype(type)>(data_, middle) < code) {
                    first = middle + 1;
                } else {
                    last = middle;
                }
            }
            return first;
        });
    }

private:
    const std::byte* data_;
    std::uint8_t width_;
};

} // namespace qel::engine
