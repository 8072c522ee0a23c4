#pragma once

#include "engine/export/SqlWriter.h"
#include "engine/export/StarSchema.h"

namespace qel::engine {

/// The statements that create the star's tables.
std::string ComposeTables(const StarSchema& star);

/// The statements that fill them, piece by piece, then those that create indexes on the join columns.
/// `progress` is called with the share of the facts written. Raises EngineError (DamagedFile) when facts
/// cannot be read.
void WriteRows(const StarSchema& star, const TextSink& sink, const std::function<void(double)>& progress);

} // namespace qel::engine
