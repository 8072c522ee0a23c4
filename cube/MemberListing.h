#pragma once

#include "cube/CubeConnection.h"
#include "cube/MemberStatements.h"

namespace qel::ModSetCube {

/// Lists members over a connection of its own, which the cellset keeps alive. The members are on axis 1; of a
/// position with several, the first is the code. Raises what the provider raises.
std::unique_ptr<Cellset> ListMembersCellset(const Providers& providers, const std::string& cubeFile,
                                            const MemberListing& listing);

/// Opens a recordset on a listing over the thread's CubeConnection, which is opened for the cube when it is
/// not. `opened` is the cube that the connection was opened for. The recordset is one of the cube's provider.
/// Raises what the provider raises.
void OpenMemberRecordset(ThreadState& thread, const Providers& providers, OpenedCube& opened,
                         Recordset& recordset, const std::string& cubeFile, const MemberListing& listing);

/// How many levels of [OBS], counted from the lowest, have data under a member of an OBS number; 0 without
/// data. Raises what the provider raises.
std::int16_t CountObsLevels(const Providers& providers, const std::string& cubeName,
                            const std::string& cubeFile, const std::string& obsNumber,
                            const std::string& obsMember);

} // namespace qel::ModSetCube
