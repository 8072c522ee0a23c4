#pragma once

#include "examples/ledger/reference/RandomSelections.h"

#include <vector>

namespace qel::bench {

/// Formulas as reports contain them: mostly accounts and summary groups by unit, cost centre or activity,
/// some broad ones with most of the small dimensions; over a year, a year to date, a month and other spans,
/// one in eleven not of whole months. Half are built around ledger lines, half from independently drawn
/// accounts, units and so on.
std::vector<ledger::Selection> DrawFormulas(ledger::RandomSelections& selections, std::uint64_t seed,
                                            std::size_t count, ledger::LedgerCube cube);

/// A typical sheet: rows of formulas, each repeated for the twelve months of a year.
std::vector<ledger::Selection> DrawSheet(ledger::RandomSelections& selections, std::uint64_t seed,
                                         std::size_t rows, ledger::LedgerCube cube);

} // namespace qel::bench
