#pragma once

#include "engine/build/KeyColumnBuilder.h"
#include "engine/build/TableReader.h"
#include "engine/storage/CubeModel.h"

#include <cstdint>
#include <vector>

namespace qel::engine {

/// The facts of a cube in memory, column by column.
struct FactColumns {
    std::vector<std::vector<std::uint32_t>> keys;  ///< by key column: numbers while reading, then codes
    std::vector<std::vector<std::int64_t>> values; ///< by measure, scaled; empty for a count
    std::uint64_t rowCount = 0;
};

/// Reads a fact table to its end and adds its usable lines.
void ReadFacts(TableReader& reader, const std::vector<MeasureDefinition>& measures,
               std::vector<KeyColumnBuilder>& keyColumns, FactColumns& facts);

/// Puts the codes in place of the numbers.
void ReplaceNumbersByCodes(const std::vector<KeyColumnBuilder>& keyColumns, FactColumns& facts);

/// The measures with the unit that all their values are multiples of, and the width that these need. Raises
/// EngineError (InvalidData) when the sum of the absolute values of a measure is beyond 63 bits.
std::vector<MeasureColumn> MeasureModels(const std::vector<MeasureDefinition>& measures,
                                         const FactColumns& facts, const std::string& cubeName);

} // namespace qel::engine
