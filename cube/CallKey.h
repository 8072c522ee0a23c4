#pragma once

#include "cube/PeriodSelection.h"
#include "cube/ValueQuery.h"

#include <string>

namespace qel::ModSetCube {

/// Writes all that a call's query depends on while one cube is open: calls with the same key have the same
/// query. False for keys that are not texts; those have to be converted first.
bool WriteCallKey(std::string& key, const ValueCall& call, const ValueKeys& keys, DayRange days);

} // namespace qel::ModSetCube
