#include "server/ThreadContext.h"

#include "engine/storage/CubeFile.h"
#include "platform/AutomationError.h"
#include "platform/ConnectionText.h"
#include "platform/local/CubeSource.h"
#include "platform/local/LocalDataAccess.h"
#include "platform/provider/ResolvingDataAccess.h"
#include "platform/windows/WindowsApi.h"
#include "platform/windows/ado/LateBoundDataAccess.h"

namespace qel::server {

namespace {

/// False too for a text that only another provider may understand.
bool NamesEmbeddedCube(const std::string& connectionText) {
    try {
        return engine::CubeFile::HasSignature(PathOfText(ParseConnectionText(connectionText).dataSource));
    } catch (const AutomationError&) {
        return false;
    }
}

/// The server's providers: embedded cubes are read here, every other data source by the machine's own
/// objects.
DataAccess& Providers() {
    static LocalDataAccess embedded;
    static windows::LateBoundDataAccess machine;
    static ResolvingDataAccess providers([](const std::string& connectionText) -> DataAccess& {
        if (NamesEmbeddedCube(connectionText))
            return embedded;
        return machine;
    });
    return providers;
}

ModSetCube::ThreadState& StateOfThread() {
    thread_local ModSetCube::ThreadState state;
    return state;
}

/// Keeps the DLL loaded until the process ends: a thread's state ends with its thread, by code of the DLL,
/// and the last apartment to close would otherwise unload it under threads that are still ending.
void KeepLoaded() {
    static const HMODULE pinned = [] {
        HMODULE module = nullptr;
        ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                             reinterpret_cast<LPCWSTR>(&KeepLoaded), &module);
        return module;
    }();
    static_cast<void>(pinned);
}

} // namespace

FunctionContext ContextOfThread(const Locale& locale) {
    KeepLoaded();
    return {StateOfThread(), Providers(), locale};
}

} // namespace qel::server
