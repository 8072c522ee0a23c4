#pragma once

#include "qel/engine/Cellset.h"

#include <string_view>

// Exact as long as 64 bits hold the result, a double's precision beyond. An empty cell counts as 0 beside a
// number; two empty cells make an empty one.

namespace qel::engine {

/// More decimals than this are kept as a double.
inline constexpr std::uint8_t maxDecimals = 18;

CellValue Add(const CellValue& a, const CellValue& b);
CellValue Negate(const CellValue& a);
/// Empty when either is empty.
CellValue Multiply(const CellValue& a, const CellValue& b);
/// A division by 0 gives an infinity.
CellValue Divide(const CellValue& a, const CellValue& b);
/// Negative, 0 or positive.
int Compare(const CellValue& a, const CellValue& b);
/// Digits with an optional point and exponent, as the lexer lets them through.
CellValue NumberFromText(std::string_view digits);

} // namespace qel::engine
