#pragma once

#include "engine/storage/FactTable.h"

#include <vector>

namespace qel::engine {

/// Columns of at most so many bits share bytes.
inline constexpr unsigned narrowBits = 7;

/// Gives every key column its packed column: narrow columns share bytes, each of the others has a packed
/// column of the narrowest width.
void PackKeyColumns(std::vector<KeyColumn>& columns);

} // namespace qel::engine
