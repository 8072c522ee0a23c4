#pragma once

#include "examples/ledger/reference/RandomSelections.h"

#include <vector>

namespace qel::bench {

/// Formulas as reports hold them: mostly accounts and summary groups on a unit, a cost centre or an activity,
/// some wide, with most of the small dimensions; for a year, a year to date, a month and other spans, one in
/// eleven not of whole months. Half are around lines of the ledger, half of accounts, units
/// and so on drawn one by one.
std::vector<ledger::Selection> DrawFormulas(ledger::RandomSelections& selections, std::uint64_t seed,
                                            std::size_t count, ledger::LedgerCube cube);

/// A sheet as people make them: rows of formulas, each twelve times for the months of a year.
std::vector<ledger::Selection> DrawSheet(ledger::RandomSelections& selections, std::uint64_t seed,
                                         std::size_t rows, ledger::LedgerCube cube);

} // namespace qel::bench
