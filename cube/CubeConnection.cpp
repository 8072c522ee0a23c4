#include "cube/CubeConnection.h"

#include "cube/CubeDates.h"
#include "platform/AutomationError.h"

namespace qel::ModSetCube {

namespace {

void Open(Connection& connection, const std::string& cubeFile, const std::string& cubeName) {
    connection.Open(ComposeConnectionText(cubeFile, cubeName), "", "", optionsUnspecified);
}

} // namespace

std::string ComposeConnectionText(const std::string& cubeFile, const std::string& cubeName) {
    return "Provider=MSOLAP;Data Source=" + cubeFile + ";Initial Catalog=" + cubeName +
           ";Client Cache Size=25;Auto Synch Period=10000";
}

bool OpenOrReuse(ThreadState& thread, DataAccess& dataAccess, OpenedCube& opened, const std::string& cubeFile,
                 const std::string& cubeName) {
    if (!thread.CubeConnection) {
        thread.CubeConnection = dataAccess.CreateConnection();
        Open(*thread.CubeConnection, cubeFile, cubeName);
        return true;
    }
    Connection& connection = *thread.CubeConnection;
    if (connection.State() != stateOpen) {
        Open(connection, cubeFile, cubeName);
        return true;
    }
    if (opened.cubeFile == cubeFile && opened.cubeName == cubeName)
        return false;
    connection.Close();
    opened = {cubeFile, cubeName};
    Open(connection, cubeFile, cubeName);
    return true;
}

bool EnsureCurrentCubeOpen(ThreadState& thread, DataAccess& dataAccess, OpenedCube& opened,
                           const std::string& cubeFile, const std::string& cubeName) {
    const bool openedAfresh = OpenOrReuse(thread, dataAccess, opened, cubeFile, cubeName);
    if (!openedAfresh || LoadCubeDates(thread, dataAccess) == currentLayout)
        return true;
    thread.CubeConnection.reset();
    return false;
}

const Connection& RequireConnection(const ThreadState& thread) {
    if (!thread.CubeConnection)
        throw PlatformError(ErrorNumber::ObjectVariableNotSet);
    return *thread.CubeConnection;
}

} // namespace qel::ModSetCube
