#pragma once

#include "cube/PeriodSelection.h"
#include "cube/ValueQuery.h"

#include <string>
#include <string_view>

namespace qel::ModSetCube {

/// Element 0 of a call's lists, as texts.
struct KeyTexts {
    std::string_view obsName, obsNumber, obsLevel, obsMember, activity;
};

/// Writes all that a call's query depends on while one cube is open: calls with the same key have the same
/// query.
void WriteCallKey(std::string& key, const ValueCall& call, const KeyTexts& keys, DayRange days);

} // namespace qel::ModSetCube
