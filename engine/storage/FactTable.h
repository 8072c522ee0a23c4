#pragma once

#include "engine/storage/AggregateTable.h"
#include "engine/storage/DetailTable.h"
#include "engine/storage/Projection.h"
#include "qel/engine/Cube.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace qel::engine {

/// A key column of the facts. Its codes are stored in a packed column; narrow key columns share one, each in
/// its own bits.
struct KeyColumn {
    std::string name;        ///< the fact table's column
    std::uint32_t codes = 0; ///< number of codes; numbered so that members of the main tree are ranges
    std::uint8_t width = 1;  ///< bytes of the packed column's values: 1, 2 or 4
    std::uint16_t packedColumn = 0;
    std::uint8_t shift = 0; ///< the code's lowest bit in the packed column

    /// Number of bits that hold every code.
    unsigned Bits() const;
    /// The bits of the packed column that hold the code.
    std::uint32_t Mask() const;
};

/// A measure and how its values are stored.
struct MeasureColumn : Measure {
    std::uint8_t width =
        0; ///< bytes per stored value, signed: 1, 2, 4 or 8; 0 for a count, which stores nothing
    std::int64_t unit = 1; ///< the integer amount is the stored value times this; at least 1
};

/// The facts of a cube. For every measure the sum of absolute values fits in 63 bits (the build checks it),
/// so no partial sum can overflow.
class FactTable {
public:
    std::span<const KeyColumn> KeyColumns() const { return keyColumns_; }
    std::size_t PackedColumnCount() const { return packedWidths_.size(); }
    std::uint8_t PackedWidth(std::size_t packedColumn) const { return packedWidths_[packedColumn]; }
    std::span<const MeasureColumn> Measures() const { return measures_; }
    /// At least one; each holds the same rows in a different order.
    std::span<const Projection> Projections() const { return projections_; }
    std::uint64_t RowCount() const { return rowCount_; }
    /// Precomputed aggregates; null when the file has none.
    const AggregateTable* Aggregates() const { return aggregates_ ? &*aggregates_ : nullptr; }
    /// What is kept of the ledger's lines; null when the file has nothing.
    const DetailTable* Details() const { return details_ ? &*details_ : nullptr; }

private:
    friend class CubeLoader;

    std::vector<KeyColumn> keyColumns_;
    std::vector<std::uint8_t> packedWidths_;
    std::vector<MeasureColumn> measures_;
    std::vector<Projection> projections_;
    std::optional<AggregateTable> aggregates_;
    std::optional<DetailTable> details_;
    std::uint64_t rowCount_ = 0;
};

/// Whether the packed column holds only the key column that leads a sort order. It is not stored then: the
/// row number implies the code.
bool HoldsLeadAlone(std::span<const KeyColumn> columns, std::size_t packedColumn, std::size_t lead);

/// The codes of a key column in some rows of a projection, read from its packed column or implied by the row
/// numbers. Raises EngineError (DamagedFile).
std::vector<std::uint32_t> ReadCodes(const FactTable& facts, const Projection& projection,
                                     std::size_t keyColumn, RowRange rows);

} // namespace qel::engine
