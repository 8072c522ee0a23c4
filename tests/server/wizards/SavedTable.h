#pragma once

#include "tests/helpers/automation/DispatchDouble.h"

namespace qel::test {

/// ADODB.Recordset over the suite's table of texts, filled from the component's own strings.
ComPointer<IDispatch> MakeSavedTable();

} // namespace qel::test
