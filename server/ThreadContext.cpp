#include "server/ThreadContext.h"

#include "platform/data/ado/AdoDataAccess.h"
#include "platform/data/choice/ChooseProvider.h"
#include "platform/data/embedded/EmbeddedDataAccess.h"
#include "platform/data/xmla/XmlaDataAccess.h"
#include "platform/data/xmla/settings/ConfiguredServers.h"
#include "platform/data/xmla/settings/ServerSettings.h"
#include "platform/windows/WindowsApi.h"
#include "server/ServerPermission.h"

#include <functional>
#include <map>
#include <mutex>
#include <utility>

namespace qel::server {

namespace {

ServerOptions OptionsOfServers(std::function<ServerRights(const ServerAddress&)> rights) {
    ServerOptions options = ReadServerOptions(std::make_shared<KnownServers>(ServerSettingsFile()));
    options.rights = std::move(rights);
    return options;
}

} // namespace

Providers ProvidersOfMachine() {
    static ConfiguredServers servers([] { return OptionsOfServers(RightsByPerson); });
    return ProvidersOfMachine(servers);
}

Providers ProvidersOfMachine(DataAccess& servers) {
    static EmbeddedDataAccess cubeFiles;
    static windows::AdoDataAccess machine(RequireAllowedServer);
    return ChooseProvider(cubeFiles, &servers, &machine);
}

std::unique_ptr<DataAccess> ServersOfDialogs(const std::shared_ptr<const std::atomic<bool>>& isStopped) {
    ServerOptions options = OptionsOfServers(RightsByAnswer);
    options.isStopped = isStopped;
    return std::make_unique<XmlaDataAccess>(std::move(options));
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
