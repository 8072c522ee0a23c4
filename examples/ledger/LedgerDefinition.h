#pragma once

#include <cstddef>
#include <string>

namespace qel::ledger {

/// The text of ledger.json for an OBS tree with that many levels.
std::string LedgerDefinition(std::size_t obsLevels);

} // namespace qel::ledger
