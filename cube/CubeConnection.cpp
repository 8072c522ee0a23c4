#include "cube/CubeConnection.h"

#include "cube/CubeDates.h"
#include "platform/value/AutomationError.h"

namespace qel::ModSetCube {

std::string ComposeConnectionText(const std::string& cubeFile, const std::string& cubeName) {
    return "Provider=MSOLAP;Data Source=" + cubeFile + ";Initial Catalog=" + cubeName +
           ";Client Cache Size=25;Auto Synch Period=10000";
}

void OpenThreadConnection(ThreadState& thread, const OpenedCube& cube) {
    thread.datesAreCurrent = false;
    thread.CubeConnection->Open(ComposeConnectionText(cube.cubeFile, cube.cubeName), "", "",
                                optionsUnspecified);
    thread.connected = cube;
}

void OpenOrReuse(ThreadState& thread, DataAccess& dataAccess, OpenedCube& opened, const OpenedCube& wanted) {
    if (!thread.CubeConnection) {
        thread.CubeConnection = dataAccess.CreateConnection();
    } else if (thread.CubeConnection->State() == stateOpen) {
        // Objects of a thread share the connection but not `opened`: it may be open on another object's cube.
        if (opened == wanted && thread.connected == wanted) {
            return;
        }
        thread.CubeConnection->Close();
        opened = wanted;
    }
    OpenThreadConnection(thread, wanted);
}

bool EnsureCurrentCubeOpen(ThreadState& thread, DataAccess& dataAccess, OpenedCube& opened,
                           const OpenedCube& wanted) {
    OpenOrReuse(thread, dataAccess, opened, wanted);
    // A name call opens the connection without its dates; summing by another cube's dates would be wrong.
    if (!thread.datesAreCurrent && LoadCubeDates(thread, dataAccess) != currentLayout) {
        thread.CubeConnection.reset();
        return false;
    }
    thread.datesAreCurrent = true;
    return true;
}

const Connection& RequireConnection(const ThreadState& thread) {
    if (!thread.CubeConnection) {
        throw PlatformError(ErrorNumber::ObjectVariableNotSet);
    }
    return *thread.CubeConnection;
}

} // namespace qel::ModSetCube
