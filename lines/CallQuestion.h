#pragma once

#include "lines/CellCalls.h"
#include "wizard/WizardContext.h"

#include <optional>

namespace qel {

/// Asks which of several calls in a formula is meant. Nullopt when the person cancels.
std::optional<std::size_t> AskWhichCall(const WizardContext& context, const std::vector<CellCall>& calls);

} // namespace qel
