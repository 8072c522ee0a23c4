#pragma once

#include "cube/ThreadState.h"
#include "platform/data/Providers.h"

#include <atomic>
#include <memory>

namespace qel::server {

/// Embedded cubes are read here and servers with a web address asked here; the machine's own objects open
/// every other data source.
Providers ProvidersOfMachine();
/// The same with another provider for servers with a web address.
Providers ProvidersOfMachine(DataAccess& servers);
/// Servers with a web address for dialogs: the person has been asked before, and once the flag is set their
/// requests end.
std::unique_ptr<DataAccess> ServersOfDialogs(const std::shared_ptr<const std::atomic<bool>>& isStopped);

/// The state shared by the calling thread's objects: its connection and Date table. It lives as long as one
/// of these objects.
std::shared_ptr<ModSetCube::ThreadState> StateOfThread();

} // namespace qel::server
