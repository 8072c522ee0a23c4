#pragma once

#include "engine/storage/MappedSection.h"
#include "engine/storage/Ranges.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qel::engine {

/// The facts in one sort order: a column for every packed column and every summed measure. The order's first
/// key leads: the rows of one of its codes are neighbours and are found without a search.
class Projection {
public:
    /// The key columns that the rows are sorted by, most significant first; at least one.
    std::span<const std::uint16_t> SortOrder() const { return sortOrder_; }
    std::uint64_t RowCount() const { return rowCount_; }
    /// The rows whose leading key lies in the range.
    RowRange RowsOfLeadingKey(KeyRange codes) const {
        return {leadRows_[codes.first], leadRows_[codes.last]};
    }
    /// The leading key's code of a row.
    std::uint32_t LeadingKeyOf(std::uint64_t row) const;
    /// False for the packed column of the leading key when no other column shares it: the row's place says it
    /// all.
    bool HasPackedColumn(std::size_t packedColumn) const { return hasPackedColumn_[packedColumn]; }
    /// The packed column's values of these rows, after the checksums of the pages they lie on were verified
    /// (once a page). The width is the packed column's. Raises EngineError (DamagedFile).
    const std::byte* PackedColumn(std::size_t packedColumn, RowRange rows) const;
    /// The stored values of one measure for these rows; width and errors as above. Not for a count.
    const std::byte* Values(std::size_t measure, RowRange rows) const;

private:
    friend class CubeLoader;
    friend class AggregateLoader;

    std::vector<std::uint16_t> sortOrder_;
    std::uint64_t rowCount_ = 0;
    std::span<const std::uint64_t>
        leadRows_; ///< first row of each code of the leading key, and the row count
    std::vector<MappedSection> packedColumns_; ///< empty sections where there is no packed column
    std::vector<MappedSection> values_;        ///< by measure; an empty section for a count
    std::vector<bool> hasPackedColumn_;
    std::vector<std::uint8_t> packedWidths_, valueWidths_;
};

} // namespace qel::engine
