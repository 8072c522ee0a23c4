#include "server/ThreadContext.h"

#include "platform/data/ado/AdoDataAccess.h"
#include "platform/data/choice/ChooseProvider.h"
#include "platform/data/embedded/EmbeddedDataAccess.h"
#include "platform/data/xmla/settings/ConfiguredServers.h"
#include "platform/data/xmla/settings/ServerSettings.h"
#include "platform/windows/WindowsApi.h"
#include "server/ServerPermission.h"

#include <map>
#include <mutex>

namespace qel::server {

namespace {

ServerOptions OptionsOfServers() {
    ServerOptions options = ReadServerOptions(std::make_shared<KnownServers>(ServerSettingsFile()));
    options.rights = RightsByPerson;
    return options;
}

} // namespace

Providers ProvidersOfMachine() {
    static EmbeddedDataAccess cubeFiles;
    static ConfiguredServers servers(OptionsOfServers);
    static windows::AdoDataAccess machine(RequireAllowedServer);
    return ChooseProvider(cubeFiles, &servers, &machine);
}

// Keyed by thread id instead of thread_local: the compiler's runtime frees thread-local memory before it
// destroys the objects in it.
std::shared_ptr<ModSetCube::ThreadState> StateOfThread() {
    static std::mutex mutex;
    static std::map<DWORD, std::weak_ptr<ModSetCube::ThreadState>> states;
    const std::lock_guard lock(mutex);
    std::erase_if(states, [](const auto& entry) { return entry.second.expired(); });
    auto& known = states[::GetCurrentThreadId()];
    auto state = known.lock();
    if (!state) {
        state = std::make_shared<ModSetCube::ThreadState>();
        known = state;
    }
    return state;
}

} // namespace qel::server
