#pragma once

#include "cube/ThreadState.h"
#include "platform/data/DataAccess.h"

#include <memory>

namespace qel::server {

/// The providers of this machine.
DataAccess& Providers();

/// The state shared by the calling thread's objects: its connection and Date table. It lives as long as one
/// of these objects.
std::shared_ptr<ModSetCube::ThreadState> StateOfThread();

} // namespace qel::server
