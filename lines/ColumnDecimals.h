#pragma once

#include "platform/value/Variant.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace qel {

/// The decimals that the number has as NumberText writes it.
int DecimalsOf(double number);

/// The most decimals of a column's numbers, two in the place of one, as money has; none for a column without
/// numbers.
std::optional<int> ColumnDecimals(const std::vector<std::vector<Variant>>& rows, std::size_t column);

} // namespace qel
