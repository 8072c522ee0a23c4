#pragma once

#include "engine/build/Definition.h"

#include <cstdint>
#include <istream>
#include <string>

namespace qel::engine {

/// How many lines of a CSV file stand above the one with the names of the columns, such as a title and the
/// period of a report; guessed from the first lines. 0 when nothing looks like a title. A reader needs not be
/// told of blank lines and of a line "sep=;", which do not count by themselves. Raises EngineError
/// (InvalidData) with the file's name for a line of over 16 MiB.
std::uint64_t LinesAboveHeader(std::istream& text, const std::string& name);

/// The same of a table's file.
std::uint64_t LinesAboveHeader(const TableDefinition& table);

} // namespace qel::engine
