#pragma once

#include "engine/build/DimensionBuilder.h"
#include "engine/build/FactStore.h"
#include "qel/engine/BuildCube.h"

#include <string>
#include <vector>

namespace qel::engine {

/// Finds what in one dimension makes figures wrong without a fault, and adds it to the build's warnings
/// unless the definition accepts it. To be used after the keys have their codes.
class DimensionWarnings {
public:
    /// `keys` is null for a dimension without a fact column.
    DimensionWarnings(const CubeDefinition& cube, const DimensionBuilder& dimension,
                      const KeyColumnBuilder* keys, std::vector<BuildWarning>& warnings)
        : cube_(cube), dimension_(dimension), keys_(keys), warnings_(warnings) {}

    /// Names that several members of a level have.
    void AddSharedNames() const;
    /// Values that count in several members of a level, with their amount. `column` is their key column.
    void AddSharedValues(const FactStore& facts, std::size_t column) const;
    /// Dates whose order of day and month fits only as long as there are no others.
    void AddDateOrder() const;

private:
    void Add(const char* kind, const std::string& place, const std::string& fault) const;
    /// "Amount 12.50" of the facts with one of the values, or "3 lines" without a sum.
    std::string AmountOf(const std::vector<std::uint32_t>& values, const FactStore& facts,
                         std::size_t column) const;

    const CubeDefinition& cube_;
    const DimensionBuilder& dimension_;
    const KeyColumnBuilder* keys_;
    std::vector<BuildWarning>& warnings_;
};

/// Why a table gives no facts.
std::string NoRowsText(const TableDefinition& table);

/// Adds what is odd about a table that was read to its end, once however often it is read: a last line
/// without its end, no rows, words of Hebrew in a western encoding.
void AddTableWarnings(const TableReader& reader, std::vector<BuildWarning>& warnings);

/// Adds the warnings that their dimension does not accept.
void AddReviewed(std::vector<BuildWarning> found, const Definition& definition,
                 std::vector<BuildWarning>& warnings);

/// Raises EngineError (InvalidData) with all warnings if there are any.
void RefuseWarnings(const std::vector<BuildWarning>& warnings);

} // namespace qel::engine
