#pragma once

#include "cube/ThreadState.h"

#include <cstdint>

namespace qel::ModSetCube {

inline constexpr std::int32_t currentLayout = 0;
inline constexpr std::int32_t outdatedLayout = 9999;

/// Checks the layout of the cube behind CubeConnection and loads its Date table. Returns currentLayout, or
/// outdatedLayout (the table stays as it was). Raises what the provider raises, and 13 or 5 for Date members
/// that name no date.
std::int32_t LoadCubeDates(ThreadState& thread);

} // namespace qel::ModSetCube
