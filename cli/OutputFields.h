#pragma once

#include "platform/value/Variant.h"

#include <nlohmann/json_fwd.hpp>

#include <ostream>
#include <string>
#include <vector>

namespace qel {

/// A line of RFC 4180, ended by a line feed.
void PrintCsvLine(const std::vector<std::string>& fields, std::ostream& output);

/// A number, a text, true, false or null. "Infinity", "-Infinity" and "NaN" are texts: JSON has no such
/// numbers.
nlohmann::ordered_json ValueJson(const Variant& value);

/// Indented; bytes that are no UTF-8 are replaced.
void PrintJson(const nlohmann::ordered_json& document, std::ostream& output);

} // namespace qel
