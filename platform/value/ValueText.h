#pragma once

#include "platform/value/Variant.h"

#include <string>

namespace qel {

/// A number on one line: the shortest text that reads back as the same number where that has at most 4
/// decimals (money keeps its cents however large), else 15 significant digits. No exponent from 1E-9 up to
/// 1E+21, a decimal point, no thousands separators.
std::string NumberText(double number);

/// A cell's value on one line: numbers as NumberText, texts as they are, nothing for an empty one.
std::string ValueText(const Variant& value);

} // namespace qel
