#pragma once

#include "engine/export/SqlWriter.h"
#include "engine/export/StarSchema.h"

namespace qel::engine {

/// The statements that make the star's tables.
std::string ComposeTables(const StarSchema& star);

/// The statements that fill them, in pieces, and last the indexes on the columns that they are joined by.
/// `progress` is called with the share of the facts written so far. Raises EngineError (DamagedFile) for
/// facts that cannot be read.
void WriteRows(const StarSchema& star, const TextSink& sink, const std::function<void(double)>& progress);

} // namespace qel::engine
