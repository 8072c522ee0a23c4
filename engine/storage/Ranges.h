#pragma once

#include <cstdint>

namespace qel::engine {

/// A half-open range of a key column's codes.
struct KeyRange {
    std::uint32_t first = 0;
    std::uint32_t last = 0;

    std::uint32_t Count() const { return last - first; }
    bool operator==(const KeyRange&) const = default;
};

/// A half-open range of a projection's rows.
struct RowRange {
    std::uint64_t first = 0;
    std::uint64_t last = 0;

    std::uint64_t Count() const { return last - first; }
};

} // namespace qel::engine
