#pragma once

#include "engine/storage/AggregateTable.h"
#include "engine/storage/Projection.h"
#include "qel/engine/Cube.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace qel::engine {

/// One column of the facts' keys. Its codes lie in a packed column of the row; columns of few codes share a
/// packed column, each with bits of its own.
struct KeyColumn {
    std::string name;        ///< the fact table's column
    std::uint32_t codes = 0; ///< codes are 0 .. codes-1, numbered so that the main tree's members are ranges
    std::uint8_t width = 1;  ///< bytes of the packed column: 1, 2 or 4
    std::uint16_t packedColumn = 0;
    std::uint8_t shift = 0; ///< where the code's bits begin in the packed column

    /// How many bits hold every code.
    unsigned Bits() const;
    /// The bits of the packed column that hold the code.
    std::uint32_t Mask() const;
};

/// A measure, and how its values are stored.
struct MeasureColumn : Measure {
    std::uint8_t width = 0; ///< bytes per value: 1, 2, 4 or 8, signed; 0 for a count, which stores nothing
    std::int64_t unit = 1;  ///< an amount as a whole number is the stored one times this; at least 1
};

/// The facts of a cube. The sum of the absolute values of every measure fits 64 bits (checked by the build),
/// so no partial sum can overflow.
class FactTable {
public:
    std::span<const KeyColumn> KeyColumns() const { return keyColumns_; }
    std::size_t PackedColumnCount() const { return packedWidths_.size(); }
    std::uint8_t PackedWidth(std::size_t packedColumn) const { return packedWidths_[packedColumn]; }
    std::span<const MeasureColumn> Measures() const { return measures_; }
    /// At least one; the same rows in different orders.
    std::span<const Projection> Projections() const { return projections_; }
    std::uint64_t RowCount() const { return rowCount_; }
    /// Sums kept ready; null when the file has none.
    const AggregateTable* Aggregates() const { return aggregates_ ? &*aggregates_ : nullptr; }

private:
    friend class CubeLoader;

    std::vector<KeyColumn> keyColumns_;
    std::vector<std::uint8_t> packedWidths_;
    std::vector<MeasureColumn> measures_;
    std::vector<Projection> projections_;
    std::optional<AggregateTable> aggregates_;
    std::uint64_t rowCount_ = 0;
};

/// Whether no other column has bits in this packed column than the one that leads a sort order: it is not
/// stored then.
bool HoldsLeadAlone(std::span<const KeyColumn> columns, std::size_t packedColumn, std::size_t lead);

/// The codes of a key column in some rows of a projection, whether stored or known by the rows' places.
/// Raises EngineError (DamagedFile).
std::vector<std::uint32_t> ReadCodes(const FactTable& facts, const Projection& projection,
                                     std::size_t keyColumn, RowRange rows);

} // namespace qel::engine
