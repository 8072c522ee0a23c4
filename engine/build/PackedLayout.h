#pragma once

#include "engine/storage/FactTable.h"

#include <vector>

namespace qel::engine {

/// Columns of at most this many bits share bytes.
inline constexpr unsigned narrowBits = 7;

/// Assigns every key column to a packed column: narrow columns share a byte, each other column gets its own
/// packed column of the narrowest width.
void PackKeyColumns(std::vector<KeyColumn>& columns);

} // namespace qel::engine
