#pragma once

#include <cstdint>
#include <string>

namespace qel {

/// "AB7", as spreadsheets name a cell; row and column are counted from 1.
std::string CellName(std::int64_t row, std::int64_t column);

} // namespace qel
