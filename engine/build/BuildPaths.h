#pragma once

#include "engine/build/Definition.h"
#include "qel/engine/BuildCube.h"

namespace qel::engine {

/// Raises EngineError (CannotWrite) naming the file when the build would write over what it reads, or write
/// the skipped lines and the cube to one file. Links and other spellings of a path are seen through.
void CheckWrittenPaths(const BuildOptions& options, const Definition& definition);

} // namespace qel::engine
