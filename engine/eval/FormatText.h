#pragma once

#include "qel/engine/Cellset.h"

#include <string>
#include <string_view>

namespace qel::engine {

/// The number as a text, by a named format (Standard, Percent, ...) or a picture (#,##0.00, yyyy-mm-dd), as
/// docs/mdx.md lists them. Sets `fault` when the format is not supported.
std::string FormatText(const CellValue& value, std::string_view format, std::string& fault);

/// The parts of a picture between its semicolons.
std::vector<std::string_view> SectionsOf(std::string_view picture);

/// A number by one section of a picture of digits.
std::string FormatNumber(const CellValue& value, std::string_view section, std::string& fault);

/// A number of days since 30 December 1899 as a date, by a picture of date parts.
std::string FormatDate(double days, std::string_view picture, std::string& fault);

} // namespace qel::engine
