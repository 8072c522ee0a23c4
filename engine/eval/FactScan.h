#pragma once

#include "engine/eval/CodeRanges.h"
#include "engine/storage/FactTable.h"

#include <cstdint>
#include <span>
#include <vector>

namespace qel::engine {

struct FactSum {
    std::int64_t sum = 0;   ///< of stored values; 0 for a count measure
    std::uint64_t rows = 0; ///< at least 1 when there are any; how many, for a count measure
};

/// The facts under all restrictions (at most one a key column): how many, and the sum of the measure. Takes
/// sums that are kept ready where it can. All below raise EngineError (DamagedFile).
FactSum SumFacts(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t measure);

/// The same from the facts alone: reads only rows that the best sort order cannot rule out; without a
/// restriction, all of them. Tells the number of rows for any measure.
FactSum ScanFacts(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t measure);

/// The sum over a run of a projection's rows, of those that pass all tests.
FactSum SumRows(const FactTable& facts, const Projection& projection, RowRange rows,
                std::span<const Restriction> tests, std::size_t measure);

/// True when there is a fact under all restrictions; stops at the first.
bool AnyFact(const FactTable& facts, std::span<const Restriction> restrictions);

/// marks[code] = 1 for every code of the key column that a fact under all restrictions has. `marks` has an
/// element for every code of the column.
void MarkCodes(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t keyColumn,
               std::vector<std::uint8_t>& marks);

} // namespace qel::engine
