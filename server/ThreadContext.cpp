#include "server/ThreadContext.h"

#include "platform/data/ResolvingDataAccess.h"
#include "platform/data/ado/AdoDataAccess.h"
#include "platform/data/embedded/CubeSource.h"
#include "platform/data/embedded/EmbeddedDataAccess.h"
#include "platform/windows/WindowsApi.h"

#include <map>
#include <mutex>

namespace qel::server {

// Embedded cubes are read in process, every other data source through the machine's own objects.
DataAccess& Providers() {
    static EmbeddedDataAccess embedded;
    static windows::AdoDataAccess machine;
    static ResolvingDataAccess providers([](const std::string& connectionText) -> DataAccess& {
        if (NamesEmbeddedCube(connectionText)) {
            return embedded;
        }
        return machine;
    });
    return providers;
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
