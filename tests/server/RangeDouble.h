#pragma once

#include "tests/helpers/automation/AutomationClient.h"

namespace qel::test {

/// A spreadsheet's range: its class is named Range, and its cells are objects with a Value.
ComPointer<IDispatch> MakeRange(std::vector<OwnedVariant> values);

} // namespace qel::test
