#include "cube/CubeConnection.h"

#include "cube/CubeDates.h"
#include "platform/value/AutomationError.h"

namespace qel::ModSetCube {

namespace {

/// A machine's connection whose opening failed may not even tell its state.
bool IsOpen(const std::shared_ptr<Connection>& connection) {
    try {
        return connection && connection->State() == stateOpen;
    } catch (const AutomationError&) {
        return false;
    }
}

/// What was read of the open cube.
void ForgetData(ThreadState& thread) {
    thread.datesAreCurrent = false;
    thread.obsMembers.Clear();
    thread.knownCells.Clear();
}

} // namespace

std::string ComposeConnectionText(const std::string& cubeFile, const std::string& cubeName) {
    return "Provider=MSOLAP;Data Source=" + cubeFile + ";Initial Catalog=" + cubeName +
           ";Client Cache Size=25;Auto Synch Period=10000";
}

void OpenThreadConnection(ThreadState& thread, const Providers& providers, const OpenedCube& cube) {
    ForgetData(thread);
    const std::string text = ComposeConnectionText(cube.cubeFile, cube.cubeName);
    DataAccess& provider = providers.For(text);
    if (!thread.CubeConnection || thread.provider != &provider) {
        thread.CubeConnection = provider.CreateConnection();
        thread.provider = &provider;
    }
    providers.Open(*thread.CubeConnection, text);
    thread.connected = cube;
}

void OpenOrReuse(ThreadState& thread, const Providers& providers, OpenedCube& opened,
                 const OpenedCube& wanted) {
    if (IsOpen(thread.CubeConnection)) {
        // Objects of a thread share the connection but not `opened`: it may be open on another object's cube.
        if (opened == wanted && thread.connected == wanted) {
            if (thread.CubeConnection->Refresh()) {
                ForgetData(thread);
            }
            return;
        }
        thread.CubeConnection->Close();
        opened = wanted;
    }
    OpenThreadConnection(thread, providers, wanted);
}

bool EnsureCurrentCubeOpen(ThreadState& thread, const Providers& providers, OpenedCube& opened,
                           const OpenedCube& wanted) {
    OpenOrReuse(thread, providers, opened, wanted);
    // A name call opens the connection without its dates; summing by another cube's dates would be wrong.
    if (!thread.datesAreCurrent && LoadCubeDates(thread) != currentLayout) {
        DropConnection(thread);
        return false;
    }
    thread.datesAreCurrent = true;
    return true;
}

void DropConnection(ThreadState& thread) {
    thread.CubeConnection.reset();
    thread.obsMembers.Clear();
    thread.knownCells.Clear();
}

std::unique_ptr<Catalog> OpenCatalog(const ThreadState& thread) {
    if (!thread.CubeConnection) {
        throw PlatformError(ErrorNumber::ObjectVariableNotSet);
    }
    auto catalog = thread.provider->CreateCatalog();
    catalog->SetActiveConnection(thread.CubeConnection->ConnectionString());
    return catalog;
}

} // namespace qel::ModSetCube
