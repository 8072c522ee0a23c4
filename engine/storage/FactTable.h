#pragma once

#include "engine/storage/MappedSection.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace qel::engine {

/// A half-open range of a key column's codes.
struct KeyRange {
    std::uint32_t first = 0;
    std::uint32_t last = 0;

    bool operator==(const KeyRange&) const = default;
};

/// A half-open range of a projection's rows.
struct RowRange {
    std::uint64_t first = 0;
    std::uint64_t last = 0;

    std::uint64_t Count() const { return last - first; }
};

struct KeyColumn {
    std::string name;        ///< the fact table's column
    std::uint32_t codes = 0; ///< codes are 0 .. codes-1, numbered so that the main tree's members are ranges
    std::uint8_t width = 1;  ///< bytes a code: 1, 2 or 4
};

enum class Aggregate : std::uint8_t { Sum = 0, Count = 1 };

struct Measure {
    std::string name;
    std::string caption;
    Aggregate aggregate = Aggregate::Sum;
    std::uint8_t decimals = 0; ///< stored integers are the amount times ten to this power
    std::uint8_t width = 0;    ///< bytes a value: 1, 2, 4 or 8, signed; 0 for a count, which stores nothing
};

/// The facts in one sort order: a column for every key column and every summed measure. The order's first key
/// leads: the rows of one of its codes are neighbours and are found without a search.
class Projection {
public:
    /// The key columns that the rows are sorted by, most significant first; at least one.
    std::span<const std::uint16_t> SortOrder() const { return sortOrder_; }
    std::uint64_t RowCount() const { return rowCount_; }
    /// The rows whose leading key lies in the range.
    RowRange RowsOfLead(KeyRange codes) const;
    /// The codes of one key column for these rows, after the checksums of the pages they lie on were verified
    /// (once a page). The width is the key column's. Raises EngineError (DamagedFile).
    const std::byte* Keys(std::size_t keyColumn, RowRange rows) const;
    /// The scaled values of one measure for these rows; width and errors as above. Not for a count.
    const std::byte* Values(std::size_t measure, RowRange rows) const;

private:
    friend class CubeLoader;

    std::vector<std::uint16_t> sortOrder_;
    std::uint64_t rowCount_ = 0;
    std::span<const std::uint64_t>
        leadRows_;                      ///< first row of each code of the leading key, and the row count
    std::vector<MappedSection> keys_;   ///< by key column
    std::vector<MappedSection> values_; ///< by measure; an empty section for a count
    std::vector<std::uint8_t> keyWidths_, valueWidths_;
};

/// The facts of a cube. The sum of the absolute values of every measure fits 64 bits (checked by the build),
/// so no partial sum can overflow.
class FactTable {
public:
    std::span<const KeyColumn> KeyColumns() const { return keyColumns_; }
    std::span<const Measure> Measures() const { return measures_; }
    /// At least one; the same rows in different orders.
    std::span<const Projection> Projections() const { return projections_; }
    std::uint64_t RowCount() const { return rowCount_; }

private:
    friend class CubeLoader;

    std::vector<KeyColumn> keyColumns_;
    std::vector<Measure> measures_;
    std::vector<Projection> projections_;
    std::uint64_t rowCount_ = 0;
};

} // namespace qel::engine
