#pragma once

#include "cube/ThreadState.h"
#include "platform/data/Providers.h"

#include <memory>

namespace qel::server {

/// Embedded cubes are read here and servers with a web address asked here; the machine's own objects open
/// every other data source.
Providers ProvidersOfMachine();

/// The state shared by the calling thread's objects: its connection and Date table. It lives as long as one
/// of these objects.
std::shared_ptr<ModSetCube::ThreadState> StateOfThread();

} // namespace qel::server
