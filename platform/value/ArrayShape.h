#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

namespace qel {

struct ArrayBounds {
    std::int32_t lower = 0;
    std::int32_t upper = -1; ///< inclusive; lower - 1 for no elements
};

/// The bounds of an array's dimensions; one dimension, as nearly every array has, needs no heap block.
class ArrayShape {
public:
    ArrayShape() = default;
    ArrayShape(std::initializer_list<ArrayBounds> dimensions) {
        for (const ArrayBounds& dimension : dimensions) {
            Add(dimension);
        }
    }

    void Add(const ArrayBounds& dimension) {
        if (count_++ == 0) {
            first_ = dimension;
        } else {
            others_.push_back(dimension);
        }
    }
    std::size_t DimensionCount() const { return count_; }
    /// Raises std::out_of_range for a dimension that the array lacks.
    const ArrayBounds& operator[](std::size_t dimension) const {
        return dimension == 0 && count_ != 0 ? first_ : others_.at(dimension - 1);
    }

private:
    std::size_t count_ = 0; ///< 0 for an array that was never dimensioned
    ArrayBounds first_;
    std::vector<ArrayBounds> others_;
};

} // namespace qel
