#pragma once

#include "examples/ledger/LedgerLine.h"

namespace qel::ledger {

inline constexpr std::size_t groupObsLevels = 3;

/// The example group's ledger: three firms, 2023 to 2025, month by month. The same seed gives the same lines.
void GenerateGroupLedger(std::uint64_t seed, const LineSink& sink);

/// The tables that explain the codes of those lines.
std::vector<DimensionTable> GroupTables();

} // namespace qel::ledger
