#pragma once

#include "engine/build/FactStore.h"
#include "engine/build/KeyColumnBuilder.h"
#include "engine/build/SpillStore.h"
#include "engine/build/TableReader.h"
#include "engine/build/TextDictionary.h"
#include "engine/storage/CubeModel.h"

#include <cstdint>
#include <vector>

namespace qel::engine {

/// A detail of the facts.
struct DetailTexts {
    explicit DetailTexts(SpillStore& store) : numbers(store) {}

    TextDictionary texts;
    ByteStream numbers; ///< 4 bytes by row
};

/// The facts of a cube as they are read.
struct FactColumns {
    explicit FactColumns(SpillStore& spill) : store(spill) {}

    FactStore store;
    std::vector<std::uint8_t> currencies; ///< by measure, of the amounts read; 0 until one has a currency
    std::vector<DetailTexts> details;
    std::vector<DetailRun> lines; ///< where the rows stand in the files, when details are kept
};

/// The details that are kept of the lines of one fact table.
struct DetailsOfTable {
    std::uint32_t file = 0; ///< number of the table among the cube's
    bool areKept = false;
    std::vector<std::size_t> columns; ///< of the table
};

/// Reads a fact table and adds its usable lines.
void ReadFacts(TableReader& reader, const std::vector<MeasureDefinition>& measures,
               const DetailsOfTable& details, std::vector<KeyColumnBuilder>& keyColumns, FactColumns& facts);

/// The measures with their unit (the greatest common divisor of their values) and the narrowest width. Raises
/// EngineError (InvalidData) when a measure's sum of absolute values exceeds 63 bits.
std::vector<MeasureColumn> MeasureModels(const std::vector<MeasureDefinition>& measures,
                                         const FactStore& facts, const std::string& cubeName);

} // namespace qel::engine
