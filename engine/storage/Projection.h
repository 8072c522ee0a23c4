#pragma once

#include "engine/storage/MappedSection.h"
#include "engine/storage/Ranges.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qel::engine {

/// The facts in one sort order: one column per packed column and per summed measure. Rows with the same
/// leading key are consecutive and found without a search.
class Projection {
public:
    /// The key columns the rows are sorted by, most significant first; at least one.
    std::span<const std::uint16_t> SortOrder() const { return sortOrder_; }
    std::uint64_t RowCount() const { return rowCount_; }
    /// The rows whose leading key lies in the range.
    RowRange RowsOfLeadingKey(KeyRange codes) const {
        return {leadRows_[codes.first], leadRows_[codes.last]};
    }
    /// The code of a row's leading key.
    std::uint32_t LeadingKeyOf(std::uint64_t row) const;
    /// False when the packed column holds only the leading key, which the row number implies.
    bool HasPackedColumn(std::size_t packedColumn) const { return hasPackedColumn_[packedColumn]; }
    /// The packed column's values in these rows, with the checksums of their pages checked. Their width is
    /// FactTable::PackedWidth. Raises EngineError (DamagedFile).
    const std::byte* PackedColumn(std::size_t packedColumn, RowRange rows) const;
    /// The stored values of a summed measure in these rows, Measure::width bytes each. Raises EngineError
    /// (DamagedFile).
    const std::byte* Values(std::size_t measure, RowRange rows) const;

private:
    friend class CubeLoader;
    friend class AggregateLoader;

    std::vector<std::uint16_t> sortOrder_;
    std::uint64_t rowCount_ = 0;
    std::span<const std::uint64_t>
        leadRows_; ///< first row of each code of the leading key, and the row count
    std::vector<MappedSection> packedColumns_; ///< an empty section where not stored
    std::vector<MappedSection> values_;        ///< by measure; an empty section for a count
    std::vector<bool> hasPackedColumn_;
    std::vector<std::uint8_t> packedWidths_, valueWidths_;
};

} // namespace qel::engine
