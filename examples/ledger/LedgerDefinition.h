#pragma once

#include <string>

namespace qel::ledger {

/// The text of ledger.json.
std::string LedgerDefinition();

} // namespace qel::ledger
