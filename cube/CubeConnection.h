#pragma once

#include "cube/ThreadState.h"

#include <string>

namespace qel::ModSetCube {

/// The cube that an object last saw opened: its g_cubeFile and g_CubeName.
struct OpenedCube {
    std::string cubeFile, cubeName;
};

/// The connection text. Nothing is quoted or escaped.
std::string ComposeConnectionText(const std::string& cubeFile, const std::string& cubeName);

/// Leaves CubeConnection open. An open connection is reused when `opened` names exactly this cube, otherwise
/// it is closed, `opened` is rewritten and it is opened again. Returns false when it was reused. Raises what
/// the provider raises.
bool OpenOrReuse(ThreadState& thread, DataAccess& dataAccess, OpenedCube& opened, const std::string& cubeFile,
                 const std::string& cubeName);

/// The same, and a connection that was opened afresh has its layout checked and its Date table loaded.
/// Returns false for a cube of an outdated layout; CubeConnection is none then.
bool EnsureCurrentCubeOpen(ThreadState& thread, DataAccess& dataAccess, OpenedCube& opened,
                           const std::string& cubeFile, const std::string& cubeName);

/// The thread's connection. Raises 91 when it has none.
const Connection& RequireConnection(const ThreadState& thread);

} // namespace qel::ModSetCube
