#pragma once

#include "platform/data/Providers.h"

namespace qel {

/// The provider of every connection text, the same at every door: `servers` for the address of a server,
/// `cubeFiles` for a file that the embedded engine wrote, and `machine` for anything else. A door without
/// servers leaves their addresses to the others; without a machine's provider `cubeFiles` says what cannot be
/// opened and why.
Providers ChooseProvider(DataAccess& cubeFiles, DataAccess* servers, DataAccess* machine);

} // namespace qel
