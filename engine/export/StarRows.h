#pragma once

#include "engine/export/SqlWriter.h"
#include "engine/export/StarSchema.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace qel::engine {

inline constexpr const char* integerType = "INTEGER";

std::vector<SqlColumn> FactColumns(const StarSchema& star);

/// The statements that create the tables of the star's members.
std::string ComposeMemberTables(const StarSchema& star);
/// The same, and the table of its facts.
std::string ComposeTables(const StarSchema& star);

/// Which part of the facts a fact belongs to.
struct FactSpread {
    std::size_t keyColumn = 0;
    std::vector<std::size_t> parts; ///< by code of the key column; the others belong to part 0
    std::size_t PartOf(std::uint32_t code) const { return code < parts.size() ? parts[code] : 0; }
};

/// The statements that fill the tables of members, piece by piece, then those that create their indexes.
void WriteMemberRows(const StarSchema& star, const TextSink& sink);
/// The same for the facts; `sinks` are the parts. `progress` is called with the share of the facts written.
/// Raises EngineError (DamagedFile) when facts cannot be read.
void WriteFactRows(const StarSchema& star, const FactSpread& spread, std::span<const TextSink> sinks,
                   const std::function<void(double)>& progress);

} // namespace qel::engine
