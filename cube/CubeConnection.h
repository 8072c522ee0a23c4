#pragma once

#include "cube/ThreadState.h"
#include "platform/data/Providers.h"

#include <string>

namespace qel::ModSetCube {

/// The connection text. Nothing is quoted or escaped.
std::string ComposeConnectionText(const std::string& cubeFile, const std::string& cubeName);

/// Opens CubeConnection, which is not open, on the cube: the one that is there, unless another provider made
/// it. Raises what the provider raises.
void OpenThreadConnection(ThreadState& thread, const Providers& providers, const OpenedCube& cube);

/// Leaves CubeConnection open. An open connection is reused when `opened` (the object's g_cubeFile and
/// g_CubeName) names exactly this cube and no other object has opened another one since; otherwise it is
/// closed, `opened` is rewritten and it is opened again. When the data behind a reused connection is new, its
/// dates are loaded afresh. Raises what the provider raises.
void OpenOrReuse(ThreadState& thread, const Providers& providers, OpenedCube& opened,
                 const OpenedCube& wanted);

/// The same, and a connection that was opened since the last check has its layout checked and its Date table
/// loaded. Returns false for a cube of an outdated layout; CubeConnection is none then.
bool EnsureCurrentCubeOpen(ThreadState& thread, const Providers& providers, OpenedCube& opened,
                           const OpenedCube& wanted);

/// Sets CubeConnection to none, which closes it, and forgets what was remembered of its cube.
void DropConnection(ThreadState& thread);

/// A catalog on the connection text of CubeConnection. Raises 91 when there is none.
std::unique_ptr<Catalog> OpenCatalog(const ThreadState& thread);

} // namespace qel::ModSetCube
