#pragma once

#include "platform/data/DataAccess.h"
#include "tests/helpers/automation/DispatchDouble.h"

namespace qel::test {

/// ADOMD.Cube and everything below it, over a cube of the embedded engine.
ComPointer<IDispatch> MakeCubeDef(const std::shared_ptr<CubeDef>& cube);

} // namespace qel::test
