#pragma once

#include "qel/engine/Cellset.h"

#include <string_view>

// Arithmetic on cell values: exact as long as the result fits in 64 bits, otherwise a double. An empty cell
// counts as 0 beside a number; the result of two empty cells is empty.

namespace qel::engine {

/// Numbers with more decimals are kept as doubles.
inline constexpr std::uint8_t maxDecimals = 18;

CellValue Add(const CellValue& a, const CellValue& b);
CellValue Negate(const CellValue& a);
/// Empty when either operand is.
CellValue Multiply(const CellValue& a, const CellValue& b);
/// Division by 0 gives an infinity.
CellValue Divide(const CellValue& a, const CellValue& b);
/// Negative, 0 or positive.
int Compare(const CellValue& a, const CellValue& b);
/// Converts a number token of the lexer: digits with an optional decimal point and exponent.
CellValue NumberFromText(std::string_view digits);

} // namespace qel::engine
