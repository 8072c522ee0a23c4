#pragma once

#include "cube/ThreadState.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qel::ModSetCube {

inline constexpr std::int32_t currentLayout = 0;
inline constexpr std::int32_t outdatedLayout = 9999;

/// Checks the layout of the cube behind CubeConnection and loads its Date table. Returns currentLayout, or
/// outdatedLayout (the table stays as it was). Raises what the provider raises, and 13 or 5 for Date members
/// that name no date.
std::int32_t LoadCubeDates(ThreadState& thread);

/// Whether the lowest level of the hierarchy, which is read as months, has days.
bool HasDaysForMonths(const Hierarchy& date);

/// Messages for everything that prevents reading a [Date] hierarchy as ascending periods; empty if valid.
std::vector<std::string> FindDateFaults(const Hierarchy& date);

} // namespace qel::ModSetCube
