#pragma once

#include "engine/build/Definition.h"
#include "qel/engine/BuildCube.h"

namespace qel::engine {

/// Raises EngineError (CannotWrite) naming the file when an output file is also an input, when the cube and
/// the skipped lines go to the same file, or when the output is write-protected and not to be forced. Links
/// and different spellings of a path are resolved.
void CheckWrittenPaths(const BuildOptions& options, const Definition& definition);

} // namespace qel::engine
