#pragma once

#include "engine/eval/CodeRanges.h"
#include "engine/storage/FactTable.h"

#include <cstdint>
#include <span>
#include <vector>

namespace qel::engine {

/// Only facts whose code in this key column is in the set.
struct Restriction {
    std::size_t keyColumn = 0;
    CodeRanges codes;
};

struct FactSum {
    std::int64_t sum = 0; ///< scaled; 0 for a count measure
    std::uint64_t rows = 0;
};

/// The facts under all restrictions (at most one a key column): how many, and the sum of the measure. Reads
/// only rows that the best sort order cannot rule out; without a restriction, all of them.
/// All three raise EngineError (DamagedFile).
FactSum SumFacts(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t measure);

/// True when there is a fact under all restrictions; stops at the first.
bool AnyFact(const FactTable& facts, std::span<const Restriction> restrictions);

/// marks[code] = 1 for every code of the key column that a fact under all restrictions has. `marks` has an
/// element for every code of the column.
void MarkCodes(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t keyColumn,
               std::vector<std::uint8_t>& marks);

} // namespace qel::engine
