#pragma once

#include "tests/helpers/automation/DispatchDouble.h"

namespace qel::test {

/// ADODB.Recordset, opened on the suite's table of texts, which holds what the component's own strings hold.
ComPointer<IDispatch> MakeSavedTable();

} // namespace qel::test
