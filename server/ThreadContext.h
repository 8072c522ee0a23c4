#pragma once

#include "cube/ThreadState.h"
#include "platform/data/DataAccess.h"

#include <memory>

namespace qel::server {

/// The providers of this machine.
DataAccess& Providers();

/// What the objects of the calling thread share: its connection and Date table. It lives as long as one of
/// the objects that hold it.
std::shared_ptr<ModSetCube::ThreadState> StateOfThread();

} // namespace qel::server
